#include "platform/embedded/processes.h"

#include <sys/wait.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <memory>

#include "platform/embedded/temp_machine.h"
#include "platform/testing/processes_contract.h"

namespace kw::platform::embedded {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

/// Version blocks by upper-cased file name; only the original file name matters.
class OriginalNames : public FileVersions {
 public:
  std::map<std::string, std::string> names;
  Result<FileVersion> Read(const std::string& path) override {
    const auto found = names.find(ToUpper(path));
    if (found == names.end()) return Error{kErrorResourceDataNotFound, "No version block in " + path + "."};
    FileVersion version;
    version.strings["040904B0"]["ORIGINALFILENAME"] = found->second;
    return version;
  }
};

class ProcessesMachine {
 public:
  ProcessesMachine() { fs::create_directories(machine.OnC("Program")); }
  void PutProbe(const std::string& path) {
    fs::copy_file(KITWRIGHT_BINARY_DIR "/tests/process_probe", files.Paths().HostPath(path),
                  fs::copy_options::overwrite_existing);
  }
  TempMachine machine;
  EmbeddedFileSystem files{MachinePaths(machine.root(), "C:\\Work")};
  OriginalNames versions;
  EmbeddedProcesses processes{files, versions, "C:\\Program"};
};

class EmbeddedUnderTest : public testing::ProcessesUnderTest {
 public:
  Processes& Under() override { return machine_.processes; }
  FileSystem& Files() override { return machine_.files; }
  std::string Folder() override { return "C:\\Work"; }
  std::string ProgramFolder() override { return "C:\\Program"; }
  void PutProbe(const std::string& path) override { machine_.PutProbe(path); }

