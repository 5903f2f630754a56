#ifndef KITWRIGHT_PLATFORM_TESTING_FAKE_PROCESSES_H_
#define KITWRIGHT_PLATFORM_TESTING_FAKE_PROCESSES_H_

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "platform/processes.h"

namespace kw::platform::testing {

/// A child process that a test sees: its command line and what it inherited.
struct FakeCommand {
  std::string command_line;
  WindowStyle style = WindowStyle::kHidden;
  std::string current_folder;
};

/// Child processes that are scripted functions. A command that no script is for ends at once with 0.
class FakeProcesses : public Processes {
 public:
  /// Processes take their current folder from `files`.
  explicit FakeProcesses(FileSystem& files) : files_(files) {}

  /// What command lines that begin with a prefix do (compared without regard to case; the longest prefix
  /// wins).
  struct Script {
    int exit_code = 0;
    /// How often ExitCode says that the process still runs.
    int polls = 0;
    /// Not 0: the program does not start, with this number.
    int start_error = 0;
    /// Runs when the process ends, that is, when ExitCode first says so.
    std::function<void(const FakeCommand&)> run = {};
    std::string window_title = {};
  };
  void On(const std::string& prefix, Script script) { scripts_[prefix] = std::move(script); }
  void On(const std::string& prefix, std::function<void(const FakeCommand&)> run) {
    scripts_[prefix] = Script{0, 0, 0, std::move(run), {}};
  }
  void On(const std::string& prefix, int exit_code) { scripts_[prefix] = Script{exit_code, 0, 0, {}, {}}; }

  std::vector<FakeCommand> commands;  ///< every start that was tried, in order
  std::map<std::string, std::string> environment;
  std::vector<std::string> brought_to_front;
  /// The command lines alone.
  std::vector<std::string> CommandLines() const;

  Result<std::unique_ptr<Process>> Start(const std::string& command_line, WindowStyle style) override;
  Status CanStart(const std::string& command_line) override;
  void SetEnvironment(const std::string& name, const std::string& value) override;
  void BringWindowToFront(const std::string& title) override;

 private:
  Script ScriptFor(const std::string& command_line) const;

  FileSystem& files_;
  std::map<std::string, Script> scripts_;
};

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_FAKE_PROCESSES_H_
