#ifndef KITWRIGHT_PLATFORM_TESTING_FAKE_MACHINE_H_
#define KITWRIGHT_PLATFORM_TESTING_FAKE_MACHINE_H_

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/transcript.h"
#include "platform/services.h"
#include "platform/shared/ini_profile_files.h"
#include "platform/shared/msi_installer.h"
#include "platform/shared/pe_file_versions.h"
#include "platform/shared/recording.h"
#include "platform/shared/xml_files.h"
#include "platform/testing/fake_closed_libraries.h"
#include "platform/testing/fake_dialogs.h"
#include "platform/testing/fake_file_system.h"
#include "platform/testing/fake_processes.h"
#include "platform/testing/fake_registry.h"
#include "platform/testing/fake_system.h"

namespace kw::platform::testing {

/// Installed products as a test sets them.
class FakeProducts : public ProductQuery {
 public:
  struct Product {
    std::string upgrade_code;
    std::string code;
    std::map<std::string, int> features;  ///< install states by feature key
  };
  std::vector<Product> products;
  std::vector<std::string> RelatedProducts(const std::string& upgrade_code) override;
  int FeatureState(const std::string& product_code, const std::string& feature) override;
};

/// A whole machine in memory for page tests. Everything that happens on it is in `transcript`, in the lines
/// of a script run.
///
///   FakeMachine machine;
///   machine.files.AddFile("C:\\Source\\Setup.ini", "[Startup]\r\n");
///   machine.dialogs.answers = {Answer::kOk};
///   SomeRule(machine.services);
///   EXPECT_THAT(machine.transcript.Take(), ElementsAre("message Done."));
///
/// It begins with the folders "C:\Temp" and the program's "C:\Kitwright", which is the current folder.
struct FakeMachine {
  FakeMachine();
  FakeMachine(const FakeMachine&) = delete;
  FakeMachine& operator=(const FakeMachine&) = delete;

  Transcript transcript;
  FakeFileSystem files;
  FakeDialogs dialogs{transcript};
  FakeProcesses processes{files};
  FakeSystem system;
  FakeRegistry registry;
  IniProfileFiles profiles{files, system};
  XmlFiles xml{files};
  PeFileVersions versions{files};
  FakeProducts products;
  FakeClosedLibraries libraries{files, registry};
  RecordingProcesses recorded_processes{processes, transcript};
  RecordingClosedLibraries recorded_libraries{libraries, transcript};
  /// An installer object on this machine, as `services.create_installer` makes it.
  std::unique_ptr<Installer> MakeInstaller();
  /// What pages are given.
  Services services;
};

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_FAKE_MACHINE_H_
