#ifndef KITWRIGHT_PAGES_FRM_POST_INSTALL_OPTIONS_H_
#define KITWRIGHT_PAGES_FRM_POST_INSTALL_OPTIONS_H_

#include <string>

#include "package/installer_db.h"
#include "shell/page_contract.h"

namespace kw {

/// Reboot behaviour and what runs after installation.
class frmPostInstallOptions : public WizardPage {
 public:
  static constexpr const char* kName = "frmPostInstallOptions";
  explicit frmPostInstallOptions(PageContext& context);

  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;

  ui::CheckBox ForceReboot;
  ui::CheckBox DisplayMessage;
  ui::TextBox RebootMessage;
  ui::CheckBox StartKestrane;
  ui::CheckBox PerformScan;
  ui::CheckBox RunUpdate;

 protected:
  ui::Layout PageLayout() override;
  void ActivatePage() override;
  void LeavePage(const std::string& name) override;

 private:
  void OnDisplayMessage();
  Status WriteChoices();

  InstallerDb db_;
};

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FRM_POST_INSTALL_OPTIONS_H_
