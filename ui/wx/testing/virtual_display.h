#ifndef KITWRIGHT_UI_WX_TESTING_VIRTUAL_DISPLAY_H_
#define KITWRIGHT_UI_WX_TESTING_VIRTUAL_DISPLAY_H_

#include <sys/types.h>

#include <memory>
#include <string>

namespace kw::ui::testing {

/// A virtual display (Xvfb) with a window manager (openbox), for tests of real windows. It becomes this
/// process's DISPLAY, and ends with the object.
class VirtualDisplay {
 public:
  /// Starts one of `width` by `height` pixels; a null pointer when the programs for it are not installed.
  static std::unique_ptr<VirtualDisplay> Start(int width, int height);
  ~VirtualDisplay();
  VirtualDisplay(const VirtualDisplay&) = delete;
  VirtualDisplay& operator=(const VirtualDisplay&) = delete;

 private:
  VirtualDisplay() = default;

  pid_t server_ = -1;
  pid_t manager_ = -1;
};

}  // namespace kw::ui::testing

#endif  // KITWRIGHT_UI_WX_TESTING_VIRTUAL_DISPLAY_H_
