#include "Verda/Assert.h"

#include <csignal>
#include <cstdio>
#include <string>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace {

constexpr int failingLine = __LINE__ + 2;
void failPlain() {
  VERDA_ASSERT(1 > 2);
}

void failWithText() {
  VERDA_ASSERT_TEXT(1 > 2, "one is \"more\" than two");
}

std::string lineOf(int line, std::string_view function, std::string_view text) {
  return fmt::format(
      "tests/platform/Verda/Assert.death.test.cpp:{}: {}: Assertion \"{}\" failed.\n", line,
      function, text);
}

TEST(AssertDeathTest, WritesOneLineAndAborts) {
  EXPECT_EXIT(failPlain(), testing::KilledBySignal(SIGABRT),
              testing::Eq(lineOf(failingLine, "failPlain", "1 > 2")));
}

TEST(AssertDeathTest, WritesTheFixedText) {
  EXPECT_EXIT(failWithText(), testing::KilledBySignal(SIGABRT),
              testing::Eq(lineOf(failingLine + 4, "failWithText", "one is \"more\" than two")));
}

TEST(AssertDeathTest, AbortsWhenTheHandlerReturns) {
  EXPECT_EXIT(
      {
        Verda::assertionHandlerIs(
            [](const Verda::AssertionFailure&) { std::fputs("returns\n", stderr); });
        failPlain();
      },
      testing::KilledBySignal(SIGABRT), testing::Eq(std::string("returns\n")));
}

TEST(AssertDeathTest, WritesAgainWhenTheDefaultIsRestored) {
  EXPECT_EXIT(
      {
        Verda::assertionHandlerIs([](const Verda::AssertionFailure&) {});
        Verda::assertionHandlerIs(nullptr);
        failPlain();
      },
      testing::KilledBySignal(SIGABRT), testing::Eq(lineOf(failingLine, "failPlain", "1 > 2")));
}

}  // namespace
