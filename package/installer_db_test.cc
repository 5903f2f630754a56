#include "package/installer_db.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/fake_machine.h"

namespace kw {
namespace {

using platform::testing::FakeMachine;
using platform::testing::FileOperation;

struct InstallerDbTest : ::testing::Test {
  InstallerDbTest() {
    run.Installer = machine.MakeInstaller();
    auto opened = run.Installer->OpenDatabase("C:\\Temp\\x.msi", platform::OpenMode::kCreateDirect);
    EXPECT_TRUE(opened.ok());
    run.WorkingDatabase = *opened;
    Run("CREATE TABLE `Property` (`Property` CHAR(72) NOT NULL, `Value` CHAR(0) NOT NULL PRIMARY KEY "
        "`Property`)");
    Run("CREATE TABLE `Binary` (`Name` CHAR(72) NOT NULL, `Data` OBJECT NOT NULL PRIMARY KEY `Name`)");
    Run("CREATE TABLE `File` (`File` CHAR(72) NOT NULL, `FileName` CHAR(255) NOT NULL PRIMARY KEY `File`)");
  }
  InstallerDb Db() { return InstallerDb::Working(machine.services, run); }
  void Run(const std::string& sql, const SqlValues& values = {}) {
    const Status done = Db().RunSql(sql, values);
    EXPECT_TRUE(done.ok()) << done.message();
  }
  size_t Rows(const std::string& sql) { return Db().QueryAll(sql)->size(); }
  void Embed(const std::string& name, const std::string& bytes) {
    machine.files.AddFile("C:\\Temp\\in", bytes);
    EXPECT_TRUE(Db().ReplaceBinary(name, "C:\\Temp\\in").ok());
  }

