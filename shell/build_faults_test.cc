// A whole build in memory, with every file operation made to fail in turn.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "base/path.h"
#include "payloads/frm_dats_and_engine.h"
#include "shell/frm_finish.h"
#include "shell/frm_review_configuration.h"
#include "shell/source_page_test_support.h"

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
/// `with_payloads`: with everything that can ride along, in the console's own hands.
struct WholeBuild : testing::SourcePageFixture {
  explicit WholeBuild(bool with_payloads = false) {
    if (with_payloads) CarryCompanions();
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
    if (with_payloads) ChooseArchive();
    table.GoToPage("Finish");
    Take();
    source = Contents("C:\\Source");
    machine.files.log.clear();
    // Whoever is asked gives up.
    machine.dialogs.answers.assign(200, Answer::kCancel);
  }
  /// A source with the alert server, the firewall, a patch and definition files, and templates for all.
  void CarryCompanions() {
    testing::PackageWriter nested(machine);
    nested.properties = {{"UpgradeCode", "{71014215-9627-11D4-B865-00508B022A51}"}, {"txlocaleid", "0407"}};
    nested.WriteDatabase("C:\\Source\\BCN\\BCN470.msi");
    machine.files.AddFile("C:\\Source\\BCN\\BCN470.OVP", "plug-in");
    machine.files.AddFile("C:\\Source\\BWK\\Bulwark.EXE", "installer");
    machine.files.AddFile("C:\\Source\\FIX1.MSP", "patch");
    for (const char* row : {"DATDATE", "DATVERSION", "ENGINEVERSION"}) package.properties[row] = "1";
    package.WritePackage("C:\\Source");
    machine.files.AddFile("C:\\Source\\Setup.ini",
                          "[Startup]\r\nPatchFile0=FIX1.MSP\r\nszBeaconryLocation=\\BCN\r\n");
    for (const char* folder : {"KTE\\710", "BCN", "BWK"}) {
      const std::string path = "C:\\Kitwright\\" + std::string(folder) + "\\";
      machine.files.AddFile(path + "PkgCatalog.XML",
                            "<PkgCatalog><ProductPackage><LangPackage/></ProductPackage></PkgCatalog>");
      for (const char* name :
           {"Install.pkg", "KT710Det.TxS", "BC470Det.TxS", "BulwarkDet.TxS", "BULWARK80.OVP"})
        machine.files.AddFile(path + name, name);
    }
    machine.processes.On("\"C:\\Kitwright\\StcSign.exe\"", [this](const FakeCommand& command) {
      machine.files.AddFile(ParentOf(PathBehind(command.command_line, "\" \"")) + "\\PkgCatalog.z", "signed");
    });
    machine.libraries.On("BWKExtractInstallerFilesA", [this](const std::vector<std::string>& arguments) {
      machine.files.AddFile(arguments[1] + "\\MDF.INI", "[General]\r\nSTC=1\r\n");
    });
    machine.libraries.On("TxUnzip", [this](const std::vector<std::string>& arguments) {
      for (const char* name : {"REPAIR.DAT", "LABELS.DAT", "SIGS.DAT"})
        machine.files.AddFile(arguments[1] + "\\" + name, "new");
      machine.files.AddFile(arguments[1] + "\\PKGINFO.INI", "[Dat]\r\nVersion=4160\r\nDate=12/31/2001\r\n");
    });
    machine.files.AddFile("C:\\Payloads\\dat.zip", "archive");
  }
  void ChooseArchive() {
    for (const char* name : {"TXENG32.DLL", "TEXTS.DAT", "ENGINE.DAT", "SIGTERMS.TXT"})
      machine.files.AddFile(run.TempFolder + "\\MSIDATsAndEngine\\" + name, "old");
    table.GoToPage("DAT and Engine Files");
    auto& archives = table.Get<frmDATsAndEngine>();
    archives.SeparateZIPs.UserClick();
    archives.SpecifyDATZIP.UserClick();
    archives.DATPath.UserType("C:\\Payloads\\dat.zip");
    archives.Next->UserClick();
  }
  std::vector<std::string> Save() {
    table.Get<frmReviewConfiguration>().Save->UserClick();
    return Steps();
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

TEST(WholeBuildTest, ABuildWithEverythingThatCanRideAlongSucceeds) {
  WholeBuild build(true);
  build.Save();
  EXPECT_TRUE(build.run.Succeeded);
  for (const char* name :
       {"Kte710.msi", "FIX1.MSP", "SIGTERMS.TXT", "PkgCatalog.z", "Install.pkg", "BCN\\BCN470.msi",
        "BCN\\PkgCatalog.z", "BWK\\Bulwark.EXE", "BWK\\Install.pkg", "BWK\\PkgCatalog.z"})
    EXPECT_THAT(build.machine.files.Tree("C:\\Out"), Contains(name));
  EXPECT_THAT(build.TempFiles(), IsEmpty());
  EXPECT_EQ(build.Contents("C:\\Source"), build.source);
}

struct Fault {
  FileOperation operation;
  const char* verb;  ///< of the log line, to count how often it comes in a good build; "" when none is kept
  bool with_payloads = false;
};
void PrintTo(const Fault& fault, std::ostream* out) {
  *out << "operation " << static_cast<int>(fault.operation) << (fault.with_payloads ? " with payloads" : "");
}

class BuildFaults : public ::testing::TestWithParam<Fault> {};

TEST_P(BuildFaults, AFailedFileOperationFailsTheBuildCleanlyOrIsNoFailureOfIt) {
  WholeBuild good(GetParam().with_payloads);
  good.Save();
  const int operations = *GetParam().verb ? good.Logged(GetParam().verb) : GetParam().with_payloads ? 60 : 30;
  ASSERT_GT(operations, 0);
  int failed = 0;
  for (int nth = 1; nth <= operations; ++nth) {
    SCOPED_TRACE(nth);
    WholeBuild build(GetParam().with_payloads);
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

INSTANTIATE_TEST_SUITE_P(EveryOperationWithPayloads, BuildFaults,
                         ::testing::Values(Fault{FileOperation::kCopyFile, "copy ", true},
                                           Fault{FileOperation::kWriteFile, "write ", true},
                                           Fault{FileOperation::kSetReadOnly, "", true},
                                           Fault{FileOperation::kList, "", true},
                                           Fault{FileOperation::kReadFile, "", true},
                                           Fault{FileOperation::kGetFile, "", true},
                                           Fault{FileOperation::kCreateFolder, "", true},
                                           Fault{FileOperation::kDeleteFile, "", true},
                                           Fault{FileOperation::kSetCurrentFolder, "", true}));

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
