#include "ui/controls.h"

#include <algorithm>
#include <utility>

#include "ui/form.h"

namespace kw::ui {

Control::Control(Form& form, ControlKind kind, std::string name, std::string text)
    : form_(form), kind_(kind), name_(std::move(name)), text_(std::move(text)) {
  form.controls_.push_back(this);
}

void Control::Notify(Change change) { form_.Host().ControlChanged(*this, change); }

void Control::AssignText(std::string text) {
  if (text == text_) return;
  text_ = std::move(text);
  Notify(Change::kText);
}

void Control::SetText(std::string text) { AssignText(std::move(text)); }

void Control::SetEnabled(bool enabled) {
  if (enabled == enabled_) return;
  enabled_ = enabled;
  Notify(Change::kEnabled);
}

void Control::SetVisible(bool visible) {
  if (visible == visible_) return;
  visible_ = visible;
  Notify(Change::kVisible);
}

bool Control::UserCanUse() const { return enabled_ && visible_ && form_.UserCanUse(); }

void Control::SetFocus() { MoveFocus(false); }

void Control::MoveFocus(bool select_all) {
  if (form_.Visible() && visible_ && enabled_) form_.Host().FocusControl(*this, select_all);
}

Label::Label(Form& form, std::string name, std::string text)
    : Control(form, ControlKind::kLabel, std::move(name), std::move(text)) {}

Frame::Frame(Form& form, std::string name, std::string text)
    : Control(form, ControlKind::kFrame, std::move(name), std::move(text)) {}

Image::Image(Form& form, std::string name, std::string picture)
    : Control(form, ControlKind::kImage, std::move(name), std::move(picture)) {}

Line::Line(Form& form, std::string name) : Control(form, ControlKind::kLine, std::move(name), "") {}

Button::Button(Form& form, std::string name, std::string caption)
    : Control(form, ControlKind::kButton, std::move(name), std::move(caption)) {}

void Button::UserClick() {
  if (on_click) on_click();
}

TextBox::TextBox(Form& form, std::string name) : Control(form, ControlKind::kTextBox, std::move(name), "") {}

void TextBox::SetText(std::string text) {
  AssignText(std::move(text));
  if (on_change) on_change();
}

void TextBox::SetBack(BackColor back) {
  if (back == back_) return;
  back_ = back;
  Notify(Change::kColor);
}

void TextBox::EnableWithColor(bool enabled) {
  SetEnabled(enabled);
  SetBack(enabled ? BackColor::kWindow : BackColor::kFace);
}

void TextBox::SelectField() { MoveFocus(true); }

Editor::Editor(Form& form, std::string name) : Control(form, ControlKind::kEditor, std::move(name), "") {}

CheckBox::CheckBox(Form& form, std::string name, std::string caption)
    : Control(form, ControlKind::kCheckBox, std::move(name), std::move(caption)) {}

void CheckBox::SetChecked(bool checked) {
  if (checked == checked_) return;
  checked_ = checked;
  Notify(Change::kValue);
  if (on_click) on_click();
}

Option::Option(Form& form, std::string name, std::string caption, int group)
    : Control(form, ControlKind::kOption, std::move(name), std::move(caption)), group_(group) {}

void Option::SetValue(bool value) {
  if (value == value_) return;
  value_ = value;
  Notify(Change::kValue);
  if (!value) return;
  for (Control* other : Owner().Controls()) {
    if (other == this || other->Kind() != ControlKind::kOption) continue;
    auto* option = static_cast<Option*>(other);
    if (option->group_ == group_ && option->value_) {
      option->value_ = false;
      option->Notify(Change::kValue);
    }
  }
  if (on_click) on_click();
}

ListBox::ListBox(Form& form, std::string name) : Control(form, ControlKind::kListBox, std::move(name), "") {}

void ListBox::Clear() {
  items_.clear();
  selected_ = -1;
  Notify(Change::kItems);
}

void ListBox::Add(std::string item) { Insert(Count(), std::move(item)); }

void ListBox::Insert(int index, std::string item) {
  if (index < 0 || index > Count()) return;
  items_.insert(items_.begin() + index, std::move(item));
  if (selected_ >= index) ++selected_;
  Notify(Change::kItems);
}

void ListBox::Remove(int index) {
  if (index < 0 || index >= Count()) return;
  items_.erase(items_.begin() + index);
  if (selected_ == index) {
    selected_ = -1;
  } else if (selected_ > index) {
    --selected_;
  }
  Notify(Change::kItems);
}

void ListBox::Select(int index) {
  if (index < -1 || index >= Count() || index == selected_) return;
  selected_ = index;
  Notify(Change::kSelection);
  if (on_click) on_click();
}

void ListBox::SetHorizontalExtent(int pixels) {
  if (pixels == extent_) return;
  extent_ = pixels;
  Notify(Change::kExtent);
}

void ListBox::UserPick(int index) {
  if (index == selected_) {
    if (on_click) on_click();
    return;
  }
  Select(index);
}

ComboBox::ComboBox(Form& form, std::string name)
    : Control(form, ControlKind::kComboBox, std::move(name), "") {}

void ComboBox::Clear() {
  items_.clear();
  selected_ = -1;
  AssignText("");
  Notify(Change::kItems);
}

void ComboBox::Add(std::string item) {
  items_.push_back(std::move(item));
  Notify(Change::kItems);
}

void ComboBox::Select(int index) {
  if (index < -1 || index >= static_cast<int>(items_.size()) || index == selected_) return;
  selected_ = index;
  AssignText(index < 0 ? std::string() : items_[static_cast<size_t>(index)]);
  Notify(Change::kSelection);
  if (on_click) on_click();
}

void ComboBox::UserPick(int index) {
  if (index == selected_) {
    if (on_click) on_click();
    return;
  }
  Select(index);
}

MenuItem& PopupMenu::Item(std::string_view name) {
  return *std::find_if(items_.begin(), items_.end(), [&](const MenuItem& item) { return item.name == name; });
}

}  // namespace kw::ui
