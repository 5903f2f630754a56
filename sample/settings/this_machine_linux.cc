#include <cstdlib>
#include <filesystem>

#include "base/machine_config.h"
#include "base/storage.h"
#include "base/text.h"
#include "platform/embedded/registry.h"
#include "platform/registry_trees.h"
#include "platform/shared/library_abi.h"
#include "sample/settings/this_machine.h"

namespace kw::sample {
namespace {

bool IsSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

std::unique_ptr<platform::Registry> OpenMachineRegistry(const MachinePaths& paths, int code_page) {
  return std::make_unique<platform::embedded::EmbeddedRegistry>(paths.root(), code_page);
}

int CopyIntoOpenKey(platform::Registry& registry, platform::Hive root, const std::string& subkey,
                    const void* open_key) {
  const auto* key = static_cast<const KitwrightOpenKey*>(open_key);
  if (key == nullptr) return kErrorInvalidHandle;
  const bool machine = key->root == KITWRIGHT_HKEY_LOCAL_MACHINE;
  if (!machine && key->root != KITWRIGHT_HKEY_CURRENT_USER) return kErrorInvalidHandle;
  return platform::CopyTree(registry, root, subkey,
                            machine ? platform::Hive::kLocalMachine : platform::Hive::kCurrentUser,
                            Utf16ToUtf8(key->path))
      .number();
}

bool UserIsAdministrator(const MachinePaths& paths) {
  const auto ini = ReadWholeFile(SystemStorage(), paths.root() + "/machine.ini");
  // A machine that says nothing has a user with rights.
  return !ini.ok() || IniValue(*ini, "machine", "admin") != "0";
}

std::string OwnProgram() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

bool HasDisplay() { return IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY"); }

}  // namespace kw::sample
