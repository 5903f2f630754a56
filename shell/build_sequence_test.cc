#include "shell/build_sequence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "package/installer_db.h"
#include "shell/frm_finish.h"
#include "shell/frm_review_configuration.h"
#include "shell/plain_test_page.h"
#include "shell/source_page_test_support.h"

namespace kw {
namespace {

using platform::Answer;
using platform::testing::FakeCommand;
using platform::testing::FileOperation;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::StartsWith;

/// What the build calls in other folders, as a test sees and orders it.
struct Steps {
  std::vector<std::string> ran;
  std::set<std::string> failing;
  std::function<void(const std::string&)> on_step;
  bool Run(const std::string& name) {
    ran.push_back(name);
    if (on_step) on_step(name);
    return !failing.contains(name);
  }
};

struct StepPage : testing::PlainTestPage, PayloadPage {
  StepPage(PageContext& context, const std::string& name, Steps& with)
      : PlainTestPage(context, name, name, 1), steps(with) {}
  bool SaveConfig() override { return steps.Run(Name()); }
  Steps& steps;
};

FormFactories WithStepPages(Steps& steps) {
  FormFactories factories = AllFormFactories();
  for (const char* name :
       {"frmDATsAndEngine", "frmPatchFiles", "frmCommonUpdater", "frmBeaconryServer", "frmInstallBWK"})
    factories[name] = [name, &steps](PageContext& context) {
      return std::make_unique<StepPage>(context, name, steps);
    };
  return factories;
}

struct BuildFixture {
  Steps steps;  // outlives the wizard
};

struct BuildRun : BuildFixture, testing::SourcePageFixture {
  BuildRun() : SourcePageFixture(WithStepPages(steps)) {
    WizardOperations& operations = app.Context().operations;
    operations.ReadPackageAgent = nullptr;
    operations.AddProductSettings = [this] { return steps.Run("AddProductSettings"); };
    operations.CreateCabFile = [this] { return steps.Run("CreateCabFile"); };
    operations.CopySigTermsTxt = [this] { steps.Run("CopySigTermsTxt"); };
    operations.CreateConsolePackage = [this] { steps.Run("CreateConsolePackage"); };
    operations.CreateOptimizedConsolePackage = [this] { steps.Run("CreateOptimizedConsolePackage"); };
    operations.CreateSettingsConsolePackage = [this] { steps.Run("CreateSettingsConsolePackage"); };
    page().Optimize.SetChecked(false);
  }

  frmReviewConfiguration& review() { return table.Get<frmReviewConfiguration>(); }
  frmFinish& finish() { return table.Get<frmFinish>(); }

