#ifndef KITWRIGHT_PLATFORM_REGISTRY_TREES_H_
#define KITWRIGHT_PLATFORM_REGISTRY_TREES_H_

#include <string_view>

#include "base/result.h"
#include "platform/registry.h"

namespace kw::platform {

// Operations on a key with all below it, over any registry.

/// Deletes a key with all below it. kErrorFileNotFound when there is none.
Status DeleteTree(Registry& registry, Hive hive, std::string_view path);
/// Copies the values and subkeys of one key into another one, which is made when it is missing; what is there
/// already and has no counterpart stays.
Status CopyTree(Registry& registry, Hive from_hive, std::string_view from, Hive to_hive, std::string_view to);
/// Deletes a key that holds no value and no subkey. True if it is gone now or never was there; false if it
/// holds something or cannot be deleted.
bool DeleteEmptyKey(Registry& registry, Hive hive, std::string_view path);
/// Deletes all keys of the tree that hold nothing, from the leaves up. True if the key itself is gone now or
/// never was there.
bool DeleteEmptyKeyTree(Registry& registry, Hive hive, std::string_view path);

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_REGISTRY_TREES_H_
