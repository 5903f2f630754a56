#ifndef KITWRIGHT_BASE_TESTING_MEMORY_STORAGE_H_
#define KITWRIGHT_BASE_TESTING_MEMORY_STORAGE_H_

#include <map>
#include <memory>
#include <set>
#include <string>

#include "base/storage.h"

namespace kw::testing {

/// Host files in memory, by path. Open files see each other's writes.
class MemoryStorage : public Storage {
 public:
  Result<std::unique_ptr<StorageFile>> Open(const std::string& path, Mode mode) override;
  Status Rename(const std::string& from, const std::string& to) override;
  Status Remove(const std::string& path) override;
  bool Exists(const std::string& path) override {
    return files_.count(path) != 0 || folders.count(path) != 0;
  }
  Status CreateFolder(const std::string& path) override;

  /// The content of a file, made empty when it is missing.
  std::string& Content(const std::string& path);

  std::set<std::string> read_only;  ///< paths that may not be written
  std::set<std::string> folders;    ///< what CreateFolder made
  uint64_t bytes_written = 0;       ///< by all files so far

 private:
  friend class MemoryFile;
  std::map<std::string, std::shared_ptr<std::string>> files_;
};

}  // namespace kw::testing

#endif  // KITWRIGHT_BASE_TESTING_MEMORY_STORAGE_H_
