#ifndef KITWRIGHT_PACKAGE_CLEAN_UP_H_
#define KITWRIGHT_PACKAGE_CLEAN_UP_H_

#include <string>

#include "package/run_state.h"
#include "platform/services.h"

namespace kw {

/// The staging branch and its fellows, under HKEY_CURRENT_USER.
inline constexpr const char* kStagingBranch = "SOFTWARE\\Orvantic\\ZED";
inline constexpr const char* kComparisonBranch = "SOFTWARE\\Orvantic\\ZED_Backup";

/// Deletes the comparison branch, then the staging branch, and clears the nine change flags.
void ClearStagingBranches(platform::Services& services, RunState& run);
/// Removes what the run made: staging branches, open databases, the working database, the temp folder, the
/// extracted source. Failures are told and passed over.
void CleanUpRun(platform::Services& services, RunState& run);
/// Removes the folder that a self-extracting source was unpacked into, and gives SourceFolder the user's
/// value back.
void RemoveExtractedSource(platform::Services& services, RunState& run);
/// Takes back what the run wrote to the destination.
void UndoDestination(platform::Services& services, RunState& run);
/// The language of the installed product, upper case; "0000" when there is none.
std::string GetInstalledProductLanguage(platform::Services& services, const RunState& run);

}  // namespace kw

#endif  // KITWRIGHT_PACKAGE_CLEAN_UP_H_
