#include "base/command_line.h"

#include <gmock/gmock.h>

namespace kw {
namespace {

using testing::ElementsAre;

TEST(CommandLine, ABackslashBehindTheClosingQuoteBelongsToTheFolder) {
  EXPECT_THAT(SplitCommandLine(R"(CabArc X "C:\a b\x.cab" *.* "C:\new folder"\)", "CabArc"),
              ElementsAre("CabArc", "X", R"(C:\a b\x.cab)", "*.*", R"(C:\new folder\)"));
}

TEST(CommandLine, BackslashesBeforeAQuoteFollowTheCRuntime) {
  EXPECT_THAT(SplitCommandLine(R"(p "a\\" b\"c "d\"e" f\\g)", ""),
              ElementsAre("p", R"(a\)", R"(b"c)", R"(d"e)", R"(f\\g)"));
  EXPECT_THAT(SplitCommandLine(R"(p "a""b" "" c)", ""), ElementsAre("p", R"(a"b)", "", "c"));
  EXPECT_THAT(SplitCommandLine("p \"open end", ""), ElementsAre("p", "open end"));
}

TEST(CommandLine, AnUnquotedProgramPathMayHoldBlanks) {
  EXPECT_THAT(SplitCommandLine(R"(C:\Program Files\Tool\MakeCab.exe /f C:\Temp\x.ddf)", "makecab.exe"),
              ElementsAre(R"(C:\Program Files\Tool\MakeCab.exe)", "/f", R"(C:\Temp\x.ddf)"));
  EXPECT_THAT(SplitCommandLine(R"("C:\Program Files\CabArc" X)", "CabArc"),
              ElementsAre(R"(C:\Program Files\CabArc)", "X"));
  EXPECT_THAT(SplitCommandLine("other name X", "CabArc"), ElementsAre("other", "name", "X"));
  EXPECT_THAT(SplitCommandLine("", "CabArc"), ElementsAre(""));
}

TEST(CommandLine, JoiningAndSplittingGivesTheSameArguments) {
  const std::vector<std::string> arguments = {"/a b/p", "", "a b\\", R"(q"r\"s)", "plain\\"};
  EXPECT_EQ(SplitCommandLine(JoinCommandLine(arguments), ""), arguments);
}

}  // namespace
}  // namespace kw
