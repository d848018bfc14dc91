#include "ZoCrypto/HmacMd5.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "ZoCrypto/FaultSeam.h"

#include "tests/support/Hex.h"

namespace {

using TestSupport::toHex;
using ZoCrypto::md5DigestLength;
using ZoCrypto::U32;
using ZoCrypto::U8;

std::span<const U8> bytesOf(const std::string& text) {
  return {reinterpret_cast<const U8*>(text.data()), text.size()};
}

/// The HMAC in hex; a failed one is empty.
std::string hmac(const std::string& key, const std::string& data) {
  std::array<U8, md5DigestLength> digest{};
  U32 length = 99;
  const bool succeeded = ZoCrypto::hmacMd5(bytesOf(key), bytesOf(data), digest, length);
  EXPECT_EQ(length, succeeded ? md5DigestLength : 0);
  return succeeded ? toHex(digest) : "";
}

TEST(HmacMd5, GivesTheDigestsOfRfc2202) {
  struct Case {
    int number;
    std::string key;
    std::string data;
    std::string_view digest;
  };
  std::string counted;
  for (char byte = 1; byte <= 25; ++byte) {
    counted += byte;
  }
  for (const Case& each :
       {Case{1, std::string(16, '\x0B'), "Hi There", "9294727a3638bb1c13f48ef8158bfc9d"},
        Case{2, "Jefe", "what do ya want for nothing?", "750c783e6ab0b503eaa86e310a5db738"},
        Case{3, std::string(16, '\xAA'), std::string(50, '\xDD'),
             "56be34521d144c88dbb8c733f0e8b3f6"},
        Case{4, counted, std::string(50, '\xCD'), "697eaf0aca3a3aea3a75164746ffaa79"},
        Case{5, std::string(16, '\x0C'), "Test With Truncation",
             "56461ef2342edc00f9bab995690efd4c"},
        Case{6, std::string(80, '\xAA'), "Test Using Larger Than Block-Size Key - Hash Key First",
             "6b1ab7fe4bd7bf8f0b62e6ce61b9d0cd"},
        Case{7, std::string(80, '\xAA'),
             "Test Using Larger Than Block-Size Key and Larger Than One Block-Size Data",
             "6f630fad67cda0ee1fb1f562db3aa53e"}}) {
    SCOPED_TRACE(each.number);
    EXPECT_EQ(hmac(each.key, each.data), each.digest);
  }
}

TEST(HmacMd5, TakesAnEmptyKeyAsOne) {
  constexpr std::string_view ofNothing = "74e6f7298a9c2d168935f58c001bad88";
  EXPECT_EQ(hmac("", ""), ofNothing);
  EXPECT_NE(hmac("other", "text"), "");
  EXPECT_EQ(hmac("", ""), ofNothing);
  EXPECT_EQ(hmac("", "text"), hmac(std::string(64, '\0'), "text"));
}

TEST(HmacMd5, TakesEmptyDataFromNowhere) {
  std::array<U8, md5DigestLength> digest{};
  U32 length = 0;
  EXPECT_TRUE(ZoCrypto::hmacMd5({}, {}, digest, length));
  EXPECT_EQ(toHex(digest), "74e6f7298a9c2d168935f58c001bad88");
}

TEST(HmacMd5, HashesKeysLongerThanABlock) {
  EXPECT_NE(hmac(std::string(64, 'k'), "text"), hmac(std::string(65, 'k'), "text"));
  EXPECT_NE(hmac(std::string(10'000, 'k'), "text"), "");
}

TEST(HmacMd5, ReportsNoBytesWhenTheComputationFails) {
  const std::string right = hmac("key", "text");
  ZoCrypto::FaultSeam::failIs(ZoCrypto::Primitive::hmac);
  EXPECT_EQ(hmac("key", "text"), "");
  EXPECT_EQ(hmac("key", "text"), right);
}

}  // namespace
