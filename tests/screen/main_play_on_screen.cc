// play-on-screen PROGRAM SCRIPT: plays a script of the driver's on the real windows. What it does, it does
// with mouse and keyboard; what it prints, it reads from the screen by the accessibility bus, as a screen
// reader would. Needs a display with a window manager, xdotool, and the bus. It knows these of the driver's
// commands: click, type, node, menu, answer, print, say, and set in front of all others.
//
// On each new window it also looks whether everything that a person can reach has a name and a role that
// readers know; what has not is told by a line "nameless ...". Exits with 1 when something to act on is not
// there.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/screen/seen_screen.h"

namespace kw::screen {
namespace {

using std::chrono::milliseconds;

constexpr int kPatienceSeconds = 60;
constexpr const char* kProgramTitle = "Kitwright";
// Roles of what people act on.
const std::set<std::string> kActs = {"push button", "check box",  "radio button", "text", "password text",
                                     "combo box",   "tree table", "table",        "list"};

void Pause(int count) { std::this_thread::sleep_for(milliseconds(count)); }

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

/// In one line, without the ends of lines that the width of a window makes.
std::string OneLine(const std::string& text) {
  std::string line;
  for (const char letter : text) line += letter == '\n' || letter == '\r' ? ' ' : letter;
  return line;
}

class Player {
 public:
  Player(std::string program, std::istream& script) : program_(std::move(program)), script_(script) {}

  int Play() {
    std::string line;
    while (std::getline(script_, line)) {
      if (line.empty() || line.front() == '#') continue;
      const size_t blank = line.find(' ');
      const std::string word = line.substr(0, blank);
      const std::string rest = blank == std::string::npos ? "" : line.substr(blank + 1);
      if (word == "set") {
        if (process_ != 0) throw std::runtime_error("set comes too late: " + line);
        const size_t sign = rest.find('=');
        setenv(rest.substr(0, sign).c_str(), rest.substr(sign + 1).c_str(), 1);
        continue;
      }
      if (process_ == 0) Start();
      Do(word, rest);
    }
    return End();
  }

 private:
  void Start() {
    process_ = fork();
    if (process_ == 0) {
      execl(program_.c_str(), program_.c_str(), static_cast<char*>(nullptr));
      _exit(127);
    }
    Settle();
  }

  /// How the program ended; it has to have ended by itself.
  int End() {
    for (int i = 0; i < kPatienceSeconds * 20 && !Ended(); ++i) Pause(50);
    if (!Ended()) {
      std::cout << "the program goes on\n";
      kill(process_, SIGTERM);
      waitpid(process_, nullptr, 0);
      return 1;
    }
    return WIFEXITED(*status_) ? WEXITSTATUS(*status_) : 1;
  }

  bool Ended() {
    int status = 0;
    if (!status_ && waitpid(process_, &status, WNOHANG) == process_) {
      status_ = status;
      std::cout << "end" << std::endl;
    }
    return status_.has_value();
  }

  void Do(const std::string& word, const std::string& rest) {
    const size_t blank = rest.find(' ');
    const std::string target = rest.substr(0, blank);
    const std::string text = blank == std::string::npos ? "" : rest.substr(blank + 1);
    if (word == "answer") {
      answers_.push_back(rest);
    } else if (word == "menu") {
      menus_.push_back(rest);
    } else if (word == "say") {
      std::cout << "say " << rest << std::endl;
    } else if (word == "print") {
      Print(target);
    } else if (word == "click") {
      ClickOn(Find(target));
      Settle();
    } else if (word == "type") {
      Type(Find(target), text);
      Settle();
    } else if (word == "node") {
      ClickOn(FindCell(Find(target), text));
      Settle();
    } else {
      throw std::runtime_error("this player does not know the command " + word);
    }
  }