  void OpenAndReview() {
    Next();
    ASSERT_TRUE(Opened());
    table.GoToPage("Finish");
    Take();
  }
  std::vector<std::string> Save() {
    review().Save->UserClick();
    return Steps();
  }
  void Optimize(std::function<void(const FakeCommand&)> tool) {
    page().Optimize.SetChecked(true);
    machine.processes.On("FEADZED", std::move(tool));
  }
  /// The build failed: nothing of it is left, and the last page tells.
  void ExpectUndone() {
    EXPECT_FALSE(run.Succeeded);
    EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
    EXPECT_THAT(TempFiles(), IsEmpty());
    EXPECT_TRUE(finish().Visible());
    EXPECT_EQ(finish().lblFinalMessage.Text(), "Kitwright did not complete successfully.");
    EXPECT_FALSE(review().Visible());
  }
  std::string PropertyOf(const std::string& path, const std::string& name) {
    auto installer = machine.services.create_installer();
    auto database = (*installer)->OpenDatabase(path, platform::OpenMode::kReadOnly);
    if (!database.ok()) return "(" + database.status().message() + ")";
    return InstallerDb(machine.services, *installer, *database).GetProperty(name).value_or("(error)");
  }
};

struct BuildTest : ::testing::Test, BuildRun {};

TEST_F(BuildTest, RunsItsStepsInOrderAndCopiesTheResultWithTheRestOfTheSource) {
  OpenAndReview();
  const std::string temp = run.TempFolder;
  const auto lines = Save();
  EXPECT_THAT(steps.ran, ElementsAre("AddProductSettings", "frmDATsAndEngine", "frmPatchFiles",
                                     "frmCommonUpdater", "frmBeaconryServer", "frmInstallBWK",
                                     "CreateCabFile", "CreateConsolePackage", "CopySigTermsTxt"));
  EXPECT_THAT(lines, ElementsAre("status Repackaging files. This may take some time, please wait.",
                                 "status-end", "status Please wait while the modified files are copied.",
                                 "status Please wait while files are copied.", "status-end", "page frmFinish",
                                 "hide frmReviewConfiguration"));
  // "Install.pkg.bak" begins like a console file; the console writes its .z, .txs and .pkg itself.
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("CONTACT.TXT", "INSTMSIW.EXE", "Kte710.msi",
                                                         "README.TXT", "SETUP.EXE", "Setup.ini"));
  EXPECT_TRUE(run.Succeeded);
  EXPECT_FALSE(machine.files.FolderExists(temp));
  EXPECT_EQ(finish().lblFinalDirectory.Text(), "C:\\Out");
  EXPECT_TRUE(table.PageIsConfigured("Finish"));
  EXPECT_FALSE(run.PackageOptimized);
}

TEST_F(BuildTest, TheMarksAreInTheDatabaseThatWasCopied) {
  OpenAndReview();
  Save();
  EXPECT_EQ(PropertyOf("C:\\Out\\Kte710.msi", "ZEDMODIFIEDPACKAGE"), "True");
  EXPECT_EQ(PropertyOf("C:\\Out\\Kte710.msi", "ZEDMODIFIEDPASSWORD"), "False");
}

TEST_F(BuildTest, APasswordInTheStagingBranchIsMarked) {
  OpenAndReview();
  machine.registry.SetText(platform::Hive::kCurrentUser,
                           "SOFTWARE\\Orvantic\\ZED\\Kestrane Enterprise\\CurrentVersion", "UIP", "x");
  Save();
  EXPECT_EQ(PropertyOf("C:\\Out\\Kte710.msi", "ZEDMODIFIEDPASSWORD"), "True");
}

TEST_F(BuildTest, AnEmptyPasswordIsNone) {
  OpenAndReview();
  machine.registry.SetText(platform::Hive::kCurrentUser,
                           "SOFTWARE\\Orvantic\\ZED\\Kestrane Enterprise\\CurrentVersion", "UIP", "");
  Save();
  EXPECT_EQ(PropertyOf("C:\\Out\\Kte710.msi", "ZEDMODIFIEDPASSWORD"), "False");
}

TEST_F(BuildTest, FailedSettingsEndTheBuildBeforeAnythingElse) {
  OpenAndReview();
  steps.failing = {"AddProductSettings"};
  EXPECT_THAT(Save(), ElementsAre("page frmFinish", "hide frmReviewConfiguration"));
  EXPECT_THAT(steps.ran, ElementsAre("AddProductSettings"));
  ExpectUndone();
}

TEST_F(BuildTest, AFailedPayloadIsNamedAndNoLaterOneRuns) {
  const std::pair<const char*, const char*> kWords[] = {
      {"frmDATsAndEngine", "DAT and engine files"},
      {"frmPatchFiles", "patch files"},
      {"frmCommonUpdater", "AutoUpdate repository list"},
      {"frmBeaconryServer", "Beaconry installation file"},
      {"frmInstallBWK", "Tamrix Bulwark installation file"}};
  for (const auto& [form, word] : kWords) {
    BuildRun one;
    one.OpenAndReview();
    one.steps.failing = {form};
    EXPECT_THAT(one.Save(), Contains(std::string("message An error occurred while repackaging ") + word +
                                     ".<CR><LF>Kitwright cannot continue."));
    EXPECT_EQ(one.steps.ran.back(), form);
    one.ExpectUndone();
  }
}

TEST_F(BuildTest, WhatAPayloadCopiedIsTakenBackAfterALaterFailure) {
  OpenAndReview();
  steps.on_step = [this](const std::string& step) {
    if (step != "frmPatchFiles") return;
    run.DestinationFileList = std::make_unique<FileList>(FileList{{"HOTFIX1.MSP"}});
    machine.files.AddFile("C:\\Out\\HOTFIX1.MSP", "x");
  };
  steps.failing = {"frmCommonUpdater"};
  Save();
  ExpectUndone();
}

TEST_F(BuildTest, AFailedCabinetIsTold) {
  OpenAndReview();
  steps.failing = {"CreateCabFile"};
  EXPECT_THAT(Save(),
              ElementsAre("status Repackaging files. This may take some time, please wait.", "status-end",
                          "message An error occurred while repackaging files.  Kitwright cannot "
                          "continue.",
                          "page frmFinish", "hide frmReviewConfiguration"));
  ExpectUndone();
}

/// The working database, but for a commit that fails.
class UncommittedDatabase : public platform::Database {
 public:
  explicit UncommittedDatabase(std::shared_ptr<platform::Database> real) : real_(std::move(real)) {}
  Result<std::unique_ptr<platform::View>> OpenView(std::string_view sql) override {
    return real_->OpenView(sql);
  }
  Status Commit() override { return {kErrorDiskFull, "The disk is full."}; }
  Status Export(const std::string& table, const std::string& folder, const std::string& file) override {
    return real_->Export(table, folder, file);
  }
  Status Import(const std::string& folder, const std::string& file) override {
    return real_->Import(folder, file);
  }
  Result<std::unique_ptr<platform::SummaryInfo>> SummaryInformation(int updates) override {
    return real_->SummaryInformation(updates);
  }

