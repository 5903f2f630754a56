#include "ui/wx/wx_text.h"

#include <wx/control.h>

namespace kw::ui {

wxString ToWxLines(std::string_view text) {
  wxString result = ToWx(text);
  result.Replace("\r\n", "\n");
  result.Replace("\r", "\n");
  return result;
}

std::string FromWxLines(const wxString& text) {
  wxString result = text;
  result.Replace("\r\n", "\n");
  result.Replace("\n", "\r\n");
  return FromWx(result);
}

wxString WithoutAccessKey(std::string_view caption) { return wxControl::RemoveMnemonics(ToWx(caption)); }

}  // namespace kw::ui
