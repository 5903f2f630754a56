#include "ui/drive/driver_test_support.h"

namespace kw::ui::drive {
namespace {

using ::testing::ElementsAre;

TEST_F(DriverTest, ChildProcessesAreToldWhenTheyEnded) {
  processes.On("tool", {.exit_code = 3, .polls = 2});
  set_up = [this] {
    one->next.on_click = [this] { dialogs->Message(std::to_string(RunTool("tool \"C:\\a b\" -t"))); };
  };
  Run("click frmOne.Next\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "run[hidden] tool \"C:\\a b\" -t -> 3", "message 3"));
}

TEST_F(DriverTest, MeanwhileRunsOnceDuringTheNextChildHoweverQuickItIs) {
  set_up = [this] {
    one->next.on_click = [this] {
      RunTool("first");
      RunTool("second");
    };
  };
  Run("meanwhile say during\nmeanwhile print frmTwo.Next\nhint\n");
  EXPECT_EQ(lines.back(), "FAIL line 3: unknown command hint");
  Run("meanwhile say during\nmeanwhile say again\nsay before\nclick frmOne.Next\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "say before", "say during", "say again",
                                 "run[hidden] first -> 0", "run[hidden] second -> 0"));
}

TEST_F(DriverTest, AToolBeginsBehindMeanwhileWhereItWasStarted) {
  files.AddFolder("C:\\Tools");
  files.AddFolder("C:\\Elsewhere");
  set_up = [this] {
    one->next.on_click = [this] {
      EXPECT_TRUE(files.SetCurrentFolder("C:\\Tools").ok());
      EXPECT_EQ(RunTool("tool"), 0);
    };
    one->cancel.on_click = [this] {
      EXPECT_TRUE(processes.commands.empty());
      EXPECT_TRUE(files.SetCurrentFolder("C:\\Elsewhere").ok());
    };
  };
  Run("meanwhile click frmOne.Cancel\nclick frmOne.Next\n");
  ASSERT_EQ(processes.commands.size(), 1u);
  EXPECT_EQ(processes.commands[0].current_folder, "C:\\Tools");
  EXPECT_EQ(files.CurrentFolder(), "C:\\Elsewhere");
}

const platform::testing::FakeProcesses::Script kRefused{0, 0, kErrorFileNotFound, {}, {}};

TEST_F(DriverTest, AToolThatMeanwhileTookAwayEndsTheWait) {
  set_up = [this] {
    one->next.on_click = [this] {
      auto tool = tools->Start("tool", platform::WindowStyle::kHidden);
      ASSERT_TRUE(tool.ok());
      host->PumpEvents();
      EXPECT_EQ((*tool)->ExitCode(), -1);
    };
    one->cancel.on_click = [this] { processes.On("tool", kRefused); };
  };
  Run("meanwhile click frmOne.Cancel\nclick frmOne.Next\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne"));
}

TEST_F(DriverTest, AToolThatCannotStartIsRefusedAndLeavesMeanwhileToTheNext) {
  processes.On("tool", kRefused);
  set_up = [this] {
    one->next.on_click = [this] {
      const auto refused = tools->Start("tool", platform::WindowStyle::kHidden);
      EXPECT_EQ(refused.status().error().number, kErrorFileNotFound);
      dialogs->Message("Refused.");
      RunTool("other");
    };
  };
  Run("meanwhile say during\nclick frmOne.Next\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "message Refused.", "say during", "run[hidden] other -> 0"));
}

TEST_F(DriverTest, MeanwhileCommandLeavesTheAnswersOfTheCommandItInterrupts) {
  set_up = [this] {
    one->next.on_click = [this] {
      RunTool("tool");
      Ask();
    };
    one->cancel.on_click = [this] { dialogs->Message("Meanwhile."); };
  };
  Run("meanwhile click frmOne.Cancel\nanswer OK\nclick frmOne.Next\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "message Meanwhile.", "run[hidden] tool -> 0",
                                 "question Sure? [OK|Cancel] default=Cancel -> OK"));
}

TEST_F(DriverTest, FailedMeanwhileCommandNamesItsOwnLine) {
  set_up = [this] { one->next.on_click = [this] { RunTool("tool"); }; };
  Run("meanwhile expect something\nclick frmOne.Next\nexpect nothing\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "FAIL line 1: expected something", "run[hidden] tool -> 0",
                                 "FAIL line 3: expected nothing"));
  EXPECT_EQ(status, 1);
}

TEST_F(DriverTest, SetReachesTheToolsEnvironment) {
  Run("set SAMPLE_TOOL_ANSWER=change\nset EMPTY=\nset NAME=a=b\n");
  EXPECT_EQ(processes.environment["SAMPLE_TOOL_ANSWER"], "change");
  EXPECT_EQ(processes.environment["EMPTY"], "");
  EXPECT_EQ(processes.environment["NAME"], "a=b");
}

TEST_F(DriverTest, ClosedLibraryCallsAreToldWithoutClearPasswords) {
  libraries.Return("IsAdmin", 1);
  set_up = [this] {
    one->next.on_click = [this] {
      closed->IsAdmin().status().IgnoreError();
      std::string password = "secret";
      closed->EncryptTextInPlace(password).status().IgnoreError();
    };
  };
  Run("click frmOne.Next\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "call zedutil.IsAdmin() -> 1",
                                 "call zedutil.EncryptDecrypt(1, 0, 6, ***, ***) -> 1"));
}

}  // namespace
}  // namespace kw::ui::drive
