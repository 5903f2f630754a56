#ifndef KITWRIGHT_PLATFORM_TESTING_REGISTRY_DUMP_H_
#define KITWRIGHT_PLATFORM_TESTING_REGISTRY_DUMP_H_

#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace kw::platform::testing {

/// The tree below a key as lines of a registry-editor file without empty ones: "[path below the hive]" and
/// "\"name\"=..." in the order of enumeration. No lines when the key is missing.
std::vector<std::string> DumpRegistry(Registry& registry, Hive hive, std::string_view path);

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_REGISTRY_DUMP_H_
