#include <algorithm>
#include <random>

#include "base/testing/faulty_storage.h"
#include "msi/bytes.h"
#include "msi/compound_file.h"
#include "msi/compound_layout.h"
#include "msi/test_support.h"

namespace kw::msi {
namespace {

using testing::FaultyStorage;

class FaultTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    MakePackage();
    storage.Content("small") = std::string(700, 's');
    storage.Content("large") = std::string(30000, 'l');
    storage.Content("other") = std::string(20000, 'o');
    for (int i = 0; i < 120; ++i) {
      const std::string n = std::to_string(i);
      KW_EXPECT_OK(RunSql(*db, "insert into `Property` (`Property`, `Value`) values (?, ?)",
                          {T("P" + n), T("value " + n)}));
    }
    KW_EXPECT_OK(RunSql(*db, "insert into `Binary` (`Name`, `Data`) values ('small', ?)",
                        {FileValue(storage, "small")}));
    KW_EXPECT_OK(RunSql(*db, "insert into `Cabs` (`Name`, `Data`) values ('large', ?)",
                        {FileValue(storage, "large")}));
    KW_EXPECT_OK(db->Commit());
    db.reset();
    original = storage.Content("a.msi");
  }

  // What the program does to a package, in short.
  Status Change(Database& database, Storage& from) {
    KW_RETURN_IF_ERROR(RunSql(database, "update `Property` set `Value` = 'changed' where `Property` = 'P7'"));
    KW_RETURN_IF_ERROR(RunSql(database, "delete from `Property` where `Property` = 'P8'"));
    KW_RETURN_IF_ERROR(RunSql(database, "delete from `Cabs`"));
    KW_RETURN_IF_ERROR(RunSql(database, "insert into `Cabs` (`Name`, `Data`) values ('new', ?)",
                              {FileValue(from, "other")}));
    KW_RETURN_IF_ERROR(RunSql(database, "delete from `Binary`"));
    return database.Commit();
  }

  std::string DumpOf(const std::string& path) {
    return Dump(*Get(Database::Open(storage, path, OpenMode::kReadOnly)));
  }

  std::string original;
};

TEST_F(FaultTest, ACommitThatFailsAnywhereLeavesTheOldOrTheNewDatabase) {
  FaultyStorage faulty(storage);
  storage.Content("a.msi") = original;
  const std::string old_dump = DumpOf("a.msi");
  {
    const auto database = Get(Database::Open(storage, "a.msi", OpenMode::kTransact));
    KW_EXPECT_OK(Change(*database, storage));
  }
  const std::string new_dump = DumpOf("a.msi");
  ASSERT_NE(old_dump, new_dump);
  int tried = 0;
  for (const auto fault :
       {FaultyStorage::Fault::kFail, FaultyStorage::Fault::kShortWrite, FaultyStorage::Fault::kKill}) {
    for (const bool forever : {false, true}) {
      for (int call = 1; call < 500; ++call) {
        storage.Content("a.msi") = original;
        faulty.Arm(fault, call, kErrorDiskFull, forever);
        Status status;
        {
          auto database = Database::Open(faulty, "a.msi", OpenMode::kTransact);
          status = database.ok() ? Change(**database, storage) : database.status();
        }
        const int calls = faulty.calls();
        faulty.Disarm();
        const std::string dump = DumpOf("a.msi");
        EXPECT_TRUE(dump == old_dump || dump == new_dump) << "call " << call;
        if (status.ok()) {
          EXPECT_EQ(dump, new_dump) << "success was claimed wrongly at call " << call;
        }
        ++tried;
        if (calls < call) break;
      }
    }
  }
  EXPECT_GT(tried, 60);
}

TEST_F(FaultTest, ACommitCanBeTriedAgainAfterAFailureUnlessTheDiskLostWhatItHad) {
  FaultyStorage faulty(storage);
  storage.Content("a.msi") = original;
  const std::string old_dump = DumpOf("a.msi");
  int lost_commits = 0;
  for (int call = 1; call < 60; ++call) {
    storage.Content("a.msi") = original;
    faulty.Disarm();
    auto database = Get(Database::Open(faulty, "a.msi", OpenMode::kTransact));
    faulty.Arm(FaultyStorage::Fault::kShortWrite, call, kErrorDiskFull, false);
    KW_EXPECT_OK(RunSql(*database, "update `Property` set `Value` = 'changed' where `Property` = 'P7'"));
    KW_EXPECT_OK(RunSql(*database, "delete from `Cabs`"));
    const bool failed = !database->Commit().ok();
    faulty.Disarm();
    const std::string first_dump = Dump(*database);
    const bool lost = faulty.failed_sync();
    KW_EXPECT_OK(RunSql(*database, "delete from `Property` where `Property` = 'P9'"));
    const Status again = database->Commit();
    // A system that could not bring the file to the disk may have given up what it held: no success is
    // claimed.
    EXPECT_EQ(again.ok(), !lost) << call << ": " << again.message();
    const std::string wanted = Dump(*database);
    database.reset();
    if (lost) {
      ++lost_commits;
      const std::string dump = DumpOf("a.msi");
      EXPECT_TRUE(dump == old_dump || dump == first_dump) << call;
    } else {
      EXPECT_EQ(DumpOf("a.msi"), wanted) << call;
    }
    if (!failed) break;
  }
  EXPECT_GE(lost_commits, 2);
}

