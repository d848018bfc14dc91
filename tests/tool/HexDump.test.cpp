#include "tool/anatomy/HexDump.h"

#include <gtest/gtest.h>

#include "tests/support/Digests.h"

namespace RadiusPacketTool {
namespace {

using TestSupport::countingBytes;

TEST(HexDump, MarksBytesAcrossLines) {
  EXPECT_EQ(hexDump(countingBytes(18, 0x3a), {.offset = 14, .length = 3}),
            "  0000  3a 3b 3c 3d 3e 3f 40 41  42 43 44 45 46 47 48 49  :;<=>?@ABCDEFGHI\n"
            "                                                   ^^ ^^\n"
            "  0010  4a 4b                                             JK\n"
            "        ^^\n");
}

TEST(HexDump, ShowsWhatIsMissing) {
  EXPECT_EQ(hexDump(countingBytes(2), {.offset = 2, .length = 2}),
            "  0000  00 01 -- --                                       ..\n"
            "              ^^ ^^\n");
}

TEST(HexDump, ShowsNoByteThatDrivesATerminal) {
  EXPECT_EQ(hexDump(TestSupport::ByteVector{0x1b, 0x7f, 0x80, 0x9b, 0xff, 0x7e},
                    {.offset = 0, .length = 1}),
            "  0000  1b 7f 80 9b ff 7e                                 .....~\n"
            "        ^^\n");
}

TEST(HexDump, ShowsOfALongPacketTheLinesAroundTheMarks) {
  EXPECT_EQ(hexDump(TestSupport::ByteVector(13 * 16, 'a'), {.offset = 80, .length = 1}),
            "  ....\n"
            "  0030  61 61 61 61 61 61 61 61  61 61 61 61 61 61 61 61  aaaaaaaaaaaaaaaa\n"
            "  0040  61 61 61 61 61 61 61 61  61 61 61 61 61 61 61 61  aaaaaaaaaaaaaaaa\n"
            "  0050  61 61 61 61 61 61 61 61  61 61 61 61 61 61 61 61  aaaaaaaaaaaaaaaa\n"
            "        ^^\n"
            "  0060  61 61 61 61 61 61 61 61  61 61 61 61 61 61 61 61  aaaaaaaaaaaaaaaa\n"
            "  0070  61 61 61 61 61 61 61 61  61 61 61 61 61 61 61 61  aaaaaaaaaaaaaaaa\n"
            "  ....\n");
}

TEST(HexDump, HasNoGapAtTheEndsOfALongPacket) {
  const TestSupport::ByteVector packet(13 * 16, 'a');
  const std::string front = hexDump(packet, {.offset = 0, .length = 1});
  EXPECT_TRUE(front.starts_with("  0000  ")) << front;
  EXPECT_TRUE(front.ends_with("  ....\n")) << front;
  const std::string end = hexDump(packet, {.offset = 207, .length = 1});
  EXPECT_TRUE(end.starts_with("  ....\n")) << end;
  EXPECT_TRUE(end.ends_with("^^\n")) << end;
}

}  // namespace
}  // namespace RadiusPacketTool
