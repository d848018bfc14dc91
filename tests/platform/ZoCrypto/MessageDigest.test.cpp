#include "ZoCrypto/MessageDigest.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "ZoCrypto/FaultSeam.h"

#include "tests/support/CatchAssertion.h"
#include "tests/support/Hex.h"

namespace {

using TestSupport::toHex;
using ZoCrypto::md5DigestLength;
using ZoCrypto::MdContext;
using ZoCrypto::U32;
using ZoCrypto::U8;

struct Digest {
  std::array<U8, md5DigestLength> bytes{};
  U32 length = 99;
};

/// The digest of `text` fed in pieces of `piece` bytes.
Digest md5(std::string_view text, std::size_t piece) {
  Digest digest;
  MdContext context;
  ZoCrypto::md_init(context, ZoCrypto::md_find("md5"));
  for (std::size_t at = 0; at < text.size(); at += piece) {
    const std::string_view part = text.substr(at, piece);
    ZoCrypto::md_update(context, part.data(), part.size());
  }
  ZoCrypto::md_final(context, digest.bytes.data(), &digest.length);
  ZoCrypto::md_cleanup(context);
  return digest;
}

struct Vector {
  std::string_view text;
  std::string_view digest;
};

/// RFC 1321, appendix A.5.
constexpr Vector rfc1321Vectors[] = {
    {"", "d41d8cd98f00b204e9800998ecf8427e"},
    {"a", "0cc175b9c0f1b6a831c399e269772661"},
    {"abc", "900150983cd24fb0d6963f7d28e17f72"},
    {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
    {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
    {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
     "d174ab98d277d9f5a5611c2c9f419d9f"},
    {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
     "57edf4a22be3c955ac49da2e2107b67a"}};

TEST(MessageDigest, FindsMd5ByName) {
  const ZoCrypto::MdMethod* const method = ZoCrypto::md_find("md5");
  ASSERT_NE(method, nullptr);
  EXPECT_EQ(method->name, "md5");
  EXPECT_EQ(method->digestLength, 16U);
  EXPECT_EQ(ZoCrypto::md_find("md5"), method);
}

TEST(MessageDigest, FindsNoOtherMethod) {
  for (const std::string_view name : {"", "md4", "MD5", "md5 ", "sha1"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(ZoCrypto::md_find(name), nullptr);
  }
}

TEST(MessageDigest, GivesTheDigestsOfRfc1321) {
  for (const Vector& vector : rfc1321Vectors) {
    SCOPED_TRACE(vector.text);
    const Digest digest = md5(vector.text, vector.text.size() + 1);
    EXPECT_EQ(toHex(digest.bytes), vector.digest);
    EXPECT_EQ(digest.length, 16U);
  }
}

TEST(MessageDigest, DoesNotDependOnHowTheTextIsSplit) {
  for (const Vector& vector : rfc1321Vectors) {
    for (std::size_t piece = 1; piece <= vector.text.size(); ++piece) {
      SCOPED_TRACE(testing::Message() << vector.text << " by " << piece);
      ASSERT_EQ(toHex(md5(vector.text, piece).bytes), vector.digest);
    }
  }
  const std::string longText(10'000, 'x');
  const std::string whole = toHex(md5(longText, longText.size()).bytes);
  for (const std::size_t piece : {1U, 55U, 63U, 64U, 65U, 9'999U}) {
    SCOPED_TRACE(piece);
    EXPECT_EQ(toHex(md5(longText, piece).bytes), whole);
  }
}

TEST(MessageDigest, TakesAnEmptyUpdateFromNowhere) {
  Digest digest;
  MdContext context;
  ZoCrypto::md_init(context, ZoCrypto::md_find("md5"));
  ZoCrypto::md_update(context, nullptr, 0);
  ZoCrypto::md_update(context, "abc", 3);
  ZoCrypto::md_update(context, nullptr, 0);
  ZoCrypto::md_final(context, digest.bytes.data(), &digest.length);
  EXPECT_EQ(toHex(digest.bytes), "900150983cd24fb0d6963f7d28e17f72");
}

TEST(MessageDigest, BeginsAnewInAUsedContext) {
  Digest digest;
  MdContext context;
  ZoCrypto::md_init(context, ZoCrypto::md_find("md5"));
  ZoCrypto::md_update(context, "abandoned", 9);
  ZoCrypto::md_init(context, ZoCrypto::md_find("md5"));
  ZoCrypto::md_final(context, digest.bytes.data(), &digest.length);
  EXPECT_EQ(toHex(digest.bytes), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(MessageDigest, RefusesANullMethod) {
  MdContext context;
  EXPECT_EQ(TestSupport::assertionTextOf([&context] { ZoCrypto::md_init(context, nullptr); }),
            "method != nullptr");
}

TEST(MessageDigest, WipesWhatItHasSeen) {
  MdContext context;
  ZoCrypto::md_init(context, ZoCrypto::md_find("md5"));
  ZoCrypto::md_update(context, "a secret", 8);
  const std::string_view storage(reinterpret_cast<const char*>(context.storage),
                                 sizeof(context.storage));
  EXPECT_NE(storage.find("a secret"), std::string_view::npos);
  ZoCrypto::md_cleanup(context);
  EXPECT_EQ(storage, std::string(sizeof(context.storage), '\0'));
}

TEST(MessageDigest, ReportsNoBytesWhenTheComputationFails) {
  ZoCrypto::FaultSeam::failIs(ZoCrypto::Primitive::md5);
  EXPECT_EQ(md5("abc", 3).length, 0U);
  const Digest next = md5("abc", 3);
  EXPECT_EQ(next.length, 16U);
  EXPECT_EQ(toHex(next.bytes), "900150983cd24fb0d6963f7d28e17f72");
}

}  // namespace
