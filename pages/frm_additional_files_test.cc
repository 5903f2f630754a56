#include "pages/frm_additional_files.h"

#include "pages/frm_additional_file.h"
#include "pages/open_package_test_support.h"

namespace kw {
namespace {

using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FakeCommand;
using testing::FileOperation;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::PageFixture;

struct AdditionalFilesTest : PageFixture<frmAdditionalFiles>, ::testing::Test {
  AdditionalFilesTest() {
    machine.files.AddFile("C:\\Files\\notes.txt", "notes");
    machine.files.AddFile("C:\\Files\\big.bin", std::string(40000, 'x'));
    machine.files.AddFile("C:\\Files\\main.exe", "new main");
    machine.processes.On("C:\\Kitwright\\MakeCab.exe", [this](const FakeCommand&) {
      directives = machine.files.Content("C:\\Temp\\run\\Cab1.DDF");
      machine.files.AddFile("C:\\Temp\\run\\Cab1.CAB", "new cabinet");
    });
    Sql("insert into `Directory` (`Directory`, `Directory_Parent`, `DefaultDir`) values ('WindowsFolder', "
        "'TARGETDIR', 'WINDIR|Windows')");
  }
  frmAdditionalFile& dialog() { return table.Get<frmAdditionalFile>(); }
  void Fill(const std::string& path, const std::string& folder, const std::string& subfolders) {
    host.modals.push_back([this, path, folder, subfolders](ui::Form&) {
      if (dialog().SourceFile.Enabled()) dialog().SourceFile.UserType(path);
      if (!folder.empty()) dialog().DestinationFolder.UserPick(dialog().GetDestinationFolderIndex(folder));
      dialog().SubFolders.UserType(subfolders);
      dialog().cmdOK.UserClick();
      if (dialog().Visible()) dialog().cmdCancel.UserClick();
    });
  }
  void Add(const std::string& path, const std::string& folder = "Product Install",
           const std::string& subfolders = "") {
    Fill(path, folder, subfolders);
    page().NewButton.UserClick();
  }
  std::string Key(int row) { return page().Grid.Cell(row, 4); }
  std::vector<std::string> GridRows() {
    std::vector<std::string> rows;
    for (int row = 1; row < page().Grid.Rows(); ++row) {
      rows.push_back(page().Grid.Cell(row, 1) + "|" + page().Grid.Cell(row, 2) + "|" +
                     page().Grid.Cell(row, 3));
    }
    return rows;
  }
  /// The package as it is read back after a build.
  void ReadBack() {
    for (int row = 1; row < page().Grid.Rows() - 1; ++row) {
      ASSERT_TRUE(
          machine.files.CopyFile(page().Grid.Cell(row, 5), run.CabDataFolder + "\\" + Key(row), true).ok());
    }
    page().ReadConfig();
  }

