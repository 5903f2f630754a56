#include "formats/xml_text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_set>
#include <utility>

#include "base/text.h"
#include "formats/utf16_bytes.h"

namespace kw::formats {
namespace {

// Everything is kept, and nothing in it is interpreted: no entities, no line ends, no blanks.
constexpr unsigned kParseFlags = pugi::parse_pi | pugi::parse_comments | pugi::parse_cdata |
                                 pugi::parse_ws_pcdata | pugi::parse_declaration | pugi::parse_doctype |
                                 pugi::parse_fragment;
constexpr unsigned kWriteFlags = pugi::format_raw | pugi::format_no_escapes | pugi::format_no_declaration;

// Deeper nesting is taken for an attack; what walks a document may then recurse.
constexpr int kMaxDepth = 1000;
constexpr int kUtf8 = 65001;
constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

struct NamedEntity {
  std::string_view name;
  char character;
};
constexpr std::array<NamedEntity, 5> kEntities = {
    {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};

bool IsXmlCharacter(uint32_t c) {
  if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
  return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF) && c != 0xFFFE && c != 0xFFFF;
}

// The number of a character reference without "&#" and ";", if it is one.
std::optional<uint32_t> CharacterNumber(std::string_view digits) {
  const bool hex = digits.starts_with('x');
  if (hex) digits.remove_prefix(1);
  if (digits.empty()) return std::nullopt;
  uint32_t number = 0;
  for (const char c : digits) {
    uint32_t digit = 99;
    if (c >= '0' && c <= '9') digit = static_cast<uint32_t>(c - '0');
    if (hex && c >= 'a' && c <= 'f') digit = static_cast<uint32_t>(c - 'a') + 10;
    if (hex && c >= 'A' && c <= 'F') digit = static_cast<uint32_t>(c - 'A') + 10;
    if (digit == 99) return std::nullopt;
    number = number * (hex ? 16 : 10) + digit;
    if (number > 0x10FFFF) return std::nullopt;
  }
  if (!IsXmlCharacter(number)) return std::nullopt;
  return number;
}

std::string Utf8Of(uint32_t character) {
  std::u16string wide;
  if (character >= 0x10000) {
    wide += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
    wide += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
  } else {
    wide += static_cast<char16_t>(character);
  }
  return Utf16ToUtf8(wide);
}

bool ReferencesAreGood(std::string_view raw, bool has_doctype) {
  for (size_t at = raw.find('&'); at != std::string_view::npos; at = raw.find('&', at + 1)) {
    const size_t end = raw.find(';', at);
    if (end == std::string_view::npos) return false;
    const std::string_view name = raw.substr(at + 1, end - at - 1);
    if (name.empty()) return false;
    if (name.front() == '#') {
      if (!CharacterNumber(name.substr(1))) return false;
      continue;
    }
    if (name.find_first_of(" \t\r\n&<\"'") != std::string_view::npos) return false;
    const bool known = std::any_of(kEntities.begin(), kEntities.end(),
                                   [&](const NamedEntity& entity) { return entity.name == name; });
    if (!known && !has_doctype) return false;
  }
  return true;
}

std::string Resolve(std::string_view raw) {
  std::string out;
  for (size_t i = 0; i < raw.size(); ++i) {
    if (raw[i] == '\r') {
      out += '\n';
      if (i + 1 < raw.size() && raw[i + 1] == '\n') ++i;
      continue;
    }
    const size_t end = raw[i] == '&' ? raw.find(';', i) : std::string_view::npos;
    if (end == std::string_view::npos) {
      out += raw[i];
      continue;
    }
    const std::string_view name = raw.substr(i + 1, end - i - 1);
    const auto entity = std::find_if(kEntities.begin(), kEntities.end(),
                                     [&](const NamedEntity& e) { return e.name == name; });
    if (name.starts_with('#')) {
      const auto number = CharacterNumber(name.substr(1));
      out += number ? Utf8Of(*number) : std::string(raw.substr(i, end - i + 1));
    } else if (entity != kEntities.end()) {
      out += entity->character;
    } else {
      out += raw.substr(i, end - i + 1);
    }
    i = end;
  }
  return out;
}

std::string Escape(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>') {
      out += "&gt;";
    } else if (c == '\r') {
      out += "&#13;";
    } else if (!IsXmlCharacter(byte)) {
      out += kReplacementCharacter;
    } else {
      out += c;
    }
  }
  return out;
}

// The encoding that the declaration at the start of 8-bit text names; "" without one.
std::string DeclaredEncoding(std::string_view bytes) {
  if (!bytes.starts_with("<?xml") || bytes.find_first_of(" \t\r\n") != 5) return {};
  std::string_view head = bytes.substr(0, bytes.find("?>"));
  const size_t at = head.find("encoding");
  if (at == std::string_view::npos) return {};
  const size_t open = head.find_first_of("\"'", at);
  if (open == std::string_view::npos) return {};
  const size_t close = head.find(head[open], open + 1);
  if (close == std::string_view::npos) return {};
  return ToUpper(head.substr(open + 1, close - open - 1));
}

