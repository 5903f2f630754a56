#include "pages/frm_programs.h"

#include "pages/frm_add_program.h"
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

struct ProgramsTest : PageFixture<frmPrograms>, ::testing::Test {
  ProgramsTest() {
    machine.files.AddFile("C:\\Tools\\first.exe", "first");
    machine.files.AddFile("C:\\Tools\\second.COM", "second");
    machine.files.AddFile("C:\\Tools\\my_setup.exe", "setup");
    machine.files.AddFile("C:\\Tools\\notes.txt", "notes");
    machine.files.AddFile("C:\\Tools\\empty.exe", "");
  }
  /// Fills the dialog and presses OK, or Cancel when OK was refused.
  void OnDialog(const std::string& path, const std::string& arguments, std::vector<Answer> answers = {}) {
    host.modals.push_back([this, path, arguments, answers](ui::Form& form) {
      auto& dialog = dynamic_cast<frmAddProgram&>(form);
      if (dialog.ExeFileName.Enabled()) dialog.ExeFileName.UserType(path);
      dialog.Parameters.UserType(arguments);
      machine.dialogs.answers.assign(answers.begin(), answers.end());
      dialog.OK.UserClick();
      if (dialog.Visible()) dialog.Cancel.UserClick();
    });
  }
  void Add(const std::string& path, const std::string& arguments = "", std::vector<Answer> answers = {}) {
    OnDialog(path, arguments, std::move(answers));
    page().NewButton.UserClick();
  }
  std::vector<std::string> GridRows() {
    std::vector<std::string> rows;
    for (int row = 0; row < page().Grid.Rows(); ++row) {
      rows.push_back(page().Grid.Cell(row, 1) + "|" + page().Grid.Cell(row, 2));
    }
    return rows;
  }
  void AddPackageProgram(int number, const std::string& name, const std::string& bytes) {
    const std::string tail = std::to_string(number) + "_" + name;
    machine.files.AddFile("C:\\Tools\\packed", bytes);
    ASSERT_TRUE(Db().ReplaceBinary("id_RunFileBin_" + tail, "C:\\Tools\\packed").ok());
    Sql("insert into `CustomAction` (`Action`, `Type`, `Source`, `Target`) values (?, 1090, ?, ?)",
        {"id_RunFileCust_" + tail, "id_RunFileBin_" + tail, "/old" + std::to_string(number)});
    Sql("insert into `InstallExecuteSequence` (`Action`, `Sequence`) values (?, 6570)",
        {"id_RunFileCust_" + tail});
  }
  std::vector<std::string> OwnBinaries() {
    std::vector<std::string> own;
    for (const std::string& name : Rows("select `Name` from `Binary` order by `Name`")) {
      if (name.starts_with("id_RunFileBin_")) own.push_back(name);
    }
    return own;
  }
};

TEST_F(ProgramsTest, AnEmptyListHasItsButtonsOffAndSaysNone) {
  Open();
  EXPECT_FALSE(page().EditButton.Enabled());
  EXPECT_FALSE(page().DeleteButton.Enabled());
  EXPECT_THAT(Choices<frmPrograms>(), ElementsAre("\tNone", ""));
}

TEST_F(ProgramsTest, AddedProgramsAreWrittenInGridOrderOnAForwardExit) {
  Open();
  Add("C:\\Tools\\first.exe", "/a b");
  Add("C:\\Tools\\second.COM");
  EXPECT_THAT(GridRows(), ElementsAre("Program pathname|Command line arguments", "C:\\Tools\\first.exe|/a b",
                                      "C:\\Tools\\second.COM|", "|"));
  EXPECT_TRUE(page().EditButton.Enabled());
  EXPECT_THAT(OwnBinaries(), IsEmpty());
  page().Next->UserClick();
  EXPECT_THAT(Take(), Contains("page frmAdditionalFiles"));
  EXPECT_THAT(OwnBinaries(), ElementsAre("id_RunFileBin_1_first.exe", "id_RunFileBin_2_second.COM"));
  EXPECT_THAT(Rows("select `Action`, `Type`, `Source`, `Target` from `CustomAction` order by `Action`"),
              ElementsAre("id_RunFileCust_1_first.exe|1090|id_RunFileBin_1_first.exe|/a b",
                          "id_RunFileCust_2_second.COM|1090|id_RunFileBin_2_second.COM|"));
  // 6600 is the sequence of InstallFinalize; four grid rows with header and blank row.
  EXPECT_THAT(
      Rows("select `Action`, `Condition`, `Sequence` from `InstallExecuteSequence` where `Condition` = '(NOT "
           "Installed) OR REINSTALL' order by `Sequence`"),
      ElementsAre("id_RunFileCust_1_first.exe|(NOT Installed) OR REINSTALL|6577",
                  "id_RunFileCust_2_second.COM|(NOT Installed) OR REINSTALL|6578"));
  EXPECT_TRUE(Db().ExtractBinary("id_RunFileBin_2_second.COM", "C:\\Tools\\back").value_or(false));
  EXPECT_EQ(machine.files.Content("C:\\Tools\\back"), "second");
  EXPECT_THAT(Choices<frmPrograms>(),
              ElementsAre("\tProgram: C:\\Tools\\first.exe", "\tCommand-line options: /a b",
                          "\tProgram: C:\\Tools\\second.COM", "\tCommand-line options: ", ""));
}

