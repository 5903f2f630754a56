#include "ui/wx/status_window.h"

#include <wx/sizer.h>

namespace kw::ui {

StatusWindow::StatusWindow(wxWindow* parent, const wxString& title)
    : wxFrame(parent, wxID_ANY, title, wxDefaultPosition, wxDefaultSize,
              wxCAPTION | wxFRAME_NO_TASKBAR | (parent ? wxFRAME_FLOAT_ON_PARENT : wxSTAY_ON_TOP)),
      base_(new wxPanel(this)),
      sign_(new wxActivityIndicator(base_, wxID_ANY, wxDefaultPosition, FromDIP(wxSize(24, 24)))) {
  sign_->Start();
  Bind(wxEVT_CLOSE_WINDOW, [](wxCloseEvent& event) { event.Veto(); });
}

void StatusWindow::ShowOver(wxWindow* over, wxWindow& panel, wxSize least) {
  panel.Show();
  if (!base_->GetSizer()) {
    auto* whole = new wxBoxSizer(wxHORIZONTAL);
    whole->Add(sign_, 0, wxALIGN_CENTRE_VERTICAL | wxLEFT, FromDIP(16));
    whole->Add(&panel, 1, wxALIGN_CENTRE_VERTICAL);
    base_->SetSizer(whole);
  }
  panel.SetMinSize(least);
  SetClientSize(least + FromDIP(wxSize(52, 12)));
  base_->Layout();
  if (over) {
    const wxRect place = over->GetScreenRect();
    const wxSize size = GetSize();
    Move(place.x + (place.width - size.x) / 2, place.y + (place.height - size.y) / 2);
  } else {
    CentreOnScreen();
  }
  ShowWithoutActivating();
}

}  // namespace kw::ui
