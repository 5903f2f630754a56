#include "platform/embedded/registry.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "base/text.h"
#include "formats/utf16_bytes.h"
#include "platform/embedded/temp_machine.h"
#include "platform/testing/registry_contract.h"

namespace kw::platform::embedded {
namespace {

using testing::DumpRegistry;

class TempRoot : public TempMachine {
 public:
  std::string File(const std::string& name) const { return root() + "/registry/" + name; }
  std::string Bytes(const std::string& name) const {
    return ReadWholeFile(SystemStorage(), File(name)).value_or("(no such file)");
  }
  void Write(const std::string& name, const std::string& bytes) const { Put("registry/" + name, bytes); }
};

// Host files on a disk that can run full: half of what is written arrives.
class FullDisk : public Storage {
 public:
  bool full = false;

  Result<std::unique_ptr<StorageFile>> Open(const std::string& path, Mode mode) override {
    KW_ASSIGN_OR_RETURN(auto file, SystemStorage().Open(path, mode));
    return std::unique_ptr<StorageFile>(std::make_unique<File>(*this, std::move(file)));
  }
  Status Rename(const std::string& from, const std::string& to) override {
    return SystemStorage().Rename(from, to);
  }
  Status Remove(const std::string& path) override { return SystemStorage().Remove(path); }
  bool Exists(const std::string& path) override { return SystemStorage().Exists(path); }
  Status CreateFolder(const std::string& path) override { return SystemStorage().CreateFolder(path); }

 private:
  class File : public StorageFile {
   public:
    File(const FullDisk& disk, std::unique_ptr<StorageFile> file) : disk_(disk), file_(std::move(file)) {}
    Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
      return file_->ReadAt(offset, buffer);
    }
    Status WriteAt(uint64_t offset, std::span<const std::byte> data) override {
      if (!disk_.full) return file_->WriteAt(offset, data);
      file_->WriteAt(offset, data.first(data.size() / 2)).IgnoreError();
      return {kErrorDiskFull, "The disk is full."};
    }
    Result<uint64_t> Size() override { return file_->Size(); }
    Status Truncate(uint64_t size) override { return file_->Truncate(size); }
    Status Sync() override { return file_->Sync(); }

   private:
    const FullDisk& disk_;
    std::unique_ptr<StorageFile> file_;
  };
};

class EmbeddedUnderTest : public testing::RegistryUnderTest {
 public:
  Registry& TheRegistry() override { return registry_; }

 private:
  TempRoot root_;
  EmbeddedRegistry registry_{root_.root(), 1252};
};

}  // namespace
}  // namespace kw::platform::embedded

namespace kw::platform::testing {
INSTANTIATE_TEST_SUITE_P(Embedded, RegistryContract,
                         ::testing::Values([] { return std::make_unique<embedded::EmbeddedUnderTest>(); }));
}  // namespace kw::platform::testing

