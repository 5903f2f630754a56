#include "platform/windows/machine.h"

#include <memory>

#include "platform/testing/fake_dialogs.h"
#include "platform/testing/fake_system.h"
#include "platform/testing/installer_contract.h"
#include "platform/testing/profile_contract.h"
#include "platform/testing/versions_contract.h"
#include "platform/testing/xml_contract.h"
#include "platform/windows/temp_folder.h"

namespace kw::platform::testing {
namespace {

class WindowsUnderTest : public InstallerUnderTest {
 public:
  Installer& Under() override { return *installer_; }
  FileSystem& Files() override { return machine_.files; }
  std::string Folder() override { return folder_.path(); }

 private:
  windows::TempFolder folder_;
  Transcript transcript_;
  FakeDialogs dialogs_{transcript_};
  windows::WindowsMachine machine_{dialogs_};
  std::unique_ptr<Installer> installer_ = std::move(*machine_.services.create_installer());
};

INSTANTIATE_TEST_SUITE_P(Windows, InstallerContract,
                         ::testing::Values([] { return std::make_unique<WindowsUnderTest>(); }));

// The file formats on the system's files, with the code page that the contracts name.
class FormatsUnderTest : public ProfileUnderTest, public XmlUnderTest, public VersionsUnderTest {
 public:
  ProfileFiles& Profile() override { return profile_; }
  XmlFactory& Xml() override { return xml_; }
  FileVersions& Versions() override { return versions_; }
  FileSystem& Files() override { return files_; }
  std::string Folder() override { return folder_.path(); }

 private:
  windows::TempFolder folder_;
  windows::WindowsFileSystem files_;
  FakeSystem system_;
  IniProfileFiles profile_{files_, system_};
  XmlFiles xml_{files_};
  PeFileVersions versions_{files_};
};

std::unique_ptr<FormatsUnderTest> Make() { return std::make_unique<FormatsUnderTest>(); }

INSTANTIATE_TEST_SUITE_P(Windows, ProfileContract, ::testing::Values(&Make));
INSTANTIATE_TEST_SUITE_P(Windows, XmlContract, ::testing::Values(&Make));
INSTANTIATE_TEST_SUITE_P(Windows, VersionsContract, ::testing::Values(&Make));

}  // namespace
}  // namespace kw::platform::testing

namespace kw::platform::windows {
namespace {

TEST(WindowsMachine, HoldsEveryService) {
  Transcript transcript;
  testing::FakeDialogs dialogs{transcript};
  WindowsMachine machine(dialogs);
  const TempFolder folder;
  const Services& services = machine.services;
  EXPECT_EQ(services.dialogs, &dialogs);
  EXPECT_TRUE(services.files->FolderExists(services.system->ProgramFolder()));
  EXPECT_TRUE(services.profiles->WriteString(folder.path() + "\\a.ini", "s", "k", "v").ok());
  EXPECT_EQ(services.files->ReadFile(folder.path() + "\\a.ini").value_or(""), "[s]\r\nk=v\r\n");
  EXPECT_FALSE(services.versions->Read(folder.path() + "\\a.ini").ok());
  EXPECT_TRUE(services.xml->CreateDocument().ok());
  EXPECT_FALSE(services.processes->Start("kitwright-nothing", WindowStyle::kHidden).ok());
  EXPECT_FALSE(services.libraries->EmalConfigZed(2, 0).ok());
  EXPECT_TRUE(services.registry->OpenKey(Hive::kCurrentUser, "Software", kKeyQuery).ok());
  EXPECT_TRUE(services.create_installer().ok());
}

}  // namespace
}  // namespace kw::platform::windows
