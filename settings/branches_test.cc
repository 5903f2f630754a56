#include "settings/branches.h"

#include "settings/settings_test_support.h"

namespace kw {
namespace {

using ::testing::Each;
using ::testing::HasSubstr;
using testing::Hive;
using ::testing::Not;
using testing::SettingsFixture;

struct BranchesTest : SettingsFixture, ::testing::Test {};

TEST_F(BranchesTest, AChangeFlagOfAnotherTypeIsNoFlagAndStays) {
  machine.registry.SetText(Hive::kCurrentUser, Staging(""), "bOasCfg32", "1");
  EXPECT_FALSE(TakeChangeFlag(machine.services, "bOasCfg32"));
  EXPECT_EQ(machine.registry.Get(Hive::kCurrentUser, Staging(""), "bOasCfg32").Text(), "1");
}

TEST_F(BranchesTest, AFlagThatTheToolDidNotWriteLeavesTheBranchAlone) {
  SetStagingDword("", "bUIOptions", 1);
  SetStagingDword("\\Key", "v", 1);
  const auto before = machine.registry.Dump(Hive::kCurrentUser, Staging(""));
  EXPECT_FALSE(TakeChangeFlag(machine.services, "bOasCfg32"));
  EXPECT_EQ(machine.registry.Dump(Hive::kCurrentUser, Staging("")), before);
}

TEST_F(BranchesTest, EveryWrapperMakesTheProgramsFolderTheCurrentOne) {
  const auto enters = [this](const std::function<void()>& call) {
    EXPECT_TRUE(machine.files.SetCurrentFolder("C:\\Product").ok());
    call();
    return machine.files.CurrentFolder() == "C:\\Kitwright";
  };
  platform::Services& services = machine.services;
  EXPECT_TRUE(enters([&] { DeleteEmptyKey(services, Staging("\\x")); }));
  EXPECT_TRUE(enters([&] { DeleteEmptyKeyTree(services, Staging("\\x")); }));
  EXPECT_TRUE(enters([&] { CopyBranch(services, Staging(""), Staging("_Backup")); }));
  EXPECT_TRUE(enters([&] { ConvertRegistryFile(services, "C:\\none.reg"); }));
  EXPECT_TRUE(enters([&] { EncryptFile(services, "C:\\none", "C:\\out"); }));
  EXPECT_TRUE(enters([&] { DecryptFile(services, "C:\\none", "C:\\out"); }));
  EXPECT_TRUE(enters([&] { EncryptText(services, "text").status().IgnoreError(); }));
}

TEST_F(BranchesTest, ACallThatFailsCountsAsTheLibrarysNo) {
  for (const char* function :
       {"REG_SHDeleteEmptyKey", "REG_SHDeleteEmptyKeyEx", "ConvertRegFile", "EncryptDecrypt"}) {
    machine.libraries.Raise(function, 53);
  }
  platform::Services& services = machine.services;
  EXPECT_FALSE(DeleteEmptyKey(services, Staging("\\x")));
  EXPECT_FALSE(DeleteEmptyKeyTree(services, Staging("\\x")));
  EXPECT_FALSE(ConvertRegistryFile(services, "C:\\a.reg"));
  EXPECT_FALSE(EncryptFile(services, "C:\\a", "C:\\b"));
  EXPECT_FALSE(DecryptFile(services, "C:\\a", "C:\\b"));
  EXPECT_EQ(EncryptText(services, "text").number(), kErrorFunctionFailed);
}

TEST_F(BranchesTest, TextIsEncipheredInTheSystemsCodePage) {
  // The stand-in counts each byte of the page up by one.
  EXPECT_EQ(EncryptText(machine.services, "a\xC3\xA4\xE2\x82\xAC").value_or(""), "b\xC3\xA5\xC2\x81");
}

TEST_F(BranchesTest, AFailureToEncipherNeverTellsTheText) {
  const auto unknown = EncryptText(machine.services, "Zebra\xE6\x97\xA5");
  EXPECT_EQ(unknown.number(), kErrorUnrepresentableText);
  EXPECT_EQ(unknown.error().message, "The password holds a character that code page 1252 does not have.");
  machine.libraries.Return("EncryptDecrypt", 0);
  EXPECT_EQ(EncryptText(machine.services, "Zebra").error().message, "The password could not be enciphered.");
  EXPECT_THAT(Take(), Each(Not(HasSubstr("Zebra"))));
}

TEST_F(BranchesTest, ANumberOfAnotherTypeReadsAsTheFallback) {
  machine.registry.SetText(Hive::kCurrentUser, Staging(""), "n", "5");
  EXPECT_EQ(ReadDword(machine.services, Hive::kCurrentUser, Staging(""), "n", 7), 7u);
  SetStagingDword("", "n", 5);
  EXPECT_EQ(ReadDword(machine.services, Hive::kCurrentUser, Staging(""), "n", 7), 5u);
  EXPECT_EQ(ReadDword(machine.services, Hive::kCurrentUser, Staging("\\none"), "n", 7), 7u);
}

}  // namespace
}  // namespace kw
