#ifndef KITWRIGHT_PLATFORM_EMBEDDED_GUARDED_CALL_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_GUARDED_CALL_H_

#include <functional>

namespace kw::platform::embedded {

/// Runs `call` on this thread. When a fault goes through it (memory, arithmetic, an abort), the call is given
/// up where it stands and the signal's number is the result; otherwise 0. Calls may nest. No destructor of
/// what is given up runs, so that only foreign code belongs in here.
int GuardedCall(const std::function<void()>& call);

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_GUARDED_CALL_H_
