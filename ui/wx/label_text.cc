#include "ui/wx/label_text.h"

#include <wx/arrstr.h>
#include <wx/control.h>

#include <algorithm>

namespace kw::ui {

namespace {

int LineWidth(const wxWindow& window, const wxString& line) {
  return window.GetTextExtent(wxControl::RemoveMnemonics(line)).x;
}

/// Length of the longest beginning of `line` that fits: up to a blank, else as many letters as fit, at least
/// one.
size_t FittingLength(const wxWindow& window, const wxString& line, int width) {
  size_t fits = 0;
  for (size_t blank = line.find(' '); blank != wxString::npos; blank = line.find(' ', blank + 1)) {
    if (LineWidth(window, line.substr(0, blank)) > width) break;
    fits = blank;
  }
  if (fits > 0) return fits;
  size_t low = 1;
  size_t high = std::max<size_t>(1, std::min(line.length(), line.find(' ')));
  while (low < high) {
    const size_t middle = (low + high + 1) / 2;
    if (LineWidth(window, line.substr(0, middle)) <= width) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  // Paths break behind a separator where there is one.
  const size_t separator = line.substr(0, low).find_last_of("\\/");
  return separator != wxString::npos && separator > 0 && low < line.length() ? separator + 1 : low;
}

}  // namespace

wxSize ScaledSize(const wxWindow& window, wxSize size) {
  constexpr int kUsualLetterHeight = 17;
  const double factor = static_cast<double>(window.GetCharHeight()) / window.FromDIP(kUsualLetterHeight);
  return window.FromDIP(size) * std::max(1.0, factor);
}

wxSize TextExtent(const wxWindow& window, const wxString& text) {
  wxSize whole(0, 0);
  for (const wxString& line : wxSplit(text, '\n', '\0')) {
    const wxSize size = window.GetTextExtent(wxControl::RemoveMnemonics(line));
    whole = wxSize(std::max(whole.x, size.x), whole.y + std::max(size.y, window.GetCharHeight()));
  }
  return whole;
}

wxString WrapText(const wxWindow& window, const wxString& text, int width) {
  // Before the first layout there is no width to go by.
  if (width < window.FromDIP(40)) return text;
  wxString wrapped;
  bool first = true;
  for (wxString line : wxSplit(text, '\n', '\0')) {
    if (!first) wrapped += '\n';
    first = false;
    while (LineWidth(window, line) > width && line.length() > 1) {
      const size_t length = FittingLength(window, line, width);
      wrapped += line.substr(0, length) + '\n';
      line = line.substr(length);
      line.Trim(false);
    }
    wrapped += line;
  }
  return wrapped;
}

}  // namespace kw::ui