 private:
  std::shared_ptr<platform::Database> real_;
};

TEST_F(BuildTest, ADatabaseThatIsNotCommittedIsToldWithTheNumberOfTheError) {
  OpenAndReview();
  run.WorkingDatabase = std::make_shared<UncommittedDatabase>(run.WorkingDatabase);
  const std::string working = run.WorkingMsiPath;
  EXPECT_THAT(Save(), Contains("message Could not commit the temporary .MSI file " + working +
                               " (112)<CR><LF>Kitwright cannot continue."));
  EXPECT_EQ(steps.ran.back(), "CreateCabFile");
  ExpectUndone();
}

TEST_F(BuildTest, ADatabaseThatIsNotCopiedIsTold) {
  OpenAndReview();
  const std::string working = run.WorkingMsiPath;
  machine.files.FailNext(FileOperation::kCopyFile, working, kErrorDiskFull);
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_THAT(Save(), Contains("message Could not rename the customized .MSI file from " + working +
                               " to C:\\Out\\Kte710.msi.<CR><LF>Kitwright cannot continue."));
  ExpectUndone();
}

TEST_F(BuildTest, ASetupIniThatIsNotCopiedIsTold) {
  OpenAndReview();
  const std::string working = run.WorkingSetupIniPath;
  machine.files.FailNext(FileOperation::kCopyFile, working, kErrorDiskFull);
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_THAT(Save(), Contains("message Could not rename the customized SETUP.INI file from " + working +
                               " to C:\\Out\\Setup.ini.<CR><LF>Kitwright cannot continue."));
  ExpectUndone();
}

TEST_F(BuildTest, ASourceFileThatIsNotCopiedIsNamedAndEndsTheCopying) {
  OpenAndReview();
  machine.files.FailNext(FileOperation::kCopyFile, "C:\\Source\\INSTMSIW.EXE", kErrorDiskFull);
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_THAT(Save(),
              Contains("message Could not copy source file C:\\Source\\INSTMSIW.EXE.<CR><LF>Kitwright "
                       "cannot continue."));
  EXPECT_THAT(machine.files.log, Not(Contains("copy C:\\Source\\SETUP.EXE -> C:\\Out\\SETUP.EXE")));
  ExpectUndone();
}

TEST_F(BuildTest, ASourceThatVanishedCountsAsAFailedStep) {
  OpenAndReview();
  machine.files.FailAlways(FileOperation::kList, "C:\\Source", kErrorPathNotFound);
  EXPECT_THAT(Save(), Contains(AllOf(StartsWith("message "), HasSubstr("C:\\Source"))));
  ExpectUndone();
}

TEST_F(BuildTest, FilesThatAPayloadCopiedAreNotCopiedAgainNorWhatBeginsLikeThem) {
  machine.files.AddFile("C:\\Source\\hotfix1.msp", "old");
  machine.files.AddFile("C:\\Source\\Hotfix1.msp.txt", "old");
  OpenAndReview();
  steps.on_step = [this](const std::string& step) {
    if (step != "frmPatchFiles") return;
    run.DestinationFileList = std::make_unique<FileList>(FileList{{"HOTFIX1.MSP"}});
    machine.files.AddFile("C:\\Out\\HOTFIX1.MSP", "new");
  };
  Save();
  EXPECT_EQ(machine.files.Content("C:\\Out\\HOTFIX1.MSP"), "new");
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\Hotfix1.msp.txt"));
}

TEST_F(BuildTest, SubfoldersOfTheSourceStayBehind) {
  machine.files.AddFile("C:\\Source\\Sub\\file", "x");
  OpenAndReview();
  Save();
  EXPECT_FALSE(machine.files.FolderExists("C:\\Out\\Sub"));
}

TEST_F(BuildTest, OptimisingReplacesTheDestinationByOneProgram) {
  OpenAndReview();
  const std::string temp = run.TempFolder;
  Optimize([&](const FakeCommand&) { machine.files.AddFile(temp + "\\SETUP.EXE", "packed"); });
  const auto lines = Save();
  EXPECT_THAT(lines, Contains("run[normal] FEADZED \"C:\\Out\" \"" + temp +
                              "\\SETUP.EXE\" \"C:\\Kitwright\\local\\english_uni.ini\" -t -d -> 0"));
  EXPECT_THAT(lines, Contains("status Optimizing the package. This may take some time, please wait."));
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("CONTACT.TXT", "README.TXT", "SETUP.EXE"));
  EXPECT_EQ(machine.files.Content("C:\\Out\\SETUP.EXE"), "packed");
  EXPECT_THAT(steps.ran, Contains("CreateOptimizedConsolePackage"));
  EXPECT_THAT(steps.ran, Not(Contains("CreateConsolePackage")));
  EXPECT_TRUE(run.PackageOptimized && run.Succeeded);
}

