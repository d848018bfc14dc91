#include "Verda/Exception.h"

#include <stdexcept>
#include <type_traits>

#include <gtest/gtest.h>

#include "tests/support/ThrownText.h"

namespace {

using TestSupport::thrownText;

TEST(Exception, IsTheBaseOfAllAndARuntimeError) {
  static_assert(std::is_base_of_v<std::runtime_error, Verda::Exception>);
  static_assert(std::is_base_of_v<Verda::Exception, Verda::RangeError>);
  static_assert(std::is_base_of_v<Verda::Exception, Verda::EmptyVector>);
  static_assert(std::is_base_of_v<Verda::Exception, Verda::VectorOutOfRange>);
}

TEST(Exception, SaysItsText) {
  EXPECT_EQ(thrownText<Verda::Exception>([] { throw Verda::Exception("what"); }), "what");
  EXPECT_EQ(thrownText<Verda::Exception>([] { throw Verda::RangeError("which"); }), "which");
}

TEST(EmptyVector, SaysThatTheVectorIsEmpty) {
  EXPECT_EQ(thrownText<Verda::EmptyVector>([] { throw Verda::EmptyVector(); }),
            "the vector is empty");
}

TEST(VectorOutOfRange, SaysIndexAndSize) {
  const Verda::VectorOutOfRange fault(3, 2);
  EXPECT_STREQ(fault.what(), "vector index 3 is out of range, size 2");
  EXPECT_EQ(fault.index(), 3U);
  EXPECT_EQ(fault.size(), 2U);
}

}  // namespace
