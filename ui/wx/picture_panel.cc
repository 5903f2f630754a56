#include "ui/wx/picture_panel.h"

#include <wx/dcbuffer.h>

namespace kw::ui {

PicturePanel::PicturePanel(wxWindow* parent, const wxBitmapBundle& picture, const wxColour& plain,
                           Anchor anchor)
    : picture_(picture), plain_(plain), anchor_(anchor) {
  Create(parent, wxID_ANY);
  SetBackgroundStyle(wxBG_STYLE_PAINT);
  SetBackgroundColour(plain);
  // A picture is nothing to act on: Tab passes it over.
  m_container.DisableSelfFocus();
  Bind(wxEVT_PAINT, [this](wxPaintEvent&) { Paint(); });
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    const wxSize room = GetClientSize();
    if (ChildrenPaintTheirBackground() && room.x > 0 && room.y > 0) {
      wxBitmap whole(room);
      wxMemoryDC dc(whole);
      Draw(dc);
      dc.SelectObject(wxNullBitmap);
      SetBackgroundBitmap(whole);
    }
    Refresh();
  });
}

void PicturePanel::Paint() {
  wxAutoBufferedPaintDC dc(this);
  Draw(dc);
}

void PicturePanel::Draw(wxDC& dc) {
  dc.SetBackground(wxBrush(plain_));
  dc.Clear();
  const wxSize room = GetClientSize();
  const wxSize natural = picture_.GetDefaultSize();
  if (!picture_.IsOk() || room.x <= 0 || room.y <= 0 || natural.x <= 0 || natural.y <= 0) return;
  const bool right = anchor_ == Anchor::kRight;
  const double scale =
      right ? static_cast<double>(room.y) / natural.y : static_cast<double>(room.x) / natural.x;
  const wxSize drawn(wxRound(natural.x * scale), wxRound(natural.y * scale));
  const double content = GetContentScaleFactor();
  wxBitmap bitmap = picture_.GetBitmap(drawn * content);
  bitmap.SetScaleFactor(content);
  dc.DrawBitmap(bitmap, right ? room.x - drawn.x : 0, right ? 0 : room.y - drawn.y, true);
}

}  // namespace kw::ui
