#ifndef KITWRIGHT_PLATFORM_SHARED_STORED_REGISTRY_H_
#define KITWRIGHT_PLATFORM_SHARED_STORED_REGISTRY_H_

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "formats/reg_file.h"
#include "platform/registry.h"
#include "platform/shared/registry_tree.h"

namespace kw::platform {

/// Where a registry keeps its hives. Both calls see the present state, whoever changed it last.
class RegistryStore {
 public:
  virtual ~RegistryStore() = default;
  /// The hive; good until the next call.
  virtual Result<const RegistryTree*> Read(Hive hive) = 0;
  /// Asks `decide` for a change of the present state and makes it, while nobody else can change anything.
  /// `decide` may refuse with a failure, or give a change with an empty `keys`, which changes nothing. The
  /// paths in the change are below the hive's root. After a failure nothing is changed.
  using Decide = std::function<Result<formats::RegFile>(const RegistryTree&)>;
  virtual Status Change(Hive hive, const Decide& decide) = 0;
};

/// The registry's rules on top of a store: handles and their rights, buffer sizes, order of enumeration.
class StoredRegistry : public Registry {
 public:
  /// `code_page` is that of the 8-bit calls, whose sizes count.
  StoredRegistry(std::shared_ptr<RegistryStore> store, int code_page);

  Result<std::unique_ptr<RegistryKey>> OpenKey(Hive hive, std::string_view path, uint32_t access) override;
  Result<std::unique_ptr<RegistryKey>> CreateKey(Hive hive, std::string_view path, uint32_t access) override;
  Status DeleteKey(Hive hive, std::string_view path) override;

 private:
  std::shared_ptr<RegistryStore> store_;
  int code_page_;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_STORED_REGISTRY_H_
