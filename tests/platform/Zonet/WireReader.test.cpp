#include "Zonet/WireReader.h"

#include <array>
#include <limits>

#include <gtest/gtest.h>

namespace {

using Zonet::U16;
using Zonet::U32;
using Zonet::U64;
using Zonet::U8;
using Zonet::WireReader;

constexpr std::array<U8, 9> bytes{0x81, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x99};

template <typename Number>
struct Width {
  using Type = Number;
};

/// The number that the first bytes are in network order.
constexpr U8 expected(Width<U8>) {
  return 0x81;
}
constexpr U16 expected(Width<U16>) {
  return 0x8102;
}
constexpr U32 expected(Width<U32>) {
  return 0x81020304;
}
constexpr U64 expected(Width<U64>) {
  return 0x8102030405060708;
}

template <typename Number>
class WireReaderOf : public testing::Test {};

using Numbers = testing::Types<U8, U16, U32, U64>;
TYPED_TEST_SUITE(WireReaderOf, Numbers, );

TYPED_TEST(WireReaderOf, ReadsBigEndianAndMovesByTheWidth) {
  WireReader reader(bytes);
  TypeParam value = 0;
  EXPECT_TRUE(reader.read(value));
  EXPECT_EQ(value, expected(Width<TypeParam>()));
  EXPECT_EQ(reader.remaining(), bytes.size() - sizeof(TypeParam));
}

TYPED_TEST(WireReaderOf, ReadsAnExactFit) {
  WireReader reader{std::span(bytes).first(sizeof(TypeParam))};
  TypeParam value = 0;
  EXPECT_TRUE(reader.read(value));
  EXPECT_EQ(value, expected(Width<TypeParam>()));
  EXPECT_TRUE(reader.empty());
}

TYPED_TEST(WireReaderOf, GivesAndMovesNothingWhenOneByteIsMissing) {
  WireReader reader{std::span(bytes).first(sizeof(TypeParam) - 1)};
  TypeParam value = 0x5A;
  EXPECT_FALSE(reader.read(value));
  EXPECT_EQ(value, 0x5A);
  EXPECT_EQ(reader.remaining(), sizeof(TypeParam) - 1);
}

TEST(WireReader, ReadsSpansFrontToBack) {
  WireReader reader(bytes);
  std::span<const U8> read;
  EXPECT_TRUE(reader.read(3, read));
  EXPECT_EQ(read.data(), bytes.data());
  EXPECT_EQ(read.size(), 3U);
  EXPECT_TRUE(reader.read(6, read));
  EXPECT_EQ(read.data(), bytes.data() + 3);
  EXPECT_EQ(read.size(), 6U);
  EXPECT_TRUE(reader.empty());
}

TEST(WireReader, GivesAndMovesNothingWhenASpanDoesNotFit) {
  WireReader reader(bytes);
  for (const std::size_t count : {bytes.size() + 1, std::numeric_limits<std::size_t>::max()}) {
    SCOPED_TRACE(count);
    std::span<const U8> read = std::span(bytes).first(2);
    EXPECT_FALSE(reader.read(count, read));
    EXPECT_EQ(read.size(), 2U);
    EXPECT_EQ(reader.remaining(), bytes.size());
  }
}

TEST(WireReader, ReadsNothingFromNothing) {
  WireReader reader({});
  std::span<const U8> read = bytes;
  EXPECT_TRUE(reader.empty());
  EXPECT_TRUE(reader.read(0, read));
  EXPECT_TRUE(read.empty());
  EXPECT_FALSE(reader.read(1, read));
}

TEST(WireReader, PeeksWithoutMoving) {
  WireReader reader(bytes);
  U8 value = 0;
  EXPECT_TRUE(reader.peek(0, value));
  EXPECT_EQ(value, 0x81);
  EXPECT_TRUE(reader.peek(8, value));
  EXPECT_EQ(value, 0x99);
  EXPECT_FALSE(reader.peek(9, value));
  EXPECT_FALSE(reader.peek(std::numeric_limits<std::size_t>::max(), value));
  EXPECT_EQ(value, 0x99);
  EXPECT_EQ(reader.remaining(), bytes.size());
  EXPECT_TRUE(reader.read(value));
  EXPECT_TRUE(reader.peek(0, value));
  EXPECT_EQ(value, 0x02);
}

}  // namespace
