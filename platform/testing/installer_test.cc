#include <memory>
#include <utility>

#include "platform/shared/msi_installer.h"
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

constexpr const char* kHost = "/machine/";

/// Files in memory on a host that knows other paths than the program, and whose disk can be full.
class OtherHost : public Storage {
 public:
  explicit OtherHost(Storage& inner) : inner_(inner) {}
  bool full = false;

  Result<std::unique_ptr<StorageFile>> Open(const std::string& path, Mode mode) override {
    if (full && mode != Mode::kRead) return Full(path);
    KW_ASSIGN_OR_RETURN(auto file, inner_.Open(Below(path), mode));
    return std::unique_ptr<StorageFile>(std::make_unique<File>(*this, path, std::move(file)));
  }
  Status Rename(const std::string& from, const std::string& to) override {
    return full ? Full(from) : inner_.Rename(Below(from), Below(to));
  }
  Status Remove(const std::string& path) override { return inner_.Remove(Below(path)); }
  bool Exists(const std::string& path) override { return inner_.Exists(Below(path)); }
  Status CreateFolder(const std::string& path) override { return inner_.CreateFolder(Below(path)); }

 private:
  class File : public StorageFile {
   public:
    File(OtherHost& host, std::string path, std::unique_ptr<StorageFile> inner)
        : host_(host), path_(std::move(path)), inner_(std::move(inner)) {}
    Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
      return inner_->ReadAt(offset, buffer);
    }
    Status WriteAt(uint64_t offset, std::span<const std::byte> data) override {
      return host_.full ? host_.Full(path_) : inner_->WriteAt(offset, data);
    }
    Result<uint64_t> Size() override { return inner_->Size(); }
    Status Truncate(uint64_t size) override {
      return host_.full ? host_.Full(path_) : inner_->Truncate(size);
    }
    Status Sync() override { return host_.full ? host_.Full(path_) : inner_->Sync(); }

   private:
    OtherHost& host_;
    std::string path_;
    std::unique_ptr<StorageFile> inner_;
  };

  static std::string Below(const std::string& path) { return path.substr(std::string_view(kHost).size()); }
  Status Full(const std::string& path) const {
    return {kErrorDiskFull, "Could not write " + path + ": the disk is full."};
  }

  Storage& inner_;
};

TEST(MsiInstallerTest, FailuresOfStatementsNameTheFilesAsTheProgramKnowsThem) {
  FakeMachine machine;
  machine.files.AddFolder("C:\\Work");
  OtherHost host(machine.files.HostFiles());
  const auto installer =
      MakeMsiInstaller({host, [&](const std::string& path) { return kHost + machine.files.FullPath(path); },
                        machine.files, machine.system, machine.products});
  auto database = installer->OpenDatabase("C:\\Work\\a.msi", OpenMode::kCreateDirect);
  ASSERT_TRUE(database.ok()) << database.error().message;
  const auto view = [&](const char* sql) { return std::move(*(*database)->OpenView(sql)); };
  ASSERT_TRUE(
      view("CREATE TABLE `T` (`K` CHAR(8) NOT NULL, `D` OBJECT PRIMARY KEY `K`)")->Execute(nullptr).ok());
  ASSERT_TRUE(view("INSERT INTO `T` (`K`) VALUES ('a')")->Execute(nullptr).ok());
  const auto rows = view("SELECT `K`, `D` FROM `T`");
  ASSERT_TRUE(rows->Execute(nullptr).ok());
  const auto row = *rows->Fetch();
  const auto info = std::move(*(*database)->SummaryInformation(1));
  ASSERT_TRUE(info->SetTextProperty(2, "Title").ok());

  const auto expect_told = [](const Status& status, const char* path) {
    EXPECT_THAT(status.message(), ::testing::HasSubstr(std::string("Could not write ") + path));
    EXPECT_THAT(status.message(), ::testing::Not(::testing::HasSubstr(kHost)));
  };
  host.full = true;
  expect_told(view("INSERT INTO `T` (`K`) VALUES ('b')")->Execute(nullptr), "C:\\Work\\a.msi");
  expect_told(rows->Modify(ModifyMode::kDelete, *row), "C:\\Work\\a.msi");
  expect_told(info->Persist(), "C:\\Work\\a.msi");
}

INSTANTIATE_TEST_SUITE_P(Fake, InstallerContract,
                         ::testing::Values([] { return std::make_unique<FakeUnderTest>(); }));

}  // namespace
}  // namespace kw::platform::testing
