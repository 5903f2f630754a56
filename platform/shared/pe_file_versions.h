#ifndef KITWRIGHT_PLATFORM_SHARED_PE_FILE_VERSIONS_H_
#define KITWRIGHT_PLATFORM_SHARED_PE_FILE_VERSIONS_H_

#include <string>

#include "platform/file_system.h"
#include "platform/file_versions.h"

namespace kw::platform {

/// Version information of programs on any file system, which must outlive the object.
class PeFileVersions : public FileVersions {
 public:
  explicit PeFileVersions(FileSystem& files) : files_(files) {}
  Result<FileVersion> Read(const std::string& path) override;

 private:
  FileSystem& files_;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_PE_FILE_VERSIONS_H_
