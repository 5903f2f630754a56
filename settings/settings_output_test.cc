#include "settings/settings_output.h"

#include "pages/frm_registry_settings.h"
#include "settings/frm_auto_update.h"
#include "settings/frm_scheduled_scan.h"
#include "settings/settings_test_support.h"

namespace kw {
namespace {

using platform::testing::FileOperation;
using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FakeCommand;
using testing::Hive;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::RegistryValue;
using testing::SettingsFixture;

constexpr const char* kEncipherFailed =
    "message Could not encrypt the configuration file, Kestrane Enterprise application settings cannot be "
    "added to the configuration package.";
constexpr const char* kCopyFailed =
    "message Could not copy settings file.  Kestrane Enterprise application settings cannot be added to the "
    "configuration package.";

/// Settings-file mode, ready for the build: `regedit` exports, `MakeCab.exe` leaves a cabinet.
struct SettingsOutputTest : SettingsFixture, ::testing::Test {
  SettingsOutputTest() {
    run.DestinationFolder = "C:\\Out";
    run.ProductLocale = "0409";
    machine.files.AddFolder(run.DestinationFolder);
    machine.processes.On("regedit /s /e", [this](const FakeCommand&) {
      machine.files.AddFile(Folder("KTE700.REG"), "exported");
    });
    machine.processes.On("C:\\Kitwright\\MakeCab.exe", [this](const FakeCommand&) {
      machine.files.AddFile(Folder(run.SettingsFileName), "cabinet");
    });
    table.Get<frmRegistrySettings>().EnsureLoaded();
    Take();
  }
  std::string Folder(const std::string& file) const { return run.ConfigAppDataFolder + "\\" + file; }
  bool Add() { return AddProductSettings(app.Context()); }
  std::vector<std::string> Messages() {
    std::vector<std::string> messages;
    for (const std::string& line : Take()) {
      if (line.starts_with("message") || line.starts_with("question")) messages.push_back(line);
    }
    return messages;
  }
  uint32_t Root(const char* name) {
    return machine.registry.Get(Hive::kCurrentUser, Staging(""), name).Dword(77);
  }
  /// A value in the live branch and in the staging branch.
  void Both(const std::string& below, const char* name, const std::string& live, const std::string& staged) {
    machine.registry.SetText(Hive::kLocalMachine, Live(below), name, live);
    machine.registry.SetText(Hive::kCurrentUser, Staging(below), name, staged);
  }
  bool Staged(const std::string& below, const char* name) {
    return machine.registry.Get(Hive::kCurrentUser, Staging(below), name).type != platform::kRegNone;
  }
  /// The lines of the directive file from the thirteenth on: what the cabinet holds.
  std::vector<std::string> Members() {
    EXPECT_TRUE(MakeSettingsCabinet(app.Context()).ok());
    std::vector<std::string> names;
    const std::string text = machine.files.Content(Folder("KTE700.DDF"));
    for (size_t line = 0, start = 0; start < text.size(); ++line) {
      const size_t end = text.find("\r\n", start);
      if (line >= 12) names.push_back(text.substr(start, end - start));
      start = end + 2;
    }
    for (std::string& name : names) {
      const std::string head = "\"" + Folder("");
      EXPECT_TRUE(name.starts_with(head) && name.ends_with('"')) << name;
      name = name.substr(head.size(), name.size() - head.size() - 1);
    }
    return names;
  }
  frmRegistrySettings& RegistryPage() { return table.Get<frmRegistrySettings>(); }
};

TEST_F(SettingsOutputTest, TheWholeConfigurationIsFlushedInOrderAndDelivered) {
  machine.registry.SetText(Hive::kLocalMachine, LiveVersion("\\Tasks\\{A}"), "szTaskName", "Weekly");
  machine.registry.SetText(Hive::kLocalMachine, LiveVersion("\\Tasks\\{B}"), "szTaskName", "Fetch");
  machine.registry.SetDword(Hive::kLocalMachine, LiveVersion("\\Tasks\\{B}"), "wTaskType", 5);
  table.Get<frmScheduledScan>().ReadConfig();
  table.Get<frmAutoUpdate>().ReadConfig();
  Take();
  EXPECT_TRUE(Add());
  EXPECT_THAT(
      Commands(),
      ElementsAre(
          "OasCfg32 /FLUSHSETTINGS /ZEDW", "TxDesk /ALERT /FLUSHSETTINGS /ZEDW",
          "TxDesk /UIOPTIONS /FLUSHSETTINGS /ZEDW", "OdsCfg32 /FLUSHSETTINGS /ZEDW",
          "OdsCfg32 /FLUSHSETTINGS /TASK {A} /ZEDW", "TxFetch /FLUSHSETTINGS /TASK {B} /TASKNAME Fetch /ZEDW",
          "regedit /s /e \"" + Folder("KTE700.REG") + "\" \"HKEY_CURRENT_USER\\SOFTWARE\\Orvantic\\ZED",
          "C:\\Kitwright\\MakeCab.exe /f " + Folder("KTE700.DDF")));
  EXPECT_EQ(machine.processes.commands[6].style, platform::WindowStyle::kHidden);
  EXPECT_EQ(machine.processes.commands[7].style, platform::WindowStyle::kHidden);
  EXPECT_THAT(machine.transcript.Lines(), Contains("call TxMailScan.Emal_ConfigZED(window, 1, 2, 1) -> 1"));
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(machine.files.Content(Folder("KTE700.CFG")), "enciphered:exported");
  EXPECT_EQ(machine.files.Content("C:\\Out\\KTECFG.CAB"), "cabinet");
  ASSERT_NE(run.DestinationFileList, nullptr);
  EXPECT_THAT(run.DestinationFileList->names, ElementsAre("KTECFG.CAB"));
}

TEST_F(SettingsOutputTest, AFileSourceFlushesNothing) {
  run.SettingsFromSystem = false;
  table.Get<frmScheduledScan>().ReadConfig();
  EXPECT_TRUE(Add());
  EXPECT_EQ(Commands().size(), 2u);
}

TEST_F(SettingsOutputTest, DifferencesAreStrippedBeforeTasksAreFlushedWhole) {
  run.SaveDifferencesOnly = true;
  machine.registry.SetText(Hive::kLocalMachine, LiveVersion("\\DefaultTask"), "szTaskName", "Scan");
  table.Get<frmScheduledScan>().ReadConfig();
  Both("\\Kestrane Enterprise\\CurrentVersion\\UI", "same", "1", "1");
  machine.processes.On("OdsCfg32", [this](const FakeCommand&) {
    EXPECT_FALSE(HasStaging("\\Kestrane Enterprise\\CurrentVersion\\UI"));
    machine.registry.SetText(Hive::kCurrentUser, StagingVersion("\\DefaultTask"), "szTaskName", "Scan");
  });
  EXPECT_TRUE(Add());
  EXPECT_EQ(Commands().front(), "OdsCfg32 /FLUSHSETTINGS /ZEDW");
  EXPECT_TRUE(HasStaging("\\Kestrane Enterprise\\CurrentVersion\\DefaultTask"));
  EXPECT_EQ(Root("DeltaConfig"), 1u);
}

TEST_F(SettingsOutputTest, TheRootTellsWhatTheFileIs) {
  table.Get<frmScheduledScan>().EnsureLoaded();
  table.Get<frmScheduledScan>().ReplaceTasks->SetValue(true);
  table.Get<frmAutoUpdate>().EnsureLoaded();
  EXPECT_TRUE(Add());
  EXPECT_EQ(Root("AddScheduledTasks"), 0u);
  EXPECT_EQ(Root("AddUpdateTasks"), 1u);
  EXPECT_EQ(Root("DeltaConfig"), 0u);
  EXPECT_EQ(machine.registry.Get(Hive::kCurrentUser, Staging(""), "Language"), RegistryValue::OfText("0409"));
}

TEST_F(SettingsOutputTest, TheIgnoreLocaleMarkMakesTheFileNeutral) {
  machine.registry.SetText(Hive::kLocalMachine, LiveVersion(""), "bZEDIgnoreLocale", "1");
  EXPECT_TRUE(Add());
  EXPECT_EQ(run.ProductLocale, "0409");  // no DWORD
  machine.registry.SetDword(Hive::kLocalMachine, LiveVersion(""), "bZEDIgnoreLocale", 0);
  EXPECT_TRUE(Add());
  EXPECT_EQ(run.ProductLocale, "0409");
  machine.registry.SetDword(Hive::kLocalMachine, LiveVersion(""), "bZEDIgnoreLocale", 2);
  EXPECT_TRUE(Add());
  EXPECT_EQ(run.ProductLocale, "0000");
  EXPECT_EQ(machine.registry.Get(Hive::kCurrentUser, Staging(""), "Language").Text(), "0000");
}

TEST_F(SettingsOutputTest, NoSettingsStillMakeACabinetWithTheRootValues) {
  run.SettingsFromSystem = false;
  run.ProductLocale = "0000";
  EXPECT_TRUE(Add());
  EXPECT_EQ(machine.registry.Dump(Hive::kCurrentUser, Staging("")).size(), 5u);
  EXPECT_EQ(machine.files.Content("C:\\Out\\KTECFG.CAB"), "cabinet");
}

TEST_F(SettingsOutputTest, AnExportThatLeftNothingShowsAtTheCipher) {
  machine.processes.On("regedit /s /e", 1);
  EXPECT_FALSE(Add());
  EXPECT_THAT(Messages(), ElementsAre(kEncipherFailed));
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\KTECFG.CAB"));
  run.PackageMode = true;
  EXPECT_FALSE(Add());
  EXPECT_THAT(Messages(), ElementsAre("message Could not encrypt the configuration file, Kestrane Enterprise "
                                      "application settings cannot be added to the installation package."));
}

TEST_F(SettingsOutputTest, WhatAnImportLeftIsNotTakenForAnExportThatFailed) {
  run.SettingsFromSystem = false;
  machine.files.AddFile(Folder("KTE700.REG"), "imported");
  machine.processes.On("regedit /s /e", 1);
  EXPECT_FALSE(Add());
  EXPECT_THAT(Messages(), ElementsAre(kEncipherFailed));
}

TEST_F(SettingsOutputTest, AnImportedExportThatCannotGoStopsTheBuild) {
  machine.files.AddFile(Folder("KTE700.REG"), "imported");
  machine.files.FailNext(FileOperation::kDeleteFile, Folder("KTE700.REG"), kErrorAccessDenied);
  EXPECT_FALSE(Add());
  EXPECT_THAT(Messages(), ElementsAre(kEncipherFailed));
}

TEST_F(SettingsOutputTest, ACabinetInsideTheImportedOneIsNotDelivered) {
  machine.files.AddFile(Folder("KTECFG.CAB"), "of the source");
  machine.processes.On("C:\\Kitwright\\MakeCab.exe", 1);
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_FALSE(Add());
  EXPECT_EQ(Messages().back(), kCopyFailed);
}

TEST_F(SettingsOutputTest, EveryFileThatDoesNotEncipherStopsWithTheMessage) {
  for (const char* plain : {"SiteList.XML", "BulwarkPrefs.TXT", "own.reg"}) {
    machine.files.AddFile(Folder(plain), "plain");
    if (plain == std::string("own.reg")) {
      RegistryPage().RegFile.SetText(Folder(plain));
      RegistryPage().ReadConfig();
      RegistryPage().RegFile.SetText(Folder(plain));
      RegistryPage().Show();
      RegistryPage().Next->UserClick();
      Take();
    }
    machine.files.FailNext(FileOperation::kReadFile, Folder(plain), kErrorAccessDenied);
    EXPECT_FALSE(Add()) << plain;
    EXPECT_THAT(Messages(), ElementsAre(kEncipherFailed)) << plain;
    EXPECT_TRUE(machine.files.DeleteFile(Folder(plain), true).ok());
  }
}

TEST_F(SettingsOutputTest, AFileThatCannotBeLookedAtIsNotTakenForAMissingOne) {
  machine.files.AddFile(Folder("SiteList.XML"), "plain");
  machine.files.FailNext(FileOperation::kGetFile, Folder("SiteList.XML"), kErrorAccessDenied);
  EXPECT_FALSE(Add());
  EXPECT_THAT(Messages(), ElementsAre(kEncipherFailed));
  machine.files.FailNext(FileOperation::kGetFile, Folder("SiteList.CFG"), kErrorAccessDenied);
  EXPECT_FALSE(Add());
  EXPECT_THAT(Messages(), ElementsAre(kCopyFailed));
}

TEST_F(SettingsOutputTest, AMakerThatLeavesNoCabinetShowsAtTheDelivery) {
  machine.processes.On("C:\\Kitwright\\MakeCab.exe", 1);
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_FALSE(Add());
  EXPECT_THAT(Messages(), ElementsAre("question Could not copy the source file " + Folder("KTECFG.CAB") +
                                          ".  Please verify that the file exists and that you have "
                                          "permissions to access it. [Retry|Cancel] default=Retry -> Cancel",
                                      kCopyFailed));
}

TEST_F(SettingsOutputTest, ADirectiveFileThatCannotBeWrittenFailsTheDelivery) {
  machine.files.FailAlways(FileOperation::kWriteFile, Folder("KTE700.DDF"), kErrorAccessDenied);
  EXPECT_FALSE(Add());
  EXPECT_THAT(Messages(), ElementsAre(kCopyFailed));
}

TEST_F(SettingsOutputTest, TheDirectiveFileHasItsLinesInOrder) {
  run.SettingsFileName = "KTECFG_S.CAB";
  EXPECT_TRUE(MakeSettingsCabinet(app.Context()).ok());
  EXPECT_EQ(machine.files.Content(Folder("KTE700.DDF")),
            ".OPTION EXPLICIT\r\n"
            ".Set Cabinet=ON\r\n"
            ".Set Compress=ON\r\n"
            ".Set ReservePerCabinetSize=6144\r\n"
            ".Set DiskDirectoryTemplate=\r\n"
            ".Set CompressionType=MSZIP\r\n"
            ".Set MaxDiskSize=CDRom\r\n"
            ".Set CompressionLevel=7\r\n"
            ".Set RptFileName=C:\\Temp\\run\\config\\KTE700.RPT\r\n"
            ".Set CompressionMemory=21\r\n"
            ".Set CabinetNameTemplate=\"KTECFG_S.CAB\"\r\n"
            ".Set DiskDirectoryTemplate=\"C:\\Temp\\run\\config\"\r\n"
            "\"C:\\Temp\\run\\config\\KTE700.CFG\"\r\n");
}

TEST_F(SettingsOutputTest, TheSettingsAreListedEvenWhenTheyAreMissing) {
  EXPECT_THAT(Members(), ElementsAre("KTE700.CFG"));
}

TEST_F(SettingsOutputTest, OneRegistryFileOrThoseOfTheSystemsAreListed) {
  for (const char* name : {"ZED_GEN", "ZED_NT", "ZED_2K", "ZED_XP", "SiteList", "BulwarkPrefs"}) {
    machine.files.AddFile(Folder(std::string(name) + ".CFG"), "x");
  }
  EXPECT_THAT(Members(), ElementsAre("KTE700.CFG", "SiteList.CFG", "BulwarkPrefs.CFG"));
  RegistryPage().RegFile.SetText("C:\\a.reg");
  RegistryPage().RegFileNT.SetText("C:\\b.reg");
  RegistryPage().RegFileXP.SetText("C:\\c.reg");
  EXPECT_THAT(Members(), ElementsAre("KTE700.CFG", "ZED_GEN.CFG", "SiteList.CFG", "BulwarkPrefs.CFG"));
  RegistryPage().MultipleFiles.SetValue(true);
  // The file of the system whose box is empty lies there and stays out.
  EXPECT_THAT(Members(),
              ElementsAre("KTE700.CFG", "ZED_NT.CFG", "ZED_XP.CFG", "SiteList.CFG", "BulwarkPrefs.CFG"));
  RegistryPage().RegFile2000.SetText("C:\\d.reg");
  EXPECT_TRUE(machine.files.DeleteFile(Folder("ZED_NT.CFG"), true).ok());
  EXPECT_THAT(Members(),
              ElementsAre("KTE700.CFG", "ZED_2K.CFG", "ZED_XP.CFG", "SiteList.CFG", "BulwarkPrefs.CFG"));
}

TEST_F(SettingsOutputTest, ARegistryFileThatVanishedIsPassedOver) {
  machine.files.AddFile("C:\\Files\\own.reg", "REGEDIT4");
  RegistryPage().Show();
  RegistryPage().RegFile.SetText("C:\\Files\\own.reg");
  RegistryPage().Next->UserClick();
  EXPECT_TRUE(machine.files.DeleteFile("C:\\Files\\own.reg", true).ok());
  EXPECT_TRUE(Add());
  EXPECT_THAT(Members(), ElementsAre("KTE700.CFG"));
}

TEST_F(SettingsOutputTest, ARegistryFileThatVanishedDoesNotBringBackTheOneOfTheSource) {
  machine.files.AddFile(Folder("ZED_GEN.CFG"), "of the source");
  machine.files.AddFile("C:\\Files\\own.reg", "REGEDIT4");
  RegistryPage().Show();
  RegistryPage().RegFile.SetText("C:\\Files\\own.reg");
  RegistryPage().Next->UserClick();
  EXPECT_TRUE(machine.files.DeleteFile("C:\\Files\\own.reg", true).ok());
  EXPECT_TRUE(Add());
  EXPECT_THAT(Members(), ElementsAre("KTE700.CFG"));
}

TEST_F(SettingsOutputTest, EqualValuesGoAndSoDoKeysWithoutAny) {
  Both("\\Shared\\Deep", "same", "1", "1");
  Both("\\Kestrane Enterprise", "same", "1", "1");
  Both("\\Kestrane Enterprise", "other", "1", "2");
  machine.registry.SetDword(Hive::kLocalMachine, Live("\\Kestrane Enterprise"), "type", 0x31);
  machine.registry.Set(Hive::kCurrentUser, Staging("\\Kestrane Enterprise"), "type",
                       {platform::kRegBinary, std::string("1\0\0\0", 4)});
  machine.registry.SetText(Hive::kCurrentUser, Staging("\\Kestrane Enterprise"), "mine", "1");
  machine.registry.SetText(Hive::kCurrentUser, Staging("\\New"), "value", "1");
  StripUnchangedValues(app.Context(), "");
  EXPECT_FALSE(HasStaging("\\Shared"));
  EXPECT_FALSE(Staged("\\Kestrane Enterprise", "same"));
  EXPECT_TRUE(Staged("\\Kestrane Enterprise", "other"));
  EXPECT_TRUE(Staged("\\Kestrane Enterprise", "type"));
  EXPECT_TRUE(Staged("\\Kestrane Enterprise", "mine"));
  // A key that the source lacks is all difference.
  EXPECT_TRUE(Staged("\\New", "value"));
}

TEST_F(SettingsOutputTest, AnUnchangedBranchGoesAltogether) {
  Both("", "same", "1", "1");
  Both("\\a\\b\\c", "same", "1", "1");
  StripUnchangedValues(app.Context(), "");
  EXPECT_FALSE(HasStaging(""));
}

TEST_F(SettingsOutputTest, TasksAndRecipientsAreKeptWhole) {
  for (const char* key : {"\\x\\Tasks\\{A}", "\\x\\defaulttask", "\\x\\Alerts\\RECIPIENTS"}) {
    Both(key, "same", "1", "1");
  }
  Both("\\x\\Alerts", "same", "1", "1");
  StripUnchangedValues(app.Context(), "");
  EXPECT_TRUE(Staged("\\x\\Tasks\\{A}", "same"));
  EXPECT_TRUE(Staged("\\x\\DefaultTask", "same"));
  EXPECT_TRUE(Staged("\\x\\Alerts\\Recipients", "same"));
  EXPECT_FALSE(Staged("\\x\\Alerts", "same"));
}

TEST_F(SettingsOutputTest, AValueThatDoesNotFitTheBufferStays) {
  const std::string fits(254, 'x');  // the terminator counts
  const std::string long_text(255, 'x');
  Both("\\x", "fits", fits, fits);
  Both("\\x", "long", long_text, long_text);
  StripUnchangedValues(app.Context(), "");
  EXPECT_FALSE(Staged("\\x", "fits"));
  EXPECT_TRUE(Staged("\\x", "long"));
}

TEST_F(SettingsOutputTest, ADefaultValueAndALongNameAreNeverStripped) {
  const std::string fits(254, 'n');
  const std::string long_name(255, 'n');
  Both("\\x", "", "same", "same");
  Both("\\x", fits.c_str(), "same", "same");
  Both("\\x", long_name.c_str(), "same", "same");
  StripUnchangedValues(app.Context(), "");
  EXPECT_TRUE(Staged("\\x", ""));
  EXPECT_FALSE(Staged("\\x", fits.c_str()));
  EXPECT_TRUE(Staged("\\x", long_name.c_str()));
}

TEST_F(SettingsOutputTest, TextsThatDifferInTheirTerminatorDiffer) {
  machine.registry.Set(Hive::kLocalMachine, Live("\\x"), "v", {platform::kRegSz, "a", 0});
  machine.registry.SetText(Hive::kCurrentUser, Staging("\\x"), "v", "a");
  StripUnchangedValues(app.Context(), "");
  EXPECT_TRUE(Staged("\\x", "v"));
}

TEST_F(SettingsOutputTest, ADriveRootTakesTheFile) {
  run.DestinationFolder = "C:";
  EXPECT_TRUE(Add());
  EXPECT_EQ(machine.files.Content("C:\\KTECFG.CAB"), "cabinet");
}

TEST_F(SettingsOutputTest, AFileSourceIsComparedWithItsCopy) {
  run.SettingsFromSystem = false;
  Both("\\x", "live", "1", "1");
  machine.registry.SetText(Hive::kCurrentUser, Staging("\\x"), "imported", "1");
  machine.registry.SetText(Hive::kCurrentUser, "SOFTWARE\\Orvantic\\ZED_Backup\\x", "imported", "1");
  StripUnchangedValues(app.Context(), "");
  EXPECT_TRUE(Staged("\\x", "live"));
  EXPECT_FALSE(Staged("\\x", "imported"));
}

}  // namespace
}  // namespace kw
