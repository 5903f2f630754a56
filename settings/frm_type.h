#ifndef KITWRIGHT_SETTINGS_FRM_TYPE_H_
#define KITWRIGHT_SETTINGS_FRM_TYPE_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// Whether the settings file holds the entire configuration or only the differences from its source.
class frmType : public WizardPage {
 public:
  static constexpr const char* kName = "frmType";
  explicit frmType(PageContext& context);

  void AddChoices(ui::ListBox& list) override;

  ui::Option SaveDifferences;
  ui::Option SaveEntire;

 protected:
  ui::Layout PageLayout() override;
  void LoadPage() override;
  void LeavePage(const std::string& name) override;
};

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_FRM_TYPE_H_
