#include <cstdint>
#include <string>

#include "base/testing/memory_storage.h"
#include "fuzz/expect.h"
#include "msi/database.h"

namespace {

using kw::msi::Database;
using kw::msi::OpenMode;

// Reads every cell and stream of every table, and gives the number of rows.
size_t ReadAll(Database& database) {
  const auto names = database.OpenView("SELECT `Name` FROM `_Tables`");
  kw::fuzz::Expect(names.ok() && (*names)->Execute(nullptr).ok(), "the catalogue is read");
  size_t rows = 0;
  while (true) {
    const auto name = (*names)->Fetch();
    if (!name.ok() || !name->has_value()) return rows;
    const auto view = database.OpenView("SELECT * FROM `" + (*name)->StringData(1) + "`");
    if (!view.ok() || !(*view)->Execute(nullptr).ok()) continue;
    while (true) {
      auto row = (*view)->Fetch();
      if (!row.ok() || !row->has_value()) break;
      ++rows;
      for (int field = 1; field <= (*row)->FieldCount(); ++field) {
        (*row)->StringData(field);
        (*row)
            ->ReadStream(field, 4096)
            .status()
            .IgnoreError();  // a broken stream is a failure, not a finding
      }
    }
  }
}

}  // namespace

// The input is a file. What opens is changed and committed, and must then open again.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kw::testing::MemoryStorage storage;
  storage.Content("f.msi").assign(reinterpret_cast<const char*>(data), size);
  {
    auto database = Database::Open(storage, "f.msi", OpenMode::kDirect);
    if (!database.ok()) return 0;
    ReadAll(**database);
    (*database)->SummaryInformation(0).status().IgnoreError();
    for (const char* sql : {"update `Property` set `Value` = 'x'", "delete from `Binary`",
                            "create table `Fuzz` (`A` CHAR(3) NOT NULL, `B` LONG primary key `A`)",
                            "insert into `Fuzz` (`A`, `B`) values ('k', 7)"}) {
      const auto view = (*database)->OpenView(sql);
      if (view.ok()) (*view)->Execute(nullptr).IgnoreError();
    }
    if (!(*database)->Commit().ok()) return 0;
  }
  const auto again = Database::Open(storage, "f.msi", OpenMode::kReadOnly);
  kw::fuzz::Expect(again.ok(), "what was committed opens");
  return 0;
}
