#include <climits>

#include "msi/test_support.h"

namespace kw::msi {
namespace {

class SqlTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    MakePackage();
    Ok("insert into `Feature` (`Feature`, `Feature_Parent`, `Title`, `Display`, `Level`, `Attributes`) "
       "values "
       "('Top', '', 'The top', 2, 1, 0)");
    Ok("insert into `Feature` (`Feature`, `Feature_Parent`, `Title`, `Display`, `Level`, `Attributes`) "
       "values "
       "('Low', 'Top', 'below', 0, 3, 0)");
    Ok("insert into `Feature` (`Feature`, `Feature_Parent`, `Title`, `Level`, `Attributes`) values "
       "('Nil', 'Top', 'Zeta', 30000, 0)");
    for (const char* key : {"f1", "f2", "f3", "_id_1"}) {
      const std::string k = key;
      Ok("insert into `File` (`File`, `Component_`, `FileName`, `FileSize`, `Attributes`, `Sequence`) values "
         "('" +
         k + "', 'c" + k + "', '" + k + ".TXT', 70000, 0, 5)");
      Ok("insert into `Component` (`Component`, `Directory_`, `Attributes`) values ('c" + k + "', 'D" +
         std::string(1, static_cast<char>('Z' - k.back() % 7)) + "', 256)");
    }
  }
  void Ok(const std::string& sql, const std::vector<Value>& parameters = {}) {
    const Status status = RunSql(*db, sql, parameters);
    EXPECT_TRUE(status.ok()) << sql << ": " << status.message();
  }
  int Number(const std::string& sql, const std::vector<Value>& parameters = {}) {
    return RunSql(*db, sql, parameters).number();
  }
  Rows Select(const std::string& sql, const std::vector<Value>& parameters = {}) {
    return QueryRows(*db, sql, parameters);
  }
};

TEST_F(SqlTest, TheStatementsOfTheWizardRunAsTheyAreWritten) {
  EXPECT_EQ(Select("select `FileSize`from `File` where `File` = ?", {T("f1")}), (Rows{{"70000"}}));
  Ok("update `Feature` set `Display` = '5' where `Feature` = 'Low'");
  EXPECT_EQ(Select("select `Display` from `Feature` where `Feature` = 'Low'"), (Rows{{"5"}}));
  EXPECT_EQ(Select("select * from `Feature` where `Display` <> 0 and `Feature_Parent` = ''"),
            (Rows{{"Top", "", "The top", "2", "1", "0"}}));
  EXPECT_EQ(Select("SELECT File,FileName,Directory_,Sequence,File.Attributes FROM File,Component WHERE "
                   "Component_=Component ORDER BY Directory_"),
            (Rows{{"f3", "f3.TXT", "DX", "5", "0"},
                  {"f2", "f2.TXT", "DY", "5", "0"},
                  {"f1", "f1.TXT", "DZ", "5", "0"},
                  {"_id_1", "_id_1.TXT", "DZ", "5", "0"}}));
  Ok("alter table `File` add `_id_path` char temporary hold");
  EXPECT_EQ(Select("select `File`.`File`, `Component`.`Directory_` from `File`, `Component` where "
                   "`Component`.`Component` = `File`.`Component_`")
                .size(),
            4u);
  Ok("update `File` set `_id_path` = ? where `File` = ?", {T("x\\y"), T("f2")});
  EXPECT_EQ(Select("select `FileName`, `_id_path` from `File` where `File`.`File` = ?", {T("f2")}),
            (Rows{{"f2.TXT", "x\\y"}}));
  EXPECT_EQ(Select("select `File` from `File` where `FileName` = ? and `_id_path` = ? and `File` <> ?",
                   {T("f2.TXT"), T("x\\y"), T("f1")}),
            (Rows{{"f2"}}));
  storage.Content("x.bin") = "bytes";
  Ok("insert into `Binary` (`Data`, `Name`) values (?, 'x')",
     {Value::Stream(std::make_shared<StreamField>(storage, "x.bin"))});
  EXPECT_EQ(Select("SELECT `Name`,`Data` FROM Cabs"), Rows{});
  EXPECT_EQ(Select("select `Name`, `Data` from `Binary`"), (Rows{{"x", "bytes"}}));
  EXPECT_EQ(Select("select `Feature`, `Level` from `Feature` where `Feature_Parent` = 'Top' and `Feature` <> "
                   "'_id_feature' order by `Display`"),
            (Rows{{"Nil", "30000"}, {"Low", "3"}}));
}

