// Databases of any shape, made by chance: opened and committed without a change they keep every byte,
// temporary things reach no file, and one change leaves all the rest, what statements cannot see too.

#include <algorithm>
#include <map>
#include <random>

#include "msi/bytes.h"
#include "msi/compound_file.h"
#include "msi/compound_layout.h"
#include "msi/stream_name.h"
#include "msi/test_support.h"

namespace kw::msi {
namespace {

using namespace layout;

/// The directory of a small file of 512-byte sectors, for a change of its tree.
class Directory {
 public:
  explicit Directory(std::string& file) : file_(file) {
    const auto next = [&](uint32_t sector) {
      const uint32_t block = GetU32(file.data() + kDifatAt + size_t{4} * (sector / 128));
      return GetU32(file.data() + At(block) + size_t{4} * (sector % 128));
    };
    for (uint32_t sector = GetU32(file.data() + kDirectoryStartAt); sector != kEndOfChain;
         sector = next(sector)) {
      sectors_.push_back(sector);
    }
  }
  uint32_t size() const { return static_cast<uint32_t>(sectors_.size() * (512 / kEntrySize)); }
  char* Entry(uint32_t id) { return file_.data() + At(sectors_[id / 4]) + (id % 4) * kEntrySize; }
  uint32_t Find(const std::u16string& name) {
    for (uint32_t id = 0; id < size(); ++id) {
      const char* entry = Entry(id);
      bool same = GetU16(entry + kEntryNameBytes) == 2 * (name.size() + 1);
      for (size_t i = 0; i < name.size() && same; ++i) same = GetU16(entry + 2 * i) == name[i];
      if (same) return id;
    }
    return kNoEntry;
  }

 private:
  static size_t At(uint32_t sector) { return (size_t{sector} + 1) * 512; }
  std::string& file_;
  std::vector<uint32_t> sectors_;
};

/// Makes the empty stream "Folder" of a file a storage, and one of the streams "InnerN" its only content.
/// Statements cannot make storages.
void MakeStorage(std::string& file) {
  Directory directory(file);
  const uint32_t folder = directory.Find(EncodeStreamName("Folder", false).value_or(u""));
  ASSERT_NE(folder, kNoEntry);
  for (int i = 0; i < 8; ++i) {
    const uint32_t inner = directory.Find(EncodeStreamName(Numbered("Inner", i), false).value_or(u""));
    ASSERT_NE(inner, kNoEntry);
    if (GetU32(directory.Entry(inner) + kEntryLeftAt) != kNoEntry ||
        GetU32(directory.Entry(inner) + kEntryRightAt) != kNoEntry) {
      continue;
    }
    for (uint32_t id = 0; id < directory.size(); ++id) {
      for (const size_t link : {kEntryLeftAt, kEntryRightAt}) {
        if (GetU32(directory.Entry(id) + link) == inner) PutU32(directory.Entry(id) + link, kNoEntry);
      }
    }
    char* const entry = directory.Entry(folder);
    entry[kEntryTypeAt] = static_cast<char>(kStorageEntry);
    PutU32(entry + kEntryChildAt, inner);
    PutU64(entry + kEntryCreatedAt, 127500000000000000);
    directory.Entry(inner)[kEntryColourAt] = 1;
    return;
  }
  FAIL() << "no stream can be moved into the storage";
}

class RoundTripTest : public DatabaseTest, public ::testing::WithParamInterface<unsigned> {
 protected:
  RoundTripTest() : random(GetParam()) {}

  size_t Below(size_t count) { return random() % count; }
  std::string AnyText() {
    static const std::map<int, std::vector<std::string>> kBeyondAscii = {{1252, {"Größe", "café", "½"}},
                                                                         {1251, {"Привет", "мир"}},
                                                                         {932, {"日本", "カナ"}},
                                                                         {65001, {"日本 Größe", "мир"}}};
    if (Below(60) == 0) return std::string(65530 + Below(20), 'l');
    const auto beyond = kBeyondAscii.find(code_page);
    if (beyond != kBeyondAscii.end() && Below(4) == 0) return beyond->second[Below(beyond->second.size())];
    return Below(9) == 0 ? "" : Numbered("text ", static_cast<long long>(Below(40)));
  }
  Value AnyStream() {
    static const std::vector<size_t> kSizes = {0, 1, 63, 64, 65, 4095, 4096, 4097, 5000, 70000};
    std::string& content = storage.Content("stream");
    content.assign(kSizes[Below(kSizes.size())], '\0');
    for (char& c : content) c = static_cast<char>(random());
    return FileValue(storage, "stream");
  }

