#include "pages/frm_install_options.h"

#include "package/file_rules.h"
#include "pages/folder_box.h"
#include "pages/startup_ini.h"

namespace kw {

frmInstallOptions::frmInstallOptions(PageContext& context)
    : WizardPage(context, kName, "Installation Options", "Label4", "Specify installation options.", 1013),
      UseDefaultDirectory(*this, "UseDefaultDirectory", "&Use default installation folder"),
      SpecifyCustomDirectory(*this, "SpecifyCustomDirectory", "Specify &custom installation folder"),
      InstallDirectory(*this, "InstallDirectory"),
      SourceBrowse(*this, "SourceBrowse", "B&rowse..."),
      SilentInstall(*this, "SilentInstall", "&Install product silently"),
      PreserveSettings(*this, "PreserveSettings",
                       "&Preserve settings if Kestrane or Farwatch has previously been installed"),
      db_(InstallerDb::Working(context.services, context.run)) {
  UseDefaultDirectory.on_click = [this] { AdjustControls(); };
  SpecifyCustomDirectory.on_click = [this] { AdjustControls(); };
  SourceBrowse.on_click = [this] {
    BrowseForFolderInto(services_, InstallDirectory, "Select Installation Folder");
  };
  AddButtons();
}

ui::Layout frmInstallOptions::PageLayout() {
  using namespace ui;
  return Column({Place(UseDefaultDirectory), Place(SpecifyCustomDirectory),
                 Indent(Row({Place(InstallDirectory, 1), Place(SourceBrowse)})), Place(SilentInstall),
                 Place(PreserveSettings), Space()},
                1);
}

void frmInstallOptions::LoadPage() { UseDefaultDirectory.SetValue(true); }

void frmInstallOptions::ReadConfig() {
  EnsureLoaded();
  const auto folder = db_.GetProperty("INSTALLDIR");
  if (!Check(folder.status())) return;
  if (folder->empty()) {
    UseDefaultDirectory.SetValue(true);
  } else {
    SpecifyCustomDirectory.SetValue(true);
    InstallDirectory.SetText(*folder);
  }
  SilentInstall.SetChecked(ReadStartupFlag(services_, run_, "bSilent", "0"));
  PreserveSettings.SetChecked(ReadStartupFlag(services_, run_, "bPreserveSettings", "1"));
  AdjustControls();
}

void frmInstallOptions::AdjustControls() {
  const bool custom = !UseDefaultDirectory.Value();
  InstallDirectory.EnableWithColor(custom);
  SourceBrowse.SetEnabled(custom);
  if (custom && Visible()) InstallDirectory.SetFocus();
}

void frmInstallOptions::LeavePage(const std::string& name) {
  std::string folder;
  if (SpecifyCustomDirectory.Value()) {
    if (!CustomFolderIsValid(services_, InstallDirectory)) return;
    folder = InstallDirectory.Text();
  }
  if (!Check(db_.SetProperty("INSTALLDIR", folder)) ||
      !Check(WriteStartupFlag(services_, run_, "bSilent", SilentInstall.Checked())) ||
      !Check(WriteStartupFlag(services_, run_, "bPreserveSettings", PreserveSettings.Checked()))) {
    return;
  }
  navigator_.GoToPage(name);
}

void frmInstallOptions::AddChoices(ui::ListBox& list) {
  list.Add(UseDefaultDirectory.Value() ? "\tUse default installation folder."
                                       : "\tCustom installation folder: " + InstallDirectory.Text());
  list.Add("\tInstall product silently: " + ChooseValue(SilentInstall.Checked(), "Yes", "No"));
  list.Add("\tPreserve settings: " + ChooseValue(PreserveSettings.Checked(), "Yes", "No"));
  list.Add("");
}

}  // namespace kw
