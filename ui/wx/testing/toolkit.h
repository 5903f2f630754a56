#ifndef KITWRIGHT_UI_WX_TESTING_TOOLKIT_H_
#define KITWRIGHT_UI_WX_TESTING_TOOLKIT_H_

#include <wx/gdicmn.h>

#include <string>

class wxWindow;

namespace kw::ui::testing {

/// Starts the toolkit, once for all tests of this process, on a virtual display where the system has such;
/// they end with it. False when the programs for a virtual display are not installed.
bool StartToolkit();

/// For a person to look at: a picture NAME.png (on Windows NAME.bmp) of the screen, where the environment
/// variable KITWRIGHT_SCREENSHOTS names a folder; nothing otherwise.
void TakeScreenshot(const std::string& name);

/// Whether the focus of its top-level window is on `window` or on something in it.
bool HasFocus(const wxWindow& window);

/// A point on the first entry of a combo box's list that was opened with none chosen, in pixels of the screen.
wxPoint FirstEntryOf(const wxWindow& combo);

}  // namespace kw::ui::testing

#endif  // KITWRIGHT_UI_WX_TESTING_TOOLKIT_H_
