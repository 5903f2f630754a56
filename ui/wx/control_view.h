#ifndef KITWRIGHT_UI_WX_CONTROL_VIEW_H_
#define KITWRIGHT_UI_WX_CONTROL_VIEW_H_

#include <wx/window.h>

#include <functional>
#include <memory>

#include "ui/controls.h"

namespace kw::ui {

class FormView;

/// A set of Change values.
class Changes {
 public:
  static Changes All() {
    Changes all;
    all.bits_ = ~0u;
    return all;
  }
  void Add(Change change) { bits_ |= Bit(change); }
  bool Has(Change change) const { return (bits_ & Bit(change)) != 0; }

 private:
  static unsigned Bit(Change change) { return 1u << static_cast<unsigned>(change); }
  unsigned bits_ = 0;
};

/// The widget that shows one control. Its window belongs to the form's panel; the view goes away behind it.
class ControlView {
 public:
  ControlView(FormView& form, Control& control) : form_(form), control_(control) {}
  virtual ~ControlView() = default;
  ControlView(const ControlView&) = delete;
  ControlView& operator=(const ControlView&) = delete;

  Control& Shown() const { return control_; }
  virtual wxWindow* Window() const = 0;
  /// Brings the widget to the control's state. Sends the control nothing.
  void Apply(Changes changes);
  /// Moves the focus to the widget.
  virtual void Focus(bool select_all);
  /// Shows the control's text in `font`.
  virtual void UseFont(const wxFont& font) { Window()->SetFont(font); }

 protected:
  virtual void ApplyOwn(Changes changes) = 0;
  /// Runs what a person did on the control. When it cannot be used now, the widget goes back to the state.
  void User(const std::function<void()>& action);
  /// As User, for what a key does: once the window system is through with the key. Windows tells of keys from
  /// within a hook, where menus and other windows would get none.
  void UserByKey(std::function<void()> action);

  FormView& form_;

 private:
  Control& control_;
};

/// The view of a control, with its widget made as a child of `parent`.
std::unique_ptr<ControlView> MakeControlView(FormView& form, Control& control, wxWindow* parent);

// The makers of the single kinds.
std::unique_ptr<ControlView> MakeTextBoxView(FormView& form, TextBox& box, wxWindow* parent);
std::unique_ptr<ControlView> MakeEditorView(FormView& form, Editor& editor, wxWindow* parent);
std::unique_ptr<ControlView> MakeCheckBoxView(FormView& form, CheckBox& box, wxWindow* parent);
std::unique_ptr<ControlView> MakeOptionView(FormView& form, Option& option, wxWindow* parent);
std::unique_ptr<ControlView> MakeButtonView(FormView& form, Button& button, wxWindow* parent);
std::unique_ptr<ControlView> MakeListBoxView(FormView& form, ListBox& list, wxWindow* parent);
std::unique_ptr<ControlView> MakeComboBoxView(FormView& form, ComboBox& combo, wxWindow* parent);
std::unique_ptr<ControlView> MakeGridView(FormView& form, Grid& grid, wxWindow* parent);
std::unique_ptr<ControlView> MakeTreeView(FormView& form, Tree& tree, wxWindow* parent);
std::unique_ptr<ControlView> MakeLabelView(FormView& form, Label& label, wxWindow* parent);
std::unique_ptr<ControlView> MakeFrameView(FormView& form, Frame& frame, wxWindow* parent);
std::unique_ptr<ControlView> MakeImageView(FormView& form, Image& image, wxWindow* parent);
std::unique_ptr<ControlView> MakeLineView(FormView& form, Line& line, wxWindow* parent);

/// A view whose widget breaks its text into lines to fit the room it gets.
class WrappingView {
 public:
  virtual ~WrappingView() = default;
  /// Breaks the text anew for the present width of the widget; true when its height changed.
  virtual bool Rewrap() = 0;
  /// Lets the text be narrower than its natural width, down to `least` pixels.
  virtual void AllowWrap(int least) = 0;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_CONTROL_VIEW_H_