TEST_F(SqlTest, EmptyTextIsNull) {
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Feature_Parent` is null"), (Rows{{"Top"}}));
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Feature_Parent` = ?", {T("")}), (Rows{{"Top"}}));
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Feature_Parent` <> ''").size(), 2u);
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Feature_Parent` is not null").size(), 2u);
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Display` = ''"), (Rows{{"Nil"}}));
}

TEST_F(SqlTest, NumbersMayStandInQuotes) {
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Level`='30000'"), (Rows{{"Nil"}}));
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Level` < ?", {T("3")}), (Rows{{"Top"}}));
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Level` = 'three'"), Rows{});
  Ok("insert into `Component` (`Component`, `Directory_`, `Attributes`) values ('n', 'd', '-5')");
  EXPECT_EQ(Select("select `Attributes` from `Component` where `Component` = 'n'"), (Rows{{"-5"}}));
  Ok("update `Component` set `Attributes` = ?, `Directory_` = ? where `Component` = 'n'", {T("12"), I(34)});
  EXPECT_EQ(Select("select `Attributes`, `Directory_` from `Component` where `Component` = 'n'"),
            (Rows{{"12", "34"}}));
}

TEST_F(SqlTest, TextComparesExactlyAndOrdersByCodePoints) {
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Title` = 'zeta'"), Rows{});
  EXPECT_EQ(Select("select `Title` from `Feature` order by `Title`"),
            (Rows{{"The top"}, {"Zeta"}, {"below"}}));
  EXPECT_EQ(Select("select `Title` from `Feature` where `Title` >= 'Zeta'").size(), 2u);
}

TEST_F(SqlTest, NullsComeFirstAndEqualRowsKeepTheirOrder) {
  EXPECT_EQ(Select("select `Feature` from `Feature` order by `Display`"), (Rows{{"Nil"}, {"Low"}, {"Top"}}));
  EXPECT_EQ(Select("select `Feature` from `Feature` order by `Feature_Parent`, `Level`"),
            (Rows{{"Top"}, {"Low"}, {"Nil"}}));
  EXPECT_EQ(Select("select `Feature` from `Feature` order by `Attributes`"),
            (Rows{{"Top"}, {"Low"}, {"Nil"}}));
}

TEST_F(SqlTest, ConditionsCombine) {
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Level` = 1 or `Level` = 3 and `Display` <> 0"),
            (Rows{{"Top"}}));
  EXPECT_EQ(Select("select `Feature` from `Feature` where (`Level` = 1 or `Level` = 3) and `Display` = 0"),
            (Rows{{"Low"}}));
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Level` >= 3 and `Level` <= 3"), (Rows{{"Low"}}));
  EXPECT_EQ(Select("select `Feature` from `Feature` where 3 < `Level`"), (Rows{{"Nil"}}));
  EXPECT_EQ(Select("select `Feature` from `Feature` where `Level` > `Display`").size(), 2u);
}

TEST_F(SqlTest, KeywordsAreFoundInAnyCaseAndNamesInAnyDress) {
  EXPECT_EQ(Select("sElEcT distinct Feature.Attributes fRoM Feature"), (Rows{{"0"}}));
  EXPECT_EQ(Select("SELECT `Feature`.`Level` FROM Feature WHERE Feature.Feature='Low'"), (Rows{{"3"}}));
  EXPECT_EQ(Number("select `feature` from `Feature`"), kErrorBadQuerySyntax);
  EXPECT_EQ(Number("select * from `feature`"), kErrorBadQuerySyntax);
}

TEST_F(SqlTest, WhatIsNoStatementIsRefusedWithItsText) {
  for (const char* sql : {"",
                          "select",
                          "select * from",
                          "select * from `Feature` where",
                          "select * from `Feature` where `Level`",
                          "select * from `Feature` where `Level` = ",
                          "select * from `Feature` order",
                          "select * from `Feature",
                          "select * from `Feature` where `Title` = 'it''s'",
                          "insert into `Feature` values",
                          "update `Feature`",
                          "delete `Feature`",
                          "select * from `Feature` x",
                          "drop `Feature`",
                          "create table `X` (`A` CHAR(3))",
                          "create table `X` (`A` CHAR(300) primary key `A`)",
                          "create table `X` (`A` CHAR(3) primary key `B`)",
                          "alter table `Feature` add",
                          "select * from `Feature`, `Feature`",
                          "select # from `Feature`",
                          "update `Feature` set `Level` = `Display`",
                          "insert into `Feature` (`Feature`) values ('a', 'b')",
                          "select * from `Feature` where `Level` = 99999999999"}) {
    EXPECT_EQ(Number(sql), kErrorBadQuerySyntax) << sql;
  }
  EXPECT_NE(RunSql(*db, "select * fron `Feature`").message().find("select * fron `Feature`"),
            std::string::npos);
  EXPECT_EQ(RunSql(*db, "select `X` from `Feature`").message(),
            "There is no column X. The statement is \"select `X` from `Feature`\".");
  const std::string deep = "select * from `Feature` where " + std::string(5000, '(') + "`Level` = 1";
  EXPECT_EQ(Number(deep), kErrorBadQuerySyntax);
}

