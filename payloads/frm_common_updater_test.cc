#include "payloads/frm_common_updater.h"

#include "formats/version_block_test_support.h"
#include "pages/open_package_test_support.h"

namespace kw {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FileOperation;
using testing::Hive;
using ::testing::IsEmpty;
using testing::PageFixture;
using Arguments = platform::testing::FakeClosedLibraries::Arguments;

constexpr const char* kAgentKey = "SOFTWARE\\Orvantic\\RDX\\Shared Components\\AgentCore";
constexpr const char* kLive = "C:\\Agent Data\\SiteList.xml";
constexpr const char* kWorking = "C:\\Temp\\run\\config\\SiteList.xml";
constexpr const char* kBackup = "C:\\Temp\\run\\config\\SiteList.tmp";
constexpr const char* kLiveList = "<SiteLists from=\"machine\"/>";
constexpr const char* kPackageList = "<SiteLists from=\"package\"/>";
const std::string kNoAgent =
    "message Could not find the Agent Core installation path. <CR><LF>Please make sure that Kestrane "
    "Enterprise is installed correctly.";
const std::string kNotConfigured =
    "message Could not configure the AutoUpdate repository list.<CR><LF>Please make sure that Kestrane "
    "Enterprise is installed correctly.";
const std::string kBadList =
    "message This package's AutoUpdate configuration is not valid.  You may configure update site settings "
    "on the AutoUpdate Configuration page.";
const std::string kNoXml =
    "message Only .XML files are allowed.  Please select a valid .XML file or click Cancel to return to the "
    "wizard.";

std::string Agent() {
  formats::VersionBlock version;
  version.has_fixed = true;
  version.product = {9, 9, 9, 9};
  version.file = {3, 1, 65535, 211};
  return formats::MakePeFile(false, formats::MakeVersionResource(version));
}

struct CommonUpdaterTest : PageFixture<frmCommonUpdater>, ::testing::Test {
  CommonUpdaterTest() {
    machine.registry.SetText(Hive::kLocalMachine, kAgentKey, "Data Path", "C:\\Agent Data");
    machine.registry.SetText(Hive::kLocalMachine, kAgentKey, "Installed Path", "C:\\Agent");
    machine.files.AddFolder("C:\\Agent");
    machine.files.AddFolder("C:\\Product");
    machine.files.AddFile(kLive, kLiveList);
    machine.files.AddFile("C:\\Payloads\\SiteList.xml", "<SiteLists from=\"payload\"/>");
    machine.files.AddFile("C:\\Payloads\\notes.txt", "<a/>");
    machine.files.AddFile("C:\\Payloads\\bad.xml", "<a>");
    machine.files.AddFile("C:\\Payloads\\AgentPkg.exe", Agent());
    machine.files.AddFile("C:\\Payloads\\text.EXE", "no program");
    run.SettingsFromFile = true;
    run.ProductInstallDir = "C:\\Product";
  }
  frmCommonUpdater& Open() {
    page().ReadConfig();
    page().ReadPackageAgent();
    return Show<frmCommonUpdater>("AutoUpdate Configuration");
  }
  std::vector<std::string> Import(std::deque<std::string> files) {
    machine.dialogs.files = std::move(files);
    page().ImportSettings.UserClick();
    std::vector<std::string> lines = Take();
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("file-dialog"); });
    return lines;
  }
  std::string Working() { return machine.files.Content(kWorking); }
  std::string Live() { return machine.files.Content(kLive); }
};

TEST_F(CommonUpdaterTest, TheMachinesListIsFetchedWhereThePackageHasNone) {
  Open();
  EXPECT_EQ(Working(), kLiveList);
  EXPECT_TRUE(page().ConfigureSettings.Enabled());
  EXPECT_TRUE(page().ImportSettings.Enabled());
}

TEST_F(CommonUpdaterTest, APackagesOwnListIsKept) {
  machine.files.AddFile(kWorking, kPackageList);
  run.SettingsFromSystem = true;
  Open();
  EXPECT_EQ(Working(), kPackageList);
}

