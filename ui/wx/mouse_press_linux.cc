#include <gtk/gtk.h>
#include <wx/dataview.h>

#include <utility>

#include "ui/wx/mouse_press.h"

namespace kw::ui {

namespace {

using Press = std::function<void(wxPoint, MouseButton, bool)>;

gboolean Pressed(GtkWidget*, GdkEvent* any, gpointer data) {
  if (any->type != GDK_BUTTON_PRESS && any->type != GDK_2BUTTON_PRESS) return FALSE;
  const GdkEventButton* event = &any->button;
  if (event->button != 1 && event->button != 3) return FALSE;
  const MouseButton button = event->button == 1 ? MouseButton::kLeft : MouseButton::kRight;
  (*static_cast<Press*>(data))(wxPoint(static_cast<int>(event->x), static_cast<int>(event->y)), button,
                               event->type == GDK_2BUTTON_PRESS);
  return FALSE;
}

void Forget(gpointer data, GClosure*) { delete static_cast<Press*>(data); }

}  // namespace

void OnMousePress(wxDataViewCtrl& view, Press press) {
  GtkWidget* rows = gtk_bin_get_child(GTK_BIN(view.GetHandle()));
  // The signal of all events comes before those of the single kinds, which the toolkit may end.
  g_signal_connect_data(rows, "event", G_CALLBACK(Pressed), new Press(std::move(press)), Forget,
                        GConnectFlags{});
}

}  // namespace kw::ui
