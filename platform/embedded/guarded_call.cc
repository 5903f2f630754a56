#include "platform/embedded/guarded_call.h"

#include <csetjmp>
#include <csignal>
#include <iterator>

namespace kw::platform::embedded {
namespace {

constexpr int kFaults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

/// Where a fault leads back to; one for each call that is under way on this thread.
struct ReturnPoint {
  sigjmp_buf place;
  ReturnPoint* outer;
};
thread_local ReturnPoint* innermost = nullptr;

extern "C" void LeaveGuardedCall(int signal) {
  if (innermost != nullptr) siglongjmp(innermost->place, signal);
  // A fault of another thread is none of the call's: the program ends by it as it would without a guard.
  std::signal(signal, SIG_DFL);
}

/// The handlers of the faults, put back at the end.
class FaultHandlers {
 public:
  FaultHandlers() {
    struct sigaction action = {};
    action.sa_handler = LeaveGuardedCall;
    sigemptyset(&action.sa_mask);
    for (size_t i = 0; i < std::size(kFaults); ++i) sigaction(kFaults[i], &action, &before_[i]);
  }
  ~FaultHandlers() {
    for (size_t i = 0; i < std::size(kFaults); ++i) sigaction(kFaults[i], &before_[i], nullptr);
  }
  FaultHandlers(const FaultHandlers&) = delete;
  FaultHandlers& operator=(const FaultHandlers&) = delete;

 private:
  struct sigaction before_[std::size(kFaults)];
};

// Apart, so that the compiler keeps no variable of the caller in a register across the jump.
[[gnu::noinline]] int CallOrReturn(ReturnPoint& here, const std::function<void()>& call) {
  const int signal = sigsetjmp(here.place, 1);
  if (signal == 0) call();
  return signal;
}

}  // namespace

int GuardedCall(const std::function<void()>& call) {
  const FaultHandlers handlers;
  ReturnPoint here;
  here.outer = innermost;
  innermost = &here;
  const int signal = CallOrReturn(here, call);
  innermost = here.outer;
  return signal;
}

}  // namespace kw::platform::embedded
