#include "payloads/frm_dats_and_engine.h"

#include "formats/version_block_test_support.h"
#include "pages/open_package_test_support.h"

namespace kw {
namespace {

using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FileOperation;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::PageFixture;
using Arguments = platform::testing::FakeClosedLibraries::Arguments;

constexpr const char* kDatFolder = "C:\\Temp\\run\\DATZipData";
constexpr const char* kEngineFolder = "C:\\Temp\\run\\EngineZipData";
constexpr const char* kKeptFolder = "C:\\Temp\\run\\MSIDATsAndEngine";

std::string EngineFile(bool with_version = true) {
  formats::VersionBlock version;
  version.has_fixed = true;
  version.product = {4, 1, 60, 0};
  version.file = {9, 8, 7, 6};
  return formats::MakePeFile(false, with_version ? formats::MakeVersionResource(version) : "");
}

struct DatsAndEngineTest : PageFixture<frmDATsAndEngine>, ::testing::Test {
  DatsAndEngineTest() {
    for (const char* name : {"dat.zip", "engine.zip"})
      machine.files.AddFile(std::string("C:\\Payloads\\") + name, "archive");
    for (const char* name :
         {"SIGS.DAT", "LABELS.DAT", "REPAIR.DAT", "TXENG32.DLL", "TEXTS.DAT", "ENGINE.DAT", "SIGTERMS.TXT"}) {
      machine.files.AddFile(run.CabDataFolder + "\\" + name, std::string("old ") + name);
      machine.files.AddFile(run.SourceFolder + "\\" + name, std::string("old ") + name);
    }
    for (const char* row :
         {"'DATDATE', '11/07/2001'", "'DATVERSION', '4.0.4155'", "'ENGINEVERSION', '4.1.500'"})
      Sql(std::string("insert into `Property` (`Property`, `Value`) values (") + row + ")");
    machine.libraries.On("TxUnzip", [this](const Arguments& arguments) {
      unpacked.push_back(machine.files.FullPath(arguments[0]) + " at " + machine.files.CurrentFolder());
      const bool dat = arguments[1] == kDatFolder;
      for (const auto& [name, bytes] : dat ? dat_members : engine_members)
        machine.files.AddFile(arguments[1] + "\\" + name, bytes);
    });
  }
  /// A package of level 7.0.0, whose files and versions lie beside the database.
  void UseLevel700() {
    run.PackageIs700 = true;
    WriteStartup(
        "Product=Kestrane\r\n[Dat]\r\nDATDate=11/07/2001\r\n"
        "DATVersion=4.0.4155\r\n[Engine]\r\nEngineVersion=4.1.500\r\n");
  }
  void Choose(const std::string& dat, const std::string& engine) {
    Open();
    page().SeparateZIPs.UserClick();
    if (!dat.empty()) {
      page().SpecifyDATZIP.UserClick();
      page().DATPath.UserType(dat);
    }
    if (!engine.empty()) {
      page().SpecifyEngineZIP.UserClick();
      page().EnginePath.UserType(engine);
    }
    Take();
  }
  bool OnPage() { return page().Visible(); }
  std::vector<std::string> States() {
    std::vector<std::string> lines;
    for (const ui::Control* control :
         {static_cast<ui::Control*>(&page().FromSource), static_cast<ui::Control*>(&page().SeparateZIPs),
          static_cast<ui::Control*>(&page().SpecifyDATZIP), static_cast<ui::Control*>(&page().DATPath),
          static_cast<ui::Control*>(&page().DATPathBrowse),
          static_cast<ui::Control*>(&page().SpecifyEngineZIP), static_cast<ui::Control*>(&page().EnginePath),
          static_cast<ui::Control*>(&page().EnginePathBrowse)}) {
      if (control->Enabled()) lines.push_back(control->Name());
    }
    return lines;
  }
  std::string Cab(const std::string& name) { return machine.files.Content(run.CabDataFolder + "\\" + name); }
  std::string Out(const std::string& name) {
    return machine.files.Content(run.DestinationFolder + "\\" + name);
  }

