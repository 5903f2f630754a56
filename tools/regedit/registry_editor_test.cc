#include "tools/regedit/registry_editor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>

#include "base/storage.h"
#include "formats/utf16_bytes.h"
#include "platform/embedded/registry.h"
#include "platform/embedded/temp_machine.h"

namespace kw::regedit {
namespace {

using platform::Hive;
using platform::kAnyRegistrySize;
using platform::kKeyAll;
using platform::RegistryValue;
using platform::embedded::EmbeddedRegistry;

class RegistryEditor : public ::testing::Test {
 protected:
  RegistryEditor() { std::filesystem::create_directories(machine_.OnC("Temp Folder")); }

  Status Do(std::string_view line) {
    const auto command = ParseCommand(line);
    if (!command.ok()) return command.error();
    return regedit::Run(*command, MachinePaths(root_, "C:\\Temp Folder"), 1252);
  }
  std::string Host(const std::string& name) const { return machine_.OnC("Temp Folder/" + name); }
  void Write(const std::string& name, const std::string& bytes) {
    machine_.Put("drive_c/Temp Folder/" + name, bytes);
  }
  std::string Text(const std::string& name) {
    const auto bytes = ReadWholeFile(SystemStorage(), Host(name));
    return bytes.ok() ? formats::Utf16LeBytesToUtf8(bytes->substr(2)) : "(no such file)";
  }
  void Set(const std::string& path, const std::string& name, const RegistryValue& value) {
    EmbeddedRegistry registry(root_, 1252);
    ASSERT_TRUE((*registry.CreateKey(Hive::kCurrentUser, path, kKeyAll))->SetValue(name, value).ok());
  }
  RegistryValue Get(Hive hive, const std::string& path, const std::string& name) {
    EmbeddedRegistry registry(root_, 1252);
    const auto key = registry.OpenKey(hive, path, platform::kKeyQuery);
    return key.ok() ? (*key)->QueryValue(name, kAnyRegistrySize).value_or(RegistryValue()) : RegistryValue();
  }

