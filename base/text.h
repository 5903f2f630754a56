#ifndef KITWRIGHT_BASE_TEXT_H_
#define KITWRIGHT_BASE_TEXT_H_

#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace kw {

// Text in the core is UTF-8 in std::string. 8-bit text of files and of closed libraries is in a Windows code
// page, named by its number (1252, 932, 65001); 16-bit text is UTF-16.

/// UTF-16 of UTF-8. Bytes that are no UTF-8 become U+FFFD.
std::u16string Utf8ToUtf16(std::string_view utf8);
/// UTF-8 of UTF-16. Unpaired surrogates become U+FFFD.
std::string Utf16ToUtf8(std::u16string_view utf16);
/// True if `text` is well-formed UTF-8.
bool IsValidUtf8(std::string_view text);

/// `utf8` in code page `code_page` (0 means the neutral page: ASCII only; 65001 is UTF-8). Fails with
/// kErrorUnrepresentableText when a character has no place in the page; nothing is replaced or dropped.
Result<std::string> Utf8ToCodePage(std::string_view utf8, int code_page);
/// UTF-8 of 8-bit text in `code_page`. Bytes that mean nothing in the page become U+FFFD.
std::string CodePageToUtf8(std::string_view bytes, int code_page);
/// True if this system can convert `code_page`.
bool CodePageIsKnown(int code_page);
/// The code page that Windows uses for 8-bit text under a locale such as 1033 (1252), 1041 (932).
int CodePageOfLocale(int locale);

/// Upper and lower case, one character to one, beyond ASCII too, independent of the user's locale.
std::string ToUpper(std::string_view utf8);
std::string ToLower(std::string_view utf8);

/// Comparisons without regard to case, beyond ASCII too. CompareNoCase gives <0, 0, >0 by the upper-case
/// characters' code points; it is the order of folder listings.
int CompareNoCase(std::string_view a, std::string_view b);
bool EqualsNoCase(std::string_view a, std::string_view b);
bool StartsWithNoCase(std::string_view text, std::string_view prefix);
bool EndsWithNoCase(std::string_view text, std::string_view suffix);

/// Orders names without regard to case; for maps and sets of file and key names.
struct LessNoCase {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const { return CompareNoCase(a, b) < 0; }
};

/// Number of characters (code points) of UTF-8 text.
size_t CharacterCount(std::string_view utf8);

/// `text` with every `from` replaced by `to`.
std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);
/// The parts of `text` between `separator`s; an empty text gives one empty part.
std::vector<std::string> Split(std::string_view text, char separator);
/// `text` without blanks and tabs at both ends.
std::string_view TrimBlanks(std::string_view text);

/// Leading integer of `text` as the classic number conversion reads it: blanks, a sign, digits; 0 without
/// digits; saturates at the limits of 64 bits.
long long LeadingInteger(std::string_view text);

}  // namespace kw

#endif  // KITWRIGHT_BASE_TEXT_H_
