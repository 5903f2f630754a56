// Features and patches chosen by chance, built and read back. After every step the table Feature holds what
// the tree shows, nothing but levels and visibility has changed in it, and the patches stand in Setup.ini in
// the order of their list.

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "base/path.h"
#include "base/text.h"
#include "pages/frm_features.h"
#include "pages/open_package_test_support.h"
#include "payloads/frm_patch_files.h"

namespace kw {
namespace {

using testing::Answer;
using testing::OpenPackageFixture;

constexpr int kSteps = 60;
constexpr int kInstallLevel = 100;

struct RandomChoices : OpenPackageFixture, ::testing::TestWithParam<unsigned> {
  struct Feature {
    std::string parent;
    int display = 0;
    int level = 0;
  };

  RandomChoices() : random(GetParam()) {
    const char* const features[][4] = {{"EmailScan", "Console", "E-mail", "20"},
                                       {"OnAccessScanner", "Console", "On-access", "10"},
                                       {"ShellExtensions", "OnAccessScanner", "Shell", "1"},
                                       {"Deep", "ShellExtensions", "Deep", "3"},
                                       {"Extras", "", "Extras", "30"},
                                       {"Part", "Extras", "Part", "7"}};
    for (const auto& [key, parent, title, display] : features) {
      SqlInSource(
          std::string("insert into `Feature` (`Feature`, `Feature_Parent`, `Title`, `Display`, `Level`, "
                      "`Attributes`) values ('") +
          key + "', '" + parent + "', '" + title + "', " + display + ", 1, 0)");
    }
    Reopen();
    for (int i = 0; i < 6; ++i) {
      const std::string name = "fix" + std::to_string(i % 4) + ".msp";
      machine.files.AddFile("C:\\P" + std::to_string(i / 4) + "\\" + name, "patch " + std::to_string(i));
    }
    features_page().ReadConfig();
    patches_page().ReadConfig();
    source = Features();
    unchanging = Unchanging();
  }
  frmFeatures& features_page() { return table.Get<frmFeatures>(); }
  frmPatchFiles& patches_page() { return table.Get<frmPatchFiles>(); }
  size_t Below(size_t count) { return random() % count; }
  void Do(const std::string& what) { done += what + "; "; }

  std::map<std::string, Feature> Features() {
    std::map<std::string, Feature> features;
    for (const std::string& line :
         Rows("select `Feature`, `Feature_Parent`, `Display`, `Level` from `Feature`")) {
      const std::vector<std::string> fields = Split(line, '|');
      features[fields[0]] = {fields[1], std::stoi(fields[2]), std::stoi(fields[3])};
    }
    return features;
  }
  /// What no choice of features or patches may change.
  std::vector<std::string> Unchanging() {
    std::vector<std::string> rows;
    for (const char* query :
         {"select `Feature`, `Feature_Parent`, `Title`, `Attributes` from `Feature`",
          "select `Feature_`, `Component_` from `FeatureComponents`",
          "select `Component`, `ComponentId` from `Component`", "select `File`, `Sequence` from `File`",
          "select `DiskId`, `LastSequence` from `Media`"}) {
      for (const std::string& row : Rows(query)) rows.push_back(row);
    }
    return rows;
  }

