#include <cstdint>
#include <string>
#include <string_view>

#include "formats/xml_text.h"
#include "fuzz/expect.h"

// What loads is saved so that it loads again with the same text, and is then saved the same.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kw::formats::XmlText;
  using kw::fuzz::Expect;
  const auto xml = XmlText::Parse(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!xml.ok()) return 0;
  const std::string text = XmlText::TextOf((*xml)->Root());
  const std::string saved = (*xml)->Serialize();
  const auto again = XmlText::Parse(saved);
  Expect(again.ok(), "what was saved loads");
  Expect(XmlText::TextOf((*again)->Root()) == text, "the text stays");
  Expect((*again)->Serialize() == saved, "it is saved the same again");
  XmlText::SetText((*again)->Root().last_child(), "a & <b>");
  while (!(*again)->Root().first_child().empty())
    (*again)->Root().remove_child((*again)->Root().first_child());
  return 0;
}
