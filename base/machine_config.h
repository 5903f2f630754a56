#ifndef KITWRIGHT_BASE_MACHINE_CONFIG_H_
#define KITWRIGHT_BASE_MACHINE_CONFIG_H_

#include <string>
#include <string_view>

namespace kw {

/// The value of `key` in `section` of ini text, both found without regard to case, blanks trimmed; the first
/// one counts. "" when there is none.
std::string IniValue(std::string_view ini, std::string_view section, std::string_view key);

/// The code page of 8-bit text on this machine. On Linux it follows from the key `locale` in section
/// `machine` of `machine.ini` in `root` (1033, hence 1252, when the file or key is missing); on Windows the
/// system says it.
int MachineCodePage(const std::string& root);

}  // namespace kw

#endif  // KITWRIGHT_BASE_MACHINE_CONFIG_H_
