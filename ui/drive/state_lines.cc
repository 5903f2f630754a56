#include "ui/drive/state_lines.h"

#include "base/text.h"
#include "base/transcript.h"

namespace kw::ui::drive {
namespace {

const char* KindWord(ControlKind kind) {
  switch (kind) {
    case ControlKind::kTextBox:
      return "textbox";
    case ControlKind::kCheckBox:
      return "checkbox";
    case ControlKind::kOption:
      return "option";
    case ControlKind::kListBox:
      return "list";
    case ControlKind::kComboBox:
      return "combo";
    case ControlKind::kGrid:
      return "grid";
    case ControlKind::kTree:
      return "tree";
    case ControlKind::kButton:
      return "button";
    case ControlKind::kLabel:
      return "label";
    case ControlKind::kFrame:
      return "frame";
    case ControlKind::kImage:
      return "image";
    case ControlKind::kLine:
      return "line";
    case ControlKind::kEditor:
      return "editor";
  }
  return "";
}

std::string Flag(const char* name, bool value) { return std::string(" ") + name + (value ? "=1" : "=0"); }

std::string Number(const char* name, int value) {
  return std::string(" ") + name + "=" + std::to_string(value);
}

std::string Quoted(const char* name, std::string_view text) {
  return std::string(" ") + name + "=\"" + TranscriptText(text) + "\"";
}

std::string Attributes(const Control& control) {
  switch (control.Kind()) {
    case ControlKind::kTextBox: {
      const auto& box = static_cast<const TextBox&>(control);
      const std::string text = box.masked ? std::string(CharacterCount(box.Text()), '*') : box.Text();
      return Quoted("text", text) + " back=" + (box.Back() == BackColor::kWindow ? "window" : "face");
    }
    case ControlKind::kCheckBox:
      return Quoted("text", control.Text()) + Number("value", static_cast<const CheckBox&>(control).Value());
    case ControlKind::kOption:
      return Quoted("text", control.Text()) + Flag("value", static_cast<const Option&>(control).Value());
    case ControlKind::kListBox: {
      const auto& list = static_cast<const ListBox&>(control);
      return Number("selected", list.Selected() + 1) +
             (list.HorizontalExtent() == 0 ? " extent=0" : " extent=set");
    }
    case ControlKind::kComboBox:
      return Quoted("text", control.Text()) +
             Number("selected", static_cast<const ComboBox&>(control).Selected() + 1);
    case ControlKind::kGrid:
      return Number("selected", static_cast<const Grid&>(control).SelectedRow());
    case ControlKind::kButton:
    case ControlKind::kLabel:
    case ControlKind::kFrame:
    case ControlKind::kEditor:
      return Quoted("text", control.Text());
    case ControlKind::kTree:
    case ControlKind::kImage:
    case ControlKind::kLine:
      return "";
  }
  return "";
}

void AddEntries(const std::vector<std::string>& items, std::vector<std::string>& lines) {
  for (const std::string& item : items) lines.push_back("  | " + TranscriptText(item));
}

void AddRows(const Grid& grid, std::vector<std::string>& lines) {
  for (int row = 0; row < grid.Rows(); ++row) {
    std::string cells;
    for (int column = 0; column < grid.Columns(); ++column) {
      if (column > 0) cells += '\t';
      cells += grid.Cell(row, column);
    }
    lines.push_back("  | " + TranscriptText(cells));
  }
}

void AddNodes(const Tree& tree, std::vector<std::string>& lines) {
  for (const int index : tree.DrawnOrder()) {
    const TreeNode& node = tree.Node(index);
    std::string line(2 * static_cast<size_t>(tree.Depth(index) + 1), ' ');
    line += "- " + TranscriptText(node.text);
    if (!node.image.empty()) line += " image=" + node.image;
    if (node.bold) line += " bold";
    if (node.grey) line += " grey";
    if (!node.tag.empty()) line += Quoted("tag", node.tag);
    lines.push_back(line);
  }
}

}  // namespace

std::string FormStateLine(const Form& form) {
  return form.Name() + " kind=form" + Flag("visible", form.Visible()) + Flag("enabled", form.Enabled()) +
         Flag("busy", form.MousePointer() == Pointer::kHourglass) + Quoted("text", form.Caption());
}

std::vector<std::string> ControlStateLines(const Control& control) {
  std::vector<std::string> lines;
  lines.push_back(control.Owner().Name() + "." + control.Name() + " kind=" + KindWord(control.Kind()) +
                  Flag("enabled", control.Enabled()) + Flag("visible", control.Visible()) +
                  Attributes(control));
  switch (control.Kind()) {
    case ControlKind::kListBox:
      AddEntries(static_cast<const ListBox&>(control).Items(), lines);
      break;
    case ControlKind::kComboBox:
      AddEntries(static_cast<const ComboBox&>(control).Items(), lines);
      break;
    case ControlKind::kGrid:
      AddRows(static_cast<const Grid&>(control), lines);
      break;
    case ControlKind::kTree:
      AddNodes(static_cast<const Tree&>(control), lines);
      break;
    default:
      break;
  }
  return lines;
}

}  // namespace kw::ui::drive
