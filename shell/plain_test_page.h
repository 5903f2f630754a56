#ifndef KITWRIGHT_SHELL_PLAIN_TEST_PAGE_H_
#define KITWRIGHT_SHELL_PLAIN_TEST_PAGE_H_

#include <string>
#include <utility>

#include "shell/page_contract.h"

namespace kw::testing {

/// A page with its title and the common controls alone, for tests of what all pages share.
class PlainTestPage : public WizardPage {
 public:
  PlainTestPage(PageContext& context, std::string name, std::string title, int help_id)
      : WizardPage(context, std::move(name), std::move(title), "Label4", "", help_id) {
    AddButtons();
  }
  void AddChoices(ui::ListBox& list) override { list.Add(""); }

 protected:
  ui::Layout PageLayout() override { return ui::Column({ui::Space()}, 1); }
};

}  // namespace kw::testing

#endif  // KITWRIGHT_SHELL_PLAIN_TEST_PAGE_H_
