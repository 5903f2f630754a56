#include "settings/import_configuration.h"

#include "package/staging.h"
#include "settings/settings_test_support.h"

namespace kw {
namespace {

using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FakeCommand;
using ::testing::HasSubstr;
using testing::Hive;
using ::testing::IsEmpty;
using testing::SettingsFixture;

constexpr const char* kCabinet = "C:\\Files\\KTECFG.CAB";

/// A cabinet whose members and whose settings a test chooses.
struct ImportConfigurationTest : SettingsFixture, ::testing::Test {
  ImportConfigurationTest() {
    machine.files.AddFile(kCabinet, "cabinet");
    machine.files.AddFile("C:\\Temp\\run\\config\\old.txt", "x");
    run.ProductInstalled = false;
    machine.processes.On("CabArc", [this](const FakeCommand& command) {
      const std::string& line = command.command_line;
      const size_t quote = line.rfind('"', line.size() - 3);
      const std::string folder = line.substr(quote + 1, line.size() - quote - 3);
      for (const auto& [name, bytes] : members) machine.files.AddFile(folder + "\\" + name, bytes);
    });
    machine.processes.On("regedit.exe /s", [this](const FakeCommand&) {
      if (delta >= 0) SetStagingDword("", "DeltaConfig", static_cast<uint32_t>(delta));
      if (!language.empty()) machine.registry.SetText(Hive::kCurrentUser, Staging(""), "Language", language);
      SetStagingDword("\\Kestrane Enterprise\\CurrentVersion", "x", 7);
    });
  }
  bool Import(const std::string& path = kCabinet, bool show_missing = true) {
    return ImportConfiguration(app.Context(), path, show_missing);
  }
  std::vector<std::string> Messages() {
    std::vector<std::string> messages;
    for (const std::string& line : Take()) {
      if (line.starts_with("message") || line.starts_with("question")) messages.push_back(line);
    }
    return messages;
  }

