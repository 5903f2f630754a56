#include <chrono>

#include "base/testing/faulty_storage.h"
#include "msi/bytes.h"
#include "msi/compound_layout.h"
#include "msi/stream_name.h"
#include "msi/test_support.h"

// Files that are sound but not as this engine would have written them, and files that lie about themselves.

namespace kw::msi {
namespace {

using testing::FaultyStorage;

class OddFileTest : public DatabaseTest {
 protected:
  std::unique_ptr<CompoundFile> OpenFile() {
    return Get(CompoundFile::Open(Get(storage.Open("a.msi", Storage::Mode::kReadWrite))));
  }
  std::string StreamBytes(const std::u16string& name) {
    const auto file = OpenFile();
    return Get(file->ReadAll(*file->Find(name)));
  }
  void ReplaceStream(const std::u16string& name, const std::string& bytes) {
    const auto file = OpenFile();
    file->Put(name, Get(file->WriteBytes(bytes)));
    KW_EXPECT_OK(file->Commit(true));
  }
  static std::u16string Stored(const std::string& name) { return Get(EncodeStreamName(name, true)); }
};

TEST_F(OddFileTest, ATextThatTheFileKeepsTwiceIsOneTextAndSurvivesAChange) {
  KW_EXPECT_OK(RunSql(*db, "create table `T` (`K` char(9) not null, `V` char(9) primary key `K`)"));
  KW_EXPECT_OK(RunSql(*db, "create table `U` (`K` char(9) not null primary key `K`)"));
  KW_EXPECT_OK(RunSql(*db, "insert into `T` (`K`, `V`) values ('k1', 'same')"));
  KW_EXPECT_OK(RunSql(*db, "insert into `T` (`K`, `V`) values ('k2', 'SAME')"));
  KW_EXPECT_OK(db->Commit());
  db.reset();
  std::string data = StreamBytes(Stored("_StringData"));
  data.replace(data.find("SAME"), 4, "same");
  ReplaceStream(Stored("_StringData"), data);
  Reopen(OpenMode::kTransact);
  const Rows both{{"k1", "same"}, {"k2", "same"}};
  EXPECT_EQ(QueryRows(*db, "select * from `T` where `V` = 'same'"), both);
  KW_EXPECT_OK(RunSql(*db, "insert into `U` (`K`) values ('new')"));
  Cycle();
  EXPECT_EQ(QueryRows(*db, "select * from `T` where `V` = 'same'"), both);
}

TEST_F(OddFileTest, AFailureWhileReferencesWidenLeavesNoTableBehindInTheOldWidth) {
  KW_EXPECT_OK(RunSql(*db, "create table `Few` (`K` char(9) not null primary key `K`)"));
  KW_EXPECT_OK(RunSql(*db, "create table `Many` (`K` char(9) not null primary key `K`)"));
  for (int i = 0; i < 65500; ++i) {
    KW_EXPECT_OK(RunSql(*db, "insert into `Many` (`K`) values (?)", {T(Numbered("P", i))}));
  }
  for (int i = 0; i < 3000; ++i) {
    KW_EXPECT_OK(RunSql(*db, "insert into `Few` (`K`) values (?)", {T(Numbered("P", i))}));
  }
  KW_EXPECT_OK(db->Commit());
  db.reset();
  const std::string original = storage.Content("a.msi");
  FaultyStorage faulty(storage);
  for (int call = 1; call <= 5; ++call) {
    storage.Content("a.msi") = original;
    auto database = Get(Database::Open(faulty, "a.msi", OpenMode::kTransact));
    for (int i = 0; i < 100; ++i) {
      KW_EXPECT_OK(RunSql(*database, "insert into `Many` (`K`) values (?)", {T(Numbered("Q", i))}));
    }
    faulty.Arm(FaultyStorage::Fault::kFail, call, kErrorDiskFull, false);
    EXPECT_FALSE(database->Commit().ok());
    faulty.Disarm();
    KW_EXPECT_OK(database->Commit());
    database.reset();
    const auto opened = Database::Open(storage, "a.msi", OpenMode::kReadOnly);
    ASSERT_TRUE(opened.ok()) << "call " << call << ": " << opened.error().message;
    EXPECT_EQ(QueryRows(**opened, "select * from `Few`").size(), 3000u);
    EXPECT_EQ(QueryRows(**opened, "select * from `Many`").size(), 65600u);
    EXPECT_EQ(QueryRows(**opened, "select `Few`.`K` from `Few`, `Many` where `Few`.`K` = `Many`.`K`").size(),
              3000u);
  }
}

TEST_F(OddFileTest, AStreamOfNearlyEndlessSizeIsRefused) {
  db.reset();
  {
    const auto file = CompoundFile::Create(Get(storage.Open("a.msi", Storage::Mode::kCreateAlways)), 12);
    file->Put(u"large", Get(file->WriteBytes(std::string(5000, 'l'))));
    KW_EXPECT_OK(file->Commit(true));
  }
  const std::string original = storage.Content("a.msi");
  const size_t entry = original.find(std::string("l\0a\0r\0g\0e\0", 10));
  const size_t root = entry - layout::kEntrySize;
  for (const size_t at : {entry, root}) {
    for (const uint64_t size : {~uint64_t{0}, ~uint64_t{0} - 4000, ~uint64_t{0} >> 1, uint64_t{1} << 40}) {
      for (const uint32_t start : {layout::kEndOfChain, uint32_t{0}, uint32_t{1}}) {
        std::string& content = storage.Content("a.msi");
        content = original;
        PutU64(content.data() + at + layout::kEntryBytesAt, size);
        PutU32(content.data() + at + layout::kEntryStartAt, start);
        const auto file = CompoundFile::Open(Get(storage.Open("a.msi", Storage::Mode::kRead)));
        EXPECT_FALSE(file.ok()) << size;
      }
    }
  }
}

TEST_F(OddFileTest, TwoStreamsOfOneNameAreShownOnce) {
  MakePackage();
  KW_EXPECT_OK(db->Commit());
  db.reset();
  ReplaceStream(u"twice", "plain");
  ReplaceStream(Get(EncodeStreamName("twice", false)), "packed");
  Reopen(OpenMode::kTransact);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(QueryRows(*db, "select `Name` from `_Streams`"), Rows{{"twice"}});
  }
}

TEST_F(OddFileTest, ManyStreamsAreListedWithoutLookingAtAllOfThemForEach) {
  MakePackage();
  storage.Content("in") = "content";
  constexpr int kStreams = 6000;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kStreams; ++i) {
    KW_EXPECT_OK(RunSql(*db, "insert into `Binary` (`Name`, `Data`) values (?, ?)",
                        {T(Numbered("s", i)), FileValue(storage, "in")}));
  }
  EXPECT_EQ(QueryRows(*db, "select `Name`, `Data` from `_Streams`").size(), size_t{kStreams});
  KW_EXPECT_OK(RunSql(*db, "delete from `Binary` where `Name` <> 's7'"));
  EXPECT_EQ(QueryRows(*db, "select * from `_Streams`"), (Rows{{"Binary.s7", "content"}}));
  KW_EXPECT_OK(RunSql(*db, "delete from `_Streams`"));
  EXPECT_EQ(QueryRows(*db, "select * from `_Streams`"), Rows{});
  // In milliseconds; with a look at all for each it is a minute.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
}