TEST_F(FaultTest, DirectModeShowsEachStatementAndKeepsTheFileWhole) {
  storage.Content("a.msi") = original;
  const auto direct = Get(Database::Open(storage, "a.msi", OpenMode::kDirect));
  for (int i = 0; i < 40; ++i) {
    KW_EXPECT_OK(RunSql(*direct,
                        "update `Property` set `Value` = ? where `Property` = 'P" + std::to_string(i) + "'",
                        {T(Numbered("direct ", static_cast<long long>(i)))}));
    if (i % 10 == 3) {
      KW_EXPECT_OK(RunSql(*direct, "insert into `Binary` (`Name`, `Data`) values (?, ?)",
                          {T(Numbered("b", static_cast<long long>(i))),
                           FileValue(storage, i % 20 == 3 ? "small" : "large")}));
    }
    storage.Content("copy.msi") = storage.Content("a.msi");
    EXPECT_EQ(DumpOf("copy.msi"), Dump(*direct)) << i;
  }
  EXPECT_LT(storage.Content("a.msi").size(), original.size() + 130000);
}

TEST_F(FaultTest, ADirectStatementKilledAnywhereLeavesTheOldOrTheNewDatabase) {
  FaultyStorage faulty(storage);
  storage.Content("a.msi") = original;
  const std::string old_dump = DumpOf("a.msi");
  const auto change = [&](Storage& through) -> Status {
    KW_ASSIGN_OR_RETURN(const auto database, Database::Open(through, "a.msi", OpenMode::kDirect));
    return RunSql(*database, "update `Property` set `Value` = 'now' where `Property` = 'P7'");
  };
  KW_EXPECT_OK(change(storage));
  const std::string new_dump = DumpOf("a.msi");
  for (int call = 1; call < 100; ++call) {
    storage.Content("a.msi") = original;
    faulty.Arm(FaultyStorage::Fault::kKill, call, kErrorIo, true);
    const Status status = change(faulty);
    const int calls = faulty.calls();
    faulty.Disarm();
    const std::string dump = DumpOf("a.msi");
    EXPECT_TRUE(dump == (status.ok() ? new_dump : old_dump) || (!status.ok() && dump == new_dump)) << call;
    if (calls < call) return;
  }
  FAIL() << "the statement never came to its end";
}

TEST_F(FaultTest, AFileCutAnywhereIsRefused) {
  // The last sector's padding may go without loss; everything before matters.
  int refused = 0;
  for (int i = 0; i < 200; ++i) {
    const size_t length = (original.size() - 512) * static_cast<size_t>(i) / 200;
    storage.Content("cut.msi") = original.substr(0, length);
    const auto database = Database::Open(storage, "cut.msi", OpenMode::kReadOnly);
    EXPECT_FALSE(database.ok()) << length;
    if (!database.ok()) {
      EXPECT_EQ(database.number(), kErrorInstallPackageInvalid);
      ++refused;
    }
  }
  EXPECT_EQ(refused, 200);
}

TEST_F(FaultTest, AMutatedFileIsReadOrRefusedButNeverMore) {
  std::mt19937 random(20020704);
  int opened = 0;
  for (int i = 0; i < 3000; ++i) {
    std::string& file = storage.Content("bad.msi");
    file = original;
    const int changes = 1 + static_cast<int>(random() % 4);
    for (int k = 0; k < changes; ++k) {
      // Half of the changes go to where the structure is.
      const size_t at = random() % (random() % 2 ? file.size() : std::min<size_t>(file.size(), 512));
      file[at] = static_cast<char>(random());
    }
    auto database = Database::Open(storage, "bad.msi", OpenMode::kTransact);
    if (!database.ok()) continue;
    ++opened;
    try {
      Dump(**database);
    } catch (const std::runtime_error&) {
      // A stream that lies outside the file is found when it is read.
    }
    RunSql(**database, "update `Property` set `Value` = 'x'").IgnoreError();
    RunSql(**database, "delete from `Cabs`").IgnoreError();
    const Status committed = (*database)->Commit();
    database = Error{kErrorIo, "closed"};
    if (committed.ok()) {
      EXPECT_TRUE(Database::Open(storage, "bad.msi", OpenMode::kReadOnly).ok()) << i;
    }
  }
  EXPECT_GT(opened, 100);
}

