// Holds docs/dependencies.md against the packages that the scripts install.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

std::string ReadAll(const std::string& path) {
  std::ifstream in(std::filesystem::path(KITWRIGHT_SOURCE_DIR) / path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

/// The lines of the lists that hold nothing but a name.
std::set<std::string> InstalledPackages() {
  static const std::regex kPackage(R"(^ +([a-z0-9][a-z0-9.+-]+)$)");
  std::istringstream script(ReadAll("scripts/install-dependencies.sh"));
  std::set<std::string> packages;
  std::smatch match;
  bool in_list = false;
  for (std::string line; std::getline(script, line);) {
    if (line.ends_with("=(")) in_list = true;
    if (line.find(')') != std::string::npos) in_list = false;
    if (in_list && std::regex_match(line, match, kPackage)) packages.insert(match[1]);
  }
  return packages;
}

TEST(Dependencies, EveryInstalledPackageHasItsReasonInTheDocument) {
  const std::set<std::string> packages = InstalledPackages();
  EXPECT_GT(packages.size(), 30U);
  // The first column of the tables.
  static const std::regex kRow(R"((^|\n)\| ([^|\n]+) \|)");
  const std::string document = ReadAll("docs/dependencies.md");
  std::string first_column;
  for (std::sregex_iterator row(document.begin(), document.end(), kRow), end; row != end; ++row) {
    first_column += " " + (*row)[2].str() + " ";
  }
  for (const std::string& package : packages) {
    std::string name;
    for (const char c : package) name += std::string(c == '+' || c == '.' ? "\\" : "") + c;
    EXPECT_TRUE(std::regex_search(first_column, std::regex("[ ,]" + name + "[ ,]"))) << package;
  }
}

}  // namespace
