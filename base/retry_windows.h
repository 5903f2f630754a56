#ifndef KITWRIGHT_BASE_RETRY_WINDOWS_H_
#define KITWRIGHT_BASE_RETRY_WINDOWS_H_

#include <windows.h>

namespace kw {

/// Makes a call of the system again, for up to a second, while it fails because another program has the file
/// open: scanners and indexers look through a new file for a moment, and then let it go. What the last call
/// gave, with its GetLastError.
template <typename Call>
BOOL RetryWhileInUse(const Call& call) {
  constexpr int kMostTries = 50;
  constexpr DWORD kPause = 20;  // milliseconds
  for (int tries = 1;; ++tries) {
    const BOOL done = call();
    const DWORD error = done ? ERROR_SUCCESS : GetLastError();
    const bool in_use = error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
    if (!in_use || tries == kMostTries) return done;
    Sleep(kPause);
  }
}

}  // namespace kw

#endif  // KITWRIGHT_BASE_RETRY_WINDOWS_H_
