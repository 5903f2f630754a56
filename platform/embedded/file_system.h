#ifndef KITWRIGHT_PLATFORM_EMBEDDED_FILE_SYSTEM_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_FILE_SYSTEM_H_

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/machine_paths.h"
#include "platform/file_system.h"

namespace kw::platform::embedded {

/// The files of a machine that is kept in a folder of a Linux host.
///
/// The current folder is this process's: going to another one changes the host's current folder and
/// KITWRIGHT_CWD, so that closed libraries and children see it. On the user-interface thread only.
class EmbeddedFileSystem : public FileSystem {
 public:
  explicit EmbeddedFileSystem(MachinePaths paths) : paths_(std::move(paths)) {}

  /// Windows paths to host paths, by the present current folder.
  const MachinePaths& Paths() const { return paths_; }

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
  std::string CurrentFolder() override { return paths_.current(); }
  Status SetCurrentFolder(const std::string& path) override;

 private:
  MachinePaths paths_;
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_FILE_SYSTEM_H_
