#include "Verda/HashMap.h"

#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "Verda/String.h"

#include "tests/platform/Verda/MapContract.h"

namespace TestSupport {

template <>
Verda::U8 keyOf<Verda::U8>(Verda::U32 number) {
  return static_cast<Verda::U8>(number * 6);
}

template <>
Verda::U32 keyOf<Verda::U32>(Verda::U32 number) {
  return number;
}

template <>
Verda::String keyOf<Verda::String>(Verda::U32 number) {
  return Verda::String("key " + std::to_string(number));
}

}  // namespace TestSupport

namespace {

using TestSupport::CollidingKey;
using Verda::HashMap;
using Verda::String;
using Verda::U32;
using Verda::U8;

template <typename Key>
class HashMapOf : public testing::Test {};

using Keys = testing::Types<U8, U32, String, CollidingKey>;
TYPED_TEST_SUITE(HashMapOf, Keys, );

TYPED_TEST(HashMapOf, AgreesWithStdMapUnderRandomOperations) {
  const auto pairOf = [](const auto& member) { return std::pair(member.key, member.value); };
  for (const U32 seed : {1U, 2U, 3U}) {
    SCOPED_TRACE(seed);
    TestSupport::expectAgreesWithStdMap<HashMap<TypeParam, U32>, TypeParam>(seed, 6'000, 40,
                                                                            pairOf);
  }
}

TEST(HashMap, IsEmptyAtFirst) {
  HashMap<U32, U32> map;
  EXPECT_TRUE(map.empty());
  EXPECT_EQ(map.find(1), nullptr);
  EXPECT_EQ(map.remove(1), std::nullopt);
  EXPECT_TRUE(map.begin() == map.end());
}

TEST(HashMap, KeepsTheValueThatIsPresent) {
  HashMap<U32, U32> map;
  EXPECT_EQ(map.insert(1, 10), 10U);
  EXPECT_EQ(map.insert(1, 20), 10U);
  EXPECT_EQ(map.size(), 1U);
}

TEST(HashMap, HoldsTenThousandKeys) {
  HashMap<U32, U32> map;
  for (U32 key = 0; key < 10'000; ++key) {
    map.insert(key, key + 1);
  }
  EXPECT_EQ(map.size(), 10'000U);
  for (U32 key = 0; key < 10'000; ++key) {
    ASSERT_NE(map.find(key), nullptr);
    ASSERT_EQ(*map.find(key), key + 1);
  }
  EXPECT_EQ(map.find(10'000), nullptr);
}

TEST(HashMap, HoldsEveryKeyOfOneByte) {
  HashMap<U8, U32> map;
  for (U32 key = 0; key <= 0xFF; ++key) {
    ASSERT_EQ(map.find(static_cast<U8>(key)), nullptr);
    map.insert(static_cast<U8>(key), key + 1);
  }
  EXPECT_EQ(map.size(), 256U);
  EXPECT_EQ(map.remove(200), 201U);
  EXPECT_EQ(map.find(200), nullptr);
  U32 sum = 0;
  for (const auto& member : map) {
    EXPECT_EQ(member.value, member.key + 1U);
    sum += member.key;
  }
  EXPECT_EQ(sum, 255U * 256U / 2U - 200U);
  map.clear();
  EXPECT_TRUE(map.empty());
  EXPECT_EQ(map.find(0), nullptr);
}

TEST(HashMap, TakesValuesThatOnlyMove) {
  HashMap<U32, std::unique_ptr<int>> map;
  for (U32 key = 0; key < 20; ++key) {
    map.insert(key, std::make_unique<int>(static_cast<int>(key)));
  }
  const auto removed = map.remove(7);
  ASSERT_TRUE(removed.has_value());
  EXPECT_EQ(**removed, 7);
  EXPECT_EQ(map.size(), 19U);
}

TEST(HashMap, DistinguishesTextByEveryByte) {
  HashMap<String, U32> map;
  map.insert(String(std::string_view("a\0b", 3)), 1);
  map.insert(String(std::string_view("a\0c", 3)), 2);
  map.insert("a", 3);
  EXPECT_EQ(map.size(), 3U);
  EXPECT_EQ(*map.find("a"), 3U);
}

TEST(HashMap, CopiesAndMovesByValue) {
  HashMap<U32, U32> map;
  map.insert(1, 10);
  const HashMap<U32, U32> copy = map;
  const HashMap<U32, U32> moved = std::move(map);
  EXPECT_EQ(map.size(), 0U);  // NOLINT(bugprone-use-after-move): what is left is promised
  EXPECT_EQ(map.find(1), nullptr);
  map.insert(2, 20);
  EXPECT_EQ(*map.find(2), 20U);
  EXPECT_EQ(*copy.find(1), 10U);
  EXPECT_EQ(*moved.find(1), 10U);
}

}  // namespace