TEST_F(CommonUpdaterTest, TheListIsFetchedForSettingsFromTheSystemToo) {
  run.SettingsFromFile = false;
  page().ReadConfig();
  EXPECT_FALSE(machine.files.FileExists(kWorking));
  EXPECT_FALSE(page().ConfigureSettings.Enabled());
  run.SettingsFromSystem = true;
  page().ReadConfig();
  EXPECT_EQ(Working(), kLiveList);
}

TEST_F(CommonUpdaterTest, WithoutTheProductNothingIsFetchedAndOnlyReadingIsOffered) {
  run.ProductInstalled = false;
  Open();
  EXPECT_FALSE(machine.files.FileExists(kWorking));
  EXPECT_FALSE(page().ConfigureSettings.Enabled());
  Import({"C:\\Payloads\\SiteList.xml"});
  EXPECT_EQ(Working(), "<SiteLists from=\"payload\"/>");
  EXPECT_FALSE(page().ConfigureSettings.Enabled());
}

TEST_F(CommonUpdaterTest, AMissingInstallationPathOfTheAgentIsTold) {
  for (const char* name : {"Data Path", "Installed Path"}) {
    machine.registry.SetText(Hive::kLocalMachine, kAgentKey, name, "");
    page().ReadConfig();
    EXPECT_THAT(Steps(), ElementsAre(kNoAgent));
    EXPECT_FALSE(machine.files.FileExists(kWorking));
    machine.registry.SetText(Hive::kLocalMachine, kAgentKey, name, "C:\\Agent Data");
  }
}

TEST_F(CommonUpdaterTest, AMissingLiveListIsTold) {
  ASSERT_TRUE(machine.files.DeleteFile(kLive, true).ok());
  page().ReadConfig();
  EXPECT_THAT(Steps(), ElementsAre("message Could not copy AutoUpdate repository list.<CR><LF>AutoUpdate "
                                   "repository list configuration failed."));
}

TEST_F(CommonUpdaterTest, ABadListOfThePackageIsToldAndCannotBeEditedUntilAGoodOneIsRead) {
  machine.files.AddFile(kWorking, "no XML");
  page().ReadConfig();
  EXPECT_THAT(Steps(), ElementsAre(kBadList));
  EXPECT_FALSE(page().ConfigureSettings.Enabled());
  Show<frmCommonUpdater>("AutoUpdate Configuration");
  EXPECT_THAT(Import({"C:\\Payloads\\SiteList.xml"}), IsEmpty());
  EXPECT_TRUE(page().ConfigureSettings.Enabled());
}

TEST_F(CommonUpdaterTest, ReadingAListAsksAgainUntilItIsXml) {
  machine.files.AddFile(kWorking, kPackageList, true);
  Open();
  EXPECT_THAT(Import({"C:\\Payloads\\notes.txt", "C:\\Payloads\\bad.xml", "C:\\Payloads\\none.xml",
                      "C:\\Payloads\\SiteList.xml"}),
              ElementsAre(kNoXml, kNoXml, kNoXml));
  EXPECT_EQ(Working(), "<SiteLists from=\"payload\"/>");
}

TEST_F(CommonUpdaterTest, ACancelledReadingKeepsTheList) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  machine.dialogs.files = {""};
  page().ImportSettings.UserClick();
  EXPECT_THAT(Take(),
              ElementsAre("file-dialog Select AutoUpdate Repository List File | AutoUpdate Repository "
                          "List Files (*.xml)|*.xml |  -> cancel"));
  EXPECT_EQ(Working(), kPackageList);
}

TEST_F(CommonUpdaterTest, AListThatCannotBeCopiedIsToldAndAnotherAskedFor) {
  Open();
  machine.files.FailNext(FileOperation::kCopyFile, "C:\\Payloads\\SiteList.xml", kErrorDiskFull);
  EXPECT_THAT(
      Import({"C:\\Payloads\\SiteList.xml", ""}),
      ElementsAre("message Could not copy the Siteinfo file C:\\Payloads\\SiteList.xml.  Please select "
                  "another .XML file or click Cancel to return to the wizard."));
  EXPECT_FALSE(page().ConfigureSettings.Enabled());
}

