#include <cstdint>
#include <string_view>

#include "formats/ini_file.h"
#include "formats/utf16_bytes.h"
#include "fuzz/expect.h"

// The first byte picks the code page. What is not changed keeps its bytes; what was written is read again.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kw::formats::IniFile;
  using kw::fuzz::Expect;
  if (size == 0) return 0;
  const int code_page = data[0] % 2 == 0 ? 1252 : 932;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  IniFile file = IniFile::Parse(bytes, code_page);
  // Unpaired surrogates are the one thing that UTF-16 text loses.
  if (!bytes.starts_with(kw::formats::kUtf16LittleMark)) Expect(file.Serialize() == bytes, "bytes are kept");
  for (const std::string& name : file.SectionNames()) file.Read(name, "Product");
  Expect(file.Write("Startup", "Product", "x").ok(), "plain text is written");
  Expect(file.Read("startup", "PRODUCT") == "x", "what was written is read");
  const IniFile again = IniFile::Parse(file.Serialize(), code_page);
  Expect(again.Read("Startup", "Product") == "x", "what was written is read from the bytes");
  file.DeleteKey("Startup", "Product");
  const size_t sections = file.SectionNames().size();
  file.DeleteSection("Startup");
  Expect(file.SectionNames().size() == sections - 1, "one section is deleted");
  return 0;
}