TEST_F(SqlTest, AStatementWantsAllItsParameters) {
  EXPECT_EQ(Number("select * from `Feature` where `Level` = ?"), kErrorInvalidParameter);
  EXPECT_EQ(Number("insert into `Property` (`Property`, `Value`) values (?, ?)", {T("a")}),
            kErrorInvalidParameter);
}

TEST_F(SqlTest, ValuesThatDoNotFitChangeNothing) {
  const std::string before = Dump(*db);
  EXPECT_EQ(Number("insert into `Feature` (`Feature`, `Level`, `Attributes`) values ('Top', 1, 0)"),
            kErrorFunctionFailed);
  EXPECT_EQ(Number("insert into `Feature` (`Feature`, `Attributes`) values ('New', 0)"),
            kErrorFunctionFailed);
  EXPECT_EQ(Number("insert into `Feature` (`Feature`, `Level`, `Attributes`) values ('', 1, 0)"),
            kErrorFunctionFailed);
  EXPECT_EQ(Number("update `Feature` set `Level` = 32768"), kErrorFunctionFailed);
  EXPECT_EQ(Number("update `Feature` set `Level` = -32768"), kErrorFunctionFailed);
  EXPECT_EQ(Number("update `Feature` set `Title` = 'changed', `Level` = 'much'"), kErrorFunctionFailed);
  EXPECT_EQ(Number("update `Feature` set `Level` = ''"), kErrorFunctionFailed);
  EXPECT_EQ(Number("update `Feature` set `Feature` = 'Other' where `Feature` = 'Top'"), kErrorFunctionFailed);
  EXPECT_EQ(Number("update `File` set `FileSize` = ?", {I(INT_MIN)}), kErrorFunctionFailed);
  EXPECT_EQ(Number("insert into `Binary` (`Name`, `Data`) values ('t', 'text')"), kErrorFunctionFailed);
  EXPECT_EQ(Number("insert into `Property` (`Property`, `Value`) values ('a', ?)", {T("ä")}),
            kErrorUnrepresentableText);
  EXPECT_EQ(Number("delete from `_Tables`"), kErrorFunctionFailed);
  EXPECT_EQ(Dump(*db), before);
}

