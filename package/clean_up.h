#ifndef KITWRIGHT_PACKAGE_CLEAN_UP_H_
#define KITWRIGHT_PACKAGE_CLEAN_UP_H_

#include "package/run_state.h"
#include "package/staging.h"
#include "platform/services.h"

namespace kw {

/// Removes what the run made: staging branches, open databases, the working database, the temp folder, the
/// extracted source. Failures are told and passed over.
void CleanUpRun(platform::Services& services, RunState& run);
/// Removes the folder that a self-extracting source was unpacked into, and gives SourceFolder the user's
/// value back.
void RemoveExtractedSource(platform::Services& services, RunState& run);
/// Takes back what the run wrote to the destination, and the destination itself where the run made it and
/// nothing else lies in it. What lay there to be packed stays, and so does DestinationInUse.
void UndoDestination(platform::Services& services, RunState& run);
/// The same where there is something to take back (a destination that the run made), and lets go of it.
void DiscardDestination(platform::Services& services, RunState& run);

}  // namespace kw

#endif  // KITWRIGHT_PACKAGE_CLEAN_UP_H_
