#ifndef KITWRIGHT_UI_TESTING_FAKE_FORM_HOST_H_
#define KITWRIGHT_UI_TESTING_FAKE_FORM_HOST_H_

#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "base/transcript.h"
#include "ui/form.h"
#include "ui/form_host.h"

namespace kw::ui::testing {

/// A window system without windows for page tests. It writes the transcript lines of a script run ("page
/// FORM", "hide FORM", "modal FORM", "status TEXT", "focus FORM.CONTROL", "menu A|B -> A", "end").
class FakeFormHost : public FormHost {
 public:
  explicit FakeFormHost(Transcript& transcript) : transcript_(transcript) {}

  /// What a person does in the modal dialogs that open, one function a dialog, in the order of their opening.
  /// A dialog without one, or one that its function leaves open, fails the test and is hidden.
  std::deque<std::function<void(Form&)>> modals;
  /// Captions (without "&") of the items chosen in the next pop-up menus; "dismiss", or none left, chooses
  /// none. An item that is not there fails the test.
  std::deque<std::string> menu_choices;
  /// One of them runs at each PumpEvents.
  std::deque<std::function<void()>> meanwhile;

  int pumps = 0;
  int refreshes = 0;
  /// What the last RedirectActivation gave; empty when it ended.
  std::function<void()> bring_forward;

  void FormShown(Form& form) override;
  void FormHidden(Form& form) override;
  void RunModal(Form& form) override;
  void FormDestroyed(Form&) override {}
  void FormChanged(Form&) override {}
  void ControlChanged(Control& control, Change change) override;
  void FocusControl(Control& control, bool select_all) override;
  void FocusForm(Form&) override {}
  int ShowPopup(Form& form, const PopupMenu& menu) override;
  void Refresh(Form&) override { ++refreshes; }
  void PumpEvents() override;
  /// Six pixels a character.
  int TextWidth(Form& form, std::string_view text) override;
  void RedirectActivation(Form& form, std::function<void()> function) override;
  void EndProgram() override;
  bool Ended() const override { return ended_; }

 private:
  Transcript& transcript_;
  bool ended_ = false;
};

}  // namespace kw::ui::testing

#endif  // KITWRIGHT_UI_TESTING_FAKE_FORM_HOST_H_
