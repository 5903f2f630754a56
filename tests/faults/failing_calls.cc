// A library that is loaded before the C library and stands between a program and its system calls on files:
// it counts them and makes those fail that a plan names (fault_plan.h).

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/faults/fault_plan.h"

namespace {

using kw::faults::CallKind;
using kw::faults::CountedCall;
using kw::faults::FaultMode;
using kw::faults::FaultPlan;

FaultPlan* Plan() {
  static FaultPlan* const plan = []() -> FaultPlan* {
    const char* path = std::getenv(kw::faults::kPlanVariable);
    if (path == nullptr) return nullptr;
    const int fd = static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC));
    if (fd < 0) return nullptr;
    void* mapped = ::mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    ::syscall(SYS_close, fd);
    return mapped == MAP_FAILED ? nullptr : static_cast<FaultPlan*>(mapped);
  }();
  return plan;
}

// The path of an open file; "" when it has none.
void PathOfFd(int fd, char (&path)[PATH_MAX]) {
  char link[32];
  std::snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
  const long got = ::syscall(SYS_readlinkat, AT_FDCWD, link, path, sizeof path - 1);
  path[got > 0 ? got : 0] = '\0';
}

void PathBelow(int folder, const char* name, char (&path)[PATH_MAX]) {
  if (name == nullptr) name = "";
  if (name[0] == '/') {
    std::snprintf(path, sizeof path, "%s", name);
    return;
  }
  char start[PATH_MAX];
  if (folder == AT_FDCWD) {
    if (::syscall(SYS_getcwd, start, sizeof start) < 0) start[0] = '\0';
  } else {
    PathOfFd(folder, start);
  }
  if (std::snprintf(path, sizeof path, "%s/%s", start, name) >= static_cast<int>(sizeof path)) path[0] = '\0';
}

// Nothing more is to suffer, so that nobody needs to know which file a call is about.
bool IsOver(const FaultPlan& plan) {
  return plan.mode != FaultMode::kNone &&
         uint64_t{plan.counted.load()} + 1 >= uint64_t{plan.first} + plan.times;
}

// The plan, when this call may be one of those it counts.
FaultPlan* PlanFor(CallKind kind) {
  FaultPlan* const plan = Plan();
  if (plan == nullptr || plan->armed.load() == 0 || (plan->kinds & kind) == 0) return nullptr;
  return IsOver(*plan) ? nullptr : plan;
}

enum class Turn { kGoOn, kFail, kShort, kKillAfter, kKillWizardAfter };

/// What becomes of one call; with kFail errno is set.
Turn TurnOf(CallKind kind, const char* call, const char* path) {
  FaultPlan* const plan = PlanFor(kind);
  if (plan == nullptr) return Turn::kGoOn;
  const size_t root = std::strlen(plan->root);
  if (std::strncmp(path, plan->root, root) != 0) return Turn::kGoOn;
  if (std::strncmp(path + root, plan->below, std::strlen(plan->below)) != 0) return Turn::kGoOn;
  const uint32_t number = plan->counted.fetch_add(1) + 1;
  const bool told = plan->mode == FaultMode::kNone || number == plan->first;
  if (told && number <= FaultPlan::kMostCalls) {
    CountedCall& counted = plan->calls[number - 1];
    counted.kind = kind;
    std::snprintf(counted.program, sizeof counted.program, "%s", program_invocation_short_name);
    std::snprintf(counted.call, sizeof counted.call, "%s", call);
    std::snprintf(counted.path, sizeof counted.path, "%.*s", static_cast<int>(sizeof counted.path) - 1,
                  path + root);
  }
  if (number < plan->first || number - plan->first >= plan->times) return Turn::kGoOn;
  plan->suffered.fetch_add(1);
  switch (plan->mode) {
    case FaultMode::kNone:
      return Turn::kGoOn;
    case FaultMode::kFail:
      errno = plan->error;
      return Turn::kFail;
    case FaultMode::kShort:
      return Turn::kShort;
    case FaultMode::kKillBefore:
      ::raise(SIGKILL);
      return Turn::kFail;
    case FaultMode::kKillAfter:
      return Turn::kKillAfter;
    case FaultMode::kKillWizardBefore:
      ::kill(plan->wizard, SIGKILL);
      return Turn::kGoOn;
    case FaultMode::kKillWizardAfter:
      return Turn::kKillWizardAfter;
  }
  return Turn::kGoOn;
}

