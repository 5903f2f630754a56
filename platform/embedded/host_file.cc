#include "platform/embedded/host_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include "base/errno_number_linux.h"
#include "base/result.h"
#include "base/text.h"
#include "base/uninterrupted_linux.h"

namespace kw::platform::embedded {
namespace {

constexpr size_t kChunk = size_t{1} << 17;

}  // namespace

OwnedFd& OwnedFd::operator=(OwnedFd&& other) noexcept {
  std::swap(fd_, other.fd_);
  return *this;
}

OwnedFd::~OwnedFd() {
  if (fd_ >= 0) ::close(fd_);
}

HostStatus HostStatus::Of(const std::string& path) {
  HostStatus status;
  status.exists = ::stat(path.c_str(), &status.info) == 0;
  if (!status.exists && errno != ENOENT && errno != ENOTDIR) status.refusal = ErrorNumberOfErrno(errno);
  return status;
}

bool IsHostLink(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
}

std::string HostParent(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string HostName(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

int LockFile(int fd, bool exclusive) {
  const int how = (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB;
  if (Uninterrupted([&] { return ::flock(fd, how); }) == 0) return 0;
  // A file system without locks has nobody who could hold one.
  return errno == EWOULDBLOCK ? static_cast<int>(kErrorSharingViolation) : 0;
}

int NamesInFolder(int folder, std::vector<std::string>& names) {
  struct Close {
    void operator()(DIR* open) const { ::closedir(open); }
  };
  OwnedFd copy(::fcntl(folder, F_DUPFD_CLOEXEC, 0));
  const std::unique_ptr<DIR, Close> open(copy.valid() ? ::fdopendir(copy.get()) : nullptr);
  if (open == nullptr) return ErrorNumberOfErrno(errno);
  copy.Release();
  for (;;) {
    errno = 0;
    const dirent* const entry = ::readdir(open.get());
    if (entry == nullptr && errno != 0) return ErrorNumberOfErrno(errno);
    if (entry == nullptr) break;
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    const int order = CompareNoCase(a, b);
    return order != 0 ? order < 0 : a < b;
  });
  return 0;
}

int WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t put = Uninterrupted([&] { return ::write(fd, bytes.data(), bytes.size()); });
    if (put < 0) return ErrorNumberOfErrno(errno);
    if (put == 0) return kErrorDiskFull;
    bytes.remove_prefix(static_cast<size_t>(put));
  }
  return 0;
}

int ReadAll(int fd, std::string& bytes) {
  bytes.clear();
  struct stat info {};
  if (::fstat(fd, &info) == 0 && info.st_size > 0) bytes.reserve(static_cast<size_t>(info.st_size) + 1);
  for (;;) {
    const size_t have = bytes.size();
    bytes.resize(have + kChunk);
    const ssize_t got = Uninterrupted([&] { return ::read(fd, bytes.data() + have, kChunk); });
    bytes.resize(have + (got > 0 ? static_cast<size_t>(got) : 0));
    if (got < 0) return ErrorNumberOfErrno(errno);
    if (got == 0) return 0;
  }
}

int CopyAll(int from, int to) {
  const std::unique_ptr<char[]> buffer(new char[kChunk]);
  for (;;) {
    const ssize_t got = Uninterrupted([&] { return ::read(from, buffer.get(), kChunk); });
    if (got < 0) return ErrorNumberOfErrno(errno);
    if (got == 0) return 0;
    const int failed = WriteAll(to, {buffer.get(), static_cast<size_t>(got)});
    if (failed != 0) return failed;
  }
}

Replacement::~Replacement() {
  if (!path_.empty()) ::unlink(path_.c_str());
}

int Replacement::Create() {
  static std::atomic<unsigned> count{0};
  const std::string start = HostParent(target_) + "/.kw-" + std::to_string(::getpid()) + "-";
  for (;;) {
    std::string path = start + std::to_string(count++);
    fd_ = OwnedFd(
        Uninterrupted([&] { return ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666); }));
    if (fd_.valid()) {
      path_ = std::move(path);
      return 0;
    }
    if (errno != EEXIST) return ErrorNumberOfErrno(errno);
  }
}

int Replacement::TakePlace() {
  // Some file systems tell of a full disk only now.
  if (::close(fd_.Release()) != 0) return ErrorNumberOfErrno(errno);
  if (::rename(path_.c_str(), target_.c_str()) != 0) return ErrorNumberOfErrno(errno);
  path_.clear();
  return 0;
}

}  // namespace kw::platform::embedded
