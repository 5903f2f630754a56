#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "msi/compound_file.h"
#include "msi/session.h"
#include "msi/test_support.h"

namespace kw::msi {
namespace {

class ArchiveTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    MakePackage();
  }
};

TEST_F(ArchiveTest, ExportWritesRowsAndTheStreamsBesideThem) {
  storage.Content("in") = "cabinet bytes";
  KW_EXPECT_OK(
      RunSql(*db, "insert into `Cabs` (`Name`, `Data`) values ('Cab1.CAB', ?)", {FileValue(storage, "in")}));
  KW_EXPECT_OK(db->Export("Cabs", "/temp", "Cabs.idt"));
  EXPECT_EQ(storage.Content("/temp/Cabs.idt"),
            "Name\tData\r\ns72\tv0\r\nCabs\tName\r\nCab1.CAB\tCab1.CAB\r\n");
  EXPECT_EQ(storage.folders, std::set<std::string>{"/temp/Cabs"});
  EXPECT_EQ(storage.Content("/temp/Cabs/Cab1.CAB"), "cabinet bytes");
}

TEST_F(ArchiveTest, ExportRefusesKeysThatLeadElsewhere) {
  storage.Content("in") = "x";
  for (const char* key : {"../up", "a\\b", "/abs", "C:x", "..", ".", "NUL", "com1.cab", "a.", "a "}) {
    KW_EXPECT_OK(
        RunSql(*db, "insert into `Cabs` (`Name`, `Data`) values (?, ?)", {T(key), FileValue(storage, "in")}));
    EXPECT_EQ(db->Export("Cabs", "/temp", "Cabs.idt").number(), kErrorInvalidName) << key;
    EXPECT_FALSE(storage.Exists("/temp/Cabs.idt"));
    KW_EXPECT_OK(RunSql(*db, "delete from `Cabs`"));
  }
}

TEST_F(ArchiveTest, ExportReplacesALinkAndDoesNotFollowIt) {
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("kw_msi_export_link" + std::to_string(::getpid()));
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder / "Cabs");
  std::ofstream(folder / "precious") << "precious";
  std::error_code error;
  std::filesystem::create_symlink(folder / "precious", folder / "Cabs/Cab1.CAB", error);
  if (error) GTEST_SKIP() << "no links here";
  std::filesystem::create_symlink(folder / "precious", folder / "Cabs.idt");
  std::ofstream(folder / "in") << "cabinet bytes";
  {
    const auto real = Get(Database::Open(SystemStorage(), (folder / "a.msi").string(), OpenMode::kCreate));
    KW_EXPECT_OK(
        RunSql(*real, "create table `Cabs` (`Name` CHAR(72) NOT NULL, `Data` OBJECT primary key `Name`)"));
    KW_EXPECT_OK(RunSql(*real, "insert into `Cabs` (`Name`, `Data`) values ('Cab1.CAB', ?)",
                        {FileValue(SystemStorage(), (folder / "in").string())}));
    KW_EXPECT_OK(real->Export("Cabs", folder.string(), "Cabs.idt"));
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "Cabs.idt"));
    // A link in the place of the whole folder is no place for streams.
    std::filesystem::rename(folder / "Cabs", folder / "kept");
    std::filesystem::create_directories(folder / "elsewhere");
    for (const char* target : {"elsewhere", "precious", "none"}) {
      std::filesystem::remove(folder / "Cabs");
      std::filesystem::create_symlink(folder / target, folder / "Cabs");
      EXPECT_FALSE(real->Export("Cabs", folder.string(), "Cabs.idt").ok()) << target;
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder / "elsewhere"));
    EXPECT_FALSE(std::filesystem::exists(folder / "none"));
    std::filesystem::remove(folder / "Cabs");
    std::filesystem::rename(folder / "kept", folder / "Cabs");
  }
  EXPECT_EQ(*ReadWholeFile(SystemStorage(), (folder / "precious").string()), "precious");
  EXPECT_EQ(*ReadWholeFile(SystemStorage(), (folder / "Cabs/Cab1.CAB").string()), "cabinet bytes");
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "Cabs/Cab1.CAB"));
  std::filesystem::remove_all(folder);
}

TEST_F(ArchiveTest, ExportWritesNoStreamOverAnotherWhoseKeyDiffersInCase) {
  storage.Content("in") = "x";
  for (const char* key : {"Cab1.CAB", "CAB1.cab"}) {
    KW_EXPECT_OK(
        RunSql(*db, "insert into `Cabs` (`Name`, `Data`) values (?, ?)", {T(key), FileValue(storage, "in")}));
  }
  EXPECT_EQ(db->Export("Cabs", "/temp", "Cabs.idt").number(), kErrorInvalidName);
}