 private:
  ProcessesMachine machine_;
};

class EmbeddedProcessesTest : public ::testing::Test, protected ProcessesMachine {
 protected:
  int Run(const std::string& command_line) {
    auto child = processes.Start(command_line, WindowStyle::kHidden);
    if (!child.ok()) return -child.error().number;
    while ((*child)->ExitCode() == kStillActive) ::usleep(1000);
    return (*child)->ExitCode();
  }
  // A native program that writes its name and the file that it stands for into C:\Work\out.
  void PutScript(const std::string& path, const std::string& name) {
    const std::string host =
        machine.Put("drive_c/" + path, "#!/bin/sh\nprintf '%s %s' " + name + " \"$KITWRIGHT_PROGRAM\" > '" +
                                           machine.OnC("Work/out") + "'\n");
    fs::permissions(host, fs::perms::all);
  }
  std::string Out() { return files.ReadFile("C:\\Work\\out").value_or(""); }
};

TEST_F(EmbeddedProcessesTest, WhatCannotStartIsKnownWithoutStartingIt) {
  PutScript("Program/tool", "native");
  EXPECT_TRUE(processes.CanStart("tool /s").ok());
  EXPECT_EQ(Out(), "");
  EXPECT_EQ(processes.CanStart("nothing /s").error().number, kErrorFileNotFound);
  machine.Put("drive_c/Program/text.exe", "no program");
  EXPECT_EQ(processes.CanStart("text").error().number, kErrorBadExeFormat);
}

TEST_F(EmbeddedProcessesTest, ANativeProgramMayGoWithoutItsExtension) {
  PutScript("Program/regedit", "native");
  EXPECT_EQ(Run("regedit.exe /s"), 0);
  EXPECT_EQ(Out(), "native C:\\Program\\regedit");
  EXPECT_EQ(Run("REGEDIT /s"), 0);
  machine.Put("drive_c/Program/notes", "text");
  EXPECT_EQ(Run("notes"), -kErrorFileNotFound);
}

TEST_F(EmbeddedProcessesTest, AWindowsProgramIsStoodForByTheFileBesideIt) {
  machine.Put("drive_c/Work/tool.EXE", "MZ and more");
  PutScript("Work/tool", "beside");
  versions.names["C:\\WORK\\TOOL.EXE"] = "other.exe";
  PutScript("Work/other", "original");
  EXPECT_EQ(Run("tool"), 0);
  EXPECT_EQ(Out(), "beside C:\\Work\\tool.exe");
}

TEST_F(EmbeddedProcessesTest, AWindowsProgramIsStoodForByItsOriginalName) {
  machine.Put("drive_c/Work/Any Where/SETUP.EXE", "MZ and more");
  versions.names["C:\\WORK\\ANY WHERE\\SETUP.EXE"] = std::string("Repacker.exe\0", 13);
  EXPECT_EQ(Run("C:\\Work\\Any Where\\SETUP.EXE -nos_ne"), -kErrorBadExeFormat);
  PutScript("Program/repacker", "original");
  EXPECT_EQ(Run("C:\\Work\\Any Where\\SETUP.EXE -nos_ne"), 0);
  EXPECT_EQ(Out(), "original C:\\Work\\Any Where\\SETUP.EXE");
  PutScript("Work/Any Where/Repacker", "nearer");
  EXPECT_EQ(Run("\"C:\\Work\\Any Where\\SETUP.EXE\""), 0);
  EXPECT_EQ(Out(), "nearer C:\\Work\\Any Where\\SETUP.EXE");
}

TEST_F(EmbeddedProcessesTest, AnOriginalNameDoesNotLeadOutOfTheFolders) {
  machine.Put("drive_c/Work/a.exe", "MZ");
  PutScript("evil", "evil");
  versions.names["C:\\WORK\\A.EXE"] = "..\\evil.exe";
  EXPECT_EQ(Run("a"), -kErrorBadExeFormat);
  versions.names["C:\\WORK\\A.EXE"] = "";
  EXPECT_EQ(Run("a"), -kErrorBadExeFormat);
}

TEST_F(EmbeddedProcessesTest, AProgramWithoutItsExecuteBitIsDenied) {
  PutScript("Work/a.exe", "a");
  fs::permissions(machine.OnC("Work/a.exe"), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(Run("a.exe"), -kErrorAccessDenied);
}

TEST_F(EmbeddedProcessesTest, AChildThatASignalEndsHasACodeOfItsOwn) {
  fs::permissions(machine.Put("drive_c/Work/dies", "#!/bin/sh\nkill -9 $$\n"), fs::perms::all);
  EXPECT_EQ(Run("dies"), 137);
}

TEST_F(EmbeddedProcessesTest, ChildrenNeitherReadNorPrint) {
  fs::permissions(machine.Put("drive_c/Work/talks", "#!/bin/sh\necho noise\nread line && exit 1\nexit 0\n"),
                  fs::perms::all);
  ::testing::internal::CaptureStdout();
  const int code = Run("talks");
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(code, 0);
}

TEST_F(EmbeddedProcessesTest, NoDeadProcessStaysBehind) {
  fs::permissions(machine.Put("drive_c/Work/quick", "#!/bin/sh\nsleep 0.02\n"), fs::perms::all);
  EXPECT_TRUE(processes.Start("quick", WindowStyle::kHidden).ok());
  ::usleep(100000);
  EXPECT_EQ(Run("quick"), 0);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(EmbeddedProcessesTest, TheSearchPathOfTheHostIsLeftAlone) {
  const std::string before = std::getenv("PATH");
  processes.SetEnvironment("Path", "C:\\Tools");
  EXPECT_EQ(std::getenv("PATH"), before);
  EXPECT_STREQ(std::getenv("KITWRIGHT_PATH"), "C:\\Tools");
  EXPECT_EQ(Run("ls"), -kErrorFileNotFound);
}

}  // namespace
}  // namespace kw::platform::embedded

namespace kw::platform::testing {
namespace {

INSTANTIATE_TEST_SUITE_P(Embedded, ProcessesContract,
                         ::testing::Values([] { return std::make_unique<embedded::EmbeddedUnderTest>(); }));

}  // namespace
}  // namespace kw::platform::testing
