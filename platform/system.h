#ifndef KITWRIGHT_PLATFORM_SYSTEM_H_
#define KITWRIGHT_PLATFORM_SYSTEM_H_

#include <array>
#include <cstdint>
#include <string>

#include "base/result.h"

namespace kw::platform {

/// A local date and time.
struct LocalTime {
  int year = 2000;
  int month = 1;  ///< 1 to 12
  int day = 1;    ///< 1 to 31
  int hour = 0;   ///< 0 to 23
  int minute = 0;
  int second = 0;
  int day_of_year = 1;  ///< 1 to 366
};

/// Facts about the machine and the process.
class System {
 public:
  virtual ~System() = default;
  /// Total physical memory in bytes as a 32-bit field holds it: saturated at 4 GiB - 1, and to be compared
  /// signed.
  virtual int32_t TotalPhysicalMemory() = 0;
  /// The user's default locale, such as 1033.
  virtual int UserDefaultLocale() = 0;
  /// The code page of 8-bit text, such as 1252.
  virtual int CodePage() = 0;
  /// The folder for temporary files, without a trailing "\".
  virtual std::string TempFolder() = 0;
  /// A special folder by its number; 35 is the common application data. Without a trailing "\"; "" when
  /// unknown.
  virtual std::string SpecialFolder(int id) = 0;
  /// The folder from which the program was started, without a trailing "\".
  virtual std::string ProgramFolder() = 0;
  /// True if another instance of this program runs on this machine. The first call claims the machine for
  /// this process until it ends.
  virtual bool PreviousInstance() = 0;
  /// The present local date and time.
  virtual LocalTime Now() = 0;
  /// Sixteen new unique bytes, as they lie in memory; fails when the system cannot make them.
  virtual Result<std::array<uint8_t, 16>> CreateGuid() = 0;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SYSTEM_H_
