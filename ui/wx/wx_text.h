#ifndef KITWRIGHT_UI_WX_WX_TEXT_H_
#define KITWRIGHT_UI_WX_WX_TEXT_H_

#include <wx/string.h>

#include <string>
#include <string_view>

namespace kw::ui {

/// The toolkit's string for UTF-8 text. Bytes that are no UTF-8 are read as Latin-1 rather than lost.
inline wxString ToWx(std::string_view text) {
  wxString result = wxString::FromUTF8(text.data(), text.size());
  if (result.empty() && !text.empty()) result = wxString::From8BitData(text.data(), text.size());
  return result;
}

/// UTF-8 text of the toolkit's string.
inline std::string FromWx(const wxString& text) { return text.utf8_string(); }

/// `text` for a widget of several lines: line ends become line feeds.
wxString ToWxLines(std::string_view text);

/// Text of a widget of several lines: line ends become CR LF.
std::string FromWxLines(const wxString& text);

/// A caption with its "&" marks, as plain text.
wxString WithoutAccessKey(std::string_view caption);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_WX_TEXT_H_
