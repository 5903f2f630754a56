// Files and programs added, changed, taken away, built and read back by chance. After every step the
// package's tables hold together: keys, components and their numbers, the order of entries, and what the
// pages show.

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "base/text.h"
#include "pages/frm_add_program.h"
#include "pages/frm_additional_file.h"
#include "pages/frm_additional_files.h"
#include "pages/frm_programs.h"
#include "pages/open_package_test_support.h"

namespace kw {
namespace {

using testing::Answer;
using ::testing::ElementsAre;
using testing::FakeCommand;
using testing::OpenPackageFixture;

constexpr int kSteps = 45;
constexpr int kNoncompressed = 8192;

struct RandomEdits : OpenPackageFixture, ::testing::TestWithParam<unsigned> {
  RandomEdits() : random(GetParam()) {
    for (int i = 0; i < 9; ++i) {
      machine.files.AddFile("C:\\Files\\file" + std::to_string(i) + ".txt",
                            std::string(static_cast<size_t>(i + 1), 'f'));
      machine.files.AddFile("C:\\Tools\\tool" + std::to_string(i) + ".exe", "tool " + std::to_string(i));
    }
    // One that the package has in this place.
    machine.files.AddFile("C:\\Files\\Main.EXE", "ours");
    machine.processes.On("C:\\Kitwright\\MakeCab.exe", [this](const FakeCommand&) {
      machine.files.AddFile("C:\\Temp\\run\\Cab1.CAB", machine.files.Content("C:\\Temp\\run\\Cab1.DDF"));
    });
    Sql("insert into `Directory` (`Directory`, `Directory_Parent`, `DefaultDir`) values ('WindowsFolder', "
        "'TARGETDIR', 'WINDIR|Windows')");
    // A file outside the cabinet keeps its number.
    Sql("insert into `File` (`File`, `Component_`, `FileName`, `FileSize`, `Attributes`, `Sequence`) values "
        "('loose', 'Main', 'loose.txt', 1, 8192, 3)");
    Sql("update `Media` set `LastSequence` = 3");
    files().ReadConfig();
    programs().ReadConfig();
  }
  frmAdditionalFiles& files() { return table.Get<frmAdditionalFiles>(); }
  frmPrograms& programs() { return table.Get<frmPrograms>(); }
  size_t Below(size_t count) { return random() % count; }
  std::string OneOf(const std::vector<std::string>& list) { return list[Below(list.size())]; }
  /// A data row of a grid, or 0 when there is none.
  int AnyRow(ui::Grid& grid) {
    return grid.Rows() > 2 ? 1 + static_cast<int>(Below(static_cast<size_t>(grid.Rows() - 2))) : 0;
  }
  void Do(const std::string& what) { done += what + "; "; }

