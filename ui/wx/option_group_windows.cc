#include "ui/wx/option_group.h"

namespace kw::ui {

// Here an option may be turned off by itself. To turn another one on would give that one the focus, unseen.
void TurnOff(wxRadioButton& on, wxRadioButton&) { on.SetValue(false); }

}  // namespace kw::ui
