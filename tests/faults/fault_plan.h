#ifndef KITWRIGHT_TESTS_FAULTS_FAULT_PLAN_H_
#define KITWRIGHT_TESTS_FAULTS_FAULT_PLAN_H_

#include <sys/types.h>

#include <atomic>
#include <cstdint>

namespace kw::faults {

/// System calls by what they do; a plan names the kinds that it counts.
enum CallKind : uint32_t {
  kOpenToRead = 1U << 0,
  kOpenToWrite = 1U << 1,
  kRead = 1U << 2,
  kWrite = 1U << 3,
  kSync = 1U << 4,
  kClose = 1U << 5,
  kRename = 1U << 6,
  kRemove = 1U << 7,
  kMakeFolder = 1U << 8,
  kAttributes = 1U << 9,
  kResize = 1U << 10,
  kLook = 1U << 11,
  kList = 1U << 12,
  kLock = 1U << 13,
  kStart = 1U << 14,
};
constexpr uint32_t kAllCalls = (1U << 15) - 1;
/// The calls that a signal may interrupt.
constexpr uint32_t kInterruptibleCalls =
    kOpenToRead | kOpenToWrite | kRead | kWrite | kSync | kResize | kLock | kClose;
/// The calls that may be denied.
constexpr uint32_t kDeniedCalls =
    kOpenToRead | kOpenToWrite | kRename | kRemove | kMakeFolder | kAttributes | kList | kLook | kStart;
/// The calls after which the disk is another.
constexpr uint32_t kChangingCalls =
    kOpenToWrite | kWrite | kRename | kRemove | kMakeFolder | kAttributes | kResize;
/// The calls that a full disk refuses.
constexpr uint32_t kGrowingCalls = kOpenToWrite | kWrite | kMakeFolder | kSync | kResize;

enum class FaultMode : uint32_t {
  kNone,              ///< count only
  kFail,              ///< the call fails with `error`
  kShort,             ///< a read or write moves half of what was asked for
  kKillBefore,        ///< the process that makes the call is killed in its place
  kKillAfter,         ///< the call is made, then the process that made it is killed
  kKillWizardBefore,  ///< the wizard is killed in the place of the call, whoever makes it; others make theirs
  kKillWizardAfter,   ///< the call is made, then the wizard is killed, whoever made it
};

/// A call that was counted.
struct CountedCall {
  uint32_t kind;
  char program[20];
  char call[12];
  char path[224];
};

/// What one run is to suffer, and what it did: one object in a file that the wizard and the tools that it
/// starts map. Calls below the folder `root` are counted while `armed`, in the order in which all processes
/// make them.
struct FaultPlan {
  static constexpr uint32_t kMostCalls = 1U << 15;

  char root[256];
  char below[128];  ///< a folder below the root to which the plan is limited; "" for all
  std::atomic<uint32_t> armed;
  uint32_t kinds;
  FaultMode mode;
  int32_t error;
  uint32_t first;  ///< the first call, from 1, that suffers
  uint32_t times;  ///< how many calls from there on do
  pid_t wizard;
  std::atomic<uint32_t> counted;
  std::atomic<uint32_t> suffered;
  std::atomic<uint32_t> random;  ///< random bytes are counted out, so that two runs give the same
  CountedCall calls[kMostCalls];
};

/// The environment variable with the path of the plan's file.
constexpr const char* kPlanVariable = "KITWRIGHT_FAULT_PLAN";
/// The environment variable with the number of threads that the system starts before it refuses.
constexpr const char* kThreadsVariable = "KITWRIGHT_FAULT_THREADS";

}  // namespace kw::faults

#endif  // KITWRIGHT_TESTS_FAULTS_FAULT_PLAN_H_
