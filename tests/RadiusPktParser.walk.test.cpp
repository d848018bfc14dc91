#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZoCrypto/FaultSeam.h"

#include "tests/support/CatchAssertion.h"
#include "tests/support/SharedSecrets.h"
#include "tests/support/Walk.h"

namespace {

using RadiusPacketParser::RadiusAttributeType;
using namespace RadiusPktParserBase;
using TestSupport::ByteVector;
using TestSupport::CapturingSink;
using TestSupport::countingBytes;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::errorRecord;
using TestSupport::PacketMaker;
using TestSupport::Received;
using TestSupport::RecordingParser;
using TestSupport::RecordingSink;
using TestSupport::Records;
using TestSupport::reqAuthFor;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;
using TestSupport::Walked;
using TestSupport::walkRecord;
using Verda::U32;
using Verda::U8;
using ZoCrypto::FaultSeam;
using ZoCrypto::Primitive;
using Texts = std::vector<std::string>;

constexpr U8 userName = 1;
constexpr U8 userPassword = 2;
constexpr U8 classAttr = 25;
constexpr U8 sessionTimeout = 27;
constexpr U8 eapMessage = 79;
constexpr U8 otherConcat = 90;
constexpr U8 salted = 69;
constexpr U32 vendor = 311;
constexpr U32 otherVendor = 9;

const DictPtr& dictionary() {
  static const DictPtr made =
      DictionaryMaker()
          .add(0, RadiusAttributeType::octets, {.concat = true})
          .add(userName, RadiusAttributeType::string)
          .add(userPassword, RadiusAttributeType::string, {.encrypt = 1})
          .add(classAttr, RadiusAttributeType::octets)
          .add(sessionTimeout, RadiusAttributeType::integer)
          .add(salted, RadiusAttributeType::string, {.tag = true, .encrypt = 2})
          .add(eapMessage, RadiusAttributeType::octets, {.concat = true})
          .add(80, RadiusAttributeType::octets)
          .add(otherConcat, RadiusAttributeType::octets, {.concat = true})
          .addVendor(vendor, 1, RadiusAttributeType::string)
          .addVendor(vendor, 2, RadiusAttributeType::octets)
          .addVendor(vendor, 79, RadiusAttributeType::octets)
          .addVendor(vendor, 80, RadiusAttributeType::octets)
          .addVendor(vendor, otherConcat, RadiusAttributeType::octets, {.concat = true})
          .addVendor(otherVendor, otherConcat, RadiusAttributeType::octets, {.concat = true})
          .make();
  return made;
}

/// Walks a packet with the Request Authenticator that goes with its code.
Walked walk(const ByteVector& packet) {
  return TestSupport::walk(packet, reqAuthFor(packet.at(0)), dictionary());
}

Walked walk(const PacketMaker& maker) {
  return walk(maker.make());
}

/// The types of the attributes that the hook received, the vendor's type for a vendor attribute.
std::vector<int> typesOf(const Walked& walked) {
  std::vector<int> types;
  for (const Received& received : walked.received) {
    types.push_back(received.key.attrId == 26 ? 1000 + received.key.vendorAttrId
                                              : received.key.attrId);
  }
  return types;
}

/// Refused with one line of the walk's own.
void expectRefused(const Walked& walked, ErrorMsg error, const std::string& text,
                   const std::vector<int>& handed = {}) {
  EXPECT_EQ(walked.result, error);
  EXPECT_EQ(walked.records, (Records{walkRecord(text)}));
  EXPECT_EQ(typesOf(walked), handed);
  EXPECT_TRUE(walked.packetUnchanged);
}

/// Refused without a line.
void expectSilentlyRefused(const Walked& walked, ErrorMsg error, const std::vector<int>& handed) {
  EXPECT_EQ(walked.result, error);
  EXPECT_EQ(walked.records, Records());
  EXPECT_EQ(typesOf(walked), handed);
  EXPECT_TRUE(walked.packetUnchanged);
}

void expectAccepted(const Walked& walked, const std::vector<int>& handed) {
  EXPECT_EQ(walked.result, ErrorMsg::success);
  EXPECT_EQ(walked.records, Records());
  EXPECT_EQ(typesOf(walked), handed);
  EXPECT_TRUE(walked.packetUnchanged);
}

// ---- The whole packet ----

TEST(PktWalk, AcceptsAPacketWithoutAttributesOfEveryCode) {
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    expectAccepted(walk(PacketMaker(static_cast<U8>(code))), {});
  }
}

TEST(PktWalk, AcceptsAPacketWithAttributesOfEveryCode) {
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    expectAccepted(walk(PacketMaker(static_cast<U8>(code)).add(classAttr, {1})), {classAttr});
  }
}

TEST(PktWalk, HandsEveryAttributeToTheHookInPacketOrder) {
  expectAccepted(walk(PacketMaker(2)
                          .add(sessionTimeout, {0, 0, 0, 60})
                          .addVendor(vendor, 1, {'a'})
                          .add(userName, {})
                          .addVendor(vendor, 2, {})
                          .add(sessionTimeout, {0, 0, 0, 61})),
                 {sessionTimeout, 1001, userName, 1002, sessionTimeout});
}

TEST(PktWalk, HandsKeyValueAndInfoToTheHookWithTheCallersSink) {
  const Walked walked =
      walk(PacketMaker(2).add(sessionTimeout, {0, 0, 1, 0}).addVendor(vendor, 1, {'a', 'b'}));
  ASSERT_EQ(walked.received.size(), 2U);
  AttrInfo info;
  info.isInDict = true;
  info.attributeType = RadiusAttributeType::integer;
  EXPECT_EQ(walked.received.at(0).key, standardAttribute(sessionTimeout));
  EXPECT_EQ(walked.received.at(0).value, AttrValue(256U));
  EXPECT_EQ(walked.received.at(0).info, info);
  info.attributeType = RadiusAttributeType::string;
  EXPECT_EQ(walked.received.at(1).key, vendorAttribute(vendor, 1));
  EXPECT_EQ(walked.received.at(1).value, AttrValue(Verda::String("ab")));
  EXPECT_EQ(walked.received.at(1).info, info);
}

