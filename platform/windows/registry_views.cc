#include "platform/windows/registry_views.h"

#include "base/text.h"
#include "platform/windows/wide.h"

namespace kw::platform::windows {
namespace {

bool Exists(HKEY root, const std::wstring& path, REGSAM view) {
  HKEY key = nullptr;
  // A key that is there but closed to this user exists all the same.
  const LSTATUS opened = RegOpenKeyExW(root, path.c_str(), 0, KEY_QUERY_VALUE | view, &key);
  if (opened == ERROR_SUCCESS) RegCloseKey(key);
  return opened == ERROR_SUCCESS || opened == ERROR_ACCESS_DENIED;
}

}  // namespace

HKEY RootOf(Hive hive) { return hive == Hive::kCurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }

std::wstring CallKeyPath(std::string_view path) {
  std::string kept;
  for (const std::string& part : Split(path, '\\')) {
    if (part.empty()) continue;
    if (!kept.empty()) kept += '\\';
    kept += part;
  }
  return Wide(kept);
}

REGSAM ViewOf(Hive hive, const std::wstring& call_path) {
  if (hive != Hive::kLocalMachine || Exists(HKEY_LOCAL_MACHINE, call_path, 0)) return 0;
  return Exists(HKEY_LOCAL_MACHINE, call_path, KEY_WOW64_32KEY) ? KEY_WOW64_32KEY : 0;
}

std::wstring PathInOwnView(REGSAM view, const std::wstring& call_path) {
  constexpr std::string_view kSoftware = "SOFTWARE\\";
  const std::string path = Narrow(call_path);
  if (view == 0 || !StartsWithNoCase(path, kSoftware)) return call_path;
  return Wide("SOFTWARE\\WOW6432Node\\" + path.substr(kSoftware.size()));
}

}  // namespace kw::platform::windows