TEST_F(ArchiveTest, ATableSurvivesExportAndImport) {
  KW_EXPECT_OK(db->SetCodePage(1252));
  storage.Content("in") = std::string(5000, 'i');
  KW_EXPECT_OK(
      RunSql(*db, "insert into `Binary` (`Name`, `Data`) values ('b', ?)", {FileValue(storage, "in")}));
  KW_EXPECT_OK(
      RunSql(*db, "insert into `Property` (`Property`, `Value`) values ('a', ?)", {T("tab\t line\r\n ä")}));
  KW_EXPECT_OK(RunSql(*db, "insert into `Feature` (`Feature`, `Level`, `Attributes`) values ('f', -3, 0)"));
  const std::string before = Dump(*db);
  for (const char* table : {"Binary", "Property", "Feature"}) {
    KW_EXPECT_OK(db->Export(table, "/t", std::string(table) + ".idt"));
  }
  EXPECT_EQ(storage.Content("/t/Property.idt"),
            "Property\tValue\r\ns72\tl0\r\n1252\tProperty\tProperty\r\na\ttab\x10 line\x11\x19 \xE4\r\n");
  for (const char* table : {"Binary", "Property", "Feature"}) {
    KW_EXPECT_OK(RunSql(*db, "drop table `" + std::string(table) + "`"));
    KW_EXPECT_OK(db->Import("/t", std::string(table) + ".idt"));
  }
  EXPECT_EQ(Dump(*db), before);
  Cycle();
  EXPECT_EQ(Dump(*db), before);
}

TEST_F(ArchiveTest, ForceCodepageSetsTheCodePage) {
  storage.Content("/t/cp.idt") = "\r\n\r\n1252\t_ForceCodepage\r\n";
  KW_EXPECT_OK(db->Import("/t", "cp.idt"));
  EXPECT_EQ(db->CodePage(), 1252);
  KW_EXPECT_OK(RunSql(*db, "insert into `Property` (`Property`, `Value`) values ('a', ?)", {T("Größe")}));
  EXPECT_EQ(RunSql(*db, "insert into `Property` (`Property`, `Value`) values ('b', ?)", {T("日本")}).number(),
            kErrorUnrepresentableText);
  EXPECT_EQ(db->SetCodePage(932).number(), kErrorUnrepresentableText);
  KW_EXPECT_OK(db->Export("_ForceCodepage", "/t", "out.idt"));
  EXPECT_EQ(storage.Content("/t/out.idt"), "\r\n\r\n1252\t_ForceCodepage\r\n");
  Cycle();
  EXPECT_EQ(db->CodePage(), 1252);
  EXPECT_EQ(QueryRows(*db, "select `Value` from `Property`"), (Rows{{"Größe"}}));
  KW_EXPECT_OK(db->SetCodePage(65001));
  KW_EXPECT_OK(RunSql(*db, "insert into `Property` (`Property`, `Value`) values ('b', ?)", {T("日本")}));
  Cycle();
  EXPECT_EQ(QueryRows(*db, "select `Value` from `Property` order by `Property`"),
            (Rows{{"Größe"}, {"日本"}}));
}

TEST_F(ArchiveTest, WhatIsNoArchiveIsRefused) {
  for (const char* text : {"", "a\r\n", "A\r\nx9\r\nT\tA\r\n", "A\tB\r\ns1\r\nT\tA\r\n",
                           "A\r\ns1\r\nT\tA\r\n1\t2\r\n", "A\r\ni2\r\nT\tA\r\nword\r\n"}) {
    storage.Content("/t/bad.idt") = text;
    EXPECT_FALSE(db->Import("/t", "bad.idt").ok()) << text;
  }
  EXPECT_EQ(db->Import("/t", "missing.idt").number(), kErrorFileNotFound);
}

