#include "platform/shared/registry_trees.h"

#include <cstdint>
#include <limits>
#include <vector>

namespace kw::platform {
namespace {

constexpr uint32_t kAnySize = std::numeric_limits<uint32_t>::max();

Result<std::vector<std::string>> SubkeysOf(RegistryKey& key) {
  std::vector<std::string> names;
  for (uint32_t i = 0;; ++i) {
    auto name = key.EnumKey(i, kAnySize);
    if (name.number() == kErrorNoMoreItems) return names;
    if (!name.ok()) return name.error();
    names.push_back(std::move(*name));
  }
}

Result<std::vector<std::string>> SubkeysOf(Registry& registry, Hive hive, const std::string& path) {
  KW_ASSIGN_OR_RETURN(const auto key, registry.OpenKey(hive, path, kKeyQuery));
  return SubkeysOf(*key);
}

}  // namespace

Status DeleteRegistryTree(Registry& registry, Hive hive, const std::string& path) {
  KW_ASSIGN_OR_RETURN(const auto names, SubkeysOf(registry, hive, path));
  for (const std::string& name : names) {
    KW_RETURN_IF_ERROR(DeleteRegistryTree(registry, hive, path + "\\" + name));
  }
  return registry.DeleteKey(hive, path);
}

Status CopyRegistryTree(Registry& registry, Hive from, const std::string& source, Hive to,
                        const std::string& target) {
  KW_ASSIGN_OR_RETURN(const auto key, registry.OpenKey(from, source, kKeyQuery));
  KW_ASSIGN_OR_RETURN(const auto names, SubkeysOf(*key));
  KW_ASSIGN_OR_RETURN(const auto copy, registry.CreateKey(to, target, kKeyAll));
  for (uint32_t i = 0;; ++i) {
    const auto value = key->EnumValue(i, kAnySize);
    if (value.number() == kErrorNoMoreItems) break;
    if (!value.ok()) return value.error();
    KW_RETURN_IF_ERROR(copy->SetValue(value->name, value->value));
  }
  for (const std::string& name : names) {
    KW_RETURN_IF_ERROR(CopyRegistryTree(registry, from, source + "\\" + name, to, target + "\\" + name));
  }
  return {};
}

bool DeleteEmptyRegistryKey(Registry& registry, Hive hive, const std::string& path) {
  const auto key = registry.OpenKey(hive, path, kKeyQuery);
  if (!key.ok()) return key.number() == kErrorFileNotFound;
  const auto counts = (*key)->QueryInfo();
  if (!counts.ok() || counts->values > 0 || counts->subkeys > 0) return false;
  return registry.DeleteKey(hive, path).ok();
}

bool DeleteEmptyRegistryKeys(Registry& registry, Hive hive, const std::string& path) {
  const auto names = SubkeysOf(registry, hive, path);
  if (!names.ok()) return names.number() == kErrorFileNotFound;
  for (const std::string& name : *names) DeleteEmptyRegistryKeys(registry, hive, path + "\\" + name);
  return DeleteEmptyRegistryKey(registry, hive, path);
}

}  // namespace kw::platform
