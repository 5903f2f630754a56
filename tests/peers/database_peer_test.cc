// Statements, ours and generated, run by this engine and by the common free library on copies of one file.
// What they answer must be the same, but for the differences that are told here, each with its reason.

#include <gtest/gtest.h>
#include <libmsi-1.0/libmsi.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/storage.h"
#include "msi/database.h"

namespace kw::msi {
namespace {

using Rows = std::vector<std::string>;

struct Answer {
  bool ok = false;
  Rows rows;  // sorted, as the order without "order by" is nobody's promise
};

bool IsSelect(const std::string& sql) { return sql.starts_with("select") || sql.starts_with("SELECT"); }

class PeerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = std::filesystem::temp_directory_path() / ("kw_peer_" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder_);
    // It complains aloud about statements that it does not take.
    g_log_set_default_handler([](const gchar*, GLogLevelFlags, const gchar*, gpointer) {}, nullptr);
  }
  void TearDown() override {
    ours_.reset();
    if (peer_) g_object_unref(peer_);
    std::filesystem::remove_all(folder_);
  }

  std::string Path(const std::string& name) { return (folder_ / name).string(); }

  void MakeFile(const std::string& path) {
    auto database = Database::Open(SystemStorage(), path, OpenMode::kCreate);
    ASSERT_TRUE(database.ok()) << database.error().message;
    ours_ = *database;
    for (const char* sql : {"CREATE TABLE `One` (`K` CHAR(20) NOT NULL, `A` SHORT, `B` CHAR(50) LOCALIZABLE, "
                            "`L` LONG PRIMARY KEY `K`)",
                            "CREATE TABLE `Two` (`P` CHAR(20) NOT NULL, `Q` SHORT NOT NULL, `One_` CHAR(20), "
                            "`C` LONGCHAR PRIMARY KEY `P`, `Q`)",
                            "INSERT INTO `One` (`K`, `A`, `B`, `L`) VALUES ('a', 1, 'x', 100000)",
                            "INSERT INTO `One` (`K`, `A`, `B`, `L`) VALUES ('b', 2, 'y', -100000)",
                            "INSERT INTO `One` (`K`, `A`, `B`) VALUES ('c', 0, 'x')",
                            "INSERT INTO `One` (`K`, `A`, `B`, `L`) VALUES ('d', -7, '1', 5)",
                            "INSERT INTO `One` (`K`) VALUES ('E')",
                            "INSERT INTO `Two` (`P`, `Q`, `One_`, `C`) VALUES ('p', 1, 'a', 'first')",
                            "INSERT INTO `Two` (`P`, `Q`, `One_`, `C`) VALUES ('p', 2, 'a', 'second')",
                            "INSERT INTO `Two` (`P`, `Q`, `One_`, `C`) VALUES ('q', 1, 'b', 'x')",
                            "INSERT INTO `Two` (`P`, `Q`, `One_`) VALUES ('r', -1, 'gone')",
                            "INSERT INTO `Two` (`P`, `Q`) VALUES ('s', 0)"}) {
      const Answer answer = Ours(sql);
      ASSERT_TRUE(answer.ok) << sql;
    }
    ASSERT_TRUE(ours_->Commit().ok());
    ours_.reset();
  }

  void OpenBoth() {
    MakeFile(Path("ours.msi"));
    std::filesystem::copy_file(Path("ours.msi"), Path("peer.msi"));
    ours_ = *Database::Open(SystemStorage(), Path("ours.msi"), OpenMode::kTransact);
    peer_ = libmsi_database_new(Path("peer.msi").c_str(), LIBMSI_DB_FLAGS_TRANSACT, nullptr, nullptr);
    ASSERT_NE(peer_, nullptr) << "the peer does not open what was written here";
  }

  Answer Ours(const std::string& sql) {
    Answer answer;
    const auto view = ours_->OpenView(sql);
    if (!view.ok() || !(*view)->Execute(nullptr).ok()) return answer;
    answer.ok = true;
    while (true) {
      const auto record = (*view)->Fetch();
      if (!record.ok() || !record->has_value()) break;
      std::string row;
      for (int i = 1; i <= (*record)->FieldCount(); ++i) row += (*record)->StringData(i) + "|";
      answer.rows.push_back(row);
    }
    std::sort(answer.rows.begin(), answer.rows.end());
    return answer;
  }

  Answer Peer(const std::string& sql) {
    Answer answer;
    LibmsiQuery* query = libmsi_query_new(peer_, sql.c_str(), nullptr);
    if (!query) return answer;
    if (libmsi_query_execute(query, nullptr, nullptr)) {
      answer.ok = true;
      // Only a select may be asked for rows there.
      while (LibmsiRecord* record = IsSelect(sql) ? libmsi_query_fetch(query, nullptr) : nullptr) {
        std::string row;
        for (guint i = 1; i <= libmsi_record_get_field_count(record); ++i) {
          gchar* text = libmsi_record_get_string(record, i);
          row += (text ? text : "") + std::string("|");
          g_free(text);
        }
        answer.rows.push_back(row);
        g_object_unref(record);
      }
    }
    g_object_unref(query);
    std::sort(answer.rows.begin(), answer.rows.end());
    return answer;
  }

