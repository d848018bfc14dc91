#include "Tyl/Constants.h"

#include <type_traits>

#include <gtest/gtest.h>

namespace TylTest {

#define TOY_CONSTANTS_LIST(X) \
  X(U8, smallest, 0)          \
  X(U8, largest, 255)         \
  X(U16, wide, 65535)         \
  X(U32, widest, 4294967295)

TYL_CONSTANT_HOLDER(ToyConstants, TOY_CONSTANTS_LIST)
TYL_CONSTANT_HOLDER_TABLE(ToyConstants, TOY_CONSTANTS_LIST)

#undef TOY_CONSTANTS_LIST

}  // namespace TylTest

namespace {

using TylTest::ToyConstants;

TEST(ConstantHolder, GivesCompileTimeConstantsOfTheirOwnWidth) {
  static_assert(ToyConstants::smallest() == 0);
  static_assert(ToyConstants::widest() == 4294967295);
  static_assert(std::is_same_v<decltype(ToyConstants::largest()), Verda::U8>);
  static_assert(std::is_same_v<decltype(ToyConstants::wide()), Verda::U16>);
  static_assert(std::is_same_v<decltype(ToyConstants::widest()), Verda::U32>);
}

TEST(ConstantHolder, ListsItsConstantsInDeclaredOrder) {
  struct Row {
    std::string_view name;
    Verda::U32 value;
    Verda::U8 widthBits;
  };
  const Row expected[] = {
      {"smallest", 0, 8}, {"largest", 255, 8}, {"wide", 65535, 16}, {"widest", 4294967295, 32}};
  ASSERT_EQ(ToyConstants::constants().size(), std::size(expected));
  for (std::size_t row = 0; row < std::size(expected); ++row) {
    EXPECT_EQ(ToyConstants::constants()[row].name, expected[row].name);
    EXPECT_EQ(ToyConstants::constants()[row].value, expected[row].value);
    EXPECT_EQ(ToyConstants::constants()[row].widthBits, expected[row].widthBits);
  }
}

TEST(ConstantHolder, FindsAConstantByName) {
  const Tyl::Constant* const wide = Tyl::constantOf(ToyConstants::constants(), "wide");
  ASSERT_NE(wide, nullptr);
  EXPECT_EQ(wide->value, 65535U);
  EXPECT_EQ(Tyl::constantOf(ToyConstants::constants(), "Wide"), nullptr);
  EXPECT_EQ(Tyl::constantOf({}, "wide"), nullptr);
}

}  // namespace
