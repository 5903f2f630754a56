#ifndef KITWRIGHT_CABINET_CAB_ARC_H_
#define KITWRIGHT_CABINET_CAB_ARC_H_

#include <string>
#include <vector>

#include "base/machine_paths.h"
#include "base/result.h"
#include "base/storage.h"

namespace kw::cabinet {

/// The program `CabArc`: `X <cabinet> [<pattern>...] [<folder>\]` unpacks, over what is there, into a folder
/// that exists (the current one when none is given), `L <cabinet>` lists. Arguments without the program's
/// name; paths are Windows paths in any form. Around a pattern `*.*` the paths may hold blanks without
/// quotes. Gives the text to print, in UTF-8. An entry that fails does not keep the others from coming.
Result<std::string> RunCabArc(Storage& storage, const MachinePaths& paths,
                              const std::vector<std::string>& arguments, int code_page);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_CAB_ARC_H_
