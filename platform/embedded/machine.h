#ifndef KITWRIGHT_PLATFORM_EMBEDDED_MACHINE_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_MACHINE_H_

#include <memory>

#include "base/machine_paths.h"
#include "platform/embedded/closed_libraries.h"
#include "platform/embedded/file_system.h"
#include "platform/embedded/processes.h"
#include "platform/embedded/registry.h"
#include "platform/embedded/system.h"
#include "platform/services.h"
#include "platform/shared/ini_profile_files.h"
#include "platform/shared/pe_file_versions.h"
#include "platform/shared/xml_files.h"

namespace kw::platform::embedded {

/// A whole machine in a folder of the host. Make it with MakeEmbeddedMachine; it stays where it is and
/// outlives whatever was given its services.
class EmbeddedMachine {
 public:
  EmbeddedMachine(const MachinePaths& paths, Dialogs& dialogs);
  EmbeddedMachine(const EmbeddedMachine&) = delete;
  EmbeddedMachine& operator=(const EmbeddedMachine&) = delete;

  EmbeddedFileSystem files;
  EmbeddedSystem system;
  EmbeddedRegistry registry;
  IniProfileFiles profiles{files, system};
  XmlFiles xml{files};
  PeFileVersions versions{files};
  EmbeddedProcesses processes{files, versions, system.ProgramFolder()};
  EmbeddedProducts products;
  EmbeddedClosedLibraries libraries{files, registry, system};
  /// All of the above; the dialogs are the caller's.
  Services services;
};

/// Makes the machine's folder and its drive C: where they are missing, the current folder this process's, and
/// KITWRIGHT_ROOT what `given` says, for closed libraries and children. Fails when the folder cannot be made.
Result<std::unique_ptr<EmbeddedMachine>> MakeEmbeddedMachine(const MachinePaths& given, Dialogs& dialogs);

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_MACHINE_H_
