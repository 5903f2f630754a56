#include "shell/build_sequence.h"

#include <map>

#include "base/text.h"
#include "package/clean_up.h"
#include "package/file_rules.h"
#include "package/installer_db.h"
#include "package/source_package.h"
#include "pages/frm_source_and_destination.h"

namespace kw {
namespace {

constexpr const char* kCannotContinue = "Kitwright cannot continue.";

void Call(const std::function<void()>& operation) {
  if (operation) operation();
}

bool CallStep(const std::function<bool()>& operation) { return !operation || operation(); }

bool BeginsWithAny(const std::string& name, const FileListPtr& list) {
  if (!list) return false;
  for (const std::string& entry : list->names) {
    if (StartsWithNoCase(name, entry)) return true;
  }
  return false;
}

/// One build. Its operations give False after they told the failure.
class Build {
 public:
  Build(PageContext& context, ui::Form& page)
      : context_(context),
        services_(context.services),
        run_(context.run),
        operations_(context.operations),
        page_(page),
        status_(context.navigator.Get<frmStatus>()) {}

  void Run() {
    run_.Succeeded = CallStep(operations_.AddProductSettings);
    if (run_.Succeeded && run_.PackageMode) {
      run_.Succeeded = BuildPackage();
      status_.HideWhileWaiting(page_);
    } else if (run_.Succeeded) {
      Call(operations_.CreateSettingsConsolePackage);
    }
    if (!run_.Succeeded) UndoDestination(services_, run_);
    CleanUpRun(services_, run_);
  }

 private:
  bool BuildPackage() {
    status_.ShowText("Repackaging files. This may take some time, please wait.", page_);
    if (!SavePayloads() || !RebuildAndCommit() || !CopyResult() || !CopyRestOfSource() || !Finish())
      return false;
    RemoveExtractedSource(services_, run_);
    CopyConsoleFiles();
    return true;
  }

  bool SavePayloads() {
    struct Step {
      const char* form;
      const char* word;
    };
    for (const Step& step :
         {Step{"frmDATsAndEngine", "DAT and engine files"}, Step{"frmPatchFiles", "patch files"},
          Step{"frmCommonUpdater", "AutoUpdate repository list"},
          Step{"frmBeaconryServer", "Beaconry installation file"},
          Step{"frmInstallBWK", "Tamrix Bulwark installation file"}}) {
      auto* payload = dynamic_cast<PayloadPage*>(&context_.navigator.Page(step.form));
      if (!payload || payload->SaveConfig()) continue;
      Tell(std::string("An error occurred while repackaging ") + step.word + ".\r\n" + kCannotContinue);
      return false;
    }
    page_.Refresh();
    return true;
  }

  bool RebuildAndCommit() {
    const bool rebuilt = CallStep(operations_.CreateCabFile);
    status_.HideWhileWaiting(page_);
    if (!rebuilt) {
      Tell(std::string("An error occurred while repackaging files.  ") + kCannotContinue);
      return false;
    }
    const Status committed = run_.WorkingDatabase->Commit();
    if (committed.ok()) return true;
    Tell("Could not commit the temporary .MSI file " + run_.WorkingMsiPath + " (" +
         std::to_string(committed.number()) + ")\r\n" + kCannotContinue);
    return false;
  }

  /// The two marks follow the commit on purpose; direct mode has them in the file that is copied.
  bool MarkPackage() {
    const InstallerDb database = InstallerDb::Working(services_, run_);
    Status marked =
        database.SetProperty("ZEDMODIFIEDPASSWORD", ChooseValue(SettingsHavePassword(), "True", "False"));
    if (marked.ok()) marked = database.SetProperty("ZEDMODIFIEDPACKAGE", "True");
    if (marked.ok()) return true;
    status_.HideWhileWaiting(page_);
    return CheckOrReport(services_, marked);
  }

  bool SettingsHavePassword() {
    constexpr uint32_t kBuffer = 255;
    const auto key = services_.registry->OpenKey(
        platform::Hive::kCurrentUser, std::string(kStagingBranch) + "\\Kestrane Enterprise\\CurrentVersion",
        platform::kKeyQuery);
    if (!key.ok()) return false;
    const auto value = (*key)->QueryValue("UIP", kBuffer);
    return value.ok() && !value->Text().empty();
  }

  bool CopyResult() {
    status_.ShowText("Please wait while the modified files are copied.", page_);
    return MarkPackage() &&
           CopyOrTell(run_.WorkingMsiPath, "Could not rename the customized .MSI file from " +
                                               run_.WorkingMsiPath + " to " + run_.DestinationMsiPath) &&
           CopyOrTell(run_.WorkingSetupIniPath, "Could not rename the customized SETUP.INI file from " +
                                                    run_.WorkingSetupIniPath + " to " +
                                                    run_.DestinationSetupIniPath);
  }

