// The toolkit looks for an access key only in the panel that holds the focus: from a field in the scrolled
// part of a page it would not find the buttons below. A label's key goes nowhere in what is no dialog to the
// system.

#include <cctype>
#include <string>
#include <vector>

#include "ui/wx/access_keys.h"

namespace kw::ui {

namespace {

bool IsField(ControlKind kind) {
  return kind != ControlKind::kLabel && kind != ControlKind::kFrame && kind != ControlKind::kImage &&
         kind != ControlKind::kLine;
}

/// Only captions have access keys.
bool HasKey(const Control& control, char letter) {
  switch (control.Kind()) {
    case ControlKind::kLabel:
    case ControlKind::kButton:
    case ControlKind::kCheckBox:
    case ControlKind::kOption:
      break;
    default:
      return false;
  }
  const std::string& text = control.Text();
  for (size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] != '&') continue;
    ++i;
    if (text[i] != '&' && std::toupper(static_cast<unsigned char>(text[i])) == letter) return true;
  }
  return false;
}

/// The control that the access key of the one at `begin` leads to: itself, or the field behind a label.
Control* Target(const std::vector<Control*>& controls, size_t begin) {
  for (size_t i = begin; i < controls.size(); ++i) {
    if (IsField(controls[i]->Kind())) return controls[i];
  }
  return nullptr;
}

void Act(FormView& view, ControlView& target) {
  if (!view.Shown()) return;
  Control& control = target.Shown();
  target.Focus(true);
  switch (control.Kind()) {
    case ControlKind::kButton:
      view.User(target, [&] { static_cast<Button&>(control).UserClick(); });
      break;
    case ControlKind::kCheckBox:
      view.User(target, [&] { static_cast<CheckBox&>(control).UserClick(); });
      break;
    case ControlKind::kOption:
      view.User(target, [&] { static_cast<Option&>(control).UserClick(); });
      break;
    default:
      break;
  }
}

}  // namespace

bool PressAccessKey(FormView& view, const wxKeyEvent& event) {
  // Right Alt types letters on many keyboards; it comes with Ctrl.
  if (!event.AltDown() || event.ControlDown() || !view.Shown()) return false;
  const int key = static_cast<int>(event.GetUnicodeKey());
  if (key <= ' ' || key > '~') return false;
  const char letter = static_cast<char>(std::toupper(key));
  const std::vector<Control*>& controls = view.Shown()->Controls();
  for (size_t i = 0; i < controls.size(); ++i) {
    if (!HasKey(*controls[i], letter) || !controls[i]->Visible()) continue;
    Control* target = Target(controls, i);
    ControlView* shown = target ? view.ViewOf(*target) : nullptr;
    if (!shown || !target->UserCanUse()) continue;
    // This is the system's keyboard hook, where nothing may wait for a person.
    view.Panel()->CallAfter([&view, shown] { Act(view, *shown); });
    return true;
  }
  return false;
}

}  // namespace kw::ui
