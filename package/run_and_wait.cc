#include "package/file_rules.h"

namespace kw {

int RunAndWait(platform::Services& services, RunState& run, ui::FormHost& host,
               const std::string& command_line, platform::WindowStyle style) {
  run.ToolWindowTitle.clear();
  const auto process = services.processes->Start(command_line, style);
  if (!process.ok()) return -1;
  for (;;) {
    const int code = (*process)->ExitCode();
    host.PumpEvents();
    std::string title = (*process)->ForegroundWindowTitle();
    if (!title.empty()) run.ToolWindowTitle = title.substr(0, title.find('\0'));
    if (code != platform::kStillActive) return code;
  }
}

}  // namespace kw
