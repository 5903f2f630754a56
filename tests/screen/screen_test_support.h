#ifndef KITWRIGHT_TESTS_SCREEN_SCREEN_TEST_SUPPORT_H_
#define KITWRIGHT_TESTS_SCREEN_SCREEN_TEST_SUPPORT_H_

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

/// The whole wizard in real windows on a virtual display, with a machine in memory; package mode with its
/// pages listed. Skips where there is no virtual display.
class WizardOnScreen {
 public:
  ~WizardOnScreen() { TearDown(); }

  void SetUp() {
    if (!started_) GTEST_SKIP() << "no virtual display: Xvfb or openbox is not installed";
    loop_ = std::make_unique<wxGUIEventLoop>();
    wxEventLoopBase::SetActive(loop_.get());
    host_ = std::make_unique<ui::WxHost>();
    app_ = std::make_unique<WizardApp>(machine_.services, *host_);
    RunState& run = app_->State();
    run.HasConsoleFeature = run.HasEmailScanFeature = run.HasOnAccessFeature = true;
    run.HasOnDemandFeature = run.HasAutoUpdateFeature = run.AnyFeatureInstalled = true;
    run.ProductInstalled = run.PackageMode = run.EnoughMemory = true;
    run.Installer = machine_.MakeInstaller();
    app_->Pages().BuildPackagePageList();
  }
  void TearDown() {
    app_.reset();
    host_.reset();
    if (loop_) wxEventLoopBase::SetActive(nullptr);
    loop_.reset();
  }

  /// Serves events for a while, as the running program does.
  void Serve(long milliseconds) {
    const wxStopWatch watch;
    while (watch.Time() < milliseconds) {
      host_->PumpEvents();
      wxTheApp->ProcessIdle();
    }
  }

  /// Comes before what looks for the display when it is made.
  const bool started_ = ui::testing::StartToolkit();
  platform::testing::FakeMachine machine_;
  std::unique_ptr<wxGUIEventLoop> loop_;
  std::unique_ptr<ui::WxHost> host_;
  std::unique_ptr<WizardApp> app_;
};

}  // namespace kw::testing

#endif  // KITWRIGHT_TESTS_SCREEN_SCREEN_TEST_SUPPORT_H_
