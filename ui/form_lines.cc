#include "ui/form_lines.h"

#include "base/transcript.h"

namespace kw::ui {

std::string PlainCaption(std::string_view caption) {
  std::string plain;
  for (size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == '&') {
      if (i + 1 >= caption.size() || caption[i + 1] != '&') continue;
      ++i;
    }
    plain += caption[i];
  }
  return plain;
}

std::string StatusLine(const Form& form) {
  for (const Control* control : form.Controls()) {
    if (control->Kind() == ControlKind::kLabel) return "status " + TranscriptText(control->Text());
  }
  return "status " + TranscriptText(form.Caption());
}

std::string ShownLine(const Form& form) {
  if (form.Style() == FormStyle::kStatus) return StatusLine(form);
  return (form.Modal() ? "modal " : "page ") + form.Name();
}

std::string HiddenLine(const Form& form) {
  if (form.Style() == FormStyle::kStatus) return "status-end";
  return (form.Modal() ? "modal-end " : "hide ") + form.Name();
}

std::string ChangedLine(const Control& control, Change change) {
  const Form& form = control.Owner();
  const bool phase = form.Style() == FormStyle::kStatus && form.Visible() && change == Change::kText &&
                     control.Kind() == ControlKind::kLabel;
  return phase ? StatusLine(form) : std::string();
}

std::string FocusLine(const Control& control) {
  return "focus " + control.Owner().Name() + "." + control.Name();
}

std::string MenuLine(const PopupMenu& menu, int chosen) {
  std::string line = "menu ";
  for (size_t i = 0; i < menu.Items().size(); ++i) {
    const MenuItem& item = menu.Items()[i];
    if (i > 0) line += '|';
    std::string word = TranscriptText(PlainCaption(item.caption));
    if (item.checked) word.insert(0, "[x] ");
    line += item.enabled ? word : "(" + word + ")";
  }
  line += " -> ";
  if (chosen < 0) return line + "dismiss";
  return line + TranscriptText(PlainCaption(menu.Items()[static_cast<size_t>(chosen)].caption));
}

int FindMenuItem(const PopupMenu& menu, std::string_view plain_caption) {
  for (size_t i = 0; i < menu.Items().size(); ++i) {
    if (PlainCaption(menu.Items()[i].caption) == plain_caption) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace kw::ui
