#ifndef KITWRIGHT_PAYLOADS_FRM_DATS_AND_ENGINE_H_
#define KITWRIGHT_PAYLOADS_FRM_DATS_AND_ENGINE_H_

#include <string>

#include "package/installer_db.h"
#include "shell/page_contract.h"

namespace kw {

/// Which scan engine and which virus definition files the package carries: those of the source, or new ones
/// from ZIP archives.
class frmDATsAndEngine : public WizardPage, public PayloadPage {
 public:
  static constexpr const char* kName = "frmDATsAndEngine";
  explicit frmDATsAndEngine(PageContext& context);

  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;
  bool SaveConfig() override;
  /// Final copy of the engine's text file beside the package.
  void CopySigTermsTxt();
  void AdjustControls();

  // What the build records, and where it takes the files from.
  std::string DATDate;
  std::string DATVersion;
  std::string EngineVersion;
  std::string DATFolder;
  std::string EngineFolder;

  ui::Option FromSource;
  ui::Option SeparateZIPs;
  ui::CheckBox SpecifyDATZIP;
  ui::TextBox DATPath;
  ui::Button DATPathBrowse;
  ui::CheckBox SpecifyEngineZIP;
  ui::TextBox EnginePath;
  ui::Button EnginePathBrowse;

 protected:
  ui::Layout PageLayout() override;
  void LoadPage() override;
  /// Checks and unpacks the archives on every way out.
  void LeavePage(const std::string& name) override;

 private:
  /// What differs between the two archives.
  struct Archive;

  std::string SourceFilesFolder() const;
  Status ReadVersions710(bool& complete);
  bool KeepSourceFiles();
  /// Null on success; on a failure, which has been told, the box to go to (or the page's own first box).
  bool ExtractZIPFiles(ui::TextBox*& focus);
  bool CheckChoice(const Archive& archive, ui::TextBox*& focus);
  bool Unpack(const Archive& archive, ui::TextBox*& focus);
  bool CallUnzip(const std::string& path, const std::string& folder);
  void DeleteUnpacked();
  bool ReadDATVersion(const std::string& folder, std::string& version);
  bool ReadDATDate(const std::string& folder, std::string& date);
  bool SaveBesidePackage();
  Status SaveInPackage();

  InstallerDb db_;
  std::string SourceDATDate;
  std::string SourceDATVersion;
  std::string SourceEngineVersion;
};

}  // namespace kw

#endif  // KITWRIGHT_PAYLOADS_FRM_DATS_AND_ENGINE_H_
