#include "platform/windows/file_system.h"

#include <algorithm>
#include <utility>

#include "base/machine_paths.h"
#include "base/path.h"
#include "base/retry_windows.h"
#include "base/text.h"
#include "platform/shared/file_errors.h"
#include "platform/windows/delete_tree.h"
#include "platform/windows/host_path.h"
#include "platform/windows/owned_handle.h"
#include "platform/windows/system_headers.h"
#include "platform/windows/wide.h"

namespace kw::platform::windows {
namespace {

constexpr size_t kMostBytesACall = 1u << 26;

int WriteAll(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    const DWORD want = static_cast<DWORD>(std::min(bytes.size(), kMostBytesACall));
    DWORD put = 0;
    if (!::WriteFile(file, bytes.data(), want, &put, nullptr)) return LastNumber();
    if (put == 0) return kErrorDiskFull;
    bytes.remove_prefix(put);
  }
  return 0;
}

// Up to `length` bytes, fewer only at the end.
int ReadUpTo(HANDLE file, size_t length, std::string& bytes) {
  bytes.resize(length);
  size_t done = 0;
  while (done < length) {
    const DWORD want = static_cast<DWORD>(std::min(length - done, kMostBytesACall));
    DWORD got = 0;
    if (!::ReadFile(file, bytes.data() + done, want, &got, nullptr)) return LastNumber();
    if (got == 0) break;
    done += got;
  }
  bytes.resize(done);
  return 0;
}

class OpenFileHandle : public FileHandle {
 public:
  OpenFileHandle(OwnedHandle file, std::string path) : file_(std::move(file)), path_(std::move(path)) {}

  Result<std::string> Read(size_t length) override {
    std::string bytes;
    if (const int number = ReadUpTo(file_.get(), length, bytes)) return FileError(number, "read", path_);
    return bytes;
  }
  Status Write(std::string_view bytes) override {
    if (const int number = WriteAll(file_.get(), bytes)) return FileError(number, "write", path_);
    return {};
  }
  Status Flush() override {
    if (!FlushFileBuffers(file_.get())) return FileError(LastNumber(), "write", path_);
    return {};
  }

