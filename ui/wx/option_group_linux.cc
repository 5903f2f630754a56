#include "ui/wx/option_group.h"

namespace kw::ui {

void TurnOff(wxRadioButton&, wxRadioButton& none) { none.SetValue(true); }

void AllowLines(wxWindow&) {}

}  // namespace kw::ui
