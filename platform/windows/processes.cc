#include "platform/windows/processes.h"

#include <cstdlib>
#include <utility>

#include "platform/windows/owned_handle.h"
#include "platform/windows/system_headers.h"
#include "platform/windows/wide.h"

namespace kw::platform::windows {
namespace {

constexpr DWORD kLongestPath = 32768;

// The file that a name means: as it is or with ".exe", along the path that programs are looked for. "" when
// none is there.
std::wstring FindFile(const std::wstring& name) {
  std::wstring path(kLongestPath, L'\0');
  const DWORD length = SearchPathW(nullptr, name.c_str(), L".exe", kLongestPath, path.data(), nullptr);
  if (name.empty() || length == 0 || length >= kLongestPath) return {};
  path.resize(length);
  const DWORD attributes = GetFileAttributesW(path.c_str());
  const bool file = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
  return file ? path : std::wstring();
}

// The program of a command line; "" when none is there. The system's call would find it too, but would then
// put quotes around a name with blanks that has none, and the child would not get its command line as it
// stands.
std::wstring FindProgram(const std::wstring& line) {
  if (line.starts_with(L'"')) return FindFile(line.substr(1, line.find(L'"', 1) - 1));
  for (size_t end = line.find_first_of(L" \t");; end = line.find_first_of(L" \t", end + 1)) {
    const std::wstring program = FindFile(line.substr(0, end));
    if (!program.empty() || end == std::wstring::npos) return program;
  }
}

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
  const std::wstring program = FindProgram(line);
  if (program.empty())
    return Error{kErrorFileNotFound, "Could not start " + command_line + ": there is no such program."};
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESHOWWINDOW;
  start.wShowWindow = style == WindowStyle::kHidden ? SW_HIDE : SW_SHOWNORMAL;
  const DWORD console = style == WindowStyle::kHidden ? CREATE_NO_WINDOW : CREATE_NEW_CONSOLE;
  PROCESS_INFORMATION made{};
  if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, console, nullptr, nullptr,
                      &start, &made)) {
    return Error{LastNumber(), "Could not start " + command_line + "."};
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
