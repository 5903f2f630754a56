// Shows every page and dialog of the wizard in a real window and looks for what would be cut off.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/stopwatch.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/testing/fake_machine.h"
#include "shell/app.h"
#include "ui/wx/testing/toolkit.h"
#include "ui/wx/wx_host.h"

namespace kw {
namespace {

const char* const kForms[] = {"frmWelcome",
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
                              "frmConfigureBWK",
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
                              "frmAddTask"};

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

TEST_P(PagesOnScreen, ShowsAllControlsWhole) {
  ui::Form& form = app_->Pages().FormByName(GetParam());
  form.Show();
  Serve(200);
  ui::testing::TakeScreenshot(GetParam());
  ui::FormView* view = host_->ViewOf(form);
  ASSERT_NE(view, nullptr);
  for (const ui::Control* control : form.Controls()) {
    const ui::ControlView* shown = view->ViewOf(*control);
    if (!shown || !control->Visible()) continue;
    const wxWindow* window = shown->Window();
    const wxSize size = window->GetSize();
    const wxSize least = window->GetEffectiveMinSize();
    EXPECT_GE(size.y, least.y) << control->Name() << " is cut off below";
    EXPECT_GE(size.x, least.x) << control->Name() << " is cut off at the right";
    const wxSize parent = window->GetParent()->GetVirtualSize();
    EXPECT_LE(window->GetPosition().x + size.x, parent.x) << control->Name() << " leaves its parent";
    EXPECT_LE(window->GetPosition().y + size.y, parent.y) << control->Name() << " leaves its parent";
  }
}

INSTANTIATE_TEST_SUITE_P(Wizard, PagesOnScreen, ::testing::ValuesIn(kForms),
                         [](const auto& form) { return std::string(form.param); });

}  // namespace
}  // namespace kw
