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

UINT PageOf(int code_page) { return code_page == 0 ? 20127u : static_cast<UINT>(code_page); }

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
  if (page == 20127u) {
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
  const int count = static_cast<int>(bytes.size());
  const int size = MultiByteToWideChar(PageOf(code_page), 0, bytes.data(), count, nullptr, 0);
  if (size <= 0) return CodePageToUtf8(bytes, 28591);
  std::u16string wide(static_cast<size_t>(size), u'\0');
  MultiByteToWideChar(PageOf(code_page), 0, bytes.data(), count, reinterpret_cast<wchar_t*>(wide.data()),
                      size);
  return Utf16ToUtf8(wide);
}

bool CodePageIsKnown(int code_page) { return IsValidCodePage(PageOf(code_page)) != FALSE; }

}  // namespace kw
