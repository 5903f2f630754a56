#ifndef KITWRIGHT_PLATFORM_EMBEDDED_PROGRAM_FINDER_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_PROGRAM_FINDER_H_

#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "platform/embedded/file_system.h"
#include "platform/file_versions.h"

namespace kw::platform::embedded {

/// The program that a command line names.
struct FoundProgram {
  std::string path;                    ///< Windows path of the file, with drive and folder
  std::string host_path;               ///< the native program to run: that file, or its twin
  std::vector<std::string> arguments;  ///< the command line, split; the name first
};

/// Finds what a command line starts, by the rules in this folder's README.md.
class ProgramFinder {
 public:
  /// `program_folder` is the folder of the running program. Both objects outlive this one.
  ProgramFinder(EmbeddedFileSystem& files, FileVersions& versions, std::string program_folder)
      : files_(files), versions_(versions), program_folder_(std::move(program_folder)) {}

  /// kErrorFileNotFound when no file is there; kErrorBadExeFormat for a file that cannot be run and has no
  /// native twin; kErrorAccessDenied for a native program without its execute bit.
  Result<FoundProgram> Find(const std::string& command_line) const;

 private:
  enum class Kind { kNone, kNative, kWindows, kOther };
  Kind KindOf(const std::string& path) const;
  std::vector<std::string> SearchFolders() const;
  std::optional<std::string> FindFile(const std::string& name) const;
  std::optional<std::string> FindIn(const std::string& folder, const std::string& name) const;
  std::optional<std::string> FindTwin(const std::string& path) const;

  EmbeddedFileSystem& files_;
  FileVersions& versions_;
  std::string program_folder_;
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_PROGRAM_FINDER_H_
