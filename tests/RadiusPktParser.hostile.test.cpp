#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/SharedSecrets.h"
#include "tests/support/Walk.h"

/// What a stranger may send. Each packet lies in a block of exactly its size, so that the address
/// sanitizer sees every byte that is read or written outside; each must be left as it was.
namespace {

using RadiusPacketParser::RadiusAttributeType;
using namespace RadiusPktParserBase;
using TestSupport::ByteVector;
using TestSupport::DataType;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::PacketMaker;
using TestSupport::testReqAuth;
using TestSupport::Walked;
using Verda::U32;
using Verda::U8;
using Texts = std::vector<std::string>;

constexpr U8 type = 200;
constexpr U32 vendor = 32473;

DictPtr dictionaryOf(DataType dataType, TestSupport::Flags flags) {
  return DictionaryMaker()
      .add(type, dataType, flags)
      .addVendor(vendor, type, dataType, flags)
      .add(25, RadiusAttributeType::octets)
      .make();
}

Walked walk(const PacketMaker& maker, const DictPtr& dictionary) {
  const Walked walked = TestSupport::walk(maker.make(), testReqAuth, dictionary);
  EXPECT_TRUE(walked.packetUnchanged);
  return walked;
}

/// Walks the value as a standard attribute's and as a vendor attribute's.
std::vector<Walked> walkBoth(const DictPtr& dictionary, const ByteVector& value) {
  return {walk(PacketMaker(2).add(type, value), dictionary),
          walk(PacketMaker(2).addVendor(vendor, type, value), dictionary)};
}

TEST(HostilePacket, TaggedAndSaltedTextOfLengthTwoHasNoTagByte) {
  const DictPtr dict = dictionaryOf(RadiusAttributeType::string, {.tag = true, .encrypt = 2});
  for (const Walked& walked : walkBoth(dict, {})) {
    EXPECT_EQ(walked.result, ErrorMsg::tagByteMissing);
    EXPECT_EQ(walked.texts(), Texts{"Invalid attribute length: 2, tag byte missing"});
  }
}

TEST(HostilePacket, TaggedAndSaltedTextOfLengthThreeAndFourIsNotRevealed) {
  const DictPtr dict = dictionaryOf(RadiusAttributeType::string, {.tag = true, .encrypt = 2});
  for (const ByteVector& value : {ByteVector{1}, ByteVector{1, 0x80}, ByteVector{1, 0x80, 2}}) {
    for (const Walked& walked : walkBoth(dict, value)) {
      EXPECT_EQ(walked.result, ErrorMsg::success);
      ASSERT_EQ(walked.received.size(), 1U);
      EXPECT_EQ(walked.received.at(0).value,
                AttrValue(TaggedStr{.str = Verda::String(std::span(value)), .tag = 0}));
      EXPECT_EQ(walked.texts(), Texts());
    }
  }
}

TEST(HostilePacket, TaggedAndSaltedOctetsThatAreTooShortAreNotRevealed) {
  const DictPtr dict = dictionaryOf(RadiusAttributeType::octets, {.tag = true, .encrypt = 2});
  for (const ByteVector& value :
       {ByteVector{}, ByteVector{1}, ByteVector{1, 0x80}, ByteVector{1, 0x80, 2}}) {
    for (const Walked& walked : walkBoth(dict, value)) {
      EXPECT_EQ(walked.result, ErrorMsg::success);
      ASSERT_EQ(walked.received.size(), 1U);
      EXPECT_EQ(walked.received.at(0).value, AttrValue(TestSupport::verdaBytes(value)));
    }
  }
}

TEST(HostilePacket, TaggedIntegerThatIsHiddenAndEmptyHasNoValue) {
  const DictPtr dict = dictionaryOf(RadiusAttributeType::integer, {.tag = true, .encrypt = 2});
  for (const Walked& walked : walkBoth(dict, {})) {
    EXPECT_EQ(walked.result, ErrorMsg::invalidAttrLength);
  }
}

TEST(HostilePacket, LengthBytesOfZeroOneAnd255AreRefused) {
  const DictPtr dict = dictionaryOf(RadiusAttributeType::string, {});
  for (U8 attribute : {type, U8{26}, U8{80}, U8{2}}) {
    for (U8 length : {U8{0}, U8{1}, U8{255}}) {
      const PacketMaker alone = PacketMaker(2).addRaw({attribute, length});
      const PacketMaker behind = PacketMaker(2).add(25, {1}).addRaw({attribute, length, 1, 2});
      EXPECT_EQ(walk(alone, dict).result, ErrorMsg::invalidAttrLength);
      const Walked walked = walk(behind, dict);
      EXPECT_EQ(walked.result, ErrorMsg::invalidAttrLength);
      EXPECT_EQ(walked.texts(),
                Texts{"Invalid attribute: " + std::to_string(attribute) +
                      " attrLength: " + std::to_string(length) + ", remainingPktLen: 4"});
    }
  }
}

TEST(HostilePacket, VendorAttributeOfLengthSevenAtTheVeryEndIsRefused) {
  const Walked walked = walk(PacketMaker(2).addRaw({26, 7, 0, 0, 0x7e, 0xd9, type}),
                             dictionaryOf(RadiusAttributeType::string, {}));
  EXPECT_EQ(walked.result, ErrorMsg::invalidAttrLength);
  EXPECT_EQ(walked.texts(), Texts{"Invalid Vsa length: 7"});
}

TEST(HostilePacket, VendorAttributeOfLengthEightHoldsNoByte) {
  const Walked walked = walk(PacketMaker(2).addRaw({26, 8, 0, 0, 0x7e, 0xd9, type, 2}),
                             dictionaryOf(RadiusAttributeType::string, {}));
  EXPECT_EQ(walked.result, ErrorMsg::success);
  ASSERT_EQ(walked.received.size(), 1U);
  EXPECT_EQ(walked.received.at(0).value, AttrValue(Verda::String("")));
}

TEST(HostilePacket, SubLengthsOfZeroOneAnd255AreRefused) {
  for (U8 subLength : {U8{0}, U8{1}, U8{255}}) {
    for (std::size_t rest : {std::size_t{0}, std::size_t{1}, std::size_t{247}}) {
      ByteVector attribute{26, static_cast<U8>(8 + rest), 0, 0, 0x7e, 0xd9, type, subLength};
      attribute.resize(8 + rest);
      const Walked walked =
          walk(PacketMaker(2).addRaw(attribute), dictionaryOf(RadiusAttributeType::string, {}));
      EXPECT_EQ(walked.result, ErrorMsg::invalidAttrLength);
      EXPECT_EQ(walked.texts(), Texts{"Attribute length: " + std::to_string(8 + rest) +
                                      " and Vendor attribute length: " +
                                      std::to_string(subLength + 6) + " differ"});
    }
  }
}

TEST(HostilePacket, Ip6PrefixOfLengthTwoAndThreeIsRefused) {
  const DictPtr dict = dictionaryOf(RadiusAttributeType::ipv6prefix, {});
  for (const ByteVector& value : {ByteVector{}, ByteVector{0}}) {
    for (const Walked& walked : walkBoth(dict, value)) {
      EXPECT_EQ(walked.result, ErrorMsg::invalidAttrLength);
      EXPECT_TRUE(walked.received.empty());
    }
  }
}

TEST(HostilePacket, AnySecretMeetsAnyPacket) {
  const DictPtr dict = dictionaryOf(RadiusAttributeType::string, {.tag = true, .encrypt = 2});
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    const PacketMaker maker = PacketMaker(2)
                                  .secretIs(secret.given)
                                  .add(type, ByteVector(253, 0x42))
                                  .addMessageAuthenticator();
    const Walked walked = TestSupport::walk(maker.make(), testReqAuth, dict, secret.given);
    EXPECT_EQ(walked.result, ErrorMsg::success);
    EXPECT_TRUE(walked.packetUnchanged);
  }
}