  platform::embedded::TempMachine machine_;
  const std::string& root_ = machine_.root();
};

TEST_F(RegistryEditor, TheExportLineHasNoClosingQuoteBehindTheKey) {
  Set("SOFTWARE\\Orvantic\\ZED", "DeltaConfig", RegistryValue::OfDword(1));
  Set("SOFTWARE\\Orvantic\\ZED\\Sub Key", "t", RegistryValue::OfText("C:\\x"));
  ASSERT_EQ(Do("regedit /s /e \"C:\\Temp Folder\\KTE700.REG\" \"HKEY_CURRENT_USER\\SOFTWARE\\Orvantic\\ZED")
                .message(),
            "");
  EXPECT_EQ(Text("KTE700.REG"),
            "Windows Registry Editor Version 5.00\r\n\r\n"
            "[HKEY_CURRENT_USER\\SOFTWARE\\Orvantic\\ZED]\r\n\"DeltaConfig\"=dword:00000001\r\n\r\n"
            "[HKEY_CURRENT_USER\\SOFTWARE\\Orvantic\\ZED\\Sub Key]\r\n\"t\"=\"C:\\\\x\"\r\n\r\n");
}

TEST_F(RegistryEditor, WhatWasExportedIsImportedAgain) {
  Set("A\\B", "", RegistryValue{platform::kRegBinary, std::string(60, '\x01'), 0});
  Set("A\\B", "e", RegistryValue{platform::kRegSz, "", 0});
  ASSERT_TRUE(Do("regedit /s /e \"C:\\Temp Folder\\1.reg\" \"HKEY_CURRENT_USER\\A\\B\"").ok());
  {
    EmbeddedRegistry registry(root_, 1252);
    ASSERT_TRUE(registry.DeleteKey(Hive::kCurrentUser, "A\\B").ok());
  }
  ASSERT_EQ(Do("regedit.exe /s \"C:\\Temp Folder\\1.reg\"").message(), "");
  EXPECT_EQ(Get(Hive::kCurrentUser, "A\\B", "").data, std::string(60, '\x01'));
  EXPECT_EQ(Get(Hive::kCurrentUser, "A\\B", "e").type, 1u);
}

TEST_F(RegistryEditor, AnImportSetsAndDeletesInBothHives) {
  Set("Old\\Deep", "v", RegistryValue::OfDword(1));
  Set("X", "gone", RegistryValue::OfDword(1));
  Write("a.reg",
        "REGEDIT4\r\n\r\n[-HKEY_CURRENT_USER\\Old]\r\n[HKEY_CURRENT_USER\\X]\r\n\"gone\"=-\r\n\"n\"="
        "\"\xE4\"\r\n"
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Y]\r\n@=dword:7\r\n");
  ASSERT_EQ(Do("\"C:\\Windows\\regedit.exe\" -S a.reg").message(), "");
  EXPECT_EQ(Get(Hive::kCurrentUser, "Old\\Deep", "v").type, 0u);
  EXPECT_EQ(Get(Hive::kCurrentUser, "X", "gone").type, 0u);
  EXPECT_EQ(Get(Hive::kCurrentUser, "X", "n").Text(), "\xC3\xA4");
  EXPECT_EQ(Get(Hive::kLocalMachine, "SOFTWARE\\Y", "").Dword(0), 7u);
}

TEST_F(RegistryEditor, NoImportDeletesAWholeHiveHoweverItIsWritten) {
  Set("X", "a", RegistryValue::OfDword(7));
  for (const char* whole : {"HKEY_CURRENT_USER", "HKEY_CURRENT_USER\\", "hkey_current_user\\\\"}) {
    Write("whole.reg", std::string("REGEDIT4\r\n[-") + whole + "]\r\n");
    EXPECT_EQ(Do("regedit /s \"C:\\Temp Folder\\whole.reg\"").number(), kErrorInvalidData) << whole;
    EXPECT_EQ(Get(Hive::kCurrentUser, "X", "a"), RegistryValue::OfDword(7)) << whole;
  }
}

TEST_F(RegistryEditor, FailuresAreReported) {
  EXPECT_EQ(Do("regedit /s /e \"C:\\Temp Folder\\no.reg\" \"HKEY_CURRENT_USER\\None").number(),
            kErrorFileNotFound);
  EXPECT_FALSE(std::filesystem::exists(Host("no.reg")));
  EXPECT_EQ(Do("regedit /s none.reg").number(), kErrorFileNotFound);
  Write("text.reg", "hello");
  EXPECT_EQ(Do("regedit /s text.reg").number(), kErrorInvalidData);
  Write("half.reg", "REGEDIT4\n[HKEY_CURRENT_USER\\X]\n\"a\"=dword:1\n\"b\"=oops\n[-HKEY_CURRENT_USER]\n");
  EXPECT_EQ(Do("regedit /s half.reg").number(), kErrorInvalidData);
  EXPECT_EQ(Get(Hive::kCurrentUser, "X", "a").Dword(0), 1u);
  EXPECT_EQ(Do("regedit /s").number(), kErrorInvalidParameter);
  EXPECT_EQ(Do("regedit /x a.reg").number(), kErrorInvalidParameter);
  EXPECT_EQ(Do("regedit /e a.reg HKEY_NOBODY\\X").number(), kErrorInvalidParameter);
}

TEST_F(RegistryEditor, TheProgramTakesItsCommandLineLetterForLetter) {
  Set("A b", "v", RegistryValue::OfDword(5));
  const std::string program = std::string(KITWRIGHT_BINARY_DIR) + "/bin/regedit";
  ::setenv("KITWRIGHT_CWD", "C:\\Temp Folder", 1);
  ::setenv("KITWRIGHT_COMMAND_LINE", "regedit /s /e \"a b.reg\" \"HKEY_CURRENT_USER\\A b", 1);
  EXPECT_EQ(std::system((program + " ignored").c_str()), 0);
  EXPECT_NE(Text("a b.reg").find("\"v\"=dword:00000005"), std::string::npos);
  ::setenv("KITWRIGHT_COMMAND_LINE", "regedit /s missing.reg", 1);
  EXPECT_EQ(WEXITSTATUS(std::system((program + " 2>&1").c_str())), 1);
  ::unsetenv("KITWRIGHT_COMMAND_LINE");
}

}  // namespace
}  // namespace kw::regedit
