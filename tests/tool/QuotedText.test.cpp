#include "tool/text/QuotedText.h"

#include <array>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "Verda/Escape.h"

#include "tests/support/ThrownText.h"

namespace RadiusPacketTool {
namespace {

using namespace std::string_view_literals;

std::string read(std::string_view quoted) {
  const auto bytes = bytesOfQuoted(quoted);
  return {bytes.begin(), bytes.end()};
}

TEST(QuotedText, EscapesAreResolved) {
  EXPECT_EQ(read(R"("")"), "");
  EXPECT_EQ(read(R"("alice")"), "alice");
  EXPECT_EQ(read(R"("\n\r\t\\\"")"), "\n\r\t\\\"");
  EXPECT_EQ(read(R"("\x00\xfF!")"), "\0\xff!"sv);
  EXPECT_EQ(read("\"\xc3\xa9\xff\""), "\xc3\xa9\xff");
}

TEST(QuotedText, WhateverIsPrintedIsReadBack) {
  std::mt19937 random(20240601);
  std::uniform_int_distribution<int> byte(0, 255);
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    for (int length = round % 40; length > 0; --length) {
      text += static_cast<char>(byte(random));
    }
    EXPECT_EQ(read('"' + Verda::escaped(text, "\"\\") + '"'), text);
  }
}

struct Row {
  std::string_view quoted;
  std::string_view fault;
};

constexpr std::array rows{
    Row{"", "text stands in quotes"},
    Row{"alice", "text stands in quotes"},
    Row{"'alice'", "text stands in quotes"},
    Row{"\"", "the closing quote is missing"},
    Row{"\"alice", "the closing quote is missing"},
    Row{R"("alice\")", "the closing quote is missing"},
    Row{R"("alice" )", "there is more behind the closing quote"},
    Row{R"("alice"bob")", "there is more behind the closing quote"},
    Row{"\"a\tb\"", "a control byte stands as its escape"},
    Row{"\"a\0b\""sv, "a control byte stands as its escape"},
    Row{"\"a\x7f\"", "a control byte stands as its escape"},
    Row{R"("\a")", R"(the escapes are \n, \r, \t, \\, \" and \xNN)"},
    Row{R"("\X00")", R"(the escapes are \n, \r, \t, \\, \" and \xNN)"},
    Row{"\"\\", R"(the escapes are \n, \r, \t, \\, \" and \xNN)"},
    Row{R"("\x")", R"(behind \x stand two hex digits)"},
    Row{R"("\x4")", R"(behind \x stand two hex digits)"},
    Row{R"("\x4g")", R"(behind \x stand two hex digits)"},
    Row{R"("\x4)", R"(behind \x stand two hex digits)"},
};

TEST(QuotedText, AnythingElseIsRefused) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.quoted);
    EXPECT_EQ(TestSupport::thrownText<BadAttribute>([&] { read(row.quoted); }), row.fault);
  }
}

}  // namespace
}  // namespace RadiusPacketTool
