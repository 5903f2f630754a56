#include "ui/wx/wizard_frame.h"

#include <wx/display.h>

#include <algorithm>
#include <utility>

#include "ui/wx/art.h"
#include "ui/wx/label_text.h"

namespace kw::ui {

namespace {

// At 100 %.
constexpr int kDefaultWidth = 880;
constexpr int kDefaultHeight = 690;

}  // namespace

WizardFrame::WizardFrame(std::function<void()> on_close)
    : wxFrame(nullptr, wxID_ANY, "Kitwright", wxDefaultPosition, wxDefaultSize,
              wxDEFAULT_FRAME_STYLE & ~wxMAXIMIZE_BOX) {
  SetIcons(ProgramIcons());
  Bind(wxEVT_CLOSE_WINDOW, [close = std::move(on_close)](wxCloseEvent& event) {
    event.Veto();
    close();
  });
  // Some window managers offer the command all the same.
  Bind(wxEVT_MAXIMIZE, [this](wxMaximizeEvent&) { CallAfter([this] { Maximize(false); }); });
  Bind(wxEVT_SIZE, [this](wxSizeEvent&) { Fill(); });
  SetClientSize(ScaledSize(*this, wxSize(kDefaultWidth, kDefaultHeight)));
  const wxRect screen = wxDisplay(this).GetClientArea();
  SetSize(std::min(GetSize().x, screen.width), std::min(GetSize().y, screen.height));
  CentreOnScreen();
}

void WizardFrame::Fill() {
  if (panel_) panel_->SetSize(wxRect(GetClientSize()));
}

void WizardFrame::ShowPanel(wxWindow* panel, wxSize least) {
  wxSize smallest = GetMinClientSize();
  smallest.IncTo(least);
  SetMinClientSize(smallest);
  wxSize size = GetClientSize();
  if (size.x < smallest.x || size.y < smallest.y) {
    size.IncTo(smallest);
    SetClientSize(size);
  }
  wxWindow* old = std::exchange(panel_, panel);
  Fill();
  panel->Show();
  panel->Raise();
  if (old && old != panel) old->Hide();
}

void WizardFrame::DropPanel(const wxWindow* panel) {
  if (panel_ == panel) panel_ = nullptr;
}

}  // namespace kw::ui
