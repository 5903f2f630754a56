#ifndef KITWRIGHT_PLATFORM_WINDOWS_FILE_SYSTEM_H_
#define KITWRIGHT_PLATFORM_WINDOWS_FILE_SYSTEM_H_

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"

namespace kw::platform::windows {

/// The system's own files. The current folder is the process's.
class WindowsFileSystem : public FileSystem {
 public:
  bool FileExists(const std::string& path) override;
  bool FolderExists(const std::string& path) override;
  Result<FileEntry> GetFile(const std::string& path) override;
  bool IsLink(const std::string& path) override;
  bool IsSameFolder(const std::string& one, const std::string& two) override;
  Result<std::vector<FileEntry>> List(const std::string& folder) override;
  Status CopyFile(const std::string& from, const std::string& to, bool overwrite) override;
  Status DeleteFile(const std::string& path, bool force) override;
  Status DeleteFolder(const std::string& path, bool force) override;
  Status CreateFolder(const std::string& path) override;
  Status SetReadOnly(const std::string& path, bool read_only) override;
  Result<std::unique_ptr<FileHandle>> Open(const std::string& path, OpenHow how) override;
  Result<std::string> ReadFile(const std::string& path) override;
  Status WriteFile(const std::string& path, std::string_view bytes) override;
  std::string CurrentFolder() override;
  Status SetCurrentFolder(const std::string& path) override;
};

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_FILE_SYSTEM_H_
