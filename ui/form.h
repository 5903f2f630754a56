#ifndef KITWRIGHT_UI_FORM_H_
#define KITWRIGHT_UI_FORM_H_

#include <string>
#include <string_view>
#include <vector>

#include "ui/controls.h"
#include "ui/form_host.h"
#include "ui/layout.h"

namespace kw::ui {

enum class Pointer { kDefault, kHourglass };

/// How a form is framed by the adapter.
enum class FormStyle {
  kPage,    ///< a wizard page: title band, page tree, content, buttons
  kDialog,  ///< a modal dialog
  kStatus   ///< the small status window
};

/// The face and size in points that a form's texts are shown in; an empty face leaves the adapter's own.
struct Font {
  std::string face;
  int size = 0;
  int charset = 0;  ///< the system's number of a character set
  bool operator==(const Font& other) const = default;
};

/// A window as plain state, with its controls. Created hidden and not loaded; Load runs at its first showing
/// or at EnsureLoaded. The host outlives it.
class Form {
 public:
  Form(FormHost& host, std::string name, std::string caption, FormStyle style);
  virtual ~Form();
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& Name() const { return name_; }
  FormStyle Style() const { return style_; }
  FormHost& Host() const { return host_; }
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);
  bool Visible() const { return visible_; }
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled);
  Pointer MousePointer() const { return pointer_; }
  void SetMousePointer(Pointer pointer);
  const Font& TextFont() const { return font_; }
  void SetTextFont(Font font);
  /// Whether the window's frame offers to maximise it.
  bool HasMaximize() const { return has_maximize_; }
  void RemoveMaximize();
  bool Modal() const { return modal_; }
  bool Loaded() const { return loaded_; }

  /// The controls in the order of their declaration, which is the Tab order.
  const std::vector<Control*>& Controls() const { return controls_; }
  /// The control of that name, or a null pointer.
  Control* FindControl(std::string_view name) const;

  /// True if a person can act on it now: it is visible, enabled and not busy.
  bool UserCanUse() const { return visible_ && enabled_ && pointer_ == Pointer::kDefault; }

  /// Runs Load if it has not run.
  void EnsureLoaded();
  /// Shows the form modeless and fires Activate; on a visible form it only gives it the focus.
  void Show();
  /// Shows the form, fires Activate, and returns when it is hidden.
  void ShowModal();
  void Hide();
  void Refresh() { host_.Refresh(*this); }
  /// Shows a pop-up menu, waits, and runs the chosen item's handler (after toggling nothing itself).
  void ShowPopup(const PopupMenu& menu);

  /// What a person or the window system does.
  /// The window got an activation, also while the form is hidden.
  void UserActivate();
  /// The title bar's close: asks QueryUnload and hides the form when that agrees.
  void UserClose();

  /// Where the controls stand.
  virtual Layout ContentLayout() = 0;

 protected:
  virtual void OnLoad() {}
  virtual void OnActivate() {}
  /// True lets the window close.
  virtual bool OnQueryUnload() { return true; }

 private:
  friend class Control;
  FormHost& host_;
  std::string name_;
  std::string caption_;
  FormStyle style_;
  std::vector<Control*> controls_;
  Pointer pointer_ = Pointer::kDefault;
  Font font_;
  bool has_maximize_ = true;
  bool visible_ = false;
  bool enabled_ = true;
  bool modal_ = false;
  bool loaded_ = false;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_FORM_H_
