#ifndef KITWRIGHT_SHELL_PLACEHOLDER_PAGE_H_
#define KITWRIGHT_SHELL_PLACEHOLDER_PAGE_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// A page whose own part is still to come: its caption, the common controls, no choices.
class PlaceholderPage : public WizardPage {
 public:
  PlaceholderPage(PageContext& context, std::string name, std::string title, int help_id);
  void AddChoices(ui::ListBox& list) override;

 protected:
  ui::Layout PageLayout() override;
};

}  // namespace kw

#endif  // KITWRIGHT_SHELL_PLACEHOLDER_PAGE_H_
