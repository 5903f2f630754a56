#ifndef KITWRIGHT_CABINET_HOST_FILE_H_
#define KITWRIGHT_CABINET_HOST_FILE_H_

#include <cstdint>
#include <string>
#include <unordered_map>

#include "base/result.h"

namespace kw::cabinet {

/// Date, time (as a cabinet keeps them: local, two-second steps from 1980) and attributes of a file.
struct FileStamp {
  uint16_t date = 0x21;  ///< 1980-01-01
  uint16_t time = 0;
  uint16_t attributes = 0x20;
};

/// Size and stamp of a host file. A folder is kErrorAccessDenied.
struct HostFileInfo {
  uint64_t size = 0;
  FileStamp stamp;
};
Result<HostFileInfo> LookAtHostFile(const std::string& path);

/// Gives a host file a cabinet entry's date, time and attributes. Impossible dates are left out.
Status StampHostFile(const std::string& path, const FileStamp& stamp);

/// The names in a host folder by their upper-case text; kErrorPathNotFound when it is no folder.
using FolderNames = std::unordered_map<std::string, std::string>;
Result<FolderNames> NamesInHostFolder(const std::string& path);

/// Makes a folder, or finds it there. Fails when something else has the name, a link to a folder included.
Status MakeHostFolder(const std::string& path);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_HOST_FILE_H_
