// Files of the common free library are read and changed here, and read there again.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/storage.h"
#include "tests/peers/engines_test_support.h"

/// The leak checker passes over what the peer itself lets leak.
extern "C" const char* __lsan_default_suppressions() { return "leak:libmsi\n"; }

namespace kw::msi {
namespace {

using Rows = std::vector<std::string>;

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

  Answer Ours(const std::string& sql) {
    Answer answer;
    OurRows(*ours_, sql, "", answer);
    std::sort(answer.rows.begin(), answer.rows.end());
    return answer;
  }
  Answer Peer(const std::string& sql) {
    Answer answer;
    LibraryRows(peer_, sql, "", answer);
    std::sort(answer.rows.begin(), answer.rows.end());
    return answer;
  }

  std::filesystem::path folder_;
  std::shared_ptr<Database> ours_;
  LibmsiDatabase* peer_ = nullptr;
};

TEST_F(PeerTest, WhatThePeerWritesIsReadHere) {
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
  // Without a change every byte stays, however the peer has laid them out.
  const std::string bytes = *ReadWholeFile(SystemStorage(), Path("peer.msi"));
  for (const OpenMode mode : {OpenMode::kTransact, OpenMode::kDirect}) {
    const auto opened = Database::Open(SystemStorage(), Path("peer.msi"), mode);
    ASSERT_TRUE(opened.ok());
    ours_ = *opened;
    EXPECT_EQ(Ours("SELECT * FROM `One`").rows.size(), 2u);
    EXPECT_TRUE(ours_->Commit().ok());
    ours_.reset();
    EXPECT_TRUE(*ReadWholeFile(SystemStorage(), Path("peer.msi")) == bytes);
  }
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
