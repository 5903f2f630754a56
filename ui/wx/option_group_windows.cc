#include <wx/msw/wrapwin.h>

#include "ui/wx/option_group.h"

namespace kw::ui {

// Here an option may be turned off by itself. To turn another one on would give that one the focus, unseen.
void TurnOff(wxRadioButton& on, wxRadioButton&) { on.SetValue(false); }

void AllowLines(wxWindow& choice) {
  const HWND window = choice.GetHWND();
  SetWindowLongPtrW(window, GWL_STYLE, GetWindowLongPtrW(window, GWL_STYLE) | BS_MULTILINE);
}

}  // namespace kw::ui
