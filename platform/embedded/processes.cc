#include "platform/embedded/processes.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "base/errno_number_linux.h"
#include "base/text.h"

namespace kw::platform::embedded {

/// Children whose Process object went away while they ran.
struct EmbeddedProcesses::Abandoned {
  std::vector<pid_t> children;
  void Collect() {
    std::erase_if(children, [](pid_t child) { return ::waitpid(child, nullptr, WNOHANG) != 0; });
  }
};

namespace {

int ExitCodeOf(int status) { return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status); }

// The present environment with some variables in the place of those of the same name.
class Environment {
 public:
  explicit Environment(std::vector<std::pair<std::string, std::string>> own) {
    for (char** entry = environ; *entry != nullptr; ++entry) {
      const std::string_view text = *entry;
      const std::string_view name = text.substr(0, text.find('='));
      const bool replaced =
          std::any_of(own.begin(), own.end(), [&](const auto& variable) { return variable.first == name; });
      if (!replaced) entries_.emplace_back(text);
    }
    for (const auto& [name, value] : own) entries_.push_back(name + "=" + value);
  }
  std::vector<std::string>& Entries() { return entries_; }

 private:
  std::vector<std::string> entries_;
};

// Pointers as the system's calls take them; the strings stay where they are.
std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// Starts a native program without standard input and output. 0, or the errno.
int Spawn(const std::string& program, std::vector<std::string>& arguments, Environment& environment,
          const std::string& folder, pid_t& child) {
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawnattr_init(&attributes);
  int error = ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  if (error == 0) {
    error = ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  }
  if (error == 0) error = ::posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  // A window toolkit may have blocked or ignored signals that a program expects to be as usual.
  sigset_t none;
  sigset_t usual;
  ::sigemptyset(&none);
  ::sigemptyset(&usual);
  for (const int signal : {SIGPIPE, SIGINT, SIGTERM, SIGCHLD}) ::sigaddset(&usual, signal);
  ::posix_spawnattr_setsigmask(&attributes, &none);
  ::posix_spawnattr_setsigdefault(&attributes, &usual);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  if (error == 0) {
    error = ::posix_spawn(&child, program.c_str(), &actions, &attributes, Pointers(arguments).data(),
                          Pointers(environment.Entries()).data());
  }
  ::posix_spawnattr_destroy(&attributes);
  ::posix_spawn_file_actions_destroy(&actions);
  return error;
}

class EmbeddedProcess : public Process {
 public:
  EmbeddedProcess(pid_t child, std::shared_ptr<X11Desktop> desktop, std::function<void(pid_t)> abandon)
      : child_(child), desktop_(std::move(desktop)), abandon_(std::move(abandon)) {}
  ~EmbeddedProcess() override {
    if (EmbeddedProcess::ExitCode() == kStillActive) abandon_(child_);
  }

  int ExitCode() override {
    if (code_ != kStillActive) return code_;
    int status = 0;
    const pid_t ended = ::waitpid(child_, &status, WNOHANG);
    if (ended == child_) code_ = ExitCodeOf(status);
    // Somebody else in this process has collected the child: its code is lost, its end is not.
    if (ended < 0 && errno == ECHILD) code_ = -1;
    return code_;
  }

  std::string ForegroundWindowTitle() override { return desktop_->ForegroundTitle(child_); }

 private:
  pid_t child_;
  int code_ = kStillActive;
  std::shared_ptr<X11Desktop> desktop_;
  std::function<void(pid_t)> abandon_;
};

}  // namespace

EmbeddedProcesses::EmbeddedProcesses(EmbeddedFileSystem& files, FileVersions& versions,
                                     std::string program_folder)
    : files_(files),
      finder_(files, versions, std::move(program_folder)),
      desktop_(std::make_shared<X11Desktop>()),
      abandoned_(std::make_shared<Abandoned>()) {}

EmbeddedProcesses::~EmbeddedProcesses() { abandoned_->Collect(); }

Result<std::unique_ptr<Process>> EmbeddedProcesses::Start(const std::string& command_line, WindowStyle) {
  abandoned_->Collect();
  KW_ASSIGN_OR_RETURN(FoundProgram program, finder_.Find(command_line));
  const MachinePaths& paths = files_.Paths();
  Environment environment({{"KITWRIGHT_COMMAND_LINE", command_line},
                           {"KITWRIGHT_PROGRAM", program.path},
                           {"KITWRIGHT_CWD", paths.current()},
                           {"KITWRIGHT_ROOT", paths.root()}});
  pid_t child = 0;
  const int error =
      Spawn(program.host_path, program.arguments, environment, paths.HostPath(paths.current()), child);
  if (error != 0) {
    return Error{ErrorNumberOfErrno(error), "Could not start " + command_line + "."};
  }
  return std::unique_ptr<Process>(std::make_unique<EmbeddedProcess>(
      child, desktop_, [abandoned = abandoned_](pid_t left) { abandoned->children.push_back(left); }));
}

Status EmbeddedProcesses::CanStart(const std::string& command_line) {
  return finder_.Find(command_line).status();
}

void EmbeddedProcesses::SetEnvironment(const std::string& name, const std::string& value) {
  ::setenv(EqualsNoCase(name, "PATH") ? "KITWRIGHT_PATH" : name.c_str(), value.c_str(), 1);
}

void EmbeddedProcesses::BringWindowToFront(const std::string& title) { desktop_->BringToFront(title); }

}  // namespace kw::platform::embedded
