// A whole build in memory, with every file operation made to fail in turn.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "base/path.h"
#include "shell/frm_finish.h"
#include "shell/frm_review_configuration.h"
#include "shell/open_package_test_support.h"

namespace kw {
namespace {

using platform::Answer;
using platform::testing::FakeCommand;
using platform::testing::FileOperation;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The file that a tool's command line names behind `option`, up to the end or the next quote or blank.
std::string PathBehind(const std::string& command, const std::string& option) {
  const size_t start = command.find(option) + option.size();
  return command.substr(start, command.find_first_of(command[start - 1] == '"' ? "\"" : " ", start) - start);
}

/// A package opened from "C:\Source", with stand-ins for the tools that a build starts.
struct WholeBuild : testing::SourcePageFixture {
  WholeBuild() {
    machine.processes.On("regedit /s /e", [this](const FakeCommand& command) {
      machine.files.AddFile(PathBehind(command.command_line, "/e \""), "REGEDIT4");
    });
    machine.processes.On("C:\\Kitwright\\MakeCab.exe", [this](const FakeCommand& command) {
      const std::string directives = PathBehind(command.command_line, "/f ");
      const bool settings = directives.ends_with("KTE700.DDF");
      machine.files.AddFile(ParentOf(directives) + (settings ? "\\KTECFG.CAB" : "\\Cab1.CAB"), "cabinet");
    });
    page().Optimize.SetChecked(false);
    Next();
    EXPECT_TRUE(Opened());
    table.GoToPage("Finish");
    Take();
    source = Contents("C:\\Source");
    machine.files.log.clear();
    // Whoever is asked gives up.
    machine.dialogs.answers.assign(200, Answer::kCancel);
  }
  std::vector<std::string> Save() {
    table.Get<frmReviewConfiguration>().Save->UserClick();
    return TakeSteps();
  }
  std::map<std::string, std::string> Contents(const std::string& folder) {
    std::map<std::string, std::string> contents;
    for (const std::string& name : machine.files.Tree(folder))
      contents[name] = machine.files.Content(folder + "\\" + name);
    return contents;
  }
  frmFinish& finish() { return table.Get<frmFinish>(); }
  int Logged(const std::string& verb) {
    return static_cast<int>(std::count_if(machine.files.log.begin(), machine.files.log.end(),
                                          [&](const std::string& line) { return line.starts_with(verb); }));
  }
  std::map<std::string, std::string> source;
};

TEST(WholeBuildTest, ABuildWithoutAChoiceSucceeds) {
  WholeBuild build;
  build.Save();
  EXPECT_TRUE(build.run.Succeeded);
  EXPECT_THAT(build.machine.files.Tree("C:\\Out"), Contains("Kte710.msi"));
  EXPECT_THAT(build.machine.files.Tree("C:\\Out"), Contains("Setup.ini"));
  EXPECT_THAT(build.TempFiles(), IsEmpty());
  EXPECT_EQ(build.Contents("C:\\Source"), build.source);
}

struct Fault {
  FileOperation operation;
  const char* verb;  ///< of the log line, to count how often it comes in a good build; "" when none is kept
};
void PrintTo(const Fault& fault, std::ostream* out) {
  *out << "operation " << static_cast<int>(fault.operation);
}

class BuildFaults : public ::testing::TestWithParam<Fault> {};

TEST_P(BuildFaults, AFailedFileOperationFailsTheBuildCleanlyOrIsNoFailureOfIt) {
  WholeBuild good;
  good.Save();
  const int operations = *GetParam().verb ? good.Logged(GetParam().verb) : 30;
  ASSERT_GT(operations, 0);
  int failed = 0;
  for (int nth = 1; nth <= operations; ++nth) {
    SCOPED_TRACE(nth);
    WholeBuild build;
    build.machine.files.FailNth(GetParam().operation, "", nth, kErrorDiskFull);
    build.Save();
    EXPECT_TRUE(build.finish().Visible());
    if (!build.run.Succeeded) {
      ++failed;
      EXPECT_THAT(build.machine.files.Tree("C:\\Out"), IsEmpty());
      EXPECT_EQ(build.finish().lblFinalMessage.Text(), "Kitwright did not complete successfully.");
    } else {
      EXPECT_THAT(build.machine.files.Tree("C:\\Out"), Contains("Kte710.msi"));
      EXPECT_THAT(build.machine.files.Tree("C:\\Out"), Contains("Setup.ini"));
    }
    EXPECT_THAT(build.TempFiles(), IsEmpty());
    EXPECT_EQ(build.Contents("C:\\Source"), build.source);
    EXPECT_FALSE(build.run.WorkingDatabase);
  }
  // Of the copies most are the package itself.
  if (GetParam().operation == FileOperation::kCopyFile) {
    EXPECT_GT(failed, 2);
  }
}

INSTANTIATE_TEST_SUITE_P(
    EveryOperation, BuildFaults,
    ::testing::Values(Fault{FileOperation::kCopyFile, "copy "}, Fault{FileOperation::kWriteFile, "write "},
                      Fault{FileOperation::kSetReadOnly, ""}, Fault{FileOperation::kList, ""},
                      Fault{FileOperation::kOpen, ""}, Fault{FileOperation::kReadFile, ""},
                      Fault{FileOperation::kGetFile, ""}, Fault{FileOperation::kCreateFolder, ""}));

TEST(WholeBuildTest, ATempFolderThatCannotBeRemovedIsToldAndTheBuildStands) {
  WholeBuild build;
  build.machine.files.FailAlways(FileOperation::kDeleteFolder, build.run.TempFolder, kErrorSharingViolation);
  EXPECT_THAT(build.Save(),
              Contains("message Could not remove temporary files or folders. This may be because "
                       "you have the files or folders open in another program."));
  EXPECT_TRUE(build.run.Succeeded);
}

}  // namespace
}  // namespace kw
