#include "platform/windows/machine.h"

#include "base/machine_paths.h"
#include "base/storage.h"
#include "platform/shared/msi_installer.h"

namespace kw::platform::windows {

WindowsMachine::WindowsMachine(Dialogs& dialogs) : registry(system.CodePage()) {
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
    return MakeMsiInstaller(
        {SystemStorage(),
         [](const std::string& path) { return MachinePaths::OfThisProcess().HostPath(path); }, files, system,
         products});
  };
}

}  // namespace kw::platform::windows