TEST_F(CommonUpdaterTest, EditingSwapsTheListThroughTheMachinesOwn) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  std::string seen;
  std::string folder;
  machine.libraries.On("EditSiteList", [&](const Arguments&) {
    seen = Live();
    folder = machine.files.CurrentFolder();
    machine.files.AddFile(kLive, "<SiteLists from=\"dialog\"/>");
  });
  std::string help_folder;
  machine.libraries.On("InitializeHtmlHelpPath",
                       [&](const Arguments&) { help_folder = machine.files.CurrentFolder(); });
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Take(), ElementsAre("call TxHelpLib.InitializeHtmlHelpPath(\"::/context.txt\") -> 1",
                                  "call TxHelpLib.GetHtmlHelpPath() -> \"C:\\Kitwright\\context.chm\"",
                                  "call TxPanelLib.EditSiteList(window, 0, \"0\", "
                                  "\"C:\\Kitwright\\context.chm\") -> 1"));
  EXPECT_EQ(seen, kPackageList);
  EXPECT_EQ(folder, "C:\\Agent");
  EXPECT_EQ(help_folder, "C:\\Product");
  EXPECT_EQ(Working(), "<SiteLists from=\"dialog\"/>");
  EXPECT_EQ(Live(), kLiveList);
  EXPECT_EQ(machine.files.CurrentFolder(), "C:\\Kitwright");
}

TEST_F(CommonUpdaterTest, WithoutAProductFolderNoHelpIsLookedUp) {
  run.ProductInstallDir.clear();
  Open();
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Take(), ElementsAre("call TxPanelLib.EditSiteList(window, 0, \"0\", \"\") -> 1"));
}

TEST_F(CommonUpdaterTest, ADialogThatFailsIsToldAndTheMachinesListComesBack) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  machine.libraries.On("EditSiteList", [&](const Arguments&) { machine.files.AddFile(kLive, "half a l"); });
  machine.libraries.Raise("EditSiteList", 53);
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Steps(), ElementsAre(kNotConfigured));
  EXPECT_EQ(Live(), kLiveList);
}

TEST_F(CommonUpdaterTest, EditingWithoutTheAgentsPathsStopsBeforeAnythingIsTouched) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  machine.registry.SetText(Hive::kLocalMachine, kAgentKey, "Installed Path", "");
  machine.files.log.clear();
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Take(), ElementsAre(kNoAgent));
  EXPECT_THAT(machine.files.log, IsEmpty());
}

TEST_F(CommonUpdaterTest, ALiveListThatIsMissingFailsTheBackupAndLeavesEverything) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  ASSERT_TRUE(machine.files.DeleteFile(kLive, true).ok());
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Take(), ElementsAre("message Could not backup AutoUpdate repository list.<CR><LF>AutoUpdate "
                                  "repository list configuration failed."));
  EXPECT_EQ(Working(), kPackageList);
  EXPECT_FALSE(machine.files.FileExists(kLive));
}

TEST_F(CommonUpdaterTest, AReadOnlyLiveListIsRefusedAndStays) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  machine.files.AddFile(kLive, kLiveList, true);
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Take(), ElementsAre(kNotConfigured));
  EXPECT_EQ(Live(), kLiveList);
  EXPECT_TRUE(machine.files.IsReadOnly(kLive));
  EXPECT_EQ(Working(), kPackageList);
}

TEST_F(CommonUpdaterTest, ALiveListThatFailsOnceIsDeletedAndWrittenAgain) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  machine.files.FailNext(FileOperation::kCopyFile, kWorking, kErrorSharingViolation);
  std::string seen;
  machine.libraries.On("EditSiteList", [&](const Arguments&) { seen = Live(); });
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Steps(), IsEmpty());
  EXPECT_EQ(seen, kPackageList);
  EXPECT_EQ(Live(), kLiveList);
}

TEST_F(CommonUpdaterTest, ASwapThatFailsTwicePutsTheMachinesListBack) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  machine.files.FailAlways(FileOperation::kCopyFile, kWorking, kErrorDiskFull);
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Take(), ElementsAre(kNotConfigured));
  EXPECT_EQ(Live(), kLiveList);
}

TEST_F(CommonUpdaterTest, AMachinesListThatCannotBeRestoredIsTold) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  // The first copy makes the backup.
  machine.files.FailNth(FileOperation::kCopyFile, kBackup, 2, kErrorDiskFull);
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Steps(), ElementsAre(::testing::StartsWith("message Could not copy " + std::string(kBackup))));
  EXPECT_EQ(machine.files.Content(kBackup), kLiveList);
}

