#ifndef KITWRIGHT_UI_WX_FORM_VIEW_H_
#define KITWRIGHT_UI_WX_FORM_VIEW_H_

#include <wx/panel.h>

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "ui/form.h"
#include "ui/wx/control_view.h"

namespace kw::ui {

class FormLayout;
class WxHost;

/// The panel that shows one form, with a view of each of its controls. Changes of the form's state are
/// gathered and brought to the widgets together, before anything is painted or waited for.
class FormView {
 public:
  /// Builds the panel as a child of `parent`. `form` may go away before the view does: then Detach is called.
  FormView(WxHost& host, Form& form, wxWindow* parent);
  ~FormView();
  FormView(const FormView&) = delete;
  FormView& operator=(const FormView&) = delete;

  WxHost& Host() const { return host_; }
  /// Null once the form is gone.
  Form* Shown() const { return form_; }
  wxPanel* Panel() const { return panel_; }

  /// The form's object goes away: the view sends it nothing from now on.
  void Detach() { form_ = nullptr; }
  void Mark(const Control& control, Change change);
  /// Brings all gathered changes to the widgets.
  void Flush();
  void Focus(const Control& control, bool select_all);
  /// Moves the focus to where a person begins, or back to where it was when the form lost it.
  void FocusSomething();
  /// At the next showing a person begins anew.
  void ForgetFocus() { left_ = std::exchange(last_focus_, nullptr); }
  /// The form's enabled state.
  void Enable(bool enabled);
  /// The form's font, where it has one of its own.
  void ApplyFont();

  /// Lets the layout be done anew at the next Flush.
  void NeedLayout() { need_layout_ = true; }
  /// Breaks the labels and places everything for the panel's present size.
  void DoLayout();
  /// Lets the widgets work out anew how much room they need.
  void ForgetSizes();
  /// The least size of the panel that shows everything.
  wxSize LeastSize() const;

  /// Runs what a person did, unless the control cannot be used now; then its widget goes back to the state.
  void User(ControlView& view, const std::function<void()>& action);
  /// Presses the form's default or cancel button; false when there is none that can be pressed.
  bool PressCancel();
  /// Makes the form's default button the one that Enter presses.
  void ApplyDefaultButton();

  ControlView* ViewOf(const Control& control) const;
  /// True once after each painting since the last call of ForgetPainting.
  bool Painted() const { return painted_; }
  void ForgetPainting() { painted_ = false; }

 private:
  /// Gives the widgets the names that screen readers say, and those by which other programs find them.
  void NameForReaders(const FormLayout& layout);

  WxHost& host_;
  Form* form_;
  wxPanel* panel_;
  wxWindow* scroller_ = nullptr;
  std::map<const Control*, std::unique_ptr<ControlView>> views_;
  std::vector<ControlView*> order_;
  std::vector<WrappingView*> wrapping_;
  std::map<const Control*, Changes> pending_;
  wxWindow* last_focus_ = nullptr;
  const wxWindow* left_ =
      nullptr;  ///< had the focus when it was forgotten; a window that returns restores it
  Font font_;
  bool need_layout_ = true;
  bool painted_ = false;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_FORM_VIEW_H_
