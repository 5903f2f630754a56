#include <windows.h>

#include "base/machine_paths.h"
#include "base/text.h"

namespace kw {

MachinePaths MachinePaths::OfThisProcess() {
  std::u16string folder(32768, u'\0');
  const DWORD size =
      GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), reinterpret_cast<wchar_t*>(folder.data()));
  folder.resize(size < folder.size() ? size : 0);
  return {"", Utf16ToUtf8(folder)};
}

std::string MachinePaths::HostPath(std::string_view path) const { return FullPath(path); }

std::string MachinePaths::HostPath(std::string_view path, int& refusal) const {
  refusal = 0;
  return HostPath(path);
}

std::string MachinePaths::WindowsPath(std::string_view host_path) const { return FullPath(host_path); }

}  // namespace kw
