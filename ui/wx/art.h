#ifndef KITWRIGHT_UI_WX_ART_H_
#define KITWRIGHT_UI_WX_ART_H_

#include <wx/bmpbndl.h>
#include <wx/iconbndl.h>

#include <string_view>

namespace kw::ui {

/// A picture by the name that controls use, drawn for `size` (in pixels at 100 %) and sharp at every scale;
/// an empty bundle when there is none of that name.
wxBitmapBundle PictureBundle(std::string_view name, wxSize size);

/// The program's icon in the sizes that window managers ask for.
wxIconBundle ProgramIcons();

/// A blank picture of `size`, which keeps captions without a sign in line with the others.
wxBitmapBundle BlankBundle(wxSize size);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_ART_H_
