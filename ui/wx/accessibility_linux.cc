#include <gtk/gtk.h>

#include "ui/wx/accessibility.h"

namespace kw::ui {

namespace {

void NameWidget(GtkWidget* widget, const wxString& name) {
  atk_object_set_name(gtk_widget_get_accessible(widget), name.utf8_str());
  // Lists and trees stand inside a scrolled window, and readers see the inner widget.
  if (!GTK_IS_SCROLLED_WINDOW(widget)) return;
  GtkWidget* inner = gtk_bin_get_child(GTK_BIN(widget));
  if (inner) atk_object_set_name(gtk_widget_get_accessible(inner), name.utf8_str());
}

}  // namespace

void SetAccessibleName(wxWindow* window, const wxString& name) { NameWidget(window->GetHandle(), name); }

}  // namespace kw::ui
