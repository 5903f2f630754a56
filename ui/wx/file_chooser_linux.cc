#include <gtk/gtk.h>
#include <wx/filename.h>

#include <string>

#include "ui/wx/file_chooser.h"
#include "ui/wx/wx_text.h"

namespace kw::ui {

namespace {

/// The drive that every machine has.
constexpr const char* kFirstDrive = "C:\\";

struct Chooser {
  const PathMapper& paths;
  GtkLabel* label;
};

void TellPath(GtkFileChooser* chooser, gpointer data) {
  const auto* told = static_cast<const Chooser*>(data);
  char* host = gtk_file_chooser_get_filename(chooser);
  if (!host) host = gtk_file_chooser_get_current_folder(chooser);
  gtk_label_set_text(told->label, host ? told->paths.to_windows(host).c_str() : "");
  g_free(host);
}

void Forget(gpointer data, GClosure*) { delete static_cast<Chooser*>(data); }

}  // namespace

wxString UsualStartFolder(const PathMapper& paths) {
  const wxString folder = ToWx(paths.to_host(kFirstDrive));
  return wxFileName::DirExists(folder) ? folder : wxString();
}

void ShowMachinePaths(wxDialog& dialog, const PathMapper& paths) {
  if (!GTK_IS_FILE_CHOOSER(dialog.GetHandle())) return;
  GtkFileChooser* chooser = GTK_FILE_CHOOSER(dialog.GetHandle());
  for (char letter = 'C'; letter < 'Z'; ++letter) {
    const std::string folder = paths.to_host(std::string(1, letter) + ":\\");
    if (wxFileName::DirExists(ToWx(folder))) {
      gtk_file_chooser_add_shortcut_folder(chooser, folder.c_str(), nullptr);
    }
  }
  GtkWidget* label = gtk_label_new("");
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_START);
  gtk_widget_show(label);
  gtk_file_chooser_set_extra_widget(chooser, label);
  g_signal_connect_data(chooser, "selection-changed", G_CALLBACK(TellPath),
                        new Chooser{paths, GTK_LABEL(label)}, Forget, GConnectFlags{});
}

}  // namespace kw::ui
