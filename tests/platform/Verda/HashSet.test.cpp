#include "Verda/HashSet.h"

#include <random>
#include <set>

#include <gtest/gtest.h>

#include "tests/platform/Verda/CollidingKey.h"

namespace {

using TestSupport::CollidingKey;
using Verda::HashSet;
using Verda::U32;

template <typename Key>
class HashSetOf : public testing::Test {};

using Keys = testing::Types<U32, CollidingKey>;
TYPED_TEST_SUITE(HashSetOf, Keys, );

TYPED_TEST(HashSetOf, AgreesWithStdSetUnderRandomOperations) {
  std::mt19937 random(11);
  HashSet<TypeParam> set;
  std::set<TypeParam> model;
  for (int operation = 0; operation < 10'000; ++operation) {
    const TypeParam key{static_cast<U32>(random() % 40)};
    SCOPED_TRACE(testing::Message() << "operation " << operation << ", key " << key);
    switch (random() % 4) {
      case 0:
      case 1:
        ASSERT_EQ(set.insert(key), key);
        model.insert(key);
        break;
      case 2:
        set.remove(key);
        model.erase(key);
        break;
      default:
        ASSERT_EQ(set.has(key), model.contains(key));
    }
    ASSERT_EQ(set.size(), model.size());
    ASSERT_EQ(set.empty(), model.empty());
    ASSERT_EQ(std::set<TypeParam>(set.begin(), set.end()), model);
  }
}

TEST(HashSet, IsEmptyAtFirst) {
  HashSet<U32> set;
  EXPECT_TRUE(set.empty());
  EXPECT_FALSE(set.has(0));
  set.remove(0);
  EXPECT_TRUE(set.begin() == set.end());
}

TEST(HashSet, ReturnsTheMemberThatIsPresent) {
  HashSet<U32> set;
  const U32* const first = &set.insert(5);
  EXPECT_EQ(&set.insert(5), first);
  EXPECT_EQ(set.size(), 1U);
}

TEST(HashSet, RemovesTheMemberThatItIsHandedOut) {
  HashSet<U32> set;
  for (U32 key = 0; key < 20; ++key) {
    set.insert(key);
  }
  while (!set.empty()) {
    const std::size_t before = set.size();
    set.remove(*set.begin());
    ASSERT_EQ(set.size(), before - 1);
  }
}

TEST(HashSet, IsEmptyOnceCleared) {
  HashSet<U32> set;
  set.insert(1);
  set.clear();
  EXPECT_TRUE(set.empty());
  EXPECT_FALSE(set.has(1));
  set.insert(2);
  EXPECT_TRUE(set.has(2));
}

}  // namespace
