#include "sample/libraries/site_list.h"

#include <pugixml.hpp>

#include "base/text.h"
#include "formats/utf16_bytes.h"

namespace kw::sample {
namespace {

using formats::kUtf16BigMark;
using formats::kUtf16LittleMark;

std::string TextOfBytes(const std::string& bytes) {
  std::u16string wide;
  for (const char c : bytes) wide += static_cast<unsigned char>(c);
  return Utf16ToUtf8(wide);
}

Result<std::string> BytesOfText(const std::string& utf8) {
  std::string bytes;
  for (const char16_t c : Utf8ToUtf16(utf8)) {
    if (c > 0xFF) {
      return Result<std::string>(kErrorUnrepresentableText, "The list's encoding lacks a character.");
    }
    bytes += static_cast<char>(c);
  }
  return bytes;
}

}  // namespace

SiteListText SiteListText::FromBytes(const std::string& bytes) {
  if (bytes.starts_with(kUtf16LittleMark))
    return {formats::Utf16LeBytesToUtf8(bytes.substr(2)), Spelling::kUtf16Little};
  if (bytes.starts_with(kUtf16BigMark))
    return {formats::Utf16LeBytesToUtf8(formats::SwapBytePairs(bytes.substr(2))), Spelling::kUtf16Big};
  if (IsValidUtf8(bytes)) return {bytes, Spelling::kUtf8};
  return {TextOfBytes(bytes), Spelling::kBytes};
}

Result<std::string> SiteListText::ToBytes() const {
  switch (spelling) {
    case Spelling::kUtf16Little:
      return std::string(kUtf16LittleMark) + formats::Utf8ToUtf16LeBytes(utf8);
    case Spelling::kUtf16Big:
      return std::string(kUtf16BigMark) + formats::SwapBytePairs(formats::Utf8ToUtf16LeBytes(utf8));
    case Spelling::kBytes:
      return BytesOfText(utf8);
    case Spelling::kUtf8:
      break;
  }
  return utf8;
}

std::string ChangedSiteList(const std::string& xml) {
  constexpr std::string_view kAttribute = " Version=\"";
  const size_t at = xml.find(kAttribute);
  const size_t from = at == std::string::npos ? at : at + kAttribute.size();
  const size_t to = from == std::string::npos ? from : xml.find('"', from);
  if (to == std::string::npos) return xml + "<!-- edited -->\n";
  const long long version = LeadingInteger(xml.substr(from, to - from));
  return xml.substr(0, from) + std::to_string(version + 1) + xml.substr(to);
}

std::string ComplaintAboutSiteList(const std::string& xml) {
  pugi::xml_document document;
  const pugi::xml_parse_result result =
      document.load_buffer(xml.data(), xml.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!result) return std::string("This is no list: ") + result.description() + ".";
  return document.document_element() ? "" : "This list is empty.";
}

}  // namespace kw::sample
