#ifndef KITWRIGHT_UI_DRIVE_SCRIPT_HOST_H_
#define KITWRIGHT_UI_DRIVE_SCRIPT_HOST_H_

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "ui/drive/answer_queue.h"
#include "ui/drive/script_run.h"
#include "ui/form.h"
#include "ui/form_host.h"

namespace kw::ui::drive {

/// The window system of a script run: it knows the forms, tells what happens to them in the transcript, and
/// has the script go on where a person would: in a modal dialog and while a child process runs.
class ScriptHost : public FormHost {
 public:
  /// Both outlive the host.
  ScriptHost(ScriptRun& run, AnswerQueue& queue) : run_(run), queue_(queue) {}

  /// What carries out the script's next command while a modal dialog is open.
  void OnModalTurn(std::function<void()> carry_out_next) { modal_turn_ = std::move(carry_out_next); }
  /// What an event turn sets off.
  void OnEventTurn(std::function<void()> serve) { event_turn_ = std::move(serve); }

  /// The form of that name, the youngest of several; a null pointer when there is none.
  Form* FindForm(std::string_view name) const;
  /// The visible forms in the order in which they were shown.
  const std::vector<Form*>& VisibleForms() const { return visible_; }
  /// True unless a modal dialog keeps input from this form.
  bool TakesInput(const Form& form) const { return modals_.empty() || modals_.back() == &form; }
  /// An acting command is done: drops the queued answers that it left, unless it closed the dialog in which
  /// it was given, since what follows the dialog is of its doing too.
  void DropLeftAnswers();
  /// The window system activates a form, or the tool's window in its place.
  void Activate(Form& form);

  void FormCreated(Form& form) override;
  void FormShown(Form& form) override;
  void FormHidden(Form& form) override;
  void RunModal(Form& form) override;
  void FormDestroyed(Form& form) override;
  void FormChanged(Form&) override {}
  void ControlChanged(Control& control, Change change) override;
  void FocusControl(Control& control, bool select_all) override;
  void FocusForm(Form&) override {}
  int ShowPopup(Form& form, const PopupMenu& menu) override;
  void Refresh(Form&) override {}
  void PumpEvents() override;
  /// Six pixels a character.
  int TextWidth(Form& form, std::string_view text) override;
  void RedirectActivation(Form& form, std::function<void()> bring_forward) override;
  void EndProgram() override;
  /// True at the end of the script too: handlers that are still under way show nothing more.
  bool Ended() const override { return run_.Over(); }

 private:
  ScriptRun& run_;
  AnswerQueue& queue_;
  std::function<void()> modal_turn_;
  std::function<void()> event_turn_;
  std::vector<Form*> forms_;
  std::vector<Form*> visible_;
  std::vector<Form*> modals_;
  size_t modal_loops_ = 0;
  std::map<Form*, std::function<void()>> redirected_;
};

}  // namespace kw::ui::drive

#endif  // KITWRIGHT_UI_DRIVE_SCRIPT_HOST_H_
