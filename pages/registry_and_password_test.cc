#include "pages/frm_registry_settings.h"
#include "pages/frm_zed_password.h"
#include "pages/open_package_test_support.h"

namespace kw {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using testing::Hive;
using ::testing::Not;
using testing::PageFixture;

constexpr const char* kNotAgain =
    "message This file name cannot be changed because it was previously added to the installation package.  "
    "You may continue with this file as it is or choose a completely new file.";

struct RegistrySettingsTest : PageFixture<frmRegistrySettings>, ::testing::Test {
  RegistrySettingsTest() {
    machine.files.AddFile("C:\\Files\\extra.REG", "REGEDIT4");
    machine.files.AddFile("C:\\Files\\notes.txt", "x");
  }
  void AddSourceFile(const std::string& name, const std::string& bytes = "enciphered:REGEDIT4") {
    machine.files.AddFile(run.ConfigAppDataFolder + "\\" + name, bytes);
  }
};

TEST_F(RegistrySettingsTest, AFreshPageOffersOneFile) {
  Open();
  EXPECT_TRUE(page().SingleFile.Value());
  EXPECT_TRUE(page().RegFile.Enabled());
  EXPECT_FALSE(page().RegFileXP.Enabled());
  EXPECT_EQ(page().RegFileXP.Back(), ui::BackColor::kFace);
  EXPECT_THAT(Choices<frmRegistrySettings>(),
              ElementsAre("\tREG file (used for all operating systems): None", ""));
  page().MultipleFiles.UserClick();
  EXPECT_FALSE(page().RegFile.Enabled());
  EXPECT_TRUE(page().BrowseNT.Enabled());
  EXPECT_THAT(Choices<frmRegistrySettings>(),
              ElementsAre("\tREG file (used for Windows NT operating systems): None",
                          "\tREG file (used for Windows 2000 operating systems): None",
                          "\tREG file (used for Windows XP operating systems): None", ""));
}

TEST_F(RegistrySettingsTest, TheGeneralFileWinsOverThoseOfOneSystem) {
  AddSourceFile("ZED_GEN.CFG");
  AddSourceFile("ZED_NT.CFG");
  Open();
  EXPECT_TRUE(page().SingleFile.Value());
  EXPECT_EQ(page().RegFile.Text(), "[IN_PACKAGE]ZED_GEN.REG");
  EXPECT_EQ(page().RegFileNT.Text(), "");
  EXPECT_EQ(machine.files.Content(run.ConfigAppDataFolder + "\\ZED_GEN.REG"), "REGEDIT4");
}

TEST_F(RegistrySettingsTest, FilesOfTheSystemsAreTakenUp) {
  AddSourceFile("ZED_2K.CFG");
  AddSourceFile("ZED_XP.CFG");
  Open();
  EXPECT_TRUE(page().MultipleFiles.Value());
  EXPECT_EQ(page().RegFile2000.Text(), "[IN_PACKAGE]ZED_2K.REG");
  EXPECT_EQ(page().RegFileXP.Text(), "[IN_PACKAGE]ZED_XP.REG");
}

TEST_F(RegistrySettingsTest, AFileThatDoesNotDecipherIsToldAndStillShowsItsMarker) {
  AddSourceFile("ZED_GEN.CFG", "garbage");
  Open();
  EXPECT_THAT(
      machine.transcript.Lines(),
      Contains(
          "message Could not decrypt the configuration registry file.  The file will not be used.  Please "
          "specify a new registry file on the Registry settings page."));
  EXPECT_EQ(page().RegFile.Text(), "[IN_PACKAGE]ZED_GEN.REG");
  EXPECT_FALSE(machine.files.FileExists(page().ChosenSlots()[0]->path));
}

TEST_F(RegistrySettingsTest, TypingOverAMarkerRestoresItOnce) {
  AddSourceFile("ZED_GEN.CFG");
  Open();
  page().RegFile.UserType("[IN_PACKAGE]other.REG");
  page().Next->UserClick();
  EXPECT_THAT(Steps(), ElementsAre(kNotAgain, "focus frmRegistrySettings.RegFile"));
  EXPECT_EQ(page().RegFile.Text(), "[IN_PACKAGE]ZED_GEN.REG");
  page().Next->UserClick();
  EXPECT_THAT(Steps(), Contains("page frmZEDPassword"));
}

TEST_F(RegistrySettingsTest, OnlyRegistryFilesAreTaken) {
  Open();
  page().RegFile.UserType("C:\\Files\\notes.txt");
  page().Next->UserClick();
  EXPECT_THAT(
      Steps(),
      ElementsAre("message The specified file C:\\Files\\notes.txt is not a registry file.  You can "
                  "only import registry files.  <CR><LF>Please enter the path to a valid registry file "
                  "and try again.",
                  "focus frmRegistrySettings.RegFile"));
  page().RegFile.UserType("C:\\Files\\none.reg");
  page().Next->UserClick();
  EXPECT_THAT(
      Steps(),
      Contains("message Registry file C:\\Files\\none.reg does not exist.  Please specify a valid path "
               "to an existing file."));
  page().RegFile.UserType("C:\\Files\\extra.REG");
  page().Next->UserClick();
  EXPECT_THAT(Steps(), Contains("page frmZEDPassword"));
  EXPECT_EQ(page().ChosenSlots()[0]->path, "C:\\Files\\extra.REG");
  EXPECT_THAT(Choices<frmRegistrySettings>(),
              ElementsAre("\tREG file (used for all operating systems):C:\\Files\\extra.REG", ""));
}

TEST_F(RegistrySettingsTest, SwitchingToOneFileLeavesTheOthersUnchecked) {
  Open();
  page().MultipleFiles.UserClick();
  page().RegFileNT.UserType("C:\\Files\\none.reg");
  page().Next->UserClick();
  EXPECT_THAT(
      Steps(),
      Contains("message Windows NT registry file C:\\Files\\none.reg does not exist.  Please specify a "
               "valid path to an existing file."));
  page().SingleFile.UserClick();
  page().Next->UserClick();
  EXPECT_THAT(Steps(), Contains("page frmZEDPassword"));
  EXPECT_EQ(page().RegFileNT.Text(), "C:\\Files\\none.reg");
}

TEST_F(RegistrySettingsTest, BrowseFillsItsOwnSlot) {
  Open();
  page().MultipleFiles.UserClick();
  machine.dialogs.files = {"C:\\Files\\extra.REG"};
  Take();
  page().BrowseXP.UserClick();
  EXPECT_THAT(Steps(),
              ElementsAre("file-dialog Select Registry File to Install | Registry Files (*.reg)|*.reg |  -> "
                          "C:\\Files\\extra.REG"));
  EXPECT_EQ(page().RegFileXP.Text(), "C:\\Files\\extra.REG");
}

TEST_F(RegistrySettingsTest, ACancelledBrowseKeepsTheText) {
  Open();
  page().RegFile.UserType("C:\\Files\\extra.REG");
  machine.dialogs.files = {""};
  page().Browse.UserClick();
  EXPECT_EQ(page().RegFile.Text(), "C:\\Files\\extra.REG");
}

TEST_F(RegistrySettingsTest, TheWordOfTheMarkersMessageFollowsTheMode) {
  AddSourceFile("ZED_XP.CFG");
  Open();
  run.PackageMode = false;
  page().RegFileXP.UserType("[IN_PACKAGE]ZED_NT.REG");
  page().Next->UserClick();
  EXPECT_THAT(Steps(),
              ElementsAre("message This file name cannot be changed because it was previously added to the "
                          "configuration package.  You may continue with this file as it is or choose a "
                          "completely new file.",
                          "focus frmRegistrySettings.RegFileXP"));
}

TEST_F(RegistrySettingsTest, AnEmptiedBoxForgetsItsFile) {
  AddSourceFile("ZED_GEN.CFG");
  Open();
  page().RegFile.UserType("");
  page().Next->UserClick();
  EXPECT_EQ(page().ChosenSlots()[0]->path, "");
}

TEST_F(RegistrySettingsTest, FilesOfTheSystemsAreNamedInTheReviewInTheirOrder) {
  Open();
  page().MultipleFiles.UserClick();
  page().RegFileXP.UserType("C:\\Files\\extra.REG");
  EXPECT_THAT(Choices<frmRegistrySettings>(),
              ElementsAre("\tREG file (used for Windows NT operating systems): None",
                          "\tREG file (used for Windows 2000 operating systems): None",
                          "\tREG file (used for Windows XP operating systems): C:\\Files\\extra.REG", ""));
}

struct PasswordTest : PageFixture<frmZEDPassword>, ::testing::Test {
  platform::RegistryValue Stored(const char* name) {
    return machine.registry.Get(Hive::kCurrentUser, "SOFTWARE\\Orvantic\\ZED", name);
  }
};

TEST_F(PasswordTest, APackageHasNoPresentPasswordToGive) {
  Open();
  EXPECT_FALSE(page().Password.Enabled());
  EXPECT_EQ(page().Password.Back(), ui::BackColor::kFace);
  EXPECT_FALSE(page().Label3.Enabled());
  EXPECT_TRUE(page().SetNewPassword.Checked());
  EXPECT_TRUE(page().NewPassword.Enabled());
  EXPECT_TRUE(page().NewPassword.masked);
}

TEST_F(PasswordTest, SettingsFileModeStartsWithoutANewPassword) {
  run.PackageMode = false;
  page();
  EXPECT_FALSE(page().SetNewPassword.Checked());
  EXPECT_FALSE(page().NewPassword.Enabled());
  EXPECT_TRUE(page().Password.Enabled());
}

TEST_F(PasswordTest, PasswordsThatDifferAreClearedAndStay) {
  Open();
  page().NewPassword.UserType("secret");
  page().ConfirmNewPassword.UserType("Secret");
  page().Next->UserClick();
  EXPECT_THAT(Steps(),
              ElementsAre("message The new passwords do not match. Please re-enter the new passwords in both "
                          "text boxes.",
                          "focus frmZEDPassword.NewPassword"));
  EXPECT_EQ(page().NewPassword.Text(), "");
  EXPECT_EQ(page().ConfirmNewPassword.Text(), "");
  EXPECT_EQ(Stored("NCAP").type, platform::kRegNone);
}

TEST_F(PasswordTest, ANewPasswordIsStoredEnciphered) {
  Open();
  page().NewPassword.UserType("secret");
  page().ConfirmNewPassword.UserType("secret");
  page().Next->UserClick();
  EXPECT_EQ(Stored("NCAP").Text(), "tfdsfu");
  EXPECT_EQ(Stored("CAP").size, 1u);
  for (const std::string& line : machine.transcript.Lines())
    EXPECT_EQ(line.find("secret"), std::string::npos) << line;
}

TEST_F(PasswordTest, EmptyFieldsMatchAndCountAsGiven) {
  EXPECT_THAT(
      Choices<frmZEDPassword>(),
      ElementsAre("\tA password to allow applying of Kitwright configuration has not been given.",
                  "\tA new password to allow applying of Kitwright configuration has not been set.", ""));
  Open();
  page().Next->UserClick();
  EXPECT_EQ(Stored("NCAP").size, 1u);
  EXPECT_THAT(Choices<frmZEDPassword>(),
              ElementsAre("\tA password to allow applying of Kitwright configuration has been given.",
                          "\tA new password to allow applying of Kitwright configuration has been set.", ""));
}

TEST_F(PasswordTest, UntickingDeletesTheNewPassword) {
  Open();
  page().NewPassword.UserType("secret");
  page().ConfirmNewPassword.UserType("secret");
  page().Next->UserClick();
  table.GoToPage("Kitwright Password");
  Take();
  page().SetNewPassword.UserClick();
  page().Next->UserClick();
  EXPECT_EQ(Stored("NCAP").type, platform::kRegNone);
  EXPECT_THAT(Choices<frmZEDPassword>(),
              Contains("\tA new password to allow applying of Kitwright configuration has not been set."));
}

TEST_F(PasswordTest, WithoutANewPasswordItsFieldsAreNotCompared) {
  run.PackageMode = false;
  Open();
  page().SetNewPassword.UserClick();
  page().NewPassword.UserType("one");
  Take();
  page().SetNewPassword.UserClick();
  EXPECT_EQ(Take(), std::vector<std::string>{"focus frmZEDPassword.Password"});
  EXPECT_FALSE(page().ConfirmNewPassword.Enabled());
  EXPECT_EQ(page().NewPassword.Back(), ui::BackColor::kFace);
  page().Password.UserType("present");
  page().Next->UserClick();
  EXPECT_EQ(Stored("CAP").Text(), "qsftfou");
  EXPECT_EQ(Stored("CAP").size, 8u);
  EXPECT_EQ(Stored("NCAP").type, platform::kRegNone);
}

TEST_F(PasswordTest, APasswordThatCannotBeEncipheredIsStoredNowhereAndKeepsThePage) {
  run.PackageMode = false;
  Open();
  page().Password.UserType("secret");
  machine.libraries.Return("EncryptDecrypt", 0);
  page().Next->UserClick();
  EXPECT_THAT(Steps(), ElementsAre("message The password could not be enciphered."));
  EXPECT_TRUE(page().Visible());
  EXPECT_EQ(Stored("CAP").type, platform::kRegNone);
}

TEST_F(PasswordTest, APasswordOfAnyLengthCountsAsGiven) {
  machine.registry.SetText(Hive::kCurrentUser, "SOFTWARE\\Orvantic\\ZED", "CAP", std::string(400, 'x'));
  machine.registry.Set(Hive::kCurrentUser, "SOFTWARE\\Orvantic\\ZED", "NCAP", {platform::kRegSz, "", 0});
  EXPECT_THAT(
      Choices<frmZEDPassword>(),
      ElementsAre("\tA password to allow applying of Kitwright configuration has been given.",
                  "\tA new password to allow applying of Kitwright configuration has not been set.", ""));
}

}  // namespace
}  // namespace kw
