// play-on-screen PROGRAM SCRIPT: plays a script of the driver's on the real windows (script_player.h tells
// how). What it does, it does with mouse and keyboard; what it prints, it reads from the screen by the
// accessibility bus, as a screen reader would. Needs a display with a window manager, xdotool, and the bus.
//
// On each new window it also looks whether everything that a person can reach has a name and a role that
// readers know; what has not is told by a line "nameless ...". Exits with 1 when something to act on is not
// there.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/screen/script_player.h"
#include "tests/screen/seen_screen.h"

namespace kw::screen {
namespace {

constexpr int kCalmLooks = 4;
// Roles of what people act on.
const std::set<std::string> kActs = {"push button", "check box",  "radio button", "text", "password text",
                                     "combo box",   "tree table", "table",        "list"};

/// Runs xdotool with these words and waits for it.
void Hands(std::vector<std::string> words) {
  words.insert(words.begin(), "xdotool");
  const pid_t child = fork();
  if (child == 0) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    execvp("xdotool", arguments.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) throw std::runtime_error("xdotool failed");
}

class Player : public ScriptPlayer {
 public:
  explicit Player(std::string program) : ScriptPlayer(kCalmLooks), program_(std::move(program)) {}

 private:
  void SetVariable(const std::string& name, const std::string& value) override {
    setenv(name.c_str(), value.c_str(), 1);
  }

  void Start() override {
    process_ = fork();
    if (process_ == 0) {
      execl(program_.c_str(), program_.c_str(), static_cast<char*>(nullptr));
      _exit(127);
    }
  }

  bool HasEnded() override {
    int status = 0;
    if (!status_ && waitpid(process_, &status, WNOHANG) == process_) status_ = status;
    return status_.has_value();
  }

  int ExitCode() override { return WIFEXITED(*status_) ? WEXITSTATUS(*status_) : 1; }

  void Kill() override {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
  }

  void Look() override { windows_ = bus_.LookAt(process_); }

  void Click(const std::string& control) override { ClickOn(Find(control)); }

  void ClickNode(const std::string& control, const std::string& text) override {
    ClickOn(FindCell(Find(control), text));
  }

  const Seen& Find(const std::string& id) {
    for (int i = 0; i < 40; ++i) {
      const Seen* found = FindId(windows_, id);
      if (found) return *found;
      Pause(50);
      Look();
    }
    throw std::runtime_error(id + " is not on the screen");
  }

  static const Seen& FindCell(const Seen& table, const std::string& text) {
    std::vector<const Seen*> cells;
    CollectRole(table, "table cell", cells);
    for (const Seen* cell : cells) {
      if (cell->name == text) return *cell;
    }
    throw std::runtime_error("no row \"" + text + "\" on the screen");
  }

  void ClickOn(const Seen& widget) {
    const Point at = bus_.MiddleOf(widget);
    Hands({"mousemove", std::to_string(at.x), std::to_string(at.y), "sleep", "0.05", "click", "1"});
  }

  void Type(const std::string& control, const std::string& text) override {
    ClickOn(Find(control));
    Hands({"key", "--clearmodifiers", "ctrl+a"});
    if (text.empty()) {
      Hands({"key", "--clearmodifiers", "Delete"});
    } else {
      Hands({"type", "--delay", "12", text});
    }
  }

  std::string TellForms() override {
    std::string all;
    bool usable = false;
    for (const Seen& window : windows_) {
      const Seen* form = FormIn(window);
      if (!form) continue;
      all += form->id + "|" + window.name + "|" + (form->enabled ? "1" : "0") + ";";
      if (form->enabled && form->id != "frmStatus") usable = true;
      if (form->id == "frmStatus" || !told_.insert(form->id).second) continue;
      std::cout << (window.role == "dialog" ? "modal " : "page ") << form->id << std::endl;
      CheckNames(*form, form->id);
    }
    for (auto told = told_.begin(); told != told_.end();) {
      told = FindId(windows_, *told) ? std::next(told) : told_.erase(told);
    }
    return usable ? all : std::string();
  }

  static const Seen* FormIn(const Seen& window) {
    if (window.id.starts_with("frm") && window.id.find('.') == std::string::npos) return &window;
    for (const Seen& child : window.children) {
      const Seen* found = child.showing ? FormIn(child) : nullptr;
      if (found) return found;
    }
    return nullptr;
  }

  /// Tells of each widget to act on that has no name.
  static void CheckNames(const Seen& widget, const std::string& form) {
    if (!widget.showing) return;
    if (kActs.count(widget.role) > 0) {
      if (widget.name.empty()) std::cout << "nameless " << widget.role << " " << widget.id << "\n";
      if (widget.id.empty())
        std::cout << "unknown " << widget.role << " \"" << widget.name << "\" on " << form << "\n";
      return;
    }
    if (widget.focusable && widget.role == "unknown") std::cout << "without a role: " << widget.id << "\n";
    for (const Seen& child : widget.children) CheckNames(child, form);
  }

