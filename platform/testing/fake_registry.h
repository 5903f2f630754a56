#ifndef KITWRIGHT_PLATFORM_TESTING_FAKE_REGISTRY_H_
#define KITWRIGHT_PLATFORM_TESTING_FAKE_REGISTRY_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/shared/stored_registry.h"

namespace kw::platform::testing {

/// A registry in memory with the rules of the real ones.
class FakeRegistry : public StoredRegistry {
 public:
  explicit FakeRegistry(int code_page = 1252);

  /// Sets a value, making its key.
  void Set(Hive hive, std::string_view path, std::string_view name, const RegistryValue& value);
  void SetText(Hive hive, std::string_view path, std::string_view name, std::string_view text);
  void SetDword(Hive hive, std::string_view path, std::string_view name, uint32_t number);
  /// Makes an empty key.
  void AddKey(Hive hive, std::string_view path);

  bool HasKey(Hive hive, std::string_view path);
  /// A value; of type kRegNone without data when key or value is missing.
  RegistryValue Get(Hive hive, std::string_view path, std::string_view name);
  /// The tree below a key as lines of a registry-editor file without empty ones, to compare whole trees.
  std::vector<std::string> Dump(Hive hive, std::string_view path);
};

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_FAKE_REGISTRY_H_
