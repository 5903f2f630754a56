#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "package/file_rules.h"
#include "package/staging.h"
#include "platform/testing/fake_machine.h"

namespace kw {
namespace {

using platform::Hive;
using platform::RegistryValue;

constexpr const char* kKey = "SOFTWARE\\Orvantic\\RDX";

struct ReadRegistryStringTest : ::testing::Test {
  std::string Read(const char* name) {
    return ReadRegistryString(machine.services, Hive::kLocalMachine, kKey, name);
  }
  platform::testing::FakeMachine machine;
};

TEST_F(ReadRegistryStringTest, ReadsTextUpToItsFirstNul) {
  RegistryValue value = RegistryValue::OfText("0407");
  value.data += "rest";
  machine.registry.Set(Hive::kLocalMachine, kKey, "Language", value);
  EXPECT_EQ(Read("Language"), "0407");
}

TEST_F(ReadRegistryStringTest, AMissingKeyOrValueIsEmpty) {
  EXPECT_EQ(Read("Language"), "");
  machine.registry.AddKey(Hive::kLocalMachine, kKey);
  EXPECT_EQ(Read("Language"), "");
}

TEST_F(ReadRegistryStringTest, AnotherTypeIsEmpty) {
  RegistryValue value = RegistryValue::OfText("text");
  value.type = platform::kRegExpandSz;
  machine.registry.Set(Hive::kLocalMachine, kKey, "Path", value);
  machine.registry.SetDword(Hive::kLocalMachine, kKey, "Number", 7);
  EXPECT_EQ(Read("Path"), "");
  EXPECT_EQ(Read("Number"), "");
}

TEST_F(ReadRegistryStringTest, ReadsAtMost512BytesWithTheTerminator) {
  machine.registry.SetText(Hive::kLocalMachine, kKey, "Fits", std::string(511, 'a'));
  machine.registry.SetText(Hive::kLocalMachine, kKey, "Long", std::string(512, 'a'));
  EXPECT_EQ(Read("Fits"), std::string(511, 'a'));
  EXPECT_EQ(Read("Long"), "");
}

TEST(InstalledLanguageTest, IsReadFromTheKeyOfTheLevelInUpperCase) {
  platform::testing::FakeMachine machine;
  RunState run;
  EXPECT_EQ(GetInstalledProductLanguage(machine.services, run), "0000");
  const std::string plugins = "SOFTWARE\\Orvantic\\Stratocon\\Application Plugins\\";
  machine.registry.SetText(Hive::kLocalMachine, plugins + "KESTRANE7100", "Language", "040a");
  machine.registry.SetText(Hive::kLocalMachine, plugins + "KESTRANE7000", "Language", "0407");
  EXPECT_EQ(GetInstalledProductLanguage(machine.services, run), "040A");
  run.ProductIs700 = true;
  EXPECT_EQ(GetInstalledProductLanguage(machine.services, run), "0407");
}

struct IniValueTest : ::testing::Test {
  Status Write(std::optional<std::string_view> key, std::optional<std::string_view> value) {
    return WriteIniValue(machine.services, "C:\\Setup.ini", "Startup", key, value);
  }
  platform::testing::FakeMachine machine;
};

TEST_F(IniValueTest, LineEndsBecomeBlanks) {
  ASSERT_TRUE(Write("Note", "a\r\nb").ok());
  EXPECT_EQ(machine.files.Content("C:\\Setup.ini"), "[Startup]\r\nNote=a  b\r\n");
}

TEST_F(IniValueTest, NoValueDeletesTheKeyAndNoKeyTheSection) {
  machine.files.AddFile("C:\\Setup.ini", "[Startup]\r\nA=1\r\nB=2\r\n");
  ASSERT_TRUE(Write("A", std::nullopt).ok());
  EXPECT_EQ(machine.files.Content("C:\\Setup.ini"), "[Startup]\r\nB=2\r\n");
  ASSERT_TRUE(Write(std::nullopt, std::nullopt).ok());
  EXPECT_EQ(machine.files.Content("C:\\Setup.ini"), "");
}

TEST_F(IniValueTest, AReadGivesAtMost254CharactersOrTheDefault) {
  machine.files.AddFile("C:\\Setup.ini", "[startup]\r\nLONG=" + std::string(300, 'x') + "\r\n");
  EXPECT_EQ(ReadIniValue(machine.services, "C:\\Setup.ini", "Startup", "Long", ""), std::string(254, 'x'));
  EXPECT_EQ(ReadIniValue(machine.services, "C:\\Setup.ini", "Startup", "No", "default"), "default");
}

}  // namespace
}  // namespace kw
