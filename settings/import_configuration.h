#ifndef KITWRIGHT_SETTINGS_IMPORT_CONFIGURATION_H_
#define KITWRIGHT_SETTINGS_IMPORT_CONFIGURATION_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// What ConfigSourceName holds for the two sources that are no file.
inline constexpr const char* kSourceIsSystem = "ZED_SettingsFromSystem";
inline constexpr const char* kSourceIsNone = "ZED_NoSettings";

/// Reads a settings cabinet into the staging branch. True when the branch holds the cabinet's settings; then
/// ConfigAppDataFolder is the folder that the cabinet was unpacked into. `show_missing_message` decides only
/// whether a missing file is told.
bool ImportConfiguration(PageContext& context, const std::string& path, bool show_missing_message);

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_IMPORT_CONFIGURATION_H_
