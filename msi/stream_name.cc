#include "msi/stream_name.h"

#include <algorithm>

#include "base/text.h"

namespace kw::msi {
namespace {

constexpr char16_t kPairs = 0x3800;
constexpr char16_t kSingles = 0x4800;
constexpr size_t kMaxStoredName = 31;

int SixBits(char16_t c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'Z') return c - 'A' + 10;
  if (c >= 'a' && c <= 'z') return c - 'a' + 36;
  if (c == '.') return 62;
  if (c == '_') return 63;
  return -1;
}

// Characters beyond ASCII that are not packed ones.
bool IsForeign(char16_t c) { return c >= 0x80 && (c < kPairs || c > kTableStreamMark); }

bool IsLetter(char16_t c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

char CharacterOf(int six_bits) {
  static constexpr char kCharacters[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz._";
  return kCharacters[six_bits];
}

}  // namespace

Result<std::u16string> EncodeStreamName(std::string_view name, bool is_table) {
  const std::u16string wide = Utf8ToUtf16(name);
  std::u16string stored;
  if (is_table) stored.push_back(kTableStreamMark);
  if (!wide.empty() && wide[0] < 0x20) {
    stored = wide;
  } else {
    for (size_t i = 0; i < wide.size(); ++i) {
      const int first = SixBits(wide[i]);
      if (first < 0) {
        stored.push_back(wide[i]);
        continue;
      }
      const int second = i + 1 < wide.size() ? SixBits(wide[i + 1]) : -1;
      if (second < 0) {
        stored.push_back(static_cast<char16_t>(kSingles + first));
      } else {
        stored.push_back(static_cast<char16_t>(kPairs + first + (second << 6)));
        ++i;
      }
    }
  }
  if (stored.size() > kMaxStoredName)
    return {kErrorInvalidName, "The name \"" + std::string(name) + "\" is too long for a stream."};
  const bool plain_table = is_table && !wide.empty() && wide[0] < 0x20;
  if (wide.empty() || plain_table || stored.find(u'\0') != std::u16string::npos) {
    return {kErrorInvalidName, "The name \"" + std::string(name) + "\" cannot be the name of a stream."};
  }
  return stored;
}

bool HasCase(std::u16string_view stored) {
  return std::any_of(stored.begin(), stored.end(), [](char16_t c) { return IsForeign(c) || IsLetter(c); });
}

std::u16string WithoutCase(const std::u16string& stored) {
  if (std::any_of(stored.begin(), stored.end(), IsForeign)) {
    return Utf8ToUtf16(ToUpper(Utf16ToUtf8(stored)));
  }
  std::u16string key = stored;
  for (char16_t& c : key) {
    if (c >= 'a' && c <= 'z') c = static_cast<char16_t>(c - 'a' + 'A');
  }
  return key;
}

std::string DecodeStreamName(std::u16string_view stored) {
  std::u16string wide;
  if (!stored.empty() && stored[0] == kTableStreamMark) stored.remove_prefix(1);
  for (const char16_t c : stored) {
    if (c >= kPairs && c < kSingles) {
      wide.push_back(static_cast<char16_t>(CharacterOf((c - kPairs) & 0x3F)));
      wide.push_back(static_cast<char16_t>(CharacterOf((c - kPairs) >> 6)));
    } else if (c >= kSingles && c < kTableStreamMark) {
      wide.push_back(static_cast<char16_t>(CharacterOf(c - kSingles)));
    } else {
      wide.push_back(c);
    }
  }
  return Utf16ToUtf8(wide);
}

}  // namespace kw::msi
