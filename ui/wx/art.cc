#include "ui/wx/art.h"

#include <wx/bitmap.h>
#include <wx/icon.h>

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
  return wxBitmapBundle::FromSVG(
      R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16"><rect width="16" height="16" fill="#fff" fill-opacity="0.01"/></svg>)",
      size);
}

}  // namespace kw::ui