  bool TakeBox() override {
    for (const Seen& window : windows_) {
      if (window.role != "alert") continue;
      std::vector<const Seen*> labels;
      std::vector<const Seen*> buttons;
      CollectRole(window, "label", labels);
      CollectRole(window, "push button", buttons);
      if (labels.empty() || buttons.empty()) return false;
      Box box{window.name, OneLine(labels.front()->name), {}, {}};
      for (const Seen* button : buttons) {
        box.buttons.push_back(button->name);
        if (button->focused) box.usual = button->name;
      }
      const Seen& chosen = *buttons[TellBox(box)];
      Pause(200);
      ClickOn(chosen);
      Pause(200);
      return true;
    }
    return false;
  }

  bool TakeMenu() override {
    for (const Seen& window : windows_) {
      const Seen* menu = window.role == "window" ? FindRole(window, "menu") : nullptr;
      if (!menu || menu->children.empty()) continue;
      std::string captions;
      const Seen* chosen = nullptr;
      const std::string wanted = NextMenuChoice();
      for (const Seen& item : menu->children) {
        std::string caption = item.enabled ? item.name : "(" + item.name + ")";
        if (item.checked) caption = "[x] " + caption;
        captions += (captions.empty() ? "" : "|") + caption;
        if (item.name == wanted) chosen = &item;
      }
      std::cout << "menu " << captions << " -> " << (chosen ? chosen->name : "dismiss") << std::endl;
      Pause(200);
      if (chosen) {
        ClickOn(*chosen);
      } else {
        Hands({"key", "Escape"});
      }
      Pause(200);
      return true;
    }
    return false;
  }

  void Print(const std::string& id) override {
    Look();
    if (id.find('.') == std::string::npos) {
      PrintForm(id);
      return;
    }
    const Seen* widget = FindId(windows_, id);
    if (!widget) {
      std::cout << id << " visible=0" << std::endl;
      return;
    }
    std::cout << id << " enabled=" << widget->enabled << " visible=1";
    const std::string& role = widget->role;
    const bool table = role == "tree table" || role == "table";
    if (role == "text" || role == "password text") {
      std::cout << " text=\"" << bus_.TextIn(*widget) << "\"";
    } else if (!table && role != "icon") {
      std::cout << " text=\"" << OneLine(widget->name) << "\"";
    }
    if (role == "check box" || role == "radio button") std::cout << " value=" << widget->checked;
    std::cout << std::endl;
    if (table) PrintRows(*widget);
  }

  void PrintForm(const std::string& id) {
    for (const Seen& window : windows_) {
      const Seen* form = FormIn(window);
      if (!form || form->id != id) continue;
      std::cout << id << " visible=1 enabled=" << form->enabled << " text=\"" << window.name << "\""
                << std::endl;
      return;
    }
    std::cout << id << " visible=0" << std::endl;
  }

  static std::string CellText(const Seen& cell) {
    std::string text = cell.name;
    for (const Seen& part : cell.children) text += CellText(part);
    return text;
  }

  /// The header, if there are headings, and the rows, of the columns with a heading where some have one.
  static void PrintRows(const Seen& table) {
    std::vector<std::string> headings;
    std::vector<std::string> cells;
    for (const Seen& child : table.children) {
      if (child.role == "table column header") {
        headings.push_back(child.name);
      } else {
        cells.push_back(CellText(child));
      }
    }
    bool headed = false;
    for (const std::string& heading : headings) headed = headed || !heading.empty();
    const size_t columns = headings.empty() ? 1 : headings.size();
    if (headed) cells.insert(cells.begin(), headings.begin(), headings.end());
    for (size_t row = 0; row + columns <= cells.size(); row += columns) {
      std::cout << "  |";
      for (size_t column = 0; column < columns; ++column) {
        if (headed && headings[column].empty()) continue;
        std::cout << " " << cells[row + column];
      }
      std::cout << "\n";
    }
    std::cout << std::flush;
  }

  std::string program_;
  Bus bus_;
  pid_t process_ = 0;
  std::optional<int> status_;
  std::vector<Seen> windows_;
  std::set<std::string> told_;
};

}  // namespace
}  // namespace kw::screen

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: play-on-screen PROGRAM SCRIPT\n";
    return 2;
  }
  try {
    return kw::screen::Player(argv[1]).Play(kw::screen::ReadLines(argv[2]));
  } catch (const std::exception& failure) {
    std::cout << "play-on-screen: " << failure.what() << std::endl;
    return 1;
  }
}