TEST_F(SqlTest, TheLimitsOfIntegersFit) {
  Ok("update `Feature` set `Level` = 32767 where `Feature` = 'Top'");
  Ok("update `Feature` set `Level` = -32767 where `Feature` = 'Low'");
  Ok("update `File` set `FileSize` = 2147483647 where `File` = 'f1'");
  Ok("update `File` set `FileSize` = -2147483647 where `File` = 'f2'");
  Cycle();
  EXPECT_EQ(Select("select `Level` from `Feature` where `Feature` <> 'Nil' order by `Level`"),
            (Rows{{"-32767"}, {"32767"}}));
  EXPECT_EQ(Select("select `FileSize` from `File` where `FileSize` <> 70000 order by `FileSize`"),
            (Rows{{"-2147483647"}, {"2147483647"}}));
}

TEST_F(SqlTest, LengthsOfTextAreNotEnforced) {
  const std::string text(70000, 'x');
  Ok("update `Feature` set `Title` = ? where `Feature` = 'Top'", {T(text)});
  Ok("insert into `Property` (`Property`, `Value`) values ('after', 'the long text')");
  Cycle();
  EXPECT_EQ(Select("select `Title` from `Feature` where `Feature` = 'Top'"), (Rows{{text}}));
  EXPECT_EQ(Select("select `Value` from `Property` where `Property` = 'after'"), (Rows{{"the long text"}}));
}

TEST_F(SqlTest, ASelectKeepsItsRowsWhileOthersChangeThem) {
  const auto view = Get(db->OpenView("select `File`, `FileName` from `File`"));
  KW_EXPECT_OK(view->Execute(nullptr));
  int count = 0;
  while (const std::optional<Record> record = Get(view->Fetch())) {
    ++count;
    Ok("update `File` set `FileName` = ? where `File` = ?",
       {T(Numbered("low", static_cast<long long>(count))), T(record->StringData(1))});
    if (count == 1) Ok("delete from `File` where `File` = 'f2'");
    if (count == 2)
      Ok("insert into `File` (`File`, `Component_`, `FileName`, `FileSize`, `Sequence`) values ('z', 'c', "
         "'n', 1, 1)");
  }
  EXPECT_EQ(count, 3);
}

TEST_F(SqlTest, TablesComeAndGo) {
  Ok("CREATE TABLE `All` (`K` CHAR(10) NOT NULL, `N` SHORT NOT NULL, `C` CHARACTER(20), `L` LONGCHAR "
     "LOCALIZABLE, `I` INT, "
     "`J` INTEGER, `O` LONG, `B` OBJECT PRIMARY KEY `K`, `N`)");
  Ok("insert into `All` (`K`, `N`, `C`, `L`, `I`, `J`, `O`) values ('k', 1, 'c', 'l', 2, 3, 4)");
  Ok("insert into `All` (`K`, `N`) values ('k', 2)");
  Cycle();
  EXPECT_EQ(Select("select * from `All` where `K` = 'k' and `N` = 1"),
            (Rows{{"k", "1", "c", "l", "2", "3", "4", ""}}));
  auto view = Get(db->OpenView("select * from `All`"));
  const Record types = Get(view->ColumnTypes());
  std::string list;
  for (int i = 1; i <= types.FieldCount(); ++i) list += types.StringData(i) + " ";
  EXPECT_EQ(list, "s10 i2 S20 L0 I2 I2 I4 V0 ");
  EXPECT_EQ(Get(view->ColumnNames()).StringData(3), "C");
  const Record keys = Get(db->PrimaryKeys("All"));
  EXPECT_EQ(keys.FieldCount(), 2);
  EXPECT_EQ(keys.StringData(2), "N");
  view.reset();
  Ok("ALTER TABLE `All` ADD `New` SHORT");
  Ok("update `All` set `New` = 7 where `N` = 2 and `K` = 'k'");
  Cycle();
  EXPECT_EQ(Select("select `New` from `All` order by `N`"), (Rows{{""}, {"7"}}));
  Ok("drop table `All`");
  EXPECT_EQ(db->TablePersistent("All"), Persistence::kNone);
  Cycle();
  EXPECT_EQ(Number("select * from `All`"), kErrorBadQuerySyntax);
  EXPECT_EQ(Select("select `Name` from `_Columns` where `Table` = 'All'"), Rows{});
}

