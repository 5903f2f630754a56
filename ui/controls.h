#ifndef KITWRIGHT_UI_CONTROLS_H_
#define KITWRIGHT_UI_CONTROLS_H_

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ui/form_host.h"

namespace kw::ui {

class Form;

enum class ControlKind {
  kTextBox,
  kCheckBox,
  kOption,
  kListBox,
  kComboBox,
  kGrid,
  kTree,
  kButton,
  kLabel,
  kFrame,
  kImage,
  kLine,
  kEditor
};

/// The two back colours that pages give to text boxes.
enum class BackColor { kWindow, kFace };

enum class MouseButton { kLeft = 1, kRight = 2 };

/// A named control on a form, as plain state. Setters tell the form's host of each real change. The `User...`
/// operations of the derived classes are what a person does: adapters call them for enabled, visible controls
/// only (UserCanUse). Handlers are plain functions set by the page.
class Control {
 public:
  /// `name` is the control's own name, unique on its form; `form` outlives the control.
  Control(Form& form, ControlKind kind, std::string name, std::string text);
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  const std::string& Name() const { return name_; }
  ControlKind Kind() const { return kind_; }
  Form& Owner() const { return form_; }

  /// Content of a text box; caption of anything else, with "&" before its access key.
  const std::string& Text() const { return text_; }
  virtual void SetText(std::string text);
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled);
  bool Visible() const { return visible_; }
  void SetVisible(bool visible);
  /// True if a person can act on it now: the form is visible, enabled and not busy, and so is the control.
  bool UserCanUse() const;
  /// Moves the focus here. Passed over while the form or the control cannot take it: not visible, disabled.
  void SetFocus();

 protected:
  void Notify(Change change);
  void AssignText(std::string text);
  void MoveFocus(bool select_all);

 private:
  Form& form_;
  ControlKind kind_;
  std::string name_;
  std::string text_;
  bool enabled_ = true;
  bool visible_ = true;
};

/// Static text.
class Label : public Control {
 public:
  Label(Form& form, std::string name, std::string text);
  /// Shown in the title font, or as bold emphasis.
  bool emphasized = false;
};

/// A captioned box around other controls; layout only.
class Frame : public Control {
 public:
  Frame(Form& form, std::string name, std::string text);
};

/// A picture from the program's resources, by name ("TITLEBITMAP", "LOGO").
class Image : public Control {
 public:
  Image(Form& form, std::string name, std::string picture);
};

/// A separator.
class Line : public Control {
 public:
  Line(Form& form, std::string name);
};

class Button : public Control {
 public:
  Button(Form& form, std::string name, std::string caption);
  std::function<void()> on_click;
  /// Pressed by Enter, or by Escape, when no other button has the focus.
  bool is_default = false;
  bool is_cancel = false;
  void UserClick();
};

class TextBox : public Control {
 public:
  TextBox(Form& form, std::string name);
  std::function<void()> on_change;
  /// Fires on_change, from code too, and also for the text that stands there: who types a name anew has
  /// touched it.
  void SetText(std::string text) override;
  BackColor Back() const { return back_; }
  void SetBack(BackColor back);
  /// Enabled with the window colour, or disabled with the face colour.
  void EnableWithColor(bool enabled);
  /// Shown as dots.
  bool masked = false;
  /// Gives the box the focus with its whole text selected; passed over as SetFocus is.
  void SelectField();
  void UserType(std::string text) { SetText(std::move(text)); }

 private:
  BackColor back_ = BackColor::kWindow;
};

/// Several lines of text, shown in a fixed-width font.
class Editor : public Control {
 public:
  Editor(Form& form, std::string name);
  void UserType(std::string text) { SetText(std::move(text)); }
};

class CheckBox : public Control {
 public:
  CheckBox(Form& form, std::string name, std::string caption);
  std::function<void()> on_click;
  bool Checked() const { return checked_; }
  /// 1 or 0.
  int Value() const { return checked_ ? 1 : 0; }
  /// Fires on_click when the value changes, from code too.
  void SetChecked(bool checked);
  void UserClick() { SetChecked(!checked_); }

 private:
  bool checked_ = false;
};

/// An option button; of those with the same `group` on a form at most one is on.
class Option : public Control {
 public:
  Option(Form& form, std::string name, std::string caption, int group = 0);
  std::function<void()> on_click;
  int Group() const { return group_; }
  bool Value() const { return value_; }
  /// Switching on switches the others of the group off and fires on_click; switching off fires nothing.
  void SetValue(bool value);
  /// A click on an option that is on already fires nothing.
  void UserClick() { SetValue(true); }

 private:
  int group_;
  bool value_ = false;
};

