#include "base/text.h"

#include <algorithm>
#include <limits>

#include "base/text_system.h"

namespace kw {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// Decodes the character at `pos` and moves behind it; false (one byte consumed) where the bytes are no UTF-8.
bool DecodeOne(std::string_view text, size_t& pos, char32_t& out) {
  const auto at = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = at(pos);
  if (first < 0x80) {
    out = first;
    ++pos;
    return true;
  }
  int extra = 0;
  char32_t value = 0;
  char32_t lowest = 0;
  if ((first & 0xE0) == 0xC0) {
    extra = 1, value = first & 0x1F, lowest = 0x80;
  } else if ((first & 0xF0) == 0xE0) {
    extra = 2, value = first & 0x0F, lowest = 0x800;
  } else if ((first & 0xF8) == 0xF0) {
    extra = 3, value = first & 0x07, lowest = 0x10000;
  }
  bool good = extra > 0 && pos + static_cast<size_t>(extra) < text.size();
  for (int i = 1; good && i <= extra; ++i) {
    const unsigned char next = at(pos + static_cast<size_t>(i));
    good = IsContinuation(next);
    value = (value << 6) | (next & 0x3F);
  }
  good = good && value >= lowest && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
  if (!good) {
    out = kReplacement;
    ++pos;
    return false;
  }
  out = value;
  pos += static_cast<size_t>(extra) + 1;
  return true;
}

void AppendUtf8(char32_t c, std::string& out) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

template <typename Map>
std::string MapCharacters(std::string_view utf8, Map map) {
  std::string out;
  out.reserve(utf8.size());
  for (size_t pos = 0; pos < utf8.size();) {
    const auto byte = static_cast<unsigned char>(utf8[pos]);
    char32_t c = byte;
    if (byte < 0x80) {
      ++pos;
    } else {
      DecodeOne(utf8, pos, c);
    }
    AppendUtf8(map(c), out);
  }
  return out;
}

char32_t UpperOf(char32_t c) {
  if (c < 0x80) return c >= 'a' && c <= 'z' ? c - 32 : c;
  return SystemUpper(c);
}

char32_t LowerOf(char32_t c) {
  if (c < 0x80) return c >= 'A' && c <= 'Z' ? c + 32 : c;
  return SystemLower(c);
}

// The upper-case character at `pos`, moving behind it.
char32_t NextUpper(std::string_view text, size_t& pos) {
  char32_t c = 0;
  DecodeOne(text, pos, c);
  return UpperOf(c);
}

}  // namespace

std::u16string Utf8ToUtf16(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  for (size_t pos = 0; pos < utf8.size();) {
    char32_t c = 0;
    DecodeOne(utf8, pos, c);
    if (c >= 0x10000) {
      c -= 0x10000;
      out += static_cast<char16_t>(0xD800 + (c >> 10));
      out += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
    } else {
      out += static_cast<char16_t>(c);
    }
  }
  return out;
}

std::string Utf16ToUtf8(std::u16string_view utf16) {
  std::string out;
  out.reserve(utf16.size());
  for (size_t i = 0; i < utf16.size(); ++i) {
    char32_t c = utf16[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
        utf16[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (utf16[++i] - 0xDC00u);
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = kReplacement;
    }
    AppendUtf8(c, out);
  }
  return out;
}

bool IsValidUtf8(std::string_view text) {
  for (size_t pos = 0; pos < text.size();) {
    char32_t c = 0;
    if (!DecodeOne(text, pos, c)) return false;
  }
  return true;
}

int CodePageOfLocale(int locale) {
  switch (locale & 0x3FF) {
    case 0x11:
      return 932;
    case 0x12:
      return 949;
    case 0x04:
      return locale == 1028 || locale == 3076 || locale == 5124 ? 950 : 936;
    case 0x05:
    case 0x0E:
    case 0x15:
    case 0x1B:
    case 0x24:
      return 1250;
    case 0x02:
    case 0x19:
    case 0x22:
      return 1251;
    case 0x08:
      return 1253;
    case 0x1F:
      return 1254;
    case 0x0D:
      return 1255;
    case 0x01:
      return 1256;
    case 0x1E:
      return 874;
    default:
      return 1252;
  }
}

std::string ToUpper(std::string_view utf8) { return MapCharacters(utf8, UpperOf); }
std::string ToLower(std::string_view utf8) { return MapCharacters(utf8, LowerOf); }

int CompareNoCase(std::string_view a, std::string_view b) {
  size_t i = 0;
  size_t j = 0;
  while (i < a.size() && j < b.size()) {
    const char32_t ca = NextUpper(a, i);
    const char32_t cb = NextUpper(b, j);
    if (ca != cb) return ca < cb ? -1 : 1;
  }
  return static_cast<int>(i < a.size()) - static_cast<int>(j < b.size());
}

bool EqualsNoCase(std::string_view a, std::string_view b) { return CompareNoCase(a, b) == 0; }

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  size_t i = 0;
  size_t j = 0;
  while (j < prefix.size()) {
    if (i >= text.size() || NextUpper(text, i) != NextUpper(prefix, j)) return false;
  }
  return true;
}

bool EndsWithNoCase(std::string_view text, std::string_view suffix) {
  const std::string upper_text = ToUpper(text);
  const std::string upper_suffix = ToUpper(suffix);
  return std::string_view(upper_text).ends_with(upper_suffix);
}

size_t CharacterCount(std::string_view utf8) {
  size_t count = 0;
  for (size_t pos = 0; pos < utf8.size(); ++count) {
    char32_t c = 0;
    DecodeOne(utf8, pos, c);
  }
  return count;
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  std::string out;
  size_t pos = 0;
  while (!from.empty()) {
    const size_t hit = text.find(from, pos);
    if (hit == std::string_view::npos) break;
    out.append(text.substr(pos, hit - pos)).append(to);
    pos = hit + from.size();
  }
  return out.append(text.substr(pos));
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  size_t pos = 0;
  while (true) {
    const size_t hit = text.find(separator, pos);
    parts.emplace_back(text.substr(pos, hit == std::string_view::npos ? hit : hit - pos));
    if (hit == std::string_view::npos) return parts;
    pos = hit + 1;
  }
}

std::string_view TrimBlanks(std::string_view text) {
  const size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

long long LeadingInteger(std::string_view text) {
  text = TrimBlanks(text);
  const bool negative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  constexpr long long kMax = std::numeric_limits<long long>::max();
  long long value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    const int digit = c - '0';
    value = value > (kMax - digit) / 10 ? kMax : value * 10 + digit;
  }
  return negative ? -value : value;
}

}  // namespace kw
