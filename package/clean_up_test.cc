#include "package/clean_up.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/fake_machine.h"

namespace kw {
namespace {

using platform::testing::FakeMachine;
using platform::testing::FileOperation;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kCouldNotRemove =
    "message Could not remove temporary files or folders. This may be because you have the files or folders "
    "open in another program.";

FileListPtr List(std::vector<std::string> names) {
  return std::make_unique<FileList>(FileList{std::move(names)});
}

struct CleanUpTest : ::testing::Test {
  void OpenRun() {
    run.TempFolder = "C:\\Temp\\_id_1";
    run.WorkingMsiPath = "C:\\Temp\\_id_1\\Kte710.msi";
    machine.files.AddFile(run.WorkingMsiPath, "database");
    machine.files.AddFile("C:\\Temp\\_id_1\\CabData\\a", "a", /*read_only=*/true);
  }
  FakeMachine machine;
  RunState run;
};

TEST_F(CleanUpTest, WithNothingStartedOnlyTheStagingBranchesAreCleared) {
  run.changes.ConfigChangedScan = true;
  machine.files.log.clear();
  CleanUpRun(machine.services, run);
  EXPECT_THAT(
      machine.transcript.Take(),
      ElementsAre(::testing::StartsWith("call zedutil.REG_SHDeleteKey(HKEY_CURRENT_USER, "
                                        "\"SOFTWARE\\Orvantic\\ZED_Backup\")"),
                  ::testing::StartsWith(
                      "call zedutil.REG_SHDeleteKey(HKEY_CURRENT_USER, \"SOFTWARE\\Orvantic\\ZED\")")));
  EXPECT_FALSE(run.changes.Any());
  EXPECT_THAT(machine.files.log, Not(Contains(::testing::HasSubstr("delete"))));
}

TEST_F(CleanUpTest, TheLibraryIsCalledFromTheProgramsFolder) {
  ASSERT_TRUE(machine.files.SetCurrentFolder("C:\\Temp").ok());
  ClearStagingBranches(machine.services, run);
  EXPECT_EQ(machine.files.CurrentFolder(), "C:\\Kitwright");
}

TEST_F(CleanUpTest, RemovesTheWorkingDatabaseTheTempFolderAndTheExtractedSource) {
  OpenRun();
  run.DestinationFileList = List({"A"});
  run.ConsolePackageFiles = List({"B"});
  run.SourceFolder = "C:\\Temp\\_id_2";
  run.UserSourceFolder = "C:\\Packages\\SFX";
  run.SourceWasExtracted = true;
  machine.files.AddFile("C:\\Temp\\_id_2\\Setup.ini", "", /*read_only=*/true);
  CleanUpRun(machine.services, run);
  EXPECT_THAT(machine.files.Tree("C:\\Temp"), IsEmpty());
  EXPECT_EQ(run.TempFolder, "");
  EXPECT_EQ(run.WorkingMsiPath, "");
  EXPECT_EQ(run.SourceFolder, "C:\\Packages\\SFX");
  EXPECT_FALSE(run.SourceWasExtracted);
  EXPECT_FALSE(run.DestinationFileList || run.ConsolePackageFiles);
  EXPECT_THAT(machine.transcript.Take(), Not(Contains(kCouldNotRemove)));
}

TEST_F(CleanUpTest, AFolderHeldOpenIsToldAndTriedAgainByTheNextCleanUp) {
  OpenRun();
  machine.files.FailNext(FileOperation::kDeleteFolder, run.TempFolder, kErrorSharingViolation);
  CleanUpRun(machine.services, run);
  EXPECT_THAT(machine.transcript.Take(), Contains(kCouldNotRemove).Times(1));
  EXPECT_EQ(run.TempFolder, "C:\\Temp\\_id_1");
  CleanUpRun(machine.services, run);
  EXPECT_EQ(run.TempFolder, "");
  EXPECT_THAT(machine.files.Tree("C:\\Temp"), IsEmpty());
}

TEST_F(CleanUpTest, ATempFolderThatIsGoneIsNoFailure) {
  run.TempFolder = "C:\\Temp\\_id_gone";
  CleanUpRun(machine.services, run);
  EXPECT_THAT(machine.transcript.Take(), Not(Contains(kCouldNotRemove)));
}

TEST_F(CleanUpTest, AWorkingDatabaseThatIsGoneOrLockedIsToldOnce) {
  OpenRun();
  machine.files.FailNext(FileOperation::kDeleteFile, run.WorkingMsiPath, kErrorSharingViolation);
  CleanUpRun(machine.services, run);
  EXPECT_THAT(machine.transcript.Take(), Contains(kCouldNotRemove).Times(1));
  EXPECT_EQ(run.WorkingMsiPath, "");
}

TEST_F(CleanUpTest, AnExtractedSourceThatCannotBeRemovedIsToldAndForgotten) {
  run.SourceFolder = "C:\\Temp\\gone";
  run.UserSourceFolder = "C:\\SFX";
  run.SourceWasExtracted = true;
  RemoveExtractedSource(machine.services, run);
  EXPECT_THAT(machine.transcript.Take(), ElementsAre(kCouldNotRemove));
  EXPECT_EQ(run.SourceFolder, "C:\\SFX");
  RemoveExtractedSource(machine.services, run);
  EXPECT_THAT(machine.transcript.Take(), IsEmpty());
}

struct UndoDestinationTest : CleanUpTest {
  UndoDestinationTest() {
    run.DestinationFolder = "C:\\Out";
    machine.files.AddFile("C:\\Out\\Kte710.msi", "x", /*read_only=*/true);
    machine.files.AddFile("C:\\Out\\BCN\\bcn470.msi", "x");
    machine.files.AddFile("C:\\Out\\BWK\\bwk.opv", "x");
    run.DestinationFileList = List({"KTE710.MSI", "GONE.TXT"});
    run.BeaconryFileList = List({"BCN470.MSI"});
    run.BulwarkFileList = List({"BWK.OPV"});
  }
};

TEST_F(UndoDestinationTest, RemovesWhatTheRunCopiedAndAFolderThatTheRunMade) {
  run.DestinationInUse = true;
  UndoDestination(machine.services, run);
  EXPECT_FALSE(machine.files.FolderExists("C:\\Out"));
}

TEST_F(UndoDestinationTest, KeepsADestinationOfTheUserEvenIfItIsEmpty) {
  UndoDestination(machine.services, run);
  EXPECT_TRUE(machine.files.FolderExists("C:\\Out"));
  EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
}

TEST_F(UndoDestinationTest, KeepsADestinationIntoWhichTheUserPutAFile) {
  run.DestinationInUse = true;
  machine.files.AddFile("C:\\Out\\mine.txt", "x");
  UndoDestination(machine.services, run);
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("mine.txt"));
}

TEST_F(UndoDestinationTest, KeepsACompanionFolderThatHoldsSomethingElse) {
  machine.files.AddFile("C:\\Out\\BCN\\mine.txt", "x");
  UndoDestination(machine.services, run);
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("BCN\\mine.txt"));
}

