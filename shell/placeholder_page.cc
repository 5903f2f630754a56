#include "shell/placeholder_page.h"

#include <utility>

namespace kw {

PlaceholderPage::PlaceholderPage(PageContext& context, std::string name, std::string title, int help_id)
    : WizardPage(context, std::move(name), std::move(title), "Label4", "", help_id) {
  AddButtons();
}

void PlaceholderPage::AddChoices(ui::ListBox&) {}

ui::Layout PlaceholderPage::PageLayout() { return ui::Space(); }

}  // namespace kw
