#ifndef KITWRIGHT_UI_WX_FILE_CHOOSER_H_
#define KITWRIGHT_UI_WX_FILE_CHOOSER_H_

#include <wx/dialog.h>

#include "ui/wx/wx_dialogs.h"

namespace kw::ui {

/// The folder on the host in which a file dialog begins when nothing else is asked for; "" leaves it to the
/// system.
wxString UsualStartFolder(const PathMapper& paths);

/// Where the system's file dialogs show the host: gives one that is about to be shown the machine's drives as
/// places to go to, and a line that says what the machine calls what is chosen. `paths` outlives the dialog.
void ShowMachinePaths(wxDialog& dialog, const PathMapper& paths);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_FILE_CHOOSER_H_
