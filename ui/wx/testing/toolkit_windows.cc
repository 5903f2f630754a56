#include <wx/bitmap.h>
#include <wx/dcmemory.h>
#include <wx/dcscreen.h>
#include <wx/window.h>

#include <cstdlib>
#include <memory>
#include <utility>

#include "ui/wx/testing/toolkit.h"
#include "ui/wx/wx_application.h"

namespace kw::ui::testing {

bool StartToolkit() {
  static const std::unique_ptr<WxApplication> application = [] {
    static int argc = 1;
    static char name[] = "test";
    static char* argv[] = {name, nullptr};
    Result<std::unique_ptr<WxApplication>> started = WxApplication::Start(argc, argv);
    return started.ok() ? std::move(started.value()) : nullptr;
  }();
  return application != nullptr;
}

void TakeScreenshot(const std::string& name) {
  const char* folder = std::getenv("KITWRIGHT_SCREENSHOTS");
  if (!folder) return;
  wxScreenDC screen;
  wxBitmap picture(screen.GetSize(), 24);
  wxMemoryDC memory(picture);
  memory.Blit(wxPoint(0, 0), screen.GetSize(), &screen, wxPoint(0, 0));
  memory.SelectObject(wxNullBitmap);
  if (!picture.SaveFile(std::string(folder) + "\\" + name + ".bmp", wxBITMAP_TYPE_BMP)) std::abort();
}

bool HasFocus(const wxWindow& window) {
  const wxWindow* focused = wxWindow::FindFocus();
  while (focused && focused != &window) focused = focused->GetParent();
  return focused != nullptr;
}

// The open list stands below its field.
wxPoint FirstEntryOf(const wxWindow& combo) {
  const wxRect place = combo.GetScreenRect();
  return {place.x + place.width / 2, place.GetBottom() + combo.GetCharHeight() / 2};
}

}  // namespace kw::ui::testing
