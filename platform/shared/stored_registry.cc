#include "platform/shared/stored_registry.h"

#include "base/text.h"

namespace kw::platform {
namespace {

using formats::RegFile;
using formats::RegFileKey;
using formats::RegFileValue;

std::string FullName(Hive hive, std::string_view path) {
  return std::string(HiveName(hive)) + "\\" + std::string(path);
}

class StoredKey : public RegistryKey {
 public:
  StoredKey(std::shared_ptr<RegistryStore> store, Hive hive, std::string_view path, uint32_t access,
            int code_page)
      : store_(std::move(store)), hive_(hive), path_(path), access_(access), code_page_(code_page) {}

  Result<RegistryValue> QueryValue(std::string_view name, uint32_t buffer_size) override {
    KW_ASSIGN_OR_RETURN(const RegistryTree::Key* const key, Readable());
    const RegistryTree::Value* const found = key->FindValue(name);
    if (found == nullptr) return NoValue(name);
    RegistryValue value = ToValue(*found);
    if (value.size > buffer_size) return TooLong(name);
    return value;
  }

  Status SetValue(std::string_view name, const RegistryValue& value) override {
    if (!(access_ & kKeySet)) return Denied();
    if (!IsValidUtf8(name) || (formats::RegTypeIsText(value.type) && !IsValidUtf8(value.data))) {
      return {kErrorInvalidParameter, "A value for the registry key " + Name() + " is no UTF-8 text."};
    }
    return store_->Change(hive_, [&](const RegistryTree& tree) -> Result<RegFile> {
      const RegistryTree::Key* const key = tree.Find(path_);
      if (key == nullptr) return Deleted();
      const RegistryTree::Value* const old = key->FindValue(name);
      if (old != nullptr && old->type == value.type && old->data == value.data) return RegFile{};
      return OneChange(RegFileValue{std::string(name), false, value.type, value.data});
    });
  }

  Status DeleteValue(std::string_view name) override {
    if (!(access_ & kKeySet)) return Denied();
    return store_->Change(hive_, [&](const RegistryTree& tree) -> Result<RegFile> {
      const RegistryTree::Key* const key = tree.Find(path_);
      if (key == nullptr) return Deleted();
      if (key->FindValue(name) == nullptr) return NoValue(name);
      return OneChange(RegFileValue{std::string(name), true, 0, {}});
    });
  }

  Result<std::string> EnumKey(uint32_t index, uint32_t buffer_size) override {
    KW_ASSIGN_OR_RETURN(const RegistryTree::Key* const key, Readable());
    if (index >= key->subkeys().size()) return NoMore();
    const std::string& name = key->subkeys()[index]->name();
    if (NameSize(name) > buffer_size) return TooLong(name);
    return name;
  }

  Result<NamedValue> EnumValue(uint32_t index, uint32_t buffer_size) override {
    KW_ASSIGN_OR_RETURN(const RegistryTree::Key* const key, Readable());
    if (index >= key->values().size()) return NoMore();
    NamedValue named;
    named.name = key->values()[index]->name;
    named.value = ToValue(*key->values()[index]);
    if (NameSize(named.name) > buffer_size || named.value.size > buffer_size) return TooLong(named.name);
    return named;
  }

  Result<Counts> QueryInfo() override {
    KW_ASSIGN_OR_RETURN(const RegistryTree::Key* const key, Readable());
    return Counts{static_cast<uint32_t>(key->subkeys().size()), static_cast<uint32_t>(key->values().size())};
  }

 private:
  Result<const RegistryTree::Key*> Readable() {
    if (!(access_ & kKeyQuery)) return Denied();
    KW_ASSIGN_OR_RETURN(const RegistryTree* const tree, store_->Read(hive_));
    const RegistryTree::Key* const key = tree->Find(path_);
    if (key == nullptr) return Deleted();
    return key;
  }

  RegFile OneChange(RegFileValue value) const {
    RegFile file;
    file.keys.push_back(RegFileKey{path_, false, {std::move(value)}});
    return file;
  }

  RegistryValue ToValue(const RegistryTree::Value& stored) const {
    RegistryValue value;
    value.type = stored.type;
    value.data = stored.data;
    value.size = formats::RegTypeIsText(stored.type) ? EightBitSize(stored.data, code_page_)
                                                     : static_cast<uint32_t>(stored.data.size());
    return value;
  }

  uint32_t NameSize(std::string_view name) const { return EightBitSize(name, code_page_) + 1; }

  Error Denied() const {
    return {kErrorAccessDenied, "The registry key " + Name() + " was not opened for this."};
  }
  Error Deleted() const { return {kErrorKeyDeleted, "The registry key " + Name() + " has been deleted."}; }
  Error NoMore() const { return {kErrorNoMoreItems, "The registry key " + Name() + " holds no more items."}; }
  Error NoValue(std::string_view value) const {
    return {kErrorFileNotFound,
            "The registry key " + Name() + " holds no value \"" + std::string(value) + "\"."};
  }
  Error TooLong(std::string_view item) const {
    return {kErrorMoreData,
            "\"" + std::string(item) + "\" of the registry key " + Name() + " is longer than the buffer."};
  }
  std::string Name() const { return FullName(hive_, path_); }

  std::shared_ptr<RegistryStore> store_;
  Hive hive_;
  std::string path_;
  uint32_t access_;
  int code_page_;
};

Error NoKey(Hive hive, std::string_view path) {
  return {kErrorFileNotFound, "There is no registry key " + FullName(hive, path) + "."};
}

}  // namespace

StoredRegistry::StoredRegistry(std::shared_ptr<RegistryStore> store, int code_page)
    : store_(std::move(store)), code_page_(code_page) {}

Result<std::unique_ptr<RegistryKey>> StoredRegistry::OpenKey(Hive hive, std::string_view path,
                                                             uint32_t access) {
  KW_ASSIGN_OR_RETURN(const RegistryTree* const tree, store_->Read(hive));
  if (tree->Find(path) == nullptr) return NoKey(hive, path);
  return std::unique_ptr<RegistryKey>(std::make_unique<StoredKey>(store_, hive, path, access, code_page_));
}

Result<std::unique_ptr<RegistryKey>> StoredRegistry::CreateKey(Hive hive, std::string_view path,
                                                               uint32_t access) {
  if (!IsValidUtf8(path) || path.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos) {
    return {kErrorInvalidParameter, "A registry key cannot be called " + FullName(hive, path) + "."};
  }
  KW_RETURN_IF_ERROR(store_->Change(hive, [&](const RegistryTree& tree) -> Result<RegFile> {
    RegFile file;
    if (tree.Find(path) == nullptr) file.keys.push_back(RegFileKey{std::string(path), false, {}});
    return file;
  }));
  return std::unique_ptr<RegistryKey>(std::make_unique<StoredKey>(store_, hive, path, access, code_page_));
}

Status StoredRegistry::DeleteKey(Hive hive, std::string_view path) {
  return store_->Change(hive, [&](const RegistryTree& tree) -> Result<RegFile> {
    const RegistryTree::Key* const key = tree.Find(path);
    if (key == nullptr) return NoKey(hive, path);
    if (key == &tree.root() || !key->subkeys().empty()) {
      return {kErrorAccessDenied, "The registry key " + FullName(hive, path) + " has subkeys."};
    }
    RegFile file;
    file.keys.push_back(RegFileKey{std::string(path), true, {}});
    return file;
  });
}

}  // namespace kw::platform
