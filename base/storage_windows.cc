#include <windows.h>

#include <algorithm>

#include "base/retry_windows.h"
#include "base/storage.h"
#include "base/text.h"

namespace kw {
namespace {

Error Failure(const char* what, const std::string& path) {
  const DWORD error = GetLastError();
  return Error{error == 0 ? static_cast<int>(kErrorIo) : static_cast<int>(error),
               std::string("Could not ") + what + " " + path + " (" + std::to_string(error) + ")."};
}

std::wstring Wide(const std::string& path) {
  const std::u16string wide = Utf8ToUtf16(path);
  return {wide.begin(), wide.end()};
}

// Takes the read-only attribute off a file while `call` works on it: the system neither replaces nor removes
// such a file.
template <typename Call>
BOOL WithoutReadOnly(const std::wstring& path, const Call& call) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  const bool read_only = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (read_only) SetFileAttributesW(path.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
  const BOOL done = RetryWhileInUse(call);
  if (done || !read_only) return done;
  const DWORD error = GetLastError();
  SetFileAttributesW(path.c_str(), attributes);
  SetLastError(error);
  return FALSE;
}

class Win32File : public StorageFile {
 public:
  Win32File(HANDLE handle, std::string path) : handle_(handle), path_(std::move(path)) {}
  ~Win32File() override { CloseHandle(handle_); }

  Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
    size_t done = 0;
    while (done < buffer.size()) {
      OVERLAPPED at = At(offset + done);
      const DWORD want = static_cast<DWORD>(std::min<size_t>(buffer.size() - done, 1u << 26));
      DWORD got = 0;
      if (!ReadFile(handle_, buffer.data() + done, want, &got, &at) && GetLastError() != ERROR_HANDLE_EOF) {
        return Failure("read", path_);
      }
      if (got == 0) break;
      done += got;
    }
    return done;
  }

  Status WriteAt(uint64_t offset, std::span<const std::byte> data) override {
    size_t done = 0;
    while (done < data.size()) {
      OVERLAPPED at = At(offset + done);
      const DWORD want = static_cast<DWORD>(std::min<size_t>(data.size() - done, 1u << 26));
      DWORD put = 0;
      if (!WriteFile(handle_, data.data() + done, want, &put, &at)) return Failure("write", path_);
      if (put == 0) return Error{kErrorDiskFull, "Could not write " + path_ + ": no space."};
      done += put;
    }
    return {};
  }

  Result<uint64_t> Size() override {
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(handle_, &size)) return Failure("look at", path_);
    return static_cast<uint64_t>(size.QuadPart);
  }

  Status Truncate(uint64_t size) override {
    LARGE_INTEGER to{};
    to.QuadPart = static_cast<LONGLONG>(size);
    if (!SetFilePointerEx(handle_, to, nullptr, FILE_BEGIN) || !SetEndOfFile(handle_)) {
      return Failure("resize", path_);
    }
    return {};
  }

  Status Sync() override {
    if (!FlushFileBuffers(handle_)) return Failure("write", path_);
    return {};
  }

 private:
  static OVERLAPPED At(uint64_t offset) {
    OVERLAPPED at{};
    at.Offset = static_cast<DWORD>(offset);
    at.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return at;
  }

  HANDLE handle_;
  std::string path_;
};

class Win32Storage : public Storage {
 public:
  Result<std::unique_ptr<StorageFile>> Open(const std::string& path, Mode mode) override {
    DWORD access = GENERIC_READ;
    DWORD creation = OPEN_EXISTING;
    if (mode != Mode::kRead) access |= GENERIC_WRITE;
    if (mode == Mode::kCreateNew) creation = CREATE_NEW;
    if (mode == Mode::kCreateAlways) creation = CREATE_ALWAYS;
    const DWORD share = mode == Mode::kRead ? FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE
                                            : FILE_SHARE_READ | FILE_SHARE_DELETE;
    const HANDLE handle =
        CreateFileW(Wide(path).c_str(), access, share, nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return Failure("open", path);
    return std::unique_ptr<StorageFile>(std::make_unique<Win32File>(handle, path));
  }

  Status Rename(const std::string& from, const std::string& to) override {
    const std::wstring source = Wide(from);
    const std::wstring target = Wide(to);
    const BOOL done = WithoutReadOnly(target, [&] {
      return MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    });
    if (!done) return Failure("rename", from);
    return {};
  }

  Status Remove(const std::string& path) override {
    const std::wstring file = Wide(path);
    if (!WithoutReadOnly(file, [&] { return DeleteFileW(file.c_str()); })) return Failure("remove", path);
    return {};
  }

  bool Exists(const std::string& path) override {
    return GetFileAttributesW(Wide(path).c_str()) != INVALID_FILE_ATTRIBUTES;
  }

  Status CreateFolder(const std::string& path) override {
    if (CreateDirectoryW(Wide(path).c_str(), nullptr)) return {};
    const DWORD error = GetLastError();
    const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
    if (error == ERROR_ALREADY_EXISTS && attributes != INVALID_FILE_ATTRIBUTES &&
        (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
      return {};
    }
    SetLastError(error);
    return Failure("make the folder", path);
  }
};

}  // namespace

Storage& SystemStorage() {
  static Win32Storage storage;
  return storage;
}

}  // namespace kw
