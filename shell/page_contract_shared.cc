// What pages share besides their class: busy state, the status window, help, the cancel question, the start
// of every Load.

#include <utility>

#include "package/clean_up.h"
#include "shell/page_contract.h"

namespace kw {
namespace {

/// The pointer of the page that is busy. One for the whole program: busy state does not nest.
ui::Pointer& SavedMousePointer() {
  static ui::Pointer saved = ui::Pointer::kDefault;
  return saved;
}

/// The face that texts in the language of some locales need; others keep the design's.
ui::Font FontOfLocale(int locale) {
  switch (locale) {
    case 1028:
      return {"新細明體", 9, 136};
    case 1041:
      return {"ＭＳ Ｐゴシック", 9, 128};
    case 1042:
      return {"굴림", 9, 129};
    case 2052:
      return {"宋体", 9, 134};
    default:
      return {};
  }
}

}  // namespace

std::string FeatureToPageName(std::string_view feature_key, bool with_shell_extensions) {
  if (feature_key == "AutoUpdate") return "AutoUpdate Schedule";
  if (feature_key == "OnAccessScanner") return "On-Access Scanner";
  if (feature_key == "EmailScan") return "On-Delivery Scanner";
  if (feature_key == "OnDemandScanner") return "Scheduled Scans";
  if (with_shell_extensions && feature_key == "ShellExtensions") return "Scheduled Scans";
  return {};
}

void BeginBusy(ui::Form& page) {
  SavedMousePointer() = page.MousePointer();
  page.SetMousePointer(ui::Pointer::kHourglass);
  page.SetEnabled(false);
}

void EndBusy(ui::Form& page) {
  page.SetMousePointer(SavedMousePointer());
  page.SetEnabled(true);
}

bool IsBusy(const ui::Form& page) { return page.MousePointer() == ui::Pointer::kHourglass; }

frmStatus::frmStatus(PageContext& context)
    : ui::Form(context.host, kName, platform::kProgramTitle, ui::FormStyle::kStatus),
      lblStatus(*this, "lblStatus", "") {}

void frmStatus::OnLoad() { SetMousePointer(ui::Pointer::kHourglass); }

void frmStatus::ShowText(const std::string& text, ui::Form& page) {
  lblStatus.SetText(text);
  Show();
  Refresh();
  page.Refresh();
}

void frmStatus::HideWhileWaiting(ui::Form& page) {
  const bool busy = IsBusy(page);
  if (busy) EndBusy(page);
  Hide();
  if (busy) BeginBusy(page);
  page.Refresh();
}

ui::Layout frmStatus::ContentLayout() { return ui::Column({ui::Place(lblStatus, 1)}); }

bool ConfirmCancel(PageContext& context) {
  using platform::Answer;
  if (context.services.dialogs->Question("Any changes you have made will be discarded.",
                                         {Answer::kOk, Answer::kCancel}, Answer::kCancel,
                                         "Confirm Cancel") != Answer::kOk)
    return false;
  DiscardDestination(context.services, context.run);
  CleanUpRun(context.services, context.run);
  return true;
}

void ShowHelp(PageContext& context, int context_id) {
  CheckOrReport(context.services, context.services.dialogs->ShowHelp(
                                      context.services.system->ProgramFolder() + "\\ZED.chm", context_id));
}

void InitializePage(PageContext& context, ui::Form& page) {
  page.RemoveMaximize();
  page.SetTextFont(FontOfLocale(context.services.system->UserDefaultLocale()));
}

bool CheckOrReport(platform::Services& services, const Status& status) {
  if (!status.ok()) services.dialogs->Message(status.message());
  return status.ok();
}

}  // namespace kw
