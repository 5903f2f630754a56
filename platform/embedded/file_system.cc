#include "platform/embedded/file_system.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "base/errno_number_linux.h"
#include "base/text.h"
#include "base/uninterrupted_linux.h"
#include "platform/embedded/delete_tree.h"
#include "platform/embedded/host_file.h"
#include "platform/shared/file_errors.h"

namespace kw::platform::embedded {
namespace {

class HostFileHandle : public FileHandle {
 public:
  HostFileHandle(OwnedFd fd, std::string path) : fd_(std::move(fd)), path_(std::move(path)) {}

  Result<std::string> Read(size_t length) override {
    std::string bytes(length, '\0');
    size_t done = 0;
    while (done < length) {
      const ssize_t got =
          Uninterrupted([&] { return ::read(fd_.get(), bytes.data() + done, length - done); });
      if (got < 0) return FileError(ErrorNumberOfErrno(errno), "read", path_);
      if (got == 0) break;
      done += static_cast<size_t>(got);
    }
    bytes.resize(done);
    return bytes;
  }

  Status Write(std::string_view bytes) override {
    const int number = WriteAll(fd_.get(), bytes);
    if (number != 0) return FileError(number, "write", path_);
    return {};
  }

  Status Flush() override {
    if (Uninterrupted([&] { return ::fdatasync(fd_.get()); }) == 0 || errno == EINVAL) return {};
    return FileError(ErrorNumberOfErrno(errno), "write", path_);
  }