  const Seen& Find(const std::string& id) {
    for (int i = 0; i < 40; ++i) {
      const Seen* found = FindId(windows_, id);
      if (found) return *found;
      Pause(50);
      windows_ = bus_.LookAt(process_);
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

  void Type(const Seen& field, const std::string& text) {
    ClickOn(field);
    Hands({"key", "--clearmodifiers", "ctrl+a"});
    if (text.empty()) {
      Hands({"key", "--clearmodifiers", "Delete"});
    } else {
      Hands({"type", "--delay", "12", text});
    }
  }

  /// Waits until the program waits for a person, and tells what came on the screen meanwhile.
  void Settle() {
    int calm = 0;
    std::string before;
    for (int i = 0; i < kPatienceSeconds * 20; ++i) {
      if (Ended()) return;
      windows_ = bus_.LookAt(process_);
      if (TakeBox() || TakeMenu()) {
        calm = 0;
        continue;
      }
      const std::string now = TellForms();
      calm = now == before && !now.empty() ? calm + 1 : 0;
      before = now;
      if (calm >= 4) {
        menus_.clear();
        answers_.clear();
        return;
      }
      Pause(50);
    }
    throw std::runtime_error("the program does not come to rest");
  }

  /// Tells of a page or dialog that is new on the screen. Answers with what shows now; "" while it is busy.
  std::string TellForms() {
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

  /// Tells of a message or question and answers it.
  bool TakeBox() {
    for (const Seen& window : windows_) {
      if (window.role != "alert") continue;
      std::vector<const Seen*> labels;
      std::vector<const Seen*> buttons;
      CollectRole(window, "label", labels);
      CollectRole(window, "push button", buttons);
      if (labels.empty() || buttons.empty()) return false;
      std::string kind = buttons.size() == 1 ? "message" : "question";
      if (window.name != kProgramTitle) kind += "(" + window.name + ")";
      std::cout << kind << " " << OneLine(labels.front()->name);
      const Seen* chosen = buttons.front();
      if (buttons.size() > 1) {
        std::string names;
        std::string usual;
        for (const Seen* button : buttons) {
          names += (names.empty() ? "" : "|") + button->name;
          if (button->focused) usual = button->name;
        }
        const std::string wanted = answers_.empty() ? buttons.front()->name : Taken(answers_);
        for (const Seen* button : buttons) {
          if (button->name == wanted) chosen = button;
        }
        std::cout << " [" << names << "] default=" << usual << " -> " << chosen->name;
      }
      std::cout << std::endl;
      Pause(200);
      ClickOn(*chosen);
      Pause(200);
      return true;
    }
    return false;
  }

  /// Chooses in a pop-up menu.
  bool TakeMenu() {
    for (const Seen& window : windows_) {
      const Seen* menu = window.role == "window" ? FindRole(window, "menu") : nullptr;
      if (!menu || menu->children.empty()) continue;
      std::string captions;
      const Seen* chosen = nullptr;
      const std::string wanted = menus_.empty() ? "dismiss" : Taken(menus_);
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

  static std::string Taken(std::vector<std::string>& queue) {
    const std::string first = queue.front();
    queue.erase(queue.begin());
    return first;
  }

  void Print(const std::string& id) {
    windows_ = bus_.LookAt(process_);
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
  std::istream& script_;
  Bus bus_;
  pid_t process_ = 0;
  std::optional<int> status_;
  std::vector<Seen> windows_;
  std::set<std::string> told_;
  std::vector<std::string> answers_;
  std::vector<std::string> menus_;
};

}  // namespace
}  // namespace kw::screen

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: play-on-screen PROGRAM SCRIPT\n";
    return 2;
  }
  std::ifstream script(argv[2]);
  if (!script) {
    std::cerr << "play-on-screen: cannot read " << argv[2] << "\n";
    return 2;
  }
  try {
    return kw::screen::Player(argv[1], script).Play();
  } catch (const std::exception& failure) {
    std::cout << "play-on-screen: " << failure.what() << std::endl;
    return 1;
  }
}
