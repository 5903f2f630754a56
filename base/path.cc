#include "base/path.h"

#include <algorithm>
#include <array>

#include "base/text.h"

namespace kw {
namespace {

constexpr size_t kLongestName = 255;

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

}  // namespace

std::string FileNameOf(std::string_view path) {
  const size_t slash = path.rfind('\\');
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string ParentOf(std::string_view path) {
  const size_t slash = path.rfind('\\');
  return std::string(slash == std::string_view::npos ? std::string_view() : path.substr(0, slash));
}

std::string JoinPath(std::string_view folder, std::string_view name) {
  std::string result(folder);
  if (result.empty() || result.back() != '\\') result += '\\';
  return result.append(name);
}

bool IsPlainFileName(std::string_view name) {
  if (name.empty() || name.ends_with('.') || name.ends_with(' ') || IsDeviceName(name)) return false;
  for (const char c : name) {
    if (static_cast<unsigned char>(c) < 0x20 ||
        std::string_view("<>:\"/\\|?*").find(c) != std::string_view::npos) {
      return false;
    }
  }
  return name.find("\xEF\xBF\xBD") == std::string_view::npos && IsValidUtf8(name) &&
         Utf8ToUtf16(name).size() <= kLongestName;
}

}  // namespace kw
