#include "shell/app.h"

#include <utility>

#include "console/console_package.h"
#include "pages/frm_additional_files.h"
#include "payloads/frm_common_updater.h"
#include "payloads/frm_dats_and_engine.h"
#include "settings/frm_config_source.h"
#include "settings/settings_output.h"
#include "shell/program_entry.h"

namespace kw {

WizardApp::WizardApp(platform::Services& services, ui::FormHost& host, FormFactories factories)
    : context_{services, run_, host, pages_}, pages_(context_, std::move(factories)) {
  context_.operations.AddProductSettings = [this] { return AddProductSettings(context_); };
  context_.operations.OpenPackageSettings = [this] { pages_.Get<frmConfigSource>().TakePackageSettings(); };
  context_.operations.CreateCabFile = [this] { return pages_.Get<frmAdditionalFiles>().CreateCabFile(); };
  context_.operations.ReadPackageAgent = [this] { pages_.Get<frmCommonUpdater>().ReadPackageAgent(); };
  context_.operations.CopySigTermsTxt = [this] { pages_.Get<frmDATsAndEngine>().CopySigTermsTxt(); };
  context_.operations.CreateConsolePackage = [this] { CreateConsolePackage(context_); };
  context_.operations.CreateOptimizedConsolePackage = [this] { CreateOptimizedConsolePackage(context_); };
  context_.operations.CreateSettingsConsolePackage = [this] { CreateSettingsConsolePackage(context_); };
}

void WizardApp::Run() { RunProgramEntry(context_); }

}  // namespace kw
