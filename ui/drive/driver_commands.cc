#include <charconv>
#include <optional>

#include "base/text.h"
#include "ui/drive/driver.h"
#include "ui/drive/state_lines.h"

namespace kw::ui::drive {
namespace {

// The first word of a command's text, and what follows the blank behind it.
std::pair<std::string, std::string> FirstWord(const std::string& text) {
  const size_t blank = text.find(' ');
  if (blank == std::string::npos) return {text, ""};
  return {text.substr(0, blank), text.substr(blank + 1)};
}

// N of "#N"; nothing for any other text.
std::optional<int> Ordinal(const std::string& text) {
  int number = 0;
  if (text.size() < 2 || text[0] != '#') return std::nullopt;
  const auto [end, error] = std::from_chars(text.data() + 1, text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

int FindEntry(const std::vector<std::string>& entries, const std::string& text) {
  const std::optional<int> ordinal = Ordinal(text);
  for (int i = 0; i < static_cast<int>(entries.size()); ++i) {
    if (ordinal ? *ordinal == i + 1 : entries[static_cast<size_t>(i)] == text) return i;
  }
  return -1;
}

std::vector<std::string> RowNames(const Grid& grid) {
  std::vector<std::string> names;
  for (int row = 1; row < grid.Rows(); ++row) {
    std::string name;
    for (int column = 0; column < grid.Columns() && name.empty(); ++column) name = grid.Cell(row, column);
    names.push_back(name);
  }
  return names;
}

std::vector<std::string> NodeTexts(const Tree& tree) {
  std::vector<std::string> texts;
  for (const int index : tree.DrawnOrder()) texts.push_back(tree.Node(index).text);
  return texts;
}

}  // namespace

const std::vector<Driver::Command>& Driver::Commands() {
  static const std::vector<Command> commands = {
      {"click", &Driver::Click, true},
      {"type", &Driver::Type, true},
      {"pick", &Driver::Pick, true},
      {"node", &Driver::Node, true},
      {"node-right", &Driver::NodeRight, true},
      {"close", &Driver::Close, true},
      {"activate", &Driver::Activate, true},
      {"menu", &Driver::Menu, false},
      {"answer", &Driver::Answer, false},
      {"file", &Driver::File, false},
      {"folder", &Driver::Folder, false},
      {"meanwhile", &Driver::Meanwhile, false},
      {"set", &Driver::Set, false},
      {"show", &Driver::Show, false},
      {"print", &Driver::Print, false},
      {"say", &Driver::Say, false},
      {"expect", &Driver::Expect, false},
      {"reject", &Driver::Reject, false},
  };
  return commands;
}

void Driver::Click(const std::string& text) {
  Control* control = UsableControl(FirstWord(text).first);
  if (!control) return;
  switch (control->Kind()) {
    case ControlKind::kButton:
      static_cast<Button*>(control)->UserClick();
      break;
    case ControlKind::kCheckBox:
      static_cast<CheckBox*>(control)->UserClick();
      break;
    case ControlKind::kOption:
      static_cast<Option*>(control)->UserClick();
      break;
    default:
      run_.Stop("nothing to click in " + text);
  }
}

void Driver::Type(const std::string& text) {
  const auto [name, content] = FirstWord(text);
  Control* control = UsableControl(name);
  if (!control) return;
  if (control->Kind() == ControlKind::kTextBox) {
    static_cast<TextBox*>(control)->UserType(PlainText(content));
  } else if (control->Kind() == ControlKind::kEditor) {
    static_cast<Editor*>(control)->UserType(PlainText(content));
  } else {
    run_.Stop("no text to type in " + name);
  }
}

void Driver::Pick(const std::string& text) {
  const auto words = FirstWord(text);
  const auto& name = words.first;
  const auto& wanted = words.second;
  Control* control = UsableControl(name);
  if (!control) return;
  const auto pick = [&, entry = PlainText(wanted)](auto& list, const std::vector<std::string>& entries,
                                                   int first) {
    const int index = FindEntry(entries, entry);
    if (index < 0) {
      run_.Stop("no entry " + wanted + " in " + name);
    } else {
      list.UserPick(index + first);
    }
  };
  if (control->Kind() == ControlKind::kListBox) {
    auto& list = static_cast<ListBox&>(*control);
    pick(list, list.Items(), 0);
  } else if (control->Kind() == ControlKind::kComboBox) {
    auto& box = static_cast<ComboBox&>(*control);
    pick(box, box.Items(), 0);
  } else if (control->Kind() == ControlKind::kGrid) {
    auto& grid = static_cast<Grid&>(*control);
    pick(grid, RowNames(grid), 1);
  } else {
    run_.Stop("nothing to pick in " + name);
  }
}

void Driver::Node(const std::string& text) { ClickNode(text, MouseButton::kLeft); }

void Driver::NodeRight(const std::string& text) { ClickNode(text, MouseButton::kRight); }

void Driver::ClickNode(const std::string& text, MouseButton button) {
  const auto [name, wanted] = FirstWord(text);
  Control* control = UsableControl(name);
  if (!control) return;
  if (control->Kind() != ControlKind::kTree) {
    run_.Stop("no nodes in " + name);
    return;
  }
  auto& tree = static_cast<Tree&>(*control);
  const int place = FindEntry(NodeTexts(tree), PlainText(wanted));
  if (place < 0) {
    run_.Stop("no node " + wanted + " in " + name);
  } else {
    tree.UserClickNode(tree.DrawnOrder()[static_cast<size_t>(place)], button);
  }
}

void Driver::Close(const std::string& text) {
  Form* form = NamedForm(FirstWord(text).first);
  if (!form) return;
  if (form->UserCanUse() && host_.TakesInput(*form)) {
    form->UserClose();
  } else {
    run_.transcript().Add("disabled " + form->Name());
  }
}

void Driver::Activate(const std::string& text) {
  if (Form* form = NamedForm(FirstWord(text).first)) host_.Activate(*form);
}

void Driver::Menu(const std::string& text) { queue_.Add(Queued::kMenu, PlainText(text)); }

void Driver::Answer(const std::string& text) {
  if (IsAnswerWord(text)) {
    queue_.Add(Queued::kAnswer, text);
  } else {
    run_.Stop("unknown button " + text);
  }
}

void Driver::File(const std::string& text) { queue_.Add(Queued::kFile, PlainText(text)); }

void Driver::Folder(const std::string& text) { queue_.Add(Queued::kFolder, PlainText(text)); }

void Driver::Meanwhile(const std::string& text) {
  processes_->QueueMeanwhile([this, text, line = run_.Line()] {
    const int present = run_.Line();
    const bool within = std::exchange(meanwhile_, true);
    run_.SetLine(line);
    CarryOut(text);
    meanwhile_ = within;
    // Not when a dialog has read on in the script.
    if (run_.Line() == line) run_.SetLine(present);
  });
}

void Driver::Set(const std::string& text) {
  const size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) {
    run_.Stop("set needs NAME=VALUE");
  } else {
    processes_->SetEnvironment(text.substr(0, equals), PlainText(text.substr(equals + 1)));
  }
}

void Driver::Show(const std::string&) {
  const Control* page_tree = nullptr;
  for (const Form* form : host_.VisibleForms()) {
    run_.transcript().Add("visible " + form->Name());
    if (form->Style() != FormStyle::kPage) continue;
    const Control* tree = form->FindControl("TreeView1");
    if (tree && tree->Kind() == ControlKind::kTree) page_tree = tree;
  }
  if (page_tree) PrintState(*page_tree);
}

void Driver::Print(const std::string& text) {
  const std::string name = FirstWord(text).first;
  if (name.find('.') != std::string::npos) {
    if (const Control* control = NamedControl(name)) PrintState(*control);
  } else if (const Form* form = NamedForm(name)) {
    run_.transcript().Add(FormStateLine(*form));
  }
}

void Driver::Say(const std::string& text) { run_.transcript().Add("say " + TranscriptText(text)); }

void Driver::Expect(const std::string& text) { run_.Expect(text); }

void Driver::Reject(const std::string& text) { run_.Reject(text); }

Form* Driver::NamedForm(const std::string& name) {
  Form* form = host_.FindForm(name);
  if (!form && find_form_) form = find_form_(name);
  if (!form) run_.Stop("unknown form " + name);
  return form;
}

Control* Driver::NamedControl(const std::string& name) {
  const size_t dot = name.find('.');
  if (dot == std::string::npos) {
    run_.Stop("no control named in " + name);
    return nullptr;
  }
  const Form* form = NamedForm(name.substr(0, dot));
  if (!form) return nullptr;
  Control* control = form->FindControl(name.substr(dot + 1));
  if (!control) run_.Stop("unknown control " + name);
  return control;
}

Control* Driver::UsableControl(const std::string& name) {
  Control* control = NamedControl(name);
  if (!control) return nullptr;
  if (control->UserCanUse() && host_.TakesInput(control->Owner())) return control;
  run_.transcript().Add("disabled " + name);
  return nullptr;
}

void Driver::PrintState(const Control& control) {
  for (std::string& line : ControlStateLines(control)) run_.transcript().Add(std::move(line));
}

}  // namespace kw::ui::drive