 private:
  OwnedHandle file_;
  std::string path_;
};

// 0 if the file at the spot may be made or written, as far as attributes tell.
int WriteNumber(const Spot& spot) {
  if (!spot.exists) {
    const int missing = MissingNumber(spot);
    return missing == kErrorFileNotFound ? 0 : missing;
  }
  return spot.IsFolder() || spot.ReadOnly() ? static_cast<int>(kErrorAccessDenied) : 0;
}

// Opens the file at the spot for reading and keeps writers out. A file that somebody writes already, as the
// package engine does, is read beside the writer, unless that one wants to be alone.
int OpenForReading(const Spot& spot, OwnedHandle& file) {
  if (!spot.exists) return MissingNumber(spot);
  if (spot.IsFolder()) return kErrorAccessDenied;
  int number = 0;
  for (const DWORD share : {FILE_SHARE_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE}) {
    file = OwnedHandle(CreateFileW(spot.call.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING,
                                   FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    number = file.valid() ? 0 : LastNumber();
    if (number != kErrorSharingViolation) break;
  }
  return number;
}

int OpenExclusively(const Spot& spot, DWORD creation, OwnedHandle& file) {
  file = OwnedHandle(CreateFileW(spot.call.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, creation,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
  return file.valid() ? 0 : LastNumber();
}

// 0 if the file at the spot may take another content as a whole: nobody has it open.
int ReplaceNumber(const Spot& spot) {
  const int number = WriteNumber(spot);
  // The file that a link points to is not replaced.
  if (number != 0 || !spot.exists || spot.IsLink()) return number;
  OwnedHandle file;
  return OpenExclusively(spot, OPEN_EXISTING, file);
}

// A file beside the spot that takes its place when it is complete, and else goes away.
class Replacement {
 public:
  explicit Replacement(const Spot& spot) : target_(SpelledAsOnDisk(spot)) {}
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  ~Replacement() {
    if (path_.empty()) return;
    SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(path_.c_str());
  }

  // Reserves a name for it; the file is there afterwards, and empty.
  int Create() {
    const std::wstring folder = target_.substr(0, target_.rfind(L'\\') + 1);
    constexpr int kMostTries = 100;
    for (int i = 0; i < kMostTries; ++i) {
      const std::wstring path = folder + L"~kw" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                                std::to_wstring(GetTickCount64() + static_cast<unsigned>(i)) + L".tmp";
      file_ = OwnedHandle(
          CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
      if (file_.valid()) {
        path_ = path;
        return 0;
      }
      if (const int number = LastNumber(); number != kErrorFileExists && number != kErrorAlreadyExists) {
        return number;
      }
    }
    return kErrorFileExists;
  }
  HANDLE file() const { return file_.get(); }
  const std::wstring& path() const { return path_; }
  void Close() { file_ = OwnedHandle(); }

  int TakePlace() {
    Close();
    const BOOL done = RetryWhileInUse([this] {
      return MoveFileExW(path_.c_str(), target_.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    });
    if (!done) return LastNumber();
    path_.clear();
    return 0;
  }

 private:
  std::wstring target_;
  std::wstring path_;
  OwnedHandle file_;
};

// Whether two spots are one file, or one folder.
bool SameThing(const Spot& one, const Spot& two) {
  if (!one.exists || !two.exists) return false;
  BY_HANDLE_FILE_INFORMATION of[2] = {};
  const Spot* spots[2] = {&one, &two};
  for (int i = 0; i < 2; ++i) {
    // No right at all is asked for, so that a file in exclusive use can be looked at too. Folders open with
    // the flag alone.
    const OwnedHandle handle(CreateFileW(spots[i]->call.c_str(), 0,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                         OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!handle.valid() || !GetFileInformationByHandle(handle.get(), &of[i])) return false;
  }
  return of[0].dwVolumeSerialNumber == of[1].dwVolumeSerialNumber &&
         of[0].nFileIndexHigh == of[1].nFileIndexHigh && of[0].nFileIndexLow == of[1].nFileIndexLow;
}

FileEntry EntryOf(const WIN32_FIND_DATAW& found) {
  FileEntry entry;
  entry.name = Narrow(found.cFileName);
  entry.is_folder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  entry.read_only = (found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (!entry.is_folder) {
    entry.size =
        static_cast<int64_t>((static_cast<uint64_t>(found.nFileSizeHigh) << 32) | found.nFileSizeLow);
  }
  return entry;
}

}  // namespace

bool WindowsFileSystem::FileExists(const std::string& path) { return Spot::Of(path).IsFile(); }

bool WindowsFileSystem::FolderExists(const std::string& path) { return Spot::Of(path).IsFolder(); }

Result<FileEntry> WindowsFileSystem::GetFile(const std::string& path) {
  const Spot spot = Spot::Of(path);
  if (!spot.IsFile()) {
    const int number = spot.exists ? static_cast<int>(kErrorFileNotFound) : MissingNumber(spot);
    return FileError(number, "look at", path);
  }
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(spot.call.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return FileError(LastNumber(), "look at", path);
  FindClose(search);
  return EntryOf(found);
}

bool WindowsFileSystem::IsLink(const std::string& path) { return Spot::Of(path).IsLink(); }

bool WindowsFileSystem::IsSameFolder(const std::string& one, const std::string& two) {
  const Spot spot = Spot::Of(one);
  return spot.IsFolder() && SameThing(spot, Spot::Of(two));
}

Result<std::vector<FileEntry>> WindowsFileSystem::List(const std::string& folder) {
  const Spot spot = Spot::Of(folder);
  if (!spot.IsFolder()) {
    const bool bad_name = !spot.full.empty() && !spot.allowed;
    return FileError(bad_name ? kErrorInvalidName : kErrorPathNotFound, "list", folder);
  }
  std::vector<FileEntry> entries;
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(CallPath(JoinPath(spot.full, "*")).c_str(), &found);
  // The root of an empty drive has not even the two entries for itself and its parent.
  if (search == INVALID_HANDLE_VALUE) {
    const int number = LastNumber();
    if (number == kErrorFileNotFound) return entries;
    return FileError(number, "list", folder);
  }
  do {
    FileEntry entry = EntryOf(found);
    if (entry.name != "." && entry.name != "..") entries.push_back(std::move(entry));
  } while (FindNextFileW(search, &found));
  const int number = LastNumber();
  FindClose(search);
  if (number != ERROR_NO_MORE_FILES) return FileError(number, "list", folder);
  std::sort(entries.begin(), entries.end(), [](const FileEntry& a, const FileEntry& b) {
    const int order = CompareNoCase(a.name, b.name);
    return order != 0 ? order < 0 : a.name < b.name;
  });
  return entries;
}

Status WindowsFileSystem::CopyFile(const std::string& from, const std::string& to, bool overwrite) {
  const Spot source = Spot::Of(from);
  const Spot target = Spot::Of(to);
  {
    OwnedHandle in;
    if (const int number = OpenForReading(source, in)) return FileError(number, "copy", from);
  }
  if (!target.IsLink() && SameThing(source, target)) return {};

  const auto failure = [&](int number) { return FileError(number, "copy " + from + " to", to); };
  if (target.IsFile() && !target.ReadOnly() && !overwrite) return failure(kErrorFileExists);
  if (const int number = ReplaceNumber(target)) return failure(number);
  Replacement copy(target);
  if (const int number = copy.Create()) return failure(number);
  copy.Close();
  if (!CopyFileW(source.call.c_str(), copy.path().c_str(), FALSE) ||
      !SetFileAttributesW(copy.path().c_str(), source.attributes)) {
    return failure(LastNumber());
  }
  if (const int number = copy.TakePlace()) return failure(number);
  return {};
}

Status WindowsFileSystem::DeleteFile(const std::string& path, bool force) {
  const Spot spot = Spot::Of(path);
  int number = 0;
  if (!spot.exists) {
    number = MissingNumber(spot);
  } else {
    number = spot.IsFolder() ? static_cast<int>(kErrorAccessDenied) : DeleteOneFile(spot.call, force);
  }
  if (number != 0) return FileError(number, "delete", path);
  return {};
}

Status WindowsFileSystem::DeleteFolder(const std::string& path, bool force) {
  const Spot spot = Spot::Of(path);
  if (!spot.IsFolder()) return FileError(kErrorPathNotFound, "delete", path);
  std::wstring failed;
  if (const int number = DeleteTree(spot.call, force, failed)) {
    return FileError(number, "delete", path + Narrow(failed.substr(spot.call.size())));
  }
  return {};
}

Status WindowsFileSystem::CreateFolder(const std::string& path) {
  const Spot spot = Spot::Of(path);
  int number = 0;
  if (spot.exists) {
    number = kErrorAlreadyExists;
  } else if (const int missing = MissingNumber(spot); missing != kErrorFileNotFound) {
    number = missing;
  } else if (!CreateDirectoryW(spot.call.c_str(), nullptr)) {
    number = LastNumber();
  }
  if (number != 0) return FileError(number, "create the folder", path);
  return {};
}

Status WindowsFileSystem::SetReadOnly(const std::string& path, bool read_only) {
  const Spot spot = Spot::Of(path);
  int number = 0;
  if (!spot.exists) {
    number = MissingNumber(spot);
  } else if (spot.IsFolder()) {
    number = kErrorAccessDenied;
  } else {
    const DWORD wanted = read_only ? spot.attributes | FILE_ATTRIBUTE_READONLY
                                   : spot.attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY);
    if (!SetFileAttributesW(spot.call.c_str(), wanted == 0 ? FILE_ATTRIBUTE_NORMAL : wanted)) {
      number = LastNumber();
    }
  }
  if (number != 0) return FileError(number, "change the attributes of", path);
  return {};
}

Result<std::unique_ptr<FileHandle>> WindowsFileSystem::Open(const std::string& path, OpenHow how) {
  const Spot spot = Spot::Of(path);
  OwnedHandle file;
  int number = 0;
  if (how == OpenHow::kReadExisting) {
    number = OpenForReading(spot, file);
  } else {
    number = WriteNumber(spot);
    if (number == 0) number = OpenExclusively(spot, spot.exists ? OPEN_EXISTING : OPEN_ALWAYS, file);
  }
  if (number != 0) return FileError(number, "open", path);
  return std::unique_ptr<FileHandle>(std::make_unique<OpenFileHandle>(std::move(file), path));
}

Result<std::string> WindowsFileSystem::ReadFile(const std::string& path) {
  OwnedHandle file;
  int number = OpenForReading(Spot::Of(path), file);
  LARGE_INTEGER size{};
  if (number == 0 && !GetFileSizeEx(file.get(), &size)) number = LastNumber();
  std::string bytes;
  if (number == 0) number = ReadUpTo(file.get(), static_cast<size_t>(size.QuadPart), bytes);
  if (number != 0) return FileError(number, "read", path);
  return bytes;
}

Status WindowsFileSystem::WriteFile(const std::string& path, std::string_view bytes) {
  const Spot spot = Spot::Of(path);
  int number = ReplaceNumber(spot);
  if (number != 0) return FileError(number, "write", path);
  Replacement file(spot);
  number = file.Create();
  if (number == 0) number = WriteAll(file.file(), bytes);
  // Hidden and system files stay what they are.
  if (number == 0 && spot.exists && !SetFileAttributesW(file.path().c_str(), spot.attributes)) {
    number = LastNumber();
  }
  if (number == 0) number = file.TakePlace();
  if (number != 0) return FileError(number, "write", path);
  return {};
}

std::string WindowsFileSystem::CurrentFolder() { return MachinePaths::OfThisProcess().current(); }

Status WindowsFileSystem::SetCurrentFolder(const std::string& path) {
  const Spot spot = Spot::Of(path);
  if (!spot.IsFolder()) return FileError(kErrorPathNotFound, "go to", path);
  if (!SetCurrentDirectoryW(Wide(spot.full).c_str())) return FileError(LastNumber(), "go to", path);
  return {};
}

}  // namespace kw::platform::windows
