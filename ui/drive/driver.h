#ifndef KITWRIGHT_UI_DRIVE_DRIVER_H_
#define KITWRIGHT_UI_DRIVE_DRIVER_H_

#include <functional>
#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/services.h"
#include "platform/shared/recording.h"
#include "ui/drive/answer_queue.h"
#include "ui/drive/script_dialogs.h"
#include "ui/drive/script_host.h"
#include "ui/drive/script_processes.h"
#include "ui/drive/script_run.h"

namespace kw::ui::drive {

/// Drives the wizard from a script: it is the window system, the dialogs, the processes and the closed
/// libraries that the wizard sees, and prints a transcript of all that goes through them.
class Driver {
 public:
  /// Both outlive the driver.
  Driver(std::istream& script, std::ostream& out);

  FormHost& Host() { return host_; }
  platform::Dialogs& Dialogs() { return dialogs_; }
  /// Puts the driver's own dialogs, processes and closed libraries into a machine's services; the latter two
  /// pass on to those that were there, which outlive the driver. Before Run.
  void Attach(platform::Services& services);

  /// Finds a form that the script names and nothing has made yet; gives a null pointer for a name that the
  /// program does not know.
  void OnUnknownForm(std::function<Form*(std::string_view)> find) { find_form_ = std::move(find); }

  /// Runs `entry` and then the script; the exit status: 0, 1 when an "expect" or a "reject" failed, 2 when
  /// the script asked for what is not there or left a question unanswered.
  int Run(const std::function<void()>& entry);

 private:
  using Handler = void (Driver::*)(const std::string& text);
  struct Command {
    const char* name;
    Handler handler;
    /// A person's action: it uses up what is queued.
    bool acts;
  };
  static const std::vector<Command>& Commands();

  void CarryOutNext();
  void CarryOut(const std::string& line);
  void EndWithoutPage();

  void Click(const std::string& text);
  void Type(const std::string& text);
  void Pick(const std::string& text);
  void Node(const std::string& text);
  void NodeRight(const std::string& text);
  void Close(const std::string& text);
  void Activate(const std::string& text);
  void Menu(const std::string& text);
  void Answer(const std::string& text);
  void File(const std::string& text);
  void Folder(const std::string& text);
  void Meanwhile(const std::string& text);
  void Set(const std::string& text);
  void Show(const std::string& text);
  void Print(const std::string& text);
  void Say(const std::string& text);
  void Expect(const std::string& text);
  void Reject(const std::string& text);

  void ClickNode(const std::string& text, MouseButton button);
  /// The named form or control; without one the run stops and a null pointer comes back.
  Form* NamedForm(const std::string& name);
  Control* NamedControl(const std::string& name);
  /// The control for a person's action; a null pointer also for a control that a person cannot use, which is
  /// told.
  Control* UsableControl(const std::string& name);
  void PrintState(const Control& control);

  ScriptRun run_;
  AnswerQueue queue_;
  ScriptHost host_;
  ScriptDialogs dialogs_;
  std::optional<platform::RecordingProcesses> recorded_processes_;
  std::optional<ScriptProcesses> processes_;
  std::optional<platform::RecordingClosedLibraries> libraries_;
  std::function<Form*(std::string_view)> find_form_;
  /// A "meanwhile" command is at work, within another one.
  bool meanwhile_ = false;
};

}  // namespace kw::ui::drive

#endif  // KITWRIGHT_UI_DRIVE_DRIVER_H_
