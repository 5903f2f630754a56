#include "formats/utf16_bytes.h"

#include <utility>

#include "base/text.h"

namespace kw::formats {

std::string Utf16LeBytesToUtf8(std::string_view bytes) {
  std::u16string wide;
  wide.reserve(bytes.size() / 2);
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    wide += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                  (static_cast<unsigned char>(bytes[i + 1]) << 8));
  }
  return Utf16ToUtf8(wide);
}

std::string Utf8ToUtf16LeBytes(std::string_view utf8) {
  const std::u16string wide = Utf8ToUtf16(utf8);
  std::string bytes;
  bytes.reserve(wide.size() * 2);
  for (const char16_t unit : wide) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

std::string SwapBytePairs(std::string_view bytes) {
  std::string swapped(bytes);
  for (size_t i = 0; i + 1 < swapped.size(); i += 2) std::swap(swapped[i], swapped[i + 1]);
  return swapped;
}

}  // namespace kw::formats
