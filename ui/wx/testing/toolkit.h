#ifndef KITWRIGHT_UI_WX_TESTING_TOOLKIT_H_
#define KITWRIGHT_UI_WX_TESTING_TOOLKIT_H_

#include <string>

namespace kw::ui::testing {

/// Starts a virtual display and the toolkit on it, once for all tests of this process; they end with it.
/// False when the programs for a virtual display are not installed.
bool StartToolkit();

/// For a person to look at: a picture NAME.png of the screen, where the environment variable
/// KITWRIGHT_SCREENSHOTS names a folder; nothing otherwise.
void TakeScreenshot(const std::string& name);

}  // namespace kw::ui::testing

#endif  // KITWRIGHT_UI_WX_TESTING_TOOLKIT_H_