TEST_F(SqlTest, TemporaryRowsColumnsAndTablesStayOutOfTheFile) {
  Cycle();
  const std::string before = Dump(*db);
  Ok("insert into `Property` (`Property`, `Value`) values ('Secret', 'nowhere') temporary");
  Ok("alter table `File` add `_id_path` char temporary hold");
  Ok("update `File` set `_id_path` = 'hidden' where `File` = 'f1'");
  Ok("create table `Temp` (`A` CHAR(5) NOT NULL TEMPORARY, `B` OBJECT TEMPORARY primary key `A`) hold");
  storage.Content("t.bin") = std::string(9000, 't');
  Ok("insert into `Temp` (`A`, `B`) values ('1', ?)",
     {Value::Stream(std::make_shared<StreamField>(storage, "t.bin"))});
  EXPECT_EQ(db->TablePersistent("Temp"), Persistence::kTemporary);
  EXPECT_EQ(Select("select `B` from `Temp`"), (Rows{{std::string(9000, 't')}}));
  EXPECT_EQ(Select("select `Value` from `Property` where `Property` = 'Secret'"), (Rows{{"nowhere"}}));
  Cycle();
  EXPECT_EQ(Dump(*db), before);
  const std::string& file = storage.Content("a.msi");
  EXPECT_EQ(file.find("nowhere"), std::string::npos);
  EXPECT_EQ(file.find("hidden"), std::string::npos);
  EXPECT_EQ(file.find("tttttttt"), std::string::npos);
}

TEST_F(SqlTest, FreeUndoesTheLastHold) {
  Ok("alter table `File` add `_id_path` char temporary hold");
  Ok("alter table `File` hold");
  Ok("alter table `File` free");
  Ok("select `_id_path` from `File`");
  Ok("alter table `File` free");
  EXPECT_EQ(Number("select `_id_path` from `File`"), kErrorBadQuerySyntax);
  Ok("alter table `File` add `_id_path` char temporary hold");
}

TEST_F(SqlTest, ModifyInsertsUpdatesAssignsAndDeletes) {
  auto view = Get(db->OpenView("select `Property`, `Value` from `Property`"));
  KW_EXPECT_OK(view->Execute(nullptr));
  Record row(2);
  KW_EXPECT_OK(row.SetString(1, "P"));
  KW_EXPECT_OK(row.SetString(2, "1"));
  KW_EXPECT_OK(view->Modify(ModifyMode::kInsert, row));
  EXPECT_FALSE(view->Modify(ModifyMode::kInsert, row).ok());
  KW_EXPECT_OK(row.SetString(2, "2"));
  KW_EXPECT_OK(view->Modify(ModifyMode::kAssign, row));
  EXPECT_EQ(Select("select `Value` from `Property`"), (Rows{{"2"}}));
  EXPECT_FALSE(view->Modify(ModifyMode::kUpdate, row).ok()) << "the record was not fetched";
  KW_EXPECT_OK(view->Execute(nullptr));
  std::optional<Record> fetched = Get(view->Fetch());
  KW_EXPECT_OK(fetched->SetString(2, "3"));
  KW_EXPECT_OK(view->Modify(ModifyMode::kUpdate, *fetched));
  EXPECT_EQ(Select("select `Value` from `Property`"), (Rows{{"3"}}));
  KW_EXPECT_OK(fetched->SetString(1, "Q"));
  EXPECT_FALSE(view->Modify(ModifyMode::kUpdate, *fetched).ok()) << "the key cannot be changed";
  KW_EXPECT_OK(view->Modify(ModifyMode::kRefresh, *fetched));
  EXPECT_EQ(fetched->StringData(1), "P");
  KW_EXPECT_OK(view->Modify(ModifyMode::kDelete, *fetched));
  EXPECT_EQ(Select("select `Value` from `Property`"), Rows{});
  EXPECT_FALSE(view->Modify(ModifyMode::kDelete, *fetched).ok());
}

