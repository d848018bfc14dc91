#include "Verda/Assert.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/CatchAssertion.h"

namespace {

using TestSupport::AssertionGuard;
using TestSupport::assertionTextOf;
using TestSupport::AssertionThrown;

constexpr int failingLine = __LINE__ + 2;
void failPlain(int number) {
  VERDA_ASSERT(number == 7);
}

std::optional<AssertionThrown> failureOf(void (*operation)(int), int argument) {
  const AssertionGuard guard;
  try {
    operation(argument);
  } catch (const AssertionThrown& thrown) {
    return thrown;
  }
  return std::nullopt;
}

TEST(Assert, LetsATrueConditionPass) {
  EXPECT_EQ(failureOf(&failPlain, 7), std::nullopt);
}

TEST(Assert, SaysWhatFailedAndWhere) {
  const std::optional<AssertionThrown> failure = failureOf(&failPlain, 8);
  ASSERT_TRUE(failure.has_value());
  EXPECT_EQ(failure->text, "number == 7");
  EXPECT_EQ(failure->file, "tests/platform/Verda/Assert.test.cpp");
  EXPECT_EQ(failure->line, failingLine);
  EXPECT_EQ(failure->function, "failPlain");
}

TEST(Assert, SaysTheFixedTextWhenOneIsGiven) {
  EXPECT_EQ(assertionTextOf([] { VERDA_ASSERT_TEXT(1 > 2, "one is \"more\""); }),
            "one is \"more\"");
}

TEST(Assert, EvaluatesItsConditionOnce) {
  int evaluations = 0;
  VERDA_ASSERT(++evaluations > 0);
  EXPECT_EQ(evaluations, 1);
}

TEST(Assert, TakesWhateverConvertsToBool) {
  const std::optional<int> none;
  EXPECT_EQ(assertionTextOf([&none] { VERDA_ASSERT(none); }), "none");
}

TEST(Assert, LetsTheHandlerThrowThroughEveryFrame) {
  struct Frame {
    explicit Frame(int& counter) : left(counter) {}
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
    ~Frame() { ++left; }
    int& left;
  };
  int left = 0;
  EXPECT_EQ(assertionTextOf([&left] {
              const Frame frame(left);
              VERDA_ASSERT_TEXT(false, "no");
            }),
            "no");
  EXPECT_EQ(left, 1);
}

TEST(Assert, ReturnsTheHandlerBeforeTheNewOne) {
  const Verda::AssertionHandler first = [](const Verda::AssertionFailure&) {};
  const Verda::AssertionHandler second = [](const Verda::AssertionFailure&) { throw 2; };
  const Verda::AssertionHandler original = Verda::assertionHandlerIs(first);
  EXPECT_NE(original, nullptr);
  EXPECT_EQ(Verda::assertionHandlerIs(second), first);
  EXPECT_EQ(Verda::assertionHandlerIs(nullptr), second);
  EXPECT_EQ(Verda::assertionHandlerIs(nullptr), original);
}

}  // namespace