/// A list box with single selection.
class ListBox : public Control {
 public:
  ListBox(Form& form, std::string name);
  std::function<void()> on_click;
  /// After a double click on an entry.
  std::function<void()> on_double_click;
  /// After the Delete key, and the Insert key.
  std::function<void()> on_delete_key;
  std::function<void()> on_insert_key;
  const std::vector<std::string>& Items() const { return items_; }
  int Count() const { return static_cast<int>(items_.size()); }
  void Clear();
  void Add(std::string item);
  /// In front of the entry at `index`; the selected entry stays selected. Out of range does nothing.
  void Insert(int index, std::string item);
  /// Removing the selected entry leaves none selected.
  void Remove(int index);
  /// Selected index from 0, or -1.
  int Selected() const { return selected_; }
  /// Fires on_click when the selection changes, from code too.
  void Select(int index);
  /// Width in pixels up to which the list scrolls sideways; 0 for none.
  int HorizontalExtent() const { return extent_; }
  void SetHorizontalExtent(int pixels);
  void UserPick(int index);

 private:
  std::vector<std::string> items_;
  int selected_ = -1;
  int extent_ = 0;
};

/// A drop-down list without an edit field. Text() is the selected entry.
class ComboBox : public Control {
 public:
  ComboBox(Form& form, std::string name);
  std::function<void()> on_click;
  const std::vector<std::string>& Items() const { return items_; }
  void Clear();
  void Add(std::string item);
  int Selected() const { return selected_; }
  void Select(int index);
  void UserPick(int index);

 private:
  std::vector<std::string> items_;
  int selected_ = -1;
};

/// A grid of texts with a header row (row 0) and a fixed first column (column 0). Rows and columns count from
/// 0; exactly one row is selected, by its number.
class Grid : public Control {
 public:
  Grid(Form& form, std::string name);
  /// Sets the columns with their headings, and relative widths (0 hides a column). Leaves the header row and
  /// one blank row, which is selected.
  void SetColumns(const std::vector<std::string>& headings, const std::vector<int>& widths);
  int Columns() const { return static_cast<int>(widths_.size()); }
  const std::vector<int>& Widths() const { return widths_; }
  /// Number of rows, the header among them.
  int Rows() const { return static_cast<int>(cells_.size()); }
  /// Appends blank rows or cuts rows off at the end.
  void SetRows(int rows);
  /// Adds a blank row in front of a data row, or at the end. The selection keeps its row number.
  void InsertRow(int before);
  /// Removes a data row. The selection keeps its row number, or moves to the row that is the last then.
  void RemoveRow(int row);
  const std::string& Cell(int row, int column) const;
  void SetCell(int row, int column, std::string text);
  void ClearRow(int row);
  int SelectedRow() const { return selected_; }
  /// Out of range is cut to the nearest row from 1 on. From code it fires nothing.
  void SelectRow(int row);
  /// Whether the selection is drawn.
  bool Highlight() const { return highlight_; }
  void SetHighlight(bool highlight);
  /// After a click or a key on the grid.
  std::function<void()> on_click;
  /// After a double click or Enter on a row.
  std::function<void()> on_double_click;
  /// After the Delete key, and the Insert key.
  std::function<void()> on_delete_key;
  std::function<void()> on_insert_key;
  void UserPick(int row);

 private:
  std::vector<std::vector<std::string>> cells_;
  std::vector<int> widths_;
  int selected_ = 1;
  bool highlight_ = true;
};

/// A node of a tree.
struct TreeNode {
  std::string key;  ///< unique on the tree where it is used, may be empty
  std::string text;
  std::string image;  ///< name of its picture, "" for none
  std::string tag;
  bool bold = false;
  bool grey = false;
  bool expanded = true;
  int parent = -1;  ///< index of the parent node, -1 at the top
};

/// A tree of nodes. Nodes keep their index; children come in the order of adding.
class Tree : public Control {
 public:
  Tree(Form& form, std::string name);
  void Clear();
  /// Adds a node behind its siblings; its index.
  int Add(TreeNode node);
  int Count() const { return static_cast<int>(nodes_.size()); }
  const TreeNode& Node(int index) const { return nodes_[static_cast<size_t>(index)]; }
  /// Replaces a node's look and content, not its place.
  void Update(int index, TreeNode node);
  /// Index of the node with this key, -1 when there is none; nodes without a key are never found.
  int Find(std::string_view key) const;
  /// Node indexes from the top as they are drawn: each node before its children.
  std::vector<int> DrawnOrder() const;
  int Depth(int index) const;
  int Selected() const { return selected_; }
  void Select(int index);
  std::function<void(MouseButton)> on_mouse_down;
  /// After a press, for either button.
  std::function<void(int index)> on_node_click;
  /// A press and click on a node. From the keyboard (Enter, blank) it is a left click.
  void UserClickNode(int index, MouseButton button);

 private:
  std::vector<TreeNode> nodes_;
  int selected_ = -1;
};

/// An item of a pop-up menu.
struct MenuItem {
  std::string name;     ///< the item's own name
  std::string caption;  ///< with "&"
  bool enabled = true;
  bool checked = false;
  std::function<void()> on_click;
};

/// A pop-up menu of a form.
class PopupMenu {
 public:
  PopupMenu(std::string name, std::vector<MenuItem> items)
      : name_(std::move(name)), items_(std::move(items)) {}
  const std::string& Name() const { return name_; }
  const std::vector<MenuItem>& Items() const { return items_; }
  /// The item of that name; it must exist.
  MenuItem& Item(std::string_view name);

 private:
  std::string name_;
  std::vector<MenuItem> items_;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_CONTROLS_H_