TEST_F(ProgramsTest, BackWritesNothing) {
  Open();
  Add("C:\\Tools\\first.exe");
  page().Back->UserClick();
  EXPECT_THAT(Take(), Contains("page frmCommonUpdater"));
  EXPECT_THAT(OwnBinaries(), IsEmpty());
}

TEST_F(ProgramsTest, EveryForwardExitRewritesTheRows) {
  Open();
  Add("C:\\Tools\\first.exe");
  Add("C:\\Tools\\second.COM");
  page().Next->UserClick();
  table.GoToPage("Programs");
  page().Grid.UserPick(1);
  machine.dialogs.answers = {Answer::kOk};
  page().DeleteButton.UserClick();
  page().Next->UserClick();
  EXPECT_THAT(OwnBinaries(), ElementsAre("id_RunFileBin_1_second.COM"));
  EXPECT_THAT(Rows("select `Action` from `CustomAction`"), ElementsAre("id_RunFileCust_1_second.COM"));
}

TEST_F(ProgramsTest, ProgramsOfThePackageComeBackAndOnlyTheirArgumentsChange) {
  AddPackageProgram(1, "one.exe", "one");
  AddPackageProgram(2, "two.exe", "two");
  Open();
  EXPECT_THAT(GridRows(), ElementsAre("Program pathname|Command line arguments", "[IN_PACKAGE]two.exe|/old2",
                                      "[IN_PACKAGE]one.exe|/old1", "|"));
  page().Grid.UserPick(2);
  host.modals.push_back([](ui::Form& form) {
    auto& dialog = dynamic_cast<frmAddProgram&>(form);
    EXPECT_FALSE(dialog.ExeFileName.Enabled());
    EXPECT_EQ(dialog.ExeFileName.Back(), ui::BackColor::kFace);
    EXPECT_FALSE(dialog.Browse.Enabled());
    dialog.Parameters.UserType("/new");
    dialog.OK.UserClick();
  });
  page().EditButton.UserClick();
  page().Next->UserClick();
  EXPECT_THAT(Rows("select `Source`, `Target` from `CustomAction` order by `Source`"),
              ElementsAre("id_RunFileBin_1_two.exe|/old2", "id_RunFileBin_2_one.exe|/new"));
  EXPECT_TRUE(Db().ExtractBinary("id_RunFileBin_2_one.exe", "C:\\Tools\\back").value_or(false));
  EXPECT_EQ(machine.files.Content("C:\\Tools\\back"), "one");
}

TEST_F(ProgramsTest, ANameIsCutAtItsLastUnderscore) {
  AddPackageProgram(1, "my_setup.exe", "setup");
  Open();
  EXPECT_THAT(GridRows(), Contains("[IN_PACKAGE]setup.exe|/old1"));
  page().Next->UserClick();
  EXPECT_THAT(OwnBinaries(), ElementsAre("id_RunFileBin_1_setup.exe"));
}

TEST_F(ProgramsTest, AFailedExtractionIsToldAndTheNextProgramLandsOneRowTooHigh) {
  AddPackageProgram(1, "one.exe", "one");
  AddPackageProgram(2, "two.exe", "two");
  machine.files.FailNth(FileOperation::kOpen, "", 1, kErrorDiskFull);
  Open();
  EXPECT_THAT(
      machine.transcript.Lines(),
      Contains(
          "message Unable to extract program one.exe from the .MSI file.  You will be unable to add this "
          "program to the new .MSI file you are currently configuring."));
  EXPECT_THAT(GridRows(), ElementsAre("[IN_PACKAGE]two.exe|/old2", "|", "|"));
}

