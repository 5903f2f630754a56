#include "ui/drive/driver.h"

#include <algorithm>
#include <utility>

namespace kw::ui::drive {

Driver::Driver(std::istream& script, std::ostream& out)
    : run_(script, out), host_(run_, queue_), dialogs_(run_, queue_) {
  host_.OnModalTurn([this] { CarryOutNext(); });
}

void Driver::Attach(platform::Services& services) {
  recorded_processes_.emplace(*services.processes, run_.transcript());
  processes_.emplace(*recorded_processes_, *services.files);
  libraries_.emplace(*services.libraries, run_.transcript());
  services.processes = &*processes_;
  services.libraries = &*libraries_;
  services.dialogs = &dialogs_;
  host_.OnEventTurn([this] { processes_->EventTurn(); });
}

int Driver::Run(const std::function<void()>& entry) {
  entry();
  EndWithoutPage();
  while (!run_.Over()) {
    CarryOutNext();
    EndWithoutPage();
  }
  return run_.ExitStatus();
}

void Driver::CarryOutNext() {
  const auto line = run_.NextCommand();
  if (!line) {
    run_.Finish();
    return;
  }
  // A dialog that a "meanwhile" command opened takes its commands from the script like any other.
  const bool meanwhile = std::exchange(meanwhile_, false);
  CarryOut(*line);
  meanwhile_ = meanwhile;
}

void Driver::CarryOut(const std::string& line) {
  const size_t blank = line.find(' ');
  const std::string name = line.substr(0, blank);
  const auto command = std::find_if(Commands().begin(), Commands().end(),
                                    [&](const Command& candidate) { return name == candidate.name; });
  if (command == Commands().end()) {
    run_.Stop("unknown command " + name);
    return;
  }
  (this->*command->handler)(blank == std::string::npos ? "" : line.substr(blank + 1));
  if (command->acts && !meanwhile_) host_.DropLeftAnswers();
}

// As with real windows: without one there is nothing left that could happen.
void Driver::EndWithoutPage() {
  if (host_.VisibleForms().empty()) host_.EndProgram();
}

}  // namespace kw::ui::drive
