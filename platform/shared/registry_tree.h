#ifndef KITWRIGHT_PLATFORM_SHARED_REGISTRY_TREE_H_
#define KITWRIGHT_PLATFORM_SHARED_REGISTRY_TREE_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "formats/reg_file.h"
#include "platform/registry.h"

namespace kw::platform {

/// One hive in memory: subkeys in sorted order, values in order of creation, both found by name without
/// regard to case. Pointers into the tree are good until it is next changed. Paths are below the hive's root,
/// separated by "\"; empty parts do not count, and "" is the root itself.
class RegistryTree {
 public:
  struct Value {
    std::string name;
    uint32_t type = kRegNone;
    std::string data;  ///< as RegistryValue::data
    uint64_t order = 0;
  };

  class Key {
   public:
    Key(std::string name, std::string folded) : name_(std::move(name)), folded_(std::move(folded)) {}
    const std::string& name() const { return name_; }
    const std::vector<std::unique_ptr<Key>>& subkeys() const { return subkeys_; }
    /// In order of creation.
    const std::vector<std::unique_ptr<Value>>& values() const { return values_; }
    /// The value of that name, or a null pointer.
    const Value* FindValue(std::string_view name) const;

   private:
    friend class RegistryTree;
    std::string name_;
    std::string folded_;  // upper case, the sort key
    std::vector<std::unique_ptr<Key>> subkeys_;
    std::vector<std::unique_ptr<Value>> values_;
    std::map<std::string, Value*, std::less<>> by_name_;  // by upper-case name
    uint64_t next_order_ = 0;
  };

  RegistryTree();

  const Key& root() const { return *root_; }
  /// The key at `path`, or a null pointer.
  const Key* Find(std::string_view path) const;
  /// Carries out what one key of a registry-editor file says: creates or deletes the key, sets and deletes
  /// values. The root is never deleted, only emptied.
  void Apply(const formats::RegFileKey& change);
  /// Writes `key`, called `path` in the file, and all below it.
  static void Write(const Key& key, const std::string& path, formats::RegFileWriter& writer);

 private:
  static size_t Position(const Key& key, std::string_view folded);
  static void SetValue(Key& key, const formats::RegFileValue& value);
  static void DeleteValue(Key& key, std::string_view name);
  Key& Create(std::string_view path);
  void Delete(std::string_view path);

  std::unique_ptr<Key> root_;
};

/// Bytes of `text` in the code page, as the system's 8-bit calls count them: a character that the page does
/// not have counts as the one "?" that they would give.
uint32_t EightBitSize(std::string_view text, int code_page);

/// The name of a hive in registry-editor files.
std::string_view HiveName(Hive hive);

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_REGISTRY_TREE_H_
