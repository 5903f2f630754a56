// Settings that a package carries: taken up when it is opened, and packed into it or beside it.

#include "package/staging.h"
#include "pages/frm_registry_settings.h"
#include "pages/open_package_test_support.h"
#include "settings/branches.h"
#include "settings/frm_config_source.h"
#include "settings/frm_scheduled_scan.h"
#include "settings/settings_output.h"

namespace kw {
namespace {

using ::testing::ElementsAre;
using testing::FakeCommand;
using testing::Hive;
using ::testing::IsEmpty;
using testing::OpenPackageFixture;

struct PackageSettingsTest : OpenPackageFixture, ::testing::Test {
  PackageSettingsTest() {
    run.ConfigAppDataFolder.clear();
    machine.processes.On("CabArc", [this](const FakeCommand& command) {
      const std::string& line = command.command_line;
      const size_t quote = line.rfind('"', line.size() - 3);
      const std::string folder = line.substr(quote + 1, line.size() - quote - 3);
      unpacked.push_back(line.substr(10, line.find('"', 10) - 10));
      machine.files.AddFile(folder + "\\KTE700.CFG", "enciphered:x");
      machine.files.AddFile(folder + "\\ZED_GEN.CFG", "enciphered:y");
    });
    machine.processes.On("regedit.exe /s", [this](const FakeCommand&) {
      machine.registry.SetDword(Hive::kCurrentUser, kStagingBranch, "DeltaConfig", delta);
      machine.registry.SetText(Hive::kCurrentUser, kStagingBranch, "Language", language);
    });
    machine.processes.On("regedit /s /e", [this](const FakeCommand&) {
      machine.files.AddFile(run.ConfigAppDataFolder + "\\KTE700.REG", "exported");
    });
    machine.processes.On("C:\\Kitwright\\MakeCab.exe", [this](const FakeCommand&) {
      if (maker_works) machine.files.AddFile(run.ConfigAppDataFolder + "\\KTECFG.CAB", "new cabinet");
    });
  }
  void PutInside() {
    machine.files.AddFile("C:\\Files\\KTECFG.CAB", "cabinet");
    ASSERT_TRUE(Db().ReplaceBinary("ktecfg.cab", "C:\\Files\\KTECFG.CAB").ok());
  }
  void PutBeside() { machine.files.AddFile(run.SourceFolder + "\\KTECFG.CAB", "cabinet"); }
  frmConfigSource& TakeUp() {
    page().TakePackageSettings();
    return page();
  }
  frmConfigSource& page() { return table.Get<frmConfigSource>(); }
  /// The live system is the source, and there is a folder to work in.
  void ExpectLiveSource() {
    EXPECT_TRUE(page().SettingsFromSystem.Value());
    EXPECT_TRUE(run.SettingsFromSystem);
    EXPECT_FALSE(run.SettingsFromFile);
    EXPECT_EQ(run.ConfigSourceName, "ZED_SettingsFromSystem");
    EXPECT_TRUE(machine.files.FolderExists(run.ConfigAppDataFolder));
  }
  std::vector<std::string> Messages() {
    std::vector<std::string> messages;
    for (const std::string& line : machine.transcript.Take()) {
      if (line.starts_with("message")) messages.push_back(line);
    }
    return messages;
  }