// A file of 4096-byte sectors whose storages lie in one another, so many levels deep.
std::string NestedStorages(uint32_t levels) {
  using namespace layout;
  constexpr uint32_t kSector = 4096;
  const uint32_t directory = ((levels + 1) * uint32_t{kEntrySize} + kSector - 1) / kSector;
  const uint32_t tables = directory / (kSector / 4) + 1;
  std::string file(size_t{kSector} * (1 + directory + tables), '\0');
  std::copy(std::begin(kSignature), std::end(kSignature), file.begin());
  PutU16(&file[kMajorVersionAt], 4);
  PutU16(&file[kByteOrderAt], 0xFFFE);
  PutU16(&file[kSectorShiftAt], 12);
  PutU16(&file[kMiniShiftAt], kMiniShift);
  PutU32(&file[kFatSectorsAt], tables);
  PutU32(&file[kMiniCutoffAt], kMiniCutoff);
  PutU32(&file[kMiniFatStartAt], kEndOfChain);
  PutU32(&file[kDifatStartAt], kEndOfChain);
  for (uint32_t i = 0; i < kHeaderDifat; ++i)
    PutU32(&file[kDifatAt + 4 * i], i < tables ? directory + i : kFree);
  for (uint32_t i = 0; i <= levels; ++i) {
    char* const entry = &file[kSector + size_t{i} * kEntrySize];
    PutU16(entry, 'x');
    PutU16(entry + kEntryNameBytes, 4);
    entry[kEntryTypeAt] = static_cast<char>(i == 0 ? kRootEntry : kStorageEntry);
    PutU32(entry + kEntryLeftAt, kNoEntry);
    PutU32(entry + kEntryRightAt, kNoEntry);
    PutU32(entry + kEntryChildAt, i < levels ? i + 1 : kNoEntry);
  }
  char* const table = &file[kSector * (size_t{1} + directory)];
  for (uint32_t i = 0; i < tables * (kSector / 4); ++i)
    PutU32(table + 4 * size_t{i}, i + 1 < directory ? i + 1 : i + 1 == directory ? kEndOfChain : kFree);
  return file;
}

TEST_F(FaultTest, StoragesThatLieDeepInOneAnotherAreRefusedAndNotRecursedInto) {
  for (const uint32_t levels : {3u, 150u, 201u, 400000u}) {
    storage.Content("deep.msi") = NestedStorages(levels);
    const auto file = CompoundFile::Open(Get(storage.Open("deep.msi", Storage::Mode::kRead)));
    EXPECT_EQ(file.ok(), levels <= 200) << levels << ": " << file.status().message();
    if (!file.ok()) {
      EXPECT_NE(file.status().message().find("too deep in one another"), std::string::npos) << levels;
    }
  }
}

TEST_F(FaultTest, OpeningIsRefusedWhereItCannotWork) {
  EXPECT_EQ(Database::Open(storage, "missing.msi", OpenMode::kReadOnly).number(), kErrorFileNotFound);
  storage.Content("empty.msi") = "";
  EXPECT_EQ(Database::Open(storage, "empty.msi", OpenMode::kDirect).number(), kErrorInstallPackageInvalid);
  storage.Content("text.msi") = std::string(5000, 'x');
  EXPECT_EQ(Database::Open(storage, "text.msi", OpenMode::kDirect).number(), kErrorInstallPackageInvalid);
  storage.Content("ro.msi") = original;
  storage.read_only.insert("ro.msi");
  EXPECT_EQ(Database::Open(storage, "ro.msi", OpenMode::kDirect).number(), kErrorAccessDenied);
  EXPECT_TRUE(Database::Open(storage, "ro.msi", OpenMode::kReadOnly).ok());
  storage.Content("a.msi") = original;
  const auto first = Get(Database::Open(storage, "a.msi", OpenMode::kDirect));
  EXPECT_EQ(Database::Open(storage, "a.msi", OpenMode::kTransact).number(), kErrorSharingViolation);
  EXPECT_TRUE(Database::Open(storage, "a.msi", OpenMode::kReadOnly).ok());
}

TEST_F(FaultTest, OpenAndCommitWithoutAChangeLeavesEveryByte) {
  for (const OpenMode mode : {OpenMode::kTransact, OpenMode::kDirect}) {
    storage.Content("a.msi") = original;
    const auto database = Get(Database::Open(storage, "a.msi", mode));
    Dump(*database);
    KW_EXPECT_OK(database->Commit());
    EXPECT_EQ(storage.Content("a.msi"), original);
  }
}

}  // namespace
}  // namespace kw::msi
