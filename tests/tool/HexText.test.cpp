#include "tool/text/HexText.h"

#include <array>

#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

constexpr std::array<Verda::U8, 4> bytes{0x00, 0x0f, 0xf0, 0xff};

TEST(HexText, WritesTwoDigitsForEachByte) {
  EXPECT_EQ(hexText({}), "");
  EXPECT_EQ(hexText(bytes), "000ff0ff");
}

TEST(HexText, MarksDigitsThatStandAmongText) {
  EXPECT_EQ(prefixedHex({}), "0x");
  EXPECT_EQ(prefixedHex(bytes), "0x000ff0ff");
}

TEST(HexText, ReadsPairsOfDigitsAndNothingElse) {
  EXPECT_EQ(bytesOfHex(""), std::vector<Verda::U8>());
  EXPECT_EQ(bytesOfHex("000Ff0fF"), std::vector<Verda::U8>(bytes.begin(), bytes.end()));
  for (const std::string_view wrong : {"0", "000", "0g", "g0", "0 ", " 0", "0x00", "00:00"}) {
    SCOPED_TRACE(wrong);
    EXPECT_EQ(bytesOfHex(wrong), std::nullopt);
  }
}

}  // namespace
}  // namespace RadiusPacketTool
