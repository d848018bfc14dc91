#include "tool/HexText.h"

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

}  // namespace
}  // namespace RadiusPacketTool
