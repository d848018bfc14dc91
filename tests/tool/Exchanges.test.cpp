#include "tool/decoding/Exchanges.h"

#include <memory>
#include <optional>

#include <gtest/gtest.h>

#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"
#include "tool/decoding/PacketDecoder.h"

namespace RadiusPacketTool {
namespace {

using RadiusPktParserBase::ErrorMsg;
using TestSupport::ByteVector;
using TestSupport::PacketMaker;
using TestSupport::shippedDictionary;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;

constexpr Verda::U8 accessRequest = 1;
constexpr Verda::U8 accessAccept = 2;

const PacketPlace first{.source = "file", .index = 1};
const PacketPlace second{.source = "file", .index = 2};

ByteVector request() {
  return PacketMaker(accessRequest).ownAuthenticatorIs(TestSupport::countingBytes(16, 0x50)).make();
}

ByteVector answerTo(const ByteVector& reqAuth) {
  return PacketMaker(accessAccept).reqAuthIs(reqAuth).make();
}

/// Decodes a request and what comes behind it, and returns the report on the latter.
PacketReport decodedBehindARequest(const ByteVector& packet, const ByteVector& given) {
  const Secrets secrets(std::make_unique<const Secret>(testSecret));
  const PacketDecoder decoder(shippedDictionary());
  Exchanges exchanges(secrets, verdaBytes(given));
  const auto decode = [&](const PacketPlace& place, const ByteVector& bytes) {
    const InputPacket input{
        .place = place, .bytes = bytes, .datagram = std::nullopt, .whyBinary = std::nullopt};
    return reportOf(decoder, input, exchanges.next(input));
  };
  const PacketReport report = decode(first, request());
  EXPECT_EQ(report.error, ErrorMsg::success);
  EXPECT_EQ(report.place, first);
  EXPECT_EQ(report.pairedWith, std::nullopt);
  return decode(second, packet);
}

TEST(Exchanges, ChecksAResponseWithTheRequestInFrontOfIt) {
  const PacketReport report =
      decodedBehindARequest(answerTo(TestSupport::countingBytes(16, 0x50)), {});
  EXPECT_EQ(report.error, ErrorMsg::success);
  EXPECT_EQ(report.authenticatorCheck, Check::verified);
  EXPECT_EQ(report.place, second);
  EXPECT_EQ(report.pairedWith, first);
}

TEST(Exchanges, ResponseToAnotherRequestFailsTheCheck) {
  const PacketReport report = decodedBehindARequest(answerTo(testReqAuth), {});
  EXPECT_EQ(report.error, ErrorMsg::invalidPktAuth);
  EXPECT_EQ(report.pairedWith, first);
}

TEST(Exchanges, GivenAuthenticatorBeatsTheRequest) {
  const PacketReport report = decodedBehindARequest(answerTo(testReqAuth), testReqAuth);
  EXPECT_EQ(report.error, ErrorMsg::success);
  EXPECT_EQ(report.pairedWith, std::nullopt);
}

TEST(Exchanges, RequestBehindARequestIsPairedWithNothing) {
  const PacketReport report = decodedBehindARequest(request(), {});
  EXPECT_EQ(report.error, ErrorMsg::success);
  EXPECT_EQ(report.pairedWith, std::nullopt);
}

}  // namespace
}  // namespace RadiusPacketTool
