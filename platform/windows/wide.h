#ifndef KITWRIGHT_PLATFORM_WINDOWS_WIDE_H_
#define KITWRIGHT_PLATFORM_WINDOWS_WIDE_H_

#include <string>
#include <string_view>

#include "base/text.h"

namespace kw::platform::windows {

// Text of the system's 16-bit calls. wchar_t has 16 bits there.

/// UTF-16 of UTF-8 text.
inline std::wstring Wide(std::string_view utf8) {
  const std::u16string text = Utf8ToUtf16(utf8);
  return {text.begin(), text.end()};
}

/// UTF-8 of UTF-16 text.
inline std::string Narrow(std::wstring_view wide) {
  return Utf16ToUtf8(std::u16string(wide.begin(), wide.end()));
}

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_WIDE_H_
