#include "sample/archive/repacker.h"

#include <gtest/gtest.h>

#include "platform/embedded/temp_machine.h"
#include "sample/archive/appended_cabinet.h"

namespace kw::sample {
namespace {

using platform::embedded::TempMachine;

constexpr int kCodePage = 1252;

std::string Content(const std::string& path) {
  return ReadWholeFile(SystemStorage(), path).value_or("(missing)");
}

class RepackerTest : public ::testing::Test {
 protected:
  RepackerTest() {
    machine_.Put("drive_c/Packed/Kte710.msi", "database");
    machine_.Put("drive_c/Packed/BCN/BCN470.msi", "nested");
    machine_.Put("drive_c/Packed/Übersicht.txt", "text");
    machine_.Put("drive_c/local/english_uni.ini", "[Repacker]");
    stub_ = machine_.Put("Repacker.stub", "MZ program");
  }

  Status Optimize(const std::vector<std::string>& arguments) {
    return RunOptimizer(SystemStorage(), Paths(), arguments, stub_, kCodePage);
  }
  static MachinePaths Paths() { return MachinePaths::OfThisProcess(); }

  TempMachine machine_;
  std::string stub_;
};

TEST_F(RepackerTest, WhatTheOptimizerPacksTheResultUnpacks) {
  ASSERT_TRUE(
      Optimize({"C:\\Packed", "C:\\Out Folder\\..\\SETUP.EXE", "C:\\local\\english_uni.ini", "-t", "-d"})
          .ok());
  const std::string setup = machine_.OnC("SETUP.EXE");
  EXPECT_EQ(Content(setup).substr(0, 10), "MZ program");
  ASSERT_TRUE(RunSelfExtractor(SystemStorage(), Paths(), setup,
                               "C:\\SETUP.EXE -nos_ne -nos_o\"C:\\New Folder\\Deeper\"", kCodePage)
                  .ok());
  EXPECT_EQ(Content(machine_.OnC("New Folder/Deeper/Kte710.msi")), "database");
  EXPECT_EQ(Content(machine_.OnC("New Folder/Deeper/BCN/BCN470.msi")), "nested");
  EXPECT_EQ(Content(machine_.OnC("New Folder/Deeper/Übersicht.txt")), "text");
}

TEST_F(RepackerTest, TheOptimizerRefusesWhatItDoesNotKnow) {
  EXPECT_EQ(Optimize({"C:\\Packed", "C:\\SETUP.EXE", "C:\\local\\english_uni.ini", "-t"}).number(),
            kErrorInvalidParameter);
  EXPECT_EQ(Optimize({"C:\\Packed", "C:\\SETUP.EXE", "C:\\local\\other.ini", "-t", "-d"}).number(),
            kErrorFileNotFound);
  EXPECT_FALSE(Optimize({"C:\\Missing", "C:\\SETUP.EXE", "C:\\local\\english_uni.ini", "-t", "-d"}).ok());
  EXPECT_EQ(Content(machine_.OnC("SETUP.EXE")), "(missing)");
}

TEST_F(RepackerTest, AProgramWithoutACabinetUnpacksNothing) {
  EXPECT_EQ(RunSelfExtractor(SystemStorage(), Paths(), stub_, "x -nos_o\"C:\\Out\"", kCodePage).number(),
            kErrorInvalidData);
  EXPECT_EQ(RunSelfExtractor(SystemStorage(), Paths(), stub_, "x -nos_ne", kCodePage).number(),
            kErrorInvalidParameter);
}

TEST_F(RepackerTest, RewritingReplacesTheCabinetAndKeepsTheProgram) {
  const auto files = FilesBelow(machine_.OnC("Packed"));
  ASSERT_TRUE(files.ok());
  ASSERT_TRUE(WriteBehindProgram(SystemStorage(), stub_, *files, stub_, kCodePage).ok());
  const uint64_t first = FindAppendedCabinet(SystemStorage(), stub_)->offset;
  ASSERT_TRUE(WriteBehindProgram(SystemStorage(), stub_, {files->front()}, stub_, kCodePage).ok());
  EXPECT_EQ(FindAppendedCabinet(SystemStorage(), stub_)->offset, first);
  EXPECT_EQ(first, 10u);
}

TEST(UnpackFolder, TheSwitchMayBeQuotedInEitherWay) {
  EXPECT_EQ(UnpackFolder("C:\\SETUP.EXE -nos_ne -nos_o\"C:\\a b\""), "C:\\a b");
  EXPECT_EQ(UnpackFolder("C:\\SETUP.EXE \"-nos_oC:\\a b\" -nos_ne"), "C:\\a b");
  EXPECT_EQ(UnpackFolder("C:\\SETUP.EXE -nos_oC:\\a -nos_ne"), "C:\\a");
  EXPECT_EQ(UnpackFolder("C:\\SETUP.EXE /q"), "");
}

}  // namespace
}  // namespace kw::sample
