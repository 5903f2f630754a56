// repaint-probe WINDOW SECONDS: again and again covers a small place of a window with a square and takes it
// away, and measures how long the window's program takes to paint the place anew. Ends when it reads a line
// or the end of its input, at the latest after so many seconds, and prints what it saw in milliseconds.

#include <poll.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr uint32_t kSquareColour = 0xff00ff;  // used by no window
constexpr uint16_t kSquareEdge = 24;
constexpr int16_t kFromLeft = 24;   // in the list of pages, away from the window that waits
constexpr int16_t kFromFoot = 120;  // above the buttons
constexpr milliseconds kBetween{40};
constexpr milliseconds kPatience{5000};
constexpr double kLate = 100;  // milliseconds

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

uint32_t PixelAt(xcb_connection_t* display, xcb_window_t root, int16_t x, int16_t y) {
  const auto cookie = xcb_get_image(display, XCB_IMAGE_FORMAT_Z_PIXMAP, root, x, y, 1, 1, ~0U);
  const Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(display, cookie, nullptr), &std::free);
  uint32_t pixel = kSquareColour;
  if (image && xcb_get_image_data_length(image.get()) >= 4) {
    std::memcpy(&pixel, xcb_get_image_data(image.get()), sizeof pixel);
  }
  return pixel & 0xffffffU;
}

bool ToldToEnd() {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  return poll(&input, 1, 0) > 0;
}

double At(const std::vector<double>& sorted, double share) {
  return sorted[static_cast<size_t>(share * static_cast<double>(sorted.size() - 1))];
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: repaint-probe WINDOW SECONDS\n");
    return 2;
  }
  const auto window = static_cast<xcb_window_t>(std::strtoul(argv[1], nullptr, 0));
  const auto end = Clock::now() + std::chrono::seconds(std::atoi(argv[2]));
  xcb_connection_t* display = xcb_connect(nullptr, nullptr);
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(display)).data;
  const Reply<xcb_get_geometry_reply_t> size(
      xcb_get_geometry_reply(display, xcb_get_geometry(display, window), nullptr), &std::free);
  const Reply<xcb_translate_coordinates_reply_t> place(
      screen ? xcb_translate_coordinates_reply(
                   display, xcb_translate_coordinates(display, window, screen->root, 0, 0), nullptr)
             : nullptr,
      &std::free);
  if (!size || !place) {
    std::fprintf(stderr, "repaint-probe: no such window\n");
    return 1;
  }
  const auto x = static_cast<int16_t>(place->dst_x + kFromLeft);
  const auto y = static_cast<int16_t>(place->dst_y + size->height - kFromFoot);
  const xcb_window_t square = xcb_generate_id(display);
  // By no window manager's leave.
  const uint32_t values[] = {kSquareColour, 1};
  xcb_create_window(display, XCB_COPY_FROM_PARENT, square, screen->root, x, y, kSquareEdge, kSquareEdge, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
  const auto middle_x = static_cast<int16_t>(x + kSquareEdge / 2);
  const auto middle_y = static_cast<int16_t>(y + kSquareEdge / 2);
  std::vector<double> waits;
  const auto start = Clock::now();
  while (Clock::now() < end && !ToldToEnd()) {
    xcb_map_window(display, square);
    while (PixelAt(display, screen->root, middle_x, middle_y) != kSquareColour) {
      std::this_thread::sleep_for(milliseconds(1));
    }
    const auto begin = Clock::now();
    xcb_unmap_window(display, square);
    while (PixelAt(display, screen->root, middle_x, middle_y) == kSquareColour &&
           Clock::now() - begin < kPatience) {
      std::this_thread::sleep_for(milliseconds(1));
    }
    waits.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
    if (waits.back() > kLate) {
      std::printf("after %.1f s: %.0f ms\n", std::chrono::duration<double>(begin - start).count(),
                  waits.back());
    }
    std::this_thread::sleep_for(kBetween);
  }
  xcb_disconnect(display);
  if (waits.empty()) return 1;
  std::sort(waits.begin(), waits.end());
  const auto late = waits.end() - std::upper_bound(waits.begin(), waits.end(), kLate);
  std::printf(
      "%zu repaints: half within %.0f ms, 99 of 100 within %.0f ms, the slowest %.0f ms, %td over 100 ms\n",
      waits.size(), At(waits, 0.5), At(waits, 0.99), waits.back(), late);
  return late > 0 ? 1 : 0;
}
