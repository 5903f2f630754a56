#include "platform/windows/machine.h"
#include "shell/main_machine.h"

namespace kw {

Result<ProcessMachine> OpenProcessMachine(platform::Dialogs& dialogs) {
  const auto machine = std::make_shared<platform::windows::WindowsMachine>(dialogs);
  return ProcessMachine{machine, &machine->services};
}

}  // namespace kw
