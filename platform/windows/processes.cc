#include "platform/windows/processes.h"

#include <cstdlib>
#include <utility>

#include "platform/windows/owned_handle.h"
#include "platform/windows/system_headers.h"
#include "platform/windows/wide.h"

namespace kw::platform::windows {
namespace {

class WindowsProcess : public Process {
 public:
  WindowsProcess(OwnedHandle process, DWORD id) : process_(std::move(process)), id_(id) {}

  int ExitCode() override {
    DWORD code = 0;
    if (WaitForSingleObject(process_.get(), 0) == WAIT_TIMEOUT) return kStillActive;
    return GetExitCodeProcess(process_.get(), &code) ? static_cast<int>(code) : -1;
  }

  std::string ForegroundWindowTitle() override {
    const HWND window = GetForegroundWindow();
    DWORD owner = 0;
    if (window == nullptr || GetWindowThreadProcessId(window, &owner) == 0 || owner != id_) return {};
    std::wstring title(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    title.resize(static_cast<size_t>(GetWindowTextW(window, title.data(), static_cast<int>(title.size()))));
    return Narrow(title);
  }

 private:
  OwnedHandle process_;
  DWORD id_;
};

}  // namespace

Result<std::unique_ptr<Process>> WindowsProcesses::Start(const std::string& command_line, WindowStyle style) {
  // The call writes into its argument.
  std::wstring line = Wide(command_line);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESHOWWINDOW;
  start.wShowWindow = style == WindowStyle::kHidden ? SW_HIDE : SW_SHOWNORMAL;
  const DWORD console = style == WindowStyle::kHidden ? CREATE_NO_WINDOW : CREATE_NEW_CONSOLE;
  PROCESS_INFORMATION made{};
  if (line.empty() || !CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, console, nullptr,
                                      nullptr, &start, &made)) {
    const int number = line.empty() ? static_cast<int>(kErrorInvalidParameter) : LastNumber();
    return Error{number, "Could not start " + command_line + "."};
  }
  CloseHandle(made.hThread);
  return std::unique_ptr<Process>(
      std::make_unique<WindowsProcess>(OwnedHandle(made.hProcess), made.dwProcessId));
}

void WindowsProcesses::SetEnvironment(const std::string& name, const std::string& value) {
  // The C runtime has a copy of its own, which closed libraries in this process look at; it tells the system.
  _wputenv((Wide(name) + L"=" + Wide(value)).c_str());
}

void WindowsProcesses::BringWindowToFront(const std::string& title) {
  const HWND window = FindWindowW(nullptr, Wide(title).c_str());
  if (window != nullptr) SetForegroundWindow(window);
}

}  // namespace kw::platform::windows
