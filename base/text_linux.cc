#include <iconv.h>
#include <locale.h>
#include <wctype.h>

#include <cerrno>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "base/text.h"
#include "base/text_system.h"

namespace kw {
namespace {

/// Let go at the end, for a library that holds this code may be unloaded and loaded many times.
struct HeldLocale {
  const locale_t held = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  HeldLocale() = default;
  HeldLocale(const HeldLocale&) = delete;
  HeldLocale& operator=(const HeldLocale&) = delete;
  ~HeldLocale() { freelocale(held); }
};

locale_t CaseLocale() {
  static const HeldLocale locale;
  return locale.held;
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

/// A byte that a page's standard leaves open, and the character that Windows gives it all the same, both
/// ways.
struct OpenByte {
  int code_page;
  unsigned char byte;
  char16_t character;
};

// Beside the bytes below 0xA0 of one-byte pages, which become the control characters of the same number.
constexpr OpenByte kOpenBytes[] = {
    {874, 0xDB, 0xF8C1},  {874, 0xDC, 0xF8C2},  {874, 0xDD, 0xF8C3},  {874, 0xDE, 0xF8C4},
    {874, 0xFC, 0xF8C5},  {874, 0xFD, 0xF8C6},  {874, 0xFE, 0xF8C7},  {874, 0xFF, 0xF8C8},
    {932, 0x80, 0x0080},  {932, 0xA0, 0xF8F0},  {932, 0xFD, 0xF8F1},  {932, 0xFE, 0xF8F2},
    {932, 0xFF, 0xF8F3},  {936, 0xFF, 0xF8F5},  {949, 0x80, 0x0080},  {949, 0xFF, 0xF8F7},
    {950, 0x80, 0x0080},  {950, 0xFF, 0xF8F8},  {1253, 0xAA, 0xF8F9}, {1253, 0xD2, 0xF8FA},
    {1253, 0xFF, 0xF8FB}, {1255, 0xCA, 0x05BA}, {1255, 0xD9, 0xF88D}, {1255, 0xDA, 0xF88E},
    {1255, 0xDB, 0xF88F}, {1255, 0xDC, 0xF890}, {1255, 0xDD, 0xF891}, {1255, 0xDE, 0xF892},
    {1255, 0xDF, 0xF893}, {1255, 0xFB, 0xF894}, {1255, 0xFC, 0xF895}, {1255, 0xFF, 0xF896},
    {1257, 0xA1, 0xF8FC}, {1257, 0xA5, 0xF8FD},
};

bool OpensControls(int code_page) { return code_page == 874 || (code_page >= 1250 && code_page <= 1258); }

// The character of a byte that the system's converter refuses; U+FFFD for one that means nothing.
char16_t CharacterOfOpenByte(int code_page, unsigned char byte) {
  for (const OpenByte& open : kOpenBytes) {
    if (open.code_page == code_page && open.byte == byte) return open.character;
  }
  return OpensControls(code_page) && byte >= 0x80 && byte < 0xA0 ? byte : u'\uFFFD';
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

  // Converts `text`. `refused` puts in what stands for the front of a rest that does not convert and says how
  // many bytes that takes; 0 fails the conversion.
  template <typename Refused>
  bool Convert(std::string_view text, std::string& out, Refused refused) {
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);  // what a failed text left behind
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
      Finish(out);  // a page with combining characters holds one back
      const size_t taken = refused(std::string_view(in, in_left), out);
      if (taken == 0) return false;
      in += taken;
      in_left -= taken;
    }
    Finish(out);
    return true;
  }

 private:
  void Finish(std::string& out) {
    char buffer[16];
    char* to = buffer;
    size_t to_left = sizeof buffer;
    iconv(handle_, nullptr, nullptr, &to, &to_left);
    out.append(buffer, sizeof buffer - to_left);
  }

  iconv_t handle_;
};

// This thread's converter between UTF-8 and a code page, or nothing where the system knows none. They are
// kept: opening one takes longer than converting most texts.
Converter* ConverterOf(int code_page, bool to_utf8) {
  thread_local std::map<std::pair<int, bool>, std::unique_ptr<Converter>> kept;
  const auto found = kept.find({code_page, to_utf8});
  if (found != kept.end()) return found->second.get();
  const std::string name = IconvName(code_page);
  auto made = std::make_unique<Converter>(to_utf8 ? "UTF-8" : name, to_utf8 ? name : "UTF-8");
  if (!made->ok()) return nullptr;
  return kept.emplace(std::pair(code_page, to_utf8), std::move(made)).first->second.get();
}

// Bytes of the UTF-8 character at the front of `text`, which is not empty.
size_t SequenceSize(std::string_view text) {
  size_t size = 1;
  while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) ++size;
  return size;
}

bool IsAscii(std::string_view text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

}  // namespace

char32_t SystemUpper(char32_t c) {
  constexpr wint_t kFinalSigma = 0x3C2;
  const auto wide = static_cast<wint_t>(c);
  const wint_t upper = towupper_l(wide, CaseLocale());
  // A capital that is another letter's, as that of the micro sign, is not taken: it may be missing from the
  // code page that has the letter.
  const bool own = towlower_l(upper, CaseLocale()) == wide || wide == kFinalSigma;
  return static_cast<char32_t>(own ? upper : wide);
}

char32_t SystemLower(char32_t c) {
  return static_cast<char32_t>(towlower_l(static_cast<wint_t>(c), CaseLocale()));
}

Result<std::string> Utf8ToCodePage(std::string_view utf8, int code_page) {
  if (IsAscii(utf8)) return std::string(utf8);
  Converter* const converter = ConverterOf(code_page, false);
  std::string out;
  if (converter == nullptr) {
    return {kErrorUnsupported, "Code page " + std::to_string(code_page) + " is not known to this system."};
  }
  const auto open_byte = [code_page](std::string_view rest, std::string& to) -> size_t {
    const std::string_view character = rest.substr(0, SequenceSize(rest));
    for (int byte = 0x80; byte < 0x100 && character != "\xEF\xBF\xBD"; ++byte) {
      const std::string one(1, static_cast<char>(byte));
      if (CodePageToUtf8(one, code_page) != character) continue;
      to += one;
      return character.size();
    }
    return 0;
  };
  // For this page the system's converter puts characters that look alike in place of some that the page
  // lacks, a backslash for the yen sign among them.
  const auto replaced = [&] { return code_page == 932 && CodePageToUtf8(out, code_page) != utf8; };
  if (!converter->Convert(utf8, out, open_byte) || replaced()) {
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
  std::string out;
  if (code_page == 1258 && bytes.size() > 1) {
    // The system's converter joins accents to the letters before them, so that the bytes would not come back.
    for (const char byte : bytes) out += CodePageToUtf8(std::string_view(&byte, 1), code_page);
    return out;
  }
  Converter* const converter = ConverterOf(code_page, true);
  if (converter == nullptr) return CodePageToUtf8(bytes, 28591);
  converter->Convert(bytes, out, [code_page](std::string_view rest, std::string& to) -> size_t {
    const char16_t character = CharacterOfOpenByte(code_page, static_cast<unsigned char>(rest.front()));
    to += Utf16ToUtf8(std::u16string_view(&character, 1));
    return 1;
  });
  return out;
}

bool CodePageIsKnown(int code_page) { return ConverterOf(code_page, true) != nullptr; }

}  // namespace kw
