#include "Verda/Ptr.h"

#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/Verda/CountedNode.h"

namespace {

using TestSupport::CountedNode;
using Verda::Node;
using Verda::Ptr;

class Derived : public CountedNode {
 public:
  using CountedNode::CountedNode;
};

/// Every test runs with locked and with plain counts.
class PtrCount : public testing::TestWithParam<bool> {
 protected:
  PtrCount() { Verda::multiThreadedIs(GetParam()); }
  ~PtrCount() override { Verda::multiThreadedIs(true); }

  int gone = 0;
};

INSTANTIATE_TEST_SUITE_P(Threading, PtrCount, testing::Bool(),
                         [](const auto& suite) { return suite.param ? "Locked" : "Plain"; });

TEST_P(PtrCount, IsOneForTheFirstPtr) {
  const Ptr<CountedNode> ptr(new CountedNode(gone));
  EXPECT_EQ(ptr->userCount(), 1U);
  EXPECT_EQ(gone, 0);
}

TEST_P(PtrCount, FollowsCopies) {
  const Ptr<CountedNode> first(new CountedNode(gone));
  {
    const Ptr<CountedNode> second(first);
    const Ptr<CountedNode> third(first.get());
    EXPECT_EQ(first->userCount(), 3U);
  }
  EXPECT_EQ(first->userCount(), 1U);
  EXPECT_EQ(gone, 0);
}

TEST_P(PtrCount, StaysWhenAPtrIsMoved) {
  Ptr<CountedNode> first(new CountedNode(gone));
  const Ptr<CountedNode> second(std::move(first));
  EXPECT_EQ(second->userCount(), 1U);
  EXPECT_EQ(first, nullptr);  // NOLINT(bugprone-use-after-move): what is left is promised
}

TEST_P(PtrCount, DeletesTheEntityOnceWithItsLastPtr) {
  Ptr<CountedNode> first(new CountedNode(gone));
  Ptr<CountedNode> second = first;
  first = nullptr;
  EXPECT_EQ(gone, 0);
  second = nullptr;
  EXPECT_EQ(gone, 1);
}

TEST_P(PtrCount, FollowsAssignment) {
  int goneToo = 0;
  Ptr<CountedNode> first(new CountedNode(gone));
  const Ptr<CountedNode> second(new CountedNode(goneToo));
  first = second;
  EXPECT_EQ(gone, 1);
  EXPECT_EQ(second->userCount(), 2U);
  EXPECT_EQ(goneToo, 0);
}

TEST_P(PtrCount, SurvivesAssignmentToItself) {
  Ptr<CountedNode> ptr(new CountedNode(gone));
  Ptr<CountedNode>& same = ptr;
  ptr = same;
  EXPECT_EQ(ptr->userCount(), 1U);
  ptr = std::move(same);
  EXPECT_EQ(ptr->userCount(), 1U);
  EXPECT_EQ(gone, 0);
}

TEST_P(PtrCount, FollowsConversionsToBaseAndConst) {
  Ptr<Derived> derived(new Derived(gone));
  const Ptr<CountedNode> base = derived;
  const Ptr<const Derived> constant = derived;
  EXPECT_EQ(derived->userCount(), 3U);
  const Ptr<const Node> taken = std::move(derived);
  EXPECT_EQ(derived, nullptr);  // NOLINT(bugprone-use-after-move): what is left is promised
  EXPECT_EQ(taken->userCount(), 3U);
}

TEST_P(PtrCount, DeletesThroughAPtrToConstBase) {
  {
    const Ptr<const Node> ptr = Ptr<Derived>(new Derived(gone));
    EXPECT_EQ(gone, 0);
  }
  EXPECT_EQ(gone, 1);
}

TEST(Ptr, IsNullAtFirst) {
  const Ptr<CountedNode> ptr;
  EXPECT_FALSE(ptr);
  EXPECT_EQ(ptr.get(), nullptr);
  EXPECT_EQ(ptr, nullptr);
  EXPECT_EQ(Ptr<CountedNode>(nullptr), nullptr);
}

TEST(Ptr, ReachesItsEntity) {
  int gone = 0;
  auto* entity = new CountedNode(gone);
  const Ptr<CountedNode> ptr(entity);
  ptr->number = 7;
  EXPECT_TRUE(ptr);
  EXPECT_EQ(ptr.get(), entity);
  EXPECT_EQ((*ptr).number, 7);
}

TEST(Ptr, ComparesByEntityAcrossTypes) {
  int gone = 0;
  const Ptr<Derived> one(new Derived(gone));
  const Ptr<Derived> other(new Derived(gone));
  const Ptr<const CountedNode> sameAsOne = one;
  EXPECT_TRUE(one == one);
  EXPECT_TRUE(one == sameAsOne);
  EXPECT_TRUE(sameAsOne == one);
  EXPECT_FALSE(one == other);
  EXPECT_TRUE(one != nullptr);
  EXPECT_TRUE(nullptr != one);
}

TEST(Ptr, ConvertsOnlyWherePointersDo) {
  static_assert(std::is_convertible_v<Ptr<Derived>, Ptr<Node>>);
  static_assert(std::is_convertible_v<Ptr<Derived>, Ptr<const Derived>>);
  static_assert(!std::is_constructible_v<Ptr<Derived>, Ptr<Node>>);
  static_assert(!std::is_constructible_v<Ptr<Derived>, Ptr<const Derived>>);
  static_assert(!std::is_convertible_v<Derived*, Ptr<Derived>>);
  static_assert(std::is_same_v<decltype(*std::declval<Ptr<const Derived>>()), const Derived&>);
}

TEST(Ptr, CastsDownToAKnownType) {
  int gone = 0;
  const Ptr<Node> node = Ptr<Derived>(new Derived(gone));
  const Ptr<Derived> derived = Verda::staticPtrCast<Derived>(node);
  EXPECT_EQ(derived, node);
  EXPECT_EQ(node->userCount(), 2U);
}

TEST(Ptr, CountsRightWhileThreadsShareAnEntity) {
  constexpr int threads = 4;
  constexpr int rounds = 20'000;
  int gone = 0;
  Ptr<const CountedNode> shared(new CountedNode(gone));
  {
    std::vector<std::jthread> workers;
    for (int count = 0; count < threads; ++count) {
      workers.emplace_back([own = shared] {
        for (int round = 0; round < rounds; ++round) {
          const Ptr<const CountedNode> copy = own;
          const Ptr<const Node> another = copy;
        }
      });
    }
  }
  EXPECT_EQ(shared->userCount(), 1U);
  EXPECT_EQ(gone, 0);
  shared = nullptr;
  EXPECT_EQ(gone, 1);
}

TEST(Ptr, DeletesOnceWhenThreadsDropTheLastPtrsTogether) {
  for (int round = 0; round < 200; ++round) {
    int gone = 0;
    {
      Ptr<CountedNode> first(new CountedNode(gone));
      const std::jthread other([copy = first]() mutable { copy = nullptr; });
      first = nullptr;
    }
    ASSERT_EQ(gone, 1);
  }
}

}  // namespace