TEST_F(ArchiveTest, AnImportThatFailsKeepsTheTableAsItWas) {
  storage.Content("in") = std::string(9000, 'i');
  KW_EXPECT_OK(
      RunSql(*db, "insert into `Binary` (`Name`, `Data`) values ('b', ?)", {FileValue(storage, "in")}));
  KW_EXPECT_OK(RunSql(*db, "insert into `Feature` (`Feature`, `Level`, `Attributes`) values ('f', 3, 0)"));
  Cycle();
  const std::string before = Dump(*db);
  const std::string feature = "Feature\tLevel\r\ns38\ti2\r\nFeature\tFeature\r\n";
  const std::string binary = "Name\tData\r\ns72\tv0\r\nBinary\tName\r\n";
  storage.Content("/t/Binary/here") = std::string(5000, 'h');
  for (const std::string& text : {
           feature + "a\t1\r\nb\tword\r\n",       // no number
           feature + "a\t1\r\nb\t40000\r\n",      // out of its column's range
           feature + "a\t1\r\na\t2\r\n",          // a key twice
           feature + "a\t1\r\nb\t\r\n",           // nothing where something must be
           feature + "a\t1\r\nb\t2\t3\r\n",       // a field too many
           feature + "a\t1\r\nb\xC3\xA4\t2\r\n",  // text without a place in the code page
           binary + "here\there\r\nb\tmissing\r\n",
           binary + "here\there\r\nb\t../up\r\n",
           binary + "here\there\r\n" + std::string(70, 'k') + "\there\r\n",  // no name for the stream
           std::string("Name\tData\tMore\r\ns72\tv0\tv0\r\nBinary\tName\r\n"),
           std::string("Name\tData\r\ns72\tv0\r\nBinary\r\n"),
           std::string("Name\tName\r\ns72\ts72\r\nBinary\tName\r\n"),
           std::string("Name\tData\r\ns62\tv0\r\n_Streams\tName\r\n"),
           std::string("Name\r\ns64\r\n_Tables\tName\r\n"),
       }) {
    storage.Content("/t/bad.idt") = text;
    EXPECT_FALSE(db->Import("/t", "bad.idt").ok()) << text;
    EXPECT_EQ(Dump(*db), before) << text;
  }
  Cycle();
  EXPECT_EQ(Dump(*db), before);
  storage.Content("/t/good.idt") = binary + "here\there\r\nb\there\r\n";
  KW_EXPECT_OK(db->Import("/t", "good.idt"));
  Cycle();
  const std::string h(5000, 'h');
  EXPECT_EQ(QueryRows(*db, "select * from `Binary` order by `Name`"), (Rows{{"b", h}, {"here", h}}));
}

TEST_F(ArchiveTest, TheSummaryInformationKeepsItsProperties) {
  {
    const auto info = Get(db->SummaryInformation(6));
    EXPECT_EQ(info->PropertyCount(), 0);
    KW_EXPECT_OK(info->SetInteger(1, 1252));
    KW_EXPECT_OK(info->SetText(2, "Paket für alle"));
    KW_EXPECT_OK(info->SetText(7, ";1033"));
    KW_EXPECT_OK(info->SetInteger(15, 3));
    KW_EXPECT_OK(info->SetTime(12, 130000000000000000));
    EXPECT_EQ(info->SetText(3, "日本").number(), kErrorUnrepresentableText);
    KW_EXPECT_OK(info->SetText(3, "x"));
    EXPECT_EQ(info->SetInteger(15, 4).number(), kErrorFunctionFailed) << "no updates are left";
    KW_EXPECT_OK(info->Persist());
  }
  Cycle();
  auto info = Get(db->SummaryInformation(0));
  EXPECT_EQ(info->TextProperty(2), "Paket für alle");
  EXPECT_EQ(info->IntegerProperty(15), 3);
  EXPECT_EQ(info->TimeProperty(12), 130000000000000000u);
  EXPECT_EQ(info->IntegerProperty(99), 0);
  EXPECT_EQ(info->TextProperty(15), "");
  EXPECT_FALSE(info->SetInteger(15, 1).ok());
  KW_EXPECT_OK(db->Export("_SummaryInformation", "/t", "s.idt"));
  info.reset();
  Reopen(OpenMode::kCreate);
  KW_EXPECT_OK(db->Import("/t", "s.idt"));
  EXPECT_EQ(Get(db->SummaryInformation(0))->TextProperty(2), "Paket für alle");
  EXPECT_EQ(Get(db->SummaryInformation(0))->TimeProperty(12), 130000000000000000u);
}

TEST_F(ArchiveTest, SummaryChangesAreInTheFileAtOnceInDirectMode) {
  Cycle(OpenMode::kDirect);
  const auto info = Get(db->SummaryInformation(1));
  KW_EXPECT_OK(info->SetInteger(15, 2));
  KW_EXPECT_OK(info->Persist());
  const auto other = Get(Database::Open(storage, "a.msi", OpenMode::kReadOnly));
  EXPECT_EQ(Get(other->SummaryInformation(0))->IntegerProperty(15), 2);
}

