#ifndef KITWRIGHT_PLATFORM_WINDOWS_TEMP_FOLDER_H_
#define KITWRIGHT_PLATFORM_WINDOWS_TEMP_FOLDER_H_

#include <string>

#include "platform/windows/file_system.h"
#include "platform/windows/system.h"

namespace kw::platform::windows {

/// An empty folder below the system's folder for temporary files, for one test. It goes away at the end, and
/// the current folder is then what it was before.
class TempFolder {
 public:
  TempFolder() : start_(files_.CurrentFolder()) {
    static int count = 0;
    path_ = WindowsSystem().TempFolder() + "\\kw-test-" + std::to_string(GetCurrentProcessId()) + "-" +
            std::to_string(++count);
    files_.CreateFolder(path_).IgnoreError();
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    files_.SetCurrentFolder(start_).IgnoreError();
    files_.DeleteFolder(path_, true).IgnoreError();
  }
  const std::string& path() const { return path_; }

 private:
  WindowsFileSystem files_;
  std::string start_;
  std::string path_;
};

/// The Windows path of a file that the build made beside the test programs.
inline std::string BuiltFile(const std::string& name) {
  return WindowsSystem().ProgramFolder() + "\\" + name;
}

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_TEMP_FOLDER_H_
