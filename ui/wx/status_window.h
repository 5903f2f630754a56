#ifndef KITWRIGHT_UI_WX_STATUS_WINDOW_H_
#define KITWRIGHT_UI_WX_STATUS_WINDOW_H_

#include <wx/activityindicator.h>
#include <wx/frame.h>
#include <wx/panel.h>

namespace kw::ui {

/// The small window that tells what a long step does: a sign that moves, and the form's panel beside it. A
/// person cannot act on it, and it takes no focus.
class StatusWindow : public wxFrame {
 public:
  StatusWindow(wxWindow* parent, const wxString& title);
  /// The parent of the form's panel.
  wxWindow& Base() { return *base_; }
  /// Shows the window, fitted to `panel`, in the middle of `over` (of the screen when null).
  void ShowOver(wxWindow* over, wxWindow& panel, wxSize least);

 private:
  wxPanel* base_;
  wxActivityIndicator* sign_;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_STATUS_WINDOW_H_
