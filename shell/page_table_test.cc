#include "shell/page_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shell/plain_test_page.h"
#include "shell/shell_test_support.h"

namespace kw {
namespace {

using platform::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kCannotProceed =
    "message Cannot proceed to this page until all currently available pages have been configured.";

/// Every page a plain one, so that the table's own rules show.
FormFactories PlainPages() {
  FormFactories factories = AllFormFactories();
  for (auto& [name, factory] : factories) {
    if (name == "frmWelcome" || name == "frmStatus" || name == "frmFinish" ||
        name == "frmReviewConfiguration")
      continue;
    factory = [form = name](PageContext& context) {
      return std::make_unique<testing::PlainTestPage>(context, form, form, 1);
    };
  }
  return factories;
}

struct PageTableTest : ::testing::Test, testing::ShellFixture {
  PageTableTest() : ShellFixture(PlainPages()) {}

  void StartPackageMode() {
    run.PackageMode = true;
    table.BuildPackagePageList();
    Page("frmSourceAndDestination").Show();
    Take();
  }
  void StartSettingsMode() {
    table.BuildSettingsPageList();
    Page(run.AnyFeatureInstalled ? "frmConfigSource" : "frmDestination").Show();
    Take();
  }
  std::vector<std::string> Captions() {
    std::vector<std::string> captions;
    for (const PageRecord& record : table.Records()) captions.push_back(record.Caption);
    return captions;
  }
  const PageRecord& Record(const std::string& caption) {
    for (const PageRecord& record : table.Records()) {
      if (record.Caption == caption) return record;
    }
    ADD_FAILURE() << "no record " << caption;
    return table.Records().front();
  }
};

TEST_F(PageTableTest, PackageModeListsTwentyTwoPagesInOrderAllRequired) {
  StartPackageMode();
  EXPECT_THAT(
      Captions(),
      ElementsAre("Source and Destination", "Features", "Source for Configuration", "Installation Options",
                  "On-Access Scanner", "On-Delivery Scanner", "Scheduled Scans", "AutoUpdate Schedule",
                  "Beaconry Properties", "Beaconry Installation", "Tamrix Bulwark",
                  "User Interface Properties", "Add/Remove Options", "DAT and Engine Files", "Patch Files",
                  "AutoUpdate Configuration", "Programs", "Additional Files", "Registry Settings",
                  "Kitwright Password", "Post-Installation Options", "Finish"));
  for (const PageRecord& record : table.Records()) {
    EXPECT_TRUE(record.Required) << record.Caption;
    EXPECT_FALSE(record.Disabled) << record.Caption;
    EXPECT_EQ(record.IsCurrent, record.Caption == "Source and Destination");
    EXPECT_EQ(table.FormByName(record.Form).Caption(), record.Caption);
  }
}

TEST_F(PageTableTest, PackageModeGreysPagesOfFeaturesThatAreNotInstalled) {
  run.HasConsoleFeature = run.HasEmailScanFeature = false;
  StartPackageMode();
  std::vector<std::string> grey;
  for (const PageRecord& record : table.Records()) {
    if (record.Disabled) grey.push_back(record.Caption);
  }
  EXPECT_THAT(grey, ElementsAre("On-Delivery Scanner", "Beaconry Properties", "User Interface Properties"));
}

TEST_F(PageTableTest, SettingsModeOpensItsTwoFirstPagesAndBlocksTheRest) {
  StartSettingsMode();
  EXPECT_THAT(Captions(),
              ElementsAre("Source for Configuration", "Destination", "Type", "On-Access Scanner",
                          "On-Delivery Scanner", "Scheduled Scans", "AutoUpdate Schedule",
                          "Beaconry Properties", "Tamrix Bulwark", "User Interface Properties",
                          "AutoUpdate Configuration", "Registry Settings", "Kitwright Password", "Finish"));
  for (const PageRecord& record : table.Records()) {
    const bool first = record.Caption == "Source for Configuration" || record.Caption == "Destination";
    EXPECT_EQ(record.Required, first) << record.Caption;
    EXPECT_EQ(record.Disabled, !first) << record.Caption;
  }
}

TEST_F(PageTableTest, SettingsModeWithoutAnyFeatureBeginsAtTheDestination) {
  run.AnyFeatureInstalled = run.HasConsoleFeature = false;
  StartSettingsMode();
  EXPECT_TRUE(Record("Destination").IsCurrent);
  EXPECT_TRUE(Record("Source for Configuration").NotInstalled);
  EXPECT_TRUE(Record("Finish").Required);
}

TEST_F(PageTableTest, SettingsModeAtLevel700NamesTheFirewallPageAsNotInstalled) {
  run.ProductIs700 = true;
  StartSettingsMode();
  Page("frmConfigSource").Next->UserClick();
  Page("frmDestination").Next->UserClick();
  Take();
  ClickNode("frmType", "Tamrix Bulwark");
  EXPECT_THAT(Take(), ElementsAre("message Tamrix Bulwark is not currently installed on this computer.  It "
                                  "must be installed before it can be configured by Kitwright."));
}

TEST_F(PageTableTest, PackageModeOpensAnyPageFromTheStartAndMarksOnlyThoseLeft) {
  StartPackageMode();
  ClickNode("frmSourceAndDestination", "Scheduled Scans");
  EXPECT_THAT(Take(), ElementsAre("page frmScheduledScan", "hide frmSourceAndDestination"));
  const auto nodes = Nodes(Page("frmScheduledScan").TreeView1);
  EXPECT_THAT(nodes, Contains("Source and Destination[1]"));
  EXPECT_THAT(nodes, Contains("Features"));
  EXPECT_THAT(nodes, Contains("Scheduled Scans*"));
}

TEST_F(PageTableTest, SettingsModeRefusesLaterPagesUntilBothFirstOnesWereLeft) {
  StartSettingsMode();
  ClickNode("frmConfigSource", "Type");
  EXPECT_THAT(Take(), ElementsAre(kCannotProceed));
  Page("frmConfigSource").Next->UserClick();
  // Both are done now: one is configured, the other current.
  ClickNode("frmDestination", "Type");
  EXPECT_THAT(Take(), ElementsAre("page frmDestination", "hide frmConfigSource", "page frmType",
                                  "hide frmDestination"));
}

TEST_F(PageTableTest, ClickingTheCurrentPagesNodeDoesNothing) {
  StartPackageMode();
  ClickNode("frmSourceAndDestination", "Source and Destination");
  EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(PageTableTest, ARightClickOnANodeIsIgnoredAndTheNextLeftClickIsNot) {
  StartPackageMode();
  ClickNode("frmSourceAndDestination", "Features", ui::MouseButton::kRight);
  EXPECT_THAT(Take(), IsEmpty());
  EXPECT_TRUE(Page("frmSourceAndDestination").TreeView1.Enabled());
  ClickNode("frmSourceAndDestination", "Features");
  EXPECT_THAT(Take(), ElementsAre("page frmFeatures", "hide frmSourceAndDestination"));
}

TEST_F(PageTableTest, NextWithEveryLaterPageDisabledTellsAndStays) {
  StartSettingsMode();
  table.SetPageNoSettings("Destination", true);
  Page("frmConfigSource").Next->UserClick();
  EXPECT_THAT(Take(), ElementsAre(kCannotProceed));
  EXPECT_TRUE(Record("Source for Configuration").IsCurrent);
  EXPECT_TRUE(Page("frmConfigSource").Visible());
}

TEST_F(PageTableTest, BackWithoutAnEarlierPageTellsItsOwnText) {
  StartPackageMode();
  EXPECT_EQ(table.PreviousPageName(), "");
  EXPECT_THAT(Take(), ElementsAre("message This page is not available for configuration because Kestrane is "
                                  "not installed."));
}

TEST_F(PageTableTest, GoingNowhereMarksThePageAndKeepsItCurrent) {
  StartPackageMode();
  table.GoToPage("");
  EXPECT_TRUE(Record("Source and Destination").IsCurrent);
  EXPECT_TRUE(Record("Source and Destination").Configured);
  EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(PageTableTest, AFeatureTurnedOffKeepsItsImageTurnsGreyAndIsSkippedByNextAndBack) {
  StartPackageMode();
  table.GoToPage("On-Delivery Scanner");
  table.GoToPage("On-Access Scanner");
  table.SetPageFeatureOff("On-Delivery Scanner", true);
  table.FillPageTree(Page("frmOnAccessMonitor").TreeView1);
  EXPECT_THAT(Nodes(Page("frmOnAccessMonitor").TreeView1), Contains("On-Delivery Scanner[2]-"));
  EXPECT_EQ(table.NextPageName(), "Scheduled Scans");
  table.GoToPage("Scheduled Scans");
  EXPECT_EQ(table.PreviousPageName(), "On-Access Scanner");
  Take();
  ClickNode("frmScheduledScan", "On-Delivery Scanner");
  EXPECT_THAT(Take(), ElementsAre("message You have disabled installation of this feature.  If you would "
                                  "like to configure its settings you must first configure it to be "
                                  "installed on the Features page."));
}

TEST_F(PageTableTest, APageWithoutSettingsNamesTheSourcePageInItsRefusal) {
  StartPackageMode();
  table.SetConfigurationPagesEnabled(false);
  ClickNode("frmSourceAndDestination", "AutoUpdate Schedule");
  EXPECT_THAT(Take(), ElementsAre("message You haved chosen not to configure settings. If you change your "
                                  "mind, please click Source for Configuration to modify your selection."));
  EXPECT_FALSE(Record("Tamrix Bulwark").Disabled);
  table.SetConfigurationPagesEnabled(true);
  EXPECT_FALSE(Record("AutoUpdate Schedule").Disabled);
}

TEST_F(PageTableTest, ScannerPagesAreSwitchedTogether) {
  StartPackageMode();
  table.SetScannerPagesDisabled(true);
  std::vector<std::string> off;
  for (const PageRecord& record : table.Records()) {
    if (record.FeatureOff) off.push_back(record.Caption);
  }
  EXPECT_THAT(off, ElementsAre("On-Access Scanner", "On-Delivery Scanner", "Scheduled Scans",
                               "AutoUpdate Schedule", "Beaconry Properties"));
}

TEST_F(PageTableTest, ReturningToTheFirstPageAsksAndCancelKeepsEverything) {
  StartPackageMode();
  table.GoToPage("Features");
  run.TempFolder = "C:\\Temp\\_id_1";
  machine.files.AddFolder(run.TempFolder);
  Take();
  machine.dialogs.answers = {Answer::kCancel};
  ClickNode("frmFeatures", "Source and Destination");
  EXPECT_THAT(Take(), ElementsAre("question(Confirm Cancel) Any changes you have made will be discarded. "
                                  "[OK|Cancel] default=Cancel -> Cancel"));
  EXPECT_TRUE(Record("Features").IsCurrent);
  EXPECT_FALSE(Record("Features").Configured);
  EXPECT_TRUE(machine.files.FolderExists("C:\\Temp\\_id_1"));
}

TEST_F(PageTableTest, ReturningToTheFirstPageWithOkDiscardsTheWorkingPackage) {
  StartPackageMode();
  table.GoToPage("Features");
  run.TempFolder = "C:\\Temp\\_id_1";
  machine.files.AddFile("C:\\Temp\\_id_1\\Kte710.msi", "x");
  run.WorkingMsiPath = "C:\\Temp\\_id_1\\Kte710.msi";
  Take();
  machine.dialogs.answers = {Answer::kOk};
  ClickNode("frmFeatures", "Source and Destination");
  EXPECT_FALSE(machine.files.FolderExists("C:\\Temp\\_id_1"));
  EXPECT_TRUE(Record("Source and Destination").IsCurrent);
  EXPECT_THAT(Take(), ::testing::IsSupersetOf({"page frmSourceAndDestination", "hide frmFeatures"}));
}

TEST_F(PageTableTest, APageThatIsNeverConfiguredGetsNoImage) {
  StartSettingsMode();
  table.SetPageNeverConfigured("Source for Configuration", true);
  Page("frmConfigSource").Next->UserClick();
  EXPECT_FALSE(table.PageIsConfigured("Source for Configuration"));
  EXPECT_TRUE(table.PageIsRequired("Source for Configuration"));
  EXPECT_FALSE(table.PageIsRequired("No such page"));
  EXPECT_FALSE(table.PageIsConfigured("No such page"));
}

TEST_F(PageTableTest, CaptionsAreComparedExactly) {
  StartPackageMode();
  table.SetPageConfigured("features", true);
  table.SetPageFeatureOff("features", true);
  EXPECT_FALSE(Record("Features").Configured);
  EXPECT_FALSE(Record("Features").Disabled);
}

TEST_F(PageTableTest, TheReviewPageGetsNoImageByLeavingIt) {
  StartPackageMode();
  table.GoToPage("Finish");
  table.GoToPage("Features");
  EXPECT_FALSE(Record("Finish").Configured);
}

TEST_F(PageTableTest, ResetUnloadsThePagesWithoutAQuestion) {
  StartPackageMode();
  table.GoToPage("Features");
  Take();
  table.ResetPages();
  EXPECT_THAT(Take(), ElementsAre("hide frmFeatures"));
  for (const PageRecord& record : table.Records()) {
    EXPECT_FALSE(record.IsCurrent);
    EXPECT_FALSE(record.Configured);
  }
  EXPECT_FALSE(table.FormByName("frmFeatures").Loaded());
  EXPECT_THAT(table.Records(), SizeIs(22));
}

TEST_F(PageTableTest, AnUnloadedPageStaysInMemoryWhileAHandlerOfItMayWaitForATool) {
  StartPackageMode();
  Page("frmFeatures").TreeView1.Add({});
  ui::Form& features = table.FormByName("frmFeatures");
  run.WaitsForTools = 1;
  table.ResetPages();
  ui::Form& anew = table.FormByName("frmFeatures");
  EXPECT_NE(&anew, &features);
  EXPECT_EQ(dynamic_cast<WizardPage&>(features).TreeView1.Count(), 1);
  run.WaitsForTools = 0;
}

TEST_F(PageTableTest, ReloadBringsBackEveryPageButTheCurrentOneAndClearsFeatureOff) {
  StartPackageMode();
  ui::Form* const current = &table.FormByName("frmSourceAndDestination");
  Page("frmFeatures").TreeView1.Add({});
  table.SetPageFeatureOff("Scheduled Scans", true);
  table.ReloadPages();
  EXPECT_EQ(&table.FormByName("frmSourceAndDestination"), current);
  EXPECT_EQ(Page("frmFeatures").TreeView1.Count(), 0);
  EXPECT_FALSE(Record("Scheduled Scans").FeatureOff);
  EXPECT_FALSE(Record("Scheduled Scans").Disabled);
  EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(PageTableTest, AHiddenPageThatIsActivatedGivesTheFocusToTheCurrentOne) {
  StartPackageMode();
  table.GoToPage("Features");
  table.GoToPage("Programs");
  Page("frmFeatures").TreeView1.Clear();
  table.FormByName("frmFeatures").UserActivate();
  // A visible page fills its tree at an activation; a hidden one must not.
  EXPECT_EQ(Page("frmFeatures").TreeView1.Count(), 0);
}

TEST(FeatureToPageNameTest, MapsFeatureKeysToCaptions) {
  EXPECT_EQ(FeatureToPageName("AutoUpdate", false), "AutoUpdate Schedule");
  EXPECT_EQ(FeatureToPageName("OnAccessScanner", false), "On-Access Scanner");
  EXPECT_EQ(FeatureToPageName("EmailScan", false), "On-Delivery Scanner");
  EXPECT_EQ(FeatureToPageName("OnDemandScanner", false), "Scheduled Scans");
  EXPECT_EQ(FeatureToPageName("ShellExtensions", false), "");
  EXPECT_EQ(FeatureToPageName("ShellExtensions", true), "Scheduled Scans");
  EXPECT_EQ(FeatureToPageName("Console", true), "");
}

}  // namespace
}  // namespace kw
