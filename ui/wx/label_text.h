#ifndef KITWRIGHT_UI_WX_LABEL_TEXT_H_
#define KITWRIGHT_UI_WX_LABEL_TEXT_H_

#include <wx/window.h>

namespace kw::ui {

/// `size`, given for 100 % and the usual font, for the window's scale and font: who asks for larger letters
/// gets larger windows.
wxSize ScaledSize(const wxWindow& window, wxSize size);

/// Size of `text` (with line feeds, and "&" marks that are not drawn) in the window's font, in pixels.
wxSize TextExtent(const wxWindow& window, const wxString& text);

/// `text` with line feeds put in so that no line is wider than `width` pixels: at blanks, and inside words
/// (paths, mostly) that are wider than a line.
wxString WrapText(const wxWindow& window, const wxString& text, int width);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_LABEL_TEXT_H_
