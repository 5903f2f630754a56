#include "platform/windows/closed_libraries.h"

#include <cstdio>

#include "platform/windows/guarded_call.h"
#include "platform/windows/owned_handle.h"
#include "platform/windows/registry_views.h"
#include "platform/windows/system_headers.h"
#include "platform/windows/wide.h"

namespace kw::platform::windows {

void* WindowsClosedLibraries::LoadFile(const std::string& file, std::string& reason) {
  const bool bare_name = file.find('\\') == std::string::npos;
  // What a library itself needs is looked for beside it first.
  const DWORD how = bare_name ? 0 : LOAD_WITH_ALTERED_SEARCH_PATH;
  const HMODULE module = LoadLibraryExW(Wide(file).c_str(), nullptr, how);
  if (module == nullptr) reason = "error " + std::to_string(LastNumber());
  return module;
}

void* WindowsClosedLibraries::FindFunction(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

Status WindowsClosedLibraries::Run(const std::function<void()>& call) {
  const unsigned long exception =
      KwGuardedCall([](void* context) { (*static_cast<const std::function<void()>*>(context))(); },
                    const_cast<std::function<void()>*>(&call));
  if (exception == 0) return {};
  char text[32];
  std::snprintf(text, sizeof text, "exception 0x%08lX", exception);
  return {kErrorFunctionFailed, text};
}

Result<int> WindowsClosedLibraries::WithOpenKey(Hive root, const std::string& path,
                                                const std::function<Result<int>(const void* key)>& call) {
  const std::wstring wide = CallKeyPath(path);
  HKEY key = nullptr;
  const LSTATUS status =
      RegOpenKeyExW(RootOf(root), wide.c_str(), 0, KEY_ALL_ACCESS | ViewOf(root, wide), &key);
  if (status != ERROR_SUCCESS) {
    return Error{static_cast<int>(status), "The registry key " + path + " cannot be opened for a copy."};
  }
  Result<int> result = call(key);
  RegCloseKey(key);
  return result;
}

std::string WindowsClosedLibraries::KeyForLibrary(Hive root, const std::string& subkey) {
  const std::wstring path = CallKeyPath(subkey);
  const REGSAM view = ViewOf(root, path);
  return view == 0 ? subkey : Narrow(PathInOwnView(view, path));
}

void* WindowsClosedLibraries::ActiveWindow() { return GetActiveWindow(); }

}  // namespace kw::platform::windows