TEST_F(SqlTest, ModifyUpdatesThroughAJoin) {
  auto view =
      Get(db->OpenView("SELECT File,FileName,Directory_,Sequence,File.Attributes FROM File,Component WHERE "
                       "Component_=Component ORDER BY Directory_"));
  KW_EXPECT_OK(view->Execute(nullptr));
  int sequence = 100;
  while (std::optional<Record> record = Get(view->Fetch())) {
    KW_EXPECT_OK(record->SetInteger(4, ++sequence));
    KW_EXPECT_OK(view->Modify(ModifyMode::kUpdate, *record));
  }
  EXPECT_EQ(Select("select `File` from `File` order by `Sequence`"),
            (Rows{{"f3"}, {"f2"}, {"f1"}, {"_id_1"}}));
  KW_EXPECT_OK(view->Execute(nullptr));
  std::optional<Record> record = Get(view->Fetch());
  const std::string before = Dump(*db);
  KW_EXPECT_OK(record->SetString(3, "Elsewhere"));
  KW_EXPECT_OK(record->SetInteger(4, 40000));
  EXPECT_FALSE(view->Modify(ModifyMode::kUpdate, *record).ok());
  EXPECT_EQ(Dump(*db), before) << "neither table may change when one refuses";
}

TEST_F(SqlTest, AssignReplacesAStream) {
  auto view = Get(db->OpenView("SELECT `Name`,`Data` FROM Cabs"));
  KW_EXPECT_OK(view->Execute(nullptr));
  for (const size_t size : {5000u, 100u, 300000u, 0u}) {
    storage.Content("cab") = std::string(size, static_cast<char>('a' + size % 7));
    Record record(2);
    KW_EXPECT_OK(record.SetString(1, "Cab1.CAB"));
    KW_EXPECT_OK(record.SetStream(2, storage, "cab"));
    KW_EXPECT_OK(view->Modify(ModifyMode::kAssign, record));
    EXPECT_EQ(Select("SELECT `Name`,`Data` FROM Cabs"), (Rows{{"Cab1.CAB", storage.Content("cab")}}));
    EXPECT_EQ(Select("SELECT `Data` FROM `_Streams` WHERE `Name` = 'Cabs.Cab1.CAB'"),
              (Rows{{storage.Content("cab")}}));
  }
  view.reset();
  Cycle();
  EXPECT_EQ(Select("SELECT `Name`,`Data` FROM Cabs"), (Rows{{"Cab1.CAB", ""}}));
  view = Get(db->OpenView("SELECT `Name`,`Data` FROM Cabs"));
  KW_EXPECT_OK(view->Execute(nullptr));
  std::optional<Record> row = Get(view->Fetch());
  EXPECT_FALSE(row->IsNull(2)) << "a stream of no bytes is there all the same";
  KW_EXPECT_OK(view->Modify(ModifyMode::kDelete, *row));
  EXPECT_EQ(Select("SELECT `Name` FROM `_Streams`"), Rows{});
}

