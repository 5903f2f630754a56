#ifndef KITWRIGHT_PLATFORM_SHARED_FILE_ERRORS_H_
#define KITWRIGHT_PLATFORM_SHARED_FILE_ERRORS_H_

#include <string>
#include <string_view>

#include "base/result.h"

namespace kw::platform {

/// The failure `number` of doing `what` ("copy", "delete", ...) with `path`, in one sentence.
Error FileError(int number, std::string_view what, std::string_view path);

/// True if `full_path` (with drive and folder) holds a character that no file name may hold.
bool HasBadNameCharacter(std::string_view full_path);

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_FILE_ERRORS_H_
