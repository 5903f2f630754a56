#include "sample/settings/run_tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/fake_registry.h"

namespace kw::sample {
namespace {

using platform::Hive;
using platform::testing::FakeRegistry;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kLiveGuard = "SOFTWARE\\Orvantic\\RDX\\Shared Components\\On Access Scanner\\TxGuard";
constexpr const char* kStagedGuard = "SOFTWARE\\Orvantic\\ZED\\Shared Components\\On Access Scanner\\TxGuard";
constexpr const char* kLiveTasks = "SOFTWARE\\Orvantic\\RDX\\Kestrane Enterprise\\CurrentVersion\\Tasks";
constexpr const char* kStagedTasks = "SOFTWARE\\Orvantic\\ZED\\Kestrane Enterprise\\CurrentVersion\\Tasks";
constexpr const char* kZed = "SOFTWARE\\Orvantic\\ZED";

class RunToolTest : public ::testing::Test {
 protected:
  RunToolTest() {
    registry_.SetDword(Hive::kLocalMachine, kLiveGuard, "bScan", 1);
    registry_.SetText(Hive::kLocalMachine, kLiveGuard, "szFolder", "C:\\Infected");
    registry_.SetDword(Hive::kLocalMachine, std::string(kLiveGuard) + "\\Configuration", "dwAction", 2);
  }

  ToolOutcome Run(const std::string& tool, const std::vector<std::string>& arguments, Answer answer,
                  const ShowSettings& show = {}) {
    const auto command = ParseToolCommand(tool, arguments);
    EXPECT_TRUE(command.ok());
    const auto outcome = RunTool(*command, registry_, 1252, answer, show);
    EXPECT_TRUE(outcome.ok());
    return *outcome;
  }
  uint32_t Staged(const std::string& key, const std::string& name) {
    return registry_.Get(Hive::kCurrentUser, std::string(kZed) + key, name).Dword(9999);
  }

