#ifndef KITWRIGHT_PLATFORM_SERVICES_H_
#define KITWRIGHT_PLATFORM_SERVICES_H_

#include <functional>
#include <memory>

#include "platform/closed_libraries.h"
#include "platform/dialogs.h"
#include "platform/file_system.h"
#include "platform/file_versions.h"
#include "platform/installer.h"
#include "platform/processes.h"
#include "platform/profile_files.h"
#include "platform/registry.h"
#include "platform/system.h"
#include "platform/xml.h"

namespace kw::platform {

/// Everything that the wizard's rules know of the world. Owned by the composition root (or the test), which
/// outlives every page; nothing here is ever null in a running program.
struct Services {
  FileSystem* files = nullptr;
  Registry* registry = nullptr;
  ProfileFiles* profiles = nullptr;
  Processes* processes = nullptr;
  XmlFactory* xml = nullptr;
  FileVersions* versions = nullptr;
  System* system = nullptr;
  Dialogs* dialogs = nullptr;
  ClosedLibraries* libraries = nullptr;
  /// Makes one installer automation object; fails when the system has none.
  std::function<Result<std::unique_ptr<Installer>>()> create_installer;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SERVICES_H_