  struct Made {
    std::string name;
    std::vector<char> kinds;  // of the columns behind the key: t, s(hort), l(ong), o(bject)
  };
  Made MakeTable(int index) {
    Made made{Numbered("Table", index), {}};
    std::string sql = "create table `" + made.name + "` (`K` CHAR(40) NOT NULL, `N` SHORT NOT NULL";
    const size_t columns = Below(5);
    bool object = false;
    for (size_t i = 0; i < columns; ++i) {
      char kind = "tslo"[Below(4)];
      if (kind == 'o' && object) kind = 't';
      object = object || kind == 'o';
      const std::string type = kind == 't'   ? "LONGCHAR LOCALIZABLE"
                               : kind == 's' ? "SHORT"
                               : kind == 'l' ? "LONG"
                                             : "OBJECT";
      sql += ", `" + Numbered("C", static_cast<long long>(i)) + "` " + type;
      made.kinds.push_back(kind);
    }
    KW_EXPECT_OK(RunSql(*db, sql + " primary key `K`, `N`)"));
    const size_t rows = Below(30);
    for (size_t row = 0; row < rows; ++row) AddRow(made, static_cast<int32_t>(row), "");
    if (rows > 4) KW_EXPECT_OK(RunSql(*db, "delete from `" + made.name + "` where `N` = 3"));
    return made;
  }
  void AddRow(const Made& made, int32_t number, const std::string& tail) {
    std::string sql = "insert into `" + made.name + "` (`K`, `N`";
    std::string marks = "?, ?";
    std::vector<Value> values = {T(Numbered("key ", static_cast<long long>(Below(99)))), I(number)};
    for (size_t i = 0; i < made.kinds.size(); ++i) {
      static const std::vector<int32_t> kNumbers = {0, 1, -1, 32767, -32767, 100, 2147483647, -2147483647};
      sql += ", `" + Numbered("C", static_cast<long long>(i)) + "`";
      marks += ", ?";
      const char kind = made.kinds[i];
      if (Below(6) == 0) {
        values.emplace_back();
      } else if (kind == 'o') {
        values.push_back(AnyStream());
      } else {
        values.push_back(kind == 't' ? T(AnyText()) : I(kNumbers[Below(kind == 's' ? 6 : 8)]));
      }
    }
    KW_EXPECT_OK(RunSql(*db, sql + ") values (" + marks + ")" + tail, values));
  }

  void Make() {
    code_page = std::vector<int>{0, 1252, 1251, 932, 65001}[Below(5)];
    KW_EXPECT_OK(db->SetCodePage(code_page));
    const int count = 1 + static_cast<int>(Below(5));
    for (int i = 0; i < count; ++i) tables.push_back(MakeTable(i));
    if (count > 3) {
      KW_EXPECT_OK(RunSql(*db, "drop table `Table0`"));
      tables.erase(tables.begin());
    }
    KW_EXPECT_OK(RunSql(*db, "create table `Changed` (`K` CHAR(9) NOT NULL, `V` LONGCHAR primary key `K`)"));
    KW_EXPECT_OK(RunSql(*db, "insert into `Changed` (`K`, `V`) values ('k', 'old')"));
    for (int i = 0; i < 8; ++i) {
      KW_EXPECT_OK(RunSql(*db, "insert into `_Streams` (`Name`, `Data`) values (?, ?)",
                          {T(Numbered("Inner", i)), AnyStream()}));
    }
    storage.Content("stream").clear();
    KW_EXPECT_OK(RunSql(*db, "insert into `_Streams` (`Name`, `Data`) values ('Folder', ?)",
                        {FileValue(storage, "stream")}));
    const auto info = Get(db->SummaryInformation(9));
    KW_EXPECT_OK(info->SetInteger(1, 1252));
    KW_EXPECT_OK(info->SetText(2, Below(2) ? "Größe" : "title"));
    KW_EXPECT_OK(info->SetText(7, "Intel;1033"));
    KW_EXPECT_OK(info->SetTime(12, 127500000000000000 + Below(1000000)));
    KW_EXPECT_OK(info->SetInteger(15, static_cast<int32_t>(Below(4))));
    KW_EXPECT_OK(info->Persist());
    KW_EXPECT_OK(db->Commit());
    db.reset();
    MakeStorage(storage.Content("a.msi"));
  }

