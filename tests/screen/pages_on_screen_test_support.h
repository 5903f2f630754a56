#ifndef KITWRIGHT_TESTS_SCREEN_PAGES_ON_SCREEN_TEST_SUPPORT_H_
#define KITWRIGHT_TESTS_SCREEN_PAGES_ON_SCREEN_TEST_SUPPORT_H_

#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/stopwatch.h>

#include <memory>

#include "platform/testing/fake_machine.h"
#include "shell/app.h"
#include "ui/wx/testing/toolkit.h"
#include "ui/wx/wx_host.h"

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
class PagesOnScreen : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (!ui::testing::StartToolkit()) GTEST_SKIP() << "no virtual display: Xvfb or openbox is not installed";
    loop_ = std::make_unique<wxGUIEventLoop>();
    wxEventLoopBase::SetActive(loop_.get());
    host_ = std::make_unique<ui::WxHost>();
    app_ = std::make_unique<WizardApp>(machine_.services, *host_);
    RunState& run = app_->State();
    run.HasConsoleFeature = run.HasEmailScanFeature = run.HasOnAccessFeature = true;
    run.HasOnDemandFeature = run.HasAutoUpdateFeature = run.AnyFeatureInstalled = true;
    run.ProductInstalled = run.PackageMode = run.EnoughMemory = true;
    app_->Pages().BuildPackagePageList();
  }
  void TearDown() override {
    app_.reset();
    host_.reset();
    if (loop_) wxEventLoopBase::SetActive(nullptr);
  }

  void Serve(long milliseconds) {
    const wxStopWatch watch;
    while (watch.Time() < milliseconds) {
      host_->PumpEvents();
      wxTheApp->ProcessIdle();
    }
  }

  platform::testing::FakeMachine machine_;
  std::unique_ptr<wxGUIEventLoop> loop_;
  std::unique_ptr<ui::WxHost> host_;
  std::unique_ptr<WizardApp> app_;
};

}  // namespace kw::testing

#endif  // KITWRIGHT_TESTS_SCREEN_PAGES_ON_SCREEN_TEST_SUPPORT_H_
