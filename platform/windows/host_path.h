#ifndef KITWRIGHT_PLATFORM_WINDOWS_HOST_PATH_H_
#define KITWRIGHT_PLATFORM_WINDOWS_HOST_PATH_H_

#include <string>
#include <string_view>

namespace kw::platform::windows {

/// A path for the system's calls: full, and in the form without a length limit where the usual one would be
/// too long.
std::wstring CallPath(std::string_view full_path);

/// The attributes of a file or folder, as GetFileAttributesW gives them.
unsigned long AttributesOf(const std::wstring& call_path);

/// What is at a path.
struct Spot {
  std::string full;      ///< with drive and folder; "" for an empty path
  std::wstring call;     ///< the same for the system's calls
  bool allowed = false;  ///< no forbidden character in it
  bool exists = false;
  unsigned long attributes = 0;

  bool IsFolder() const;
  bool IsFile() const;
  bool ReadOnly() const;
  /// A symbolic link or a junction.
  bool IsLink() const;

  static Spot Of(std::string_view path);
};

/// Why there is nothing at the spot: kErrorInvalidName, kErrorPathNotFound or kErrorFileNotFound.
int MissingNumber(const Spot& spot);

/// The file at the spot with its name as it is spelled on the disk; the given spelling where there is none.
std::wstring SpelledAsOnDisk(const Spot& spot);

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_HOST_PATH_H_
