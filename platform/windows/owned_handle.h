#ifndef KITWRIGHT_PLATFORM_WINDOWS_OWNED_HANDLE_H_
#define KITWRIGHT_PLATFORM_WINDOWS_OWNED_HANDLE_H_

#include <utility>

#include "platform/windows/system_headers.h"

namespace kw::platform::windows {

/// A handle of the system that closes itself.
class OwnedHandle {
 public:
  explicit OwnedHandle(HANDLE handle = nullptr)
      : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  OwnedHandle(OwnedHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  OwnedHandle& operator=(OwnedHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~OwnedHandle() {
    if (handle_ != nullptr) CloseHandle(handle_);
  }
  HANDLE get() const { return handle_; }
  bool valid() const { return handle_ != nullptr; }

 private:
  HANDLE handle_;
};

/// The number of the call that failed last on this thread; never 0.
inline int LastNumber() {
  const DWORD number = GetLastError();
  return number == 0 ? ERROR_GEN_FAILURE : static_cast<int>(number);
}

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_OWNED_HANDLE_H_
