#ifndef KITWRIGHT_PAGES_FRM_ADD_REMOVE_OPTIONS_H_
#define KITWRIGHT_PAGES_FRM_ADD_REMOVE_OPTIONS_H_

#include <string>

#include "package/installer_db.h"
#include "shell/page_contract.h"

namespace kw {

/// What the system's "Add/Remove Programs" shows and permits for the installed product; every field is a
/// Property.
class frmAddRemoveOptions : public WizardPage {
 public:
  static constexpr const char* kName = "frmAddRemoveOptions";
  explicit frmAddRemoveOptions(PageContext& context);

  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;

  ui::Frame Frame2;
  ui::CheckBox AllowRemove;
  ui::Frame Frame1;
  ui::CheckBox ShowOnPanel;
  ui::CheckBox AllowModify;
  ui::Label Label5;
  ui::TextBox Contact;
  ui::Label Label4;
  ui::TextBox Comments;
  ui::Label Label6;
  ui::TextBox About;
  ui::Label Label7;
  ui::TextBox UpdateInformation;
  ui::Label Label8;
  ui::TextBox SupportURL;
  ui::Label Label9;
  ui::TextBox SupportTelephone;

 protected:
  ui::Layout PageLayout() override;
  void LeavePage(const std::string& name) override;

 private:
  void OnShowOnPanel();
  bool UrlIsWanted(ui::TextBox& box, const std::string& display_name);
  Status WriteProperties();

  InstallerDb db_;
};

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FRM_ADD_REMOVE_OPTIONS_H_