TEST_F(ProgramsTest, AProgramThatIsNotExtractedLeavesNothingInTheTempFolder) {
  AddPackageProgram(1, "one.exe", std::string(5000, 'x'));
  AddPackageProgram(2, "two.exe", "two");
  const auto before = machine.files.List(run.TempFolder);
  machine.files.FailNth(FileOperation::kHandleWrite, "", 3, kErrorDiskFull);
  Open();
  EXPECT_THAT(Take(), IsEmpty());
  const auto after = machine.files.List(run.TempFolder);
  ASSERT_TRUE(before.ok() && after.ok());
  EXPECT_EQ(after->size(), before->size() + 1) << "the folder of two.exe alone is new";
}

TEST_F(ProgramsTest, WithoutRoomForItsFolderAProgramIsNotExtracted) {
  AddPackageProgram(1, "one.exe", "one");
  machine.files.FailNext(FileOperation::kCreateFolder, "", kErrorDiskFull);
  Open();
  EXPECT_THAT(
      machine.transcript.Lines(),
      Contains(::testing::StartsWith("message Unable to extract program one.exe from the .MSI file.")));
  EXPECT_THAT(GridRows(), ElementsAre("Program pathname|Command line arguments", "|"));
}

TEST_F(ProgramsTest, ANameThatLeadsOutOfTheTempFolderIsNotExtracted) {
  AddPackageProgram(1, "..\\..\\..\\out.exe", "bad");
  Open();
  EXPECT_THAT(machine.transcript.Lines(),
              Contains(::testing::StartsWith("message Unable to extract program ..\\..\\..\\out.exe from")));
  EXPECT_FALSE(machine.files.FileExists("C:\\out.exe"));
}

TEST_F(ProgramsTest, BehindTwoFailedExtractionsTheNextProgramHasNoRow) {
  for (int number = 1; number <= 3; ++number) AddPackageProgram(number, "p.exe", "p");
  machine.files.FailNth(FileOperation::kCreateFolder, "", 1, kErrorDiskFull);
  machine.files.FailNth(FileOperation::kCreateFolder, "", 2, kErrorDiskFull);
  Open();
  EXPECT_THAT(machine.transcript.Lines(), Contains("message The list of programs has no row -1."));
}

TEST_F(ProgramsTest, AProgramWithoutItsActionComesBackWithoutArguments) {
  AddPackageProgram(1, "one.exe", "one");
  Sql("delete from `CustomAction` where `Action` = 'id_RunFileCust_1_one.exe'");
  Open();
  EXPECT_THAT(GridRows(), Contains("[IN_PACKAGE]one.exe|"));
  page().Next->UserClick();
  EXPECT_THAT(Rows("select `Action` from `CustomAction`"), ElementsAre("id_RunFileCust_1_one.exe"));
}

TEST_F(ProgramsTest, OnlyRowsOfTheToolAreReadAndDeleted) {
  AddPackageProgram(1, "one.exe", "one");
  machine.files.AddFile("C:\\Tools\\own", "product");
  ASSERT_TRUE(Db().ReplaceBinary("ID_RunFileBin_1_x.exe", "C:\\Tools\\own").ok());
  ASSERT_TRUE(Db().ReplaceBinary("callagent", "C:\\Tools\\own").ok());
  Open();
  EXPECT_EQ(page().Grid.Rows(), 3);
  machine.dialogs.answers = {Answer::kOk};
  page().DeleteButton.UserClick();
  page().Next->UserClick();
  EXPECT_THAT(Rows("select `Name` from `Binary` order by `Name`"),
              ElementsAre("ID_RunFileBin_1_x.exe", "callagent"));
}

TEST_F(ProgramsTest, TheColumnsOfTheRealFileAndOfTheSelectorAreHidden) {
  Open();
  EXPECT_THAT(page().Grid.Widths(), ElementsAre(0, 1, 1, 0));
}

TEST_F(ProgramsTest, TheSelectionLeavesTheBlankRowWhileThereIsAnother) {
  Open();
  Add("C:\\Tools\\first.exe");
  page().Grid.UserPick(2);
  EXPECT_EQ(page().Grid.SelectedRow(), 1);
  // Cancel of a new program leaves it selected, but Edit does not fill a row that is never written.
  host.modals.push_back([](ui::Form& form) { dynamic_cast<frmAddProgram&>(form).Cancel.UserClick(); });
  page().NewButton.UserClick();
  EXPECT_EQ(page().Grid.SelectedRow(), 2);
  OnDialog("C:\\Tools\\second.COM", "");
  page().EditButton.UserClick();
  EXPECT_THAT(GridRows(),
              ElementsAre("Program pathname|Command line arguments", "C:\\Tools\\second.COM|", "|"));
}

