#include "platform/testing/fake_machine.h"

namespace kw::platform::testing {

FakeMachine::FakeMachine() {
  files.AddFolder(system.temp_folder);
  files.AddFolder(system.program_folder);
  files.SetCurrentFolder(system.program_folder).IgnoreError();
  files.log.clear();
  services.files = &files;
  services.registry = &registry;
  services.profiles = &profiles;
  services.xml = &xml;
  services.versions = &versions;
  services.processes = &recorded_processes;
  services.system = &system;
  services.dialogs = &dialogs;
  services.libraries = &recorded_libraries;
}

}  // namespace kw::platform::testing
