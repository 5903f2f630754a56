#include "ui/testing/fake_form_host.h"

#include <gtest/gtest.h>

#include <utility>

#include "base/text.h"
#include "ui/form_lines.h"

namespace kw::ui::testing {
namespace {

template <typename T>
T TakeFront(std::deque<T>& queue) {
  if (queue.empty()) return {};
  T front = std::move(queue.front());
  queue.pop_front();
  return front;
}

}  // namespace

void FakeFormHost::FormShown(Form& form) { transcript_.Add(ShownLine(form)); }

void FakeFormHost::FormHidden(Form& form) { transcript_.Add(HiddenLine(form)); }

void FakeFormHost::RunModal(Form& form) {
  const auto person = TakeFront(modals);
  if (person) {
    person(form);
  } else {
    ADD_FAILURE() << "A modal dialog that no test expects: " << form.Name();
  }
  if (!form.Visible() || ended_) return;
  if (person) ADD_FAILURE() << "A modal dialog is left open: " << form.Name();
  form.Hide();
}

void FakeFormHost::ControlChanged(Control& control, Change change) {
  std::string line = ChangedLine(control, change);
  if (!line.empty()) transcript_.Add(std::move(line));
}

void FakeFormHost::FocusControl(Control& control, bool) { transcript_.Add(FocusLine(control)); }

int FakeFormHost::ShowPopup(Form&, const PopupMenu& menu) {
  const std::string choice = TakeFront(menu_choices);
  int chosen = -1;
  if (!choice.empty() && choice != "dismiss") {
    chosen = FindMenuItem(menu, choice);
    if (chosen < 0) ADD_FAILURE() << "The menu " << menu.Name() << " has no item " << choice;
  }
  transcript_.Add(MenuLine(menu, chosen));
  return chosen;
}

void FakeFormHost::PumpEvents() {
  ++pumps;
  if (const auto event = TakeFront(meanwhile)) event();
}

int FakeFormHost::TextWidth(Form&, std::string_view text) {
  return 6 * static_cast<int>(CharacterCount(text));
}

void FakeFormHost::RedirectActivation(Form&, std::function<void()> function) {
  bring_forward = std::move(function);
}

void FakeFormHost::EndProgram() {
  ended_ = true;
  transcript_.Add("end");
}

}  // namespace kw::ui::testing
