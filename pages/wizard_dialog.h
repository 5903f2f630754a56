#ifndef KITWRIGHT_PAGES_WIZARD_DIALOG_H_
#define KITWRIGHT_PAGES_WIZARD_DIALOG_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// What the modal dialogs of pages have in common: loaded once and kept hidden between showings; Cancel and
/// the title bar's close hide it.
class WizardDialog : public ui::Form {
 public:
  WizardDialog(PageContext& context, std::string name, std::string caption)
      : Form(context.host, std::move(name), std::move(caption), ui::FormStyle::kDialog), context_(context) {}

 protected:
  void OnLoad() override { InitializePage(context_, *this); }
  bool Check(const Status& status) { return CheckOrReport(context_.services, status); }

  PageContext& context_;
};

/// The marker that stands in a path box for a file that lies in the package already.
inline constexpr const char* kInPackage = "[IN_PACKAGE]";

}  // namespace kw

#endif  // KITWRIGHT_PAGES_WIZARD_DIALOG_H_
