#include "tool/making/PacketText.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

using namespace std::string_view_literals;

std::vector<PacketText> packetsOf(std::string_view text, std::size_t pieceSize) {
  PacketTextReader reader;
  while (!text.empty()) {
    reader.take(text.substr(0, pieceSize));
    text.remove_prefix(std::min(pieceSize, text.size()));
  }
  return reader.finish();
}

/// What was read, as one line a packet: where it begins, its header, its attributes with their
/// lines.
std::string summaryOf(const std::vector<PacketText>& packets) {
  std::string summary;
  for (const PacketText& packet : packets) {
    summary += fmt::format("{}:", packet.line);
    if (packet.header.has_value()) {
      summary += fmt::format(" ({} {})", packet.header->code, packet.header->id);
    }
    for (const AttributeLine& attribute : packet.attributes) {
      summary += fmt::format(" {}:{}={}", attribute.line, attribute.assignment.name,
                             attribute.assignment.value.value_or("none"));
    }
    summary += '\n';
  }
  return summary;
}

struct Row {
  const char* name;
  std::string_view text;
  std::string_view summary;
};

constexpr std::array rows{
    Row{"nothing", "", ""},
    Row{"blank lines", "\n \n\t\r\n", ""},
    Row{"comments", "# one\n\n#two", ""},
    Row{"a header alone", "ACCESS_REQUEST, id 7", "1: (1 7)\n"},
    Row{"a packet", "ACCESS_REQUEST, id 7\nA = 1\nB = 2\n", "1: (1 7) 2:A=1 3:B=2\n"},
    Row{"no header", "\nA = 1\nB", "2: 2:A=1 3:B=none\n"},
    Row{"two packets", "1, id 7\nA=1\n\n2, id 7\nB=2\n", "1: (1 7) 2:A=1\n4: (2 7) 5:B=2\n"},
    Row{"two without headers", "A=1\n \n\nB=2", "1: 1:A=1\n4: 4:B=2\n"},
    Row{"a comment separates nothing", "A=1\n# x\nB=2", "1: 1:A=1 3:B=2\n"},
    Row{"ends of lines with CR", "1, id 7\r\nA=1\r\n\r\nB=2\r\n", "1: (1 7) 2:A=1\n4: 4:B=2\n"},
    Row{"a verdict", "12, id 7\nStatus-Server: success\nA=1", "1: (12 7) 3:A=1\n"},
    Row{"a verdict behind a comment", "12, id 7\n# c\nStatus-Server: invalidAttributePresent\nA=1",
        "1: (12 7) 4:A=1\n"},
    Row{"zero bytes", "A=\"\0\"\n"sv, "1: 1:A=\"\0\"\n"sv},
};

TEST(PacketText, IsReadInPiecesOfAnySize) {
  for (const Row& row : rows) {
    for (const std::size_t pieceSize : std::to_array<std::size_t>({1, 2, 3, 7, 1000})) {
      SCOPED_TRACE(fmt::format("{} in pieces of {}", row.name, pieceSize));
      EXPECT_EQ(summaryOf(packetsOf(row.text, pieceSize)), row.summary);
    }
  }
}

struct BadRow {
  const char* name;
  std::string text;
  std::size_t line;
  std::string_view message;
};

const std::array badRows{
    BadRow{"words", "A=1\nto be or not", 2, "the line is neither a header line nor NAME = VALUE"},
    BadRow{"no name", "= 1", 1, "the line is neither a header line nor NAME = VALUE"},
    BadRow{"a header behind attributes", "A=1\n2, id 7", 2,
           "a header line begins a packet: a blank line goes in front of it"},
    BadRow{"two headers", "1, id 7\n2, id 7", 2,
           "a header line begins a packet: a blank line goes in front of it"},
    BadRow{"a broken header", "\n\nCODE, id 7", 3,
           "the header line is not CODE, id N[, length N][, authenticator HEX], with nothing "
           "behind it but what decode prints"},
    BadRow{"a slip in a header", "A=1\n\n1, id 7, autenticator 00", 3,
           "the header line is not CODE, id N[, length N][, authenticator HEX], with nothing "
           "behind it but what decode prints"},
    BadRow{"a verdict without a header", "Status-Server: success", 1,
           "the line is neither a header line nor NAME = VALUE"},
    BadRow{"a verdict behind attributes", "12, id 7\nA=1\nStatus-Server: success", 3,
           "the line is neither a header line nor NAME = VALUE"},
    BadRow{"no verdict", "12, id 7\nStatus-Server: perhaps", 2,
           "the line is neither a header line nor NAME = VALUE"},
    BadRow{"a line that is too long", "A=1\n" + std::string(65537, 'x'), 2,
           "the line is longer than 65536 bytes"},
};

TEST(PacketText, NamesTheLineAtFault) {
  for (const BadRow& row : badRows) {
    SCOPED_TRACE(row.name);
    try {
      packetsOf(row.text, 1000);
      ADD_FAILURE() << "was read";
    } catch (const BadText& fault) {
      EXPECT_EQ(fault.what(), row.message);
      EXPECT_EQ(fault.line(), row.line);
    }
  }
}

TEST(PacketText, LongestLineIsRead) {
  const std::string value(65536 - 2, 'x');
  EXPECT_EQ(summaryOf(packetsOf("A=" + value + "\n", 4096)), "1: 1:A=" + value + "\n");
}

TEST(PacketText, HoldsAsManyAttributesAsAPacketHasRoomFor) {
  constexpr std::size_t most = (4096 - 20) / 2;
  std::string text;
  for (std::size_t count = 0; count < most; ++count) {
    text += "A=1\n";
  }
  EXPECT_EQ(packetsOf(text, 1000).front().attributes.size(), most);
  try {
    packetsOf(text + "A=1\n", 1000);
    ADD_FAILURE() << "was read";
  } catch (const BadText& fault) {
    EXPECT_STREQ(fault.what(), "no packet has room for more than 2038 attributes");
    EXPECT_EQ(fault.line(), most + 1);
  }
}

}  // namespace
}  // namespace RadiusPacketTool
