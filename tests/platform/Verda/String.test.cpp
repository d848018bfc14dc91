#include "Verda/String.h"

#include <compare>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace {

using namespace std::string_view_literals;
using Verda::String;
using Verda::U8;

constexpr std::size_t sizes[] = {0, 1, 30, 31, 32, 10'000};

TEST(String, IsEmptyAtFirst) {
  const String text;
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(text.size(), 0U);
  EXPECT_EQ(text.view(), "");
  EXPECT_STREQ(text.cStr(), "");
}

TEST(String, HoldsTextOfEverySize) {
  for (const std::size_t size : sizes) {
    SCOPED_TRACE(size);
    const std::string expected(size, 'x');
    const String text(expected);
    EXPECT_EQ(text.size(), size);
    EXPECT_EQ(text.empty(), size == 0);
    EXPECT_EQ(text.view(), expected);
    EXPECT_STREQ(text.cStr(), expected.c_str());
  }
}

TEST(String, IsMadeFromEveryKindOfText) {
  EXPECT_EQ(String("literal").view(), "literal");
  EXPECT_EQ(String(std::string("string")).view(), "string");
  EXPECT_EQ(String("view"sv).view(), "view");
  const std::vector<U8> bytes{'b', 0, 0xFF};
  EXPECT_EQ(String(std::span(bytes)).view(), "b\0\xFF"sv);
}

TEST(String, KeepsZeroBytes) {
  const String text("a\0b\0"sv);
  EXPECT_EQ(text.size(), 4U);
  EXPECT_EQ(text.view(), "a\0b\0"sv);
  EXPECT_NE(text, "a");
}

TEST(String, ViewsUpToTheFirstZeroByte) {
  struct Case {
    std::string_view text;
    std::string_view counted;
  };
  for (const Case& each : {Case{"", ""}, Case{"secret", "secret"}, Case{"se\0cret\0"sv, "se"},
                           Case{"\0secret"sv, ""}, Case{"secret\0"sv, "secret"}}) {
    SCOPED_TRACE(each.text);
    EXPECT_EQ(String(each.text).viewToNul(), each.counted);
  }
  const std::string longText(10'000, 's');
  EXPECT_EQ(String(longText).viewToNul(), longText);
}

TEST(String, GivesItsBytesAsUnsignedNumbers) {
  const String text("\x01\xFF");
  ASSERT_EQ(text.bytes().size(), 2U);
  EXPECT_EQ(text.bytes()[0], 1);
  EXPECT_EQ(text.bytes()[1], 0xFF);
}

TEST(String, IsIndexed) {
  const String text("abc");
  EXPECT_EQ(text[0], 'a');
  EXPECT_EQ(text[2], 'c');
}

TEST(String, CopiesShareNothing) {
  for (const std::size_t size : sizes) {
    SCOPED_TRACE(size);
    const std::string expected(size, 'x');
    String original(expected);
    const String copy = original;
    original += "more";
    EXPECT_EQ(copy, expected);
    EXPECT_EQ(original, expected + "more");
  }
}

TEST(String, MovesAndLeavesNothingBehind) {
  for (const std::size_t size : sizes) {
    SCOPED_TRACE(size);
    const std::string expected(size, 'x');
    String original(expected);
    const String moved = std::move(original);
    EXPECT_EQ(moved, expected);
    EXPECT_EQ(original, "");  // NOLINT(bugprone-use-after-move): what is left is promised
  }
}

TEST(String, IsAssignedAViewOfItself) {
  for (const std::size_t size : {std::size_t{31}, std::size_t{10'000}}) {
    SCOPED_TRACE(size);
    std::string expected(size, 'x');
    expected[5] = '=';
    String text(expected);
    text = text.view().substr(5);
    EXPECT_EQ(text, expected.substr(5));
  }
}

TEST(String, AppendsItself) {
  for (const std::size_t size : sizes) {
    SCOPED_TRACE(size);
    const std::string expected(size, 'x');
    String text(expected);
    text += text;
    EXPECT_EQ(text, expected + expected);
  }
}

TEST(String, ComparesByteByByte) {
  EXPECT_EQ(String("abc"), String("abc"));
  EXPECT_NE(String("abc"), String("abd"));
  EXPECT_NE(String("a\0b"sv), String("a\0c"sv));
  EXPECT_LT(String("abc"), String("abd"));
  EXPECT_LT(String("ab"), String("abc"));
  EXPECT_LT(String(""), String("\0"sv));
  EXPECT_LT(String("\x7F"), String("\x80"));
  EXPECT_EQ(String("b") <=> String("a"), std::strong_ordering::greater);
}

TEST(String, ComparesWithEveryKindOfTextOnBothSides) {
  const String text("abc");
  EXPECT_TRUE(text == "abc");
  EXPECT_TRUE("abc" == text);
  EXPECT_TRUE(text == "abc"sv);
  EXPECT_TRUE("abc"sv == text);
  EXPECT_TRUE(text == std::string("abc"));
  EXPECT_TRUE(std::string("abc") == text);
  EXPECT_TRUE(text < "abd");
  EXPECT_TRUE("abd"sv > text);
}

TEST(String, PrintsItsBytesToAStream) {
  std::ostringstream out;
  out << String("a\0b"sv) << '|' << String();
  EXPECT_EQ(out.str(), "a\0b|"sv);
}

TEST(String, FormatsAsText) {
  EXPECT_EQ(fmt::format("[{}]", String("a\0b"sv)), "[a\0b]"sv);
  EXPECT_EQ(fmt::format("[{:>5}]", String("abc")), "[  abc]");
}

}  // namespace