  /// All that the file holds, by path, what statements cannot see too.
  std::map<std::u16string, std::string> Entries() {
    const auto file = Get(CompoundFile::Open(Get(storage.Open("a.msi", Storage::Mode::kRead))));
    std::map<std::u16string, std::string> entries;
    const std::function<void(const CfEntry&, const std::u16string&)> walk = [&](const CfEntry& entry,
                                                                                const std::u16string& path) {
      std::string& content = entries[path + entry.name];
      content = std::string(entry.class_id.data(), 16) + std::to_string(entry.created) + "/" +
                std::to_string(entry.modified) + "/" + std::to_string(entry.state_bits) + "/";
      if (entry.stream) content += Get(file->ReadAll(*entry.stream));
      for (const auto& [name, child] : entry.children) walk(*child, path + entry.name + u"/");
    };
    walk(file->root(), u"");
    return entries;
  }

  std::mt19937 random;
  int code_page = 0;
  std::vector<Made> tables;
};

TEST_P(RoundTripTest, NothingIsLostAndNothingTemporaryIsKept) {
  Make();
  const std::string bytes = storage.Content("a.msi");
  const auto entries = Entries();
  for (const OpenMode mode : {OpenMode::kReadOnly, OpenMode::kTransact, OpenMode::kDirect}) {
    Reopen(mode);
    EXPECT_EQ(db->CodePage(), code_page);
    Dump(*db);
    if (mode != OpenMode::kReadOnly) {
      KW_EXPECT_OK(db->Commit());
      EXPECT_TRUE(storage.Content("a.msi") == bytes) << "a commit without a change";
    }
    // Temporary rows, columns with texts in them, and tables.
    KW_EXPECT_OK(RunSql(*db, "alter table `Changed` add `Extra` char temporary hold"));
    KW_EXPECT_OK(RunSql(*db, "update `Changed` set `Extra` = 'only now'"));
    KW_EXPECT_OK(RunSql(*db, "create table `Passing` (`P` CHAR(9) temporary NOT NULL primary key `P`) hold"));
    KW_EXPECT_OK(RunSql(*db, "insert into `Passing` (`P`) values ('also new')"));
    for (const Made& table : tables) AddRow(table, 200, " temporary");
    EXPECT_EQ(QueryRows(*db, "select `Extra` from `Changed`"), (Rows{{"only now"}}));
    if (mode != OpenMode::kReadOnly) KW_EXPECT_OK(db->Commit());
    db.reset();
    EXPECT_TRUE(storage.Content("a.msi") == bytes) << "temporary things reached the file";
  }
  // One change, and all the rest is as it was.
  Reopen(Below(2) ? OpenMode::kTransact : OpenMode::kDirect);
  std::string dump = Dump(*db);
  KW_EXPECT_OK(RunSql(*db, "update `Changed` set `V` = 'new'"));
  KW_EXPECT_OK(db->Commit());
  Reopen(OpenMode::kReadOnly);
  EXPECT_EQ(db->CodePage(), code_page);
  dump.replace(dump.find("\tk\told\n"), 7, "\tk\tnew\n");
  EXPECT_TRUE(Dump(*db) == dump);
  db.reset();
  auto changed = Entries();
  ASSERT_EQ(changed.size(), entries.size());
  size_t differ = 0;
  for (const auto& [path, content] : entries) {
    if (changed[path] == content) continue;
    ++differ;
    EXPECT_EQ(path.substr(0, 12), std::u16string(u"Root Entry/") + kTableStreamMark)
        << "no table has changed";
  }
  EXPECT_LE(differ, 3u) << "the table and the texts";
  // A delete takes a storage away with all that is in it.
  Reopen(OpenMode::kTransact);
  EXPECT_EQ(QueryRows(*db, "select `Name` from `_Storages`"), (Rows{{"Folder"}}));
  KW_EXPECT_OK(RunSql(*db, "delete from `_Storages` where `Name` = 'Folder'"));
  KW_EXPECT_OK(db->Commit());
  db.reset();
  EXPECT_EQ(Entries().size(), entries.size() - 2);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RoundTripTest, ::testing::Range(1u, 61u));

}  // namespace
}  // namespace kw::msi