TEST_F(OddFileTest, ANameThatTheOldCodePageDidNotHaveIsListedUnderTheNewOne) {
  KW_EXPECT_OK(db->Commit());
  db.reset();
  ReplaceStream(u"\u65E5", "content");
  Reopen(OpenMode::kTransact);
  EXPECT_EQ(QueryRows(*db, "select `Name` from `_Streams`"), Rows{});
  KW_EXPECT_OK(db->SetCodePage(932));
  EXPECT_EQ(QueryRows(*db, "select * from `_Streams`"), (Rows{{"\xE6\x97\xA5", "content"}}));
}

TEST_F(OddFileTest, SpaceOfSmallStreamsIsGivenBack) {
  MakePackage();
  storage.Content("small") = std::string(4000, 's');
  for (int i = 0; i < 3000; ++i) {
    KW_EXPECT_OK(RunSql(*db, "insert into `Binary` (`Name`, `Data`) values (?, ?)",
                        {T(Numbered("small", i)), FileValue(storage, "small")}));
  }
  KW_EXPECT_OK(db->Commit());
  const size_t before = storage.Content("a.msi").size();
  KW_EXPECT_OK(RunSql(*db, "delete from `Binary` where `Name` <> 'small2999'"));
  KW_EXPECT_OK(db->Commit());
  EXPECT_LT(storage.Content("a.msi").size(), 40000u) << before;
  Cycle();
  EXPECT_EQ(QueryRows(*db, "select * from `Binary`"), (Rows{{"small2999", std::string(4000, 's')}}));
}

