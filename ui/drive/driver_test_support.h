#ifndef KITWRIGHT_UI_DRIVE_DRIVER_TEST_SUPPORT_H_
#define KITWRIGHT_UI_DRIVE_DRIVER_TEST_SUPPORT_H_

// A wizard of two pages, a dialog and a status window that the tests of the driver run scripts on.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "base/text.h"
#include "platform/testing/fake_closed_libraries.h"
#include "platform/testing/fake_file_system.h"
#include "platform/testing/fake_processes.h"
#include "platform/testing/fake_registry.h"
#include "ui/drive/driver.h"
#include "ui/form.h"

namespace kw::ui::drive {

// What a page does here is what the tests put into its handlers.
class SamplePage : public Form {
 public:
  SamplePage(FormHost& host, const std::string& name, FormStyle style = FormStyle::kPage)
      : Form(host, name, "Sample page", style) {}
  Layout ContentLayout() override { return Space(); }

  std::function<void()> on_activate;
  std::function<bool()> on_close;

  Label label{*this, "lblStatus", "&Words"};
  Tree tree{*this, "TreeView1"};
  TextBox box{*this, "Box"};
  TextBox secret{*this, "Secret"};
  Editor editor{*this, "Editor"};
  CheckBox check{*this, "Check", "&Check"};
  Option first{*this, "First", "First"};
  Option second{*this, "Second", "Second"};
  ListBox list{*this, "List"};
  ComboBox combo{*this, "Combo"};
  Grid grid{*this, "Grid"};
  Frame frame{*this, "Frame", "Frame"};
  Image image{*this, "Image", "LOGO"};
  Line line{*this, "Line"};
  Button next{*this, "Next", "&Next >"};
  Button cancel{*this, "Cancel", "Cancel"};

 protected:
  void OnActivate() override {
    if (on_activate) on_activate();
  }
  bool OnQueryUnload() override { return !on_close || on_close(); }
};

class DriverTest : public ::testing::Test {
 protected:
  // Makes the wizard of two pages, a dialog and a status window, and runs the script on it.
  void Run(const std::string& script) {
    std::istringstream in(script);
    std::ostringstream out;
    Driver driver(in, out);
    platform::Services services;
    services.files = &files;
    services.processes = &processes;
    services.libraries = &libraries;
    driver.Attach(services);
    SamplePage page_one(driver.Host(), "frmOne");
    SamplePage page_two(driver.Host(), "frmTwo");
    SamplePage the_dialog(driver.Host(), "frmDialog", FormStyle::kDialog);
    SamplePage the_status(driver.Host(), "frmStatus", FormStyle::kStatus);
    one = &page_one;
    two = &page_two;
    dialog = &the_dialog;
    status_window = &the_status;
    host = &driver.Host();
    dialogs = services.dialogs;
    tools = services.processes;
    closed = services.libraries;
    if (set_up) set_up();
    driver.OnUnknownForm([&](std::string_view name) -> Form* {
      if (name != "frmLate") return nullptr;
      late = std::make_unique<SamplePage>(driver.Host(), "frmLate");
      return late.get();
    });
    status = driver.Run(entry ? entry : [this] { one->Show(); });
    lines = Split(out.str(), '\n');
    EXPECT_EQ(lines.back(), "");
    lines.pop_back();
    late.reset();
  }

  platform::Answer Ask() {
    return dialogs->Question("Sure?", {platform::Answer::kOk, platform::Answer::kCancel},
                             platform::Answer::kCancel, "");
  }

  // As the wizard waits for a tool.
  int RunTool(const std::string& command) {
    const auto tool = tools->Start(command, platform::WindowStyle::kHidden);
    if (!tool.ok()) return -1;
    int code = platform::kStillActive;
    do {
      code = (*tool)->ExitCode();
      host->PumpEvents();
    } while (code == platform::kStillActive);
    return code;
  }

  platform::testing::FakeFileSystem files;
  platform::testing::FakeProcesses processes{files};
  platform::testing::FakeRegistry registry;
  platform::testing::FakeClosedLibraries libraries{files, registry};
  SamplePage* one = nullptr;
  SamplePage* two = nullptr;
  SamplePage* dialog = nullptr;
  SamplePage* status_window = nullptr;
  std::unique_ptr<SamplePage> late;
  FormHost* host = nullptr;
  platform::Dialogs* dialogs = nullptr;
  platform::Processes* tools = nullptr;
  platform::ClosedLibraries* closed = nullptr;
  std::function<void()> set_up;
  std::function<void()> entry;
  std::vector<std::string> lines;
  int status = -1;
};

}  // namespace kw::ui::drive

#endif  // KITWRIGHT_UI_DRIVE_DRIVER_TEST_SUPPORT_H_
