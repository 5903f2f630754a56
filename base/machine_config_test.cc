#include "base/machine_config.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace kw {
namespace {

TEST(MachineConfig, TheFirstSectionAndKeyCountWithoutRegardToCase) {
  const char ini[] =
      "; locale=1\r\n[Other]\r\nlocale=2\r\n[MACHINE]\r\n Locale = 1041 \r\nlocale=3\r\n[machine]\r\nx=1\r\n";
  EXPECT_EQ(IniValue(ini, "machine", "locale"), "1041");
  EXPECT_EQ(IniValue(ini, "machine", "x"), "");
  EXPECT_EQ(IniValue("", "machine", "locale"), "");
}

#ifndef _WIN32
TEST(MachineConfig, TheCodePageFollowsTheMachinesLocale) {
  const auto root = std::filesystem::temp_directory_path() / "kw_machine_config";
  std::filesystem::create_directories(root);
  std::filesystem::remove(root / "machine.ini");
  EXPECT_EQ(MachineCodePage(root.string()), 1252);
  std::ofstream(root / "machine.ini") << "[machine]\nlocale=1041\n";
  EXPECT_EQ(MachineCodePage(root.string()), 932);
  std::filesystem::remove_all(root);
}
#endif

}  // namespace
}  // namespace kw
