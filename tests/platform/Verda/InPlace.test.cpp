#include "Verda/InPlace.h"

#include <gtest/gtest.h>

#include "tests/platform/Verda/CountedNode.h"
#include "tests/support/CatchAssertion.h"

namespace {

using TestSupport::CountedNode;
using Verda::InPlace;
using Verda::Ptr;

TEST(InPlace, MakesItsEntityFromTheArguments) {
  int gone = 0;
  InPlace<CountedNode> entity(gone);
  entity->number = 3;
  EXPECT_EQ((*entity).number, 3);
  EXPECT_EQ(entity.ptr().get(), &*entity);
}

TEST(InPlace, EndsItsEntityOnceWithTheScope) {
  int gone = 0;
  {
    const InPlace<CountedNode> entity(gone);
    EXPECT_EQ(gone, 0);
  }
  EXPECT_EQ(gone, 1);
}

TEST(InPlace, LendsPtrsThatEndInsideTheScope) {
  int gone = 0;
  EXPECT_EQ(TestSupport::assertionTextOf([&gone] {
              const InPlace<CountedNode> entity(gone);
              const Ptr<CountedNode> lent = entity.ptr();
              const Ptr<const Verda::Node> further = lent;
            }),
            std::nullopt);
  EXPECT_EQ(gone, 1);
}

}  // namespace
