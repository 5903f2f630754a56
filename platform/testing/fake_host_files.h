#ifndef KITWRIGHT_PLATFORM_TESTING_FAKE_HOST_FILES_H_
#define KITWRIGHT_PLATFORM_TESTING_FAKE_HOST_FILES_H_

#include <memory>
#include <string>

#include "base/storage.h"

namespace kw::platform::testing {

class FakeFileSystem;

/// The files of a FakeFileSystem as a Storage, whose host paths are the Windows paths. Reached through
/// FakeFileSystem::HostFiles.
class FakeHostFiles : public Storage {
 public:
  explicit FakeHostFiles(FakeFileSystem& files) : files_(files) {}
  Result<std::unique_ptr<StorageFile>> Open(const std::string& path, Mode mode) override;
  Status Rename(const std::string& from, const std::string& to) override;
  Status Remove(const std::string& path) override;
  bool Exists(const std::string& path) override;
  Status CreateFolder(const std::string& path) override;

 private:
  FakeFileSystem& files_;
};

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_FAKE_HOST_FILES_H_
