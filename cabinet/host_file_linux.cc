#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <optional>

#include "cabinet/format.h"
#include "cabinet/host_file.h"

namespace kw::cabinet {

Result<HostFileInfo> LookAtHostFile(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) {
    return {kErrorFileNotFound, "Could not find " + path + ": " + std::strerror(errno) + "."};
  }
  if (!S_ISREG(info.st_mode)) return {kErrorAccessDenied, path + " is not a file."};
  HostFileInfo found;
  found.size = static_cast<uint64_t>(info.st_size);
  if ((info.st_mode & S_IWUSR) == 0) found.stamp.attributes |= kReadOnly;
  std::tm local{};
  const time_t seconds = info.st_mtim.tv_sec;
  if (localtime_r(&seconds, &local) == nullptr || local.tm_year < 80 || local.tm_year > 207) return found;
  found.stamp.date =
      static_cast<uint16_t>(((local.tm_year - 80) << 9) | ((local.tm_mon + 1) << 5) | local.tm_mday);
  found.stamp.time =
      static_cast<uint16_t>((local.tm_hour << 11) | (local.tm_min << 5) | (std::min(local.tm_sec, 59) / 2));
  return found;
}

namespace {

// The time that a stamp tells; nothing for an impossible date.
std::optional<time_t> TimeOf(const FileStamp& stamp) {
  std::tm local{};
  local.tm_year = (stamp.date >> 9) + 80;
  local.tm_mon = ((stamp.date >> 5) & 15) - 1;
  local.tm_mday = stamp.date & 31;
  local.tm_hour = stamp.time >> 11;
  local.tm_min = (stamp.time >> 5) & 63;
  local.tm_sec = (stamp.time & 31) * 2;
  local.tm_isdst = -1;
  if (local.tm_mon < 0 || local.tm_mon > 11 || local.tm_mday == 0) return std::nullopt;
  return std::mktime(&local);
}

}  // namespace

Status StampHostFile(const std::string& path, const FileStamp& stamp) {
  // Files of one maker often share a stamp, and the system looks up the time zone anew each time.
  struct Known {
    FileStamp stamp;
    std::optional<time_t> time = TimeOf({});
  };
  thread_local Known known;
  if (known.stamp.date != stamp.date || known.stamp.time != stamp.time) known = {stamp, TimeOf(stamp)};
  if (known.time) {
    timespec times[2] = {};
    times[0].tv_nsec = UTIME_OMIT;
    times[1].tv_sec = *known.time;
    if (::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0) {
      return {kErrorAccessDenied, "Could not set the time of " + path + ": " + std::strerror(errno) + "."};
    }
  }
  if ((stamp.attributes & kReadOnly) != 0 && ::chmod(path.c_str(), 0444) != 0) {
    return {kErrorAccessDenied, "Could not make " + path + " read-only: " + std::strerror(errno) + "."};
  }
  return {};
}

}  // namespace kw::cabinet
