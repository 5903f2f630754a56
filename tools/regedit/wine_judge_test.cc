// Wine's registry editor as a judge: it must read what ours writes, and ours what it writes.

#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>

#include "base/storage.h"
#include "base/text.h"
#include "formats/reg_file.h"
#include "platform/embedded/registry.h"
#include "platform/embedded/temp_machine.h"
#include "platform/registry_trees.h"
#include "tools/regedit/registry_editor.h"

namespace kw::regedit {
namespace {

using platform::Hive;
using platform::RegistryValue;
using platform::embedded::EmbeddedRegistry;

// Names that a file must set apart from its own signs.
constexpr const char* kOddNames[] = {
    "a [b] ]", "\xC3\xA4\xE6\x97\xA5", "quote \"=\" here", "; no comment", "-minus", "@"};

TEST(WineJudge, ItsRegistryEditorAndOursReadEachOthersFiles) {
  if (std::system("command -v wine >/dev/null 2>&1") != 0) GTEST_SKIP() << "wine is not installed";
  const platform::embedded::TempMachine machine;
  const std::string& root = machine.root();
  const std::string key = "HKEY_CURRENT_USER\\Software\\Kitwright Judge";
  const std::vector<RegistryValue> values = {
      RegistryValue::OfText("C:\\a \"b\" \xC3\xA4\xE6\x97\xA5"),
      RegistryValue::OfText(""),
      {platform::kRegSz, "", 0},
      {platform::kRegSz, std::string("line\r\nbreak\0", 12), 0},
      {platform::kRegExpandSz, std::string("%A%\0", 4), 0},
      {platform::kRegMultiSz, std::string("one\0two\0\0", 9), 0},
      {platform::kRegBinary, std::string(100, '\xFE'), 0},
      {platform::kRegBinary, "", 0},
      RegistryValue::OfDword(0xFEDCBA98),
      {platform::kRegQword, std::string("\1\2\3\4\5\6\7\x8", 8), 0},
      {platform::kRegNone, std::string("\0\1", 2), 0},
      {77, "odd", 0},
  };
  const MachinePaths paths(root, "C:\\");
  const auto run = [&](const std::string& line) {
    const auto command = ParseCommand(line);
    return command.ok() ? regedit::Run(*command, paths, 1252) : command.status();
  };
  {
    EmbeddedRegistry registry(root, 1252);
    const auto made = registry.CreateKey(Hive::kCurrentUser, "Software\\Kitwright Judge", platform::kKeyAll);
    ASSERT_TRUE(made.ok());
    for (size_t i = 0; i < values.size(); ++i) {
      ASSERT_TRUE((*made)->SetValue("value \\" + std::to_string(i), values[i]).ok());
    }
    ASSERT_TRUE((*made)->SetValue("", RegistryValue::OfText("default")).ok());
    for (const char* name : kOddNames) {
      const auto odd = registry.CreateKey(
          Hive::kCurrentUser, std::string("Software\\Kitwright Judge\\") + name, platform::kKeyAll);
      ASSERT_TRUE(odd.ok());
      ASSERT_TRUE((*odd)->SetValue(name, RegistryValue::OfDword(1)).ok());
    }
  }
  ASSERT_TRUE(run("regedit /s /e C:\\ours.reg \"" + key).ok());

  const std::string wine = "WINEPREFIX='" + root + "/prefix' WINEDEBUG=-all DISPLAY= ";
  const std::string quiet = " >/dev/null 2>&1";
  const auto host = [&](const std::string& name) { return "'Z:" + root + "/drive_c/" + name + "'"; };
  ASSERT_EQ(std::system((wine + "wine regedit /s " + host("ours.reg") + quiet).c_str()), 0);
  ASSERT_EQ(
      std::system((wine + "wine regedit /s /e " + host("theirs.reg") + " '" + key + "'" + quiet).c_str()), 0);
  ASSERT_EQ(std::system((wine + "wineserver -k" + quiet).c_str()), 0);

  {
    EmbeddedRegistry registry(root, 1252);
    ASSERT_TRUE(platform::DeleteTree(registry, Hive::kCurrentUser, "Software\\Kitwright Judge").ok());
  }
  ASSERT_EQ(run("regedit /s C:\\theirs.reg").message(), "");
  EmbeddedRegistry registry(root, 1252);
  const auto back = registry.OpenKey(Hive::kCurrentUser, "Software\\Kitwright Judge", platform::kKeyQuery);
  ASSERT_TRUE(back.ok());
  for (size_t i = 0; i < values.size(); ++i) {
    const auto value = (*back)->QueryValue("value \\" + std::to_string(i), platform::kAnyRegistrySize);
    ASSERT_TRUE(value.ok()) << i;
    EXPECT_EQ(value->type, values[i].type) << i;
    // Its export puts the terminator to a text that was stored without one.
    const bool bare = values[i].type == platform::kRegSz && values[i].data.empty();
    EXPECT_EQ(value->data, bare ? std::string(1, '\0') : values[i].data) << i;
  }
  EXPECT_EQ((*back)->QueryValue("", 255)->Text(), "default");
  EXPECT_EQ((*back)->QueryInfo()->values, values.size() + 1);
  EXPECT_EQ((*back)->QueryInfo()->subkeys, std::size(kOddNames));
  for (const char* name : kOddNames) {
    const auto odd = registry.OpenKey(Hive::kCurrentUser, std::string("Software\\Kitwright Judge\\") + name,
                                      platform::kKeyQuery);
    ASSERT_TRUE(odd.ok()) << name;
    EXPECT_EQ((*odd)->QueryValue(name, 255).value_or(RegistryValue()).Dword(0), 1u) << name;
  }
}

// What deletes in a file deletes for both.
TEST(WineJudge, DeletionsMeanTheSameToBoth) {
  if (std::system("command -v wine >/dev/null 2>&1") != 0) GTEST_SKIP() << "wine is not installed";
  const platform::embedded::TempMachine machine;
  const std::string& root = machine.root();
  machine.Put(
      "drive_c/made.reg",
      "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Judge\\Gone\\Deep]\r\n\"v\"=dword:1\r\n"
      "[HKEY_CURRENT_USER\\Software\\Judge]\r\n@=\"d\"\r\n\"gone\"=\"x\"\r\n\"stays\"=hex:01,\\\r\n  02\r\n");
  machine.Put("drive_c/deletes.reg",
              "REGEDIT4\r\n\r\n[-HKEY_CURRENT_USER\\Software\\Judge\\Gone]\r\n"
              "[HKEY_CURRENT_USER\\Software\\Judge]\r\n@=-\r\n\"gone\"=-\r\n\"none\"=-\r\n"
              "[-HKEY_CURRENT_USER\\Software\\None]\r\n");
  const MachinePaths paths(root, "C:\\");
  for (const char* line : {"regedit /s C:\\made.reg", "regedit /s C:\\deletes.reg",
                           "regedit /s /e C:\\ours.reg \"HKEY_CURRENT_USER\\Software\\Judge\""}) {
    const auto command = ParseCommand(line);
    ASSERT_TRUE(command.ok());
    ASSERT_EQ(regedit::Run(*command, paths, 1252).message(), "") << line;
  }
  const std::string wine = "cd '" + root + "/drive_c' && WINEPREFIX='" + root +
                           "/prefix' WINEDEBUG=-all DISPLAY= wine regedit /s ";
  ASSERT_EQ(std::system((wine + "made.reg >/dev/null 2>&1").c_str()), 0);
  ASSERT_EQ(std::system((wine + "deletes.reg >/dev/null 2>&1").c_str()), 0);
  ASSERT_EQ(
      std::system((wine + "/e theirs.reg 'HKEY_CURRENT_USER\\Software\\Judge' >/dev/null 2>&1").c_str()), 0);
  ASSERT_EQ(std::system(("WINEPREFIX='" + root + "/prefix' wineserver -k >/dev/null 2>&1").c_str()), 0);
  const auto text = [&](const char* name) {
    return ReadWholeFile(SystemStorage(), root + "/drive_c/" + name).value_or(name);
  };
  EXPECT_EQ(text("ours.reg"), text("theirs.reg"));
}

}  // namespace
}  // namespace kw::regedit
