#ifndef KITWRIGHT_PAGES_FRM_FEATURES_H_
#define KITWRIGHT_PAGES_FRM_FEATURES_H_

#include <cstdint>
#include <string>
#include <vector>

#include "package/installer_db.h"
#include "shell/page_contract.h"

namespace kw {

/// Shows the package's features as a tree and lets the administrator choose, per feature, whether it installs
/// by default and whether the setup shows it. Every command is written into the table Feature at once.
class frmFeatures : public WizardPage {
 public:
  static constexpr const char* kName = "frmFeatures";
  explicit frmFeatures(PageContext& context);

  /// Reloads the level and the whole tree from the working database.
  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;


  ui::Label Label3;
  ui::Label Label1;
  ui::Label Label4;
  ui::Label Label2;
  ui::Tree treFeatures;
  ui::PopupMenu mnuFeatureState;

 protected:
  ui::Layout PageLayout() override;
  void LeavePage(const std::string& name) override;
  void OnBack() override;

 private:
  struct Feature {
    std::string key;
    std::string parent;
    std::string title;
    int32_t display = 0;
    int32_t level = 0;
  };

  Result<std::vector<Feature>> Features(std::string_view sql) const;
  Result<std::vector<Feature>> ChildrenOf(const std::string& parent_key) const;
  Status FillFeatureTree(const std::string& parent_key);
  Status AddFeatureLines(ui::ListBox& list, const std::string& parent_key, int depth);
  Status ApplyLevelToChildren(const std::string& parent_key);
  Status EnsureParentsInstalled(const std::string& feature_key);
  Status ApplyVisibility(int node);
  Status SetLevel(const std::string& key, int level) const;
  Status SetImage(const std::string& key, const char* image);
  void OnFeatureClick(int node);
  Status RunCommand(int node);
  Status DisableBranch(int node, const std::string& page);
  Status InstallBranch(int node);
  void RefillPageTree();

  InstallerDb db_;
  int16_t InstallLevel = 0;
  int16_t ChosenLevel = -1;
  int16_t InstallSubFeatures = 0;
  bool VisibilityChanged = false;
  bool MakeInvisible = false;
  bool LeftButtonDown = false;
};

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FRM_FEATURES_H_
