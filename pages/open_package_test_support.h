#ifndef KITWRIGHT_PAGES_OPEN_PACKAGE_TEST_SUPPORT_H_
#define KITWRIGHT_PAGES_OPEN_PACKAGE_TEST_SUPPORT_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "package/installer_db.h"
#include "shell/package_test_support.h"
#include "shell/shell_test_support.h"

namespace kw::testing {

using platform::Answer;
using platform::Hive;
using platform::testing::FakeCommand;
using platform::testing::FileOperation;

/// The whole wizard in package mode with a working package open, as the source page leaves it but for the
/// pages' ReadConfig.
struct OpenPackageFixture : ShellFixture {
  OpenPackageFixture() {
    run.PackageMode = true;
    run.Installer = std::move(*machine.services.create_installer());
    run.InstallerSecond = std::move(*machine.services.create_installer());
    run.TempFolder = "C:\\Temp\\run";
    run.SourceFolder = "C:\\Source";
    run.DestinationFolder = "C:\\Out";
    run.CabDataFolder = "C:\\Temp\\run\\CabData";
    run.ConfigAppDataFolder = "C:\\Temp\\run\\config";
    run.SourceMsiPath = "C:\\Source\\Kte710.msi";
    run.WorkingMsiPath = "C:\\Temp\\run\\Kte710.msi";
    run.WorkingSetupIniPath = "C:\\Temp\\run\\Setup.ini";
    run.PackageLocale = "0409";
    run.SettingsFileName = "KTECFG.CAB";
    for (const std::string& folder : {run.CabDataFolder, run.ConfigAppDataFolder, run.DestinationFolder}) {
      machine.files.AddFolder(folder);
    }
    PackageWriter(machine).WritePackage(run.SourceFolder);
    machine.files.AddFile(run.WorkingSetupIniPath, "[Startup]\r\nProduct=Kestrane\r\n");
    machine.files.AddFile(run.CabDataFolder + "\\main.exe", "exe");
    machine.files.AddFile(run.CabDataFolder + "\\help.chm", "chm");
    Reopen();
    Page("frmSourceAndDestination").EnsureLoaded();  // builds the page list
    Take();
  }

  /// Opens a fresh working copy of the source's database.
  void Reopen() {
    run.WorkingDatabase.reset();
    EXPECT_TRUE(machine.files.CopyFile(run.SourceMsiPath, run.WorkingMsiPath, true).ok());
    auto opened = run.Installer->OpenDatabase(run.WorkingMsiPath, platform::OpenMode::kDirect);
    ASSERT_TRUE(opened.ok()) << opened.status().message();
    run.WorkingDatabase = *opened;
  }
  InstallerDb Db() { return InstallerDb::Working(machine.services, run); }
  void Sql(const std::string& statement, const SqlValues& values = {}) {
    const Status done = Db().RunSql(statement, values);
    ASSERT_TRUE(done.ok()) << statement << ": " << done.message();
  }
  /// Runs a statement on the source's database too, for what both hold from the start.
  void SqlInSource(const std::string& statement) {
    auto opened = run.Installer->OpenDatabase(run.SourceMsiPath, platform::OpenMode::kDirect);
    ASSERT_TRUE(opened.ok()) << opened.status().message();
    auto view = (*opened)->OpenView(statement);
    ASSERT_TRUE(view.ok()) << view.status().message();
    ASSERT_TRUE((*view)->Execute(nullptr).ok());
    view = Error{kErrorInvalidHandle, ""};
    ASSERT_TRUE((*opened)->Commit().ok());
  }
  /// The rows of a query, fields separated by "|".
  std::vector<std::string> Rows(const std::string& query, const SqlValues& values = {}) {
    std::vector<std::string> lines;
    const auto records = Db().QueryAll(query, values);
    EXPECT_TRUE(records.ok()) << query << ": " << records.status().message();
    if (!records.ok()) return lines;
    for (const auto& record : *records) {
      std::string line;
      for (int field = 1; field <= record->FieldCount(); ++field) {
        line += (field > 1 ? "|" : "") + record->StringData(field);
      }
      lines.push_back(line);
    }
    return lines;
  }
  std::string Property(const std::string& name) { return Db().GetProperty(name).value_or("(failed)"); }

  std::string SetupIni() { return machine.files.Content(run.WorkingSetupIniPath); }
  /// Makes a Setup.ini of these lines of its section Startup.
  void WriteStartup(const std::string& lines) {
    machine.files.AddFile(run.WorkingSetupIniPath, "[Startup]\r\n" + lines);
  }

  /// Goes to a page from the first one.
  template <typename T>
  T& Show(const std::string& caption) {
    if (!Page("frmSourceAndDestination").Visible()) Page("frmSourceAndDestination").Show();
    table.GoToPage(caption);
    Take();
    return table.Get<T>();
  }
};

/// The same for the tests of one page.
template <typename T>
struct PageFixture : OpenPackageFixture {
  T& page() { return table.Get<T>(); }
  /// Reads the package into the page and goes there.
  T& Open() {
    page().ReadConfig();
    return Show<T>(page().Caption());
  }
  /// Presses Next and gives what happened but for calls of the closed libraries.
  std::vector<std::string> Next() {
    page().Next->UserClick();
    return Steps();
  }
};

}  // namespace kw::testing

#endif  // KITWRIGHT_PAGES_OPEN_PACKAGE_TEST_SUPPORT_H_
