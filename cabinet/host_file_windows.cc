#include <windows.h>

#include "base/text.h"
#include "cabinet/format.h"
#include "cabinet/host_file.h"

namespace kw::cabinet {
namespace {

constexpr DWORD kKeptAttributes =
    FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;

std::wstring Wide(const std::string& path) {
  const std::u16string wide = Utf8ToUtf16(path);
  return {wide.begin(), wide.end()};
}

Error Failure(const char* what, const std::string& path) {
  const DWORD error = GetLastError();
  return {static_cast<int>(error),
          std::string("Could not ") + what + " " + path + " (" + std::to_string(error) + ")."};
}

}  // namespace

Result<HostFileInfo> LookAtHostFile(const std::string& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!GetFileAttributesExW(Wide(path).c_str(), GetFileExInfoStandard, &data)) return Failure("find", path);
  if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return {kErrorAccessDenied, path + " is not a file."};
  }
  HostFileInfo found;
  found.size = (static_cast<uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
  found.stamp.attributes = static_cast<uint16_t>(data.dwFileAttributes & kKeptAttributes);
  FILETIME local{};
  WORD date = 0;
  WORD time = 0;
  if (FileTimeToLocalFileTime(&data.ftLastWriteTime, &local) && FileTimeToDosDateTime(&local, &date, &time)) {
    found.stamp.date = date;
    found.stamp.time = time;
  }
  return found;
}

Status StampHostFile(const std::string& path, const FileStamp& stamp) {
  FILETIME local{};
  FILETIME utc{};
  if (DosDateTimeToFileTime(stamp.date, stamp.time, &local) && LocalFileTimeToFileTime(&local, &utc)) {
    const HANDLE file =
        CreateFileW(Wide(path).c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE) return Failure("set the time of", path);
    const bool set = SetFileTime(file, nullptr, nullptr, &utc) != FALSE;
    CloseHandle(file);
    if (!set) return Failure("set the time of", path);
  }
  const DWORD attributes = stamp.attributes & kKeptAttributes;
  if (!SetFileAttributesW(Wide(path).c_str(), attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes)) {
    return Failure("set the attributes of", path);
  }
  return {};
}

}  // namespace kw::cabinet
