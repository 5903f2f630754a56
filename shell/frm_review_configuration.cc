#include "shell/frm_review_configuration.h"

#include <algorithm>

#include "shell/build_sequence.h"

namespace kw {

frmReviewConfiguration::frmReviewConfiguration(PageContext& context)
    : WizardPage(context, kName, "Finish", "Label4", "Review final configuration.", 1024),
      List1(*this, "List1") {
  AddButtons(/*review=*/true);
  Save->on_click = [this] { OnSave(); };
}

ui::Layout frmReviewConfiguration::PageLayout() { return ui::Column({ui::Place(List1, 1)}); }

void frmReviewConfiguration::AddChoices(ui::ListBox&) {}

void frmReviewConfiguration::OnActivate() {
  if (!IsBusy(*this)) WizardPage::OnActivate();
}

void frmReviewConfiguration::ActivatePage() {
  navigator_.LoadPageChoices(List1);
  FitListWidth();
  SaveRunning = false;
}

void frmReviewConfiguration::OnBack() { navigator_.GoToPage(navigator_.PreviousPageName()); }

void frmReviewConfiguration::FitListWidth() {
  int widest = 0;
  for (const std::string& item : List1.Items())
    widest = std::max(widest, context_.host.TextWidth(*this, item + "   "));
  List1.SetHorizontalExtent(widest);
}

void frmReviewConfiguration::OnSave() {
  if (SaveRunning) return;
  SaveRunning = true;
  BeginBusy(*this);
  RunBuild(context_, *this);
  navigator_.SetPageConfigured("Finish", true);
  EndBusy(*this);
  navigator_.FormByName("frmFinish").Show();
  Hide();
}

}  // namespace kw