  std::map<std::string, std::string> members = {{"KTE700.CFG", "enciphered:settings"}};
  int delta = 0;
  std::string language = "0000";
};

TEST_F(ImportConfigurationTest, AGoodCabinetReachesTheStagingAndTheComparisonBranch) {
  EXPECT_TRUE(Import());
  EXPECT_THAT(Messages(), IsEmpty());
  ASSERT_THAT(run.ConfigAppDataFolder, HasSubstr("C:\\Temp\\run\\ConfigAppData_id_"));
  EXPECT_EQ(machine.files.Content(run.ConfigAppDataFolder + "\\KTE700.REG"), "settings");
  EXPECT_FALSE(machine.files.FolderExists("C:\\Temp\\run\\config"));
  EXPECT_FALSE(run.SaveDifferencesOnly);
  EXPECT_EQ(machine.registry.Dump(Hive::kCurrentUser, "SOFTWARE\\Orvantic\\ZED_Backup").size(),
            machine.registry.Dump(Hive::kCurrentUser, Staging("")).size());
  EXPECT_THAT(Commands(), ElementsAre("CabArc X \"" + std::string(kCabinet) + "\" *.* \"" +
                                          run.ConfigAppDataFolder + "\"\\",
                                      "regedit.exe /s \"" + run.ConfigAppDataFolder + "\\KTE700.REG\""));
  EXPECT_EQ(machine.processes.commands[0].style, platform::WindowStyle::kHidden);
}

TEST_F(ImportConfigurationTest, AMissingFileIsToldOnlyWhenAsked) {
  EXPECT_FALSE(Import("C:\\none.cab", false));
  EXPECT_THAT(Messages(), IsEmpty());
  const std::string first = run.ConfigAppDataFolder;
  EXPECT_THAT(first, HasSubstr("ConfigAppData"));
  EXPECT_FALSE(Import("C:\\none.cab", true));
  EXPECT_THAT(Messages(), ElementsAre("message Configuration file C:\\none.cab does not exist."));
  EXPECT_FALSE(Import("", true));
  EXPECT_THAT(Messages(), ElementsAre("message Configuration file  does not exist."));
}

TEST_F(ImportConfigurationTest, CancelAtTheQuestionLeavesBranchesAndFlagsUntouched) {
  run.changes.ConfigChangedUi = true;
  run.SaveDifferencesOnly = true;
  SetStagingDword("", "x", 1);
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_FALSE(Import());
  EXPECT_THAT(Messages(),
              ElementsAre("question Any changes you have made will be discarded. [OK|Cancel] default=OK "
                          "-> Cancel"));
  EXPECT_TRUE(run.changes.ConfigChangedUi);
  EXPECT_TRUE(HasStaging(""));
  EXPECT_FALSE(run.SaveDifferencesOnly);
  machine.dialogs.answers = {Answer::kOk};
  EXPECT_TRUE(Import());
  EXPECT_FALSE(run.changes.Any());
}

TEST_F(ImportConfigurationTest, ACabinetWithoutSettingsIsRefusedAndItsFolderGone) {
  members = {{"readme.txt", "x"}};
  EXPECT_FALSE(Import());
  EXPECT_THAT(Messages(),
              ElementsAre("message The provided cab file does not appear to contain Kestrane Enterprise "
                          "settings.  Please choose a different cab file and try again."));
  EXPECT_EQ(run.ConfigAppDataFolder, "C:\\Temp\\run\\config");
  EXPECT_THAT(machine.files.Tree("C:\\Temp\\run"), ElementsAre("config\\old.txt"));
}

TEST_F(ImportConfigurationTest, SettingsThatDoNotDecipherAreRefused) {
  members = {{"KTE700.CFG", "garbage"}};
  EXPECT_FALSE(Import());
  EXPECT_THAT(Messages(), ElementsAre("message Could not decrypt configuration file."));
  EXPECT_EQ(run.ConfigAppDataFolder, "C:\\Temp\\run\\config");
}

TEST_F(ImportConfigurationTest, AFileThatIsNoSettingsExportIsRefused) {
  machine.libraries.Return("ConvertRegFile", 0);
  EXPECT_FALSE(Import());
  EXPECT_THAT(Messages(), ElementsAre("message Invalid configuration file."));
}

TEST_F(ImportConfigurationTest, WithoutDeltaConfigItSaysCorruptedAndIsStillTaken) {
  delta = -1;
  EXPECT_TRUE(Import());
  EXPECT_THAT(Messages(), ElementsAre("message This configuration file is corrupted."));
  EXPECT_FALSE(run.SaveDifferencesOnly);
}

TEST_F(ImportConfigurationTest, DeltaConfigOfAnotherTypeSaysCorrupted) {
  delta = -1;
  machine.processes.On("regedit.exe /s", [this](const FakeCommand&) {
    machine.registry.SetText(Hive::kCurrentUser, Staging(""), "DeltaConfig", "1");
    machine.registry.SetText(Hive::kCurrentUser, Staging(""), "Language", "0000");
  });
  EXPECT_TRUE(Import());
  EXPECT_THAT(Messages(), ElementsAre("message This configuration file is corrupted."));
}

TEST_F(ImportConfigurationTest, ADifferencesOnlyCabinetIsTakenAndNoted) {
  delta = 1;
  EXPECT_TRUE(Import());
  EXPECT_THAT(
      Messages(),
      ElementsAre("message This configuration package does not contain the entire Kestrane Enterprise "
                  "settings.<CR><LF>You will be unable to configure Kestrane Enterprise if you use this file "
                  "as the source for configuration."));
  EXPECT_TRUE(run.SaveDifferencesOnly);
}

TEST_F(ImportConfigurationTest, TheLanguageMustFitThePackageFirstAndThenTheProduct) {
  run.PackageMode = true;
  run.PackageLocale = "0409";
  run.ProductInstalled = true;
  language = "0407";
  EXPECT_FALSE(Import());
  EXPECT_THAT(Messages(), ElementsAre("message Language of the configuration file does not match that of the "
                                      "installation package."));
  EXPECT_FALSE(HasStaging(""));
  EXPECT_EQ(run.ProductLocale, "0407");
  language = "0409";
  EXPECT_FALSE(Import());
  EXPECT_THAT(Messages(),
              ElementsAre("message Language of the configuration file does not match Kestrane Enterprise "
                          "on your system."));
  EXPECT_FALSE(HasStaging(""));
  language = "0000";
  EXPECT_TRUE(Import());
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(ImportConfigurationTest, AMissingLanguageIsAMismatch) {
  run.PackageMode = true;
  run.PackageLocale = "0409";
  language.clear();
  EXPECT_FALSE(Import());
  EXPECT_THAT(Messages().size(), 1u);
}

TEST_F(ImportConfigurationTest, AnUnreadableRepositoryListIsToldAndTheImportGoesOn) {
  members["SiteList.CFG"] = "garbage";
  EXPECT_TRUE(Import());
  EXPECT_THAT(Messages(),
              ElementsAre("message Could not decrypt AutoUpdate repository list file.  You may configure the "
                          "AutoUpdate repository list on the AutoUpdate Configuration page."));
  members["SiteList.CFG"] = "enciphered:no xml";
  EXPECT_TRUE(Import());
  EXPECT_THAT(
      Messages(),
      ElementsAre(
          "message The AutoUpdate repository list file does not appear to be valid.  You may configure "
          "the AutoUpdate repository list on the AutoUpdate Configuration page."));
  EXPECT_FALSE(machine.files.FileExists(run.ConfigAppDataFolder + "\\SiteList.XML"));
  members["SiteList.CFG"] = "enciphered:<SiteLists/>";
  EXPECT_TRUE(Import());
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_TRUE(machine.files.FileExists(run.ConfigAppDataFolder + "\\SiteList.XML"));
}

TEST_F(ImportConfigurationTest, UnreadableFirewallPreferencesAreToldAndTheImportGoesOn) {
  members["BulwarkPrefs.CFG"] = "garbage";
  EXPECT_TRUE(Import());
  EXPECT_THAT(Messages(), ElementsAre("message Could not decrypt Tamrix Bulwark configuration file.  You may "
                                      "configure the Bulwark on the Tamrix Bulwark page."));
  members["BulwarkPrefs.CFG"] = "enciphered:[prefs]";
  EXPECT_TRUE(Import());
  EXPECT_EQ(machine.files.Content(run.ConfigAppDataFolder + "\\BulwarkPrefs.TXT"), "[prefs]");
}

TEST_F(ImportConfigurationTest, ThePasswordsOutliveTheAttemptToDeleteThem) {
  machine.processes.On("regedit.exe /s", [this](const FakeCommand&) {
    SetStagingDword("", "DeltaConfig", 0);
    for (const char* name : {"CAP", "NCAP"})
      machine.registry.SetText(Hive::kCurrentUser, Staging(""), name, "sealed");
    machine.registry.SetText(Hive::kCurrentUser, Staging(""), "Language", "0000");
  });
  EXPECT_TRUE(Import());
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(machine.registry.Get(Hive::kCurrentUser, Staging(""), "CAP").Text(), "sealed");
  EXPECT_EQ(machine.registry.Get(Hive::kCurrentUser, Staging(""), "NCAP").Text(), "sealed");
}

TEST_F(ImportConfigurationTest, ARefusedFileLeavesItsFolderAndTheBranchesAreClearedAlready) {
  SetStagingDword("", "before", 1);
  members = {{"KTE700.CFG", "garbage"}};
  EXPECT_FALSE(Import());
  EXPECT_FALSE(HasStaging(""));
  EXPECT_THAT(machine.files.Tree("C:\\Temp\\run"), ::testing::Contains(::testing::EndsWith("\\KTE700.CFG")));
  EXPECT_TRUE(machine.files.FolderExists(run.ConfigAppDataFolder));
  EXPECT_EQ(run.ConfigAppDataFolder, "C:\\Temp\\run\\config");
}

TEST_F(ImportConfigurationTest, TheComparisonBranchHoldsWhatTheStagingBranchHolds) {
  machine.registry.SetText(Hive::kCurrentUser, "SOFTWARE\\Orvantic\\ZED_Backup", "stale", "x");
  EXPECT_TRUE(Import());
  std::vector<std::string> copy = machine.registry.Dump(Hive::kCurrentUser, "SOFTWARE\\Orvantic\\ZED_Backup");
  for (std::string& line : copy) {
    if (line.starts_with("[")) line.replace(line.find("ZED_Backup"), 10, "ZED");
  }
  EXPECT_EQ(copy, machine.registry.Dump(Hive::kCurrentUser, Staging("")));
}

TEST_F(ImportConfigurationTest, AFileOfTheInstalledProductsLanguageIsTaken) {
  run.ProductInstalled = true;
  machine.registry.SetText(Hive::kLocalMachine, ConsolePluginKey(run.ProductIs700), "Language", "040a");
  language = "040A";
  EXPECT_TRUE(Import());
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(run.ProductLocale, "040A");
}

}  // namespace
}  // namespace kw
