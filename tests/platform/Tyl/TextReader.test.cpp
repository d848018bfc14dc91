#include "Tyl/TextReader.h"

#include <string_view>

#include <gtest/gtest.h>

namespace {

using namespace std::string_view_literals;
using Tyl::TextReader;

TEST(TextReader, TakesTheLongestWordBehindWhiteSpace) {
  struct Case {
    std::string_view text;
    std::string_view word;
  };
  for (const Case& each :
       {Case{"word", "word"}, Case{" \t\n\v\f\rword ", "word"}, Case{"a_B-9=7", "a_B-9"},
        Case{"azAZ09", "azAZ09"}, Case{"-2", "-2"}, Case{"", ""}, Case{"  ", ""}, Case{"=a", ""},
        Case{"a\0b"sv, "a"}, Case{"a\u00FC", "a"}, Case{"{a}", ""}}) {
    SCOPED_TRACE(each.text);
    EXPECT_EQ(TextReader(each.text).word(), each.word);
  }
}

TEST(TextReader, GoesOnBehindAWord) {
  TextReader text("one two");
  EXPECT_EQ(text.word(), "one");
  EXPECT_EQ(text.word(), "two");
  EXPECT_EQ(text.word(), "");
  EXPECT_TRUE(text.atEnd());
}

TEST(TextReader, TakesAMarkOnlyWhenItComesNext) {
  TextReader text(" =1");
  EXPECT_FALSE(text.take('1'));
  EXPECT_TRUE(text.take('='));
  EXPECT_FALSE(text.take('='));
  EXPECT_TRUE(text.take('1'));
  EXPECT_FALSE(text.take('1'));
}

TEST(TextReader, IsAtTheEndWhenOnlyWhiteSpaceIsLeft) {
  EXPECT_TRUE(TextReader("").atEnd());
  EXPECT_TRUE(TextReader(" \t\n\v\f\r").atEnd());
  EXPECT_FALSE(TextReader(" .").atEnd());
  EXPECT_FALSE(TextReader("\0"sv).atEnd());
}

}  // namespace
