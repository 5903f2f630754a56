// Every call on the host's files fails in turn while a cabinet is written and unpacked.

#include <gmock/gmock.h>

#include "base/testing/faulty_storage.h"
#include "cabinet/folder_sink.h"
#include "cabinet/test_support.h"

namespace kw::cabinet {
namespace {

using kw::testing::FaultyStorage;
using ::testing::HasSubstr;
using Fault = FaultyStorage::Fault;

class FaultTest : public CabinetFolderTest {
 protected:
  static constexpr int kMostCalls = 200;
  // Unpacks t.cab, which holds "a" and "b", with each call failing in turn.
  void UnpackWithFaults(Fault fault, FolderSink::Making making, const std::string& prose);
};

TEST_F(FaultTest, AFailedWriteOfACabinetIsReportedAndLeavesTheOldOne) {
  const std::vector<CabinetFile> files = {{Make("a", Prose(300000)), "a", FileStamp{}},
                                          {Make("b", Noise(300000)), "b", FileStamp{}}};
  for (const Fault fault : {Fault::kFail, Fault::kShortWrite}) {
    for (const bool forever : {false, true}) {
      bool finished = false;
      for (int call = 1; !finished && call < kMostCalls; ++call) {
        Make("t.cab", "old");
        FaultyStorage storage(SystemStorage());
        storage.count_reads = true;
        storage.Arm(fault, call, kErrorDiskFull, forever);
        const auto written = WriteCabinet(storage, Host("t.cab"), files, {});
        finished = storage.calls() < call;
        EXPECT_EQ(written.ok(), finished) << call;
        EXPECT_EQ(Content("t.cab") == "old", !finished) << call;
        storage.Disarm();
      }
      EXPECT_TRUE(finished);
    }
  }
}

TEST_F(FaultTest, AFailureWhileUnpackingIsReportedAndLeavesNoHalfFile) {
  const std::string prose = Prose(300000);
  ASSERT_TRUE(Pack("t.cab", {{"a", prose}, {"b", "b"}}).ok());
  for (const auto making : {FolderSink::Making::kOneByOne, FolderSink::Making::kTogether}) {
    for (const Fault fault : {Fault::kFail, Fault::kShortWrite}) {
      UnpackWithFaults(fault, making, prose);
    }
  }
}

TEST_F(FaultTest, EveryFileThatIsMadeTogetherWithOthersIsThereOrReported) {
  std::vector<std::pair<std::string, std::string>> entries;
  for (int i = 0; i < 700; ++i) entries.emplace_back("f" + std::to_string(i), Prose(static_cast<size_t>(i)));
  ASSERT_TRUE(Pack("t.cab", entries).ok());
  for (const int call : {0, 5, 600, 1200, 1300}) {
    std::filesystem::remove_all(folder_ / "out");
    std::filesystem::create_directories(folder_ / "out");
    FaultyStorage storage(SystemStorage());
    if (call > 0) storage.Arm(Fault::kFail, call, kErrorDiskFull, true);
    auto reader = CabinetReader::Open(storage, Host("t.cab"), 1252);
    ASSERT_TRUE(reader.ok());
    FolderSink sink(storage, Host("out"), FolderSink::Making::kTogether);
    const Status status = reader->Extract(sink);
    EXPECT_EQ(status.ok(), call == 0) << call;
    EXPECT_THAT(status.message(), HasSubstr(call > 0 ? "Could not unpack \"f" : ""));
    size_t there = 0;
    for (const auto& [name, content] : entries) {
      if (!There("out/" + name)) continue;
      ++there;
      // The removal of a half-made file fails as well when everything does.
      EXPECT_TRUE(Content("out/" + name) == content || (call > 0 && Content("out/" + name).empty())) << name;
    }
    EXPECT_EQ(there == entries.size() && status.ok(), call == 0);
  }
}

void FaultTest::UnpackWithFaults(Fault fault, FolderSink::Making making, const std::string& prose) {
  bool finished = false;
  for (int call = 1; !finished && call < kMostCalls; ++call) {
    std::filesystem::remove_all(folder_ / "out");
    std::filesystem::create_directories(folder_ / "out");
    FaultyStorage storage(SystemStorage());
    storage.count_reads = true;
    storage.Arm(fault, call, kErrorDiskFull, false);
    auto reader = CabinetReader::Open(storage, Host("t.cab"), 1252);
    if (!reader.ok()) continue;
    FolderSink sink(storage, Host("out"), making);
    const Status status = reader->Extract(sink);
    finished = storage.calls() < call;
    EXPECT_EQ(status.ok(), finished) << call;
    EXPECT_TRUE(!There("out/a") || Content("out/a") == prose) << call;
    EXPECT_TRUE(!There("out/b") || Content("out/b") == "b") << call;
  }
  EXPECT_TRUE(finished);
}

}  // namespace
}  // namespace kw::cabinet