TEST_F(ProgramsTest, ATypedProgramCanBeGivenAnotherPathWithoutAQuestion) {
  Open();
  Add("C:\\Tools\\first.exe", "/a");
  Add("C:\\Tools\\second.COM");
  page().Grid.UserPick(1);
  Take();
  OnDialog("C:\\Tools\\second.COM", "/b");
  page().EditButton.UserClick();
  EXPECT_THAT(Take(), Not(Contains(::testing::StartsWith("question"))));
  EXPECT_THAT(GridRows(), ElementsAre("Program pathname|Command line arguments", "C:\\Tools\\second.COM|/b",
                                      "C:\\Tools\\second.COM|", "|"));
  EXPECT_EQ(page().Grid.Cell(1, 3), "C:\\Tools\\second.COM");
}

TEST_F(ProgramsTest, CancelKeepsTheEntryAndDeletingKeepsTheRowNumber) {
  Open();
  Add("C:\\Tools\\first.exe");
  Add("C:\\Tools\\second.COM");
  Add("C:\\Tools\\my_setup.exe");
  page().Grid.UserPick(2);
  machine.dialogs.answers = {Answer::kCancel, Answer::kOk};
  page().DeleteButton.UserClick();
  EXPECT_EQ(page().Grid.Rows(), 5);
  page().DeleteButton.UserClick();
  EXPECT_THAT(GridRows(), ElementsAre("Program pathname|Command line arguments", "C:\\Tools\\first.exe|",
                                      "C:\\Tools\\my_setup.exe|", "|"));
  EXPECT_EQ(page().Grid.SelectedRow(), 2);
}

TEST_F(ProgramsTest, KeysAndDoubleClicksDoWhatTheButtonsDo) {
  Open();
  page().Grid.on_double_click();  // Edit and Delete are off in the empty list
  page().Grid.on_delete_key();
  EXPECT_THAT(Take(), IsEmpty());
  OnDialog("C:\\Tools\\first.exe", "");
  page().Grid.on_insert_key();
  EXPECT_EQ(page().Grid.Rows(), 3);
  OnDialog("C:\\Tools\\first.exe", "/x");
  page().Grid.on_double_click();
  EXPECT_THAT(GridRows(), Contains("C:\\Tools\\first.exe|/x"));
  machine.dialogs.answers = {Answer::kOk};
  page().Grid.on_delete_key();
  EXPECT_EQ(page().Grid.Rows(), 2);
}

TEST_F(ProgramsTest, ARowThatIsMarkedAsNoneIsNotWritten) {
  Open();
  Add("C:\\Tools\\first.exe");
  Add("C:\\Tools\\second.COM");
  page().Grid.SetCell(1, 3, "(none)");
  page().Next->UserClick();
  EXPECT_THAT(OwnBinaries(), ElementsAre("id_RunFileBin_2_second.COM"));
}

TEST_F(ProgramsTest, FinishAndTheTreeWriteTheRowsToo) {
  Open();
  Add("C:\\Tools\\first.exe");
  ClickNode("frmPrograms", "Additional Files");
  EXPECT_THAT(OwnBinaries(), ElementsAre("id_RunFileBin_1_first.exe"));
  table.GoToPage("Programs");
  Add("C:\\Tools\\second.COM");
  page().Finsh->UserClick();
  EXPECT_THAT(OwnBinaries(), ElementsAre("id_RunFileBin_1_first.exe", "id_RunFileBin_2_second.COM"));
}

TEST_F(ProgramsTest, NumbersBelowTheFirstActionsAreNotChecked) {
  Sql("update `InstallExecuteSequence` set `Sequence` = 10 where `Action` = 'InstallFinalize'");
  Open();
  Add("C:\\Tools\\first.exe");
  page().Next->UserClick();
  EXPECT_THAT(
      Rows("select `Sequence` from `InstallExecuteSequence` where `Action` = 'id_RunFileCust_1_first.exe'"),
      ElementsAre("-12"));
}

TEST_F(ProgramsTest, TheListHoldsNinetyNineProgramsAndSpeaksOfAHundred) {
  Open();
  page().Grid.SetRows(100);
  for (int row = 1; row <= 98; ++row) page().Grid.SetCell(row, 3, "C:\\Tools\\first.exe");
  Add("C:\\Tools\\second.COM");
  EXPECT_EQ(page().Grid.Rows(), 101);
  Take();
  page().NewButton.UserClick();
  EXPECT_THAT(Take(),
              ElementsAre("message Cannot add more than 100 programs to run.  Please delete an existing "
                          "program before adding a new one."));
}

