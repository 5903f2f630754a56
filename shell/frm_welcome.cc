#include "shell/frm_welcome.h"

#include "package/clean_up.h"
#include "ui/wizard_layout.h"

namespace kw {
namespace {

constexpr int kHelpId = 1000;

}  // namespace

frmWelcome::frmWelcome(PageContext& context)
    : ui::Form(context.host, kName, platform::kProgramTitle, ui::FormStyle::kPage),
      TitleImage(*this, "TitleImage", "TITLEBITMAP"),
      Logo(*this, "Logo", "LOGO"),
      Image3(*this, "Image3", "WELCOME"),
      Label1(*this, "Label1", "Welcome"),
      Label4(*this, "Label4", "Welcome to Tamrix Kitwright."),
      Line1(*this, "Line1"),
      ModifyPackage(*this, "ModifyPackage",
                    "&Create a new installation package based on an existing package"),
      GenerateSettings(*this, "GenerateSettings",
                       "&Modify an existing installation by generating a new settings file"),
      Line2(*this, "Line2"),
      Help(*this, "Help", "&Help"),
      Next(*this, "Next", "&Next >"),
      Cancel(*this, "Cancel", "Cancel"),
      context_(context) {
  Label1.emphasized = true;
  ModifyPackage.SetValue(true);
  Help.on_click = [this] { ShowHelp(context_, kHelpId); };
  Next.on_click = [this] { OnNext(); };
  Next.is_default = true;
  Cancel.on_click = [this] { Leave(); };
  Cancel.is_cancel = true;
}

ui::Layout frmWelcome::ContentLayout() {
  ui::WizardParts parts;
  parts.band = &TitleImage;
  parts.logo = &Logo;
  parts.title = &Label1;
  parts.description = &Label4;
  parts.line1 = &Line1;
  parts.side = &Image3;
  parts.line2 = &Line2;
  parts.help = &Help;
  parts.buttons = {&Next, &Cancel};
  return ui::WizardLayout(parts,
                          ui::Column({ui::Place(ModifyPackage), ui::Place(GenerateSettings), ui::Space()}));
}

void frmWelcome::OnLoad() {
  RemoveMaximize();
  PageLoaded = true;
}

void frmWelcome::OnActivate() {
  if (!Visible()) {
    // The window system activated the hidden window; the pages in use must stay.
    context_.navigator.ActivateCurrentPage();
    return;
  }
  if (!PageLoaded) context_.navigator.ResetPages();
}

bool frmWelcome::OnQueryUnload() {
  Leave();
  return true;
}

// Ends at once. Who came back here leaves none of the folders that the run has made so far: settings lie in
// them.
void frmWelcome::Leave() {
  const RunState& run = context_.run;
  DiscardDestination(context_.services, context_.run);
  if (!run.TempFolder.empty()) context_.services.files->DeleteFolder(run.TempFolder, true).IgnoreError();
  context_.host.EndProgram();
}

void frmWelcome::OnNext() {
  RunState& run = context_.run;
  BeginBusy(*this);
  PageLoaded = false;
  run.SettingsFromSystem = false;
  run.SettingsFromFile = false;
  run.PackageOptimized = false;
  CleanUpRun(context_.services, run);
  run.ConfigAppDataFolder.clear();
  run.TempFolder.clear();
  run.ProductLocale = "0000";
  run.SaveDifferencesOnly = !run.AnyFeatureInstalled;
  run.PackageMode = ModifyPackage.Value();
  const char* first = run.PackageMode           ? "frmSourceAndDestination"
                      : run.AnyFeatureInstalled ? "frmConfigSource"
                                                : "frmDestination";
  context_.navigator.FormByName(first).Show();
  EndBusy(*this);
  Hide();
}

}  // namespace kw
