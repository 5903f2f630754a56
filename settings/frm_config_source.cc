#include "settings/frm_config_source.h"

#include "base/text.h"
#include "package/file_rules.h"
#include "package/installer_db.h"
#include "package/source_package.h"
#include "package/staging.h"
#include "pages/frm_registry_settings.h"
#include "pages/wizard_dialog.h"
#include "settings/branches.h"
#include "settings/frm_auto_update.h"
#include "settings/frm_destination.h"
#include "settings/frm_scheduled_scan.h"
#include "settings/import_configuration.h"

namespace kw {
namespace {

using platform::Answer;

constexpr unsigned kFileChecks = kCheckCharacters | kCheckLocal | kCheckUnc;

}  // namespace

frmConfigSource::frmConfigSource(PageContext& context)
    : WizardPage(context, kName, "Source for Configuration", "Label4",
                 "Select source for product configuration.", 1003),
      NoSettings(
          *this, "NoSettings",
          "N&one. (Allows you to import AutoUpdate repository list, configure the registry settings, set "
          "Kitwright password only -- no Kestrane Enterprise settings.)"),
      SettingsFromSystem(*this, "SettingsFromSystem",
                         "&Existing Kestrane Enterprise settings on local system"),
      SettingsFromFile(*this, "SettingsFromFile", "&Configuration file:"),
      SettingsFromFilePath(*this, "SettingsFromFilePath"),
      SettingsFromFileBrowse(*this, "SettingsFromFileBrowse", "B&rowse...") {
  NoSettings.on_click = [this] { OnSourceClick(); };
  SettingsFromSystem.on_click = [this] { OnSourceClick(); };
  SettingsFromFile.on_click = [this] { OnSourceClick(); };
  SettingsFromFileBrowse.on_click = [this] { OnBrowse(); };
  AddButtons();
}

ui::Layout frmConfigSource::PageLayout() {
  using namespace ui;
  return Column({Place(NoSettings), Place(SettingsFromSystem), Place(SettingsFromFile),
                 Indent(Row({Place(SettingsFromFilePath, 1), Place(SettingsFromFileBrowse)})), Space()},
                1);
}

void frmConfigSource::AddChoices(ui::ListBox& list) {
  if (SettingsFromFile.Value()) {
    list.Add("\tRead settings from: a configuration file (" + SettingsFromFilePath.Text() + ")");
  } else if (SettingsFromSystem.Value()) {
    list.Add("\tRead settings from: existing Kestrane Enterprise settings on local system");
  } else {
    list.Add("\tNo Kestrane Enterprise settings");
  }
  list.Add("");
}

void frmConfigSource::LoadPage() {
  SettingsFromFilePath.EnableWithColor(false);
  SettingsFromFileBrowse.SetEnabled(false);
  if (run_.PackageMode) return;
  if (run_.AnyFeatureInstalled) navigator_.BuildSettingsPageList();
  run_.ConfigSourceName = kSourceIsSystem;
  SettingsFromSystem.SetValue(true);
}

void frmConfigSource::ActivatePage() {
  if (!run_.PackageMode) {
    Finsh->SetEnabled(!navigator_.Get<frmDestination>().DestConfigFolder.Text().empty());
  }
}

std::string frmConfigSource::PackageMarker() const {
  return std::string(kInPackage) + "\\" + run_.SettingsFileName;
}

void frmConfigSource::OnSourceClick() {
  const bool from_file = SettingsFromFile.Value();
  SettingsFromFilePath.EnableWithColor(from_file);
  SettingsFromFileBrowse.SetEnabled(from_file);
  if (from_file && Visible()) SettingsFromFilePath.SetFocus();
  navigator_.SetConfigurationPagesEnabled(!NoSettings.Value());
  navigator_.FillPageTree(TreeView1);
}

void frmConfigSource::OnBrowse() {
  std::string folder = SettingsFromFilePath.Text();
  unsigned checks = kFileChecks;
  if (!ValidatePath(services_, "", folder, checks, true)) folder.clear();
  if (folder.ends_with('\\')) folder.pop_back();
  if (folder.size() <= 3) folder.clear();
  const std::string chosen =
      services_.dialogs->OpenFile("Select Configuration File", "Cabinet Files (*.cab)|*.cab", folder, "");
  if (!chosen.empty()) SettingsFromFilePath.SetText(chosen);
}

void frmConfigSource::OnNext() {
  const std::string name = navigator_.NextPageName();
  if (!name.empty()) LeavePage(name);
}

void frmConfigSource::OnBack() {
  if (Importing) return;
  if (run_.PackageMode) {
    navigator_.GoToPage(navigator_.PreviousPageName());
    return;
  }
  navigator_.FormByName("frmWelcome").Show();
  Hide();
}

bool frmConfigSource::IsChanged(const std::string& source_name) const {
  return !StartsWithNoCase(PackageMarker(), run_.ConfigSourceName) ||
         !StartsWithNoCase(source_name, run_.ConfigSourceName);
}

bool frmConfigSource::TakeFile() {
  const std::string path = SettingsFromFilePath.Text();
  if (path.empty()) {
    services_.dialogs->Message("Please enter a path to a valid configuration file to continue.");
    SettingsFromFilePath.SetFocus();
    return false;
  }
  if (IsChanged(path) && !path.starts_with(kInPackage) &&
      (!ValidatePath(services_, "Configuration file", path, kFileChecks) || !ImportFile(path))) {
    SettingsFromFilePath.SetFocus();
    return false;
  }
  run_.SettingsFromSystem = false;
  run_.SettingsFromFile = true;
  run_.ConfigSourceName = path;
  return true;
}

bool frmConfigSource::ImportFile(const std::string& path) {
  Importing = true;
  const bool imported = ImportConfiguration(context_, path, true);
  Importing = false;
  if (!imported) return false;
  // The choice may have been changed meanwhile; what was imported stands.
  SettingsFromFile.SetValue(true);
  SettingsFromFilePath.SetText(path);
  return true;
}

bool frmConfigSource::TakeSystemOrNothing() {
  const std::string source_name = NoSettings.Value() ? kSourceIsNone : kSourceIsSystem;
  if (IsChanged(source_name)) {
    if (run_.changes.Any() &&
        services_.dialogs->Question("Any changes you have made will be discarded.",
                                    {Answer::kOk, Answer::kCancel}, Answer::kOk, "") != Answer::kOk) {
      return false;
    }
    ClearStagingBranches(services_, run_);
    if (!run_.ConfigAppDataFolder.empty() && services_.files->FolderExists(run_.ConfigAppDataFolder)) {
      services_.files->DeleteFolder(run_.ConfigAppDataFolder, true).IgnoreError();
    }
    run_.ConfigAppDataFolder = MakeConfigAppDataFolder(services_, run_);
  }
  run_.SettingsFromSystem = !NoSettings.Value();
  run_.ProductLocale = NoSettings.Value() ? "0000" : GetInstalledProductLanguage(services_, run_);
  run_.SettingsFromFile = false;
  run_.ConfigSourceName = source_name;
  return true;
}

// Without a folder, or with that of a package that was open before, the pages behind would put their files
// nowhere, or into the root of the current drive.
void frmConfigSource::EnsureWorkingFolder() {
  if (run_.ConfigAppDataFolder.empty() || !services_.files->FolderExists(run_.ConfigAppDataFolder)) {
    run_.ConfigAppDataFolder = MakeConfigAppDataFolder(services_, run_);
  }
}

void frmConfigSource::EnablePages() {
  const bool enabled = !NoSettings.Value() && !run_.SaveDifferencesOnly;
  navigator_.SetConfigurationPagesEnabled(enabled);
  if (!enabled) return;
  navigator_.Get<frmScheduledScan>().ReadConfig();
  navigator_.Get<frmAutoUpdate>().ReadConfig();
}

void frmConfigSource::LeavePage(const std::string& name) {
  if (Importing) return;
  if (!Check(EnsureTempFolder(services_, run_))) return;
  if (!(SettingsFromFile.Value() ? TakeFile() : TakeSystemOrNothing())) return;
  // The marker of a package's own settings brings no folder when it is typed.
  EnsureWorkingFolder();
  EnablePages();
  for (const char* page : {"frmRegistrySettings", "frmCommonUpdater"}) {
    navigator_.Page(page).ReadConfig();
  }
  if (!run_.PackageMode) navigator_.Page("frmInstallBWK").ReadConfig();
  navigator_.GoToPage(name);
}

void frmConfigSource::ShowFileSource(const std::string& source_name, const std::string& text) {
  run_.ConfigSourceName = source_name;
  SettingsFromFile.SetValue(true);
  SettingsFromFilePath.EnableWithColor(true);
  SettingsFromFilePath.SetText(text);
  run_.SettingsFromSystem = false;
  run_.SettingsFromFile = true;
  navigator_.Get<frmRegistrySettings>().ReadConfig();
}

void frmConfigSource::TakePackageSettings() {
  EnsureLoaded();
  run_.SettingsFileName = "KTECFG.CAB";
  const std::string inside = run_.TempFolder + "\\" + run_.SettingsFileName;
  const bool extracted =
      InstallerDb::Working(services_, run_).ExtractBinary("ktecfg.cab", inside).value_or(false);
  // Both run even when the first fails.
  const bool imported = ImportConfiguration(context_, inside, false);
  if (extracted && imported && !run_.ProductIs700) {
    ShowFileSource(inside, PackageMarker());
    return;
  }
  const std::string beside = run_.SourceFolder + "\\" + run_.SettingsFileName;
  const bool exists = services_.files->FileExists(beside);
  if (ImportConfiguration(context_, beside, false) && exists) {
    ShowFileSource(beside, run_.SourceWasExtracted ? PackageMarker() : beside);
  } else {
    run_.ConfigSourceName = kSourceIsSystem;
    SettingsFromSystem.SetValue(true);
    run_.SettingsFromSystem = run_.ProductInstalled;
    run_.SettingsFromFile = false;
  }
  EnsureWorkingFolder();
}

}  // namespace kw
