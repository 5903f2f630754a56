// play-on-windows PROGRAM SCRIPT DRIVER: plays a script of the driver's on the real windows of Windows
// (script_player.h tells how) with mouse and keyboard, and prints what the windows tell another program. It
// finds a control by the property that the wizard gives its windows (ui/wx/accessibility.h).
//
// Of menus, trees and grids another program sees nothing inside. What is to be chosen in a menu or a tree is
// reached by keys: the file DRIVER, the driver's transcript of the same script, tells how many steps down it
// is. With KITWRIGHT_PICTURES set the player pauses on each new window, for a picture of it. Exits with 1
// when something to act on is not there.

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/screen/script_player.h"

namespace kw::screen {
namespace {

constexpr int kCalmLooks = 6;

std::wstring Wide(const std::string& text) {
  std::wstring wide(text.size(), L'\0');
  wide.resize(MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                                  static_cast<int>(wide.size())));
  return wide;
}

std::string Narrow(const std::wstring& text) {
  std::string narrow(text.size() * 3, '\0');
  narrow.resize(WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), narrow.data(),
                                    static_cast<int>(narrow.size()), nullptr, nullptr));
  return narrow;
}

/// As the wizard works it out of the name (ui/wx/accessibility_windows.cc).
HANDLE IdOf(const std::string& name) {
  uint32_t id = 2166136261U;
  for (const char letter : name) id = (id ^ static_cast<uint8_t>(letter)) * 16777619U;
  return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(id));
}

std::string ClassOf(HWND window) {
  wchar_t name[100] = {};
  GetClassNameW(window, name, 100);
  return Narrow(name);
}

std::string TextOf(HWND window) {
  std::wstring text(static_cast<size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
  text.resize(static_cast<size_t>(
      SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
  return Narrow(text);
}

/// A caption in one line without its access key.
std::string Caption(HWND window) {
  std::string plain;
  const std::string text = TextOf(window);
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '&' && i + 1 < text.size()) ++i;
    plain += text[i];
  }
  return OneLine(plain);
}

using Visit = std::function<bool(HWND)>;
BOOL CALLBACK CallVisit(HWND window, LPARAM visit) {
  return (*reinterpret_cast<const Visit*>(visit))(window);
}

std::vector<HWND> ShownBelow(HWND window) {
  std::vector<HWND> found;
  const Visit visit = [&](HWND child) {
    if (IsWindowVisible(child)) found.push_back(child);
    return true;
  };
  EnumChildWindows(window, CallVisit, reinterpret_cast<LPARAM>(&visit));
  return found;
}

bool Enabled(HWND window) {
  for (; window; window = GetAncestor(window, GA_PARENT)) {
    if (!IsWindowEnabled(window)) return false;
    if (!(GetWindowLongW(window, GWL_STYLE) & WS_CHILD)) break;
  }
  return true;
}

void Send(INPUT input) { SendInput(1, &input, sizeof input); }

void Key(WORD key, DWORD flags) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  (flags & KEYEVENTF_UNICODE ? input.ki.wScan : input.ki.wVk) = key;
  input.ki.dwFlags = flags;
  Send(input);
}
void Press(WORD key, DWORD flags = 0) {
  Key(key, flags);
  Key(key, flags | KEYEVENTF_KEYUP);
  Pause(10);
}

void ClickAt(POINT at) {
  SetCursorPos(at.x, at.y);
  Pause(50);
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
  Send(input);
  Pause(20);
  input.mi.dwFlags = MOUSEEVENTF_LEFTUP;
  Send(input);
}

void ClickOn(HWND window) {
  RECT place;
  GetWindowRect(window, &place);
  ClickAt({(place.left + place.right) / 2, (place.top + place.bottom) / 2});
}

class Player : public ScriptPlayer {
 public:
  Player(std::wstring program, const std::vector<std::string>& script, const std::vector<std::string>& driver)
      : ScriptPlayer(kCalmLooks), program_(std::move(program)) {
    std::string tree;
    for (const std::string& line : driver) {
      const size_t node = line.find_first_not_of(' ');
      if (node != std::string::npos && node > 0 && line.compare(node, 2, "- ") == 0) {
        trees_[tree].push_back(NodeText(line.substr(node + 2)));
        continue;
      }
      tree = line.substr(0, line.find(' '));
      if (line.find(" kind=tree ") != std::string::npos) trees_[tree].clear();
      if (line.rfind("menu ", 0) == 0) menu_lines_.push_back(line);
    }
    for (const std::string& line : script) {
      const size_t begin = line.find("frm");
      if (begin != std::string::npos)
        forms_.insert(line.substr(begin, line.find_first_of(". ", begin) - begin));
    }
  }