 private:
  OwnedFd fd_;
  std::string path_;
};

// A path on the host, and what is there.
struct Spot {
  std::string host;
  bool allowed = false;  ///< no forbidden character in it
  HostStatus status;
  bool is_link = false;  ///< as far as LookAtTarget looked
};

Spot Look(const MachinePaths& paths, const std::string& path) {
  Spot spot;
  if (path.empty()) return spot;
  spot.allowed = !HasBadNameCharacter(paths.FullPath(path));
  int refusal = 0;
  spot.host = paths.HostPath(path, refusal);
  if (spot.allowed) spot.status = HostStatus::Of(spot.host);
  // Behind a file's name the separator makes another, bad one.
  if (spot.status.IsFile() && (path.back() == '\\' || path.back() == '/')) {
    spot.allowed = false;
    spot.status = {};
  }
  if (!spot.status.exists && spot.status.refusal == 0) spot.status.refusal = refusal;
  return spot;
}

// A spot whose file is to be replaced.
Spot LookAtTarget(const MachinePaths& paths, const std::string& path) {
  Spot spot = Look(paths, path);
  spot.is_link = spot.allowed && IsHostLink(spot.host);
  return spot;
}

// Why there is nothing at the spot, or nothing that can be looked at.
int MissingNumber(const Spot& spot) {
  if (spot.host.empty()) return kErrorPathNotFound;
  if (!spot.allowed) return kErrorInvalidName;
  if (spot.status.refusal != 0) return spot.status.refusal;
  return HostStatus::Of(HostParent(spot.host)).IsFolder() ? kErrorFileNotFound : kErrorPathNotFound;
}

// 0 if something may be made at the spot, where nothing is.
int CreateNumber(const Spot& spot) {
  const int missing = MissingNumber(spot);
  if (missing != kErrorFileNotFound) return missing;
  return HostStatus::Of(HostParent(spot.host)).WriteProtected() ? static_cast<int>(kErrorAccessDenied) : 0;
}

// 0 if the file at the spot may be made or written, as far as attributes tell.
int WriteNumber(const Spot& spot) {
  if (!spot.status.exists) return CreateNumber(spot);
  return spot.status.IsFolder() || spot.status.WriteProtected() ? static_cast<int>(kErrorAccessDenied) : 0;
}

// 0 if the file at the spot may be made or replaced by another.
int ReplaceNumber(const Spot& spot) {
  // Of a link to a file nothing matters: it goes, and what it points to stays.
  const int number = spot.is_link && !spot.status.IsFolder() ? 0 : WriteNumber(spot);
  if (number != 0) return number;
  return HostStatus::Of(HostParent(spot.host)).WriteProtected() ? static_cast<int>(kErrorAccessDenied) : 0;
}

// Opens the file at the spot and takes its lock.
int OpenLocked(const Spot& spot, int flags, bool exclusive, OwnedFd& fd) {
  fd = OwnedFd(Uninterrupted([&] { return ::open(spot.host.c_str(), flags | O_CLOEXEC, 0666); }));
  return fd.valid() ? LockFile(fd.get(), exclusive) : ErrorNumberOfErrno(errno);
}

// Opens the file at the spot for reading, shared.
int OpenForReading(const Spot& spot, OwnedFd& fd) {
  if (!spot.status.exists) return MissingNumber(spot);
  if (spot.status.IsFolder()) return kErrorAccessDenied;
  return OpenLocked(spot, O_RDONLY, false, fd);
}

// Makes sure that a file which is to be replaced is free, and holds it.
int HoldForReplacement(const Spot& spot, OwnedFd& fd) {
  return spot.status.exists && !spot.is_link ? OpenLocked(spot, O_RDWR, true, fd) : 0;
}

FileEntry EntryOf(const std::string& host, const HostStatus& status) {
  FileEntry entry;
  entry.name = HostName(host);
  entry.is_folder = status.IsFolder();
  entry.read_only = status.WriteProtected();
  entry.size = status.IsFile() ? static_cast<int64_t>(status.info.st_size) : 0;
  return entry;
}

}  // namespace

bool EmbeddedFileSystem::FileExists(const std::string& path) { return Look(paths_, path).status.IsFile(); }

bool EmbeddedFileSystem::FolderExists(const std::string& path) {
  return Look(paths_, path).status.IsFolder();
}

Result<FileEntry> EmbeddedFileSystem::GetFile(const std::string& path) {
  const Spot spot = Look(paths_, path);
  if (spot.status.IsFile()) return EntryOf(spot.host, spot.status);
  const int number = spot.status.exists ? static_cast<int>(kErrorFileNotFound) : MissingNumber(spot);
  return FileError(number, "look at", path);
}

bool EmbeddedFileSystem::IsLink(const std::string& path) { return LookAtTarget(paths_, path).is_link; }

bool EmbeddedFileSystem::IsSameFolder(const std::string& one, const std::string& two) {
  const HostStatus status = Look(paths_, one).status;
  return status.IsFolder() && status.SameAs(Look(paths_, two).status);
}

Result<std::vector<FileEntry>> EmbeddedFileSystem::List(const std::string& folder) {
  const Spot spot = Look(paths_, folder);
  if (!spot.status.IsFolder()) {
    const bool bad_name = !spot.host.empty() && !spot.allowed;
    return FileError(bad_name ? kErrorInvalidName : kErrorPathNotFound, "list", folder);
  }
  const OwnedFd open(
      Uninterrupted([&] { return ::open(spot.host.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  std::vector<std::string> names;
  const int number = open.valid() ? NamesInFolder(open.get(), names) : ErrorNumberOfErrno(errno);
  if (number != 0) return FileError(number, "list", folder);
  std::vector<FileEntry> entries;
  for (const std::string& name : names) {
    const std::string host = spot.host + "/" + name;
    entries.push_back(EntryOf(host, HostStatus::Of(host)));
  }
  return entries;
}

Status EmbeddedFileSystem::CopyFile(const std::string& from, const std::string& to, bool overwrite) {
  const Spot source = Look(paths_, from);
  const Spot target = LookAtTarget(paths_, to);
  OwnedFd in;
  if (const int number = OpenForReading(source, in)) return FileError(number, "copy", from);
  if (!target.is_link && source.status.SameAs(target.status)) return {};

  const auto failure = [&](int number) { return FileError(number, "copy " + from + " to", to); };
  const bool replaceable = target.is_link || !target.status.WriteProtected();
  if ((target.is_link || target.status.IsFile()) && replaceable && !overwrite) {
    return failure(kErrorFileExists);
  }
  if (const int number = ReplaceNumber(target)) return failure(number);
  OwnedFd held;
  if (const int number = HoldForReplacement(target, held)) return failure(number);

  Replacement copy(target.host);
  if (const int number = copy.Create()) return failure(number);
  if (const int number = CopyAll(in.get(), copy.fd())) return failure(number);
  struct stat info {};
  const bool taken = ::fstat(in.get(), &info) == 0 && ::fchmod(copy.fd(), info.st_mode & 0777) == 0;
  const timespec times[2] = {info.st_atim, info.st_mtim};
  if (!taken || ::futimens(copy.fd(), times) != 0) return failure(ErrorNumberOfErrno(errno));
  if (const int number = copy.TakePlace()) return failure(number);
  return {};
}

Status EmbeddedFileSystem::DeleteFile(const std::string& path, bool force) {
  const Spot spot = Look(paths_, path);
  struct stat link {};
  const bool there = spot.allowed && ::lstat(spot.host.c_str(), &link) == 0;
  if (!there) return FileError(MissingNumber(spot), "delete", path);
  const int number =
      spot.status.IsFolder() ? static_cast<int>(kErrorAccessDenied) : DeleteHostFile(spot.host, force);
  if (number != 0) return FileError(number, "delete", path);
  return {};
}

Status EmbeddedFileSystem::DeleteFolder(const std::string& path, bool force) {
  const Spot spot = Look(paths_, path);
  if (!spot.status.IsFolder()) {
    const int number = spot.status.refusal != 0 ? spot.status.refusal : static_cast<int>(kErrorPathNotFound);
    return FileError(number, "delete", path);
  }
  std::string failed;
  if (const int number = DeleteHostTree(spot.host, force, paths_.HostPath(paths_.current()), failed)) {
    return FileError(number, "delete", path + ReplaceAll(failed.substr(spot.host.size()), "/", "\\"));
  }
  return {};
}

Status EmbeddedFileSystem::CreateFolder(const std::string& path) {
  const Spot spot = Look(paths_, path);
  int number = spot.status.exists ? static_cast<int>(kErrorAlreadyExists) : CreateNumber(spot);
  if (number == 0 && ::mkdir(spot.host.c_str(), 0777) != 0) number = ErrorNumberOfErrno(errno);
  if (number != 0) return FileError(number, "create the folder", path);
  return {};
}

Status EmbeddedFileSystem::SetReadOnly(const std::string& path, bool read_only) {
  const Spot spot = Look(paths_, path);
  int number = spot.status.exists ? 0 : MissingNumber(spot);
  if (spot.status.IsFolder()) number = kErrorAccessDenied;
  if (number == 0) {
    const mode_t mode = spot.status.info.st_mode & 07777;
    const mode_t wanted =
        read_only ? mode & ~static_cast<mode_t>(S_IWUSR | S_IWGRP | S_IWOTH) : mode | S_IWUSR;
    if (::chmod(spot.host.c_str(), wanted) != 0) number = ErrorNumberOfErrno(errno);
  }
  if (number != 0) return FileError(number, "change the attributes of", path);
  return {};
}

Result<std::unique_ptr<FileHandle>> EmbeddedFileSystem::Open(const std::string& path, OpenHow how) {
  const Spot spot = Look(paths_, path);
  OwnedFd fd;
  int number = 0;
  if (how == OpenHow::kReadExisting) {
    number = OpenForReading(spot, fd);
  } else {
    number = WriteNumber(spot);
    const int create = spot.status.exists ? 0 : O_CREAT | O_NOFOLLOW;
    if (number == 0) number = OpenLocked(spot, O_RDWR | create, true, fd);
  }
  if (number != 0) return FileError(number, "open", path);
  return std::unique_ptr<FileHandle>(std::make_unique<HostFileHandle>(std::move(fd), path));
}

Result<std::string> EmbeddedFileSystem::ReadFile(const std::string& path) {
  OwnedFd fd;
  std::string bytes;
  int number = OpenForReading(Look(paths_, path), fd);
  if (number == 0) number = ReadAll(fd.get(), bytes);
  if (number != 0) return FileError(number, "read", path);
  return bytes;
}

Status EmbeddedFileSystem::WriteFile(const std::string& path, std::string_view bytes) {
  const Spot spot = LookAtTarget(paths_, path);
  int number = ReplaceNumber(spot);
  OwnedFd held;
  if (number == 0) number = HoldForReplacement(spot, held);
  if (number != 0) return FileError(number, "write", path);
  Replacement file(spot.host);
  number = file.Create();
  if (number == 0) number = WriteAll(file.fd(), bytes);
  const bool keep_rights = spot.status.exists && !spot.is_link;
  if (number == 0 && keep_rights && ::fchmod(file.fd(), spot.status.info.st_mode & 0777) != 0) {
    number = ErrorNumberOfErrno(errno);
  }
  if (number == 0) number = file.TakePlace();
  if (number != 0) return FileError(number, "write", path);
  return {};
}

Status EmbeddedFileSystem::SetCurrentFolder(const std::string& path) {
  const Spot spot = Look(paths_, path);
  if (!spot.status.IsFolder()) return FileError(kErrorPathNotFound, "go to", path);
  if (::chdir(spot.host.c_str()) != 0) return FileError(ErrorNumberOfErrno(errno), "go to", path);
  paths_ = MachinePaths(paths_.root(), paths_.FullPath(path));
  ::setenv("KITWRIGHT_CWD", paths_.current().c_str(), 1);
  return {};
}

}  // namespace kw::platform::embedded
