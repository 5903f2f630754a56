#ifndef KITWRIGHT_BASE_PATH_H_
#define KITWRIGHT_BASE_PATH_H_

#include <string>
#include <string_view>

namespace kw {

/// What follows the last "\" of a Windows path; the whole text when there is none.
std::string FileNameOf(std::string_view path);
/// What stands before the last "\", without it; "" when there is none. "C:\a" gives "C:".
std::string ParentOf(std::string_view path);
/// `folder` + "\" + `name`, without doubling a "\" that `folder` ends in.
std::string JoinPath(std::string_view folder, std::string_view name);
/// True if a file of this UTF-8 name, put into a folder, can be nothing else than a file of that name there.
/// Not so with separators, "." and "..", device names with or without an extension, a colon, characters that
/// file names cannot hold, a closing dot or blank, more than 255 UTF-16 units, and text that did not convert.
bool IsPlainFileName(std::string_view name);

}  // namespace kw

#endif  // KITWRIGHT_BASE_PATH_H_
