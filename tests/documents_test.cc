// The documents lead nowhere that does not exist.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path kRoot = KITWRIGHT_SOURCE_DIR;

std::string ReadAll(const fs::path& path) {
  std::ifstream in(path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<fs::path> Documents() {
  std::vector<fs::path> documents;
  for (auto entry = fs::recursive_directory_iterator(kRoot); entry != fs::recursive_directory_iterator();
       ++entry) {
    const std::string name = entry->path().filename().string();
    if (entry->is_directory() &&
        (name.starts_with('.') || name.starts_with("build") || name == "out" || name == "dist"))
      entry.disable_recursion_pending();
    else if (entry->path().extension() == ".md")
      documents.push_back(entry->path());
  }
  return documents;
}

/// The names that headings get as targets of links.
std::set<std::string> Anchors(const std::string& text) {
  static const std::regex kHeading(R"((^|\n)#+ ([^\n]+))");
  std::set<std::string> anchors;
  for (std::sregex_iterator heading(text.begin(), text.end(), kHeading), end; heading != end; ++heading) {
    std::string anchor;
    for (const char c : (*heading)[2].str()) {
      if (c == ' ' || c == '-') anchor += '-';
      if (std::isalnum(static_cast<unsigned char>(c))) anchor += static_cast<char>(std::tolower(c));
    }
    anchors.insert(anchor);
  }
  return anchors;
}

TEST(Documents, EveryLinkLeadsSomewhere) {
  static const std::regex kLink(R"(\]\(([^)#\s]*)(#([^)\s]+))?\))");
  size_t links = 0;
  for (const fs::path& document : Documents()) {
    const std::string text = ReadAll(document);
    for (std::sregex_iterator link(text.begin(), text.end(), kLink), end; link != end; ++link) {
      const std::string file = (*link)[1], anchor = (*link)[3];
      if (file.find("://") != std::string::npos) continue;
      ++links;
      const fs::path target = file.empty() ? document : document.parent_path() / file;
      EXPECT_TRUE(fs::exists(target)) << document << ": " << file;
      if (anchor.empty()) continue;
      EXPECT_TRUE(Anchors(ReadAll(target)).contains(anchor)) << document << ": #" << anchor;
    }
  }
  EXPECT_GT(links, 20U);
}

TEST(Documents, EveryPictureIsUsedAndSmall) {
  std::string all;
  for (const fs::path& document : Documents()) all += ReadAll(document);
  for (const fs::directory_entry& picture : fs::directory_iterator(kRoot / "docs/images")) {
    EXPECT_THAT(all, ::testing::HasSubstr("images/" + picture.path().filename().string()));
    EXPECT_LT(picture.file_size(), 100000U) << picture.path();
  }
}

}  // namespace
