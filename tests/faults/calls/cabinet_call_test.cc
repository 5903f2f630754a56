// The same for cabinets: each call of the tools that make and unpack them. A cabinet is the old one,
// none, or the new one whole; after an error all files are there that were in a cabinet or none; and success
// is claimed for nothing less.

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <map>

#include "base/exit_codes.h"
#include "base/storage.h"
#include "tests/faults/calls/failing_process_test_support.h"

namespace kw::cabinet {
namespace {

using faults::Ending;
using faults::FaultMode;
using faults::Kind;
using faults::Kinds;
using faults::RunFailing;

namespace fs = std::filesystem;

class CabinetCallTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() / ("kw_cabinet_calls_" + std::to_string(::getpid()));
    fs::create_directories(folder_ / "in");
    std::string large;
    // More than one block, and nothing that packs to a few bytes.
    for (uint32_t i = 0, state = 1; i < 70000; ++i) {
      state = state * 1664525 + 1013904223;
      large += static_cast<char>(state >> 28);
    }
    for (const auto& [name, bytes] : {std::pair{"in/large", large}, {"in/small", std::string("small")}})
      std::ofstream(folder_ / name, std::ios::binary) << bytes;
    std::ofstream(folder_ / "t.ddf")
        << ".Set CabinetNameTemplate=t.cab\r\n.Set Cabinet=ON\r\n.Set Compress=ON\r\n\""
        << Machine("in/large") << "\" \"large\"\r\n\"" << Machine("in/small") << "\" \"small\"\r\n";
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  /// The same as the tools know it: paths of the machine know the host below Z:.
  std::string Machine(const std::string& name) const {
    std::string path = "Z:" + Path(name);
    for (char& c : path) {
      if (c == '/') c = '\\';
    }
    return path;
  }
  std::string Bytes(const std::string& name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// The files of a folder with their bytes.
  std::map<std::string, std::string> Files(const std::string& name) const {
    std::map<std::string, std::string> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_ / name)) {
      const std::string file = entry.path().filename().string();
      files[file] = Bytes(name + "/" + file);
    }
    return files;
  }
  Ending Pack(const Kind& kind, uint32_t at, const std::string& watched) const {
    return RunFailing(folder_, {MAKECAB, "/f", Machine("t.ddf"), "/l", Machine("out")}, Environment(),
                      Path(watched), kind, at);
  }
  Ending Unpack(const Kind& kind, uint32_t at, const std::string& watched) const {
    return RunFailing(folder_, {CABARC, "X", Machine("good.cab"), "*.*", Machine("to") + "\\"}, Environment(),
                      Path(watched), kind, at);
  }
  std::vector<std::string> Environment() const {
    std::vector<std::string> environment = more_environment_;
    environment.push_back("KITWRIGHT_ROOT=" + Path("root"));
    return environment;
  }
  void ResetPack() const {
    fs::remove_all(folder_ / "out");
    fs::create_directories(folder_ / "out");
    std::ofstream(folder_ / "out/t.cab") << "old";
  }
  void ResetUnpack() const {
    fs::remove_all(folder_ / "to");
    fs::create_directories(folder_ / "to");
  }
  static bool Kills(const Kind& kind) {
    return kind.mode == FaultMode::kKillBefore || kind.mode == FaultMode::kKillAfter;
  }

  fs::path folder_;
  std::vector<std::string> more_environment_;
};

