#ifndef KITWRIGHT_PLATFORM_EMBEDDED_HOST_FILE_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_HOST_FILE_H_

#include <sys/stat.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kw::platform::embedded {

// Small steps on host files. A step that can fail gives an error number, 0 for success.

/// A file descriptor that closes itself.
class OwnedFd {
 public:
  explicit OwnedFd(int fd = -1) : fd_(fd) {}
  OwnedFd(OwnedFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  OwnedFd& operator=(OwnedFd&& other) noexcept;
  ~OwnedFd();
  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }
  /// Gives the descriptor away.
  int Release() { return std::exchange(fd_, -1); }

 private:
  int fd_;
};

/// What is at a host path, following links. `exists` false also when it cannot be looked at: then `refusal`
/// is the number of the error, and 0 when there is nothing.
struct HostStatus {
  bool exists = false;
  int refusal = 0;
  struct stat info {};
  bool IsFolder() const { return exists && S_ISDIR(info.st_mode); }
  bool IsFile() const { return exists && !S_ISDIR(info.st_mode); }
  /// A file's read-only attribute, a folder's write protection.
  bool WriteProtected() const { return exists && (info.st_mode & S_IWUSR) == 0; }
  bool SameAs(const HostStatus& other) const {
    return exists && other.exists && info.st_dev == other.info.st_dev && info.st_ino == other.info.st_ino;
  }
  static HostStatus Of(const std::string& path);
};

/// Whether there is a link at a host path.
bool IsHostLink(const std::string& path);

/// The folder of a host path, and its last part.
std::string HostParent(const std::string& path);
std::string HostName(const std::string& path);

/// Takes the lock of an open file without waiting; kErrorSharingViolation when another opening holds it.
int LockFile(int fd, bool exclusive);

/// The names in an open folder without "." and "..", in case-insensitive name order, byte order among equals.
int NamesInFolder(int folder, std::vector<std::string>& names);

int WriteAll(int fd, std::string_view bytes);
int ReadAll(int fd, std::string& bytes);
int CopyAll(int from, int to);

/// A file that takes another's place when it is complete. Until then it has a name of its own in the same
/// folder, and it goes away when it never takes the place.
class Replacement {
 public:
  /// `target` is the host path whose place it takes; a link there is replaced, not followed.
  explicit Replacement(std::string target) : target_(std::move(target)) {}
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  ~Replacement();

  /// Makes the file.
  int Create();
  int fd() const { return fd_.get(); }
  /// Closes it and renames it over the target.
  int TakePlace();

 private:
  std::string target_;
  std::string path_;
  OwnedFd fd_;
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_HOST_FILE_H_
