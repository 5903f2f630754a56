#ifndef KITWRIGHT_UI_WX_WIZARD_FRAME_H_
#define KITWRIGHT_UI_WX_WIZARD_FRAME_H_

#include <wx/frame.h>

#include <functional>

namespace kw::ui {

/// The window of the wizard's pages: it shows one panel at a time, filled to its whole size. It cannot be
/// maximised.
class WizardFrame : public wxFrame {
 public:
  /// `on_close` is called for the title bar's close; the window itself stays.
  explicit WizardFrame(std::function<void()> on_close);
  /// Puts `panel` in front; the window grows to `least` where it is smaller.
  void ShowPanel(wxWindow* panel, wxSize least);
  wxWindow* Panel() const { return panel_; }
  /// The panel is about to go away or another one takes its place.
  void DropPanel(const wxWindow* panel);

 private:
  void Fill();

  wxWindow* panel_ = nullptr;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_WIZARD_FRAME_H_
