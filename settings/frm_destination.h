#ifndef KITWRIGHT_SETTINGS_FRM_DESTINATION_H_
#define KITWRIGHT_SETTINGS_FRM_DESTINATION_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// Where the settings file goes, and for which machines it is.
class frmDestination : public WizardPage {
 public:
  static constexpr const char* kName = "frmDestination";
  explicit frmDestination(PageContext& context);

  void AddChoices(ui::ListBox& list) override;

  ui::Option GenericConfig;
  ui::Option WorkstationConfig;
  ui::Option ServerConfig;
  ui::Label Label1;
  ui::TextBox DestConfigFolder;
  ui::Button ConfigBrowse;

 protected:
  ui::Layout PageLayout() override;
  void LoadPage() override;
  void ActivatePage() override;
  /// A click on the page tree; with an empty box it goes only to a required page.
  void LeavePage(const std::string& name) override;
  void OnNext() override;
  void OnFinish() override;
  void OnBack() override;

 private:
  bool HasDestination();
  void ValidateDestination(const std::string& name);
  /// Checks the typed folder and takes it over; False stays.
  bool TakeDestination();
  bool MakeDestination(const std::string& file_path);
  bool ProbeFile(const std::string& file_path);
  bool Ask(const std::string& text);
};

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_FRM_DESTINATION_H_