  /// Whether an added file has this name at this place. Drives are one place: the build compares the paths of
  /// directories, which do not tell them apart, and of two added files of one name in one place it keeps one
  /// row.
  bool Taken(const std::string& file, const std::string& folder, const std::string& subfolders, int but) {
    const auto place = [](const std::string& text) {
      return text.ends_with(":") ? std::string("drive") : text;
    };
    for (int row = 1; row + 1 < files().Grid.Rows(); ++row) {
      const std::string shown = files().Grid.Cell(row, 1);
      if (row != but && shown.substr(shown.find_last_of("\\]") + 1) == file &&
          place(files().Grid.Cell(row, 2)) == place(folder) && files().Grid.Cell(row, 3) == subfolders) {
        return true;
      }
    }
    return false;
  }
  void OnFileDialog() {
    host.modals.push_back([this](ui::Form&) {
      auto& dialog = table.Get<frmAdditionalFile>();
      const bool in_package = !dialog.SourceFile.Enabled();
      const int row = dialog.AddingNew ? 0 : files().Grid.SelectedRow();
      for (;;) {
        std::string file = Below(8) == 0 ? "Main.EXE" : "file" + std::to_string(Below(9)) + ".txt";
        if (in_package) file = dialog.SourceFile.Text().substr(dialog.SourceFile.Text().find(']') + 1);
        const std::string folder = OneOf({"Product Install", "Windows", "C:", "D:"});
        const std::string subfolders = OneOf({"", "", "a", "a\\b", "a b\\c\\d"});
        if (Taken(file, folder, subfolders, row)) continue;
        if (!in_package) dialog.SourceFile.UserType("C:\\Files\\" + file);
        dialog.DestinationFolder.UserPick(dialog.GetDestinationFolderIndex(folder));
        dialog.SubFolders.UserType(subfolders);
        break;
      }
      Do(dialog.SourceFile.Text() + " to " + dialog.DestinationFolder.Text() + " " +
         dialog.SubFolders.Text());
      dialog.cmdOK.UserClick();
      EXPECT_FALSE(dialog.Visible());
    });
  }
  void OnProgramDialog() {
    host.modals.push_back([this](ui::Form& form) {
      auto& dialog = dynamic_cast<frmAddProgram&>(form);
      if (dialog.ExeFileName.Enabled())
        dialog.ExeFileName.UserType("C:\\Tools\\tool" + std::to_string(Below(9)) + ".exe");
      dialog.Parameters.UserType(OneOf({"", "/s", "two \"words\""}));
      Do(dialog.ExeFileName.Text());
      // Asked only when the program is in the list already.
      machine.dialogs.answers = {OneOf({"add", "leave"}) == "add" ? Answer::kOk : Answer::kCancel};
      dialog.OK.UserClick();
      if (dialog.Visible()) dialog.Cancel.UserClick();
      machine.dialogs.answers.clear();
    });
  }
  template <typename Page>
  void Change(Page& page, const std::string& caption, void (RandomEdits::*dialog)()) {
    if (!page.Visible()) Show<Page>(caption);
    const int row = AnyRow(page.Grid);
    const size_t choice = Below(5);
    if (row == 0 || choice < 2) {
      Do("add");
      (this->*dialog)();
      page.NewButton.UserClick();
      return;
    }
    page.Grid.UserPick(row);
    if (choice < 4) {
      Do("edit " + std::to_string(row));
      (this->*dialog)();
      page.EditButton.UserClick();
    } else {
      Do("delete " + std::to_string(row));
      machine.dialogs.answers = {Below(4) == 0 ? Answer::kCancel : Answer::kOk};
      page.DeleteButton.UserClick();
    }
  }
  void LeavePrograms() {
    if (programs().Visible()) programs().Next->UserClick();
  }
  /// The build's part, and the package opened again as the next run does.
  void BuildAndReadBack() {
    Do("build");
    LeavePrograms();
    EXPECT_TRUE(files().CreateCabFile());
    CheckBuilt();
    run.WorkingDatabase.reset();
    auto opened = run.Installer->OpenDatabase(run.WorkingMsiPath, platform::OpenMode::kDirect);
    ASSERT_TRUE(opened.ok()) << opened.status().message();
    run.WorkingDatabase = *opened;
    table.ReloadPages();
    files().ReadConfig();
    programs().ReadConfig();
  }

