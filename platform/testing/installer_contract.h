#ifndef KITWRIGHT_PLATFORM_TESTING_INSTALLER_CONTRACT_H_
#define KITWRIGHT_PLATFORM_TESTING_INSTALLER_CONTRACT_H_

// The contract of Installer and its objects as tests, to be included in one file of a test program and
// instantiated.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "platform/file_system.h"
#include "platform/installer.h"

namespace kw::platform::testing {

/// An installer under test and a place to work in.
class InstallerUnderTest {
 public:
  virtual ~InstallerUnderTest() = default;
  virtual Installer& Under() = 0;
  virtual FileSystem& Files() = 0;
  /// An empty folder with drive and folder.
  virtual std::string Folder() = 0;
};

class InstallerContract
    : public ::testing::TestWithParam<std::function<std::unique_ptr<InstallerUnderTest>()>> {
 protected:
  using Parameter = std::variant<std::string, int>;
  using Rows = std::vector<std::string>;

  InstallerContract()
      : under_test_(GetParam()()), installer(under_test_->Under()), files(under_test_->Files()) {
    folder = under_test_->Folder();
    path = folder + "\\Kte710.msi";
  }

  /// A database with the tables that the pages use, in direct mode.
  void Make() {
    Open(OpenMode::kCreateDirect);
    for (const char* sql :
         {"CREATE TABLE `Property` (`Property` CHAR(72) NOT NULL, `Value` CHAR(0) NOT NULL LOCALIZABLE "
          "PRIMARY KEY `Property`)",
          "CREATE TABLE `Binary` (`Name` CHAR(72) NOT NULL, `Data` OBJECT NOT NULL PRIMARY KEY `Name`)",
          "CREATE TABLE `Cabs` (`Name` CHAR(72) NOT NULL, `Data` OBJECT NOT NULL PRIMARY KEY `Name`)",
          "CREATE TABLE `Feature` (`Feature` CHAR(38) NOT NULL, `Feature_Parent` CHAR(38), `Title` CHAR(64) "
          "LOCALIZABLE, `Display` SHORT, `Level` SHORT NOT NULL, `Attributes` SHORT NOT NULL PRIMARY KEY "
          "`Feature`)",
          "CREATE TABLE `File` (`File` CHAR(72) NOT NULL, `Component_` CHAR(72) NOT NULL, `FileName` "
          "CHAR(255) NOT NULL LOCALIZABLE, `FileSize` LONG NOT NULL, `Attributes` SHORT, `Sequence` LONG NOT "
          "NULL PRIMARY KEY `File`)",
          "CREATE TABLE `Component` (`Component` CHAR(72) NOT NULL, `Directory_` CHAR(72) NOT NULL PRIMARY "
          "KEY `Component`)",
          "CREATE TABLE `Media` (`DiskId` SHORT NOT NULL, `LastSequence` LONG NOT NULL, `Cabinet` CHAR(255) "
          "PRIMARY KEY `DiskId`)",
          "CREATE TABLE `Directory` (`Directory` CHAR(72) NOT NULL, `Directory_Parent` CHAR(72), "
          "`DefaultDir` "
          "CHAR(255) NOT NULL LOCALIZABLE PRIMARY KEY `Directory`)"}) {
      Run(sql);
    }
  }

  void Open(OpenMode mode) {
    auto opened = installer.OpenDatabase(path, mode);
    ASSERT_TRUE(opened.ok()) << opened.error().message;
    database = *opened;
  }

  std::shared_ptr<Record> MakeRecord(const std::vector<Parameter>& values) {
    auto record = installer.CreateRecord(static_cast<int>(values.size()));
    for (size_t i = 0; i < values.size(); ++i) {
      const int field = static_cast<int>(i) + 1;
      const Status set = std::holds_alternative<int>(values[i])
                             ? record->SetIntegerData(field, std::get<int>(values[i]))
                             : record->SetStringData(field, std::get<std::string>(values[i]));
      EXPECT_TRUE(set.ok()) << set.message();
    }
    return record;
  }

  Status Try(const std::string& sql, const std::vector<Parameter>& values = {}) {
    KW_ASSIGN_OR_RETURN(const auto view, database->OpenView(sql));
    const Status status = view->Execute(MakeRecord(values).get());
    view->Close();
    return status;
  }
  void Run(const std::string& sql, const std::vector<Parameter>& values = {}) {
    const Status status = Try(sql, values);
    EXPECT_TRUE(status.ok()) << sql << ": " << status.message();
  }

  /// The rows of a select, fields joined with "|".
  Rows Query(Database& on, const std::string& sql, const std::vector<Parameter>& values = {}) {
    auto view = on.OpenView(sql);
    if (!view.ok()) return {view.error().message};
    const Status status = (*view)->Execute(values.empty() ? nullptr : MakeRecord(values).get());
    if (!status.ok()) return {status.message()};
    Rows rows;
    for (;;) {
      auto record = (*view)->Fetch();
      if (!record.ok()) return {record.error().message};
      if (*record == nullptr) break;
      std::string row;
      for (int i = 1; i <= (*record)->FieldCount(); ++i) {
        row += (i > 1 ? "|" : "") + (*record)->StringData(i);
      }
      rows.push_back(row);
    }
    return rows;
  }
  Rows Query(const std::string& sql, const std::vector<Parameter>& values = {}) {
    return Query(*database, sql, values);
  }

  /// The rows that somebody sees who opens a copy of the file now.
  Rows QueryCopy(const std::string& sql) {
    const std::string copy = folder + "\\copy.msi";
    const Status copied = files.CopyFile(path, copy, true);
    if (!copied.ok()) return {copied.message()};
    auto other = installer.OpenDatabase(copy, OpenMode::kReadOnly);
    return other.ok() ? Query(**other, sql) : Rows{other.error().message};
  }

  std::string PutFile(const std::string& name, const std::string& bytes) {
    EXPECT_TRUE(files.WriteFile(folder + "\\" + name, bytes).ok());
    return folder + "\\" + name;
  }

  void PutBinary(const std::string& table, const std::string& name, const std::string& bytes) {
    auto view = database->OpenView("insert into `" + table + "` (`Data`, `Name`) values (?, '" + name + "')");
    ASSERT_TRUE(view.ok());
    auto record = installer.CreateRecord(1);
    ASSERT_TRUE(record->SetStream(1, PutFile("stream.bin", bytes)).ok());
    EXPECT_TRUE((*view)->Execute(record.get()).ok());
    record->ClearData();
    (*view)->Close();
  }

  std::string ReadBinary(const std::string& name, int length) {
    auto view = database->OpenView("select `Data` from `Binary` where `Name` = '" + name + "'");
    if (!view.ok() || !(*view)->Execute(nullptr).ok()) return "(no view)";
    auto record = (*view)->Fetch();
    if (!record.ok() || *record == nullptr) return "(no row)";
    std::string all;
    for (;;) {
      const auto bytes = (*record)->ReadStream(1, length);
      if (!bytes.ok()) return "(no stream)";
      all += *bytes;
      if (bytes->size() < static_cast<size_t>(length)) return all;
    }
  }

 private:
  std::unique_ptr<InstallerUnderTest> under_test_;

 protected:
  Installer& installer;
  FileSystem& files;
  std::string folder;
  std::string path;
  std::shared_ptr<Database> database;
};

using ::testing::ElementsAre;

TEST_P(InstallerContract, AChangeInDirectModeIsInTheFileWhenTheStatementEnds) {
  Make();
  Run("insert into `Property` (`Value`, `Property`) values (?, ?)", {"True", "ZEDMODIFIEDPACKAGE"});
  EXPECT_THAT(QueryCopy("select `Value` from `Property` where `Property` = 'ZEDMODIFIEDPACKAGE'"),
              ElementsAre("True"));
  Run("delete from `Property` where `Property` = ?", {"ZEDMODIFIEDPACKAGE"});
  EXPECT_THAT(QueryCopy("select `Value` from `Property`"), ElementsAre());
  PutBinary("Binary", "a", "new bytes");
  EXPECT_THAT(QueryCopy("select `Name` from `Binary`"), ElementsAre("a"));
  EXPECT_TRUE(database->Commit().ok());
}

TEST_P(InstallerContract, ATransactionReachesTheFileAtItsCommitAlone) {
  Make();
  database.reset();
  Open(OpenMode::kTransact);
  Run("insert into `Property` (`Property`, `Value`) values (?, ?)", {"A", "1"});
  EXPECT_THAT(QueryCopy("select `Property` from `Property`"), ElementsAre());
  EXPECT_TRUE(database->Commit().ok());
  EXPECT_THAT(QueryCopy("select `Property` from `Property`"), ElementsAre("A"));
}

TEST_P(InstallerContract, AnOpeningThatCannotBeFails) {
  EXPECT_FALSE(installer.OpenDatabase(path, OpenMode::kDirect).ok());
  PutFile("Kte710.msi", "");
  EXPECT_FALSE(installer.OpenDatabase(path, OpenMode::kDirect).ok());
  PutFile("Kte710.msi", std::string(4096, 'x'));
  EXPECT_FALSE(installer.OpenDatabase(path, OpenMode::kReadOnly).ok());
  EXPECT_FALSE(installer.OpenDatabase(folder, OpenMode::kReadOnly).ok());
}

TEST_P(InstallerContract, AReadOnlyDatabaseOpensForReadingAlone) {
  Make();
  database.reset();
  ASSERT_TRUE(files.SetReadOnly(path, true).ok());
  EXPECT_FALSE(installer.OpenDatabase(path, OpenMode::kDirect).ok());
  Open(OpenMode::kReadOnly);
  EXPECT_FALSE(Try("insert into `Property` (`Property`, `Value`) values ('A', '1')").ok());
  database.reset();
  ASSERT_TRUE(files.SetReadOnly(path, false).ok());
  EXPECT_TRUE(installer.OpenDatabase(path, OpenMode::kDirect).ok());
}

TEST_P(InstallerContract, TheFileIsFreeWhenTheDatabaseAndItsViewsAreGone) {
  Make();
  {
    auto view = database->OpenView("select `Name` from `Binary`");
    ASSERT_TRUE(view.ok());
    database.reset();
    EXPECT_TRUE((*view)->Execute(nullptr).ok());
  }
  EXPECT_TRUE(files.DeleteFile(path, false).ok());
}

TEST_P(InstallerContract, AnEmptyTextAndNullAreTheSame) {
  Make();
  auto record = installer.CreateRecord(2);
  EXPECT_TRUE(record->IsNull(1));
  EXPECT_TRUE(record->SetStringData(1, "").ok());
  EXPECT_TRUE(record->IsNull(1));
  Run("insert into `Feature` (`Feature`, `Feature_Parent`, `Title`, `Display`, `Level`, `Attributes`) values "
      "(?, ?, ?, ?, ?, ?)",
      {"Top", "", "", 2, 3, 0});
  EXPECT_THAT(Query("select * from `Feature` where `Display` <> 0 and `Feature_Parent` = ''"),
              ElementsAre("Top|||2|3|0"));
  EXPECT_THAT(Query("select `Feature` from `Feature` where `Title` is null"), ElementsAre("Top"));
}

TEST_P(InstallerContract, FieldsConvertBetweenTextAndIntegers) {
  auto record = MakeRecord({"0", 7, "12x", "-3"});
  EXPECT_EQ(record->FieldCount(), 4);
  EXPECT_EQ(record->StringData(2), "7");
  EXPECT_EQ(record->IntegerData(1), 0);
  EXPECT_EQ(record->IntegerData(4), -3);
  EXPECT_EQ(record->IntegerData(3), INT32_MIN);
  EXPECT_EQ(record->StringData(9), "");
  EXPECT_FALSE(record->SetStringData(9, "x").ok());
  record->ClearData();
  EXPECT_TRUE(record->IsNull(1));
  EXPECT_EQ(record->IntegerData(2), INT32_MIN);
}

TEST_P(InstallerContract, ANumberMayStandInQuotesAndTextComparesExactly) {
  Make();
  Run("insert into `Feature` (`Feature`, `Level`, `Attributes`) values ('Console', 3, 16)");
  Run("update `Feature` set `Display` = '6' where `Feature` = 'Console'");
  EXPECT_THAT(Query("select `Feature` from `Feature` where `Display` = '6'"), ElementsAre("Console"));
  EXPECT_THAT(Query("select `Display` from `Feature` where `Feature` = 'console'"), ElementsAre());
  Run("update `Feature` set `Level` = 0 where `Feature` = 'Console'");
  EXPECT_THAT(Query("select `Level`, `Display` from `Feature`"), ElementsAre("0|6"));
}

TEST_P(InstallerContract, StatementsAreTakenAsPagesWriteThem) {
  Make();
  Run("insert into `File` (`File`, `Component_`, `FileName`, `FileSize`, `Attributes`, `Sequence`) values "
      "(?, "
      "?, ?, ?, ?, ?)",
      {"_id_1", "C1", "A.TXT|Long Name.txt", 70000, 0, 40000});
  EXPECT_THAT(Query("select `FileSize`from `File` where `File` = ?", {"_id_1"}), ElementsAre("70000"));
  EXPECT_THAT(Query("SELECT Sequence,Attributes FROM File"), ElementsAre("40000|0"));
  Run("insert into `Component` (`Component`, `Directory_`) values ('C1', 'INSTALLDIR')");
  EXPECT_THAT(Query("SELECT File,FileName,Directory_,Sequence,File.Attributes FROM File,Component WHERE "
                    "Component_=Component ORDER BY Directory_"),
              ElementsAre("_id_1|A.TXT|Long Name.txt|INSTALLDIR|40000|0"));
  EXPECT_THAT(Query("select `File`.`File`, `Component`.`Directory_` from `File`, `Component` where "
                    "`Component`.`Component` = `File`.`Component_`"),
              ElementsAre("_id_1|INSTALLDIR"));
  Run("update `File` set `FileName` = ? where `File` = ?", {"a.txt|long name.txt", "_id_1"});
  EXPECT_THAT(Query("select `File`, `FileName` from `File`"), ElementsAre("_id_1|a.txt|long name.txt"));
}

TEST_P(InstallerContract, ATemporaryColumnServesAndNeverReachesTheFile) {
  Make();
  Run("insert into `File` (`File`, `Component_`, `FileName`, `FileSize`, `Sequence`) values (?, ?, ?, ?, ?)",
      {"a", "C", "x.txt", 1, 1});
  Run("alter table `File` add `_id_path` char temporary hold");
  Run("update `File` set `_id_path` = ? where `File` = ?", {"C:\\dir", "a"});
  EXPECT_THAT(Query("select `FileName`, `_id_path` from `File` where `File`.`File` = ?", {"a"}),
              ElementsAre("x.txt|C:\\dir"));
  EXPECT_THAT(Query("select `File` from `File` where `FileName` = ? and `_id_path` = ? and `File` <> ?",
                    {"x.txt", "C:\\dir", "b"}),
              ElementsAre("a"));
  EXPECT_TRUE(database->Commit().ok());
  EXPECT_THAT(QueryCopy("select * from `File`"), ElementsAre("a|C|x.txt|1||1"));
}

TEST_P(InstallerContract, BadStatementsFailWithTheStatement) {
  Make();
  EXPECT_FALSE(database->OpenView("selekt").ok());
  const auto missing = database->OpenView("select `X` from `Nowhere`");
  ASSERT_FALSE(missing.ok());
  EXPECT_THAT(missing.error().message, ::testing::HasSubstr("Nowhere"));
  Run("insert into `Property` (`Property`, `Value`) values ('A', '1')");
  EXPECT_FALSE(Try("insert into `Property` (`Property`, `Value`) values ('A', '2')").ok());
}

TEST_P(InstallerContract, StreamsAreReadInPieces) {
  Make();
  std::string bytes;
  for (int i = 0; i < 3000; ++i) bytes += static_cast<char>(i * 7);
  PutBinary("Binary", "big", bytes);
  EXPECT_EQ(ReadBinary("big", 1024), bytes);
  EXPECT_EQ(ReadBinary("big", 3000), bytes);
  PutBinary("Binary", "small", "x");
  EXPECT_EQ(ReadBinary("small", 1024), "x");
  EXPECT_EQ(ReadBinary("none", 1024), "(no row)");
}

TEST_P(InstallerContract, AnEmptyStreamIsARowOfItsOwn) {
  Make();
  PutBinary("Binary", "empty", "");
  EXPECT_EQ(ReadBinary("empty", 1024), "");
}

TEST_P(InstallerContract, AReplacedStreamHasItsNewBytes) {
  Make();
  PutBinary("Binary", "a", std::string(9000, 'o'));
  EXPECT_TRUE(database->Commit().ok());
  Run("delete from `Binary` where `Name` = 'a'");
  PutBinary("Binary", "a", "new");
  EXPECT_TRUE(database->Commit().ok());
  database.reset();
  Open(OpenMode::kReadOnly);
  EXPECT_EQ(ReadBinary("a", 1024), "new");
}

TEST_P(InstallerContract, AStreamWantsAFileThatCanBeRead) {
  auto record = installer.CreateRecord(1);
  const Status missing = record->SetStream(1, folder + "\\missing");
  EXPECT_FALSE(missing.ok());
  EXPECT_THAT(missing.message(), ::testing::HasSubstr(" " + folder + "\\missing"));
  EXPECT_FALSE(record->ReadStream(1, 10).ok());
}

TEST_P(InstallerContract, AFailureNamesTheDatabaseAsItWasAskedFor) {
  const auto opened = installer.OpenDatabase(folder + "\\missing.msi", OpenMode::kDirect);
  ASSERT_FALSE(opened.ok());
  EXPECT_THAT(opened.error().message, ::testing::HasSubstr(" " + folder + "\\missing.msi"));
}

TEST_P(InstallerContract, RowsAreModifiedThroughAView) {
  Make();
  for (int i = 1; i <= 3; ++i) {
    Run("insert into `Media` (`DiskId`, `LastSequence`, `Cabinet`) values (?, ?, ?)", {i, i * 10, "c.cab"});
  }
  auto view = database->OpenView("SELECT DiskId, LastSequence, Cabinet FROM Media ORDER BY DiskId");
  ASSERT_TRUE(view.ok());
  ASSERT_TRUE((*view)->Execute(nullptr).ok());
  auto first = *(*view)->Fetch();
  EXPECT_TRUE(first->SetStringData(3, "").ok());
  EXPECT_TRUE(first->SetIntegerData(2, 9999).ok());
  EXPECT_TRUE((*view)->Modify(ModifyMode::kUpdate, *first).ok());
  while (const auto next = *(*view)->Fetch()) EXPECT_TRUE((*view)->Modify(ModifyMode::kDelete, *next).ok());
  EXPECT_THAT(Query("select * from `Media`"), ElementsAre("1|9999|"));
  auto added = MakeRecord({2, 5, "d.cab"});
  EXPECT_TRUE((*view)->Modify(ModifyMode::kInsert, *added).ok());
  EXPECT_FALSE((*view)->Modify(ModifyMode::kInsert, *added).ok());
  EXPECT_TRUE(added->SetIntegerData(2, 6).ok());
  EXPECT_TRUE((*view)->Modify(ModifyMode::kAssign, *added).ok());
  EXPECT_THAT(Query("select * from `Media` order by `DiskId`"), ElementsAre("1|9999|", "2|6|d.cab"));
}

TEST_P(InstallerContract, AJoinedViewUpdatesItsOwnTable) {
  Make();
  Run("insert into `File` (`File`, `Component_`, `FileName`, `FileSize`, `Sequence`) values ('a', 'C', 'x', "
      "1, "
      "5)");
  Run("insert into `Component` (`Component`, `Directory_`) values ('C', 'D')");
  auto view = database->OpenView(
      "SELECT File,FileName,Directory_,Sequence,File.Attributes FROM File,Component WHERE "
      "Component_=Component ORDER BY Directory_");
  ASSERT_TRUE(view.ok());
  ASSERT_TRUE((*view)->Execute(nullptr).ok());
  auto record = *(*view)->Fetch();
  EXPECT_TRUE(record->SetIntegerData(4, 6).ok());
  EXPECT_TRUE((*view)->Modify(ModifyMode::kUpdate, *record).ok());
  EXPECT_THAT(Query("select `Sequence` from `File`"), ElementsAre("6"));
}

TEST_P(InstallerContract, ATableOfStreamsIsExportedAsFiles) {
  Make();
  PutBinary("Cabs", "Cab1.CAB", "MSCF and more");
  ASSERT_TRUE(files.CreateFolder(folder + "\\out").ok());
  const Status exported = database->Export("Cabs", folder + "\\out", "Cabs.idt");
  EXPECT_TRUE(exported.ok()) << exported.message();
  EXPECT_EQ(files.ReadFile(folder + "\\out\\Cabs\\Cab1.CAB").value_or(""), "MSCF and more");
  EXPECT_THAT(files.ReadFile(folder + "\\out\\Cabs.idt").value_or(""), ::testing::HasSubstr("Cab1.CAB"));
  Run("delete from `Cabs` where `Name` = 'Cab1.CAB'");
  const Status imported = database->Import(folder + "\\out", "Cabs.idt");
  EXPECT_TRUE(imported.ok()) << imported.message();
  EXPECT_THAT(Query("select `Name` from `Cabs`"), ElementsAre("Cab1.CAB"));
}

TEST_P(InstallerContract, SummaryPropertiesAreKept) {
  Make();
  {
    auto info = database->SummaryInformation(4);
    ASSERT_TRUE(info.ok());
    EXPECT_EQ((*info)->IntegerProperty(15), 0);
    EXPECT_TRUE((*info)->SetIntegerProperty(15, 3).ok());
    EXPECT_TRUE((*info)->SetTextProperty(7, "Intel;1033").ok());
    EXPECT_TRUE((*info)->SetTimePropertyToNow(11).ok());
    EXPECT_TRUE((*info)->SetTimePropertyToNow(13).ok());
    EXPECT_FALSE((*info)->SetIntegerProperty(14, 1).ok());
    EXPECT_TRUE((*info)->Persist().ok());
  }
  ASSERT_TRUE(files.CopyFile(path, folder + "\\copy.msi", true).ok());
  auto copy = installer.OpenDatabase(folder + "\\copy.msi", OpenMode::kReadOnly);
  ASSERT_TRUE(copy.ok());
  auto info = (*copy)->SummaryInformation(0);
  ASSERT_TRUE(info.ok());
  EXPECT_EQ((*info)->IntegerProperty(15), 3);
  EXPECT_EQ((*info)->TextProperty(7), "Intel;1033");
  EXPECT_EQ((*info)->TextProperty(2), "");
}

TEST_P(InstallerContract, ASessionKnowsTheSourceAndChangesNothing) {
  Make();
  Run("insert into `Directory` (`Directory`, `DefaultDir`) values ('TARGETDIR', 'SourceDir')");
  Run("insert into `Property` (`Property`, `Value`) values ('ProductName', 'Kestrane')");
  {
    auto info = database->SummaryInformation(1);
    ASSERT_TRUE(info.ok());
    EXPECT_TRUE((*info)->SetIntegerProperty(15, 3).ok());
    EXPECT_TRUE((*info)->Persist().ok());
  }
  installer.SetUiLevel(2);
  {
    auto session = installer.OpenPackage(database);
    ASSERT_TRUE(session.ok()) << session.error().message;
    EXPECT_TRUE((*session)->Mode(9));
    EXPECT_FALSE((*session)->Mode(1));
    EXPECT_EQ((*session)->Property("ProductName"), "Kestrane");
    EXPECT_EQ((*session)->Property("Nothing"), "");
    EXPECT_TRUE((*session)->SetProperty("OriginalDatabase", folder).ok());
    EXPECT_EQ((*session)->Property("OriginalDatabase"), folder);
    EXPECT_EQ((*session)->DoAction("CostInitialize"), 1);
    EXPECT_EQ((*session)->DoAction("NoSuchAction"), 0);
    EXPECT_FALSE(installer.OpenPackage(database).ok());
  }
  EXPECT_TRUE(installer.OpenPackage(database).ok());
  EXPECT_THAT(Query("select `Property` from `Property`"), ElementsAre("ProductName"));
}

TEST_P(InstallerContract, LongSourceNamesAreNoShortNames) {
  Make();
  Run("insert into `Directory` (`Directory`, `Directory_Parent`, `DefaultDir`) values ('A', 'Missing', 'x')");
  auto session = installer.OpenPackage(database);
  ASSERT_TRUE(session.ok()) << session.error().message;
  EXPECT_FALSE((*session)->Mode(9));
  EXPECT_EQ((*session)->DoAction("CostInitialize"), 3);
}

TEST_P(InstallerContract, SizesOfFilesAreTold) {
  EXPECT_EQ(installer.FileSize(PutFile("a", "12345")), 5);
  EXPECT_EQ(installer.FileSize(folder + "\\missing"), -1);
  EXPECT_EQ(installer.FileSize(folder), -1);
}

TEST_P(InstallerContract, ProductsThatAreNotThereHaveNoFeatures) {
  EXPECT_THAT(installer.RelatedProducts("{00000000-0000-0000-0000-000000000001}"), ElementsAre());
  EXPECT_EQ(installer.FeatureState("{00000000-0000-0000-0000-000000000001}", "Console"), -1);
}

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_INSTALLER_CONTRACT_H_