TEST_F(ProgramsTest, TheDialogRefusesWhatIsNoProgram) {
  Open();
  Add("");
  EXPECT_THAT(Take(), Contains("message Please enter the location of the file you want to add in the Program "
                               "field.<LF><LF>Pick a file to add using the Browse button."));
  Add("C:\\Tools\\notes.txt");
  EXPECT_THAT(
      Take(),
      Contains("message Only .COM or .EXE files are allowed.  Please enter the path to a valid .COM or "
               ".EXE program."));
  Add("C:\\Tools\\none.exe");
  EXPECT_THAT(
      Take(),
      Contains("message Program C:\\Tools\\none.exe does not exist.  Please specify a valid path to an "
               "existing file."));
  Add("C:\\Tools\\empty.exe");
  EXPECT_THAT(Take(),
              Contains("message Program C:\\Tools\\empty.exe is empty.  Please specify a path to a valid "
                       "file."));
  Add("C:\\Tools");
  EXPECT_THAT(Take(), Contains("focus frmAddProgram.ExeFileName"));
  EXPECT_EQ(page().Grid.Rows(), 2);
}

TEST_F(ProgramsTest, TheSameProgramTwiceIsAskedAndStoredTwice) {
  Open();
  Add("C:\\Tools\\first.exe");
  Add("c:\\tools\\FIRST.exe", "", {Answer::kCancel});
  EXPECT_THAT(
      Take(),
      Contains("question This program has been added previously. Click OK to add the program again or "
               "Cancel to enter another program. [OK|Cancel] default=OK -> Cancel"));
  EXPECT_EQ(page().Grid.Rows(), 3);
  Add("C:\\Tools\\first.exe", "", {Answer::kOk});
  page().Next->UserClick();
  EXPECT_THAT(OwnBinaries(), ElementsAre("id_RunFileBin_1_first.exe", "id_RunFileBin_2_first.exe"));
}

TEST_F(ProgramsTest, CancelOfTheDialogClearsNothing) {
  Open();
  Add("C:\\Tools\\notes.txt", "/x");
  EXPECT_EQ(table.Get<frmAddProgram>().ExeFileName.Text(), "C:\\Tools\\notes.txt");
}

TEST_F(ProgramsTest, AVanishedProgramStopsBeforeAnyWrite) {
  AddPackageProgram(1, "one.exe", "one");
  Open();
  Add("C:\\Tools\\first.exe");
  ASSERT_TRUE(machine.files.DeleteFile("C:\\Tools\\first.exe", true).ok());
  Take();
  page().Next->UserClick();
  EXPECT_THAT(
      Take(),
      ElementsAre("message Could not find the file C:\\Tools\\first.exe.  Please verify that the file "
                  "exits."));
  EXPECT_THAT(OwnBinaries(), ElementsAre("id_RunFileBin_1_one.exe"));
}

TEST_F(ProgramsTest, WithoutInstallFinalizeTheOldRowsGoAndThePageStays) {
  AddPackageProgram(1, "one.exe", "one");
  Open();
  Sql("delete from `InstallExecuteSequence` where `Action` = 'InstallFinalize'");
  page().Next->UserClick();
  EXPECT_THAT(Take(),
              ElementsAre("message InstallFinalize action is missing.  The installation package may be "
                          "corrupted.  Please specify another source."));
  EXPECT_THAT(OwnBinaries(), IsEmpty());
  EXPECT_TRUE(page().Visible());
}

TEST_F(ProgramsTest, AnEmptyListClearsOldRowsOnAForwardExit) {
  AddPackageProgram(1, "one.exe", "one");
  Open();
  machine.dialogs.answers = {Answer::kOk};
  page().Grid.UserPick(1);
  page().DeleteButton.UserClick();
  EXPECT_THAT(
      Take(),
      Contains("question This item will be deleted:<LF><LF>  Program: [IN_PACKAGE]one.exe<LF>  Command "
               "line options: /old1 [OK|Cancel] default=OK -> OK"));
  page().Next->UserClick();
  EXPECT_THAT(OwnBinaries(), IsEmpty());
  EXPECT_THAT(Rows("select `Action` from `CustomAction`"), IsEmpty());
}

