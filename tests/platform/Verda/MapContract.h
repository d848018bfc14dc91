#pragma once

#include <map>
#include <optional>
#include <random>
#include <utility>

#include <gtest/gtest.h>

#include "Verda/Types.h"

#include "tests/platform/Verda/CollidingKey.h"

namespace TestSupport {

/// Compares a map with `std::map` in everything that can be asked of it. `members` gives a member
/// as a pair of key and value.
template <typename Map, typename Key, typename PairOf>
void expectSameMembers(const Map& map, const std::map<Key, Verda::U32>& model, PairOf pairOf) {
  ASSERT_EQ(map.size(), model.size());
  ASSERT_EQ(map.empty(), model.empty());
  std::map<Key, Verda::U32> iterated;
  for (const auto& member : map) {
    ASSERT_TRUE(iterated.insert(pairOf(member)).second) << "a member was iterated twice";
  }
  ASSERT_EQ(iterated, model);
}

/// Does seeded random operations on a map of `Key` to `U32` and on `std::map`, which must agree.
template <typename Map, typename Key, typename PairOf>
void expectAgreesWithStdMap(Verda::U32 seed, Verda::U32 operations, Verda::U32 keys,
                            PairOf pairOf) {
  std::mt19937 random(seed);
  Map map;
  std::map<Key, Verda::U32> model;
  for (Verda::U32 operation = 0; operation < operations; ++operation) {
    const Key key = keyOf<Key>(static_cast<Verda::U32>(random() % keys));
    const auto found = model.find(key);
    const bool present = found != model.end();
    SCOPED_TRACE(testing::Message() << "operation " << operation << ", key " << key);
    switch (random() % 8) {
      case 0:
      case 1:
      case 2:
        ASSERT_EQ(map.insert(key, operation), model.emplace(key, operation).first->second);
        break;
      case 3:
      case 4:
        ASSERT_EQ(map.remove(key), present ? std::optional(found->second) : std::nullopt);
        model.erase(key);
        break;
      case 5:
        if (present) {
          ASSERT_NE(map.find(key), nullptr);
          *map.find(key) = found->second = operation;
        }
        break;
      default:
        ASSERT_EQ(std::as_const(map).find(key) != nullptr, present);
        if (present) {
          ASSERT_EQ(*std::as_const(map).find(key), found->second);
        }
    }
    if (operation % 16 == 0) {
      ASSERT_NO_FATAL_FAILURE(expectSameMembers(map, model, pairOf));
    }
    if (operation % 1'000 == 999) {
      map.clear();
      model.clear();
    }
  }
  ASSERT_NO_FATAL_FAILURE(expectSameMembers(map, model, pairOf));
}

}  // namespace TestSupport