namespace kw::platform::embedded {
namespace {

void SetDword(Registry& registry, Hive hive, const std::string& path, const std::string& name,
              uint32_t number) {
  const auto key = registry.CreateKey(hive, path, kKeyAll);
  ASSERT_TRUE(key.ok()) << key.error().message;
  ASSERT_EQ((*key)->SetValue(name, RegistryValue::OfDword(number)).message(), "");
}

uint32_t GetDword(Registry& registry, Hive hive, const std::string& path, const std::string& name) {
  const auto key = registry.OpenKey(hive, path, kKeyQuery);
  if (!key.ok()) return 0xFFFFFFFF;
  return (*key)->QueryValue(name, 255).value_or(RegistryValue()).Dword(0xFFFFFFFF);
}

// Runs `work` in a process of its own.
template <typename Work>
pid_t Fork(Work work) {
  const pid_t pid = ::fork();
  if (pid == 0) {
    work();
    ::_exit(0);
  }
  return pid;
}

TEST(EmbeddedRegistry, AtRestAHiveIsOnePlainRegistryEditorFile) {
  const TempRoot root;
  {
    EmbeddedRegistry registry(root.root(), 1252);
    SetDword(registry, Hive::kCurrentUser, "Software\\B", "n", 10);
    SetDword(registry, Hive::kCurrentUser, "Software\\A", "", 1);
  }
  EXPECT_EQ(formats::Utf16LeBytesToUtf8(root.Bytes("HKEY_CURRENT_USER.reg")),
            "\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n"
            "\r\n[HKEY_CURRENT_USER]\r\n\r\n[HKEY_CURRENT_USER\\Software]\r\n"
            "\r\n[HKEY_CURRENT_USER\\Software\\A]\r\n@=dword:00000001\r\n"
            "\r\n[HKEY_CURRENT_USER\\Software\\B]\r\n\"n\"=dword:0000000a\r\n\r\n");
  EXPECT_FALSE(std::filesystem::exists(root.File("HKEY_CURRENT_USER.journal")));
  EXPECT_FALSE(std::filesystem::exists(root.File("HKEY_LOCAL_MACHINE.reg")));
}

TEST(EmbeddedRegistry, AHiveThatIsOnlyReadKeepsItsBytes) {
  const TempRoot root;
  const std::string bytes =
      "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\X]\n\"v\"=\"\xC3\xA4\"\n";
  root.Write("HKEY_LOCAL_MACHINE.reg", bytes);
  {
    EmbeddedRegistry registry(root.root(), 1252);
    const auto key = registry.OpenKey(Hive::kLocalMachine, "SOFTWARE\\X", kKeyQuery);
    ASSERT_TRUE(key.ok());
    EXPECT_EQ((*key)->QueryValue("v", 255)->Text(), "\xC3\xA4");
    const auto again = registry.CreateKey(Hive::kLocalMachine, "software\\x", kKeyAll);
    EXPECT_TRUE((*again)->SetValue("V", RegistryValue::OfText("\xC3\xA4")).ok());
    SetDword(registry, Hive::kCurrentUser, "Software", "n", 1);
  }
  EXPECT_EQ(root.Bytes("HKEY_LOCAL_MACHINE.reg"), bytes);
}

TEST(EmbeddedRegistry, LookingAtAMachineWithoutARegistryMakesNothing) {
  const TempRoot root;
  {
    EmbeddedRegistry registry(root.root(), 1252);
    EXPECT_EQ(registry.OpenKey(Hive::kCurrentUser, "Software", kKeyQuery).number(), kErrorFileNotFound);
    EXPECT_TRUE(registry.OpenKey(Hive::kCurrentUser, "", kKeyQuery).ok());
  }
  EXPECT_FALSE(std::filesystem::exists(root.root() + "/registry"));
}

TEST(EmbeddedRegistry, ADamagedHiveIsReportedAndNeverReplaced) {
  const TempRoot root;
  root.Write("HKEY_CURRENT_USER.reg", "no registry");
  {
    EmbeddedRegistry registry(root.root(), 1252);
    const auto key = registry.CreateKey(Hive::kCurrentUser, "Software", kKeyAll);
    EXPECT_EQ(key.number(), kErrorInvalidData);
    EXPECT_NE(key.error().message.find("HKEY_CURRENT_USER.reg"), std::string::npos);
  }
  EXPECT_EQ(root.Bytes("HKEY_CURRENT_USER.reg"), "no registry");
}

TEST(EmbeddedRegistry, OthersSeeAChangeAtOnceAndThroughOpenHandles) {
  const TempRoot root;
  EmbeddedRegistry one(root.root(), 1252);
  EmbeddedRegistry two(root.root(), 1252);
  SetDword(one, Hive::kCurrentUser, "Software\\X", "n", 1);
  const auto key = two.OpenKey(Hive::kCurrentUser, "Software\\X", kKeyReadWrite);
  ASSERT_TRUE(key.ok());
  for (uint32_t i = 2; i < 50; ++i) {
    SetDword(one, Hive::kCurrentUser, "Software\\X", "n", i);
    if (i % 7 == 0) one.Flush().IgnoreError();
    EXPECT_EQ((*key)->QueryValue("n", 255)->Dword(0), i);
    ASSERT_TRUE((*key)->SetValue("m", RegistryValue::OfDword(i)).ok());
    if (i % 5 == 0) two.Flush().IgnoreError();
    EXPECT_EQ(GetDword(one, Hive::kCurrentUser, "Software\\X", "m"), i);
  }
  ASSERT_TRUE(DeleteTree(one, Hive::kCurrentUser, "Software").ok());
  EXPECT_EQ((*key)->QueryValue("n", 255).number(), kErrorKeyDeleted);
}

TEST(EmbeddedRegistry, OthersSeeValuesOfTheRootAndKeysThatBeginWithAHyphen) {
  const TempRoot root;
  EmbeddedRegistry writer(root.root(), 1252);
  SetDword(writer, Hive::kCurrentUser, "a\\b", "kept", 1);
  SetDword(writer, Hive::kCurrentUser, "-a", "hyphen", 2);
  SetDword(writer, Hive::kCurrentUser, "", "root", 3);
  EmbeddedRegistry reader(root.root(), 1252);
  EXPECT_EQ(GetDword(reader, Hive::kCurrentUser, "a\\b", "kept"), 1u);
  EXPECT_EQ(GetDword(reader, Hive::kCurrentUser, "-a", "hyphen"), 2u);
  EXPECT_EQ(GetDword(reader, Hive::kCurrentUser, "", "root"), 3u);
  EXPECT_TRUE(writer.DeleteKey(Hive::kCurrentUser, "-a").ok());
  EXPECT_FALSE(reader.OpenKey(Hive::kCurrentUser, "-a", kKeyQuery).ok());
  EXPECT_EQ(GetDword(reader, Hive::kCurrentUser, "a\\b", "kept"), 1u);
}

TEST(EmbeddedRegistry, AFileReplacedFromOutsideIsReadAnew) {
  const TempRoot root;
  EmbeddedRegistry registry(root.root(), 1252);
  SetDword(registry, Hive::kCurrentUser, "X", "n", 1);
  ASSERT_TRUE(registry.Flush().ok());
  root.Write("HKEY_CURRENT_USER.reg", "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\X]\r\n\"n\"=dword:2\r\n");
  EXPECT_EQ(GetDword(registry, Hive::kCurrentUser, "X", "n"), 2u);
}

TEST(EmbeddedRegistry, OrderOfCreationOutlivesTheProcess) {
  const TempRoot root;
  for (const char* name : {"z", "a", "m"}) {
    EmbeddedRegistry registry(root.root(), 1252);
    SetDword(registry, Hive::kCurrentUser, "X", name, 1);
  }
  EmbeddedRegistry registry(root.root(), 1252);
  EXPECT_EQ(DumpRegistry(registry, Hive::kCurrentUser, "X"),
            (std::vector<std::string>{"[X]", "\"z\"=dword:00000001", "\"a\"=dword:00000001",
                                      "\"m\"=dword:00000001"}));
}

TEST(EmbeddedRegistry, ARecordCutOffByAKillDoesNotCount) {
  const TempRoot root;
  const std::string journal = root.File("HKEY_CURRENT_USER.journal");
  const pid_t pid = Fork([&] {
    EmbeddedRegistry registry(root.root(), 1252);
    SetDword(registry, Hive::kCurrentUser, "X", "first", 1);
    SetDword(registry, Hive::kCurrentUser, "X", "second", 2);
    ::_exit(0);  // without folding
  });
  ::waitpid(pid, nullptr, 0);
  const std::string whole = root.Bytes("HKEY_CURRENT_USER.journal");
  ASSERT_GT(whole.size(), 100u);
  for (size_t cut = 0; cut < whole.size(); cut += 3) {
    std::filesystem::resize_file(journal, cut);
    {
      EmbeddedRegistry registry(root.root(), 1252);
      const bool has_first = GetDword(registry, Hive::kCurrentUser, "X", "first") == 1;
      EXPECT_TRUE(has_first || GetDword(registry, Hive::kCurrentUser, "X", "second") == 0xFFFFFFFF);
      SetDword(registry, Hive::kCurrentUser, "X", "third", 3);
    }
    {
      EmbeddedRegistry registry(root.root(), 1252);
      EXPECT_EQ(GetDword(registry, Hive::kCurrentUser, "X", "third"), 3u) << cut;
    }
    std::filesystem::remove(root.File("HKEY_CURRENT_USER.reg"));
    root.Write("HKEY_CURRENT_USER.journal", whole);
  }
}

TEST(EmbeddedRegistry, AFoldThatDiedBeforeRemovingTheJournalDoesNoHarm) {
  const TempRoot root;
  ::waitpid(Fork([&] {
              EmbeddedRegistry registry(root.root(), 1252);
              SetDword(registry, Hive::kCurrentUser, "X", "a", 1);
              SetDword(registry, Hive::kCurrentUser, "X", "b", 2);
              (*registry.OpenKey(Hive::kCurrentUser, "X", kKeyAll))->DeleteValue("a").IgnoreError();
              SetDword(registry, Hive::kCurrentUser, "X", "a", 3);
              SetDword(registry, Hive::kCurrentUser, "Y\\Z", "c", 4);
              DeleteTree(registry, Hive::kCurrentUser, "Y").IgnoreError();
              ::_exit(0);
            }),
            nullptr, 0);
  const std::string journal = root.Bytes("HKEY_CURRENT_USER.journal");
  const std::vector<std::string> expected = {"[]", "[X]", "\"b\"=dword:00000002", "\"a\"=dword:00000003"};
  for (int round = 0; round < 3; ++round) {
    {
      EmbeddedRegistry registry(root.root(), 1252);
      EXPECT_EQ(DumpRegistry(registry, Hive::kCurrentUser, ""), expected);
      ASSERT_TRUE(registry.Flush().ok());
      EXPECT_FALSE(std::filesystem::exists(root.File("HKEY_CURRENT_USER.journal")));
    }
    root.Write("HKEY_CURRENT_USER.journal", journal);
  }
}

TEST(EmbeddedRegistry, ARegistryLaidOutAnewIsNotChangedByALeftOverJournal) {
  const TempRoot root;
  const std::string fresh = "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\X]\r\n\"n\"=dword:1\r\n";
  root.Write("HKEY_CURRENT_USER.reg", fresh);
  ::waitpid(Fork([&] {
              EmbeddedRegistry registry(root.root(), 1252);
              SetDword(registry, Hive::kCurrentUser, "X", "n", 2);
              ::_exit(0);
            }),
            nullptr, 0);
  ASSERT_TRUE(std::filesystem::exists(root.File("HKEY_CURRENT_USER.journal")));
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  root.Write("HKEY_CURRENT_USER.reg", fresh);
  {
    EmbeddedRegistry registry(root.root(), 1252);
    EXPECT_EQ(GetDword(registry, Hive::kCurrentUser, "X", "n"), 1u);
  }
  EXPECT_EQ(root.Bytes("HKEY_CURRENT_USER.reg"), fresh);
  EXPECT_FALSE(std::filesystem::exists(root.File("HKEY_CURRENT_USER.journal")));
}

TEST(EmbeddedRegistry, AKillAtAnyMomentLeavesWhatWasSetBefore) {
  const TempRoot root;
  uint32_t last = 0;
  for (int round = 0; round < 12; ++round) {
    int pipe_ends[2];
    ASSERT_EQ(::pipe(pipe_ends), 0);
    const pid_t pid = Fork([&] {
      EmbeddedRegistry registry(root.root(), 1252);
      for (uint32_t i = last + 1;; ++i) {
        SetDword(registry, Hive::kCurrentUser, "Software\\X", "n", i);
        SetDword(registry, Hive::kCurrentUser, "Software\\X", "pad " + std::to_string(i % 97), i);
        if (::write(pipe_ends[1], &i, sizeof i) != sizeof i) ::_exit(1);
        if (i % 5 == 0) registry.Flush().IgnoreError();
      }
    });
    ::close(pipe_ends[1]);
    std::this_thread::sleep_for(std::chrono::microseconds(8000 + 3777 * round));
    ::kill(pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
    uint32_t told = last;
    uint32_t number = 0;
    while (::read(pipe_ends[0], &number, sizeof number) == sizeof number) told = number;
    ::close(pipe_ends[0]);
    EmbeddedRegistry registry(root.root(), 1252);
    const uint32_t kept = told == 0 ? 0 : GetDword(registry, Hive::kCurrentUser, "Software\\X", "n");
    ASSERT_GE(kept, told);
    ASSERT_LE(kept, told + 1);
    last = kept;
  }
  EXPECT_GT(last, 12u);
}

TEST(EmbeddedRegistry, ConcurrentWritersLoseNothing) {
  const TempRoot root;
  constexpr uint32_t kWriters = 4;
  constexpr uint32_t kValues = 150;
  std::vector<pid_t> pids;
  for (uint32_t writer = 0; writer < kWriters; ++writer) {
    pids.push_back(Fork([&] {
      for (uint32_t part = 0; part < 3; ++part) {
        EmbeddedRegistry registry(root.root(), 1252);
        for (uint32_t i = part * kValues / 3; i < (part + 1) * kValues / 3; ++i) {
          SetDword(registry, Hive::kCurrentUser, "Shared", std::to_string(writer) + "." + std::to_string(i),
                   i);
          SetDword(registry, Hive::kCurrentUser, "Own " + std::to_string(writer), "last", i);
        }
      }
    }));
  }
  for (const pid_t pid : pids) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    EXPECT_EQ(status, 0);
  }
  EXPECT_FALSE(std::filesystem::exists(root.File("HKEY_CURRENT_USER.journal")));
  EmbeddedRegistry registry(root.root(), 1252);
  EXPECT_EQ((*registry.OpenKey(Hive::kCurrentUser, "Shared", kKeyQuery))->QueryInfo()->values,
            kWriters * kValues);
  for (uint32_t writer = 0; writer < kWriters; ++writer) {
    EXPECT_EQ(GetDword(registry, Hive::kCurrentUser, "Own " + std::to_string(writer), "last"), kValues - 1);
  }
}

TEST(EmbeddedRegistry, ADiskThatIsFullKeepsTheOldStateAndSaysSo) {
  const TempRoot root;
  FullDisk disk;
  {
    EmbeddedRegistry registry(root.root(), 1252, disk);
    SetDword(registry, Hive::kCurrentUser, "X", "n", 1);
    const auto key = registry.OpenKey(Hive::kCurrentUser, "X", kKeyReadWrite);
    ASSERT_TRUE(key.ok());
    disk.full = true;
    EXPECT_EQ((*key)->SetValue("n", RegistryValue::OfDword(2)).number(), kErrorDiskFull);
    EXPECT_EQ((*key)->QueryValue("n", 255)->Dword(0), 1u);
    EXPECT_EQ(registry.Flush().number(), kErrorDiskFull);
    EXPECT_FALSE(std::filesystem::exists(root.File("HKEY_CURRENT_USER.reg")));
    disk.full = false;
    EXPECT_TRUE((*key)->SetValue("n", RegistryValue::OfDword(3)).ok());
    disk.full = true;
  }
  EmbeddedRegistry registry(root.root(), 1252);
  EXPECT_EQ(GetDword(registry, Hive::kCurrentUser, "X", "n"), 3u);
}

TEST(EmbeddedRegistry, ALongJournalIsFoldedInOnTheWay) {
  const TempRoot root;
  EmbeddedRegistry registry(root.root(), 1252);
  const auto key = registry.CreateKey(Hive::kCurrentUser, "X", kKeyAll);
  for (int i = 0; i < 200; ++i) {
    RegistryValue value{kRegBinary, std::string(4000, static_cast<char>(i)), 0};
    ASSERT_TRUE((*key)->SetValue("v", value).ok());
  }
  EXPECT_LT(std::filesystem::file_size(root.File("HKEY_CURRENT_USER.journal")), 1100000u);
  EXPECT_TRUE(std::filesystem::exists(root.File("HKEY_CURRENT_USER.reg")));
  EmbeddedRegistry other(root.root(), 1252);
  EXPECT_EQ((*other.OpenKey(Hive::kCurrentUser, "X", kKeyQuery))->QueryValue("v", 4000)->data,
            std::string(4000, static_cast<char>(199)));
}

TEST(EmbeddedRegistry, TenThousandValuesAreWrittenComparedAndDeletedInAMoment) {
  const TempRoot root;
  EmbeddedRegistry tool(root.root(), 1252);
  EmbeddedRegistry wizard(root.root(), 1252);
  const auto start = std::chrono::steady_clock::now();
  const auto written = tool.CreateKey(Hive::kCurrentUser, "X", kKeyAll);
  for (uint32_t i = 0; i < 10000; ++i) {
    ASSERT_TRUE((*written)->SetValue("value " + std::to_string(i), RegistryValue::OfDword(i)).ok());
  }
  ASSERT_TRUE(CopyTree(tool, Hive::kCurrentUser, "X", Hive::kCurrentUser, "Y").ok());
  const auto staged = wizard.OpenKey(Hive::kCurrentUser, "X", kKeyReadWrite);
  const auto source = wizard.OpenKey(Hive::kCurrentUser, "Y", kKeyQuery);
  ASSERT_TRUE(staged.ok() && source.ok());
  for (uint32_t i = 10000; i-- > 0;) {
    const auto value = (*staged)->EnumValue(i, 255);
    ASSERT_TRUE(value.ok());
    ASSERT_EQ((*source)->QueryValue(value->name, 255).value_or(RegistryValue()), value->value);
    ASSERT_TRUE((*staged)->DeleteValue(value->name).ok());
  }
  // A tenth of this on an idle machine.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  EXPECT_EQ((*staged)->QueryInfo()->values, 0u);
}

}  // namespace
}  // namespace kw::platform::embedded
