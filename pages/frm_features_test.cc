#include "pages/frm_features.h"

#include "pages/open_package_test_support.h"

namespace kw {
namespace {

using testing::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using testing::PageFixture;

struct FeaturesTest : PageFixture<frmFeatures>, ::testing::Test {
  FeaturesTest() {
    AddFeature("EmailScan", "Console", "E-mail", 20, 1);
    AddFeature("OnAccessScanner", "Console", "On-access", 10, 1);
    AddFeature("ShellExtensions", "OnAccessScanner", "Shell", 1, 200);
    AddFeature("Extras", "", "Extras", 30, 1);
    Reopen();
  }
  void AddFeature(const std::string& key, const std::string& parent, const std::string& title, int display,
                  int level) {
    SqlInSource(
        "insert into `Feature` (`Feature`, `Feature_Parent`, `Title`, `Display`, `Level`, `Attributes`) "
        "values ('" +
        key + "', '" + parent + "', '" + title + "', " + std::to_string(display) + ", " +
        std::to_string(level) + ", 0)");
  }
  /// Clicks a feature and chooses a command.
  void Choose(const std::string& key, const std::string& command) {
    ui::Tree& tree = page().treFeatures;
    host.menu_choices.push_back(command);
    tree.UserClickNode(tree.Find(key), ui::MouseButton::kLeft);
  }
  std::vector<std::string> Items() {
    std::vector<std::string> items;
    const ui::Tree& tree = page().treFeatures;
    for (const int i : tree.DrawnOrder()) {
      items.push_back(std::string(static_cast<size_t>(tree.Depth(i)), ' ') + tree.Node(i).text + "=" +
                      tree.Node(i).image);
    }
    return items;
  }
  std::string Level(const std::string& key) {
    return Rows("select `Level` from `Feature` where `Feature` = ?", {key}).at(0);
  }
  std::string Display(const std::string& key) {
    return Rows("select `Display` from `Feature` where `Feature` = ?", {key}).at(0);
  }
  bool IsGrey(const std::string& caption) {
    for (const std::string& node : Nodes(page().TreeView1)) {
      if (node.starts_with(caption)) return node.ends_with("-");
    }
    return false;
  }
};

TEST_F(FeaturesTest, ItsTextsAreThoseOfTheProduct) {
  Open();
  EXPECT_EQ(page().Title.Text(), "Features");
  EXPECT_EQ(page().Description.Text(), "Click on a feature to:");
  EXPECT_EQ(page().Label1.Text(), "Include or exclude it in the custom installation.");
  EXPECT_EQ(page().Label2.Text(),
            "Make the feature invisible to prevent it from being modified during setup.");
  std::vector<std::string> commands;
  for (const char* name : {"IsLocal", "InstallSub", "NotLocal", "Invisible"})
    commands.push_back(page().mnuFeatureState.Item(name).caption);
  EXPECT_THAT(commands, ElementsAre("Install Feature", "Install Feature and Sub-Features",
                                    "Do Not Install Feature", "Make Feature Invisible During Setup"));
}

TEST_F(FeaturesTest, SiblingsComeInTheOrderOfTheirDisplay) {
  Open();
  EXPECT_THAT(Items(), ElementsAre("Console=Installed", " On-access=Installed", "  Shell=NotInstalled",
                                   " E-mail=Installed", "Extras=Installed"));
}

TEST_F(FeaturesTest, AFeatureWithLevelZeroShowsAsInstalled) {
  Sql("update `Feature` set `Level` = 0 where `Feature` = 'Extras'");
  Open();
  EXPECT_THAT(Items(), Contains("Extras=Installed"));
}

TEST_F(FeaturesTest, AFeatureThatIsNotInstalledTurnsItsPageOff) {
  Sql("update `Feature` set `Level` = 200 where `Feature` = 'EmailScan'");
  Open();
  EXPECT_TRUE(IsGrey("On-Delivery Scanner"));
  ClickNode("frmFeatures", "On-Delivery Scanner");
  EXPECT_THAT(
      Take(),
      ElementsAre("message You have disabled installation of this feature.  If you would like to "
                  "configure its settings you must first configure it to be installed on the Features "
                  "page."));
}

TEST_F(FeaturesTest, RequiredFeaturesAndWhatLiesBelowThemAreNotShown) {
  Sql("update `Feature` set `Title` = 'Required' where `Feature` = 'OnAccessScanner'");
  Open();
  EXPECT_THAT(Items(), ElementsAre("Console=Installed", " E-mail=Installed", "Extras=Installed"));
  EXPECT_THAT(Choices<frmFeatures>(),
              ElementsAre("\tConsole: Installed", "\t\tE-mail: Installed", "\tExtras: Installed", ""));
}

TEST_F(FeaturesTest, TheRowOfTheFixedKeyIsLeftOut) {
  Sql("insert into `Feature` (`Feature`, `Title`, `Display`, `Level`, `Attributes`) values ('_id_feature', "
      "'x', 1, 1, 0)");
  Open();
  EXPECT_THAT(Items(), Not(Contains("x=Installed")));
}

TEST_F(FeaturesTest, DoNotInstallWritesTheLevelBelowAndTurnsThePageOff) {
  Open();
  Choose("OnAccessScanner", "Do Not Install Feature");
  EXPECT_THAT(Items(), ElementsAre("Console=Installed", " On-access=NotInstalled", "  Shell=NotInstalled",
                                   " E-mail=Installed", "Extras=Installed"));
  EXPECT_EQ(Level("OnAccessScanner"), "200");
  EXPECT_EQ(Level("ShellExtensions"), "200");
  EXPECT_TRUE(IsGrey("On-Access Scanner"));
}

TEST_F(FeaturesTest, InstallingAFeatureBringsItsParentsIn) {
  Open();
  Choose("OnAccessScanner", "Do Not Install Feature");
  Choose("ShellExtensions", "Install Feature");
  EXPECT_EQ(Level("ShellExtensions"), "100");
  EXPECT_EQ(Level("OnAccessScanner"), "100");
  EXPECT_EQ(Level("Console"), "1");
  EXPECT_THAT(Items(), Contains(" On-access=Installed"));
}

TEST_F(FeaturesTest, InstallWithSubFeaturesReachesThemAll) {
  Open();
  Choose("Console", "Install Feature and Sub-Features");
  EXPECT_THAT(Items(), ElementsAre("Console=Installed", " On-access=Installed", "  Shell=Installed",
                                   " E-mail=Installed", "Extras=Installed"));
  EXPECT_EQ(Level("ShellExtensions"), "100");
}

TEST_F(FeaturesTest, ConsoleOffersOnlyInstallWithSubFeaturesAndClearsTheFivePages) {
  Open();
  table.SetScannerPagesDisabled(true);
  Take();
  Choose("Console", "Install Feature and Sub-Features");
  EXPECT_THAT(Take(),
              Contains("menu (Install Feature)|Install Feature and Sub-Features|(Do Not Install "
                       "Feature)|(Make Feature Invisible During Setup) -> Install Feature and Sub-Features"));
  for (const char* caption : {"On-Access Scanner", "On-Delivery Scanner", "Scheduled Scans",
                              "AutoUpdate Schedule", "Beaconry Properties"}) {
    EXPECT_FALSE(IsGrey(caption)) << caption;
  }
}

TEST_F(FeaturesTest, ARightClickOnAFeatureDoesNothing) {
  Open();
  page().treFeatures.UserClickNode(page().treFeatures.Find("Extras"), ui::MouseButton::kRight);
  EXPECT_THAT(Take(), ElementsAre());
}

TEST_F(FeaturesTest, ADismissedMenuChangesNothing) {
  Open();
  Choose("Extras", "dismiss");
  EXPECT_EQ(Level("Extras"), "1");
}

TEST_F(FeaturesTest, TheQuestionComesOnlyForAFeatureWhosePageIsConfigured) {
  Open();
  table.SetPageConfigured("On-Access Scanner", true);
  machine.dialogs.answers = {Answer::kYes};
  Choose("OnAccessScanner", "Do Not Install Feature");
  EXPECT_THAT(
      Take(),
      Contains("question You may have already customized the settings for this feature.  Your "
               "customized settings cannot be used if the feature is not installed.  Would you like to "
               "disable installation of this feature anyway? [Yes|No] default=Yes -> Yes"));
  EXPECT_TRUE(IsGrey("On-Access Scanner"));
  Choose("Extras", "Do Not Install Feature");
  EXPECT_EQ(Level("Extras"), "200");
}

TEST_F(FeaturesTest, AfterNoTheItemShowsInstalledWhileTheRowHoldsTheOtherLevel) {
  Open();
  table.SetPageConfigured("On-Access Scanner", true);
  machine.dialogs.answers = {Answer::kNo};
  Choose("OnAccessScanner", "Do Not Install Feature");
  EXPECT_THAT(Items(), Contains(" On-access=Installed"));
  EXPECT_EQ(Level("OnAccessScanner"), "200");
  EXPECT_FALSE(IsGrey("On-Access Scanner"));
  page().ReadConfig();
  EXPECT_THAT(Items(), Contains(" On-access=NotInstalled"));
}

TEST_F(FeaturesTest, WithoutAnInstallLevelDoNotInstallWraps) {
  Sql("delete from `Property` where `Property` = 'INSTALLLEVEL'");
  Open();
  EXPECT_THAT(Items(), Contains("  Shell=Installed"));
  Choose("Extras", "Do Not Install Feature");
  EXPECT_EQ(Level("Extras"), "-32669");
  EXPECT_THAT(Items(), Contains("Extras=Installed"));
}

TEST_F(FeaturesTest, TheInstallLevelIsCutToSixteenBits) {
  Sql("update `Property` set `Value` = '65637' where `Property` = 'INSTALLLEVEL'");
  Open();
  Choose("Extras", "Do Not Install Feature");
  EXPECT_EQ(Level("Extras"), "201");
}

TEST_F(FeaturesTest, InvisibleTwiceRestoresAlsoTheDisplayOfAFeatureThatTheSourceHides) {
  SqlInSource("update `Feature` set `Display` = 0 where `Feature` = 'Extras'");
  Reopen();
  Open();
  EXPECT_THAT(Items(), Contains("Extras=Installed"));
  Choose("Extras", "Make Feature Invisible During Setup");
  EXPECT_THAT(Items(), Contains("Extras <<Not Visible>>=Installed"));
  Choose("Extras", "Make Feature Invisible During Setup");
  EXPECT_EQ(Display("Extras"), "0");
  EXPECT_THAT(Items(), Contains("Extras=Installed"));
}

TEST_F(FeaturesTest, SwitchingOffAParentLeavesThePagesOfItsSubFeatures) {
  AddFeature("OnDemandScanner", "Extras", "On-demand", 1, 1);
  Reopen();
  Open();
  Choose("Extras", "Do Not Install Feature");
  EXPECT_EQ(Level("OnDemandScanner"), "200");
  EXPECT_FALSE(IsGrey("Scheduled Scans"));
}

TEST_F(FeaturesTest, InstallFeatureAloneLeavesItsSubFeatures) {
  Open();
  Choose("OnAccessScanner", "Do Not Install Feature");
  Choose("OnAccessScanner", "Install Feature");
  EXPECT_EQ(Level("OnAccessScanner"), "100");
  EXPECT_EQ(Level("ShellExtensions"), "200");
  EXPECT_FALSE(IsGrey("On-Access Scanner"));
}

TEST_F(FeaturesTest, AKeyWithAQuoteBreaksTheStatementAndIsTold) {
  Sql("insert into `Feature` (`Feature`, `Title`, `Display`, `Level`, `Attributes`) values (?, 'Odd', 99, 1, "
      "0)",
      {"O'Neill"});
  Open();
  EXPECT_THAT(machine.transcript.Lines(), Contains(::testing::StartsWith("message ")));
  EXPECT_THAT(Items(), Contains("Extras=Installed"));
  EXPECT_TRUE(page().Visible());
}

TEST_F(FeaturesTest, TheFixedTextsTellWhatAClickDoes) {
  Open();
  EXPECT_EQ(page().Title.Text(), "Features");
  EXPECT_EQ(page().Description.Text(), "Click on a feature to:");
  EXPECT_EQ(page().Label1.Text(), "Include or exclude it in the custom installation.");
  EXPECT_EQ(page().Label2.Text(),
            "Make the feature invisible to prevent it from being modified during setup.");
}

TEST_F(FeaturesTest, TheTreeAsksForAVisibleTopFeatureToo) {
  Open();
  Sql("update `Feature` set `Display` = 0 where `Feature_Parent` = ''");
  ClickNode("frmFeatures", "Programs");
  EXPECT_THAT(Take(), ElementsAre("message Please make at least one top feature visible."));
}

TEST_F(FeaturesTest, ARequiredTopFeatureCountsAsVisible) {
  Open();
  Sql("update `Feature` set `Display` = 0 where `Feature_Parent` = ''");
  Sql("update `Feature` set `Display` = 1, `Title` = 'Required' where `Feature` = 'Extras'");
  page().Next->UserClick();
  EXPECT_THAT(Take(), Contains("page frmConfigSource"));
}

TEST_F(FeaturesTest, SwitchingOffTheShellExtensionsKeepsTheScheduledScans) {
  Open();
  Choose("ShellExtensions", "Install Feature");
  Choose("ShellExtensions", "Do Not Install Feature");
  EXPECT_FALSE(IsGrey("Scheduled Scans"));
  table.SetPageFeatureOff("Scheduled Scans", true);
  Choose("ShellExtensions", "Install Feature");
  EXPECT_FALSE(IsGrey("Scheduled Scans"));
}

TEST_F(FeaturesTest, InvisibleTwiceRestoresTheDisplayOfTheSource) {
  Open();
  Choose("Extras", "Make Feature Invisible During Setup");
  EXPECT_EQ(Display("Extras"), "0");
  EXPECT_THAT(Items(), Contains("Extras <<Not Visible>>=Installed"));
  Take();
  Choose("Extras", "Make Feature Invisible During Setup");
  EXPECT_THAT(
      Take(),
      Contains("menu Install Feature|Install Feature and Sub-Features|Do Not Install Feature|[x] Make "
               "Feature Invisible During Setup -> Make Feature Invisible During Setup"));
  EXPECT_EQ(Display("Extras"), "30");
  EXPECT_THAT(Items(), Contains("Extras=Installed"));
}

TEST_F(FeaturesTest, AnInvisibleFeatureComesBackWithoutItsMarkButIsReviewedAsSuch) {
  Open();
  Choose("Extras", "Make Feature Invisible During Setup");
  page().ReadConfig();
  EXPECT_THAT(Items(), Contains("Extras=Installed"));
  EXPECT_THAT(Choices<frmFeatures>(), Contains("\tExtras: Installed<<Not Visible>>"));
  Choose("Extras", "Do Not Install Feature");
  EXPECT_THAT(Choices<frmFeatures>(), Contains("\tExtras: NotInstalled"));
}

TEST_F(FeaturesTest, WithAllTopFeaturesInvisibleNextRefusesAndBackGoes) {
  Open();
  Sql("update `Feature` set `Display` = 0 where `Feature_Parent` = ''");
  page().Next->UserClick();
  EXPECT_THAT(Take(), ElementsAre("message Please make at least one top feature visible."));
  page().Finsh->UserClick();
  EXPECT_THAT(Take(), ElementsAre("message Please make at least one top feature visible."));
  machine.dialogs.answers = {Answer::kCancel};
  page().Back->UserClick();
  EXPECT_THAT(Take(),
              ElementsAre("question(Confirm Cancel) Any changes you have made will be discarded. [OK|Cancel] "
                          "default=Cancel -> Cancel"));
}

TEST_F(FeaturesTest, OneVisibleTopFeatureLetsNextPass) {
  Open();
  Sql("update `Feature` set `Display` = 0 where `Feature` = 'Extras'");
  page().Next->UserClick();
  EXPECT_THAT(Take(), Contains("page frmConfigSource"));
}

TEST_F(FeaturesTest, ARequiredRowBelowAShownFeatureFailsTheLookupOfItsItem) {
  Sql("update `Feature` set `Title` = 'Required' where `Feature` = 'OnAccessScanner'");
  Open();
  Choose("Console", "Install Feature and Sub-Features");
  EXPECT_THAT(Take(), Contains("message The feature tree has no item \"OnAccessScanner\"."));
  EXPECT_TRUE(page().Visible());
}

TEST_F(FeaturesTest, InstallFeatureAfterAFailedCommandWithSubFeaturesLeavesThemAlone) {
  AddFeature("Samples", "Extras", "Samples", 40, 200);
  Reopen();
  Sql("update `Feature` set `Title` = 'Required' where `Feature` = 'OnAccessScanner'");
  Open();
  Choose("Console", "Install Feature and Sub-Features");
  Choose("Extras", "Install Feature");
  EXPECT_EQ(Level("Samples"), "200");
}

}  // namespace
}  // namespace kw
