#include "settings/product_tool.h"

#include "package/file_rules.h"
#include "package/staging.h"

namespace kw {

int RunProductTool(PageContext& context, ui::Form& asking, const std::string& command,
                   bool already_configured) {
  platform::Services& services = context.services;
  RunState& run = context.run;
  int result = kToolNotStarted;
  WizardPage* page = context.navigator.ShownPage();
  ui::Form& window = page && !asking.Visible() ? *page : asking;
  if (page) page->TreeView1.SetEnabled(false);
  run.ToolWindowTitle.clear();
  context.host.RedirectActivation(window, [&services, &run] {
    if (!run.ToolWindowTitle.empty()) services.processes->BringWindowToFront(run.ToolWindowTitle);
  });
  if (!run.ProductInstallDir.empty()) {
    // A folder that is gone shows as a tool that cannot be started.
    services.files->SetCurrentFolder(run.ProductInstallDir).IgnoreError();
    const bool from_live = !already_configured && run.SettingsFromSystem;
    result = RunAndWait(services, run, context.host, command + (from_live ? " /ZEDW" : " /ZEDRW"),
                        platform::WindowStyle::kNormal);
    EnterProgramFolder(services);
  }
  context.host.RedirectActivation(window, {});
  if (page) page->TreeView1.SetEnabled(true);
  return result;
}

}  // namespace kw
