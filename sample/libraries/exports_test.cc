// The closed libraries as the wizard has them: loaded at run time and called by their exported names.

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zip.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "base/machine_config.h"
#include "base/storage.h"
#include "base/text.h"
#include "formats/utf16_bytes.h"
#include "platform/embedded/registry.h"
#include "platform/embedded/temp_machine.h"
#include "platform/shared/library_abi.h"
#include "platform/testing/registry_dump.h"
#include "sample/archive/appended_cabinet.h"
#include "sample/libraries/site_list.h"

namespace kw::sample {
namespace {

using platform::Hive;
using platform::RegistryValue;
using platform::testing::DumpRegistry;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// A loaded library of the build.
class Library {
 public:
  explicit Library(const std::string& path)
      : handle_(dlopen((std::string(KITWRIGHT_BINARY_DIR) + path).c_str(), RTLD_NOW | RTLD_LOCAL)) {}
  ~Library() {
    if (handle_ != nullptr) dlclose(handle_);
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  template <typename Call>
  Call* Get(const char* name) {
    return handle_ != nullptr ? reinterpret_cast<Call*>(dlsym(handle_, name)) : nullptr;
  }

 private:
  void* handle_;
};

#define CALL(library, name) (library.Get<decltype(::name)>(#name))

class LibrariesTest : public ::testing::Test {
 protected:
  LibrariesTest() {
    for (const char* name : {"SAMPLE_TOOL_ANSWER", "SAMPLE_FAIL", "DISPLAY", "WAYLAND_DISPLAY"})
      ::unsetenv(name);
  }