TEST_F(UndoDestinationTest, KeepsWhatLayThereToBePacked) {
  run.DestinationInUse = true;
  machine.files.AddFile("C:\\Out\\hotfix.msp", "x");
  run.DestinationFileList->names.push_back("HOTFIX.MSP");
  run.DestinationFileList->kept.insert("Hotfix.msp");
  UndoDestination(machine.services, run);
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("hotfix.msp"));
}

TEST_F(UndoDestinationTest, RemovesTheConsolesCatalogueToo) {
  machine.files.AddFile("C:\\Out\\PkgCatalog.z", "x");
  UndoDestination(machine.services, run);
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\PkgCatalog.z"));
}

TEST_F(UndoDestinationTest, WithoutAListNothingIsTouched) {
  run.DestinationFileList.reset();
  run.BeaconryFileList.reset();
  run.BulwarkFileList.reset();
  machine.files.AddFile("C:\\Out\\PkgCatalog.z", "x");
  UndoDestination(machine.services, run);
  EXPECT_THAT(machine.files.Tree("C:\\Out"),
              ElementsAre("BCN\\bcn470.msi", "BWK\\bwk.opv", "Kte710.msi", "PkgCatalog.z"));
}

TEST_F(UndoDestinationTest, TakesBackTheFirewallsProgramThoughNoListNamesIt) {
  machine.files.AddFile("C:\\Out\\BWK\\Bulwark.EXE", "x");
  run.BulwarkProgramCopied = true;
  UndoDestination(machine.services, run);
  EXPECT_FALSE(machine.files.FolderExists("C:\\Out\\BWK"));
}

TEST_F(UndoDestinationTest, LeavesAFirewallProgramThatTheRunDidNotCopy) {
  machine.files.AddFile("C:\\Out\\BWK\\Bulwark.EXE", "x");
  UndoDestination(machine.services, run);
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("BWK\\Bulwark.EXE"));
}

TEST_F(UndoDestinationTest, DiscardingLetsGoOfADestinationThatTheRunMadeAndOfNoOther) {
  DiscardDestination(machine.services, run);
  EXPECT_TRUE(machine.files.FileExists("C:\\Out\\Kte710.msi"));
  run.DestinationInUse = true;
  DiscardDestination(machine.services, run);
  EXPECT_FALSE(machine.files.FolderExists("C:\\Out"));
  EXPECT_FALSE(run.DestinationInUse);
}

}  // namespace
}  // namespace kw