TEST(PktWalk, WorksWithTheHookThatDoesNothing) {
  const auto sink = pktInfoParserFactory();
  const auto parser = radiusPktParserFactory(dictionary());
  EXPECT_EQ(
      parser->doProcessPkt(
          TestSupport::pktOf(PacketMaker(2).add(classAttr, {1}).addMessageAuthenticator().make()),
          testSecret, verdaBytes(testReqAuth), sink),
      ErrorMsg::success);
  EXPECT_TRUE(sink->msgAuthPresent());
}

TEST(PktWalk, IgnoresTheBytesBehindTheLength) {
  ByteVector packet = PacketMaker(2).add(classAttr, {1}).make();
  packet.insert(packet.end(), {classAttr, 3, 2, 99, 0});
  expectAccepted(walk(packet), {classAttr});
}

TEST(PktWalk, RefusesANullPacket) {
  const CapturingSink trace;
  const auto sink = pktInfoParserFactory();
  EXPECT_EQ(radiusPktParserFactory(dictionary())
                ->doProcessPkt(nullptr, testSecret, verdaBytes(testReqAuth), sink),
            ErrorMsg::invalidPktPtr);
  EXPECT_EQ(trace.records(), (Records{errorRecord("RadiusPktParser", "getHeader",
                                                  "Null pointer passed instead of packet")}));
}

TEST(PktWalk, ResultsDoNotDependOnTrace) {
  const CapturingSink silent(Verda::traceOff);
  const auto parser = radiusPktParserFactory(dictionary());
  const auto resultOf = [&](const ByteVector& packet) {
    return parser->doProcessPkt(TestSupport::pktOf(packet), testSecret, verdaBytes(testReqAuth),
                                pktInfoParserFactory());
  };
  EXPECT_EQ(resultOf(PacketMaker(2).secretIs("other").make()), ErrorMsg::invalidPktAuth);
  EXPECT_EQ(resultOf(PacketMaker(2).addRaw({1}).make()), ErrorMsg::invalidAttrLength);
  EXPECT_EQ(resultOf(PacketMaker(2).add(salted, {}).make()), ErrorMsg::tagByteMissing);
  EXPECT_EQ(silent.records(), Records());
}

// ---- The authenticator ----

const std::string authenticatorInvalid = "Packet's authenticator field is invalid";

TEST(PktWalk, VerifiesTheAuthenticatorBeforeAnyAttribute) {
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    ByteVector packet =
        PacketMaker(static_cast<U8>(code)).add(classAttr, {1}).addRaw({1, 1}).make();
    packet[4] ^= 1;
    if (code == 1 || code == 12) {
      expectRefused(walk(packet), ErrorMsg::invalidAttrLength,
                    "Invalid attribute: 1 attrLength: 1, remainingPktLen: 2", {classAttr});
    } else {
      expectRefused(walk(packet), ErrorMsg::invalidPktAuth, authenticatorInvalid);
    }
  }
}

TEST(PktWalk, RefusesARequestAuthenticatorOfLessThanSixteenBytes) {
  for (std::size_t size : {std::size_t{1}, std::size_t{15}}) {
    SCOPED_TRACE(size);
    const Walked walked = TestSupport::walk(PacketMaker(2).add(classAttr, {1}).make(),
                                            ByteVector(size, 0xa0), dictionary());
    EXPECT_EQ(walked.result, ErrorMsg::invalidBytesCopied);
    EXPECT_EQ(walked.records, (Records{errorRecord("", "validateAuthenticator",
                                                   "Mismatch in bytes copied: " +
                                                       std::to_string(size) + ", expected: 16"),
                                       walkRecord(authenticatorInvalid)}));
    EXPECT_TRUE(walked.received.empty());
  }
}

TEST(PktWalk, TakesTheFirstSixteenBytesOfALongerRequestAuthenticator) {
  ByteVector reqAuth = testReqAuth;
  reqAuth.push_back(0xff);
  const ByteVector key = countingBytes(16, 1);
  const ByteVector hidden = TestSupport::hidden(key, TestSupport::bytesOf(testSecret), testReqAuth);
  const Walked walked =
      TestSupport::walk(PacketMaker(2).add(userPassword, hidden).addMessageAuthenticator().make(),
                        reqAuth, dictionary());
  expectAccepted(walked, {userPassword, 80});
  EXPECT_EQ(walked.received.at(0).value, AttrValue(Verda::String(std::span<const U8>(key))));
}

TEST(PktWalk, RefusesAResponseToAnotherRequest) {
  expectRefused(TestSupport::walk(PacketMaker(2).make(), ByteVector(16, 1), dictionary()),
                ErrorMsg::invalidPktAuth, authenticatorInvalid);
}

TEST(PktWalk, TakesEverySecretAndNoOther) {
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    const ByteVector packet =
        PacketMaker(2).secretIs(secret.given).add(classAttr, {1}).addMessageAuthenticator().make();
    expectAccepted(TestSupport::walk(packet, testReqAuth, dictionary(), secret.given),
                   {classAttr, 80});
    expectAccepted(TestSupport::walk(packet, testReqAuth, dictionary(), secret.counts),
                   {classAttr, 80});
    expectRefused(TestSupport::walk(packet, testReqAuth, dictionary(), secret.counts + "x"),
                  ErrorMsg::invalidPktAuth, authenticatorInvalid);
  }
}

