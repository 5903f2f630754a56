#include <wx/ctrlsub.h>
#include <wx/msw/wrapwin.h>
#include <wx/textentry.h>

#include <cstdint>

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

// Another program sees no name of a window, but its properties, which are numbers: FNV-1a of the name in
// UTF-8.
void SetAccessibleId(wxWindow* window, const wxString& id) {
  window->SetName(id);
  uint32_t number = 2166136261U;
  for (const char letter : id.utf8_string()) number = (number ^ static_cast<uint8_t>(letter)) * 16777619U;
  SetPropW(window->GetHWND(), L"Kitwright.Id", reinterpret_cast<HANDLE>(static_cast<uintptr_t>(number)));
}

// The system knows dialogs by the class of their windows.
void MarkAsDialog(wxWindow*) {}

}  // namespace kw::ui
