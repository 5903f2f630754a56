#include "ui/wx/file_chooser.h"

namespace kw::ui {

wxString UsualStartFolder(const PathMapper&) { return ""; }

// The system's dialogs show the machine itself.
void ShowMachinePaths(wxDialog&, const PathMapper&) {}

}  // namespace kw::ui
