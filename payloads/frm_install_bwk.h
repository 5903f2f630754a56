#ifndef KITWRIGHT_PAYLOADS_FRM_INSTALL_BWK_H_
#define KITWRIGHT_PAYLOADS_FRM_INSTALL_BWK_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// Name of the firewall's preferences in every folder that holds them.
inline constexpr const char* kBulwarkPrefs = "\\BulwarkPrefs.TXT";

/// Lets the product package carry the firewall's installer, and edits the firewall's preferences. In
/// settings-file mode only the preferences count.
class frmInstallBWK : public WizardPage, public PayloadPage {
 public:
  static constexpr const char* kName = "frmInstallBWK";
  explicit frmInstallBWK(PageContext& context);

  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;
  bool SaveConfig() override;
  void AdjustControls();

  ui::CheckBox InstallBWK;
  ui::Label EnterSourcePath;
  ui::TextBox SourcePath;
  ui::Button SourceBrowse;
  ui::CheckBox ManagedBySTC;
  ui::Option UseDefaultDirectory;
  ui::Option SpecifyCustomDirectory;
  ui::TextBox InstallDirectory;
  ui::Button InstallBrowse;
  ui::Button ConfigureSettings;

 protected:
  ui::Layout PageLayout() override;
  void LoadPage() override;
  void LeavePage(const std::string& name) override;

 private:
  std::string DataFolder() const;
  void ReadInstallerDescriptor();
  void OnSourceChange();
  void OnConfigure();
  /// Whether there are preferences, which then lie in `folder`; an error when that cannot be told.
  Result<bool> PreparePrefsFile(const std::string& folder);
  bool InstallerIsValid();
  bool InstallerStands();
  bool MakeInstaller(std::string& final_installer);
  bool CopyInstaller(const std::string& final_installer);

  std::string InstallFileName;
  std::string InstallerPath;
  std::string NewInstallDirectory;
  std::string OldInstallDirectory;
  int OldManaged = 0;
  int OldSilent = 0;
};

}  // namespace kw

#endif  // KITWRIGHT_PAYLOADS_FRM_INSTALL_BWK_H_
