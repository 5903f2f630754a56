#include "platform/testing/fake_registry.h"

#include <array>

#include "platform/testing/registry_dump.h"

namespace kw::platform::testing {
namespace {

class MemoryStore : public RegistryStore {
 public:
  Result<const RegistryTree*> Read(Hive hive) override { return &Tree(hive); }
  Status Change(Hive hive, const Decide& decide) override {
    KW_ASSIGN_OR_RETURN(const formats::RegFile change, decide(Tree(hive)));
    for (const formats::RegFileKey& key : change.keys) Tree(hive).Apply(key);
    return {};
  }

 private:
  RegistryTree& Tree(Hive hive) { return trees_[hive == Hive::kCurrentUser ? 0 : 1]; }
  std::array<RegistryTree, 2> trees_;
};

}  // namespace

FakeRegistry::FakeRegistry(int code_page) : StoredRegistry(std::make_shared<MemoryStore>(), code_page) {}

void FakeRegistry::Set(Hive hive, std::string_view path, std::string_view name, const RegistryValue& value) {
  CreateKey(hive, path, kKeyAll).value()->SetValue(name, value).IgnoreError();
}

void FakeRegistry::SetText(Hive hive, std::string_view path, std::string_view name, std::string_view text) {
  Set(hive, path, name, RegistryValue::OfText(text));
}

void FakeRegistry::SetDword(Hive hive, std::string_view path, std::string_view name, uint32_t number) {
  Set(hive, path, name, RegistryValue::OfDword(number));
}

void FakeRegistry::AddKey(Hive hive, std::string_view path) {
  CreateKey(hive, path, kKeyAll).status().IgnoreError();
}

bool FakeRegistry::HasKey(Hive hive, std::string_view path) { return OpenKey(hive, path, kKeyQuery).ok(); }

RegistryValue FakeRegistry::Get(Hive hive, std::string_view path, std::string_view name) {
  const auto key = OpenKey(hive, path, kKeyQuery);
  if (!key.ok()) return {};
  return (*key)->QueryValue(name, kAnyRegistrySize).value_or(RegistryValue());
}

std::vector<std::string> FakeRegistry::Dump(Hive hive, std::string_view path) {
  return DumpRegistry(*this, hive, path);
}

}  // namespace kw::platform::testing
