#ifndef KITWRIGHT_PACKAGE_STAGING_H_
#define KITWRIGHT_PACKAGE_STAGING_H_

#include <string>

#include "package/run_state.h"
#include "platform/services.h"

namespace kw {

/// The branch under HKEY_CURRENT_USER that the product's tools write into, and the copy of it that an import
/// leaves for comparison.
inline constexpr const char* kStagingBranch = "SOFTWARE\\Orvantic\\ZED";
inline constexpr const char* kComparisonBranch = "SOFTWARE\\Orvantic\\ZED_Backup";

/// Makes the program's folder the current one, where the closed libraries and the tools beside the wizard are
/// found. A failure is passed over: whatever is then not found says so itself.
void EnterProgramFolder(platform::Services& services);

/// Deletes a branch with all that it holds, through the maker's library. Nobody looks at the result: a branch
/// that is not there is as good as a deleted one.
void DeleteBranch(platform::Services& services, platform::Hive hive, const std::string& path);

/// Deletes the comparison branch, then the staging branch, and clears the nine change flags.
void ClearStagingBranches(platform::Services& services, RunState& run);

/// The key of the console's plug-in for product level 7.0.0, or 7.1.0, under HKEY_LOCAL_MACHINE.
std::string ConsolePluginKey(bool level_700);

/// The language of the installed product as four hexadecimal digits in upper case; "0000" when there is none.
std::string GetInstalledProductLanguage(platform::Services& services, const RunState& run);

}  // namespace kw

#endif  // KITWRIGHT_PACKAGE_STAGING_H_