  platform::embedded::EmbeddedRegistry Registry() {
    return platform::embedded::EmbeddedRegistry(machine_.root(), 1252);
  }
  void SetDword(Hive hive, const std::string& key, const std::string& name, uint32_t number) {
    auto registry = Registry();
    ASSERT_TRUE((*registry.CreateKey(hive, key, platform::kKeyAll))
                    ->SetValue(name, RegistryValue::OfDword(number))
                    .ok());
  }
  std::vector<std::string> Dump(const std::string& key) {
    auto registry = Registry();
    return DumpRegistry(registry, Hive::kCurrentUser, key);
  }
  std::string Content(const std::string& on_c) {
    return ReadWholeFile(SystemStorage(), machine_.OnC(on_c)).value_or("(missing)");
  }
  /// An archive on drive C with these members.
  void PutZip(const std::string& name, const std::vector<std::pair<std::string, std::string>>& members,
              bool with_password = false) {
    zip_t* zip = zip_open(machine_.OnC(name).c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    ASSERT_NE(zip, nullptr);
    for (const auto& [member, content] : members) {
      const zip_int64_t at = zip_file_add(
          zip, member.c_str(), zip_source_buffer(zip, content.data(), content.size(), 0), ZIP_FL_ENC_UTF_8);
      ASSERT_GE(at, 0);
      if (with_password) {
        ASSERT_EQ(zip_file_set_encryption(zip, static_cast<zip_uint64_t>(at), ZIP_EM_AES_256, "secret"), 0);
      }
    }
    ASSERT_EQ(zip_close(zip), 0);
  }

  platform::embedded::TempMachine machine_;
  Library zedutil_{"/bin/zedutil.so"};
  Library unzip_{"/bin/TxUnzip.so"};
  Library bulwark_{"/bin/bulwarkcfg.so"};
  Library mail_{"/sample/product/TxMailScan.so"};
  Library panel_{"/sample/product/TxPanelLib.so"};
  Library help_{"/sample/product/TxHelpLib.so"};
};

TEST_F(LibrariesTest, TheMachineSaysWhetherTheUserIsAnAdministrator) {
  EXPECT_EQ(CALL(zedutil_, IsAdmin)(), 1);
  machine_.Put("machine.ini", "[machine]\nadmin=0\n");
  EXPECT_EQ(CALL(zedutil_, IsAdmin)(), 0);
  machine_.Put("machine.ini", "[machine]\nadmin=1\n");
  EXPECT_EQ(CALL(zedutil_, IsAdmin)(), 1);
}

TEST_F(LibrariesTest, KeysAreCopiedAndDeleted) {
  SetDword(Hive::kCurrentUser, "SOFTWARE\\Orvantic\\ZED\\A", "v", 1);
  auto registry = Registry();
  ASSERT_TRUE(
      registry.CreateKey(Hive::kCurrentUser, "SOFTWARE\\Orvantic\\ZED_Backup", platform::kKeyAll).ok());
  const KitwrightOpenKey open{KITWRIGHT_HKEY_CURRENT_USER, u"SOFTWARE\\Orvantic\\ZED_Backup"};
  EXPECT_EQ(CALL(zedutil_, REG_SHCopyKey)(KITWRIGHT_HKEY_CURRENT_USER, u"SOFTWARE\\Orvantic\\ZED", &open, 0),
            0);
  EXPECT_THAT(Dump("SOFTWARE\\Orvantic\\ZED_Backup"),
              ElementsAre("[SOFTWARE\\Orvantic\\ZED_Backup]", "[SOFTWARE\\Orvantic\\ZED_Backup\\A]",
                          "\"v\"=dword:00000001"));
  EXPECT_EQ(CALL(zedutil_, REG_SHDeleteKey)(KITWRIGHT_HKEY_CURRENT_USER, u"SOFTWARE\\Orvantic\\ZED_Backup"),
            0);
  EXPECT_THAT(Dump("SOFTWARE\\Orvantic\\ZED_Backup"), IsEmpty());
  EXPECT_NE(CALL(zedutil_, REG_SHDeleteKey)(KITWRIGHT_HKEY_CURRENT_USER, u"SOFTWARE\\Orvantic\\ZED_Backup"),
            0);
}

TEST_F(LibrariesTest, OnlyEmptyKeysAreDeletedAsEmpty) {
  SetDword(Hive::kCurrentUser, "A", "v", 1);
  auto registry = Registry();
  ASSERT_TRUE(registry.CreateKey(Hive::kCurrentUser, "B\\C", platform::kKeyAll).ok());
  EXPECT_EQ(CALL(zedutil_, REG_SHDeleteEmptyKey)(KITWRIGHT_HKEY_CURRENT_USER, u"A"), 0);
  EXPECT_EQ(CALL(zedutil_, REG_SHDeleteEmptyKey)(KITWRIGHT_HKEY_CURRENT_USER, u"B"), 0);
  EXPECT_NE(CALL(zedutil_, REG_SHDeleteEmptyKeyEx)(KITWRIGHT_HKEY_CURRENT_USER, u"B"), 0);
  EXPECT_NE(CALL(zedutil_, REG_SHDeleteEmptyKey)(KITWRIGHT_HKEY_CURRENT_USER, u"Missing"), 0);
  EXPECT_THAT(Dump("B"), IsEmpty());
}

TEST_F(LibrariesTest, ASettingsExportIsConvertedInPlace) {
  machine_.Put(
      "drive_c/a.reg",
      "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Orvantic\\RDX\\UI]\r\n\"v\"=dword:00000002\r\n");
  EXPECT_NE(CALL(zedutil_, ConvertRegFile)(u"C:\\a.reg", 0), 0);
  EXPECT_THAT(Utf16ToUtf8(std::u16string(reinterpret_cast<const char16_t*>(Content("a.reg").data()) + 1,
                                         Content("a.reg").size() / 2 - 1)),
              HasSubstr("[HKEY_CURRENT_USER\\SOFTWARE\\Orvantic\\ZED\\UI]\r\n\"v\"=dword:00000002"));
  EXPECT_NE(CALL(zedutil_, ConvertRegFile)(u"C:\\a.reg", 0), 0);
}

TEST_F(LibrariesTest, WhatIsNoSettingsExportIsRefusedAndStaysAsItIs) {
  for (const std::string text :
       {"", "no registry file", "REGEDIT4\r\n",
        "REGEDIT4\r\n[HKEY_CURRENT_USER\\SOFTWARE\\Other]\r\n\"v\"=\"1\"\r\n",
        "REGEDIT4\r\n[HKEY_CURRENT_USER\\SOFTWARE\\Orvantic\\ZED_Backup]\r\n\"v\"=\"1\"\r\n",
        "REGEDIT4\r\n[-HKEY_CURRENT_USER\\SOFTWARE\\Orvantic\\ZED]\r\n",
        "REGEDIT4\r\n[HKEY_CURRENT_USER\\SOFTWARE\\Orvantic\\ZED]\r\nnonsense\r\n"}) {
    machine_.Put("drive_c/a.reg", text);
    EXPECT_EQ(CALL(zedutil_, ConvertRegFile)(u"C:\\a.reg", 0), 0) << text;
    EXPECT_EQ(Content("a.reg"), text);
  }
  EXPECT_EQ(CALL(zedutil_, ConvertRegFile)(u"C:\\missing.reg", 0), 0);
}

TEST_F(LibrariesTest, FilesAndTextsAreEnciphered) {
  machine_.Put("drive_c/a.txt", "settings");
  const auto cipher = CALL(zedutil_, EncryptDecrypt);
  EXPECT_NE(cipher(1, 1, 0, u"C:\\a.txt", const_cast<char16_t*>(u"C:\\a.cfg")), 0);
  EXPECT_NE(cipher(0, 1, 0, u"C:\\a.cfg", const_cast<char16_t*>(u"C:\\b.txt")), 0);
  EXPECT_EQ(Content("b.txt"), "settings");
  EXPECT_EQ(cipher(0, 1, 0, u"C:\\a.txt", const_cast<char16_t*>(u"C:\\c.txt")), 0);
  EXPECT_EQ(Content("c.txt"), "(missing)");
  char text[] = "secret";
  EXPECT_NE(cipher(1, 0, 6, text, text), 0);
  EXPECT_STRNE(text, "secret");
  EXPECT_EQ(std::string(text).size(), 6u);
  ::setenv("SAMPLE_FAIL", "StcSign,EncryptDecrypt", 1);
  EXPECT_EQ(cipher(1, 1, 0, u"C:\\a.txt", const_cast<char16_t*>(u"C:\\a.cfg")), 0);
}

TEST_F(LibrariesTest, AnArchiveIsUnpackedAlsoByItsBareName) {
  PutZip("Work/dat.zip", {{"SIGS.DAT", "sigs"}, {"sub/Übersicht.txt", "text"}, {"./REPAIR.DAT", "repair"}});
  std::filesystem::create_directories(machine_.OnC("Out"));
  ::setenv("KITWRIGHT_CWD", "C:\\Work", 1);
  CALL(unzip_, TxUnzip)("dat.zip", "C:\\Out");
  EXPECT_EQ(CALL(unzip_, LastCallRaised)(), 0);
  EXPECT_EQ(Content("Out/SIGS.DAT"), "sigs");
  EXPECT_EQ(Content("Out/sub/Übersicht.txt"), "text");
  EXPECT_EQ(Content("Out/REPAIR.DAT"), "repair");
}

TEST_F(LibrariesTest, ABadArchiveRaisesAndWritesNothing) {
  std::filesystem::create_directories(machine_.OnC("Out"));
  machine_.Put("drive_c/bad.zip", "PK\x03\x04 nothing");
  PutZip("up.zip", {{"good.txt", "x"}, {"./../up.txt", "x"}});
  PutZip("absolute.zip", {{"C:\\Windows\\x.txt", "x"}});
  PutZip("locked.zip", {{"a.txt", "x"}}, true);
  PutZip("root.zip", {{"good.txt", "x"}, {"/up.txt", "x"}});
  PutZip("device.zip", {{"good.txt", "x"}, {"sub/NUL.txt", "x"}});
  PutZip("stream.zip", {{"good.txt", "x"}, {"good.txt:x", "x"}});
  PutZip("long.zip", {{"good.txt", "x"}, {std::string(300, 'n'), "x"}});
  for (const char* name :
       {"C:\\bad.zip", "C:\\up.zip", "C:\\absolute.zip", "C:\\locked.zip", "C:\\missing.zip", "C:\\root.zip",
        "C:\\device.zip", "C:\\stream.zip", "C:\\long.zip"}) {
    CALL(unzip_, TxUnzip)(name, "C:\\Out");
    EXPECT_NE(CALL(unzip_, LastCallRaised)(), 0) << name;
  }
  EXPECT_TRUE(std::filesystem::is_empty(machine_.OnC("Out")));
  EXPECT_EQ(Content("up.txt"), "(missing)");
}

TEST_F(LibrariesTest, AMemberOfAnotherSizeThanTheArchiveTellsRaisesAndWritesNothing) {
  std::filesystem::create_directories(machine_.OnC("Out"));
  for (const char told : {'\x0A', '\xFF'}) {
    PutZip("size.zip", {{"a.txt", std::string(200, 'x')}});
    std::string bytes = Content("size.zip");
    const size_t record = bytes.rfind("PK\x01\x02");
    ASSERT_NE(record, std::string::npos);
    ASSERT_EQ(bytes[record + 24], '\xC8');
    bytes[record + 24] = told;
    machine_.Put("drive_c/size.zip", bytes);
    CALL(unzip_, TxUnzip)("C:\\size.zip", "C:\\Out");
    EXPECT_NE(CALL(unzip_, LastCallRaised)(), 0);
  }
  EXPECT_TRUE(std::filesystem::is_empty(machine_.OnC("Out")));
}

TEST_F(LibrariesTest, AnArchiveWritesThroughNoLinkAndMixesNoNames) {
  machine_.Put("drive_c/precious.txt", "precious");
  std::filesystem::create_directories(machine_.OnC("Out"));
  std::filesystem::create_directories(machine_.OnC("Else"));
  std::filesystem::create_symlink(machine_.OnC("precious.txt"),
                                  std::filesystem::path(machine_.OnC("Out")) / "a.txt");
  std::filesystem::create_directory_symlink(machine_.OnC("Else"),
                                            std::filesystem::path(machine_.OnC("Out")) / "sub");
  PutZip("link.zip", {{"a.txt", "new"}});
  CALL(unzip_, TxUnzip)("C:\\link.zip", "C:\\Out");
  EXPECT_EQ(Content("precious.txt"), "precious");
  EXPECT_EQ(Content("Out/a.txt"), "new");
  PutZip("folder.zip", {{"sub/x.txt", "new"}});
  CALL(unzip_, TxUnzip)("C:\\folder.zip", "C:\\Out");
  EXPECT_NE(CALL(unzip_, LastCallRaised)(), 0);
  EXPECT_TRUE(std::filesystem::is_empty(machine_.OnC("Else")));
  PutZip("case.zip", {{"Name.txt", "first"}, {"NAME.TXT", "second"}});
  CALL(unzip_, TxUnzip)("C:\\case.zip", "C:\\Out");
  EXPECT_NE(CALL(unzip_, LastCallRaised)(), 0);
  EXPECT_EQ(Content("Out/Name.txt"), "first");
}

TEST_F(LibrariesTest, ADamagedArchiveGivesItsBytesOrRaisesAndWritesNowhereElse) {
  const std::string text(3000, 't');
  PutZip("good.zip", {{"sub/first.txt", text}, {"second.txt", "second"}});
  std::filesystem::rename(machine_.OnC("good.zip"), machine_.OnC("good"));
  const std::string good = Content("good");
  unsigned state = 20041115;
  const auto below = [&](size_t end) { return (state = state * 1664525 + 1013904223) / 256 % end; };
  const auto beside = [&] {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(machine_.OnC("")))
      names.insert(entry.path().filename().string());
    return names;
  };
  machine_.Put("drive_c/bad.zip", "");
  std::filesystem::create_directories(machine_.OnC("Out"));
  const std::set<std::string> before = beside();
  int raised = 0;
  for (int turn = 0; turn < 250; ++turn) {
    std::string bytes = good;
    if (turn % 3 == 0) bytes.resize(below(good.size()));
    for (size_t changes = turn % 3; changes > 0; --changes)
      bytes[below(bytes.size())] = static_cast<char>(below(256));
    machine_.Put("drive_c/bad.zip", bytes);
    std::filesystem::remove_all(machine_.OnC("Out"));
    std::filesystem::create_directories(machine_.OnC("Out"));
    CALL(unzip_, TxUnzip)("C:\\bad.zip", "C:\\Out");
    if (CALL(unzip_, LastCallRaised)() != 0) ++raised;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(machine_.OnC("Out"))) {
      if (!entry.is_regular_file()) continue;
      // Names have no checksum; contents do.
      const std::string name = std::filesystem::relative(entry, machine_.OnC("Out")).string();
      const std::string content = Content("Out/" + name);
      EXPECT_TRUE(content == text || content == "second") << turn << ": " << name;
    }
  }
  EXPECT_GT(raised, 100);
  EXPECT_EQ(beside(), before);
}

TEST_F(LibrariesTest, TheFirewallsInstallerIsReadAndRewritten) {
  const std::string program = machine_.Put("drive_c/Bulwark.exe", "MZ firewall");
  machine_.Put("parts/MDF.INI", "[General]\r\nInstallPath=\r\nSTC=0\r\nLangID=0409\r\nSilent=0\r\n");
  machine_.Put("parts/BulwarkPrefs.TXT", "old preferences");
  ASSERT_TRUE(
      WriteBehindProgram(SystemStorage(), program, *FilesBelow(machine_.root() + "/parts"), program, 1252)
          .ok());
  std::filesystem::create_directories(machine_.OnC("Data"));
  CALL(bulwark_, BWKExtractInstallerFilesA)("C:\\Bulwark.exe", "C:\\Data");
  EXPECT_EQ(Content("Data/BulwarkPrefs.TXT"), "old preferences");
  machine_.Put("drive_c/New.TXT", "new preferences");
  EXPECT_NE(CALL(bulwark_, BWKCreateInstallerA)("C:\\Bulwark.exe", "C:\\New.TXT", "D:\\Guard", 1, 0), 0);
  CALL(bulwark_, BWKExtractInstallerFilesA)("C:\\Bulwark.exe", "C:\\Data");
  EXPECT_EQ(Content("Data/BulwarkPrefs.TXT"), "new preferences");
  const std::string descriptor = Content("Data/MDF.INI");
  EXPECT_EQ(IniValue(descriptor, "General", "InstallPath"), "D:\\Guard");
  EXPECT_EQ(IniValue(descriptor, "General", "Silent"), "1");
  EXPECT_EQ(IniValue(descriptor, "General", "STC"), "0");
  EXPECT_EQ(IniValue(descriptor, "General", "LangID"), "0409");
  EXPECT_EQ(Content("Bulwark.exe").substr(0, 11), "MZ firewall");
  EXPECT_NE(CALL(bulwark_, BWKCreateInstallerA)("C:\\Bulwark.exe", "", nullptr, 0, 1), 0);
  CALL(bulwark_, BWKExtractInstallerFilesA)("C:\\Bulwark.exe", "C:\\Data");
  EXPECT_EQ(Content("Data/BulwarkPrefs.TXT"), "new preferences");
  EXPECT_EQ(IniValue(Content("Data/MDF.INI"), "General", "InstallPath"), "");
  EXPECT_EQ(IniValue(Content("Data/MDF.INI"), "General", "STC"), "1");
}

TEST_F(LibrariesTest, ARefusedRewriteLeavesTheInstallerAsItWas) {
  machine_.Put("drive_c/NoInstaller.exe", "MZ");
  EXPECT_EQ(CALL(bulwark_, BWKCreateInstallerA)("C:\\NoInstaller.exe", "", nullptr, 0, 1), 0);
  ::setenv("SAMPLE_FAIL", "BWKCreate", 1);
  EXPECT_EQ(CALL(bulwark_, BWKCreateInstallerA)("C:\\NoInstaller.exe", "", nullptr, 0, 1), 0);
  EXPECT_EQ(Content("NoInstaller.exe"), "MZ");
}

TEST_F(LibrariesTest, TheOnDeliveryDialogAnswersAsToldAndFlushes) {
  const std::string live = "SOFTWARE\\Orvantic\\RDX\\Shared Components\\On Delivery Scanner";
  const std::string staged = "SOFTWARE\\Orvantic\\ZED\\Shared Components\\On Delivery Scanner";
  SetDword(Hive::kLocalMachine, live, "bScan", 1);
  const auto configure = CALL(mail_, Emal_ConfigZED);
  EXPECT_EQ(configure(nullptr, 1, 2, 1), 0);
  EXPECT_THAT(Dump(staged), ElementsAre("[" + staged + "]", "\"bScan\"=dword:00000001"));
  ::setenv("SAMPLE_TOOL_ANSWER", "change", 1);
  EXPECT_NE(configure(nullptr, 1, 2, 0), 0);
  EXPECT_THAT(Dump(staged), ElementsAre("[" + staged + "]", "\"bScan\"=dword:00000002"));
  ::setenv("SAMPLE_TOOL_ANSWER", "cancel", 1);
  EXPECT_EQ(configure(nullptr, 1, 3, 0), 0);
  EXPECT_EQ(CALL(mail_, LastCallRaised)(), 0);
  ::setenv("SAMPLE_TOOL_ANSWER", "raise", 1);
  EXPECT_EQ(configure(nullptr, 1, 3, 0), 0);
  EXPECT_NE(CALL(mail_, LastCallRaised)(), 0);
}

TEST_F(LibrariesTest, TheListEditorWorksOnTheLiveList) {
  auto registry = Registry();
  ASSERT_TRUE(
      (*registry.CreateKey(Hive::kLocalMachine, "SOFTWARE\\Orvantic\\RDX\\Shared Components\\AgentCore",
                           platform::kKeyAll))
          ->SetValue("Data Path", RegistryValue::OfText("C:\\Agent"))
          .ok());
  const std::string path = machine_.Put("drive_c/Agent/SiteList.xml", "<SiteLists Version=\"7\"/>");
  const auto edit = CALL(panel_, EditSiteList);
  EXPECT_EQ(edit(nullptr, 0, "0", u"help"), 0);
  EXPECT_EQ(Content("Agent/SiteList.xml"), "<SiteLists Version=\"7\"/>");
  ::setenv("SAMPLE_TOOL_ANSWER", "change", 1);
  EXPECT_NE(edit(nullptr, 0, "0", u"help"), 0);
  EXPECT_EQ(Content("Agent/SiteList.xml"), "<SiteLists Version=\"8\"/>");
  std::filesystem::permissions(path, std::filesystem::perms::owner_read);
  edit(nullptr, 0, "0", u"help");
  EXPECT_EQ(CALL(panel_, LastCallRaised)(), kErrorAccessDenied);
  EXPECT_EQ(Content("Agent/SiteList.xml"), "<SiteLists Version=\"8\"/>");
  std::filesystem::remove(path);
  edit(nullptr, 0, "0", u"help");
  EXPECT_EQ(CALL(panel_, LastCallRaised)(), kErrorFileNotFound);
}

TEST(SiteListTextTest, AListKeepsItsSpelling) {
  const std::string wide = formats::Utf8ToUtf16LeBytes("<L Version=\"7\" a=\"\u00e9\u4e2d\"/>");
  const std::string changed = formats::Utf8ToUtf16LeBytes("<L Version=\"8\" a=\"\u00e9\u4e2d\"/>");
  const std::pair<std::string, std::string> lists[] = {
      {"<L Version=\"7\" a=\"\u00e9\"/>", "<L Version=\"8\" a=\"\u00e9\"/>"},
      {"\xEF\xBB\xBF<L Version=\"9\"/>", "\xEF\xBB\xBF<L Version=\"10\"/>"},
      {"<L Version=\"7\" a=\"\xE9\x81\"/>", "<L Version=\"8\" a=\"\xE9\x81\"/>"},
      {"\xFF\xFE" + wide, "\xFF\xFE" + changed},
      {"\xFE\xFF" + formats::SwapBytePairs(wide), "\xFE\xFF" + formats::SwapBytePairs(changed)}};
  for (const auto& [before, after] : lists) {
    SiteListText list = SiteListText::FromBytes(before);
    EXPECT_TRUE(IsValidUtf8(list.utf8));
    EXPECT_EQ(ComplaintAboutSiteList(list.utf8), "");
    list.utf8 = ChangedSiteList(list.utf8);
    EXPECT_EQ(list.ToBytes().value_or("(failed)"), after);
  }
  SiteListText western = SiteListText::FromBytes("<a>\xE9</a>");
  western.utf8 = "<a>\u4e2d</a>";
  EXPECT_FALSE(western.ToBytes().ok());
}

TEST_F(LibrariesTest, TheHelpLiesInTheCurrentFolder) {
  ::setenv("KITWRIGHT_CWD", "C:\\Product", 1);
  CALL(help_, InitializeHtmlHelpPath)(u"::/context.txt");
  EXPECT_EQ(Utf16ToUtf8(CALL(help_, GetHtmlHelpPath)()), "C:\\Product\\Kestrane.chm::/context.txt");
}

}  // namespace
}  // namespace kw::sample
