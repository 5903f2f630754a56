#include <cstring>
#include <map>

#include "msi/compound_layout.h"
#include "msi/test_support.h"

// The greatest databases: what fits is right, what does not is refused before anything is written.

namespace kw::msi {
namespace {

/// Files that keep only blocks which hold something, so that two gigabytes of zeros cost nothing.
class HollowStorage : public Storage {
 public:
  struct Content {
    std::map<uint64_t, std::string> blocks;
    uint64_t size = 0;
    uint64_t written = 0;
    uint64_t read = 0;
  };
  class File : public StorageFile {
   public:
    explicit File(Content& content) : content_(content) {}
    Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
      if (offset >= content_.size) return size_t{0};
      const size_t length = static_cast<size_t>(std::min<uint64_t>(buffer.size(), content_.size - offset));
      content_.read += length;
      Each(offset, length, [&](uint64_t block, size_t within, size_t done, size_t part) {
        const auto found = content_.blocks.find(block);
        if (found == content_.blocks.end()) {
          std::memset(buffer.data() + done, 0, part);
        } else {
          std::memcpy(buffer.data() + done, found->second.data() + within, part);
        }
      });
      return length;
    }
    Status WriteAt(uint64_t offset, std::span<const std::byte> data) override {
      content_.written += data.size();
      content_.size = std::max(content_.size, offset + data.size());
      Each(offset, data.size(), [&](uint64_t block, size_t within, size_t done, size_t part) {
        const char* const from = reinterpret_cast<const char*>(data.data()) + done;
        auto found = content_.blocks.find(block);
        if (found == content_.blocks.end()) {
          if (from[0] == 0 && std::memcmp(from, from + 1, part - 1) == 0) return;
          found = content_.blocks.emplace(block, std::string(kBlock, '\0')).first;
        }
        std::memcpy(found->second.data() + within, from, part);
      });
      return {};
    }
    Result<uint64_t> Size() override { return content_.size; }
    Status Truncate(uint64_t size) override {
      content_.blocks.erase(content_.blocks.lower_bound((size + kBlock - 1) / kBlock), content_.blocks.end());
      const auto last = content_.blocks.find(size / kBlock);
      if (last != content_.blocks.end()) std::memset(&last->second[size % kBlock], 0, kBlock - size % kBlock);
      content_.size = size;
      return {};
    }
    Status Sync() override { return {}; }

   private:
    static constexpr size_t kBlock = 65536;
    template <typename Work>
    static void Each(uint64_t offset, size_t length, const Work& work) {
      for (size_t done = 0; done < length;) {
        const size_t within = static_cast<size_t>((offset + done) % kBlock);
        const size_t part = std::min(kBlock - within, length - done);
        work((offset + done) / kBlock, within, done, part);
        done += part;
      }
    }
    Content& content_;
  };

  Result<std::unique_ptr<StorageFile>> Open(const std::string& path, Mode mode) override {
    if (mode == Mode::kCreateAlways) files[path] = {};
    if (files.count(path) == 0) return {kErrorFileNotFound, path + " is not there."};
    return std::unique_ptr<StorageFile>(std::make_unique<File>(files[path]));
  }
  Status Rename(const std::string&, const std::string&) override { return {kErrorUnsupported, "no"}; }
  Status Remove(const std::string&) override { return {kErrorUnsupported, "no"}; }
  bool Exists(const std::string& path) override { return files.count(path) != 0; }
  Status CreateFolder(const std::string&) override { return {kErrorUnsupported, "no"}; }

  std::map<std::string, Content> files;
};

constexpr uint64_t kMegabyte = 1 << 20;

class SizeLimitTest : public ::testing::Test {
 protected:
  void SetUp() override {
    db = Get(Database::Open(storage, "a.msi", OpenMode::kCreate));
    KW_EXPECT_OK(RunSql(*db,
                        "create table `Cabs` (`Name` CHAR(72) NOT NULL, `Data` OBJECT NOT NULL primary "
                        "key `Name`)"));
    KW_EXPECT_OK(RunSql(*db,
                        "create table `Property` (`Property` CHAR(72) NOT NULL, `Value` LONGCHAR primary key "
                        "`Property`)"));
    KW_EXPECT_OK(RunSql(*db, "insert into `Property` (`Property`, `Value`) values ('a', 'old')"));
    KW_EXPECT_OK(db->Commit());
  }
  Status Insert(const std::string& name, uint64_t size) {
    storage.files["in"].size = size;
    storage.files["in"].read = 0;
    return RunSql(*db, "insert into `Cabs` (`Name`, `Data`) values (?, ?)",
                  {T(name), FileValue(storage, "in")});
  }
  std::string Value() { return QueryRows(*db, "select `Value` from `Property`")[0][0]; }

