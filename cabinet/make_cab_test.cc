#include "cabinet/make_cab.h"

#include <gmock/gmock.h>

#include "base/testing/faulty_storage.h"
#include "cabinet/cab_arc.h"
#include "cabinet/test_support.h"

namespace kw::cabinet {
namespace {

using ::testing::HasSubstr;

// Both programs on a machine of their own.
class ProgramTest : public CabinetFolderTest {
 protected:
  void SetUp() override {
    CabinetFolderTest::SetUp();
    std::filesystem::create_directories(folder_ / "drive_c/Temp/CabData");
    std::filesystem::create_directories(folder_ / "drive_c/out");
  }

  MachinePaths Paths() const { return {folder_.string(), "C:\\Temp"}; }
  Status MakeCab(const std::vector<std::string>& arguments, int code_page = 1252) const {
    return RunMakeCab(SystemStorage(), Paths(), arguments, code_page);
  }
  Result<std::string> CabArc(const std::vector<std::string>& arguments, int code_page = 1252) const {
    return RunCabArc(SystemStorage(), Paths(), arguments, code_page);
  }
};

TEST_F(ProgramTest, ThePackageCabinetIsMadeWithItsInfAndReport) {
  Make("drive_c/Temp/CabData/Key_B", "bb");
  Make("drive_c/Temp/CabData/key_a", Prose(50000));
  Make("drive_c/Temp/Cab1.DDF",
       ".Set CabinetNameTemplate=Cab1*.CAB\r\n.Set CabinetName1=Cab1.CAB\r\n.Set ReservePerCabinetSize=8\r\n"
       ".Set InfFileLineFormat=(*disk#*) *file#*: *file* = *Size*\r\n.Set InfFileName=C:\\Temp\\Cab1.INF\r\n"
       ".Set RptFileName=C:\\Temp\\Cab1.RPT\r\n.Set InfHeader=\r\n.Set DiskDirectoryTemplate=C:\\TEMP\r\n"
       "\"C:\\Temp\\CabData\\KEY_B\" \"Key_B\"\r\n\"C:\\Temp\\CabData\\key_a\" \"key_a\"\r\n");
  ASSERT_TRUE(MakeCab({"/f", "C:\\Temp\\Cab1.DDF", "/l", "C:\\Temp"}).ok());
  const auto reader = CabinetReader::Open(SystemStorage(), Host("drive_c/Temp/Cab1.CAB"), 1252);
  ASSERT_TRUE(reader.ok());
  EXPECT_EQ(reader->entries()[0].name, "Key_B");
  EXPECT_EQ(reader->entries()[1].name, "key_a");
  EXPECT_EQ(reader->reserved_header(), 8);
  EXPECT_THAT(Content("drive_c/Temp/Cab1.INF"), HasSubstr("(1) 1: Key_B = 2\r\n(1) 2: key_a = 50000\r\n"));
  EXPECT_THAT(Content("drive_c/Temp/Cab1.RPT"), HasSubstr("50,002"));
}

TEST_F(ProgramTest, TheDefaultFolderCountsOnlyWhenTheDirectivesNameNone) {
  Make("drive_c/Temp/a", "a");
  Make("drive_c/Temp/x.ddf", ".Set CabinetNameTemplate=X.CAB\na\n");
  ASSERT_TRUE(MakeCab({"/F", "x.ddf", "/L", "C:\\out"}).ok());
  EXPECT_TRUE(There("drive_c/out/X.CAB"));
  ASSERT_TRUE(MakeCab({"/f", "x.ddf"}).ok());
  EXPECT_TRUE(There("drive_c/Temp/X.CAB"));
}

TEST_F(ProgramTest, PathsWithBlanksNeedNoQuotes) {
  std::filesystem::create_directories(folder_ / "drive_c/My Files");
  Make("drive_c/My Files/a", "a");
  Make("drive_c/My Files/my list.ddf", ".Set CabinetNameTemplate=X.CAB\n\"C:\\My Files\\a\"\n");
  ASSERT_TRUE(MakeCab({"/f", "C:\\My", "Files\\my", "list.ddf", "/l", "C:\\My", "Files"}).ok());
  ASSERT_TRUE(There("drive_c/My Files/X.CAB"));
  std::filesystem::create_directories(folder_ / "drive_c/new folder");
  ASSERT_TRUE(CabArc({"X", "C:\\My", "Files\\X.CAB", "*.*", "C:\\new", "folder\\"}).ok());
  EXPECT_EQ(Content("drive_c/new folder/a"), "a");
}

TEST_F(ProgramTest, AFailureLeavesNoCabinetNotEvenAnOldOne) {
  Make("drive_c/Temp/a", "a");
  Make("drive_c/Temp/X.CAB", "old");
  Make("drive_c/Temp/x.ddf", ".Set CabinetNameTemplate=X.CAB\n\"C:\\Temp\\a\"\n\"C:\\Temp\\gone\"\n");
  const Status status = MakeCab({"/f", "C:\\Temp\\x.ddf"});
  EXPECT_EQ(status.number(), kErrorFileNotFound);
  EXPECT_THAT(status.message(), HasSubstr("Line 3"));
  EXPECT_FALSE(There("drive_c/Temp/X.CAB"));
}

// Keys of an installer database that differ in case alone: both lines find the one file that there is.
TEST_F(ProgramTest, OneFileIsNotPackedForTwoSpellingsOfItsPath) {
  Make("drive_c/Temp/key", "content of one of them");
  Make("drive_c/Temp/x.ddf",
       ".Set CabinetNameTemplate=X.CAB\n\"C:\\Temp\\key\" \"key\"\n\"C:\\Temp\\KEY\" \"KEY\"\n");
  const Status status = MakeCab({"/f", "x.ddf"});
  EXPECT_EQ(status.message(), "Line 3: the file C:\\Temp\\KEY is also listed as C:\\Temp\\key.");
  EXPECT_FALSE(There("drive_c/Temp/X.CAB"));
  Make("drive_c/Temp/x.ddf", ".Set CabinetNameTemplate=X.CAB\nkey one\nkey two\n");
  EXPECT_TRUE(MakeCab({"/f", "x.ddf"}).ok()) << "one spelling, two entries";
}

TEST_F(ProgramTest, WhatDoesNotFitIntoOneCabinetFailsAndLeavesNone) {
  Make("drive_c/Temp/a", Noise(300000));
  Make("drive_c/Temp/x.ddf", ".Set CabinetNameTemplate=X.CAB\n.Set MaxDiskSize=200000\na\n");
  EXPECT_EQ(MakeCab({"/f", "x.ddf"}).number(), kErrorUnsupported);
  EXPECT_FALSE(There("drive_c/Temp/X.CAB"));
  EXPECT_FALSE(There("drive_c/Temp/X.CAB.new"));
}

TEST_F(ProgramTest, NamesInTheDirectiveFileAreInTheMachinesCodePage) {
  Make("drive_c/Temp/\xE6\x97\xA5.cfg", "x");
  Make("drive_c/Temp/x.ddf", ".Set CabinetNameTemplate=X.CAB\n\"C:\\Temp\\\x93\xFA.cfg\"\n");
  ASSERT_TRUE(MakeCab({"/f", "x.ddf"}, 932).ok());
  EXPECT_THAT(Content("drive_c/Temp/X.CAB"), HasSubstr("\x93\xFA.cfg"));
  ASSERT_TRUE(CabArc({"x", "X.CAB", "*.*", "C:\\out\\"}, 932).ok());
  EXPECT_TRUE(There("drive_c/out/\xE6\x97\xA5.cfg"));
}

TEST_F(ProgramTest, OddArgumentsAreAnswered) {
  EXPECT_EQ(MakeCab({}).number(), kErrorInvalidParameter);
  EXPECT_EQ(MakeCab({"/f"}).number(), kErrorInvalidParameter);
  EXPECT_EQ(MakeCab({"x.ddf"}).number(), kErrorInvalidParameter);
  EXPECT_EQ(MakeCab({"/f", "gone.ddf"}).number(), kErrorFileNotFound);
  Make("drive_c/Temp/x.ddf", ".Set Cabinet=OFF\na\n");
  EXPECT_EQ(MakeCab({"/f", "x.ddf"}).number(), kErrorUnsupported);
  Make("drive_c/Temp/x.ddf", "; nothing\n");
  EXPECT_EQ(MakeCab({"/f", "x.ddf"}).number(), kErrorInvalidData);
  Make("drive_c/Temp/a", "a");
  Make("drive_c/Temp/x.ddf", "a\na\n");
  EXPECT_EQ(MakeCab({"/f", "x.ddf"}).number(), kErrorAlreadyExists);
  EXPECT_EQ(CabArc({}).number(), kErrorInvalidParameter);
  EXPECT_EQ(CabArc({"Q", "x.cab"}).number(), kErrorInvalidParameter);
  EXPECT_EQ(CabArc({"X", "gone.cab", "*.*", "C:\\out\\"}).number(), kErrorFileNotFound);
}

TEST_F(ProgramTest, CabArcUnpacksOverWhatIsThereAndLists) {
  ASSERT_TRUE(Pack("drive_c/Temp/s.cab", {{"KTE700.CFG", "cfg"}, {"b.txt", "b"}}).ok());
  Make("drive_c/out/kte700.cfg", "old");
  ASSERT_TRUE(CabArc({"X", "\\Temp\\S.CAB", "*.*", "\\out\\"}).ok());
  EXPECT_EQ(Content("drive_c/out/kte700.cfg"), "cfg");
  EXPECT_EQ(Content("drive_c/out/b.txt"), "b");
  EXPECT_THAT(CabArc({"L", "s.cab"}).value_or(""), HasSubstr("KTE700.CFG\n"));
  EXPECT_EQ(CabArc({"X", "s.cab", "*.*", "C:\\missing\\"}).number(), kErrorPathNotFound);
}

// Who does not ask how it ended must not take a part for the whole, nor is a fault of the cabinet to hide
// that there is only a part.
TEST_F(ProgramTest, CabArcUnpacksAllThatIsSoundOrNothing) {
  std::vector<std::pair<std::string, std::string>> entries = {
      {"bad:name", "x"}, {"small", "small"}, {"large", Noise(300000)}, {"last", "last"}};
  ASSERT_TRUE(Pack("drive_c/Temp/x.cab", entries).ok());
  bool finished = false;
  for (int call = 1; !finished && call < 100; ++call) {
    std::filesystem::remove_all(folder_ / "drive_c/to");
    std::filesystem::create_directories(folder_ / "drive_c/to");
    kw::testing::FaultyStorage storage(SystemStorage());
    storage.count_reads = true;
    storage.Arm(kw::testing::FaultyStorage::Fault::kFail, call, kErrorDiskFull, false);
    const auto result = RunCabArc(storage, Paths(), {"X", "C:\\Temp\\x.cab", "*.*", "C:\\to\\"}, 1252);
    finished = storage.calls() < call;
    EXPECT_EQ(result.number(), finished ? kErrorInvalidName : kErrorDiskFull) << call;
    EXPECT_EQ(FilesIn("drive_c/to"), finished ? 3u : 0u) << call;
  }
  EXPECT_TRUE(finished);
}

TEST_F(ProgramTest, CabArcTakesPatternsAndTheCurrentFolder) {
  ASSERT_TRUE(Pack("drive_c/s.cab", {{"a.cfg", "a"}, {"b.txt", "b"}}).ok());
  ASSERT_TRUE(CabArc({"X", "C:\\s.cab", "*.CFG"}).ok());
  EXPECT_TRUE(There("drive_c/Temp/a.cfg"));
  EXPECT_FALSE(There("drive_c/Temp/b.txt"));
}

}  // namespace
}  // namespace kw::cabinet
