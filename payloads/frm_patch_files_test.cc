#include "payloads/frm_patch_files.h"

#include "pages/open_package_test_support.h"

namespace kw {
namespace {

using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FileOperation;
using ::testing::IsEmpty;
using testing::PageFixture;

const std::string kDialog = "file-dialog Select Patch File to Install | Patch Files (*.msp)|*.msp | ";
const std::string kNoPatch =
    "message You attempted to add a file that does not have the .MSP extension.  Please select a valid patch "
    "file with the .MSP extension or click Cancel to return to the wizard.";
const std::string kDuplicate =
    "message You attempted to add a duplicate file.  Please select a different file or click Cancel to "
    "return to the wizard.";

struct PatchFilesTest : PageFixture<frmPatchFiles>, ::testing::Test {
  PatchFilesTest() {
    for (const char* name : {"C:\\P\\one.msp", "C:\\P\\two.msp", "C:\\P\\three.msp", "C:\\Q\\ONE.MSP"})
      machine.files.AddFile(name, name);
  }
  frmPatchFiles& Open(const std::string& startup = "") {
    WriteStartup(startup);
    page().ReadConfig();
    return page();
  }
  std::vector<std::string> Add(std::deque<std::string> files) {
    if (!page().Visible()) Show<frmPatchFiles>("Patch Files");
    machine.dialogs.files = std::move(files);
    page().Add.UserClick();
    return Take();
  }
  std::vector<std::string> Edit(std::deque<std::string> files) {
    machine.dialogs.files = std::move(files);
    page().Edit.UserClick();
    return Take();
  }
  void AddThree() {
    Open();
    for (const char* name : {"C:\\P\\one.msp", "C:\\P\\two.msp", "C:\\P\\three.msp"}) Add({name});
  }
};

TEST_F(PatchFilesTest, WithoutPatchesOnlyAddIsOffered) {
  Open();
  EXPECT_TRUE(page().Add.Enabled());
  EXPECT_FALSE(page().Edit.Enabled());
  EXPECT_FALSE(page().Delete.Enabled());
  EXPECT_THAT(
      Choices<frmPatchFiles>(),
      ElementsAre("\tThe following patch files should be added to the installation package: None", ""));
  EXPECT_TRUE(machine.files.FolderExists("C:\\Temp\\run\\Patches"));
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(SetupIni(), "[Startup]\r\n");
  EXPECT_FALSE(run.DestinationFileList);
}

TEST_F(PatchFilesTest, PatchesOfThePackageKeepTheirSpellingAndLeaveItsIniFile) {
  machine.files.AddFile("C:\\Source\\Fix1.msp", "1");
  machine.files.AddFile("C:\\Source\\Fix2.msp", "2");
  Open("PatchFile0=Fix1.msp\r\nProduct=K\r\nPatchFile1=Fix2.msp\r\n");
  EXPECT_THAT(page().PatchFiles.Items(), ElementsAre("C:\\Source\\Fix1.msp", "C:\\Source\\Fix2.msp"));
  EXPECT_EQ(page().PatchFiles.Selected(), 1);
  EXPECT_TRUE(page().Edit.Enabled());
  EXPECT_TRUE(page().Delete.Enabled());
  EXPECT_EQ(SetupIni(), "[Startup]\r\nProduct=K\r\n");
  // A file of the same path from the dialog is no duplicate of it, since that comes in upper case.
  EXPECT_THAT(Add({"C:\\Source\\Fix1.msp"}), ElementsAre(kDialog + " -> C:\\Source\\Fix1.msp"));
  EXPECT_EQ(page().PatchFiles.Count(), 3);
}

TEST_F(PatchFilesTest, ReadingStopsAtTheFirstGap) {
  machine.files.AddFile("C:\\Source\\Fix1.msp", "1");
  machine.files.AddFile("C:\\Source\\Fix3.msp", "3");
  Open("PatchFile0=Fix1.msp\r\nPatchFile2=Fix3.msp\r\n");
  EXPECT_THAT(page().PatchFiles.Items(), ElementsAre("C:\\Source\\Fix1.msp"));
  EXPECT_EQ(SetupIni(), "[Startup]\r\nPatchFile2=Fix3.msp\r\n");
}

TEST_F(PatchFilesTest, APatchThatIsMissingFromTheSourceIsToldAndDropped) {
  machine.files.AddFile("C:\\Source\\Fix2.msp", "2");
  Open("PatchFile0=gone.msp\r\nPatchFile1=Fix2.msp\r\n");
  EXPECT_THAT(Steps(),
              ElementsAre("message This package has specified the patch file gone.msp for installation. "
                          "However, the file could not be found.  You may configure patches later on "
                          "the Patch page."));
  EXPECT_THAT(page().PatchFiles.Items(), ElementsAre("C:\\Source\\Fix2.msp"));
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(SetupIni(), "[Startup]\r\nPatchFile0=Fix2.msp\r\n");
}

TEST_F(PatchFilesTest, ASecondSourcesPatchesAreAppended) {
  machine.files.AddFile("C:\\Source\\Fix1.msp", "1");
  Open("PatchFile0=Fix1.msp\r\n");
  Open("PatchFile0=Fix1.msp\r\n");
  EXPECT_EQ(page().PatchFiles.Count(), 2);
}

TEST_F(PatchFilesTest, AddedPatchesStandInUpperCaseInTheirOrder) {
  AddThree();
  EXPECT_THAT(Choices<frmPatchFiles>(),
              ElementsAre("\tThe following patch files should be added to the installation package: ",
                          "\tC:\\P\\ONE.MSP", "\tC:\\P\\TWO.MSP", "\tC:\\P\\THREE.MSP", ""));
  EXPECT_EQ(page().PatchFiles.Selected(), 2);
  EXPECT_EQ(page().PatchFiles.HorizontalExtent(), 6 * 17);
}

TEST_F(PatchFilesTest, AddAsksAgainUntilAPatchThatIsNewIsChosen) {
  Open();
  Add({"C:\\P\\one.msp"});
  EXPECT_THAT(Add({"C:\\a.msp.txt", "c:\\p\\One.Msp", "C:\\Q\\ONE.MSP"}),
              ElementsAre(kDialog + " -> C:\\a.msp.txt", kNoPatch, kDialog + " -> c:\\p\\One.Msp", kDuplicate,
                          kDialog + " -> C:\\Q\\ONE.MSP"));
  EXPECT_THAT(page().PatchFiles.Items(), ElementsAre("C:\\P\\ONE.MSP", "C:\\Q\\ONE.MSP"));
}

TEST_F(PatchFilesTest, ACancelledAddChangesNothing) {
  Open();
  EXPECT_THAT(Add({""}), ElementsAre(kDialog + " -> cancel"));
  EXPECT_THAT(Add({"C:\\a.txt", ""}),
              ElementsAre(kDialog + " -> C:\\a.txt", kNoPatch, kDialog + " -> cancel"));
  EXPECT_EQ(page().PatchFiles.Count(), 0);
  EXPECT_FALSE(page().Edit.Enabled());
}

TEST_F(PatchFilesTest, TheListAnswersDoubleClicksAndKeysAsItsButtonsDo) {
  Open();
  Show<frmPatchFiles>("Patch Files");
  page().PatchFiles.on_double_click();  // both buttons are off
  page().PatchFiles.on_delete_key();
  EXPECT_THAT(Take(), IsEmpty());
  machine.dialogs.files = {"C:\\P\\one.msp"};
  page().PatchFiles.on_insert_key();
  EXPECT_THAT(page().PatchFiles.Items(), ElementsAre("C:\\P\\ONE.MSP"));
  machine.dialogs.files = {"C:\\P\\two.msp"};
  page().PatchFiles.on_double_click();
  EXPECT_THAT(page().PatchFiles.Items(), ElementsAre("C:\\P\\TWO.MSP"));
  machine.dialogs.answers = {Answer::kOk};
  page().PatchFiles.on_delete_key();
  EXPECT_THAT(page().PatchFiles.Items(), IsEmpty());
}

TEST_F(PatchFilesTest, EditReplacesTheSelectedLineInItsPlace) {
  AddThree();
  page().PatchFiles.UserPick(1);
  const auto lines = Edit({"C:\\a.txt", "C:\\P\\three.msp", "C:\\Q\\one.msp"});
  EXPECT_THAT(lines, Contains(kNoPatch));
  EXPECT_THAT(lines, Contains(kDuplicate));
  EXPECT_THAT(page().PatchFiles.Items(), ElementsAre("C:\\P\\ONE.MSP", "C:\\Q\\ONE.MSP", "C:\\P\\THREE.MSP"));
  EXPECT_EQ(page().PatchFiles.Selected(), 1);
}

TEST_F(PatchFilesTest, ACancelledEditReplacesTheLineByItsUpperCasedSelf) {
  machine.files.AddFile("C:\\Source\\Fix1.msp", "1");
  Open("PatchFile0=Fix1.msp\r\n");
  Show<frmPatchFiles>("Patch Files");
  EXPECT_THAT(Edit({""}), ElementsAre(kDialog + "C:\\Source\\Fix1.msp -> cancel"));
  EXPECT_THAT(page().PatchFiles.Items(), ElementsAre("C:\\SOURCE\\FIX1.MSP"));
}

TEST_F(PatchFilesTest, ACancelledEditOfALineThatIsRefusedItselfChangesNothing) {
  for (const char* name : {"Fix.exe", "Fix1.msp"})
    machine.files.AddFile(std::string("C:\\Source\\") + name, "1");
  Open("PatchFile0=Fix.exe\r\nPatchFile1=Fix1.msp\r\n");
  Show<frmPatchFiles>("Patch Files");
  Add({"C:\\Source\\Fix1.msp"});
  page().PatchFiles.UserPick(0);
  EXPECT_THAT(Edit({""}), ElementsAre(kDialog + "C:\\Source\\Fix.exe -> cancel"));
  page().PatchFiles.UserPick(1);
  EXPECT_THAT(Edit({"C:\\Source\\Fix1.msp", ""}),
              ElementsAre(kDialog + "C:\\Source\\Fix1.msp -> C:\\Source\\Fix1.msp", kDuplicate,
                          kDialog + "C:\\Source\\Fix1.msp -> cancel"));
  EXPECT_THAT(page().PatchFiles.Items(),
              ElementsAre("C:\\Source\\Fix.exe", "C:\\Source\\Fix1.msp", "C:\\SOURCE\\FIX1.MSP"));
}

TEST_F(PatchFilesTest, DeletingSelectsTheLineAboveAndForTheFirstTheOneBelow) {
  AddThree();
  machine.dialogs.answers = {Answer::kCancel};
  page().Delete.UserClick();
  EXPECT_THAT(Take(), ElementsAre("question This item will be deleted:<LF><LF>File name: C:\\P\\THREE.MSP "
                                  "[OK|Cancel] default=OK -> Cancel"));
  EXPECT_EQ(page().PatchFiles.Count(), 3);
  machine.dialogs.answers = {Answer::kOk, Answer::kOk, Answer::kOk};
  page().Delete.UserClick();
  EXPECT_EQ(page().PatchFiles.Selected(), 1);
  page().PatchFiles.UserPick(0);
  page().Delete.UserClick();
  EXPECT_THAT(page().PatchFiles.Items(), ElementsAre("C:\\P\\TWO.MSP"));
  EXPECT_EQ(page().PatchFiles.Selected(), 0);
  page().Delete.UserClick();
  EXPECT_EQ(page().PatchFiles.Count(), 0);
  EXPECT_FALSE(page().Edit.Enabled());
  EXPECT_FALSE(page().Delete.Enabled());
  EXPECT_EQ(page().PatchFiles.HorizontalExtent(), 0);
}

TEST_F(PatchFilesTest, SavingNumbersTheListWithoutGaps) {
  AddThree();
  page().PatchFiles.UserPick(0);
  machine.dialogs.answers = {Answer::kOk};
  page().Delete.UserClick();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(SetupIni(), "[Startup]\r\nPatchFile0=TWO.MSP\r\nPatchFile1=THREE.MSP\r\n");
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("THREE.MSP", "TWO.MSP"));
  EXPECT_THAT(run.DestinationFileList->names, ElementsAre("TWO.MSP", "THREE.MSP"));
}

TEST_F(PatchFilesTest, OfTwoPatchesOfOneNameTheLaterLiesInTheDestination) {
  Open();
  Add({"C:\\P\\one.msp"});
  Add({"C:\\Q\\ONE.MSP"});
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(machine.files.Content("C:\\Out\\ONE.MSP"), "C:\\Q\\ONE.MSP");
  EXPECT_EQ(SetupIni(), "[Startup]\r\nPatchFile0=ONE.MSP\r\nPatchFile1=ONE.MSP\r\n");
}

TEST_F(PatchFilesTest, ACopyThatIsGivenUpStopsTheStepAndKeepsTheKeysBeforeIt) {
  AddThree();
  machine.files.FailAlways(FileOperation::kCopyFile, "C:\\Out\\TWO.MSP", kErrorDiskFull);
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_EQ(SetupIni(), "[Startup]\r\nPatchFile0=ONE.MSP\r\n");
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("ONE.MSP"));
}

