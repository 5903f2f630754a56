#ifndef KITWRIGHT_PLATFORM_PROFILE_FILES_H_
#define KITWRIGHT_PLATFORM_PROFILE_FILES_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace kw::platform {

/// Initialisation files, with the profile calls' rules: sections and keys compare without regard to case, the
/// first of several wins; a read value is trimmed of blanks and of one pair of quotes around it; files are
/// 8-bit text in the system code page (or UTF-16 with its mark), with CR LF line ends when written.
class ProfileFiles {
 public:
  virtual ~ProfileFiles() = default;
  /// The value, cut to `buffer_size` - 1 bytes of the system code page; `fallback` (cut likewise) when file,
  /// section or key is missing. Never fails.
  virtual std::string ReadString(const std::string& path, std::string_view section, std::string_view key,
                                 std::string_view fallback, int buffer_size) = 0;
  /// Replaces a key in place or adds it at the end of its section; a new section goes to the end of the file.
  /// No value deletes the key, no key deletes the whole section. Comments and other lines stay as they are.
  /// Fails (with the path) when the file cannot be written or the text has no place in the code page.
  virtual Status WriteString(const std::string& path, std::string_view section,
                             std::optional<std::string_view> key, std::optional<std::string_view> value) = 0;
  /// Names of the sections in file order.
  virtual std::vector<std::string> SectionNames(const std::string& path) = 0;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_PROFILE_FILES_H_