 private:
  /// Without the marks behind a node's text in the driver's lists.
  static std::string NodeText(const std::string& line) {
    size_t end = line.size();
    for (const char* mark : {" image=", " bold", " grey", " tag="}) end = std::min(end, line.find(mark));
    return line.substr(0, end);
  }

  void SetVariable(const std::string& name, const std::string& value) override {
    SetEnvironmentVariableW(Wide(name).c_str(), Wide(value).c_str());
  }

  void Start() override {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION started;
    if (!CreateProcessW(nullptr, program_.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &started)) {
      throw std::runtime_error("the program does not start");
    }
    process_ = started.hProcess;
    number_ = started.dwProcessId;
  }

  bool HasEnded() override { return WaitForSingleObject(process_, 0) == WAIT_OBJECT_0; }

  int ExitCode() override {
    DWORD code = 1;
    GetExitCodeProcess(process_, &code);
    return static_cast<int>(code);
  }

  void Kill() override { TerminateProcess(process_, 1); }

  void Click(const std::string& control) override { ClickOn(Find(control)); }

  void Type(const std::string& control, const std::string& text) override {
    Click(control);
    Press(VK_HOME);
    Key(VK_SHIFT, 0);
    Press(VK_END);
    Key(VK_SHIFT, KEYEVENTF_KEYUP);
    Press(VK_DELETE);
    for (const wchar_t letter : Wide(text)) Press(letter, KEYEVENTF_UNICODE);
  }

  /// Goes to a node by the keys, from the top, and acts on it. The driver's last list of the tree tells how
  /// far.
  void ClickNode(const std::string& target, const std::string& text) override {
    const HWND tree = Find(target);
    const std::vector<std::string>& nodes = trees_[target];
    const auto node = std::find(nodes.begin(), nodes.end(), text);
    if (node == nodes.end()) throw std::runtime_error("the driver tells of no row \"" + text + "\"");
    // Below the last row, where a click does nothing but to bring the focus.
    RECT place;
    GetWindowRect(tree, &place);
    ClickAt({place.right - 8, place.bottom - 8});
    Pause(100);
    Press(VK_HOME);
    for (auto i = nodes.begin(); i != node; ++i) Press(VK_DOWN);
    Press(VK_SPACE);
    // The menu that the driver tells of may take its time.
    for (int i = 0; i < 100 && ExpectsMenu() && !MenuShows(); ++i) Pause(50);
  }

  bool MenuShows() const {
    const std::vector<HWND> windows = Windows();
    return std::any_of(windows.begin(), windows.end(),
                       [](HWND window) { return ClassOf(window) == "#32768"; });
  }

  std::vector<HWND> Windows() const {
    std::vector<HWND> found;
    const Visit visit = [&](HWND window) {
      DWORD owner = 0;
      GetWindowThreadProcessId(window, &owner);
      if (owner == number_ && IsWindowVisible(window)) found.push_back(window);
      return true;
    };
    EnumWindows(CallVisit, reinterpret_cast<LPARAM>(&visit));
    return found;
  }

  HWND Shown(const std::string& name) const {
    for (HWND window : Windows()) {
      for (HWND child : ShownBelow(window)) {
        if (GetPropW(child, L"Kitwright.Id") == IdOf(name)) return child;
      }
    }
    return nullptr;
  }
  HWND Find(const std::string& name) const {
    for (int i = 0; i < 40; ++i) {
      if (HWND found = Shown(name)) return found;
      Pause(50);
    }
    throw std::runtime_error(name + " is not on the screen");
  }

  /// The form that a window shows, and its panel.
  std::pair<std::string, HWND> FormIn(HWND window) const {
    for (HWND child : ShownBelow(window)) {
      const HANDLE id = GetPropW(child, L"Kitwright.Id");
      for (const std::string& form : forms_) {
        if (id == IdOf(form)) return {form, child};
      }
    }
    return {};
  }

  std::string TellForms() override {
    std::string all;
    bool usable = false;
    std::set<std::string> now;
    for (HWND window : Windows()) {
      const auto [form, panel] = FormIn(window);
      if (form.empty()) continue;
      now.insert(form);
      const bool enabled = Enabled(panel);
      all += form + "|" + Caption(window) + "|" + (enabled ? "1" : "0") + ";";
      usable = usable || enabled;
      if (told_.count(form) > 0) continue;
      std::cout << (GetWindow(window, GW_OWNER) ? "modal " : "page ") << form << std::endl;
      ForPicture();
    }
    told_ = now;
    return usable ? all : std::string();
  }

  static void ForPicture() {
    if (std::getenv("KITWRIGHT_PICTURES")) Pause(1500);
  }