  void CheckTables() {
    // Each added file is one file in one component of the console, and nothing of a removed one stays.
    std::set<std::string> keys;
    std::set<std::string> sequences;
    int highest = 0;
    for (const std::string& line : Rows("select `File`, `Component_`, `Sequence` from `File`")) {
      const std::vector<std::string> fields = Split(line, '|');
      EXPECT_TRUE(sequences.insert(fields[2]).second) << "two files have the number " << fields[2];
      highest = std::max(highest, std::stoi(fields[2]));
      if (!fields[0].starts_with("_id_")) continue;
      EXPECT_EQ(fields[0], fields[1]);
      keys.insert(fields[0]);
    }
    EXPECT_GE(files().LastSequence, highest);
    std::map<std::string, std::string> parents;
    for (const std::string& line : Rows("select `Directory`, `Directory_Parent` from `Directory`")) {
      const std::vector<std::string> fields = Split(line, '|');
      parents[fields[0]] = fields[1];
    }
    std::set<std::string> components;
    std::set<std::string> ids;
    for (const std::string& line : Rows("select `Component`, `ComponentId`, `Directory_` from `Component`")) {
      const std::vector<std::string> fields = Split(line, '|');
      EXPECT_TRUE(ids.insert(fields[1]).second) << "two components have the id " << fields[1];
      if (!fields[0].starts_with("_id_")) continue;
      components.insert(fields[0]);
      EXPECT_THAT(fields[1], ::testing::MatchesRegex("\\{\\w+-\\w+-\\w+-\\w+-\\w+\\}"));
      std::string directory = fields[2];
      for (int depth = 0; directory != "TARGETDIR"; ++depth) {
        ASSERT_LT(depth, 10) << "no way to the root from " << fields[2];
        ASSERT_EQ(parents.count(directory), 1u) << directory;
        directory = parents[directory];
      }
    }
    EXPECT_EQ(components, keys);
    std::set<std::string> featured;
    for (const std::string& line : Rows("select `Feature_`, `Component_` from `FeatureComponents`")) {
      const std::vector<std::string> fields = Split(line, '|');
      if (!fields[1].starts_with("_id_")) continue;
      EXPECT_EQ(fields[0], "Console");
      featured.insert(fields[1]);
    }
    EXPECT_EQ(featured, keys);
    std::set<std::string> shown;
    for (int row = 1; row + 1 < files().Grid.Rows(); ++row) shown.insert(files().Grid.Cell(row, 4));
    EXPECT_EQ(shown, keys);
  }
  /// What leaving the page has written: the grid's programs, numbered in its order, to run in that order.
  void CheckPrograms() {
    std::vector<std::string> wanted;
    for (int row = 1; row + 1 < programs().Grid.Rows(); ++row) {
      const std::string path = programs().Grid.Cell(row, 1);
      const std::string name = path.substr(path.find_last_of("\\]") + 1);
      wanted.push_back(std::to_string(row) + "_" + name + "|" + programs().Grid.Cell(row, 2));
    }
    std::vector<std::string> binaries;
    for (const std::string& name : Rows("select `Name` from `Binary`")) {
      if (name.starts_with("id_RunFileBin_")) binaries.push_back(name);
    }
    EXPECT_EQ(binaries.size(), wanted.size());
    std::vector<std::string> ran;
    int last = 0;
    for (const std::string& line :
         Rows("select `Action`, `Sequence` from `InstallExecuteSequence` order by `Sequence`")) {
      const std::vector<std::string> fields = Split(line, '|');
      if (!fields[0].starts_with("id_RunFileCust_")) continue;
      EXPECT_GT(std::stoi(fields[1]), last);
      last = std::stoi(fields[1]);
      EXPECT_LT(last, 6600) << "behind the end of the installation";
      const std::string tail = fields[0].substr(std::string("id_RunFileCust_").size());
      const auto actions =
          Rows("select `Type`, `Source`, `Target` from `CustomAction` where `Action` = ?", {fields[0]});
      ASSERT_EQ(actions.size(), 1u);
      const std::vector<std::string> action = Split(actions[0], '|');
      EXPECT_EQ(action[0], "1090");
      EXPECT_EQ(action[1], "id_RunFileBin_" + tail);
      EXPECT_EQ(std::count(binaries.begin(), binaries.end(), action[1]), 1);
      ran.push_back(tail + "|" + action[2]);
    }
    EXPECT_EQ(ran, wanted);
  }
  /// What a build leaves: one cabinet whose entries have the order of the files' numbers.
  void CheckBuilt() {
    const std::vector<std::string> ddf = Split(machine.files.Content("C:\\Temp\\run\\Cab1.DDF"), '\n');
    std::vector<std::string> entries;
    for (const std::string& line : ddf) {
      if (line.starts_with("\"")) entries.push_back(Split(line, '"')[3]);
    }
    std::vector<std::string> numbered;
    std::string last;
    for (const std::string& line :
         Rows("select `File`, `Attributes`, `Sequence` from `File` order by `Sequence`")) {
      const std::vector<std::string> fields = Split(line, '|');
      if (std::stoi(fields[1]) & kNoncompressed) {
        EXPECT_EQ(fields[2], "3") << "a file outside the cabinet keeps its number";
        continue;
      }
      EXPECT_GT(std::stoi(fields[2]), 3);
      numbered.push_back(fields[0]);
      last = fields[2];
    }
    EXPECT_EQ(entries, numbered);
    EXPECT_THAT(Rows("select `DiskId`, `LastSequence`, `Cabinet` from `Media`"),
                ElementsAre("1|" + (last.empty() ? std::string("3") : last) + "|#Cabs.Cab1.CAB"));
    EXPECT_THAT(Rows("select `Name` from `Cabs`"), ElementsAre("Cab1.CAB"));
  }

  std::mt19937 random;
  std::string done;
};

TEST_P(RandomEdits, KeepThePackageConsistent) {
  for (int step = 0; step < kSteps; ++step) {
    const size_t choice = Below(8);
    if (choice == 0) {
      BuildAndReadBack();
    } else if (choice < 5) {
      LeavePrograms();
      Change(files(), "Additional Files", &RandomEdits::OnFileDialog);
    } else {
      Change(programs(), "Programs", &RandomEdits::OnProgramDialog);
      if (Below(3) == 0) {
        Do("next");
        LeavePrograms();
        CheckPrograms();
      }
    }
    CheckTables();
    if (HasFailure()) {
      FAIL() << "after " << done;
    }
  }
  BuildAndReadBack();
  CheckTables();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEdits, ::testing::Range(1u, 41u));

}  // namespace
}  // namespace kw
