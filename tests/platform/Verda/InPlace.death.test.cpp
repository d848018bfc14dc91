#include "Verda/InPlace.h"

#include <csignal>

#include <gtest/gtest.h>

#include "tests/platform/Verda/CountedNode.h"

namespace {

using TestSupport::CountedNode;

void letPtrOutliveScope() {
  int gone = 0;
  Verda::Ptr<CountedNode> outliving;
  const Verda::InPlace<CountedNode> entity(gone);
  outliving = entity.ptr();
}

TEST(InPlaceDeathTest, EndsTheProcessWhenAPtrOutlivesTheScope) {
  EXPECT_EXIT(letPtrOutliveScope(), testing::KilledBySignal(SIGABRT),
              testing::ContainsRegex("^Platform/Verda/InPlace.h:[0-9]+: ~InPlace: Assertion "
                                     "\"entity_.userCount\\(\\) == scopeUsers\" failed.\n$"));
}

}  // namespace
