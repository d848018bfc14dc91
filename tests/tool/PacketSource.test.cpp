#include "tool/input/PacketSource.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

using Bytes = std::vector<Verda::U8>;
using Packets = std::vector<Bytes>;

constexpr std::size_t greatest = 4096;

Bytes bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

/// Reads a source that comes in pieces, as long as the reader wants more.
PacketSource read(InputFormat format, std::string_view content, std::size_t pieceSize) {
  SourceReader reader(format);
  const Bytes bytes = bytesOf(content);
  std::span<const Verda::U8> rest(bytes);
  while (!rest.empty() && reader.wantsMore()) {
    const std::size_t count = std::min(pieceSize, rest.size());
    reader.take(rest.first(count));
    rest = rest.subspan(count);
  }
  return reader.finish("source");
}

constexpr std::array<std::size_t, 4> pieceSizes{1, 3, 4095, 1000000};

struct Row {
  const char* name;
  InputFormat format;
  std::string content;
  Packets packets;
  const char* whyBinary;  ///< null when the reader has nothing to explain
};

std::vector<Row> rows() {
  using enum InputFormat;
  const std::string zeros(greatest, '\0');
  return {
      {"nothing", automatic, "", {}, nullptr},
      {"nothing as hex", hex, "", {}, nullptr},
      {"nothing as binary", binary, "", {}, nullptr},
      {"white space", automatic, " \n", {}, nullptr},
      {"white space as binary", binary, " \n", {bytesOf(" \n")}, nullptr},
      {"a comment", automatic, "# caf\xc3\xa9", {}, nullptr},
      {"hex", automatic, "01\n\n02", {{1}, {2}}, nullptr},
      {"hex as hex", hex, "01\n\n02", {{1}, {2}}, nullptr},
      {"hex as binary", binary, "01\n\n02", {bytesOf("01\n\n02")}, nullptr},
      {"a byte", automatic, "\x01", {{1}}, R"("\x01" is no hex digit)"},
      {"a byte as binary", binary, "\x01", {{1}}, nullptr},
      {"a slip", automatic, "01\n\n0g", {bytesOf("01\n\n0g")}, "\"g\" is no hex digit"},
      {"control bytes in a comment",
       automatic,
       "#\x02",
       {bytesOf("#\x02")},
       R"("\x02" is a control byte)"},
      {"control bytes in a comment as hex", hex, "#\x02\n01", {{1}}, nullptr},
      {"half a byte before a slip",
       automatic,
       "1\n\n-",
       {bytesOf("1\n\n-")},
       "the packet ends with half a byte: an odd number of hex digits"},
      {"the greatest packet", binary, zeros, {Bytes(greatest, 0)}, nullptr},
      {"more than the greatest packet", binary, zeros + "z", {Bytes(greatest, 0)}, nullptr},
      {"a slip behind the greatest packet",
       automatic,
       std::string(70000, ' ') + "z",
       {Bytes(greatest, ' ')},
       "\"z\" is no hex digit"},
  };
}

TEST(PacketSource, ReadsEachFormat) {
  for (const Row& row : rows()) {
    for (const std::size_t pieceSize : pieceSizes) {
      SCOPED_TRACE(row.name);
      SCOPED_TRACE(pieceSize);
      const PacketSource source = read(row.format, row.content, pieceSize);
      EXPECT_EQ(source.name, "source");
      EXPECT_EQ(source.packets, row.packets);
      ASSERT_EQ(source.whyBinary.has_value(), row.whyBinary != nullptr);
      if (row.whyBinary != nullptr) {
        EXPECT_STREQ(source.whyBinary->what(), row.whyBinary);
      }
    }
  }
}

TEST(PacketSource, RefusesBadHexWhereHexIsMeant) {
  struct BadRow {
    InputFormat format;
    std::string_view content;
  };
  const std::array badRows{
      BadRow{InputFormat::hex, "g"},
      BadRow{InputFormat::hex, "012"},
      BadRow{InputFormat::hex, "0\n\n-"},
      BadRow{InputFormat::automatic, "012"},
      BadRow{InputFormat::automatic, "0\n\n11"},
  };
  for (const BadRow& row : badRows) {
    for (const std::size_t pieceSize : pieceSizes) {
      SCOPED_TRACE(row.content);
      EXPECT_THROW(read(row.format, row.content, pieceSize), BadHex);
    }
  }
}

/// How many bytes of an endless source of `byte` the reader wants; nothing: it does not end.
std::optional<std::size_t> wanted(InputFormat format, Verda::U8 byte) {
  SourceReader reader(format);
  for (std::size_t count = 0; count < 2 * greatest; ++count) {
    if (!reader.wantsMore()) {
      return count;
    }
    reader.take(std::span(&byte, 1));
  }
  return std::nullopt;
}

TEST(PacketSource, WantsNoMoreThanCanChangeAnything) {
  EXPECT_EQ(wanted(InputFormat::binary, '0'), greatest);
  EXPECT_EQ(wanted(InputFormat::binary, 1), greatest);
  EXPECT_EQ(wanted(InputFormat::automatic, 1), greatest);
  EXPECT_EQ(wanted(InputFormat::automatic, '0'), std::nullopt);
  EXPECT_EQ(wanted(InputFormat::hex, '0'), std::nullopt);
  EXPECT_EQ(wanted(InputFormat::hex, 'z'), 1U);
}

}  // namespace
}  // namespace RadiusPacketTool