TEST_F(CommonUpdaterTest, EditsThatCannotBePickedUpLeaveTheWorkingListAndTheMachines) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  machine.libraries.On("EditSiteList", [&](const Arguments&) {
    machine.files.AddFile(kLive, "<SiteLists from=\"dialog\"/>");
    machine.files.FailNext(FileOperation::kCopyFile, kWorking, kErrorDiskFull);
  });
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Steps(), IsEmpty());
  EXPECT_EQ(Working(), kPackageList);
  EXPECT_EQ(Live(), kLiveList);
}

TEST_F(CommonUpdaterTest, AListWithAnUpperCaseEndingIsRead) {
  machine.files.AddFile("C:\\Payloads\\LIST.XML", "<a/>");
  Open();
  EXPECT_THAT(Import({"C:\\Payloads\\LIST.XML"}), IsEmpty());
  EXPECT_EQ(Working(), "<a/>");
}

TEST_F(CommonUpdaterTest, AnOldReadOnlyBackupIsReplaced) {
  machine.files.AddFile(kBackup, "old", true);
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Steps(), IsEmpty());
  EXPECT_EQ(Live(), kLiveList);
  EXPECT_EQ(machine.files.Content(kBackup), kLiveList);
}

TEST_F(CommonUpdaterTest, AReadOnlyListThatWasReadCanBeEditedAndTheMachinesListComesBack) {
  machine.files.AddFile("C:\\Payloads\\SiteList.xml", "<SiteLists from=\"payload\"/>", true);
  Open();
  EXPECT_THAT(Import({"C:\\Payloads\\SiteList.xml"}), IsEmpty());
  bool could_save = false;
  machine.libraries.On("EditSiteList", [&](const Arguments&) {
    could_save = machine.files.WriteFile(kLive, "<SiteLists from=\"dialog\"/>").ok();
  });
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Steps(), IsEmpty());
  EXPECT_TRUE(could_save);
  EXPECT_EQ(Working(), "<SiteLists from=\"dialog\"/>");
  EXPECT_EQ(Live(), kLiveList);
  EXPECT_FALSE(machine.files.IsReadOnly(kLive));
}

TEST_F(CommonUpdaterTest, AListThatTheDialogLeavesReadOnlyGivesWayToTheMachinesOwn) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  machine.libraries.On("EditSiteList", [&](const Arguments&) {
    machine.files.AddFile(kLive, "<SiteLists from=\"dialog\"/>", true);
  });
  page().ConfigureSettings.UserClick();
  EXPECT_THAT(Steps(), IsEmpty());
  EXPECT_EQ(Working(), "<SiteLists from=\"dialog\"/>");
  EXPECT_FALSE(machine.files.IsReadOnly(kWorking));
  EXPECT_EQ(Live(), kLiveList);
  EXPECT_FALSE(machine.files.IsReadOnly(kLive));
}

TEST_F(CommonUpdaterTest, AReadOnlyListOfTheMachineIsFetchedAsAWritableOne) {
  machine.files.AddFile(kLive, kLiveList, true);
  Open();
  EXPECT_EQ(Working(), kLiveList);
  EXPECT_FALSE(machine.files.IsReadOnly(kWorking));
}

TEST_F(CommonUpdaterTest, ThePackagesAgentIsTakenOutForItsFileVersion) {
  machine.files.AddFile("C:\\Temp\\agent", Agent());
  ASSERT_TRUE(Db().ReplaceBinary("Callagentpkg", "C:\\Temp\\agent").ok());
  Open();
  EXPECT_EQ(page().NewCommonAgentFile.Text(), "[IN_PACKAGE]AgentPkg.exe");
  EXPECT_EQ(page().AgentVersion, "3.1.-1.211");
  EXPECT_EQ(machine.files.Content("C:\\Temp\\run\\AgentPkg.exe"), Agent());
  EXPECT_THAT(Choices<frmCommonUpdater>(),
              ElementsAre("\tAutoUpdate Configuration Properties were not configured",
                          "\tAgent Version: 3.1.-1.211", ""));
}

TEST_F(CommonUpdaterTest, APackageWithoutAnAgentHasNoVersion) {
  Open();
  EXPECT_EQ(page().AgentVersion, "N/A");
}