TEST(PktWalk, ReportsAFailedMd5OfTheAuthenticator) {
  FaultSeam::failIs(Primitive::md5);
  const Walked walked = walk(PacketMaker(2).add(classAttr, {1}));
  FaultSeam::failDel();
  EXPECT_EQ(walked.result, ErrorMsg::md5GenerationFailed);
  EXPECT_EQ(walked.records,
            (Records{errorRecord("", "md5Calculator", "MD5 digest of incorrect length: 0"),
                     walkRecord(authenticatorInvalid)}));
}

// ---- Framing ----

TEST(PktWalk, RefusesALoneByteAsTheFirstAttribute) {
  for (U8 type : {U8{0}, userName, U8{26}, U8{80}, U8{255}}) {
    expectRefused(walk(PacketMaker(2).addRaw({type})), ErrorMsg::invalidAttrLength,
                  "Invalid attribute: " + std::to_string(type) + " length: 1");
  }
}

TEST(PktWalk, RefusesALoneByteBehindAnAttribute) {
  expectRefused(walk(PacketMaker(2).add(classAttr, {1}).addRaw({79})), ErrorMsg::invalidAttrLength,
                "Invalid attribute: 79 length: 1", {classAttr});
}

TEST(PktWalk, RefusesEveryLengthThatDoesNotFitTheRest) {
  for (U32 length = 0; length < 256; ++length) {
    SCOPED_TRACE(length);
    ByteVector attribute(10, 0x61);
    attribute[0] = userName;
    attribute[1] = static_cast<U8>(length);
    const std::string text =
        "Invalid attribute: 1 attrLength: " + std::to_string(length) + ", remainingPktLen: 10";
    if (length == 10) {
      expectAccepted(walk(PacketMaker(2).addRaw(attribute)), {userName});
    } else if (length < 2 || length > 10) {
      expectRefused(walk(PacketMaker(2).addRaw(attribute)), ErrorMsg::invalidAttrLength, text);
      expectRefused(walk(PacketMaker(2).add(classAttr, {1}).addRaw(attribute)),
                    ErrorMsg::invalidAttrLength, text, {classAttr});
    }
  }
}

TEST(PktWalk, SaysOfABrokenVendorAttributeThatItsFrameIsBroken) {
  expectRefused(walk(PacketMaker(2).addRaw({26, 0, 0, 0, 1, 55, 1, 2})),
                ErrorMsg::invalidAttrLength,
                "Invalid attribute: 26 attrLength: 0, remainingPktLen: 8");
}

// ---- Vendor-Specific ----

TEST(PktWalk, RefusesAVendorAttributeShorterThanEight) {
  for (std::size_t length = 2; length < 8; ++length) {
    ByteVector attribute{26, static_cast<U8>(length)};
    attribute.resize(length);
    expectRefused(walk(PacketMaker(2).add(classAttr, {1}).addRaw(attribute)),
                  ErrorMsg::invalidAttrLength, "Invalid Vsa length: " + std::to_string(length),
                  {classAttr});
  }
}

TEST(PktWalk, TakesAVendorAttributeOfLengthEightAsEmpty) {
  const Walked walked = walk(PacketMaker(2).addRaw({26, 8, 0, 0, 1, 55, 1, 2}));
  expectAccepted(walked, {1001});
  EXPECT_EQ(walked.received.at(0).value, AttrValue(Verda::String("")));
}

TEST(PktWalk, RefusesEverySubLengthButTheOneThatFits) {
  for (U32 subLength = 0; subLength < 256; ++subLength) {
    SCOPED_TRACE(subLength);
    const PacketMaker maker = PacketMaker(2).addRaw(
        {26, 12, 0, 0, 1, 55, 1, static_cast<U8>(subLength), 'a', 'b', 'c', 'd'});
    if (subLength == 6) {
      expectAccepted(walk(maker), {1001});
    } else {
      expectRefused(walk(maker), ErrorMsg::invalidAttrLength,
                    "Attribute length: 12 and Vendor attribute length: " +
                        std::to_string(subLength + 6) + " differ");
    }
  }
}

TEST(PktWalk, RefusesAVendorAttributeOfTwoSubAttributes) {
  expectRefused(walk(PacketMaker(2).addRaw({26, 12, 0, 0, 1, 55, 1, 3, 'a', 2, 3, 'b'})),
                ErrorMsg::invalidAttrLength,
                "Attribute length: 12 and Vendor attribute length: 9 differ");
}

TEST(PktWalk, LooksAVendorAttributeUpBeforeItComparesTheLengths) {
  const Walked walked = walk(PacketMaker(2).addRaw({26, 9, 0, 0, 0, 1, 1, 9, 'a'}));
  EXPECT_EQ(walked.result, ErrorMsg::invalidAttrLength);
  EXPECT_EQ(walked.records,
            (Records{errorRecord("", "getAttrInfo", "Unsupported vendorId: 1"),
                     walkRecord("Attribute length: 9 and Vendor attribute length: 15 differ")}));
}

TEST(PktWalk, LooksUpNothingOfAVendorAttributeThatIsTooShort) {
  expectRefused(walk(PacketMaker(2).addRaw({26, 7, 255, 255, 255, 255, 1})),
                ErrorMsg::invalidAttrLength, "Invalid Vsa length: 7");
}

TEST(PktWalk, TakesTheLongestVendorAttribute) {
  const ByteVector value = countingBytes(247);
  const Walked walked = walk(PacketMaker(2).addVendor(vendor, 2, value));
  expectAccepted(walked, {1002});
  EXPECT_EQ(walked.received.at(0).value, AttrValue(verdaBytes(value)));
}

