#ifndef KITWRIGHT_PLATFORM_EMBEDDED_PROCESSES_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_PROCESSES_H_

#include <memory>
#include <string>

#include "platform/embedded/file_system.h"
#include "platform/embedded/program_finder.h"
#include "platform/embedded/x11_desktop.h"
#include "platform/processes.h"

namespace kw::platform::embedded {

/// Child processes of an embedded machine; this folder's README.md tells which program starts and what it is
/// given. A child that a signal ended has the exit code 128 and the signal's number. Children that nobody
/// asks for any more are collected at the next start, so that no dead process stays behind.
class EmbeddedProcesses : public Processes {
 public:
  /// `program_folder` is the Windows path of the running program's folder.
  EmbeddedProcesses(EmbeddedFileSystem& files, FileVersions& versions, std::string program_folder);
  ~EmbeddedProcesses() override;

  Result<std::unique_ptr<Process>> Start(const std::string& command_line, WindowStyle style) override;
  Status CanStart(const std::string& command_line) override;
  /// The variable `PATH` means the machine's search path, KITWRIGHT_PATH.
  void SetEnvironment(const std::string& name, const std::string& value) override;
  void BringWindowToFront(const std::string& title) override;

 private:
  struct Abandoned;
  EmbeddedFileSystem& files_;
  ProgramFinder finder_;
  std::shared_ptr<X11Desktop> desktop_;
  std::shared_ptr<Abandoned> abandoned_;
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_PROCESSES_H_
