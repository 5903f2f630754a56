#ifndef KITWRIGHT_PLATFORM_TESTING_CLOSED_LIBRARIES_CONTRACT_H_
#define KITWRIGHT_PLATFORM_TESTING_CLOSED_LIBRARIES_CONTRACT_H_

// The contract of ClosedLibraries as tests, to be included in one file of a test program and instantiated.
// The libraries' place is taken by one that writes down its calls.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/closed_libraries.h"
#include "platform/file_system.h"
#include "platform/processes.h"

namespace kw::platform::testing {

/// Closed libraries under test, and a place to work in.
class ClosedLibrariesUnderTest {
 public:
  virtual ~ClosedLibrariesUnderTest() = default;
  virtual ClosedLibraries& Under() = 0;
  virtual FileSystem& Files() = 0;
  /// Only to set variables.
  virtual Processes& Environment() = 0;
  /// An empty folder with drive and folder; the installed product's.
  virtual std::string Folder() = 0;
  /// The folder that counts as the program's.
  virtual std::string ProgramFolder() = 0;
  /// Puts the library `library_probe` into a folder under the name of one of the closed libraries
  /// ("zedutil").
  virtual void PutLibrary(const std::string& folder, const std::string& library) = 0;
};

class ClosedLibrariesContract
    : public ::testing::TestWithParam<std::function<std::unique_ptr<ClosedLibrariesUnderTest>()>> {
 protected:
  ClosedLibrariesContract() : under_test(GetParam()()), libraries(under_test->Under()) {
    start_ = under_test->Files().CurrentFolder();
    Set("PROBE_CALL", under_test->Folder() + "\\call.txt");
    Set("PROBE_RESULT", "7");
    Set("PROBE_RAISE", "0");
  }
  ~ClosedLibrariesContract() override { under_test->Files().SetCurrentFolder(start_).IgnoreError(); }
  void Set(const std::string& name, const std::string& value) {
    under_test->Environment().SetEnvironment(name, value);
  }
  void PutAll() {
    for (const char* name : {"zedutil", "TxMailScan", "TxPanelLib", "TxHelpLib", "TxUnzip", "bulwarkcfg"}) {
      under_test->PutLibrary(under_test->ProgramFolder(), name);
    }
  }
  /// The line of the last call.
  std::string LastCall() {
    return under_test->Files().ReadFile(under_test->Folder() + "\\call.txt").value_or("(none)");
  }

 private:
  std::string start_;

 protected:
  std::unique_ptr<ClosedLibrariesUnderTest> under_test;
  ClosedLibraries& libraries;
};

TEST_P(ClosedLibrariesContract, WideTextArrivesWhole) {
  PutAll();
  EXPECT_EQ(libraries.IsAdmin().value_or(-1), 7);
  EXPECT_EQ(LastCall(), "IsAdmin");
  EXPECT_EQ(libraries.RegShDeleteKey(Hive::kCurrentUser, "SOFTWARE\\Größe 日本").value_or(-1), 7);
  EXPECT_EQ(LastCall(), "REG_SHDeleteKey HKCU SOFTWARE\\Größe 日本");
  EXPECT_EQ(libraries.RegShDeleteEmptyKey(Hive::kLocalMachine, "A").value_or(-1), 7);
  EXPECT_EQ(LastCall(), "REG_SHDeleteEmptyKey HKLM A");
  EXPECT_EQ(libraries.RegShDeleteEmptyKeyEx(Hive::kCurrentUser, "A\\B").value_or(-1), 7);
  EXPECT_EQ(LastCall(), "REG_SHDeleteEmptyKeyEx HKCU A\\B");
  EXPECT_EQ(libraries.ConvertRegFile("C:\\Temp\\ö.reg").value_or(-1), 7);
  EXPECT_EQ(LastCall(), "ConvertRegFile C:\\Temp\\ö.reg 0");
  EXPECT_EQ(libraries.EncryptDecryptFile(true, "C:\\a", "C:\\b").value_or(-1), 7);
  EXPECT_EQ(LastCall(), "EncryptDecrypt 1 1 0 C:\\a C:\\b");
  EXPECT_EQ(libraries.EncryptDecryptFile(false, "C:\\b", "C:\\c").value_or(-1), 7);
  EXPECT_EQ(LastCall(), "EncryptDecrypt 0 1 0 C:\\b C:\\c");
  EXPECT_EQ(libraries.EditSiteList("C:\\ä.chm").value_or(-1), 7);
  EXPECT_EQ(LastCall(), "EditSiteList 0 0 C:\\ä.chm");
  EXPECT_EQ(libraries.InitializeHtmlHelpPath("::/context.txt").value_or(-1), 7);
  EXPECT_EQ(LastCall(), "InitializeHtmlHelpPath ::/context.txt");
  EXPECT_EQ(libraries.GetHtmlHelpPath().value_or(""), "C:\\Hilfe\\größe.chm::/context.txt");
}

TEST_P(ClosedLibrariesContract, NarrowTextIsInTheSystemsCodePage) {
  PutAll();
  EXPECT_EQ(libraries.TxUnzip("größe.zip", "C:\\Temp").value_or(-1), 7);
  EXPECT_EQ(LastCall(),
            "TxUnzip gr\xF6\xDF"
            "e.zip C:\\Temp");
  EXPECT_EQ(libraries.BwkExtractInstallerFiles("C:\\B.exe", "C:\\Temp").value_or(-1), 7);
  EXPECT_EQ(LastCall(), "BWKExtractInstallerFilesA C:\\B.exe C:\\Temp");
  const std::string folder = "C:\\Bulwark";
  EXPECT_EQ(libraries.BwkCreateInstaller("B", "P", &folder, 1, 0).value_or(-1), 7);
  EXPECT_EQ(LastCall(), "BWKCreateInstallerA B P [C:\\Bulwark] 1 0");
  EXPECT_EQ(libraries.BwkCreateInstaller("B", "", nullptr, 0, 1).value_or(-1), 7);
  EXPECT_EQ(LastCall(), "BWKCreateInstallerA B  (null) 0 1");
  EXPECT_EQ(libraries.TxUnzip("日本.zip", "C:\\Temp").number(), kErrorUnrepresentableText);
}

TEST_P(ClosedLibrariesContract, TextIsEncipheredInPlace) {
  PutAll();
  std::string text = "gr\xF6";
  EXPECT_EQ(libraries.EncryptTextInPlace(text).value_or(-1), 7);
  EXPECT_EQ(text, "hs\xF7");
  EXPECT_EQ(LastCall(), "EncryptDecrypt 1 0 3 gr\xF6 in place");
}

TEST_P(ClosedLibrariesContract, NumbersArriveAndResultsComeBackAsTheyAre) {
  PutAll();
  EXPECT_EQ(libraries.EmalConfigZed(3, 1).value_or(-1), 7);
  EXPECT_EQ(LastCall(), "Emal_ConfigZED 1 3 1");
  Set("PROBE_RESULT", "0");
  EXPECT_EQ(libraries.EmalConfigZed(2, 0).value_or(-1), 0);
  EXPECT_EQ(LastCall(), "Emal_ConfigZED 1 2 0");
}

TEST_P(ClosedLibrariesContract, ACallThatRaisesAnErrorFails) {
  PutAll();
  Set("PROBE_RAISE", "429");
  EXPECT_EQ(libraries.EmalConfigZed(2, 0).number(), 429);
  EXPECT_EQ(libraries.GetHtmlHelpPath().number(), 429);
  Set("PROBE_RAISE", "0");
  EXPECT_TRUE(libraries.EmalConfigZed(2, 0).ok());
}

TEST_P(ClosedLibrariesContract, ALibraryThatCrashesIsAFailedCallAndTheProgramGoesOn) {
  PutAll();
  Set("PROBE_RAISE", "crash");
  EXPECT_EQ(libraries.EditSiteList("").number(), kErrorFunctionFailed);
  EXPECT_EQ(libraries.TxUnzip("a", "b").number(), kErrorFunctionFailed);
  Set("PROBE_RAISE", "0");
  EXPECT_EQ(libraries.EditSiteList("").value_or(-1), 7);
}

TEST_P(ClosedLibrariesContract, AMissingLibraryIsAFailedCall) {
  EXPECT_EQ(libraries.EmalConfigZed(2, 0).number(), kErrorModuleNotFound);
  under_test->PutLibrary(under_test->ProgramFolder(), "TxMailScan");
  EXPECT_TRUE(libraries.EmalConfigZed(2, 0).ok());
}

TEST_P(ClosedLibrariesContract, LibrariesAreFoundInTheProductsFolderAndTheCurrentOne) {
  under_test->PutLibrary(under_test->Folder(), "TxHelpLib");
  EXPECT_TRUE(libraries.GetHtmlHelpPath().ok());
  const std::string current = under_test->Folder() + "\\elsewhere";
  ASSERT_TRUE(under_test->Files().CreateFolder(current).ok());
  under_test->PutLibrary(current, "TxPanelLib");
  EXPECT_FALSE(libraries.EditSiteList("").ok());
  ASSERT_TRUE(under_test->Files().SetCurrentFolder(current).ok());
  EXPECT_TRUE(libraries.EditSiteList("").ok());
}

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_CLOSED_LIBRARIES_CONTRACT_H_
