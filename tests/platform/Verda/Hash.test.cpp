#include "Verda/Hash.h"

#include <set>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/platform/Verda/CollidingKey.h"

namespace {

using Verda::hashOf;
using Verda::U32;

TEST(Hash, SpreadsNeighbouringNumbersOverTheLowBits) {
  std::set<U32> slots;
  for (U32 number = 0; number < 256; ++number) {
    slots.insert(hashOf(number, 1) & 0xFFU);
  }
  EXPECT_GT(slots.size(), 128U);
}

TEST(Hash, DependsOnTheSeed) {
  EXPECT_NE(hashOf(U32{7}, 1), hashOf(U32{7}, 2));
  EXPECT_NE(hashOf(Verda::String("seven"), 1), hashOf(Verda::String("seven"), 2));
}

TEST(Hash, IsAlikeForEqualTextOfEveryKind) {
  EXPECT_EQ(hashOf(Verda::String("text"), 1), hashOf(std::string_view("text"), 1));
  EXPECT_NE(hashOf(Verda::String("text"), 1), hashOf(Verda::String("test"), 1));
}

TEST(Hash, AsksAKeyTypeOfItsOwn) {
  EXPECT_EQ(hashOf(TestSupport::CollidingKey{1}, 1), 6U);
}

}  // namespace
