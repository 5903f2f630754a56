#include "settings/frm_config_source.h"

#include "settings/frm_auto_update.h"
#include "settings/frm_destination.h"
#include "settings/frm_scheduled_scan.h"
#include "settings/frm_type.h"
#include "settings/import_configuration.h"
#include "settings/settings_test_support.h"

namespace kw {
namespace {

using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FakeCommand;
using ::testing::HasSubstr;
using testing::Hive;
using ::testing::Not;
using testing::SettingsFixture;

struct ConfigSourceTest : SettingsFixture, ::testing::Test {
  ConfigSourceTest() : page(Show<frmConfigSource>()) {
    machine.processes.On("CabArc", [this](const FakeCommand& command) {
      ++imports;
      const std::string& line = command.command_line;
      const size_t quote = line.rfind('"', line.size() - 3);
      machine.files.AddFile(line.substr(quote + 1, line.size() - quote - 3) + "\\KTE700.CFG", "enciphered:x");
    });
    machine.processes.On("regedit.exe /s", [this](const FakeCommand&) {
      SetStagingDword("", "DeltaConfig", delta);
      machine.registry.SetText(Hive::kCurrentUser, Staging(""), "Language", "0000");
    });
    machine.files.AddFile("C:\\Files\\a.cab", "cabinet");
  }
  bool IsGrey(const std::string& caption) {
    table.FillPageTree(page.TreeView1);
    for (int i = 0; i < page.TreeView1.Count(); ++i) {
      if (page.TreeView1.Node(i).text == caption) return page.TreeView1.Node(i).grey;
    }
    ADD_FAILURE() << caption;
    return false;
  }

