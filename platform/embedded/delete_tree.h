#ifndef KITWRIGHT_PLATFORM_EMBEDDED_DELETE_TREE_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_DELETE_TREE_H_

#include <string>

namespace kw::platform::embedded {

/// Deletes one file or link. The error number, 0 for success: kErrorAccessDenied in a write-protected folder,
/// and for a read-only file without `force`; kErrorSharingViolation for a file that somebody holds open.
int DeleteHostFile(const std::string& path, bool force);

/// Deletes a folder with all that it holds, or the link that stands in its place. `keep` is a host folder
/// that cannot go (the current one): its content goes, and it is a kErrorSharingViolation. On a failure
/// `failed_path` names what stayed; the rest of its folder stays too.
int DeleteHostTree(const std::string& path, bool force, const std::string& keep, std::string& failed_path);

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_DELETE_TREE_H_
