#ifndef KITWRIGHT_PLATFORM_SHARED_REGISTRY_TREES_H_
#define KITWRIGHT_PLATFORM_SHARED_REGISTRY_TREES_H_

#include <string>

#include "platform/registry.h"

namespace kw::platform {

// Whole branches of a registry, for stand-ins of the closed libraries.

/// Deletes a key with all that it holds; kErrorFileNotFound when there is none.
Status DeleteRegistryTree(Registry& registry, Hive hive, const std::string& path);
/// Copies values and subkeys of a key into another, which is made; what the target holds besides stays.
Status CopyRegistryTree(Registry& registry, Hive from, const std::string& source, Hive to,
                        const std::string& target);
/// Deletes a key that holds neither values nor subkeys. True if there is no such key afterwards.
bool DeleteEmptyRegistryKey(Registry& registry, Hive hive, const std::string& path);
/// Deletes the empty keys of a tree from its leaves on. True if the key itself is gone afterwards.
bool DeleteEmptyRegistryKeys(Registry& registry, Hive hive, const std::string& path);

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_REGISTRY_TREES_H_