TEST_F(BuildTest, OptimisingIntoADestinationOfTheRunMakesItAnew) {
  page().DestinationDir.SetText("C:\\New");
  machine.dialogs.answers = {Answer::kOk};
  OpenAndReview();
  const std::string temp = run.TempFolder;
  Optimize([&](const FakeCommand&) { machine.files.AddFile(temp + "\\SETUP.EXE", "packed"); });
  Save();
  EXPECT_THAT(machine.files.Tree("C:\\New"), ElementsAre("CONTACT.TXT", "README.TXT", "SETUP.EXE"));
  EXPECT_TRUE(run.DestinationInUse);
}

TEST_F(BuildTest, AnOptimiserThatLeavesNoProgramIsToldAndTheBuildStands) {
  OpenAndReview();
  platform::testing::FakeProcesses::Script script;
  script.exit_code = 5;
  page().Optimize.SetChecked(true);
  machine.processes.On("FEADZED", script);
  EXPECT_THAT(Save(), Contains("message Could not optimize the Kestrane Enterprise installation package. "
                               "Error code: 5.<CR><LF>An unoptimized package was created successfully in "
                               "C:\\Out."));
  EXPECT_TRUE(run.Succeeded);
  EXPECT_FALSE(run.PackageOptimized);
  EXPECT_THAT(steps.ran, Contains("CreateConsolePackage"));
  EXPECT_TRUE(machine.files.FileExists("C:\\Out\\Kte710.msi"));
  EXPECT_EQ(finish().lblFinalDirectory.Text(), "C:\\Out");
}

TEST_F(BuildTest, AnOptimisedProgramThatIsNotCopiedFailsTheBuild) {
  OpenAndReview();
  const std::string temp = run.TempFolder;
  Optimize([&](const FakeCommand&) { machine.files.AddFile(temp + "\\SETUP.EXE", "packed"); });
  machine.files.FailNext(FileOperation::kCopyFile, temp + "\\SETUP.EXE", kErrorDiskFull);
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_THAT(Save(), Contains("message Could not copy optimized file to the destination.<CR><LF>Kitwright "
                               "cannot continue."));
  ExpectUndone();
}

