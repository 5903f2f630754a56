#ifndef KITWRIGHT_UI_WX_ACCESSIBILITY_H_
#define KITWRIGHT_UI_WX_ACCESSIBILITY_H_

#include <wx/window.h>

namespace kw::ui {

/// Gives a widget the name that screen readers say. (The widget's own name is for programs only.)
void SetAccessibleName(wxWindow* window, const wxString& name);

/// Gives a widget a few more words, which screen readers say behind its name.
void SetAccessibleDescription(wxWindow* window, const wxString& description);

/// Gives a widget the name by which programs that look at the screen find it.
void SetAccessibleId(wxWindow* window, const wxString& id);

/// Lets readers and window managers know that a window, not shown so far, is a dialog.
void MarkAsDialog(wxWindow* window);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_ACCESSIBILITY_H_
