#ifndef KITWRIGHT_UI_FORM_LINES_H_
#define KITWRIGHT_UI_FORM_LINES_H_

#include <string>
#include <string_view>

#include "ui/controls.h"
#include "ui/form.h"

namespace kw::ui {

// The transcript lines of windows, the same in page tests and in script runs.

/// `caption` without the marks of its access key; "&&" is one "&".
std::string PlainCaption(std::string_view caption);
/// The line for a form that was just shown: "page FORM", "modal FORM", or "status TEXT".
std::string ShownLine(const Form& form);
/// The line for a form that was just hidden: "hide FORM", "modal-end FORM", or "status-end".
std::string HiddenLine(const Form& form);
/// "status TEXT" with the text of the status window's first label.
std::string StatusLine(const Form& form);
/// The line for a control that just changed: StatusLine when a visible status window tells another phase,
/// otherwise "".
std::string ChangedLine(const Control& control, Change change);
/// "focus FORM.CONTROL".
std::string FocusLine(const Control& control);
/// "menu A|(B)|[x] C -> A"; -1 is "dismiss".
std::string MenuLine(const PopupMenu& menu, int chosen);
/// Index of the item with this plain caption, -1 when there is none.
int FindMenuItem(const PopupMenu& menu, std::string_view plain_caption);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_FORM_LINES_H_
