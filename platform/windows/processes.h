#ifndef KITWRIGHT_PLATFORM_WINDOWS_PROCESSES_H_
#define KITWRIGHT_PLATFORM_WINDOWS_PROCESSES_H_

#include <memory>
#include <string>

#include "platform/processes.h"

namespace kw::platform::windows {

/// The system's processes. A hidden console program gets a console without a window; what children print is
/// seen by nobody.
class WindowsProcesses : public Processes {
 public:
  Result<std::unique_ptr<Process>> Start(const std::string& command_line, WindowStyle style) override;
  void SetEnvironment(const std::string& name, const std::string& value) override;
  void BringWindowToFront(const std::string& title) override;
};

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_PROCESSES_H_
