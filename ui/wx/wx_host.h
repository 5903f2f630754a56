#ifndef KITWRIGHT_UI_WX_WX_HOST_H_
#define KITWRIGHT_UI_WX_WX_HOST_H_

#include <wx/dialog.h>
#include <wx/event.h>
#include <wx/eventfilter.h>
#include <wx/toplevel.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ui/form_host.h"
#include "ui/wx/form_view.h"

namespace kw::ui {

class WizardFrame;

/// Shows forms with wxWidgets. All pages share one window, so that the wizard never jumps about; dialogs and
/// the status window have windows of their own. The toolkit must be running (WxApplication) while a host
/// lives.
class WxHost : public FormHost, private wxEventFilter {
 public:
  WxHost();
  ~WxHost() override;

  void FormShown(Form& form) override;
  void FormHidden(Form& form) override;
  void RunModal(Form& form) override;
  void FormDestroyed(Form& form) override;
  void FormChanged(Form& form) override;
  void ControlChanged(Control& control, Change change) override;
  void FocusControl(Control& control, bool select_all) override;
  void FocusForm(Form& form) override;
  int ShowPopup(Form& form, const PopupMenu& menu) override;
  void Refresh(Form& form) override;
  void PumpEvents() override;
  int TextWidth(Form& form, std::string_view text) override;
  void RedirectActivation(Form& form, std::function<void()> bring_forward) override;
  void EndProgram() override;
  bool Ended() const override { return ended_; }

  /// True while any form is visible and the program was not ended: the event loop has work.
  bool Alive() const;
  /// The window in front of which boxes and dialogs stand; null when nothing is shown.
  wxWindow* BoxParent() const;
  /// The view of a form; null before its first showing.
  FormView* ViewOf(const Form& form) const;
  /// True if input for `form` goes to a tool's window now.
  bool Redirects(const Form& form) const;
  /// Paints what has to be painted; what a person does waits for its turn.
  void ServePainting();
  /// Brings all forms' gathered changes to their widgets.
  void Flush();
  /// The same, once the present event is done with.
  void FlushSoon();
  /// Where the next pop-up menu opens, in screen pixels, instead of at the mouse.
  void PlacePopup(wxPoint screen_position) { popup_place_ = screen_position; }

  /// Lives while a person's action is carried out: forms that go away meanwhile keep their widgets until the
  /// toolkit is done with the event.
  class Handling {
   public:
    explicit Handling(WxHost& host) : host_(host) { ++host_.handling_; }
    ~Handling();
    Handling(const Handling&) = delete;
    Handling& operator=(const Handling&) = delete;

   private:
    WxHost& host_;
  };

 private:
  int FilterEvent(wxEvent& event) override;
  FormView& Ensure(Form& form);
  wxTopLevelWindow* WindowOf(const Form& form) const;
  void ShowPage(Form& form);
  void ShowDialog(Form& form);
  void ShowStatus(Form& form);
  /// Gives a dialog the room that its content needs.
  static void FitDialog(wxTopLevelWindow& window, FormView& view);
  Form* TopPage() const { return pages_.empty() ? nullptr : pages_.back(); }
  void CloseTopPage();
  void CloseDialog(Form& form);
  void ApplyPointer();
  void OnIdle(wxIdleEvent& event);
  /// Escape presses the cancel button of the form that `shown` names.
  void BindKeys(wxWindow& window, std::function<Form*()> shown);

  WizardFrame* frame_ = nullptr;
  std::map<const Form*, std::unique_ptr<FormView>> views_;
  std::map<const Form*, wxTopLevelWindow*> windows_;  ///< of dialogs and of the status window
  std::vector<std::unique_ptr<FormView>> gone_;  ///< of destroyed forms, until the toolkit is done with them
  std::vector<wxWindow*> gone_windows_;
  std::vector<Form*> pages_;    ///< visible pages, the one on screen last
  std::vector<Form*> visible_;  ///< all visible forms, the newest last
  std::optional<wxPoint> popup_place_;
  const Form* redirected_ = nullptr;
  std::function<void()> bring_forward_;
  const Form* wants_focus_ = nullptr;  ///< was shown, and no control of it was given the focus since
  int handling_ = 0;
  bool busy_pointer_ = false;
  bool ended_ = false;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_WX_HOST_H_
