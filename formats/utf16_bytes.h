#ifndef KITWRIGHT_FORMATS_UTF16_BYTES_H_
#define KITWRIGHT_FORMATS_UTF16_BYTES_H_

#include <string>
#include <string_view>

namespace kw::formats {

inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
inline constexpr std::string_view kUtf16LittleMark = "\xFF\xFE";
inline constexpr std::string_view kUtf16BigMark = "\xFE\xFF";

/// UTF-8 of UTF-16LE bytes; an odd last byte is left out.
std::string Utf16LeBytesToUtf8(std::string_view bytes);
/// UTF-16LE bytes of UTF-8.
std::string Utf8ToUtf16LeBytes(std::string_view utf8);
/// The bytes with each pair swapped: UTF-16BE to UTF-16LE and back; an odd last byte stays.
std::string SwapBytePairs(std::string_view bytes);

}  // namespace kw::formats

#endif  // KITWRIGHT_FORMATS_UTF16_BYTES_H_
