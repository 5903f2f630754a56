#include "ui/drive/script_host.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "ui/form_lines.h"

namespace kw::ui::drive {

Form* ScriptHost::FindForm(std::string_view name) const {
  const auto found =
      std::find_if(forms_.rbegin(), forms_.rend(), [&](const Form* form) { return form->Name() == name; });
  return found == forms_.rend() ? nullptr : *found;
}

void ScriptHost::Activate(Form& form) {
  const auto redirect = redirected_.find(&form);
  if (redirect == redirected_.end()) {
    form.UserActivate();
    return;
  }
  // A copy: bringing the tool forward may end the redirection.
  const auto bring_forward = redirect->second;
  bring_forward();
}

void ScriptHost::DropLeftAnswers() {
  if (modals_.size() == modal_loops_ && (modals_.empty() || modals_.back()->Visible()))
    queue_.DropInnermost();
}

void ScriptHost::FormCreated(Form& form) { forms_.push_back(&form); }

void ScriptHost::FormShown(Form& form) {
  visible_.push_back(&form);
  run_.transcript().Add(ShownLine(form));
}

void ScriptHost::FormHidden(Form& form) {
  std::erase(visible_, &form);
  run_.transcript().Add(HiddenLine(form));
}

void ScriptHost::RunModal(Form& form) {
  modals_.push_back(&form);
  queue_.OpenLevel();
  ++modal_loops_;
  // Out of the list means that the form's object went away.
  while (!run_.Over() && std::count(modals_.begin(), modals_.end(), &form) > 0 && form.Visible()) {
    modal_turn_();
  }
  --modal_loops_;
  queue_.CloseLevel();
  std::erase(modals_, &form);
}

void ScriptHost::FormDestroyed(Form& form) {
  std::erase(forms_, &form);
  std::erase(visible_, &form);
  std::erase(modals_, &form);
  redirected_.erase(&form);
}

void ScriptHost::ControlChanged(Control& control, Change change) {
  std::string line = ChangedLine(control, change);
  if (!line.empty()) run_.transcript().Add(std::move(line));
}

void ScriptHost::FocusControl(Control& control, bool) { run_.transcript().Add(FocusLine(control)); }

int ScriptHost::ShowPopup(Form& form, const PopupMenu& menu) {
  const std::string choice = queue_.Take(Queued::kMenu).value_or("dismiss");
  const int chosen = choice == "dismiss" ? -1 : FindMenuItem(menu, choice);
  run_.transcript().Add(MenuLine(menu, chosen));
  if (chosen < 0) {
    if (choice != "dismiss") run_.Stop("the menu " + menu.Name() + " has no item " + choice);
    return -1;
  }
  const MenuItem& item = menu.Items()[static_cast<size_t>(chosen)];
  if (!item.enabled) {
    run_.transcript().Add("disabled " + form.Name() + "." + item.name);
    return -1;
  }
  return chosen;
}

void ScriptHost::PumpEvents() {
  if (event_turn_) event_turn_();
}

int ScriptHost::TextWidth(Form&, std::string_view text) { return 6 * static_cast<int>(CharacterCount(text)); }

void ScriptHost::RedirectActivation(Form& form, std::function<void()> bring_forward) {
  if (bring_forward) {
    redirected_[&form] = std::move(bring_forward);
  } else {
    redirected_.erase(&form);
  }
}

void ScriptHost::EndProgram() {
  if (run_.Over()) return;
  run_.transcript().Add("end");
  run_.Finish();
}

}  // namespace kw::ui::drive