Turn TurnOfFd(CallKind kind, const char* call, int fd) {
  if (PlanFor(kind) == nullptr) return Turn::kGoOn;
  char path[PATH_MAX];
  PathOfFd(fd, path);
  return TurnOf(kind, call, path);
}

Turn TurnAt(CallKind kind, const char* call, int folder, const char* name) {
  if (PlanFor(kind) == nullptr) return Turn::kGoOn;
  char path[PATH_MAX];
  PathBelow(folder, name, path);
  return TurnOf(kind, call, path);
}

// After a call was made.
template <typename T>
T Made(Turn turn, T result) {
  if (turn == Turn::kKillAfter) ::raise(SIGKILL);
  if (turn == Turn::kKillWizardAfter) ::kill(Plan()->wizard, SIGKILL);
  return result;
}

template <typename Function>
Function Next(const char* name) {
  return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

// Files that a build makes and packs have one time, so that two builds give the same bytes.
void FixTime(int fd, const char* path, timespec& changed) {
  if (Plan() == nullptr) return;
  char of_fd[PATH_MAX] = "";
  if (path == nullptr) PathOfFd(fd, of_fd);
  const char* const name = path == nullptr ? of_fd : path;
  constexpr time_t kMoment = 1100494380;
  for (const char* folder : {"/drive_c/Out/", "/drive_c/Temp/", "/bulwark-"}) {
    if (std::strstr(name, folder) != nullptr) changed = {kMoment, 0};
  }
}

size_t Half(Turn turn, size_t length) { return turn == Turn::kShort && length > 1 ? length / 2 : length; }

CallKind OpenKind(int flags) {
  return (flags & (O_ACCMODE | O_CREAT | O_TRUNC)) == O_RDONLY ? kw::faults::kOpenToRead
                                                               : kw::faults::kOpenToWrite;
}

}  // namespace

// The C library's own declarations promise what does not hold here.
#pragma GCC diagnostic ignored "-Wnonnull-compare"

#define NEXT(name) static const auto next = Next<decltype(&name)>(#name)

