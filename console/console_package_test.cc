#include "console/console_package.h"

#include "console/console_test_support.h"
#include "payloads/frm_beaconry_server.h"

namespace kw {
namespace {

using testing::ConsoleFixture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

struct ConsolePackageTest : ConsoleFixture, ::testing::Test {
  /// The alert server lies in the destination.
  void IncludeAlertServer() {
    run.BeaconryFileList = std::make_unique<FileList>(FileList{{"BCN470.MSI", "BCN470.OVP", "README.TXT"}});
    run.BeaconryLocale = "0411";
    run.BeaconrySourceFolder = "C:\\Beaconry";
    machine.files.AddFile("C:\\Beaconry\\BCN470.OVP", "plug-in");
    machine.files.AddFile("C:\\Out\\BCN\\BCN470.msi", "nested");
    table.Get<frmBeaconryServer>().InstallBeaconry.SetChecked(true);
  }
  /// The firewall lies in the destination, to be managed by the console.
  void IncludeFirewall() {
    run.BulwarkIncluded = true;
    run.BulwarkLocale = "040C";
    machine.files.AddFile("C:\\Out\\BWK\\Bulwark.EXE", "installer");
  }
  std::string Install(const std::string& folder) { return machine.files.Content(folder + "\\Install.pkg"); }
};

TEST_F(ConsolePackageTest, APlainPackageListsWhatWasCopied) {
  CreateConsolePackage(Context());
  EXPECT_EQ(Signed("C:\\Out"), Catalog("0409", {"KTE710.MSI", "SETUP.INI", "SETUP.EXE"}, "SETUP.EXE, /q"));
  EXPECT_EQ(Install("C:\\Out"), Descriptor("0409", "setup /Q", {"KTE710.MSI", "SETUP.INI", "SETUP.EXE"}));
  EXPECT_THAT(machine.files.Tree("C:\\Out"),
              ElementsAre("Install.pkg", "KT710Det.TxS", "PkgCatalog.z", "SETUP.EXE"));
  // The combined list takes the descriptor's name, the list of copied files does not.
  EXPECT_THAT(run.DestinationFileList->names, ElementsAre("KTE710.MSI", "SETUP.INI", "SETUP.EXE"));
}

TEST_F(ConsolePackageTest, TheOlderLevelHasItsOwnTemplates) {
  run.PackageIs700 = true;
  CreateConsolePackage(Context());
  EXPECT_TRUE(machine.files.FileExists("C:\\Out\\KT700Det.TxS"));
  EXPECT_EQ(Signed("C:\\Out"), Catalog("0409", {"KTE710.MSI", "SETUP.INI", "SETUP.EXE"}, "SETUP.EXE, /q"));
  EXPECT_EQ(Install("C:\\Out"), Descriptor("0409", "setup /Q", {"KTE710.MSI", "SETUP.INI", "SETUP.EXE"}));
}

TEST_F(ConsolePackageTest, CompanionsHaveCataloguesOfTheirOwnAndStandInTheProductsByTheirPaths) {
  IncludeAlertServer();
  IncludeFirewall();
  CreateConsolePackage(Context());
  EXPECT_THAT(
      Take(),
      ElementsAre("run[hidden] \"C:\\Kitwright\\StcSign.exe\" \"C:\\Out\\BCN\\PkgCatalog.XML\" .txs /c -> 0",
                  "run[hidden] \"C:\\Kitwright\\StcSign.exe\" \"C:\\Out\\BWK\\PkgCatalog.XML\" .txs /c -> 0",
                  "run[hidden] \"C:\\Kitwright\\StcSign.exe\" \"C:\\Out\\PkgCatalog.XML\" .txs /c -> 0"));
  EXPECT_EQ(Signed("C:\\Out\\BCN"), Catalog("0411", {"BCN470.MSI", "README.TXT"}, "none"));
  EXPECT_EQ(Signed("C:\\Out\\BWK"), Catalog("040C", {"Bulwark.EXE"}, "Bulwark.EXE"));
  EXPECT_EQ(Install("C:\\Out\\BWK"), Descriptor("040C", "Bulwark.EXE", {"Bulwark.EXE"}));
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\BCN\\Install.pkg"));
  const std::vector<std::string> all = {"KTE710.MSI",      "SETUP.INI",       "SETUP.EXE",
                                        "BCN\\BCN470.MSI", "BCN\\README.TXT", "BWK\\Bulwark.EXE"};
  EXPECT_EQ(Signed("C:\\Out"), Catalog("0409", all, "SETUP.EXE, /q"));
  EXPECT_EQ(Install("C:\\Out"), Descriptor("0409", "setup /Q", all));
  EXPECT_THAT(run.BulwarkFileList->names, ElementsAre("Bulwark.EXE", "INSTALL.PKG", "BULWARK80.OVP"));
  EXPECT_EQ(machine.files.Content("C:\\Out\\BWK\\BULWARK80.OVP"), "script BWK\\BULWARK80.OVP");
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\BULWARK80.OVP"));
}

TEST_F(ConsolePackageTest, AFirewallThatTheConsoleDoesNotManageIsLeftOut) {
  machine.files.AddFile("C:\\Out\\BWK\\Bulwark.EXE", "installer");
  run.BulwarkFileList = std::make_unique<FileList>();
  CreateConsolePackage(Context());
  EXPECT_THAT(machine.files.Tree("C:\\Out\\BWK"), ElementsAre("Bulwark.EXE"));
  EXPECT_EQ(Signed("C:\\Out"), Catalog("0409", {"KTE710.MSI", "SETUP.INI", "SETUP.EXE"}, "SETUP.EXE, /q"));
}

TEST_F(ConsolePackageTest, AFailedCompanionCatalogueLeavesTheOthers) {
  IncludeAlertServer();
  ASSERT_TRUE(machine.files.DeleteFile(Template("BCN", "BC470Det.TxS"), true).ok());
  CreateConsolePackage(Context());
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\BCN\\PkgCatalog.z"));
  EXPECT_TRUE(machine.files.FileExists("C:\\Out\\PkgCatalog.z"));
}

TEST_F(ConsolePackageTest, AnOptimisedPackageListsItsOneFileAndHasThePlugInsBesideIt) {
  IncludeAlertServer();
  IncludeFirewall();
  // Of an earlier run.
  machine.files.AddFile("C:\\Out\\BCN470.OVP", "old", true);
  machine.files.AddFile("C:\\Out\\BULWARK80.OVP", "old", true);
  run.DestinationFileList = std::make_unique<FileList>(FileList{{"SETUP.EXE"}});
  CreateOptimizedConsolePackage(Context());
  EXPECT_EQ(Signed("C:\\Out"), Catalog("0409", {"SETUP.EXE"}, "SETUP.EXE, /q"));
  EXPECT_EQ(Install("C:\\Out"), Descriptor("0409", "setup /Q", {"SETUP.EXE"}));
  EXPECT_EQ(machine.files.Content("C:\\Out\\BCN470.OVP"), "plug-in");
  EXPECT_EQ(machine.files.Content("C:\\Out\\BULWARK80.OVP"), "script BWK\\BULWARK80.OVP");
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\BWK\\PkgCatalog.z"));
  EXPECT_THAT(run.DestinationFileList->names, ElementsAre("SETUP.EXE", "INSTALL.PKG"));
}

TEST_F(ConsolePackageTest, AnOptimisedPackageWithoutCompanionsHasNoPlugIns) {
  run.BeaconrySourceFolder = "C:\\Beaconry";
  machine.files.AddFile("C:\\Beaconry\\BCN470.OVP", "plug-in");
  CreateOptimizedConsolePackage(Context());
  EXPECT_THAT(machine.files.Tree("C:\\Out"),
              ElementsAre("Install.pkg", "KT710Det.TxS", "PkgCatalog.z", "SETUP.EXE"));
}

struct SettingsConsolePackageTest : ConsolePackageTest {
  SettingsConsolePackageTest() {
    run.PackageMode = false;
    run.ProductLocale = "0407";
    run.DestinationFileList = std::make_unique<FileList>(FileList{{"KTECFG.CAB"}});
  }
};

TEST_F(SettingsConsolePackageTest, TheInstallScriptComesFirstAndThenTheCabinetsThatAreThere) {
  machine.files.AddFile("C:\\Out\\KTECFG_W.CAB", "w");
  machine.files.AddFile("C:\\Out\\KTECFG.CAB", "c");
  CreateSettingsConsolePackage(Context());
  EXPECT_EQ(Signed("C:\\Out"),
            Catalog("0407", {"ZEDInstall.txs", "KTECFG.CAB", "KTECFG_W.CAB"}, "ZEDInstall.txs"));
  EXPECT_EQ(machine.files.Content("C:\\Out\\ZEDInstall.txs"), "script ZED\\710\\ZEDInstall.txs");
  EXPECT_EQ(machine.files.Content("C:\\Out\\KT710Det.TxS"), "script KTE\\710\\KT710Det.TxS");
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\Install.pkg"));
  EXPECT_THAT(run.DestinationFileList->names, ElementsAre("KTECFG.CAB", "ZEDINSTALL.TXS"));
}

TEST_F(SettingsConsolePackageTest, TheOlderLevelAndANeutralLanguage) {
  run.ProductIs700 = true;
  run.ProductLocale = "0000";
  machine.files.AddFile("C:\\Out\\KTECFG.CAB", "c");
  machine.files.AddFile("C:\\Out\\KTECFG_S.CAB", "s");
  CreateSettingsConsolePackage(Context());
  EXPECT_EQ(Signed("C:\\Out"),
            Catalog("0000", {"ZEDInstall.txs", "KTECFG.CAB", "KTECFG_S.CAB"}, "ZEDInstall.txs"));
  EXPECT_TRUE(machine.files.FileExists("C:\\Out\\KT700Det.TxS"));
}

TEST_F(SettingsConsolePackageTest, AMissingInstallScriptIsTold) {
  ASSERT_TRUE(machine.files.DeleteFile(Template("ZED\\710", "ZEDInstall.txs"), true).ok());
  CreateSettingsConsolePackage(Context());
  EXPECT_THAT(Take(),
              ElementsAre("message Could not find install script file.  You will be unable to add this "
                          "installation package to the Stratocon site manager."));
}

TEST_F(SettingsConsolePackageTest, ADetectionScriptOnlyOfTheOtherLevelIsTold) {
  ASSERT_TRUE(machine.files.DeleteFile(Template("KTE\\710", "KT710Det.TxS"), true).ok());
  machine.files.AddFile(Template("ZED\\710", "KT710Det.TxS"), "in the wrong folder");
  CreateSettingsConsolePackage(Context());
  EXPECT_THAT(Take(),
              ElementsAre("message Could not find detection script file.  You will be unable to add this "
                          "installation package to the Stratocon site manager."));
}

}  // namespace
}  // namespace kw
