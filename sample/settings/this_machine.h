#ifndef KITWRIGHT_SAMPLE_SETTINGS_THIS_MACHINE_H_
#define KITWRIGHT_SAMPLE_SETTINGS_THIS_MACHINE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "base/machine_paths.h"
#include "platform/registry.h"

namespace kw::sample {

// What the stand-ins ask the system for: the embedded machine on Linux, Windows itself there.

/// The registry of the machine that this process runs on.
std::unique_ptr<platform::Registry> OpenMachineRegistry(const MachinePaths& paths, int code_page);

/// Copies a key with all below it into `open_key`, which a caller of REG_SHCopyKey has opened. The error
/// number, 0 for success.
int CopyIntoOpenKey(platform::Registry& registry, platform::Hive root, const std::string& subkey,
                    const void* open_key);

/// True if whoever runs this process has an administrator's rights.
bool UserIsAdministrator(const MachinePaths& paths);

/// The host path of this process's program.
std::string OwnProgram();

/// True where windows can be shown.
bool HasDisplay();

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_SETTINGS_THIS_MACHINE_H_
