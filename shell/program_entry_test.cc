#include "shell/program_entry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shell/shell_test_support.h"

namespace kw {
namespace {

using platform::Hive;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kUpgradeCode = "{75951FF9-0087-4981-A526-56CB59DA17D9}";
constexpr const char* kFeatureKeys[] = {"Console", "EmailScan", "OnAccessScanner", "OnDemandScanner",
                                        "AutoUpdate"};

struct ProgramEntryTest : ::testing::Test, testing::ShellFixture {
  ProgramEntryTest() {
    run.ProductInstalled = run.AnyFeatureInstalled = false;
    run.HasConsoleFeature = run.HasEmailScanFeature = run.HasOnAccessFeature = false;
    run.HasOnDemandFeature = run.HasAutoUpdateFeature = false;
    SetValue("Software\\Microsoft\\Internet Explorer", "Version", "1.0");
    products = {{kUpgradeCode, "{1}", {}}};
    for (const char* feature : kFeatureKeys) products[0].features[feature] = 3;
    machine.services.create_installer = [this]() -> Result<std::unique_ptr<platform::Installer>> {
      if (installers_left-- == 0) return Error{kErrorFunctionFailed, "No installer on this system."};
      return machine.MakeInstaller();
    };
  }
  void SetValue(const std::string& key, const std::string& name, const std::string& text) {
    machine.registry.SetText(Hive::kLocalMachine, key, name, text);
  }
  /// Runs the entry and gives what it did but for calls of the closed libraries.
  std::vector<std::string> Enter() {
    app.Run();
    std::vector<std::string> lines = Take();
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("call "); });
    return lines;
  }
  std::vector<platform::testing::FakeProducts::Product>& products = machine.products.products;
  int installers_left = 2;
};

TEST_F(ProgramEntryTest, AWholeProductOpensTheWelcomePage) {
  SetValue("SOFTWARE\\Orvantic\\RDX\\Kestrane Enterprise\\CurrentVersion", "szInstallDir", "C:\\Product");
  run.DestinationFolder = "C:\\left";
  run.DestinationInUse = true;
  EXPECT_THAT(Enter(), ElementsAre("page frmWelcome"));
  EXPECT_TRUE(run.ProductInstalled && run.AnyFeatureInstalled && run.HasConsoleFeature &&
              run.HasEmailScanFeature && run.HasOnAccessFeature && run.HasOnDemandFeature &&
              run.HasAutoUpdateFeature);
  EXPECT_FALSE(run.ProductIs700);
  EXPECT_EQ(run.ProductInstallDir, "C:\\Product");
  EXPECT_TRUE(run.Installer && run.InstallerSecond);
  EXPECT_EQ(run.DestinationFolder, "");
  EXPECT_FALSE(run.DestinationInUse);
}

TEST_F(ProgramEntryTest, ASecondInstanceIsRefusedBeforeAnythingElse) {
  machine.system.previous_instance = true;
  machine.libraries.Return("IsAdmin", 0);
  app.Run();
  EXPECT_THAT(Take(),
              ElementsAre("message Another instance of Kitwright is currently running on this machine.  You "
                          "may only run one instance of Kitwright at a time.  This instance will now exit.",
                          "end"));
}

TEST_F(ProgramEntryTest, AUserWithoutAdministratorRightsIsRefusedBeforeAnInstallerExists) {
  machine.libraries.Return("IsAdmin", 0);
  EXPECT_THAT(Enter(), ElementsAre("message You are not currently logged in as an administrator.  Kitwright "
                                   "requires administrator rights, the program will now exit.",
                                   "end"));
  EXPECT_EQ(installers_left, 2);
}

TEST_F(ProgramEntryTest, AnEmptyBrowserVersionAndAMissingOneAreTheSameRefusal) {
  const auto refusal = ElementsAre(
      "message You may only run the Kitwright with IE4 or above.  The program will now exit.", "end");
  SetValue("Software\\Microsoft\\Internet Explorer", "Version", "");
  EXPECT_THAT(Enter(), refusal);
  EXPECT_EQ(installers_left, 2);
}

TEST_F(ProgramEntryTest, AMissingBrowserKeyIsRefused) {
  auto key = machine.services.registry->OpenKey(Hive::kLocalMachine, "Software\\Microsoft\\Internet Explorer",
                                                platform::kKeyAll);
  ASSERT_TRUE((*key)->DeleteValue("Version").ok());
  EXPECT_THAT(Enter(), Contains("message You may only run the Kitwright with IE4 or above.  The program will "
                                "now exit."));
}

