#ifndef KITWRIGHT_SHELL_APP_H_
#define KITWRIGHT_SHELL_APP_H_

#include "package/run_state.h"
#include "platform/services.h"
#include "shell/page_factories.h"
#include "shell/page_table.h"
#include "ui/form_host.h"

namespace kw {

/// The whole wizard on a given machine and a given window system, one run of it. Services and host outlive
/// it.
///
/// Use: make it, call Run, then serve the host's events until the host says that the program ended.
class WizardApp {
 public:
  WizardApp(platform::Services& services, ui::FormHost& host, FormFactories factories = AllFormFactories());

  /// Program entry: shows the welcome page, or tells why the wizard may not run and ends the program.
  void Run();

  /// All forms and the page table.
  PageTable& Pages() { return pages_; }
  RunState& State() { return run_; }
  PageContext& Context() { return context_; }

 private:
  RunState run_;
  PageContext context_;
  PageTable pages_;
};

}  // namespace kw

#endif  // KITWRIGHT_SHELL_APP_H_
