#include "platform/windows/closed_libraries.h"

#include <memory>

#include "platform/registry_trees.h"
#include "platform/testing/closed_libraries_contract.h"
#include "platform/testing/fake_registry.h"
#include "platform/testing/fake_system.h"
#include "platform/windows/guarded_call.h"
#include "platform/windows/processes.h"
#include "platform/windows/registry.h"
#include "platform/windows/temp_folder.h"

namespace kw::platform::testing {
namespace {

class WindowsUnderTest : public ClosedLibrariesUnderTest {
 public:
  WindowsUnderTest() {
    EXPECT_TRUE(files_.CreateFolder(Folder()).ok());
    system_.program_folder = folder_.path() + "\\Program";
    EXPECT_TRUE(files_.CreateFolder(system_.program_folder).ok());
    registry_.SetText(Hive::kLocalMachine, "SOFTWARE\\Orvantic\\RDX\\Kestrane Enterprise\\CurrentVersion",
                      "szInstallDir", Folder());
  }
  ~WindowsUnderTest() override {
    // A loaded library cannot be deleted.
    for (const char* name : {"zedutil", "TxMailScan", "TxPanelLib", "TxHelpLib", "TxUnzip", "bulwarkcfg"}) {
      while (const HMODULE module = GetModuleHandleA(name)) FreeLibrary(module);
    }
  }
  ClosedLibraries& Under() override { return libraries_; }
  FileSystem& Files() override { return files_; }
  Processes& Environment() override { return processes_; }
  std::string Folder() override { return folder_.path() + "\\Work"; }
  std::string ProgramFolder() override { return system_.program_folder; }
  void PutLibrary(const std::string& folder, const std::string& library) override {
    ASSERT_EQ(files_.CopyFile(windows::BuiltFile("library_probe.dll"), folder + "\\" + library + ".dll", true)
                  .message(),
              "");
  }

 private:
  windows::TempFolder folder_;
  windows::WindowsFileSystem files_;
  windows::WindowsProcesses processes_;
  FakeRegistry registry_;
  FakeSystem system_;
  windows::WindowsClosedLibraries libraries_{files_, registry_, system_};
};

INSTANTIATE_TEST_SUITE_P(Windows, ClosedLibrariesContract,
                         ::testing::Values([] { return std::make_unique<WindowsUnderTest>(); }));

TEST(WindowsClosedLibraries, ACopysTargetIsTheSystemsOwnOpenKey) {
  WindowsUnderTest machine;
  machine.PutLibrary(machine.ProgramFolder(), "zedutil");
  machine.Environment().SetEnvironment("PROBE_CALL", machine.Folder() + "\\call.txt");
  machine.Environment().SetEnvironment("PROBE_RESULT", "1");
  machine.Environment().SetEnvironment("PROBE_RAISE", "0");
  windows::WindowsRegistry registry(1252);
  ASSERT_TRUE(registry.CreateKey(Hive::kCurrentUser, "Software\\KitwrightCopy", kKeyAll).ok());
  const auto copy = [&](const char* to) {
    return machine.Under().RegShCopyKey(Hive::kCurrentUser, "A\\B", Hive::kCurrentUser, to);
  };
  EXPECT_EQ(copy("Software\\KitwrightCopy").value_or(-1), 1);
  EXPECT_EQ(machine.Files().ReadFile(machine.Folder() + "\\call.txt").value_or(""),
            "REG_SHCopyKey HKCU A\\B to an open key 0");
  EXPECT_EQ(copy("Software\\KitwrightCopy\\None").number(), kErrorFileNotFound);
  EXPECT_TRUE(DeleteTree(registry, Hive::kCurrentUser, "Software\\KitwrightCopy").ok());
}

}  // namespace
}  // namespace kw::platform::testing

namespace kw::platform::windows {
namespace {

TEST(GuardedCall, ACallThatEndsAsUsualHasNoException) {
  int called = 0;
  EXPECT_EQ(KwGuardedCall([](void* count) { ++*static_cast<int*>(count); }, &called), 0u);
  EXPECT_EQ(called, 1);
}

TEST(GuardedCall, ARaisedErrorEndsTheCallAndIsToldByItsCode) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(KwGuardedCall([](void*) { RaiseException(0xE06D7363, 0, 0, nullptr); }, nullptr), 0xE06D7363u);
  }
}

TEST(GuardedCall, AMemoryFaultEndsTheCall) {
  const auto fault = [](void* address) { *static_cast<volatile int*>(address) = 1; };
  EXPECT_EQ(KwGuardedCall(fault, reinterpret_cast<void*>(8)), EXCEPTION_ACCESS_VIOLATION);
  int called = 0;
  EXPECT_EQ(KwGuardedCall([](void* count) { ++*static_cast<int*>(count); }, &called), 0u);
}

}  // namespace
}  // namespace kw::platform::windows
