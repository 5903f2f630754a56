// Checks the #include lines of every folder against the table of what each may know.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Prefixes = std::vector<std::string>;

const Prefixes kPagesOfAll = {"base/",  "platform/", "ui/",       "package/", "shell/page_contract",
                              "pages/", "settings/", "payloads/", "console/"};
const Prefixes kShell = {"base/",  "platform/", "ui/",       "package/", "shell/",
                         "pages/", "settings/", "payloads/", "console/"};
const Prefixes kEverything = {""};

/// What the files below a folder, or with a path that begins so, may include; the longest entry counts. An
/// entry of the list that ends in "/" stands for the files directly in that folder.
const std::map<std::string, Prefixes> kMayInclude = {
    {"base/", {"base/"}},
    {"base/testing/", {"base/", "base/testing/"}},
    {"msi/", {"base/", "msi/"}},
    {"cabinet/", {"base/", "cabinet/"}},
    {"formats/", {"base/", "formats/"}},
    {"platform/", {"base/", "platform/"}},
    {"platform/shared/", {"base/", "msi/", "cabinet/", "formats/", "platform/", "platform/shared/"}},
    {"platform/embedded/",
     {"base/", "msi/", "cabinet/", "formats/", "platform/", "platform/shared/", "platform/embedded/"}},
    {"platform/windows/",
     {"base/", "msi/", "cabinet/", "formats/", "platform/", "platform/shared/", "platform/windows/"}},
    {"platform/testing/",
     {"base/", "base/testing/", "msi/", "cabinet/", "formats/", "platform/", "platform/shared/",
      "platform/testing/"}},
    {"ui/", {"base/", "ui/"}},
    {"ui/testing/", {"base/", "ui/", "ui/testing/"}},
    {"ui/wx/", {"base/", "resources/", "platform/", "platform/shared/", "ui/", "ui/wx/"}},
    {"ui/wx/testing/", {"base/", "ui/", "ui/wx/", "ui/wx/testing/"}},
    {"resources/", {"base/", "resources/"}},
    {"ui/drive/", {"base/", "platform/", "platform/shared/", "ui/", "ui/drive/"}},
    {"package/", {"base/", "platform/", "ui/form_host.h", "package/"}},
    {"pages/", kPagesOfAll},
    {"settings/", kPagesOfAll},
    {"payloads/", kPagesOfAll},
    {"console/", kPagesOfAll},
    {"shell/", kShell},
    {"shell/page_contract_test", kShell},
    {"shell/page_contract", {"base/", "platform/", "ui/", "package/", "shell/page_contract"}},
    {"shell/main_", kEverything},
    {"tools/",
     {"base/", "msi/", "cabinet/", "formats/", "platform/", "platform/shared/", "platform/embedded/",
      "platform/windows/", "tools/"}},
    {"sample/",
     {"base/", "msi/", "cabinet/", "formats/", "platform/", "platform/shared/", "platform/embedded/",
      "platform/windows/", "sample/", "tools/program"}},
    {"tests/", kEverything},
    {"fuzz/", kEverything},
    {"bench/", kEverything},
};

const Prefixes* RuleFor(const std::string& file) {
  const Prefixes* rule = nullptr;
  size_t longest = 0;
  for (const auto& [prefix, allowed] : kMayInclude) {
    if (file.starts_with(prefix) && prefix.size() >= longest) {
      longest = prefix.size();
      rule = &allowed;
    }
  }
  return rule;
}

bool IsTest(const std::string& file) {
  return file.find("_test.") != std::string::npos || file.find("test_support.") != std::string::npos;
}

bool MayInclude(const std::string& file, const std::string& included) {
  const Prefixes* rule = RuleFor(file);
  if (!rule) return false;
  // Tests may use the fakes of any level, and each other's helpers.
  if (IsTest(file) && (IsTest(included) || included.starts_with("base/testing/") ||
                       included.starts_with("platform/testing/") || included.starts_with("ui/testing/") ||
                       included.starts_with("ui/wx/testing/")))
    return true;
  return std::any_of(rule->begin(), rule->end(), [&](const std::string& allowed) {
    if (!included.starts_with(allowed)) return false;
    // "platform/" does not stand for "platform/embedded/".
    return !allowed.ends_with('/') || included.find('/', allowed.size()) == std::string::npos ||
           allowed == "sample/" || allowed == "tools/";
  });
}

std::vector<std::string> IncludesOf(const fs::path& path) {
  static const std::regex kInclude(R"(^\s*#\s*include\s*\"([^\"]+)\".*)");
  std::vector<std::string> found;
  std::ifstream in(path);
  std::string line;
  std::smatch match;
  while (std::getline(in, line)) {
    if (std::regex_match(line, match, kInclude)) found.push_back(match[1]);
  }
  return found;
}

bool IsSource(const fs::path& path) {
  const std::string extension = path.extension().string();
  return extension == ".cc" || extension == ".h" || extension == ".c";
}

TEST(LayersTest, EveryFolderIncludesOnlyWhatItMayKnow) {
  const fs::path root = KITWRIGHT_SOURCE_DIR;
  std::vector<std::string> offences;
  size_t files = 0;
  for (const fs::directory_entry& top : fs::directory_iterator(root)) {
    const std::string name = top.path().filename().string();
    if (!top.is_directory() || name.starts_with('.') || name.starts_with("build") || name == "out") continue;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(top)) {
      if (!entry.is_regular_file() || !IsSource(entry.path())) continue;
      ++files;
      const std::string file = fs::relative(entry.path(), root).generic_string();
      for (const std::string& included : IncludesOf(entry.path())) {
        // Includes without a folder, and those of generated files, are no folder's business.
        if (included.find('/') == std::string::npos || !fs::exists(root / included)) continue;
        if (!MayInclude(file, included)) offences.push_back(file + " includes " + included);
      }
    }
  }
  EXPECT_GT(files, 50U);
  EXPECT_THAT(offences, ::testing::IsEmpty());
}

TEST(LayersTest, TheTableRefusesWhatPointsUpwards) {
  EXPECT_FALSE(MayInclude("base/text.cc", "platform/services.h"));
  EXPECT_FALSE(MayInclude("msi/table.cc", "cabinet/reader.h"));
  EXPECT_FALSE(MayInclude("package/staging.cc", "shell/page_contract.h"));
  EXPECT_FALSE(MayInclude("pages/frm_features.cc", "shell/page_table.h"));
  EXPECT_FALSE(MayInclude("pages/frm_features.cc", "platform/embedded/file_system.h"));
  EXPECT_FALSE(MayInclude("shell/page_contract.cc", "pages/frm_features.h"));
  EXPECT_FALSE(MayInclude("shell/app.cc", "platform/embedded/file_system.h"));
  EXPECT_TRUE(MayInclude("shell/main_drive.cc", "platform/embedded/file_system.h"));
  EXPECT_TRUE(MayInclude("shell/app.cc", "pages/frm_features.h"));
  EXPECT_TRUE(MayInclude("pages/frm_features_test.cc", "platform/testing/fake_machine.h"));
}

}  // namespace
