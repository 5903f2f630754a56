#include "base/machine_config.h"
#include "base/storage.h"
#include "base/text.h"

namespace kw {

int MachineCodePage(const std::string& root) {
  constexpr int kEnglish = 1033;
  const std::string ini = ReadWholeFile(SystemStorage(), root + "/machine.ini").value_or("");
  const long long locale = LeadingInteger(IniValue(ini, "machine", "locale"));
  return CodePageOfLocale(locale > 0 && locale <= 0xFFFFF ? static_cast<int>(locale) : kEnglish);
}

}  // namespace kw
