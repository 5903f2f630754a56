#include "settings/scanner_pages.h"

#include "settings/settings_test_support.h"

namespace kw {
namespace {

using ::testing::ElementsAre;
using testing::FakeCommand;
using ::testing::IsEmpty;
using testing::SettingsFixture;

struct ScannerPagesTest : SettingsFixture, ::testing::Test {
  /// A tool that saves and leaves its flag.
  void ToolChanges(const std::string& command, const char* flag, int exit_code = 0) {
    machine.processes.On(
        command, platform::testing::FakeProcesses::Script{
                     exit_code, 0, 0, [=, this](const FakeCommand&) { SetStagingDword("", flag, 1); }, {}});
  }
};

TEST_F(ScannerPagesTest, FirstRunLoadsTheLiveSettingsAndLaterOnesTheStagingBranch) {
  auto& page = Show<frmOnAccessMonitor>();
  ToolChanges("OasCfg32", "bOasCfg32");
  page.ConfigureSettings.UserClick();
  EXPECT_TRUE(run.changes.ConfigChangedOnAccess);
  page.ConfigureSettings.UserClick();
  EXPECT_THAT(Commands(), ElementsAre("OasCfg32 /ZEDW", "OasCfg32 /ZEDRW"));
  EXPECT_EQ(machine.processes.commands[0].current_folder, "C:\\Product");
  EXPECT_EQ(machine.files.CurrentFolder(), "C:\\Kitwright");
  EXPECT_EQ(machine.processes.commands[0].style, platform::WindowStyle::kNormal);
}

TEST_F(ScannerPagesTest, AFileSourceAlwaysUsesTheStagingBranch) {
  run.SettingsFromSystem = false;
  Show<frmUIOptions>().ConfigureSettings.UserClick();
  EXPECT_THAT(Commands(), ElementsAre("TxDesk /UIOPTIONS /ZEDRW"));
}

TEST_F(ScannerPagesTest, ASecondClickDuringAToolRunDoesNothing) {
  auto& page = Show<frmOnAccessMonitor>();
  machine.processes.On("OasCfg32", platform::testing::FakeProcesses::Script{0, 2, 0, {}, {}});
  host.meanwhile.push_back([&] {
    page.ConfigureSettings.UserClick();
    EXPECT_FALSE(page.TreeView1.Enabled());
  });
  page.ConfigureSettings.UserClick();
  EXPECT_THAT(Commands(), ElementsAre("OasCfg32 /ZEDW"));
  EXPECT_TRUE(page.TreeView1.Enabled());
}

TEST_F(ScannerPagesTest, AClickOnThePageDuringAToolRunBringsTheToolForward) {
  auto& page = Show<frmOnAccessMonitor>();
  machine.processes.On("OasCfg32", platform::testing::FakeProcesses::Script{0, 3, 0, {}, "On-Access"});
  host.meanwhile.push_back([] {});
  host.meanwhile.push_back([&] { host.bring_forward(); });
  page.ConfigureSettings.UserClick();
  EXPECT_THAT(machine.processes.brought_to_front, ElementsAre("On-Access"));
  EXPECT_FALSE(host.bring_forward);
}

TEST_F(ScannerPagesTest, AFlushDisablesTheTreeOnScreenAndNotThatOfTheHiddenPage) {
  WizardPage& review = table.Page("frmReviewConfiguration");
  review.Show();
  auto& hidden = table.Get<frmOnAccessMonitor>();
  machine.processes.On("OasCfg32", platform::testing::FakeProcesses::Script{0, 2, 0, {}, {}});
  bool pumped = false;
  host.meanwhile.push_back([&] {
    pumped = true;
    EXPECT_FALSE(review.TreeView1.Enabled());
    EXPECT_TRUE(hidden.TreeView1.Enabled());
  });
  hidden.TransferSettings();
  EXPECT_TRUE(pumped);
  EXPECT_TRUE(review.TreeView1.Enabled());
}

TEST_F(ScannerPagesTest, WithoutAnInstallFolderTheMessageComesAndNoProcessStarts) {
  run.ProductInstallDir.clear();
  Show<frmOnAccessMonitor>().ConfigureSettings.UserClick();
  Show<frmBeaconryClient>().ConfigureSettings.UserClick();
  Show<frmUIOptions>().ConfigureSettings.UserClick();
  Show<frmEmailScan>().ConfigureSettings.UserClick();
  EXPECT_THAT(Commands(), IsEmpty());
  std::vector<std::string> messages;
  for (const std::string& line : machine.transcript.Lines()) {
    if (line.starts_with("message")) messages.push_back(line);
  }
  EXPECT_THAT(
      messages,
      ElementsAre(
          "message Configuring the On-Access Scan Properties failed. Please make sure that Kestrane "
          "Enterprise is installed properly.",
          "message Configuring the Beaconry Properties failed. Please make sure that Kestrane "
          "Enterprise is installed properly.",
          "message Configuring user interface properties failed. Please make sure that Kestrane "
          "Enterprise is installed properly.",
          "message Configuring the On-Delivery Scan properties failed. Please make sure that Kestrane "
          "Enterprise is installed properly."));
}

TEST_F(ScannerPagesTest, AToolThatFailsStillHasItsFlagRead) {
  ToolChanges("OasCfg32", "bOasCfg32", 1);
  Show<frmOnAccessMonitor>().ConfigureSettings.UserClick();
  EXPECT_TRUE(run.changes.ConfigChangedOnAccess);
}

TEST_F(ScannerPagesTest, ACancelledDialogLeavesNoEmptyKeysWhenTheSourceIsTheLiveSystem) {
  const auto leave_keys = [this](const FakeCommand&) {
    machine.registry.AddKey(testing::Hive::kCurrentUser,
                            Staging("\\Shared Components\\On Access Scanner\\TxGuard\\Configuration"));
  };
  machine.processes.On("OasCfg32", leave_keys);
  Show<frmOnAccessMonitor>().ConfigureSettings.UserClick();
  EXPECT_FALSE(run.changes.ConfigChangedOnAccess);
  EXPECT_FALSE(HasStaging("\\Shared Components\\On Access Scanner\\TxGuard"));
  run.SettingsFromSystem = false;
  table.Get<frmOnAccessMonitor>().ConfigureSettings.UserClick();
  EXPECT_TRUE(HasStaging("\\Shared Components\\On Access Scanner\\TxGuard"));
}

TEST_F(ScannerPagesTest, BeaconryFlushesFirstAndAlwaysEditsTheStagingBranch) {
  ToolChanges("TxDesk /ALERT", "bBeaconry");
  auto& page = Show<frmBeaconryClient>();
  page.ConfigureSettings.UserClick();
  page.ConfigureSettings.UserClick();
  EXPECT_THAT(Commands(), ElementsAre("TxDesk /ALERT /FLUSHSETTINGS /ZEDW", "TxDesk /ALERT /ZEDRW",
                                      "TxDesk /ALERT /ZEDRW"));
  EXPECT_TRUE(run.changes.ConfigChangedBeaconry);
}

TEST_F(ScannerPagesTest, ACancelledBeaconryDialogLeavesTheFlushedKey) {
  machine.processes.On("TxDesk /ALERT /FLUSHSETTINGS", [this](const FakeCommand&) {
    SetStagingDword("\\Kestrane Enterprise\\CurrentVersion\\Alerts\\CurrentVersion", "x", 1);
  });
  Show<frmBeaconryClient>().ConfigureSettings.UserClick();
  EXPECT_FALSE(run.changes.ConfigChangedBeaconry);
  EXPECT_TRUE(HasStaging("\\Kestrane Enterprise\\CurrentVersion\\Alerts\\CurrentVersion"));
}

TEST_F(ScannerPagesTest, TheMailScannersResultIsItsFlag) {
  machine.libraries.Return("Emal_ConfigZED", 0);
  auto& page = Show<frmEmailScan>();
  page.ConfigureSettings.UserClick();
  EXPECT_FALSE(run.changes.ConfigChangedEmailScan);
  machine.libraries.Return("Emal_ConfigZED", 1);
  page.ConfigureSettings.UserClick();
  EXPECT_TRUE(run.changes.ConfigChangedEmailScan);
  page.ConfigureSettings.UserClick();
  EXPECT_EQ(machine.files.CurrentFolder(), "C:\\Kitwright");
  int mode_two = 0;
  int mode_three = 0;
  for (const std::string& line : machine.transcript.Lines()) {
    if (line.find("Emal_ConfigZED") == std::string::npos) continue;
    if (line.find(" 2, 0)") != std::string::npos) ++mode_two;
    if (line.find(" 3, 0)") != std::string::npos) ++mode_three;
  }
  EXPECT_EQ(mode_two, 2);
  EXPECT_EQ(mode_three, 1);
}

TEST_F(ScannerPagesTest, AFailedMailScannerCallTellsOfTheMissingClient) {
  machine.libraries.Raise("Emal_ConfigZED", 53);
  Show<frmEmailScan>().ConfigureSettings.UserClick();
  EXPECT_THAT(
      machine.transcript.Lines(),
      ::testing::Contains("message You must install Microsoft Outlook in order to configure On-Delivery Scan "
                          "Properties."));
  EXPECT_FALSE(run.changes.ConfigChangedEmailScan);
}

TEST_F(ScannerPagesTest, TransferFlushesOnlyPagesWhoseFlagIsClear) {
  run.changes.ConfigChangedUi = true;
  table.Get<frmOnAccessMonitor>().TransferSettings();
  table.Get<frmEmailScan>().TransferSettings();
  table.Get<frmBeaconryClient>().TransferSettings();
  table.Get<frmUIOptions>().TransferSettings();
  EXPECT_THAT(Commands(), ElementsAre("OasCfg32 /FLUSHSETTINGS /ZEDW", "TxDesk /ALERT /FLUSHSETTINGS /ZEDW"));
}

TEST_F(ScannerPagesTest, ACancelledBeaconryDialogWithNothingFlushedLeavesNoKey) {
  const std::string alerts = "\\Kestrane Enterprise\\CurrentVersion\\Alerts\\CurrentVersion";
  machine.processes.On("TxDesk /ALERT /ZEDRW", [&](const FakeCommand&) {
    machine.registry.AddKey(testing::Hive::kCurrentUser, Staging(alerts));
  });
  Show<frmBeaconryClient>().ConfigureSettings.UserClick();
  EXPECT_FALSE(HasStaging(alerts));
  run.SettingsFromSystem = false;
  table.Get<frmBeaconryClient>().ConfigureSettings.UserClick();
  EXPECT_TRUE(HasStaging(alerts));
}

TEST_F(ScannerPagesTest, ACancelledInterfaceDialogLeavesItsEmptyKeys) {
  machine.processes.On("TxDesk /UIOPTIONS", [this](const FakeCommand&) {
    machine.registry.AddKey(testing::Hive::kCurrentUser, Staging("\\UI"));
  });
  Show<frmUIOptions>().ConfigureSettings.UserClick();
  EXPECT_FALSE(run.changes.ConfigChangedUi);
  EXPECT_TRUE(HasStaging("\\UI"));
}

TEST_F(ScannerPagesTest, WithoutTheMailFeatureTheMailPageCallsNothing) {
  run.HasEmailScanFeature = false;
  Show<frmEmailScan>().ConfigureSettings.UserClick();
  EXPECT_THAT(Take(),
              ElementsAre("message Configuring the On-Delivery Scan properties failed. Please make sure that "
                          "Kestrane Enterprise is installed properly."));
}

TEST_F(ScannerPagesTest, AFileSourceAlwaysEditsTheStagedMailSettings) {
  run.SettingsFromSystem = false;
  Show<frmEmailScan>().ConfigureSettings.UserClick();
  EXPECT_THAT(machine.transcript.Lines(), ::testing::Contains(::testing::HasSubstr("(window, 1, 3, 0)")));
}

TEST_F(ScannerPagesTest, FailuresToFlushAreNotTold) {
  for (const char* tool : {"OasCfg32", "TxDesk"}) machine.processes.On(tool, 1);
  machine.libraries.Raise("Emal_ConfigZED", 53);
  table.Get<frmOnAccessMonitor>().TransferSettings();
  table.Get<frmEmailScan>().TransferSettings();
  table.Get<frmBeaconryClient>().TransferSettings();
  table.Get<frmUIOptions>().TransferSettings();
  EXPECT_EQ(machine.files.CurrentFolder(), "C:\\Kitwright");
  EXPECT_THAT(machine.transcript.Lines(),
              ::testing::Not(::testing::Contains(::testing::StartsWith("message"))));
}

TEST_F(ScannerPagesTest, CancellingEverythingWhileAToolRunsLeavesNothingThatItSavesLater) {
  auto& page = Show<frmOnAccessMonitor>();
  machine.processes.On("OasCfg32",
                       platform::testing::FakeProcesses::Script{
                           1, 2, 0, [this](const FakeCommand&) { SetStagingDword("", "bOasCfg32", 1); }, {}});
  host.meanwhile.push_back([&] {
    machine.dialogs.answers = {testing::Answer::kOk};
    page.Cancel->UserClick();
  });
  page.ConfigureSettings.UserClick();
  EXPECT_TRUE(host.Ended());
  EXPECT_FALSE(HasStaging(""));
  EXPECT_FALSE(machine.files.FolderExists("C:\\Temp\\run"));
  // Nobody is there to be told that the tool failed.
  EXPECT_THAT(machine.transcript.Lines(),
              ::testing::Not(::testing::Contains(::testing::StartsWith("message"))));
}

TEST_F(ScannerPagesTest, ReviewLinesFollowTheFlags) {
  EXPECT_THAT(Choices<frmOnAccessMonitor>(),
              ElementsAre("\tOn-Access Scan Properties were not configured.", ""));
  EXPECT_THAT(Choices<frmEmailScan>(), ElementsAre("\tOn-Delivery Scan Properties were not configured", ""));
  EXPECT_THAT(Choices<frmBeaconryClient>(), ElementsAre("\tBeaconry Properties were not configured.", ""));
  EXPECT_THAT(Choices<frmUIOptions>(), ElementsAre("\tUI options were not configured.", ""));
  run.changes.ConfigChangedOnAccess = run.changes.ConfigChangedEmailScan = true;
  run.changes.ConfigChangedBeaconry = run.changes.ConfigChangedUi = true;
  EXPECT_THAT(Choices<frmOnAccessMonitor>(), ElementsAre("\tOn-Access Scan Properties were configured.", ""));
  EXPECT_THAT(Choices<frmEmailScan>(), ElementsAre("\tOn-Delivery Scan Properties were configured", ""));
  EXPECT_THAT(Choices<frmBeaconryClient>(), ElementsAre("\tBeaconry Properties were configured.", ""));
  EXPECT_THAT(Choices<frmUIOptions>(), ElementsAre("\tUI options were configured.", ""));
}

TEST_F(ScannerPagesTest, AChangeFlagIsTakenOnceAndZeroCountsAsNo) {
  EXPECT_FALSE(TakeChangeFlag(machine.services, "bOasCfg32"));
  EXPECT_FALSE(HasStaging(""));
  SetStagingDword("", "bOasCfg32", 0);
  EXPECT_FALSE(TakeChangeFlag(machine.services, "bOasCfg32"));
  EXPECT_EQ(machine.registry.Get(testing::Hive::kCurrentUser, Staging(""), "bOasCfg32").type,
            platform::kRegNone);
  SetStagingDword("", "bOasCfg32", 7);
  EXPECT_TRUE(TakeChangeFlag(machine.services, "bOasCfg32"));
  EXPECT_FALSE(TakeChangeFlag(machine.services, "bOasCfg32"));
}

TEST_F(ScannerPagesTest, AKeyWithASingleValueIsNoEmptyKey) {
  SetStagingDword("\\Key", "v", 1);
  EXPECT_FALSE(DeleteEmptyKey(machine.services, Staging("\\Key")));
  EXPECT_TRUE(HasStaging("\\Key"));
  EXPECT_TRUE(DeleteEmptyKey(machine.services, Staging("\\None")));
}

}  // namespace
}  // namespace kw
