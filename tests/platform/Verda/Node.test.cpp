#include "Verda/Node.h"

#include <type_traits>

#include <gtest/gtest.h>

#include "Verda/Ptr.h"

#include "tests/platform/Verda/CountedNode.h"

namespace {

using Verda::Node;
using Verda::Ptr;

/// Overrides all that the framework calls on an entity; its owner keeps it.
class Overriding : public Node {
 public:
  void lastUserGone() const override { ++timesLastUserGone; }
  const Node* publisher() const override { return this; }
  const Verda::TypeData& typeData() const override {
    static constexpr Verda::TypeData data{"Overriding"};
    return data;
  }

  mutable int timesLastUserGone = 0;
};

TEST(Node, HasNoUserAtFirst) {
  const Overriding node;
  EXPECT_EQ(node.userCount(), 0U);
}

TEST(Node, HasNoPublisher) {
  const Node node;
  EXPECT_EQ(node.publisher(), nullptr);
}

TEST(Node, IsOfTypeNode) {
  const Node node;
  EXPECT_EQ(node.typeData().name, "Node");
}

TEST(Node, IsDeletedWhenItsLastUserIsGone) {
  int gone = 0;
  const Node* node = new TestSupport::CountedNode(gone);
  node->lastUserGone();
  EXPECT_EQ(gone, 1);
}

TEST(Node, LetsDerivedTypesOverrideItsHooks) {
  Overriding node;
  {
    const Ptr<const Node> ptr(&node);
    EXPECT_EQ(ptr->publisher(), &node);
    EXPECT_EQ(ptr->typeData().name, "Overriding");
    const Ptr<const Node> another = ptr;
    EXPECT_EQ(node.timesLastUserGone, 0);
  }
  EXPECT_EQ(node.timesLastUserGone, 1);
  EXPECT_EQ(node.userCount(), 0U);
}

TEST(Node, IsNeitherCopiedNorMoved) {
  static_assert(!std::is_copy_constructible_v<Node> && !std::is_move_constructible_v<Node>);
  static_assert(!std::is_copy_assignable_v<Node> && !std::is_move_assignable_v<Node>);
}

}  // namespace