TEST(HostilePacket, RequestAuthenticatorsOfOneFifteenAndSeventeenBytesAreMeasured) {
  const DictPtr dict = dictionaryOf(RadiusAttributeType::string, {.encrypt = 1});
  for (U8 code : {U8{2}, U8{5}, U8{41}, U8{99}}) {
    PacketMaker maker(code);
    maker.add(type, ByteVector(16, 0x42));
    for (std::size_t size : {std::size_t{1}, std::size_t{15}, std::size_t{17}}) {
      ByteVector reqAuth = testReqAuth;
      reqAuth.resize(size);
      const Walked walked = TestSupport::walk(maker.make(), reqAuth, dict);
      EXPECT_EQ(walked.result, size < 16 ? ErrorMsg::invalidBytesCopied : ErrorMsg::success);
      EXPECT_TRUE(walked.packetUnchanged);
    }
  }
}

TEST(HostilePacket, BytesBehindTheLengthAreNotRead) {
  const DictPtr dict = dictionaryOf(RadiusAttributeType::string, {});
  ByteVector packet = PacketMaker(2).add(type, {'a'}).make();
  packet.resize(5000, 0x01);
  const Walked walked = TestSupport::walk(packet, testReqAuth, dict);
  EXPECT_EQ(walked.result, ErrorMsg::success);
  EXPECT_EQ(walked.received.size(), 1U);
}