TEST_F(PatchFilesTest, AKeyThatCannotBeWrittenFailsTheStepWithoutAWord) {
  AddThree();
  machine.files.FailNext(FileOperation::kWriteFile, run.WorkingSetupIniPath, kErrorDiskFull);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(PatchFilesTest, AnEditThatIsRefusedBeginsAgainWithItsOwnLine) {
  AddThree();
  EXPECT_THAT(Edit({"C:\\a.txt", ""}), ElementsAre(kDialog + "C:\\P\\THREE.MSP -> C:\\a.txt", kNoPatch,
                                                   kDialog + "C:\\P\\THREE.MSP -> cancel"));
  EXPECT_EQ(page().PatchFiles.Items().back(), "C:\\P\\THREE.MSP");
}

TEST_F(PatchFilesTest, AnEditMayKeepItsOwnNameInAnotherSpelling) {
  AddThree();
  Edit({"c:\\p\\Three.msp"});
  EXPECT_THAT(page().PatchFiles.Items(), ElementsAre("C:\\P\\ONE.MSP", "C:\\P\\TWO.MSP", "C:\\P\\THREE.MSP"));
}

TEST_F(PatchFilesTest, EveryWayOutIsOpenAndWritesNothing) {
  AddThree();
  for (const char* way : {"Next", "Back", "Finsh"}) {
    SCOPED_TRACE(way);
    frmPatchFiles& shown = Show<frmPatchFiles>("Patch Files");
    (way[0] == 'N' ? shown.Next : way[0] == 'B' ? shown.Back : shown.Finsh)->UserClick();
    EXPECT_FALSE(page().Visible());
    EXPECT_THAT(Steps(), Contains("hide frmPatchFiles"));
  }
  Show<frmPatchFiles>("Patch Files");
  ClickNode("frmPatchFiles", "Features");
  EXPECT_FALSE(page().Visible());
  EXPECT_EQ(SetupIni(), "[Startup]\r\n");
  EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
}

}  // namespace
}  // namespace kw