  frmConfigSource& page;
  uint32_t delta = 0;
  int imports = 0;
};

TEST_F(ConfigSourceTest, SettingsFileModeStartsFromTheLiveSystem) {
  EXPECT_TRUE(page.SettingsFromSystem.Value());
  EXPECT_EQ(run.ConfigSourceName, kSourceIsSystem);
  EXPECT_FALSE(page.SettingsFromFilePath.Enabled());
  EXPECT_EQ(page.SettingsFromFilePath.Back(), ui::BackColor::kFace);
  EXPECT_FALSE(page.Finsh->Enabled());
}

TEST_F(ConfigSourceTest, FinishOpensOnceADestinationIsTyped) {
  table.Get<frmDestination>().DestConfigFolder.SetText("C:\\Out");
  page.UserActivate();
  EXPECT_TRUE(page.Finsh->Enabled());
}

TEST_F(ConfigSourceTest, ChoosingAFileEnablesItsBoxAndMovesTheFocus) {
  page.SettingsFromFile.UserClick();
  EXPECT_TRUE(page.SettingsFromFilePath.Enabled());
  EXPECT_TRUE(page.SettingsFromFileBrowse.Enabled());
  EXPECT_EQ(page.SettingsFromFilePath.Back(), ui::BackColor::kWindow);
  EXPECT_THAT(Take(), ElementsAre("focus frmConfigSource.SettingsFromFilePath"));
  page.NoSettings.UserClick();
  EXPECT_FALSE(page.SettingsFromFilePath.Enabled());
}

TEST_F(ConfigSourceTest, NextFromTheLiveSystemGoesOnWithANewWorkingFolder) {
  page.Next->UserClick();
  EXPECT_THAT(Take(), Contains("page frmDestination"));
  EXPECT_TRUE(run.SettingsFromSystem);
  EXPECT_THAT(run.ConfigAppDataFolder, HasSubstr("C:\\Temp\\run\\ConfigAppData_id_"));
  EXPECT_FALSE(machine.files.FolderExists("C:\\Temp\\run\\config"));
}

TEST_F(ConfigSourceTest, NoSettingsDisablesTheProductPages) {
  page.NoSettings.UserClick();
  page.Next->UserClick();
  EXPECT_FALSE(run.SettingsFromSystem);
  EXPECT_FALSE(run.SettingsFromFile);
  EXPECT_EQ(run.ProductLocale, "0000");
  for (const char* caption : {"Type", "On-Access Scanner", "On-Delivery Scanner", "Scheduled Scans",
                              "AutoUpdate Schedule", "Beaconry Properties", "User Interface Properties"}) {
    EXPECT_TRUE(IsGrey(caption)) << caption;
  }
  EXPECT_THAT(Choices<frmConfigSource>(), ElementsAre("\tNo Kestrane Enterprise settings", ""));
}

TEST_F(ConfigSourceTest, AnEmptyPathKeepsThePage) {
  page.SettingsFromFile.UserClick();
  Take();
  page.Next->UserClick();
  EXPECT_THAT(Take(), ElementsAre("message Please enter a path to a valid configuration file to continue.",
                                  "focus frmConfigSource.SettingsFromFilePath"));
}

TEST_F(ConfigSourceTest, ABadPathKeepsThePage) {
  page.SettingsFromFile.UserClick();
  page.SettingsFromFilePath.UserType("a.cab");
  Take();
  page.Next->UserClick();
  EXPECT_THAT(Take(),
              ElementsAre("message Configuration file a.cab is not valid.  Please specify a valid local or "
                          "UNC path.",
                          "focus frmConfigSource.SettingsFromFilePath"));
}

TEST_F(ConfigSourceTest, TheSameFileIsImportedAgainAtEachNext) {
  page.SettingsFromFile.UserClick();
  page.SettingsFromFilePath.UserType("C:\\Files\\a.cab");
  page.Next->UserClick();
  EXPECT_EQ(imports, 1);
  EXPECT_TRUE(run.SettingsFromFile);
  EXPECT_EQ(run.ConfigSourceName, "C:\\Files\\a.cab");
  EXPECT_THAT(Choices<frmConfigSource>(),
              ElementsAre("\tRead settings from: a configuration file (C:\\Files\\a.cab)", ""));
  run.changes.ConfigChangedUi = true;
  machine.dialogs.answers = {Answer::kCancel};
  table.GoToPage("Source for Configuration");
  Take();
  page.Next->UserClick();
  EXPECT_THAT(Take(),
              Contains("question Any changes you have made will be discarded. [OK|Cancel] default=OK -> "
                       "Cancel"));
  EXPECT_EQ(imports, 1);
  machine.dialogs.answers = {Answer::kOk};
  page.Next->UserClick();
  EXPECT_EQ(imports, 2);
}

TEST_F(ConfigSourceTest, TheMarkerOfAPackagesOwnSettingsIsNotImportedAgain) {
  run.ConfigSourceName = "[IN_PACKAGE]\\KTECFG.CAB";
  page.SettingsFromFile.UserClick();
  page.SettingsFromFilePath.UserType("[IN_PACKAGE]\\KTECFG.CAB");
  page.Next->UserClick();
  EXPECT_EQ(imports, 0);
  EXPECT_TRUE(run.SettingsFromFile);
}

TEST_F(ConfigSourceTest, ATypedMarkerStillGetsAWorkingFolder) {
  run.ConfigAppDataFolder.clear();
  page.SettingsFromFile.UserClick();
  page.SettingsFromFilePath.UserType("[IN_PACKAGE]\\KTECFG.CAB");
  page.Next->UserClick();
  EXPECT_THAT(run.ConfigAppDataFolder, HasSubstr("C:\\Temp\\run\\ConfigAppData_id_"));
  EXPECT_TRUE(machine.files.FolderExists(run.ConfigAppDataFolder));
}

TEST_F(ConfigSourceTest, ADifferencesOnlyFileDisablesTheProductPages) {
  delta = 1;
  page.SettingsFromFile.UserClick();
  page.SettingsFromFilePath.UserType("C:\\Files\\a.cab");
  page.Next->UserClick();
  EXPECT_TRUE(run.SaveDifferencesOnly);
  EXPECT_TRUE(IsGrey("On-Access Scanner"));
}

TEST_F(ConfigSourceTest, TheFixedNamesAlwaysCountAsChanged) {
  page.Next->UserClick();
  SetStagingDword("", "x", 1);
  run.changes.ConfigChangedUi = true;
  table.GoToPage("Source for Configuration");
  machine.dialogs.answers = {Answer::kCancel};
  Take();
  page.Next->UserClick();
  EXPECT_THAT(Take(), Not(Contains("page frmDestination")));
  EXPECT_TRUE(HasStaging(""));
  machine.dialogs.answers = {Answer::kOk};
  page.Next->UserClick();
  EXPECT_FALSE(HasStaging(""));
  EXPECT_FALSE(run.changes.ConfigChangedUi);
}

TEST_F(ConfigSourceTest, TaskListsAreReadFromTheNewSource) {
  machine.registry.SetText(Hive::kLocalMachine, LiveVersion("\\Tasks\\{A}"), "szTaskName", "Weekly");
  page.Next->UserClick();
  EXPECT_EQ(table.Get<frmScheduledScan>().Grid.Cell(2, 1), "Weekly");
  EXPECT_EQ(table.Get<frmScheduledScan>().Grid.Rows(), 4);
}

TEST_F(ConfigSourceTest, WithoutATempFolderOneIsMade) {
  run.TempFolder.clear();
  page.Next->UserClick();
  EXPECT_THAT(run.TempFolder, HasSubstr("\\_id_"));
  EXPECT_TRUE(machine.files.FolderExists(run.ConfigAppDataFolder));
  EXPECT_THAT(run.ConfigAppDataFolder, ::testing::StartsWith(run.TempFolder + "\\ConfigAppData_id_"));
}

TEST_F(ConfigSourceTest, AFailedImportKeepsThePageAndMovesTheFocus) {
  machine.processes.On("CabArc", 1);
  page.SettingsFromFile.UserClick();
  page.SettingsFromFilePath.UserType("C:\\Files\\a.cab");
  Take();
  page.Next->UserClick();
  EXPECT_EQ(Take().back(), "focus frmConfigSource.SettingsFromFilePath");
  EXPECT_FALSE(run.SettingsFromFile);
  EXPECT_EQ(run.ConfigSourceName, kSourceIsSystem);
}

TEST_F(ConfigSourceTest, CancelAtTheQuestionLeavesBranchesAndFlagsUntouched) {
  SetStagingDword("", "x", 1);
  run.changes.ConfigChangedScan = run.changes.ConfigChangedBulwark = true;
  machine.dialogs.answers = {Answer::kCancel};
  page.NoSettings.UserClick();
  page.Next->UserClick();
  EXPECT_TRUE(HasStaging(""));
  EXPECT_TRUE(run.changes.ConfigChangedScan && run.changes.ConfigChangedBulwark);
  EXPECT_TRUE(run.SettingsFromSystem);
  EXPECT_EQ(run.ConfigAppDataFolder, "C:\\Temp\\run\\config");
}

TEST_F(ConfigSourceTest, CancellingEverythingDuringTheImportLeavesNothing) {
  machine.processes.On("regedit.exe /s",
                       platform::testing::FakeProcesses::Script{
                           0, 2, 0, [this](const FakeCommand&) { SetStagingDword("", "x", 1); }, {}});
  page.SettingsFromFile.UserClick();
  page.SettingsFromFilePath.UserType("C:\\Files\\a.cab");
  // The cabinet's program ends at once; its two looks come first.
  host.meanwhile.push_back([] {});
  host.meanwhile.push_back([&] {
    machine.dialogs.answers = {Answer::kOk};
    page.Cancel->UserClick();
  });
  page.Next->UserClick();
  EXPECT_TRUE(host.Ended());
  EXPECT_FALSE(HasStaging(""));
  EXPECT_FALSE(machine.registry.HasKey(Hive::kCurrentUser, "SOFTWARE\\Orvantic\\ZED_Backup"));
  EXPECT_FALSE(machine.files.FolderExists("C:\\Temp\\run"));
}

TEST_F(ConfigSourceTest, DuringAnImportThePageTakesNoOtherCommand) {
  page.SettingsFromFile.UserClick();
  page.SettingsFromFilePath.UserType("C:\\Files\\a.cab");
  Take();
  host.meanwhile.push_back([&] {
    page.Next->UserClick();
    page.Finsh->UserClick();
    page.Back->UserClick();
    page.SettingsFromFilePath.UserType("C:\\Files\\b.cab");
    page.NoSettings.UserClick();
  });
  page.Next->UserClick();
  EXPECT_EQ(imports, 1);
  EXPECT_FALSE(table.FormByName("frmWelcome").Visible());
  EXPECT_TRUE(table.Get<frmDestination>().Visible());
  // What was imported is what the page says.
  EXPECT_TRUE(page.SettingsFromFile.Value());
  EXPECT_EQ(page.SettingsFromFilePath.Text(), "C:\\Files\\a.cab");
  EXPECT_EQ(run.ConfigSourceName, "C:\\Files\\a.cab");
  EXPECT_FALSE(IsGrey("On-Access Scanner"));
}

TEST_F(ConfigSourceTest, BrowseStartsNowhereForABadPathOrADriveRoot) {
  page.SettingsFromFile.UserClick();
  for (const char* text : {"no path", "C:\\", ""}) {
    page.SettingsFromFilePath.UserType(text);
    machine.dialogs.files = {""};
    Take();
    page.SettingsFromFileBrowse.UserClick();
    EXPECT_THAT(
        Take(),
        ElementsAre("file-dialog Select Configuration File | Cabinet Files (*.cab)|*.cab |  -> cancel"))
        << text;
    EXPECT_EQ(page.SettingsFromFilePath.Text(), text);
  }
}

TEST_F(ConfigSourceTest, BackGoesToTheWelcomePageInSettingsFileMode) {
  page.Back->UserClick();
  EXPECT_THAT(Take(), Contains("page frmWelcome"));
}

TEST_F(ConfigSourceTest, BrowseStartsFromTheTypedFolderWithoutItsBackslash) {
  page.SettingsFromFile.UserClick();
  page.SettingsFromFilePath.UserType("C:\\Files\\");
  machine.dialogs.files = {"C:\\Files\\a.cab"};
  Take();
  page.SettingsFromFileBrowse.UserClick();
  EXPECT_THAT(
      Take(),
      ElementsAre("file-dialog Select Configuration File | Cabinet Files (*.cab)|*.cab | C:\\Files -> "
                  "C:\\Files\\a.cab"));
  EXPECT_EQ(page.SettingsFromFilePath.Text(), "C:\\Files\\a.cab");
}

TEST_F(ConfigSourceTest, TypeDecidesBetweenEntireAndDifferences) {
  frmType& type = table.Get<frmType>();
  EXPECT_TRUE(type.SaveEntire.Value());
  EXPECT_THAT(Choices<frmType>(), ElementsAre("\tSave the entire configuration", ""));
  type.Show();
  type.SaveDifferences.UserClick();
  type.Next->UserClick();
  EXPECT_TRUE(run.SaveDifferencesOnly);
  EXPECT_THAT(Choices<frmType>(),
              ElementsAre("\tSave only the differences from the source configuration", ""));
}

}  // namespace
}  // namespace kw
