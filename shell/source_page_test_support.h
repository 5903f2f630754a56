#ifndef KITWRIGHT_SHELL_SOURCE_PAGE_TEST_SUPPORT_H_
#define KITWRIGHT_SHELL_SOURCE_PAGE_TEST_SUPPORT_H_

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "base/text.h"
#include "pages/frm_source_and_destination.h"
#include "platform/file_versions.h"
#include "shell/frm_welcome.h"
#include "shell/package_test_support.h"
#include "shell/shell_test_support.h"

namespace kw::testing {

/// Version blocks by path.
class FakeVersions : public platform::FileVersions {
 public:
  std::map<std::string, platform::FileVersion, LessNoCase> blocks;
  Result<platform::FileVersion> Read(const std::string& path) override {
    const auto block = blocks.find(path);
    if (block == blocks.end()) return Error{kErrorResourceDataNotFound, path + " has no version block."};
    return block->second;
  }
};

inline platform::FileVersion VersionWithOriginalName(const std::string& name) {
  platform::FileVersion version;
  version.translations = {{0x0409, 0x04E4}};
  version.strings["040904E4"]["OriginalFilename"] = name;
  return version;
}

/// The wizard of package mode on its first page, with a package at "C:\Source" and a cabinet tool that
/// unpacks its two files.
struct SourcePageFixture : ShellFixture {
  explicit SourcePageFixture(FormFactories factories = AllFormFactories())
      : ShellFixture(std::move(factories)) {
    machine.services.versions = &versions;
    machine.registry.SetText(platform::Hive::kLocalMachine,
                             "SOFTWARE\\Orvantic\\Stratocon\\Application Plugins\\KESTRANE7100", "Language",
                             "0409");
    machine.registry.SetText(platform::Hive::kLocalMachine,
                             "SOFTWARE\\Orvantic\\Stratocon\\Application Plugins\\KESTRANE7000", "Language",
                             "0409");
    run.Installer = std::move(*machine.services.create_installer());
    run.InstallerSecond = std::move(*machine.services.create_installer());
    run.EnoughMemory = true;
    machine.processes.On("CabArc X", [this](const platform::testing::FakeCommand& command) {
      // "CabArc X CABINET *.* FOLDER\"
      const size_t folder = command.command_line.find(" *.* ");
      if (command.command_line.find('"') != std::string::npos) return;  // a settings cabinet; there is none
      const std::string target = command.command_line.substr(folder + 5);
      machine.files.AddFile(target + "main.exe", "exe");
      machine.files.AddFile(target + "help.chm", "chm");
    });
    package.WritePackage("C:\\Source");
    machine.files.AddFolder("C:\\Out");
    table.Get<frmWelcome>().Show();
    table.Get<frmWelcome>().Next.UserClick();
    page().SourceDir.SetText("C:\\Source");
    page().DestinationDir.SetText("C:\\Out");
    Take();
    machine.files.log.clear();
  }

  frmSourceAndDestination& page() { return table.Get<frmSourceAndDestination>(); }

  /// Presses Next and gives what happened but for calls of the closed libraries.
  std::vector<std::string> Next() {
    page().Next->UserClick();
    return Steps();
  }
  bool Opened() { return table.FormByName("frmFeatures").Visible(); }
  std::vector<std::string> TempFiles() { return machine.files.Tree("C:\\Temp"); }

  FakeVersions versions;
  PackageWriter package{machine};
};

}  // namespace kw::testing

#endif  // KITWRIGHT_SHELL_SOURCE_PAGE_TEST_SUPPORT_H_
