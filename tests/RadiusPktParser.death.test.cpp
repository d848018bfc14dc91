#include "RadiusPacketParser/RadiusPktParser.h"

#include <gtest/gtest.h>

#include "tests/support/PacketMaker.h"
#include "tests/support/Walk.h"

namespace {

using RadiusPacketParser::RadiusAttributeType;
using namespace RadiusPktParserBase;
using TestSupport::ByteVector;
using TestSupport::PacketMaker;
using TestSupport::testReqAuth;

constexpr Verda::U8 classAttr = 25;

void walk(const ByteVector& packet, const ByteVector& reqAuth) {
  const auto dictionary =
      TestSupport::DictionaryMaker().add(classAttr, RadiusAttributeType::octets).make();
  radiusPktParserFactory(dictionary)
      ->doProcessPkt(TestSupport::pktOf(packet), TestSupport::testSecret,
                     TestSupport::verdaBytes(reqAuth), pktInfoParserFactory());
}

TEST(PktWalkDeathTest, EndsAnAgentThatTakesASpoofedRequestForItsAnswer) {
  const ByteVector spoofed = PacketMaker(1).add(classAttr, {1}).make();
  EXPECT_DEATH(walk(spoofed, testReqAuth),
               "^RadiusPacketParser/RadiusPktCommon\\.cpp:[0-9]+: decryptAttribute: Assertion "
               "\"Request authenticator not NULL for request packet\" failed\\.\n$");
}

TEST(PktWalkDeathTest, EndsAnAgentThatGivesNoRequestAuthenticatorForAnAnswer) {
  const ByteVector answer = PacketMaker(2).reqAuthIs({}).add(classAttr, {1}).make();
  EXPECT_DEATH(walk(answer, {}),
               "^RadiusPacketParser/RadiusPktCommon\\.cpp:[0-9]+: decryptAttribute: Assertion "
               "\"Request authenticator NULL for response packet\" failed\\.\n$");
}

TEST(PktWalkDeathTest, EndsTheProcessWithoutASink) {
  const auto parser = radiusPktParserFactory(TestSupport::DictPtr());
  EXPECT_DEATH(parser->doProcessPkt(nullptr, "", {}, nullptr),
               "^RadiusPacketParser/RadiusPktParser\\.cpp:[0-9]+: doProcessPkt: Assertion "
               "\"pktInfoParser\" failed\\.\n$");
}

}  // namespace
