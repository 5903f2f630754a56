#include "shell/page_contract.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shell/frm_welcome.h"
#include "shell/plain_test_page.h"
#include "shell/shell_test_support.h"

namespace kw {
namespace {

using platform::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kAskOk =
    "question(Confirm Cancel) Any changes you have made will be discarded. [OK|Cancel] default=Cancel -> OK";
constexpr const char* kAskCancel =
    "question(Confirm Cancel) Any changes you have made will be discarded. [OK|Cancel] default=Cancel -> "
    "Cancel";

/// A plain page that counts how often it is left.
struct PlainPage : testing::PlainTestPage {
  explicit PlainPage(PageContext& context) : PlainTestPage(context, "frmFeatures", "Features", 1002) {}
  void LeavePage(const std::string& name) override {
    left_for.push_back(name);
    PlainTestPage::LeavePage(name);
  }
  std::vector<std::string> left_for;
};

FormFactories WithPlainFeatures() {
  FormFactories factories = AllFormFactories();
  factories["frmFeatures"] = [](PageContext& context) { return std::make_unique<PlainPage>(context); };
  return factories;
}

struct PageContractTest : ::testing::Test, testing::ShellFixture {
  PageContractTest() : ShellFixture(WithPlainFeatures()) {
    run.PackageMode = true;
    table.BuildPackagePageList();
    table.GoToPage("Features");
    Take();
  }
  PlainPage& page() { return dynamic_cast<PlainPage&>(Page("frmFeatures")); }
  void OpenTempFolder() {
    run.TempFolder = "C:\\Temp\\_id_1";
    machine.files.AddFile("C:\\Temp\\_id_1\\Setup.ini", "");
  }
};

TEST_F(PageContractTest, EveryRouteOutOfAPageRunsItsCheck) {
  page().Next->UserClick();
  table.GoToPage("Features");
  page().Finsh->UserClick();
  table.GoToPage("Features");
  ClickNode("frmFeatures", "Programs");
  table.GoToPage("Features");
  machine.dialogs.answers = {Answer::kCancel};
  page().Back->UserClick();
  EXPECT_THAT(page().left_for,
              ElementsAre("Source for Configuration", "Finish", "Programs", "Source and Destination"));
}

TEST_F(PageContractTest, ThePageCarriesTheCommonControlsUnderTheirNames) {
  for (const char* name : {"TitleImage", "Logo", "Title", "Label4", "Line1", "Line2", "TreeView1", "Back",
                           "Next", "Finsh", "Help", "Cancel"})
    EXPECT_TRUE(page().FindControl(name)) << name;
  EXPECT_EQ(page().Back->Text(), "< &Back");
  EXPECT_EQ(page().Next->Text(), "&Next >");
  EXPECT_EQ(page().Finsh->Text(), "&Finish");
  EXPECT_EQ(page().Help->Text(), "&Help");
  EXPECT_EQ(page().Cancel->Text(), "Cancel");
}

TEST_F(PageContractTest, CancelAnsweredWithCancelLeavesEverything) {
  OpenTempFolder();
  machine.dialogs.answers = {Answer::kCancel};
  page().Cancel->UserClick();
  EXPECT_THAT(Take(), ElementsAre(kAskCancel));
  EXPECT_TRUE(page().Visible());
  EXPECT_TRUE(machine.files.FileExists("C:\\Temp\\_id_1\\Setup.ini"));
}

TEST_F(PageContractTest, CancelAnsweredWithOkCleansUpHidesAndEnds) {
  OpenTempFolder();
  machine.dialogs.answers = {Answer::kOk};
  page().Cancel->UserClick();
  const auto lines = Take();
  EXPECT_EQ(lines.front(), kAskOk);
  EXPECT_EQ(lines[lines.size() - 2], "hide frmFeatures");
  EXPECT_EQ(lines.back(), "end");
  EXPECT_FALSE(machine.files.FolderExists("C:\\Temp\\_id_1"));
}

TEST_F(PageContractTest, CancelTakesBackADestinationThatTheRunMade) {
  run.DestinationFolder = "C:\\Out";
  run.DestinationInUse = true;
  machine.files.AddFolder("C:\\Out");
  machine.dialogs.answers = {Answer::kOk};
  page().Cancel->UserClick();
  EXPECT_FALSE(machine.files.FolderExists("C:\\Out"));
  EXPECT_FALSE(run.DestinationInUse);
}

TEST_F(PageContractTest, CancelLeavesADestinationThatTheUserSupplied) {
  run.DestinationFolder = "C:\\Out";
  machine.files.AddFolder("C:\\Out");
  machine.dialogs.answers = {Answer::kOk};
  page().Cancel->UserClick();
  EXPECT_TRUE(machine.files.FolderExists("C:\\Out"));
}

TEST_F(PageContractTest, ClosingTheWindowAsksLikeCancel) {
  machine.dialogs.answers = {Answer::kCancel};
  page().UserClose();
  EXPECT_THAT(Take(), ElementsAre(kAskCancel));
  EXPECT_TRUE(page().Visible());
  machine.dialogs.answers = {Answer::kOk};
  page().UserClose();
  EXPECT_THAT(Take(), Contains("end"));
  EXPECT_FALSE(page().Visible());
}

TEST_F(PageContractTest, HelpOpensTheProgramsHelpFileAtThePagesNumber) {
  page().Help->UserClick();
  EXPECT_THAT(Take(), ElementsAre("help 1002"));
  EXPECT_THAT(machine.dialogs.help_files, ElementsAre("C:\\Kitwright\\ZED.chm"));
}

TEST_F(PageContractTest, AFailureOfHelpIsToldInAPlainBox) {
  machine.dialogs.help_result = Status(kErrorFileNotFound, "The help file is missing.");
  page().Help->UserClick();
  EXPECT_THAT(Take(), Contains("message The help file is missing."));
}

TEST_F(PageContractTest, LoadRemovesTheMaximiseCommandAndKeepsTheDesignsFont) {
  EXPECT_FALSE(page().HasMaximize());
  EXPECT_EQ(page().TextFont(), ui::Font());
}

TEST_F(PageContractTest, LocalesWithTheirOwnFaceGetItAtSizeNine) {
  const std::pair<int, ui::Font> kFaces[] = {{1028, {"新細明體", 9, 136}},
                                             {1041, {"ＭＳ Ｐゴシック", 9, 128}},
                                             {1042, {"굴림", 9, 129}},
                                             {2052, {"宋体", 9, 134}}};
  for (const auto& [locale, font] : kFaces) {
    machine.system.locale = locale;
    PlainPage fresh(app.Context());
    fresh.EnsureLoaded();
    EXPECT_EQ(fresh.TextFont(), font) << locale;
  }
}

TEST_F(PageContractTest, ABusyPageIsDisabledUnderTheHourglassUntilItEnds) {
  BeginBusy(page());
  EXPECT_TRUE(IsBusy(page()));
  EXPECT_FALSE(page().Enabled());
  EXPECT_FALSE(page().Next->UserCanUse());
  EndBusy(page());
  EXPECT_FALSE(IsBusy(page()));
  EXPECT_TRUE(page().Next->UserCanUse());
}

TEST_F(PageContractTest, TheStatusWindowTellsTheStepAndLeavesABusyPageBusy) {
  auto& status = table.Get<frmStatus>();
  BeginBusy(page());
  status.ShowText("Please wait.", page());
  EXPECT_EQ(status.MousePointer(), ui::Pointer::kHourglass);
  status.HideWhileWaiting(page());
  EXPECT_TRUE(IsBusy(page()));
  EndBusy(page());
  EXPECT_FALSE(IsBusy(page()));
  EXPECT_THAT(Take(), ElementsAre("status Please wait.", "status-end"));
}

TEST_F(PageContractTest, AnErrorWithoutARuleIsToldInOnePlainBox) {
  EXPECT_TRUE(CheckOrReport(machine.services, Status()));
  EXPECT_FALSE(CheckOrReport(machine.services, Status(kErrorIo, "The file \"x\" cannot be read.")));
  EXPECT_THAT(Take(), ElementsAre("message The file \"x\" cannot be read."));
}

TEST(PageHelpTest, EveryPageOpensItsOwnContext) {
  testing::ShellFixture wizard;
  const std::pair<const char*, int> kContexts[] = {{"frmSourceAndDestination", 1001},
                                                   {"frmFeatures", 1002},
                                                   {"frmConfigSource", 1003},
                                                   {"frmType", 1004},
                                                   {"frmDestination", 1005},
                                                   {"frmOnAccessMonitor", 1006},
                                                   {"frmEmailScan", 1007},
                                                   {"frmScheduledScan", 1008},
                                                   {"frmAutoUpdate", 1010},
                                                   {"frmBeaconryClient", 1011},
                                                   {"frmUIOptions", 1012},
                                                   {"frmInstallOptions", 1013},
                                                   {"frmPostInstallOptions", 1014},
                                                   {"frmBeaconryServer", 1015},
                                                   {"frmAddRemoveOptions", 1016},
                                                   {"frmRegistrySettings", 1017},
                                                   {"frmPatchFiles", 1018},
                                                   {"frmDATsAndEngine", 1019},
                                                   {"frmPrograms", 1020},
                                                   {"frmZEDPassword", 1021},
                                                   {"frmCommonUpdater", 1022},
                                                   {"frmAdditionalFiles", 1023},
                                                   {"frmReviewConfiguration", 1024},
                                                   {"frmInstallBWK", 1035}};
  for (const auto& [form, id] : kContexts)
    EXPECT_EQ(dynamic_cast<WizardPage&>(wizard.table.FormByName(form)).HelpId(), id) << form;
}

struct WelcomeTest : ::testing::Test, testing::ShellFixture {
  frmWelcome& welcome() { return table.Get<frmWelcome>(); }
};

TEST_F(WelcomeTest, ItsTextsAreThoseOfTheProduct) {
  EXPECT_EQ(welcome().Label1.Text(), "Welcome");
  EXPECT_EQ(welcome().Label4.Text(), "Welcome to Tamrix Kitwright.");
  EXPECT_EQ(welcome().ModifyPackage.Text(),
            "&Create a new installation package based on an existing package");
  EXPECT_EQ(welcome().GenerateSettings.Text(),
            "&Modify an existing installation by generating a new settings file");
  EXPECT_EQ(welcome().Help.Text() + welcome().Next.Text() + welcome().Cancel.Text(), "&Help&Next >Cancel");
}

TEST_F(WelcomeTest, NextInPackageModeShowsTheFirstPageThenHides) {
  welcome().Show();
  Take();
  run.TempFolder = "C:\\Temp\\left";
  run.ConfigAppDataFolder = "x";
  run.ProductLocale = "0407";
  run.SettingsFromFile = run.SettingsFromSystem = run.PackageOptimized = true;
  welcome().Next.UserClick();
  const auto lines = Take();
  ASSERT_EQ(lines.size(), 4U);  // the two branches are cleared first
  EXPECT_EQ(lines[2], "page frmSourceAndDestination");
  EXPECT_EQ(lines[3], "hide frmWelcome");
  EXPECT_TRUE(run.PackageMode);
  EXPECT_EQ(run.TempFolder + run.ConfigAppDataFolder, "");
  EXPECT_EQ(run.ProductLocale, "0000");
  EXPECT_FALSE(run.SettingsFromFile || run.SettingsFromSystem || run.PackageOptimized);
  EXPECT_FALSE(run.SaveDifferencesOnly);
  EXPECT_TRUE(welcome().Enabled());
}

TEST_F(WelcomeTest, NextInSettingsModeShowsTheSourceOfTheSettings) {
  welcome().Show();
  welcome().GenerateSettings.UserClick();
  welcome().Next.UserClick();
  EXPECT_FALSE(run.PackageMode);
  EXPECT_TRUE(table.FormByName("frmConfigSource").Visible());
}

TEST_F(WelcomeTest, NextInSettingsModeWithoutAnyFeatureShowsTheDestinationForDifferencesOnly) {
  run.AnyFeatureInstalled = false;
  welcome().Show();
  welcome().GenerateSettings.UserClick();
  welcome().Next.UserClick();
  EXPECT_TRUE(table.FormByName("frmDestination").Visible());
  EXPECT_TRUE(run.SaveDifferencesOnly);
}

TEST_F(WelcomeTest, CancelAndCloseEndAtOnceWithoutAQuestion) {
  welcome().Show();
  Take();
  welcome().Cancel.UserClick();
  EXPECT_THAT(Take(), ElementsAre("end"));

  testing::ShellFixture other;
  other.table.Get<frmWelcome>().Show();
  other.table.FormByName("frmWelcome").UserClose();
  EXPECT_THAT(other.Take(), Contains("end"));
}

TEST_F(WelcomeTest, LeavingAfterComingBackLeavesNoFolderOfTheRun) {
  welcome().Show();
  welcome().GenerateSettings.UserClick();
  welcome().Next.UserClick();
  Page("frmConfigSource").Next->UserClick();
  const std::string temp = run.TempFolder;
  ASSERT_TRUE(machine.files.FolderExists(temp));
  run.DestinationFolder = "C:\\Out";
  run.DestinationInUse = true;
  machine.files.AddFolder(run.DestinationFolder);
  Page("frmDestination").Back->UserClick();
  Page("frmConfigSource").Back->UserClick();
  ASSERT_TRUE(welcome().Visible());
  Take();
  welcome().Cancel.UserClick();
  EXPECT_THAT(Take(), ElementsAre("end"));
  EXPECT_FALSE(machine.files.FolderExists(temp));
  EXPECT_FALSE(machine.files.FolderExists("C:\\Out"));
}

TEST_F(WelcomeTest, ReturningAndGoingOnGivesNewEmptyPagesWithoutAQuestion) {
  welcome().Show();
  welcome().Next.UserClick();
  auto* box =
      dynamic_cast<ui::TextBox*>(table.FormByName("frmSourceAndDestination").FindControl("SourceDir"));
  box->SetText("C:\\somewhere");
  Take();
  Page("frmSourceAndDestination").Back->UserClick();
  EXPECT_THAT(Take(), ElementsAre("page frmWelcome", "hide frmSourceAndDestination"));
  welcome().Next.UserClick();
  box = dynamic_cast<ui::TextBox*>(table.FormByName("frmSourceAndDestination").FindControl("SourceDir"));
  EXPECT_EQ(box->Text(), "");
  EXPECT_EQ(table.Records().size(), 22U);
  EXPECT_TRUE(table.Records()[0].IsCurrent);
}

TEST_F(WelcomeTest, AnotherModeAfterReturningBuildsItsOwnList) {
  welcome().Show();
  welcome().Next.UserClick();
  Page("frmSourceAndDestination").Back->UserClick();
  welcome().GenerateSettings.UserClick();
  welcome().Next.UserClick();
  EXPECT_EQ(table.Records().size(), 14U);
  EXPECT_EQ(Page("frmConfigSource").TreeView1.Count(), 14);
  Page("frmConfigSource").Back->UserClick();
  welcome().ModifyPackage.UserClick();
  welcome().Next.UserClick();
  EXPECT_EQ(table.Records().size(), 22U);
}

TEST_F(WelcomeTest, AnActivationOfTheHiddenWelcomeWindowLeavesThePages) {
  welcome().Show();
  welcome().Next.UserClick();
  welcome().UserActivate();
  EXPECT_TRUE(table.FormByName("frmSourceAndDestination").Visible());
}

TEST_F(WelcomeTest, HelpHasItsOwnContext) {
  welcome().Show();
  Take();
  welcome().Help.UserClick();
  EXPECT_THAT(Take(), ElementsAre("help 1000"));
}

}  // namespace
}  // namespace kw
