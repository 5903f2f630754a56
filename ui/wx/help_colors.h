#ifndef KITWRIGHT_UI_WX_HELP_COLORS_H_
#define KITWRIGHT_UI_WX_HELP_COLORS_H_

#include <wx/string.h>

namespace kw::ui {

/// A page of help with the colors of the theme that is in use. The toolkit's viewer shows a page that names
/// no colors black on white, whatever the theme.
wxString WithThemeColors(const wxString& page);

/// From the first call on, every page that the toolkit's viewer shows has the colors of the theme.
void ShowHelpInThemeColors();

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_HELP_COLORS_H_
