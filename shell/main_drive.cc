// kitwright-drive [SCRIPT]: the wizard with a script in place of windows, from SCRIPT or from standard input.

#include <fstream>
#include <iostream>

#include "shell/app.h"
#include "shell/main_machine.h"
#include "ui/drive/driver.h"

namespace {

// As for a script that asks for what is not there.
constexpr int kBadCall = 2;

int Fail(const std::string& what) {
  std::cerr << "kitwright-drive: " << what << "\n";
  return kBadCall;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2) return Fail("usage: kitwright-drive [SCRIPT]");
  std::ifstream file;
  if (argc == 2) {
    file.open(argv[1], std::ios::binary);
    if (!file) return Fail(std::string("cannot read ") + argv[1]);
  }
  kw::ui::drive::Driver driver(argc == 2 ? file : std::cin, std::cout);
  auto machine = kw::OpenProcessMachine(driver.Dialogs());
  if (!machine.ok()) return Fail(machine.error().message);
  driver.Attach(*machine->services);

  const kw::FormFactories factories = kw::AllFormFactories();
  kw::WizardApp app(*machine->services, driver.Host(), factories);
  driver.OnUnknownForm([&](std::string_view name) -> kw::ui::Form* {
    return factories.contains(name) ? &app.Pages().FormByName(name) : nullptr;
  });
  return driver.Run([&] { app.Run(); });
}