TEST_F(OddFileTest, GivingSpaceOfSmallStreamsBackLeavesTheOldOrTheNewDatabaseWhereverItFails) {
  MakePackage();
  for (int i = 0; i < 40; ++i) {
    storage.Content("small") =
        std::string(static_cast<size_t>(100 + 37 * i), static_cast<char>('a' + i % 26));
    KW_EXPECT_OK(RunSql(*db, "insert into `Binary` (`Name`, `Data`) values (?, ?)",
                        {T(Numbered("small", i)), FileValue(storage, "small")}));
  }
  KW_EXPECT_OK(db->Commit());
  const std::string old_dump = Dump(*db);
  db.reset();
  const std::string original = storage.Content("a.msi");
  FaultyStorage faulty(storage);
  std::string new_dump;
  for (const auto fault :
       {FaultyStorage::Fault::kFail, FaultyStorage::Fault::kShortWrite, FaultyStorage::Fault::kKill}) {
    bool failed = true;
    for (int call = 1; failed; ++call) {
      ASSERT_LT(call, 200);
      storage.Content("a.msi") = original;
      auto database = Get(Database::Open(faulty, "a.msi", OpenMode::kTransact));
      const auto reader = Get(database->OpenView("select `Data` from `Binary` where `Name` = 'small39'"));
      KW_EXPECT_OK(reader->Execute(nullptr));
      std::optional<Record> record = Get(reader->Fetch());
      for (int i = 0; i < 36; ++i) {
        KW_EXPECT_OK(RunSql(*database, "delete from `Binary` where `Name` = ?", {T(Numbered("small", i))}));
      }
      new_dump = Dump(*database);
      faulty.Arm(fault, call, kErrorDiskFull, false);
      failed = !database->Commit().ok();
      const bool lost = faulty.failed_sync() || fault == FaultyStorage::Fault::kKill;
      {
        const auto read_only = Get(Database::Open(storage, "a.msi", OpenMode::kReadOnly));
        const std::string dump = Dump(*read_only);
        EXPECT_TRUE(dump == new_dump || (failed && dump == old_dump)) << call;
      }
      faulty.Disarm();
      EXPECT_EQ(Get(record->ReadStream(1, 10000)),
                std::string(100 + 37 * 39, static_cast<char>('a' + 39 % 26)));
      EXPECT_EQ(Dump(*database), new_dump) << call;
      if (failed && !lost) KW_EXPECT_OK(database->Commit());
      database.reset();
      if (!lost) {
        EXPECT_EQ(Dump(*Get(Database::Open(storage, "a.msi", OpenMode::kReadOnly))), new_dump) << call;
      }
    }
  }
}

