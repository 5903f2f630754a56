#ifndef KITWRIGHT_SAMPLE_SETTINGS_DIALOG_LIBRARY_H_
#define KITWRIGHT_SAMPLE_SETTINGS_DIALOG_LIBRARY_H_

#include <string>
#include <vector>

#include "sample/settings/settings_group.h"

namespace kw::sample {

// The dialog boxes stand in a library of their own, SampleDialogs, that lies beside the tools and is loaded
// when a box is to be shown: a tool that is answered by a script starts no toolkit. Both sides are built
// together.

extern "C" {
/// 1 when the person confirmed, 0 for Cancel or where no window can be shown. `settings` holds what was
/// typed.
using EditSettingsCall = int (*)(const char* title, std::vector<Setting>* settings);
/// Edits a text; `check` gives the complaint about a text that is not to be confirmed, "" for a good one.
using EditTextCall = int (*)(const char* title, std::string* text,
                             std::string (*check)(const std::string& text));
}

/// Shows the settings; false for Cancel and where there is no window to show.
bool ShowSettingsDialog(const std::string& title, std::vector<Setting>& settings);
/// Shows a text to edit, likewise.
bool ShowTextDialog(const std::string& title, std::string& text,
                    std::string (*check)(const std::string& text));

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_SETTINGS_DIALOG_LIBRARY_H_
