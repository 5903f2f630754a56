// Every call to the system that a change of a database makes, made to fail in turn: no space, an error of the
// disk, no permission, half of the work, an interruption, once and from then on; and the process killed
// before and behind it. The file then holds the old or the new database, and success was claimed for the new
// one alone.

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "msi/test_support.h"
#include "tests/faults/calls/failing_process_test_support.h"

namespace kw::msi {
namespace {

using faults::Ending;
using faults::Kind;
using faults::Kinds;
using faults::RunFailing;

class DatabaseCallTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = std::filesystem::temp_directory_path() / ("kw_calls_" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder_);
    const auto database = Get(Database::Open(SystemStorage(), Path("original.msi"), OpenMode::kCreate));
    for (const char* sql :
         {"create table `Property` (`Property` CHAR(72) NOT NULL, `Value` LONGCHAR primary key `Property`)",
          "create table `Cabs` (`Name` CHAR(72) NOT NULL, `Data` OBJECT NOT NULL primary key `Name`)",
          "insert into `Property` (`Property`, `Value`) values ('a', 'old')"}) {
      KW_EXPECT_OK(RunSql(*database, sql));
    }
    std::ofstream(Path("large"), std::ios::binary) << std::string(60000, 'l');
    std::ofstream(Path("other"), std::ios::binary) << std::string(40000, 'o');
    KW_EXPECT_OK(RunSql(*database, "insert into `Cabs` (`Name`, `Data`) values ('large', ?)",
                        {FileValue(SystemStorage(), Path("large"))}));
    KW_EXPECT_OK(database->Commit());
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string Path(const std::string& name) { return (folder_ / name).string(); }
  std::string DumpOf(const std::string& name) {
    return Dump(*Get(Database::Open(SystemStorage(), Path(name), OpenMode::kReadOnly)));
  }
  std::string Bytes(const std::string& name) { return Get(ReadWholeFile(SystemStorage(), Path(name))); }

  Ending Run(const std::vector<std::string>& statement, const Kind& kind, uint32_t at) {
    std::vector<std::string> command = {MSISQL, Path("tried.msi")};
    command.insert(command.end(), statement.begin(), statement.end());
    return RunFailing(folder_, command, {}, Path("tried.msi"), kind, at);
  }
  void TryEveryCall(const std::vector<std::string>& statement) {
    const auto reset = [&] {
      std::filesystem::copy_file(Path("original.msi"), Path("tried.msi"),
                                 std::filesystem::copy_options::overwrite_existing);
    };
    const std::string old_dump = DumpOf("original.msi");
    reset();
    const Ending whole = Run(statement, {}, 0);
    ASSERT_TRUE(whole.success);
    ASSERT_GE(whole.calls, 8u) << "the calls of the process are not seen";
    const std::string new_dump = DumpOf("tried.msi");
    const std::string answer = Bytes("answer");
    const bool reads = new_dump == old_dump;
    for (const Kind& kind : Kinds()) {
      reset();
      const uint32_t calls = Run(statement, kind, 0).calls;
      for (uint32_t at = 1; at <= calls; ++at) {
        reset();
        const Ending ending = Run(statement, kind, at);
        SCOPED_TRACE(std::string(kind.name) + " at call " + std::to_string(at));
        EXPECT_EQ(ending.killed,
                  kind.mode == faults::FaultMode::kKillBefore || kind.mode == faults::FaultMode::kKillAfter);
        EXPECT_TRUE(ending.success || !kind.must_work);
        const std::string dump = DumpOf("tried.msi");
        EXPECT_TRUE(dump == old_dump || dump == new_dump);
        if (ending.success) {
          EXPECT_TRUE(dump == new_dump) << "success was claimed wrongly";
          EXPECT_EQ(Bytes("answer"), answer);
        }
        EXPECT_TRUE(!reads || Bytes("tried.msi") == Bytes("original.msi"));
      }
    }
  }

  std::filesystem::path folder_;
};

TEST_F(DatabaseCallTest, ReadingFailsOrAnswersRightAndChangesNothing) {
  TryEveryCall({"--readonly", "select `Value` from `Property`"});
}

TEST_F(DatabaseCallTest, ACommittedStreamIsThereOrNot) {
  TryEveryCall({"insert into `Cabs` (`Name`, `Data`) values ('new', ?)", "@" + Path("other")});
}

TEST_F(DatabaseCallTest, ACommittedRemovalIsMadeOrNot) {
  TryEveryCall({"delete from `Cabs` where `Name` = 'large'"});
}

TEST_F(DatabaseCallTest, ADirectChangeIsMadeOrNot) {
  TryEveryCall({"--direct", "update `Property` set `Value` = 'new' where `Property` = 'a'"});
}

}  // namespace
}  // namespace kw::msi
