#ifndef KITWRIGHT_BASE_UNINTERRUPTED_LINUX_H_
#define KITWRIGHT_BASE_UNINTERRUPTED_LINUX_H_

#include <cerrno>

namespace kw {

/// The result of a system call that gives -1 on a failure, made again when a signal interrupts it, though not
/// for ever. Network and user-space file systems interrupt even the opening of a file.
template <typename Call>
auto Uninterrupted(Call call) {
  constexpr int kMostTries = 1000;
  for (int tries = 1;; ++tries) {
    const auto result = call();
    if (result != -1 || errno != EINTR || tries == kMostTries) return result;
  }
}

}  // namespace kw

#endif  // KITWRIGHT_BASE_UNINTERRUPTED_LINUX_H_
