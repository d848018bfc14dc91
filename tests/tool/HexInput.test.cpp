#include "tool/HexInput.h"

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

TEST(HexInput, ReadsPackets) {
  for (const GoodRow& row : goodRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(parseHex(row.text), row.packets);
  }
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
    BadRow{"an x alone", "x01", 1, "\"x\" is no hex digit"},
    BadRow{"an odd number of digits", "012", 1, oddMessage},
    BadRow{"half a byte before a blank line", "01\n2 # half\n# comment\n\n03", 2, oddMessage},
    BadRow{"half a byte at the end", "01\n\n02\n3\n\n\n", 4, oddMessage},
};

TEST(HexInput, RefusesWhatIsNoHexAndSaysWhere) {
  for (const BadRow& row : badRows) {
    SCOPED_TRACE(row.name);
    std::optional<std::pair<std::size_t, std::string>> fault;
    try {
      parseHex(row.text);
    } catch (const BadHex& thrown) {
      fault.emplace(thrown.line(), thrown.what());
    }
    EXPECT_EQ(fault, std::pair(row.line, std::string(row.message)));
  }
}

}  // namespace
}  // namespace RadiusPacketTool
