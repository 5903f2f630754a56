#include "platform/testing/fake_processes.h"

#include <utility>

#include "base/text.h"

namespace kw::platform::testing {
namespace {

class FakeProcess : public Process {
 public:
  FakeProcess(FakeProcesses::Script script, FakeCommand command)
      : script_(std::move(script)), command_(std::move(command)) {}

  int ExitCode() override {
    if (script_.polls > 0) {
      --script_.polls;
      return kStillActive;
    }
    // Taken out first: the function may let events run, and these may ask again.
    if (const auto run = std::exchange(script_.run, {})) run(command_);
    return script_.exit_code;
  }

  std::string ForegroundWindowTitle() override { return script_.window_title; }

 private:
  FakeProcesses::Script script_;
  FakeCommand command_;
};

}  // namespace

std::vector<std::string> FakeProcesses::CommandLines() const {
  std::vector<std::string> lines;
  for (const FakeCommand& command : commands) lines.push_back(command.command_line);
  return lines;
}

FakeProcesses::Script FakeProcesses::ScriptFor(const std::string& command_line) const {
  const Script* best = nullptr;
  size_t best_length = 0;
  for (const auto& [prefix, script] : scripts_) {
    if (!StartsWithNoCase(command_line, prefix)) continue;
    if (best != nullptr && prefix.size() < best_length) continue;
    best = &script;
    best_length = prefix.size();
  }
  return best == nullptr ? Script() : *best;
}

Status FakeProcesses::CanStart(const std::string& command_line) {
  const int error = ScriptFor(command_line).start_error;
  if (error != 0) return Error{error, "Could not start " + command_line + "."};
  return Status();
}

Result<std::unique_ptr<Process>> FakeProcesses::Start(const std::string& command_line, WindowStyle style) {
  FakeCommand command{command_line, style, files_.CurrentFolder()};
  commands.push_back(command);
  KW_RETURN_IF_ERROR(CanStart(command_line));
  Script script = ScriptFor(command_line);
  return std::unique_ptr<Process>(std::make_unique<FakeProcess>(std::move(script), std::move(command)));
}

void FakeProcesses::SetEnvironment(const std::string& name, const std::string& value) {
  environment[name] = value;
}

void FakeProcesses::BringWindowToFront(const std::string& title) { brought_to_front.push_back(title); }

}  // namespace kw::platform::testing
