#ifndef KITWRIGHT_SETTINGS_SETTINGS_TEST_SUPPORT_H_
#define KITWRIGHT_SETTINGS_SETTINGS_TEST_SUPPORT_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "settings/branches.h"
#include "shell/shell_test_support.h"

namespace kw::testing {

using platform::Answer;
using platform::Hive;
using platform::RegistryValue;
using platform::testing::FakeCommand;

/// The whole wizard in settings-file mode with the live system as its source, its folders made.
struct SettingsFixture : ShellFixture {
  SettingsFixture() {
    run.Installer = std::move(*machine.services.create_installer());
    run.InstallerSecond = std::move(*machine.services.create_installer());
    run.PackageMode = false;
    run.SettingsFromSystem = true;
    run.ProductInstallDir = "C:\\Product";
    run.TempFolder = "C:\\Temp\\run";
    run.ConfigAppDataFolder = "C:\\Temp\\run\\config";
    run.SettingsFileName = "KTECFG.CAB";
    machine.files.AddFolder(run.ProductInstallDir);
    machine.files.AddFolder(run.ConfigAppDataFolder);
    table.BuildSettingsPageList();
  }

  static std::string Staging(const std::string& below) {
    return std::string("SOFTWARE\\Orvantic\\ZED") + below;
  }
  static std::string Live(const std::string& below) { return std::string("SOFTWARE\\Orvantic\\RDX") + below; }
  static std::string StagingVersion(const std::string& below) {
    return std::string(kStagingVersionKey) + below;
  }
  static std::string LiveVersion(const std::string& below) { return std::string(kLiveVersionKey) + below; }
  bool HasStaging(const std::string& below) {
    return machine.registry.HasKey(Hive::kCurrentUser, Staging(below));
  }

  void SetStagingDword(const std::string& below, const char* name, uint32_t number) {
    machine.registry.SetDword(Hive::kCurrentUser, Staging(below), name, number);
  }

  /// Shows a page as the current one.
  template <typename T>
  T& Show() {
    T& page = table.Get<T>();
    page.Show();
    Take();
    return page;
  }
  std::vector<std::string> Commands() { return machine.processes.CommandLines(); }
};

}  // namespace kw::testing

#endif  // KITWRIGHT_SETTINGS_SETTINGS_TEST_SUPPORT_H_
