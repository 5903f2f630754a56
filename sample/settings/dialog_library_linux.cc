#include <dlfcn.h>

#include <filesystem>

#include "sample/settings/dialog_library.h"

namespace kw::sample {
namespace {

/// A function of the dialog library in the folder of the program or library that this code is part of. The
/// library stays loaded: a toolkit does not survive being unloaded.
void* DialogFunction(const char* name) {
  static void* const library = [] {
    Dl_info here = {};
    if (dladdr(reinterpret_cast<void*>(&DialogFunction), &here) == 0) return static_cast<void*>(nullptr);
    std::filesystem::path self = here.dli_fname;
    std::error_code error;
    // A program is known to the loader by the name that it was started with, which need not be its path.
    if (!self.is_absolute()) self = std::filesystem::read_symlink("/proc/self/exe", error);
    return dlopen((self.parent_path() / "SampleDialogs.so").c_str(), RTLD_NOW | RTLD_LOCAL);
  }();
  return library != nullptr ? dlsym(library, name) : nullptr;
}

}  // namespace

bool ShowSettingsDialog(const std::string& title, std::vector<Setting>& settings) {
  const auto edit = reinterpret_cast<EditSettingsCall>(DialogFunction("SampleEditSettings"));
  return edit != nullptr && edit(title.c_str(), &settings) == 1;
}

bool ShowTextDialog(const std::string& title, std::string& text,
                    std::string (*check)(const std::string& text)) {
  const auto edit = reinterpret_cast<EditTextCall>(DialogFunction("SampleEditText"));
  return edit != nullptr && edit(title.c_str(), &text, check) == 1;
}

}  // namespace kw::sample