TEST(PktWalk, AppliesTheSpecialRulesToStandardAttributesAlone) {
  // As standard attributes these would be: no password length, no EAP without, and not twice.
  expectAccepted(walk(PacketMaker(2)
                          .addVendor(vendor, 2, {1})
                          .addVendor(vendor, 79, {1})
                          .addVendor(vendor, 80, {1})
                          .addVendor(vendor, 80, {1})),
                 {1002, 1079, 1080, 1080});
}

// ---- Unknown attributes ----

TEST(PktWalk, GivesTheBytesOfAStandardAttributeThatIsNotInTheDictionary) {
  const Walked walked = walk(PacketMaker(2).add(200, {1, 2, 3}));
  EXPECT_EQ(walked.result, ErrorMsg::success);
  EXPECT_EQ(
      walked.records,
      (Records{errorRecord("", "getAttrInfo", "Missing attribute: 200 from radius dictionary"),
               errorRecord("", "decryptAttribute",
                           "Unknown Attribute, attrId: 200, vendorId: 0, vendorAttrId: 0"),
               walkRecord("Unknown attribute type, storing it as bytes")}));
  ASSERT_EQ(walked.received.size(), 1U);
  EXPECT_EQ(walked.received.at(0).key, standardAttribute(200));
  EXPECT_EQ(walked.received.at(0).value, AttrValue(Verda::Bytes{1, 2, 3}));
  AttrInfo info;
  info.errorMsg = ErrorMsg::invalidAttrId;
  EXPECT_EQ(walked.received.at(0).info, info);
}

TEST(PktWalk, GivesTheBytesOfAVendorThatIsNotInTheDictionary) {
  const Walked walked = walk(PacketMaker(2).addVendor(4294967295, 1, {1, 2, 3}));
  EXPECT_EQ(walked.result, ErrorMsg::success);
  EXPECT_EQ(walked.records,
            (Records{errorRecord("", "getAttrInfo", "Unsupported vendorId: 4294967295"),
                     errorRecord("", "decryptAttribute",
                                 "Unknown Attribute, attrId: 26, vendorId: 4294967295, "
                                 "vendorAttrId: 1"),
                     walkRecord("Unknown attribute type, storing it as bytes")}));
  ASSERT_EQ(walked.received.size(), 1U);
  EXPECT_EQ(walked.received.at(0).key, vendorAttribute(4294967295, 1));
  EXPECT_EQ(walked.received.at(0).value, AttrValue(Verda::Bytes{1, 2, 3}));
  EXPECT_EQ(walked.received.at(0).info.errorMsg, ErrorMsg::invalidVendorId);
}

TEST(PktWalk, GivesTheBytesOfASubAttributeThatIsNotInTheDictionary) {
  const Walked walked = walk(PacketMaker(2).addVendor(vendor, 255, {}));
  EXPECT_EQ(walked.result, ErrorMsg::success);
  EXPECT_EQ(walked.texts(),
            (Texts{"Unsupported vendorAttrId: 255 for vendorId: 311",
                   "Unknown Attribute, attrId: 26, vendorId: 311, vendorAttrId: 255",
                   "Unknown attribute type, storing it as bytes"}));
  ASSERT_EQ(walked.received.size(), 1U);
  EXPECT_EQ(walked.received.at(0).value, AttrValue(Verda::Bytes()));
  EXPECT_EQ(walked.received.at(0).info.errorMsg, ErrorMsg::invalidVendorAttrId);
}

// ---- Message-Authenticator ----

const std::set<U32> codesWithMessageAuthenticator{1, 2, 3, 4, 5, 11, 12, 40, 41, 42, 43, 44, 45};

TEST(PktWalk, TakesAMessageAuthenticatorOfTheCodesThatCarryOne) {
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    const Walked walked =
        walk(PacketMaker(static_cast<U8>(code)).add(classAttr, {1}).addMessageAuthenticator());
    if (codesWithMessageAuthenticator.contains(code)) {
      expectAccepted(walked, {classAttr, 80});
      EXPECT_TRUE(walked.msgAuthPresent);
    } else {
      expectSilentlyRefused(walked, ErrorMsg::unsupportedPktType, {classAttr});
      EXPECT_FALSE(walked.msgAuthPresent);
    }
  }
}

TEST(PktWalk, RefusesAWrongMessageAuthenticatorOfAllButAccountingPackets) {
  for (U32 code : codesWithMessageAuthenticator) {
    SCOPED_TRACE(code);
    const Walked walked = walk(PacketMaker(static_cast<U8>(code))
                                   .add(classAttr, {1})
                                   .addMessageAuthenticator(true)
                                   .add(userName, {'a'}));
    if (code == 4 || code == 5) {
      expectAccepted(walked, {classAttr, 80, userName});
      EXPECT_TRUE(walked.msgAuthPresent);
    } else {
      expectSilentlyRefused(walked, ErrorMsg::invalidMsgAuth, {classAttr});
      EXPECT_FALSE(walked.msgAuthPresent);
    }
  }
}

TEST(PktWalk, VerifiesTheMessageAuthenticatorBeforeTheAttributesBehindIt) {
  expectSilentlyRefused(walk(PacketMaker(2).addMessageAuthenticator(true).addRaw({1, 0})),
                        ErrorMsg::invalidMsgAuth, {});
}

/// A response whose first Message-Authenticator is right although another one, `second`, follows.
ByteVector withSecondMessageAuthenticator(const ByteVector& second) {
  return PacketMaker(2)
      .add(classAttr, {1})
      .addMessageAuthenticator()
      .add(userName, {'a'})
      .addRaw(TestSupport::attributeBytes(80, second))
      .make();
}

