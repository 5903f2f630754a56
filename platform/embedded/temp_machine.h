#ifndef KITWRIGHT_PLATFORM_EMBEDDED_TEMP_MACHINE_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_TEMP_MACHINE_H_

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

namespace kw::platform::embedded {

/// An empty machine in a folder of its own for one test: `drive_c\Work`. It puts the process's current folder
/// and the machine's environment variables back at the end.
class TempMachine {
 public:
  TempMachine() : start_(std::filesystem::current_path()) {
    std::string pattern = (std::filesystem::temp_directory_path() / "kw-machine-XXXXXX").string();
    root_ = ::mkdtemp(pattern.data());
    std::filesystem::create_directories(root_ + "/drive_c/Work");
    for (size_t i = 0; i < kVariables; ++i) {
      if (const char* value = std::getenv(kNames[i])) saved_[i] = value;
      ::unsetenv(kNames[i]);
    }
    ::setenv("KITWRIGHT_ROOT", root_.c_str(), 1);
  }
  TempMachine(const TempMachine&) = delete;
  TempMachine& operator=(const TempMachine&) = delete;
  ~TempMachine() {
    std::filesystem::current_path(start_);
    for (size_t i = 0; i < kVariables; ++i) {
      if (saved_[i]) {
        ::setenv(kNames[i], saved_[i]->c_str(), 1);
      } else {
        ::unsetenv(kNames[i]);
      }
    }
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }

  const std::string& root() const { return root_; }
  /// The host path of what lies on drive C:, "Work/a".
  std::string OnC(const std::string& path) const { return root_ + "/drive_c/" + path; }
  /// Writes a host file, below the machine's folder.
  std::string Put(const std::string& path, std::string_view bytes) const {
    const std::filesystem::path host = root_ + "/" + path;
    std::filesystem::create_directories(host.parent_path());
    std::ofstream(host, std::ios::binary) << bytes;
    return host.string();
  }

 private:
  static constexpr size_t kVariables = 3;
  static constexpr const char* kNames[kVariables] = {"KITWRIGHT_ROOT", "KITWRIGHT_CWD", "KITWRIGHT_PATH"};
  std::filesystem::path start_;
  std::string root_;
  std::optional<std::string> saved_[kVariables];
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_TEMP_MACHINE_H_
