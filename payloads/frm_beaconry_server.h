#ifndef KITWRIGHT_PAYLOADS_FRM_BEACONRY_SERVER_H_
#define KITWRIGHT_PAYLOADS_FRM_BEACONRY_SERVER_H_

#include <string>

#include "package/installer_db.h"
#include "shell/page_contract.h"

namespace kw {

/// Lets the product package carry the alert server, a nested installer package in a folder of its own. The
/// page works on a private copy of the nested database.
class frmBeaconryServer : public WizardPage, public PayloadPage {
 public:
  static constexpr const char* kName = "frmBeaconryServer";
  explicit frmBeaconryServer(PageContext& context);

  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;
  bool SaveConfig() override;
  void AdjustControls();

  ui::CheckBox InstallBeaconry;
  ui::Option ServersAndWorkstations;
  ui::Option ServersOnly;
  ui::Label EnterSourceDirectory;
  ui::TextBox SourceDir;
  ui::Button SourceBrowse;
  ui::Option UseDefaultDirectory;
  ui::Option SpecifyCustomDirectory;
  ui::TextBox InstallDirectory;
  ui::Button InstallBrowse;
  ui::Frame BeaconryServiceAccount;
  ui::CheckBox UseSystemAccountForBeaconry;
  ui::Label UserName;
  ui::TextBox BeaconryUserName;
  ui::Label Password;
  ui::TextBox BeaconryPassword;
  ui::Label AccountRightsDescription;

 protected:
  ui::Layout PageLayout() override;
  void LoadPage() override;
  /// Validates and opens a fresh copy of the nested package on every way out.
  void LeavePage(const std::string& name) override;

 private:
  enum class Opened { kYes, kNoCopy, kNoDatabase, kOtherProduct };

  bool ReadNestedPackage();
  Result<Opened> OpenNestedPackage();
  void ReadNestedChoices();
  bool FoldersAreValid();
  bool AccountIsValid();
  bool TakeNestedPackage();
  Status WriteChoices();
  Status WriteNestedChoices();
  bool CopyNestedFiles();

  InstallerDb db_;
  InstallerDb nested_;
  std::string EncodedPassword;
};

/// The stored form of a service account's password; "" for one of more than fifteen characters. `clear` and
/// the result are UTF-8; the operation works on 8-bit text in `code_page`.
std::string EncodePassword(const std::string& clear, int code_page);

}  // namespace kw

#endif  // KITWRIGHT_PAYLOADS_FRM_BEACONRY_SERVER_H_
