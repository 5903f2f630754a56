#include "platform/testing/registry_dump.h"

#include "base/text.h"
#include "formats/reg_file.h"

namespace kw::platform::testing {
namespace {

void AddTree(Registry& registry, Hive hive, const std::string& path, formats::RegFileWriter& writer) {
  const auto key = registry.OpenKey(hive, path, kKeyQuery);
  if (!key.ok()) return;
  writer.AddKey(path);
  for (uint32_t index = 0;; ++index) {
    const auto value = (*key)->EnumValue(index, kAnyRegistrySize);
    if (!value.ok()) break;
    writer.AddValue(value->name, value->value.type, value->value.data);
  }
  for (uint32_t index = 0;; ++index) {
    const auto name = (*key)->EnumKey(index, kAnyRegistrySize);
    if (!name.ok()) break;
    AddTree(registry, hive, path.empty() ? *name : path + "\\" + *name, writer);
  }
}

}  // namespace

std::vector<std::string> DumpRegistry(Registry& registry, Hive hive, std::string_view path) {
  formats::RegFileWriter writer;
  AddTree(registry, hive, std::string(path), writer);
  std::vector<std::string> lines;
  for (const std::string& line : Split(ReplaceAll(writer.lines(), "\r", ""), '\n')) {
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

}  // namespace kw::platform::testing
