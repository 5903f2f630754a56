#include "ui/wx/list_side.h"

namespace kw::ui {

void PaintGroundOf(wxWindow& list, wxDC& dc, wxSize size) {
  dc.SetPen(*wxTRANSPARENT_PEN);
  dc.SetBrush(wxBrush(list.GetBackgroundColour()));
  dc.DrawRectangle(wxPoint(0, 0), size);
}

}  // namespace kw::ui
