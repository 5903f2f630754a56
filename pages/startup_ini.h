#ifndef KITWRIGHT_PAGES_STARTUP_INI_H_
#define KITWRIGHT_PAGES_STARTUP_INI_H_

#include <string>
#include <string_view>

#include "base/text.h"
#include "package/file_rules.h"
#include "shell/page_contract.h"

namespace kw {

/// The section of the working Setup.ini that the package's setup program reads.
inline constexpr const char* kStartupSection = "Startup";

/// A switch of the section, by its integer value.
inline bool ReadStartupFlag(platform::Services& services, const RunState& run, std::string_view key,
                            std::string_view fallback) {
  return LeadingInteger(ReadIniValue(services, run.WorkingSetupIniPath, kStartupSection, key, fallback)) != 0;
}

inline Status WriteStartupFlag(platform::Services& services, const RunState& run, std::string_view key,
                               bool value) {
  return WriteIniValue(services, run.WorkingSetupIniPath, kStartupSection, key, value ? "1" : "0");
}

}  // namespace kw

#endif  // KITWRIGHT_PAGES_STARTUP_INI_H_