// The code page of an encoding's name, or nothing when it is none of the 8-bit ones.
std::optional<int> CodePageOfName(const std::string& name) {
  static constexpr std::pair<std::string_view, int> kNames[] = {
      {"", kUtf8},  {"UTF-8", kUtf8}, {"US-ASCII", 20127}, {"SHIFT_JIS", 932}, {"GB2312", 936},
      {"GBK", 936}, {"EUC-KR", 949},  {"BIG5", 950},       {"KOI8-R", 20866}};
  for (const auto& [known, page] : kNames) {
    if (name == known) return page;
  }
  for (const auto& [prefix, base] : {std::pair<std::string_view, int>{"WINDOWS-", 0}, {"ISO-8859-", 28590}}) {
    if (name.starts_with(prefix)) {
      const int page = base + static_cast<int>(LeadingInteger(name.substr(prefix.size())));
      if (page > 0 && CodePageIsKnown(page)) return page;
    }
  }
  return std::nullopt;
}

class Checker {
 public:
  explicit Checker(const pugi::xml_document& document) : document_(document) {}

  // The first node that makes the document not well-formed, and what is wrong there.
  struct Fault {
    pugi::xml_node node;
    const char* what;
  };
  std::optional<Fault> Check() {
    bool has_root = false;
    for (const pugi::xml_node node : document_) {
      const pugi::xml_node_type type = node.type();
      if (type == pugi::node_element && std::exchange(has_root, true)) return Fault{node, "a second root"};
      if (type == pugi::node_declaration && node.previous_sibling()) {
        return Fault{node, "a declaration that is not at the start"};
      }
      if (type == pugi::node_doctype && (has_root || std::exchange(has_doctype_, true))) {
        return Fault{node, "a document type out of its place"};
      }
      const std::string_view value = node.value();
      if (type == pugi::node_cdata ||
          (type == pugi::node_pcdata && value.find_first_not_of(" \t\r\n") != std::string_view::npos)) {
        return Fault{node, "text outside the root"};
      }
    }
    if (!has_root) return Fault{document_, "no root"};
    return CheckNodes();
  }

 private:
  std::optional<Fault> CheckNodes() {
    int depth = 0;
    for (pugi::xml_node node = document_.first_child(); node;) {
      if (const char* what = FaultOf(node)) return Fault{node, what};
      if (node.first_child()) {
        if (++depth > kMaxDepth) return Fault{node, "too deep a nesting"};
        node = node.first_child();
        continue;
      }
      while (node && !node.next_sibling()) {
        node = node.parent();
        if (--depth < 0) return std::nullopt;
      }
      node = node.next_sibling();
    }
    return std::nullopt;
  }

  const char* FaultOf(pugi::xml_node node) {
    const std::string_view value = node.value();
    switch (node.type()) {
      case pugi::node_element:
        return FaultOfAttributes(node);
      case pugi::node_pcdata:
        if (value.find("]]>") != std::string_view::npos) return "a stray end of a CDATA section";
        return ReferencesAreGood(value, has_doctype_) ? nullptr : "a bad reference";
      case pugi::node_comment:
        return value.find("--") != std::string_view::npos || value.ends_with('-') ? "a bad comment" : nullptr;
      case pugi::node_declaration:
        return node.parent() == document_ ? nullptr : "a declaration inside";
      case pugi::node_doctype:
        return node.parent() == document_ ? nullptr : "a document type inside";
      default:
        return nullptr;
    }
  }

  const char* FaultOfAttributes(pugi::xml_node node) {
    std::unordered_set<std::string_view> names;
    for (const pugi::xml_attribute attribute : node.attributes()) {
      if (!names.insert(attribute.name()).second) return "an attribute twice";
      const std::string_view value = attribute.value();
      if (value.find('<') != std::string_view::npos) return "a bad attribute";
      if (!ReferencesAreGood(value, has_doctype_)) return "a bad reference";
    }
    return nullptr;
  }

  const pugi::xml_document& document_;
  bool has_doctype_ = false;
};

// Values are written between double quotes, whatever they stood in.
void ProtectQuotes(pugi::xml_node root) {
  for (pugi::xml_node node = root.first_child(); node;) {
    for (pugi::xml_attribute attribute : node.attributes()) {
      const std::string_view value = attribute.value();
      if (value.find('"') != std::string_view::npos) {
        attribute.set_value(ReplaceAll(value, "\"", "&quot;").c_str());
      }
    }
    if (node.first_child()) {
      node = node.first_child();
      continue;
    }
    while (node && node != root && !node.next_sibling()) node = node.parent();
    if (node == root) break;
    node = node.next_sibling();
  }
}

Error Fault(std::string_view text, ptrdiff_t offset, const std::string& what) {
  const size_t end = offset < 0 ? 0 : std::min(static_cast<size_t>(offset), text.size());
  const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<ptrdiff_t>(end), '\n');
  return {kErrorInvalidData, "The XML text has " + what + " in line " + std::to_string(line) + "."};
}

