#include <windows.h>

#include "sample/settings/dialog_library.h"

namespace kw::sample {
namespace {

/// A function of the dialog library in the folder of the program or library that this code is part of. The
/// library stays loaded: a toolkit does not survive being unloaded.
FARPROC DialogFunction(const char* name) {
  static const HMODULE library = [] {
    HMODULE here = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&DialogFunction), &here);
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(here, path.data(), static_cast<DWORD>(path.size())));
    return LoadLibraryW((path.substr(0, path.rfind(L'\\') + 1) + L"SampleDialogs.dll").c_str());
  }();
  return library != nullptr ? GetProcAddress(library, name) : nullptr;
}

}  // namespace

bool ShowSettingsDialog(const std::string& title, std::vector<Setting>& settings) {
  const auto edit =
      reinterpret_cast<EditSettingsCall>(reinterpret_cast<void*>(DialogFunction("SampleEditSettings")));
  return edit != nullptr && edit(title.c_str(), &settings) == 1;
}

bool ShowTextDialog(const std::string& title, std::string& text,
                    std::string (*check)(const std::string& text)) {
  const auto edit = reinterpret_cast<EditTextCall>(reinterpret_cast<void*>(DialogFunction("SampleEditText")));
  return edit != nullptr && edit(title.c_str(), &text, check) == 1;
}

}  // namespace kw::sample
