#include "platform/embedded/closed_libraries.h"

#include <filesystem>
#include <memory>

#include "platform/embedded/processes.h"
#include "platform/embedded/temp_machine.h"
#include "platform/shared/pe_file_versions.h"
#include "platform/testing/closed_libraries_contract.h"
#include "platform/testing/fake_registry.h"
#include "platform/testing/fake_system.h"

namespace kw::platform::testing {
namespace {

namespace fs = std::filesystem;

class EmbeddedUnderTest : public ClosedLibrariesUnderTest {
 public:
  EmbeddedUnderTest() {
    fs::create_directories(machine_.OnC("Kitwright"));
    registry_.SetText(Hive::kLocalMachine, "SOFTWARE\\Orvantic\\RDX\\Kestrane Enterprise\\CurrentVersion",
                      "szInstallDir", "C:\\Work");
  }
  ClosedLibraries& Under() override { return libraries_; }
  FileSystem& Files() override { return files_; }
  Processes& Environment() override { return processes_; }
  std::string Folder() override { return "C:\\Work"; }
  std::string ProgramFolder() override { return system_.program_folder; }
  void PutLibrary(const std::string& folder, const std::string& library) override {
    fs::copy_file(KITWRIGHT_BINARY_DIR "/tests/library_probe.so",
                  files_.Paths().HostPath(folder) + "/" + library + ".so");
  }

 private:
  embedded::TempMachine machine_;
  embedded::EmbeddedFileSystem files_{MachinePaths(machine_.root(), "C:\\")};
  PeFileVersions versions_{files_};
  embedded::EmbeddedProcesses processes_{files_, versions_, "C:\\Kitwright"};
  FakeRegistry registry_;
  FakeSystem system_;
  embedded::EmbeddedClosedLibraries libraries_{files_, registry_, system_};
};

INSTANTIATE_TEST_SUITE_P(Embedded, ClosedLibrariesContract,
                         ::testing::Values([] { return std::make_unique<EmbeddedUnderTest>(); }));

TEST(EmbeddedClosedLibraries, ACopysTargetIsAnOpenKeyByItsPath) {
  EmbeddedUnderTest machine;
  machine.PutLibrary("C:\\Kitwright", "zedutil");
  machine.Environment().SetEnvironment("PROBE_CALL", "C:\\Work\\call.txt");
  machine.Environment().SetEnvironment("PROBE_RESULT", "1");
  EXPECT_EQ(machine.Under().RegShCopyKey(Hive::kCurrentUser, "A\\B", Hive::kLocalMachine, "C").value_or(-1),
            1);
  EXPECT_EQ(machine.Files().ReadFile("C:\\Work\\call.txt").value_or(""),
            "REG_SHCopyKey HKCU A\\B to HKLM C 0");
}

TEST(EmbeddedClosedLibraries, AFileThatIsNoLibraryIsAFailedCall) {
  EmbeddedUnderTest machine;
  ASSERT_TRUE(machine.Files().WriteFile("C:\\Kitwright\\zedutil.so", "text").ok());
  EXPECT_EQ(machine.Under().IsAdmin().number(), kErrorModuleNotFound);
}

}  // namespace
}  // namespace kw::platform::testing