TEST_F(ArchiveTest, ASessionTellsModesPropertiesAndSourcePaths) {
  KW_EXPECT_OK(RunSql(*db, "insert into `Property` (`Property`, `Value`) values ('INSTALLLEVEL', '3')"));
  auto session = Get(Session::Open(db));
  EXPECT_FALSE(session->Mode(9));
  EXPECT_EQ(session->Property("INSTALLLEVEL"), "3");
  session->SetProperty("OriginalDatabase", "C:\\x\\");
  EXPECT_EQ(session->Property("OriginalDatabase"), "C:\\x\\");
  EXPECT_EQ(session->DoAction("CostInitialize"), 3) << "there is no table Directory";
  EXPECT_EQ(session->DoAction("Unheard"), 0);
  KW_EXPECT_OK(RunSql(*db,
                      "create table `Directory` (`Directory` CHAR(72) NOT NULL, `Directory_Parent` CHAR(72), "
                      "`DefaultDir` CHAR(255) NOT NULL PRIMARY KEY `Directory`)"));
  const auto add = [&](const char* name, const char* parent, const char* folder) {
    KW_EXPECT_OK(RunSql(
        *db, "insert into `Directory` (`Directory`, `Directory_Parent`, `DefaultDir`) values (?, ?, ?)",
        {T(name), T(parent), T(folder)}));
  };
  add("TARGETDIR", "", "SourceDir");
  add("INSTALLDIR", "TARGETDIR", "KESTRA~1|Kestrane");
  add("SUB", "INSTALLDIR", "target:src");
  add("SAME", "SUB", ".");
  EXPECT_EQ(session->DoAction("CostInitialize"), 1);
  EXPECT_EQ(session->SourcePath("SAME"), "Kestrane\\src\\");
  EXPECT_EQ(session->SourcePath("TARGETDIR"), "");
  const auto info = Get(db->SummaryInformation(1));
  KW_EXPECT_OK(info->SetInteger(15, 1));
  KW_EXPECT_OK(info->Persist());
  session = Get(Session::Open(db));
  EXPECT_TRUE(session->Mode(9));
  EXPECT_EQ(session->DoAction("CostInitialize"), 1);
  EXPECT_EQ(session->SourcePath("SUB"), "KESTRA~1\\src\\");
  add("LOOP1", "LOOP2", "a");
  add("LOOP2", "LOOP1", "b");
  EXPECT_EQ(session->DoAction("CostInitialize"), 3);
}

// Files of every shape that the format allows.
class ShapeTest : public DatabaseTest {};

TEST_F(ShapeTest, LargeFilesNeedMoreThanTheHeadersListOfTables) {
  MakePackage();
  storage.Content("big").assign(9 << 20, 'b');
  for (size_t i = 0; i < storage.Content("big").size(); i += 4096)
    storage.Content("big")[i] = static_cast<char>(i >> 12);
  KW_EXPECT_OK(
      RunSql(*db, "insert into `Cabs` (`Name`, `Data`) values ('big', ?)", {FileValue(storage, "big")}));
  Cycle();
  EXPECT_GT(static_cast<unsigned char>(storage.Content("a.msi")[72]), 0) << "the list has sectors of its own";
  auto view = Get(db->OpenView("select `Data` from `Cabs`"));
  KW_EXPECT_OK(view->Execute(nullptr));
  std::optional<Record> row = Get(view->Fetch());
  EXPECT_EQ(Get(row->ReadStream(1, 10 << 20)), storage.Content("big"));
  row.reset();
  view.reset();
  // One small change must not touch the stream.
  storage.bytes_written = 0;
  KW_EXPECT_OK(RunSql(*db, "insert into `Property` (`Property`, `Value`) values ('a', 'b')"));
  KW_EXPECT_OK(db->Commit());
  EXPECT_LT(storage.bytes_written, (9u << 20) / 100);
  // A smaller one in its place gives the space back.
  storage.Content("big").resize(1 << 20);
  KW_EXPECT_OK(RunSql(*db, "delete from `Cabs`"));
  KW_EXPECT_OK(
      RunSql(*db, "insert into `Cabs` (`Name`, `Data`) values ('big', ?)", {FileValue(storage, "big")}));
  KW_EXPECT_OK(db->Commit());
  EXPECT_LT(storage.Content("a.msi").size(), (1 << 20) * 102 / 100);
  Reopen(OpenMode::kTransact);
  EXPECT_EQ(QueryRows(*db, "select `Data` from `Cabs`"), (Rows{{storage.Content("big")}}));
}

