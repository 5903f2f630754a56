#include "settings/frm_add_task.h"
#include "settings/frm_auto_update.h"
#include "settings/frm_scheduled_scan.h"
#include "settings/settings_test_support.h"

namespace kw {
namespace {

using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FakeCommand;
using testing::Hive;
using testing::SettingsFixture;

constexpr const char* kOnDemand = "{818C7543-358A-4C84-899A-14334EMS4BGS}";
constexpr const char* kFixedUpdate = "{A14CD6FC-3BA8-4703-87BF-E3247CE382F5}";

struct TaskPagesTest : SettingsFixture, ::testing::Test {
  void AddTask(Hive hive, const std::string& version_key, const std::string& id, const char* name,
               int type = -1, bool scheduled = false, bool mirror = false) {
    const std::string key = version_key + "\\Tasks\\" + id;
    machine.registry.AddKey(hive, key);
    if (name != nullptr) machine.registry.SetText(hive, key, "szTaskName", name);
    if (type >= 0) machine.registry.SetDword(hive, key, "wTaskType", static_cast<uint32_t>(type));
    if (scheduled) machine.registry.SetDword(hive, key, "bSchedEnabled", 1);
    if (mirror) machine.registry.SetDword(hive, key, "bMirrorTask", 1);
  }
  void AddLiveTask(const std::string& id, const char* name, int type = -1, bool scheduled = false,
                   bool mirror = false) {
    AddTask(Hive::kLocalMachine, kLiveVersionKey, id, name, type, scheduled, mirror);
  }
  static std::vector<std::string> Rows(const ui::Grid& grid) {
    std::vector<std::string> rows;
    for (int row = 1; row < grid.Rows(); ++row) {
      rows.push_back(grid.Cell(row, 1) + "|" + grid.Cell(row, 2) + "|" + grid.Cell(row, 3) + "|" +
                     grid.Cell(row, 4));
    }
    return rows;
  }
  frmScheduledScan& Scans() { return table.Get<frmScheduledScan>(); }
  frmAutoUpdate& Updates() { return table.Get<frmAutoUpdate>(); }
};

TEST_F(TaskPagesTest, TheDefaultTaskComesFirstAndUpdateTasksStayAway) {
  AddLiveTask("{B}", "Weekly", -1, true);
  AddLiveTask("{A}", nullptr, 1);
  AddLiveTask("{C}", "Fetch", 5);
  AddLiveTask("{D}", "Copy", 6, false, true);
  Scans().ReadConfig();
  EXPECT_THAT(Rows(Scans().Grid),
              ElementsAre("Default Task|No||DefaultTask", "New Scan Task|No||{A}", "Weekly|Yes||{B}", "|||"));
  EXPECT_EQ(Scans().Grid.SelectedRow(), 1);
  EXPECT_TRUE(Scans().EditButton->Enabled());
  EXPECT_FALSE(Scans().DeleteButton->Enabled());
  Updates().ReadConfig();
  EXPECT_THAT(Rows(Updates().Grid), ElementsAre("Fetch|No|Update|{C}", "Copy|No|Mirror|{D}", "|||"));
}

TEST_F(TaskPagesTest, AnEmptyUpdateListDisablesItsButtonsAndSaysNone) {
  Updates().ReadConfig();
  EXPECT_FALSE(Updates().EditButton->Enabled());
  EXPECT_FALSE(Updates().DeleteButton->Enabled());
  EXPECT_FALSE(Updates().Grid.Highlight());
  EXPECT_THAT(Choices<frmAutoUpdate>(), ElementsAre("\tNone", ""));
}

TEST_F(TaskPagesTest, ReadingAgainBlanksTheRowThatStaysAndClearsTheFlag) {
  AddLiveTask("{C}", "Fetch", 5);
  run.changes.ConfigChangedUpdate = true;
  Updates().ReadConfig();
  EXPECT_FALSE(run.changes.ConfigChangedUpdate);
  run.SettingsFromSystem = false;
  Updates().ReadConfig();
  EXPECT_THAT(Rows(Updates().Grid), ElementsAre("|||"));
}

TEST_F(TaskPagesTest, AMissingAddFlagMeansAddAndZeroMeansReplace) {
  run.SettingsFromSystem = false;
  Scans().ReadConfig();
  EXPECT_TRUE(Scans().AddTasks->Value());
  SetStagingDword("", "AddScheduledTasks", 0);
  Scans().ReadConfig();
  EXPECT_TRUE(Scans().ReplaceTasks->Value());
  Updates().ReadConfig();
  EXPECT_TRUE(Updates().AddTasks->Value());
  SetStagingDword("", "AddUpdateTasks", 0);
  Updates().ReadConfig();
  EXPECT_TRUE(Updates().ReplaceTasks->Value());
}

TEST_F(TaskPagesTest, DefaultNamesDependOnTheOrderOfTheRows) {
  const auto name_after = [this](std::vector<std::string> names) {
    ui::Grid& grid = Scans().Grid;
    grid.SetRows(static_cast<int>(names.size()) + 2);
    for (size_t i = 0; i < names.size(); ++i) grid.SetCell(static_cast<int>(i) + 1, 1, names[i]);
    return Scans().NewTaskName();
  };
  EXPECT_EQ(name_after({"x"}), "New Scan Task");
  EXPECT_EQ(name_after({"New Scan Task", "New Scan Task 4"}), "New Scan Task 1");
  EXPECT_EQ(name_after({"New Scan Task 4", "New Scan Task"}), "New Scan Task 5");
  EXPECT_EQ(name_after({"New Scan Task four"}), "New Scan Task 1");
  EXPECT_EQ(name_after({"NEW SCAN TASK 2"}), "New Scan Task 3");
}

TEST_F(TaskPagesTest, NumbersTooBigForADefaultNameDoNotCount) {
  ui::Grid& grid = Scans().Grid;
  grid.SetRows(3);
  for (const char* name : {"New Scan Task 99999999999999999999", "New Scan Task 2147483647",
                           "New Scan Task -7", "New Scan Task 7x", "New Scan Task7"}) {
    grid.SetCell(1, 1, name);
    EXPECT_EQ(Scans().NewTaskName(), "New Scan Task 1") << name;
  }
}

TEST_F(TaskPagesTest, ANameThatDoesNotFitTheBufferGivesTheDefaultName) {
  AddLiveTask("{A}", std::string(254, 'a').c_str());
  AddLiveTask("{B}", std::string(255, 'b').c_str());
  Scans().ReadConfig();
  EXPECT_EQ(Scans().Grid.Cell(2, 1), std::string(254, 'a'));
  EXPECT_EQ(Scans().Grid.Cell(3, 1), "New Scan Task");
}

TEST_F(TaskPagesTest, ValuesOfAnotherTypeCountAsMissing) {
  AddLiveTask("{A}", "Weekly");
  for (const char* name : {"bSchedEnabled", "wTaskType", "bMirrorTask"}) {
    machine.registry.SetText(Hive::kLocalMachine, LiveVersion("\\Tasks\\{A}"), name, "5");
  }
  machine.registry.SetDword(Hive::kLocalMachine, LiveVersion("\\Tasks\\{B}"), "szTaskName", 7);
  Scans().ReadConfig();
  EXPECT_THAT(Rows(Scans().Grid),
              ElementsAre("Default Task|No||DefaultTask", "Weekly|No||{A}", "New Scan Task|No||{B}", "|||"));
  Updates().ReadConfig();
  EXPECT_THAT(Rows(Updates().Grid), ElementsAre("|||"));
}

TEST_F(TaskPagesTest, AFileSourceListsTheStagedTasksByTheirKind) {
  AddLiveTask("{L}", "Live");
  run.SettingsFromSystem = false;
  AddTask(Hive::kCurrentUser, kStagingVersionKey, "{5}", "Five", 5);
  AddTask(Hive::kCurrentUser, kStagingVersionKey, "{N}", "None");
  Scans().ReadConfig();
  Updates().ReadConfig();
  EXPECT_THAT(Rows(Scans().Grid), ElementsAre("Default Task|No||DefaultTask", "None|No||{N}", "|||"));
  EXPECT_THAT(Rows(Updates().Grid), ElementsAre("Five|No|Update|{5}", "|||"));
}

TEST_F(TaskPagesTest, AnEditWithoutTheToolNamesNoEmptyKey) {
  AddLiveTask("{C}", "Fetch", 5, true);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  machine.registry.AddKey(Hive::kCurrentUser, StagingVersion("\\Tasks\\{C}"));
  host.modals.push_back([](ui::Form& form) {
    auto& dialog = dynamic_cast<frmAddTask&>(form);
    dialog.TaskName.UserType("Fetch now");
    EXPECT_TRUE(dialog.OK.Enabled());
    dialog.OK.UserClick();
  });
  Updates().EditButton->UserClick();
  EXPECT_FALSE(HasStaging("\\Kestrane Enterprise\\CurrentVersion\\Tasks\\{C}"));
  EXPECT_TRUE(run.changes.ConfigChangedUpdate);
  EXPECT_THAT(Rows(Updates().Grid), ElementsAre("Fetch|No|Update|{C}", "|||"));
}

TEST_F(TaskPagesTest, AnEmptyNameDisablesConfigureAndOk) {
  AddLiveTask("{C}", "Fetch", 5);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  host.modals.push_back([](ui::Form& form) {
    auto& dialog = dynamic_cast<frmAddTask&>(form);
    EXPECT_EQ(dialog.Caption(), "Edit AutoUpdate Task");
    EXPECT_EQ(dialog.ConfigureSettings.Text(), "&Configure AutoUpdate Properties");
    // Its own name is no other row's.
    dialog.TaskName.UserType("FETCH");
    EXPECT_TRUE(dialog.OK.Enabled());
    dialog.TaskName.UserType("");
    EXPECT_FALSE(dialog.ConfigureSettings.Enabled());
    EXPECT_FALSE(dialog.OK.Enabled());
    dialog.Cancel.UserClick();
  });
  Updates().EditButton->UserClick();
}

TEST_F(TaskPagesTest, AToolRunThatChangesNothingLeavesOkAsItIsForAnEdit) {
  AddLiveTask("{C}", "Fetch", 5);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  host.modals.push_back([](ui::Form& form) {
    auto& dialog = dynamic_cast<frmAddTask&>(form);
    dialog.ConfigureSettings.UserClick();
    EXPECT_FALSE(dialog.OK.Enabled());
    dialog.TaskName.UserType("Other");
    dialog.ConfigureSettings.UserClick();
    EXPECT_TRUE(dialog.OK.Enabled());
    dialog.Cancel.UserClick();
  });
  Updates().EditButton->UserClick();
}

TEST_F(TaskPagesTest, TheSameNameTypedAnewEnablesOkOfAnEdit) {
  AddLiveTask("{C}", "Fetch", 5);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  host.modals.push_back([](ui::Form& form) {
    auto& dialog = dynamic_cast<frmAddTask&>(form);
    EXPECT_FALSE(dialog.OK.Enabled());
    dialog.TaskName.UserType("Fetch");
    EXPECT_TRUE(dialog.OK.Enabled());
    dialog.Cancel.UserClick();
  });
  Updates().EditButton->UserClick();
}

TEST_F(TaskPagesTest, UpdateAndMirrorTasksCountApart) {
  AddLiveTask("{C}", "New Update Task 1", 5);
  AddLiveTask("{D}", "New Mirror Task 1", 5, false, true);
  Updates().ReadConfig();
  EXPECT_EQ(Updates().NewTaskName(false), "New Update Task 2");
  EXPECT_EQ(Updates().NewTaskName(true), "New Mirror Task 2");
}

TEST_F(TaskPagesTest, ANewTaskIsConfirmedOnlyAfterTheToolSavedIt) {
  Scans().ReadConfig();
  Show<frmScheduledScan>();
  std::string id;
  machine.processes.On("OdsCfg32", [&](const FakeCommand& command) {
    id = command.command_line.substr(15, 38);
    SetStagingDword("\\Kestrane Enterprise\\CurrentVersion\\Tasks\\" + id, "bSchedEnabled", 1);
    SetStagingDword("", "bOdsCfg32", 1);
  });
  host.modals.push_back([&](ui::Form& form) {
    auto& dialog = dynamic_cast<frmAddTask&>(form);
    EXPECT_EQ(dialog.Caption(), "Add Scheduled Scan Task");
    EXPECT_EQ(dialog.ConfigureSettings.Text(), "&Configure Scheduled Scan Properties");
    EXPECT_EQ(dialog.TaskName.Text(), "New Scan Task");
    EXPECT_FALSE(dialog.OK.Enabled());
    dialog.TaskName.UserType("Nightly");
    EXPECT_FALSE(dialog.OK.Enabled());
    dialog.ConfigureSettings.UserClick();
    EXPECT_TRUE(dialog.OK.Enabled());
    dialog.TaskName.UserType("default task");
    EXPECT_FALSE(dialog.OK.Enabled());
    EXPECT_FALSE(dialog.ConfigureSettings.Enabled());
    dialog.TaskName.UserType("Nightly");
    EXPECT_FALSE(dialog.OK.Enabled());
    dialog.ConfigureSettings.UserClick();
    dialog.OK.UserClick();
  });
  Scans().NewButton.UserClick();
  EXPECT_THAT(Commands(), ElementsAre("OdsCfg32 /TASK " + id + " /TASKNAME \"Nightly\" /ZEDW",
                                      "OdsCfg32 /TASK " + id + " /TASKNAME \"Nightly\" /ZEDRW"));
  EXPECT_THAT(Rows(Scans().Grid), ElementsAre("Default Task|No||DefaultTask", "Nightly|Yes||" + id, "|||"));
  EXPECT_TRUE(run.changes.ConfigChangedScan);
}

TEST_F(TaskPagesTest, CancellingANewTaskRemovesItsKey) {
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  machine.processes.On("TxFetch", [&](const FakeCommand& command) {
    EXPECT_THAT(command.command_line, ::testing::HasSubstr(" /MIRROR /TASKNAME \"New Mirror Task\""));
    SetStagingDword("\\Kestrane Enterprise\\CurrentVersion\\Tasks\\" + command.command_line.substr(14, 38),
                    "x", 1);
  });
  host.modals.push_back([&](ui::Form& form) {
    auto& dialog = dynamic_cast<frmAddTask&>(form);
    EXPECT_EQ(dialog.Caption(), "Add Mirror Task");
    dialog.ConfigureSettings.UserClick();
    EXPECT_FALSE(dialog.OK.Enabled());
    form.UserClose();
  });
  Updates().NewMirrorButton.UserClick();
  EXPECT_THAT(Rows(Updates().Grid), ElementsAre("|||"));
  const auto* tasks = "\\Kestrane Enterprise\\CurrentVersion\\Tasks";
  EXPECT_THAT(machine.registry.Dump(Hive::kCurrentUser, Staging(tasks)).size(), ::testing::Le(1u));
  EXPECT_FALSE(run.changes.ConfigChangedUpdate);
}

TEST_F(TaskPagesTest, ANameThatBecameTakenOrEmptyWhileTheToolRanKeepsOkDisabled) {
  AddLiveTask("{C}", "Fetch", 5);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  frmAddTask* dialog = nullptr;
  std::string typed;
  machine.processes.On("TxFetch", [&](const FakeCommand&) {
    dialog->TaskName.UserType(typed);
    SetStagingDword("", "bTxFetch", 1);
  });
  host.modals.push_back([&](ui::Form& form) {
    dialog = &dynamic_cast<frmAddTask&>(form);
    for (const char* name : {"fetch", "", "Another"}) {
      dialog->TaskName.UserType("Mirror 1");
      typed = name;
      dialog->ConfigureSettings.UserClick();
      EXPECT_EQ(dialog->OK.Enabled(), typed == "Another") << name;
    }
    dialog->Cancel.UserClick();
  });
  Updates().NewMirrorButton.UserClick();
}

TEST_F(TaskPagesTest, OkDoesNothingWhileTheToolRuns) {
  AddLiveTask("{C}", "Fetch", 5);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  frmAddTask* dialog = nullptr;
  machine.processes.On("TxFetch", [&](const FakeCommand&) {
    EXPECT_TRUE(dialog->OK.Enabled());
    dialog->OK.UserClick();
    EXPECT_TRUE(dialog->Visible());
    machine.registry.AddKey(Hive::kCurrentUser, StagingVersion("\\Tasks\\{C}"));
    machine.registry.SetText(Hive::kCurrentUser, StagingVersion("\\Tasks\\{C}"), "szTaskName", "Fetch");
  });
  host.modals.push_back([&](ui::Form& form) {
    dialog = &dynamic_cast<frmAddTask&>(form);
    dialog->TaskName.UserType("Renamed");
    dialog->ConfigureSettings.UserClick();
    dialog->OK.UserClick();
  });
  Updates().EditButton->UserClick();
  EXPECT_FALSE(dialog->Visible());
  EXPECT_EQ(Updates().Grid.Cell(1, 1), "Renamed");
}

TEST_F(TaskPagesTest, OkServesAnotherTaskWhileTheToolOfAnAbandonedOneRunsOn) {
  AddLiveTask("{C}", "Fetch", 5);
  AddLiveTask("{D}", "Other", 5);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  machine.processes.On("TxFetch", [&](const FakeCommand&) {
    auto& dialog = table.Get<frmAddTask>();
    dialog.Cancel.UserClick();
    host.modals.push_back([](ui::Form& form) {
      auto& again = dynamic_cast<frmAddTask&>(form);
      again.TaskName.UserType("Renamed");
      again.OK.UserClick();
    });
    Updates().Grid.UserPick(2);
    Updates().EditButton->UserClick();
    EXPECT_FALSE(dialog.Visible());
  });
  host.modals.push_back(
      [](ui::Form& form) { dynamic_cast<frmAddTask&>(form).ConfigureSettings.UserClick(); });
  Updates().EditButton->UserClick();
  EXPECT_TRUE(run.changes.ConfigChangedUpdate);
}

TEST_F(TaskPagesTest, ATaskAbandonedWhileTheToolRunsLeavesNothing) {
  Scans().ReadConfig();
  Show<frmScheduledScan>();
  frmAddTask* dialog = nullptr;
  machine.processes.On("OdsCfg32", [&](const FakeCommand& command) {
    dialog->Cancel.UserClick();
    // The person confirms the product's dialog box only now.
    SetStagingDword("\\Kestrane Enterprise\\CurrentVersion\\Tasks\\" + command.command_line.substr(15, 38),
                    "x", 1);
    SetStagingDword("", "bOdsCfg32", 1);
  });
  host.modals.push_back([&](ui::Form& form) {
    dialog = &dynamic_cast<frmAddTask&>(form);
    dialog->ConfigureSettings.UserClick();
  });
  Scans().NewButton.UserClick();
  EXPECT_FALSE(dialog->Visible());
  EXPECT_THAT(Rows(Scans().Grid), ElementsAre("Default Task|No||DefaultTask", "|||"));
  EXPECT_THAT(
      machine.registry.Dump(Hive::kCurrentUser, Staging("\\Kestrane Enterprise\\CurrentVersion\\Tasks"))
          .size(),
      ::testing::Le(1u));
  EXPECT_EQ(machine.registry.Get(Hive::kCurrentUser, Staging(""), "bOdsCfg32").type, platform::kRegNone);
}

TEST_F(TaskPagesTest, TheDefaultTaskKeepsItsNameWhileTheStagingKeyHoldsNewScan) {
  run.SettingsFromSystem = false;
  SetStagingDword("\\Kestrane Enterprise\\CurrentVersion\\DefaultTask", "x", 1);
  Scans().ReadConfig();
  Show<frmScheduledScan>();
  machine.processes.On("OdsCfg32", [&](const FakeCommand&) { SetStagingDword("", "bOdsCfg32", 1); });
  host.modals.push_back([](ui::Form& form) {
    auto& dialog = dynamic_cast<frmAddTask&>(form);
    EXPECT_EQ(dialog.Caption(), "Edit Scheduled Scan Task");
    EXPECT_FALSE(dialog.TaskName.Enabled());
    EXPECT_FALSE(dialog.OK.Enabled());
    dialog.ConfigureSettings.UserClick();
    dialog.OK.UserClick();
  });
  Scans().EditButton->UserClick();
  EXPECT_EQ(machine.registry.Get(Hive::kCurrentUser, StagingVersion("\\DefaultTask"), "szTaskName").Text(),
            "New Scan");
  EXPECT_EQ(Scans().Grid.Cell(1, 1), "Default Task");
  EXPECT_THAT(Commands(),
              ElementsAre("regedit /s /e \"C:\\Temp\\run\\DefaultTask.reg\" \"HKEY_CURRENT_USER\\" +
                              StagingVersion("\\DefaultTask") + "\"",
                          "OdsCfg32 /TASK DefaultTask /TASKNAME \"Default Task\" /ZEDRW"));
}

TEST_F(TaskPagesTest, CancellingAnEditFromAFileSourceRestoresTheKey) {
  run.SettingsFromSystem = false;
  AddTask(Hive::kCurrentUser, kStagingVersionKey, "{C}", "Fetch", 5);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  machine.processes.On("regedit /s /e",
                       [&](const FakeCommand&) { machine.files.AddFile("C:\\Temp\\run\\{C}.reg", "saved"); });
  host.modals.push_back([](ui::Form& form) { dynamic_cast<frmAddTask&>(form).Cancel.UserClick(); });
  Updates().EditButton->UserClick();
  EXPECT_THAT(Commands(), ElementsAre("regedit /s /e \"C:\\Temp\\run\\{C}.reg\" \"HKEY_CURRENT_USER\\" +
                                          StagingVersion("\\Tasks\\{C}") + "\"",
                                      "regedit /s \"C:\\Temp\\run\\{C}.reg\""));
  EXPECT_FALSE(machine.files.FileExists("C:\\Temp\\run\\{C}.reg"));
}

TEST_F(TaskPagesTest, WhileATaskIsSavedForAnEditThePageTakesNoOtherCommand) {
  run.SettingsFromSystem = false;
  AddTask(Hive::kCurrentUser, kStagingVersionKey, "{C}", "Fetch", 5);
  AddTask(Hive::kCurrentUser, kStagingVersionKey, "{D}", "Other", 5);
  Updates().ReadConfig();
  frmAutoUpdate& page = Show<frmAutoUpdate>();
  host.meanwhile.push_back([&] {
    page.EditButton->UserClick();
    page.NewUpdateButton.UserClick();
    page.DeleteButton->UserClick();
    page.Next->UserClick();
    page.Back->UserClick();
    page.Grid.UserPick(2);
  });
  int shown = 0;
  host.modals.push_back([&](ui::Form& form) {
    ++shown;
    auto& dialog = dynamic_cast<frmAddTask&>(form);
    EXPECT_EQ(dialog.TaskName.Text(), "Fetch");
    // The row under edit is the one whose name is not compared.
    dialog.TaskName.UserType("fetch");
    EXPECT_TRUE(dialog.OK.Enabled());
    dialog.Cancel.UserClick();
  });
  page.EditButton->UserClick();
  EXPECT_EQ(shown, 1);
  EXPECT_TRUE(page.Visible());
  EXPECT_EQ(page.Grid.Rows(), 4);
}

TEST_F(TaskPagesTest, AnEditOfTheLiveSourceSavesAndRestoresNothing) {
  AddLiveTask("{C}", "Fetch", 5);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  host.modals.push_back([](ui::Form& form) { dynamic_cast<frmAddTask&>(form).Cancel.UserClick(); });
  Updates().EditButton->UserClick();
  EXPECT_TRUE(Commands().empty());
}

TEST_F(TaskPagesTest, AToolThatFailsIsToldWithItsTask) {
  AddLiveTask("{C}", "Fetch", 5);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  machine.processes.On("TxFetch", 1);
  host.modals.push_back([](ui::Form& form) {
    auto& dialog = dynamic_cast<frmAddTask&>(form);
    dialog.ConfigureSettings.UserClick();
    dialog.Cancel.UserClick();
  });
  Updates().EditButton->UserClick();
  EXPECT_THAT(
      machine.transcript.Lines(),
      Contains(
          "message Configuring AutoUpdate task 'Fetch' failed. Please make sure that Kestrane Enterprise "
          "is installed properly."));
}

TEST_F(TaskPagesTest, DeletingMarksTheTaskAndSetsNoFlag) {
  AddLiveTask("{C}", "Fetch", 5, true);
  AddLiveTask("{D}", "Other", 5);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  machine.dialogs.answers = {Answer::kCancel, Answer::kOk};
  Updates().DeleteButton->UserClick();
  EXPECT_EQ(Updates().Grid.Rows(), 4);
  Updates().DeleteButton->UserClick();
  EXPECT_THAT(
      machine.transcript.Lines(),
      Contains("question This item will be deleted:<LF><LF>  Task name: Fetch<LF>  Scheduled: Yes<LF>  Task "
               "type: Update [OK|Cancel] default=OK -> OK"));
  EXPECT_THAT(Rows(Updates().Grid), ElementsAre("Other|No|Update|{D}", "|||"));
  EXPECT_EQ(machine.registry.Get(Hive::kCurrentUser, Staging("\\Deleted Tasks"), "{C}").Dword(0), 1u);
  EXPECT_FALSE(run.changes.ConfigChangedUpdate);
}

TEST_F(TaskPagesTest, DeletingKeepsTheRowNumberSelected) {
  for (const char* id : {"{A}", "{B}", "{C}"}) AddLiveTask(id, id, 5);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  Updates().Grid.UserPick(2);
  machine.dialogs.answers = {Answer::kOk, Answer::kOk};
  Updates().DeleteButton->UserClick();
  EXPECT_EQ(Updates().Grid.SelectedRow(), 2);
  EXPECT_EQ(Updates().Grid.Cell(2, 1), "{C}");
  Updates().DeleteButton->UserClick();
  // The blank last row is never left selected.
  EXPECT_EQ(Updates().Grid.SelectedRow(), 1);
}

TEST_F(TaskPagesTest, DeletingAStagedTaskTakesItsKeyInPackageModeAfterOneQuestion) {
  run.PackageMode = true;
  run.SettingsFromSystem = false;
  AddTask(Hive::kCurrentUser, kStagingVersionKey, kOnDemand, "Fetch", 5);
  Updates().ReadConfig();
  Updates().Show();
  Updates().ReplaceTasks->UserClick();
  machine.dialogs.answers = {Answer::kOk};
  Take();
  Updates().DeleteButton->UserClick();
  EXPECT_THAT(
      Take(),
      Contains("question This item will be deleted:<LF><LF>  Task name: Fetch<LF>  Scheduled: No<LF>  "
               "Task type: Update [OK|Cancel] default=OK -> OK"));
  EXPECT_FALSE(HasStaging(std::string("\\Kestrane Enterprise\\CurrentVersion\\Tasks\\") + kOnDemand));
}

TEST_F(TaskPagesTest, TheStrongerQuestionNeedsReplacedTasks) {
  run.PackageMode = true;
  AddLiveTask(kOnDemand, "Scan All Fixed Disks");
  Scans().ReadConfig();
  Scans().Show();
  Scans().Grid.UserPick(2);
  machine.dialogs.answers = {Answer::kCancel};
  Take();
  Scans().DeleteButton->UserClick();
  EXPECT_THAT(Take(), Contains(::testing::StartsWith("question This item will be deleted:")));
  EXPECT_EQ(Scans().Grid.Rows(), 4);
}

TEST_F(TaskPagesTest, TheFixedUpdateTaskCannotBeDeleted) {
  AddLiveTask(kFixedUpdate, "AutoUpdate", 5);
  Updates().ReadConfig();
  EXPECT_TRUE(Updates().EditButton->Enabled());
  EXPECT_FALSE(Updates().DeleteButton->Enabled());
}

TEST_F(TaskPagesTest, TheDefaultOnDemandTaskIsMissingOnlyWhenTasksAreReplaced) {
  Scans().ReadConfig();
  EXPECT_FALSE(Scans().IsDefaultOnDemandTaskMissing());
  Scans().ReplaceTasks->UserClick();
  EXPECT_TRUE(Scans().IsDefaultOnDemandTaskMissing());
  AddLiveTask(kOnDemand, "Scan All Fixed Disks");
  Scans().ReadConfig();
  Scans().ReplaceTasks->UserClick();
  EXPECT_FALSE(Scans().IsDefaultOnDemandTaskMissing());
}

TEST_F(TaskPagesTest, DeletingTheOnDemandTaskAsksThePlainQuestionOutsidePackageMode) {
  AddLiveTask(kOnDemand, "Scan All Fixed Disks");
  Scans().ReadConfig();
  Show<frmScheduledScan>();
  Scans().ReplaceTasks->UserClick();
  Scans().Grid.UserPick(2);
  machine.dialogs.answers = {Answer::kOk};
  Scans().DeleteButton->UserClick();
  EXPECT_THAT(
      machine.transcript.Lines(),
      Contains("question This item will be deleted:<LF><LF>  Task name: Scan All Fixed Disks<LF>  Scheduled: "
               "No [OK|Cancel] default=OK -> OK"));
}

TEST_F(TaskPagesTest, TransferFlushesOnlyTasksWithoutAStagingKey) {
  AddLiveTask("{A}", "Weekly");
  AddLiveTask("{B}", "Daily");
  AddLiveTask("{C}", "Fetch it all", 5);
  SetStagingDword("\\Kestrane Enterprise\\CurrentVersion\\Tasks\\{A}", "x", 1);
  Scans().ReadConfig();
  Updates().ReadConfig();
  machine.processes.On("TxFetch", [&](const FakeCommand&) {
    SetStagingDword("\\Kestrane Enterprise\\CurrentVersion\\Tasks\\{C}", "x", 1);
  });
  Scans().TransferSettings();
  Updates().TransferSettings();
  EXPECT_THAT(Commands(),
              ElementsAre("OdsCfg32 /FLUSHSETTINGS /ZEDW", "OdsCfg32 /FLUSHSETTINGS /TASK {B} /ZEDW",
                          "TxFetch /FLUSHSETTINGS /TASK {C} /TASKNAME Fetch it all /ZEDW"));
  EXPECT_EQ(machine.registry.Get(Hive::kCurrentUser, StagingVersion("\\Tasks\\{C}"), "szTaskName").Text(),
            "Fetch it all");
}

TEST_F(TaskPagesTest, ReviewLinesNameTheTasksAndWhatBecomesOfTheOthers) {
  AddLiveTask("{C}", "Fetch", 5, true);
  Scans().ReadConfig();
  Updates().ReadConfig();
  Updates().ReplaceTasks->UserClick();
  EXPECT_THAT(Choices<frmScheduledScan>(), ElementsAre("\tTask name: Default Task", "\tScheduled: No",
                                                       "\tAdd to existing tasks on the target system", ""));
  EXPECT_THAT(Choices<frmAutoUpdate>(),
              ElementsAre("\tTask name: Fetch", "\tScheduled: Yes", "\tTask type: Update",
                          "\tReplace existing tasks on the target system", ""));
}

TEST_F(TaskPagesTest, HelpOfTheDialogFollowsKindAndPurpose) {
  AddLiveTask("{D}", "Copy", 6, false, true);
  Updates().ReadConfig();
  Show<frmAutoUpdate>();
  host.modals.push_back([](ui::Form& form) {
    auto& dialog = dynamic_cast<frmAddTask&>(form);
    dialog.Help.UserClick();
    dialog.Cancel.UserClick();
  });
  Updates().EditButton->UserClick();
  EXPECT_THAT(machine.transcript.Lines(), Contains("help 1034"));
}

}  // namespace
}  // namespace kw
