#ifndef KITWRIGHT_UI_FORM_HOST_H_
#define KITWRIGHT_UI_FORM_HOST_H_

#include <functional>
#include <string>
#include <string_view>

namespace kw::ui {

class Control;
class Form;
class PopupMenu;

/// What about a control changed; the adapter reads the new state from the control.
enum class Change { kText, kEnabled, kVisible, kValue, kItems, kSelection, kColor, kExtent };

/// The window system, as forms see it. Implemented by the toolkit adapter, by the script driver and by fakes.
/// All calls come on the one user-interface thread.
class FormHost {
 public:
  virtual ~FormHost() = default;
  /// A form's object was made, by its name and style; its controls are still to come. A host that finds forms
  /// by their names takes note.
  virtual void FormCreated(Form&) {}
  /// The form became visible (its state says so already); makes its window when there is none.
  virtual void FormShown(Form& form) = 0;
  virtual void FormHidden(Form& form) = 0;
  /// Runs a nested event loop until `form`, which was just shown, is hidden.
  virtual void RunModal(Form& form) = 0;
  /// The form's object goes away; its window must go too. Its controls are gone already.
  virtual void FormDestroyed(Form& form) = 0;
  /// Caption, enabled state, mouse pointer, font or frame of the form changed.
  virtual void FormChanged(Form& form) = 0;
  virtual void ControlChanged(Control& control, Change change) = 0;
  /// A page moved the focus to a control; `select_all` marks its whole text.
  virtual void FocusControl(Control& control, bool select_all) = 0;
  /// Gives a visible form the focus.
  virtual void FocusForm(Form& form) = 0;
  /// Shows a pop-up menu and waits; the index of the chosen item, or -1 when dismissed.
  virtual int ShowPopup(Form& form, const PopupMenu& menu) = 0;
  /// Paints the form now.
  virtual void Refresh(Form& form) = 0;
  /// Serves pending events of all windows; may wait a few milliseconds for one.
  virtual void PumpEvents() = 0;
  /// Width of `text` in pixels in the form's font.
  virtual int TextWidth(Form& form, std::string_view text) = 0;
  /// While a tool's window is open, activations of `form` bring the tool forward instead: `bring_forward` is
  /// called for each. An empty function ends that.
  virtual void RedirectActivation(Form& form, std::function<void()> bring_forward) = 0;
  /// Ends the program: no handler runs any more once the present one returns.
  virtual void EndProgram() = 0;
  /// True once EndProgram was called.
  virtual bool Ended() const = 0;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_FORM_HOST_H_
