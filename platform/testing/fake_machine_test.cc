#include "platform/testing/fake_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kw::platform::testing {
namespace {

using ::testing::ElementsAre;

TEST(FakeMachine, BoxesAndDialogsAnswerFromQueuesAndLeaveLines) {
  FakeMachine machine;
  Dialogs& dialogs = *machine.services.dialogs;
  machine.dialogs.answers = {Answer::kOk, Answer::kRetry};
  machine.dialogs.files = {"C:\\new.exe"};
  dialogs.Message("one\r\ntwo");
  dialogs.CriticalMessage("bad");
  EXPECT_EQ(dialogs.Question("Sure?", {Answer::kOk, Answer::kCancel}, Answer::kCancel, ""), Answer::kOk);
  EXPECT_EQ(dialogs.Question("Again?", {Answer::kRetry, Answer::kCancel}, Answer::kRetry, "Copy"),
            Answer::kRetry);
  EXPECT_EQ(dialogs.OpenFile("Pick", "Programs (*.exe)|*.exe|", "C:\\", "old.exe"), "C:\\new.exe");
  EXPECT_EQ(dialogs.BrowseForFolder("Folder", "C:\\Temp"), "");
  EXPECT_TRUE(dialogs.ShowHelp("ZED.chm", 7).ok());
  EXPECT_THAT(
      machine.transcript.Take(),
      ElementsAre("message one<CR><LF>two", "message! bad", "question Sure? [OK|Cancel] default=Cancel -> OK",
                  "question(Copy) Again? [Retry|Cancel] default=Retry -> Retry",
                  "file-dialog Pick | Programs (*.exe)|*.exe| | C:\\old.exe -> C:\\new.exe",
                  "folder-dialog Folder | C:\\Temp -> cancel", "help 7"));
}

TEST(FakeMachine, AQuestionThatNobodyAnswersFailsTheTest) {
  FakeMachine machine;
  Answer answer = Answer::kYes;
  EXPECT_NONFATAL_FAILURE(
      answer = machine.dialogs.Question("Sure?", {Answer::kYes, Answer::kNo}, Answer::kYes, ""), "Sure?");
  EXPECT_EQ(answer, Answer::kNo);
  machine.dialogs.answers = {Answer::kYes};
  EXPECT_NONFATAL_FAILURE(
      answer = machine.dialogs.Question("Go?", {Answer::kOk, Answer::kCancel}, Answer::kOk, ""), "Yes");
  EXPECT_EQ(answer, Answer::kCancel);
}

TEST(FakeMachine, AChildProcessDoesWhatItsScriptSaysAtItsEnd) {
  FakeMachine machine;
  std::string seen;
  machine.processes.On("CabArc", 9);
  machine.processes.On("CabArc X ", {.exit_code = 3, .polls = 2, .run = [&](const FakeCommand& command) {
                                       seen = command.command_line + " in " + command.current_folder;
                                     }});
  auto child = machine.services.processes->Start("CABARC X a.cab", WindowStyle::kHidden);
  ASSERT_TRUE(child.ok());
  EXPECT_EQ((*child)->ExitCode(), kStillActive);
  EXPECT_EQ((*child)->ExitCode(), kStillActive);
  EXPECT_EQ(seen, "");
  EXPECT_EQ((*child)->ExitCode(), 3);
  EXPECT_EQ((*child)->ExitCode(), 3);
  EXPECT_EQ(seen, "CABARC X a.cab in C:\\Kitwright");
  EXPECT_THAT(machine.transcript.Take(), ElementsAre("run[hidden] CABARC X a.cab -> 3"));
  EXPECT_THAT(machine.processes.CommandLines(), ElementsAre("CABARC X a.cab"));
}

TEST(FakeMachine, AProgramCanFailToStart) {
  FakeMachine machine;
  machine.processes.On("gone", {.start_error = kErrorFileNotFound});
  EXPECT_EQ(machine.services.processes->Start("gone.exe", WindowStyle::kNormal).number(), kErrorFileNotFound);
  EXPECT_THAT(machine.transcript.Take(), ElementsAre());
}

TEST(FakeMachine, CallsOfClosedLibrariesLeaveLines) {
  FakeMachine machine;
  ClosedLibraries& libraries = *machine.services.libraries;
  machine.libraries.Return("IsAdmin", 0);
  machine.libraries.Raise("TxUnzip", 48);
  machine.registry.SetText(Hive::kCurrentUser, "SOFTWARE\\X\\Y", "v", "1");
  machine.registry.SetText(Hive::kCurrentUser, "A", "v", "1");
  std::vector<std::string> edited;
  machine.libraries.On("EditSiteList", [&](const auto& arguments) { edited = arguments; });
  EXPECT_EQ(libraries.IsAdmin().value_or(-1), 0);
  EXPECT_EQ(libraries.RegShDeleteKey(Hive::kCurrentUser, "SOFTWARE\\X").value_or(-1), 1);
  EXPECT_EQ(libraries.RegShCopyKey(Hive::kCurrentUser, "A", Hive::kLocalMachine, "B").value_or(-1), 1);
  EXPECT_EQ(libraries.TxUnzip("a.zip", "C:\\Temp").number(), 48);
  EXPECT_EQ(libraries.EditSiteList("help").value_or(-1), 1);
  EXPECT_EQ(libraries.BwkCreateInstaller("a", "", nullptr, 1, 0).value_or(-1), 1);
  std::string text = "abc";
  EXPECT_EQ(libraries.EncryptTextInPlace(text).value_or(-1), 1);
  EXPECT_EQ(text, "bcd");
  EXPECT_THAT(edited, ElementsAre("window", "0", "0", "help"));
  EXPECT_THAT(
      machine.transcript.Take(),
      ElementsAre("call zedutil.IsAdmin() -> 0",
                  "call zedutil.REG_SHDeleteKey(HKEY_CURRENT_USER, \"SOFTWARE\\X\") -> 1",
                  "call zedutil.REG_SHCopyKey(HKEY_CURRENT_USER, \"A\", HKEY_LOCAL_MACHINE\\B, 0) -> 1",
                  "call TxUnzip.TxUnzip(\"a.zip\", \"C:\\Temp\") -> raised",
                  "call TxPanelLib.EditSiteList(window, 0, \"0\", \"help\") -> 1",
                  "call bulwarkcfg.BWKCreateInstallerA(\"a\", \"\", null, 1, 0) -> 1",
                  "call zedutil.EncryptDecrypt(1, 0, 3, ***, ***) -> 1"));
}

TEST(FakeMachine, EncipheringFilesCanBeUndone) {
  FakeMachine machine;
  machine.files.AddFile("C:\\a", "plain");
  ClosedLibraries& libraries = *machine.services.libraries;
  EXPECT_EQ(libraries.EncryptDecryptFile(true, "C:\\a", "C:\\b").value_or(-1), 1);
  EXPECT_NE(machine.files.Content("C:\\b"), "plain");
  EXPECT_EQ(libraries.EncryptDecryptFile(false, "C:\\b", "C:\\c").value_or(-1), 1);
  EXPECT_EQ(machine.files.Content("C:\\c"), "plain");
  EXPECT_EQ(libraries.EncryptDecryptFile(false, "C:\\a", "C:\\d").value_or(-1), 0);
  EXPECT_EQ(libraries.EncryptDecryptFile(true, "C:\\missing", "C:\\d").value_or(-1), 0);
}

TEST(FakeMachine, TheRegistryFunctionsChangeTheRegistry) {
  FakeMachine machine;
  ClosedLibraries& libraries = *machine.services.libraries;
  machine.registry.SetText(Hive::kCurrentUser, "A\\B", "v", "1");
  machine.registry.AddKey(Hive::kCurrentUser, "A\\C\\D");
  EXPECT_EQ(libraries.RegShCopyKey(Hive::kCurrentUser, "A", Hive::kCurrentUser, "Z").value_or(-1), 1);
  EXPECT_EQ(machine.registry.Get(Hive::kCurrentUser, "Z\\B", "v").Text(), "1");
  EXPECT_TRUE(machine.registry.HasKey(Hive::kCurrentUser, "Z\\C\\D"));
  EXPECT_EQ(libraries.RegShDeleteEmptyKey(Hive::kCurrentUser, "A").value_or(-1), 0);
  EXPECT_EQ(libraries.RegShDeleteEmptyKey(Hive::kCurrentUser, "A\\C").value_or(-1), 0);
  EXPECT_EQ(libraries.RegShDeleteEmptyKey(Hive::kCurrentUser, "Missing").value_or(-1), 1);
  EXPECT_EQ(libraries.RegShDeleteEmptyKeyEx(Hive::kCurrentUser, "A").value_or(-1), 0);
  EXPECT_FALSE(machine.registry.HasKey(Hive::kCurrentUser, "A\\C"));
  EXPECT_TRUE(machine.registry.HasKey(Hive::kCurrentUser, "A\\B"));
  EXPECT_EQ(libraries.RegShDeleteKey(Hive::kCurrentUser, "A").value_or(-1), 1);
  EXPECT_FALSE(machine.registry.HasKey(Hive::kCurrentUser, "A"));
  EXPECT_EQ(libraries.RegShDeleteKey(Hive::kCurrentUser, "A").value_or(-1), 1);
}

TEST(FakeMachine, DatabasesLieInItsFiles) {
  FakeMachine machine;
  auto installer = machine.services.create_installer();
  ASSERT_TRUE(installer.ok());
  auto database = (*installer)->OpenDatabase("C:\\Temp\\a.msi", OpenMode::kCreateDirect);
  ASSERT_TRUE(database.ok());
  EXPECT_TRUE(machine.files.FileExists("C:\\Temp\\A.msi"));
  EXPECT_EQ(machine.files.DeleteFile("C:\\Temp\\a.msi", true).number(), kErrorSharingViolation);
  database = Error{1, ""};
  EXPECT_TRUE(machine.files.DeleteFile("C:\\Temp\\a.msi", true).ok());
}

TEST(FakeMachine, ProductsAreWhatATestSays) {
  FakeMachine machine;
  machine.products.products = {{"{U}", "{P1}", {{"Console", 3}}}, {"{u}", "{P2}", {{"Console", 2}}}};
  auto installer = machine.MakeInstaller();
  EXPECT_THAT(installer->RelatedProducts("{U}"), ElementsAre("{P1}", "{P2}"));
  EXPECT_THAT(installer->RelatedProducts("{V}"), ElementsAre());
  EXPECT_EQ(installer->FeatureState("{p2}", "Console"), 2);
  EXPECT_EQ(installer->FeatureState("{P1}", "Updater"), -1);
}

TEST(FakeMachine, UniqueBytesCountUp) {
  FakeMachine machine;
  EXPECT_EQ((*machine.services.system->CreateGuid())[0], 1);
  EXPECT_EQ((*machine.services.system->CreateGuid())[0], 2);
  machine.system.guid_error = kErrorFunctionFailed;
  EXPECT_EQ(machine.services.system->CreateGuid().number(), kErrorFunctionFailed);
}

}  // namespace
}  // namespace kw::platform::testing
