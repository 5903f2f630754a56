// The source page's checks of both folders, before a package is looked at.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shell/source_page_test_support.h"

namespace kw {
namespace {

using platform::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kNoPackage =
    "message Please enter a source folder containing a valid Kestrane Enterprise installation package";
constexpr const char* kFocusSource = "focus frmSourceAndDestination.SourceDir";
constexpr const char* kFocusDestination = "focus frmSourceAndDestination.DestinationDir";

struct SourcePageFolders : ::testing::Test, testing::SourcePageFixture {
  void TearDown() override { EXPECT_FALSE(IsBusy(page())); }
};

TEST_F(SourcePageFolders, AnEmptyOrMissingSourceIsRefused) {
  for (const char* text : {"", "C:\\Nowhere", "C:\\Source\\Setup.ini"}) {
    page().SourceDir.SetText(text);
    EXPECT_THAT(Next(), ElementsAre(std::string(kNoPackage) + ".", kFocusSource));
  }
}

TEST_F(SourcePageFolders, AnEmptyDestinationIsRefused) {
  page().DestinationDir.SetText("");
  EXPECT_THAT(Next(), ElementsAre("message Please enter a destination folder to which to copy the modified "
                                  "Kestrane Enterprise installation files.",
                                  kFocusDestination));
}

TEST_F(SourcePageFolders, TheSameFolderTwiceIsRefusedWithoutRegardToCaseAndTrailingBackslash) {
  page().DestinationDir.SetText("c:\\sOURCE\\");
  EXPECT_THAT(Next(),
              ElementsAre("message Source and destination folders cannot be the same.", kFocusSource));
}

TEST_F(SourcePageFolders, TheSameFolderIsRefusedInEverySpellingThatThePathRulesTake) {
  const auto refused =
      ElementsAre("message Source and destination folders cannot be the same.", kFocusSource);
  machine.files.AddLink("C:\\Link", "C:\\Source");
  for (const char* destination : {"C:\\.\\Source", "C:\\Source\\.", "c:\\Source\\..\\sOURCE", "C:\\Link"}) {
    page().DestinationDir.SetText(destination);
    EXPECT_THAT(Next(), refused) << destination;
  }
  page().SourceDir.SetText("C:\\Source\\\\");
  page().DestinationDir.SetText("C:\\Source");
  EXPECT_THAT(Next(), refused);
}

TEST_F(SourcePageFolders, ADestinationOf226CharactersPassesAndOneMoreDoesNot) {
  page().DestinationDir.SetText("C:\\Out\\" + std::string(220, 'd'));
  EXPECT_THAT(Next(), ElementsAre("message The destination folder path name is too long.  Please provide a "
                                  "shorter path name.",
                                  kFocusDestination));
  page().DestinationDir.SetText("C:\\Out\\" + std::string(219, 'd'));
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_THAT(Next(), ElementsAre(HasSubstr("does not exist.  Click OK"), kFocusDestination));
}

TEST_F(SourcePageFolders, ABadDestinationIsRefusedByThePathRules) {
  page().DestinationDir.SetText("C:\\Out\\a*b");
  EXPECT_THAT(Next(), ElementsAre("message Destination folder is not valid.  Folder and file names cannot "
                                  "contain any of the following characters: | > < \\\" ? * :",
                                  kFocusDestination));
  page().DestinationDir.SetText("Out");
  EXPECT_THAT(Next(),
              ElementsAre("message Destination folder Out is not valid.  Please specify a valid local "
                          "or UNC path.",
                          kFocusDestination));
}

TEST_F(SourcePageFolders, ASourceWithoutDatabaseAndSetupIsRefusedWithoutAFullStop) {
  machine.files.AddFolder("C:\\Empty");
  page().SourceDir.SetText("C:\\Empty");
  EXPECT_THAT(Next(), ElementsAre(kNoPackage, kFocusSource));
}

TEST_F(SourcePageFolders, AMissingDestinationIsAskedForAndCancelLeavesNoTrace) {
  page().DestinationDir.SetText("C:\\New\\Folder");
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_THAT(Next(),
              ElementsAre("question The destination folder \"C:\\New\\Folder\" does not exist.  Click "
                          "OK to create the folder or Cancel to specify another destination. "
                          "[OK|Cancel] default=OK -> Cancel",
                          kFocusDestination));
  EXPECT_FALSE(machine.files.FolderExists("C:\\New"));
  EXPECT_THAT(TempFiles(), IsEmpty());
  EXPECT_FALSE(run.DestinationInUse);
}

TEST_F(SourcePageFolders, AMissingDestinationIsMadeOnOk) {
  page().DestinationDir.SetText("C:\\New\\Folder");
  machine.dialogs.answers = {Answer::kOk};
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_TRUE(machine.files.FolderExists("C:\\New\\Folder"));
  EXPECT_TRUE(run.DestinationInUse);
}

TEST_F(SourcePageFolders, ADestinationThatCannotBeMadeIsToldAfterTheTempFolderIsGone) {
  page().DestinationDir.SetText("X:\\New");
  machine.dialogs.answers = {Answer::kOk};
  EXPECT_THAT(Next(), ElementsAre(HasSubstr("does not exist.  Click OK"),
                                  "message Unable to create the folder.  Please verify that the drive is "
                                  "accessible and that you have the correct permissions to create a folder.",
                                  kFocusDestination));
  EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(SourcePageFolders, ADestinationThatIsNotEmptyIsAskedFor) {
  machine.files.AddFile("C:\\Out\\mine.txt", "x");
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_THAT(Next(), ElementsAre("question The destination folder \"C:\\Out\" does not appear to be empty.  "
                                  "Tamrix recommends you use an empty folder so files are not overwritten.  "
                                  "Click OK to use this folder for the destination anyway or Cancel to "
                                  "specify another destination. [OK|Cancel] default=OK -> Cancel",
                                  kFocusDestination));
  EXPECT_THAT(TempFiles(), IsEmpty());
  machine.dialogs.answers = {Answer::kOk};
  Next();
  EXPECT_TRUE(Opened());
}

TEST_F(SourcePageFolders, ADestinationWithDotFilesOnlyCountsAsEmpty) {
  machine.files.AddFile("C:\\Out\\.hidden", "x");
  Next();
  EXPECT_TRUE(Opened());
}

TEST_F(SourcePageFolders, AWriteProtectedDestinationIsRefused) {
  machine.files.ProtectFolder("C:\\Out");
  EXPECT_THAT(Next(),
              ElementsAre("message The folder \"C:\\Out\" is write-protected.  Please verify that you "
                          "have provided a destination folder that is not write-protected.",
                          kFocusDestination));
  EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(SourcePageFolders, TheWriteTestLeavesNothingBehind) {
  Next();
  EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
  EXPECT_THAT(machine.files.log, Contains("write C:\\Out\\write.txt"));
}

TEST_F(SourcePageFolders, AFileNamedWriteTxtSkipsTheWriteTest) {
  machine.files.AddFile("C:\\Out\\write.txt", "mine");
  machine.dialogs.answers = {Answer::kOk};
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_EQ(machine.files.Content("C:\\Out\\write.txt"), "mine");
}

TEST_F(SourcePageFolders, AFileNamedWriteTxtThatCannotBeLookedAtIsLeftAlone) {
  machine.files.AddFile("C:\\Out\\write.txt", "mine");
  machine.files.FailNext(platform::testing::FileOperation::kGetFile, "C:\\Out\\write.txt", kErrorIo);
  machine.dialogs.answers = {Answer::kOk};
  EXPECT_THAT(Next(), Contains(HasSubstr("message The folder \"C:\\Out\" is write-protected.")));
  EXPECT_EQ(machine.files.Content("C:\\Out\\write.txt"), "mine");
}

TEST_F(SourcePageFolders, AnotherDestinationTakesBackTheOneThatTheRunMade) {
  page().DestinationDir.SetText("C:\\New");
  page().SourceDir.SetText("C:\\Damaged");
  machine.files.AddFile("C:\\Damaged\\Kte710.msi", "no database");
  machine.files.AddFile("C:\\Damaged\\Setup.ini", "");
  machine.dialogs.answers = {Answer::kOk};
  Next();
  EXPECT_TRUE(machine.files.FolderExists("C:\\New"));  // it stays while it is wanted
  EXPECT_TRUE(run.DestinationInUse);
  page().SourceDir.SetText("C:\\Source");
  page().DestinationDir.SetText("C:\\Out");
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_FALSE(machine.files.FolderExists("C:\\New"));
  EXPECT_FALSE(run.DestinationInUse);
}

TEST_F(SourcePageFolders, TrailingBackslashesAreTakenOffThePaths) {
  page().SourceDir.SetText("C:\\Source\\");
  page().DestinationDir.SetText("C:\\Out\\");
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_EQ(run.SourceMsiPath, "C:\\Source\\Kte710.msi");
  EXPECT_EQ(run.DestinationSetupIniPath, "C:\\Out\\Setup.ini");
}

TEST_F(SourcePageFolders, ADriveRootIsASourceLikeAnyOther) {
  package.WritePackage("C:\\");
  page().SourceDir.SetText("C:\\");
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_EQ(run.SourceFolder, "C:");
  EXPECT_EQ(run.SourceMsiPath, "C:\\Kte710.msi");
}

TEST_F(SourcePageFolders, BothBrowseButtonsHaveTheSameTitleAndStartFromTheirBoxes) {
  page().DestinationDir.SetText("");
  machine.dialogs.folders = {"C:\\Chosen", ""};
  page().DestinationBrowse.UserClick();
  page().SourceBrowse.UserClick();
  EXPECT_THAT(Steps(), ElementsAre("folder-dialog Select Source Folder | C:\\Kitwright -> C:\\Chosen",
                                   "folder-dialog Select Source Folder | C:\\Source -> cancel"));
  EXPECT_EQ(page().DestinationDir.Text(), "C:\\Chosen");
  EXPECT_EQ(page().SourceDir.Text(), "C:\\Source");
}

TEST_F(SourcePageFolders, ItsTextsAreThoseOfTheProduct) {
  EXPECT_EQ(page().Title.Text(), "Source and Destination");
  EXPECT_EQ(page().Description.Text(), "Specify source folder, destination folder and optimization option.");
  EXPECT_EQ(page().Label2.Text() + page().Label3.Text(), "&Source folder:&Destination folder:");
  EXPECT_EQ(page().SourceBrowse.Text() + page().DestinationBrowse.Text(), "B&rowse...Bro&wse...");
  EXPECT_EQ(page().Optimize.Text(),
            "Create an &optimized installation package (a minimum of 256 MB RAM is required)");
}

TEST_F(SourcePageFolders, TheReviewLinesNameBothFolders) {
  ui::ListBox& list =
      dynamic_cast<ui::ListBox&>(*table.FormByName("frmReviewConfiguration").FindControl("List1"));
  page().AddChoices(list);
  EXPECT_THAT(list.Items(), ElementsAre("\tSource folder: C:\\Source", "\tDestination folder: C:\\Out", ""));
}

TEST_F(SourcePageFolders, CancelAndCloseEndWithoutAQuestionAndTakeBackTheDestination) {
  run.DestinationFolder = "C:\\Out";
  run.DestinationInUse = true;
  page().Cancel->UserClick();
  EXPECT_THAT(Steps(), ElementsAre("end"));
  EXPECT_FALSE(machine.files.FolderExists("C:\\Out"));

  testing::SourcePageFixture other;
  other.page().UserClose();
  EXPECT_THAT(other.Steps(), Contains("end"));
}

TEST(OptimizeBox, FollowsTheMemoryAtLoad) {
  testing::SourcePageFixture enough;
  EXPECT_TRUE(enough.page().Optimize.Checked());
  EXPECT_TRUE(enough.page().Optimize.Enabled());
  testing::ShellFixture little;
  little.run.EnoughMemory = false;
  auto& page = little.table.Get<frmSourceAndDestination>();
  EXPECT_FALSE(page.Optimize.Checked());
  EXPECT_FALSE(page.Optimize.Enabled());
}

}  // namespace
}  // namespace kw
