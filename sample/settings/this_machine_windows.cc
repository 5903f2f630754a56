#include <windows.h>
// The interfaces' own names below are not the system's.
#undef CopyFile
#undef DeleteFile

#include "platform/windows/registry.h"
#include "platform/windows/registry_views.h"
#include "platform/windows/wide.h"
#include "sample/settings/this_machine.h"

namespace kw::sample {

std::unique_ptr<platform::Registry> OpenMachineRegistry(const MachinePaths&, int code_page) {
  return std::make_unique<platform::windows::WindowsRegistry>(code_page);
}

int CopyIntoOpenKey(platform::Registry&, platform::Hive root, const std::string& subkey,
                    const void* open_key) {
  const std::wstring path = platform::windows::CallKeyPath(subkey);
  HKEY from = nullptr;
  LSTATUS status = RegOpenKeyExW(platform::windows::RootOf(root), path.c_str(), 0,
                                 KEY_READ | platform::windows::ViewOf(root, path), &from);
  if (status != ERROR_SUCCESS) return static_cast<int>(status);
  status = RegCopyTreeW(from, nullptr, static_cast<HKEY>(const_cast<void*>(open_key)));
  RegCloseKey(from);
  return static_cast<int>(status);
}

bool UserIsAdministrator(const MachinePaths&) {
  BYTE administrators[SECURITY_MAX_SID_SIZE];
  DWORD size = sizeof administrators;
  BOOL member = FALSE;
  return CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators, &size) &&
         CheckTokenMembership(nullptr, administrators, &member) && member;
}

std::string OwnProgram() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return platform::windows::Narrow(path);
}

bool HasDisplay() { return true; }

}  // namespace kw::sample
