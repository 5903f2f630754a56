#include "ui/wx/art.h"

#include <wx/bitmap.h>
#include <wx/icon.h>
#include <wx/image.h>

#include <algorithm>

#include "resources/pictures.h"

namespace kw::ui {

wxBitmapBundle PictureBundle(std::string_view name, wxSize size) {
  const std::string_view svg = resources::PictureSvg(name);
  if (svg.empty()) return {};
  return wxBitmapBundle::FromSVG(svg.data(), size);
}

wxIconBundle ProgramIcons() {
  const wxBitmapBundle picture = PictureBundle("APP", wxSize(32, 32));
  wxIconBundle icons;
  for (const int edge : {16, 24, 32, 48, 64, 128}) {
    wxIcon icon;
    icon.CopyFromBitmap(picture.GetBitmap(wxSize(edge, edge)));
    icons.AddIcon(icon);
  }
  return icons;
}

wxBitmapBundle BlankBundle(wxSize size) {
  // Not quite transparent: Windows takes a picture without any opacity for one that has none to tell, and
  // paints it black.
  wxImage blank(size);
  blank.Clear(0xff);
  blank.SetAlpha();
  std::fill_n(blank.GetAlpha(), size.x * size.y, static_cast<unsigned char>(1));
  return wxBitmapBundle::FromBitmap(wxBitmap(blank));
}

}  // namespace kw::ui
