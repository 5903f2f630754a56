#include "platform/windows/host_path.h"

#include "base/machine_paths.h"
#include "base/path.h"
#include "base/result.h"
#include "platform/shared/file_errors.h"
#include "platform/windows/system_headers.h"
#include "platform/windows/wide.h"

namespace kw::platform::windows {
namespace {

// The usual calls take 259 characters, folders 12 fewer for a short name below them.
constexpr size_t kLongestUsualPath = 240;

}  // namespace

std::wstring CallPath(std::string_view full_path) {
  std::wstring wide = Wide(full_path);
  if (wide.size() <= kLongestUsualPath) return wide;
  if (wide.starts_with(L"\\\\")) return L"\\\\?\\UNC" + wide.substr(1);
  return L"\\\\?\\" + wide;
}

unsigned long AttributesOf(const std::wstring& call_path) { return GetFileAttributesW(call_path.c_str()); }

bool Spot::IsFolder() const { return exists && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
bool Spot::IsFile() const { return exists && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0; }
bool Spot::ReadOnly() const { return exists && (attributes & FILE_ATTRIBUTE_READONLY) != 0; }

bool Spot::IsLink() const {
  if (!exists || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return false;
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(call.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return false;
  FindClose(search);
  return found.dwReserved0 == IO_REPARSE_TAG_SYMLINK || found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT;
}

Spot Spot::Of(std::string_view path) {
  Spot spot;
  if (path.empty()) return spot;
  spot.full = MachinePaths::OfThisProcess().FullPath(path);
  spot.call = CallPath(spot.full);
  spot.allowed = !HasBadNameCharacter(spot.full);
  if (!spot.allowed) return spot;
  spot.attributes = AttributesOf(spot.call);
  spot.exists = spot.attributes != INVALID_FILE_ATTRIBUTES;
  return spot;
}

int MissingNumber(const Spot& spot) {
  if (spot.full.empty()) return kErrorPathNotFound;
  if (!spot.allowed) return kErrorInvalidName;
  return Spot::Of(ParentOf(spot.full) + "\\").IsFolder() ? kErrorFileNotFound : kErrorPathNotFound;
}

std::wstring SpelledAsOnDisk(const Spot& spot) {
  if (!spot.exists) return spot.call;
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(spot.call.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return spot.call;
  FindClose(search);
  return spot.call.substr(0, spot.call.rfind(L'\\') + 1) + found.cFileName;
}

}  // namespace kw::platform::windows
