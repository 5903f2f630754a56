// An independent reader looks for the temporary column of the cabinet rebuild in the file of the database.
// Skipped where it is not installed.

#ifndef _WIN32

#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "pages/frm_additional_files.h"
#include "pages/open_package_test_support.h"

namespace kw {
namespace {

using ::testing::HasSubstr;
using testing::OpenPackageFixture;
using ::testing::StartsWith;

struct TemporaryColumnTest : OpenPackageFixture, ::testing::Test {
  /// The table File of the working database's file, as the other reader prints it.
  std::string Judge() {
    const std::string path =
        ::testing::TempDir() + "kitwright-temporary-column-" + std::to_string(getpid()) + ".msi";
    std::ofstream(path, std::ios::binary) << machine.files.Content(run.WorkingMsiPath);
    std::string rows;
    FILE* reader = popen(("msiinfo export '" + path + "' File 2>&1").c_str(), "r");
    for (int c = fgetc(reader); c != EOF; c = fgetc(reader)) rows += static_cast<char>(c);
    EXPECT_EQ(pclose(reader), 0) << rows;
    unlink(path.c_str());
    return rows;
  }
  void ExpectNoTemporaryColumn() {
    EXPECT_THAT(Judge(), StartsWith("File\tComponent_\tFileName\tFileSize\tVersion\tLanguage\tAttributes\t"
                                    "Sequence\r\n"));
    EXPECT_THAT(machine.files.Content(run.WorkingMsiPath), ::testing::Not(HasSubstr("_id_path")));
  }
};

TEST_F(TemporaryColumnTest, ReachesNoFileWhileABuildRunsOrAfterItFailed) {
  if (std::system("command -v msiinfo >/dev/null") != 0) GTEST_SKIP() << "msiinfo is not installed";
  // What a crash at this moment would leave.
  machine.processes.On("C:\\Kitwright\\MakeCab.exe",
                       [this](const testing::FakeCommand&) { ExpectNoTemporaryColumn(); });
  EXPECT_FALSE(table.Get<frmAdditionalFiles>().CreateCabFile());
  ExpectNoTemporaryColumn();
  run.WorkingDatabase.reset();
  ExpectNoTemporaryColumn();
}

TEST_F(TemporaryColumnTest, ReachesNoFileAfterAStatementFailed) {
  if (std::system("command -v msiinfo >/dev/null") != 0) GTEST_SKIP() << "msiinfo is not installed";
  Sql("drop table `Cabs`");
  EXPECT_FALSE(table.Get<frmAdditionalFiles>().CreateCabFile());
  ExpectNoTemporaryColumn();
  run.WorkingDatabase.reset();
  ExpectNoTemporaryColumn();
}

}  // namespace
}  // namespace kw

#endif