extern "C" {

#define OPEN(name)                                                                       \
  int name(const char* path, int flags, ...) {                                           \
    va_list rest;                                                                        \
    va_start(rest, flags);                                                               \
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0; \
    va_end(rest);                                                                        \
    NEXT(name);                                                                          \
    const Turn turn = TurnAt(OpenKind(flags), "open", AT_FDCWD, path);                   \
    return turn == Turn::kFail ? -1 : Made(turn, next(path, flags, mode));               \
  }
OPEN(open)
OPEN(open64)

#define OPENAT(name)                                                                     \
  int name(int folder, const char* path, int flags, ...) {                               \
    va_list rest;                                                                        \
    va_start(rest, flags);                                                               \
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0; \
    va_end(rest);                                                                        \
    NEXT(name);                                                                          \
    const Turn turn = TurnAt(OpenKind(flags), "openat", folder, path);                   \
    return turn == Turn::kFail ? -1 : Made(turn, next(folder, path, flags, mode));       \
  }
OPENAT(openat)
OPENAT(openat64)

#define FOPEN(name)                                                                                  \
  FILE* name(const char* path, const char* how) {                                                    \
    NEXT(name);                                                                                      \
    const bool reads = how[0] == 'r' && std::strchr(how, '+') == nullptr;                            \
    const Turn turn =                                                                                \
        TurnAt(reads ? kw::faults::kOpenToRead : kw::faults::kOpenToWrite, "fopen", AT_FDCWD, path); \
    return turn == Turn::kFail ? nullptr : Made(turn, next(path, how));                              \
  }
FOPEN(fopen)
FOPEN(fopen64)

ssize_t read(int fd, void* bytes, size_t length) {
  NEXT(read);
  const Turn turn = TurnOfFd(kw::faults::kRead, "read", fd);
  return turn == Turn::kFail ? -1 : Made(turn, next(fd, bytes, Half(turn, length)));
}
ssize_t write(int fd, const void* bytes, size_t length) {
  NEXT(write);
  const Turn turn = TurnOfFd(kw::faults::kWrite, "write", fd);
  return turn == Turn::kFail ? -1 : Made(turn, next(fd, bytes, Half(turn, length)));
}
ssize_t writev(int fd, const iovec* parts, int count) {
  NEXT(writev);
  const Turn turn = TurnOfFd(kw::faults::kWrite, "writev", fd);
  return turn == Turn::kFail ? -1
                             : Made(turn, next(fd, parts, turn == Turn::kShort && count > 1 ? 1 : count));
}

#define PREAD(name, offset_type)                                                               \
  ssize_t name(int fd, void* bytes, size_t length, offset_type offset) {                       \
    NEXT(name);                                                                                \
    const Turn turn = TurnOfFd(kw::faults::kRead, "pread", fd);                                \
    return turn == Turn::kFail ? -1 : Made(turn, next(fd, bytes, Half(turn, length), offset)); \
  }
PREAD(pread, off_t)
PREAD(pread64, off64_t)

#define PWRITE(name, offset_type)                                                              \
  ssize_t name(int fd, const void* bytes, size_t length, offset_type offset) {                 \
    NEXT(name);                                                                                \
    const Turn turn = TurnOfFd(kw::faults::kWrite, "pwrite", fd);                              \
    return turn == Turn::kFail ? -1 : Made(turn, next(fd, bytes, Half(turn, length), offset)); \
  }
PWRITE(pwrite, off_t)
PWRITE(pwrite64, off64_t)

// Calls on an open file, and calls on one path.
#define ON_FD(kind, name, parameters, arguments)                  \
  int name parameters {                                           \
    NEXT(name);                                                   \
    const Turn turn = TurnOfFd(kw::faults::kind, #name, fd);      \
    return turn == Turn::kFail ? -1 : Made(turn, next arguments); \
  }
#define ON_PATH(kind, name, folder, parameters, arguments)           \
  int name parameters {                                              \
    NEXT(name);                                                      \
    const Turn turn = TurnAt(kw::faults::kind, #name, folder, path); \
    return turn == Turn::kFail ? -1 : Made(turn, next arguments);    \
  }

ON_FD(kSync, fsync, (int fd), (fd))
ON_FD(kSync, fdatasync, (int fd), (fd))
ON_FD(kResize, ftruncate, (int fd, off_t size), (fd, size))
ON_FD(kResize, ftruncate64, (int fd, off64_t size), (fd, size))
ON_FD(kAttributes, fchmod, (int fd, mode_t mode), (fd, mode))
ON_FD(kAttributes, futimens, (int fd, const timespec* times), (fd, times))
ON_FD(kLock, flock, (int fd, int how), (fd, how))

// A file is closed even when closing it fails.
int close(int fd) {
  NEXT(close);
  const Turn turn = TurnOfFd(kw::faults::kClose, "close", fd);
  const int number = errno;
  const int result = next(fd);
  if (turn != Turn::kFail) return Made(turn, result);
  errno = number;
  return -1;
}

ON_PATH(kRename, rename, AT_FDCWD, (const char* path, const char* to), (path, to))
ON_PATH(kRename, renameat, folder, (int folder, const char* path, int other, const char* to),
        (folder, path, other, to))
ON_PATH(kRemove, unlink, AT_FDCWD, (const char* path), (path))
ON_PATH(kRemove, remove, AT_FDCWD, (const char* path), (path))
ON_PATH(kRemove, rmdir, AT_FDCWD, (const char* path), (path))
ON_PATH(kRemove, unlinkat, folder, (int folder, const char* path, int flags), (folder, path, flags))
ON_PATH(kMakeFolder, mkdir, AT_FDCWD, (const char* path, mode_t mode), (path, mode))
ON_PATH(kAttributes, chmod, AT_FDCWD, (const char* path, mode_t mode), (path, mode))
ON_PATH(kAttributes, utimensat, folder, (int folder, const char* path, const timespec* times, int flags),
        (folder, path, times, flags))
#define LOOK(name, folder, parameters, arguments)                     \
  int name parameters {                                               \
    NEXT(name);                                                       \
    const Turn turn = TurnAt(kw::faults::kLook, #name, folder, path); \
    if (turn == Turn::kFail) return -1;                               \
    const int result = next arguments;                                \
    if (result == 0) FixTime(AT_FDCWD, path, info->st_mtim);          \
    return Made(turn, result);                                        \
  }
#define LOOK_OPEN(name, type)                                 \
  int name(int fd, type* info) {                              \
    NEXT(name);                                               \
    const Turn turn = TurnOfFd(kw::faults::kLook, #name, fd); \
    if (turn == Turn::kFail) return -1;                       \
    const int result = next(fd, info);                        \
    if (result == 0) FixTime(fd, nullptr, info->st_mtim);     \
    return Made(turn, result);                                \
  }
LOOK(stat, AT_FDCWD, (const char* path, struct stat* info), (path, info))
LOOK(stat64, AT_FDCWD, (const char* path, struct stat64* info), (path, info))
LOOK(lstat, AT_FDCWD, (const char* path, struct stat* info), (path, info))
LOOK(lstat64, AT_FDCWD, (const char* path, struct stat64* info), (path, info))
LOOK(fstatat, folder, (int folder, const char* path, struct stat* info, int flags),
     (folder, path, info, flags))
LOOK(fstatat64, folder, (int folder, const char* path, struct stat64* info, int flags),
     (folder, path, info, flags))
LOOK_OPEN(fstat, struct stat)
LOOK_OPEN(fstat64, struct stat64)

ON_PATH(kLook, access, AT_FDCWD, (const char* path, int how), (path, how))
ON_PATH(kLook, chdir, AT_FDCWD, (const char* path), (path))

// Programs count wherever they lie: those beside the wizard as if they lay below the root.
int posix_spawn(pid_t* child, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]) {
  NEXT(posix_spawn);
  Turn turn = Turn::kGoOn;
  if (FaultPlan* const plan = PlanFor(kw::faults::kStart)) {
    char shown[PATH_MAX];
    const char* const name = std::strrchr(path, '/');
    std::snprintf(shown, sizeof shown, "%sprograms/%s", plan->root, name == nullptr ? path : name + 1);
    const bool below = std::strncmp(path, plan->root, std::strlen(plan->root)) == 0;
    turn = TurnOf(kw::faults::kStart, "posix_spawn", below ? path : shown);
  }
  return turn == Turn::kFail ? errno
                             : Made(turn, next(child, path, actions, attributes, arguments, environment));
}

DIR* opendir(const char* path) {
  NEXT(opendir);
  const Turn turn = TurnAt(kw::faults::kList, "opendir", AT_FDCWD, path);
  return turn == Turn::kFail ? nullptr : Made(turn, next(path));
}
DIR* fdopendir(int fd) {
  NEXT(fdopendir);
  const Turn turn = TurnOfFd(kw::faults::kList, "fdopendir", fd);
  return turn == Turn::kFail ? nullptr : Made(turn, next(fd));
}

#define READDIR(name, entry)                                                   \
  entry* name(DIR* folder) {                                                   \
    NEXT(name);                                                                \
    const Turn turn = TurnOfFd(kw::faults::kList, "readdir", ::dirfd(folder)); \
    return turn == Turn::kFail ? nullptr : Made(turn, next(folder));           \
  }
READDIR(readdir, dirent)
READDIR(readdir64, dirent64)

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*work)(void*),
                   void* argument) {
  NEXT(pthread_create);
  static std::atomic<int> started{0};
  const char* const most = std::getenv(kw::faults::kThreadsVariable);
  if (most != nullptr && started.fetch_add(1) >= std::atoi(most)) return EAGAIN;
  return next(thread, attributes, work, argument);
}

ssize_t getrandom(void* bytes, size_t length, unsigned) {
  FaultPlan* const plan = Plan();
  if (plan == nullptr) return ::syscall(SYS_getrandom, bytes, length, 0);
  const uint32_t number = plan->random.fetch_add(1) + 1;
  std::memset(bytes, 0, length);
  std::memcpy(bytes, &number, std::min(length, sizeof number));
  return static_cast<ssize_t>(length);
}

}  // extern "C"
