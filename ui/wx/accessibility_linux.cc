#include <gtk/gtk.h>

#include "ui/wx/accessibility.h"

namespace kw::ui {

namespace {

/// What readers see of a widget. Lists and trees stand inside a scrolled window, and readers see the inner
/// widget.
AtkObject* Seen(wxWindow* window) {
  GtkWidget* widget = window->GetHandle();
  if (GTK_IS_SCROLLED_WINDOW(widget)) {
    GtkWidget* inner = gtk_bin_get_child(GTK_BIN(widget));
    if (inner) widget = inner;
  }
  return gtk_widget_get_accessible(widget);
}

}  // namespace

void SetAccessibleName(wxWindow* window, const wxString& name) {
  atk_object_set_name(Seen(window), name.utf8_str());
}

void SetAccessibleDescription(wxWindow* window, const wxString& description) {
  atk_object_set_description(Seen(window), description.utf8_str());
}

void SetAccessibleId(wxWindow* window, const wxString& id) {
  atk_object_set_accessible_id(Seen(window), id.utf8_str());
}

void MarkAsDialog(wxWindow* window) {
  gtk_window_set_type_hint(GTK_WINDOW(window->GetHandle()), GDK_WINDOW_TYPE_HINT_DIALOG);
  atk_object_set_role(gtk_widget_get_accessible(window->GetHandle()), ATK_ROLE_DIALOG);
}

}  // namespace kw::ui