TEST_F(SqlTest, AFetchedStreamOutlivesItsRow) {
  for (const size_t size : {300u, 9000u}) {
    storage.Content("in") = std::string(size, 'q');
    Ok("insert into `Binary` (`Name`, `Data`) values ('b', ?)",
       {Value::Stream(std::make_shared<StreamField>(storage, "in"))});
    KW_EXPECT_OK(db->Commit());
    auto view = Get(db->OpenView("select `Data` from `Binary`"));
    KW_EXPECT_OK(view->Execute(nullptr));
    std::optional<Record> row = Get(view->Fetch());
    Ok("delete from `Binary`");
    KW_EXPECT_OK(db->Commit());
    storage.Content("in") = std::string(size, 'z');
    Ok("insert into `Binary` (`Name`, `Data`) values ('c', ?)",
       {Value::Stream(std::make_shared<StreamField>(storage, "in"))});
    KW_EXPECT_OK(db->Commit());
    EXPECT_EQ(Get(row->ReadStream(1, 100000)), std::string(size, 'q'));
    Ok("delete from `Binary`");
  }
}

TEST_F(SqlTest, StreamsCanBeAddedAndRemovedByName) {
  storage.Content("in") = "1234";
  const Value stream = Value::Stream(std::make_shared<StreamField>(storage, "in"));
  Ok("INSERT INTO `_Streams` (`Name`, `Data`) VALUES ('cab1.cab', ?)", {stream});
  EXPECT_EQ(Number("INSERT INTO `_Streams` (`Name`, `Data`) VALUES ('cab1.cab', ?)", {stream}),
            kErrorFunctionFailed);
  EXPECT_EQ(
      Number("INSERT INTO `_Streams` (`Name`, `Data`) VALUES ('" + std::string(80, 'n') + "', ?)", {stream}),
      kErrorInvalidName);
  Cycle();
  EXPECT_EQ(Select("SELECT `Name`, `Data` FROM `_Streams`"), (Rows{{"cab1.cab", "1234"}}));
  Ok("DELETE FROM `_Streams` WHERE `Name` = 'cab1.cab'");
  Cycle();
  EXPECT_EQ(Select("SELECT `Name` FROM `_Streams`"), Rows{});
}

TEST_F(SqlTest, ATextMovesFromOneColumnToAnotherInOneUpdate) {
  // Each text has one use, which goes before the next comes.
  Ok("insert into `Component` (`Component`, `ComponentId`, `Directory_`, `Attributes`) values ('swap', "
     "'left', "
     "'right', 0)");
  for (const char* mode : {"direct", "committed"}) {
    Ok("update `Component` set `ComponentId` = 'right', `Directory_` = 'left' where `Component` = 'swap'");
    EXPECT_EQ(
        QueryRows(*db, "select `ComponentId`, `Directory_` from `Component` where `Component` = 'swap'"),
        (Rows{{"right", "left"}}))
        << mode;
    Ok("update `Component` set `ComponentId` = 'left', `Directory_` = 'right' where `Component` = 'swap'");
    Ok("insert into `Property` (`Property`, `Value`) values ('" + std::string(mode) + "', 'in its place')");
    Cycle();
    EXPECT_EQ(
        QueryRows(*db, "select `ComponentId`, `Directory_` from `Component` where `Component` = 'swap'"),
        (Rows{{"left", "right"}}))
        << mode;
  }
}

TEST_F(SqlTest, AStorageIsNeitherAddedNorChangedByAStatement) {
  storage.Content("in") = "bytes";
  const std::string before = Dump(*db);
  const Status status =
      RunSql(*db, "insert into `_Storages` (`Name`, `Data`) values ('s', ?)", {FileValue(storage, "in")});
  EXPECT_EQ(status.number(), kErrorUnsupported);
  EXPECT_EQ(status.message(), "A storage can be read and removed, but not added or changed.");
  EXPECT_EQ(RunSql(*db, "insert into `_Storages` (`Name`) values ('s')").number(), kErrorUnsupported);
  EXPECT_EQ(RunSql(*db, "insert into `_Storages` (`Name`) values ('s') temporary").number(),
            kErrorUnsupported);
  EXPECT_EQ(QueryRows(*db, "select `Name` from `_Storages`"), Rows{});
  EXPECT_EQ(Dump(*db), before);
}

