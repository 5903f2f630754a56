#ifndef KITWRIGHT_PAGES_CABINET_REBUILD_H_
#define KITWRIGHT_PAGES_CABINET_REBUILD_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// Throws the working package's cabinets away, makes one new cabinet from the files in CabDataFolder with the
/// cabinet maker, and embeds it as "Cab1.CAB". True if that worked. `source_folder` (may be empty) becomes
/// the session's source.
///
/// Destructive: after a False the working package has no cabinet until a rerun gives it one. Tells failures
/// of the database in one plain box; a cabinet maker that leaves no cabinet gives False without a word.
bool RebuildCabinet(PageContext& context, const std::string& source_folder);

}  // namespace kw

#endif  // KITWRIGHT_PAGES_CABINET_REBUILD_H_
