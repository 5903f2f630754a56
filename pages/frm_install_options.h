#ifndef KITWRIGHT_PAGES_FRM_INSTALL_OPTIONS_H_
#define KITWRIGHT_PAGES_FRM_INSTALL_OPTIONS_H_

#include <string>

#include "package/installer_db.h"
#include "shell/page_contract.h"

namespace kw {

/// The installation folder and two start-up switches.
class frmInstallOptions : public WizardPage {
 public:
  static constexpr const char* kName = "frmInstallOptions";
  explicit frmInstallOptions(PageContext& context);

  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;
  void AdjustControls();

  ui::Option UseDefaultDirectory;
  ui::Option SpecifyCustomDirectory;
  ui::TextBox InstallDirectory;
  ui::Button SourceBrowse;
  ui::CheckBox SilentInstall;
  ui::CheckBox PreserveSettings;

 protected:
  ui::Layout PageLayout() override;
  void LoadPage() override;
  void LeavePage(const std::string& name) override;

 private:
  InstallerDb db_;
};

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FRM_INSTALL_OPTIONS_H_
