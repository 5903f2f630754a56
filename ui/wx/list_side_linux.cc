#include <gtk/gtk.h>
#include <wx/graphics.h>

#include "ui/wx/list_side.h"

namespace kw::ui {

void PaintGroundOf(wxWindow& list, wxDC& dc, wxSize size) {
  // Themes draw lists by their style, which has no colour that could be asked for.
  GtkWidget* rows = list.GetHandle();
  if (GTK_IS_SCROLLED_WINDOW(rows)) rows = gtk_bin_get_child(GTK_BIN(rows));
  wxGraphicsContext* graphics = dc.GetGraphicsContext();
  if (!rows || !graphics) return;
  auto* cairo = static_cast<cairo_t*>(graphics->GetNativeContext());
  gtk_render_background(gtk_widget_get_style_context(rows), cairo, 0, 0, size.x, size.y);
}

}  // namespace kw::ui