  std::string directives;
};

TEST_F(AdditionalFilesTest, AnAddedFileIsOneFileInOneComponentOfTheConsole) {
  Open();
  EXPECT_FALSE(page().EditButton.Enabled());
  EXPECT_THAT(Choices<frmAdditionalFiles>(), ElementsAre("\tNone", ""));
  Add("C:\\Files\\notes.txt", "Windows");
  const std::string key = Key(1);
  EXPECT_THAT(key, ::testing::MatchesRegex("_id_\\w+_notes.txt"));
  EXPECT_THAT(GridRows(), ElementsAre("C:\\Files\\notes.txt|Windows|", "||"));
  EXPECT_THAT(
      Rows("select `File`, `Component_`, `FileName`, `FileSize`, `Attributes`, `Sequence` from `File` where "
           "`File` = ?",
           {key}),
      ElementsAre(key + "|" + key + "|notes.txt|5|16384|3"));
  EXPECT_THAT(Rows("select `Directory_`, `Attributes` from `Component` where `Component` = ?", {key}),
              ElementsAre("WindowsFolder|0"));
  EXPECT_THAT(Rows("select `ComponentId` from `Component` where `Component` = ?", {key}).at(0),
              ::testing::MatchesRegex("\\{\\w+-\\w+-\\w+-\\w+-\\w+\\}"));
  EXPECT_THAT(Rows("select `Feature_` from `FeatureComponents` where `Component_` = ?", {key}),
              ElementsAre("Console"));
  EXPECT_EQ(page().LastSequence, 3);
  EXPECT_TRUE(page().EditButton.Enabled());
  EXPECT_THAT(Choices<frmAdditionalFiles>(),
              ElementsAre("\tSource file: C:\\Files\\notes.txt", "\tDestination folder: Windows", ""));
}

TEST_F(AdditionalFilesTest, ASizeAboveSixteenBitsStaysZero) {
  Open();
  Add("C:\\Files\\big.bin");
  EXPECT_THAT(Rows("select `FileSize` from `File` where `File` = ?", {Key(1)}), ElementsAre("0"));
}

TEST_F(AdditionalFilesTest, TheLargestSizeOfSixteenBitsIsKept) {
  machine.files.AddFile("C:\\Files\\edge.bin", std::string(32767, 'x'));
  machine.files.AddFile("C:\\Files\\over.bin", std::string(32768, 'x'));
  Open();
  Add("C:\\Files\\edge.bin");
  Add("C:\\Files\\over.bin");
  EXPECT_THAT(Rows("select `FileSize` from `File` where `File` = ?", {Key(1)}), ElementsAre("32767"));
  EXPECT_THAT(Rows("select `FileSize` from `File` where `File` = ?", {Key(2)}), ElementsAre("0"));
}

TEST_F(AdditionalFilesTest, NumbersGoOnFromTheHighestOfTheMedia) {
  Sql("insert into `Media` (`DiskId`, `LastSequence`) values (2, 40)");
  Sql("insert into `Media` (`DiskId`, `LastSequence`) values (3, 7)");
  Open();
  EXPECT_EQ(page().LastSequence, 40);
  Add("C:\\Files\\notes.txt");
  EXPECT_THAT(Rows("select `Sequence` from `File` where `File` = ?", {Key(1)}), ElementsAre("41"));
}

TEST_F(AdditionalFilesTest, TheHiddenColumnsAreTheKeyAndTheRealFile) {
  Open();
  EXPECT_THAT(page().Grid.Widths(), ElementsAre(0, 5, 3, 3, 0, 0));
}

TEST_F(AdditionalFilesTest, AFolderBesideTheInstallFolderIsFoundAgain) {
  Open();
  Add("C:\\Files\\notes.txt", "Windows");
  Add("C:\\Files\\big.bin", "Windows", "a\\b\\c");
  ReadBack();
  EXPECT_THAT(GridRows(),
              ElementsAre("[IN_PACKAGE]notes.txt|Windows|", "[IN_PACKAGE]big.bin|Windows|a\\b\\c", "||"));
}

TEST_F(AdditionalFilesTest, AFileWhoseFolderIsUnknownComesBackWithoutADestination) {
  Open();
  Add("C:\\Files\\notes.txt", "Windows");
  const std::string key = Key(1);
  Sql("update `Component` set `Directory_` = 'nowhere' where `Component` = ?", {key});
  ReadBack();
  EXPECT_THAT(GridRows(), ElementsAre("[IN_PACKAGE]notes.txt||", "||"));
}

TEST_F(AdditionalFilesTest, ADriveIsMadeAnewAfterThePackageIsOpenedAgain) {
  Open();
  Add("C:\\Files\\notes.txt", "C:");
  ReadBack();
  table.ReloadPages();
  Open();
  EXPECT_THAT(GridRows(), ElementsAre("[IN_PACKAGE]notes.txt|C:|", "||"));
  Add("C:\\Files\\big.bin", "C:");
  EXPECT_EQ(Rows("select `Property` from `Property` where `Value` = 'C:\\'").size(), 2u);
}

TEST_F(AdditionalFilesTest, AnotherFileInAnEntryKeepsTheNumberOfItsKey) {
  Open();
  Add("C:\\Files\\notes.txt", "Windows", "a");
  Add("C:\\Files\\big.bin");
  const std::string old_key = Key(1);
  page().Grid.UserPick(1);
  // No question about duplicates: that test is for new entries.
  Fill("C:\\Files\\big.bin", "Product Install", "");
  page().EditButton.UserClick();
  EXPECT_THAT(GridRows(), ElementsAre("C:\\Files\\big.bin|Product Install|",
                                      "C:\\Files\\big.bin|Product Install|", "||"));
  EXPECT_EQ(Key(1), old_key.substr(0, old_key.rfind('_')) + "_big.bin");
  EXPECT_THAT(Rows("select `File` from `File` where `File` = ?", {old_key}), IsEmpty());
  EXPECT_THAT(Rows("select `Component_` from `FeatureComponents` where `Component_` = ?", {old_key}),
              IsEmpty());
}

TEST_F(AdditionalFilesTest, TheInputOfAnInPackageFileIsNotChecked) {
  Open();
  Add("C:\\Files\\notes.txt");
  ReadBack();
  page().Grid.UserPick(1);
  Fill("", "Windows", "a*b");
  page().EditButton.UserClick();
  EXPECT_THAT(GridRows(), ElementsAre("[IN_PACKAGE]notes.txt|Windows|a*b", "||"));
}

TEST_F(AdditionalFilesTest, ASubfolderWithoutANameIsToldBeforeAnyRow) {
  Open();
  const size_t before = Rows("select `Directory` from `Directory`").size();
  for (const char* subfolders : {"a\\\\b", "\\a"}) {
    Add("C:\\Files\\notes.txt", "D:", subfolders);
    EXPECT_THAT(Take(), Contains("message Unable to put the file C:\\Files\\notes.txt into the installation "
                                 "package.  The subfolders \"" +
                                 std::string(subfolders) + "\" hold one without a name."));
  }
  EXPECT_EQ(Rows("select `Directory` from `Directory`").size(), before);
  EXPECT_THAT(Rows("select `Value` from `Property` where `Value` = 'D:\\'"), IsEmpty());
  Add("C:\\Files\\notes.txt", "D:", "a\\b\\");
  EXPECT_EQ(page().Grid.Rows(), 3);
}

TEST_F(AdditionalFilesTest, CancelChangesNothing) {
  Open();
  Add("C:\\Files\\notes.txt");
  const auto rows = Rows("select `File` from `File`");
  page().Grid.UserPick(1);
  for (const bool by_title_bar : {false, true}) {
    host.modals.push_back([this, by_title_bar](ui::Form&) {
      dialog().SourceFile.UserType("C:\\Files\\big.bin");
      if (by_title_bar)
        dialog().UserClose();
      else
        dialog().cmdCancel.UserClick();
    });
    page().EditButton.UserClick();
    EXPECT_EQ(dialog().SourceFile.Text(), "");
  }
  machine.dialogs.answers = {Answer::kCancel};
  page().DeleteButton.UserClick();
  EXPECT_THAT(GridRows(), ElementsAre("C:\\Files\\notes.txt|Product Install|", "||"));
  EXPECT_EQ(Rows("select `File` from `File`"), rows);
}

TEST_F(AdditionalFilesTest, AfterCancelOfANewFileTheSelectionLeavesTheBlankRow) {
  Open();
  Add("C:\\Files\\notes.txt");
  host.modals.push_back([this](ui::Form&) { dialog().cmdCancel.UserClick(); });
  page().NewButton.UserClick();
  EXPECT_EQ(page().Grid.SelectedRow(), 1);
}

TEST_F(AdditionalFilesTest, BrowseOffersAllFiles) {
  Open();
  host.modals.push_back([this](ui::Form&) {
    machine.dialogs.files = {"C:\\Files\\notes.txt"};
    dialog().Browse.UserClick();
    EXPECT_EQ(dialog().SourceFile.Text(), "C:\\Files\\notes.txt");
    dialog().cmdCancel.UserClick();
  });
  page().NewButton.UserClick();
}

TEST_F(AdditionalFilesTest, UnknownFoldersHaveTheFirstPositionAndNoName) {
  Open();
  EXPECT_EQ(dialog().GetDestinationFolderIndex("Nowhere"), 0);
  EXPECT_EQ(dialog().GetDestinationFolderIndex("Temp"), 13);
  EXPECT_EQ(dialog().GetDestinationFolderIndex("Z:"), 39);
  EXPECT_EQ(dialog().GetDestinationFolderExternalName("Nowhere"), "");
  EXPECT_EQ(dialog().GetDestinationFolderExternalName("PersonalFolder"), "Personal");
}

TEST_F(AdditionalFilesTest, ADriveMakesItsRowsOnceWhileTheDialogIsLoaded) {
  Open();
  Add("C:\\Files\\notes.txt", "C:");
  Add("C:\\Files\\big.bin", "C:", "deep");
  const auto drives = Rows("select `Property`, `Value` from `Property` where `Value` = 'C:\\'");
  ASSERT_EQ(drives.size(), 1u);
  const std::string id = drives[0].substr(0, drives[0].find('|'));
  EXPECT_THAT(Rows("select `Directory_Parent`, `DefaultDir` from `Directory` where `Directory` = ?", {id}),
              ElementsAre("TARGETDIR|."));
  ReadBack();
  EXPECT_THAT(GridRows(), Contains("[IN_PACKAGE]notes.txt|C:|"));
  EXPECT_THAT(GridRows(), Contains("[IN_PACKAGE]big.bin|C:|deep"));
}

TEST_F(AdditionalFilesTest, SubfoldersMakeARowForEachPartAndEachFile) {
  Open();
  const size_t before = Rows("select `Directory` from `Directory`").size();
  Add("C:\\Files\\notes.txt", "Product Install", "a\\b");
  EXPECT_EQ(Rows("select `Directory` from `Directory`").size(), before + 2);
  Add("C:\\Files\\big.bin", "Product Install", "a\\b");
  EXPECT_EQ(Rows("select `Directory` from `Directory`").size(), before + 4);
  ReadBack();
  EXPECT_THAT(GridRows(), Contains("[IN_PACKAGE]notes.txt|Product Install|a\\b"));
  EXPECT_THAT(Choices<frmAdditionalFiles>(), Contains("\tDestination subfolder: a\\b"));
}

TEST_F(AdditionalFilesTest, KeysOfAnEarlierRunAtThisTimeOfDayAreNotUsedAgain) {
  Open();
  Add("C:\\Files\\notes.txt", "C:", "a");
  ReadBack();
  const std::string old_key = Key(1);
  run.UniqueIdCounter = 0;
  Add("C:\\Files\\notes.txt", "D:", "a\\b\\c\\d");
  EXPECT_FALSE(dialog().Visible());
  EXPECT_THAT(GridRows(),
              ElementsAre("[IN_PACKAGE]notes.txt|C:|a", "C:\\Files\\notes.txt|D:|a\\b\\c\\d", "||"));
  EXPECT_NE(Key(2), old_key);
}

TEST_F(AdditionalFilesTest, AnEditThatThePackageCannotHoldKeepsTheOldRows) {
  machine.files.AddFile("C:\\Files\\\xE6\x97\xA5.txt", "x");
  Open();
  Add("C:\\Files\\notes.txt");
  const std::string old_key = Key(1);
  page().Grid.UserPick(1);
  Take();
  Fill("C:\\Files\\\xE6\x97\xA5.txt", "", "");
  page().EditButton.UserClick();
  EXPECT_THAT(machine.transcript.Lines(), Contains(::testing::StartsWith("message ")));
  EXPECT_EQ(Key(1), old_key);
  EXPECT_THAT(Rows("select `FileName` from `File` where `File` = ?", {old_key}), ElementsAre("notes.txt"));
  EXPECT_TRUE(page().CreateCabFile());
}

TEST_F(AdditionalFilesTest, AnEditMovesAnInPackageFileButCannotChangeIt) {
  Open();
  Add("C:\\Files\\notes.txt");
  ReadBack();
  const std::string old_key = Key(1);
  page().Grid.UserPick(1);
  host.modals.push_back([this](ui::Form&) {
    EXPECT_FALSE(dialog().SourceFile.Enabled());
    EXPECT_FALSE(dialog().Browse.Enabled());
    EXPECT_EQ(dialog().DestinationFolder.Text(), "Product Install");
    dialog().DestinationFolder.UserPick(dialog().GetDestinationFolderIndex("Windows"));
    dialog().SubFolders.UserType("x");
    dialog().cmdOK.UserClick();
  });
  page().EditButton.UserClick();
  EXPECT_THAT(GridRows(), ElementsAre("[IN_PACKAGE]notes.txt|Windows|x", "||"));
  EXPECT_EQ(Key(1), old_key);
  EXPECT_THAT(Rows("select `FileName`, `FileSize` from `File` where `File` = ?", {old_key}),
              ElementsAre("notes.txt|5"));
}

TEST_F(AdditionalFilesTest, TheDialogRefusesWhatIsMissingOrWrong) {
  Open();
  Add("");
  EXPECT_THAT(Take(),
              Contains("message Please enter the location of the file you want to add in the Source File "
                       "field.<LF><LF>Pick a file to add using the Browse button."));
  Add("C:\\Files\\none.txt");
  EXPECT_THAT(
      Take(),
      Contains("message Source file C:\\Files\\none.txt does not exist.  Please specify a valid path to "
               "an existing file."));
  Add("C:\\Files\\notes.txt", "");
  EXPECT_THAT(Take(),
              Contains("message Please enter the name of the destination folder to which you want to install "
                       "the product."));
  Add("C:\\Files\\notes.txt", "Windows", "a*b");
  EXPECT_THAT(Take(),
              Contains("message Subfolders cannot contain any of the following characters: | > < \\\" ? * :. "
                       "Please identify another subfolder, or rename the subfolder."));
  machine.files.FailNth(FileOperation::kGetFile, "C:\\Files\\notes.txt", 2, kErrorAccessDenied);
  Add("C:\\Files\\notes.txt", "Windows");
  std::vector<std::string> steps = Take();
  EXPECT_THAT(
      steps,
      Contains("message Unable to open the source file.  Please verify that the file exists and that you "
               "have the appropriate permissions to access the file."));
  EXPECT_EQ(page().Grid.Rows(), 2);
}

TEST_F(AdditionalFilesTest, ADuplicateIsRefused) {
  Open();
  Add("C:\\Files\\notes.txt", "Windows", "a");
  Add("C:\\Files\\notes.txt", "Windows", "a");
  EXPECT_THAT(Take(),
              Contains("message You attempted to add a duplicate file.  Please select a different file or "
                       "click Cancel to return to the wizard."));
  Add("C:\\Files\\notes.txt", "Windows", "b");
  EXPECT_EQ(page().Grid.Rows(), 4);
}

TEST_F(AdditionalFilesTest, DeletingTakesTheRowsAtOnce) {
  Open();
  Add("C:\\Files\\notes.txt", "Windows", "a");
  const std::string key = Key(1);
  page().Grid.UserPick(1);
  machine.dialogs.answers = {Answer::kOk};
  Take();
  page().DeleteButton.UserClick();
  EXPECT_THAT(Take(),
              Contains("question This item will be deleted:<LF><LF>  Source File: C:\\Files\\notes.txt<LF>  "
                       "Destination Folder: Windows<LF>  Subfolders: a [OK|Cancel] default=OK -> OK"));
  EXPECT_THAT(Rows("select `File` from `File` where `File` = ?", {key}), IsEmpty());
  EXPECT_THAT(Rows("select `Component` from `Component` where `Component` = ?", {key}), IsEmpty());
  EXPECT_THAT(Rows("select `Component_` from `FeatureComponents` where `Component_` = ?", {key}), IsEmpty());
  EXPECT_THAT(GridRows(), ElementsAre("||"));
}

TEST_F(AdditionalFilesTest, AFileWhoseBytesAreLostLeavesThePackageWithoutAWord) {
  Open();
  Add("C:\\Files\\notes.txt");
  const std::string key = Key(1);
  Take();
  page().ReadConfig();
  EXPECT_THAT(Take(), IsEmpty());
  EXPECT_THAT(GridRows(), ElementsAre("||"));
  EXPECT_THAT(Rows("select `File` from `File` where `File` = ?", {key}), IsEmpty());
}

TEST_F(AdditionalFilesTest, AFileOfTheSameNameAndPlaceReplacesTheProducts) {
  Open();
  Sql("update `File` set `FileName` = 'main.exe' where `File` = 'main.exe'");
  Add("C:\\Files\\main.exe");
  EXPECT_TRUE(page().CreateCabFile());
  EXPECT_THAT(Rows("select `File` from `File` where `File` = 'main.exe'"), IsEmpty());
  EXPECT_EQ(machine.files.Content(run.CabDataFolder + "\\" + Key(1)), "new main");
  EXPECT_THAT(directives, HasSubstr("\"C:\\Temp\\run\\CabData\\" + Key(1) + "\" \"" + Key(1) + "\""));
}

TEST_F(AdditionalFilesTest, TwoAddedFilesOfOneNameAndPlaceAreBothNamedWhenTheBuildFails) {
  machine.files.AddFile("C:\\Other\\notes.txt", "others");
  Open();
  Add("C:\\Files\\notes.txt");
  Add("C:\\Other\\notes.txt");
  Take();
  EXPECT_FALSE(page().CreateCabFile());
  EXPECT_THAT(Take(), ElementsAre("message The additional files \"C:\\Files\\notes.txt\" and "
                                  "\"C:\\Other\\notes.txt\" have the same name and the same destination."));
}

TEST_F(AdditionalFilesTest, AProductsFileOfAShortAndALongNameIsAnotherName) {
  Open();
  Sql("update `File` set `FileName` = 'MAIN~1.EXE|main.exe' where `File` = 'main.exe'");
  Add("C:\\Files\\main.exe");
  EXPECT_TRUE(page().CreateCabFile());
  EXPECT_THAT(Rows("select `File` from `File` where `File` = 'main.exe'"), ElementsAre("main.exe"));
}

TEST_F(AdditionalFilesTest, AnAddedFileInASubfolderOfTheLongNameReplacesTheProducts) {
  Sql("insert into `Directory` (`Directory`, `Directory_Parent`, `DefaultDir`) values ('Deep', 'INSTALLDIR', "
      "'DEEPFO~1|Deep Folder')");
  Sql("update `Component` set `Directory_` = 'Deep' where `Component` = 'Main'");
  Sql("update `File` set `FileName` = 'main.exe' where `File` = 'main.exe'");
  Open();
  Add("C:\\Files\\main.exe", "Product Install", "deep FOLDER");
  EXPECT_TRUE(page().CreateCabFile());
  EXPECT_THAT(Rows("select `File` from `File` where `File` = 'main.exe'"), IsEmpty());
}

TEST_F(AdditionalFilesTest, TheSameNameElsewhereReplacesNothing) {
  Open();
  Sql("update `File` set `FileName` = 'main.exe' where `File` = 'main.exe'");
  Add("C:\\Files\\main.exe", "Windows");
  EXPECT_TRUE(page().CreateCabFile());
  EXPECT_THAT(Rows("select `File` from `File` where `File` = 'main.exe'"), ElementsAre("main.exe"));
}

TEST_F(AdditionalFilesTest, TheTemporaryColumnReachesNoFileAlsoAfterAFailedBuild) {
  Open();
  Add("C:\\Files\\notes.txt");
  machine.processes.On("C:\\Kitwright\\MakeCab.exe", 1);
  EXPECT_FALSE(page().CreateCabFile());
  run.WorkingDatabase.reset();
  auto copy = run.Installer->OpenDatabase(run.WorkingMsiPath, platform::OpenMode::kReadOnly);
  ASSERT_TRUE(copy.ok());
  EXPECT_FALSE((*copy)->OpenView("select `_id_path` from `File`").ok());
}

TEST_F(AdditionalFilesTest, AFileThatVanishedBeforeTheBuildIsTold) {
  Open();
  Add("C:\\Files\\notes.txt");
  ASSERT_TRUE(machine.files.DeleteFile("C:\\Files\\notes.txt", true).ok());
  Take();
  EXPECT_FALSE(page().CreateCabFile());
  EXPECT_THAT(Take(), Contains(HasSubstr("notes.txt")));
}

TEST_F(AdditionalFilesTest, ADirectoryThatIsItsOwnParentEndsTheWalk) {
  Open();
  Sql("update `Directory` set `Directory_Parent` = 'INSTALLDIR' where `Directory` = 'INSTALLDIR'");
  EXPECT_TRUE(page().CreateCabFile());
}

}  // namespace
}  // namespace kw
