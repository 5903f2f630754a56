#ifndef KITWRIGHT_BASE_UNINTERRUPTED_LINUX_H_
#define KITWRIGHT_BASE_UNINTERRUPTED_LINUX_H_

#include <cerrno>

namespace kw {

/// The result of a system call that gives -1 on a failure, made again as long as signals interrupt it.
/// Network and user-space file systems interrupt even the opening of a file.
template <typename Call>
auto Uninterrupted(Call call) {
  for (;;) {
    const auto result = call();
    if (result != -1 || errno != EINTR) return result;
  }
}

}  // namespace kw

#endif  // KITWRIGHT_BASE_UNINTERRUPTED_LINUX_H_
