#include "ui/wx/accessibility.h"

namespace kw::ui {

// The system takes the name from the text that stands before a control; where there is a window text of its
// own to set, as with trees and grids, that one counts.
void SetAccessibleName(wxWindow* window, const wxString& name) {
  if (window->GetLabel().empty()) window->SetLabel(name);
}

}  // namespace kw::ui
