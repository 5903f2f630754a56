#include "payloads/frm_install_bwk.h"

#include "base/path.h"
#include "package/file_rules.h"
#include "package/installer_db.h"
#include "pages/folder_box.h"
#include "pages/frm_install_options.h"
#include "pages/startup_ini.h"
#include "pages/wizard_dialog.h"
#include "payloads/frm_configure_bwk.h"

namespace kw {
namespace {

using platform::Answer;

constexpr const char* kProgram = "Bulwark.EXE";
constexpr const char* kLocationKey = "szBWKLocation";
constexpr const char* kDescriptorSection = "General";
constexpr int kCommonApplicationData = 35;

}  // namespace

frmInstallBWK::frmInstallBWK(PageContext& context)
    : WizardPage(context, kName, "Tamrix Bulwark", "Label4",
                 "Specify the Tamrix Bulwark installation options.", 1035),
      InstallBWK(*this, "InstallBWK", "&Install Tamrix Bulwark"),
      EnterSourcePath(*this, "EnterSourcePath", "&Tamrix Bulwark installation file"),
      SourcePath(*this, "SourcePath"),
      SourceBrowse(*this, "SourceBrowse", "B&rowse..."),
      ManagedBySTC(*this, "ManagedBySTC", "This package will be managed by &Stratocon"),
      UseDefaultDirectory(*this, "UseDefaultDirectory", "Use the &default installation folder"),
      SpecifyCustomDirectory(*this, "SpecifyCustomDirectory", "Specify a &custom installation folder:"),
      InstallDirectory(*this, "InstallDirectory"),
      InstallBrowse(*this, "InstallBrowse", "Br&owse..."),
      ConfigureSettings(*this, "ConfigureSettings", "Configure Tamrix Bulwark &Properties") {
  InstallBWK.on_click = [this] {
    AdjustControls();
    if (InstallBWK.Checked()) SourcePath.SetFocus();
  };
  SpecifyCustomDirectory.on_click = [this] {
    AdjustControls();
    if (run_.PackageMode) InstallDirectory.SetFocus();
  };
  UseDefaultDirectory.on_click = [this] { AdjustControls(); };
  SourcePath.on_change = [this] { OnSourceChange(); };
  SourceBrowse.on_click = [this] {
    const std::string chosen = services_.dialogs->OpenFile(
        "Enter a path to the Tamrix Bulwark installation file", "Installation Files (*.exe)|*.exe", "", "");
    if (!chosen.empty()) SourcePath.SetText(chosen);
  };
  InstallBrowse.on_click = [this] {
    BrowseForFolderInto(services_, InstallDirectory, "Select Installation Folder");
  };
  ConfigureSettings.on_click = [this] { OnConfigure(); };
  AddButtons();
}

ui::Layout frmInstallBWK::PageLayout() {
  using namespace ui;
  return Column(
      {Place(InstallBWK),
       Indent(Column({Fields({Place(EnterSourcePath), Row({Place(SourcePath, 1), Place(SourceBrowse)})}),
                      Place(ManagedBySTC), Place(UseDefaultDirectory), Place(SpecifyCustomDirectory),
                      Indent(Row({Place(InstallDirectory, 1), Place(InstallBrowse)}))})),
       Row({Place(ConfigureSettings), Space()}), Space()},
      1);
}

void frmInstallBWK::LoadPage() {
  UseDefaultDirectory.SetValue(true);
  AdjustControls();
}

std::string frmInstallBWK::DataFolder() const { return run_.TempFolder + "\\BWKData"; }

void frmInstallBWK::AdjustControls() {
  const bool install = InstallBWK.Checked();
  const bool custom = install && SpecifyCustomDirectory.Value();
  EnterSourcePath.SetEnabled(install);
  SourcePath.EnableWithColor(install);
  SourceBrowse.SetEnabled(install);
  ManagedBySTC.SetEnabled(install);
  UseDefaultDirectory.SetEnabled(install);
  SpecifyCustomDirectory.SetEnabled(install);
  InstallDirectory.EnableWithColor(custom);
  InstallBrowse.SetEnabled(custom);
}

void frmInstallBWK::ReadConfig() {
  EnsureLoaded();
  SourcePath.SetText("");
  InstallerPath.clear();
  // That of an installer in a package opened before.
  run_.BulwarkLocale = "0000";
  InstallDirectory.SetText("");
  InstallBWK.SetChecked(false);
  InstallBWK.SetEnabled(run_.PackageMode);
  if (run_.PackageMode) {
    UseDefaultDirectory.SetValue(true);
    std::string location =
        ReadIniValue(services_, run_.WorkingSetupIniPath, kStartupSection, kLocationKey, "");
    if (location.empty()) location = "BWK";
    if (location.starts_with('\\')) location.erase(0, 1);
    const std::string path = run_.SourceFolder + "\\" + location + "\\" + kProgram;
    if (services_.files->FileExists(path)) {
      InstallerPath = path;
      InstallFileName = kProgram;
      InstallBWK.SetChecked(true);
      SourcePath.SetText(run_.SourceWasExtracted ? std::string(kInPackage) + "\\" + kProgram : InstallerPath);
      ReadInstallerDescriptor();
      if (!InstallDirectory.Text().empty()) SpecifyCustomDirectory.SetValue(true);
    }
  }
  AdjustControls();
}

void frmInstallBWK::ReadInstallerDescriptor() {
  platform::FileSystem& files = *services_.files;
  const std::string descriptor = DataFolder() + "\\MDF.INI";
  files.CreateFolder(DataFolder()).IgnoreError();
  for (const std::string& old : {descriptor, DataFolder() + "\\BulwarkPref.TXT"}) {
    if (files.FileExists(old)) files.DeleteFile(old, true).IgnoreError();
  }
  // What counts is whether the descriptor exists afterwards.
  services_.libraries->BwkExtractInstallerFiles(InstallerPath, DataFolder()).status().IgnoreError();
  if (!files.FileExists(descriptor)) return;
  const auto read = [&](const char* key, const char* fallback) {
    return ReadIniValue(services_, descriptor, kDescriptorSection, key, fallback);
  };
  InstallDirectory.SetText(read("InstallPath", ""));
  ManagedBySTC.SetChecked(read("STC", "0") == "1");
  run_.BulwarkLocale = read("LangID", "0000");
  OldInstallDirectory = InstallDirectory.Text();
  // A page that nobody visits leaves the installer as it is.
  NewInstallDirectory = OldInstallDirectory;
  OldManaged = ManagedBySTC.Value();
  OldSilent = read("Silent", "0") == "1" ? 1 : 0;
}

void frmInstallBWK::OnSourceChange() {
  const std::string text = SourcePath.Text();
  platform::FileSystem& files = *services_.files;
  if (text.empty() || text.starts_with(kInPackage) || text == InstallerPath || !files.FileExists(text))
    return;
  InstallerPath = text;
  InstallFileName = FileNameOf(text);
  ReadInstallerDescriptor();
  Refresh();
  if (!files.FileExists(DataFolder() + "\\BulwarkPref.TXT") || !run_.changes.ConfigChangedBulwark) return;
  if (services_.dialogs->Question("This installation package contains another set of Tamrix Bulwark "
                                  "configuration. Click OK to replace your "
                                  "changes with these settings, or Cancel to keep your changes.",
                                  {Answer::kOk, Answer::kCancel}, Answer::kOk, "") != Answer::kOk) {
    return;
  }
  if (!Check(CopyWritable(services_, DataFolder() + kBulwarkPrefs, run_.ConfigAppDataFolder + kBulwarkPrefs)))
    return;
  files.DeleteFile(run_.ConfigAppDataFolder + "\\TMP" + kBulwarkPrefs, true).IgnoreError();
  run_.changes.ConfigChangedBulwark = false;
}

void frmInstallBWK::OnConfigure() {
  // Without any preferences the dialog starts from nothing.
  PreparePrefsFile(run_.ConfigAppDataFolder + "\\TMP").status().IgnoreError();
  navigator_.Get<frmConfigureBWK>().ShowModal();
}

Result<bool> frmInstallBWK::PreparePrefsFile(const std::string& folder) {
  platform::FileSystem& files = *services_.files;
  const std::string target = folder + kBulwarkPrefs;
  KW_ASSIGN_OR_RETURN(const bool prepared, FileIsThere(services_, target));
  if (prepared) return true;
  if (!files.FolderExists(folder)) files.CreateFolder(folder).IgnoreError();
  const std::string installed =
      services_.system->SpecialFolder(kCommonApplicationData) + "\\Orvantic\\Tamrix Bulwark";
  for (const std::string& source : {run_.ConfigAppDataFolder, DataFolder(), installed}) {
    KW_ASSIGN_OR_RETURN(const bool there, FileIsThere(services_, source + kBulwarkPrefs));
    if (!there) continue;
    // The dialog writes into its copy.
    CopyWritable(services_, source + kBulwarkPrefs, target).IgnoreError();
    return files.FileExists(target);
  }
  return false;
}

bool frmInstallBWK::InstallerIsValid() {
  const std::string text = SourcePath.Text();
  const bool in_package = text.starts_with(kInPackage);
  if (text.empty() || (!in_package && !services_.files->FileExists(text))) {
    services_.dialogs->Message("Please enter a path to the Tamrix Bulwark installation file.");
    SourcePath.SelectField();
    return false;
  }
  if (!UseDefaultDirectory.Value() && !CustomFolderIsValid(services_, InstallDirectory)) return false;
  InstallerPath = in_package ? run_.SourceFolder + "\\BWK\\" + kProgram : text;
  NewInstallDirectory = InstallDirectory.Text();
  return true;
}

void frmInstallBWK::LeavePage(const std::string& name) {
  if (InstallBWK.Checked() && !InstallerIsValid()) return;
  platform::FileSystem& files = *services_.files;
  const std::string scratch = run_.ConfigAppDataFolder + "\\TMP" + kBulwarkPrefs;
  if (files.FileExists(scratch)) {
    if (!Check(CopyWritable(services_, scratch, run_.ConfigAppDataFolder + kBulwarkPrefs))) return;
    files.DeleteFile(scratch, true).IgnoreError();
  }
  navigator_.GoToPage(name);
}

// Whether the given installer can be used as it is.
bool frmInstallBWK::InstallerStands() {
  return NewInstallDirectory == OldInstallDirectory && !run_.changes.ConfigChangedBulwark &&
         navigator_.Get<frmInstallOptions>().SilentInstall.Value() == OldSilent &&
         ManagedBySTC.Value() == OldManaged;
}

// The build names this step; no more is said of a failure.
bool frmInstallBWK::SaveConfig() {
  const std::string& ini = run_.WorkingSetupIniPath;
  if (!InstallBWK.Checked()) {
    return WriteIniValue(services_, ini, kStartupSection, kLocationKey, std::nullopt).ok();
  }
  if (!services_.files->FileExists(InstallerPath)) return false;
  const std::string folder = run_.DestinationFolder + "\\BWK";
  if (!services_.files->FolderExists(folder) || services_.files->IsLink(folder)) {
    if (!MakeOwnFolder(services_, folder).ok() && services_.files->IsLink(folder)) return false;
    // With a list, empty as it is, a build that fails takes the folder back.
    if (!run_.BulwarkFileList) run_.BulwarkFileList = std::make_unique<FileList>();
  }
  std::string final_installer = InstallerPath;
  if (!InstallerStands() && !MakeInstaller(final_installer)) return false;
  run_.BulwarkIncluded = ManagedBySTC.Checked();
  const bool copied = CopyInstaller(final_installer);
  return WriteIniValue(services_, ini, kStartupSection, kLocationKey, "\\BWK").ok() && copied;
}

bool frmInstallBWK::MakeInstaller(std::string& final_installer) {
  platform::FileSystem& files = *services_.files;
  final_installer = DataFolder() + "\\" + InstallFileName;
  if (files.FileExists(final_installer) && !files.DeleteFile(final_installer, false).ok()) return false;
  if (!files.CopyFile(InstallerPath, final_installer, true).ok() ||
      !MakeWritable(services_, final_installer).ok()) {
    return false;
  }
  const auto has_prefs = PreparePrefsFile(run_.ConfigAppDataFolder);
  if (!has_prefs.ok()) return false;
  const std::string prefs = *has_prefs ? run_.ConfigAppDataFolder + kBulwarkPrefs : std::string();
  const auto made = services_.libraries->BwkCreateInstaller(
      final_installer, prefs, NewInstallDirectory.empty() ? nullptr : &NewInstallDirectory,
      navigator_.Get<frmInstallOptions>().SilentInstall.Value(), ManagedBySTC.Value());
  return made.value_or(0) != 0;
}

bool frmInstallBWK::CopyInstaller(const std::string& final_installer) {
  platform::FileSystem& files = *services_.files;
  const std::string folder = run_.DestinationFolder + "\\BWK\\";
  // The given program may lie there itself; then it is not the run's to delete.
  if (!IsSameFile(services_, InstallerPath, folder + InstallFileName))
    files.DeleteFile(folder + InstallFileName, true).IgnoreError();
  const bool own = IsSameFile(services_, InstallerPath, folder + kProgram);
  const bool copied = CopyOver(services_, final_installer, folder + kProgram).ok();
  run_.BulwarkProgramCopied = copied && !own;
  return copied && files.FileExists(folder + kProgram);
}

void frmInstallBWK::AddChoices(ui::ListBox& list) {
  if (run_.PackageMode) {
    if (InstallBWK.Checked()) {
      list.Add("\tTamrix Bulwark installation file: " + SourcePath.Text());
      list.Add(UseDefaultDirectory.Value() ? "\tUse default installation folder."
                                           : "\tCustom installation folder: " + InstallDirectory.Text());
    } else {
      list.Add("\tTamrix Bulwark has not been configured for installation.");
    }
  }
  list.Add(run_.changes.ConfigChangedBulwark ? "\tTamrix Bulwark properties were configured."
                                             : "\tTamrix Bulwark properties were not configured.");
  list.Add("");
}

}  // namespace kw
