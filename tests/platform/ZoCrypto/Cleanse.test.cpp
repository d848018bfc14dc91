#include "ZoCrypto/Cleanse.h"

#include <array>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Verda::U8;

TEST(Cleanse, OverwritesTheBytesAndNoOthers) {
  std::array<U8, 4> bytes{1, 2, 3, 4};
  ZoCrypto::cleanse(std::span(bytes).subspan(1, 2));
  EXPECT_EQ(bytes, (std::array<U8, 4>{1, 0, 0, 4}));
}

TEST(Cleanse, TakesNothing) {
  EXPECT_NO_THROW(ZoCrypto::cleanse({}));
}

TEST(CleanseOnExit, OverwritesWhenTheScopeEnds) {
  std::array<U8, 3> bytes{1, 2, 3};
  {
    const ZoCrypto::CleanseOnExit scope(bytes);
    EXPECT_EQ(bytes, (std::array<U8, 3>{1, 2, 3}));
  }
  EXPECT_EQ(bytes, (std::array<U8, 3>{}));
}

TEST(CleanseOnExit, OverwritesWhenAnExceptionEndsTheScope) {
  std::array<U8, 3> bytes{1, 2, 3};
  try {
    const ZoCrypto::CleanseOnExit scope(bytes);
    throw std::runtime_error("out");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(bytes, (std::array<U8, 3>{}));
}

TEST(EqualInConstantTime, ComparesEveryByteAndTheLength) {
  const std::vector<U8> bytes{1, 2, 3, 4};
  EXPECT_TRUE(ZoCrypto::equalInConstantTime(bytes, std::vector<U8>{1, 2, 3, 4}));
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    for (unsigned int bit = 0; bit < 8; ++bit) {
      std::vector<U8> other = bytes;
      other[at] = static_cast<U8>(other[at] ^ (1U << bit));
      EXPECT_FALSE(ZoCrypto::equalInConstantTime(bytes, other)) << at << '.' << bit;
    }
  }
  EXPECT_FALSE(ZoCrypto::equalInConstantTime(bytes, std::vector<U8>{1, 2, 3}));
  EXPECT_FALSE(ZoCrypto::equalInConstantTime(bytes, std::vector<U8>{1, 2, 3, 4, 0}));
  EXPECT_FALSE(ZoCrypto::equalInConstantTime({}, bytes));
  EXPECT_TRUE(ZoCrypto::equalInConstantTime({}, {}));
}

}  // namespace
