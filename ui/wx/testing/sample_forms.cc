#include "ui/wx/testing/sample_forms.h"

#include <utility>

namespace kw::ui::testing {

SamplePage::SamplePage(FormHost& host, std::string name, std::string caption)
    : Form(host, std::move(name), std::move(caption), FormStyle::kPage) {
  title.emphasized = true;
  password.masked = true;
  next.is_default = true;
  cancel.is_cancel = true;
  hint.SetText(
      "To apply the new settings to target systems, you must copy this file to the subfolder in the "
      "installation folder on each target system. The product will detect the new file and incorporate the "
      "changes.");
  for (const char* page : {"Source and Destination", "Features", "Source for Configuration",
                           "User Interface Properties", "Post-Installation Options", "Finish"}) {
    pages.Add({"", page, "", ""});
  }
  TreeNode done = pages.Node(0);
  done.image = "1";
  pages.Update(0, done);
  TreeNode current = pages.Node(1);
  current.bold = true;
  pages.Update(1, current);
  TreeNode off = pages.Node(3);
  off.grey = true;
  off.image = "2";
  pages.Update(3, off);
  for (const char* item : {"Alpha", "Beta", "\tGamma"}) list.Add(item);
  for (const char* item : {"Daily", "Weekly"}) combo.Add(item);
  grid.SetColumns({"", "Name", "Size", "Hidden"}, {0, 200, 100, 0});
  grid.SetRows(4);
  grid.SetCell(1, 1, "one.txt");
  grid.SetCell(1, 2, "10");
  grid.SetCell(2, 1, "two.txt");
  grid.SetCell(2, 2, "20");
  const int root = features.Add({"Console", "Console", "Installed", ""});
  TreeNode below{"Scan", "Scanner", "NotInstalled", ""};
  below.parent = root;
  features.Add(below);

  pages.on_mouse_down = [this](MouseButton button) {
    Note(button == MouseButton::kLeft ? "press left" : "press right");
  };
  pages.on_node_click = [this](int index) { Note("node " + pages.Node(index).text); };
  features.on_node_click = [this](int index) {
    Note("feature " + features.Node(index).text);
    ShowPopup(menu);
  };
  folder.on_change = [this] { Note("text " + folder.Text()); };
  password.on_change = [this] { Note("password " + password.Text()); };
  browse.on_click = [this] { Note("browse"); };
  optimize.on_click = [this] { Note("optimize " + std::to_string(optimize.Value())); };
  first.on_click = [this] { Note("first"); };
  second.on_click = [this] { Note("second"); };
  list.on_click = [this] { Note("list " + std::to_string(list.Selected())); };
  list.on_double_click = [this] { Note("list edit " + std::to_string(list.Selected())); };
  list.on_delete_key = [this] { Note("list delete " + std::to_string(list.Selected())); };
  list.on_insert_key = [this] { Note("list insert " + std::to_string(list.Selected())); };
  combo.on_click = [this] { Note("combo " + combo.Text()); };
  grid.on_click = [this] { Note("row " + std::to_string(grid.SelectedRow())); };
  grid.on_double_click = [this] { Note("edit " + std::to_string(grid.SelectedRow())); };
  grid.on_delete_key = [this] { Note("delete " + std::to_string(grid.SelectedRow())); };
  grid.on_insert_key = [this] { Note("insert " + std::to_string(grid.SelectedRow())); };
  next.on_click = [this] { Note("next"); };
  cancel.on_click = [this] { Note("cancel"); };
  menu = PopupMenu(
      "mnuFeatureState",
      {{"IsLocal", "&Install Feature", true, false, [this] { Note("install"); }},
       {"NotLocal", "&Do Not Install Feature", false, false, [] {}},
       {"Invisible", "&Make Feature Invisible During Setup", true, true, [this] { Note("invisible"); }}});
}

Layout SamplePage::ContentLayout() {
  WizardParts parts{&band,  &logo,   &title, &description, &line1,
                    &pages, nullptr, &line2, &help,        {&back, &next, &cancel}};
  return WizardLayout(
      parts, Column({Fields({Place(folder_label), Row({Place(folder, 1), Place(browse)}),
                             Place(password_label), Place(password)}),
                     Place(optimize), Framed(modes, Column({Place(first), Place(second)})),
                     Row({Column({Place(list_label), Place(list, 1)}, 1),
                          Column({Row({Place(combo_label), Place(combo, 1)}), Place(features, 1)}, 1)},
                         1),
                     Place(grid, 1), Place(hint)}));
}

SampleDialog::SampleDialog(FormHost& host, std::string name_of_form)
    : Form(host, std::move(name_of_form), "Sample Dialog", FormStyle::kDialog) {
  ok.is_default = true;
  cancel.is_cancel = true;
  ok.on_click = [this] { Hide(); };
  cancel.on_click = [this] { Hide(); };
}

Layout SampleDialog::ContentLayout() {
  return Column({Fields({Place(name_label), Place(name)}), Place(editor, 1),
                 Buttons({Space(), Place(ok), Place(cancel)})});
}

SampleStatus::SampleStatus(FormHost& host) : Form(host, "frmStatus", "Kitwright", FormStyle::kStatus) {
  SetMousePointer(Pointer::kHourglass);
}

}  // namespace kw::ui::testing
