#ifndef KITWRIGHT_PLATFORM_SHARED_INI_PROFILE_FILES_H_
#define KITWRIGHT_PLATFORM_SHARED_INI_PROFILE_FILES_H_

#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/profile_files.h"
#include "platform/system.h"

namespace kw::platform {

/// The profile calls on any file system. Each call reads the file anew, so that others may change it between
/// two calls. Both references must outlive the object.
class IniProfileFiles : public ProfileFiles {
 public:
  IniProfileFiles(FileSystem& files, System& system) : files_(files), system_(system) {}

  std::string ReadString(const std::string& path, std::string_view section, std::string_view key,
                         std::string_view fallback, int buffer_size) override;
  Status WriteString(const std::string& path, std::string_view section, std::optional<std::string_view> key,
                     std::optional<std::string_view> value) override;
  std::vector<std::string> SectionNames(const std::string& path) override;

 private:
  FileSystem& files_;
  System& system_;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_INI_PROFILE_FILES_H_