TEST_F(CabinetCallTest, ACabinetIsTheOldOneOrNoneOrTheNewOne) {
  ResetPack();
  const Ending whole = Pack({}, 0, "out");
  ASSERT_TRUE(whole.success);
  ASSERT_GE(whole.calls, 4u) << "the calls of the process are not seen";
  const std::string good = Bytes("out/t.cab");
  const auto sources = Files("in");
  for (const char* watched : {"out", "in"}) {
    for (const Kind& kind : Kinds()) {
      ResetPack();
      const uint32_t calls = Pack({.kinds = kind.kinds}, 0, watched).calls;
      for (uint32_t at = 1; at <= calls; ++at) {
        ResetPack();
        SCOPED_TRACE(std::string(watched) + ": " + kind.name + " at call " + std::to_string(at));
        const Ending ending = Pack(kind, at, watched);
        EXPECT_EQ(ending.killed, Kills(kind));
        EXPECT_TRUE(ending.success || !kind.must_work);
        const auto made = Files("out");
        const auto cabinet = made.find("t.cab");
        // The old one goes first, so that nobody takes it for the result of a tool that failed.
        EXPECT_TRUE(cabinet == made.end() || cabinet->second == "old" || cabinet->second == good);
        EXPECT_TRUE(!ending.success || (cabinet != made.end() && cabinet->second == good))
            << "success was claimed wrongly";
        // Only who is killed, or can remove nothing, leaves what was begun.
        EXPECT_TRUE(made.size() == (cabinet == made.end() ? 0 : 1) || ending.killed || kind.forever)
            << made.size();
        EXPECT_EQ(Files("in"), sources);
        // Whatever was left, the next one finds its place.
        if (ending.killed) {
          EXPECT_TRUE(Pack({}, 0, "out").success);
          EXPECT_EQ(Files("out"), (std::map<std::string, std::string>{{"t.cab", good}}));
        }
      }
    }
  }
}

TEST_F(CabinetCallTest, AllFilesAreUnpackedOrNoneAndTheFailureIsTold) {
  ResetPack();
  ASSERT_TRUE(Pack({}, 0, "out").success);
  fs::rename(folder_ / "out/t.cab", folder_ / "good.cab");
  const std::string cabinet = Bytes("good.cab");
  ResetUnpack();
  const Ending whole = Unpack({}, 0, "to");
  ASSERT_TRUE(whole.success);
  ASSERT_GE(whole.calls, 4u);
  const auto good = Files("in");
  EXPECT_EQ(Files("to"), good);
  for (const char* watched : {"to", "good.cab"}) {
    for (const Kind& kind : Kinds()) {
      ResetUnpack();
      const uint32_t calls = Unpack({.kinds = kind.kinds}, 0, watched).calls;
      for (uint32_t at = 1; at <= calls; ++at) {
        ResetUnpack();
        SCOPED_TRACE(std::string(watched) + ": " + kind.name + " at call " + std::to_string(at));
        const Ending ending = Unpack(kind, at, watched);
        EXPECT_EQ(ending.killed, Kills(kind));
        EXPECT_TRUE(ending.success || !kind.must_work);
        EXPECT_TRUE(!ending.success || Files("to") == good) << "success was claimed wrongly";
        EXPECT_TRUE(ending.success || ending.killed || ending.code == kExitMachineFailed)
            << "the cabinet was blamed: " << ending.code;
        if (ending.killed || kind.forever) continue;
        EXPECT_TRUE(ending.success || Files("to").empty()) << "a part could be taken for the whole";
        EXPECT_EQ(Bytes("good.cab"), cabinet);
      }
    }
  }
}

TEST_F(CabinetCallTest, ASystemWithoutThreadsToGiveGetsTheSameResult) {
  std::string bytes;
  for (int i = 0; i < 60; ++i) bytes += Bytes("in/large").substr(0, static_cast<size_t>(30000 - i));
  std::ofstream(folder_ / "in/large", std::ios::binary) << bytes;  // more blocks than one thread unpacks
  ResetPack();
  ASSERT_TRUE(Pack({}, 0, "out").success);
  const std::string good = Bytes("out/t.cab");
  std::ofstream(folder_ / "good.cab", std::ios::binary) << good;
  for (const char* threads : {"0", "1"}) {
    SCOPED_TRACE(threads);
    more_environment_ = {std::string(faults::kThreadsVariable) + "=" + threads};
    ResetPack();
    EXPECT_TRUE(Pack({}, 0, "out").success);
    EXPECT_EQ(Files("out"), (std::map<std::string, std::string>{{"t.cab", good}}));
    ResetUnpack();
    EXPECT_TRUE(Unpack({}, 0, "to").success);
    EXPECT_EQ(Files("to"), Files("in"));
  }
}

}  // namespace
}  // namespace kw::cabinet