  FakeRegistry registry_;
};

TEST_F(RunToolTest, ChangeSavesAChangedCopyOfTheLiveSettingsAndLeavesTheFlag) {
  const ToolOutcome outcome = Run("OasCfg32", {"/ZEDW"}, Answer::kChange);
  EXPECT_TRUE(outcome.changed);
  EXPECT_FALSE(outcome.failed);
  EXPECT_THAT(
      registry_.Dump(Hive::kCurrentUser, kStagedGuard),
      ElementsAre("[" + std::string(kStagedGuard) + "]", "\"bScan\"=dword:00000002",
                  "\"szFolder\"=\"C:\\\\Infected\"", "[" + std::string(kStagedGuard) + "\\Configuration]",
                  "\"dwAction\"=dword:00000002"));
  EXPECT_EQ(Staged("", "bOasCfg32"), 1u);
}

TEST_F(RunToolTest, ASecondChangeStartsFromTheStagedSettings) {
  Run("OasCfg32", {"/ZEDW"}, Answer::kChange);
  Run("OasCfg32", {"/ZEDRW"}, Answer::kChange);
  EXPECT_EQ(registry_.Get(Hive::kCurrentUser, kStagedGuard, "bScan").Dword(0), 3u);
}

TEST_F(RunToolTest, TheFirstNumberByNameIsChangedInWhateverOrderTheRegistryListsThem) {
  registry_.SetDword(Hive::kLocalMachine, kLiveGuard, "BackUp", 7);
  registry_.SetDword(Hive::kLocalMachine, std::string(kLiveGuard) + "\\Configuration", "aFirst", 4);
  Run("OasCfg32", {"/ZEDW"}, Answer::kChange);
  EXPECT_EQ(registry_.Get(Hive::kCurrentUser, kStagedGuard, "BackUp").Dword(0), 8u);
  EXPECT_EQ(registry_.Get(Hive::kCurrentUser, kStagedGuard, "bScan").Dword(0), 1u);
  EXPECT_EQ(
      registry_.Get(Hive::kCurrentUser, std::string(kStagedGuard) + "\\Configuration", "aFirst").Dword(0),
      4u);
}

TEST_F(RunToolTest, CancelLeavesEmptyKeysAndNoFlag) {
  const ToolOutcome outcome = Run("OasCfg32", {"/ZEDW"}, Answer::kCancel);
  EXPECT_FALSE(outcome.changed);
  EXPECT_THAT(registry_.Dump(Hive::kCurrentUser, kStagedGuard),
              ElementsAre("[" + std::string(kStagedGuard) + "]",
                          "[" + std::string(kStagedGuard) + "\\Configuration]"));
  EXPECT_EQ(Staged("", "bOasCfg32"), 9999u);
}

TEST_F(RunToolTest, FailSavesNothingAndFailSavedSavesAll) {
  EXPECT_TRUE(Run("OasCfg32", {"/ZEDW"}, Answer::kFail).failed);
  EXPECT_THAT(registry_.Dump(Hive::kCurrentUser, kZed), IsEmpty());
  const ToolOutcome outcome = Run("OasCfg32", {"/ZEDW"}, Answer::kFailSaved);
  EXPECT_TRUE(outcome.failed);
  EXPECT_EQ(Staged("", "bOasCfg32"), 1u);
}

TEST_F(RunToolTest, FlushCopiesTheLiveSettingsWhateverTheAnswerAndLeavesNoFlag) {
  for (Answer answer : {Answer::kCancel, Answer::kFail, Answer::kChange, Answer::kDialog}) {
    EXPECT_FALSE(Run("OasCfg32", {"/FLUSHSETTINGS", "/ZEDW"}, answer).failed);
    EXPECT_EQ(registry_.Get(Hive::kCurrentUser, kStagedGuard, "bScan").Dword(0), 1u);
    EXPECT_EQ(Staged("", "bOasCfg32"), 9999u);
  }
}

TEST_F(RunToolTest, AlertAndInterfaceSettingsHaveFlagsOfTheirOwn) {
  Run("TxDesk", {"/ALERT", "/ZEDRW"}, Answer::kChange);
  Run("TxDesk", {"/UIOPTIONS", "/ZEDW"}, Answer::kChange);
  EXPECT_EQ(Staged("", "bBeaconry"), 1u);
  EXPECT_EQ(Staged("", "bUIOptions"), 1u);
}

TEST_F(RunToolTest, AChangeToAnEditedTaskAddsNoValueAndKeepsItsKind) {
  const std::string key = std::string(kLiveTasks) + "\\{1}";
  registry_.SetDword(Hive::kLocalMachine, key, "wTaskType", 5);
  registry_.SetDword(Hive::kLocalMachine, key, "bSchedEnabled", 0);
  Run("TxFetch", {"/TASK", "{1}", "/TASKNAME", "Old", "/ZEDW"}, Answer::kChange);
  EXPECT_THAT(registry_.Dump(Hive::kCurrentUser, std::string(kStagedTasks) + "\\{1}"),
              ElementsAre("[" + std::string(kStagedTasks) + "\\{1}]", "\"wTaskType\"=dword:00000005",
                          "\"bSchedEnabled\"=dword:00000001"));
  EXPECT_EQ(Staged("", "bTxFetch"), 1u);
}

TEST_F(RunToolTest, ANewTaskGetsItsNameAndKind) {
  Run("OdsCfg32", {"/TASK", "{2}", "/TASKNAME", "New Scan Task", "/ZEDW"}, Answer::kChange);
  Run("TxFetch", {"/TASK", "{3}", "/MIRROR", "/TASKNAME", "New", "Mirror", "/ZEDRW"}, Answer::kChange);
  const std::string tasks = "\\Kestrane Enterprise\\CurrentVersion\\Tasks\\";
  EXPECT_EQ(registry_.Get(Hive::kCurrentUser, std::string(kStagedTasks) + "\\{2}", "szTaskName").Text(),
            "New Scan Task");
  EXPECT_EQ(Staged(tasks + "{2}", "wTaskType"), 1u);
  EXPECT_EQ(Staged(tasks + "{3}", "wTaskType"), 6u);
  EXPECT_EQ(Staged(tasks + "{3}", "bMirrorTask"), 1u);
  EXPECT_EQ(registry_.Get(Hive::kCurrentUser, std::string(kStagedTasks) + "\\{3}", "szTaskName").Text(),
            "New Mirror");
}

TEST_F(RunToolTest, WithoutATaskOrWithItsOwnNameTheDefaultTaskIsMeant) {
  const std::string live = "SOFTWARE\\Orvantic\\RDX\\Kestrane Enterprise\\CurrentVersion\\DefaultTask";
  registry_.SetDword(Hive::kLocalMachine, live, "dwMinutes", 5);
  Run("OdsCfg32", {"/FLUSHSETTINGS", "/ZEDW"}, Answer::kCancel);
  EXPECT_EQ(Staged("\\Kestrane Enterprise\\CurrentVersion\\DefaultTask", "dwMinutes"), 5u);
  Run("OdsCfg32", {"/TASK", "DefaultTask", "/TASKNAME", "Default Task", "/ZEDRW"}, Answer::kChange);
  EXPECT_EQ(Staged("\\Kestrane Enterprise\\CurrentVersion\\DefaultTask", "dwMinutes"), 6u);
}

TEST_F(RunToolTest, TheBoxShowsTheSettingsAndItsConfirmationSavesThem) {
  std::string title;
  const ShowSettings show = [&](const std::string& text, std::vector<Setting>& settings) {
    title = text;
    EXPECT_EQ(settings.size(), 3u);
    EXPECT_EQ(settings[2].subkey, "Configuration");
    settings[1].text = "D:\\Found";
    return true;
  };
  EXPECT_TRUE(Run("OasCfg32", {"/ZEDW"}, Answer::kDialog, show).changed);
  EXPECT_EQ(title, "On-Access Scan Properties");
  EXPECT_EQ(registry_.Get(Hive::kCurrentUser, kStagedGuard, "szFolder").Text(), "D:\\Found");
  EXPECT_EQ(Staged("", "bOasCfg32"), 1u);
}

TEST_F(RunToolTest, APasswordIsShownEmptyAndSavedEnciphered) {
  const std::string version = "\\Kestrane Enterprise\\CurrentVersion";
  std::string typed;
  const ShowSettings show = [&](const std::string&, std::vector<Setting>& settings) {
    EXPECT_TRUE(settings.back().secret);
    EXPECT_EQ(settings.back().text, "");
    settings.back().text = typed;
    return true;
  };
  Run("TxDesk", {"/UIOPTIONS", "/ZEDW"}, Answer::kDialog, show);
  EXPECT_EQ(registry_.Get(Hive::kCurrentUser, kZed + version, "UIP").Text(), "");
  typed = "geheim";
  Run("TxDesk", {"/UIOPTIONS", "/ZEDW"}, Answer::kDialog, show);
  const std::string stored = registry_.Get(Hive::kCurrentUser, kZed + version, "UIP").Text();
  EXPECT_EQ(stored.size(), 6u);
  EXPECT_NE(stored, "geheim");
}

TEST_F(RunToolTest, TheLivePasswordComesAlong) {
  registry_.SetText(Hive::kLocalMachine, "SOFTWARE\\Orvantic\\RDX\\Kestrane Enterprise\\CurrentVersion",
                    "UIP", "x");
  Run("TxDesk", {"/UIOPTIONS", "/FLUSHSETTINGS", "/ZEDW"}, Answer::kCancel);
  EXPECT_EQ(
      registry_.Get(Hive::kCurrentUser, "SOFTWARE\\Orvantic\\ZED\\Kestrane Enterprise\\CurrentVersion", "UIP")
          .Text(),
      "x");
}

TEST_F(RunToolTest, TheCancelledBoxIsACancel) {
  const ShowSettings show = [](const std::string&, std::vector<Setting>&) { return false; };
  EXPECT_FALSE(Run("OasCfg32", {"/ZEDW"}, Answer::kDialog, show).changed);
  EXPECT_TRUE(registry_.HasKey(Hive::kCurrentUser, kStagedGuard));
}

TEST(ParseToolCommand, ANameAsTheStarterGivesItIsKnown) {
  EXPECT_TRUE(ParseToolCommand("/x/y/oascfg32.EXE", {"/zedw"}).ok());
  EXPECT_TRUE(ParseToolCommand("C:\\x\\TXDESK", {"/alert", "/ZEDRW"}).ok());
}

TEST(ParseToolCommand, OtherToolsAndCommandsWithoutABranchAreRefused) {
  EXPECT_EQ(ParseToolCommand("Other", {"/ZEDW"}).number(), kErrorInvalidParameter);
  EXPECT_EQ(ParseToolCommand("TxDesk", {"/ZEDW"}).number(), kErrorInvalidParameter);
  EXPECT_EQ(ParseToolCommand("OasCfg32", {}).number(), kErrorInvalidParameter);
}

}  // namespace
}  // namespace kw::sample
