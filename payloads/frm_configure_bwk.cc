#include "payloads/frm_configure_bwk.h"

#include "base/text.h"
#include "payloads/frm_install_bwk.h"

namespace kw {
namespace {

constexpr int kHelpContext = 1035;

}  // namespace

frmConfigureBWK::frmConfigureBWK(PageContext& context)
    : WizardDialog(context, kName, "Tamrix Bulwark Configuration"),
      STCConsoleCtrl81(*this, "STCConsoleCtrl81"),
      OK(*this, "OK", "OK"),
      Cancel(*this, "Cancel", "Cancel"),
      Help(*this, "Help", "&Help") {
  OK.is_default = true;
  Cancel.is_cancel = true;
  OK.on_click = [this] {
    Hide();
    context_.run.changes.ConfigChangedBulwark = true;
    Check(StoreChanges());
    AdjustPage();
  };
  Cancel.on_click = [this] {
    Hide();
    // There is none when no preferences were found.
    context_.services.files->DeleteFile(ScratchFile(), true).IgnoreError();
    AdjustPage();
  };
  Help.on_click = [this] {
    const Status shown = context_.services.dialogs->ShowHelp(
        context_.services.system->ProgramFolder() + "\\Bulwark.chm", kHelpContext);
    Check(shown);
  };
}

ui::Layout frmConfigureBWK::ContentLayout() {
  using namespace ui;
  return Column({Place(STCConsoleCtrl81, 1), Buttons({Space(), Place(OK), Place(Cancel), Place(Help)})}, 1);
}

std::string frmConfigureBWK::ScratchFile() const {
  return context_.run.ConfigAppDataFolder + "\\TMP" + kBulwarkPrefs;
}

// Each showing begins with the scratch copy.
void frmConfigureBWK::OnActivate() {
  const auto bytes = context_.services.files->ReadFile(ScratchFile());
  STCConsoleCtrl81.SetText(bytes.ok() ? CodePageToUtf8(*bytes, context_.services.system->CodePage())
                                      : std::string());
}

bool frmConfigureBWK::OnQueryUnload() {
  AdjustPage();
  return true;
}

Status frmConfigureBWK::StoreChanges() {
  KW_ASSIGN_OR_RETURN(const std::string bytes,
                      Utf8ToCodePage(STCConsoleCtrl81.Text(), context_.services.system->CodePage()));
  return context_.services.files->WriteFile(ScratchFile(), bytes);
}

void frmConfigureBWK::AdjustPage() { context_.navigator.Get<frmInstallBWK>().AdjustControls(); }

}  // namespace kw
