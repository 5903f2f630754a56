#ifndef KITWRIGHT_PLATFORM_PROCESSES_H_
#define KITWRIGHT_PLATFORM_PROCESSES_H_

#include <cstdint>
#include <memory>
#include <string>

#include "base/result.h"

namespace kw::platform {

/// The exit code of a process that still runs.
inline constexpr int kStillActive = 259;

enum class WindowStyle { kHidden = 0, kNormal = 1 };

/// A started child process; letting go of it does not end it.
class Process {
 public:
  virtual ~Process() = default;
  /// kStillActive while it runs, then its exit code.
  virtual int ExitCode() = 0;
  /// Title of the foreground window if that window belongs to this process, otherwise "".
  virtual std::string ForegroundWindowTitle() = 0;
};

/// Child processes.
class Processes {
 public:
  virtual ~Processes() = default;
  /// Starts a command line as it stands. The program is its first word, or its quoted beginning; an unquoted
  /// path with blanks is tried blank by blank; ".exe" is added when there is no extension; a bare name is
  /// looked for in the program's folder, the current folder, the system's and the search path. The child gets
  /// the command line letter for letter, the current drive and folder, and the environment.
  virtual Result<std::unique_ptr<Process>> Start(const std::string& command_line, WindowStyle style) = 0;
  /// What Start would fail with now, as far as that shows without starting anything; success where only the
  /// start itself can tell.
  virtual Status CanStart(const std::string& command_line) {
    static_cast<void>(command_line);
    return Status();
  }
  /// Sets an environment variable for this process and for children started from now on.
  virtual void SetEnvironment(const std::string& name, const std::string& value) = 0;
  /// Brings the window with this title to the foreground, if there is one.
  virtual void BringWindowToFront(const std::string& title) = 0;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_PROCESSES_H_
