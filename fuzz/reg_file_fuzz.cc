#include <cstdint>
#include <string_view>

#include "formats/reg_file.h"
#include "fuzz/expect.h"

namespace {

std::string Written(const kw::formats::RegFile& file) {
  kw::formats::RegFileWriter writer;
  for (const auto& key : file.keys) {
    if (key.deleted) {
      writer.AddKeyDeletion(key.path);
      continue;
    }
    writer.AddKey(key.path);
    for (const auto& value : key.values) {
      if (value.deleted) {
        writer.AddValueDeletion(value.name);
      } else {
        writer.AddValue(value.name, value.type, value.data);
      }
    }
  }
  return writer.File();
}

}  // namespace

// Whatever was read is written so that it reads the same.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kw::fuzz::Expect;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto file = kw::formats::ParseRegFile(bytes, 1252);
  if (!file.ok()) return 0;
  const std::string written = Written(*file);
  const auto again = kw::formats::ParseRegFile(written, 1252);
  Expect(again.ok(), "what was written is a file");
  Expect(again->bad_lines == 0, "every written line is read");
  Expect(again->keys.size() == file->keys.size(), "every key is read");
  Expect(Written(*again) == written, "it is written the same again");
  return 0;
}