TEST_F(OddFileTest, NoStreamTakesThePlaceOfAnotherRows) {
  for (const char* sql :
       {"create table `T` (`K` char(9) not null, `L` char(9) not null, `D` object primary key `K`, `L`)",
        "create table `T.x` (`K` char(9) not null, `D` object primary key `K`)"}) {
    KW_EXPECT_OK(RunSql(*db, sql));
  }
  storage.Content("one") = "one";
  storage.Content("two") = "two";
  const Value one = FileValue(storage, "one");
  const Value two = FileValue(storage, "two");
  KW_EXPECT_OK(RunSql(*db, "insert into `T` (`K`, `L`, `D`) values ('x', 'y.z', ?)", {one}));
  // All of these would be called T.x.y.z in the file.
  EXPECT_EQ(RunSql(*db, "insert into `T` (`K`, `L`, `D`) values ('x.y', 'z', ?)", {two}).number(),
            kErrorInvalidName);
  EXPECT_EQ(RunSql(*db, "insert into `T.x` (`K`, `D`) values ('y.z', ?)", {two}).number(), kErrorInvalidName);
  KW_EXPECT_OK(RunSql(*db, "insert into `T.x` (`K`) values ('y.z')"));
  EXPECT_EQ(RunSql(*db, "update `T.x` set `D` = ?", {two}).number(), kErrorInvalidName);
  EXPECT_EQ(QueryRows(*db, "select * from `T`"), (Rows{{"x", "y.z", "one"}}));
  EXPECT_EQ(QueryRows(*db, "select * from `T.x`"), (Rows{{"y.z", ""}}));
  KW_EXPECT_OK(RunSql(*db, "update `T` set `D` = ?", {two}));
  KW_EXPECT_OK(RunSql(*db, "delete from `T`"));
  KW_EXPECT_OK(RunSql(*db, "update `T.x` set `D` = ?", {one}));
  // What no row has may be replaced.
  KW_EXPECT_OK(RunSql(*db, "delete from `T.x`"));
  KW_EXPECT_OK(RunSql(*db, "insert into `_Streams` (`Name`, `Data`) values ('T.x.y', ?)", {one}));
  KW_EXPECT_OK(RunSql(*db, "insert into `T` (`K`, `L`, `D`) values ('x', 'y', ?)", {two}));
  Cycle();
  EXPECT_EQ(QueryRows(*db, "select * from `T`"), (Rows{{"x", "y", "two"}}));
}

TEST_F(OddFileTest, StreamNamesThatOtherReadersCannotTellApartAreRefused) {
  MakePackage();
  KW_EXPECT_OK(db->SetCodePage(65001));
  storage.Content("in") = "content";
  const auto insert = [&](const char* table, const std::string& name) {
    const std::string sql = "insert into `" + std::string(table) + "` (`Name`, `Data`) values (?, ?)";
    return RunSql(*db, sql, {T(name), FileValue(storage, "in")}).number();
  };
  EXPECT_EQ(insert("Binary", "a"), 0);
  EXPECT_EQ(insert("Binary", "A"), 0);  // packed, and so no letters any more
  EXPECT_EQ(insert("Binary", "\xC3\xA4"), 0);
  EXPECT_EQ(insert("Binary", "\xC3\x84"), kErrorInvalidName);
  EXPECT_EQ(insert("_Streams", "\x05Own"), 0);
  EXPECT_EQ(insert("_Streams", "\x05OWN"), kErrorInvalidName);
  // The summary information's and its like are no names for tables.
  EXPECT_EQ(RunSql(*db, "create table `\x05Own` (`K` char(9) not null primary key `K`)").number(),
            kErrorInvalidName);
  EXPECT_EQ(QueryRows(*db, "select `Name` from `Binary`"), (Rows{{"a"}, {"A"}, {"\xC3\xA4"}}));
}

TEST_F(OddFileTest, EntriesAreOrderedByTheirCapitalsInEveryScript) {
  // Wide Latin letters: a in the small form, B in the large one.
  EXPECT_LT(WithoutCase(u"\uFF41"), WithoutCase(u"\uFF22"));
  EXPECT_EQ(WithoutCase(u"\u3841\u4841a"), u"\u3841\u4841A");
  EXPECT_FALSE(HasCase(Get(EncodeStreamName("Binary.Name", false))));
}

TEST_F(OddFileTest, TheKeyStandsFirst) {
  KW_EXPECT_OK(RunSql(*db,
                      "CREATE TABLE `T` (`B` SHORT NOT NULL, `C` SHORT NOT NULL, `A` CHAR(255), `E` INT, "
                      "`D` CHAR(255) NOT NULL PRIMARY KEY `D`)"));
  EXPECT_EQ(QueryRows(*db, "select `Name` from `_Columns` where `Table` = 'T'"),
            (Rows{{"D"}, {"C"}, {"A"}, {"E"}, {"B"}}));
}

}  // namespace
}  // namespace kw::msi