  std::map<std::string, std::string> dat_members = {
      {"PKGINFO.INI", "[Dat]\r\nVersion=4160\r\nDate=Fri 12/31/2001\r\n"},
      {"SIGS.DAT", "new SIGS.DAT"},
      {"LABELS.DAT", "new LABELS.DAT"},
      {"REPAIR.DAT", "new REPAIR.DAT"}};
  std::map<std::string, std::string> engine_members = {{"TXENG32.DLL", EngineFile()},
                                                       {"TEXTS.DAT", "new TEXTS.DAT"},
                                                       {"ENGINE.DAT", "new ENGINE.DAT"},
                                                       {"SIGTERMS.TXT", "new SIGTERMS.TXT"}};
  std::vector<std::string> unpacked;
};

TEST_F(DatsAndEngineTest, AnOpenedPackageKeepsItsOwnFilesAndTellsTheirVersions) {
  Open();
  EXPECT_TRUE(page().FromSource.Value());
  EXPECT_THAT(States(), ElementsAre("FromSource", "SeparateZIPs"));
  EXPECT_THAT(
      Choices<frmDATsAndEngine>(),
      ElementsAre("\tInclude DATs and engine from the source installation package", "\tDAT Version: 4.0.4155",
                  "\tDAT Date: 11/07/2001", "\tEngine Version: 4.1.500", ""));
  EXPECT_EQ(page().DATFolder, kKeptFolder);
  EXPECT_EQ(page().EngineFolder, kKeptFolder);
  EXPECT_EQ(machine.files.Tree(kKeptFolder).size(), 7u);
}

TEST_F(DatsAndEngineTest, APackageWithoutOneOfTheThreePropertiesLeavesThePageAsItWas) {
  Sql("delete from `Property` where `Property` = 'DATDATE'");
  page().ReadConfig();
  EXPECT_EQ(page().DATVersion, "");
  EXPECT_EQ(page().DATFolder, "");
  EXPECT_THAT(machine.files.Tree(kKeptFolder), IsEmpty());
}

TEST_F(DatsAndEngineTest, AFolderThatCannotBeMadeForThePackagesFilesIsTold) {
  machine.files.FailNext(FileOperation::kCreateFolder, kKeptFolder, kErrorAccessDenied);
  page().ReadConfig();
  EXPECT_THAT(Steps(),
              ElementsAre("message Could not create a temporary folder for extracting DAT .ZIP file."));
}

TEST_F(DatsAndEngineTest, VersionsOfTheOlderLevelComeFromSetupIni) {
  UseLevel700();
  Open();
  EXPECT_EQ(page().DATVersion, "4.0.4155");
  EXPECT_EQ(page().DATDate, "11/07/2001");
  EXPECT_EQ(page().EngineVersion, "4.1.500");
  EXPECT_EQ(page().DATFolder, "C:\\Source");
  machine.files.AddFile(run.WorkingSetupIniPath, "[Startup]\r\n");
  page().ReadConfig();
  EXPECT_THAT(Choices<frmDATsAndEngine>(),
              ElementsAre("\tInclude DATs and engine from the source installation package",
                          "\tDAT Version: unknown", "\tDAT Date: unknown", "\tEngine Version: unknown", ""));
}

TEST_F(DatsAndEngineTest, ChoicesOpenTheirControlsAndTakeTheFocus) {
  Open();
  page().SeparateZIPs.UserClick();
  EXPECT_THAT(States(), ElementsAre("FromSource", "SeparateZIPs", "SpecifyDATZIP", "SpecifyEngineZIP"));
  EXPECT_EQ(page().DATPath.Back(), ui::BackColor::kFace);
  Take();
  page().SpecifyEngineZIP.UserClick();
  EXPECT_THAT(Take(), Contains("focus frmDATsAndEngine.EnginePath"));
  EXPECT_THAT(States(), ElementsAre("FromSource", "SeparateZIPs", "SpecifyDATZIP", "SpecifyEngineZIP",
                                    "EnginePath", "EnginePathBrowse"));
  EXPECT_EQ(page().EnginePath.Back(), ui::BackColor::kWindow);
  page().SpecifyDATZIP.UserClick();
  EXPECT_EQ(Take().back(), "focus frmDATsAndEngine.DATPath");
  page().FromSource.UserClick();
  EXPECT_THAT(Take(), IsEmpty());
  EXPECT_THAT(States(), ElementsAre("FromSource", "SeparateZIPs"));
  page().SeparateZIPs.UserClick();
  EXPECT_EQ(Take().back(), "focus frmDATsAndEngine.DATPath");
}

TEST_F(DatsAndEngineTest, BrowsingReplacesThePathUnlessItIsCancelled) {
  Choose("C:\\a.zip", "C:\\b.zip");
  machine.dialogs.files = {"C:\\Payloads\\dat.zip", ""};
  page().DATPathBrowse.UserClick();
  page().EnginePathBrowse.UserClick();
  EXPECT_THAT(
      Take(),
      ElementsAre("file-dialog Select Archive File | Archive Files (*.zip)|*.zip |  -> C:\\Payloads\\dat.zip",
                  "file-dialog Select Archive File | Archive Files (*.zip)|*.zip |  -> cancel"));
  EXPECT_EQ(page().DATPath.Text(), "C:\\Payloads\\dat.zip");
  EXPECT_EQ(page().EnginePath.Text(), "C:\\b.zip");
}

TEST_F(DatsAndEngineTest, BothArchivesAreUnpackedFromTheirOwnFolderAndRead) {
  Choose("C:\\Payloads\\dat.zip", "C:\\Payloads\\engine.zip");
  Next();
  EXPECT_FALSE(OnPage());
  EXPECT_THAT(unpacked, ElementsAre("C:\\Payloads\\dat.zip at C:\\Payloads",
                                    "C:\\Payloads\\engine.zip at C:\\Payloads"));
  EXPECT_EQ(machine.files.CurrentFolder(), "C:\\Kitwright");
  EXPECT_EQ(page().DATFolder, kDatFolder);
  EXPECT_EQ(page().EngineFolder, kEngineFolder);
  EXPECT_THAT(Choices<frmDATsAndEngine>(),
              ElementsAre("\tZIP file containing DATs: C:\\Payloads\\dat.zip",
                          "\tZIP file containing engine: C:\\Payloads\\engine.zip", "\tDAT Version: 4.0.4160",
                          "\tDAT Date: 12/31/2001", "\tEngine Version: 4.1.600", ""));
}

TEST_F(DatsAndEngineTest, TheLibraryGetsABareNameButANetworkPathWhole) {
  machine.files.AddFile("\\\\server\\share\\dat.zip", "archive");
  Choose("\\\\server\\share\\dat.zip", "C:\\Payloads\\engine.zip");
  machine.files.log.clear();
  page().Next->UserClick();
  const auto lines = Take();
  EXPECT_THAT(lines, Contains("call TxUnzip.TxUnzip(\"\\\\server\\share\\dat.zip\", \"" +
                              std::string(kDatFolder) + "\") -> 1"));
  EXPECT_THAT(lines,
              Contains("call TxUnzip.TxUnzip(\"engine.zip\", \"" + std::string(kEngineFolder) + "\") -> 1"));
  EXPECT_THAT(machine.files.log, Not(Contains(::testing::HasSubstr("current \\\\server"))));
}

TEST_F(DatsAndEngineTest, EachLeavingUnpacksAfreshIntoAnEmptiedFolder) {
  Choose("C:\\Payloads\\dat.zip", "");
  page().Back->UserClick();
  EXPECT_FALSE(OnPage());
  machine.files.AddFile(std::string(kDatFolder) + "\\left.over", "x", true);
  Show<frmDATsAndEngine>("DAT and Engine Files");
  Next();
  EXPECT_EQ(unpacked.size(), 2u);
  EXPECT_THAT(machine.files.Tree(kDatFolder), Not(Contains("left.over")));
}

TEST_F(DatsAndEngineTest, WithoutAChosenArchiveNoWayLeadsOutNotEvenBack) {
  Choose("", "");
  const std::string refusal =
      "message Please enter a valid path to a valid DAT package, engine package or both, or select one of "
      "the other options.";
  for (ui::Button* button : {page().Next.get(), page().Back.get(), page().Finsh.get()}) {
    button->UserClick();
    EXPECT_THAT(Take(), ElementsAre(refusal));
  }
  ClickNode("frmDATsAndEngine", "Features");
  EXPECT_THAT(Take(), Contains(refusal));
  EXPECT_TRUE(OnPage());
  EXPECT_EQ(page().MousePointer(), ui::Pointer::kDefault);
}

TEST_F(DatsAndEngineTest, AnEmptyDefinitionPathIsRefused) {
  Choose("", "C:\\Payloads\\engine.zip");
  page().SpecifyDATZIP.UserClick();
  Take();
  EXPECT_THAT(Next(),
              ElementsAre("message You selected to add updated DAT files.  Please enter a valid path to "
                          "a DAT package.",
                          "focus frmDATsAndEngine.DATPath"));
}

TEST_F(DatsAndEngineTest, AnEmptyEnginePathSendsTheFocusToTheOtherBox) {
  Choose("C:\\Payloads\\dat.zip", "");
  page().SpecifyEngineZIP.UserClick();
  Take();
  EXPECT_THAT(Next(),
              ElementsAre("message You selected to add updated engine files.  Please enter a valid path "
                          "to an engine package.",
                          "focus frmDATsAndEngine.DATPath"));
  EXPECT_THAT(unpacked, IsEmpty());
}

TEST_F(DatsAndEngineTest, ABadPathKeepsThePageOpenOnBackToo) {
  Choose("C:\\none.zip", "");
  page().Back->UserClick();
  EXPECT_THAT(Take(),
              ElementsAre("message DATs .ZIP file C:\\none.zip does not exist.  Please specify a valid "
                          "path to an existing file.",
                          "focus frmDATsAndEngine.DATPath"));
  EXPECT_TRUE(OnPage());
}

TEST_F(DatsAndEngineTest, ABadEnginePathIsNamedAsSuch) {
  Choose("C:\\Payloads\\dat.zip", "C:\\Payloads");
  EXPECT_THAT(Next(), ElementsAre("message Engine .ZIP file C:\\Payloads does not exist.  Please specify a "
                                  "valid path to an existing file.",
                                  "focus frmDATsAndEngine.EnginePath"));
}

TEST_F(DatsAndEngineTest, AnUnpackingFolderThatStaysIsTold) {
  machine.files.AddFile(std::string(kDatFolder) + "\\open.txt", "x");
  machine.files.FailAlways(FileOperation::kDeleteFolder, kDatFolder, kErrorSharingViolation);
  Choose("C:\\Payloads\\dat.zip", "");
  EXPECT_THAT(Next(),
              ElementsAre("message Could not remove temporary files or folders. This may be because you "
                          "have the files or folders open in another program."));
  machine.files.AddFile(std::string(kEngineFolder) + "\\open.txt", "x");
  machine.files.FailAlways(FileOperation::kDeleteFolder, kEngineFolder, kErrorSharingViolation);
  page().SpecifyDATZIP.UserClick();
  page().SpecifyEngineZIP.UserClick();
  page().EnginePath.UserType("C:\\Payloads\\engine.zip");
  Take();
  EXPECT_THAT(Next(),
              ElementsAre("message Could not delete the folder where extracted engine files are stored "
                          "temporarily."));
  EXPECT_TRUE(OnPage());
}

TEST_F(DatsAndEngineTest, AnUnpackingFolderThatCannotBeMadeIsTold) {
  machine.files.FailAlways(FileOperation::kCreateFolder, kDatFolder, kErrorDiskFull);
  machine.files.FailAlways(FileOperation::kCreateFolder, kEngineFolder, kErrorDiskFull);
  Choose("C:\\Payloads\\dat.zip", "");
  EXPECT_THAT(Next(),
              ElementsAre("message Could not create a temporary folder for extracting DAT .ZIP file."));
  page().SpecifyDATZIP.UserClick();
  page().SpecifyEngineZIP.UserClick();
  page().EnginePath.UserType("C:\\Payloads\\engine.zip");
  Take();
  EXPECT_THAT(Next(),
              ElementsAre("message Could not create a temporary folder for extracting engine .ZIP file."));
}

TEST_F(DatsAndEngineTest, AnArchiveThatCannotBeUnpackedIsToldInTwoSpellings) {
  machine.libraries.Raise("TxUnzip", 5);
  Choose("C:\\Payloads\\dat.zip", "");
  EXPECT_THAT(Next(), ElementsAre("message Could not decompress the .ZIP file."));
  page().SpecifyDATZIP.UserClick();
  page().SpecifyEngineZIP.UserClick();
  page().EnginePath.UserType("C:\\Payloads\\engine.zip");
  Take();
  EXPECT_THAT(Next(), ElementsAre("message Could not decompress .ZIP file."));
  EXPECT_EQ(machine.files.CurrentFolder(), "C:\\Kitwright");
  EXPECT_TRUE(OnPage());
}

TEST_F(DatsAndEngineTest, ADefinitionArchiveWithoutOneOfItsFilesIsRefusedAndItsFolderGoes) {
  Choose("C:\\Payloads\\dat.zip", "");
  const auto whole = dat_members;
  for (const auto& [missing, bytes] : whole) {
    SCOPED_TRACE(missing);
    dat_members = whole;
    dat_members.erase(missing);
    EXPECT_THAT(
        Next(),
        ElementsAre("message PKGINFO.INI, REPAIR.DAT, LABELS.DAT, or SIGS.DAT is missing from the DAT "
                    ".ZIP file.",
                    "focus frmDATsAndEngine.DATPath"));
    EXPECT_FALSE(machine.files.FolderExists(kDatFolder));
  }
  EXPECT_EQ(page().DATVersion, "4.0.4155");
}

TEST_F(DatsAndEngineTest, AnEngineArchiveWithoutOneOfItsFilesIsRefusedAndBothFoldersGo) {
  Choose("C:\\Payloads\\dat.zip", "C:\\Payloads\\engine.zip");
  const auto whole = engine_members;
  for (const auto& [missing, bytes] : whole) {
    SCOPED_TRACE(missing);
    engine_members = whole;
    engine_members.erase(missing);
    EXPECT_THAT(
        Next(),
        ElementsAre("message ENGINE.DAT, TXENG32.DLL, TEXTS.DAT or SIGTERMS.TXT files missing from the "
                    "engine .ZIP file.",
                    "focus frmDATsAndEngine.EnginePath"));
    EXPECT_FALSE(machine.files.FolderExists(kEngineFolder));
    EXPECT_FALSE(machine.files.FolderExists(kDatFolder));
  }
  EXPECT_EQ(page().DATFolder, kKeptFolder);
  EXPECT_EQ(page().EngineFolder, kKeptFolder);
}

TEST_F(DatsAndEngineTest, ADefinitionSetWithoutAVersionIsRefusedAndItsFolderStays) {
  Choose("C:\\Payloads\\dat.zip", "");
  for (const char* version : {"", "Version=\r\n", "Version=unknown\r\n"}) {
    dat_members["PKGINFO.INI"] = std::string("[Dat]\r\n") + version + "Date=12/31/2001\r\n";
    EXPECT_THAT(Next(), ElementsAre("message Could not read DAT version from the PKGINFO.INI file."));
    EXPECT_TRUE(machine.files.FolderExists(kDatFolder));
    EXPECT_TRUE(OnPage());
  }
  EXPECT_EQ(page().DATFolder, kKeptFolder);
}

TEST_F(DatsAndEngineTest, ADefinitionDateNeedsTwoSlashesInItsLastWord) {
  Choose("C:\\Payloads\\dat.zip", "");
  for (const char* date :
       {"", "Date=\r\n", "Date=unknown\r\n", "Date=12/2001\r\n", "Date=1/2/2001 noon\r\n"}) {
    SCOPED_TRACE(date);
    dat_members["PKGINFO.INI"] = std::string("[Dat]\r\nVersion=4160\r\n") + date;
    EXPECT_THAT(Next(), ElementsAre("message Cannot read DAT date from the PKGINFO.INI file."));
    EXPECT_TRUE(OnPage());
  }
  for (const char* date : {"12/31/2001", "Fri 12/31/2001", "a b 12/31/2001"}) {
    SCOPED_TRACE(date);
    Show<frmDATsAndEngine>("DAT and Engine Files");
    dat_members["PKGINFO.INI"] = std::string("[Dat]\r\nVersion=4160\r\nDate=") + date + "\r\n";
    Next();
    EXPECT_FALSE(OnPage());
    EXPECT_EQ(page().DATDate, "12/31/2001");
  }
}

TEST_F(DatsAndEngineTest, AnEngineWithoutAVersionIsRefusedAndBothFoldersGo) {
  engine_members["TXENG32.DLL"] = EngineFile(false);
  Choose("C:\\Payloads\\dat.zip", "C:\\Payloads\\engine.zip");
  EXPECT_THAT(Next(),
              ElementsAre("message Unable to determine the version of the provided engine file.  Please "
                          "verify that the given engine file is valid.",
                          "focus frmDATsAndEngine.EnginePath"));
  EXPECT_FALSE(machine.files.FolderExists(kEngineFolder));
  EXPECT_FALSE(machine.files.FolderExists(kDatFolder));
  EXPECT_EQ(page().DATFolder, kKeptFolder);
}

TEST_F(DatsAndEngineTest, GoingBackToTheSourcesFilesKeepsTheArchivesVersionsInTheReviewAndSavesNothing) {
  Choose("C:\\Payloads\\dat.zip", "C:\\Payloads\\engine.zip");
  Next();
  Show<frmDATsAndEngine>("DAT and Engine Files");
  page().FromSource.UserClick();
  Next();
  EXPECT_THAT(
      Choices<frmDATsAndEngine>(),
      ElementsAre("\tInclude DATs and engine from the source installation package", "\tDAT Version: 4.0.4160",
                  "\tDAT Date: 12/31/2001", "\tEngine Version: 4.1.600", ""));
  machine.files.log.clear();
  EXPECT_TRUE(page().SaveConfig());
  page().CopySigTermsTxt();
  EXPECT_THAT(machine.files.log, IsEmpty());
  EXPECT_EQ(Property("DATVERSION"), "4.0.4155");
}

TEST_F(DatsAndEngineTest, AChosenGroupReplacesItsFilesInTheCabinetsAndTheOtherIsRestored) {
  Choose("C:\\Payloads\\dat.zip", "");
  Next();
  machine.files.AddFile(run.CabDataFolder + "\\ENGINE.DAT", "spoilt meanwhile");
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(Property("DATVERSION"), "4.0.4160");
  EXPECT_EQ(Property("DATDATE"), "12/31/2001");
  EXPECT_EQ(Property("ENGINEVERSION"), "4.1.500");
  EXPECT_EQ(Cab("SIGS.DAT"), "new SIGS.DAT");
  EXPECT_EQ(Cab("LABELS.DAT"), "new LABELS.DAT");
  EXPECT_EQ(Cab("REPAIR.DAT"), "new REPAIR.DAT");
  EXPECT_EQ(Cab("ENGINE.DAT"), "old ENGINE.DAT");
  EXPECT_EQ(Cab("TXENG32.DLL"), "old TXENG32.DLL");
  EXPECT_FALSE(run.DestinationFileList);
  page().CopySigTermsTxt();
  EXPECT_EQ(Out("SIGTERMS.TXT"), "old SIGTERMS.TXT");
  EXPECT_FALSE(run.DestinationFileList);
}

TEST_F(DatsAndEngineTest, AnEngineAloneKeepsTheDefinitionsVersion) {
  Choose("", "C:\\Payloads\\engine.zip");
  Next();
  EXPECT_THAT(Choices<frmDATsAndEngine>(),
              ElementsAre("\tZIP file containing engine: C:\\Payloads\\engine.zip", "\tDAT Version: 4.0.4155",
                          "\tDAT Date: 11/07/2001", "\tEngine Version: 4.1.600", ""));
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(Property("ENGINEVERSION"), "4.1.600");
  EXPECT_EQ(Property("DATVERSION"), "4.0.4155");
  EXPECT_EQ(Cab("TXENG32.DLL"), EngineFile());
  EXPECT_EQ(Cab("SIGTERMS.TXT"), "new SIGTERMS.TXT");
  EXPECT_EQ(Cab("SIGS.DAT"), "old SIGS.DAT");
}

TEST_F(DatsAndEngineTest, ACopyIntoTheCabinetsThatFailsFailsTheStep) {
  Choose("C:\\Payloads\\dat.zip", "");
  Next();
  machine.files.FailNext(FileOperation::kCopyFile, run.CabDataFolder + "\\SIGS.DAT", kErrorDiskFull);
  EXPECT_FALSE(page().SaveConfig());
  // The build names the step.
  EXPECT_THAT(Steps(), IsEmpty());
}

TEST_F(DatsAndEngineTest, FilesThatTheCabinetHoldsAsReadOnlyAreReplacedAndRestored) {
  for (const char* file :
       {"SIGS.DAT", "LABELS.DAT", "REPAIR.DAT", "ENGINE.DAT", "TXENG32.DLL", "TEXTS.DAT", "SIGTERMS.TXT"}) {
    machine.files.AddFile(run.CabDataFolder + "\\" + file, std::string("old ") + file, true);
  }
  Choose("C:\\Payloads\\dat.zip", "");
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(Cab("SIGS.DAT"), "new SIGS.DAT");
  EXPECT_EQ(Cab("ENGINE.DAT"), "old ENGINE.DAT");
  EXPECT_TRUE(machine.files.IsReadOnly(run.CabDataFolder + "\\ENGINE.DAT"));
  machine.files.AddFile(run.DestinationFolder + "\\SIGTERMS.TXT", "of an earlier run", true);
  page().CopySigTermsTxt();
  EXPECT_EQ(Out("SIGTERMS.TXT"), "old SIGTERMS.TXT");
}

TEST_F(DatsAndEngineTest, ADatabaseThatCannotBeWrittenFailsTheStepWithoutAWord) {
  Choose("C:\\Payloads\\dat.zip", "");
  Next();
  machine.files.FailAlways(FileOperation::kHandleWrite, run.WorkingMsiPath, kErrorDiskFull);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(Steps(), IsEmpty());
  EXPECT_EQ(Cab("SIGS.DAT"), "old SIGS.DAT");
}

TEST_F(DatsAndEngineTest, ASetupIniOfTheOlderLevelThatCannotBeWrittenFailsTheStepWithoutAWord) {
  UseLevel700();
  Choose("C:\\Payloads\\dat.zip", "");
  Next();
  machine.files.FailAlways(FileOperation::kWriteFile, run.WorkingSetupIniPath, kErrorDiskFull);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(Steps(), IsEmpty());
}

TEST_F(DatsAndEngineTest, ALevelWithoutOneOfItsFilesShowsWhenTheBuildWantsItBack) {
  ASSERT_TRUE(machine.files.DeleteFile(run.CabDataFolder + "\\ENGINE.DAT", true).ok());
  Choose("C:\\Payloads\\dat.zip", "");
  Next();
  EXPECT_FALSE(OnPage());
  EXPECT_FALSE(page().SaveConfig());
}

TEST_F(DatsAndEngineTest, AnArchiveAtTheRootOfADiskIsReachedThere) {
  machine.files.AddFile("C:\\dat.zip", "archive");
  Choose("C:\\dat.zip", "");
  Next();
  EXPECT_FALSE(OnPage());
  EXPECT_THAT(unpacked, ElementsAre("C:\\dat.zip at C:\\"));
}

TEST_F(DatsAndEngineTest, AnEmptyEnginePathMovesNoFocusIntoAClosedBox) {
  Choose("", "");
  page().SpecifyEngineZIP.UserClick();
  Take();
  EXPECT_THAT(Next(),
              ElementsAre("message You selected to add updated engine files.  Please enter a valid path "
                          "to an engine package."));
  EXPECT_TRUE(OnPage());
}

TEST_F(DatsAndEngineTest, AnEngineArchiveThatFailsLeavesTheDefinitionsMembersAsTheyWere) {
  engine_members.erase("ENGINE.DAT");
  Choose("C:\\Payloads\\dat.zip", "C:\\Payloads\\engine.zip");
  Next();
  EXPECT_EQ(page().DATVersion, "4.0.4155");
  EXPECT_EQ(page().DATDate, "11/07/2001");
}

TEST_F(DatsAndEngineTest, FilesOfTheOlderLevelLieBesideTheDatabaseAndAreListed) {
  UseLevel700();
  Choose("C:\\Payloads\\dat.zip", "");
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(run.DestinationFileList->names,
              ElementsAre("SIGTERMS.TXT", "ENGINE.DAT", "TEXTS.DAT", "TXENG32.DLL", "REPAIR.DAT",
                          "LABELS.DAT", "SIGS.DAT"));
  EXPECT_EQ(Out("SIGS.DAT"), "new SIGS.DAT");
  EXPECT_EQ(Out("ENGINE.DAT"), "old ENGINE.DAT");
  EXPECT_EQ(machine.files.Content(run.WorkingSetupIniPath),
            "[Startup]\r\nProduct=Kestrane\r\n[Dat]\r\nDATDate=12/31/2001\r\nDATVersion=4.0.4160\r\n"
            "[Engine]\r\nEngineVersion=4.1.500\r\n");
}

TEST_F(DatsAndEngineTest, AllSevenCopiesAreTriedBeforeAFailedOneStopsTheBuildOfTheOlderLevel) {
  UseLevel700();
  Choose("C:\\Payloads\\dat.zip", "C:\\Payloads\\engine.zip");
  Next();
  const std::string ini = machine.files.Content(run.WorkingSetupIniPath);
  machine.files.FailAlways(FileOperation::kCopyFile, "C:\\Out\\SIGTERMS.TXT", kErrorDiskFull);
  machine.dialogs.answers = {Answer::kRetry, Answer::kCancel};
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_EQ(machine.files.Tree("C:\\Out").size(), 6u);
  EXPECT_EQ(machine.files.Content(run.WorkingSetupIniPath), ini);
}

}  // namespace
}  // namespace kw
