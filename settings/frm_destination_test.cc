#include "settings/frm_destination.h"

#include "settings/frm_config_source.h"
#include "settings/settings_test_support.h"

namespace kw {
namespace {

using platform::testing::FileOperation;
using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::SettingsFixture;

struct DestinationTest : SettingsFixture, ::testing::Test {
  DestinationTest() : page(table.Get<frmDestination>()) {
    Show<frmConfigSource>();
    table.GoToPage("Destination");
    Take();
  }
  void Type(const std::string& folder) { page.DestConfigFolder.UserType(folder); }
  std::vector<std::string> Next() {
    Take();
    page.Next->UserClick();
    return Take();
  }

  frmDestination& page;
};

TEST_F(DestinationTest, AnEmptyBoxStopsNextFinishAndTheTreeButNotBack) {
  EXPECT_THAT(Next(),
              ElementsAre("message Please enter a destination.", "focus frmDestination.DestConfigFolder"));
  page.Finsh->UserClick();
  EXPECT_THAT(Take(),
              ElementsAre("message Please enter a destination.", "focus frmDestination.DestConfigFolder"));
  ClickNode("frmDestination", "Registry Settings");
  EXPECT_THAT(Take(),
              ElementsAre("message Please enter a destination.", "focus frmDestination.DestConfigFolder"));
  page.Back->UserClick();
  EXPECT_THAT(Take(), Contains("page frmConfigSource"));
  EXPECT_FALSE(table.PageIsConfigured("Destination"));
}

TEST_F(DestinationTest, ARequiredPageIsReachedByTheTreeWithAnEmptyBox) {
  ClickNode("frmDestination", "Source for Configuration");
  EXPECT_THAT(Take(), Contains("page frmConfigSource"));
}

TEST_F(DestinationTest, AnExistingFolderIsTaken) {
  machine.files.AddFolder("C:\\Out");
  Type("C:\\Out");
  EXPECT_THAT(Next(), Contains("page frmType"));
  EXPECT_EQ(run.DestinationFolder, "C:\\Out");
  EXPECT_FALSE(run.DestinationInUse);
  EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
  EXPECT_TRUE(table.PageIsConfigured("Destination"));
}

TEST_F(DestinationTest, TheOptionsChooseTheFileName) {
  machine.files.AddFolder("C:\\Out");
  Type("C:\\Out");
  Next();
  EXPECT_THAT(Choices<frmDestination>(),
              ElementsAre("\tCreate one configuration package for both servers and workstations.",
                          "\tNew configuration file: C:\\Out\\KTECFG.CAB", ""));
  table.GoToPage("Destination");
  page.ServerConfig.UserClick();
  Next();
  EXPECT_THAT(Choices<frmDestination>(), ElementsAre("\tCreate server configuation package.",
                                                     "\tNew configuration file: C:\\Out\\KTECFG_S.CAB", ""));
  table.GoToPage("Destination");
  page.WorkstationConfig.UserClick();
  Next();
  EXPECT_EQ(run.SettingsFileName, "KTECFG_W.CAB");
  EXPECT_THAT(Choices<frmDestination>(), ElementsAre("\tCreate workstation configuration package.",
                                                     "\tNew configuration file: C:\\Out\\KTECFG_W.CAB", ""));
}

TEST_F(DestinationTest, ADriveRootLosesItsBackslash) {
  Type("C:\\");
  EXPECT_THAT(Next(), Contains("page frmType"));
  EXPECT_EQ(run.DestinationFolder, "C:");
  table.GoToPage("Destination");
  machine.files.AddFile("C:\\KTECFG.CAB", "x");
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_THAT(Next(),
              Contains("question The File \"C:\\KTECFG.CAB\" already exists.  Click OK to overwrite the file "
                       "or Cancel to specify another destination. [OK|Cancel] default=OK -> Cancel"));
}

TEST_F(DestinationTest, AnExistingSettingsFileAndCancelLeavesItAlone) {
  machine.files.AddFile("C:\\Out\\KTECFG.CAB", "old");
  Type("C:\\Out\\");
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_THAT(Next(), Not(Contains("page frmType")));
  EXPECT_EQ(machine.files.Content("C:\\Out\\KTECFG.CAB"), "old");
  machine.dialogs.answers = {Answer::kOk};
  EXPECT_THAT(Next(), Contains("page frmType"));
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\KTECFG.CAB"));
  EXPECT_EQ(run.DestinationFolder, "C:\\Out");
}

TEST_F(DestinationTest, AMissingFolderIsMadeWithItsParentsAfterAsking) {
  Type("C:\\New\\Deep");
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_THAT(Next(),
              Contains("question The folder \"C:\\New\\Deep\" does not exist.  Click OK to create the folder "
                       "or Cancel to specify another destination. [OK|Cancel] default=OK -> Cancel"));
  EXPECT_FALSE(machine.files.FolderExists("C:\\New"));
  machine.dialogs.answers = {Answer::kOk};
  EXPECT_THAT(Next(), Contains("page frmType"));
  EXPECT_TRUE(machine.files.FolderExists("C:\\New\\Deep"));
  EXPECT_TRUE(run.DestinationInUse);
}

TEST_F(DestinationTest, AFolderThatCannotBeMadeKeepsThePage) {
  Type("C:\\New");
  machine.files.FailAlways(FileOperation::kCreateFolder, "C:\\New", kErrorAccessDenied);
  machine.dialogs.answers = {Answer::kOk};
  EXPECT_THAT(Next(),
              Contains("message Unable to create the folder.  Please verify that the drive is accessible and "
                       "that you have the correct permissions to create a folder."));
  EXPECT_FALSE(run.DestinationInUse);
}

TEST_F(DestinationTest, AFolderThatTakesNoFileKeepsThePage) {
  machine.files.AddFolder("C:\\Out");
  machine.files.ProtectFolder("C:\\Out");
  Type("C:\\Out");
  EXPECT_THAT(Next(), Contains("message The file path C:\\Out\\KTECFG.CAB is invalid."));
}

TEST_F(DestinationTest, AnotherDestinationUndoesTheOneThatWasMade) {
  Type("C:\\New");
  machine.dialogs.answers = {Answer::kOk};
  Next();
  EXPECT_TRUE(machine.files.FolderExists("C:\\New"));
  table.GoToPage("Destination");
  machine.files.AddFolder("C:\\Out");
  Type("C:\\Out");
  Next();
  EXPECT_FALSE(machine.files.FolderExists("C:\\New"));
  EXPECT_FALSE(run.DestinationInUse);
}

TEST_F(DestinationTest, AWrongPathIsToldUnderItsLabel) {
  Type("Out");
  EXPECT_THAT(Next(),
              ElementsAre("message Destination folder Out is not valid.  Please specify a valid local or UNC "
                          "path.",
                          "focus frmDestination.DestConfigFolder"));
}

TEST_F(DestinationTest, BrowseUsesItsTitle) {
  machine.dialogs.folders = {"C:\\Picked"};
  page.ConfigBrowse.UserClick();
  EXPECT_THAT(Take(), ElementsAre("folder-dialog Select Destination Folder | C:\\Kitwright -> C:\\Picked"));
  EXPECT_EQ(page.DestConfigFolder.Text(), "C:\\Picked");
}

TEST_F(DestinationTest, AnOldFileThatCannotBeDeletedKeepsThePage) {
  machine.files.AddFile("C:\\Out\\KTECFG.CAB", "old");
  machine.files.FailAlways(FileOperation::kDeleteFile, "C:\\Out\\KTECFG.CAB", kErrorSharingViolation);
  Type("C:\\Out");
  machine.dialogs.answers = {Answer::kOk};
  EXPECT_THAT(Next(), Not(Contains("page frmType")));
  EXPECT_EQ(machine.files.Content("C:\\Out\\KTECFG.CAB"), "old");
}

TEST_F(DestinationTest, BackFromAFilledBoxChecksIt) {
  Type("Out");
  page.Back->UserClick();
  EXPECT_THAT(Take(), Not(Contains("page frmConfigSource")));
  EXPECT_TRUE(page.Visible());
}

TEST_F(DestinationTest, WithoutFeaturesBackGoesToTheWelcomePage) {
  run.AnyFeatureInstalled = false;
  page.Back->UserClick();
  EXPECT_THAT(Take(), ElementsAre("page frmWelcome", "hide frmDestination"));
}

}  // namespace
}  // namespace kw
