#ifndef KITWRIGHT_TESTS_SCREEN_PAGES_ON_SCREEN_TEST_SUPPORT_H_
#define KITWRIGHT_TESTS_SCREEN_PAGES_ON_SCREEN_TEST_SUPPORT_H_

#include "tests/screen/screen_test_support.h"

namespace kw::testing {

/// Every window of the wizard but the one that waits.
inline constexpr const char* kForms[] = {"frmWelcome",
                                         "frmSourceAndDestination",
                                         "frmFeatures",
                                         "frmConfigSource",
                                         "frmInstallOptions",
                                         "frmOnAccessMonitor",
                                         "frmEmailScan",
                                         "frmScheduledScan",
                                         "frmAutoUpdate",
                                         "frmBeaconryClient",
                                         "frmBeaconryServer",
                                         "frmInstallBWK",
                                         "frmUIOptions",
                                         "frmAddRemoveOptions",
                                         "frmDATsAndEngine",
                                         "frmPatchFiles",
                                         "frmCommonUpdater",
                                         "frmPrograms",
                                         "frmAdditionalFiles",
                                         "frmRegistrySettings",
                                         "frmZEDPassword",
                                         "frmPostInstallOptions",
                                         "frmReviewConfiguration",
                                         "frmFinish",
                                         "frmDestination",
                                         "frmType",
                                         "frmAddProgram",
                                         "frmAdditionalFile",
                                         "frmAddTask",
                                         "frmConfigureBWK"};

/// One window of the wizard in the real toolkit, in package mode on a machine with everything.
class PagesOnScreen : public ::testing::TestWithParam<const char*>, protected WizardOnScreen {
 protected:
  void SetUp() override { WizardOnScreen::SetUp(); }
  void TearDown() override { WizardOnScreen::TearDown(); }
};

}  // namespace kw::testing

#endif  // KITWRIGHT_TESTS_SCREEN_PAGES_ON_SCREEN_TEST_SUPPORT_H_