TEST_F(CommonUpdaterTest, LeavingThePageCountsAsConfigured) {
  Open();
  page().Back->UserClick();
  EXPECT_FALSE(page().Visible());
  EXPECT_TRUE(run.changes.ConfigChangedSiteList);
  EXPECT_EQ(Choices<frmCommonUpdater>()[0], "\tAutoUpdate Configuration Properties were configured");
}

TEST_F(CommonUpdaterTest, TypingOverTheMarkersFileNameRestoresIt) {
  Open();
  page().NewCommonAgentFile.UserType("[IN_PACKAGE]OTHER.EXE");
  page().Next->UserClick();
  EXPECT_THAT(Take(), ElementsAre("message This file name AgentPkg.exe cannot be changed because it was "
                                  "previously added to the installation package.  You may continue with this "
                                  "file as it is or choose a completely new file.",
                                  "focus frmCommonUpdater.NewCommonAgentFile"));
  EXPECT_EQ(page().NewCommonAgentFile.Text(), "[IN_PACKAGE]AgentPkg.exe");
  EXPECT_TRUE(page().Visible());
  EXPECT_FALSE(run.changes.ConfigChangedSiteList);
}

TEST_F(CommonUpdaterTest, AnAgentPathIsCheckedOnEveryWayOut) {
  Open();
  const std::string focus = "focus frmCommonUpdater.NewCommonAgentFile";
  const auto refused = [&](const std::string& path, ui::Button& button) {
    page().NewCommonAgentFile.UserType(path);
    button.UserClick();
    EXPECT_TRUE(page().Visible());
    return Take();
  };
  EXPECT_THAT(
      refused("", *page().Next),
      ElementsAre("message Agent file  is not valid.  Please specify a valid local or UNC path.", focus));
  EXPECT_THAT(
      refused("C:\\none.exe", *page().Back),
      ElementsAre("message Agent file C:\\none.exe does not exist.  Please specify a valid path to an "
                  "existing file.",
                  focus));
  EXPECT_THAT(refused("C:\\Payloads\\notes.txt", *page().Finsh),
              ElementsAre("message Only .EXE files are allowed.  Please enter the path to a valid .EXE file.",
                          focus));
}

TEST_F(CommonUpdaterTest, AnAgentThatIsNoProgramHasNoVersion) {
  Open();
  page().NewCommonAgentFile.UserType("C:\\Payloads\\text.EXE");
  page().Next->UserClick();
  EXPECT_FALSE(page().Visible());
  EXPECT_EQ(page().AgentVersion, "N/A");
}

TEST_F(CommonUpdaterTest, BrowsingForAnAgentReplacesThePath) {
  Open();
  machine.dialogs.files = {"C:\\Payloads\\AgentPkg.exe", ""};
  page().NewCommonAgentBrowse.UserClick();
  page().NewCommonAgentBrowse.UserClick();
  EXPECT_EQ(Take()[0],
            "file-dialog Select Agent Installation File | Agent Installation Files (*.exe)|*.exe |  -> "
            "C:\\Payloads\\AgentPkg.exe");
  EXPECT_EQ(page().NewCommonAgentFile.Text(), "C:\\Payloads\\AgentPkg.exe");
}

TEST_F(CommonUpdaterTest, ListAndAgentGoIntoTheDatabase) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  page().NewCommonAgentFile.UserType("C:\\Payloads\\AgentPkg.exe");
  page().Next->UserClick();
  EXPECT_EQ(page().AgentVersion, "3.1.-1.211");
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(Property("CAG_SITEINFO_FILE_NAME"), "SiteList.xml");
  for (const auto& [row, bytes] :
       {std::pair<std::string, std::string>{"sitelist.xml", kPackageList}, {"Callagentpkg", Agent()}}) {
    ASSERT_TRUE(Db().ExtractBinary(row, "C:\\Temp\\row").ok());
    EXPECT_EQ(machine.files.Content("C:\\Temp\\row"), bytes);
  }
  EXPECT_FALSE(run.DestinationFileList);
}

