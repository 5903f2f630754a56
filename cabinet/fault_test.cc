// Every call on the host's files fails in turn while a cabinet is written and unpacked.

#include <gtest/gtest.h>

#include "base/testing/faulty_storage.h"
#include "cabinet/folder_sink.h"
#include "cabinet/test_support.h"

namespace kw::cabinet {
namespace {

using kw::testing::FaultyStorage;
using Fault = FaultyStorage::Fault;

class FaultTest : public CabinetFolderTest {
 protected:
  static constexpr int kMostCalls = 200;
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
  bool finished = false;
  for (int call = 1; !finished && call < kMostCalls; ++call) {
    std::filesystem::remove_all(folder_ / "out");
    std::filesystem::create_directories(folder_ / "out");
    FaultyStorage storage(SystemStorage());
    storage.count_reads = true;
    storage.Arm(Fault::kFail, call, kErrorDiskFull, false);
    auto reader = CabinetReader::Open(storage, Host("t.cab"), 1252);
    if (!reader.ok()) continue;
    FolderSink sink(storage, Host("out"));
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
