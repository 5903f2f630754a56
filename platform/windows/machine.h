#ifndef KITWRIGHT_PLATFORM_WINDOWS_MACHINE_H_
#define KITWRIGHT_PLATFORM_WINDOWS_MACHINE_H_

#include "platform/services.h"
#include "platform/shared/ini_profile_files.h"
#include "platform/shared/pe_file_versions.h"
#include "platform/shared/xml_files.h"
#include "platform/windows/closed_libraries.h"
#include "platform/windows/file_system.h"
#include "platform/windows/processes.h"
#include "platform/windows/registry.h"
#include "platform/windows/system.h"

namespace kw::platform::windows {

/// The machine that the program runs on. It stays where it is and outlives whatever was given its services.
class WindowsMachine {
 public:
  /// `dialogs` outlives the machine.
  explicit WindowsMachine(Dialogs& dialogs);
  WindowsMachine(const WindowsMachine&) = delete;
  WindowsMachine& operator=(const WindowsMachine&) = delete;

  WindowsFileSystem files;
  WindowsSystem system;
  WindowsRegistry registry;
  IniProfileFiles profiles{files, system};
  XmlFiles xml{files};
  PeFileVersions versions{files};
  WindowsProcesses processes;
  WindowsProducts products;
  WindowsClosedLibraries libraries{files, registry, system};
  /// All of the above; the dialogs are the caller's.
  Services services;
};

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_MACHINE_H_
