#ifndef KITWRIGHT_PAYLOADS_FRM_COMMON_UPDATER_H_
#define KITWRIGHT_PAYLOADS_FRM_COMMON_UPDATER_H_

#include <string>

#include "package/installer_db.h"
#include "shell/page_contract.h"

namespace kw {

/// The update component's repository list and the management agent's installer.
class frmCommonUpdater : public WizardPage, public PayloadPage {
 public:
  static constexpr const char* kName = "frmCommonUpdater";
  explicit frmCommonUpdater(PageContext& context);

  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;
  bool SaveConfig() override;
  void AdjustControls();
  /// Takes the agent's installer out of the package that was just opened, for its version.
  void ReadPackageAgent();

  std::string AgentVersion = "N/A";

  ui::Label Label2;
  ui::Button ImportSettings;
  ui::Button ConfigureSettings;
  ui::Label Label5;
  ui::TextBox NewCommonAgentFile;
  ui::Button NewCommonAgentBrowse;

 protected:
  ui::Layout PageLayout() override;
  void LoadPage() override;
  void LeavePage(const std::string& name) override;

 private:
  /// The agent's folders as the registry tells them.
  struct AgentFolders {
    std::string data;
    std::string installed;
  };

  std::string WorkingList() const;
  bool ReadAgentFolders(AgentFolders& folders);
  /// Brings the live list into the working folder where the present source allows it; False ends ReadConfig.
  bool FetchLiveList();
  void OnImport();
  void OnConfigure();
  bool SwapIn(const std::string& live, const std::string& backup);
  void EditLiveList(const AgentFolders& folders);
  bool AgentIsValid();
  bool StoreList();
  Status StoreAgent();

  InstallerDb db_;
};

}  // namespace kw

#endif  // KITWRIGHT_PAYLOADS_FRM_COMMON_UPDATER_H_
