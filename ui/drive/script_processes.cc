#include "ui/drive/script_processes.h"

#include <chrono>
#include <thread>
#include <utility>

namespace kw::ui::drive {

class ScriptProcesses::Child : public platform::Process {
 public:
  Child(std::unique_ptr<platform::Process> inner, ScriptProcesses& owner)
      : inner_(std::move(inner)), owner_(owner) {
    ++owner_.running_;
  }
  /// One that begins once "meanwhile" is over.
  Child(std::string command_line, platform::WindowStyle style, ScriptProcesses& owner)
      : owner_(owner),
        command_line_(std::move(command_line)),
        style_(style),
        folder_(owner.files_.CurrentFolder()) {
    ++owner_.running_;
  }
  ~Child() override { SetEnded(); }

  int ExitCode() override {
    if (!ended_ && !owner_.meanwhile_.empty()) return platform::kStillActive;
    if (!inner_ && !ended_) Begin();
    const int code = inner_ ? inner_->ExitCode() : kNotStarted;
    if (code != platform::kStillActive) SetEnded();
    return code;
  }
  std::string ForegroundWindowTitle() override { return inner_ ? inner_->ForegroundWindowTitle() : ""; }

 private:
  /// What a wait gives for a program that no longer starts when "meanwhile" is over.
  static constexpr int kNotStarted = -1;

  /// Starts it from where it was to start, wherever "meanwhile" has gone.
  void Begin() {
    const std::string present = owner_.files_.CurrentFolder();
    owner_.files_.SetCurrentFolder(folder_).IgnoreError();
    auto started = owner_.inner_.Start(command_line_, style_);
    owner_.files_.SetCurrentFolder(present).IgnoreError();
    if (started.ok()) inner_ = std::move(*started);
  }
  void SetEnded() {
    if (!ended_) --owner_.running_;
    ended_ = true;
  }

  std::unique_ptr<platform::Process> inner_;
  ScriptProcesses& owner_;
  std::string command_line_;
  platform::WindowStyle style_ = platform::WindowStyle::kHidden;
  std::string folder_;
  bool ended_ = false;
};

void ScriptProcesses::EventTurn() {
  if (running_ == 0) return;
  // Taken out first: a command may wait for a child of its own.
  for (const auto& command : std::exchange(meanwhile_, {})) command();
  // Long enough not to use up a processor, short enough that nobody waits for it.
  std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

Result<std::unique_ptr<platform::Process>> ScriptProcesses::Start(const std::string& command_line,
                                                                  platform::WindowStyle style) {
  // What cannot start is refused at once: nobody waits for it, so that "meanwhile" stays for the next child.
  if (!meanwhile_.empty() && inner_.CanStart(command_line).ok()) {
    return std::unique_ptr<platform::Process>(std::make_unique<Child>(command_line, style, *this));
  }
  KW_ASSIGN_OR_RETURN(std::unique_ptr<platform::Process> inner, inner_.Start(command_line, style));
  return std::unique_ptr<platform::Process>(std::make_unique<Child>(std::move(inner), *this));
}

void ScriptProcesses::SetEnvironment(const std::string& name, const std::string& value) {
  inner_.SetEnvironment(name, value);
}

void ScriptProcesses::BringWindowToFront(const std::string& title) { inner_.BringWindowToFront(title); }

}  // namespace kw::ui::drive
