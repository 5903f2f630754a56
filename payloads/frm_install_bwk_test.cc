#include "payloads/frm_install_bwk.h"

#include "pages/frm_install_options.h"
#include "pages/open_package_test_support.h"
#include "payloads/frm_configure_bwk.h"

namespace kw {
namespace {

using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FileOperation;
using ::testing::IsEmpty;
using testing::PageFixture;
using Arguments = platform::testing::FakeClosedLibraries::Arguments;

constexpr const char* kData = "C:\\Temp\\run\\BWKData";
constexpr const char* kPrefs = "C:\\Temp\\run\\config\\BulwarkPrefs.TXT";
constexpr const char* kScratch = "C:\\Temp\\run\\config\\TMP\\BulwarkPrefs.TXT";
const std::string kReplacePrefs =
    "question This installation package contains another set of Tamrix Bulwark configuration. Click OK to "
    "replace your changes with these settings, or Cancel to keep your changes. [OK|Cancel] default=OK -> ";

struct InstallBwkTest : PageFixture<frmInstallBWK>, ::testing::Test {
  InstallBwkTest() {
    for (const char* name : {"Bulwark8.exe", "Other.exe"})
      machine.files.AddFile(std::string("C:\\Bulwark\\") + name, std::string("installer ") + name);
    machine.libraries.On("BWKExtractInstallerFilesA", [this](const Arguments& arguments) {
      for (const auto& [name, bytes] : inside) machine.files.AddFile(arguments[1] + "\\" + name, bytes);
    });
    machine.libraries.On("BWKCreateInstallerA", [this](const Arguments& arguments) {
      made = arguments;
      machine.files.AddFile(arguments[0], "rewritten");
    });
  }
  /// The source carries the firewall, which its Setup.ini names.
  void CarryFirewall(const std::string& location = "\\BWK") {
    machine.files.AddFile("C:\\Source\\BWK\\Bulwark.EXE", "packed installer");
    WriteStartup("szBWKLocation=" + location + "\r\n");
  }
  /// Opens the page and chooses the installer.
  void Choose(const std::string& path = "C:\\Bulwark\\Bulwark8.exe") {
    Open();
    page().InstallBWK.UserClick();
    page().SourcePath.UserType(path);
    Take();
  }
  std::string Saved() { return machine.files.Content("C:\\Out\\BWK\\Bulwark.EXE"); }
  void Dialog(std::function<void(frmConfigureBWK&)> act) {
    host.modals.push_back([act](ui::Form& form) { act(dynamic_cast<frmConfigureBWK&>(form)); });
    page().ConfigureSettings.UserClick();
  }

