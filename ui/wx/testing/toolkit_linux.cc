#include <gtk/gtk.h>
#include <wx/window.h>

#include <cstdlib>
#include <memory>
#include <utility>

#include "ui/wx/testing/toolkit.h"
#include "ui/wx/testing/virtual_display.h"
#include "ui/wx/wx_application.h"

namespace kw::ui::testing {

namespace {

struct Toolkit {
  Toolkit() {
    // Large enough for a page at twice its size.
    display = VirtualDisplay::Start(1920, 1536);
    if (!display) return;
    static int argc = 1;
    static char name[] = "test";
    static char* argv[] = {name, nullptr};
    Result<std::unique_ptr<WxApplication>> started = WxApplication::Start(argc, argv);
    if (started.ok()) application = std::move(started.value());
  }

  // The toolkit ends before its display.
  std::unique_ptr<VirtualDisplay> display;
  std::unique_ptr<WxApplication> application;
};

}  // namespace

bool StartToolkit() {
  static Toolkit toolkit;
  return toolkit.application != nullptr;
}

void TakeScreenshot(const std::string& name) {
  const char* folder = std::getenv("KITWRIGHT_SCREENSHOTS");
  if (!folder) return;
  const std::string command = "import -window root '" + std::string(folder) + "/" + name + ".png'";
  if (std::system(command.c_str()) != 0) std::abort();
}

// wxWidgets does not tell of combo boxes.
bool HasFocus(const wxWindow& window) {
  GtkWidget* widget = window.GetHandle();
  GtkWidget* focused = gtk_window_get_focus(GTK_WINDOW(gtk_widget_get_toplevel(widget)));
  return focused && (focused == widget || gtk_widget_is_ancestor(focused, widget));
}

// The open list covers its field, with the first entry over it.
wxPoint FirstEntryOf(const wxWindow& combo) {
  const wxRect place = combo.GetScreenRect();
  return {place.x + place.width / 2, place.y + place.height / 2};
}

}  // namespace kw::ui::testing
