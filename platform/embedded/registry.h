#ifndef KITWRIGHT_PLATFORM_EMBEDDED_REGISTRY_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_REGISTRY_H_

#include <memory>
#include <string>

#include "base/storage.h"
#include "platform/embedded/registry_files.h"
#include "platform/shared/stored_registry.h"

namespace kw::platform::embedded {

/// The registry of an embedded machine, in the folder `registry` of its root. Other processes see each change
/// when its call returns; the two .reg files are complete when no process has the registry open, and after
/// Flush.
class EmbeddedRegistry : public StoredRegistry {
 public:
  /// `host_root` is the machine's folder on the host (KITWRIGHT_ROOT); `code_page` that of the 8-bit calls.
  EmbeddedRegistry(const std::string& host_root, int code_page, Storage& storage = SystemStorage())
      : EmbeddedRegistry(std::make_shared<RegistryFiles>(host_root + "/registry", code_page, storage),
                         code_page) {}

  /// Leaves both hives as plain registry-editor files.
  Status Flush() { return files_->Flush(); }

 private:
  EmbeddedRegistry(std::shared_ptr<RegistryFiles> files, int code_page)
      : StoredRegistry(files, code_page), files_(std::move(files)) {}

  std::shared_ptr<RegistryFiles> files_;
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_REGISTRY_H_
