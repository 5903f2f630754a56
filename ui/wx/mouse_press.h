#ifndef KITWRIGHT_UI_WX_MOUSE_PRESS_H_
#define KITWRIGHT_UI_WX_MOUSE_PRESS_H_

#include <wx/gdicmn.h>

#include <functional>

#include "ui/controls.h"

class wxDataViewCtrl;

namespace kw::ui {

/// Calls `press` for each press of a mouse button on the rows of `view`, with the point that HitTest takes
/// and whether it is the second press of a double click. The toolkit's own events leave out some of them.
void OnMousePress(wxDataViewCtrl& view, std::function<void(wxPoint, MouseButton, bool second)> press);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_MOUSE_PRESS_H_
