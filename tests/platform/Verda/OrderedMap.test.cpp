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

TEST(OrderedMap, KeepsFoundValuesInPlaceWhileOthersCome) {
  OrderedMap<U32, U32> map;
  const U32* const value = &map.insert(500, 5);
  for (U32 key = 0; key < 1'000; ++key) {
    map.insert(key, key);
  }
  EXPECT_EQ(map.find(500), value);
  EXPECT_EQ(*value, 5U);
}

}  // namespace