TEST_F(SqlTest, ADatabaseOpenedForReadingTakesTemporaryThingsOnly) {
  Cycle(OpenMode::kReadOnly);
  EXPECT_EQ(Number("delete from `Feature`"), kErrorAccessDenied);
  EXPECT_EQ(Number("update `Feature` set `Level` = 1"), kErrorAccessDenied);
  EXPECT_EQ(Number("insert into `Property` (`Property`, `Value`) values ('a', 'b')"), kErrorAccessDenied);
  EXPECT_EQ(Number("drop table `Feature`"), kErrorAccessDenied);
  EXPECT_EQ(db->Commit().number(), kErrorAccessDenied);
  Ok("insert into `Property` (`Property`, `Value`) values ('a', 'b') temporary");
  Ok("alter table `File` add `_p` char temporary");
  Ok("update `File` set `_p` = 'x'");
  EXPECT_EQ(Select("select `Value` from `Property`"), (Rows{{"b"}}));
}

TEST_F(SqlTest, JoinsFindTheirRowsByKeyAndByOtherColumns) {
  Ok("insert into `FeatureComponents` (`Feature_`, `Component_`) values ('Top', 'cf1')");
  Ok("insert into `FeatureComponents` (`Feature_`, `Component_`) values ('Top', 'cf2')");
  Ok("insert into `FeatureComponents` (`Feature_`, `Component_`) values ('Low', 'cf2')");
  EXPECT_EQ(
      Select("select `Feature`.`Feature`, `File`.`File`, `Directory_` from `Feature`, `FeatureComponents`, "
             "`File`, "
             "`Component` where `Feature`.`Feature` = `Feature_` and `FeatureComponents`.`Component_` = "
             "`Component`.`Component` and `File`.`Component_` = `Component`.`Component`"),
      (Rows{{"Top", "f1", "DZ"}, {"Top", "f2", "DY"}, {"Low", "f2", "DY"}}));
  EXPECT_EQ(
      Select("select `Feature`, `File` from `Feature`, `File` where `Level` = 3 and `File` > 'f'").size(),
      3u);
  EXPECT_EQ(Select("select `Feature`, `File` from `Feature`, `File`").size(), 12u);
  EXPECT_EQ(Select("select distinct `Level` from `Feature`, `File`").size(), 3u);
  EXPECT_EQ(Select("select `File` from `Feature`, `File` where `Display` = `File`"), Rows{});
}

TEST_F(SqlTest, RecordsConvertAsTheInstallerDoes) {
  Record record(4);
  KW_EXPECT_OK(record.SetString(1, "42"));
  KW_EXPECT_OK(record.SetInteger(2, 7));
  KW_EXPECT_OK(record.SetString(3, ""));
  EXPECT_EQ(record.IntegerData(1), 42);
  EXPECT_EQ(record.StringData(2), "7");
  EXPECT_TRUE(record.IsNull(3));
  EXPECT_EQ(record.IntegerData(3), INT_MIN);
  EXPECT_EQ(record.IntegerData(4), INT_MIN);
  EXPECT_EQ(record.StringData(4), "");
  EXPECT_TRUE(record.IsNull(5));
  EXPECT_EQ(record.SetString(5, "x").number(), kErrorInvalidParameter);
  EXPECT_EQ(record.SetInteger(0, 1).number(), kErrorInvalidParameter);
  EXPECT_EQ(record.SetStream(1, storage, "missing").number(), kErrorFileNotFound);
  KW_EXPECT_OK(record.SetString(1, "abc"));
  EXPECT_EQ(record.IntegerData(1), INT_MIN);
  EXPECT_EQ(Get(record.DataSize(1)), 3u);
  EXPECT_EQ(Get(record.DataSize(2)), 4u);
  EXPECT_FALSE(record.ReadStream(1, 10).ok());
  record.ClearData();
  EXPECT_TRUE(record.IsNull(1) && record.IsNull(2));
}

}  // namespace
}  // namespace kw::msi
