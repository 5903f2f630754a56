#include "pages/frm_features.h"

#include <utility>

namespace kw {
namespace {

constexpr const char* kNotVisible = " <<Not Visible>>";
constexpr const char* kInstalled = "Installed";
constexpr const char* kNotInstalled = "NotInstalled";
constexpr const char* kRequired = "Required";

}  // namespace

frmFeatures::frmFeatures(PageContext& context)
    : WizardPage(context, kName, "Features", "Label5", "Click on a feature to:", 1002),
      Label3(*this, "Label3", "\xE2\x80\xA2"),
      Label1(*this, "Label1", "Include or exclude it in the custom installation."),
      Label4(*this, "Label4", "\xE2\x80\xA2"),
      Label2(*this, "Label2", "Make the feature invisible to prevent it from being modified during setup."),
      treFeatures(*this, "treFeatures"),
      mnuFeatureState("mnuFeatureState",
                      {{"IsLocal", "Install Feature", true, false, {}},
                       {"InstallSub", "Install Feature and Sub-Features", true, false, {}},
                       {"NotLocal", "Do Not Install Feature", true, false, {}},
                       {"Invisible", "Make Feature Invisible During Setup", true, false, {}}}),
      db_(InstallerDb::Working(context.services, context.run)) {
  treFeatures.on_mouse_down = [this](ui::MouseButton button) {
    LeftButtonDown = button == ui::MouseButton::kLeft;
  };
  treFeatures.on_node_click = [this](int node) { OnFeatureClick(node); };
  mnuFeatureState.Item("IsLocal").on_click = [this] { ChosenLevel = InstallLevel; };
  mnuFeatureState.Item("InstallSub").on_click = [this] {
    ChosenLevel = InstallLevel;
    InstallSubFeatures = 1;
  };
  // 16-bit arithmetic that wraps: a level near the top becomes a negative one.
  mnuFeatureState.Item("NotLocal").on_click = [this] {
    ChosenLevel = static_cast<int16_t>(static_cast<uint16_t>(InstallLevel + 100));
  };
  mnuFeatureState.Item("Invisible").on_click = [this] {
    ui::MenuItem& item = mnuFeatureState.Item("Invisible");
    item.checked = !item.checked;
    MakeInvisible = !MakeInvisible;
    VisibilityChanged = true;
  };
  AddButtons();
}

ui::Layout frmFeatures::PageLayout() {
  using namespace ui;
  return Column({Column({Row({Place(Label3), Place(Label1, 1)}), Row({Place(Label4), Place(Label2, 1)})}),
                 Place(treFeatures, 1)},
                1);
}

Result<std::vector<frmFeatures::Feature>> frmFeatures::Features(std::string_view sql) const {
  KW_ASSIGN_OR_RETURN(const auto records, db_.QueryAll(sql));
  std::vector<Feature> features;
  for (const auto& record : records) {
    features.push_back({record->StringData(1), record->StringData(2), record->StringData(3),
                        record->IntegerData(5), record->IntegerData(6)});
    if (record->IsNull(5)) features.back().display = 0;
  }
  return features;
}

Result<std::vector<frmFeatures::Feature>> frmFeatures::ChildrenOf(const std::string& parent_key) const {
  return Features(
      "select `Feature`, `Feature_Parent`, `Title`, `Attributes`, `Display`, `Level` from `Feature` "
      "where `Feature_Parent` = '" +
      parent_key + "' and `Feature` <> '_id_feature' order by `Display`");
}

void frmFeatures::ReadConfig() {
  EnsureLoaded();
  auto level = db_.QuerySql("select `Value` from `Property` where `Property` = 'INSTALLLEVEL'");
  if (!Check(level.status())) return;
  InstallLevel = *level ? static_cast<int16_t>((*level)->IntegerData(1)) : int16_t{32767};
  treFeatures.Clear();
  Check(FillFeatureTree(""));
}

Status frmFeatures::FillFeatureTree(const std::string& parent_key) {
  KW_ASSIGN_OR_RETURN(const auto features, ChildrenOf(parent_key));
  for (const Feature& feature : features) {
    if (feature.title == kRequired) continue;
    ui::TreeNode node;
    node.key = feature.key;
    node.text = feature.title;
    node.parent = feature.parent.empty() ? -1 : treFeatures.Find(feature.parent);
    if (InstallLevel >= feature.level) {
      node.image = kInstalled;
    } else {
      node.image = kNotInstalled;
      const std::string page = FeatureToPageName(feature.key, false);
      if (!page.empty()) navigator_.SetPageFeatureOff(page, true);
    }
    treFeatures.Add(std::move(node));
    KW_RETURN_IF_ERROR(FillFeatureTree(feature.key));
  }
  return {};
}

void frmFeatures::OnFeatureClick(int node) {
  if (!LeftButtonDown) return;
  const ui::TreeNode& item = treFeatures.Node(node);
  MakeInvisible = item.tag == kNotVisible;
  mnuFeatureState.Item("Invisible").checked = MakeInvisible;
  const bool any_command = item.key != "Console";
  for (const char* name : {"NotLocal", "IsLocal", "Invisible"})
    mnuFeatureState.Item(name).enabled = any_command;
  VisibilityChanged = false;
  ChosenLevel = -1;
  InstallSubFeatures = 0;  // a command that failed on the way leaves it set
  ShowPopup(mnuFeatureState);
  Check(RunCommand(node));
}

Status frmFeatures::RunCommand(int node) {
  if (VisibilityChanged) return ApplyVisibility(node);
  if (ChosenLevel == -1) return {};
  if (ChosenLevel > InstallLevel) {
    const std::string page = FeatureToPageName(treFeatures.Node(node).key, false);
    const bool proceed = page.empty() || !navigator_.PageIsConfigured(page) ||
                         services_.dialogs->Question(
                             "You may have already customized the settings for this feature.  Your "
                             "customized settings cannot be used if the feature is not installed.  Would you "
                             "like to disable installation of this feature anyway?",
                             {platform::Answer::kYes, platform::Answer::kNo}, platform::Answer::kYes,
                             "") == platform::Answer::kYes;
    if (proceed) return DisableBranch(node, page);
    // After the answer No the row still gets the level that was picked, while the item shows "Installed".
  }
  return InstallBranch(node);
}

Status frmFeatures::DisableBranch(int node, const std::string& page) {
  const std::string key = treFeatures.Node(node).key;
  KW_RETURN_IF_ERROR(SetImage(key, kNotInstalled));
  KW_RETURN_IF_ERROR(SetLevel(key, ChosenLevel));
  KW_RETURN_IF_ERROR(ApplyLevelToChildren(key));
  if (!page.empty()) {
    navigator_.SetPageFeatureOff(page, true);
    RefillPageTree();
  }
  return {};
}

Status frmFeatures::InstallBranch(int node) {
  const std::string key = treFeatures.Node(node).key;
  KW_RETURN_IF_ERROR(SetImage(key, kInstalled));
  KW_RETURN_IF_ERROR(SetLevel(key, ChosenLevel));
  const int parent = treFeatures.Node(node).parent;
  if (parent >= 0) KW_RETURN_IF_ERROR(EnsureParentsInstalled(treFeatures.Node(parent).key));
  if (InstallSubFeatures == 1) KW_RETURN_IF_ERROR(ApplyLevelToChildren(key));
  InstallSubFeatures = 0;
  const std::string page = FeatureToPageName(key, true);
  if (!page.empty()) {
    navigator_.SetPageFeatureOff(page, false);
  } else if (key == "Console") {
    navigator_.SetScannerPagesDisabled(false);
  } else {
    return {};
  }
  RefillPageTree();
  return {};
}

void frmFeatures::RefillPageTree() {
  navigator_.FillPageTree(TreeView1);
  Refresh();
}

Status frmFeatures::SetLevel(const std::string& key, int level) const {
  return db_.RunSql("update `Feature` set `Level` = " + std::to_string(level) + " where `Feature` = '" + key +
                    "'");
}

Status frmFeatures::SetImage(const std::string& key, const char* image) {
  const int index = treFeatures.Find(key);
  if (index < 0) return {kErrorInvalidParameter, "The feature tree has no item \"" + key + "\"."};
  ui::TreeNode node = treFeatures.Node(index);
  node.image = image;
  treFeatures.Update(index, std::move(node));
  return {};
}

Status frmFeatures::ApplyLevelToChildren(const std::string& parent_key) {
  KW_ASSIGN_OR_RETURN(const auto features, ChildrenOf(parent_key));
  for (const Feature& feature : features) {
    KW_RETURN_IF_ERROR(SetImage(feature.key, ChosenLevel <= InstallLevel ? kInstalled : kNotInstalled));
    KW_RETURN_IF_ERROR(SetLevel(feature.key, ChosenLevel));
    KW_RETURN_IF_ERROR(ApplyLevelToChildren(feature.key));
  }
  return {};
}

Status frmFeatures::EnsureParentsInstalled(const std::string& feature_key) {
  KW_ASSIGN_OR_RETURN(
      const auto features,
      Features("select `Feature`, `Feature_Parent`, `Title`, `Attributes`, `Display`, `Level` "
               "from `Feature` where `Feature` = '" +
               feature_key + "' "));
  if (features.empty()) return {};
  if (InstallLevel < features[0].level) {
    KW_RETURN_IF_ERROR(SetImage(feature_key, kInstalled));
    KW_RETURN_IF_ERROR(SetLevel(feature_key, InstallLevel));
  }
  return EnsureParentsInstalled(features[0].parent);
}

Status frmFeatures::ApplyVisibility(int node) {
  ui::TreeNode item = treFeatures.Node(node);
  KW_ASSIGN_OR_RETURN(std::shared_ptr<platform::Database> source,
                      run_.Installer->OpenDatabase(run_.SourceMsiPath, platform::OpenMode::kReadOnly));
  const InstallerDb source_db(services_, run_.Installer, source);
  KW_ASSIGN_OR_RETURN(const auto record, source_db.QuerySql("select `Title`, `Display` from `Feature` "
                                                            "where `Feature` = '" +
                                                            item.key + "'"));
  if (!record) return {};
  const std::string title = record->StringData(1);
  if (MakeInvisible) {
    item.tag = kNotVisible;
    KW_RETURN_IF_ERROR(db_.RunSql("update `Feature` set `Display` = 0 where `Feature` = '" + item.key + "'"));
  } else {
    item.tag.clear();
    KW_RETURN_IF_ERROR(db_.RunSql("update `Feature` set `Display` = '" + record->StringData(2) +
                                  "' where `Feature` = '" + item.key + "'"));
  }
  item.text = title + item.tag;
  treFeatures.Update(node, std::move(item));
  return {};
}

void frmFeatures::LeavePage(const std::string& name) {
  const auto visible = db_.QuerySql("select * from `Feature` where `Display` <> 0 and `Feature_Parent` = ''");
  if (!Check(visible.status())) return;
  if (!*visible) {
    services_.dialogs->Message("Please make at least one top feature visible.");
    return;
  }
  navigator_.GoToPage(name);
}

void frmFeatures::OnBack() { navigator_.GoToPage(navigator_.PreviousPageName()); }

void frmFeatures::AddChoices(ui::ListBox& list) {
  Check(AddFeatureLines(list, "", 0));
  list.Add("");
}

Status frmFeatures::AddFeatureLines(ui::ListBox& list, const std::string& parent_key, int depth) {
  KW_ASSIGN_OR_RETURN(const auto features, ChildrenOf(parent_key));
  for (const Feature& feature : features) {
    if (feature.title == kRequired) continue;
    const int row_depth = depth + (feature.parent.empty() ? 0 : 1);
    std::string line(static_cast<size_t>(row_depth) + 1, '\t');
    line += feature.title;
    if (InstallLevel >= feature.level) {
      line += ": Installed";
      if (feature.display == 0) line += "<<Not Visible>>";
    } else {
      line += ": NotInstalled";
    }
    list.Add(std::move(line));
    KW_RETURN_IF_ERROR(AddFeatureLines(list, feature.key, row_depth));
  }
  return {};
}

}  // namespace kw
