#include "base/machine_config.h"

#include "base/text.h"

namespace kw {

std::string IniValue(std::string_view ini, std::string_view section, std::string_view key) {
  bool inside = false;
  for (const std::string& raw : Split(ini, '\n')) {
    std::string_view line = raw;
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = TrimBlanks(line);
    if (line.starts_with('[')) {
      if (inside) break;
      inside = line.ends_with(']') && EqualsNoCase(TrimBlanks(line.substr(1, line.size() - 2)), section);
      continue;
    }
    const size_t equals = line.find('=');
    if (!inside || equals == std::string_view::npos || line.starts_with(';')) continue;
    if (EqualsNoCase(TrimBlanks(line.substr(0, equals)), key)) {
      return std::string(TrimBlanks(line.substr(equals + 1)));
    }
  }
  return {};
}

}  // namespace kw
