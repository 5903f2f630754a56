#ifndef KITWRIGHT_UI_DRIVE_SCRIPT_PROCESSES_H_
#define KITWRIGHT_UI_DRIVE_SCRIPT_PROCESSES_H_

#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "platform/file_system.h"
#include "platform/processes.h"

namespace kw::ui::drive {

/// Child processes during which the script goes on: what is queued for "meanwhile" runs at the first event
/// turn of the next wait for a child. The child counts as running from its start, but does nothing until
/// then: what comes first would otherwise be chance.
class ScriptProcesses : public platform::Processes {
 public:
  /// Processes take their current folder from `files`. Both outlive this object, and this object every
  /// process that it started.
  ScriptProcesses(platform::Processes& inner, platform::FileSystem& files) : inner_(inner), files_(files) {}

  void QueueMeanwhile(std::function<void()> command) { meanwhile_.push_back(std::move(command)); }
  /// An event turn: runs what is queued if a child is waited for, and gives the child a moment.
  void EventTurn();

  Result<std::unique_ptr<platform::Process>> Start(const std::string& command_line,
                                                   platform::WindowStyle style) override;
  Status CanStart(const std::string& command_line) override { return inner_.CanStart(command_line); }
  void SetEnvironment(const std::string& name, const std::string& value) override;
  void BringWindowToFront(const std::string& title) override;

 private:
  class Child;

  platform::Processes& inner_;
  platform::FileSystem& files_;
  std::deque<std::function<void()>> meanwhile_;
  int running_ = 0;
};

}  // namespace kw::ui::drive

#endif  // KITWRIGHT_UI_DRIVE_SCRIPT_PROCESSES_H_