  std::vector<std::string> unpacked;
  uint32_t delta = 0;
  std::string language = "0409";
  bool maker_works = true;
};

TEST_F(PackageSettingsTest, SettingsInsideThePackageAreTakenUp) {
  run.ProductInstalled = false;
  PutInside();
  PutBeside();
  TakeUp();
  EXPECT_THAT(unpacked, ElementsAre("C:\\Temp\\run\\KTECFG.CAB"));
  EXPECT_EQ(run.ConfigSourceName, "C:\\Temp\\run\\KTECFG.CAB");
  EXPECT_TRUE(page().SettingsFromFile.Value());
  EXPECT_TRUE(page().SettingsFromFilePath.Enabled());
  EXPECT_EQ(page().SettingsFromFilePath.Text(), "[IN_PACKAGE]\\KTECFG.CAB");
  EXPECT_FALSE(run.SettingsFromSystem);
  EXPECT_TRUE(run.SettingsFromFile);
  EXPECT_EQ(table.Get<frmRegistrySettings>().RegFile.Text(), "[IN_PACKAGE]ZED_GEN.REG");
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(PackageSettingsTest, WithoutSettingsInsideThoseBesideAreTaken) {
  run.ProductInstalled = false;
  PutBeside();
  TakeUp();
  EXPECT_THAT(unpacked, ElementsAre("C:\\Source\\KTECFG.CAB"));
  EXPECT_EQ(run.ConfigSourceName, "C:\\Source\\KTECFG.CAB");
  EXPECT_EQ(page().SettingsFromFilePath.Text(), "C:\\Source\\KTECFG.CAB");
  EXPECT_TRUE(run.SettingsFromFile);
  run.SourceWasExtracted = true;
  TakeUp();
  EXPECT_EQ(page().SettingsFromFilePath.Text(), "[IN_PACKAGE]\\KTECFG.CAB");
}

TEST_F(PackageSettingsTest, AtTheOlderLevelSettingsInsideDoNotCount) {
  run.ProductInstalled = false;
  run.ProductIs700 = true;
  PutInside();
  TakeUp();
  EXPECT_THAT(unpacked, ElementsAre("C:\\Temp\\run\\KTECFG.CAB"));
  EXPECT_FALSE(run.SettingsFromFile);
  EXPECT_EQ(run.ConfigSourceName, "ZED_SettingsFromSystem");
  // Without the product there is no live system to read from.
  EXPECT_FALSE(run.SettingsFromSystem);
}

TEST_F(PackageSettingsTest, WithoutAnyTheLiveSystemIsTheSource) {
  TakeUp();
  EXPECT_THAT(unpacked, IsEmpty());
  EXPECT_THAT(Messages(), IsEmpty());
  ExpectLiveSource();
}

TEST_F(PackageSettingsTest, SettingsOfAnotherLanguageAreToldAndLeft) {
  language = "0407";
  PutInside();
  TakeUp();
  EXPECT_THAT(
      Messages(),
      ElementsAre("message Language of the configuration file does not match that of the installation "
                  "package."));
  ExpectLiveSource();
  EXPECT_FALSE(machine.registry.HasKey(Hive::kCurrentUser, kStagingBranch));
}

TEST_F(PackageSettingsTest, ThePackageOpenedBeforeLeavesNoFolderToWorkIn) {
  run.ConfigAppDataFolder = "C:\\Temp\\removed\\config";
  language = "0407";
  PutInside();
  PutBeside();
  TakeUp();
  ExpectLiveSource();
}

TEST_F(PackageSettingsTest, DifferencesOnlyAreNotedForThePages) {
  run.ProductInstalled = false;
  delta = 1;
  PutInside();
  TakeUp();
  EXPECT_TRUE(run.SaveDifferencesOnly);
  EXPECT_TRUE(run.SettingsFromFile);
}

TEST_F(PackageSettingsTest, TheCabinetGoesIntoThePackage) {
  TakeUp();
  PutInside();
  EXPECT_TRUE(AddProductSettings(app.Context()));
  EXPECT_THAT(Rows("select `Name` from `Binary` where `Name` = 'ktecfg.cab'"), ElementsAre("ktecfg.cab"));
  EXPECT_TRUE(Db().ExtractBinary("ktecfg.cab", "C:\\out.cab").value_or(false));
  EXPECT_EQ(machine.files.Content("C:\\out.cab"), "new cabinet");
  EXPECT_THAT(machine.files.Tree(run.DestinationFolder), IsEmpty());
}

TEST_F(PackageSettingsTest, AtTheOlderLevelTheCabinetGoesBeside) {
  run.ProductIs700 = true;
  TakeUp();
  EXPECT_TRUE(AddProductSettings(app.Context()));
  EXPECT_EQ(machine.files.Content("C:\\Out\\KTECFG.CAB"), "new cabinet");
  EXPECT_THAT(Rows("select `Name` from `Binary` where `Name` = 'ktecfg.cab'"), IsEmpty());
}

TEST_F(PackageSettingsTest, WithoutACabinetThePackageKeepsItsOldOneAndTheBuildStops) {
  TakeUp();
  PutInside();
  maker_works = false;
  machine.transcript.Take();
  EXPECT_FALSE(AddProductSettings(app.Context()));
  EXPECT_THAT(Messages(),
              ElementsAre("message Could not copy settings file.  Kestrane Enterprise application "
                          "settings cannot be added to the installation package."));
  EXPECT_TRUE(Db().ExtractBinary("ktecfg.cab", "C:\\out.cab").value_or(false));
  EXPECT_EQ(machine.files.Content("C:\\out.cab"), "cabinet");
}

}  // namespace
}  // namespace kw
