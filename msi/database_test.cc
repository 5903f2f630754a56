#include "msi/test_support.h"

namespace kw::msi {
namespace {

TEST_F(DatabaseTest, RowsComeBackAfterACommit) {
  MakePackage();
  KW_EXPECT_OK(RunSql(*db, "insert into `Property` (`Value`, `Property`) values (?, ?)", {T("1"), T("A")}));
  Cycle();
  EXPECT_EQ(QueryRows(*db, "select `Value` from `Property` where `Property` = ?", {T("A")}), (Rows{{"1"}}));
}

TEST_F(DatabaseTest, ChangesAreLostWithoutACommit) {
  MakePackage();
  Cycle();
  KW_EXPECT_OK(RunSql(*db, "insert into `Property` (`Value`, `Property`) values (?, ?)", {T("1"), T("A")}));
  Reopen(OpenMode::kTransact);
  EXPECT_TRUE(QueryRows(*db, "select * from `Property`").empty());
}

TEST_F(DatabaseTest, StreamsComeBackAndAreReadInPieces) {
  MakePackage();
  for (const size_t size : {0, 1, 63, 64, 4095, 4096, 100000}) {
    std::string& content = storage.Content("in.bin");
    content.clear();
    for (size_t i = 0; i < size; ++i) content.push_back(static_cast<char>(i * 7 + i / 251));
    Record record(1);
    KW_EXPECT_OK(record.SetStream(1, storage, "in.bin"));
    const std::string name = Numbered("s", static_cast<long long>(size));
    auto view = Get(db->OpenView("insert into `Binary` (`Data`, `Name`) values (?, '" + name + "')"));
    KW_EXPECT_OK(view->Execute(&record));
    view.reset();
    EXPECT_EQ(QueryRows(*db, "select `Data` from `Binary` where `Name` = '" + name + "'"), (Rows{{content}}));
    Cycle();
    const auto read = Get(db->OpenView("select `Data` from `Binary` where `Name` = '" + name + "'"));
    KW_EXPECT_OK(read->Execute(nullptr));
    std::optional<Record> row = Get(read->Fetch());
    ASSERT_TRUE(row);
    EXPECT_EQ(Get(row->DataSize(1)), size);
    std::string all;
    for (;;) {
      const std::string chunk = Get(row->ReadStream(1, 1024));
      all += chunk;
      if (chunk.size() < 1024) break;
    }
    EXPECT_EQ(all, content);
  }
}

}  // namespace
}  // namespace kw::msi