  // The same answer, and the same tables afterwards.
  void ExpectSame(const std::string& sql) {
    ++statements_;
    const Answer ours = Ours(sql);
    const Answer peer = Peer(sql);
    EXPECT_EQ(ours.ok, peer.ok) << sql;
    EXPECT_EQ(ours.rows, peer.rows) << sql;
    if (IsSelect(sql)) return;
    for (const char* table : {"One", "Two"}) {
      const std::string all = "SELECT * FROM `" + std::string(table) + "`";
      EXPECT_EQ(Ours(all).rows, Peer(all).rows) << sql;
    }
  }

  std::filesystem::path folder_;
  std::shared_ptr<Database> ours_;
  LibmsiDatabase* peer_ = nullptr;
  int statements_ = 0;
};

TEST_F(PeerTest, SelectsAnswerTheSame) {
  OpenBoth();
  for (const char* comparison : {"=", "<>", "<", ">", "<=", ">="}) {
    for (const char* column : {"A", "L"}) {
      for (const char* value : {"0", "1", "-7", "100000", "-100000", "2147483647"}) {
        // A null short is -32768 to the peer, below no number of the long range.
        if (column[0] == 'A' && std::string(value) == "-100000") continue;
        ExpectSame("select `K` from `One` where `" + std::string(column) + "` " + comparison + " " + value);
      }
    }
  }
  for (const char* comparison : {"=", "<>"}) {
    for (const char* column : {"K", "B"}) {
      for (const char* value : {"'a'", "'x'", "'X'", "'1'", "''", "'E'", "'nothing'"}) {
        ExpectSame("select `K`, `A` from `One` where `" + std::string(column) + "` " + comparison + " " +
                   value);
        ExpectSame("select * from One where One.`" + std::string(column) + "`" + comparison + value +
                   " and `A` > 0");
        ExpectSame("select * from `One` where (`A` = 2 or `" + std::string(column) + "` " + comparison +
                   value + ")");
      }
    }
  }
  for (const char* column : {"K", "A", "B", "L"}) {
    for (const char* test : {"is null", "IS NOT NULL"}) {
      ExpectSame("select `K` from `One` where `" + std::string(column) + "` " + test);
      ExpectSame("select distinct `B` from `One` where `" + std::string(column) + "` " + test);
      ExpectSame("select `K`, `P` from `One`, `Two` where `" + std::string(column) + "` " + test +
                 " and `K` = `One_`");
    }
    ExpectSame("select distinct `" + std::string(column) + "` from `One`");
    ExpectSame("select `One`.`" + std::string(column) +
               "`, `Two`.`C` from `One`, `Two` where `One`.`K` = `Two`.`One_`");
    ExpectSame("select `" + std::string(column) + "`, `Q` from `Two`, `One` where `K` = `One_` and `Q` > 1");
    ExpectSame("select * from `Two`, `One` where `One_` = `K` and `" + std::string(column) + "` = 'x'");
    ExpectSame("select `K`, `P`, `Q` from `One`, `Two` where `A` = `Q`");
    ExpectSame("select `" + std::string(column) + "` from `One` order by `A`");
    ExpectSame("select `" + std::string(column) + "`, `P` from `One`, `Two`");
  }
  EXPECT_GE(statements_, 180);
}

TEST_F(PeerTest, ChangesEndTheSame) {
  OpenBoth();
  for (const char* sql : {
           "insert into `One` (`K`, `A`) values ('n1', 5)",
           "insert into `One` (`K`, `A`) values ('n1', 6)",
           "insert into `One` (`K`, `A`, `B`, `L`) values ('n2', -32767, 'text', 2147483647)",
           "INSERT INTO `One` (`B`, `K`) VALUES ('order of columns', 'n3')",
           "insert into `Two` (`P`, `Q`) values ('p', 1)",
           "insert into `Two` (`P`, `Q`) values ('p', 3)",
           "insert into `Missing` (`P`) values ('p')",
           "insert into `One` (`Nope`) values ('p')",
           "update `One` set `A` = 9 where `K` = 'a'",
           "update `One` set `A` = 10, `B` = 'both' where `K` = 'b'",
           "update `One` set `A` = 11 where `B` = 'x'",
           "update `One` set `B` = '' where `K` = 'a'",
           "update `One` set `L` = -5 where `A` = 11 or `A` = 10",
           "update `One` set `B` = 'all'",
           "update `Two` set `C` = 'z' where `P` = 'p' and `Q` = 2",
           "update `Two` set `C` = 'none' where `P` = 'absent'",
           "update `One` set `A` = '12' where `K` = 'c'",
           "update `One` set `Nope` = 1",
           "delete from `One` where `K` = 'a'",
           "delete from `One` where `K` = 'a'",
           "delete from `One` where `A` = 12",
           "delete from `Two` where `P` = 'p' and `Q` = 1",
           "insert into `One` (`K`) values ('again')",
       }) {
    ExpectSame(sql);
  }
  EXPECT_GE(statements_, 20);
}

