#include "pages/cabinet_rebuild.h"

#include "base/text.h"
#include "pages/open_package_test_support.h"

namespace kw {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FakeCommand;
using ::testing::IsEmpty;
using testing::OpenPackageFixture;

struct CabinetRebuildTest : OpenPackageFixture, ::testing::Test {
  CabinetRebuildTest() {
    machine.processes.On("C:\\Kitwright\\MakeCab.exe", [this](const FakeCommand& command) {
      made = command;
      machine.files.AddFile("C:\\Temp\\run\\Cab1.CAB", "new cabinet");
    });
  }
  bool Rebuild() { return RebuildCabinet(app.Context(), run.CabDataFolder + "\\"); }
  std::vector<std::string> Directives() {
    std::vector<std::string> lines = Split(machine.files.Content("C:\\Temp\\run\\Cab1.DDF"), '\n');
    for (std::string& line : lines) {
      EXPECT_TRUE(line.empty() || line.ends_with('\r'));
      if (!line.empty()) line.pop_back();
    }
    lines.pop_back();
    return lines;
  }
  std::vector<std::string> Sequences() {
    return Rows("select `File`, `Sequence` from `File` order by `Sequence`");
  }
  int WordCount() {
    auto summary = run.WorkingDatabase->SummaryInformation(0);
    return summary.ok() ? (*summary)->IntegerProperty(15) : -1;
  }

