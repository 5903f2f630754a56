#include <wx/ctrlsub.h>
#include <wx/textentry.h>

#include "ui/wx/accessibility.h"

namespace kw::ui {

// The system takes the name from the text that stands before a control; where there is a window text of its
// own to set, as with trees and grids, that one counts. The window text of a field or a list is its content.
void SetAccessibleName(wxWindow* window, const wxString& name) {
  const bool holds_content =
      dynamic_cast<wxTextEntry*>(window) != nullptr || dynamic_cast<wxItemContainer*>(window) != nullptr;
  if (!holds_content && window->GetLabel().empty()) window->SetLabel(name);
}

void SetAccessibleDescription(wxWindow* window, const wxString& description) {
  window->SetHelpText(description);
}

void SetAccessibleId(wxWindow* window, const wxString& id) { window->SetName(id); }

// The system knows dialogs by the class of their windows.
void MarkAsDialog(wxWindow*) {}

}  // namespace kw::ui
