// random-walk SEED STEPS
//
// The wizard in the hands of somebody who presses whatever can be pressed, on the machine that KITWRIGHT_ROOT
// names: a walk of so many steps by chance, then every window is closed. Prints the transcript, and each
// command behind "> ". Exits with 1 when the wizard shows no window, or two pages, when nothing in it can be
// used any more, or when it does not let itself be closed.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <streambuf>
#include <string>
#include <vector>

#include "base/machine_paths.h"
#include "platform/shared/transcript_lines.h"
#include "shell/app.h"
#include "shell/main_machine.h"
#include "ui/drive/driver.h"

namespace {

using kw::platform::Answer;
using kw::ui::Control;
using kw::ui::ControlKind;
using kw::ui::Form;
using kw::ui::FormStyle;

using Texts = std::vector<std::string>;

constexpr int kMostCloses = 60;

/// What chance decides, and what it has to choose from.
class Chance {
 public:
  explicit Chance(unsigned seed) : random_(seed) {
    namespace fs = std::filesystem;
    const kw::MachinePaths paths = kw::MachinePaths::OfThisProcess();
    for (const char* folder : {"Packages", "Payloads"}) {
      const fs::path root = paths.root() + "/drive_c";
      for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
        std::string path = "C:\\" + entry.path().lexically_relative(root).generic_string();
        for (char& c : path) c = c == '/' ? '\\' : c;
        (entry.is_directory() ? folders_ : files_).push_back(path);
      }
    }
    std::sort(files_.begin(), files_.end());
    std::sort(folders_.begin(), folders_.end());
  }

  size_t Below(size_t count) { return random_() % count; }
  /// Once in so many times.
  bool Once(size_t in) { return Below(in) == 0; }
  const std::string& OneOf(const Texts& texts) { return texts[Below(texts.size())]; }
  const std::string& File() { return OneOf(files_); }
  const std::string& Folder() { return OneOf(folders_); }

  std::string TextFor(const std::string& box) {
    static const Texts destinations = {"C:\\Out\\One",
                                       "C:\\Out\\One",
                                       "C:\\Out\\Two\\Deep",
                                       "C:\\Out\\",
                                       "",
                                       "C:\\Out\\bad|name",
                                       "relative",
                                       "C:\\Out\\" + std::string(230, 'n')};
    static const Texts words = {"",
                                "x",
                                "B\xC3\xBCro \xE6\x97\xA5",
                                "a\"b",
                                "Deep\\Er",
                                "..\\..\\up",
                                "%TEMP%",
                                "5",
                                "C:\\Out\\One\\KTECFG.CAB",
                                "[IN_PACKAGE]\\x",
                                std::string(300, 'l'),
                                "Weekly Scan",
                                "http://x.example/"};
    if (box == "DestinationDir" || box == "DestConfigFolder") return OneOf(destinations);
    if (box == "SourceDir") return Once(2) ? "C:\\Packages\\Kestrane" : Folder();
    return Once(2) ? File() : OneOf(words);
  }

 private:
  std::mt19937 random_;
  Texts files_;
  Texts folders_;
};

/// Boxes that are answered by chance; at the end of the walk.
class WalkDialogs : public kw::platform::Dialogs {
 public:
  explicit WalkDialogs(Chance& chance) : chance_(chance) {}
  bool leaving = false;

  void Message(const std::string& text) override { Say(kw::platform::MessageLine(text, false)); }
  void CriticalMessage(const std::string& text) override { Say(kw::platform::MessageLine(text, true)); }
  Answer Question(const std::string& text, const std::vector<Answer>& buttons, Answer default_button,
                  const std::string& title) override {
    const Answer answer = leaving ? buttons.front() : buttons[chance_.Below(buttons.size())];
    Say(kw::platform::QuestionLine(text, buttons, default_button, title, answer));
    return answer;
  }
  std::string OpenFile(const std::string& title, const std::string& filter, const std::string& start_folder,
                       const std::string& start_name) override {
    const std::string path = leaving || chance_.Once(3) ? "" : chance_.File();
    Say(kw::platform::FileDialogLine(title, filter, start_folder, start_name, path));
    return path;
  }
  std::string BrowseForFolder(const std::string& title, const std::string& start) override {
    const bool source = title.find("Source") != std::string::npos;
    const std::string path = leaving || chance_.Once(3) ? "" : source ? chance_.Folder() : "C:\\Out";
    Say(kw::platform::FolderDialogLine(title, start, path));
    return path;
  }
  kw::Status ShowHelp(const std::string& /*help_file*/, int context_id) override {
    Say(kw::platform::HelpLine(context_id));
    return {};
  }

