#ifndef KITWRIGHT_UI_WX_SYSTEM_HELP_H_
#define KITWRIGHT_UI_WX_SYSTEM_HELP_H_

#include <wx/string.h>
#include <wx/window.h>

namespace kw::ui {

/// Opens a compiled help book (a .chm file on the host) at a topic number in the system's own viewer. False
/// where the system has none or it cannot show this.
bool ShowInSystemViewer(wxWindow* parent, const wxString& book, int topic);

/// Closes the windows that it opened. To be called while the program's own windows still work: the viewer
/// ends them on a thread of its own.
void CloseSystemViewer();

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_SYSTEM_HELP_H_
