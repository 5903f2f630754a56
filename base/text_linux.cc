#include <iconv.h>
#include <locale.h>
#include <wctype.h>

#include <cerrno>
#include <string>

#include "base/text.h"
#include "base/text_system.h"

namespace kw {
namespace {

locale_t CaseLocale() {
  static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return locale;
}

std::string IconvName(int code_page) {
  switch (code_page) {
    case 0:
    case 20127:
      return "ASCII";
    case 65001:
      return "UTF-8";
    case 28591:
      return "ISO-8859-1";
    case 950:
      return "BIG5-HKSCS";
    case 20866:
      return "KOI8-R";
    default:
      if (code_page > 28591 && code_page <= 28606) return "ISO-8859-" + std::to_string(code_page - 28590);
      return "CP" + std::to_string(code_page);
  }
}

class Converter {
 public:
  Converter(const std::string& to, const std::string& from) : handle_(iconv_open(to.c_str(), from.c_str())) {}
  ~Converter() {
    if (ok()) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  bool ok() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // Converts `text`; where a sequence does not convert, `substitute` is put in and one byte skipped, or the
  // whole conversion fails when there is no substitute.
  bool Convert(std::string_view text, const char* substitute, std::string& out) {
    char* in = const_cast<char*>(text.data());
    size_t in_left = text.size();
    char buffer[512];
    while (in_left > 0) {
      char* to = buffer;
      size_t to_left = sizeof buffer;
      const size_t rc = iconv(handle_, &in, &in_left, &to, &to_left);
      out.append(buffer, sizeof buffer - to_left);
      if (rc != static_cast<size_t>(-1)) continue;
      if (errno == E2BIG) continue;
      if (substitute == nullptr) return false;
      out += substitute;
      ++in;
      --in_left;
    }
    char* to = buffer;
    size_t to_left = sizeof buffer;
    iconv(handle_, nullptr, nullptr, &to, &to_left);
    out.append(buffer, sizeof buffer - to_left);
    return true;
  }

 private:
  iconv_t handle_;
};

bool IsAscii(std::string_view text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

}  // namespace

char32_t SystemUpper(char32_t c) {
  return static_cast<char32_t>(towupper_l(static_cast<wint_t>(c), CaseLocale()));
}

char32_t SystemLower(char32_t c) {
  return static_cast<char32_t>(towlower_l(static_cast<wint_t>(c), CaseLocale()));
}

Result<std::string> Utf8ToCodePage(std::string_view utf8, int code_page) {
  if (IsAscii(utf8)) return std::string(utf8);
  Converter converter(IconvName(code_page), "UTF-8");
  std::string out;
  if (!converter.ok()) {
    return {kErrorUnsupported, "Code page " + std::to_string(code_page) + " is not known to this system."};
  }
  if (!converter.Convert(utf8, nullptr, out)) {
    return {kErrorUnrepresentableText, "The text \"" + std::string(utf8) +
                                           "\" holds a character that code page " +
                                           std::to_string(code_page) + " does not have."};
  }
  return out;
}

std::string CodePageToUtf8(std::string_view bytes, int code_page) {
  if (IsAscii(bytes)) return std::string(bytes);
  // The system's converter lets characters beyond Unicode pass.
  if (code_page == 65001) return Utf16ToUtf8(Utf8ToUtf16(bytes));
  Converter converter("UTF-8", IconvName(code_page));
  std::string out;
  if (!converter.ok()) return CodePageToUtf8(bytes, 28591);
  converter.Convert(bytes, "\xEF\xBF\xBD", out);
  return out;
}

bool CodePageIsKnown(int code_page) { return Converter("UTF-8", IconvName(code_page)).ok(); }

}  // namespace kw
