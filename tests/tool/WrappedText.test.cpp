#include "tool/anatomy/WrappedText.h"

#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

using Lines = std::vector<std::string>;

TEST(WrappedText, LeavesAShortTextWhole) {
  EXPECT_EQ(wrapped("", 4), Lines{});
  EXPECT_EQ(wrapped("abcd", 4), Lines{"abcd"});
}

TEST(WrappedText, BreaksAtABlankInTheSecondHalfOfALine) {
  EXPECT_EQ(wrapped("abc def ghi", 6), (Lines{"abc", "def", "ghi"}));
  EXPECT_EQ(wrapped("a bcdefgh", 6), (Lines{"a bcde", "fgh"}));
}

TEST(WrappedText, BreaksAWordThatIsTooLong) {
  EXPECT_EQ(wrapped("abcdefghij", 4), (Lines{"abcd", "efgh", "ij"}));
}

TEST(WrappedText, LosesNothingWhenItIsCut) {
  EXPECT_EQ(cut("", 4), Lines{});
  EXPECT_EQ(cut("abc def ghi", 6), (Lines{"abc de", "f ghi"}));
  EXPECT_EQ(cut("abc  def", 4), (Lines{"abc", "  de", "f"}));
  EXPECT_EQ(cut("      a", 4), (Lines{"    ", "  a"}));
  EXPECT_EQ(cut("ab  ", 4), Lines{"ab  "});
}

TEST(WrappedText, TearsNoCharacterApart) {
  EXPECT_EQ(wrapped("\xc3\xa4\xc3\xb6\xc3\xbc", 2), (Lines{"\xc3\xa4\xc3\xb6", "\xc3\xbc"}));
  EXPECT_EQ(cut("\xc3\xa4\xc3\xb6\xc3\xbc", 2), (Lines{"\xc3\xa4\xc3\xb6", "\xc3\xbc"}));
}

TEST(WrappedText, KeepsABlankAtTheEnd) {
  EXPECT_EQ(wrapped("abc ", 4), Lines{"abc "});
}

}  // namespace
}  // namespace RadiusPacketTool