TEST(PktWalk, RefusesSecondMessageAuthenticator) {
  const Walked walked = walk(withSecondMessageAuthenticator(ByteVector(16)));
  expectRefused(walked, ErrorMsg::invalidMsgAuth, "Message authenticator present more than once",
                {classAttr, 80, userName});
  EXPECT_TRUE(walked.msgAuthPresent);
}

TEST(PktWalk, RefusesSecondMessageAuthenticatorOfAnyLength) {
  for (std::size_t length : {0U, 1U, 15U, 17U, 100U}) {
    expectRefused(walk(withSecondMessageAuthenticator(ByteVector(length))),
                  ErrorMsg::invalidMsgAuth, "Message authenticator present more than once",
                  {classAttr, 80, userName});
  }
}

TEST(PktWalk, RefusesSecondMessageAuthenticatorOfAccountingPacketsToo) {
  expectRefused(walk(PacketMaker(4).add(80, ByteVector(16)).add(80, ByteVector(16))),
                ErrorMsg::invalidMsgAuth, "Message authenticator present more than once", {80});
}

TEST(PktWalk, SeesTheFlagAtTheHookOfTheMessageAuthenticatorAndBehindIt) {
  const auto pkt = TestSupport::pktOf(
      PacketMaker(2).add(classAttr, {1}).addMessageAuthenticator().add(classAttr, {2}).make());
  const Verda::Ptr<RecordingSink> sink(new RecordingSink);
  RecordingParser parser(dictionary());
  EXPECT_EQ(parser.doProcessPkt(pkt, testSecret, verdaBytes(testReqAuth), sink), ErrorMsg::success);
  EXPECT_EQ(sink->msgAuthPresentAtCall, (std::vector<bool>{false, true, true}));
}

TEST(PktWalk, RefusesAMessageAuthenticatorOfAnyOtherLength) {
  for (std::size_t value = 0; value <= 253; ++value) {
    if (value == 16) {
      continue;
    }
    expectRefused(walk(PacketMaker(2).add(classAttr, {1}).add(80, ByteVector(value))),
                  ErrorMsg::invalidAttrLength,
                  "Invalid length of message authenticator: " + std::to_string(value + 2),
                  {classAttr});
  }
}

TEST(PktWalk, ReportsAFailedHmacAndPutsThePacketBack) {
  FaultSeam::failIs(Primitive::hmac);
  const Walked walked = walk(PacketMaker(2).add(classAttr, {1}).addMessageAuthenticator());
  FaultSeam::failDel();
  EXPECT_EQ(walked.result, ErrorMsg::md5GenerationFailed);
  EXPECT_EQ(walked.records, (Records{errorRecord("", "calculateMessageAuthenticator",
                                                 "MD5 generation failed, digestLen: 0")}));
  EXPECT_FALSE(walked.msgAuthPresent);
  EXPECT_TRUE(walked.packetUnchanged);
}

/// Walks two packets with one sink; returns the second result and its trace.
std::pair<ErrorMsg, Texts> walkWithUsedSink(const ByteVector& packet) {
  const auto sink = pktInfoParserFactory();
  const auto parser = radiusPktParserFactory(dictionary());
  const auto first = TestSupport::pktOf(PacketMaker(2).addMessageAuthenticator().make());
  EXPECT_EQ(parser->doProcessPkt(first, testSecret, verdaBytes(testReqAuth), sink),
            ErrorMsg::success);
  const CapturingSink trace;
  const ErrorMsg second =
      parser->doProcessPkt(TestSupport::pktOf(packet), testSecret, verdaBytes(testReqAuth), sink);
  EXPECT_TRUE(sink->msgAuthPresent());
  return {second, trace.texts()};
}

TEST(PktWalk, CarriesTheFlagOfAUsedSinkOverToTheNextMessageAuthenticator) {
  EXPECT_EQ(
      walkWithUsedSink(PacketMaker(2).addMessageAuthenticator().make()),
      (std::pair{ErrorMsg::invalidMsgAuth, Texts{"Message authenticator present more than once"}}));
}

TEST(PktWalk, CarriesTheFlagOfAUsedSinkOverToTheNextEapMessage) {
  EXPECT_EQ(walkWithUsedSink(PacketMaker(2).add(eapMessage, {1}).make()),
            (std::pair{ErrorMsg::success, Texts{}}));
}

TEST(PktWalk, NeverClearsTheFlag) {
  EXPECT_EQ(walkWithUsedSink(PacketMaker(2).secretIs("other").make()),
            (std::pair{ErrorMsg::invalidPktAuth, Texts{authenticatorInvalid}}));
}

// ---- User-Password ----

TEST(PktWalk, TakesPasswordsOfOneToEightBlocksAlone) {
  for (std::size_t value = 0; value <= 253; ++value) {
    SCOPED_TRACE(value);
    const bool fits = value >= 16 && value <= 128 && value % 16 == 0;
    const Walked walked =
        walk(PacketMaker(1).add(classAttr, {1}).add(userPassword, ByteVector(value)));
    if (fits) {
      expectAccepted(walked, {classAttr, userPassword});
    } else {
      expectRefused(walked, ErrorMsg::invalidAttrLength,
                    "Received password with invalid length: " + std::to_string(value + 2),
                    {classAttr});
    }
  }
}

TEST(PktWalk, AppliesThePasswordRuleToResponsesToo) {
  expectRefused(walk(PacketMaker(2).add(userPassword, ByteVector(15))), ErrorMsg::invalidAttrLength,
                "Received password with invalid length: 17");
}

