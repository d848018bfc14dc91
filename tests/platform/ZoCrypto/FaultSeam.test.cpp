#include "ZoCrypto/FaultSeam.h"

#include <array>

#include <gtest/gtest.h>

#include "ZoCrypto/HmacMd5.h"
#include "ZoCrypto/MessageDigest.h"
#include "ZoCrypto/Random.h"

namespace {

using Verda::U32;
using Verda::U8;
using ZoCrypto::FaultSeam;
using ZoCrypto::Primitive;
using Digest = std::array<U8, ZoCrypto::md5DigestLength>;

bool md5Succeeds() {
  Digest digest{};
  U32 length = 0;
  ZoCrypto::MdContext context;
  ZoCrypto::md_init(context, ZoCrypto::md_find("md5"));
  ZoCrypto::md_final(context, digest.data(), &length);
  return length == ZoCrypto::md5DigestLength;
}

bool hmacSucceeds() {
  Digest digest{};
  U32 length = 0;
  return ZoCrypto::hmacMd5({}, {}, digest, length);
}

bool randomSucceeds() {
  Digest bytes{};
  return ZoCrypto::randomBytes(bytes);
}

struct SeamCase {
  const char* name;
  Primitive primitive;
  bool (*succeeds)();
};

constexpr SeamCase cases[] = {{"Md5", Primitive::md5, &md5Succeeds},
                              {"Hmac", Primitive::hmac, &hmacSucceeds},
                              {"Random", Primitive::random, &randomSucceeds}};

class FaultSeamOf : public testing::TestWithParam<SeamCase> {
 protected:
  ~FaultSeamOf() override { FaultSeam::failDel(); }
};

INSTANTIATE_TEST_SUITE_P(Primitives, FaultSeamOf, testing::ValuesIn(cases),
                         [](const auto& suite) { return suite.param.name; });

TEST_P(FaultSeamOf, FailsNothingUnarmed) {
  EXPECT_TRUE(GetParam().succeeds());
}

TEST_P(FaultSeamOf, FailsTheNextComputationOnce) {
  FaultSeam::failIs(GetParam().primitive);
  EXPECT_FALSE(GetParam().succeeds());
  EXPECT_TRUE(GetParam().succeeds());
}

TEST_P(FaultSeamOf, FailsTheComputationBehindAGivenNumber) {
  FaultSeam::failIs(GetParam().primitive, 2);
  EXPECT_TRUE(GetParam().succeeds());
  EXPECT_TRUE(GetParam().succeeds());
  EXPECT_FALSE(GetParam().succeeds());
  EXPECT_TRUE(GetParam().succeeds());
}

TEST_P(FaultSeamOf, FailsNothingOnceDisarmed) {
  FaultSeam::failIs(GetParam().primitive);
  FaultSeam::failDel();
  EXPECT_TRUE(GetParam().succeeds());
}

TEST_P(FaultSeamOf, NeitherFailsNorCountsOtherPrimitives) {
  FaultSeam::failIs(GetParam().primitive, 1);
  for (const SeamCase& other : cases) {
    if (other.primitive != GetParam().primitive) {
      EXPECT_TRUE(other.succeeds()) << other.name;
      EXPECT_TRUE(other.succeeds()) << other.name;
    }
  }
  EXPECT_TRUE(GetParam().succeeds());
  EXPECT_FALSE(GetParam().succeeds());
}

TEST_P(FaultSeamOf, TakesTheLastOrder) {
  FaultSeam::failIs(GetParam().primitive, 5);
  FaultSeam::failIs(GetParam().primitive);
  EXPECT_FALSE(GetParam().succeeds());
}

}  // namespace
