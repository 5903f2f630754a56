#include "ui/wx/help_colors.h"

#include <wx/html/htmlwin.h>
// The next header does not include what it needs.
#include <wx/html/htmlproc.h>
#include <wx/settings.h>

namespace kw::ui {
namespace {

class ThemeColors : public wxHtmlProcessor {
 public:
  wxString Process(const wxString& text) const override { return WithThemeColors(text); }
};

wxString Attribute(const char* name, wxSystemColour color) {
  return wxString(" ") + name + "=\"" + wxSystemSettings::GetColour(color).GetAsString(wxC2S_HTML_SYNTAX) +
         "\"";
}

}  // namespace

wxString WithThemeColors(const wxString& page) {
  wxString colored = page;
  colored.Replace("<body>",
                  "<body" + Attribute("bgcolor", wxSYS_COLOUR_WINDOW) +
                      Attribute("text", wxSYS_COLOUR_WINDOWTEXT) + Attribute("link", wxSYS_COLOUR_HOTLIGHT) +
                      ">",
                  false);
  return colored;
}

void ShowHelpInThemeColors() {
  static bool done = false;
  if (done) return;
  done = true;
  // The toolkit takes it over and deletes it at its end.
  wxHtmlWindow::AddGlobalProcessor(new ThemeColors);
}

}  // namespace kw::ui
