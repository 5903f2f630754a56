#include "platform/shared/registry_tree.h"

#include <algorithm>

#include "base/text.h"

namespace kw::platform {
namespace {

// Calls `visit` with each part of a path that is not empty, until it gives false.
template <typename Visit>
void ForEachPart(std::string_view path, Visit visit) {
  while (!path.empty()) {
    const size_t end = path.find('\\');
    const std::string_view part = path.substr(0, end);
    path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
    if (!part.empty() && !visit(part)) return;
  }
}

// Keys are nested as deep as the system allows; deeper paths, which only a damaged file can hold, are cut.
constexpr int kMaxDepth = 512;

}  // namespace

const RegistryTree::Value* RegistryTree::Key::FindValue(std::string_view name) const {
  const auto hit = by_name_.find(ToUpper(name));
  return hit == by_name_.end() ? nullptr : hit->second;
}

RegistryTree::RegistryTree() : root_(std::make_unique<Key>("", "")) {}

size_t RegistryTree::Position(const Key& key, std::string_view folded) {
  const auto& keys = key.subkeys_;
  const auto hit =
      std::lower_bound(keys.begin(), keys.end(), folded,
                       [](const std::unique_ptr<Key>& k, std::string_view f) { return k->folded_ < f; });
  return static_cast<size_t>(hit - keys.begin());
}

const RegistryTree::Key* RegistryTree::Find(std::string_view path) const {
  const Key* key = root_.get();
  ForEachPart(path, [&](std::string_view part) {
    const std::string folded = ToUpper(part);
    const size_t at = Position(*key, folded);
    const bool found = at < key->subkeys_.size() && key->subkeys_[at]->folded_ == folded;
    key = found ? key->subkeys_[at].get() : nullptr;
    return found;
  });
  return key;
}

RegistryTree::Key& RegistryTree::Create(std::string_view path) {
  Key* key = root_.get();
  int depth = 0;
  ForEachPart(path, [&](std::string_view part) {
    std::string folded = ToUpper(part);
    const size_t at = Position(*key, folded);
    if (at == key->subkeys_.size() || key->subkeys_[at]->folded_ != folded) {
      key->subkeys_.insert(key->subkeys_.begin() + static_cast<std::ptrdiff_t>(at),
                           std::make_unique<Key>(std::string(part), std::move(folded)));
    }
    key = key->subkeys_[at].get();
    return ++depth < kMaxDepth;
  });
  return *key;
}

void RegistryTree::Delete(std::string_view path) {
  Key* parent = nullptr;
  Key* key = root_.get();
  size_t position = 0;
  ForEachPart(path, [&](std::string_view part) {
    const std::string folded = ToUpper(part);
    parent = key;
    position = Position(*key, folded);
    const bool found = position < key->subkeys_.size() && key->subkeys_[position]->folded_ == folded;
    key = found ? key->subkeys_[position].get() : nullptr;
    return found;
  });
  if (key == nullptr) return;
  if (parent == nullptr) {
    root_ = std::make_unique<Key>("", "");
  } else {
    parent->subkeys_.erase(parent->subkeys_.begin() + static_cast<std::ptrdiff_t>(position));
  }
}

void RegistryTree::SetValue(Key& key, const formats::RegFileValue& value) {
  Value*& slot = key.by_name_[ToUpper(value.name)];
  if (slot == nullptr) {
    key.values_.push_back(std::make_unique<Value>());
    slot = key.values_.back().get();
    slot->name = value.name;
    slot->order = key.next_order_++;
  }
  slot->type = value.type;
  slot->data = value.data;
}

void RegistryTree::DeleteValue(Key& key, std::string_view name) {
  const auto hit = key.by_name_.find(ToUpper(name));
  if (hit == key.by_name_.end()) return;
  // The values stand in order of creation, so their place is found by it.
  const auto at =
      std::lower_bound(key.values_.begin(), key.values_.end(), hit->second->order,
                       [](const std::unique_ptr<Value>& v, uint64_t order) { return v->order < order; });
  key.by_name_.erase(hit);
  key.values_.erase(at);
}

void RegistryTree::Apply(const formats::RegFileKey& change) {
  if (change.deleted) return Delete(change.path);
  Key& key = Create(change.path);
  for (const formats::RegFileValue& value : change.values) {
    if (value.deleted) {
      DeleteValue(key, value.name);
    } else {
      SetValue(key, value);
    }
  }
}

void RegistryTree::Write(const Key& key, const std::string& path, formats::RegFileWriter& writer) {
  writer.AddKey(path);
  for (const auto& value : key.values_) writer.AddValue(value->name, value->type, value->data);
  for (const auto& subkey : key.subkeys_) Write(*subkey, path + "\\" + subkey->name_, writer);
}

uint32_t EightBitSize(std::string_view text, int code_page) {
  if (const auto whole = Utf8ToCodePage(text, code_page); whole.ok()) {
    return static_cast<uint32_t>(whole->size());
  }
  uint32_t size = 0;
  for (size_t begin = 0; begin < text.size();) {
    size_t end = begin + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
    const auto one = Utf8ToCodePage(text.substr(begin, end - begin), code_page);
    size += one.ok() ? static_cast<uint32_t>(one->size()) : 1;
    begin = end;
  }
  return size;
}

std::string_view HiveName(Hive hive) {
  return hive == Hive::kCurrentUser ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE";
}

}  // namespace kw::platform
