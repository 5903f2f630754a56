#include "tests/screen/seen_screen.h"

#include <stdexcept>

namespace kw::screen {

namespace {

// A program that packs files answers late.
constexpr int kAnswerMilliseconds = 60000;
constexpr const char* kRegistry = "org.a11y.atspi.Registry";
constexpr const char* kRoot = "/org/a11y/atspi/accessible/root";
constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

// Numbers of the bus's states.
constexpr unsigned kChecked = 4;
constexpr unsigned kFocusable = 11;
constexpr unsigned kFocused = 12;
constexpr unsigned kSensitive = 24;
constexpr unsigned kShowing = 25;

[[noreturn]] void Fail(const char* what, GError* error) {
  const std::string why = error ? error->message : "no reason was told";
  g_clear_error(&error);
  throw std::runtime_error(std::string(what) + ": " + why);
}

std::string StringOf(GVariant* dictionary, const char* key) {
  const char* text = nullptr;
  return g_variant_lookup(dictionary, key, "&s", &text) ? text : "";
}

}  // namespace

Bus::Bus() {
  GError* error = nullptr;
  GDBusConnection* session = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
  if (!session) Fail("no session bus", error);
  GVariant* answer = g_dbus_connection_call_sync(
      session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", nullptr, G_VARIANT_TYPE("(s)"),
      G_DBUS_CALL_FLAGS_NONE, kAnswerMilliseconds, nullptr, &error);
  g_object_unref(session);
  if (!answer) Fail("no accessibility bus", error);
  const char* address = nullptr;
  g_variant_get(answer, "(&s)", &address);
  bus_ = g_dbus_connection_new_for_address_sync(
      address,
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, &error);
  g_variant_unref(answer);
  if (!bus_) Fail("the accessibility bus cannot be reached", error);
}

Bus::~Bus() { g_object_unref(bus_); }

GVariant* Bus::Ask(const std::string& owner, const std::string& path, const char* interface,
                   const char* method, GVariant* arguments) {
  // A widget that has gone meanwhile answers nothing.
  return g_dbus_connection_call_sync(bus_, owner.c_str(), path.c_str(), interface, method, arguments, nullptr,
                                     G_DBUS_CALL_FLAGS_NONE, kAnswerMilliseconds, nullptr, nullptr);
}

Seen Bus::Read(const std::string& owner, const std::string& path) {
  Seen seen;
  seen.owner = owner;
  seen.path = path;
  if (GVariant* answer = Ask(owner, path, kAccessible, "GetRoleName", nullptr)) {
    const char* role = nullptr;
    g_variant_get(answer, "(&s)", &role);
    seen.role = role;
    g_variant_unref(answer);
  }
  if (GVariant* answer = Ask(owner, path, kProperties, "GetAll", g_variant_new("(s)", kAccessible))) {
    GVariant* all = g_variant_get_child_value(answer, 0);
    seen.name = StringOf(all, "Name");
    seen.id = StringOf(all, "AccessibleId");
    g_variant_unref(all);
    g_variant_unref(answer);
  }
  if (GVariant* answer = Ask(owner, path, kAccessible, "GetState", nullptr)) {
    GVariant* words = g_variant_get_child_value(answer, 0);
    std::uint32_t states = 0;
    if (g_variant_n_children(words) > 0) g_variant_get_child(words, 0, "u", &states);
    const auto has = [&](unsigned state) { return (states >> state & 1U) != 0; };
    seen.showing = has(kShowing);
    seen.enabled = has(kSensitive);
    seen.checked = has(kChecked);
    seen.focused = has(kFocused);
    seen.focusable = has(kFocusable);
    g_variant_unref(words);
    g_variant_unref(answer);
  }
  // Rows that are scrolled away count as well.
  if (seen.showing || seen.role == "table cell") seen.children = ChildrenOf(owner, path);
  return seen;
}

std::vector<Seen> Bus::ChildrenOf(const std::string& owner, const std::string& path) {
  std::vector<Seen> children;
  GVariant* answer = Ask(owner, path, kAccessible, "GetChildren", nullptr);
  if (!answer) return children;
  GVariantIter* each = nullptr;
  g_variant_get(answer, "(a(so))", &each);
  const char* child_owner = nullptr;
  const char* child_path = nullptr;
  while (g_variant_iter_loop(each, "(&s&o)", &child_owner, &child_path)) {
    children.push_back(Read(child_owner, child_path));
  }
  g_variant_iter_free(each);
  g_variant_unref(answer);
  return children;
}

std::uint32_t Bus::ProcessOf(const std::string& owner) {
  std::uint32_t process = 0;
  if (GVariant* answer = Ask("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                             "GetConnectionUnixProcessID", g_variant_new("(s)", owner.c_str()))) {
    g_variant_get(answer, "(u)", &process);
    g_variant_unref(answer);
  }
  return process;
}

std::vector<Seen> Bus::LookAt(int process) {
  std::vector<Seen> windows;
  GVariant* answer = Ask(kRegistry, kRoot, kAccessible, "GetChildren", nullptr);
  if (!answer) return windows;
  GVariantIter* each = nullptr;
  g_variant_get(answer, "(a(so))", &each);
  const char* owner = nullptr;
  const char* path = nullptr;
  while (g_variant_iter_loop(each, "(&s&o)", &owner, &path)) {
    if (ProcessOf(owner) != static_cast<std::uint32_t>(process)) continue;
    for (Seen& window : ChildrenOf(owner, path)) {
      if (window.showing) windows.push_back(std::move(window));
    }
  }
  g_variant_iter_free(each);
  g_variant_unref(answer);
  return windows;
}

std::string Bus::TextIn(const Seen& widget) {
  std::string text;
  // To its end, however long it is.
  if (GVariant* answer =
          Ask(widget.owner, widget.path, "org.a11y.atspi.Text", "GetText", g_variant_new("(ii)", 0, -1))) {
    const char* content = nullptr;
    g_variant_get(answer, "(&s)", &content);
    text = content;
    g_variant_unref(answer);
  }
  return text;
}

Point Bus::MiddleOf(const Seen& widget) {
  Point middle;
  constexpr std::uint32_t kOnScreen = 0;
  if (GVariant* answer = Ask(widget.owner, widget.path, "org.a11y.atspi.Component", "GetExtents",
                             g_variant_new("(u)", kOnScreen))) {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    g_variant_get(answer, "((iiii))", &x, &y, &width, &height);
    middle = {x + width / 2, y + height / 2};
    g_variant_unref(answer);
  }
  return middle;
}

const Seen* FindId(const std::vector<Seen>& from, std::string_view id) {
  for (const Seen& seen : from) {
    if (seen.showing && seen.id == id) return &seen;
    if (const Seen* found = FindId(seen.children, id)) return found;
  }
  return nullptr;
}

void CollectRole(const Seen& from, std::string_view role, std::vector<const Seen*>& found) {
  if (from.role == role) found.push_back(&from);
  for (const Seen& child : from.children) CollectRole(child, role, found);
}

const Seen* FindRole(const Seen& from, std::string_view role) {
  std::vector<const Seen*> found;
  CollectRole(from, role, found);
  return found.empty() ? nullptr : found.front();
}

}  // namespace kw::screen
