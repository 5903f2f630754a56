#ifndef KITWRIGHT_TESTS_SCREEN_SEEN_SCREEN_H_
#define KITWRIGHT_TESTS_SCREEN_SEEN_SCREEN_H_

#include <gio/gio.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kw::screen {

/// What the accessibility bus tells of one widget at a moment; a screen reader knows no more.
struct Seen {
  std::string owner;  ///< the program on the bus, and the widget's path there
  std::string path;
  std::string role;  ///< in words, as "push button"
  std::string name;
  std::string id;  ///< the name for programs: a form's, or FORM.CONTROL
  bool showing = false;
  bool enabled = false;
  bool checked = false;
  bool focused = false;
  bool focusable = false;
  std::vector<Seen> children;  ///< of widgets that show
};

/// The first widget at or below `from` with this id, or this role, that shows; null when there is none.
const Seen* FindId(const std::vector<Seen>& from, std::string_view id);
const Seen* FindRole(const Seen& from, std::string_view role);
/// All that show of this role, in the order of the tree.
void CollectRole(const Seen& from, std::string_view role, std::vector<const Seen*>& found);

struct Point {
  int x = 0;
  int y = 0;
};

/// The accessibility bus of this session. Every look asks anew; nothing is kept.
class Bus {
 public:
  /// Throws std::runtime_error when there is none.
  Bus();
  ~Bus();
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  /// The windows of the program with this process number, with all that shows in them; empty while the
  /// program has none, or ended.
  std::vector<Seen> LookAt(int process);
  /// The text in a text box, as it shows it.
  std::string TextIn(const Seen& widget);
  /// The middle of a widget on the screen, in pixels.
  Point MiddleOf(const Seen& widget);

 private:
  /// The answer to a call, owned by the caller; null when there is none.
  GVariant* Ask(const std::string& owner, const std::string& path, const char* interface, const char* method,
                GVariant* arguments);
  Seen Read(const std::string& owner, const std::string& path);
  std::vector<Seen> ChildrenOf(const std::string& owner, const std::string& path);
  std::uint32_t ProcessOf(const std::string& owner);

  GDBusConnection* bus_ = nullptr;
};

}  // namespace kw::screen

#endif  // KITWRIGHT_TESTS_SCREEN_SEEN_SCREEN_H_