TEST_F(BuildTest, ConsoleFilesOfAnExtractedSourceComeFromTheFolderThatTheUserGave) {
  OpenAndReview();
  run.UserSourceFolder = "C:\\Sfx";
  run.SourceFolder = "C:\\Temp\\extracted";
  run.SourceWasExtracted = true;
  machine.files.AddFile("C:\\Temp\\extracted\\CONTACT.TXT", "inside");
  machine.files.AddFile("C:\\Sfx\\CONTACT.TXT", "beside");
  Save();
  EXPECT_EQ(machine.files.Content("C:\\Out\\CONTACT.TXT"), "beside");
  EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(BuildTest, AConsoleFileThatIsNotCopiedDoesNotFailTheBuild) {
  OpenAndReview();
  machine.files.FailAlways(FileOperation::kCopyFile, "C:\\Source\\CONTACT.TXT", kErrorDiskFull);
  machine.dialogs.answers = {Answer::kCancel};
  Save();
  EXPECT_TRUE(run.Succeeded);
  EXPECT_TRUE(machine.files.FileExists("C:\\Out\\README.TXT"));
}

TEST_F(BuildTest, AConsoleFileThatCannotBeLookedAtIsNotTakenForAMissingOne) {
  OpenAndReview();
  machine.files.FailNext(FileOperation::kGetFile, "C:\\Source\\CONTACT.TXT", kErrorIo);
  Save();
  EXPECT_TRUE(run.Succeeded);
  EXPECT_TRUE(machine.files.FileExists("C:\\Out\\CONTACT.TXT"));
}

TEST_F(BuildTest, SettingsModeWritesNoPackage) {
  OpenAndReview();
  run.PackageMode = false;
  EXPECT_THAT(Save(), ElementsAre("page frmFinish", "hide frmReviewConfiguration"));
  EXPECT_THAT(steps.ran, ElementsAre("AddProductSettings", "CreateSettingsConsolePackage"));
  EXPECT_TRUE(run.Succeeded);
  EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
}

TEST_F(BuildTest, ASecondClickOnSaveWhileTheFirstRunsDoesNothing) {
  OpenAndReview();
  steps.on_step = [this](const std::string& step) {
    if (step == "CreateCabFile") review().Save->UserClick();
  };
  Save();
  EXPECT_EQ(std::count(steps.ran.begin(), steps.ran.end(), "AddProductSettings"), 1);
}

TEST_F(BuildTest, TheReviewPageIsBusyMeanwhileAndIgnoresActivations) {
  OpenAndReview();
  bool busy = false;
  steps.on_step = [&](const std::string&) {
    busy = IsBusy(review()) && !review().Enabled();
    review().List1.Clear();
    review().UserActivate();
    EXPECT_EQ(review().List1.Count(), 0);
  };
  Save();
  EXPECT_TRUE(busy);
}

TEST_F(BuildTest, TheReviewListsEveryPageAtEachVisitAndFitsItsWidth) {
  OpenAndReview();
  std::vector<std::string> headings;
  for (const std::string& item : review().List1.Items()) {
    if (item.ends_with("...") && !item.starts_with("\t")) headings.push_back(item);
  }
  EXPECT_EQ(headings.size(), 22U);
  EXPECT_EQ(headings.front(), "Source and Destination...");
  EXPECT_EQ(review().List1.Items()[1], "\tSource folder: C:\\Source");
  size_t longest = 0;
  for (const std::string& item : review().List1.Items())
    longest = std::max(longest, CharacterCount(item + "   "));
  EXPECT_EQ(review().List1.HorizontalExtent(), static_cast<int>(longest) * 6);
  const int count = review().List1.Count();
  review().Back->UserClick();
  table.GoToPage("Finish");
  EXPECT_EQ(review().List1.Count(), count);
}

TEST_F(BuildTest, TheReviewPageHasItsOwnTextsAndSaveInThePlaceOfNextAndFinish) {
  EXPECT_EQ(review().Title.Text(), "Finish");
  EXPECT_EQ(review().Description.Text(), "Review final configuration.");
  EXPECT_EQ(review().Save->Text(), "&Save");
  EXPECT_EQ(review().FindControl("Next"), nullptr);
  EXPECT_EQ(review().FindControl("Finsh"), nullptr);
}

TEST_F(BuildTest, BackLeavesTheReviewPageWithoutACheck) {
  OpenAndReview();
  review().Back->UserClick();
  EXPECT_THAT(Take(), ElementsAre("page frmPostInstallOptions", "hide frmReviewConfiguration"));
}

TEST(OptimizerLanguageTest, EveryPackageLanguageHasItsFile) {
  const std::pair<const char*, const char*> kFiles[] = {{"0804", "chinese_simplified_uni.ini"},
                                                        {"0404", "chinese_traditional_uni.ini"},
                                                        {"0407", "german_uni.ini"},
                                                        {"040A", "spanish_uni.ini"},
                                                        {"040C", "french_uni.ini"},
                                                        {"0410", "italian_uni.ini"},
                                                        {"0411", "japanese_uni.ini"},
                                                        {"0412", "korean_uni.ini"},
                                                        {"0413", "dutch_uni.ini"},
                                                        {"0415", "polish_uni.ini"},
                                                        {"0416", "portugue_uni.ini"},
                                                        {"041D", "swedish_uni.ini"},
                                                        {"0409", "english_uni.ini"},
                                                        {"", "english_uni.ini"}};
  for (const auto& [locale, file] : kFiles) EXPECT_EQ(GetOptimizerLanguageFile(locale), file) << locale;
}

}  // namespace
}  // namespace kw
