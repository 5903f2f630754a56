#include "platform/embedded/machine.h"
#include "shell/main_machine.h"

namespace kw {

Result<ProcessMachine> OpenProcessMachine(platform::Dialogs& dialogs) {
  KW_ASSIGN_OR_RETURN(auto made,
                      platform::embedded::MakeEmbeddedMachine(MachinePaths::OfThisProcess(), dialogs));
  const std::shared_ptr<platform::embedded::EmbeddedMachine> machine = std::move(made);
  return ProcessMachine{machine, &machine->services};
}

}  // namespace kw
