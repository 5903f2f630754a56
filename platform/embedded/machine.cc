#include "platform/embedded/machine.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "platform/shared/msi_installer.h"

namespace kw::platform::embedded {

EmbeddedMachine::EmbeddedMachine(const MachinePaths& paths, Dialogs& dialogs)
    : files(paths), system(paths), registry(paths.root(), system.CodePage()), products(paths.root()) {
  services.files = &files;
  services.registry = &registry;
  services.profiles = &profiles;
  services.processes = &processes;
  services.xml = &xml;
  services.versions = &versions;
  services.system = &system;
  services.dialogs = &dialogs;
  services.libraries = &libraries;
  services.create_installer = [this]() -> Result<std::unique_ptr<Installer>> {
    return MakeMsiInstaller({SystemStorage(),
                             [this](const std::string& path) { return files.Paths().HostPath(path); }, files,
                             system, products});
  };
}

Result<std::unique_ptr<EmbeddedMachine>> MakeEmbeddedMachine(const MachinePaths& given, Dialogs& dialogs) {
  std::error_code error;
  // The host's current folder changes, so the machine's must not be relative to it.
  const MachinePaths paths(std::filesystem::absolute(given.root(), error).string(), given.current());
  std::filesystem::create_directories(paths.root() + "/drive_c", error);
  if (error) {
    return Error{kErrorPathNotFound,
                 "Could not make the machine's folder " + paths.root() + ": " + error.message() + "."};
  }
  ::setenv("KITWRIGHT_ROOT", paths.root().c_str(), 1);
  auto machine = std::make_unique<EmbeddedMachine>(paths, dialogs);
  // A current folder that is gone leaves the root of the drive.
  if (!machine->files.SetCurrentFolder(paths.current()).ok()) {
    KW_RETURN_IF_ERROR(machine->files.SetCurrentFolder("C:\\"));
  }
  return machine;
}

}  // namespace kw::platform::embedded
