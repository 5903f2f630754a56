#include "platform/embedded/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "base/errno_number_linux.h"
#include "base/uninterrupted_linux.h"

namespace kw::platform::embedded {

FileLock::FileLock(std::string path) : path_(std::move(path)) {}

FileLock::~FileLock() {
  if (fd_ >= 0) ::close(fd_);
}

Status FileLock::Acquire(Mode mode) {
  if (fd_ < 0) fd_ = Uninterrupted([&] { return ::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666); });
  const int how = mode == Mode::kShared ? LOCK_SH : LOCK_EX;
  if (fd_ < 0 || Uninterrupted([&] { return ::flock(fd_, how); }) != 0)
    return {kErrorAccessDenied, "Could not lock " + path_ + ": " + std::strerror(errno) + "."};
  return {};
}

void FileLock::Release() {
  if (Uninterrupted([&] { return ::flock(fd_, LOCK_UN); }) == 0) return;
  // A closed file holds no lock, whatever the system said.
  ::close(fd_);
  fd_ = -1;
}

Result<FileIdentity> FileIdentity::Of(const std::string& path) {
  FileIdentity identity;
  struct stat info {};
  if (Uninterrupted([&] { return ::stat(path.c_str(), &info); }) != 0) {
    const int error = errno;
    if (error == ENOENT || error == ENOTDIR) return identity;
    return {ErrorNumberOfErrno(error), "Could not look at " + path + ": " + std::strerror(error) + "."};
  }
  identity.exists = true;
  identity.device = info.st_dev;
  identity.number = info.st_ino;
  identity.size = info.st_size;
  identity.changed = int64_t{info.st_mtim.tv_sec} * 1'000'000'000 + info.st_mtim.tv_nsec;
  return identity;
}

}  // namespace kw::platform::embedded
