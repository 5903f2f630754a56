#include "pages/frm_source_and_destination.h"

#include <utility>

#include "base/text.h"
#include "package/clean_up.h"
#include "package/file_rules.h"
#include "package/installer_db.h"
#include "package/source_package.h"
#include "pages/folder_box.h"

namespace kw {
namespace {

constexpr const char* kNoPackage =
    "Please enter a source folder containing a valid Kestrane Enterprise installation package";
constexpr const char* kSameFolders = "Source and destination folders cannot be the same.";
constexpr size_t kTooLongDestination = 227;

}  // namespace

frmSourceAndDestination::frmSourceAndDestination(PageContext& context)
    : WizardPage(context, kName, "Source and Destination", "Label1",
                 "Specify source folder, destination folder and optimization option.", 1001, "NextButton"),
      Label2(*this, "Label2", "&Source folder:"),
      SourceDir(*this, "SourceDir"),
      SourceBrowse(*this, "SourceBrowse", "B&rowse..."),
      Label3(*this, "Label3", "&Destination folder:"),
      DestinationDir(*this, "DestinationDir"),
      DestinationBrowse(*this, "DestinationBrowse", "Bro&wse..."),
      Optimize(*this, "Optimize",
               "Create an &optimized installation package (a minimum of 256 MB RAM is required)") {
  for (const auto& [button, box] :
       {std::pair(&SourceBrowse, &SourceDir), std::pair(&DestinationBrowse, &DestinationDir)}) {
    button->on_click = [this, box = box] {
      // Both dialogs carry this title.
      BrowseForFolderInto(services_, *box, "Select Source Folder");
    };
  }
  AddButtons();
}

ui::Layout frmSourceAndDestination::PageLayout() {
  const auto box = [](ui::TextBox& text, ui::Button& browse) {
    return ui::Row({ui::Place(text, 1), ui::Place(browse)});
  };
  return ui::Column({ui::Fields({ui::Place(Label2), box(SourceDir, SourceBrowse), ui::Place(Label3),
                                 box(DestinationDir, DestinationBrowse)}),
                     ui::Place(Optimize), ui::Space()});
}

void frmSourceAndDestination::AddChoices(ui::ListBox& list) {
  list.Add("\tSource folder: " + SourceDir.Text());
  list.Add("\tDestination folder: " + DestinationDir.Text());
  list.Add("");
}

void frmSourceAndDestination::LoadPage() {
  navigator_.BuildPackagePageList();
  Optimize.SetChecked(run_.EnoughMemory);
  Optimize.SetEnabled(run_.EnoughMemory);
}

void frmSourceAndDestination::OnActivate() {
  if (!Visible()) {
    navigator_.ActivateCurrentPage();
    return;
  }
  if (IsBusy(*this)) return;
  navigator_.ClearAllConfigured();
  navigator_.FillPageTree(TreeView1);
  Leaving = false;
}

void frmSourceAndDestination::OnBack() { BackToWelcome(); }

void frmSourceAndDestination::OnCancel() {
  // Nothing is open yet that a question could save.
  DiscardDestination(services_, run_);
  context_.host.EndProgram();
}

bool frmSourceAndDestination::OnQueryUnload() {
  if (navigator_.UnloadingPages()) return true;
  DiscardDestination(services_, run_);
  Hide();
  context_.host.EndProgram();
  return true;
}

bool frmSourceAndDestination::Stay(ui::TextBox& field) {
  EndBusy(*this);
  field.SelectField();
  return false;
}

bool frmSourceAndDestination::Stop(ui::TextBox& field, const std::string& message) {
  services_.dialogs->Message(message);
  return Stay(field);
}

void frmSourceAndDestination::Discard() { CleanUpRun(services_, run_); }

bool frmSourceAndDestination::Fail(const Status& status) {
  Check(status);
  Discard();
  return Stay(SourceDir);
}

bool frmSourceAndDestination::Confirm(const std::string& question) {
  using platform::Answer;
  return services_.dialogs->Question(question, {Answer::kOk, Answer::kCancel}, Answer::kOk, "") ==
         Answer::kOk;
}

void frmSourceAndDestination::LeavePage(const std::string& name) {
  if (Leaving) return;
  Leaving = true;
  BeginBusy(*this);
  ClearStagingBranches(services_, run_);
  std::string setup_path;
  if (CheckFolders(setup_path) && PrepareDestination() && FindPackage(setup_path) && OpenPackage() &&
      CheckPackage() && UnpackPackage()) {
    InitializePages();
    EndBusy(*this);
    navigator_.GoToPage(name);
  }
  Leaving = false;
}

bool frmSourceAndDestination::CheckFolders(std::string& setup_path) {
  if (SourceDir.Text().empty() || !services_.files->FolderExists(SourceDir.Text()))
    return Stop(SourceDir, std::string(kNoPackage) + ".");
  if (DestinationDir.Text().empty())
    return Stop(DestinationDir,
                "Please enter a destination folder to which to copy the modified Kestrane Enterprise "
                "installation files.");
  if (DestinationDir.Text() != run_.DestinationFolder && run_.DestinationInUse) {
    UndoDestination(services_, run_);
    run_.DestinationInUse = false;
    run_.DestinationFolder.clear();
  }
  run_.SourceWasExtracted = false;
  run_.SourceFolder = NormalizeFolder(SourceDir.Text());
  run_.DestinationFolder = NormalizeFolder(DestinationDir.Text());
  if (EqualsNoCase(run_.SourceFolder, run_.DestinationFolder)) return Stop(SourceDir, kSameFolders);
  if (CharacterCount(run_.DestinationFolder) >= kTooLongDestination)
    return Stop(DestinationDir,
                "The destination folder path name is too long.  Please provide a shorter path name.");
  if (!ValidatePath(services_, "Destination folder", DestinationDir.Text(),
                    kCheckCharacters | kCheckLocal | kCheckUnc))
    return Stay(DestinationDir);
  // In another spelling too: a build that fails, or an optimised one, would delete the source's own files.
  if (services_.files->IsSameFolder(SourceDir.Text(), DestinationDir.Text()))
    return Stop(SourceDir, kSameFolders);
  if (!HoldsProductDatabase(services_, run_.SourceFolder)) {
    setup_path = run_.SourceFolder + "\\SETUP.EXE";
    if (!services_.files->FileExists(setup_path)) return Stop(SourceDir, kNoPackage);
  }
  return true;
}

bool frmSourceAndDestination::PrepareDestination() {
  const std::string& folder = run_.DestinationFolder;
  if (const Status made = EnsureTempFolder(services_, run_); !made.ok()) return Fail(made);
  if (!services_.files->FolderExists(folder)) {
    if (!Confirm("The destination folder \"" + folder +
                 "\" does not exist.  Click OK to create the folder or Cancel to specify another "
                 "destination.")) {
      Discard();
      return Stay(DestinationDir);
    }
    MakeFolderPath(services_, folder);
    run_.DestinationInUse = true;
    if (!services_.files->FolderExists(folder)) {
      Discard();
      return Stop(
          DestinationDir,
          "Unable to create the folder.  Please verify that the drive is accessible and that you have "
          "the correct permissions to create a folder.");
    }
  }
  const auto occupied = HoldsVisibleEntries(services_, folder);
  if (!occupied.ok()) return Fail(occupied.status());
  if (*occupied &&
      !Confirm("The destination folder \"" + folder +
               "\" does not appear to be empty.  Tamrix recommends you use an empty folder so files are not "
               "overwritten.  Click OK to use this folder for the destination anyway or Cancel to specify "
               "another destination.")) {
    Discard();
    return Stay(DestinationDir);
  }
  if (!IsWritableFolder(services_, folder)) {
    services_.dialogs->Message(
        "The folder \"" + folder +
        "\" is write-protected.  Please verify that you have provided a destination folder that is not "
        "write-protected.");
    Discard();
    return Stay(DestinationDir);
  }
  return true;
}

bool frmSourceAndDestination::FindPackage(const std::string& setup_path) {
  const auto refuse = [this](const std::string& message) {
    Discard();
    return Stop(SourceDir, message);
  };
  if (!setup_path.empty()) {
    if (!IsRepackerExe(services_, setup_path)) return refuse(kNoPackage);
    ExtractSource(services_, run_, context_.host, setup_path);
  }
  if (!DetermineLevel(services_, run_)) return refuse(kNoPackage);
  if (run_.PackageIs700 != run_.ProductIs700)
    return refuse(
        "Version of the source package does not match Kestrane Enterprise on your system. Please specify "
        "another package.");
  if (!services_.files->FileExists(run_.SourceSetupIniPath))
    return refuse("The file \"" + run_.SourceSetupIniPath +
                  "\" does not exist.  Please verify that you have a valid Kestrane Enterprise installation "
                  "package.");
  return true;
}

bool frmSourceAndDestination::OpenPackage() {
  const auto refuse = [this](const std::string& message) {
    services_.dialogs->Message(message);
    Discard();
    return Stay(SourceDir);
  };
  frmStatus& status = navigator_.Get<frmStatus>();
  status.ShowText("Please wait while the installation database is copied.", *this);
  const Status copied = CopyDatabase(services_, run_);
  status.HideWhileWaiting(*this);
  if (!copied.ok())
    return refuse("Could not copy the file \"" + run_.SourceMsiPath + "\".  Please verify the file exists.");
  if (!OpenWorkingDatabase(run_).ok())
    return refuse("The .MSI file \"" + run_.WorkingMsiPath +
                  "\" could not be opened.  The installation package may be corrupted.  Please specify "
                  "another source.");
  return true;
}

bool frmSourceAndDestination::CheckPackage() {
  const auto refuse = [this](const std::string& message) {
    Discard();
    return Stop(SourceDir, message);
  };
  if (const Status lowered = LowerCaseWorkingFileNames(services_, run_); !lowered.ok()) return Fail(lowered);
  const InstallerDb database = InstallerDb::Working(services_, run_);
  const auto locale = database.GetProperty("txlocaleid");
  if (!locale.ok()) return Fail(locale.status());
  run_.PackageLocale = ToUpper(*locale);
  run_.ProductLocale =
      run_.ProductInstalled ? GetInstalledProductLanguage(services_, run_) : run_.PackageLocale;
  if (run_.ProductLocale != run_.PackageLocale)
    return refuse(
        "Language of the source package does not match Kestrane Enterprise on your system. Please specify "
        "another package.");
  const auto refusal = UpgradeCodeRefusal(services_, run_);
  if (!refusal.ok()) return Fail(refusal.status());
  if (!refusal->empty()) return refuse(*refusal);
  const auto modified = database.GetProperty("ZEDMODIFIEDPACKAGE");
  if (!modified.ok()) return Fail(modified.status());
  if (*modified == "True" &&
      !Confirm("This Kestrane Enterprise source package has been previously modified using the Kitwright.  "
               "Therefore, the source's configuration may already contain non-default settings.  Click OK to "
               "use this source anyway or Cancel to select another source package.")) {
    Discard();
    return Stay(SourceDir);
  }
  return true;
}

bool frmSourceAndDestination::UnpackPackage() {
  EnterProgramFolder(services_);
  if (const Status prepared = PrepareWorkingFiles(services_, run_); !prepared.ok()) return Fail(prepared);
  frmStatus& status = navigator_.Get<frmStatus>();
  status.ShowText("Please wait while files are retrieved from the installation package.", *this);
  const Status extracted = ExtractCabinets(services_, run_, context_.host);
  BuildConsolePackageFileList(run_);
  status.HideWhileWaiting(*this);
  return extracted.ok() || Fail(extracted);
}

void frmSourceAndDestination::InitializePages() {
  const auto call = [](const std::function<void()>& operation) {
    if (operation) operation();
  };
  navigator_.ReloadPages();
  for (const char* page :
       {"frmFeatures", "frmAdditionalFiles", "frmAddRemoveOptions", "frmPrograms", "frmInstallOptions",
        "frmPostInstallOptions", "frmDATsAndEngine", "frmPatchFiles", "frmBeaconryServer"})
    navigator_.Page(page).ReadConfig();
  run_.SettingsFileName = "KTECFG.CAB";
  call(context_.operations.OpenPackageSettings);
  navigator_.SetConfigurationPagesEnabled(!run_.SaveDifferencesOnly);
  navigator_.Page("frmCommonUpdater").ReadConfig();
  call(context_.operations.ReadPackageAgent);
  if (run_.HasOnDemandFeature) navigator_.Page("frmScheduledScan").ReadConfig();
  if (run_.HasAutoUpdateFeature) navigator_.Page("frmAutoUpdate").ReadConfig();
  navigator_.Page("frmInstallBWK").ReadConfig();
}

}  // namespace kw