  FakeCommand made;
};

TEST_F(CabinetRebuildTest, TheDirectiveFileListsTheFilesByTheirKeys) {
  EXPECT_TRUE(Rebuild());
  std::vector<std::string> lines = Directives();
  EXPECT_THAT(lines[0], ::testing::StartsWith("; Generated from C:\\Temp\\run\\Kte710.msi on "));
  lines.erase(lines.begin());
  EXPECT_THAT(
      lines,
      ElementsAre(".Set CabinetNameTemplate=Cab1*.CAB", ".Set CabinetName1=Cab1.CAB",
                  ".Set ReservePerCabinetSize=8", ".Set MaxDiskSize=CDROM", ".Set CompressionType=MSZIP",
                  ".Set InfFileLineFormat=(*disk#*) *file#*: *file* = *Size*",
                  ".Set InfFileName=C:\\Temp\\run\\Cab1.INF", ".Set RptFileName=C:\\Temp\\run\\Cab1.RPT",
                  ".Set InfHeader=", ".Set InfFooter=", ".Set DiskDirectoryTemplate=C:\\Temp\\run",
                  ".Set Compress=ON", ".Set Cabinet=ON", "\"C:\\Temp\\run\\CabData\\main.exe\" \"main.exe\"",
                  "\"C:\\Temp\\run\\CabData\\help.chm\" \"help.chm\""));
  EXPECT_EQ(made.command_line, "C:\\Kitwright\\MakeCab.exe /f C:\\Temp\\run\\Cab1.DDF /l C:\\Temp\\run");
  EXPECT_EQ(made.style, platform::WindowStyle::kHidden);
}

TEST_F(CabinetRebuildTest, OneCabinetAndOneMediumRemain) {
  Sql("insert into `Media` (`DiskId`, `LastSequence`, `Cabinet`) values (2, 9, '#other')");
  EXPECT_TRUE(Rebuild());
  EXPECT_THAT(Rows("select `DiskId`, `LastSequence`, `Cabinet` from `Media`"),
              ElementsAre("1|" + std::to_string(Sequences().size()) + "|#Cabs.Cab1.CAB"));
  EXPECT_THAT(Rows("select `Name` from `Cabs`"), ElementsAre("Cab1.CAB"));
  const auto row = Db().QuerySql("select `Data` from `Cabs`");
  ASSERT_TRUE(row.ok());
  EXPECT_EQ((*row)->ReadStream(1, 100).value_or(""), "new cabinet");
  EXPECT_EQ(WordCount(), 2);
}

TEST_F(CabinetRebuildTest, AnEmptyMediaTableGetsItsFirstDisk) {
  Sql("delete from `Media`");
  EXPECT_TRUE(Rebuild());
  EXPECT_THAT(Rows("select `DiskId`, `Cabinet` from `Media`"), ElementsAre("1|#Cabs.Cab1.CAB"));
}

TEST_F(CabinetRebuildTest, EqualSequenceNumbersAreRenumberedAndLaterOnesFollow) {
  Sql("update `File` set `Sequence` = 2 where `File` = 'main.exe'");
  Sql("insert into `File` (`File`, `Component_`, `FileName`, `FileSize`, `Attributes`, `Sequence`) values "
      "('z.dll', 'Main', 'z.dll', 1, 0, 2)");
  EXPECT_TRUE(Rebuild());
  EXPECT_THAT(Sequences(), ElementsAre("main.exe|2", "help.chm|3", "z.dll|4"));
  EXPECT_THAT(Rows("select `LastSequence` from `Media`"), ElementsAre("4"));
}

TEST_F(CabinetRebuildTest, AFileThatIsNotCompressedKeepsItsNumberAndIsNotListed) {
  Sql("update `File` set `Attributes` = 8192, `Sequence` = 7 where `File` = 'help.chm'");
  EXPECT_TRUE(Rebuild());
  EXPECT_THAT(Sequences(), ElementsAre("help.chm|7", "main.exe|8"));
  for (const std::string& line : Directives()) EXPECT_EQ(line.find("help.chm"), std::string::npos);
}

TEST_F(CabinetRebuildTest, ARowWithoutItsFileTakesANumberAndIsPassedOver) {
  ASSERT_TRUE(machine.files.DeleteFile(run.CabDataFolder + "\\help.chm", true).ok());
  EXPECT_TRUE(Rebuild());
  EXPECT_EQ(Sequences().size(), 2u);
  EXPECT_THAT(Rows("select `LastSequence` from `Media`"), ElementsAre("2"));
  for (const std::string& line : Directives()) EXPECT_EQ(line.find("help.chm"), std::string::npos);
}

TEST_F(CabinetRebuildTest, AFileThatCannotBeLookedAtFailsTheRebuildAndIsTold) {
  machine.files.FailNext(platform::testing::FileOperation::kGetFile, run.CabDataFolder + "\\help.chm",
                         kErrorAccessDenied);
  EXPECT_FALSE(Rebuild());
  EXPECT_THAT(Take(), Contains(::testing::AllOf(::testing::StartsWith("message "),
                                                ::testing::HasSubstr("CabData\\help.chm"))));
}

TEST_F(CabinetRebuildTest, ShortSourceNamesStayInTheWordCount) {
  auto summary = run.WorkingDatabase->SummaryInformation(1);
  ASSERT_TRUE(summary.ok());
  ASSERT_TRUE((*summary)->SetIntegerProperty(15, 1).ok());
  ASSERT_TRUE((*summary)->Persist().ok());
  EXPECT_TRUE(Rebuild());
  EXPECT_EQ(WordCount(), 3);
}

TEST_F(CabinetRebuildTest, AMakerThatLeavesNoCabinetGivesFalseWithoutAWord) {
  machine.processes.On("C:\\Kitwright\\MakeCab.exe", 1);
  Take();
  EXPECT_FALSE(Rebuild());
  for (const std::string& line : Take()) EXPECT_FALSE(line.starts_with("message")) << line;
  EXPECT_THAT(Rows("select `Name` from `Cabs`"), IsEmpty());
  EXPECT_THAT(Rows("select `LastSequence`, `Cabinet` from `Media`"), ElementsAre("9999|"));
}

TEST_F(CabinetRebuildTest, ADirectoryTableThatCannotBeResolvedIsToldAndTheRebuildGoesOn) {
  Sql("drop table `Directory`");
  Take();
  EXPECT_TRUE(Rebuild());
  EXPECT_THAT(Take(), Contains("message! CostInitialize failed, returned 3"));
}

}  // namespace
}  // namespace kw