TEST(PktWalk, AppliesThePasswordRuleWithoutADictionaryEntry) {
  const Walked walked = TestSupport::walk(PacketMaker(1).add(userPassword, ByteVector(1)).make(),
                                          {}, DictionaryMaker().make());
  EXPECT_EQ(walked.result, ErrorMsg::invalidAttrLength);
  EXPECT_EQ(walked.texts(), (Texts{"Missing attribute: 2 from radius dictionary",
                                   "Received password with invalid length: 3"}));
}

// ---- EAP-Message ----

TEST(PktWalk, TakesAnEapMessageWithAMessageAuthenticatorBehindIt) {
  expectAccepted(walk(PacketMaker(2).add(eapMessage, {1}).addMessageAuthenticator()),
                 {eapMessage, 80});
}

TEST(PktWalk, TakesAnEapMessageWithAMessageAuthenticatorBeforeIt) {
  expectAccepted(walk(PacketMaker(1).addMessageAuthenticator().add(eapMessage, {})),
                 {80, eapMessage});
}

TEST(PktWalk, RefusesAnEapMessageWithoutAMessageAuthenticatorBehindAllHooks) {
  for (U8 code : {U8{1}, U8{2}, U8{4}, U8{99}}) {
    expectSilentlyRefused(walk(PacketMaker(code).add(eapMessage, {1}).add(classAttr, {1})),
                          ErrorMsg::missingRequiredMsgAuth, {eapMessage, classAttr});
  }
}

TEST(PktWalk, LetsAFramingFaultWinOverAMissingMessageAuthenticator) {
  expectRefused(walk(PacketMaker(2).add(eapMessage, {1}).addRaw({1})), ErrorMsg::invalidAttrLength,
                "Invalid attribute: 1 length: 1", {eapMessage});
}

TEST(PktWalk, TakesTheUncheckedMessageAuthenticatorOfAccountingForAnEapMessage) {
  expectAccepted(walk(PacketMaker(4).add(eapMessage, {1}).addMessageAuthenticator(true)),
                 {eapMessage, 80});
}

// ---- Concatenated attributes ----

/// A response with one attribute of one byte for each type; 1000 and more: of `vendor`; 2000 and
/// more: of `otherVendor`.
Walked walkTypes(const std::vector<int>& types) {
  PacketMaker maker(2);
  maker.addMessageAuthenticator();
  for (int type : types) {
    if (type >= 2000) {
      maker.addVendor(otherVendor, static_cast<U8>(type - 2000), {1});
    } else if (type >= 1000) {
      maker.addVendor(vendor, static_cast<U8>(type - 1000), {1});
    } else {
      maker.add(static_cast<U8>(type), {1});
    }
  }
  return walk(maker);
}

struct ConcatCase {
  const char* name;
  std::vector<int> types;
  std::size_t handed;  ///< how many come before the fault; all of them: none
  int attrId = 0;      ///< what the message names
};

TEST(PktWalk, RefusesFragmentsThatAreNotConsecutive) {
  constexpr int A = eapMessage;
  constexpr int C = otherConcat;
  constexpr int B = classAttr;
  const std::vector<ConcatCase> rows{
      {"one", {A}, 1},
      {"two in a row", {A, A}, 2},
      {"A A B", {A, A, B}, 3},
      {"A A B A", {A, A, B, A}, 3, A},
      {"A B A", {A, B, A}, 2, A},
      {"A B B A", {A, B, B, A}, 3, A},
      {"A B A A", {A, B, A, A}, 2, A},
      {"B A B", {B, A, B}, 3},
      {"B A A B B", {B, A, A, B, B}, 5},
      {"others twice behind a run", {A, B, userName, B, userName}, 5},
      {"two runs side by side", {A, A, C, C}, 4},
      {"A C A", {A, C, A}, 2, A},
      {"A C B C", {A, C, B, C}, 3, C},
      {"A B C A", {A, B, C, A}, 3, A},
      {"B twice is no run", {B, B, userName, B}, 4},
      {"the vendor's is another", {C, 1000 + C, 2000 + C}, 3},
      {"the vendor's again", {1000 + C, B, 1000 + C}, 2, 26},
      {"the vendor's in a row", {1000 + C, 1000 + C}, 2},
      {"another vendor's between", {1000 + C, 2000 + C, 1000 + C}, 2, 26},
      {"type 0 first", {0, 0}, 2},
      {"type 0 again", {0, B, 0}, 2, 0},
  };
  for (const ConcatCase& row : rows) {
    SCOPED_TRACE(row.name);
    const Walked walked = walkTypes(row.types);
    EXPECT_EQ(walked.received.size(), 1 + row.handed);
    if (row.handed == row.types.size()) {
      EXPECT_EQ(walked.result, ErrorMsg::success);
      EXPECT_EQ(walked.records, Records());
    } else {
      EXPECT_EQ(walked.result, ErrorMsg::concatAttrNotConsecutive);
      EXPECT_EQ(walked.records,
                (Records{walkRecord("Concat attribute: " + std::to_string(row.attrId) +
                                    " not consecutive")}));
    }
  }
}

TEST(PktWalk, HandsFragmentsOverOneByOneWithoutJoiningThem) {
  const Walked walked =
      walk(PacketMaker(2).addMessageAuthenticator().add(eapMessage, {1, 2}).add(eapMessage, {3}));
  expectAccepted(walked, {80, eapMessage, eapMessage});
  EXPECT_EQ(walked.received.at(1).value, AttrValue(Verda::Bytes{1, 2}));
  EXPECT_EQ(walked.received.at(2).value, AttrValue(Verda::Bytes{3}));
  EXPECT_TRUE(walked.received.at(1).info.isConcat);
}

