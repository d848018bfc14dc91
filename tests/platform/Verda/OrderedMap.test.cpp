#include "Verda/OrderedMap.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/Verda/MapContract.h"

namespace {

using TestSupport::CollidingKey;
using Verda::OrderedMap;
using Verda::U32;

TEST(OrderedMap, AgreesWithStdMapUnderRandomOperations) {
  const auto pairOf = [](const auto& member) { return std::pair(member.first, member.second); };
  for (const U32 seed : {1U, 2U, 3U}) {
    SCOPED_TRACE(seed);
    TestSupport::expectAgreesWithStdMap<OrderedMap<CollidingKey, U32>, CollidingKey>(seed, 6'000,
                                                                                     40, pairOf);
  }
}

TEST(OrderedMap, IteratesInAscendingOrderOfTheKey) {
  OrderedMap<U32, std::string> map;
  map.insert(300, "c");
  map.insert(1, "a");
  map.insert(20, "b");
  map.insert(2, "gone");
  map.remove(2);
  std::vector<std::pair<U32, std::string>> members;
  for (const auto& [key, value] : map) {
    members.emplace_back(key, value);
  }
  const std::vector<std::pair<U32, std::string>> expected{{1, "a"}, {20, "b"}, {300, "c"}};
  EXPECT_EQ(members, expected);
}

TEST(OrderedMap, KeepsTheValueThatIsPresent) {
  OrderedMap<U32, U32> map;
  EXPECT_EQ(map.insert(1, 10), 10U);
  EXPECT_EQ(map.insert(1, 20), 10U);
  EXPECT_EQ(map.size(), 1U);
}

TEST(OrderedMap, TakesItsKeysInAnyOrder) {
  OrderedMap<U32, U32> map;
  for (U32 step = 0; step < 1'000; ++step) {
    const U32 key = step * 387 % 1'000;
    EXPECT_EQ(map.insert(key, step), step);
  }
  U32 expected = 0;
  for (const auto& [key, value] : map) {
    EXPECT_EQ(key, expected);
    EXPECT_EQ(value * 387 % 1'000, key);
    ++expected;
  }
  EXPECT_EQ(expected, 1'000U);
  EXPECT_EQ(map.remove(0), 0U);
  EXPECT_EQ(map.remove(0), std::nullopt);
  EXPECT_EQ(map.begin()->first, 1U);
}

}  // namespace
