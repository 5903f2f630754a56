#include <windows.h>

#include <string>

#include "base/text.h"
#include "base/text_system.h"

namespace kw {
namespace {

char32_t MapCase(char32_t c, DWORD flags) {
  if (c >= 0x10000) return c;
  const wchar_t in = static_cast<wchar_t>(c);
  wchar_t out = 0;
  if (LCMapStringEx(LOCALE_NAME_INVARIANT, flags, &in, 1, &out, 1, nullptr, nullptr, 0) != 1) return c;
  return static_cast<char32_t>(out);
}

constexpr UINT kAscii = 20127;
constexpr char16_t kMeaningless = u'\uFFFD';

UINT PageOf(int code_page) { return code_page == 0 ? kAscii : static_cast<UINT>(code_page); }

std::u16string Wide(UINT page, DWORD flags, std::string_view bytes) {
  const int count = static_cast<int>(bytes.size());
  const int size = MultiByteToWideChar(page, flags, bytes.data(), count, nullptr, 0);
  std::u16string wide(static_cast<size_t>(size), u'\0');
  MultiByteToWideChar(page, flags, bytes.data(), count, reinterpret_cast<wchar_t*>(wide.data()), size);
  return wide;
}

/// The character of a byte that the system calls invalid in the page: some it knows all the same, both ways.
char16_t CharacterOf(UINT page, char byte) {
  const std::u16string wide = Wide(page, 0, std::string_view(&byte, 1));
  if (wide.size() != 1) return kMeaningless;
  char back[8] = {};
  const int size =
      WideCharToMultiByte(page, WC_NO_BEST_FIT_CHARS, reinterpret_cast<const wchar_t*>(wide.data()), 1, back,
                          sizeof back, nullptr, nullptr);
  return size == 1 && back[0] == byte ? wide[0] : kMeaningless;
}

/// Text in which some bytes mean nothing.
std::u16string WideByCharacters(UINT page, std::string_view bytes) {
  std::u16string wide;
  while (!bytes.empty()) {
    const bool leads = IsDBCSLeadByteEx(page, static_cast<BYTE>(bytes[0])) != FALSE;
    const std::string_view one = bytes.substr(0, leads ? 2 : 1);
    const std::u16string character = Wide(page, MB_ERR_INVALID_CHARS, one);
    if (!character.empty()) {
      wide += character;
      bytes.remove_prefix(one.size());
    } else {
      wide += leads ? kMeaningless : CharacterOf(page, bytes[0]);
      bytes.remove_prefix(1);
    }
  }
  return wide;
}

}  // namespace

char32_t SystemUpper(char32_t c) { return MapCase(c, LCMAP_UPPERCASE); }
char32_t SystemLower(char32_t c) { return MapCase(c, LCMAP_LOWERCASE); }

Result<std::string> Utf8ToCodePage(std::string_view utf8, int code_page) {
  if (utf8.empty() || code_page == 65001) return std::string(utf8);
  const std::u16string wide = Utf8ToUtf16(utf8);
  const auto* chars = reinterpret_cast<const wchar_t*>(wide.data());
  const int count = static_cast<int>(wide.size());
  const UINT page = PageOf(code_page);
  const int size =
      WideCharToMultiByte(page, WC_NO_BEST_FIT_CHARS, chars, count, nullptr, 0, nullptr, nullptr);
  if (size <= 0) {
    return {kErrorUnsupported, "Code page " + std::to_string(code_page) + " is not known to this system."};
  }
  std::string out(static_cast<size_t>(size), '\0');
  BOOL replaced = FALSE;
  WideCharToMultiByte(page, WC_NO_BEST_FIT_CHARS, chars, count, out.data(), size, nullptr, &replaced);
  bool lost = replaced != FALSE;
  if (page == kAscii) {
    for (const char16_t c : wide) lost = lost || c >= 0x80;
  }
  if (lost) {
    return {kErrorUnrepresentableText, "The text \"" + std::string(utf8) +
                                           "\" holds a character that code page " +
                                           std::to_string(code_page) + " does not have."};
  }
  return out;
}

std::string CodePageToUtf8(std::string_view bytes, int code_page) {
  if (bytes.empty()) return {};
  if (code_page == 65001) return Utf16ToUtf8(Utf8ToUtf16(bytes));
  const UINT page = PageOf(code_page);
  if (page == kAscii) {
    // The system leaves the high bit away.
    std::u16string wide;
    for (const char byte : bytes) wide += static_cast<unsigned char>(byte) < 0x80 ? byte : kMeaningless;
    return Utf16ToUtf8(wide);
  }
  std::u16string wide = Wide(page, MB_ERR_INVALID_CHARS, bytes);
  if (wide.empty()) {
    // Pages with shifts cannot tell what is invalid in them.
    const bool tells = GetLastError() == ERROR_NO_UNICODE_TRANSLATION;
    wide = tells ? WideByCharacters(page, bytes) : Wide(page, 0, bytes);
  }
  return wide.empty() ? CodePageToUtf8(bytes, 28591) : Utf16ToUtf8(wide);
}

bool CodePageIsKnown(int code_page) { return IsValidCodePage(PageOf(code_page)) != FALSE; }

}  // namespace kw