TEST(PktWalk, ForgetsTheRunsOfThePacketBefore) {
  const auto parser = radiusPktParserFactory(dictionary());
  for (int again = 0; again < 2; ++again) {
    const auto pkt =
        TestSupport::pktOf(PacketMaker(2).add(otherConcat, {1}).add(classAttr, {1}).make());
    EXPECT_EQ(
        parser->doProcessPkt(pkt, testSecret, verdaBytes(testReqAuth), pktInfoParserFactory()),
        ErrorMsg::success);
  }
}

// ---- Hiding ----

TEST(PktWalk, ReportsAFailureToRevealAValue) {
  const ByteVector packet =
      PacketMaker(2).add(classAttr, {1}).add(userPassword, ByteVector(32)).make();
  for (U32 before : {1U, 2U}) {  // behind the MD5 of the authenticator
    FaultSeam::failIs(Primitive::md5, before);
    const Walked walked = walk(packet);
    FaultSeam::failDel();
    EXPECT_EQ(walked.result, ErrorMsg::md5GenerationFailed);
    EXPECT_EQ(walked.records,
              (Records{errorRecord("", "md5Calculator", "MD5 digest of incorrect length: 0")}));
    EXPECT_EQ(typesOf(walked), std::vector<int>{classAttr});
    EXPECT_TRUE(walked.packetUnchanged);
  }
}

// ---- The first fault wins ----

TEST(PktWalk, LetsTheFirstOfSeveralFaultsWin) {
  struct Case {
    const char* name;
    ByteVector packet;
    ErrorMsg error;
    Texts texts;
  };
  ByteVector shortAndWrong = PacketMaker(2).secretIs("other").make();
  shortAndWrong[3] = 19;
  const std::vector<Case> rows{
      {"header before authenticator",
       shortAndWrong,
       ErrorMsg::invalidPktLength,
       {"Invalid packet header length: 19"}},
      {"authenticator before framing",
       PacketMaker(2).secretIs("other").addRaw({1}).make(),
       ErrorMsg::invalidPktAuth,
       {authenticatorInvalid}},
      {"second before length of the Message-Authenticator",
       PacketMaker(2).addMessageAuthenticator().add(80, {1}).make(),
       ErrorMsg::invalidMsgAuth,
       {"Message authenticator present more than once"}},
      {"length before value of the Message-Authenticator",
       PacketMaker(99).add(80, {1}).make(),
       ErrorMsg::invalidAttrLength,
       {"Invalid length of message authenticator: 3"}},
      {"earlier before later attribute",
       PacketMaker(2).add(sessionTimeout, {1}).addRaw({26, 7, 0, 0, 0, 0, 0}).make(),
       ErrorMsg::invalidAttrLength,
       {"Attribute: 27, VendorId: 0, VendorAttrId: 0, Data Type: Integer, Invalid length: 1"}},
      {"value before the next frame",
       PacketMaker(2).add(sessionTimeout, {1}).addRaw({1, 0}).make(),
       ErrorMsg::invalidAttrLength,
       {"Attribute: 27, VendorId: 0, VendorAttrId: 0, Data Type: Integer, Invalid length: 1"}},
      {"frame before the Message-Authenticator's own checks",
       PacketMaker(2).addRaw({80, 19, 1}).make(),
       ErrorMsg::invalidAttrLength,
       {"Invalid attribute: 80 attrLength: 19, remainingPktLen: 3"}},
      {"frame before the password's own check",
       PacketMaker(1).addRaw({2, 17, 1}).make(),
       ErrorMsg::invalidAttrLength,
       {"Invalid attribute: 2 attrLength: 17, remainingPktLen: 3"}},
  };
  for (const Case& row : rows) {
    SCOPED_TRACE(row.name);
    const Walked walked = walk(row.packet);
    EXPECT_EQ(walked.result, row.error);
    EXPECT_EQ(walked.texts(), row.texts);
    EXPECT_TRUE(walked.packetUnchanged);
  }
}

/// A dictionary in which User-Password, Message-Authenticator and a salted text are concatenated.
DictPtr concatDictionary() {
  return DictionaryMaker()
      .add(classAttr, RadiusAttributeType::octets)
      .add(userPassword, RadiusAttributeType::ipaddr, {.concat = true, .encrypt = 1})
      .add(salted, RadiusAttributeType::string, {.tag = true, .concat = true, .encrypt = 2})
      .make();
}

TEST(PktWalk, LetsThePasswordRuleWinOverTheConcatRule) {
  const DictPtr dict = DictionaryMaker()
                           .add(classAttr, RadiusAttributeType::octets)
                           .add(userPassword, RadiusAttributeType::string, {.concat = true})
                           .make();
  const Walked walked = TestSupport::walk(PacketMaker(1)
                                              .add(userPassword, ByteVector(16))
                                              .add(classAttr, {1})
                                              .add(userPassword, ByteVector(15))
                                              .make(),
                                          {}, dict);
  expectRefused(walked, ErrorMsg::invalidAttrLength, "Received password with invalid length: 17",
                {userPassword, classAttr});
}

TEST(PktWalk, LetsTheConcatRuleWinOverHidingAndDecoding) {
  FaultSeam::failIs(Primitive::md5, 2);  // behind those of the authenticator and the first value
  const Walked walked = TestSupport::walk(
      PacketMaker(2).add(salted, {1, 0x80, 1, 4}).add(classAttr, {1}).add(salted, {}).make(),
      testReqAuth, concatDictionary());
  FaultSeam::failDel();
  expectRefused(walked, ErrorMsg::concatAttrNotConsecutive, "Concat attribute: 69 not consecutive",
                {salted, classAttr});
}

