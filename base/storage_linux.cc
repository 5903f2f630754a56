#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/errno_number_linux.h"
#include "base/storage.h"
#include "base/uninterrupted_linux.h"

namespace kw {
namespace {

Error Failure(const char* what, const std::string& path) {
  const int error = errno;
  return Error{ErrorNumberOfErrno(error),
               std::string("Could not ") + what + " " + path + ": " + std::strerror(error) + "."};
}

class PosixFile : public StorageFile {
 public:
  PosixFile(int fd, std::string path) : fd_(fd), path_(std::move(path)) {}
  ~PosixFile() override { ::close(fd_); }

  Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
    size_t done = 0;
    while (done < buffer.size()) {
      const ssize_t got = Uninterrupted([&] {
        return ::pread(fd_, buffer.data() + done, buffer.size() - done, static_cast<off_t>(offset + done));
      });
      if (got < 0) return Failure("read", path_);
      if (got == 0) break;
      done += static_cast<size_t>(got);
    }
    return done;
  }

  Status WriteAt(uint64_t offset, std::span<const std::byte> data) override {
    size_t done = 0;
    while (done < data.size()) {
      const ssize_t put = Uninterrupted([&] {
        return ::pwrite(fd_, data.data() + done, data.size() - done, static_cast<off_t>(offset + done));
      });
      if (put < 0) return Failure("write", path_);
      if (put == 0) return Error{kErrorDiskFull, "Could not write " + path_ + ": no space."};
      done += static_cast<size_t>(put);
    }
    return {};
  }

  Result<uint64_t> Size() override {
    struct stat info {};
    if (::fstat(fd_, &info) != 0) return Failure("look at", path_);
    return static_cast<uint64_t>(info.st_size);
  }

  Status Truncate(uint64_t size) override {
    const auto resize = [&] { return ::ftruncate(fd_, static_cast<off_t>(size)); };
    if (Uninterrupted(resize) != 0) return Failure("resize", path_);
    return {};
  }

  Status Sync() override {
    if (Uninterrupted([&] { return ::fdatasync(fd_); }) != 0) return Failure("write", path_);
    return {};
  }

 private:
  int fd_;
  std::string path_;
};

class PosixStorage : public Storage {
 public:
  Result<std::unique_ptr<StorageFile>> Open(const std::string& path, Mode mode) override {
    int flags = O_CLOEXEC;
    switch (mode) {
      case Mode::kRead:
        flags |= O_RDONLY;
        break;
      case Mode::kReadWrite:
        flags |= O_RDWR;
        break;
      case Mode::kCreateNew:
        flags |= O_RDWR | O_CREAT | O_EXCL;
        break;
      case Mode::kCreateAlways:
        flags |= O_RDWR | O_CREAT | O_TRUNC;
        break;
    }
    // The owner's write bit is the read-only attribute here, and it holds for the superuser too.
    struct stat info {};
    const bool may_exist = mode != Mode::kCreateNew;
    if (may_exist && mode != Mode::kRead && ::stat(path.c_str(), &info) == 0 &&
        (info.st_mode & S_IWUSR) == 0) {
      errno = EACCES;
      return Failure("write", path);
    }
    const int fd = Uninterrupted([&] { return ::open(path.c_str(), flags, 0666); });
    if (fd < 0) return Failure("open", path);
    if (may_exist && ::fstat(fd, &info) == 0 && S_ISDIR(info.st_mode)) {
      ::close(fd);
      errno = EISDIR;
      return Failure("open", path);
    }
    return std::unique_ptr<StorageFile>(std::make_unique<PosixFile>(fd, path));
  }

  Status Rename(const std::string& from, const std::string& to) override {
    if (::rename(from.c_str(), to.c_str()) != 0) return Failure("rename", from);
    return {};
  }

  Status Remove(const std::string& path) override {
    if (::unlink(path.c_str()) != 0) return Failure("remove", path);
    return {};
  }

  bool Exists(const std::string& path) override {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
  }

  Status CreateFolder(const std::string& path) override {
    struct stat info {};
    if (::mkdir(path.c_str(), 0777) == 0) return {};
    const int error = errno;
    if (error == EEXIST && ::lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) return {};
    errno = error;
    return Failure("make the folder", path);
  }
};

}  // namespace

Storage& SystemStorage() {
  static PosixStorage storage;
  return storage;
}

}  // namespace kw
