#ifndef KITWRIGHT_PLATFORM_EMBEDDED_X11_DESKTOP_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_X11_DESKTOP_H_

#include <sys/types.h>

#include <memory>
#include <string>

namespace kw::platform::embedded {

/// The windows of other programs on the display that DISPLAY names. Without a display there are none.
class X11Desktop {
 public:
  X11Desktop();
  ~X11Desktop();
  /// Title of the window that has the focus, if it says that it belongs to `process`; otherwise "".
  std::string ForegroundTitle(pid_t process);
  /// Raises the window with this title and gives it the focus.
  void BringToFront(const std::string& title);

 private:
  class Display;
  /// The connection, made on first use; null when there is none.
  Display* Open();
  std::unique_ptr<Display> display_;
  bool tried_ = false;
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_X11_DESKTOP_H_
