#include "sample/settings/registry_trees.h"

#include <vector>

namespace kw::sample {

using platform::Hive;
using platform::Registry;

namespace {

Result<std::vector<std::string>> Subkeys(platform::RegistryKey& key) {
  std::vector<std::string> names;
  for (uint32_t index = 0;; ++index) {
    Result<std::string> name = key.EnumKey(index, platform::kAnyRegistrySize);
    if (!name.ok()) {
      if (name.number() != kErrorNoMoreItems) return name.error();
      return names;
    }
    names.push_back(std::move(*name));
  }
}

}  // namespace

Status CopyRegistryTree(Registry& registry, Hive from, const std::string& source, Hive to,
                        const std::string& target) {
  KW_ASSIGN_OR_RETURN(auto read, registry.OpenKey(from, source, platform::kKeyQuery));
  KW_ASSIGN_OR_RETURN(auto write, registry.CreateKey(to, target, platform::kKeyAll));
  // Listed before anything is written: the target may lie below the source.
  KW_ASSIGN_OR_RETURN(const std::vector<std::string> names, Subkeys(*read));
  for (uint32_t index = 0;; ++index) {
    const auto value = read->EnumValue(index, platform::kAnyRegistrySize);
    if (!value.ok()) {
      if (value.number() != kErrorNoMoreItems) return value.error();
      break;
    }
    KW_RETURN_IF_ERROR(write->SetValue(value->name, value->value));
  }
  for (const std::string& name : names) {
    KW_RETURN_IF_ERROR(CopyRegistryTree(registry, from, source + "\\" + name, to, target + "\\" + name));
  }
  return {};
}

Status DeleteRegistryTree(Registry& registry, Hive hive, const std::string& path) {
  KW_ASSIGN_OR_RETURN(auto key, registry.OpenKey(hive, path, platform::kKeyQuery));
  KW_ASSIGN_OR_RETURN(const std::vector<std::string> names, Subkeys(*key));
  key.reset();
  for (const std::string& name : names)
    KW_RETURN_IF_ERROR(DeleteRegistryTree(registry, hive, path + "\\" + name));
  return registry.DeleteKey(hive, path);
}

bool DeleteEmptyKey(Registry& registry, Hive hive, const std::string& path, bool subkeys) {
  auto key = registry.OpenKey(hive, path, platform::kKeyQuery);
  if (!key.ok()) return key.number() == kErrorFileNotFound;
  if (subkeys) {
    const auto names = Subkeys(**key);
    if (!names.ok()) return false;
    for (const std::string& name : *names) DeleteEmptyKey(registry, hive, path + "\\" + name, true);
  }
  const auto counts = (*key)->QueryInfo();
  if (!counts.ok() || counts->subkeys != 0 || counts->values != 0) return false;
  key->reset();
  return registry.DeleteKey(hive, path).ok();
}

}  // namespace kw::sample
