#ifndef KITWRIGHT_PLATFORM_EMBEDDED_FILE_LOCK_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_FILE_LOCK_H_

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "base/result.h"

namespace kw::platform::embedded {

/// A lock between processes, and between two of these in one process, by the name of a host file. The system
/// frees it when its holder dies.
class FileLock {
 public:
  enum class Mode { kShared, kExclusive };

  /// `path` is the host file that stands for the lock; Acquire makes it when it is missing.
  explicit FileLock(std::string path);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  /// Waits for the lock. Not to be nested.
  Status Acquire(Mode mode);
  void Release();
  /// True while the file that stands for the lock is open, as it is from the first time on.
  bool IsOpen() const { return fd_ >= 0; }

 private:
  std::string path_;
  int fd_ = -1;
};

/// Tells whether a host file is still the one that was seen before.
struct FileIdentity {
  bool exists = false;
  dev_t device = 0;
  ino_t number = 0;
  int64_t size = 0;
  int64_t changed = 0;  ///< nanoseconds
  bool operator==(const FileIdentity&) const = default;
  /// True for the same file, whatever it holds now.
  bool SameFileAs(const FileIdentity& other) const {
    return exists == other.exists && device == other.device && number == other.number;
  }

  /// Fails when it cannot be told whether there is a file; a missing one is none.
  static Result<FileIdentity> Of(const std::string& path);
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_FILE_LOCK_H_