 private:
  static void Say(const std::string& line) { std::cout << line << std::endl; }
  Chance& chance_;
};

/// The script: each line is made up when the driver asks for it, from what stands on the screen then.
class Walk : public std::streambuf {
 public:
  Walk(Chance& chance, WalkDialogs& dialogs, int steps) : chance_(chance), dialogs_(dialogs), steps_(steps) {
    static const Texts package = {"click frmWelcome.ModifyPackage",
                                  "click frmWelcome.Next",
                                  "type frmSourceAndDestination.SourceDir C:\\Packages\\Kestrane",
                                  "type frmSourceAndDestination.DestinationDir C:\\Out\\One",
                                  "click frmSourceAndDestination.Optimize",
                                  "click frmSourceAndDestination.NextButton"};
    static const Texts settings = {"click frmWelcome.GenerateSettings", "click frmWelcome.Next",
                                   "click frmConfigSource.Next"};
    const size_t beginning = chance_.Below(8);
    if (beginning > 2) planned_ = package;
    if (beginning == 1 || beginning == 2) planned_ = settings;
    std::reverse(planned_.begin(), planned_.end());
  }
  void Watch(kw::ui::drive::ScriptHost& host) { host_ = &host; }
  /// What is wrong with the wizard, or "".
  const std::string& Fault() const { return fault_; }

 protected:
  int_type underflow() override {
    line_ = NextLine();
    if (line_.empty()) return traits_type::eof();
    std::cout << "> " << line_ << std::endl;
    line_ += '\n';
    setg(line_.data(), line_.data(), line_.data() + line_.size());
    return traits_type::to_int_type(line_.front());
  }

 private:
  std::string NextLine() {
    const Form* form = FormAtHand();
    if (!form) return "";
    if (!planned_.empty()) {
      std::string line = planned_.back();
      planned_.pop_back();
      return line;
    }
    if (steps_ <= 0) {
      dialogs_.leaving = true;
      if (++closes_ > kMostCloses) return Wrong("the wizard does not let itself be closed");
      return "close " + form->Name();
    }
    --steps_;
    planned_ = {Action(*form)};
    if (planned_[0].find(".treFeatures") != std::string::npos) planned_.push_back("menu " + MenuChoice());
    if (chance_.Once(4)) planned_.push_back("meanwhile " + Press(*form));
    if (chance_.Once(3)) {
      planned_.push_back("set SAMPLE_TOOL_ANSWER=" +
                         chance_.OneOf({"change", "change", "cancel", "fail", "fail-saved", "raise"}));
    }
    if (chance_.Once(12)) {
      planned_.push_back("set SAMPLE_FAIL=" + chance_.OneOf({"", "", "FEADZED", "StcSign", "TxUnzip",
                                                             "BWKCreate", "EncryptDecrypt", "MakeCab"}));
    }
    return NextLine();
  }

  std::string Wrong(const std::string& what) {
    fault_ = what;
    return "";
  }

  // The window that takes input.
  const Form* FormAtHand() {
    const Form* at_hand = nullptr;
    size_t pages = 0;
    for (const Form* form : host_->VisibleForms()) {
      if (form->Style() == FormStyle::kPage) ++pages;
      if (host_->TakesInput(*form) && form->UserCanUse()) at_hand = form;
    }
    // A message that a page is busy comes with a wait, in which the script is not read.
    if (pages > 1) Wrong("two pages are on the screen");
    if (!at_hand) Wrong("nothing on the screen can be used");
    return pages > 1 ? nullptr : at_hand;
  }

  static bool CanServe(const Control& control) {
    if (!control.UserCanUse()) return false;
    switch (control.Kind()) {
      case ControlKind::kListBox:
        return static_cast<const kw::ui::ListBox&>(control).Count() > 0;
      case ControlKind::kComboBox:
        return !static_cast<const kw::ui::ComboBox&>(control).Items().empty();
      case ControlKind::kTree:
        return static_cast<const kw::ui::Tree&>(control).Count() > 0;
      case ControlKind::kLabel:
      case ControlKind::kFrame:
      case ControlKind::kImage:
      case ControlKind::kLine:
        return false;
      default:
        return true;
    }
  }

