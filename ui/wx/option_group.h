#ifndef KITWRIGHT_UI_WX_OPTION_GROUP_H_
#define KITWRIGHT_UI_WX_OPTION_GROUP_H_

#include <wx/radiobut.h>
#include <wx/window.h>

namespace kw::ui {

/// Makes a group of options have none that is on. `on` is the one that is, `none` the group's first, which is
/// never seen.
void TurnOff(wxRadioButton& on, wxRadioButton& none);

/// Lets the caption of a check box or option have several lines.
void AllowLines(wxWindow& choice);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_OPTION_GROUP_H_
