// The same for the registry of the embedded machine, which other processes change too: no call that fails, of
// reading or writing, makes it look empty or loses what it held.

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "platform/embedded/registry.h"
#include "tests/faults/calls/failing_process_test_support.h"

namespace kw::platform {
namespace {

using embedded::EmbeddedRegistry;
using faults::Ending;
using faults::Kind;
using faults::Kinds;
using faults::RunFailing;

constexpr Hive kUser = Hive::kCurrentUser;
constexpr int kCodePage = 1252;

class RegistryCallTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = std::filesystem::temp_directory_path() / ("kw_registry_calls_" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder_);
    {
      EmbeddedRegistry registry(Path("original"), kCodePage);
      for (const char* name : {"Kept", "Changed"}) {
        const auto key = registry.CreateKey(kUser, std::string("SOFTWARE\\") + name, kKeyAll);
        ASSERT_TRUE(key.ok() && (*key)->SetValue("Value", RegistryValue::OfText("old")).ok());
      }
    }
    std::ofstream(Path("new.reg"))
        << "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\SOFTWARE\\Changed]\r\n\"Value\"="
           "\"new\"\r\n\r\n[HKEY_CURRENT_USER\\SOFTWARE\\Added]\r\n\"Value\"=\"new\"\r\n";
    // Paths of the machine know the host below Z:.
    import_ = {REGEDIT, "/s", "Z:" + Path("new.reg")};
    export_ = {REGEDIT, "/e", "Z:" + Path("out.reg"), "HKEY_CURRENT_USER\\SOFTWARE"};
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  void Reset() {
    std::filesystem::remove_all(Path("tried"));
    std::filesystem::copy(Path("original"), Path("tried"), std::filesystem::copy_options::recursive);
    std::filesystem::remove(Path("out.reg"));
  }
  Ending Run(const std::vector<std::string>& command, const Kind& kind, uint32_t at) {
    return RunFailing(folder_, command, {"KITWRIGHT_ROOT=" + Path("tried")}, Path("tried/registry"), kind,
                      at);
  }
  std::string Exported() const {
    const auto bytes = ReadWholeFile(SystemStorage(), Path("out.reg"));
    return bytes.ok() ? *bytes : "";
  }
  /// What a process that meets no failure reads.
  std::string Content() {
    std::filesystem::remove(Path("out.reg"));
    EXPECT_TRUE(Run(export_, {}, 0).success);
    return Exported();
  }

  std::filesystem::path folder_;
  std::vector<std::string> import_;
  std::vector<std::string> export_;
};

TEST_F(RegistryCallTest, AChangeIsMadeOrNotAndLosesNothing) {
  Reset();
  const std::string old_content = Content();
  const Ending whole = Run(import_, {}, 0);
  ASSERT_TRUE(whole.success);
  ASSERT_GE(whole.calls, 10u) << "the calls of the process are not seen";
  const std::string new_content = Content();
  ASSERT_NE(old_content, new_content);
  ASSERT_NE(old_content, "");
  for (const Kind& kind : Kinds()) {
    Reset();
    const uint32_t calls = Run(import_, kind, 0).calls;
    for (uint32_t at = 1; at <= calls; ++at) {
      Reset();
      SCOPED_TRACE(std::string(kind.name) + " at call " + std::to_string(at));
      const Ending ending = Run(import_, kind, at);
      EXPECT_TRUE(ending.success || !kind.must_work);
      const std::string content = Content();
      EXPECT_TRUE(content == old_content || content == new_content) << content;
      EXPECT_TRUE(!ending.success || content == new_content) << "success was claimed wrongly";
      if (ending.success) continue;
      // The next change finds its place, whatever the failed one left.
      EXPECT_TRUE(Run(import_, {}, 0).success);
      EXPECT_EQ(Content(), new_content);
    }
  }
}

TEST_F(RegistryCallTest, ReadingFailsOrGivesEverything) {
  Reset();
  const std::string content = Content();
  std::filesystem::remove(Path("out.reg"));
  const Ending whole = Run(export_, {}, 0);
  ASSERT_TRUE(whole.success);
  ASSERT_GE(whole.calls, 5u);
  for (const Kind& kind : Kinds()) {
    Reset();
    const uint32_t calls = Run(export_, kind, 0).calls;
    for (uint32_t at = 1; at <= calls; ++at) {
      Reset();
      SCOPED_TRACE(std::string(kind.name) + " at call " + std::to_string(at));
      const Ending ending = Run(export_, kind, at);
      EXPECT_TRUE(ending.success || !kind.must_work);
      EXPECT_TRUE(!ending.success || Exported() == content) << Exported();
      EXPECT_EQ(Content(), content);
    }
  }
}

}  // namespace
}  // namespace kw::platform
