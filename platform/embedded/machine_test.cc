#include "platform/embedded/machine.h"

#include <filesystem>
#include <memory>

#include "platform/embedded/temp_machine.h"
#include "platform/testing/fake_dialogs.h"
#include "platform/testing/installer_contract.h"

namespace kw::platform::testing {
namespace {

class EmbeddedUnderTest : public InstallerUnderTest {
 public:
  EmbeddedUnderTest()
      : machine_(std::move(*embedded::MakeEmbeddedMachine(MachinePaths(folder_.root(), "C:\\"), dialogs_))),
        installer_(std::move(*machine_->services.create_installer())) {}
  Installer& Under() override { return *installer_; }
  FileSystem& Files() override { return machine_->files; }
  std::string Folder() override { return "C:\\Work"; }

 private:
  embedded::TempMachine folder_;
  Transcript transcript_;
  FakeDialogs dialogs_{transcript_};
  std::unique_ptr<embedded::EmbeddedMachine> machine_;
  std::unique_ptr<Installer> installer_;
};

INSTANTIATE_TEST_SUITE_P(Embedded, InstallerContract,
                         ::testing::Values([] { return std::make_unique<EmbeddedUnderTest>(); }));

}  // namespace
}  // namespace kw::platform::testing

namespace kw::platform::embedded {
namespace {

class EmbeddedMachineTest : public ::testing::Test {
 protected:
  TempMachine folder;
  Transcript transcript;
  testing::FakeDialogs dialogs{transcript};
};

TEST_F(EmbeddedMachineTest, HoldsEveryServiceOnOneMachine) {
  folder.Put("machine.ini", "[machine]\nlocale=1031\n[product1]\nupgrade={U}\ncode={P}\nConsole=3\n");
  auto made = MakeEmbeddedMachine(MachinePaths(folder.root(), "C:\\Work"), dialogs);
  ASSERT_TRUE(made.ok()) << made.error().message;
  Services& services = (*made)->services;
  EXPECT_EQ(services.files->CurrentFolder(), "C:\\Work");
  EXPECT_EQ(services.system->UserDefaultLocale(), 1031);
  EXPECT_EQ(services.dialogs, &dialogs);
  ASSERT_TRUE(services.profiles->WriteString("C:\\Work\\a.ini", "s", "k", "größe").ok());
  EXPECT_EQ(services.files->ReadFile("C:\\Work\\a.ini").value_or(""),
            "[s]\r\nk=gr\xF6\xDF"
            "e\r\n");
  EXPECT_TRUE(services.registry->CreateKey(Hive::kCurrentUser, "A\\B", kKeyAll).ok());
  EXPECT_FALSE(services.processes->Start("nothing", WindowStyle::kHidden).ok());
  EXPECT_FALSE(services.versions->Read("C:\\Work\\a.ini").ok());
  EXPECT_TRUE(services.xml->CreateDocument().ok());
  EXPECT_FALSE(services.libraries->EmalConfigZed(2, 0).ok());
  auto installer = services.create_installer();
  ASSERT_TRUE(installer.ok());
  EXPECT_EQ((*installer)->RelatedProducts("{U}"), std::vector<std::string>{"{P}"});
  EXPECT_EQ((*installer)->FeatureState("{P}", "Console"), 3);
}

TEST_F(EmbeddedMachineTest, ANewMachineBeginsWithADrive) {
  const MachinePaths paths(folder.root() + "/fresh", "C:\\");
  auto made = MakeEmbeddedMachine(paths, dialogs);
  ASSERT_TRUE(made.ok());
  EXPECT_TRUE((*made)->files.FolderExists("C:\\"));
  EXPECT_EQ(MachinePaths::OfThisProcess().root(), paths.root());
}

TEST_F(EmbeddedMachineTest, AMachineNamedByARelativePathStaysItselfElsewhere) {
  std::filesystem::current_path(std::filesystem::path(folder.root()).parent_path());
  const std::string name = std::filesystem::path(folder.root()).filename().string();
  auto made = MakeEmbeddedMachine(MachinePaths(name, "C:\\Work"), dialogs);
  ASSERT_TRUE(made.ok());
  EXPECT_TRUE((*made)->files.FolderExists("C:\\Work"));
  EXPECT_EQ(std::string(std::getenv("KITWRIGHT_ROOT")), folder.root());
}

TEST_F(EmbeddedMachineTest, ACurrentFolderThatIsGoneLeavesTheRoot) {
  auto made = MakeEmbeddedMachine(MachinePaths(folder.root(), "C:\\Gone"), dialogs);
  ASSERT_TRUE(made.ok());
  EXPECT_EQ((*made)->files.CurrentFolder(), "C:\\");
}

TEST_F(EmbeddedMachineTest, AFolderThatCannotBeMadeIsTold) {
  folder.Put("file", "x");
  EXPECT_FALSE(MakeEmbeddedMachine(MachinePaths(folder.root() + "/file", "C:\\"), dialogs).ok());
}

}  // namespace
}  // namespace kw::platform::embedded
