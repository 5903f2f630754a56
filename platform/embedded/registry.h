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

  /// Makes all changes of a registry-editor file to one hive at once. Paths are below the hive's root.
  Status Apply(Hive hive, const formats::RegFile& changes) {
    return files_->Change(hive, [&](const RegistryTree&) -> Result<formats::RegFile> { return changes; });
  }
  /// Adds a key, under the name `shown`, and all below it to a registry-editor file.
  Status Export(Hive hive, std::string_view path, const std::string& shown, formats::RegFileWriter& writer) {
    KW_ASSIGN_OR_RETURN(const RegistryTree* const tree, files_->Read(hive));
    const RegistryTree::Key* const key = tree->Find(path);
    if (key == nullptr) return {kErrorFileNotFound, "There is no registry key " + shown + "."};
    RegistryTree::Write(*key, shown, writer);
    return {};
  }

 private:
  EmbeddedRegistry(std::shared_ptr<RegistryFiles> files, int code_page)
      : StoredRegistry(files, code_page), files_(std::move(files)) {}

  std::shared_ptr<RegistryFiles> files_;
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_REGISTRY_H_
