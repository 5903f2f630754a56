#ifndef KITWRIGHT_PLATFORM_TESTING_PROCESSES_CONTRACT_H_
#define KITWRIGHT_PLATFORM_TESTING_PROCESSES_CONTRACT_H_

// The contract of Processes as tests, to be included in one file of a test program and instantiated.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/text.h"
#include "platform/file_system.h"
#include "platform/processes.h"

namespace kw::platform::testing {

/// Processes under test and a place to work in.
class ProcessesUnderTest {
 public:
  virtual ~ProcessesUnderTest() = default;
  virtual Processes& Under() = 0;
  virtual FileSystem& Files() = 0;
  /// An empty folder with drive and folder, which is not the program's.
  virtual std::string Folder() = 0;
  /// The folder that counts as the program's own; it can be written.
  virtual std::string ProgramFolder() = 0;
  /// Puts the program `process_probe` there, as a file that the system can start.
  virtual void PutProbe(const std::string& path) = 0;
};

class ProcessesContract
    : public ::testing::TestWithParam<std::function<std::unique_ptr<ProcessesUnderTest>()>> {
 protected:
  ProcessesContract() : under_test(GetParam()()), processes(under_test->Under()), files(under_test->Files()) {
    folder = under_test->Folder();
    start_ = files.CurrentFolder();
    EXPECT_TRUE(files.SetCurrentFolder(folder).ok());
    Set("PROBE_OUT", folder + "\\out.txt");
    Set("PROBE_VALUE", "");
    Set("PROBE_WAIT", "");
    Set("PROBE_EXIT", "0");
  }
  ~ProcessesContract() override { files.SetCurrentFolder(start_).IgnoreError(); }

  void Set(const std::string& name, const std::string& value) { processes.SetEnvironment(name, value); }

  /// Runs a command line to its end; its exit code, or minus the error number.
  int Run(const std::string& command_line) {
    auto child = processes.Start(command_line, WindowStyle::kHidden);
    if (!child.ok()) return -child.error().number;
    int code = (*child)->ExitCode();
    for (int i = 0; code == kStillActive && i < 4000; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
      code = (*child)->ExitCode();
    }
    return code;
  }

  /// What the last probe wrote: command line, current folder, value. Takes the file away.
  std::vector<std::string> TakeReport() {
    const std::string text = files.ReadFile(folder + "\\out.txt").value_or("nothing");
    files.DeleteFile(folder + "\\out.txt", true).IgnoreError();
    return Split(text, '\n');
  }

  void MakeFolder(const std::string& name) { ASSERT_TRUE(files.CreateFolder(folder + "\\" + name).ok()); }
  void PutProbe(const std::string& path) { under_test->PutProbe(path); }

 private:
  std::unique_ptr<ProcessesUnderTest> under_test;
  std::string start_;

 protected:
  Processes& processes;
  FileSystem& files;
  std::string folder;
  std::string ProgramFolder() { return under_test->ProgramFolder(); }
};

TEST_P(ProcessesContract, TheCommandLineArrivesLetterForLetter) {
  PutProbe(folder + "\\probe.exe");
  for (const char* line : {"probe.exe", "probe  /s   \"C:\\new folder\"\\", "probe /e \"HKEY_CURRENT_USER\\X",
                           "\"probe.exe\"  a\\\"b 'c' $HOME * ?", "probe -nos_o\"C:\\Temp\\x y\" ü"}) {
    EXPECT_EQ(Run(line), 0) << line;
    EXPECT_EQ(TakeReport()[0], line);
  }
}

TEST_P(ProcessesContract, AnUnquotedPathIsTriedBlankByBlank) {
  MakeFolder("a b");
  PutProbe(folder + "\\a b\\the probe.exe");
  const std::string line = folder + "\\a b\\the probe.exe -x";
  EXPECT_EQ(Run(line), 0);
  EXPECT_EQ(TakeReport()[0], line);
  EXPECT_EQ(Run(folder + "\\a b\\the probe /q"), 0);
  EXPECT_EQ(TakeReport()[0], folder + "\\a b\\the probe /q");
  EXPECT_EQ(Run(folder + "\\a b\\other probe.exe"), -kErrorFileNotFound);
}

TEST_P(ProcessesContract, TheShortestNameOfAnUnquotedPathWins) {
  MakeFolder("a b");
  PutProbe(folder + "\\a b\\probe.exe");
  ASSERT_TRUE(files.WriteFile(folder + "\\a.exe", "no program").ok());
  EXPECT_LT(Run(folder + "\\a b\\probe.exe"), 0);
  EXPECT_EQ(Run("\"" + folder + "\\a b\\probe.exe\""), 0);
}

TEST_P(ProcessesContract, AQuotedNameMayHoldBlanksAndItsQuoteMayStayOpen) {
  PutProbe(folder + "\\the probe.exe");
  EXPECT_EQ(Run("\"the probe\" /x"), 0);
  EXPECT_EQ(TakeReport()[0], "\"the probe\" /x");
  EXPECT_EQ(Run("\"" + folder + "\\the probe.exe"), 0);
}

TEST_P(ProcessesContract, ABareNameIsLookedForInTheProgramsFolderFirst) {
  PutProbe(ProgramFolder() + "\\kwprobe1.exe");
  EXPECT_EQ(Run("kwprobe1 one"), 0);
  ASSERT_TRUE(files.WriteFile(folder + "\\kwprobe1.exe", "no program").ok());
  EXPECT_EQ(Run("KWPROBE1.EXE two"), 0);
  EXPECT_EQ(TakeReport()[0], "KWPROBE1.EXE two");
  EXPECT_TRUE(files.DeleteFile(ProgramFolder() + "\\kwprobe1.exe", true).ok());
  EXPECT_LT(Run("kwprobe1"), 0);
}

TEST_P(ProcessesContract, ABareNameIsLookedForInTheSearchPathLast) {
  MakeFolder("tools");
  PutProbe(folder + "\\tools\\kwprobe2.exe");
  EXPECT_EQ(Run("kwprobe2"), -kErrorFileNotFound);
  Set("PATH", folder + "\\nothing;" + folder + "\\tools");
  EXPECT_EQ(Run("kwprobe2"), 0);
  Set("PATH", "");
}

TEST_P(ProcessesContract, ChildrenInheritTheCurrentFolderAndTheEnvironment) {
  PutProbe(folder + "\\probe.exe");
  MakeFolder("Größe");
  ASSERT_TRUE(files.SetCurrentFolder(folder + "\\Größe").ok());
  Set("PROBE_VALUE", "set late");
  EXPECT_EQ(Run("..\\probe.exe"), 0);
  const auto report = TakeReport();
  EXPECT_EQ(report[1], folder + "\\Größe");
  EXPECT_EQ(report[2], "set late");
}

TEST_P(ProcessesContract, TheExitCodeComesWhenTheChildHasEnded) {
  PutProbe(folder + "\\probe.exe");
  Set("PROBE_WAIT", folder + "\\go");
  Set("PROBE_EXIT", "77");
  auto child = processes.Start("probe.exe", WindowStyle::kNormal);
  ASSERT_TRUE(child.ok());
  EXPECT_EQ((*child)->ExitCode(), kStillActive);
  ASSERT_TRUE(files.WriteFile(folder + "\\go", "").ok());
  int code = kStillActive;
  for (int i = 0; code == kStillActive && i < 2000; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    code = (*child)->ExitCode();
  }
  EXPECT_EQ(code, 77);
  EXPECT_EQ((*child)->ExitCode(), 77);
  EXPECT_EQ((*child)->ForegroundWindowTitle(), "");
}

TEST_P(ProcessesContract, LettingGoOfAChildDoesNotEndIt) {
  PutProbe(folder + "\\probe.exe");
  Set("PROBE_OUT", "");
  Set("PROBE_WAIT", folder + "\\go");
  ASSERT_TRUE(processes.Start("probe.exe", WindowStyle::kHidden).ok());
  Set("PROBE_WAIT", "");
  Set("PROBE_OUT", folder + "\\out.txt");
  EXPECT_EQ(Run("probe.exe second"), 0);
  EXPECT_EQ(TakeReport()[0], "probe.exe second");
  ASSERT_TRUE(files.WriteFile(folder + "\\go", "").ok());
}

TEST_P(ProcessesContract, WhatIsNotThereDoesNotStart) {
  EXPECT_EQ(Run("kwprobe3"), -kErrorFileNotFound);
  EXPECT_EQ(Run("\"" + folder + "\\kwprobe3.exe\" /x"), -kErrorFileNotFound);
  EXPECT_LT(Run(""), 0);
  ASSERT_TRUE(files.WriteFile(folder + "\\text.exe", "no program").ok());
  EXPECT_EQ(Run(folder + "\\text.exe"), -kErrorBadExeFormat);
}

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_PROCESSES_CONTRACT_H_
