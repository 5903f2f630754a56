#include "package/file_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "package/staging.h"
#include "platform/testing/fake_machine.h"
#include "ui/testing/fake_form_host.h"

namespace kw {
namespace {

using platform::testing::FakeMachine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr unsigned kForm = kCheckLocal | kCheckUnc;

struct ValidatePathTest : ::testing::Test {
  std::vector<std::string> Refuse(const std::string& path, unsigned checks) {
    EXPECT_FALSE(ValidatePath(machine.services, "The path", path, checks));
    return machine.transcript.Take();
  }
  void Pass(const std::string& path, unsigned checks) {
    EXPECT_TRUE(ValidatePath(machine.services, "The path", path, checks)) << path;
    EXPECT_THAT(machine.transcript.Take(), IsEmpty());
  }
  FakeMachine machine;
};

TEST_F(ValidatePathTest, APathOf256CharactersPassesAndOneMoreIsTooLong) {
  Pass("C:\\" + std::string(253, 'a'), kForm);
  EXPECT_THAT(
      Refuse("C:\\" + std::string(254, 'a'), kForm),
      ElementsAre("message The path is too long.  Please provide a shorter path name and try again."));
}

TEST_F(ValidatePathTest, TheLengthCountsCharactersNotBytes) {
  std::string path = "C:\\";
  for (int i = 0; i < 253; ++i) path += "ü";
  Pass(path, kForm);
}

TEST_F(ValidatePathTest, DoubledBackslashesAreAllowedAtTheBeginningOnly) {
  const auto refusal = ElementsAre(
      "message The path contains too many backslahes.  Please provide a path name without multiple "
      "sequential backslashes.");
  Pass("\\\\server\\share", kForm);
  EXPECT_THAT(Refuse("C:\\a\\\\b", kForm), refusal);
  EXPECT_THAT(Refuse("\\\\server\\\\share", kForm), refusal);
}

TEST_F(ValidatePathTest, TheFormIsRefusedInTheWordsOfWhatIsAllowed) {
  EXPECT_THAT(Refuse("\\\\s\\x", kCheckLocal),
              ElementsAre("message The path \\\\s\\x is not valid.  Please specify a valid local path."));
  EXPECT_THAT(Refuse("C:\\x", kCheckUnc),
              ElementsAre("message The path C:\\x is not valid.  Please specify a valid UNC path."));
  EXPECT_THAT(Refuse("x", kForm),
              ElementsAre("message The path x is not valid.  Please specify a valid local or UNC path."));
  Pass("x", kCheckCharacters);
}

TEST_F(ValidatePathTest, ARootIsRefusedOnlyWhereThatIsAsked) {
  EXPECT_THAT(Refuse("c:\\", kForm | kCheckNotRoot),
              ElementsAre("message The path cannot be the root of a disk.  Please specify another path."));
  Pass("c:\\", kForm);
  Pass("c:\\a", kForm | kCheckNotRoot);
}

TEST_F(ValidatePathTest, EachForbiddenCharacterIsRefused) {
  for (const char* path :
       {"C:\\a|b", "C:\\a>b", "C:\\a<b", "C:\\a\"b", "C:\\a?b", "C:\\a*b", "C:\\a:b", "\\\\s:\\b"}) {
    EXPECT_THAT(Refuse(path, kForm | kCheckCharacters),
                ElementsAre("message The path is not valid.  Folder and file names cannot contain any of the "
                            "following characters: | > < \\\" ? * :"))
        << path;
  }
  EXPECT_FALSE(HasForbiddenCharacter("C:\\a"));
  EXPECT_FALSE(HasForbiddenCharacter("ü:a"));
  EXPECT_TRUE(HasForbiddenCharacter("üü:"));
}

TEST_F(ValidatePathTest, AMissingFileAMissingFolderAndAnEmptyFileHaveTheirOwnWords) {
  machine.files.AddFile("C:\\empty.txt", "");
  machine.files.AddFile("C:\\full.txt", "x");
  EXPECT_THAT(Refuse("C:\\no.txt", kForm | kCheckFileExists),
              ElementsAre("message The path C:\\no.txt does not exist.  Please specify a valid path to an "
                          "existing file."));
  EXPECT_THAT(Refuse("C:\\no", kForm | kCheckFolderExists),
              ElementsAre("message The path C:\\no does not exist.  Please specify a valid path to an "
                          "existing folder."));
  EXPECT_THAT(
      Refuse("C:\\empty.txt", kForm | kCheckFileExists | kCheckFileNotEmpty),
      ElementsAre("message The path C:\\empty.txt is empty.  Please specify a path to a valid file."));
  Pass("C:\\full.txt", kForm | kCheckFileExists | kCheckFileNotEmpty);
  Pass("C:\\Temp", kForm | kCheckFolderExists);
}

TEST_F(ValidatePathTest, TheFirstFailureInTheFixedOrderIsShown) {
  EXPECT_THAT(
      Refuse("C:\\a\\\\b*", kForm | kCheckCharacters | kCheckFileExists),
      ElementsAre("message The path contains too many backslahes.  Please provide a path name without "
                  "multiple sequential backslashes."));
}

TEST_F(ValidatePathTest, SilentGivesFalseWithoutABoxAndTheBitsThatHold) {
  unsigned checks = kForm | kCheckCharacters | kCheckFileExists | kCheckNotRoot;
  EXPECT_FALSE(ValidatePath(machine.services, "The path", "C:\\no.txt", checks, true));
  EXPECT_EQ(checks, unsigned{kCheckCharacters | kCheckLocal | kCheckNotRoot});
  EXPECT_THAT(machine.transcript.Take(), IsEmpty());
}

TEST_F(ValidatePathTest, BitsTellTheFormAndTheExistence) {
  machine.files.AddFile("\\\\server\\share\\full.txt", "x");
  unsigned checks = kForm | kCheckFileExists | kCheckFileNotEmpty;
  EXPECT_TRUE(ValidatePath(machine.services, "The path", "\\\\server\\share\\full.txt", checks, false));
  EXPECT_EQ(checks,
            unsigned{kCheckCharacters | kCheckUnc | kCheckFileExists | kCheckFileNotEmpty | kCheckNotRoot});
}

TEST_F(ValidatePathTest, ExistenceIsNotLookedAtAfterAnEarlierFailure) {
  machine.files.AddFile("C:\\full.txt", "x");
  unsigned checks = kCheckUnc | kCheckFileExists;
  EXPECT_FALSE(ValidatePath(machine.services, "The path", "C:\\full.txt", checks, true));
  EXPECT_EQ(checks & kCheckFileExists, 0U);
}

TEST(PathFormTest, LocalAndUncPathsAreToldByTheirBeginning) {
  EXPECT_TRUE(IsLocalPath("c:\\"));
  EXPECT_TRUE(IsLocalPath("Z:\\a"));
  EXPECT_FALSE(IsLocalPath("1:\\a"));
  EXPECT_FALSE(IsLocalPath("C:"));
  EXPECT_TRUE(IsUncPath("\\\\s"));
  EXPECT_FALSE(IsUncPath("\\\\"));
}

struct FileCopyTest : ::testing::Test {
  FileCopyTest() {
    machine.files.AddFolder("C:\\To");
    machine.files.AddFile("C:\\From\\a file.txt", "new");
  }
  bool Copy() { return CopyFileToFolder(machine.services, "C:\\From\\a file.txt", "C:\\To", list); }
  FakeMachine machine;
  FileListPtr list;
};

TEST_F(FileCopyTest, CopiesAndNotesTheNameInUpperCase) {
  EXPECT_TRUE(Copy());
  EXPECT_EQ(machine.files.Content("C:\\To\\a file.txt"), "new");
  ASSERT_TRUE(list);
  EXPECT_THAT(list->names, ElementsAre("A FILE.TXT"));
}

TEST_F(FileCopyTest, AReadOnlySourceLeavesAWritableTarget) {
  machine.files.AddFile("C:\\From\\a file.txt", "new", /*read_only=*/true);
  EXPECT_TRUE(Copy());
  EXPECT_FALSE(machine.files.IsReadOnly("C:\\To\\a file.txt"));
  EXPECT_TRUE(machine.files.IsReadOnly("C:\\From\\a file.txt"));
}

TEST_F(FileCopyTest, AReadOnlyTargetIsReplaced) {
  machine.files.AddFile("C:\\To\\a file.txt", "old", /*read_only=*/true);
  EXPECT_TRUE(Copy());
  EXPECT_EQ(machine.files.Content("C:\\To\\a file.txt"), "new");
}

TEST_F(FileCopyTest, AFileThatLiesInTheFolderAlreadyIsListedAndNotTheRunsToDelete) {
  EXPECT_TRUE(CopyFileToFolder(machine.services, "C:\\from\\.\\A File.txt", "C:\\From", list));
  EXPECT_THAT(list->names, ElementsAre("A FILE.TXT"));
  EXPECT_TRUE(list->kept.contains("a file.txt"));
  EXPECT_EQ(machine.files.Content("C:\\From\\a file.txt"), "new");
  EXPECT_TRUE(Copy());
  EXPECT_THAT(list->kept, ::testing::SizeIs(1));
}

TEST_F(FileCopyTest, AMissingSourceIsAskedForUntilItIsThere) {
  machine.dialogs.answers = {platform::Answer::kRetry, platform::Answer::kCancel};
  EXPECT_FALSE(CopyFileToFolder(machine.services, "C:\\From\\no.txt", "C:\\To", list));
  const char* question =
      "question Could not copy the source file C:\\From\\no.txt.  Please verify that the file exists and "
      "that you have permissions to access it. [Retry|Cancel] default=Retry -> ";
  EXPECT_THAT(machine.transcript.Take(),
              ElementsAre(std::string(question) + "Retry", std::string(question) + "Cancel"));
  ASSERT_TRUE(list);
  EXPECT_THAT(list->names, IsEmpty());
}

TEST_F(FileCopyTest, AFailedCopyIsTriedAgainOnRetry) {
  machine.files.FailNext(platform::testing::FileOperation::kCopyFile, "C:\\From\\a file.txt", kErrorDiskFull);
  machine.dialogs.answers = {platform::Answer::kRetry};
  EXPECT_TRUE(Copy());
  EXPECT_THAT(machine.transcript.Take(),
              ElementsAre("question Could not copy file to C:\\To\\a file.txt.  Please verify that the file "
                          "does not already exist, that the folder is writable and that the drive is not "
                          "full. [Retry|Cancel] default=Retry -> Retry"));
  EXPECT_THAT(list->names, ElementsAre("A FILE.TXT"));
}

TEST_F(FileCopyTest, AFailedCopyIsGivenUpOnCancel) {
  machine.files.ProtectFolder("C:\\To");
  machine.dialogs.answers = {platform::Answer::kCancel};
  EXPECT_FALSE(Copy());
  EXPECT_THAT(list->names, IsEmpty());
}

TEST(MakeFolderPathTest, CreatesEveryFolderOnTheWay) {
  FakeMachine machine;
  MakeFolderPath(machine.services, "C:\\a\\b\\c");
  EXPECT_TRUE(machine.files.FolderExists("C:\\a\\b\\c"));
  MakeFolderPath(machine.services, "C:\\a\\b\\c\\");
  MakeFolderPath(machine.services, "X:\\nowhere");
  EXPECT_FALSE(machine.files.FolderExists("X:\\nowhere"));
}

struct RunAndWaitTest : ::testing::Test {
  int Run(const std::string& command) {
    return RunAndWait(machine.services, run, host, command, platform::WindowStyle::kHidden);
  }
  FakeMachine machine;
  ui::testing::FakeFormHost host{machine.transcript};
  RunState run;
};

TEST_F(RunAndWaitTest, ServesEventsUntilTheProgramEndsAndGivesItsExitCode) {
  platform::testing::FakeProcesses::Script script;
  script.exit_code = 7;
  script.polls = 3;
  script.window_title = "The tool";
  machine.processes.On("tool", script);
  EXPECT_EQ(Run("tool /x"), 7);
  EXPECT_GE(host.pumps, 3);
  EXPECT_EQ(run.ToolWindowTitle, "The tool");
  EXPECT_THAT(machine.transcript.Take(), ElementsAre("run[hidden] tool /x -> 7"));
}

TEST_F(RunAndWaitTest, ForgetsTheTitleOfTheToolBefore) {
  run.ToolWindowTitle = "before";
  EXPECT_EQ(Run("tool"), 0);
  EXPECT_EQ(run.ToolWindowTitle, "");
}

TEST_F(RunAndWaitTest, WhatAProgramLeavesBehindAnEndedRunIsTakenAway) {
  run.TempFolder = "C:\\Temp\\run";
  machine.processes.On("tool", platform::testing::FakeProcesses::Script{
                                   1,
                                   2,
                                   0,
                                   [this](const platform::testing::FakeCommand&) {
                                     machine.registry.SetDword(platform::Hive::kCurrentUser, kStagingBranch,
                                                               "x", 1);
                                     machine.files.AddFile("C:\\Temp\\run\\late.txt", "x");
                                   },
                                   {}});
  host.meanwhile.push_back([this] {
    run.TempFolder.clear();
    host.EndProgram();
  });
  EXPECT_EQ(Run("tool"), 0);
  EXPECT_FALSE(machine.registry.HasKey(platform::Hive::kCurrentUser, kStagingBranch));
  EXPECT_FALSE(machine.files.FolderExists("C:\\Temp\\run"));
}

TEST_F(RunAndWaitTest, BehindTheEndNoProgramIsStarted) {
  host.EndProgram();
  EXPECT_EQ(Run("tool"), 0);
  EXPECT_THAT(machine.processes.CommandLines(), ::testing::IsEmpty());
}

TEST_F(RunAndWaitTest, AProgramThatDoesNotStartGivesMinusOneWithoutAWord) {
  platform::testing::FakeProcesses::Script script;
  script.start_error = kErrorFileNotFound;
  machine.processes.On("tool", script);
  EXPECT_EQ(Run("tool"), -1);
}

// Links in the places that a run writes to.
struct LinkTest : ::testing::Test {
  LinkTest() {
    machine.files.AddFile("C:\\Elsewhere\\Setup.ini", "precious", true);
    machine.files.AddFile("C:\\Source\\Setup.ini", "new");
    machine.files.AddFolder("C:\\Out");
  }
  FakeMachine machine;
};

TEST_F(LinkTest, AFileIsCopiedInThePlaceOfALinkAndNotThroughIt) {
  machine.files.AddLink("C:\\Out\\Setup.ini", "C:\\Elsewhere\\Setup.ini");
  FileListPtr list;
  EXPECT_TRUE(CopyFileToFolder(machine.services, "C:\\Source\\Setup.ini", "C:\\Out", list));
  EXPECT_EQ(machine.files.Content("C:\\Out\\Setup.ini"), "new");
  EXPECT_EQ(machine.files.Content("C:\\Elsewhere\\Setup.ini"), "precious");
  EXPECT_TRUE(machine.files.IsReadOnly("C:\\Elsewhere\\Setup.ini"));
}

TEST_F(LinkTest, AFolderOfTheRunsOwnTakesThePlaceOfALink) {
  for (const char* target : {"C:\\Elsewhere", "C:\\Elsewhere\\Setup.ini"}) {
    machine.files.AddLink("C:\\Out\\BCN", target);
    EXPECT_TRUE(MakeOwnFolder(machine.services, "C:\\Out\\BCN").ok());
    EXPECT_TRUE(machine.files.FolderExists("C:\\Out\\BCN"));
    EXPECT_FALSE(machine.files.IsLink("C:\\Out\\BCN"));
    EXPECT_EQ(machine.files.Content("C:\\Elsewhere\\Setup.ini"), "precious");
    ASSERT_TRUE(machine.files.DeleteFolder("C:\\Out\\BCN", false).ok());
  }
}

TEST_F(LinkTest, AFolderOfTheRunsOwnThatIsThereIsKept) {
  machine.files.AddFile("C:\\Out\\BCN\\kept", "kept");
  EXPECT_TRUE(MakeOwnFolder(machine.services, "C:\\Out\\BCN").ok());
  EXPECT_EQ(machine.files.Content("C:\\Out\\BCN\\kept"), "kept");
}

}  // namespace
}  // namespace kw