struct StringWriter : pugi::xml_writer {
  std::string text;
  void write(const void* data, size_t size) override { text.append(static_cast<const char*>(data), size); }
};

}  // namespace

Result<std::unique_ptr<XmlText>> XmlText::Parse(std::string_view bytes) {
  auto xml = std::make_unique<XmlText>();
  std::string text;
  if (bytes.starts_with(kUtf16LittleMark) || bytes.starts_with(kUtf16BigMark)) {
    const bool little = bytes.starts_with(kUtf16LittleMark);
    xml->encoding_ = little ? kUtf16Little : kUtf16Big;
    const std::string units = little ? std::string(bytes.substr(2)) : SwapBytePairs(bytes.substr(2));
    text = Utf16LeBytesToUtf8(units);
    // Half a character would be saved as another one.
    if (Utf8ToUtf16LeBytes(text) != units) {
      return {kErrorInvalidData, "The XML text holds bytes that are no UTF-16."};
    }
  } else {
    xml->utf8_mark_ = bytes.starts_with(kUtf8Mark);
    if (xml->utf8_mark_) {
      bytes.remove_prefix(kUtf8Mark.size());
    } else {
      const std::string name = DeclaredEncoding(bytes);
      const auto page = CodePageOfName(name);
      if (!page) return {kErrorInvalidData, "The XML text is not in its encoding \"" + name + "\"."};
      xml->encoding_ = *page;
    }
    if (xml->encoding_ == kUtf8 && !IsValidUtf8(bytes)) {
      return {kErrorInvalidData, "The XML text holds bytes that are no UTF-8."};
    }
    text = CodePageToUtf8(bytes, xml->encoding_);
    if (xml->encoding_ != kUtf8 && text.find(kReplacementCharacter) != std::string::npos) {
      return {kErrorInvalidData, "The XML text holds bytes that its encoding does not have."};
    }
  }
  KW_RETURN_IF_ERROR(xml->Load(std::move(text)));
  if (xml->encoding_ >= 0 && !xml->utf8_mark_) {
    const pugi::xml_node first = xml->document_.first_child();
    const bool declared = first.type() == pugi::node_declaration;
    if (ToUpper(declared ? first.attribute("encoding").value() : "") != DeclaredEncoding(bytes)) {
      return {kErrorInvalidData, "The XML text has a bad declaration in line 1."};
    }
  }
  return xml;
}

Status XmlText::Load(std::string text) {
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (!IsXmlCharacter(byte)) return Fault(text, static_cast<ptrdiff_t>(i), "a forbidden character");
  }
  const pugi::xml_parse_result result =
      document_.load_buffer(text.data(), text.size(), kParseFlags, pugi::encoding_utf8);
  if (!result) return Fault(text, result.offset, "a fault");
  if (const auto fault = Checker(document_).Check()) {
    return Fault(text, fault->node.offset_debug(), fault->what);
  }
  ProtectQuotes(document_);
  return {};
}

std::string XmlText::TextOf(pugi::xml_node node) {
  std::string text;
  for (const pugi::xml_node child : node) {
    switch (child.type()) {
      case pugi::node_pcdata:
        text += Resolve(child.value());
        break;
      case pugi::node_cdata:
        text += ReplaceAll(ReplaceAll(child.value(), "\r\n", "\n"), "\r", "\n");
        break;
      case pugi::node_element:
        text += TextOf(child);
        break;
      default:
        break;
    }
  }
  return text;
}

void XmlText::SetText(pugi::xml_node node, std::string_view text) {
  node.remove_children();
  if (!text.empty()) node.append_child(pugi::node_pcdata).set_value(Escape(text).c_str());
}

std::string XmlText::Serialize() const {
  StringWriter writer;
  document_.save(writer, "", kWriteFlags, pugi::encoding_utf8);
  switch (encoding_) {
    case kUtf16Little:
      return std::string(kUtf16LittleMark) + Utf8ToUtf16LeBytes(writer.text);
    case kUtf16Big:
      return std::string(kUtf16BigMark) + SwapBytePairs(Utf8ToUtf16LeBytes(writer.text));
    case kUtf8:
      return utf8_mark_ ? std::string(kUtf8Mark) + writer.text : writer.text;
    default:
      break;
  }
  if (auto whole = Utf8ToCodePage(writer.text, encoding_); whole.ok()) return std::move(*whole);
  std::string bytes;
  for (size_t begin = 0; begin < writer.text.size();) {
    size_t end = begin + 1;
    while (end < writer.text.size() && (static_cast<unsigned char>(writer.text[end]) & 0xC0) == 0x80) ++end;
    const std::string_view character = std::string_view(writer.text).substr(begin, end - begin);
    if (auto one = Utf8ToCodePage(character, encoding_); one.ok()) {
      bytes += *one;
    } else {
      const std::u16string wide = Utf8ToUtf16(character);
      uint32_t number = wide[0];
      if (wide.size() == 2) number = 0x10000 + ((number - 0xD800) << 10) + (wide[1] - 0xDC00u);
      bytes += "&#" + std::to_string(number) + ";";
    }
    begin = end;
  }
  return bytes;
}

}  // namespace kw::formats
