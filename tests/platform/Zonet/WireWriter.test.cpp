#include "Zonet/WireWriter.h"

#include <algorithm>
#include <array>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Zonet::U16;
using Zonet::U32;
using Zonet::U64;
using Zonet::U8;
using Zonet::WireWriter;

constexpr U8 untouched = 0xEE;
constexpr std::array<U8, 8> networkOrder{0x81, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08};

/// The number whose bytes in network order are the first ones of `networkOrder`.
template <typename Number>
constexpr Number number = static_cast<Number>(0x8102030405060708U >> (64U - 8U * sizeof(Number)));

template <typename Number>
class WireWriterOf : public testing::Test {};

using Numbers = testing::Types<U8, U16, U32, U64>;
TYPED_TEST_SUITE(WireWriterOf, Numbers, );

TYPED_TEST(WireWriterOf, WritesBigEndianAndNothingBehind) {
  std::array<U8, 10> block;
  block.fill(untouched);
  WireWriter writer(block);
  EXPECT_TRUE(writer.write(number<TypeParam>));
  EXPECT_EQ(writer.written(), sizeof(TypeParam));
  EXPECT_EQ(writer.remaining(), block.size() - sizeof(TypeParam));
  EXPECT_TRUE(std::ranges::equal(std::span(block).first(sizeof(TypeParam)),
                                 std::span(networkOrder).first(sizeof(TypeParam))));
  EXPECT_TRUE(std::ranges::all_of(std::span(block).subspan(sizeof(TypeParam)),
                                  [](U8 byte) { return byte == untouched; }));
}

TYPED_TEST(WireWriterOf, WritesAnExactFit) {
  std::array<U8, sizeof(TypeParam)> block{};
  WireWriter writer(block);
  EXPECT_TRUE(writer.write(number<TypeParam>));
  EXPECT_EQ(writer.remaining(), 0U);
  EXPECT_TRUE(std::ranges::equal(block, std::span(networkOrder).first(sizeof(TypeParam))));
}

TYPED_TEST(WireWriterOf, WritesAndMovesNothingWhenOneByteIsMissing) {
  std::array<U8, sizeof(TypeParam)> block;
  block.fill(untouched);
  WireWriter writer{std::span(block).first(sizeof(TypeParam) - 1)};
  EXPECT_FALSE(writer.write(number<TypeParam>));
  EXPECT_EQ(writer.written(), 0U);
  EXPECT_EQ(writer.remaining(), sizeof(TypeParam) - 1);
  EXPECT_TRUE(std::ranges::all_of(block, [](U8 byte) { return byte == untouched; }));
}

TEST(WireWriter, WritesSpansFrontToBack) {
  std::array<U8, 5> block{};
  WireWriter writer(block);
  EXPECT_TRUE(writer.write(std::vector<U8>{1, 2}));
  EXPECT_TRUE(writer.write(std::vector<U8>{}));
  EXPECT_TRUE(writer.write(std::vector<U8>{3, 4, 5}));
  EXPECT_EQ(block, (std::array<U8, 5>{1, 2, 3, 4, 5}));
  EXPECT_EQ(writer.remaining(), 0U);
}

TEST(WireWriter, WritesAndMovesNothingWhenASpanDoesNotFit) {
  std::array<U8, 3> block{untouched, untouched, untouched};
  WireWriter writer(block);
  EXPECT_TRUE(writer.write(U8{1}));
  EXPECT_FALSE(writer.write(std::vector<U8>{2, 3, 4}));
  EXPECT_EQ(writer.written(), 1U);
  EXPECT_EQ(block, (std::array<U8, 3>{1, untouched, untouched}));
  EXPECT_TRUE(writer.write(std::vector<U8>{2, 3}));
  EXPECT_EQ(block, (std::array<U8, 3>{1, 2, 3}));
}

TEST(WireWriter, WritesNothingIntoNothing) {
  WireWriter writer({});
  EXPECT_TRUE(writer.write(std::span<const U8>()));
  EXPECT_FALSE(writer.write(U8{1}));
  EXPECT_EQ(writer.written(), 0U);
}

}  // namespace
