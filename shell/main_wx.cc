// kitwright: the wizard in windows. It reads no command line.

#include <iostream>

#include "base/machine_paths.h"
#include "platform/shared/patient_services.h"
#include "shell/app.h"
#include "shell/main_machine.h"
#include "ui/wx/wx_application.h"
#include "ui/wx/wx_dialogs.h"
#include "ui/wx/wx_host.h"

int main(int argc, char** argv) {
  auto application = kw::ui::WxApplication::Start(argc, argv);
  if (!application.ok()) {
    std::cerr << "kitwright: " << application.error().message << "\n";
    return 1;
  }
  const kw::MachinePaths paths = kw::MachinePaths::OfThisProcess();
  kw::ui::WxHost host;
  kw::ui::WxDialogs dialogs(host, {[&](const std::string& path) { return paths.HostPath(path); },
                                   [&](const std::string& path) { return paths.WindowsPath(path); }});
  auto machine = kw::OpenProcessMachine(dialogs);
  if (!machine.ok()) {
    dialogs.Message(machine.error().message);
    return 1;
  }
  kw::platform::PatientServices patient(*machine->services, [&host] { host.ServePainting(); });
  kw::WizardApp wizard(patient.Get(), host);
  wizard.Run();
  (*application)->Run(host);
  return 0;
}
