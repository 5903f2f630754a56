#ifndef KITWRIGHT_SHELL_PAGE_TABLE_H_
#define KITWRIGHT_SHELL_PAGE_TABLE_H_

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "shell/page_contract.h"

namespace kw {

/// Makes a form; the context outlives it.
using FormFactory = std::function<std::unique_ptr<ui::Form>(PageContext&)>;
/// Factories by form name ("frmFeatures").
using FormFactories = std::map<std::string, FormFactory, std::less<>>;

/// One page of the present mode's list.
struct PageRecord {
  bool IsCurrent = false;
  bool Configured = false;
  bool Disabled = false;
  bool NotInstalled = false;
  bool FeatureOff = false;
  bool NoSettings = false;
  bool Blocked = false;
  bool Required = false;
  bool NeverConfigured = false;
  std::string Caption;
  std::string Form;  ///< the form's name; the table makes the form when it is mentioned
};

/// The page table: the pages of the present mode in order, the rules by which they are reached, and all forms
/// of the program, which it owns.
class PageTable : public Navigator {
 public:
  /// `context` holds this table as its navigator; it is not looked at before the first form is made.
  PageTable(PageContext& context, FormFactories factories);
  ~PageTable() override;

  const std::vector<PageRecord>& Records() const { return records_; }

  void BuildPackagePageList() override;
  void BuildSettingsPageList() override;
  void RecomputeDisabled(bool enable) override;
  void RecomputeBlocked() override;
  void SetPageConfigured(std::string_view caption, bool value) override;
  void SetPageNeverConfigured(std::string_view caption, bool value) override;
  void ClearAllConfigured() override;
  bool PageIsRequired(std::string_view caption) override;
  bool PageIsConfigured(std::string_view caption) override;
  void SetPageFeatureOff(std::string_view caption, bool value) override;
  void SetScannerPagesDisabled(bool value) override;
  void SetPageNoSettings(std::string_view caption, bool value) override;
  void SetConfigurationPagesEnabled(bool enabled) override;
  std::string NextPageName() override;
  std::string PreviousPageName() override;
  bool IsPageBlocked(std::string_view caption) override;
  void GoToPage(std::string_view caption) override;
  void FillPageTree(ui::Tree& tree) override;
  void ActivateCurrentPage() override;
  WizardPage* ShownPage() override;
  void LoadPageChoices(ui::ListBox& list) override;
  void ResetPages() override;
  bool UnloadingPages() const override { return unloading_pages_; }
  void ReloadPages() override;
  ui::Form& FormByName(std::string_view name) override;

 private:
  void AddPage(const char* caption, const char* form, bool not_installed, bool required);
  PageRecord* Find(std::string_view caption);
  PageRecord* Current();
  /// True if every required page is configured or current, and there is one.
  bool RequiredPagesDone() const;
  bool RefuseDisabled(const PageRecord& record);
  void Unload(const std::string& form);

  PageContext& context_;
  FormFactories factories_;
  std::vector<PageRecord> records_;
  std::map<std::string, std::unique_ptr<ui::Form>, std::less<>> forms_;
  /// Unloaded forms whose handlers may still be running; they go when a form is made while no tool runs.
  std::vector<std::unique_ptr<ui::Form>> unloaded_;
  bool unloading_pages_ = false;
};

}  // namespace kw

#endif  // KITWRIGHT_SHELL_PAGE_TABLE_H_
