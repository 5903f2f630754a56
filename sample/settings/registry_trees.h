#ifndef KITWRIGHT_SAMPLE_SETTINGS_REGISTRY_TREES_H_
#define KITWRIGHT_SAMPLE_SETTINGS_REGISTRY_TREES_H_

#include <string>

#include "platform/registry.h"

namespace kw::sample {

/// Copies a key with all below it over another key, which is made. What the target has besides stays.
Status CopyRegistryTree(platform::Registry& registry, platform::Hive from, const std::string& source,
                        platform::Hive to, const std::string& target);

/// Deletes a key with all below it; kErrorFileNotFound when there is none.
Status DeleteRegistryTree(platform::Registry& registry, platform::Hive hive, const std::string& path);

/// Deletes a key that holds nothing, with `subkeys` one that holds nothing but empty keys; then the empty
/// keys go also where others stay. True when the key is gone or never was.
bool DeleteEmptyKey(platform::Registry& registry, platform::Hive hive, const std::string& path, bool subkeys);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_SETTINGS_REGISTRY_TREES_H_
