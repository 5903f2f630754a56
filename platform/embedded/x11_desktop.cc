#include "platform/embedded/x11_desktop.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "base/text.h"

namespace kw::platform::embedded {
namespace {

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <typename T>
using Reply = std::unique_ptr<T, FreeReply>;

constexpr int kDeepest = 4;  // frames of window managers nest no deeper

}  // namespace

/// One connection. Windows may vanish at any time: a question without an answer reads as "nothing there".
class X11Desktop::Display {
 public:
  Display() : connection_(xcb_connect(nullptr, &screen_number_)) {
    if (!Good()) return;
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (int i = 0; i < screen_number_; ++i) xcb_screen_next(&screens);
    root_ = screens.data->root;
  }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;
  ~Display() { xcb_disconnect(connection_); }
  bool Good() const { return xcb_connection_has_error(connection_) == 0; }

  std::string ForegroundTitle(pid_t process) {
    xcb_window_t window = Number(root_, "_NET_ACTIVE_WINDOW").value_or(0);
    if (window == 0) window = Focused();
    for (; window > XCB_INPUT_FOCUS_POINTER_ROOT && window != root_; window = Parent(window)) {
      const auto owner = Number(window, "_NET_WM_PID");
      if (!owner) continue;
      return *owner == static_cast<uint32_t>(process) ? Title(window) : std::string();
    }
    return {};
  }

  void BringToFront(const std::string& title) {
    const xcb_window_t window = FindTitle(root_, title, 0);
    if (window == 0) return;
    if (Number(root_, "_NET_SUPPORTING_WM_CHECK")) {
      xcb_client_message_event_t message{};
      message.response_type = XCB_CLIENT_MESSAGE;
      message.format = 32;
      message.window = window;
      message.type = Atom("_NET_ACTIVE_WINDOW");
      message.data.data32[0] = 1;
      xcb_send_event(connection_, 0, root_,
                     XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                     reinterpret_cast<const char*>(&message));
    } else {
      const uint32_t above = XCB_STACK_MODE_ABOVE;
      xcb_configure_window(connection_, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
      xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    }
    // The answer to a question comes when all of the above is done.
    Focused();
  }

 private:
  xcb_atom_t Atom(std::string_view name) {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<uint16_t>(name.size()), name.data());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply == nullptr ? static_cast<xcb_atom_t>(XCB_ATOM_NONE) : reply->atom;
  }

  std::string Bytes(xcb_window_t window, xcb_atom_t property) {
    constexpr uint32_t kLongest = 256;  // in units of four bytes
    const auto cookie = xcb_get_property(connection_, 0, window, property, XCB_ATOM_ANY, 0, kLongest);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_, cookie, nullptr));
    if (reply == nullptr || reply->type == XCB_ATOM_NONE) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<size_t>(xcb_get_property_value_length(reply.get()))};
  }

  std::optional<uint32_t> Number(xcb_window_t window, std::string_view property) {
    const std::string bytes = Bytes(window, Atom(property));
    uint32_t number = 0;
    if (bytes.size() < sizeof number) return std::nullopt;
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
  }

  std::string Title(xcb_window_t window) {
    const std::string title = Bytes(window, Atom("_NET_WM_NAME"));
    return title.empty() ? Bytes(window, XCB_ATOM_WM_NAME) : title;
  }

  xcb_window_t Focused() {
    const Reply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    return reply == nullptr ? 0 : reply->focus;
  }

  Reply<xcb_query_tree_reply_t> Family(xcb_window_t window) {
    return Reply<xcb_query_tree_reply_t>(
        xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
  }

  xcb_window_t Parent(xcb_window_t window) {
    const auto family = Family(window);
    return family == nullptr ? 0 : family->parent;
  }

  xcb_window_t FindTitle(xcb_window_t window, const std::string& title, int depth) {
    if (depth > 0 && EqualsNoCase(Title(window), title)) return window;
    const auto family = Family(window);
    if (family == nullptr || depth == kDeepest) return 0;
    const xcb_window_t* children = xcb_query_tree_children(family.get());
    for (int i = xcb_query_tree_children_length(family.get()) - 1; i >= 0; --i) {
      if (const xcb_window_t found = FindTitle(children[i], title, depth + 1)) return found;
    }
    return 0;
  }

  int screen_number_ = 0;
  xcb_connection_t* connection_;
  xcb_window_t root_ = 0;
};

X11Desktop::X11Desktop() = default;
X11Desktop::~X11Desktop() = default;

X11Desktop::Display* X11Desktop::Open() {
  if (!tried_) {
    tried_ = true;
    const char* name = std::getenv("DISPLAY");
    if (name != nullptr && *name != '\0') display_ = std::make_unique<Display>();
  }
  return display_ != nullptr && display_->Good() ? display_.get() : nullptr;
}

std::string X11Desktop::ForegroundTitle(pid_t process) {
  Display* display = Open();
  return display == nullptr ? std::string() : display->ForegroundTitle(process);
}

void X11Desktop::BringToFront(const std::string& title) {
  if (Display* display = Open()) display->BringToFront(title);
}

}  // namespace kw::platform::embedded
