#ifndef KITWRIGHT_UI_WX_PICTURE_PANEL_H_
#define KITWRIGHT_UI_WX_PICTURE_PANEL_H_

#include <wx/bmpbndl.h>
#include <wx/custombgwin.h>
#include <wx/dc.h>
#include <wx/panel.h>

namespace kw::ui {

/// A panel with a picture behind its children. Where the picture does not reach, it has its plain colour.
class PicturePanel : public wxCustomBackgroundWindow<wxPanel> {
 public:
  enum class Anchor {
    kRight,  ///< as high as the panel, at its right end
    kFoot    ///< as wide as the panel, at its foot
  };
  PicturePanel(wxWindow* parent, const wxBitmapBundle& picture, const wxColour& plain, Anchor anchor);

 private:
  void Paint();
  void Draw(wxDC& dc);
  /// Whether labels fill the room behind their text, so that they have to know the picture.
  static bool ChildrenPaintTheirBackground();

  wxBitmapBundle picture_;
  wxColour plain_;
  Anchor anchor_;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_PICTURE_PANEL_H_