  bool CopyRestOfSource() {
    const auto entries = ListFolder(services_, run_.SourceFolder);
    if (!entries.ok()) {
      status_.HideWhileWaiting(page_);
      return CheckOrReport(services_, entries.status());
    }
    for (const platform::FileEntry& entry : *entries) {
      if (entry.is_folder || BeginsWithAny(entry.name, run_.ConsolePackageFiles) ||
          BeginsWithAny(entry.name, run_.DestinationFileList))
        continue;
      const std::string path = run_.SourceFolder + "\\" + entry.name;
      if (!CopyOrTell(path, "Could not copy source file " + path)) return false;
    }
    return true;
  }

  bool Finish() {
    if (context_.navigator.Get<frmSourceAndDestination>().Optimize.Checked()) return OptimizePackage();
    Call(operations_.CreateConsolePackage);
    return true;
  }

  bool OptimizePackage() {
    status_.ShowText("Optimizing the package. This may take some time, please wait.", page_);
    const std::string setup = run_.TempFolder + "\\SETUP.EXE";
    const int exit_code = RunAndWait(services_, run_, context_.host,
                                     "FEADZED \"" + run_.DestinationFolder + "\" \"" + setup + "\" \"" +
                                         services_.system->ProgramFolder() + "\\local\\" +
                                         GetOptimizerLanguageFile(run_.PackageLocale) + "\" -t -d",
                                     platform::WindowStyle::kNormal);
    if (!services_.files->FileExists(setup)) {
      Call(operations_.CreateConsolePackage);
      status_.HideWhileWaiting(page_);
      Tell("Could not optimize the Kestrane Enterprise installation package. Error code: " +
           std::to_string(exit_code) + ".\r\nAn unoptimized package was created successfully in " +
           run_.DestinationFolder + ".");
      return true;
    }
    EmptyDestination();
    run_.DestinationFileList = std::make_unique<FileList>();
    if (!CopyFileToFolder(services_, setup, run_.DestinationFolder, run_.DestinationFileList)) {
      status_.HideWhileWaiting(page_);
      Tell(std::string("Could not copy optimized file to the destination.\r\n") + kCannotContinue);
      return false;
    }
    Call(operations_.CreateOptimizedConsolePackage);
    run_.PackageOptimized = true;
    return true;
  }

  void EmptyDestination() {
    UndoDestination(services_, run_);
    if (!run_.DestinationInUse) return;
    if (services_.files->FolderExists(run_.DestinationFolder))
      services_.files->DeleteFolder(run_.DestinationFolder, false).IgnoreError();
    MakeFolderPath(services_, run_.DestinationFolder);
  }

  void CopyConsoleFiles() {
    status_.ShowText("Please wait while files are copied.", page_);
    if (run_.ConsolePackageFiles) {
      for (const std::string& name : run_.ConsolePackageFiles->names) {
        // These three kinds are written anew for the console.
        if (EndsWithNoCase(name, ".z") || EndsWithNoCase(name, ".txs") || EndsWithNoCase(name, ".pkg"))
          continue;
        const std::string path = run_.SourceFolder + "\\" + name;
        // One that cannot be looked at is told by the copy.
        const auto there = FileIsThere(services_, path);
        if (!there.ok() || *there)
          CopyFileToFolder(services_, path, run_.DestinationFolder, run_.DestinationFileList);
      }
    }
    Call(operations_.CopySigTermsTxt);
  }

  /// Copies into the destination, or hides the status window and tells `failure`.
  bool CopyOrTell(const std::string& path, const std::string& failure) {
    if (CopyFileToFolder(services_, path, run_.DestinationFolder, run_.DestinationFileList)) return true;
    status_.HideWhileWaiting(page_);
    Tell(failure + ".\r\n" + kCannotContinue);
    return false;
  }

  void Tell(const std::string& text) { services_.dialogs->Message(text); }

  PageContext& context_;
  platform::Services& services_;
  RunState& run_;
  WizardOperations& operations_;
  ui::Form& page_;
  frmStatus& status_;
};

}  // namespace

void RunBuild(PageContext& context, ui::Form& page) { Build(context, page).Run(); }

std::string GetOptimizerLanguageFile(const std::string& package_locale) {
  static const std::map<std::string, const char*> kFiles = {{"0804", "chinese_simplified_uni.ini"},
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
                                                            {"041D", "swedish_uni.ini"}};
  const auto place = kFiles.find(package_locale);
  return place == kFiles.end() ? "english_uni.ini" : place->second;
}

}  // namespace kw
