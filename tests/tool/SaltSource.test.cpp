#include "tool/text/SaltSource.h"

#include <array>
#include <set>

#include <gtest/gtest.h>

namespace RadiusPacketTool {
namespace {

constexpr int allSalts = 32768;

TEST(SaltSource, AllItsSaltsHaveTheFirstBitAndAreUnlike) {
  SaltSource salts;
  std::set<Salt> seen;
  for (int count = 0; count < allSalts; ++count) {
    const Salt salt = salts.next();
    EXPECT_NE(salt.front() & 0x80, 0);
    EXPECT_TRUE(seen.insert(salt).second);
  }
}

TEST(SaltSource, MakesNoneThatThePacketHas) {
  SaltSource salts;
  for (int number = 0; number < allSalts - 1; ++number) {
    salts.take(std::array<Verda::U8, 3>{static_cast<Verda::U8>(0x80 | (number >> 8)),
                                        static_cast<Verda::U8>(number & 0xff), 0x55});
  }
  EXPECT_EQ(salts.next(), (Salt{0xff, 0xff}));
}

TEST(SaltSource, HalfASaltIsNone) {
  SaltSource salts;
  salts.take({});
  salts.take(std::array<Verda::U8, 1>{0x80});
  std::set<Salt> seen;
  for (int count = 0; count < allSalts; ++count) {
    EXPECT_TRUE(seen.insert(salts.next()).second);
  }
}

}  // namespace
}  // namespace RadiusPacketTool
