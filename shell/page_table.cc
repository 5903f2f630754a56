#include "shell/page_table.h"

#include <cstdlib>
#include <utility>

namespace kw {
namespace {

constexpr const char* kCannotProceed =
    "Cannot proceed to this page until all currently available pages have been configured.";
constexpr const char* kSourcePage = "Source and Destination";
constexpr const char* kReviewPage = "Finish";
// Outside the table; they keep their state while pages come and go.
constexpr const char* kWelcomeForm = "frmWelcome";
constexpr const char* kStatusForm = "frmStatus";

}  // namespace

PageTable::PageTable(PageContext& context, FormFactories factories)
    : context_(context), factories_(std::move(factories)) {}

PageTable::~PageTable() = default;

PageRecord* PageTable::Find(std::string_view caption) {
  for (PageRecord& record : records_) {
    if (record.Caption == caption) return &record;
  }
  return nullptr;
}

PageRecord* PageTable::Current() {
  for (PageRecord& record : records_) {
    if (record.IsCurrent) return &record;
  }
  return nullptr;
}

void PageTable::RecomputeDisabled(bool enable) {
  for (PageRecord& record : records_)
    record.Disabled =
        !enable || record.NotInstalled || record.FeatureOff || record.NoSettings || record.Blocked;
}

bool PageTable::RequiredPagesDone() const {
  bool done = false;
  for (const PageRecord& record : records_) {
    if (!record.Required) continue;
    if (!record.Configured && !record.IsCurrent) return false;
    done = true;
  }
  return done;
}

void PageTable::RecomputeBlocked() {
  const bool done = RequiredPagesDone();
  for (PageRecord& record : records_) {
    if (!record.Required) record.Blocked = !done;
  }
  RecomputeDisabled(true);
}

void PageTable::SetPageConfigured(std::string_view caption, bool value) {
  if (PageRecord* record = Find(caption)) record->Configured = value && !record->NeverConfigured;
}

void PageTable::SetPageNeverConfigured(std::string_view caption, bool value) {
  if (PageRecord* record = Find(caption)) record->NeverConfigured = value;
}

void PageTable::ClearAllConfigured() {
  for (PageRecord& record : records_) record.Configured = false;
}

bool PageTable::PageIsRequired(std::string_view caption) {
  const PageRecord* record = Find(caption);
  return record && record->Required;
}

bool PageTable::PageIsConfigured(std::string_view caption) {
  const PageRecord* record = Find(caption);
  return record && record->Configured;
}

void PageTable::SetPageFeatureOff(std::string_view caption, bool value) {
  if (PageRecord* record = Find(caption)) record->FeatureOff = value;
  RecomputeDisabled(true);
}

void PageTable::SetScannerPagesDisabled(bool value) {
  for (const char* caption : {"On-Access Scanner", "On-Delivery Scanner", "Scheduled Scans",
                              "AutoUpdate Schedule", "Beaconry Properties"})
    SetPageFeatureOff(caption, value);
}

void PageTable::SetPageNoSettings(std::string_view caption, bool value) {
  if (PageRecord* record = Find(caption)) record->NoSettings = value;
  RecomputeDisabled(true);
}

void PageTable::SetConfigurationPagesEnabled(bool enabled) {
  if (!context_.run.PackageMode) SetPageNoSettings("Type", !enabled);
  for (const char* caption : {"On-Access Scanner", "On-Delivery Scanner", "Scheduled Scans",
                              "AutoUpdate Schedule", "Beaconry Properties", "User Interface Properties"})
    SetPageNoSettings(caption, !enabled);
}

std::string PageTable::NextPageName() {
  bool behind = false;
  for (const PageRecord& record : records_) {
    if (behind && !record.Disabled) return record.Caption;
    behind = behind || record.IsCurrent;
  }
  context_.services.dialogs->Message(kCannotProceed);
  return {};
}

std::string PageTable::PreviousPageName() {
  const PageRecord* found = nullptr;
  for (const PageRecord& record : records_) {
    if (record.IsCurrent) break;
    if (!record.Disabled) found = &record;
  }
  if (found) return found->Caption;
  context_.services.dialogs->Message(
      "This page is not available for configuration because Kestrane is not installed.");
  return {};
}

bool PageTable::IsPageBlocked(std::string_view caption) {
  const PageRecord* record = Find(caption);
  if (record && record->IsCurrent) return true;
  const bool reachable = (record && record->Required) || RequiredPagesDone();
  if (!reachable) {
    context_.services.dialogs->Message(kCannotProceed);
    return true;
  }
  return record && RefuseDisabled(*record);
}

bool PageTable::RefuseDisabled(const PageRecord& record) {
  if (!record.Disabled) return false;
  if (record.NotInstalled) {
    context_.services.dialogs->Message(
        record.Caption +
        " is not currently installed on this computer.  It must be installed before it can be configured "
        "by Kitwright.");
  } else if (record.FeatureOff) {
    context_.services.dialogs->Message(
        "You have disabled installation of this feature.  If you would like to configure its settings you "
        "must first configure it to be installed on the Features page.");
  } else {
    context_.services.dialogs->Message(
        "You haved chosen not to configure settings. If you change your mind, please click Source for "
        "Configuration to modify your selection.");
  }
  return true;
}

void PageTable::GoToPage(std::string_view caption) {
  if (caption == kSourcePage && !ConfirmCancel(context_)) return;
  PageRecord* old = Current();
  if (old && old->Caption != kReviewPage) SetPageConfigured(old->Caption, true);
  PageRecord* target = Find(caption);
  if (!target || target == old) return;
  target->IsCurrent = true;
  if (old) old->IsCurrent = false;
  RecomputeBlocked();
  // The new page first, so that a window is on screen at all times. Names, because a Load may build the list
  // anew.
  const std::string shown = target->Form;
  const std::string hidden = old ? old->Form : std::string();
  FormByName(shown).Show();
  if (!hidden.empty()) FormByName(hidden).Hide();
}

void PageTable::FillPageTree(ui::Tree& tree) {
  int position = 0;
  for (const PageRecord& record : records_) {
    ui::TreeNode node;
    node.text = record.Caption;
    if (record.Configured) node.image = record.Disabled ? "2" : "1";
    node.bold = record.IsCurrent;
    node.grey = record.Disabled;
    if (position < tree.Count()) {
      tree.Update(position, std::move(node));
    } else {
      tree.Add(std::move(node));
    }
    ++position;
  }
}

void PageTable::ActivateCurrentPage() {
  const PageRecord* current = Current();
  if (!current) return;
  ui::Form& form = FormByName(current->Form);
  if (form.Visible()) context_.host.FocusForm(form);
}

WizardPage* PageTable::ShownPage() {
  for (const auto& [name, form] : forms_) {
    auto* page = form->Visible() ? dynamic_cast<WizardPage*>(form.get()) : nullptr;
    if (page) return page;
  }
  return nullptr;
}

void PageTable::LoadPageChoices(ui::ListBox& list) {
  list.Clear();
  for (const PageRecord& record : records_) {
    list.Add(record.Caption + "...");
    Page(record.Form).AddChoices(list);
  }
}

void PageTable::Unload(const std::string& form) {
  const auto place = forms_.find(form);
  if (place == forms_.end()) return;
  place->second->Hide();
  unloaded_.push_back(std::move(place->second));
  forms_.erase(place);
}

void PageTable::ResetPages() {
  unloading_pages_ = true;
  for (PageRecord& record : records_) {
    record.IsCurrent = false;
    record.Configured = false;
    Unload(record.Form);
  }
  unloading_pages_ = false;
}

void PageTable::ReloadPages() {
  const PageRecord* current = Current();
  std::vector<std::string> stale;
  for (const auto& [name, form] : forms_) {
    const bool stays = name == kWelcomeForm || name == kStatusForm || (current && current->Form == name);
    if (!stays) stale.push_back(name);
  }
  for (const std::string& name : stale) Unload(name);
  for (PageRecord& record : records_) {
    record.FeatureOff = false;
    FormByName(record.Form).SetCaption(record.Caption);
  }
  RecomputeDisabled(true);
}

ui::Form& PageTable::FormByName(std::string_view name) {
  const auto place = forms_.find(name);
  if (place != forms_.end()) return *place->second;
  // Leaving a page makes no form, so that the handler that unloaded it is done; only one that waits for a
  // tool may still be running.
  if (context_.run.WaitsForTools == 0) unloaded_.clear();
  const auto factory = factories_.find(name);
  if (factory == factories_.end()) std::abort();  // a form that the program does not have
  return *forms_.emplace(std::string(name), factory->second(context_)).first->second;
}

}  // namespace kw
