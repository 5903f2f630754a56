#include "pages/frm_add_remove_options.h"
#include "pages/frm_install_options.h"
#include "pages/frm_post_install_options.h"
#include "pages/open_package_test_support.h"
#include "settings/frm_scheduled_scan.h"

namespace kw {
namespace {

using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::Hive;
using testing::PageFixture;

struct AddRemoveOptionsTest : PageFixture<frmAddRemoveOptions>, ::testing::Test {};

TEST_F(AddRemoveOptionsTest, FieldsTravelAsProperties) {
  Sql("insert into `Property` (`Property`, `Value`) values ('ARPCONTACT', 'Helpdesk')");
  Sql("insert into `Property` (`Property`, `Value`) values ('ARPNOREMOVE', '1')");
  Open();
  EXPECT_EQ(page().Contact.Text(), "Helpdesk");
  EXPECT_FALSE(page().AllowRemove.Checked());
  EXPECT_TRUE(page().AllowModify.Checked());
  EXPECT_TRUE(page().ShowOnPanel.Checked());
  page().Contact.UserType("");
  page().About.UserType("http://example.com");
  page().AllowRemove.UserClick();
  page().AllowModify.UserClick();
  EXPECT_THAT(Choices<frmAddRemoveOptions>(),
              ElementsAre("\tAllow user to uninstall: Yes",
                          "\tContact: ", "\tHome page URL: http://example.com", "\tTechnical Support URL: ",
                          "\tComments: ", "\tUpdate Information: ", "\tSupport Telephone: ",
                          "\tAllow user to modify features: No", "\tShow in Control Panel: Yes", ""));
  page().Next->UserClick();
  EXPECT_THAT(Take(), Contains("page frmDATsAndEngine"));
  EXPECT_EQ(Property("ARPCONTACT"), "");
  EXPECT_EQ(Property("ARPNOREMOVE"), "");
  EXPECT_EQ(Property("ARPNOMODIFY"), "1");
  EXPECT_EQ(Property("ARPURLINFOABOUT"), "http://example.com");
}

TEST_F(AddRemoveOptionsTest, EveryFieldHasItsOwnProperty) {
  Open();
  const std::pair<ui::TextBox*, const char*> texts[] = {
      {&page().Contact, "ARPCONTACT"},     {&page().Comments, "ARPCOMMENTS"},
      {&page().About, "ARPURLINFOABOUT"},  {&page().UpdateInformation, "ARPURLUPDATEINFO"},
      {&page().SupportURL, "ARPHELPLINK"}, {&page().SupportTelephone, "ARPHELPTELEPHONE"}};
  for (const auto& [box, property] : texts) box->UserType(std::string("http://") + property);
  for (ui::CheckBox* box : {&page().AllowRemove, &page().AllowModify, &page().ShowOnPanel}) box->UserClick();
  page().Next->UserClick();
  for (const auto& [box, property] : texts) {
    EXPECT_EQ(Property(property), std::string("http://") + property);
    box->SetText("");
  }
  for (const char* property : {"ARPNOREMOVE", "ARPNOMODIFY", "ARPSYSTEMCOMPONENT"})
    EXPECT_EQ(Property(property), "1");
  Open();
  for (const auto& [box, property] : texts) EXPECT_EQ(box->Text(), std::string("http://") + property);
  for (ui::CheckBox* box : {&page().AllowRemove, &page().AllowModify, &page().ShowOnPanel})
    EXPECT_FALSE(box->Checked()) << box->Name();
  EXPECT_FALSE(page().Contact.Enabled());
  EXPECT_THAT(
      Choices<frmAddRemoveOptions>(),
      ElementsAre("\tAllow user to uninstall: No", "\tContact: http://ARPCONTACT",
                  "\tHome page URL: http://ARPURLINFOABOUT", "\tTechnical Support URL: http://ARPHELPLINK",
                  "\tComments: http://ARPCOMMENTS", "\tUpdate Information: http://ARPURLUPDATEINFO",
                  "\tSupport Telephone: http://ARPHELPTELEPHONE", "\tAllow user to modify features: No",
                  "\tShow in Control Panel: No", ""));
}

TEST_F(AddRemoveOptionsTest, TheQuestionOfTheThirdAddressKeepsThePageAndTheField) {
  Open();
  page().SupportURL.UserType("HTTP://example.com");
  machine.dialogs.answers = {Answer::kCancel};
  page().Finsh->UserClick();
  EXPECT_THAT(Take(),
              ElementsAre("question Technical Support URL HTTP://example.com<CR><LF>should be left blank, "
                          "begin with \"http://\" or begin with \"https://\".<CR><LF><CR><LF>Click OK to "
                          "use it anyway. [OK|Cancel] default=OK -> Cancel",
                          "focus frmAddRemoveOptions.SupportURL"));
  EXPECT_EQ(page().SupportURL.Text(), "HTTP://example.com");
}

TEST_F(AddRemoveOptionsTest, AnAddressWithoutItsPrefixIsAWarning) {
  Open();
  page().About.UserType("www.example.com");
  page().UpdateInformation.UserType("ftp://example.com");
  page().SupportURL.UserType("https://example.com");
  machine.dialogs.answers = {Answer::kOk, Answer::kCancel};
  page().Next->UserClick();
  EXPECT_THAT(
      Take(),
      ElementsAre(
          "question Home page URL www.example.com<CR><LF>should be left blank, begin with \"http://\" "
          "or begin with \"https://\".<CR><LF><CR><LF>Click OK to use it anyway. [OK|Cancel] "
          "default=OK -> OK",
          "question Update Information URL ftp://example.com<CR><LF>should be left blank, begin with "
          "\"http://\" or begin with \"https://\".<CR><LF><CR><LF>Click OK to use it anyway. "
          "[OK|Cancel] default=OK -> Cancel",
          "focus frmAddRemoveOptions.UpdateInformation"));
  EXPECT_EQ(Property("ARPURLINFOABOUT"), "");
  machine.dialogs.answers = {Answer::kOk, Answer::kOk};
  page().Next->UserClick();
  EXPECT_EQ(Property("ARPURLINFOABOUT"), "www.example.com");
  EXPECT_EQ(Property("ARPURLUPDATEINFO"), "ftp://example.com");
  EXPECT_EQ(Property("ARPHELPLINK"), "https://example.com");
}

TEST_F(AddRemoveOptionsTest, WithoutThePanelTheDisabledFieldsAreStillWritten) {
  Open();
  page().Comments.UserType("ours");
  page().ShowOnPanel.UserClick();
  for (ui::Control* control :
       {static_cast<ui::Control*>(&page().Comments), static_cast<ui::Control*>(&page().Label4),
        static_cast<ui::Control*>(&page().AllowRemove), static_cast<ui::Control*>(&page().AllowModify)}) {
    EXPECT_FALSE(control->Enabled()) << control->Name();
  }
  page().Next->UserClick();
  EXPECT_EQ(Property("ARPCOMMENTS"), "ours");
  EXPECT_EQ(Property("ARPSYSTEMCOMPONENT"), "1");
}

TEST_F(AddRemoveOptionsTest, AnotherSystemComponentValueReadsAsShownAndIsLost) {
  Sql("insert into `Property` (`Property`, `Value`) values ('ARPSYSTEMCOMPONENT', '2')");
  Open();
  EXPECT_TRUE(page().ShowOnPanel.Checked());
  page().Next->UserClick();
  EXPECT_EQ(Property("ARPSYSTEMCOMPONENT"), "");
}

struct InstallOptionsTest : PageFixture<frmInstallOptions>, ::testing::Test {};

TEST_F(InstallOptionsTest, MissingKeysReadAsTheirDefaults) {
  Open();
  EXPECT_FALSE(page().SilentInstall.Checked());
  EXPECT_TRUE(page().PreserveSettings.Checked());
  EXPECT_TRUE(page().UseDefaultDirectory.Value());
  EXPECT_FALSE(page().InstallDirectory.Enabled());
  EXPECT_EQ(page().InstallDirectory.Back(), ui::BackColor::kFace);
  EXPECT_FALSE(page().SourceBrowse.Enabled());
}

TEST_F(InstallOptionsTest, ACustomFolderIsCheckedAndStored) {
  Open();
  page().SpecifyCustomDirectory.UserClick();
  EXPECT_THAT(Take(), ElementsAre("focus frmInstallOptions.InstallDirectory"));
  page().Next->UserClick();
  EXPECT_THAT(Take(), ElementsAre("message Please enter a custom installation folder or choose the default.",
                                  "focus frmInstallOptions.InstallDirectory"));
  page().InstallDirectory.UserType("\\\\server\\share");
  page().Next->UserClick();
  EXPECT_THAT(
      Take(),
      ElementsAre("message Installation folder \\\\server\\share is not valid.  Please specify a valid "
                  "local path.",
                  "focus frmInstallOptions.InstallDirectory"));
  page().InstallDirectory.UserType("D:\\Kestrane");
  page().SilentInstall.UserClick();
  page().PreserveSettings.UserClick();
  page().Next->UserClick();
  EXPECT_EQ(Property("INSTALLDIR"), "D:\\Kestrane");
  EXPECT_THAT(SetupIni(), HasSubstr("bSilent=1\r\n"));
  EXPECT_THAT(SetupIni(), HasSubstr("bPreserveSettings=0\r\n"));
  EXPECT_THAT(Choices<frmInstallOptions>(),
              ElementsAre("\tCustom installation folder: D:\\Kestrane", "\tInstall product silently: Yes",
                          "\tPreserve settings: No", ""));
}

TEST_F(InstallOptionsTest, ForbiddenSignsInTheFolderAreToldAndNothingIsWritten) {
  Sql("insert into `Property` (`Property`, `Value`) values ('INSTALLDIR', 'D:\\Old')");
  Open();
  page().SilentInstall.UserClick();
  page().InstallDirectory.UserType("D:\\a?b");
  page().Next->UserClick();
  EXPECT_THAT(Take(), ElementsAre(::testing::StartsWith("message Installation folder is not valid."),
                                  "focus frmInstallOptions.InstallDirectory"));
  EXPECT_EQ(Property("INSTALLDIR"), "D:\\Old");
  EXPECT_THAT(SetupIni(), ::testing::Not(HasSubstr("bSilent")));
}

TEST_F(InstallOptionsTest, AFolderThatDoesNotExistHereIsTaken) {
  Open();
  page().SpecifyCustomDirectory.UserClick();
  page().InstallDirectory.UserType("Q:\\Nowhere\\Kestrane");
  page().Next->UserClick();
  EXPECT_EQ(Property("INSTALLDIR"), "Q:\\Nowhere\\Kestrane");
}

TEST_F(InstallOptionsTest, AnIniFileThatCannotBeWrittenKeepsThePage) {
  Open();
  machine.files.FailAlways(testing::FileOperation::kWriteFile, run.WorkingSetupIniPath, kErrorDiskFull);
  page().Next->UserClick();
  EXPECT_THAT(Take(), ElementsAre(::testing::StartsWith("message ")));
  EXPECT_TRUE(page().Visible());
}

TEST_F(InstallOptionsTest, TheDefaultFolderRemovesAnEarlierRow) {
  Sql("insert into `Property` (`Property`, `Value`) values ('INSTALLDIR', 'D:\\Old')");
  WriteStartup("bSilent=1\r\n");
  Open();
  EXPECT_TRUE(page().SpecifyCustomDirectory.Value());
  EXPECT_EQ(page().InstallDirectory.Text(), "D:\\Old");
  EXPECT_TRUE(page().SilentInstall.Checked());
  page().UseDefaultDirectory.UserClick();
  page().Next->UserClick();
  EXPECT_EQ(Property("INSTALLDIR"), "");
  EXPECT_THAT(Choices<frmInstallOptions>(), Contains("\tUse default installation folder."));
}

TEST_F(InstallOptionsTest, BrowseStartsAtTheTextOrAtThePresentFolder) {
  Open();
  page().SpecifyCustomDirectory.UserClick();
  Take();
  machine.dialogs.folders = {"D:\\Picked", ""};
  page().SourceBrowse.UserClick();
  page().SourceBrowse.UserClick();
  EXPECT_THAT(Take(), ElementsAre("folder-dialog Select Installation Folder | C:\\Kitwright -> D:\\Picked",
                                  "folder-dialog Select Installation Folder | D:\\Picked -> cancel"));
  EXPECT_EQ(page().InstallDirectory.Text(), "D:\\Picked");
}

struct PostInstallOptionsTest : PageFixture<frmPostInstallOptions>, ::testing::Test {};

TEST_F(PostInstallOptionsTest, OnlyDefinedTicksASwitch) {
  Sql("insert into `Property` (`Property`, `Value`) values ('RUNAUTOUPDATE', 'defined')");
  Sql("insert into `Property` (`Property`, `Value`) values ('RUNONDEMANDSCAN', 'yes')");
  Open();
  EXPECT_TRUE(page().RunUpdate.Checked());
  EXPECT_FALSE(page().PerformScan.Checked());
  page().StartKestrane.UserClick();
  page().RunUpdate.UserClick();
  page().ForceReboot.UserClick();
  page().Next->UserClick();
  EXPECT_EQ(Property("ENABLEONACCESSSCANNER"), "defined");
  EXPECT_EQ(Property("RUNAUTOUPDATE"), "");
  EXPECT_EQ(Property("RUNONDEMANDSCAN"), "");
  EXPECT_THAT(SetupIni(), HasSubstr("bRebootAlways=1\r\n"));
}

TEST_F(PostInstallOptionsTest, TheKeysOfTheIniFileAreReadBack) {
  WriteStartup("bRebootAlways=1\r\nszRebootMessage=Please wait\r\n");
  Open();
  EXPECT_TRUE(page().ForceReboot.Checked());
  EXPECT_TRUE(page().DisplayMessage.Checked());
  EXPECT_EQ(page().RebootMessage.Text(), "Please wait");
  EXPECT_EQ(page().RebootMessage.Back(), ui::BackColor::kWindow);
  page().ForceReboot.UserClick();
  page().RebootMessage.UserType("");
  page().Next->UserClick();
  EXPECT_THAT(SetupIni(), HasSubstr("bRebootAlways=0\r\n"));
  EXPECT_THAT(SetupIni(), HasSubstr("szRebootMessage=\r\n"));
  page().ReadConfig();
  EXPECT_FALSE(page().DisplayMessage.Checked());
  EXPECT_FALSE(page().RebootMessage.Enabled());
}

TEST_F(PostInstallOptionsTest, AllThreeSwitchesAreStoredAsDefined) {
  Open();
  page().PerformScan.SetEnabled(true);
  for (ui::CheckBox* box : {&page().StartKestrane, &page().PerformScan, &page().RunUpdate})
    box->SetChecked(true);
  page().Next->UserClick();
  for (const char* property : {"ENABLEONACCESSSCANNER", "RUNONDEMANDSCAN", "RUNAUTOUPDATE"})
    EXPECT_EQ(Property(property), "defined");
  EXPECT_THAT(Choices<frmPostInstallOptions>(),
              ElementsAre("\tForce reboot after install: No", "\tDisplay message if reboot required: No",
                          "\tStart Kestrane Enterprise after installation: Yes", "\tPerform system scan: Yes",
                          "\tRun update: Yes", ""));
}

TEST_F(PostInstallOptionsTest, AMessageThatIsOnlyUntickedIsStillStoredAndComesBackTicked) {
  Open();
  EXPECT_FALSE(page().RebootMessage.Enabled());
  page().DisplayMessage.UserClick();
  EXPECT_THAT(Take(), ElementsAre("focus frmPostInstallOptions.RebootMessage"));
  page().RebootMessage.UserType("Save your work");
  page().DisplayMessage.UserClick();
  EXPECT_EQ(page().RebootMessage.Back(), ui::BackColor::kFace);
  page().Next->UserClick();
  EXPECT_THAT(SetupIni(), HasSubstr("szRebootMessage=Save your work\r\n"));
  page().ReadConfig();
  EXPECT_TRUE(page().DisplayMessage.Checked());
  EXPECT_TRUE(page().RebootMessage.Enabled());
  EXPECT_THAT(Choices<frmPostInstallOptions>(),
              ElementsAre("\tForce reboot after install: No",
                          "\tDisplay message if reboot required: YesSave your work",
                          "\tStart Kestrane Enterprise after installation: No", "\tPerform system scan: No",
                          "\tRun update: No", ""));
}

TEST_F(PostInstallOptionsTest, WithoutTheOnDemandTaskTheScanCannotBeChosen) {
  Sql("insert into `Property` (`Property`, `Value`) values ('RUNONDEMANDSCAN', 'defined')");
  page().ReadConfig();
  EXPECT_TRUE(page().PerformScan.Checked());
  table.Get<frmScheduledScan>().ReadConfig();
  table.Get<frmScheduledScan>().ReplaceTasks->SetValue(true);
  Show<frmPostInstallOptions>("Post-Installation Options");
  EXPECT_FALSE(page().PerformScan.Checked());
  EXPECT_FALSE(page().PerformScan.Enabled());
  page().Next->UserClick();
  EXPECT_EQ(Property("RUNONDEMANDSCAN"), "");
  table.Get<frmScheduledScan>().AddTasks->SetValue(true);
  table.GoToPage("Post-Installation Options");
  EXPECT_TRUE(page().PerformScan.Enabled());
}

TEST_F(PostInstallOptionsTest, DeletingTheOnDemandTaskInPackageModeAsksTheStrongerQuestion) {
  Sql("insert into `Property` (`Property`, `Value`) values ('RUNONDEMANDSCAN', 'defined')");
  page().ReadConfig();
  run.SettingsFromSystem = true;
  machine.registry.SetText(Hive::kLocalMachine,
                           "SOFTWARE\\Orvantic\\RDX\\Kestrane "
                           "Enterprise\\CurrentVersion\\Tasks\\{818C7543-358A-4C84-899A-14334EMS4BGS}",
                           "szTaskName", "Scan All");
  auto& scans = table.Get<frmScheduledScan>();
  scans.ReadConfig();
  Show<frmScheduledScan>("Scheduled Scans");
  scans.ReplaceTasks->UserClick();
  scans.Grid.UserPick(2);
  machine.dialogs.answers = {Answer::kOk};
  Take();
  scans.DeleteButton->UserClick();
  EXPECT_THAT(Take(),
              Contains("question If you delete this item, Kestrane Enterprise will be unable to perform a "
                       "system scan after installation.<LF><LF>  Task name: Scan All<LF>  Scheduled: No "
                       "[OK|Cancel] default=OK -> OK"));
  EXPECT_FALSE(page().PerformScan.Checked());
  EXPECT_FALSE(page().PerformScan.Enabled());
  EXPECT_EQ(Property("RUNONDEMANDSCAN"), "");
}

}  // namespace
}  // namespace kw
