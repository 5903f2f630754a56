#include "platform/registry_trees.h"

#include <string>
#include <vector>

namespace kw::platform {
namespace {

std::string Below(std::string_view path, std::string_view name) {
  return path.empty() ? std::string(name) : std::string(path) + "\\" + std::string(name);
}

// All names are read before anything changes, so that indexes stay what they are.
Result<std::vector<std::string>> SubkeyNames(RegistryKey& key) {
  std::vector<std::string> names;
  while (true) {
    auto name = key.EnumKey(static_cast<uint32_t>(names.size()), kAnyRegistrySize);
    if (name.number() == kErrorNoMoreItems) return names;
    if (!name.ok()) return name.error();
    names.push_back(std::move(*name));
  }
}

Result<std::vector<std::string>> SubkeyNames(Registry& registry, Hive hive, std::string_view path) {
  KW_ASSIGN_OR_RETURN(const auto key, registry.OpenKey(hive, path, kKeyQuery));
  return SubkeyNames(*key);
}

}  // namespace

Status DeleteTree(Registry& registry, Hive hive, std::string_view path) {
  KW_ASSIGN_OR_RETURN(const auto names, SubkeyNames(registry, hive, path));
  for (const std::string& name : names) {
    KW_RETURN_IF_ERROR(DeleteTree(registry, hive, Below(path, name)));
  }
  return registry.DeleteKey(hive, path);
}

Status CopyTree(Registry& registry, Hive from_hive, std::string_view from, Hive to_hive,
                std::string_view to) {
  KW_ASSIGN_OR_RETURN(const auto source, registry.OpenKey(from_hive, from, kKeyQuery));
  // The names are taken first: the target may lie below the source.
  KW_ASSIGN_OR_RETURN(const auto names, SubkeyNames(*source));
  KW_ASSIGN_OR_RETURN(const auto target, registry.CreateKey(to_hive, to, kKeyAll));
  for (uint32_t index = 0;; ++index) {
    const auto value = source->EnumValue(index, kAnyRegistrySize);
    if (value.number() == kErrorNoMoreItems) break;
    if (!value.ok()) return value.error();
    KW_RETURN_IF_ERROR(target->SetValue(value->name, value->value));
  }
  for (const std::string& name : names) {
    KW_RETURN_IF_ERROR(CopyTree(registry, from_hive, Below(from, name), to_hive, Below(to, name)));
  }
  return {};
}

bool DeleteEmptyKey(Registry& registry, Hive hive, std::string_view path) {
  const auto key = registry.OpenKey(hive, path, kKeyQuery);
  if (!key.ok()) return key.number() == kErrorFileNotFound;
  const auto counts = (*key)->QueryInfo();
  if (!counts.ok() || counts->values != 0 || counts->subkeys != 0) return false;
  return registry.DeleteKey(hive, path).ok();
}

bool DeleteEmptyKeyTree(Registry& registry, Hive hive, std::string_view path) {
  if (const auto names = SubkeyNames(registry, hive, path); names.ok()) {
    for (const std::string& name : *names) DeleteEmptyKeyTree(registry, hive, Below(path, name));
  }
  return DeleteEmptyKey(registry, hive, path);
}

}  // namespace kw::platform
