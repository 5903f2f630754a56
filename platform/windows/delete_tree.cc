#include "platform/windows/delete_tree.h"

#include <vector>

#include "base/result.h"
#include "base/retry_windows.h"
#include "platform/windows/host_path.h"
#include "platform/windows/owned_handle.h"
#include "platform/windows/system_headers.h"

namespace kw::platform::windows {
namespace {

// The entries of a folder but for itself and its parent.
int EntriesOf(const std::wstring& folder, std::vector<WIN32_FIND_DATAW>& entries) {
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return LastNumber();
  do {
    const std::wstring name = found.cFileName;
    if (name != L"." && name != L"..") entries.push_back(found);
  } while (FindNextFileW(search, &found));
  const int number = LastNumber();
  FindClose(search);
  return number == ERROR_NO_MORE_FILES ? 0 : number;
}

int RemoveFolder(const std::wstring& path, unsigned long attributes, bool force) {
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0 && force) {
    SetFileAttributesW(path.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
  }
  return RemoveDirectoryW(path.c_str()) ? 0 : LastNumber();
}

}  // namespace

int DeleteOneFile(const std::wstring& path, bool force) {
  const DWORD attributes = AttributesOf(path);
  const bool read_only = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (read_only && !force) return kErrorAccessDenied;
  if (read_only && !SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL)) return LastNumber();
  if (RetryWhileInUse([&] { return DeleteFileW(path.c_str()); })) return 0;
  const int number = LastNumber();
  // What stays stays as it was.
  if (read_only) SetFileAttributesW(path.c_str(), attributes);
  return number;
}

int DeleteTree(const std::wstring& path, bool force, std::wstring& failed_path) {
  const DWORD attributes = AttributesOf(path);
  std::vector<WIN32_FIND_DATAW> entries;
  int number = 0;
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) number = EntriesOf(path, entries);
  failed_path = path;
  if (number != 0) return number;
  for (const WIN32_FIND_DATAW& entry : entries) {
    const std::wstring below = path + L"\\" + entry.cFileName;
    failed_path = below;
    if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
      number = DeleteTree(below, force, failed_path);
    } else {
      number = DeleteOneFile(below, force);
    }
    if (number != 0) return number;
  }
  failed_path = path;
  return RemoveFolder(path, attributes, force);
}

}  // namespace kw::platform::windows