  FakeMachine machine;
  RunState run;
};

TEST_F(InstallerDbTest, AnEmptyPropertyHasNoRow) {
  ASSERT_TRUE(Db().SetProperty("X", "1").ok());
  ASSERT_TRUE(Db().SetProperty("X", "").ok());
  EXPECT_EQ(Rows("select `Value` from `Property`"), 0U);
  EXPECT_EQ(*Db().GetProperty("X"), "");
}

TEST_F(InstallerDbTest, SettingAnExistingPropertyLeavesOneRow) {
  ASSERT_TRUE(Db().SetProperty("X", "1").ok());
  ASSERT_TRUE(Db().SetProperty("X", "2").ok());
  EXPECT_EQ(Rows("select `Value` from `Property`"), 1U);
  EXPECT_EQ(*Db().GetProperty("X"), "2");
}

TEST_F(InstallerDbTest, RecordsKeepTextAsTextAndNumbersAsNumbers) {
  const auto record = Db().MakeRecord({std::string("0"), int32_t{0}, int32_t{-7}});
  EXPECT_EQ(record->FieldCount(), 3);
  EXPECT_EQ(record->StringData(1), "0");
  EXPECT_EQ(record->IntegerData(2), 0);
  EXPECT_EQ(record->IntegerData(3), -7);
  EXPECT_FALSE(record->IsNull(2));
}

TEST_F(InstallerDbTest, AQueryGivesTheFirstRecordOrNone) {
  Run("insert into `File` (`File`, `FileName`) values (?, ?)", {std::string("a"), std::string("A.TXT")});
  EXPECT_EQ(
      (*Db().QuerySql("select `FileName` from `File` where `File` = ?", {std::string("a")}))->StringData(1),
      "A.TXT");
  EXPECT_EQ(*Db().QuerySql("select `FileName` from `File` where `File` = ?", {std::string("b")}), nullptr);
}

TEST_F(InstallerDbTest, FailuresComeBackWithTheStatement) {
  EXPECT_THAT(Db().RunSql("selekt").message(), ::testing::HasSubstr("selekt"));
  run.WorkingDatabase.reset();
  EXPECT_EQ(Db().GetProperty("X").number(), kErrorInvalidHandle);
}

TEST_F(InstallerDbTest, ABinaryRowIsWrittenOutWhole) {
  for (const size_t size : {size_t{1}, size_t{1023}, size_t{1024}, size_t{1025}, size_t{5000}}) {
    const std::string bytes(size, static_cast<char>('a' + size % 26));
    Embed("row", bytes);
    machine.files.AddFile("C:\\Temp\\out", "");
    EXPECT_TRUE(*Db().ExtractBinary("row", "C:\\Temp\\out"));
    EXPECT_EQ(machine.files.Content("C:\\Temp\\out"), bytes);
  }
}

TEST_F(InstallerDbTest, ExtractingOverALongerFileLeavesItsTail) {
  Embed("row", "new");
  machine.files.AddFile("C:\\Temp\\out", "older");
  EXPECT_TRUE(*Db().ExtractBinary("row", "C:\\Temp\\out"));
  EXPECT_EQ(machine.files.Content("C:\\Temp\\out"), "newer");
}

TEST_F(InstallerDbTest, AnEmptyBinaryRowGivesAnEmptyFile) {
  Embed("row", "");
  EXPECT_TRUE(*Db().ExtractBinary("row", "C:\\Temp\\out"));
  EXPECT_EQ(machine.files.Content("C:\\Temp\\out"), "");
}

TEST_F(InstallerDbTest, ExtractingGivesFalseWithoutARowAFileOrRoom) {
  EXPECT_FALSE(*Db().ExtractBinary("row", "C:\\Temp\\out"));
  EXPECT_FALSE(machine.files.FileExists("C:\\Temp\\out"));
  Embed("row", "bytes");
  EXPECT_FALSE(*Db().ExtractBinary("row", "C:\\No\\out"));
  machine.files.FailNext(FileOperation::kHandleWrite, "C:\\Temp\\out", kErrorDiskFull);
  EXPECT_FALSE(*Db().ExtractBinary("row", "C:\\Temp\\out"));
}

TEST_F(InstallerDbTest, AQuoteInABinarysNameBreaksTheStatement) {
  EXPECT_FALSE(Db().ExtractBinary("it's", "C:\\Temp\\out").ok());
}

TEST_F(InstallerDbTest, ReplacingLeavesOneRowWithTheNewBytes) {
  Embed("row", "old bytes");
  Embed("row", "new");
  EXPECT_EQ(Rows("select `Name` from `Binary`"), 1U);
  EXPECT_TRUE(*Db().ExtractBinary("row", "C:\\Temp\\out"));
  EXPECT_EQ(machine.files.Content("C:\\Temp\\out"), "new");
}

TEST_F(InstallerDbTest, FileNamesAreLoweredAndOthersStay) {
  ASSERT_TRUE(Db().SetProperty("X", "1").ok());
  Run("insert into `File` (`File`, `FileName`) values ('a', 'README~1.TXT|Read Me.TXT')");
  Run("insert into `File` (`File`, `FileName`) values ('b', 'low.txt')");
  ASSERT_TRUE(Db().LowerCaseFileNames().ok());
  const auto rows = Db().QueryAll("select `FileName` from `File` order by `File`");
  EXPECT_EQ((*rows)[0]->StringData(1), "readme~1.txt|read me.txt");
  EXPECT_EQ((*rows)[1]->StringData(1), "low.txt");
}

TEST_F(InstallerDbTest, TheSecondDatabaseHasItsOwnInstaller) {
  run.InstallerSecond = machine.MakeInstaller();
  EXPECT_FALSE(InstallerDb::Beaconry(machine.services, run).GetProperty("X").ok());
  run.BeaconryDatabase = run.WorkingDatabase;
  EXPECT_TRUE(InstallerDb::Beaconry(machine.services, run).SetProperty("X", "1").ok());
}

TEST(UniqueIdTest, TwoCallsInOneSecondDifferByTheCounter) {
  FakeMachine machine;
  RunState run;
  run.UniqueIdCounter = 2;
  EXPECT_EQ(MakeUniqueId(machine.services, run), "_id_320151145302");
  EXPECT_EQ(MakeUniqueId(machine.services, run), "_id_320151145303");
  machine.system.now = {2004, 1, 2, 3, 4, 5, 2};
  EXPECT_EQ(MakeUniqueId(machine.services, run), "_id_2213454");
}

TEST(UniqueIdTest, TheCounterWrapsAtSixteenBits) {
  FakeMachine machine;
  RunState run;
  run.UniqueIdCounter = 65535;
  EXPECT_TRUE(MakeUniqueId(machine.services, run).ends_with("65535"));
  EXPECT_EQ(run.UniqueIdCounter, 0);
}

TEST(GuidTextTest, BytesStandInTheirOrderInMemory) {
  FakeMachine machine;
  EXPECT_EQ(MakeGuidString(machine.services), "{01020304-0506-0708-090A-0B0C0D0E0F10}");
  machine.system.guid_error = kErrorFunctionFailed;
  EXPECT_EQ(MakeGuidString(machine.services), "");
}

TEST(ChooseValueTest, TakesTheOneThatTheConditionNames) {
  EXPECT_EQ(ChooseValue(true, "True", "False"), "True");
  EXPECT_EQ(ChooseValue(false, "True", "False"), "False");
}

}  // namespace
}  // namespace kw