TEST_F(ProgramEntryTest, MemoryIsComparedSignedAndRefusesNothing) {
  const std::pair<int32_t, bool> kCases[] = {
      {255'999'999, false}, {256'000'000, true}, {INT32_MIN, false}, {-1, false}, {INT32_MAX, true}};
  for (const auto& [memory, enough] : kCases) {
    machine.system.memory = memory;
    installers_left = 2;
    app.Run();
    EXPECT_EQ(run.EnoughMemory, enough) << memory;
    EXPECT_TRUE(table.FormByName("frmWelcome").Visible());
  }
}

TEST_F(ProgramEntryTest, AProductOfAnotherUpgradeCodeCountsAsNone) {
  products[0].upgrade_code = "{0F64050B-7ABB-446C-99CC-CA70A67FFD7D}";
  EXPECT_THAT(
      Enter(),
      ElementsAre("message Kestrane Enterprise is not currently installed on this computer.  You must "
                  "install Kestrane Enterprise before running Kitwright.  This program will now exit.",
                  "end"));
}

TEST_F(ProgramEntryTest, OneMissingFeatureIsNamedInTheSingular) {
  products[0].features["AutoUpdate"] = 2;
  EXPECT_THAT(Enter(), ElementsAre("message Kestrane Enterprise's Updater is not currently installed on this "
                                   "computer.  You must install all Kestrane Enterprise features before "
                                   "running Kitwright.  This program will now exit.",
                                   "end"));
}

TEST_F(ProgramEntryTest, TwoMissingFeaturesAreJoinedByAnd) {
  products[0].features["OnAccessScanner"] = 1;
  products[0].features.erase("AutoUpdate");
  EXPECT_THAT(Enter(), Contains("message Kestrane Enterprise's On-Access Scan and Updater are not currently "
                                "installed on this computer.  You must install all Kestrane Enterprise "
                                "features before running Kitwright.  This program will now exit."));
}

TEST_F(ProgramEntryTest, ThreeMissingFeaturesAreListedWithACommaAndAnd) {
  for (const char* feature : {"Console", "OnAccessScanner", "AutoUpdate"}) products[0].features[feature] = 4;
  EXPECT_THAT(Enter(),
              Contains("message Kestrane Enterprise's Console, On-Access Scan and Updater are not "
                       "currently installed on this computer.  You must install all Kestrane "
                       "Enterprise features before running Kitwright.  This program will now exit."));
}

TEST_F(ProgramEntryTest, FeaturesMayComeFromDifferentProducts) {
  products[0].features["AutoUpdate"] = 2;
  products.push_back({kUpgradeCode, "{2}", {{"AutoUpdate", 3}}});
  EXPECT_THAT(Enter(), ElementsAre("page frmWelcome"));
  EXPECT_TRUE(run.HasAutoUpdateFeature && run.HasConsoleFeature);
}

TEST_F(ProgramEntryTest, TheConsolesPluginKeyAloneTellsTheLevel) {
  SetValue("SOFTWARE\\Orvantic\\Stratocon\\Application Plugins\\KESTRANE7000", "Language", "0409");
  Enter();
  EXPECT_TRUE(run.ProductIs700);
}

TEST_F(ProgramEntryTest, LeftOverBranchesAreGoneBeforeTheFirstPage) {
  run.changes.ConfigChangedUi = true;
  app.Run();
  EXPECT_THAT(Take(), ElementsAre(::testing::StartsWith("call zedutil.IsAdmin"),
                                  ::testing::HasSubstr("\"SOFTWARE\\Orvantic\\ZED_Backup\""),
                                  ::testing::HasSubstr("\"SOFTWARE\\Orvantic\\ZED\""), "page frmWelcome"));
  EXPECT_FALSE(run.changes.Any());
}

TEST_F(ProgramEntryTest, AnInstallerThatCannotBeMadeEndsTheProgramWithTheSystemsWords) {
  installers_left = 0;
  EXPECT_THAT(Enter(), ElementsAre("message No installer on this system.", "end"));
}

TEST_F(ProgramEntryTest, AMissingLibraryEndsTheProgramWithTheSystemsWords) {
  machine.libraries.Raise("IsAdmin", kErrorModuleNotFound);
  EXPECT_THAT(Enter(), ElementsAre("message The call of IsAdmin failed.", "end"));
}

}  // namespace
}  // namespace kw
