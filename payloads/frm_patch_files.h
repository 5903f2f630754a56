#ifndef KITWRIGHT_PAYLOADS_FRM_PATCH_FILES_H_
#define KITWRIGHT_PAYLOADS_FRM_PATCH_FILES_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// The patches that the package is to install. The list holds full paths; Setup.ini gets base names.
class frmPatchFiles : public WizardPage, public PayloadPage {
 public:
  static constexpr const char* kName = "frmPatchFiles";
  explicit frmPatchFiles(PageContext& context);

  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;
  bool SaveConfig() override;

  ui::ListBox PatchFiles;
  ui::Button Add;
  ui::Button Edit;
  ui::Button Delete;

 protected:
  ui::Layout PageLayout() override;

 private:
  std::string BrowsePatchFile(const std::string& current_path, bool& cancelled);
  /// Why a name cannot be taken, or null. `skip` is a line that does not count as a duplicate.
  const char* Refusal(const std::string& name, int skip) const;
  /// Asks for a patch until one passes; "" when the person gave up.
  std::string AskForPatch(const std::string& current_path, int skip);
  void OnAdd();
  void OnEdit();
  void OnDelete();
  void UpdateListExtent();
  void EnableButtons(bool enabled);
};

}  // namespace kw

#endif  // KITWRIGHT_PAYLOADS_FRM_PATCH_FILES_H_
