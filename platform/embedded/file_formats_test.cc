// The adapters of the file formats on the embedded machine's files.

#include "platform/embedded/file_system.h"
#include "platform/embedded/temp_machine.h"
#include "platform/shared/ini_profile_files.h"
#include "platform/shared/pe_file_versions.h"
#include "platform/shared/xml_files.h"
#include "platform/testing/fake_system.h"
#include "platform/testing/profile_contract.h"
#include "platform/testing/versions_contract.h"
#include "platform/testing/xml_contract.h"

namespace kw::platform::testing {
namespace {

// All three seams at once: each contract looks at its own.
class EmbeddedUnderTest : public ProfileUnderTest, public XmlUnderTest, public VersionsUnderTest {
 public:
  ProfileFiles& Profile() override { return profile_; }
  XmlFactory& Xml() override { return xml_; }
  FileVersions& Versions() override { return versions_; }
  FileSystem& Files() override { return files_; }
  std::string Folder() override { return "C:\\Work"; }

 private:
  embedded::TempMachine machine_;
  embedded::EmbeddedFileSystem files_{MachinePaths(machine_.root(), "C:\\")};
  FakeSystem system_;
  IniProfileFiles profile_{files_, system_};
  XmlFiles xml_{files_};
  PeFileVersions versions_{files_};
};

std::unique_ptr<EmbeddedUnderTest> Make() { return std::make_unique<EmbeddedUnderTest>(); }

INSTANTIATE_TEST_SUITE_P(Embedded, ProfileContract, ::testing::Values(&Make));
INSTANTIATE_TEST_SUITE_P(Embedded, XmlContract, ::testing::Values(&Make));
INSTANTIATE_TEST_SUITE_P(Embedded, VersionsContract, ::testing::Values(&Make));

}  // namespace
}  // namespace kw::platform::testing
