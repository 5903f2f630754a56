#include "payloads/frm_beaconry_server.h"

#include <set>

#include "pages/open_package_test_support.h"

namespace kw {
namespace {

using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FileOperation;
using ::testing::IsEmpty;
using testing::PackageWriter;
using testing::PageFixture;

constexpr const char* kCode = "{71014215-9627-11D4-B865-00508B022A51}";
constexpr const char* kCarried = "C:\\Source\\BCN\\BCN470.msi";
constexpr const char* kGiven = "C:\\Beaconry\\BCN470.msi";

TEST(EncodePassword, EachCharacterIsEncodedAndTheSameKeyDecodes) {
  const std::string stored = EncodePassword("Secret123", 1252);
  EXPECT_EQ(stored.size(), 9u);
  EXPECT_NE(stored, "Secret123");
  EXPECT_EQ(EncodePassword(stored, 1252), "Secret123");
}

TEST(EncodePassword, PositionsHaveKeysOfTheirOwn) {
  const std::string stored = EncodePassword(std::string(15, '@'), 1252);
  EXPECT_EQ(std::set<char>(stored.begin(), stored.end()).size(), 15u);
}

TEST(EncodePassword, NoPrintableCharacterIsCutOff) {
  for (char c = ' '; c < 127; ++c) {
    const std::string clear(15, c);
    EXPECT_EQ(EncodePassword(clear, 1252).find('\0'), std::string::npos);
    EXPECT_EQ(EncodePassword(EncodePassword(clear, 1252), 1252), clear);
  }
}

TEST(EncodePassword, SixteenCharactersEndWithNothing) {
  EXPECT_FALSE(EncodePassword("123456789012345", 1252).empty());
  EXPECT_EQ(EncodePassword("1234567890123456", 1252), "");
  EXPECT_EQ(EncodePassword("12345678901234567", 1252), "");
  EXPECT_EQ(EncodePassword("", 1252), "");
}

TEST(EncodePassword, CharactersBeyondAsciiGoByTheirEightBitCodes) {
  const std::string clear = "gr\xC3\xBC\xC3\x9F";
  const std::string stored = EncodePassword(clear, 1252);
  EXPECT_EQ(EncodePassword(stored, 1252), clear);
}

struct BeaconryServerTest : PageFixture<frmBeaconryServer>, ::testing::Test {
  BeaconryServerTest() {
    WriteNested("C:\\Beaconry");
    for (const char* name : {"BCN470.OVP", "Readme.txt", "PkgCatalog.z", "pkgcatalog.zip", "BCN"})
      machine.files.AddFile(std::string("C:\\Beaconry\\") + name, name);
    machine.files.AddFile("C:\\Beaconry\\Sub\\inner.txt", "inner");
  }
  /// A nested package with files, one of them named as in the tests of opening.
  void WriteNested(const std::string& folder, std::map<std::string, std::string> properties = {}) {
    PackageWriter writer(machine);
    writer.properties = {{"UpgradeCode", kCode}, {"txlocaleid", "0407"}};
    for (const auto& [name, value] : properties) writer.properties[name] = value;
    writer.WriteDatabase(folder + "\\BCN470.msi");
  }
  /// The source holds a nested package in `folder` below it, which its Setup.ini names.
  void CarryNested(std::map<std::string, std::string> properties = {},
                   const std::string& location = "\\BCN") {
    WriteNested("C:\\Source\\BCN", std::move(properties));
    WriteStartup("Product=K\r\nszBeaconryLocation=" + location + "\r\n");
  }
  /// Opens the page and chooses the package at "C:\Beaconry".
  void Choose() {
    Open();
    page().InstallBeaconry.UserClick();
    page().SourceDir.UserType("C:\\Beaconry");
    Take();
  }
  InstallerDb Nested() { return InstallerDb::Beaconry(machine.services, run); }
  std::string NestedProperty(const std::string& name) {
    return Nested().GetProperty(name).value_or("(failed)");
  }
  /// A property of the nested package as it lies in the destination.
  std::string SavedProperty(const std::string& name) {
    run.BeaconryDatabase =
        *run.InstallerSecond->OpenDatabase("C:\\Out\\BCN\\BCN470.msi", platform::OpenMode::kReadOnly);
    return NestedProperty(name);
  }
  std::vector<std::string> Enabled() {
    std::vector<std::string> names;
    for (const ui::Control* control :
         {static_cast<ui::Control*>(&page().ServersAndWorkstations),
          static_cast<ui::Control*>(&page().ServersOnly),
          static_cast<ui::Control*>(&page().EnterSourceDirectory),
          static_cast<ui::Control*>(&page().SourceDir), static_cast<ui::Control*>(&page().SourceBrowse),
          static_cast<ui::Control*>(&page().UseDefaultDirectory),
          static_cast<ui::Control*>(&page().SpecifyCustomDirectory),
          static_cast<ui::Control*>(&page().InstallDirectory),
          static_cast<ui::Control*>(&page().InstallBrowse),
          static_cast<ui::Control*>(&page().BeaconryServiceAccount),
          static_cast<ui::Control*>(&page().UseSystemAccountForBeaconry),
          static_cast<ui::Control*>(&page().UserName), static_cast<ui::Control*>(&page().BeaconryUserName),
          static_cast<ui::Control*>(&page().Password), static_cast<ui::Control*>(&page().BeaconryPassword),
          static_cast<ui::Control*>(&page().AccountRightsDescription)}) {
      if (control->Enabled()) names.push_back(control->Name());
    }
    return names;
  }
};

TEST_F(BeaconryServerTest, APackageWithoutTheServerLeavesThePageOff) {
  Open();
  EXPECT_FALSE(page().InstallBeaconry.Checked());
  EXPECT_TRUE(page().InstallBeaconry.Enabled());
  EXPECT_THAT(Enabled(), IsEmpty());
  EXPECT_THAT(Choices<frmBeaconryServer>(),
              ElementsAre("\tBeaconry Server has not been configured for installation.", ""));
  EXPECT_TRUE(machine.files.FolderExists("C:\\Temp\\run\\BCData"));
}

TEST_F(BeaconryServerTest, ChoicesOpenTheirControls) {
  Open();
  page().InstallBeaconry.UserClick();
  EXPECT_THAT(Enabled(), ElementsAre("ServersAndWorkstations", "ServersOnly", "EnterSourceDirectory",
                                     "SourceDir", "SourceBrowse", "UseDefaultDirectory",
                                     "SpecifyCustomDirectory", "BeaconryServiceAccount",
                                     "UseSystemAccountForBeaconry", "AccountRightsDescription"));
  page().SpecifyCustomDirectory.UserClick();
  page().UseSystemAccountForBeaconry.UserClick();
  EXPECT_EQ(Enabled().size(), 16u);
  page().UseDefaultDirectory.UserClick();
  EXPECT_FALSE(page().InstallDirectory.Enabled());
  page().InstallBeaconry.UserClick();
  EXPECT_THAT(Enabled(), IsEmpty());
  EXPECT_TRUE(page().BeaconryPassword.masked);
}

TEST_F(BeaconryServerTest, TheServerOfAnOpenedPackageIsShownWithItsChoices) {
  CarryNested({{"INSTALLDIR", "D:\\Alerts"}, {"BEACONRYUSERNAME", "alerts"}, {"BEACONRYPASSWORD", "stored"}});
  Sql("insert into `Property` (`Property`, `Value`) values ('FORCEBCSINSTALL', 'TRUE')");
  Open();
  EXPECT_THAT(
      Choices<frmBeaconryServer>(),
      ElementsAre("\tBeaconry Server has been configured for installation on servers and workstations.",
                  "\tBeaconry Server source folder: C:\\Source\\BCN",
                  "\tCustom installation folder: D:\\Alerts", "\tBeaconry Server service account: alerts",
                  "\tBeaconry Server service account password has been set.", ""));
  EXPECT_EQ(page().BeaconryPassword.Text(), "********");
  EXPECT_FALSE(page().UseSystemAccountForBeaconry.Checked());
  EXPECT_EQ(Enabled().size(), 16u);
  EXPECT_EQ(run.BeaconryLocale, "0407");
}

TEST_F(BeaconryServerTest, AServerWithoutAnAccountUsesTheSystemsAndTheDefaultFolder) {
  CarryNested({}, "BCN");
  Open();
  EXPECT_THAT(
      Choices<frmBeaconryServer>(),
      ElementsAre("\tBeaconry Server has been configured for installation on servers only.",
                  "\tBeaconry Server source folder: C:\\Source\\BCN", "\tUse default installation folder.",
                  "\tBeaconry Server service account: system account", ""));
  EXPECT_EQ(page().BeaconryPassword.Text(), "");
}

TEST_F(BeaconryServerTest, AnExtractedSourceShowsTheBareMarker) {
  CarryNested();
  run.SourceWasExtracted = true;
  Open();
  EXPECT_EQ(page().SourceDir.Text(), "[IN_PACKAGE]");
  machine.dialogs.folders = {"C:\\Elsewhere"};
  page().SourceBrowse.UserClick();
  EXPECT_THAT(Take(), IsEmpty());
  Next();
  EXPECT_FALSE(page().Visible());
  EXPECT_EQ(run.BeaconrySourceFolder, "C:\\Source\\BCN");
}

TEST_F(BeaconryServerTest, AServerThatIsSuppressedOrNotNamedIsNoneOfThePackage) {
  CarryNested();
  Sql("insert into `Property` (`Property`, `Value`) values ('SUPPRESSBCSINSTALL', 'TRUE')");
  Open();
  EXPECT_FALSE(page().InstallBeaconry.Checked());
  Sql("delete from `Property` where `Property` = 'SUPPRESSBCSINSTALL'");
  CarryNested({}, "");
  page().ReadConfig();
  EXPECT_FALSE(page().InstallBeaconry.Checked());
  EXPECT_THAT(Steps(), IsEmpty());
}

TEST_F(BeaconryServerTest, ANamedServerThatIsMissingStopsWithoutAWord) {
  WriteStartup("szBeaconryLocation=\\BCN\r\n");
  page().ReadConfig();
  EXPECT_THAT(Steps(), IsEmpty());
  EXPECT_FALSE(page().InstallBeaconry.Checked());
  EXPECT_THAT(Enabled(), IsEmpty());
}

TEST_F(BeaconryServerTest, ADamagedServerOfAnOpenedPackageIsTold) {
  CarryNested();
  machine.files.AddFile("C:\\Source\\BCN\\BCN470.msi", "no database");
  page().ReadConfig();
  EXPECT_THAT(Steps(), ElementsAre("message The Beaconry Server installation file " + std::string(kCarried) +
                                   " could not be opened.  You may configure Beaconry Server installation "
                                   "options on the Beaconry Installation page."));
  EXPECT_FALSE(page().InstallBeaconry.Checked());
}

TEST_F(BeaconryServerTest, AnotherProductInTheServersPlaceIsTold) {
  for (const char* code : {"{71014215-9627-11D4-B865-00508B022A52}", ""}) {
    CarryNested({{"UpgradeCode", code}});
    page().ReadConfig();
    EXPECT_THAT(
        Steps(),
        ElementsAre("message " + std::string(kCarried) +
                    " does not appear to be a valid Beaconry Server installation file.  You may "
                    "configure Beaconry Server installation options on the Beaconry Installation page."));
    EXPECT_FALSE(run.BeaconryDatabase);
    EXPECT_FALSE(page().InstallBeaconry.Checked());
  }
}

TEST_F(BeaconryServerTest, APackageWithoutFilesInTheServersPlaceIsTold) {
  for (const char* missing : {"File", "Property"}) {
    CarryNested();
    {
      const auto nested =
          *run.InstallerSecond->OpenDatabase("C:\\Source\\BCN\\BCN470.msi", platform::OpenMode::kDirect);
      const auto view = std::move(*nested->OpenView(std::string("drop table `") + missing + "`"));
      ASSERT_TRUE(view->Execute(nullptr).ok());
    }
    page().ReadConfig();
    EXPECT_THAT(
        Steps(),
        ElementsAre("message " + std::string(kCarried) +
                    " does not appear to be a valid Beaconry Server installation file.  You may "
                    "configure Beaconry Server installation options on the Beaconry Installation page."));
    EXPECT_FALSE(run.BeaconryDatabase);
  }
}

TEST_F(BeaconryServerTest, TheNestedPackagesFileNamesBecomeLowerCaseInTheCopyAlone) {
  const std::string source = machine.files.Content("C:\\Beaconry\\BCN470.msi");
  Choose();
  Next();
  const auto records = Nested().QueryAll("select `FileName` from `File` order by `Sequence`", {});
  ASSERT_TRUE(records.ok());
  ASSERT_EQ(records->size(), 2u);
  EXPECT_EQ((*records)[0]->StringData(1), "main.exe");
  EXPECT_EQ((*records)[1]->StringData(1), "help~1.chm|help file.chm");
  EXPECT_EQ(machine.files.Content("C:\\Beaconry\\BCN470.msi"), source);
}

TEST_F(BeaconryServerTest, AMissingSourceFolderIsAskedFor) {
  Open();
  page().InstallBeaconry.UserClick();
  Take();
  for (ui::Button* button : {page().Next.get(), page().Back.get(), page().Finsh.get()}) {
    button->UserClick();
    EXPECT_THAT(Take(),
                ElementsAre("message Please enter a folder containing the Beaconry Server installation "
                            "files.",
                            "focus frmBeaconryServer.SourceDir"));
  }
  page().SourceDir.UserType("nowhere");
  EXPECT_THAT(Next(),
              ElementsAre("message Source folder nowhere is not valid.  Please specify a valid local or "
                          "UNC path.",
                          "focus frmBeaconryServer.SourceDir"));
  EXPECT_TRUE(page().Visible());
}

TEST_F(BeaconryServerTest, ACustomFolderIsAskedForAndChecked) {
  Choose();
  page().SpecifyCustomDirectory.UserClick();
  EXPECT_THAT(Next(), ElementsAre("message Please enter a custom installation folder or choose the default.",
                                  "focus frmBeaconryServer.InstallDirectory"));
  page().InstallDirectory.UserType("\\\\server\\share");
  EXPECT_THAT(Next(),
              ElementsAre("message Installation folder \\\\server\\share is not valid.  Please specify a "
                          "valid local path.",
                          "focus frmBeaconryServer.InstallDirectory"));
}

TEST_F(BeaconryServerTest, AServiceAccountNeedsAName) {
  Choose();
  page().UseSystemAccountForBeaconry.UserClick();
  EXPECT_THAT(Next(),
              ElementsAre("message Please enter a user name for the Beaconry service account or choose to "
                          "use the system account.",
                          "focus frmBeaconryServer.BeaconryUserName"));
}

TEST_F(BeaconryServerTest, AFolderWithoutTheNestedPackageIsRefused) {
  Choose();
  page().SourceDir.UserType("C:\\Kitwright\\");
  EXPECT_THAT(Next(),
              ElementsAre("message Could not copy the Beaconry file C:\\Kitwright\\BCN470.msi.  Please "
                          "check the provided source folder and verify the file exists.",
                          "focus frmBeaconryServer.SourceDir"));
}

TEST_F(BeaconryServerTest, ADamagedNestedPackageIsRefused) {
  Choose();
  machine.files.AddFile("C:\\Beaconry\\BCN470.msi", "no database", true);
  EXPECT_THAT(Next(), ElementsAre("message The Beaconry Server installation file " + std::string(kGiven) +
                                      " could not be opened.  Please verify that you have provided a valid "
                                      "installation file.",
                                  "focus frmBeaconryServer.SourceDir"));
  EXPECT_FALSE(run.BeaconryDatabase);
}

TEST_F(BeaconryServerTest, AnotherProductsPackageIsRefused) {
  Choose();
  WriteNested("C:\\Beaconry", {{"UpgradeCode", "{00000000-9627-11D4-B865-00508B022A51}"}});
  page().Back->UserClick();
  EXPECT_THAT(Steps(), ElementsAre("message " + std::string(kGiven) +
                                       " does not appear to be a valid Beaconry Server installation file.  "
                                       "Please verify that you have provided a valid installation file.",
                                   "focus frmBeaconryServer.SourceDir"));
  EXPECT_FALSE(run.BeaconryDatabase);
  EXPECT_TRUE(page().Visible());
}

TEST_F(BeaconryServerTest, EachLeavingStartsFromAFreshCopy) {
  Choose();
  Next();
  ASSERT_TRUE(Nested().SetProperty("INSTALLDIR", "spoilt").ok());
  Show<frmBeaconryServer>("Beaconry Installation").Back->UserClick();
  EXPECT_FALSE(page().Visible());
  EXPECT_EQ(NestedProperty("INSTALLDIR"), "");
}

TEST_F(BeaconryServerTest, BothFolderButtonsReplaceTheirPath) {
  Choose();
  page().SpecifyCustomDirectory.UserClick();
  machine.dialogs.folders = {"C:\\Elsewhere", "D:\\Alerts", ""};
  page().SourceBrowse.UserClick();
  page().InstallBrowse.UserClick();
  page().InstallBrowse.UserClick();
  EXPECT_THAT(Steps(), ElementsAre("folder-dialog Select Source Folder | C:\\Beaconry -> C:\\Elsewhere",
                                   "folder-dialog Select Installation Folder | C:\\Kitwright -> D:\\Alerts",
                                   "folder-dialog Select Installation Folder | D:\\Alerts -> cancel"));
  EXPECT_EQ(page().SourceDir.Text(), "C:\\Elsewhere");
  EXPECT_EQ(page().InstallDirectory.Text(), "D:\\Alerts");
}

TEST_F(BeaconryServerTest, SavingWritesBothPackagesAndCopiesTheFolderButForItsCatalogue) {
  Choose();
  page().ServersAndWorkstations.UserClick();
  page().SpecifyCustomDirectory.UserClick();
  page().InstallDirectory.UserType("D:\\Alerts");
  page().UseSystemAccountForBeaconry.UserClick();
  page().BeaconryUserName.UserType("alerts");
  page().BeaconryPassword.UserType("Secret123");
  page().SourceDir.UserType("C:\\Beaconry\\");
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(SetupIni(), "[Startup]\r\nProduct=Kestrane\r\nszBeaconryLocation=\\BCN\r\n");
  EXPECT_EQ(Property("SUPPRESSBCSINSTALL"), "");
  EXPECT_EQ(Property("FORCEBCSINSTALL"), "TRUE");
  // "BCN" is skipped too, since a copied file's name begins so; what lies in folders stays behind.
  EXPECT_THAT(machine.files.Tree("C:\\Out"),
              ElementsAre("BCN\\BCN470.msi", "BCN\\BCN470.OVP", "BCN\\Readme.txt"));
  EXPECT_THAT(run.BeaconryFileList->names, ElementsAre("BCN470.MSI", "BCN470.OVP", "README.TXT"));
  EXPECT_FALSE(run.DestinationFileList);
  run.BeaconryDatabase.reset();
  EXPECT_EQ(SavedProperty("INSTALLDIR"), "D:\\Alerts");
  EXPECT_EQ(NestedProperty("BEACONRYUSERNAME"), "alerts");
  EXPECT_EQ(NestedProperty("BEACONRYPASSWORD"), EncodePassword("Secret123", 1252));
}

TEST_F(BeaconryServerTest, APackageAtTheRootOfADiskIsCopiedFromThere) {
  WriteNested("C:");
  machine.files.AddFile("C:\\root.txt", "beside it");
  ASSERT_EQ(machine.files.CurrentFolder(), "C:\\Kitwright");
  Choose();
  page().SourceDir.UserType("C:\\");
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("BCN\\BCN470.msi", "BCN\\root.txt"));
}

TEST_F(BeaconryServerTest, APackageThatLiesInTheDestinationAlreadyIsNotTheRunsToDelete) {
  WriteNested("C:\\Out\\BCN");
  machine.files.AddFile("C:\\Out\\BCN\\Readme.txt", "readme");
  Choose();
  page().SourceDir.UserType("C:\\Out\\BCN");
  page().UseSystemAccountForBeaconry.UserClick();
  page().BeaconryUserName.UserType("alerts");
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(run.BeaconryFileList->names, ElementsAre("BCN470.MSI", "README.TXT"));
  EXPECT_THAT(run.BeaconryFileList->kept, ElementsAre("BCN470.msi", "Readme.txt"));
  run.BeaconryDatabase.reset();
  EXPECT_EQ(SavedProperty("BEACONRYUSERNAME"), "alerts");
}

TEST_F(BeaconryServerTest, ServersOnlyAndTheDefaultFolderWriteEmptyProperties) {
  CarryNested({{"INSTALLDIR", "D:\\Alerts"}});
  Sql("insert into `Property` (`Property`, `Value`) values ('FORCEBCSINSTALL', 'TRUE')");
  Open();
  page().ServersOnly.UserClick();
  page().UseDefaultDirectory.UserClick();
  page().InstallDirectory.SetText("");
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(Property("FORCEBCSINSTALL"), "");
  run.BeaconryDatabase.reset();
  EXPECT_EQ(SavedProperty("INSTALLDIR"), "");
}

TEST_F(BeaconryServerTest, AnUnvisitedPageKeepsTheStoredPassword) {
  CarryNested({{"BEACONRYUSERNAME", "alerts"}, {"BEACONRYPASSWORD", "stored"}});
  page().ReadConfig();
  ASSERT_TRUE(page().SaveConfig());
  run.BeaconryDatabase.reset();
  EXPECT_EQ(SavedProperty("BEACONRYPASSWORD"), "stored");
  EXPECT_EQ(NestedProperty("BEACONRYUSERNAME"), "alerts");
}

TEST_F(BeaconryServerTest, AMaskLeftInTheBoxIsEncodedAgain) {
  CarryNested({{"BEACONRYUSERNAME", "alerts"}, {"BEACONRYPASSWORD", "stored"}});
  Open();
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(NestedProperty("BEACONRYPASSWORD"), EncodePassword("********", 1252));
}

TEST_F(BeaconryServerTest, AClearedPasswordBoxKeepsTheStoredPassword) {
  CarryNested({{"BEACONRYUSERNAME", "alerts"}, {"BEACONRYPASSWORD", "stored"}});
  Open();
  page().BeaconryPassword.UserType("");
  Next();
  EXPECT_THAT(Choices<frmBeaconryServer>(), Contains("\tBeaconry Server service account password is blank."));
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(NestedProperty("BEACONRYPASSWORD"), "stored");
}

TEST_F(BeaconryServerTest, APasswordOfSixteenCharactersIsStoredAsNone) {
  Choose();
  page().UseSystemAccountForBeaconry.UserClick();
  page().BeaconryUserName.UserType("alerts");
  page().BeaconryPassword.UserType("1234567890123456");
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(NestedProperty("BEACONRYPASSWORD"), "");
}

TEST_F(BeaconryServerTest, AnUncheckedServerIsClearedFromThePackage) {
  CarryNested();
  Open();
  page().InstallBeaconry.UserClick();
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(SetupIni(), "[Startup]\r\nProduct=K\r\n");
  EXPECT_EQ(Property("SUPPRESSBCSINSTALL"), "TRUE");
  EXPECT_EQ(Property("FORCEBCSINSTALL"), "");
  EXPECT_FALSE(run.BeaconryFileList);
  EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
}

TEST_F(BeaconryServerTest, ANestedPackageThatIsNotOpenFailsTheStep) {
  Choose();
  Next();
  run.BeaconryDatabase.reset();
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
}

TEST_F(BeaconryServerTest, ANestedDatabaseThatCannotBeWrittenAtAnyMomentFailsTheStepWithoutAWord) {
  Choose();
  page().UseSystemAccountForBeaconry.UserClick();
  page().BeaconryUserName.UserType("alerts");
  int failed = 0;
  for (int nth = 1; nth < 200; ++nth) {
    SCOPED_TRACE(nth);
    Show<frmBeaconryServer>("Beaconry Installation");
    Next();
    machine.files.FailNth(FileOperation::kHandleWrite, run.BeaconryWorkingMsiPath, nth, kErrorDiskFull);
    if (page().SaveConfig()) break;
    ++failed;
    EXPECT_THAT(Steps(), IsEmpty());
    EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
    EXPECT_FALSE(run.BeaconryFileList);
  }
  EXPECT_GT(failed, 3);
  EXPECT_LT(failed, 199);
  EXPECT_EQ(SavedProperty("BEACONRYUSERNAME"), "alerts");
}

TEST_F(BeaconryServerTest, APackageThatCannotBeWrittenFailsTheStepWithoutAWord) {
  Choose();
  page().ServersAndWorkstations.UserClick();
  Next();
  machine.files.FailNext(FileOperation::kWriteFile, run.WorkingSetupIniPath, kErrorDiskFull);
  EXPECT_FALSE(page().SaveConfig());
  machine.files.FailNext(FileOperation::kHandleWrite, run.WorkingMsiPath, kErrorDiskFull);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(Steps(), IsEmpty());
  EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
}

TEST_F(BeaconryServerTest, AFolderThatCannotBeMadeShowsInTheCopy) {
  Choose();
  Next();
  machine.files.FailAlways(FileOperation::kCreateFolder, "C:\\Out\\BCN", kErrorAccessDenied);
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(Steps(), ElementsAre("question Could not copy file to C:\\Out\\BCN\\BCN470.msi.  Please verify "
                                   "that the file does not already exist, that the folder is writable and "
                                   "that the drive is not full. [Retry|Cancel] default=Retry -> Cancel"));
}

TEST_F(BeaconryServerTest, ANestedPackageThatCannotBeCopiedFailsTheStep) {
  Choose();
  Next();
  machine.files.FailAlways(FileOperation::kCopyFile, "C:\\Out\\BCN\\BCN470.msi", kErrorDiskFull);
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_FALSE(page().SaveConfig());
}

TEST_F(BeaconryServerTest, AnotherFileThatIsGivenUpEndsTheListingAndTheStepStands) {
  Choose();
  Next();
  machine.files.FailAlways(FileOperation::kCopyFile, "C:\\Out\\BCN\\BCN470.OVP", kErrorDiskFull);
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_TRUE(page().SaveConfig());
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("BCN\\BCN470.msi"));
}

TEST_F(BeaconryServerTest, ASourceFolderThatWentAwayCopiesNothing) {
  Choose();
  Next();
  ASSERT_TRUE(machine.files.DeleteFolder("C:\\Beaconry", true).ok());
  EXPECT_TRUE(page().SaveConfig());
  EXPECT_FALSE(run.BeaconryFileList);
}

}  // namespace
}  // namespace kw
