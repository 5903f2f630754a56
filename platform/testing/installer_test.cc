#include <memory>

#include "platform/testing/fake_machine.h"
#include "platform/testing/installer_contract.h"

namespace kw::platform::testing {
namespace {

class FakeUnderTest : public InstallerUnderTest {
 public:
  FakeUnderTest() : installer_(machine_.MakeInstaller()) { machine_.files.AddFolder("C:\\Work"); }
  Installer& Under() override { return *installer_; }
  FileSystem& Files() override { return machine_.files; }
  std::string Folder() override { return "C:\\Work"; }

 private:
  FakeMachine machine_;
  std::unique_ptr<Installer> installer_;
};

INSTANTIATE_TEST_SUITE_P(Fake, InstallerContract,
                         ::testing::Values([] { return std::make_unique<FakeUnderTest>(); }));

}  // namespace
}  // namespace kw::platform::testing
