#ifndef KITWRIGHT_UI_WX_ACCESS_KEYS_H_
#define KITWRIGHT_UI_WX_ACCESS_KEYS_H_

#include <wx/event.h>

#include "ui/wx/form_view.h"

namespace kw::ui {

/// Carries out, soon, the access key that `event` stands for, a key that goes down in the form's window:
/// presses a button, changes a check box or option, or goes to the field behind a label. False when it is
/// none, or where the toolkit does all of this itself.
bool PressAccessKey(FormView& view, const wxKeyEvent& event);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_ACCESS_KEYS_H_
