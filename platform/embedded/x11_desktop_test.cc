#include "platform/embedded/x11_desktop.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "platform/embedded/host_file.h"

namespace kw::platform::embedded {
namespace {

/// A display of its own for one test, where Xvfb is installed.
class VirtualDisplay {
 public:
  VirtualDisplay() {
    if (const char* display = std::getenv("DISPLAY")) saved_ = display;
    int ends[2];
    if (::pipe(ends) != 0) return;
    const OwnedFd read_end(ends[0]);
    OwnedFd write_end(ends[1]);
    const std::string number = std::to_string(write_end.get());
    server_ = ::fork();
    if (server_ == 0) {
      const int nowhere = ::open("/dev/null", O_WRONLY);
      ::dup2(nowhere, STDERR_FILENO);
      ::execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-nolisten", "tcp", nullptr);
      ::_exit(127);
    }
    write_end = OwnedFd();
    std::string told;
    if (ReadAll(read_end.get(), told) == 0 && !told.empty()) {
      told.pop_back();
      ::setenv("DISPLAY", (":" + told).c_str(), 1);
      up_ = true;
    }
  }
  VirtualDisplay(const VirtualDisplay&) = delete;
  VirtualDisplay& operator=(const VirtualDisplay&) = delete;
  ~VirtualDisplay() {
    if (server_ > 0) {
      ::kill(server_, SIGTERM);
      ::waitpid(server_, nullptr, 0);
    }
    if (saved_) {
      ::setenv("DISPLAY", saved_->c_str(), 1);
    } else {
      ::unsetenv("DISPLAY");
    }
  }
  bool up() const { return up_; }

 private:
  pid_t server_ = -1;
  bool up_ = false;
  std::optional<std::string> saved_;
};

/// A program's windows.
class Windows {
 public:
  Windows() : connection_(xcb_connect(nullptr, nullptr)) {
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
  }
  Windows(const Windows&) = delete;
  Windows& operator=(const Windows&) = delete;
  ~Windows() { xcb_disconnect(connection_); }

  xcb_window_t Add(xcb_window_t parent, std::string_view title, uint32_t process) {
    const xcb_window_t window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, parent == 0 ? screen_->root : parent, 0, 0,
                      80, 60, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual, 0, nullptr);
    if (!title.empty()) {
      xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                          static_cast<uint32_t>(title.size()), title.data());
    }
    if (process != 0) {
      constexpr std::string_view kName = "_NET_WM_PID";
      xcb_intern_atom_reply_t* atom = xcb_intern_atom_reply(
          connection_, xcb_intern_atom(connection_, 0, kName.size(), kName.data()), nullptr);
      xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom->atom, XCB_ATOM_CARDINAL, 32, 1,
                          &process);
      std::free(atom);
    }
    xcb_map_window(connection_, window);
    Finish();
    return window;
  }

  void Focus(xcb_window_t window) {
    xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    Finish();
  }

 private:
  void Finish() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }
  xcb_connection_t* connection_;
  xcb_screen_t* screen_;
};

TEST(X11Desktop, WithoutADisplayThereAreNoWindows) {
  const char* display = std::getenv("DISPLAY");
  const std::string saved = display == nullptr ? "" : display;
  ::unsetenv("DISPLAY");
  X11Desktop desktop;
  EXPECT_EQ(desktop.ForegroundTitle(::getpid()), "");
  desktop.BringToFront("Anything");
  ::setenv("DISPLAY", ":4711", 1);
  EXPECT_EQ(X11Desktop().ForegroundTitle(::getpid()), "");
  ::unsetenv("DISPLAY");
  if (display != nullptr) ::setenv("DISPLAY", saved.c_str(), 1);
}

TEST(X11Desktop, TheTitleIsThatOfTheProcessWithTheFocus) {
  const VirtualDisplay display;
  if (!display.up()) GTEST_SKIP() << "Xvfb is not installed.";
  Windows windows;
  X11Desktop desktop;
  const auto tool = windows.Add(0, "On-Access Scan", 4242);
  const auto inner = windows.Add(tool, "", 0);
  const auto other = windows.Add(0, "Kitwright", 4343);
  windows.Focus(inner);
  EXPECT_EQ(desktop.ForegroundTitle(4242), "On-Access Scan");
  EXPECT_EQ(desktop.ForegroundTitle(4343), "");
  windows.Focus(other);
  EXPECT_EQ(desktop.ForegroundTitle(4242), "");
  EXPECT_EQ(desktop.ForegroundTitle(4343), "Kitwright");
  desktop.BringToFront("on-access scan");
  EXPECT_EQ(desktop.ForegroundTitle(4242), "On-Access Scan");
  desktop.BringToFront("No such window");
  EXPECT_EQ(desktop.ForegroundTitle(4242), "On-Access Scan");
}

}  // namespace
}  // namespace kw::platform::embedded