TEST_F(PeerTest, WhatThePeerDoesOtherwiseIsKnown) {
  OpenBoth();
  // A number in quotes is a number here, as the wizard's statements want; the peer finds nothing or fails.
  EXPECT_EQ(Ours("select `K` from `One` where `A` = '1'").rows, Rows{"a|"});
  EXPECT_NE(Peer("select `K` from `One` where `A` = '1'").rows, Rows{"a|"});
  // Null is less than every number here; to the peer a null short is the number -32768.
  EXPECT_EQ(Ours("select `K` from `One` where `A` < -100000").rows, Rows{"E|"});
  EXPECT_EQ(Peer("select `K` from `One` where `A` < -100000").rows, Rows{});
  // Text has an order here; the peer compares text for equality alone.
  EXPECT_EQ(Ours("select `K` from `One` where `K` < 'b'").rows, (Rows{"E|", "a|"}));
  // A delete removes all that it finds; the peer removes others when there are several.
  EXPECT_TRUE(Ours("delete from `Two` where `P` = 'p' or `P` = 's'").ok);
  EXPECT_TRUE(Peer("delete from `Two` where `P` = 'p' or `P` = 's'").ok);
  EXPECT_EQ(Ours("select `P` from `Two`").rows, (Rows{"q|", "r|"}));
  EXPECT_NE(Peer("select `P` from `Two`").rows, (Rows{"q|", "r|"}));
  // Values that cannot be kept are refused here before anything changes.
  EXPECT_FALSE(Ours("insert into `Two` (`P`) values ('no number')").ok);
  EXPECT_FALSE(Ours("insert into `One` (`K`, `A`) values ('big', 40000)").ok);
  EXPECT_FALSE(Ours("insert into `One` (`K`, `A`) values ('word', 'word')").ok);
}

TEST_F(PeerTest, WhatThePeerWritesIsReadHere) {
  MakeFile(Path("base.msi"));
  std::ofstream(Path("stream.bin"), std::ios::binary) << std::string(50000, 'p');
  peer_ = libmsi_database_new(Path("peer.msi").c_str(), LIBMSI_DB_FLAGS_CREATE, nullptr, nullptr);
  ASSERT_NE(peer_, nullptr);
  for (const char* sql :
       {"CREATE TABLE `One` (`K` CHAR(20) NOT NULL, `A` SHORT, `B` CHAR(50) LOCALIZABLE, `L` LONG PRIMARY "
        "KEY `K`)",
        "CREATE TABLE `Binary` (`Name` CHAR(72) NOT NULL, `Data` OBJECT PRIMARY KEY `Name`)",
        "INSERT INTO `One` (`K`, `A`, `B`, `L`) VALUES ('a', -1, 'x', 100000)",
        "INSERT INTO `One` (`K`) VALUES ('z')"}) {
    ASSERT_TRUE(Peer(sql).ok) << sql;
  }
  LibmsiQuery* query =
      libmsi_query_new(peer_, "INSERT INTO `Binary` (`Name`, `Data`) VALUES ('s', ?)", nullptr);
  LibmsiRecord* record = libmsi_record_new(1);
  ASSERT_TRUE(libmsi_record_load_stream(record, 1, Path("stream.bin").c_str()));
  ASSERT_TRUE(libmsi_query_execute(query, record, nullptr));
  g_object_unref(record);
  g_object_unref(query);
  const std::string long_text(70000, 't');
  ASSERT_TRUE(Peer("UPDATE `One` SET `B` = '" + long_text + "' WHERE `K` = 'z'").ok);
  ASSERT_TRUE(libmsi_database_commit(peer_, nullptr));
  g_object_unref(peer_);
  peer_ = nullptr;
  auto ours = Database::Open(SystemStorage(), Path("peer.msi"), OpenMode::kDirect);
  ASSERT_TRUE(ours.ok()) << ours.error().message;
  ours_ = *ours;
  EXPECT_EQ(Ours("SELECT * FROM `One`").rows, (Rows{"a|-1|x|100000|", "z||" + long_text + "||"}));
  const auto view = ours_->OpenView("SELECT `Data` FROM `Binary`");
  ASSERT_TRUE(view.ok() && (*view)->Execute(nullptr).ok());
  auto row = (*view)->Fetch();
  EXPECT_EQ(*(*row)->ReadStream(1, 100000), std::string(50000, 'p'));
  // And back: what was changed here is read by the peer.
  ASSERT_TRUE(Ours("update `One` set `A` = 77 where `K` = 'z'").ok);
  peer_ = libmsi_database_new(Path("peer.msi").c_str(), LIBMSI_DB_FLAGS_READONLY, nullptr, nullptr);
  ASSERT_NE(peer_, nullptr);
  EXPECT_EQ(Peer("SELECT * FROM `One`").rows, (Rows{"a|-1|x|100000|", "z|77|" + long_text + "||"}));
}

}  // namespace
}  // namespace kw::msi
