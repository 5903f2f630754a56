#include "cabinet/entry_name.h"

#include "base/path.h"
#include "base/text.h"

namespace kw::cabinet {

Result<std::vector<std::string>> SafeParts(std::string_view entry_name) {
  std::vector<std::string> parts = Split(ReplaceAll(entry_name, "/", "\\"), '\\');
  for (const std::string& part : parts) {
    if (IsPlainFileName(part)) continue;
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
