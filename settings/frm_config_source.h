#ifndef KITWRIGHT_SETTINGS_FRM_CONFIG_SOURCE_H_
#define KITWRIGHT_SETTINGS_FRM_CONFIG_SOURCE_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// Where the settings of this run come from: nowhere, the installed product, or a settings cabinet.
class frmConfigSource : public WizardPage {
 public:
  static constexpr const char* kName = "frmConfigSource";
  explicit frmConfigSource(PageContext& context);

  void AddChoices(ui::ListBox& list) override;

  /// Last step but the task pages' of opening a package: takes up the settings that the package carries, or
  /// the live system's.
  void TakePackageSettings();

  ui::Option NoSettings;
  ui::Option SettingsFromSystem;
  ui::Option SettingsFromFile;
  ui::TextBox SettingsFromFilePath;
  ui::Button SettingsFromFileBrowse;
  /// Set while a file is imported, against a second click.
  bool Importing = false;

 protected:
  ui::Layout PageLayout() override;
  void LoadPage() override;
  void ActivatePage() override;
  void LeavePage(const std::string& name) override;
  void OnNext() override;
  void OnBack() override;

 private:
  std::string PackageMarker() const;
  void OnSourceClick();
  void OnBrowse();
  bool IsChanged(const std::string& source_name) const;
  bool TakeFile();
  bool ImportFile(const std::string& path);
  bool TakeSystemOrNothing();
  void ShowFileSource(const std::string& source_name, const std::string& text);
  void EnsureWorkingFolder();
  void EnablePages();
};

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_FRM_CONFIG_SOURCE_H_
