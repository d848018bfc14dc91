#include "ZoCrypto/Random.h"

#include <array>

#include <gtest/gtest.h>

#include "ZoCrypto/FaultSeam.h"

namespace {

using Verda::U8;
using Bytes16 = std::array<U8, 16>;

TEST(Random, FillsTheBytesDifferentlyEachTime) {
  Bytes16 first{};
  Bytes16 second{};
  EXPECT_TRUE(ZoCrypto::randomBytes(first));
  EXPECT_TRUE(ZoCrypto::randomBytes(second));
  EXPECT_NE(first, Bytes16{});
  EXPECT_NE(first, second);
}

TEST(Random, FillsOnlyWhatItIsGiven) {
  std::array<U8, 64> block{};
  EXPECT_TRUE(ZoCrypto::randomBytes(std::span(block).subspan(16, 16)));
  for (std::size_t at = 0; at < block.size(); ++at) {
    if (at < 16 || at >= 32) {
      EXPECT_EQ(block[at], 0) << at;
    }
  }
}

TEST(Random, FillsNothingWithoutFailing) {
  EXPECT_TRUE(ZoCrypto::randomBytes({}));
}

TEST(Random, SaysThatTheGeneratorFailed) {
  Bytes16 bytes{};
  ZoCrypto::FaultSeam::failIs(ZoCrypto::Primitive::random);
  EXPECT_FALSE(ZoCrypto::randomBytes(bytes));
  EXPECT_TRUE(ZoCrypto::randomBytes(bytes));
}

}  // namespace
