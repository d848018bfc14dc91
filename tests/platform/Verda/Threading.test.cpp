#include "Verda/Threading.h"

#include <gtest/gtest.h>

namespace {

TEST(Threading, IsOnUnlessTurnedOff) {
  EXPECT_TRUE(Verda::multiThreaded());
}

// The library turns the switch, and the program reads it inline: a switch each would not agree.
TEST(Threading, HasOneSwitchForProgramAndLibrary) {
  Verda::multiThreadedIs(false);
  EXPECT_FALSE(Verda::multiThreaded());
  Verda::multiThreadedIs(true);
  EXPECT_TRUE(Verda::multiThreaded());
}

}  // namespace
