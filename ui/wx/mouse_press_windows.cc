#include <wx/dataview.h>

#include "ui/wx/mouse_press.h"

namespace kw::ui {

void OnMousePress(wxDataViewCtrl& view, std::function<void(wxPoint, MouseButton, bool)> press) {
  const auto pressed = [press](MouseButton button, bool second) {
    return [press, button, second](wxMouseEvent& event) {
      event.Skip();
      press(event.GetPosition(), button, second);
    };
  };
  wxWindow* rows = view.GetMainWindow();
  rows->Bind(wxEVT_LEFT_DOWN, pressed(MouseButton::kLeft, false));
  rows->Bind(wxEVT_RIGHT_DOWN, pressed(MouseButton::kRight, false));
  rows->Bind(wxEVT_LEFT_DCLICK, pressed(MouseButton::kLeft, true));
}

}  // namespace kw::ui