  void ChangeFeature() {
    if (!features_page().Visible()) Show<frmFeatures>("Features");
    ui::Tree& tree = features_page().treFeatures;
    const int node = static_cast<int>(Below(static_cast<size_t>(tree.Count())));
    const std::string key = tree.Node(node).key;
    static const char* const kCommands[] = {"Install Feature", "Install Feature and Sub-Features",
                                            "Do Not Install Feature", "Make Feature Invisible During Setup"};
    // The console itself knows one command.
    const std::string command = kCommands[key == "Console" ? 1 : Below(4)];
    Do(key + ": " + command);
    const auto before = Features();
    const bool was_marked = marked.contains(key);
    host.menu_choices.push_back(command);
    machine.dialogs.answers = {Answer::kYes};
    tree.UserClickNode(node, ui::MouseButton::kLeft);
    machine.dialogs.answers.clear();
    const auto after = Features();
    if (command == kCommands[3]) {
      if (was_marked) {
        marked.erase(key);
      } else {
        marked.insert(key);
      }
      EXPECT_EQ(after.at(key).display, was_marked ? source.at(key).display : 0);
      return;
    }
    const bool installs = command != kCommands[2];
    EXPECT_EQ(after.at(key).level <= kInstallLevel, installs);
    for (const auto& [name, feature] : after) {
      EXPECT_EQ(feature.display, before.at(name).display) << name;
      bool below = false;
      for (std::string up = feature.parent; !up.empty(); up = after.at(up).parent) below = below || up == key;
      if (below && command != kCommands[0]) {
        EXPECT_EQ(feature.level <= kInstallLevel, installs) << name;
      }
    }
  }
  void ChangePatches() {
    if (!patches_page().Visible()) Show<frmPatchFiles>("Patch Files");
    frmPatchFiles& page = patches_page();
    const size_t choice = Below(5);
    const std::string name = "C:\\P" + std::to_string(Below(2)) + "\\fix" + std::to_string(Below(4)) + ".msp";
    const bool there = machine.files.FileExists(name);
    if (patches.empty() || choice < 2) {
      const bool known = std::count(patches.begin(), patches.end(), ToUpper(name)) != 0;
      if (known || !there) return;
      Do("add " + name);
      machine.dialogs.files = {name};
      page.Add.UserClick();
      patches.push_back(ToUpper(name));
      return;
    }
    const size_t line = Below(patches.size());
    page.PatchFiles.UserPick(static_cast<int>(line));
    if (choice < 4) {
      const auto other = std::find(patches.begin(), patches.end(), ToUpper(name));
      const bool elsewhere =
          other != patches.end() && other != patches.begin() + static_cast<std::ptrdiff_t>(line);
      if (elsewhere || !there) return;
      Do("edit " + std::to_string(line) + " " + name);
      machine.dialogs.files = {name};
      page.Edit.UserClick();
      patches[line] = ToUpper(name);
    } else {
      Do("delete " + std::to_string(line));
      const bool sure = Below(4) != 0;
      machine.dialogs.answers = {sure ? Answer::kOk : Answer::kCancel};
      page.Delete.UserClick();
      if (sure) patches.erase(patches.begin() + static_cast<std::ptrdiff_t>(line));
    }
  }
  /// What the build makes of the patches, and the result opened again as the next run does.
  void BuildAndReadBack() {
    Do("build");
    EXPECT_TRUE(patches_page().SaveConfig());
    std::string ini = "[Startup]\r\nProduct=Kestrane\r\n";
    std::map<std::string, std::string> last;
    for (size_t i = 0; i < patches.size(); ++i) {
      ini += "PatchFile" + std::to_string(i) + "=" + FileNameOf(patches[i]) + "\r\n";
      last[FileNameOf(patches[i])] = machine.files.Content(patches[i]);
    }
    EXPECT_EQ(machine.files.Content(run.WorkingSetupIniPath), ini);
    for (const auto& [name, content] : last)
      EXPECT_EQ(machine.files.Content(run.DestinationFolder + "\\" + name), content) << name;
    run.WorkingDatabase.reset();
    auto opened = run.Installer->OpenDatabase(run.WorkingMsiPath, platform::OpenMode::kDirect);
    ASSERT_TRUE(opened.ok()) << opened.status().message();
    run.WorkingDatabase = *opened;
    run.SourceFolder = run.DestinationFolder;
    table.ReloadPages();
    patches_page().PatchFiles.Clear();
    features_page().ReadConfig();
    patches_page().ReadConfig();
    for (std::string& patch : patches) patch = run.SourceFolder + "\\" + FileNameOf(patch);
    // The tree marks only what was hidden in this run.
    marked.clear();
  }

  void Check() {
    EXPECT_EQ(Unchanging(), unchanging);
    const ui::Tree& tree = features_page().treFeatures;
    const auto features = Features();
    EXPECT_EQ(static_cast<size_t>(tree.Count()), features.size());
    for (int node = 0; node < tree.Count(); ++node) {
      const ui::TreeNode& item = tree.Node(node);
      const Feature& feature = features.at(item.key);
      EXPECT_EQ(item.image, feature.level <= kInstallLevel ? "Installed" : "NotInstalled") << item.key;
      EXPECT_EQ(!item.tag.empty(), marked.contains(item.key)) << item.key;
      EXPECT_TRUE(!marked.contains(item.key) || feature.display == 0) << item.key;
      EXPECT_TRUE(feature.display == 0 || feature.display == source.at(item.key).display) << item.key;
      const bool parent_stays = feature.parent.empty() || features.at(feature.parent).level <= kInstallLevel;
      EXPECT_TRUE(parent_stays || feature.level > kInstallLevel) << item.key << " without its parent";
    }
    EXPECT_EQ(patches_page().PatchFiles.Items(), patches);
    EXPECT_EQ(patches_page().Delete.Enabled(), !patches.empty());
  }

  std::mt19937 random;
  std::map<std::string, Feature> source;
  std::vector<std::string> unchanging;
  std::set<std::string> marked;  ///< features that the tree shows as invisible
  std::vector<std::string> patches;
  std::string done;
};

TEST_P(RandomChoices, KeepThePackageConsistent) {
  ASSERT_EQ(Property("INSTALLLEVEL"), std::to_string(kInstallLevel));
  for (int step = 0; step < kSteps; ++step) {
    const size_t choice = Below(9);
    if (choice == 0) {
      BuildAndReadBack();
    } else if (choice < 5) {
      ChangeFeature();
    } else {
      ChangePatches();
    }
    Check();
    if (HasFailure()) FAIL() << "after " << done;
  }
  BuildAndReadBack();
  Check();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomChoices, ::testing::Range(1u, 31u));

}  // namespace
}  // namespace kw
