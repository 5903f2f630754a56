#include "shell/page_factories.h"

#include <memory>

#include "pages/frm_add_program.h"
#include "pages/frm_add_remove_options.h"
#include "pages/frm_additional_file.h"
#include "pages/frm_additional_files.h"
#include "pages/frm_features.h"
#include "pages/frm_install_options.h"
#include "pages/frm_post_install_options.h"
#include "pages/frm_programs.h"
#include "pages/frm_registry_settings.h"
#include "pages/frm_source_and_destination.h"
#include "pages/frm_zed_password.h"
#include "payloads/frm_beaconry_server.h"
#include "payloads/frm_common_updater.h"
#include "payloads/frm_configure_bwk.h"
#include "payloads/frm_dats_and_engine.h"
#include "payloads/frm_install_bwk.h"
#include "payloads/frm_patch_files.h"
#include "settings/frm_add_task.h"
#include "settings/frm_auto_update.h"
#include "settings/frm_config_source.h"
#include "settings/frm_destination.h"
#include "settings/frm_scheduled_scan.h"
#include "settings/frm_type.h"
#include "settings/scanner_pages.h"
#include "shell/frm_finish.h"
#include "shell/frm_review_configuration.h"
#include "shell/frm_welcome.h"

namespace kw {
namespace {

template <typename T>
FormFactories::value_type Of() {
  return {T::kName, [](PageContext& context) { return std::make_unique<T>(context); }};
}

}  // namespace

FormFactories AllFormFactories() {
  return {
      Of<frmStatus>(),
      Of<frmWelcome>(),
      Of<frmSourceAndDestination>(),
      Of<frmFeatures>(),
      Of<frmInstallOptions>(),
      Of<frmAddRemoveOptions>(),
      Of<frmPrograms>(),
      Of<frmAddProgram>(),
      Of<frmAdditionalFiles>(),
      Of<frmAdditionalFile>(),
      Of<frmPostInstallOptions>(),
      Of<frmConfigSource>(),
      Of<frmType>(),
      Of<frmDestination>(),
      Of<frmOnAccessMonitor>(),
      Of<frmEmailScan>(),
      Of<frmScheduledScan>(),
      Of<frmAutoUpdate>(),
      Of<frmBeaconryClient>(),
      Of<frmUIOptions>(),
      Of<frmRegistrySettings>(),
      Of<frmZEDPassword>(),
      Of<frmAddTask>(),
      Of<frmDATsAndEngine>(),
      Of<frmPatchFiles>(),
      Of<frmCommonUpdater>(),
      Of<frmBeaconryServer>(),
      Of<frmInstallBWK>(),
      Of<frmConfigureBWK>(),
      Of<frmReviewConfiguration>(),
      Of<frmFinish>(),
  };
}

}  // namespace kw