TEST(PktWalk, LetsHidingWinOverDecoding) {
  FaultSeam::failIs(Primitive::md5, 1);
  const Walked walked = TestSupport::walk(PacketMaker(2).add(userPassword, ByteVector(16)).make(),
                                          testReqAuth, concatDictionary());
  FaultSeam::failDel();
  EXPECT_EQ(walked.result, ErrorMsg::md5GenerationFailed);
  EXPECT_EQ(walked.texts(), Texts{"MD5 digest of incorrect length: 0"});
}

// ---- Misuse ----

struct MisuseCase {
  const char* name;
  ByteVector packet;
  ByteVector reqAuth;
  const char* assertion;
};

TEST(PktWalkMisuse, FailsAnAssertionOnTheWrongRequestAuthenticator) {
  const std::vector<MisuseCase> rows{
      {"response without, signed over zeros",
       PacketMaker(2).reqAuthIs({}).add(classAttr, {1}).make(),
       {},
       "Request authenticator NULL for response packet"},
      {"response without, a Message-Authenticator first",
       PacketMaker(2).reqAuthIs({}).addMessageAuthenticator().make(),
       {},
       "Request authenticator found NULL for response packet"},
      {"unknown code without",
       PacketMaker(99).reqAuthIs({}).add(classAttr, {1}).make(),
       {},
       "Request authenticator NULL for response packet"},
      {"Access-Request with", PacketMaker(1).add(classAttr, {1}).make(), testReqAuth,
       "Request authenticator not NULL for request packet"},
      {"Status-Server with, a Message-Authenticator first",
       PacketMaker(12).addMessageAuthenticator().make(), testReqAuth,
       "Request authenticator found not NULL for request packet"},
      {"Access-Request with one of one byte",
       PacketMaker(1).add(classAttr, {1}).make(),
       {1},
       "Request authenticator not NULL for request packet"},
      {"Accounting-Request with, signed over it",
       PacketMaker(4).reqAuthIs(testReqAuth).add(classAttr, {1}).make(), testReqAuth,
       "Request authenticator not NULL for request packet"},
      {"CoA-Request with, signed over it, a Message-Authenticator first",
       PacketMaker(43).reqAuthIs(testReqAuth).addMessageAuthenticator().make(), testReqAuth,
       "Request authenticator found not NULL for request packet"},
  };
  for (const MisuseCase& row : rows) {
    SCOPED_TRACE(row.name);
    const auto pkt = TestSupport::pktOf(row.packet);
    const Verda::Ptr<RecordingSink> sink(new RecordingSink);
    RecordingParser parser(dictionary());
    EXPECT_EQ(TestSupport::assertionTextOf(
                  [&] { parser.doProcessPkt(pkt, testSecret, verdaBytes(row.reqAuth), sink); }),
              row.assertion);
    EXPECT_EQ(TestSupport::bytesOf(pkt), row.packet);
    EXPECT_TRUE(sink->received.empty());
    EXPECT_EQ(pkt->userCount(), 1U);
    EXPECT_EQ(sink->userCount(), 1U);
  }
}

TEST(PktWalkMisuse, GivesAnErrorToAnUnsignedPacketAndNoAssertion) {
  for (U8 code : {U8{2}, U8{3}, U8{11}, U8{5}, U8{41}, U8{99}}) {
    expectRefused(TestSupport::walk(PacketMaker(code).add(classAttr, {1}).make(), {}, dictionary()),
                  ErrorMsg::invalidPktAuth, authenticatorInvalid);
  }
  for (U8 code : {U8{4}, U8{40}, U8{43}}) {
    expectRefused(
        TestSupport::walk(PacketMaker(code).add(classAttr, {1}).make(), testReqAuth, dictionary()),
        ErrorMsg::invalidPktAuth, authenticatorInvalid);
  }
}

TEST(PktWalkMisuse, ReachesNoAssertionWithoutAnAttribute) {
  EXPECT_EQ(TestSupport::walk(PacketMaker(1).make(), testReqAuth, dictionary()).result,
            ErrorMsg::success);
  EXPECT_EQ(TestSupport::walk(PacketMaker(2).reqAuthIs({}).make(), {}, dictionary()).result,
            ErrorMsg::success);
}

TEST(PktWalkMisuse, FailsAnAssertionWithoutASinkOrADictionary) {
  const auto pkt = TestSupport::pktOf(PacketMaker(2).add(classAttr, {1}).make());
  EXPECT_EQ(TestSupport::assertionTextOf([&] {
              radiusPktParserFactory(dictionary())
                  ->doProcessPkt(pkt, testSecret, verdaBytes(testReqAuth), nullptr);
            }),
            "pktInfoParser");
  EXPECT_EQ(TestSupport::assertionTextOf([&] {
              radiusPktParserFactory(DictPtr())->doProcessPkt(
                  pkt, testSecret, verdaBytes(testReqAuth), pktInfoParserFactory());
            }),
            "dict");
}

/// A hook that throws.
class ThrowingParser : public RadiusPktParser {
 public:
  using RadiusPktParser::RadiusPktParser;
  void doProcessAttribute(const Attribute&, const AttrValue&, AttrInfo,
                          const Verda::Ptr<PktInfoParser>&) override {
    throw std::string("from the hook");
  }
};

TEST(PktWalk, LetsAnExceptionOfTheHookThroughAndLeavesThePacketWhole) {
  const ByteVector packet = PacketMaker(2).addMessageAuthenticator().make();
  const auto pkt = TestSupport::pktOf(packet);
  ThrowingParser parser(dictionary());
  EXPECT_THROW(
      parser.doProcessPkt(pkt, testSecret, verdaBytes(testReqAuth), pktInfoParserFactory()),
      std::string);
  EXPECT_EQ(TestSupport::bytesOf(pkt), packet);
  EXPECT_EQ(pkt->userCount(), 1U);
}

}  // namespace