TEST(HostilePacket, PacketShorterThanItsLengthIsRefused) {
  ByteVector packet = PacketMaker(2).add(type, {'a', 'b', 'c'}).make();
  packet.pop_back();
  const Walked walked =
      TestSupport::walk(packet, testReqAuth, dictionaryOf(RadiusAttributeType::string, {}));
  EXPECT_EQ(walked.result, ErrorMsg::invalidPktLength);
  EXPECT_EQ(walked.texts(), Texts{"Packet's Length: 24 and header length: 25 mismatch"});
}

TEST(HostilePacket, NullPacketIsRefused) {
  const TestSupport::CapturingSink trace;
  EXPECT_EQ(radiusPktParserFactory(DictPtr())->doProcessPkt(nullptr, "secret", {},
                                                            pktInfoParserFactory()),
            ErrorMsg::invalidPktPtr);
  EXPECT_EQ(trace.texts(), Texts{"Null pointer passed instead of packet"});
}

TEST(HostilePacket, LargestPacketOfEmptyAttributesIsWalkedToItsEnd) {
  ByteVector attributes;
  for (int count = 0; count < 2038; ++count) {
    attributes.insert(attributes.end(), {type, 2});
  }
  const PacketMaker maker = PacketMaker(2).addRaw(attributes);
  ASSERT_EQ(maker.make().size(), 4096U);
  for (const auto& dictionary :
       {dictionaryOf(RadiusAttributeType::string, {}), DictionaryMaker().make()}) {
    const Walked walked = walk(maker, dictionary);
    EXPECT_EQ(walked.result, ErrorMsg::success);
    EXPECT_EQ(walked.received.size(), 2038U);
  }
}

TEST(HostilePacket, ThirteenHundredFragmentsAreWalkedToTheirEnd) {
  PacketMaker maker(2);
  for (int count = 0; count < 1300; ++count) {
    maker.addRaw({type, 3, static_cast<U8>(count)});
  }
  const Walked walked = walk(maker, dictionaryOf(RadiusAttributeType::octets, {.concat = true}));
  EXPECT_EQ(walked.result, ErrorMsg::success);
  ASSERT_EQ(walked.received.size(), 1300U);
  EXPECT_EQ(walked.received.at(1299).value, AttrValue(Verda::Bytes{static_cast<U8>(1299)}));
}

TEST(HostilePacket, RunsOfEveryTypeAreRememberedUntilOneComesAgain) {
  DictionaryMaker dictionary;
  PacketMaker maker(5);  // no Message-Authenticator is checked
  for (U32 number = 0; number < 256; ++number) {
    const auto code = static_cast<U8>(number);
    dictionary.add(code, RadiusAttributeType::octets, {.concat = true});
    if (code != 26 && code != 80 && code != 2) {
      maker.add(code, {1});
    }
  }
  const Walked walked = walk(maker.add(0, {1}), dictionary.make());
  EXPECT_EQ(walked.result, ErrorMsg::concatAttrNotConsecutive);
  EXPECT_EQ(walked.received.size(), 253U);
  EXPECT_EQ(walked.texts(), Texts{"Concat attribute: 0 not consecutive"});
}

TEST(HostilePacket, EveryTwoBytesOfAttributesAreSurvived) {
  const DictPtr dict = DictionaryMaker().make();
  const TestSupport::CapturingSink silent(Verda::traceOff);
  const auto parser = radiusPktParserFactory(dict);
  for (U32 attributeType = 0; attributeType < 256; ++attributeType) {
    for (U32 length = 0; length < 256; ++length) {
      ByteVector packet(22);
      packet[0] = 1;
      packet[3] = 22;
      packet[20] = static_cast<U8>(attributeType);
      packet[21] = static_cast<U8>(length);
      const ErrorMsg result =
          parser->doProcessPkt(TestSupport::pktOf(packet), "secret", {}, pktInfoParserFactory());
      const bool isEmptyAttribute = length == 2;
      const bool needsValue = attributeType == 2 || attributeType == 26 || attributeType == 80;
      const bool isEap = attributeType == 79;
      ErrorMsg expected = ErrorMsg::success;
      if (!isEmptyAttribute || needsValue) {
        expected = ErrorMsg::invalidAttrLength;
      } else if (isEap) {
        expected = ErrorMsg::missingRequiredMsgAuth;
      }
      ASSERT_EQ(result, expected) << attributeType << " of length " << length;
    }
  }
}

}  // namespace
