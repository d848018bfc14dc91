#include "tool/anatomy/WrappedText.h"

#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

using Lines = std::vector<std::string>;

TEST(WrappedText, LeavesAShortTextWhole) {
  EXPECT_EQ(wrapped("", 4), Lines{});
  EXPECT_EQ(wrapped("abcd", 4), Lines{"abcd"});
}

TEST(WrappedText, BreaksBehindABlankInTheSecondHalfOfALine) {
  EXPECT_EQ(wrapped("abc def ghi", 6), (Lines{"abc", "def", "ghi"}));
  EXPECT_EQ(wrapped("a bcdefgh", 6), (Lines{"a bcde", "fgh"}));
}

TEST(WrappedText, BreaksAWordThatIsTooLong) {
  EXPECT_EQ(wrapped("abcdefghij", 4), (Lines{"abcd", "efgh", "ij"}));
}

TEST(WrappedText, TearsNoCharacterApart) {
  EXPECT_EQ(wrapped("\xc3\xa4\xc3\xb6\xc3\xbc", 2), (Lines{"\xc3\xa4\xc3\xb6", "\xc3\xbc"}));
}

TEST(WrappedText, KeepsABlankAtTheEnd) {
  EXPECT_EQ(wrapped("abc ", 4), Lines{"abc "});
}

}  // namespace
}  // namespace RadiusPacketTool