TEST_F(ShapeTest, ManyTextsNeedReferencesOfThreeBytes) {
  MakePackage();
  const auto view = Get(db->OpenView("insert into `Property` (`Property`, `Value`) values (?, ?)"));
  Record record(2);
  for (int i = 0; i < 40000; ++i) {
    KW_EXPECT_OK(record.SetString(1, Numbered("p", i)));
    KW_EXPECT_OK(record.SetString(2, Numbered("v", i)));
    KW_EXPECT_OK(view->Execute(&record));
  }
  const std::string before = Dump(*db);
  KW_EXPECT_OK(db->Commit());
  const auto other = Get(Database::Open(storage, "a.msi", OpenMode::kReadOnly));
  EXPECT_TRUE(Dump(*other) == before);
  EXPECT_EQ(QueryRows(*other, "select `Value` from `Property` where `Property` = 'p39999'"),
            (Rows{{"v39999"}}));
}

TEST_F(ShapeTest, SectorsOf4096BytesAreReadAndWritten) {
  MakePackage();
  storage.Content("in").assign(70000, 'w');
  KW_EXPECT_OK(
      RunSql(*db, "insert into `Cabs` (`Name`, `Data`) values ('c', ?)", {FileValue(storage, "in")}));
  KW_EXPECT_OK(RunSql(*db, "insert into `Property` (`Property`, `Value`) values ('a', 'b')"));
  KW_EXPECT_OK(db->Commit());
  const std::string before = Dump(*db);
  db.reset();
  {
    auto from = Get(CompoundFile::Open(Get(storage.Open("a.msi", Storage::Mode::kRead))));
    auto to = CompoundFile::Create(Get(storage.Open("v4.msi", Storage::Mode::kCreateAlways)), 12);
    for (const auto& [name, entry] : from->root().children) {
      to->Put(name, Get(to->WriteBytes(Get(from->ReadAll(*entry->stream)))));
    }
    KW_EXPECT_OK(to->Commit(true));
  }
  auto wide = Get(Database::Open(storage, "v4.msi", OpenMode::kDirect));
  EXPECT_EQ(Dump(*wide), before);
  for (int i = 0; i < 30; ++i) {
    KW_EXPECT_OK(
        RunSql(*wide, "insert into `Property` (`Property`, `Value`) values (?, 'x')", {T(Numbered("n", i))}));
  }
  KW_EXPECT_OK(RunSql(*wide, "delete from `Cabs`"));
  KW_EXPECT_OK(wide->Commit());
  const std::string changed = Dump(*wide);
  wide.reset();
  EXPECT_EQ(Dump(*Get(Database::Open(storage, "v4.msi", OpenMode::kReadOnly))), changed);
}

TEST_F(ShapeTest, RandomEditsKeepTheFileSmallAndRight) {
  MakePackage();
  Cycle(OpenMode::kDirect);
  unsigned state = 12345;
  const auto next = [&] { return state = state * 1664525 + 1013904223; };
  for (int i = 0; i < 400; ++i) {
    const std::string name = Numbered("k", static_cast<long long>(next() >> 16) % 40);
    KW_EXPECT_OK(RunSql(*db, "delete from `Binary` where `Name` = ?", {T(name)}));
    if (i % 3 != 0) {
      storage.Content("in").assign((next() >> 12) % 20000, static_cast<char>('a' + i % 26));
      KW_EXPECT_OK(RunSql(*db, "insert into `Binary` (`Name`, `Data`) values (?, ?)",
                          {T(name), FileValue(storage, "in")}));
    }
    if (i % 50 != 49) continue;
    const std::string now = Dump(*db);
    if (i % 100 == 99) KW_EXPECT_OK(db->Commit());
    storage.Content("copy.msi") = storage.Content("a.msi");
    EXPECT_EQ(Dump(*Get(Database::Open(storage, "copy.msi", OpenMode::kReadOnly))), now);
  }
  KW_EXPECT_OK(db->Commit());
  size_t sum = 0;
  for (const Row& row : QueryRows(*db, "select `Data` from `_Streams`"))
    sum += (row[0].size() + 511) / 512 * 512;
  EXPECT_LT(storage.Content("a.msi").size(), sum + sum / 50 + 20000);
}

}  // namespace
}  // namespace kw::msi
