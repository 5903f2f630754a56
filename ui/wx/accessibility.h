#ifndef KITWRIGHT_UI_WX_ACCESSIBILITY_H_
#define KITWRIGHT_UI_WX_ACCESSIBILITY_H_

#include <wx/window.h>

namespace kw::ui {

/// Gives a widget the name that screen readers say. (The widget's own name is for programs only.)
void SetAccessibleName(wxWindow* window, const wxString& name);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_ACCESSIBILITY_H_
