#ifndef KITWRIGHT_PLATFORM_WINDOWS_DELETE_TREE_H_
#define KITWRIGHT_PLATFORM_WINDOWS_DELETE_TREE_H_

#include <string>

namespace kw::platform::windows {

/// Deletes one file. The error number, 0 for success: kErrorAccessDenied for a read-only file without
/// `force`.
int DeleteOneFile(const std::wstring& path, bool force);

/// Deletes a folder with all that it holds, or the link that stands in its place; links are never followed.
/// The current folder cannot go (kErrorSharingViolation). On a failure `failed_path` names what stayed.
int DeleteTree(const std::wstring& path, bool force, std::wstring& failed_path);

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_DELETE_TREE_H_