  bool TakeBox() override {
    for (HWND window : Windows()) {
      if (ClassOf(window) != "#32770" || !FormIn(window).first.empty()) continue;
      std::string words;
      std::vector<HWND> buttons;
      for (HWND child : ShownBelow(window)) {
        const std::string kind = ClassOf(child);
        if (kind == "Static" && words.empty()) words = Caption(child);
        if (kind == "Button") buttons.push_back(child);
      }
      if (words.empty() || buttons.empty()) continue;
      Pause(200);
      Box box{Caption(window), words, {}, {}};
      GUITHREADINFO focus{};
      focus.cbSize = sizeof focus;
      GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &focus);
      for (HWND button : buttons) {
        box.buttons.push_back(Caption(button));
        if (button == focus.hwndFocus) box.usual = Caption(button);
      }
      const HWND chosen = buttons[TellBox(box)];
      ForPicture();
      ClickOn(chosen);
      Pause(300);
      return true;
    }
    return false;
  }

  bool TakeMenu() override {
    for (HWND window : Windows()) {
      if (ClassOf(window) != "#32768") continue;
      ForPicture();
      std::string line;
      if (!menu_lines_.empty()) {
        line = menu_lines_.front();
        menu_lines_.erase(menu_lines_.begin());
      }
      const size_t end = line.rfind(" -> ");
      const std::string wanted = NextMenuChoice();
      bool chosen = false;
      int steps = 0;
      for (size_t begin = line.find(' ') + 1; end != std::string::npos && begin < end && !chosen;) {
        const size_t bar = std::min(line.find('|', begin), end);
        ++steps;
        chosen = line.substr(begin, bar - begin) == wanted;
        begin = bar + 1;
      }
      for (int i = 0; chosen && i < steps; ++i) Press(VK_DOWN);
      Press(chosen ? VK_RETURN : VK_ESCAPE);
      Pause(300);
      return true;
    }
    return false;
  }

  /// Grids and trees, of which another program sees no rows.
  bool DrawsItself(const std::string& name) const {
    return trees_.count(name) > 0 || name.find(".Grid") != std::string::npos;
  }

  void Print(const std::string& name) override {
    const HWND window = Shown(name);
    if (!window) {
      std::cout << name << " visible=0" << std::endl;
      return;
    }
    if (name.find('.') == std::string::npos) {
      std::cout << name << " visible=1 enabled=" << Enabled(window) << " text=\""
                << Caption(GetAncestor(window, GA_ROOT)) << "\"" << std::endl;
      return;
    }
    std::cout << name << " enabled=" << Enabled(window) << " visible=1";
    const std::string kind = ClassOf(window);
    if (kind == "Edit") {
      const auto mark = static_cast<char>(SendMessageW(window, EM_GETPASSWORDCHAR, 0, 0));
      std::cout << " text=\"" << (mark ? std::string(Wide(TextOf(window)).size(), '*') : TextOf(window))
                << "\"";
    } else if (kind != "ListBox" && !DrawsItself(name)) {
      std::cout << " text=\"" << Caption(window) << "\"";
    }
    const LONG type = GetWindowLongW(window, GWL_STYLE) & BS_TYPEMASK;
    if (kind == "Button" && type != BS_PUSHBUTTON && type != BS_DEFPUSHBUTTON && type != BS_GROUPBOX &&
        type != BS_OWNERDRAW) {
      std::cout << " value=" << (SendMessageW(window, BM_GETCHECK, 0, 0) == BST_CHECKED);
    }
    std::cout << "\n";
    if (kind == "ListBox") {
      const LRESULT count = SendMessageW(window, LB_GETCOUNT, 0, 0);
      for (LRESULT i = 0; i < count; ++i) {
        std::wstring text(
            static_cast<size_t>(SendMessageW(window, LB_GETTEXTLEN, static_cast<WPARAM>(i), 0)) + 1, L'\0');
        text.resize(static_cast<size_t>(
            SendMessageW(window, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text.data()))));
        std::cout << "  | " << Narrow(text) << "\n";
      }
    }
    std::cout << std::flush;
  }

  std::wstring program_;
  std::vector<std::string> menu_lines_;
  std::map<std::string, std::vector<std::string>> trees_;
  std::set<std::string> forms_;
  HANDLE process_ = nullptr;
  DWORD number_ = 0;
  std::set<std::string> told_;
};

}  // namespace
}  // namespace kw::screen

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: play-on-windows PROGRAM SCRIPT DRIVER\n";
    return 2;
  }
  try {
    const std::vector<std::string> script = kw::screen::ReadLines(argv[2]);
    return kw::screen::Player(kw::screen::Wide(argv[1]), script, kw::screen::ReadLines(argv[3])).Play(script);
  } catch (const std::exception& failure) {
    std::cout << "play-on-windows: " << failure.what() << std::endl;
    return 1;
  }
}
