// The source page opens a package: what it refuses, what it makes, and what every page is given.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/exit_codes.h"
#include "package/installer_db.h"
#include "package/source_package.h"
#include "shell/source_page_test_support.h"

namespace kw {
namespace {

using platform::Answer;
using platform::testing::FileOperation;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kNoPackage =
    "message Please enter a source folder containing a valid Kestrane Enterprise installation package";
constexpr const char* kFocusSource = "focus frmSourceAndDestination.SourceDir";
constexpr const char* kTemp = "C:\\Temp\\_id_3201511453";

struct SourcePagePackage : ::testing::Test, testing::SourcePageFixture {
  void TearDown() override { EXPECT_FALSE(IsBusy(page())); }
  /// The attempt was refused with these last words, and nothing is left of it.
  void ExpectRefusal(const std::string& message) {
    EXPECT_THAT(Next(), Contains("message " + message).Times(1));
    EXPECT_FALSE(Opened());
    EXPECT_THAT(TempFiles(), IsEmpty());
    EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
    EXPECT_FALSE(run.WorkingDatabase);
    EXPECT_EQ(run.TempFolder, "");
  }
  void SourceIsSetupAlone(const std::string& original_name) {
    machine.files.AddFile("C:\\Sfx\\SETUP.EXE", "program");
    versions.blocks["C:\\Sfx\\SETUP.EXE"] = testing::VersionWithOriginalName(original_name);
    page().SourceDir.SetText("C:\\Sfx");
  }
};

TEST_F(SourcePagePackage, AGoodPackageIsCopiedOpenedAndUnpacked) {
  const auto lines = Next();
  EXPECT_TRUE(Opened());
  const std::string temp = run.TempFolder;
  EXPECT_TRUE(temp.starts_with(kTemp)) << temp;
  EXPECT_THAT(lines,
              ::testing::IsSupersetOf(
                  {std::string("status Please wait while the installation database is copied."),
                   std::string("status Please wait while files are retrieved from the installation "
                               "package."),
                   "run[hidden] CabArc X " + temp + "\\Cabs\\Cab1.CAB *.* " + temp + "\\CabData\\ -> 0",
                   std::string("page frmFeatures"), std::string("hide frmSourceAndDestination")}));
  EXPECT_EQ(run.WorkingMsiPath, temp + "\\Kte710.msi");
  EXPECT_EQ(run.CabDataFolder, temp + "\\CabData");
  EXPECT_EQ(machine.files.Content(temp + "\\Cabs\\Cab1.CAB"), "the cabinet");
  EXPECT_EQ(machine.files.Content(temp + "\\CabData\\main.exe"), "exe");
  EXPECT_EQ(machine.files.Content(temp + "\\Setup.ini"), machine.files.Content("C:\\Source\\Setup.ini"));
  EXPECT_EQ(run.PackageLocale, "0409");
  EXPECT_FALSE(run.PackageIs700);
  EXPECT_EQ(run.SettingsFileName, "KTECFG.CAB");
  EXPECT_EQ(run.ConfigSourceName, "ZED_SettingsFromSystem");
  EXPECT_TRUE(run.SettingsFromSystem);
  EXPECT_EQ(machine.files.CurrentFolder(), "C:\\Kitwright");
}

TEST_F(SourcePagePackage, EveryFileNameIsInLowerCaseAfterwards) {
  Next();
  const auto rows =
      InstallerDb::Working(machine.services, run).QueryAll("select `FileName` from `File` order by `File`");
  ASSERT_TRUE(rows.ok());
  ASSERT_EQ(rows->size(), 2U);
  EXPECT_EQ((*rows)[0]->StringData(1), "help~1.chm|help file.chm");
  EXPECT_EQ((*rows)[1]->StringData(1), "main.exe");
}

TEST_F(SourcePagePackage, TheConsolesSideFilesAreListedByLevel) {
  Next();
  EXPECT_THAT(
      run.ConsolePackageFiles->names,
      ElementsAre("CUP300.OVP", "CONTACT.TXT", "EXAMPLE.SMS", "Install.pkg", "PkgCatalog.z", "SIGTERMS.TXT",
                  "README.TXT", "KT710DET.TXS", "KTE710.OVP", "TXVCHK.SCV", "PACKING.LST"));
  run.PackageIs700 = true;
  BuildConsolePackageFileList(run);
  EXPECT_THAT(run.ConsolePackageFiles->names,
              ElementsAre("CUP300.OVP", "CONTACT.TXT", "EXAMPLE.SMS", "Install.pkg", "PkgCatalog.z",
                          "KT700DET.TXS", "KTE700.OVP"));
}

TEST_F(SourcePagePackage, AReadOnlySourceGivesWritableCopiesAndStaysAsItIs) {
  for (const char* name : {"C:\\Source\\Kte710.msi", "C:\\Source\\Setup.ini"})
    ASSERT_TRUE(machine.files.SetReadOnly(name, true).ok());
  const std::string before = machine.files.Content("C:\\Source\\Kte710.msi");
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_FALSE(machine.files.IsReadOnly(run.WorkingMsiPath));
  EXPECT_FALSE(machine.files.IsReadOnly(run.WorkingSetupIniPath));
  EXPECT_EQ(machine.files.Content("C:\\Source\\Kte710.msi"), before);
  EXPECT_TRUE(machine.files.IsReadOnly("C:\\Source\\Kte710.msi"));
}

TEST_F(SourcePagePackage, ASetupOfAnotherMakerIsNoSource) {
  SourceIsSetupAlone("Install.exe");
  ExpectRefusal(std::string(kNoPackage).substr(8));
}

TEST_F(SourcePagePackage, ASetupWithoutVersionInformationIsNoSource) {
  SourceIsSetupAlone("Repacker.exe");
  versions.blocks.clear();
  ExpectRefusal(std::string(kNoPackage).substr(8));
}

TEST_F(SourcePagePackage, ASelfExtractingPackageIsUnpackedAndItsFolderGoesWithTheRun) {
  SourceIsSetupAlone("REPACKER.EXE");
  std::string folder;
  machine.processes.On("C:\\Sfx\\SETUP.EXE", [&](const platform::testing::FakeCommand& command) {
    const size_t start = command.command_line.find('"') + 1;
    folder = command.command_line.substr(start, command.command_line.size() - start - 1);
    package.WritePackage(folder);
  });
  const auto lines = Next();
  EXPECT_TRUE(Opened());
  EXPECT_THAT(lines, Contains("run[hidden] C:\\Sfx\\SETUP.EXE -nos_ne -nos_o\"" + folder + "\" -> 0"));
  EXPECT_EQ(run.SourceFolder, folder);
  EXPECT_EQ(run.UserSourceFolder, "C:\\Sfx");
  EXPECT_TRUE(run.SourceWasExtracted);
  machine.dialogs.answers = {Answer::kOk};
  Page("frmFeatures").Cancel->UserClick();
  EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(SourcePagePackage, OfTwoDatabasesTheNewerLevelWinsAndMustFitTheProduct) {
  package.WriteDatabase("C:\\Source\\Kte700.msi");
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_EQ(run.SourceMsiPath, "C:\\Source\\Kte710.msi");
}

TEST_F(SourcePagePackage, APackageOfAnotherLevelIsRefused) {
  run.ProductIs700 = true;
  ExpectRefusal(
      "Version of the source package does not match Kestrane Enterprise on your system. Please specify "
      "another package.");
}

TEST_F(SourcePagePackage, APackageOfLevel700OpensOnAMachineOfThatLevel) {
  run.ProductIs700 = true;
  package.WritePackage("C:\\Source700", /*level_700=*/true);
  page().SourceDir.SetText("C:\\Source700");
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_TRUE(run.PackageIs700);
  EXPECT_TRUE(run.WorkingMsiPath.ends_with("\\Kte700.msi"));
}

TEST_F(SourcePagePackage, AMissingSetupIniIsNamed) {
  ASSERT_TRUE(machine.files.DeleteFile("C:\\Source\\Setup.ini", true).ok());
  ExpectRefusal(
      "The file \"C:\\Source\\Setup.ini\" does not exist.  Please verify that you have a valid Kestrane "
      "Enterprise installation package.");
}

TEST_F(SourcePagePackage, ADatabaseThatCannotBeCopiedIsNamed) {
  machine.files.FailNext(FileOperation::kCopyFile, "C:\\Source\\Kte710.msi", kErrorSharingViolation);
  ExpectRefusal("Could not copy the file \"C:\\Source\\Kte710.msi\".  Please verify the file exists.");
}

TEST_F(SourcePagePackage, ADamagedDatabaseIsNamed) {
  machine.files.AddFile("C:\\Source\\Kte710.msi", "no database");
  const auto lines = Next();
  EXPECT_THAT(lines, Contains(::testing::StartsWith("message The .MSI file \"C:\\Temp\\_id_")));
  EXPECT_THAT(lines, Contains(::testing::EndsWith("\\Kte710.msi\" could not be opened.  The installation "
                                                  "package may be corrupted.  Please specify another "
                                                  "source.")));
  EXPECT_EQ(lines.back(), kFocusSource);
  EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(SourcePagePackage, APackageOfAnotherLanguageIsRefused) {
  package.properties["txlocaleid"] = "0407";
  package.WriteDatabase("C:\\Source\\Kte710.msi");
  ExpectRefusal(
      "Language of the source package does not match Kestrane Enterprise on your system. Please specify "
      "another package.");
}

TEST_F(SourcePagePackage, WithoutAProductThePackagesLanguageCounts) {
  run.ProductInstalled = false;
  package.properties["txlocaleid"] = "040a";
  package.WriteDatabase("C:\\Source\\Kte710.msi");
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_EQ(run.PackageLocale, "040A");
}

TEST_F(SourcePagePackage, OtherUpgradeCodesAreRefusedByName) {
  const std::pair<const char*, const char*> kCodes[] = {
      {"{0F64050B-7ABB-446C-99CC-CA70A67FFD7D}",
       "This version of Kestrane is not supported for use with this version of Kitwright."},
      {"{50427873-5C9B-11D3-89C6-006008C7D0F2}",
       "This version of Farwatch is not supported for use with this version of Kitwright."},
      {"{AAAAAAAA-5C9B-11D3-89C6-006008C7D0F2}", "Only Kestrane Enterprise .MSI files can be customized."},
      {"", "Only Kestrane Enterprise .MSI files can be customized."}};
  for (const auto& [code, words] : kCodes) {
    package.properties["UpgradeCode"] = code;
    package.WriteDatabase("C:\\Source\\Kte710.msi");
    ExpectRefusal(words);
  }
}

TEST_F(SourcePagePackage, AModifiedPackageIsAskedFor) {
  package.properties["ZEDMODIFIEDPACKAGE"] = "True";
  package.WriteDatabase("C:\\Source\\Kte710.msi");
  machine.dialogs.answers = {Answer::kCancel};
  const auto lines = Next();
  EXPECT_THAT(lines, Contains("question This Kestrane Enterprise source package has been previously modified "
                              "using the Kitwright.  Therefore, the source's configuration may already "
                              "contain non-default settings.  Click OK to use this source anyway or Cancel "
                              "to select another source package. [OK|Cancel] default=OK -> Cancel"));
  EXPECT_EQ(lines.back(), kFocusSource);
  EXPECT_THAT(TempFiles(), IsEmpty());
  machine.dialogs.answers = {Answer::kOk};
  Next();
  EXPECT_TRUE(Opened());
}

TEST_F(SourcePagePackage, TheMarkOfAPasswordAloneAsksNothing) {
  package.properties["ZEDMODIFIEDPASSWORD"] = "True";
  package.WriteDatabase("C:\\Source\\Kte710.msi");
  Next();
  EXPECT_TRUE(Opened());
}

TEST_F(SourcePagePackage, AFailureThatNoRuleProvidesForIsToldAndTheNextAttemptStartsFromEmpty) {
  machine.files.FailNext(FileOperation::kCopyFile, "C:\\Source\\Setup.ini", kErrorDiskFull);
  const auto lines = Next();
  EXPECT_THAT(lines, Contains(HasSubstr("C:\\Source\\Setup.ini")));
  EXPECT_FALSE(Opened());
  EXPECT_THAT(TempFiles(), IsEmpty());
  Next();
  EXPECT_TRUE(Opened());
}

TEST_F(SourcePagePackage, AnUnpackingToolThatIsCutOffIsToldAndWhatItSaysOfACabinetIsNot) {
  machine.processes.On("CabArc X", 128 + 9);
  EXPECT_THAT(Next(), Contains(HasSubstr("CabArc was ended before it had unpacked the package's files.")));
  EXPECT_FALSE(Opened());
  EXPECT_THAT(TempFiles(), IsEmpty());
  machine.processes.On("CabArc X", 1);
  Next();
  EXPECT_TRUE(Opened());
}

TEST_F(SourcePagePackage, NothingIsKeptOfAPackageWhenTheMachineFailsAtOneOfItsCabinets) {
  machine.processes.On("CabArc X", {.exit_code = kExitMachineFailed, .run = [&](const auto&) {
                                      machine.files.AddFile(run.CabDataFolder + "\\first",
                                                            "another cabinet's");
                                    }});
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_TRUE(machine.files.FolderExists(run.CabDataFolder));
  EXPECT_THAT(machine.files.Tree(run.CabDataFolder), IsEmpty());
}

TEST_F(SourcePagePackage, TheFolderOfARunThatWasKilledIsNotTakenForThisRunsOwn) {
  const std::string left = NewTempPath(machine.services, run);
  machine.files.AddFile(left + "\\Kte710.msi", "of the run before");
  run.UniqueIdCounter = 0;  // another process at the same moment
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_NE(run.TempFolder, left);
  EXPECT_EQ(machine.files.Content(left + "\\Kte710.msi"), "of the run before");
}

TEST_F(SourcePagePackage, ASecondClickWhileTheFirstRunsDoesNothing) {
  int starts = 0;
  machine.processes.On("CabArc X", [&](const platform::testing::FakeCommand&) {
    ++starts;
    page().Next->UserClick();
    ClickNode("frmSourceAndDestination", "Programs");
  });
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_EQ(starts, 1);
}

TEST_F(SourcePagePackage, ATreeClickOpensThePackageToo) {
  ClickNode("frmSourceAndDestination", "Programs");
  EXPECT_TRUE(table.FormByName("frmPrograms").Visible());
  EXPECT_TRUE(run.WorkingDatabase);
}

TEST_F(SourcePagePackage, FinishOpensThePackageAndGoesToTheReviewEachTime) {
  const auto review = [this]() -> ui::Form& { return table.FormByName("frmReviewConfiguration"); };
  page().Finsh->UserClick();
  EXPECT_TRUE(review().Visible());
  EXPECT_TRUE(run.WorkingDatabase);
  machine.dialogs.answers = {Answer::kOk};
  ClickNode("frmReviewConfiguration", "Source and Destination");
  EXPECT_FALSE(run.WorkingDatabase);
  page().Finsh->UserClick();
  EXPECT_TRUE(review().Visible());
  EXPECT_FALSE(page().Visible());
}

TEST_F(SourcePagePackage, ASecondOpeningInOneRunStartsFromFreshPages) {
  Next();
  table.SetPageFeatureOff("Scheduled Scans", true);
  auto& tree = dynamic_cast<ui::Tree&>(*table.FormByName("frmFeatures").FindControl("treFeatures"));
  const int features = tree.Count();
  ASSERT_GT(features, 0);
  machine.dialogs.answers = {Answer::kOk};
  ClickNode("frmFeatures", "Source and Destination");
  EXPECT_THAT(TempFiles(), IsEmpty());
  EXPECT_EQ(page().SourceDir.Text(), "C:\\Source");
  Next();
  EXPECT_TRUE(Opened());
  EXPECT_EQ(dynamic_cast<ui::Tree&>(*table.FormByName("frmFeatures").FindControl("treFeatures")).Count(),
            features);
  EXPECT_FALSE(table.Records()[6].FeatureOff);
}

TEST_F(SourcePagePackage, ReturningToTheFirstPageTakesAllImagesAway) {
  Next();
  table.GoToPage("Programs");
  machine.dialogs.answers = {Answer::kOk};
  table.GoToPage("Source and Destination");
  for (const PageRecord& record : table.Records()) EXPECT_FALSE(record.Configured) << record.Caption;
}

TEST(IsRepackerExeTest, TheOriginalNameIsReadByTheFirstTranslation) {
  platform::testing::FakeMachine machine;
  testing::FakeVersions versions;
  machine.services.versions = &versions;
  EXPECT_FALSE(IsRepackerExe(machine.services, "C:\\SETUP.EXE"));
  auto& block = versions.blocks["C:\\SETUP.EXE"] = testing::VersionWithOriginalName("repacker.exe 2");
  EXPECT_TRUE(IsRepackerExe(machine.services, "C:\\SETUP.EXE"));
  block.translations = {{7, 1200}};
  EXPECT_FALSE(IsRepackerExe(machine.services, "C:\\SETUP.EXE"));
  block.strings["000704B0"]["ORIGINALFILENAME"] = "Repacker.exe";
  EXPECT_TRUE(IsRepackerExe(machine.services, "C:\\SETUP.EXE"));
  block.strings["000704B0"]["ORIGINALFILENAME"] = "The Repacker.exe";
  EXPECT_FALSE(IsRepackerExe(machine.services, "C:\\SETUP.EXE"));
  block.translations.clear();
  EXPECT_FALSE(IsRepackerExe(machine.services, "C:\\SETUP.EXE"));
}

}  // namespace
}  // namespace kw
