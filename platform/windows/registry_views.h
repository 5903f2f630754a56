#ifndef KITWRIGHT_PLATFORM_WINDOWS_REGISTRY_VIEWS_H_
#define KITWRIGHT_PLATFORM_WINDOWS_REGISTRY_VIEWS_H_

#include <string>
#include <string_view>

#include "platform/registry.h"
#include "platform/windows/system_headers.h"

namespace kw::platform::windows {

/// The system's handle of a root.
HKEY RootOf(Hive hive);

/// A path as the calls take it: without empty parts.
std::wstring CallKeyPath(std::string_view path);

/// The view of the registry that holds a key: 0, the program's own, where the key exists there or nowhere;
/// KEY_WOW64_32KEY where only that view of the local machine has it, as after the installation of a 32-bit
/// product.
REGSAM ViewOf(Hive hive, const std::wstring& call_path);

/// The path by which the program's own view reaches a key of `view`, for calls that know one view only.
std::wstring PathInOwnView(REGSAM view, const std::wstring& call_path);

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_REGISTRY_VIEWS_H_
