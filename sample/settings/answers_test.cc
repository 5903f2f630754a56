#include "sample/settings/answers.h"

#include <gtest/gtest.h>

namespace kw::sample {
namespace {

TEST(Answers, EachWordNamesItsAnswer) {
  EXPECT_EQ(AnswerNamed("change", false), Answer::kChange);
  EXPECT_EQ(AnswerNamed("cancel", true), Answer::kCancel);
  EXPECT_EQ(AnswerNamed("fail", true), Answer::kFail);
  EXPECT_EQ(AnswerNamed("fail-saved", true), Answer::kFailSaved);
  EXPECT_EQ(AnswerNamed("raise", true), Answer::kRaise);
  EXPECT_EQ(AnswerNamed("crash", true), Answer::kCrash);
}

TEST(Answers, WithoutAWordTheBoxIsShownWhereThereIsADisplay) {
  EXPECT_EQ(AnswerNamed("", true), Answer::kDialog);
  EXPECT_EQ(AnswerNamed("", false), Answer::kCancel);
  EXPECT_EQ(AnswerNamed("dialog", true), Answer::kDialog);
  EXPECT_EQ(AnswerNamed("dialog", false), Answer::kCancel);
}

TEST(Answers, AListOfFailingStandInsIsPartedByCommas) {
  EXPECT_TRUE(ListNames("FEADZED, StcSign", "StcSign"));
  EXPECT_TRUE(ListNames("feadzed", "FEADZED"));
  EXPECT_FALSE(ListNames("FEADZED2", "FEADZED"));
  EXPECT_FALSE(ListNames("", "FEADZED"));
}

}  // namespace
}  // namespace kw::sample
