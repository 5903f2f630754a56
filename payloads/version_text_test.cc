#include "payloads/version_text.h"

#include <gtest/gtest.h>

#include "formats/version_block_test_support.h"
#include "platform/testing/fake_machine.h"

namespace kw {
namespace {

struct VersionTextTest : ::testing::Test {
  std::string Put(const formats::VersionBlock& version) {
    machine.files.AddFile("C:\\a.dll", formats::MakePeFile(false, formats::MakeVersionResource(version)));
    return "C:\\a.dll";
  }
  static formats::VersionBlock Block() {
    formats::VersionBlock version;
    version.has_fixed = true;
    version.product = {4, 1, 60, 0};
    version.file = {1, 2, 3, 4};
    return version;
  }
  platform::testing::FakeMachine machine;
};

TEST_F(VersionTextTest, AnEnginesProductVersionHasNoPointBehindItsThirdPart) {
  EXPECT_EQ(EngineVersionText(machine.services, Put(Block())), "4.1.600");
}

TEST_F(VersionTextTest, AnAgentsFileVersionHasAllItsPoints) {
  EXPECT_EQ(FileVersionText(machine.services, Put(Block())), "1.2.3.4");
}

TEST_F(VersionTextTest, PartsAboveTheSignedRangeReadAsNegative) {
  formats::VersionBlock version = Block();
  version.product = {32767, 32768, 65535, 1};
  version.file = version.product;
  EXPECT_EQ(EngineVersionText(machine.services, Put(version)), "32767.-32768.-11");
  EXPECT_EQ(FileVersionText(machine.services, Put(version)), "32767.-32768.-1.1");
}

TEST_F(VersionTextTest, WhatHasNoVersionInformationReadsAsSuch) {
  machine.files.AddFile("C:\\none.dll", formats::MakePeFile(false, ""));
  machine.files.AddFile("C:\\text.dll", "no program");
  formats::VersionBlock without_fixed = Block();
  without_fixed.has_fixed = false;
  for (const std::string& file : {std::string("C:\\none.dll"), std::string("C:\\text.dll"),
                                  std::string("C:\\missing.dll"), Put(without_fixed)}) {
    EXPECT_EQ(EngineVersionText(machine.services, file), "N/A") << file;
    EXPECT_EQ(FileVersionText(machine.services, file), "N/A") << file;
  }
}

}  // namespace
}  // namespace kw
