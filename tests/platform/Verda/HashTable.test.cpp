#include "Verda/HashTable.h"

#include <array>
#include <set>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Verda::U32;

/// A key whose home slot the test chooses.
struct Placed {
  U32 home = 0;
  U32 number = 0;

  bool operator==(const Placed&) const = default;
  U32 hash(U32) const { return home; }
};

struct Itself {
  const Placed& operator()(const Placed& key) const { return key; }
};

using Table = Verda::HashTable<Placed, Itself>;

std::set<U32> numbersIn(const Table& table) {
  std::set<U32> numbers;
  for (const Placed& key : table) {
    numbers.insert(key.number);
  }
  return numbers;
}

// Four keys are what the first eight slots take: every arrangement of their homes, also those
// whose probes wrap around the end.
TEST(HashTable, ClosesHolesInEveryArrangementOfFourKeys) {
  constexpr U32 keyCount = 4;
  constexpr U32 slots = 8;
  for (U32 arrangement = 0; arrangement < slots * slots * slots * slots; ++arrangement) {
    std::array<Placed, keyCount> keys;
    U32 homes = arrangement;
    for (U32 number = 0; number < keyCount; ++number, homes /= slots) {
      keys[number] = {homes % slots, number};
    }
    for (const Placed& removed : keys) {
      SCOPED_TRACE(testing::Message()
                   << "arrangement " << arrangement << ", removed " << removed.number);
      Table table;
      std::set<U32> expected;
      for (const Placed& key : keys) {
        table.insert(key);
        expected.insert(key.number);
      }
      ASSERT_EQ(table.remove(removed), removed);
      expected.erase(removed.number);
      ASSERT_EQ(numbersIn(table), expected);
      for (const Placed& key : keys) {
        ASSERT_EQ(table.find(key) != nullptr, key != removed);
      }
    }
  }
}

TEST(HashTable, SaysWhetherAnEntryIsNew) {
  Table table;
  const auto [first, isNew] = table.insert({1, 1});
  EXPECT_TRUE(isNew);
  const auto [second, isNewToo] = table.insert({1, 1});
  EXPECT_FALSE(isNewToo);
  EXPECT_EQ(first, second);
}

TEST(HashTable, IteratesEveryEntryOnce) {
  Table table;
  for (U32 number = 0; number < 100; ++number) {
    table.insert({number * 3, number});
  }
  std::vector<U32> numbers;
  for (auto at = table.begin(); at != table.end(); at++) {
    numbers.push_back(at->number);
  }
  EXPECT_EQ(numbers.size(), 100U);
  EXPECT_EQ(numbersIn(table).size(), 100U);
}

TEST(HashTable, IsEmptyAndUsableAfterItWasMovedFrom) {
  Table table;
  table.insert({1, 1});
  Table assigned;
  assigned.insert({2, 2});
  assigned = std::move(table);
  EXPECT_EQ(numbersIn(assigned), std::set<U32>{1});
  EXPECT_EQ(table.size(), 0U);  // NOLINT(bugprone-use-after-move): what is left is promised
  EXPECT_EQ(table.find(Placed{1, 1}), nullptr);
  table.insert({3, 3});
  EXPECT_EQ(numbersIn(table), std::set<U32>{3});
}

}  // namespace