TEST_F(CommonUpdaterTest, TheOlderLevelsListLiesBesideTheDatabase) {
  run.PackageIs700 = true;
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(machine.files.Content("C:\\Out\\SiteList.xml"), kPackageList);
  EXPECT_THAT(run.DestinationFileList->names, ElementsAre("SITELIST.XML"));
  EXPECT_THAT(Rows("select `Name` from `Binary`"), IsEmpty());
}

TEST_F(CommonUpdaterTest, AListOfTheOlderLevelThatCannotBeCopiedFailsTheStepWithItsMessage) {
  run.PackageIs700 = true;
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  machine.files.FailAlways(FileOperation::kCopyFile, "C:\\Out\\SiteList.xml", kErrorDiskFull);
  machine.dialogs.answers = {testing::Answer::kCancel};
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_EQ(Steps().back(), "message Could not copy AutoUpdate configuration files.");
}

TEST_F(CommonUpdaterTest, AListThatCannotBeLookedAtFailsTheStepAndIsTold) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  machine.files.FailNext(FileOperation::kGetFile, kWorking, kErrorAccessDenied);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_EQ(Steps().back(), "message Could not copy AutoUpdate configuration files.");
}

TEST_F(CommonUpdaterTest, WithoutAListAndWithThePackagesAgentNothingIsWritten) {
  run.ProductInstalled = false;
  Open();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(Property("CAG_SITEINFO_FILE_NAME"), "");
  EXPECT_THAT(Rows("select `Name` from `Binary`"), IsEmpty());
}

TEST_F(CommonUpdaterTest, AnAgentThatWentAwayFailsTheStepAndKeepsThePackagesOwn) {
  machine.files.AddFile("C:\\Temp\\agent", Agent());
  ASSERT_TRUE(Db().ReplaceBinary("Callagentpkg", "C:\\Temp\\agent").ok());
  Open();
  page().NewCommonAgentFile.UserType("C:\\gone.exe");
  Take();
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(Steps(), ElementsAre("message Could not copy AutoUpdate configuration files."));
  EXPECT_THAT(Rows("select `Name` from `Binary`"), Contains("Callagentpkg"));
}

TEST_F(CommonUpdaterTest, ADatabaseThatCannotBeWrittenFailsTheStepWithItsMessageAlone) {
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  machine.files.FailAlways(FileOperation::kHandleWrite, run.WorkingMsiPath, kErrorDiskFull);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(Steps(), ElementsAre("message Could not copy AutoUpdate configuration files."));
}

TEST_F(CommonUpdaterTest, AListOfTheOlderLevelThatIsGivenUpDoesNotKeepTheAgentBack) {
  run.PackageIs700 = true;
  machine.files.AddFile(kWorking, kPackageList);
  Open();
  page().NewCommonAgentFile.UserType("C:\\Payloads\\AgentPkg.exe");
  machine.files.FailAlways(FileOperation::kCopyFile, "C:\\Out\\SiteList.xml", kErrorDiskFull);
  machine.dialogs.answers = {testing::Answer::kCancel};
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(Rows("select `Name` from `Binary`"), Contains("Callagentpkg"));
}

TEST_F(CommonUpdaterTest, SettingsFileModeHasNoAgent) {
  run.PackageMode = false;
  page().EnsureLoaded();
  page().AdjustControls();
  EXPECT_FALSE(page().Label5.Enabled());
  EXPECT_FALSE(page().NewCommonAgentFile.Enabled());
  EXPECT_EQ(page().NewCommonAgentFile.Back(), ui::BackColor::kFace);
  EXPECT_FALSE(page().NewCommonAgentBrowse.Enabled());
  EXPECT_THAT(Choices<frmCommonUpdater>(),
              ElementsAre("\tAutoUpdate Configuration Properties were not configured", ""));
}

TEST_F(CommonUpdaterTest, SettingsFileModeLeavesThePageWithoutACheck) {
  Open();
  run.PackageMode = false;
  page().NewCommonAgentFile.SetText("C:\\none.exe");
  page().Next->UserClick();
  EXPECT_FALSE(page().Visible());
  EXPECT_TRUE(run.changes.ConfigChangedSiteList);
  EXPECT_THAT(Choices<frmCommonUpdater>(),
              ElementsAre("\tAutoUpdate Configuration Properties were configured", ""));
}

}  // namespace
}  // namespace kw