  std::vector<const Control*> Usable(const Form& form) const {
    std::vector<const Control*> controls;
    for (const Control* control : form.Controls()) {
      if (CanServe(*control)) controls.push_back(control);
    }
    return controls;
  }

  static bool EndsTheWalk(const std::string& name) {
    return name == "Cancel" || name == "Finsh" || name == "Save" || name == "Exit";
  }

  std::string Number(size_t count) { return " #" + std::to_string(1 + chance_.Below(count)); }

  std::string Action(const Form& form) {
    if (chance_.Once(150)) return "close " + form.Name();
    if (chance_.Once(60)) return "activate " + form.Name();
    const auto controls = Usable(form);
    if (controls.empty()) return "close " + form.Name();
    const Control* control = nullptr;
    // What ends the walk is pressed less often.
    for (int tries = 0; tries < 4 && (!control || EndsTheWalk(control->Name())); ++tries)
      control = controls[chance_.Below(controls.size())];
    const std::string name = form.Name() + "." + control->Name();
    switch (control->Kind()) {
      case ControlKind::kTextBox:
      case ControlKind::kEditor:
        return "type " + name + " " + chance_.TextFor(control->Name());
      case ControlKind::kListBox:
        return "pick " + name +
               Number(static_cast<size_t>(static_cast<const kw::ui::ListBox*>(control)->Count()));
      case ControlKind::kComboBox:
        return "pick " + name + Number(static_cast<const kw::ui::ComboBox*>(control)->Items().size());
      case ControlKind::kGrid:
        return "pick " + name +
               Number(static_cast<size_t>(static_cast<const kw::ui::Grid*>(control)->Rows() - 1));
      case ControlKind::kTree:
        return (chance_.Once(12) ? "node-right " : "node ") + name +
               Number(static_cast<size_t>(static_cast<const kw::ui::Tree*>(control)->Count()));
      default:
        return "click " + name;
    }
  }

  // What is pressed while a tool runs: nothing that needs an entry that may be gone by then.
  std::string Press(const Form& form) {
    for (int tries = 0; tries < 10; ++tries) {
      std::string action = Action(form);
      if (action.starts_with("click ") || action.starts_with("type ")) return action;
    }
    return "close " + form.Name();
  }

  std::string MenuChoice() {
    return chance_.OneOf({"Install Feature", "Install Feature and Sub-Features", "Do Not Install Feature",
                          "Make Feature Invisible During Setup", "dismiss"});
  }

  Chance& chance_;
  WalkDialogs& dialogs_;
  int steps_;
  int closes_ = 0;
  kw::ui::drive::ScriptHost* host_ = nullptr;
  Texts planned_;  ///< the lines to come, the last one first
  std::string line_;
  std::string fault_;
};

int Fail(const std::string& what) {
  std::cout << "random-walk: " << what << std::endl;
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return Fail("usage: random-walk SEED STEPS");
  Chance chance(static_cast<unsigned>(std::strtoul(argv[1], nullptr, 10)));
  WalkDialogs dialogs(chance);
  Walk walk(chance, dialogs, std::atoi(argv[2]));
  std::istream script(&walk);
  kw::ui::drive::Driver driver(script, std::cout);
  auto machine = kw::OpenProcessMachine(dialogs);
  if (!machine.ok()) return Fail(machine.error().message);
  driver.Attach(*machine->services);
  machine->services->dialogs = &dialogs;
  walk.Watch(static_cast<kw::ui::drive::ScriptHost&>(driver.Host()));

  const kw::FormFactories factories = kw::AllFormFactories();
  kw::WizardApp app(*machine->services, driver.Host(), factories);
  driver.OnUnknownForm([&](std::string_view name) -> Form* {
    return factories.contains(name) ? &app.Pages().FormByName(name) : nullptr;
  });
  const int status = driver.Run([&] { app.Run(); });
  if (!walk.Fault().empty()) return Fail(walk.Fault());
  return status;
}
