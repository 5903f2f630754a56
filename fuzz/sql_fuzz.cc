#include <cstdint>
#include <string_view>

#include "base/testing/memory_storage.h"
#include "fuzz/expect.h"
#include "msi/database.h"

// The input is a statement on a small database.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kw::msi::Database;
  if (size > 2000) return 0;
  kw::testing::MemoryStorage storage;
  const auto database = Database::Open(storage, "f.msi", kw::msi::OpenMode::kCreate);
  kw::fuzz::Expect(database.ok(), "a database is made");
  kw::msi::Record parameters(4);
  for (int field = 1; field <= 4; ++field)
    kw::fuzz::Expect(parameters.SetInteger(field, field).ok(), "a field is set");
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  for (const std::string_view sql :
       {std::string_view("create table `T` (`K` CHAR(9) NOT NULL, `N` SHORT, `B` OBJECT primary key `K`)"),
        std::string_view("create table `U` (`P` LONG NOT NULL, `T_` CHAR(9) primary key `P`)"),
        std::string_view("insert into `T` (`K`, `N`) values ('a', 1)"),
        std::string_view("insert into `U` (`P`, `T_`) values (1, 'a')"), input, input,
        std::string_view("select * from `T`, `U` where `K` = `T_`")}) {
    const auto view = (*database)->OpenView(sql);
    if (!view.ok() || !(*view)->Execute(&parameters).ok()) continue;
    while (true) {
      const auto row = (*view)->Fetch();
      if (!row.ok() || !row->has_value()) break;
    }
  }
  kw::fuzz::Expect((*database)->Commit().ok(), "the database is committed");
  const auto again = Database::Open(storage, "f.msi", kw::msi::OpenMode::kReadOnly);
  kw::fuzz::Expect(again.ok(), "what was committed opens");
  return 0;
}
