#ifndef KITWRIGHT_SHELL_FRM_REVIEW_CONFIGURATION_H_
#define KITWRIGHT_SHELL_FRM_REVIEW_CONFIGURATION_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// The last page of the table: everything chosen, and the button that builds it.
class frmReviewConfiguration : public WizardPage {
 public:
  static constexpr const char* kName = "frmReviewConfiguration";
  explicit frmReviewConfiguration(PageContext& context);

  ui::ListBox List1;

  /// The page has no choices of its own.
  void AddChoices(ui::ListBox& list) override;

 protected:
  ui::Layout PageLayout() override;
  void OnActivate() override;
  void ActivatePage() override;
  void OnBack() override;

 private:
  void FitListWidth();
  void OnSave();

  bool SaveRunning = false;
};

}  // namespace kw

#endif  // KITWRIGHT_SHELL_FRM_REVIEW_CONFIGURATION_H_
