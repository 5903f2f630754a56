#include "platform/embedded/system.h"

#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <limits>

#include "base/machine_config.h"
#include "base/storage.h"
#include "base/text.h"
#include "base/uninterrupted_linux.h"

namespace kw::platform::embedded {
namespace {

constexpr long long kUsualMemory = 1073741824;
constexpr int kUsualLocale = 1033;
constexpr int kCommonApplicationData = 35;
constexpr int kUnknownState = -1;
constexpr int kMostProducts = 9;

std::string ReadMachineIni(const std::string& root) {
  return ReadWholeFile(SystemStorage(), root + "/machine.ini").value_or("");
}

std::string FolderOfThisProgram(const MachinePaths& paths) {
  char buffer[PATH_MAX];
  const ssize_t length = ::readlink("/proc/self/exe", buffer, sizeof buffer);
  const std::string program(buffer, length > 0 ? static_cast<size_t>(length) : 0);
  return paths.WindowsPath(HostParent(program.empty() ? "/" : program));
}

std::string ProductSection(int number) { return "product" + std::to_string(number); }

int DayOfYear(const LocalTime& time) {
  std::tm parts{};
  parts.tm_year = time.year - 1900;
  parts.tm_mon = time.month - 1;
  parts.tm_mday = time.day;
  parts.tm_hour = 12;
  return ::timegm(&parts) == -1 ? 1 : parts.tm_yday + 1;
}

int DaysInMonth(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return kDays[month - 1] + (month == 2 && leap ? 1 : 0);
}

}  // namespace

bool ParseLocalTime(std::string_view text, LocalTime* time) {
  int fields[6] = {0, 1, 1, 0, 0, 0};
  int count = 0;
  for (size_t i = 0; i < text.size() && count < 6;) {
    if (std::isdigit(static_cast<unsigned char>(text[i])) == 0) {
      ++i;
      continue;
    }
    const std::string_view digits = text.substr(i, text.find_first_not_of("0123456789", i) - i);
    fields[count++] = static_cast<int>(std::min<long long>(LeadingInteger(digits), 99999));
    i += digits.size();
  }
  const bool good = count > 0 && fields[0] >= 1601 && fields[0] <= 9999 && fields[1] >= 1 &&
                    fields[1] <= 12 && fields[2] >= 1 && fields[2] <= DaysInMonth(fields[0], fields[1]) &&
                    fields[3] <= 23 && fields[4] <= 59 && fields[5] <= 59;
  if (!good) return false;
  *time = {fields[0], fields[1], fields[2], fields[3], fields[4], fields[5], 1};
  time->day_of_year = DayOfYear(*time);
  return true;
}

EmbeddedSystem::EmbeddedSystem(const MachinePaths& paths) : root_(paths.root()) {
  const std::string ini = ReadMachineIni(root_);
  const std::string memory = IniValue(ini, "machine", "memory");
  memory_ = memory.empty() ? kUsualMemory : LeadingInteger(memory);
  const long long locale = LeadingInteger(IniValue(ini, "machine", "locale"));
  locale_ = locale > 0 && locale <= 0xFFFFF ? static_cast<int>(locale) : kUsualLocale;
  temp_ = IniValue(ini, "machine", "temp");
  if (temp_.empty()) temp_ = "C:\\Temp";
  while (temp_.size() > 3 && temp_.back() == '\\') temp_.pop_back();
  now_ = IniValue(ini, "machine", "now");
  program_folder_ = FolderOfThisProgram(paths);
}

int32_t EmbeddedSystem::TotalPhysicalMemory() {
  constexpr long long kMost = std::numeric_limits<uint32_t>::max();
  return static_cast<int32_t>(static_cast<uint32_t>(std::clamp(memory_, 0LL, kMost)));
}

int EmbeddedSystem::CodePage() { return CodePageOfLocale(locale_); }

std::string EmbeddedSystem::SpecialFolder(int id) {
  return id == kCommonApplicationData ? "C:\\ProgramData" : std::string();
}

bool EmbeddedSystem::PreviousInstance() {
  if (asked_) return previous_;
  asked_ = true;
  claim_ = OwnedFd(Uninterrupted(
      [&] { return ::open((root_ + "/instance.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666); }));
  previous_ = claim_.valid() && LockFile(claim_.get(), true) != 0;
  return previous_;
}

LocalTime EmbeddedSystem::Now() {
  LocalTime now;
  if (ParseLocalTime(now_, &now)) return now;
  const std::time_t seconds = std::time(nullptr);
  std::tm parts{};
  ::localtime_r(&seconds, &parts);
  return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,    parts.tm_hour,
          parts.tm_min,         parts.tm_sec,     parts.tm_yday + 1};
}

Result<std::array<uint8_t, 16>> EmbeddedSystem::CreateGuid() {
  std::array<uint8_t, 16> bytes{};
  if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    return Error{kErrorFunctionFailed, "Could not make a unique identifier."};
  }
  // A random identifier says so in its version and variant, which lie in these bytes.
  bytes[7] = static_cast<uint8_t>((bytes[7] & 0x0F) | 0x40);
  bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3F) | 0x80);
  return bytes;
}

EmbeddedProducts::EmbeddedProducts(const std::string& root) : ini_(ReadMachineIni(root)) {}

std::vector<std::string> EmbeddedProducts::RelatedProducts(const std::string& upgrade_code) {
  std::vector<std::string> codes;
  for (int i = 1; i <= kMostProducts; ++i) {
    const std::string code = IniValue(ini_, ProductSection(i), "code");
    if (!code.empty() && EqualsNoCase(IniValue(ini_, ProductSection(i), "upgrade"), upgrade_code)) {
      codes.push_back(code);
    }
  }
  return codes;
}

int EmbeddedProducts::FeatureState(const std::string& product_code, const std::string& feature) {
  for (int i = 1; i <= kMostProducts; ++i) {
    const std::string section = ProductSection(i);
    if (product_code.empty() || !EqualsNoCase(IniValue(ini_, section, "code"), product_code)) continue;
    const std::string state = IniValue(ini_, section, feature);
    return state.empty() ? kUnknownState : static_cast<int>(LeadingInteger(state));
  }
  return kUnknownState;
}

}  // namespace kw::platform::embedded
