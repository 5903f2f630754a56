#include "shell/frm_finish.h"

#include <string>

#include "ui/wizard_layout.h"

namespace kw {
namespace {

constexpr int kHelpId = 1024;

bool IsChecked(Navigator& navigator, const char* form, const char* check_box) {
  const auto* box = dynamic_cast<ui::CheckBox*>(navigator.FormByName(form).FindControl(check_box));
  return box && box->Checked();
}

}  // namespace

frmFinish::frmFinish(PageContext& context)
    : ui::Form(context.host, kName, "Finish", ui::FormStyle::kPage),
      TitleImage(*this, "TitleImage", "TITLEBITMAP"),
      Logo(*this, "Logo", "LOGO"),
      Title(*this, "Title", "Finish"),
      Label4(*this, "Label4", "Operation complete."),
      Line1(*this, "Line1"),
      TreeView1(*this, "TreeView1"),
      lblFinalMessage(*this, "lblFinalMessage", ""),
      lblFinalDirectory(*this, "lblFinalDirectory", ""),
      lblBCNFinalMessage(*this, "lblBCNFinalMessage", ""),
      lblBCNFinalDirectory(*this, "lblBCNFinalDirectory", ""),
      lblBWKFinalMessage(*this, "lblBWKFinalMessage", ""),
      lblBWKFinalDirectory(*this, "lblBWKFinalDirectory", ""),
      lblHint(*this, "lblHint", ""),
      Line2(*this, "Line2"),
      cmdHelp(*this, "cmdHelp", "&Help"),
      Exit(*this, "Exit", "&Exit"),
      context_(context) {
  Title.emphasized = true;
  cmdHelp.on_click = [this] { ShowHelp(context_, kHelpId); };
  Exit.on_click = [this] { context_.host.EndProgram(); };
  Exit.is_default = true;
  Exit.is_cancel = true;
}

ui::Layout frmFinish::ContentLayout() {
  ui::WizardParts parts;
  parts.band = &TitleImage;
  parts.logo = &Logo;
  parts.title = &Title;
  parts.description = &Label4;
  parts.line1 = &Line1;
  parts.tree = &TreeView1;
  parts.line2 = &Line2;
  parts.help = &cmdHelp;
  parts.buttons = {&Exit};
  return ui::WizardLayout(parts, ui::Column({ui::Place(lblFinalMessage), ui::Place(lblFinalDirectory),
                                             ui::Place(lblBCNFinalMessage), ui::Place(lblBCNFinalDirectory),
                                             ui::Place(lblBWKFinalMessage), ui::Place(lblBWKFinalDirectory),
                                             ui::Place(lblHint), ui::Space()}));
}

void frmFinish::OnLoad() {
  InitializePage(context_, *this);
  const RunState& run = context_.run;
  if (run.Succeeded && run.PackageMode) {
    TellPackage();
    return;
  }
  if (run.Succeeded) {
    TellSettingsFile();
  } else {
    lblFinalMessage.SetText("Kitwright did not complete successfully.");
    lblFinalDirectory.SetVisible(false);
    lblHint.SetVisible(false);
  }
  HideCompanions();
}

void frmFinish::TellPackage() {
  const RunState& run = context_.run;
  lblFinalMessage.SetText("This folder contains your customized Kestrane Enterprise installation:");
  lblFinalDirectory.SetText(run.DestinationFolder);
  lblHint.SetVisible(false);
  // Companions of an optimised package are inside its one program.
  if (run.PackageOptimized) return;
  if (IsChecked(context_.navigator, "frmBeaconryServer", "InstallBeaconry")) {
    lblBCNFinalMessage.SetText("This folder contains your customized Beaconry Server installation package:");
    lblBCNFinalDirectory.SetText(run.DestinationFolder + "\\BCN");
  }
  if (IsChecked(context_.navigator, "frmInstallBWK", "InstallBWK")) {
    lblBWKFinalMessage.SetText("This folder contains your customized Tamrix Bulwark installation package:");
    lblBWKFinalDirectory.SetText(run.DestinationFolder + "\\BWK");
  }
}

void frmFinish::TellSettingsFile() {
  const RunState& run = context_.run;
  lblFinalMessage.SetText("This file contains your customized Kestrane Enterprise settings:");
  lblFinalDirectory.SetText(run.DestinationFolder + "\\" + run.SettingsFileName);
  lblHint.SetText(
      "To apply the new Kestrane Enterprise settings to target systems, you must copy this file to the 'ZED' "
      "subfolder in the Kestrane Enterprise installation folder (For example: C:\\Program "
      "Files\\Orvantic\\Kestrane\\ZED\\) on each target system.  Kestrane Enterprise will detect the new "
      "file and automatically incorporate the changes.");
}

void frmFinish::HideCompanions() {
  for (ui::Label* label :
       {&lblBCNFinalMessage, &lblBCNFinalDirectory, &lblBWKFinalMessage, &lblBWKFinalDirectory})
    label->SetVisible(false);
}

void frmFinish::OnActivate() {
  if (!Visible()) {
    context_.navigator.ActivateCurrentPage();
    return;
  }
  context_.navigator.RecomputeDisabled(false);
  context_.navigator.FillPageTree(TreeView1);
  TreeView1.SetEnabled(false);
}

bool frmFinish::OnQueryUnload() {
  context_.host.EndProgram();
  return true;
}

}  // namespace kw
