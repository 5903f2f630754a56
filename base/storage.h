#ifndef KITWRIGHT_BASE_STORAGE_H_
#define KITWRIGHT_BASE_STORAGE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "base/result.h"

namespace kw {

/// An open file of the host, read and written at absolute positions. Closing happens in the destructor and
/// loses nothing that a successful Sync promised.
class StorageFile {
 public:
  virtual ~StorageFile() = default;
  /// Reads up to `buffer.size()` bytes at `offset`; fewer only at the end of the file.
  virtual Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) = 0;
  /// Writes all of `data` at `offset`, growing the file when needed, or fails.
  virtual Status WriteAt(uint64_t offset, std::span<const std::byte> data) = 0;
  /// Size in bytes.
  virtual Result<uint64_t> Size() = 0;
  virtual Status Truncate(uint64_t size) = 0;
  /// Brings everything written so far to the disk.
  virtual Status Sync() = 0;
};

/// The few operations on host files that the package engine needs. Every one can be made to fail in tests
/// (FaultyStorage), which is why the engine calls the system through nothing else. Paths are the host's own,
/// in UTF-8. An implementation translates the system's errors into ErrorNumber once, with the path in the
/// sentence.
class Storage {
 public:
  enum class Mode {
    kRead,         ///< an existing file, for reading; others may read it too
    kReadWrite,    ///< an existing file, for reading and writing; fails on a read-only file
    kCreateNew,    ///< a new file, for reading and writing; fails when it exists
    kCreateAlways  ///< a file emptied or made anew, for reading and writing
  };
  virtual ~Storage() = default;
  virtual Result<std::unique_ptr<StorageFile>> Open(const std::string& path, Mode mode) = 0;
  /// Renames `from` over `to`, also a read-only file, in one step: whoever looks sees the old or the new
  /// file.
  virtual Status Rename(const std::string& from, const std::string& to) = 0;
  /// Removes a file, also a read-only one; a missing one is kErrorFileNotFound.
  virtual Status Remove(const std::string& path) = 0;
  virtual bool Exists(const std::string& path) = 0;
  /// Makes a folder; one that exists already is no error, but a link in its place is one. The folder
  /// above must exist.
  virtual Status CreateFolder(const std::string& path) = 0;
};

/// The real files of this system. One instance a process, owned by the library.
Storage& SystemStorage();

/// The whole content of a host file.
Result<std::string> ReadWholeFile(Storage& storage, const std::string& path);
/// A new file in the place of whatever file or link is there, which is removed and never written through.
Result<std::unique_ptr<StorageFile>> OpenAnew(Storage& storage, const std::string& path);
/// Replaces a host file's content at once: written beside it, synchronised, renamed over it. A link there is
/// replaced by the file.
Status WriteFileAtomically(Storage& storage, const std::string& path, std::string_view content);

}  // namespace kw

#endif  // KITWRIGHT_BASE_STORAGE_H_
