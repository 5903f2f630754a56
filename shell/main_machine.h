#ifndef KITWRIGHT_SHELL_MAIN_MACHINE_H_
#define KITWRIGHT_SHELL_MAIN_MACHINE_H_

#include <memory>

#include "base/result.h"
#include "platform/services.h"

namespace kw {

/// The machine that this process runs on: its services, and what keeps them alive.
struct ProcessMachine {
  std::shared_ptr<void> keeper;
  platform::Services* services = nullptr;
};

/// Opens the machine of this process with the window system's dialogs, which outlive it. Fails with the
/// reason where there is none.
Result<ProcessMachine> OpenProcessMachine(platform::Dialogs& dialogs);

}  // namespace kw

#endif  // KITWRIGHT_SHELL_MAIN_MACHINE_H_
