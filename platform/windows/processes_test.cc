#include "platform/windows/processes.h"

#include <memory>

#include "platform/testing/processes_contract.h"
#include "platform/windows/temp_folder.h"

namespace kw::platform::testing {
namespace {

class WindowsUnderTest : public ProcessesUnderTest {
 public:
  Processes& Under() override { return processes_; }
  FileSystem& Files() override { return files_; }
  std::string Folder() override { return folder_.path(); }
  std::string ProgramFolder() override { return windows::WindowsSystem().ProgramFolder(); }
  void PutProbe(const std::string& path) override {
    ASSERT_EQ(files_.CopyFile(windows::BuiltFile("process_probe.exe"), path, true).message(), "");
  }

 private:
  windows::TempFolder folder_;
  windows::WindowsFileSystem files_;
  windows::WindowsProcesses processes_;
};

INSTANTIATE_TEST_SUITE_P(Windows, ProcessesContract,
                         ::testing::Values([] { return std::make_unique<WindowsUnderTest>(); }));

}  // namespace
}  // namespace kw::platform::testing
