#include "platform/embedded/delete_tree.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "base/errno_number_linux.h"
#include "base/result.h"
#include "base/uninterrupted_linux.h"
#include "platform/embedded/host_file.h"

namespace kw::platform::embedded {
namespace {

// A folder on the way down, held open so that nobody can put a link in its place.
struct Level {
  int parent = AT_FDCWD;
  std::string name;
  std::string path;
};

int OpenAt(const Level& at, int flags) {
  flags |= O_RDONLY | O_CLOEXEC | O_NOFOLLOW;
  return Uninterrupted([&] { return ::openat(at.parent, at.name.c_str(), flags); });
}

int DeleteEntry(const Level& at, const struct stat& info, bool force) {
  if (S_ISREG(info.st_mode)) {
    if ((info.st_mode & S_IWUSR) == 0 && !force) return kErrorAccessDenied;
    const OwnedFd file(OpenAt(at, O_NONBLOCK));
    if (file.valid()) {
      const int number = LockFile(file.get(), true);
      if (number != 0) return number;
    }
  }
  return ::unlinkat(at.parent, at.name.c_str(), 0) == 0 ? 0 : ErrorNumberOfErrno(errno);
}

int DeleteLevel(const Level& at, bool force, const HostStatus& keep, std::string& failed_path) {
  failed_path = at.path;
  struct stat info {};
  if (::fstatat(at.parent, at.name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
    return ErrorNumberOfErrno(errno);
  }
  if (!S_ISDIR(info.st_mode)) return DeleteEntry(at, info, force);

  const OwnedFd folder(OpenAt(at, O_DIRECTORY));
  if (!folder.valid()) return ErrorNumberOfErrno(errno);
  // In the order of listings, so that a failure leaves the same behind each time.
  std::vector<std::string> names;
  if (const int number = NamesInFolder(folder.get(), names)) return number;
  if (!names.empty() && (info.st_mode & S_IWUSR) == 0) return kErrorAccessDenied;
  for (const std::string& name : names) {
    const int number = DeleteLevel({folder.get(), name, at.path + "/" + name}, force, keep, failed_path);
    if (number != 0) return number;
  }
  failed_path = at.path;
  if (keep.exists && keep.info.st_dev == info.st_dev && keep.info.st_ino == info.st_ino) {
    return kErrorSharingViolation;
  }
  return ::unlinkat(at.parent, at.name.c_str(), AT_REMOVEDIR) == 0 ? 0 : ErrorNumberOfErrno(errno);
}

}  // namespace

int DeleteHostFile(const std::string& path, bool force) {
  if (HostStatus::Of(HostParent(path)).WriteProtected()) return kErrorAccessDenied;
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) return ErrorNumberOfErrno(errno);
  return DeleteEntry({AT_FDCWD, path, path}, info, force);
}

int DeleteHostTree(const std::string& path, bool force, const std::string& keep, std::string& failed_path) {
  failed_path = path;
  if (HostStatus::Of(HostParent(path)).WriteProtected()) return kErrorAccessDenied;
  return DeleteLevel({AT_FDCWD, path, path}, force, HostStatus::Of(keep), failed_path);
}

}  // namespace kw::platform::embedded
