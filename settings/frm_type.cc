#include "settings/frm_type.h"

namespace kw {

frmType::frmType(PageContext& context)
    : WizardPage(context, kName, "Type", "Label4", "Specify configuration type.", 1004),
      SaveDifferences(*this, "SaveDifferences", "Save only the &differences from the source configuration"),
      SaveEntire(*this, "SaveEntire", "Save the &entire configuration") {
  AddButtons();
}

ui::Layout frmType::PageLayout() {
  return ui::Column({ui::Place(SaveDifferences), ui::Place(SaveEntire), ui::Space()}, 1);
}

void frmType::LoadPage() { SaveEntire.SetValue(true); }

void frmType::LeavePage(const std::string& name) {
  run_.SaveDifferencesOnly = !SaveEntire.Value();
  navigator_.GoToPage(name);
}

void frmType::AddChoices(ui::ListBox& list) {
  list.Add(SaveEntire.Value() ? "\tSave the entire configuration"
                              : "\tSave only the differences from the source configuration");
  list.Add("");
}

}  // namespace kw