  HollowStorage storage;
  std::shared_ptr<Database> db;
};

TEST_F(SizeLimitTest, AStreamThatWouldPassTwoGigabytesIsRefusedBeforeAByteIsReadOrWritten) {
  const uint64_t size = storage.files["a.msi"].size;
  for (const uint64_t bytes : {2048 * kMegabyte, 2047 * kMegabyte, 3000 * kMegabyte, uint64_t{1} << 40}) {
    storage.files["a.msi"].written = 0;
    const Status status = Insert("large", bytes);
    EXPECT_EQ(status.number(), kErrorDiskFull) << bytes;
    EXPECT_EQ(status.message(), "The database would grow beyond 2 GiB.");
    EXPECT_EQ(storage.files["a.msi"].written, 0u);
    EXPECT_EQ(storage.files["in"].read, 0u);
    EXPECT_EQ(storage.files["a.msi"].size, size);
  }
  EXPECT_TRUE(QueryRows(*db, "select `Name` from `Cabs`").empty());
  KW_EXPECT_OK(Insert("small", 5000));
  KW_EXPECT_OK(db->Commit());
}

TEST_F(SizeLimitTest, ADatabaseOfNearlyTwoGigabytesIsRightAndGrowsNoFurther) {
  KW_EXPECT_OK(Insert("first", 1300 * kMegabyte));
  KW_EXPECT_OK(Insert("second", 650 * kMegabyte));
  KW_EXPECT_OK(db->Commit());
  db = nullptr;
  EXPECT_LT(storage.files["a.msi"].size, 1985 * kMegabyte);
  db = Get(Database::Open(storage, "a.msi", OpenMode::kTransact));
  storage.files["a.msi"].written = 0;
  EXPECT_EQ(Insert("third", 100 * kMegabyte).number(), kErrorDiskFull);
  EXPECT_EQ(storage.files["a.msi"].written, 0u);
  // Texts grow into what is left, and no further: the file keeps its old state, whatever was tried.
  KW_EXPECT_OK(RunSql(*db, "update `Property` set `Value` = ?", {T(std::string(100 * kMegabyte, 't'))}));
  EXPECT_EQ(db->Commit().number(), kErrorDiskFull);
  EXPECT_LT(storage.files["a.msi"].size, uint64_t{2048} * kMegabyte);
  {
    const auto other = Get(Database::Open(storage, "a.msi", OpenMode::kReadOnly));
    EXPECT_EQ(QueryRows(*other, "select `Value` from `Property`"), (Rows{{"old"}}));
  }
  KW_EXPECT_OK(RunSql(*db, "update `Property` set `Value` = 'new'"));
  KW_EXPECT_OK(RunSql(*db, "delete from `Cabs` where `Name` = 'second'"));
  KW_EXPECT_OK(db->Commit());
  KW_EXPECT_OK(Insert("third", 100 * kMegabyte));
  KW_EXPECT_OK(db->Commit());
  db = nullptr;
  EXPECT_LT(storage.files["a.msi"].size, 1428 * kMegabyte);
  db = Get(Database::Open(storage, "a.msi", OpenMode::kReadOnly));
  EXPECT_EQ(Value(), "new");
  const auto view = Get(db->OpenView("select `Name`, `Data` from `Cabs` order by `Name`"));
  KW_EXPECT_OK(view->Execute(nullptr));
  for (const uint64_t size : {1300 * kMegabyte, 100 * kMegabyte}) {
    const auto row = Get(view->Fetch());
    ASSERT_TRUE(row.has_value());
    EXPECT_EQ(Get(row->DataSize(2)), size);
  }
}

TEST_F(SizeLimitTest, ACellChangedBesideALargeStreamLeavesTheStreamAlone) {
  for (const uint64_t size : {50 * kMegabyte, 500 * kMegabyte, 1900 * kMegabyte}) {
    KW_EXPECT_OK(RunSql(*db, "delete from `Cabs`"));
    KW_EXPECT_OK(db->Commit());
    KW_EXPECT_OK(Insert("large", size));
    KW_EXPECT_OK(db->Commit());
    db = nullptr;
    db = Get(Database::Open(storage, "a.msi", OpenMode::kTransact));
    HollowStorage::Content& file = storage.files["a.msi"];
    for (int turn = 0; turn < 3; ++turn) {
      file.written = file.read = 0;
      const std::string text = Numbered("turn ", turn) + Numbered(" beside ", static_cast<long long>(size));
      KW_EXPECT_OK(RunSql(*db, "update `Property` set `Value` = ?", {T(text)}));
      KW_EXPECT_OK(db->Commit());
      // What grows is the list of the sector table's blocks: four bytes for each 64 KiB.
      EXPECT_LT(file.written + file.read, 16384 + size / 10000) << size;
      EXPECT_LT(file.size, size * 102 / 100);
    }
  }
}

class LimitTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    MakePackage();
  }
};

