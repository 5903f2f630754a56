#include "ui/wx/list_side.h"

#include <wx/dcbuffer.h>
#include <wx/sizer.h>
#include <wx/statline.h>

namespace kw::ui {

namespace {

constexpr int kAir = 10;  // above and below the list, at 100 %

}  // namespace

ListSide::ListSide(wxWindow* parent) : wxPanel(parent, wxID_ANY) {
  SetBackgroundStyle(wxBG_STYLE_PAINT);
  Bind(wxEVT_PAINT, [this](wxPaintEvent&) {
    wxAutoBufferedPaintDC dc(this);
    if (list_) PaintGroundOf(*list_, dc, GetClientSize());
  });
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    Refresh();
  });
}

void ListSide::Hold(wxWindow& list) {
  list_ = &list;
  auto* whole = new wxBoxSizer(wxHORIZONTAL);
  whole->Add(&list, 1, wxEXPAND | wxTOP | wxBOTTOM, FromDIP(kAir));
  whole->Add(new wxStaticLine(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxLI_VERTICAL), 0, wxEXPAND);
  SetSizer(whole);
}

}  // namespace kw::ui
