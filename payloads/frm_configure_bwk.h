#ifndef KITWRIGHT_PAYLOADS_FRM_CONFIGURE_BWK_H_
#define KITWRIGHT_PAYLOADS_FRM_CONFIGURE_BWK_H_

#include <string>

#include "pages/wizard_dialog.h"

namespace kw {

/// Hosts the firewall's console control, which edits the scratch copy of the preferences.
class frmConfigureBWK : public WizardDialog {
 public:
  static constexpr const char* kName = "frmConfigureBWK";
  explicit frmConfigureBWK(PageContext& context);

  /// The console control's stand-in: the preferences as text.
  ui::Editor STCConsoleCtrl81;
  ui::Button OK;
  ui::Button Cancel;
  ui::Button Help;

  ui::Layout ContentLayout() override;

 protected:
  void OnActivate() override;
  bool OnQueryUnload() override;

 private:
  std::string ScratchFile() const;
  Status StoreChanges();
  void AdjustPage();
};

}  // namespace kw

#endif  // KITWRIGHT_PAYLOADS_FRM_CONFIGURE_BWK_H_