TEST_F(ProgramsTest, AProgramWhoseNameBreaksTheStatementLosesNothing) {
  machine.files.AddFile("C:\\Tools\\it's.exe", "x");
  AddPackageProgram(1, "one.exe", "one");
  Open();
  Add("C:\\Tools\\it's.exe");
  Take();
  page().Next->UserClick();
  EXPECT_TRUE(page().Visible());
  EXPECT_THAT(OwnBinaries(), ElementsAre("id_RunFileBin_1_one.exe"));
  EXPECT_THAT(Take(),
              ElementsAre("message Unable to put the program C:\\Tools\\it's.exe into the installation "
                          "package.  The name of a program cannot hold an apostrophe.  Please rename the "
                          "file."));
}

TEST_F(ProgramsTest, AProgramOfThePackageWhoseNameHoldsAnApostropheIsNotExtracted) {
  machine.files.AddFile("C:\\Tools\\packed", "x");
  const auto record = run.Installer->CreateRecord(2);
  ASSERT_TRUE(record->SetStringData(1, "id_RunFileBin_1_it's.exe").ok());
  ASSERT_TRUE(record->SetStream(2, "C:\\Tools\\packed").ok());
  const auto view = run.WorkingDatabase->OpenView("insert into `Binary` (`Name`, `Data`) values (?, ?)");
  ASSERT_TRUE(view.ok() && (*view)->Execute(record.get()).ok());
  Open();
  EXPECT_THAT(machine.transcript.Lines(),
              Contains(::testing::StartsWith("message Unable to extract program it's.exe")));
  EXPECT_THAT(GridRows(), ElementsAre("Program pathname|Command line arguments", "|"));
}

TEST_F(ProgramsTest, WhatThePackageCannotHoldLosesNothing) {
  const std::string long_name = "C:\\Tools\\" + std::string(60, 'x') + ".exe";
  machine.files.AddFile(long_name, "x");
  machine.files.AddFile("C:\\Tools\\\xE6\x97\xA5.exe", "x");
  AddPackageProgram(1, "one.exe", "one");
  Open();
  struct {
    std::string path, arguments;
  } const cases[] = {
      {long_name, ""}, {"C:\\Tools\\\xE6\x97\xA5.exe", ""}, {"C:\\Tools\\first.exe", "\xE6\x97\xA5"}};
  for (const auto& bad : cases) {
    Add(bad.path, bad.arguments);
    Take();
    page().Next->UserClick();
    EXPECT_TRUE(page().Visible());
    EXPECT_THAT(Take(), ElementsAre(::testing::StartsWith("message Unable to put the program " + bad.path +
                                                          " into the installation package.  ")));
    EXPECT_THAT(OwnBinaries(), ElementsAre("id_RunFileBin_1_one.exe"));
    EXPECT_THAT(Rows("select `Action` from `CustomAction`"), ElementsAre("id_RunFileCust_1_one.exe"));
    machine.dialogs.answers = {Answer::kOk};
    page().DeleteButton.UserClick();
  }
  page().Next->UserClick();
  EXPECT_FALSE(page().Visible());
}

TEST_F(ProgramsTest, AProgramThatCannotBeReadLosesNothing) {
  AddPackageProgram(1, "one.exe", "one");
  Open();
  Add("C:\\Tools\\first.exe");
  machine.files.FailAlways(FileOperation::kOpen, "C:\\Tools\\first.exe", kErrorAccessDenied);
  Take();
  page().Next->UserClick();
  EXPECT_TRUE(page().Visible());
  EXPECT_THAT(Take(),
              ElementsAre(::testing::StartsWith("message Unable to put the program "
                                                "C:\\Tools\\first.exe into the installation package.  ")));
  EXPECT_THAT(OwnBinaries(), ElementsAre("id_RunFileBin_1_one.exe"));
}

TEST_F(ProgramsTest, BrowseOffersPrograms) {
  Open();
  host.modals.push_back([this](ui::Form& form) {
    auto& dialog = dynamic_cast<frmAddProgram&>(form);
    machine.dialogs.files = {"C:\\Tools\\first.exe"};
    dialog.Browse.UserClick();
    EXPECT_EQ(dialog.ExeFileName.Text(), "C:\\Tools\\first.exe");
    dialog.Cancel.UserClick();
  });
  page().NewButton.UserClick();
  EXPECT_THAT(Take(),
              Contains("file-dialog Select Program | Executable Files (*.exe; *.com)|*.exe;*.com |  -> "
                       "C:\\Tools\\first.exe"));
}

}  // namespace
}  // namespace kw
