#include "cabinet/entry_name.h"

#include <algorithm>
#include <array>

#include "base/text.h"

namespace kw::cabinet {
namespace {

bool IsDeviceName(std::string_view part) {
  const std::string base = ToUpper(TrimBlanks(part.substr(0, part.find('.'))));
  static constexpr std::array<std::string_view, 7> kDevices = {"CON",    "PRN",     "AUX",   "NUL",
                                                               "CONIN$", "CONOUT$", "CLOCK$"};
  if (std::find(kDevices.begin(), kDevices.end(), base) != kDevices.end()) return true;
  if (!base.starts_with("COM") && !base.starts_with("LPT")) return false;
  const std::string_view number = std::string_view(base).substr(3);
  // The superscript digits one to three count as digits in device names.
  return (number.size() == 1 && number[0] >= '0' && number[0] <= '9') || number == "\xC2\xB9" ||
         number == "\xC2\xB2" || number == "\xC2\xB3";
}

bool IsSafePart(std::string_view part) {
  if (part.empty() || part.ends_with('.') || part.ends_with(' ') || IsDeviceName(part)) return false;
  for (const char c : part) {
    if (static_cast<unsigned char>(c) < 0x20 ||
        std::string_view("<>:\"|?*").find(c) != std::string_view::npos) {
      return false;
    }
  }
  return part.find("\xEF\xBF\xBD") == std::string_view::npos && IsValidUtf8(part);
}

}  // namespace

Result<std::vector<std::string>> SafeParts(std::string_view entry_name) {
  std::vector<std::string> parts = Split(ReplaceAll(entry_name, "/", "\\"), '\\');
  for (const std::string& part : parts) {
    if (IsSafePart(part)) continue;
    return {kErrorInvalidName,
            "The entry name \"" + std::string(entry_name) + "\" cannot be written below a folder."};
  }
  return parts;
}

bool FitsPattern(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*") return true;
  const std::u16string text = Utf8ToUtf16(ToUpper(name));
  const std::u16string mask = Utf8ToUtf16(ToUpper(pattern));
  size_t t = 0;
  size_t m = 0;
  size_t star = std::u16string::npos;
  size_t after_star = 0;
  while (t < text.size()) {
    if (m < mask.size() && mask[m] == u'*') {
      star = m++;
      after_star = t;
    } else if (m < mask.size() && (mask[m] == u'?' || mask[m] == text[t])) {
      ++m, ++t;
    } else if (star != std::u16string::npos) {
      m = star + 1;
      t = ++after_star;
    } else {
      return false;
    }
  }
  while (m < mask.size() && mask[m] == u'*') ++m;
  return m == mask.size();
}

}  // namespace kw::cabinet
