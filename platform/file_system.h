#ifndef KITWRIGHT_PLATFORM_FILE_SYSTEM_H_
#define KITWRIGHT_PLATFORM_FILE_SYSTEM_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace kw::platform {

/// An entry of a folder listing, or a single file.
struct FileEntry {
  std::string name;  ///< without a folder, as spelled on the disk
  bool is_folder = false;
  bool read_only = false;
  int64_t size = 0;  ///< bytes; 0 for folders
};

/// How FileSystem::Open takes a file.
enum class OpenHow {
  kReadExisting,          ///< for reading, shared with other readers
  kOpenOrCreateExclusive  ///< for reading and writing, no sharing, created when absent, never truncated
};

/// An open file with a position; closes in the destructor.
class FileHandle {
 public:
  virtual ~FileHandle() = default;
  /// Up to `length` bytes from the position on; fewer only at the end.
  virtual Result<std::string> Read(size_t length) = 0;
  virtual Status Write(std::string_view bytes) = 0;
  virtual Status Flush() = 0;
};

/// The system's files and folders. Paths are Windows paths in UTF-8: "C:\x", "\\server\share\x", "\x" on the
/// current drive, "x" in the current folder, "C:" + "\name". Names compare without regard to case, beyond
/// ASCII too; a new name keeps its spelling. Either slash direction is the caller's matter: only "\"
/// separates.
///
/// Every failure carries the number that the system's call gives (kErrorFileNotFound, kErrorPathNotFound,
/// kErrorAccessDenied, kErrorFileExists, kErrorSharingViolation, kErrorDiskFull, ...) and a sentence with the
/// path. The read-only attribute is respected whoever runs the program.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  virtual bool FileExists(const std::string& path) = 0;
  virtual bool FolderExists(const std::string& path) = 0;
  /// A file's entry; fails for a folder and for a missing file.
  virtual Result<FileEntry> GetFile(const std::string& path) = 0;
  /// True for a link, whatever it points to; false for what lies behind one.
  virtual bool IsLink(const std::string& path) = 0;
  /// True if both paths lead to one folder that is there, however they are spelled: with "." and "..",
  /// through links, by another drive or by a short name.
  virtual bool IsSameFolder(const std::string& one, const std::string& two) = 0;
  /// The entries of a folder in case-insensitive name order, without "." and "..".
  virtual Result<std::vector<FileEntry>> List(const std::string& folder) = 0;

  /// Copies a file's bytes, read-only attribute and times. Without `overwrite` an existing target is
  /// kErrorFileExists; a read-only target is kErrorAccessDenied in any case. A copy onto itself succeeds and
  /// changes nothing. A link to a file at the target is replaced by the copy, never written through. After a
  /// failure no half-written target is left that was not there before.
  virtual Status CopyFile(const std::string& from, const std::string& to, bool overwrite) = 0;
  /// Deletes a file; without `force` a read-only one is kErrorAccessDenied.
  virtual Status DeleteFile(const std::string& path, bool force) = 0;
  /// Deletes a folder with all that it holds; without `force` read-only content is kErrorAccessDenied. Links
  /// are removed, never followed.
  virtual Status DeleteFolder(const std::string& path, bool force) = 0;
  /// Creates one folder; its parent must exist; an existing one is kErrorAlreadyExists, and so is a link.
  virtual Status CreateFolder(const std::string& path) = 0;
  virtual Status SetReadOnly(const std::string& path, bool read_only) = 0;

  /// A link to nothing is not followed: nothing is created where it points.
  virtual Result<std::unique_ptr<FileHandle>> Open(const std::string& path, OpenHow how) = 0;
  /// A file's whole content.
  virtual Result<std::string> ReadFile(const std::string& path) = 0;
  /// Creates or replaces a file with these bytes; a link to a file is replaced, never written through. Fails
  /// on a read-only file. After a failure (a full disk) the old content is there, or no file where there was
  /// none.
  virtual Status WriteFile(const std::string& path, std::string_view bytes) = 0;

  /// The current folder of the process, with its drive; "C:\" at a root. Children inherit it.
  virtual std::string CurrentFolder() = 0;
  /// Makes a folder (and its drive) the current one.
  virtual Status SetCurrentFolder(const std::string& path) = 0;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_FILE_SYSTEM_H_