TEST_F(LimitTest, TheReferencesWidenWithTheFirstTextTheyCannotName) {
  Cycle();
  const auto rows = [&] { return QueryRows(*db, "select `Property` from `Property`").size(); };
  auto view = Get(db->OpenView("insert into `Property` (`Property`, `Value`) values (?, ?)"));
  Record record(2);
  int count = 0;
  const auto add = [&](int until) {
    for (; count < until; ++count) {
      KW_EXPECT_OK(record.SetString(1, Numbered("p", count)));
      KW_EXPECT_OK(record.SetString(2, "same"));
      KW_EXPECT_OK(view->Execute(&record));
    }
  };
  // Around the edge, one text after the other, each committed and read back.
  add(65440);
  std::vector<size_t> sizes;
  for (int until = 65480; until < 65540; until += 4) {
    add(until);
    KW_EXPECT_OK(db->Commit());
    const auto other = Get(Database::Open(storage, "a.msi", OpenMode::kReadOnly));
    EXPECT_EQ(QueryRows(*other, "select `Value` from `Property` where `Property` = ?",
                        {T(Numbered("p", until - 1))}),
              (Rows{{"same"}}));
    EXPECT_EQ(QueryRows(*other, "select `Property` from `Property` where `Property` = 'p7'"), (Rows{{"p7"}}));
    sizes.push_back(storage.Content("a.msi").size());
  }
  EXPECT_GT(sizes.back(), sizes.front() + 2 * 65000) << "every reference takes a byte more";
  EXPECT_EQ(rows(), static_cast<size_t>(count));
  view.reset();
  Cycle();
  EXPECT_EQ(rows(), static_cast<size_t>(count));
}

TEST_F(LimitTest, FilesAreCountedUpToWhatTheirSequenceHolds) {
  auto view =
      Get(db->OpenView("insert into `File` (`File`, `Component_`, `FileName`, `FileSize`, `Sequence`) values "
                       "(?, 'c', 'n', 1, ?)"));
  Record record(2);
  for (int i = 1; i <= 32767; ++i) {
    KW_EXPECT_OK(record.SetString(1, Numbered("f", i)));
    KW_EXPECT_OK(record.SetInteger(2, i));
    KW_EXPECT_OK(view->Execute(&record));
  }
  view.reset();
  Cycle();
  const std::string file = storage.Content("a.msi");
  EXPECT_EQ(RunSql(*db,
                   "insert into `File` (`File`, `Component_`, `FileName`, `FileSize`, `Sequence`) values "
                   "('f32768', 'c', 'n', 1, 32768)")
                .number(),
            kErrorFunctionFailed);
  EXPECT_EQ(RunSql(*db, "update `File` set `Sequence` = 32768 where `File` = 'f1'").number(),
            kErrorFunctionFailed);
  KW_EXPECT_OK(db->Commit());
  EXPECT_TRUE(storage.Content("a.msi") == file) << "what was refused changes nothing";
  EXPECT_EQ(QueryRows(*db, "select `File` from `File` where `Sequence` = 32767"), (Rows{{"f32767"}}));
  EXPECT_EQ(QueryRows(*db, "select `File` from `File`").size(), 32767u);
  // A table whose column is wide enough takes more.
  KW_EXPECT_OK(RunSql(*db, "create table `Long` (`K` CHAR(9) NOT NULL, `Sequence` LONG primary key `K`)"));
  KW_EXPECT_OK(RunSql(*db, "insert into `Long` (`K`, `Sequence`) values ('k', 32768)"));
  Cycle();
  EXPECT_EQ(QueryRows(*db, "select `Sequence` from `Long`"), (Rows{{"32768"}}));
}

TEST_F(LimitTest, FilesAroundTheHeadersListOfTablesAreRight) {
  // 109 blocks of the sector table, which the header lists itself, reach as far as 109 * 128 sectors.
  constexpr size_t kEdge = layout::kHeaderDifat * 128 * 512;
  Cycle();
  int with = 0;
  int without = 0;
  const std::vector<size_t> sizes = {kEdge - 300000, kEdge - 200000, kEdge - 90000, kEdge - 75000,
                                     kEdge - 60000,  kEdge - 512,    kEdge,         kEdge + 60000,
                                     kEdge - 80000,  7 << 20,        kEdge * 2};
  for (const size_t size : sizes) {
    std::string& content = storage.Content("in");
    content.resize(size);
    for (size_t i = 0; i < size; i += 512) content[i] = static_cast<char>(i >> 9);
    KW_EXPECT_OK(RunSql(*db, "delete from `Cabs`"));
    KW_EXPECT_OK(
        RunSql(*db, "insert into `Cabs` (`Name`, `Data`) values ('c', ?)", {FileValue(storage, "in")}));
    Cycle();
    const std::string& file = storage.Content("a.msi");
    ++(file[layout::kDifatSectorsAt] != 0 ? with : without);
    EXPECT_LT(file.size(), size * 102 / 100 + 50000);
    {
      const auto view = Get(db->OpenView("select `Data` from `Cabs`"));
      KW_EXPECT_OK(view->Execute(nullptr));
      EXPECT_TRUE(Get(Get(view->Fetch())->ReadStream(1, size + 1)) == content) << size;
    }
    // One cell more beside it.
    KW_EXPECT_OK(RunSql(*db, "delete from `Property`"));
    KW_EXPECT_OK(RunSql(*db, "insert into `Property` (`Property`, `Value`) values ('size', ?)",
                        {I(static_cast<int32_t>(size))}));
    Cycle();
    EXPECT_EQ(QueryRows(*db, "select `Value` from `Property`"), (Rows{{std::to_string(size)}}));
  }
  EXPECT_GE(with, 3);
  EXPECT_GE(without, 3);
}

}  // namespace
}  // namespace kw::msi
