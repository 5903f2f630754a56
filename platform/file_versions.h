#ifndef KITWRIGHT_PLATFORM_FILE_VERSIONS_H_
#define KITWRIGHT_PLATFORM_FILE_VERSIONS_H_

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/result.h"
#include "base/text.h"

namespace kw::platform {

/// A file's version information block.
struct FileVersion {
  bool has_fixed = false;             ///< the root block with its fixed information is there
  std::array<uint16_t, 4> file{};     ///< file version, most significant part first
  std::array<uint16_t, 4> product{};  ///< product version, likewise
  std::vector<std::pair<uint16_t, uint16_t>> translations;  ///< language and code page, in order
  /// String tables by their eight hexadecimal digits; names and digits compare without regard to case.
  std::map<std::string, std::map<std::string, std::string, LessNoCase>, LessNoCase> strings;
};

/// Reads version information from programs and libraries (PE files, 32 and 64 bits).
class FileVersions {
 public:
  virtual ~FileVersions() = default;
  /// kErrorResourceDataNotFound when the file has no version block; other errors for unreadable or damaged
  /// files.
  virtual Result<FileVersion> Read(const std::string& path) = 0;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_FILE_VERSIONS_H_
