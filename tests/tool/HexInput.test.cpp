#include "tool/input/HexInput.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

using Packets = std::vector<std::vector<Verda::U8>>;

struct GoodRow {
  const char* name;
  std::string_view text;
  Packets packets;
};

const std::array goodRows{
    GoodRow{"nothing", "", {}},
    GoodRow{"blank lines", "\n \t\r\n\v\f\n", {}},
    GoodRow{"a comment alone", "# 01 02", {}},
    GoodRow{"digits of both cases", "0aFfA9", {{0x0a, 0xff, 0xa9}}},
    GoodRow{"no newline at the end", "01\n02", {{1, 2}}},
    GoodRow{"a newline at the end", "01\n", {{1}}},
    GoodRow{"any white space between digits", "0\t1 \v0\f 2", {{1, 2}}},
    GoodRow{"a pair split by a line end", "0\n1", {{1}}},
    GoodRow{"colons", "01:02::0:3", {{1, 2, 3}}},
    GoodRow{"prefixes", "0x01 0X02 0x0304", {{1, 2, 3, 4}}},
    GoodRow{"prefixes without white space", "0x010x02", {{1, 2}}},
    GoodRow{"a prefix without digits", "0x", {}},
    GoodRow{"a comment behind digits", "01 # 02\n03", {{1, 3}}},
    GoodRow{"a comment right behind digits", "01#02\n03", {{1, 3}}},
    GoodRow{"a comment line inside a packet", "01\n# and\n  # so on\n02", {{1, 2}}},
    GoodRow{"any bytes in a comment", std::string_view("01 # \0\xff zz\n02", 13), {{1, 2}}},
    GoodRow{"a comment inside a pair", "0 # half\n1", {{1}}},
    GoodRow{"a blank line between packets", "01\n\n02", {{1}, {2}}},
    GoodRow{"several blank lines between packets", "\n\n01\n \n\t\n02\n\n\n", {{1}, {2}}},
    GoodRow{"CR LF", "01\r\n02\r\n\r\n03\r\n", {{1, 2}, {3}}},
    GoodRow{"a packet of comments is none", "01\n\n# nothing\n\n02", {{1}, {2}}},
};

/// Reads a text that comes byte by byte.
HexReader readInPieces(std::string_view text, CommentBytes commentBytes = CommentBytes::any) {
  HexReader reader(commentBytes);
  for (std::size_t at = 0; at < text.size(); ++at) {
    reader.take(text.substr(at, 1));
  }
  return reader;
}

TEST(HexInput, ReadsPackets) {
  for (const GoodRow& row : goodRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(parseHex(row.text), row.packets);
    HexReader reader = readInPieces(row.text);
    EXPECT_TRUE(reader.isHexText());
    EXPECT_EQ(reader.finish(), row.packets);
  }
}

TEST(HexInput, KeepsNoMoreThanTheGreatestPacket) {
  constexpr std::size_t greatest = 4096;
  std::string text;
  for (std::size_t count = 0; count < 70000; ++count) {
    text += count < greatest ? "01" : "02";
  }
  EXPECT_EQ(parseHex(text + "\n\n03"), (Packets{Packets::value_type(greatest, 1), {3}}));
}

struct BadRow {
  const char* name;
  std::string_view text;
  std::size_t line;
  const char* message;
};

constexpr const char* oddMessage = "the packet ends with half a byte: an odd number of hex digits";

const std::array badRows{
    BadRow{"a letter", "01\n\n02 g3", 3, "\"g\" is no hex digit"},
    BadRow{"a zero byte", std::string_view("01\0", 3), 1, R"("\x00" is no hex digit)"},
    BadRow{"an escape", "\x1b[2J", 1, R"("\x1b" is no hex digit)"},
    BadRow{"a byte above 127", "\n\xc3\xa9", 2, R"("\xc3" is no hex digit)"},
    BadRow{"a quote", "\"", 1, R"("\"" is no hex digit)"},
    BadRow{"a sign", "-01", 1, "\"-\" is no hex digit"},
    BadRow{"a comma", "01,02", 1, "\",\" is no hex digit"},
    BadRow{"a prefix inside a pair", "1 0x02", 1, "\"x\" is no hex digit"},
    BadRow{"a prefix that is split", "0 x01", 1, "\"x\" is no hex digit"},
    BadRow{"a prefix on two lines", "0\nx01", 2, "\"x\" is no hex digit"},
    BadRow{"an x behind a whole byte", "00x01", 1, "\"x\" is no hex digit"},
    BadRow{"an x alone", "x01", 1, "\"x\" is no hex digit"},
    BadRow{"an odd number of digits", "012", 1, oddMessage},
    BadRow{"half a byte before a blank line", "01\n2 # half\n# comment\n\n03", 2, oddMessage},
    BadRow{"half a byte at the end", "01\n\n02\n3\n\n\n", 4, oddMessage},
};

using Fault = std::pair<std::size_t, std::string>;

/// The line and the message of what `read` throws.
template <typename Read>
std::optional<Fault> faultOf(Read read) {
  try {
    read();
  } catch (const BadHex& thrown) {
    return Fault(thrown.line(), thrown.what());
  }
  return std::nullopt;
}

TEST(HexInput, RefusesWhatIsNoHexAndSaysWhere) {
  for (const BadRow& row : badRows) {
    SCOPED_TRACE(row.name);
    const Fault expected(row.line, row.message);
    EXPECT_EQ(faultOf([&] { parseHex(row.text); }), expected);
    EXPECT_EQ(faultOf([&] { readInPieces(row.text).finish(); }), expected);
  }
}

TEST(HexInput, TellsHalfABytesTextFromWhatIsNoHexText) {
  for (const BadRow& row : badRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(readInPieces(row.text).isHexText(), std::string_view(row.message) == oddMessage);
  }
}

TEST(HexInput, FirstFaultWinsAndTheRestIsStillJudged) {
  HexReader reader = readInPieces("1\n\n2\n\n");
  EXPECT_TRUE(reader.isHexText());
  reader.take("z\n\ny");
  EXPECT_FALSE(reader.isHexText());
  ASSERT_TRUE(reader.fault().has_value());
  EXPECT_EQ(reader.fault()->line(), 1U);
  EXPECT_EQ(faultOf([&] { reader.finish(); }), Fault(1, oddMessage));
}

struct CommentRow {
  const char* name;
  std::string_view text;
  const char* message;  ///< null when the comment may hold it
};

const std::array commentRows{
    CommentRow{"white space", "# \t\v\f\r\n01", nullptr},
    CommentRow{"text", "#~\xc3\xa9\xff\n01", nullptr},
    CommentRow{"a zero byte", std::string_view("#\0\n01", 5), R"("\x00" is a control byte)"},
    CommentRow{"an escape", "#\x1b\n01", R"("\x1b" is a control byte)"},
    CommentRow{"the last control byte", "#\x1f\n01", R"("\x1f" is a control byte)"},
    CommentRow{"a delete", "#\x7f\n01", R"("\x7f" is a control byte)"},
};

TEST(HexInput, RefusesControlBytesInCommentsWhereItIsAskedTo) {
  for (const CommentRow& row : commentRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(readInPieces(row.text).finish(), (Packets{{1}}));
    HexReader reader = readInPieces(row.text, CommentBytes::text);
    EXPECT_EQ(reader.isHexText(), row.message == nullptr);
    const auto expected =
        row.message == nullptr ? std::nullopt : std::optional(Fault(1, row.message));
    EXPECT_EQ(faultOf([&] { reader.finish(); }), expected);
  }
}

}  // namespace
}  // namespace RadiusPacketTool
