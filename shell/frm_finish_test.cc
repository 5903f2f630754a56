#include "shell/frm_finish.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shell/plain_test_page.h"
#include "shell/shell_test_support.h"

namespace kw {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A companion's page with its install check box alone.
struct CompanionPage : testing::PlainTestPage {
  CompanionPage(PageContext& context, const char* form, const char* check_box)
      : PlainTestPage(context, form, form, 1), install(*this, check_box, "") {}
  ui::CheckBox install;
};

FormFactories WithCompanions() {
  FormFactories factories = AllFormFactories();
  factories["frmBeaconryServer"] = [](PageContext& context) {
    return std::make_unique<CompanionPage>(context, "frmBeaconryServer", "InstallBeaconry");
  };
  factories["frmInstallBWK"] = [](PageContext& context) {
    return std::make_unique<CompanionPage>(context, "frmInstallBWK", "InstallBWK");
  };
  return factories;
}

struct FinishTest : ::testing::Test, testing::ShellFixture {
  FinishTest() : ShellFixture(WithCompanions()) {
    run.PackageMode = true;
    run.Succeeded = true;
    run.DestinationFolder = "C:\\Out";
    table.BuildPackagePageList();
  }
  void InstallCompanions() {
    dynamic_cast<CompanionPage&>(Page("frmBeaconryServer")).install.SetChecked(true);
    dynamic_cast<CompanionPage&>(Page("frmInstallBWK")).install.SetChecked(true);
  }
  frmFinish& Show() {
    auto& finish = table.Get<frmFinish>();
    finish.Show();
    return finish;
  }
};

TEST_F(FinishTest, ItsTextsAreThoseOfTheProduct) {
  const frmFinish& finish = Show();
  EXPECT_EQ(finish.Title.Text(), "Finish");
  EXPECT_EQ(finish.Label4.Text(), "Operation complete.");
  EXPECT_EQ(finish.cmdHelp.Text() + finish.Exit.Text(), "&Help&Exit");
}

TEST_F(FinishTest, APackageIsToldByItsFolder) {
  const frmFinish& finish = Show();
  EXPECT_EQ(finish.lblFinalMessage.Text(),
            "This folder contains your customized Kestrane Enterprise installation:");
  EXPECT_EQ(finish.lblFinalDirectory.Text(), "C:\\Out");
  EXPECT_FALSE(finish.lblHint.Visible());
  EXPECT_EQ(finish.lblBCNFinalMessage.Text() + finish.lblBCNFinalDirectory.Text() +
                finish.lblBWKFinalMessage.Text() + finish.lblBWKFinalDirectory.Text(),
            "");
}

TEST_F(FinishTest, CompanionsAreToldByTheirFolders) {
  InstallCompanions();
  const frmFinish& finish = Show();
  EXPECT_EQ(finish.lblBCNFinalMessage.Text(),
            "This folder contains your customized Beaconry Server installation package:");
  EXPECT_EQ(finish.lblBCNFinalDirectory.Text(), "C:\\Out\\BCN");
  EXPECT_EQ(finish.lblBWKFinalMessage.Text(),
            "This folder contains your customized Tamrix Bulwark installation package:");
  EXPECT_EQ(finish.lblBWKFinalDirectory.Text(), "C:\\Out\\BWK");
}

TEST_F(FinishTest, CompanionsOfAnOptimisedPackageAreInsideIt) {
  InstallCompanions();
  run.PackageOptimized = true;
  const frmFinish& finish = Show();
  EXPECT_EQ(finish.lblBCNFinalDirectory.Text() + finish.lblBWKFinalDirectory.Text(), "");
}

TEST_F(FinishTest, ASettingsFileIsToldByItsPathAndWhatToDoWithIt) {
  run.PackageMode = false;
  run.SettingsFileName = "KTECFG_W.CAB";
  const frmFinish& finish = Show();
  EXPECT_EQ(finish.lblFinalMessage.Text(),
            "This file contains your customized Kestrane Enterprise settings:");
  EXPECT_EQ(finish.lblFinalDirectory.Text(), "C:\\Out\\KTECFG_W.CAB");
  EXPECT_EQ(finish.lblHint.Text(),
            "To apply the new Kestrane Enterprise settings to target systems, you must copy this file to the "
            "'ZED' subfolder in the Kestrane Enterprise installation folder (For example: C:\\Program "
            "Files\\Orvantic\\Kestrane\\ZED\\) on each target system.  Kestrane Enterprise will detect the "
            "new file and automatically incorporate the changes.");
  EXPECT_TRUE(finish.lblHint.Visible());
  for (const ui::Label* label : {&finish.lblBCNFinalMessage, &finish.lblBCNFinalDirectory,
                                 &finish.lblBWKFinalMessage, &finish.lblBWKFinalDirectory})
    EXPECT_FALSE(label->Visible());
}

TEST_F(FinishTest, AFailureIsToldInOneLine) {
  run.Succeeded = false;
  const frmFinish& finish = Show();
  EXPECT_EQ(finish.lblFinalMessage.Text(), "Kitwright did not complete successfully.");
  for (const ui::Label* label :
       {&finish.lblFinalDirectory, &finish.lblHint, &finish.lblBCNFinalMessage, &finish.lblBCNFinalDirectory,
        &finish.lblBWKFinalMessage, &finish.lblBWKFinalDirectory})
    EXPECT_FALSE(label->Visible()) << label->Name();
}

TEST_F(FinishTest, TheWholeTreeIsGreyAndTakesNoClicks) {
  const frmFinish& finish = Show();
  EXPECT_THAT(Nodes(finish.TreeView1),
              ElementsAre("Source and Destination*-", "Features-", ::testing::_, ::testing::_, ::testing::_,
                          ::testing::_, ::testing::_, ::testing::_, ::testing::_, ::testing::_, ::testing::_,
                          ::testing::_, ::testing::_, ::testing::_, ::testing::_, ::testing::_, ::testing::_,
                          ::testing::_, ::testing::_, ::testing::_, ::testing::_, "Finish-"));
  EXPECT_FALSE(finish.TreeView1.Enabled());
}

TEST_F(FinishTest, ExitAndCloseEndAtOnce) {
  frmFinish& finish = Show();
  Take();
  finish.Exit.UserClick();
  EXPECT_THAT(Take(), ElementsAre("end"));

  testing::ShellFixture other;
  other.table.Get<frmFinish>().Show();
  other.Take();
  other.table.Get<frmFinish>().UserClose();
  EXPECT_THAT(other.Take(), Contains("end"));
}

TEST_F(FinishTest, HelpOpensTheReviewPagesContext) {
  frmFinish& finish = Show();
  Take();
  finish.cmdHelp.UserClick();
  EXPECT_THAT(Take(), ElementsAre("help 1024"));
}

}  // namespace
}  // namespace kw
