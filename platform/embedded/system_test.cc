#include "platform/embedded/system.h"

#include <sys/wait.h>
#include <unistd.h>

#include <memory>

#include "platform/embedded/file_system.h"
#include "platform/embedded/temp_machine.h"
#include "platform/testing/system_contract.h"

namespace kw::platform::testing {
namespace {

class EmbeddedUnderTest : public SystemUnderTest {
 public:
  System& Under() override { return system_; }
  FileSystem& Files() override { return files_; }

 private:
  embedded::TempMachine machine_;
  embedded::EmbeddedFileSystem files_{MachinePaths(machine_.root(), "C:\\")};
  embedded::EmbeddedSystem system_{files_.Paths()};
};

INSTANTIATE_TEST_SUITE_P(Embedded, SystemContract,
                         ::testing::Values([] { return std::make_unique<EmbeddedUnderTest>(); }));

}  // namespace
}  // namespace kw::platform::testing

namespace kw::platform::embedded {
namespace {

class EmbeddedSystemTest : public ::testing::Test {
 protected:
  EmbeddedSystem With(const std::string& ini) {
    machine.Put("machine.ini", ini);
    return EmbeddedSystem(MachinePaths(machine.root(), "C:\\"));
  }
  TempMachine machine;
};

TEST_F(EmbeddedSystemTest, MemorySaturatesAtThirtyTwoBitsAndIsSigned) {
  EXPECT_EQ(With("[machine]\nmemory=1073741824\n").TotalPhysicalMemory(), 1073741824);
  EXPECT_EQ(With("[machine]\nmemory=2147483647\n").TotalPhysicalMemory(), INT32_MAX);
  EXPECT_LT(With("[machine]\nmemory=2147483648\n").TotalPhysicalMemory(), 0);
  EXPECT_EQ(With("[machine]\nmemory=8589934592\n").TotalPhysicalMemory(), -1);
  EXPECT_EQ(With("[machine]\nmemory=255999999\n").TotalPhysicalMemory(), 255999999);
  EXPECT_EQ(With("").TotalPhysicalMemory(), 1073741824);
}

TEST_F(EmbeddedSystemTest, TheCodePageFollowsFromTheLocale) {
  EmbeddedSystem english = With("");
  EXPECT_EQ(english.UserDefaultLocale(), 1033);
  EXPECT_EQ(english.CodePage(), 1252);
  EmbeddedSystem japanese = With("[Machine]\r\nLocale = 1041\r\n");
  EXPECT_EQ(japanese.UserDefaultLocale(), 1041);
  EXPECT_EQ(japanese.CodePage(), 932);
}

TEST_F(EmbeddedSystemTest, TheTempFolderIsTheMachines) {
  EXPECT_EQ(With("").TempFolder(), "C:\\Temp");
  EXPECT_EQ(With("[machine]\ntemp=C:\\Scratch\\\n").TempFolder(), "C:\\Scratch");
}

TEST_F(EmbeddedSystemTest, AFixedTimeStandsStill) {
  EmbeddedSystem fixed = With("[machine]\nnow=2004-11-15 04:53:00\n");
  for (int i = 0; i < 2; ++i) {
    const LocalTime now = fixed.Now();
    EXPECT_EQ(now.year, 2004);
    EXPECT_EQ(now.month, 11);
    EXPECT_EQ(now.day, 15);
    EXPECT_EQ(now.hour, 4);
    EXPECT_EQ(now.minute, 53);
    EXPECT_EQ(now.second, 0);
    EXPECT_EQ(now.day_of_year, 320);
  }
  EXPECT_GE(With("[machine]\nnow=\n").Now().year, 2020);
}

TEST(ParseLocalTime, TakesNumbersAndRefusesWhatIsNoDate) {
  LocalTime time;
  EXPECT_TRUE(ParseLocalTime("2001/12/31T23.59.58", &time));
  EXPECT_EQ(time.day_of_year, 365);
  EXPECT_EQ(time.second, 58);
  EXPECT_TRUE(ParseLocalTime("2000-12-31", &time));
  EXPECT_EQ(time.day_of_year, 366);
  EXPECT_EQ(time.hour, 0);
  for (const char* text : {"", "never", "2001-13-01", "2001-02-29", "2001-01-01 24:00", "99"}) {
    EXPECT_FALSE(ParseLocalTime(text, &time)) << text;
  }
}

TEST_F(EmbeddedSystemTest, AnotherProcessOfTheMachineIsAPreviousInstance) {
  EmbeddedSystem first = With("");
  EXPECT_FALSE(first.PreviousInstance());
  const MachinePaths paths(machine.root(), "C:\\");
  const auto in_child = [](const MachinePaths& where) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(EmbeddedSystem(where).PreviousInstance() ? 1 : 0);
    int status = -1;
    ::waitpid(child, &status, 0);
    return WEXITSTATUS(status);
  };
  EXPECT_EQ(in_child(paths), 1);
  const TempMachine other;
  EXPECT_EQ(in_child(MachinePaths(other.root(), "C:\\")), 0);
  EXPECT_FALSE(first.PreviousInstance());
}

TEST_F(EmbeddedSystemTest, TheClaimEndsWithItsHolder) {
  { EXPECT_FALSE(With("").PreviousInstance()); }
  EXPECT_FALSE(With("").PreviousInstance());
}

TEST_F(EmbeddedSystemTest, TheProgramsFolderIsSeenThroughDriveZ) {
  EXPECT_TRUE(StartsWithNoCase(With("").ProgramFolder(), "Z:\\"));
  EXPECT_TRUE(EndsWithNoCase(With("").ProgramFolder(), "\\tests"));
}

TEST_F(EmbeddedSystemTest, ProductsAndTheirFeaturesAreTheMachines) {
  machine.Put("machine.ini",
              "[product1]\r\nupgrade={AB}\r\ncode={P1}\r\nConsole=3\r\nEmailScan=2\r\n"
              "[product2]\r\nupgrade={ab}\r\ncode={P2}\r\nConsole=1\r\n");
  EmbeddedProducts products(machine.root());
  EXPECT_EQ(products.RelatedProducts("{Ab}"), (std::vector<std::string>{"{P1}", "{P2}"}));
  EXPECT_TRUE(products.RelatedProducts("{CD}").empty());
  EXPECT_EQ(products.FeatureState("{p1}", "Console"), 3);
  EXPECT_EQ(products.FeatureState("{P1}", "EmailScan"), 2);
  EXPECT_EQ(products.FeatureState("{P2}", "Console"), 1);
  EXPECT_EQ(products.FeatureState("{P2}", "EmailScan"), -1);
  EXPECT_EQ(products.FeatureState("{P3}", "Console"), -1);
}

}  // namespace
}  // namespace kw::platform::embedded
