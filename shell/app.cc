#include "shell/app.h"

#include <utility>

#include "pages/frm_additional_files.h"
#include "settings/frm_config_source.h"
#include "settings/settings_output.h"
#include "shell/program_entry.h"

namespace kw {

WizardApp::WizardApp(platform::Services& services, ui::FormHost& host, FormFactories factories)
    : context_{services, run_, host, pages_}, pages_(context_, std::move(factories)) {
  context_.operations.AddProductSettings = [this] { return AddProductSettings(context_); };
  context_.operations.OpenPackageSettings = [this] { pages_.Get<frmConfigSource>().TakePackageSettings(); };
  context_.operations.CreateCabFile = [this] { return pages_.Get<frmAdditionalFiles>().CreateCabFile(); };
}

void WizardApp::Run() { RunProgramEntry(context_); }

}  // namespace kw
