#include "settings/product_tool.h"

#include "package/file_rules.h"
#include "package/staging.h"

namespace kw {

int RunProductTool(PageContext& context, ui::Form& page, ui::Tree* tree, const std::string& command,
                   bool already_configured) {
  platform::Services& services = context.services;
  RunState& run = context.run;
  int result = kToolNotStarted;
  if (tree != nullptr) tree->SetEnabled(false);
  run.ToolWindowTitle.clear();
  context.host.RedirectActivation(page, [&services, &run] {
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
  context.host.RedirectActivation(page, {});
  if (tree != nullptr) tree->SetEnabled(true);
  return result;
}

}  // namespace kw
