#include "ui/wx/system_help.h"

namespace kw::ui {

bool ShowInSystemViewer(wxWindow*, const wxString&, int) { return false; }

void CloseSystemViewer() {}

}  // namespace kw::ui
