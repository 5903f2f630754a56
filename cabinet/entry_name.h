#ifndef KITWRIGHT_CABINET_ENTRY_NAME_H_
#define KITWRIGHT_CABINET_ENTRY_NAME_H_

#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace kw::cabinet {

/// The folders and the file name that an entry's name stands for, or kErrorInvalidName when writing it below
/// a folder could reach anything else: absolute and drive names, and parts that are no plain file names
/// (IsPlainFileName).
Result<std::vector<std::string>> SafeParts(std::string_view entry_name);

/// True if `name` fits `pattern`, in which "*" stands for any text and "?" for one character, without regard
/// to case. "*.*" fits every name.
bool FitsPattern(std::string_view name, std::string_view pattern);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_ENTRY_NAME_H_
