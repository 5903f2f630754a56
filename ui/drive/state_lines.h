#ifndef KITWRIGHT_UI_DRIVE_STATE_LINES_H_
#define KITWRIGHT_UI_DRIVE_STATE_LINES_H_

#include <string>
#include <vector>

#include "ui/form.h"

namespace kw::ui::drive {

/// A form's state: `FORM kind=form visible=1 enabled=1 busy=0 text="TITLE"`.
std::string FormStateLine(const Form& form);

/// A control's state, `FORM.CONTROL kind=textbox enabled=1 visible=1 text="..." back=window`, and below it
/// the entries of lists, combo boxes and grids and the nodes of trees.
std::vector<std::string> ControlStateLines(const Control& control);

}  // namespace kw::ui::drive

#endif  // KITWRIGHT_UI_DRIVE_STATE_LINES_H_
