#ifndef KITWRIGHT_UI_WX_LIST_SIDE_H_
#define KITWRIGHT_UI_WX_LIST_SIDE_H_

#include <wx/dc.h>
#include <wx/panel.h>

namespace kw::ui {

/// The side of a page that holds its list of pages: the list with some air above and below, all on the
/// list's own ground, and a line towards the page's content.
class ListSide : public wxPanel {
 public:
  explicit ListSide(wxWindow* parent);
  /// Lays out `list`, a child of this panel.
  void Hold(wxWindow& list);

 private:
  wxWindow* list_ = nullptr;
};

/// Fills `size` pixels with the ground that `list` has now, enabled or not.
void PaintGroundOf(wxWindow& list, wxDC& dc, wxSize size);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_LIST_SIDE_H_