  /// What the library unpacks of an installer.
  std::map<std::string, std::string> inside = {
      {"MDF.INI", "[General]\r\nInstallPath=D:\\Wall\r\nSTC=1\r\nLangID=0407\r\nSilent=1\r\n"},
      {"BulwarkPrefs.TXT", "preferences of the installer"}};
  Arguments made;
};

TEST_F(InstallBwkTest, APackageWithoutTheFirewallLeavesThePageOff) {
  Open();
  EXPECT_FALSE(page().InstallBWK.Checked());
  EXPECT_TRUE(page().InstallBWK.Enabled());
  for (const ui::Control* control :
       {static_cast<ui::Control*>(&page().EnterSourcePath), static_cast<ui::Control*>(&page().SourcePath),
        static_cast<ui::Control*>(&page().SourceBrowse), static_cast<ui::Control*>(&page().ManagedBySTC),
        static_cast<ui::Control*>(&page().UseDefaultDirectory),
        static_cast<ui::Control*>(&page().SpecifyCustomDirectory),
        static_cast<ui::Control*>(&page().InstallDirectory),
        static_cast<ui::Control*>(&page().InstallBrowse)})
    EXPECT_FALSE(control->Enabled()) << control->Name();
  EXPECT_TRUE(page().ConfigureSettings.Enabled());
  EXPECT_EQ(page().SourcePath.Back(), ui::BackColor::kFace);
  EXPECT_THAT(Choices<frmInstallBWK>(),
              ElementsAre("\tTamrix Bulwark has not been configured for installation.",
                          "\tTamrix Bulwark properties were not configured.", ""));
}

TEST_F(InstallBwkTest, ChoicesOpenTheirControlsAndTakeTheFocus) {
  Open();
  page().InstallBWK.UserClick();
  EXPECT_THAT(Take(), ElementsAre("focus frmInstallBWK.SourcePath"));
  EXPECT_TRUE(page().SourcePath.Enabled());
  EXPECT_EQ(page().SourcePath.Back(), ui::BackColor::kWindow);
  EXPECT_FALSE(page().InstallDirectory.Enabled());
  page().SpecifyCustomDirectory.UserClick();
  EXPECT_THAT(Take(), ElementsAre("focus frmInstallBWK.InstallDirectory"));
  EXPECT_TRUE(page().InstallBrowse.Enabled());
  page().UseDefaultDirectory.UserClick();
  EXPECT_FALSE(page().InstallDirectory.Enabled());
}

TEST_F(InstallBwkTest, TheFirewallOfAnOpenedPackageIsShownWithItsDescriptor) {
  for (const char* location : {"\\BWK", "BWK", ""}) {
    CarryFirewall(location);
    Open();
    EXPECT_THAT(Choices<frmInstallBWK>(),
                ElementsAre("\tTamrix Bulwark installation file: C:\\Source\\BWK\\Bulwark.EXE",
                            "\tCustom installation folder: D:\\Wall",
                            "\tTamrix Bulwark properties were not configured.", ""));
    EXPECT_TRUE(page().ManagedBySTC.Checked());
    EXPECT_EQ(run.BulwarkLocale, "0407");
    EXPECT_TRUE(page().InstallDirectory.Enabled());
  }
}

TEST_F(InstallBwkTest, AnExtractedSourceShowsTheMarker) {
  CarryFirewall();
  run.SourceWasExtracted = true;
  Open();
  EXPECT_EQ(page().SourcePath.Text(), "[IN_PACKAGE]\\Bulwark.EXE");
  Next();
  EXPECT_FALSE(page().Visible());
}

TEST_F(InstallBwkTest, ADescriptorWithoutKeysGivesTheDefaults) {
  inside = {{"MDF.INI", "[General]\r\n"}};
  CarryFirewall();
  Open();
  EXPECT_EQ(run.BulwarkLocale, "0000");
  EXPECT_FALSE(page().ManagedBySTC.Checked());
  EXPECT_TRUE(page().UseDefaultDirectory.Value());
  EXPECT_THAT(Choices<frmInstallBWK>(), Contains("\tUse default installation folder."));
}

TEST_F(InstallBwkTest, TheLanguageOfAPackageOpenedBeforeIsForgotten) {
  run.BulwarkLocale = "0407";
  Open();
  EXPECT_EQ(run.BulwarkLocale, "0000");
}

TEST_F(InstallBwkTest, AnInstallerWithoutADescriptorLeavesTheValuesOfTheLastOne) {
  Choose();
  EXPECT_EQ(page().InstallDirectory.Text(), "D:\\Wall");
  inside.clear();
  page().SourcePath.UserType("C:\\Bulwark\\Other.exe");
  EXPECT_FALSE(machine.files.FileExists(std::string(kData) + "\\MDF.INI"));
  EXPECT_EQ(page().InstallDirectory.Text(), "D:\\Wall");
  table.Get<frmInstallOptions>().SilentInstall.SetChecked(true);
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(made, IsEmpty());
  EXPECT_EQ(Saved(), "installer Other.exe");
}

TEST_F(InstallBwkTest, TypingReadsAnInstallerOnlyWhenItExistsAndIsAnother) {
  Open();
  page().InstallBWK.UserClick();
  Take();
  for (const char* text : {"C:\\Bulwark\\Bulwark8", "[IN_PACKAGE]\\x", ""}) page().SourcePath.UserType(text);
  EXPECT_THAT(Take(), IsEmpty());
  page().SourcePath.UserType("C:\\Bulwark\\Bulwark8.exe");
  EXPECT_THAT(Take(), ElementsAre("call bulwarkcfg.BWKExtractInstallerFilesA(\"C:\\Bulwark\\Bulwark8.exe\", "
                                  "\"C:\\Temp\\run\\BWKData\") -> 1"));
  page().SourcePath.UserType("");
  page().SourcePath.UserType("C:\\Bulwark\\Bulwark8.exe");
  EXPECT_THAT(Take(), IsEmpty());
}

TEST_F(InstallBwkTest, PreferencesUnderTheSingularNameAskWhetherTheyReplaceTheChanges) {
  inside["BulwarkPref.TXT"] = "singular";
  run.changes.ConfigChangedBulwark = true;
  machine.files.AddFile(kPrefs, "mine");
  machine.files.AddFile(kScratch, "scratch");
  Open();
  page().InstallBWK.UserClick();
  Take();
  machine.dialogs.answers = {Answer::kCancel};
  page().SourcePath.UserType("C:\\Bulwark\\Bulwark8.exe");
  EXPECT_THAT(Steps(), ElementsAre(kReplacePrefs + "Cancel"));
  EXPECT_EQ(machine.files.Content(kPrefs), "mine");
  EXPECT_TRUE(run.changes.ConfigChangedBulwark);
  machine.dialogs.answers = {Answer::kOk};
  page().SourcePath.UserType("C:\\Bulwark\\Other.exe");
  EXPECT_THAT(Steps(), ElementsAre(kReplacePrefs + "OK"));
  EXPECT_EQ(machine.files.Content(kPrefs), "preferences of the installer");
  EXPECT_FALSE(machine.files.FileExists(kScratch));
  EXPECT_FALSE(run.changes.ConfigChangedBulwark);
}

TEST_F(InstallBwkTest, PreferencesUnderThePluralNameAloneAskNothing) {
  run.changes.ConfigChangedBulwark = true;
  machine.files.AddFile(kPrefs, "mine");
  Choose();
  EXPECT_TRUE(run.changes.ConfigChangedBulwark);
  EXPECT_EQ(machine.files.Content(kPrefs), "mine");
}

TEST_F(InstallBwkTest, WithoutChangesNothingIsAskedEither) {
  inside["BulwarkPref.TXT"] = "singular";
  Choose();
  EXPECT_EQ(page().SourcePath.Text(), "C:\\Bulwark\\Bulwark8.exe");
}

TEST_F(InstallBwkTest, BothBrowseButtonsFillTheirBoxes) {
  Open();
  page().InstallBWK.UserClick();
  page().SpecifyCustomDirectory.UserClick();
  Take();
  machine.dialogs.files = {"C:\\Bulwark\\Bulwark8.exe"};
  machine.dialogs.folders = {"E:\\Wall"};
  page().SourceBrowse.UserClick();
  page().InstallBrowse.UserClick();
  EXPECT_THAT(Steps(), ElementsAre("file-dialog Enter a path to the Tamrix Bulwark installation file | "
                                   "Installation Files (*.exe)|*.exe |  -> C:\\Bulwark\\Bulwark8.exe",
                                   "folder-dialog Select Installation Folder | D:\\Wall -> E:\\Wall"));
  EXPECT_EQ(page().InstallDirectory.Text(), "E:\\Wall");
}

TEST_F(InstallBwkTest, LeavingAsksForAnInstallerThatExists) {
  Open();
  page().InstallBWK.UserClick();
  Take();
  const std::string refusal = "message Please enter a path to the Tamrix Bulwark installation file.";
  for (const char* text : {"", "C:\\none.exe"}) {
    page().SourcePath.UserType(text);
    EXPECT_THAT(Next(), ElementsAre(refusal, "focus frmInstallBWK.SourcePath"));
  }
  EXPECT_TRUE(page().Visible());
}

TEST_F(InstallBwkTest, LeavingAsksForACustomFolderThatIsLocal) {
  inside.clear();
  Choose();
  page().SpecifyCustomDirectory.UserClick();
  Take();
  EXPECT_THAT(Next(), ElementsAre("message Please enter a custom installation folder or choose the default.",
                                  "focus frmInstallBWK.InstallDirectory"));
  page().InstallDirectory.UserType("Wall");
  EXPECT_THAT(Next(),
              ElementsAre("message Installation folder Wall is not valid.  Please specify a valid local "
                          "path.",
                          "focus frmInstallBWK.InstallDirectory"));
}

TEST_F(InstallBwkTest, AnythingBehindTheMarkerIsThePackagesInstaller) {
  CarryFirewall();
  Open();
  page().SourcePath.UserType("[IN_PACKAGE] whatever");
  Next();
  EXPECT_FALSE(page().Visible());
  table.Get<frmInstallOptions>().SilentInstall.SetChecked(true);
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(Saved(), "packed installer");
}

TEST_F(InstallBwkTest, LeavingMovesAScratchFileIntoPlaceEvenWithoutTheFirewall) {
  Open();
  machine.files.AddFile(kScratch, "changed");
  Next();
  EXPECT_EQ(machine.files.Content(kPrefs), "changed");
  EXPECT_FALSE(machine.files.FileExists(kScratch));
}

TEST_F(InstallBwkTest, WithNothingChangedTheInstallerIsCopiedByteForByte) {
  Choose();
  table.Get<frmInstallOptions>().SilentInstall.SetChecked(true);
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(made, IsEmpty());
  EXPECT_EQ(Saved(), "installer Bulwark8.exe");
  EXPECT_TRUE(run.BulwarkIncluded);
  EXPECT_EQ(SetupIni(), "[Startup]\r\nProduct=Kestrane\r\nszBWKLocation=\\BWK\r\n");
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("BWK\\Bulwark.EXE"));
}

TEST_F(InstallBwkTest, AnUnvisitedPageLeavesThePackagesInstallerAsItIs) {
  CarryFirewall();
  page().ReadConfig();
  table.Get<frmInstallOptions>().SilentInstall.SetChecked(true);
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(made, IsEmpty());
  EXPECT_EQ(Saved(), "packed installer");
}

TEST_F(InstallBwkTest, AnotherFolderMakesANewInstallerAndLeavesTheGivenOne) {
  Choose();
  table.Get<frmInstallOptions>().SilentInstall.SetChecked(true);
  page().SpecifyCustomDirectory.UserClick();
  page().InstallDirectory.UserType("E:\\Wall");
  Next();
  machine.files.AddFile(std::string(kData) + "\\Bulwark8.exe", "from before");
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(made, ElementsAre("C:\\Temp\\run\\BWKData\\Bulwark8.exe", kPrefs, "E:\\Wall", "1", "1"));
  EXPECT_EQ(Saved(), "rewritten");
  EXPECT_EQ(machine.files.Content("C:\\Bulwark\\Bulwark8.exe"), "installer Bulwark8.exe");
  EXPECT_EQ(machine.files.Content(kPrefs), "preferences of the installer");
}

TEST_F(InstallBwkTest, EachOfTheOtherThreeConditionsMakesANewInstaller) {
  Choose();
  Next();
  frmInstallOptions& options = table.Get<frmInstallOptions>();
  // Silent before the console flag.
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(made, ElementsAre("C:\\Temp\\run\\BWKData\\Bulwark8.exe", kPrefs, "D:\\Wall", "0", "1"));
  made.clear();
  options.SilentInstall.SetChecked(true);
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(made, IsEmpty());
  page().ManagedBySTC.SetChecked(false);
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(made, ElementsAre("C:\\Temp\\run\\BWKData\\Bulwark8.exe", kPrefs, "D:\\Wall", "1", "0"));
  EXPECT_FALSE(run.BulwarkIncluded);
  made.clear();
  page().ManagedBySTC.SetChecked(true);
  run.changes.ConfigChangedBulwark = true;
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(made.size(), 5u);
}

TEST_F(InstallBwkTest, WithoutPreferencesAndFolderTheyArePassedAsNone) {
  inside = {{"MDF.INI", "[General]\r\nSilent=1\r\n"}};
  Choose();
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(made, ElementsAre("C:\\Temp\\run\\BWKData\\Bulwark8.exe", "", "null", "0", "0"));
}

TEST_F(InstallBwkTest, PreferencesThatCannotBeLookedAtFailTheStep) {
  Choose();
  Next();
  machine.files.FailNext(FileOperation::kGetFile, kPrefs, kErrorIo);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(made, IsEmpty());
}

TEST_F(InstallBwkTest, AnInstallerThatCannotBeMadeFailsTheStep) {
  Choose();
  Next();
  machine.libraries.Return("BWKCreateInstallerA", 0);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\BWK\\Bulwark.EXE"));
  machine.libraries.Raise("BWKCreateInstallerA", 53);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(Steps(), IsEmpty());
}

TEST_F(InstallBwkTest, AnInstallerThatWentAwayFailsTheStep) {
  Choose();
  Next();
  ASSERT_TRUE(machine.files.DeleteFile("C:\\Bulwark\\Bulwark8.exe", true).ok());
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_FALSE(machine.files.FolderExists("C:\\Out\\BWK"));
}

TEST_F(InstallBwkTest, ACopyForTheNewInstallerThatFailsFailsTheStep) {
  Choose();
  Next();
  machine.files.FailNext(FileOperation::kCopyFile, "C:\\Bulwark\\Bulwark8.exe", kErrorDiskFull);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(made, IsEmpty());
}

TEST_F(InstallBwkTest, ACopyToTheDestinationThatFailsFailsTheStep) {
  Choose();
  table.Get<frmInstallOptions>().SilentInstall.SetChecked(true);
  Next();
  machine.files.FailNext(FileOperation::kCopyFile, "C:\\Bulwark\\Bulwark8.exe", kErrorDiskFull);
  EXPECT_FALSE(page().SaveConfig());
}

TEST_F(InstallBwkTest, AProgramThatLayInTheDestinationBeforeDoesNotHideAFailedCopy) {
  Choose();
  table.Get<frmInstallOptions>().SilentInstall.SetChecked(true);
  Next();
  machine.files.AddFile("C:\\Out\\BWK\\Bulwark.EXE", "of an earlier run");
  machine.files.FailNext(FileOperation::kCopyFile, "C:\\Bulwark\\Bulwark8.exe", kErrorDiskFull);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_FALSE(run.BulwarkProgramCopied);
}

TEST_F(InstallBwkTest, AReadOnlyProgramOfAnEarlierRunIsReplaced) {
  machine.files.AddFile("C:\\Out\\BWK\\Bulwark.EXE", "of an earlier run", true);
  Choose();
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(Saved(), "rewritten");
}

TEST_F(InstallBwkTest, AProgramOfTheGivenNameIsTakenOutOfTheDestination) {
  machine.files.AddFile("C:\\Out\\BWK\\Bulwark8.exe", "of an earlier run");
  Choose();
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_THAT(machine.files.Tree("C:\\Out"), ElementsAre("BWK\\Bulwark.EXE"));
}

TEST_F(InstallBwkTest, AProgramThatLiesInTheDestinationAlreadyIsNotTheRunsToDelete) {
  machine.files.AddFile("C:\\Out\\BWK\\Bulwark.EXE", "of an earlier run");
  Choose("C:\\Out\\BWK\\Bulwark.EXE");
  table.Get<frmInstallOptions>().SilentInstall.SetChecked(true);
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(Saved(), "of an earlier run");
  EXPECT_FALSE(run.BulwarkProgramCopied);
}

TEST_F(InstallBwkTest, AProgramThatLiesThereUnderAnotherNameStaysBesideItsCopy) {
  machine.files.AddFile("C:\\Out\\BWK\\Bulwark8.exe", "given");
  Choose("C:\\Out\\BWK\\Bulwark8.exe");
  table.Get<frmInstallOptions>().SilentInstall.SetChecked(true);
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(machine.files.Content("C:\\Out\\BWK\\Bulwark8.exe"), "given");
  EXPECT_EQ(Saved(), "given");
  EXPECT_TRUE(run.BulwarkProgramCopied);
}

TEST_F(InstallBwkTest, ASetupIniThatCannotBeWrittenFailsTheStepWithoutAWord) {
  Choose();
  Next();
  machine.files.FailAlways(FileOperation::kWriteFile, run.WorkingSetupIniPath, kErrorDiskFull);
  EXPECT_FALSE(page().SaveConfig());
  WriteStartup("szBWKLocation=\\BWK\r\n");
  page().InstallBWK.SetChecked(false);
  EXPECT_FALSE(page().SaveConfig());
  EXPECT_THAT(Steps(), IsEmpty());
}

TEST_F(InstallBwkTest, LeavingByEveryWayRunsTheChecks) {
  Open();
  page().InstallBWK.UserClick();
  for (ui::Button* button : {page().Next.get(), page().Back.get(), page().Finsh.get()}) {
    Take();
    button->UserClick();
    EXPECT_THAT(Take(), ElementsAre("message Please enter a path to the Tamrix Bulwark installation file.",
                                    "focus frmInstallBWK.SourcePath"));
  }
}

TEST_F(InstallBwkTest, AReadOnlyInstallerIsRewrittenOnItsCopy) {
  machine.files.AddFile("C:\\Bulwark\\Bulwark8.exe", "read-only installer", true);
  Choose();
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(Saved(), "rewritten");
  EXPECT_TRUE(machine.files.IsReadOnly("C:\\Bulwark\\Bulwark8.exe"));
}

TEST_F(InstallBwkTest, AnUncheckedFirewallIsTakenOutOfSetupIni) {
  CarryFirewall();
  Open();
  page().InstallBWK.UserClick();
  Next();
  ASSERT_TRUE(page().SaveConfig());
  EXPECT_EQ(SetupIni(), "[Startup]\r\n");
  EXPECT_THAT(machine.files.Tree("C:\\Out"), IsEmpty());
  EXPECT_FALSE(run.BulwarkIncluded);
}

TEST_F(InstallBwkTest, SettingsFileModeOffersThePreferencesAlone) {
  run.PackageMode = false;
  CarryFirewall();
  page().ReadConfig();
  EXPECT_FALSE(page().InstallBWK.Enabled());
  EXPECT_FALSE(page().InstallBWK.Checked());
  EXPECT_TRUE(page().ConfigureSettings.Enabled());
  EXPECT_THAT(Choices<frmInstallBWK>(), ElementsAre("\tTamrix Bulwark properties were not configured.", ""));
}

TEST_F(InstallBwkTest, TheDialogBeginsWithTheFirstPreferencesThatAreFound) {
  Choose();
  const std::string installed =
      machine.system.SpecialFolder(35) + "\\Orvantic\\Tamrix Bulwark\\BulwarkPrefs.TXT";
  ASSERT_TRUE(machine.files.DeleteFile(std::string(kData) + "\\BulwarkPrefs.TXT", true).ok());
  const auto shown = [&] {
    std::string text;
    Dialog([&](frmConfigureBWK& dialog) {
      text = dialog.STCConsoleCtrl81.Text();
      dialog.Cancel.UserClick();
    });
    return text;
  };
  EXPECT_EQ(shown(), "");
  machine.files.AddFile(installed, "of the machine");
  EXPECT_EQ(shown(), "of the machine");
  machine.files.AddFile(std::string(kData) + "\\BulwarkPrefs.TXT", "of the installer");
  EXPECT_EQ(shown(), "of the installer");
  machine.files.AddFile(kPrefs, "of the run");
  EXPECT_EQ(shown(), "of the run");
  machine.files.AddFile(kScratch, "of the last dialog");
  EXPECT_EQ(shown(), "of the last dialog");
  EXPECT_EQ(shown(), "of the run");
}

TEST_F(InstallBwkTest, OkStoresTheChangesAndTheyReachThePreferencesWhenThePageIsLeft) {
  Choose();
  Dialog([](frmConfigureBWK& dialog) {
    EXPECT_EQ(dialog.Caption(), "Tamrix Bulwark Configuration");
    dialog.STCConsoleCtrl81.UserType("changed");
    dialog.OK.UserClick();
  });
  EXPECT_THAT(Take(), ElementsAre("modal frmConfigureBWK", "modal-end frmConfigureBWK"));
  EXPECT_TRUE(run.changes.ConfigChangedBulwark);
  EXPECT_EQ(machine.files.Content(kScratch), "changed");
  EXPECT_FALSE(machine.files.FileExists(kPrefs));
  Next();
  EXPECT_EQ(machine.files.Content(kPrefs), "changed");
  EXPECT_THAT(Choices<frmInstallBWK>(), Contains("\tTamrix Bulwark properties were configured."));
}

TEST_F(InstallBwkTest, ReadOnlyPreferencesOfTheMachineCanBeChangedInTheDialog) {
  Choose();
  ASSERT_TRUE(machine.files.DeleteFile(std::string(kData) + "\\BulwarkPrefs.TXT", true).ok());
  const std::string installed =
      machine.system.SpecialFolder(35) + "\\Orvantic\\Tamrix Bulwark\\BulwarkPrefs.TXT";
  machine.files.AddFile(installed, "of the machine", true);
  Dialog([](frmConfigureBWK& dialog) {
    dialog.STCConsoleCtrl81.UserType("changed");
    dialog.OK.UserClick();
  });
  EXPECT_THAT(Take(), ElementsAre("modal frmConfigureBWK", "modal-end frmConfigureBWK"));
  Next();
  EXPECT_EQ(machine.files.Content(kPrefs), "changed");
  EXPECT_EQ(machine.files.Content(installed), "of the machine");
  EXPECT_TRUE(machine.files.IsReadOnly(installed));
}

TEST_F(InstallBwkTest, CancelDropsTheScratchFile) {
  Choose();
  Dialog([](frmConfigureBWK& dialog) {
    dialog.STCConsoleCtrl81.UserType("changed");
    dialog.Cancel.UserClick();
  });
  EXPECT_FALSE(machine.files.FileExists(kScratch));
  EXPECT_FALSE(run.changes.ConfigChangedBulwark);
}

TEST_F(InstallBwkTest, ClosingTheDialogKeepsTheScratchFileAndChangesNothing) {
  Choose();
  Dialog([](frmConfigureBWK& dialog) { dialog.UserClose(); });
  EXPECT_TRUE(machine.files.FileExists(kScratch));
  EXPECT_FALSE(run.changes.ConfigChangedBulwark);
}

TEST_F(InstallBwkTest, HelpOpensTheFirewallsOwnFile) {
  Choose();
  Dialog([](frmConfigureBWK& dialog) {
    dialog.Help.UserClick();
    dialog.Cancel.UserClick();
  });
  EXPECT_THAT(machine.dialogs.help_files, ElementsAre("C:\\Kitwright\\Bulwark.chm"));
}

}  // namespace
}  // namespace kw
