#ifndef KITWRIGHT_PAGES_FRM_ZED_PASSWORD_H_
#define KITWRIGHT_PAGES_FRM_ZED_PASSWORD_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// The password that protects the product's configuration on the target machines, and a new one. Only
/// enciphered texts leave the page.
class frmZEDPassword : public WizardPage {
 public:
  static constexpr const char* kName = "frmZEDPassword";
  explicit frmZEDPassword(PageContext& context);

  void AddChoices(ui::ListBox& list) override;

  ui::Label Label3;
  ui::TextBox Password;
  ui::CheckBox SetNewPassword;
  ui::Label Label4;
  ui::TextBox NewPassword;
  ui::Label Label5;
  ui::TextBox ConfirmNewPassword;

 protected:
  ui::Layout PageLayout() override;
  void LoadPage() override;
  void LeavePage(const std::string& name) override;

 private:
  void OnSetNewPassword();
  Status StorePasswords();
  bool IsGiven(const char* value_name);
};

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FRM_ZED_PASSWORD_H_
