#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/CatchAssertion.h"
#include "tests/support/LegacyPacket.h"

namespace RadiusPacketParser {
namespace {

using TestSupport::attributeBytes;
using TestSupport::bytesOf;
using TestSupport::ByteVector;
using TestSupport::CapturedRecord;
using TestSupport::CapturingSink;
using TestSupport::countingBytes;
using TestSupport::DataType;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::LegacyPtr;
using TestSupport::legacyRecord;
using TestSupport::PacketMaker;
using TestSupport::pktOf;
using TestSupport::uncheckedPacket;
using TestSupport::vendorBytes;
using TestSupport::withLength;
using Verda::Ptr;
using Verda::String;
using Verda::U16;
using Verda::U32;
using Verda::U8;
using Records = std::vector<CapturedRecord>;

constexpr std::size_t headerLength = 20;

constexpr U8 userPassword = 2;
constexpr U8 classAttr = 25;
constexpr U8 vendorSpecific = 26;
constexpr U8 eapMessage = 79;
constexpr U8 messageAuthenticator = 80;
/// The attribute of data type `n` has the number `firstTyped + n`, of a vendor's `n`.
constexpr U8 firstTyped = 200;
constexpr U8 unknownType = 250;
constexpr U32 vendor = 32473;
constexpr U32 unknownVendor = 32474;

const std::string headerLengthFault = "Received packet with invalid header length";
const std::string loneByteFault = "Received packet with attribute having invalid length";
const std::string lengthFault = "Received packet with invalid attribute length";
const std::string vsaFault = "Received packet with VSA attribute having invalid length";
const std::string msgAuthFault = "Received packet with invalid msgAuth Length";
const std::string passwordFault = "Received password with invalid length";
const std::string intFault = "Received packet with INT attribute having invalid length";
const std::string eapFault = "Packet has eap message but doesn't have message authenticator";

const DictPtr& dictionary() {
  static const DictPtr made = [] {
    DictionaryMaker maker;
    maker.add(userPassword, RadiusAttributeType::string, {.encrypt = 1})
        .add(classAttr, RadiusAttributeType::octets)
        .add(eapMessage, RadiusAttributeType::octets, {.concat = true})
        .add(messageAuthenticator, RadiusAttributeType::octets);
    for (U8 type = 0; type <= 9; ++type) {
      maker.add(static_cast<U8>(firstTyped + type), static_cast<DataType>(type));
      maker.addVendor(vendor, type, static_cast<DataType>(type));
    }
    return maker.make();
  }();
  return made;
}

constexpr U8 codeOf(DataType type) {
  return static_cast<U8>(firstTyped + type);
}

/// How a check went.
struct Checked {
  bool badPkt;
  bool msgAuthPresent;
  Records records;
  ByteVector packet;  ///< as it is afterwards
};

Checked check(const ByteVector& packet, const DictPtr& dict = dictionary()) {
  const LegacyPtr parser = uncheckedPacket(packet, dict);
  const CapturingSink trace;
  parser->doBasicPacketSanityCheck();
  return {parser->badPkt(), parser->msgAuthPresent(), trace.records(), bytesOf(parser->pkt())};
}

void expectGood(const ByteVector& packet, const DictPtr& dict = dictionary()) {
  const Checked checked = check(packet, dict);
  EXPECT_FALSE(checked.badPkt);
  EXPECT_EQ(checked.records, Records());
  EXPECT_EQ(checked.packet, packet);
}

void expectGood(const PacketMaker& maker) {
  expectGood(maker.make());
}

void expectBad(const ByteVector& packet, const std::string& text,
               const DictPtr& dict = dictionary()) {
  const Checked checked = check(packet, dict);
  EXPECT_TRUE(checked.badPkt);
  EXPECT_EQ(checked.records, Records{legacyRecord("doBasicPacketSanityCheck", text)});
  EXPECT_EQ(checked.packet, packet);
}

void expectBad(const PacketMaker& maker, const std::string& text) {
  expectBad(maker.make(), text);
}

/// An attribute of that length, Type and Length counted, with a value of zeros.
ByteVector attributeOfLength(U8 type, std::size_t length) {
  return attributeBytes(type, ByteVector(length - 2));
}

// ---- The header ----

TEST(LegacySetHeader, ReadsCodeIdentifierLengthAndAuthenticator) {
  const ByteVector authenticator{0,    0xff, 0,  1,  2,  0x80, 'a', '"',
                                 '\\', '\n', 10, 11, 12, 13,   0,   0};
  const LegacyPtr parser = uncheckedPacket(
      TestSupport::joined({ByteVector{254, 253, 0x12, 0x34}, authenticator}), dictionary());
  EXPECT_EQ(parser->header()->code(), 254);
  EXPECT_EQ(parser->header()->id(), 253);
  EXPECT_EQ(parser->header()->length(), 0x1234);
  EXPECT_EQ(parser->header()->authenticator(), String(std::span<const U8>(authenticator)));
}

TEST(LegacySetHeader, DoesNotCompareTheLengthFieldWithTheBuffer) {
  for (const std::size_t length : {0U, 19U, 20U, 21U, 4096U, 4097U, 65535U}) {
    for (const std::size_t size : {20U, 21U, 5000U}) {
      SCOPED_TRACE(testing::Message() << length << " in " << size << " bytes");
      const CapturingSink trace;
      const LegacyPtr parser = uncheckedPacket(withLength(ByteVector(size), length), dictionary());
      EXPECT_FALSE(parser->badPkt());
      EXPECT_EQ(parser->header()->length(), length);
      EXPECT_EQ(trace.records(), Records());
    }
  }
}

TEST(LegacySetHeader, RefusesAPacketShorterThanAHeader) {
  for (std::size_t size = 0; size < headerLength; ++size) {
    SCOPED_TRACE(size);
    const CapturingSink trace;
    const LegacyPtr parser = uncheckedPacket(ByteVector(size, 1), dictionary());
    EXPECT_TRUE(parser->badPkt());
    EXPECT_EQ(parser->header(), nullptr);
    EXPECT_EQ(trace.records(),
              Records{legacyRecord("setHeader", "Received packet with invalid length")});
  }
}

TEST(LegacySetHeader, MakesANewHeaderAndLeavesTheOldOneAsItIs) {
  const LegacyPtr parser = uncheckedPacket(PacketMaker(2).make(), dictionary());
  const Ptr<RadiusHdr> before = parser->header();
  parser->pkt()->data()[0] = 3;
  parser->setHeader();
  EXPECT_NE(parser->header(), before);
  EXPECT_EQ(before->code(), 2);
  EXPECT_EQ(parser->header()->code(), 3);
}

TEST(LegacySetHeader, KeepsTheHeaderThatItHasWhenThePacketIsTooShort) {
  const LegacyPtr parser = uncheckedPacket(PacketMaker(2).make(), dictionary());
  const Ptr<RadiusHdr> before = parser->header();
  parser->pktIs(pktOf(ByteVector(19)));
  const CapturingSink trace;
  parser->setHeader();
  EXPECT_EQ(parser->header(), before);
  EXPECT_EQ(before->code(), 2);
  EXPECT_TRUE(parser->badPkt());
}

TEST(LegacySetHeader, CountsTheBytesThatAreLeftAfterACut) {
  const Ptr<Zonet::Pkt> pkt = pktOf(PacketMaker(2).make());
  pkt->tailCut(1);
  const CapturingSink trace;
  const auto parser = radiusPacketParserBaseFactory(dictionary(), pkt);
  parser->setHeader();
  EXPECT_TRUE(parser->badPkt());
  EXPECT_EQ(parser->header(), nullptr);
}

TEST(LegacySetHeader, AssertsThatThereIsAPacket) {
  const CapturingSink trace;
  const auto parser = radiusPacketParserBaseFactory(dictionary(), Ptr<Zonet::Pkt>());
  EXPECT_EQ(TestSupport::assertionTextOf([&] { parser->setHeader(); }), "pkt()");
  EXPECT_FALSE(parser->badPkt());
  EXPECT_EQ(parser->header(), nullptr);
  EXPECT_EQ(trace.records(), Records());
}

// ---- The Length field ----

TEST(LegacySanityCheck, AcceptsAPacketWithoutAttributesOfEveryCode) {
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    expectGood(PacketMaker(static_cast<U8>(code)));
  }
}

TEST(LegacySanityCheck, LooksAtNothingWhenTheLengthIsTwenty) {
  for (const ByteVector& behind :
       {ByteVector{1}, ByteVector{1, 0}, ByteVector{eapMessage, 2}, ByteVector(4076, 0xff)}) {
    expectGood(withLength(PacketMaker(2).addRaw(behind).make(), headerLength));
  }
}

TEST(LegacySanityCheck, RefusesALengthFieldUnder20OrOver4096) {
  for (const std::size_t length : {0U, 1U, 19U, 4097U, 5000U, 65535U}) {
    for (const std::size_t size : {20U, 21U, 4097U, 6000U}) {
      SCOPED_TRACE(testing::Message() << length << " in " << size << " bytes");
      expectBad(withLength(ByteVector(size), length), headerLengthFault);
    }
  }
}

TEST(LegacySanityCheck, LooksAtNoAttributeWhenTheLengthFieldIsOutOfRange) {
  const ByteVector packet = PacketMaker(1).addMessageAuthenticator().make();
  for (const std::size_t length : {19U, 4097U}) {
    const Checked checked = check(withLength(packet, length));
    EXPECT_TRUE(checked.badPkt);
    EXPECT_FALSE(checked.msgAuthPresent);
  }
}

TEST(LegacySanityCheck, AcceptsAPacketOf4096Bytes) {
  PacketMaker maker(2);
  for (int count = 0; count < 15; ++count) {
    maker.addRaw(attributeOfLength(classAttr, 255));
  }
  maker.addRaw(attributeOfLength(classAttr, 251));
  ASSERT_EQ(maker.make().size(), 4096U);
  expectGood(maker);
}

TEST(LegacySanityCheck, TakesTheLengthFieldFromTheHeaderObject) {
  const LegacyPtr parser = uncheckedPacket(PacketMaker(2).addRaw({1}).make(), dictionary());
  parser->header()->lengthIs(20);
  parser->doBasicPacketSanityCheck();
  EXPECT_FALSE(parser->badPkt());
}

TEST(LegacySanityCheck, IgnoresTheBytesBehindTheLength) {
  ByteVector packet = PacketMaker(2).add(classAttr, {1}).make();
  packet.insert(packet.end(), {eapMessage, 3, 2, 99, 0});
  expectGood(packet);
}

// ---- A Length field that says more than there is ----

TEST(LegacySanityCheck, FindsZerosWhereTheLengthFieldGoesBehindTheBuffer) {
  for (const std::size_t length : {22U, 40U, 4093U}) {
    SCOPED_TRACE(length);
    expectBad(withLength(PacketMaker(2).make(), length), lengthFault);
    expectBad(withLength(PacketMaker(2).add(classAttr, {1}).make(), length + 3), lengthFault);
  }
  expectBad(withLength(PacketMaker(2).make(), 4096), lengthFault);
  expectBad(withLength(PacketMaker(2).make(), 21), loneByteFault);
}

TEST(LegacySanityCheck, AcceptsAttributesThatOnlyTheLengthFieldHolds) {
  expectGood(withLength(PacketMaker(2).addRaw({classAttr, 255}).make(), 275));
  expectGood(
      withLength(PacketMaker(2).addRaw({codeOf(RadiusAttributeType::integer), 6}).make(), 26));
  const Checked checked =
      check(withLength(PacketMaker(1).addRaw({messageAuthenticator, 18}).make(), 38));
  EXPECT_FALSE(checked.badPkt);
  EXPECT_TRUE(checked.msgAuthPresent);
}

TEST(LegacySanityCheck, ReadsAVendorBehindTheBufferAsZeros) {
  const ByteVector packet = withLength(PacketMaker(2).addRaw({vendorSpecific, 9}).make(), 29);
  expectGood(packet);
  const DictPtr withVendorZero =
      DictionaryMaker().addVendor(0, 0, RadiusAttributeType::integer).make();
  expectBad(packet, intFault, withVendorZero);
}

TEST(LegacySanityCheck, LeavesTheNumberOfBytesOfALyingPacket) {
  const LegacyPtr parser = uncheckedPacket(withLength(ByteVector(20), 4096), dictionary());
  const CapturingSink trace;
  parser->doBasicPacketSanityCheck();
  EXPECT_EQ(parser->pkt()->bytes(), 20U);
}

// ---- Framing ----

/// What the fault stands behind.
std::vector<PacketMaker> beginnings() {
  return {PacketMaker(2), PacketMaker(2).add(classAttr, {1}),
          PacketMaker(2).addVendor(unknownVendor, 1, {1, 2}),
          PacketMaker(2).addVendor(vendor, RadiusAttributeType::string, {1, 2}),
          PacketMaker(2).addMessageAuthenticator()};
}

TEST(LegacySanityCheck, RefusesALoneByte) {
  for (PacketMaker maker : beginnings()) {
    for (const U8 type : {U8{0}, U8{2}, vendorSpecific, eapMessage, messageAuthenticator}) {
      expectBad(PacketMaker(maker).addRaw({type}), loneByteFault);
    }
  }
}

TEST(LegacySanityCheck, RefusesALengthByteUnderTwoOrPastTheEnd) {
  for (const PacketMaker& maker : beginnings()) {
    for (const U8 type : {U8{0}, userPassword, vendorSpecific, eapMessage, messageAuthenticator}) {
      for (const U8 length : {U8{0}, U8{1}, U8{6}, U8{255}}) {
        SCOPED_TRACE(testing::Message() << int{type} << " of length " << int{length});
        expectBad(PacketMaker(maker).addRaw({type, length, 1, 2, 3}), lengthFault);
      }
    }
  }
}

TEST(LegacySanityCheck, RefusesALengthByteOfThreeAtTheVeryEnd) {
  expectBad(PacketMaker(2).addRaw({classAttr, 3}), lengthFault);
}

TEST(LegacySanityCheck, AcceptsAnAttributeThatEndsWithThePacket) {
  expectGood(PacketMaker(2).addRaw({classAttr, 2}));
  expectGood(PacketMaker(2).add(classAttr, {1, 2, 3}));
  expectGood(PacketMaker(2).add(classAttr, ByteVector(253)));
}

TEST(LegacySanityCheck, RefusesALastAttributeThatClaims255Bytes) {
  expectBad(PacketMaker(2).add(classAttr, {1}).addRaw({classAttr, 255, 1}), lengthFault);
}

// ---- Vendor attributes ----

TEST(LegacySanityCheck, RefusesAVendorAttributeShorterThanEight) {
  const ByteVector whole = vendorBytes(vendor, RadiusAttributeType::string, {});
  for (std::size_t length = 2; length < 8; ++length) {
    for (const U8 lowByte : {U8{0xd9}, U8{0xda}}) {
      SCOPED_TRACE(length);
      ByteVector attribute = whole;
      attribute[5] = lowByte;
      attribute[1] = static_cast<U8>(length);
      attribute.resize(length);
      expectBad(PacketMaker(2).addRaw(attribute), vsaFault);
      expectBad(PacketMaker(2).addRaw(attribute).add(classAttr, {1, 2, 3, 4, 5, 6}), vsaFault);
    }
  }
}

TEST(LegacySanityCheck, SkipsTheAttributeOfAnUnknownVendorWhateverItHolds) {
  for (const std::size_t rest : {0U, 1U, 4U, 247U}) {
    for (const U8 subLength : {U8{0}, U8{1}, U8{2}, U8{6}, U8{255}}) {
      for (U8 type = 0; type <= 9; ++type) {
        ByteVector attribute = vendorBytes(unknownVendor, type, ByteVector(rest, 0xff));
        attribute[7] = subLength;
        expectGood(PacketMaker(2).addRaw(attribute));
      }
    }
  }
}

TEST(LegacySanityCheck, ChecksWhatFollowsTheAttributeOfAnUnknownVendor) {
  expectBad(PacketMaker(2)
                .addVendor(unknownVendor, 1, {1, 2, 3})
                .add(codeOf(RadiusAttributeType::integer), {1}),
            intFault);
}

TEST(LegacySanityCheck, AcceptsAnUnknownTypeOfAKnownVendor) {
  for (const std::size_t size : {0U, 1U, 4U, 247U}) {
    expectGood(PacketMaker(2).addVendor(vendor, 100, ByteVector(size)));
  }
}

TEST(LegacySanityCheck, DoesNotCompareTheSubLengthWithTheAttribute) {
  for (const U8 subLength : {U8{0}, U8{1}, U8{2}, U8{5}, U8{255}}) {
    SCOPED_TRACE(int{subLength});
    ByteVector text = vendorBytes(vendor, RadiusAttributeType::string, {'a'});
    ByteVector number = vendorBytes(vendor, RadiusAttributeType::integer, {0, 0, 0, 1});
    text[7] = subLength;
    number[7] = subLength;
    expectGood(PacketMaker(2).addRaw(text).addRaw(number));
  }
}

TEST(LegacySanityCheck, MeasuresAVendorsNumberByTheLengthOfTheWholeAttribute) {
  ByteVector attribute = vendorBytes(vendor, RadiusAttributeType::integer, {0, 0, 0, 1, 9, 9});
  attribute[7] = 6;
  expectBad(PacketMaker(2).addRaw(attribute), intFault);
}

TEST(LegacySanityCheck, ChecksOnlyTheFirstSubAttribute) {
  const auto attributeOf = [](DataType first, DataType second) {
    ByteVector attribute = vendorBytes(vendor, first, {1});
    const ByteVector behind = attributeBytes(second, {2});
    attribute.insert(attribute.end(), behind.begin(), behind.end());
    attribute[1] = static_cast<U8>(attribute.size());
    return PacketMaker(2).addRaw(attribute);
  };
  expectGood(attributeOf(RadiusAttributeType::string, RadiusAttributeType::ipv6addr));
  expectBad(attributeOf(RadiusAttributeType::ipv6addr, RadiusAttributeType::string),
            "Received packet with IPV6ADDR attribute having invalid length");
}

TEST(LegacySanityCheck, ReadsAllFourBytesOfTheVendor) {
  const DictPtr dict =
      DictionaryMaker().addVendor(0x01020304, 1, RadiusAttributeType::integer).make();
  expectBad(PacketMaker(2).addVendor(0x01020304, 1, {1}).make(), intFault, dict);
  for (const U32 other : {0x04030201U, 0x00020304U, 0x01000304U, 0x01020004U, 0x01020300U}) {
    expectGood(PacketMaker(2).addVendor(other, 1, {1}).make(), dict);
  }
}

TEST(LegacySanityCheck, DoesNotLookUpType26AmongTheStandardAttributes) {
  const DictPtr dict = DictionaryMaker()
                           .add(vendorSpecific, RadiusAttributeType::integer)
                           .addVendor(vendor, 1, RadiusAttributeType::string)
                           .make();
  expectGood(PacketMaker(2).addVendor(vendor, 1, {'a'}).addVendor(vendor, 2, {'b'}).make(), dict);
}

TEST(LegacySanityCheck, AppliesNoSpecialRuleToTypesOfAVendor) {
  for (const U8 type : {userPassword, eapMessage, messageAuthenticator}) {
    const DictPtr dict =
        DictionaryMaker().addVendor(vendor, type, RadiusAttributeType::octets).make();
    const ByteVector packet = PacketMaker(2).addVendor(vendor, type, {1}).make();
    expectGood(packet, dict);
    EXPECT_FALSE(check(packet, dict).msgAuthPresent);
    EXPECT_FALSE(
        check(PacketMaker(2).addVendor(vendor, type, ByteVector(16)).make(), dict).msgAuthPresent);
  }
}

// ---- Data types ----

struct LengthRule {
  DataType type;
  std::size_t length;  ///< the only one, Type and Length counted
  std::string fault;
};

const std::vector<LengthRule> lengthRules{
    {RadiusAttributeType::ipaddr, 6, "Received packet with IPADDR attribute having invalid length"},
    {RadiusAttributeType::date, 6, "Received packet with DATE attribute having invalid length"},
    {RadiusAttributeType::integer, 6, "Received packet with INT attribute having invalid length"},
    {RadiusAttributeType::ipv6addr, 18,
     "Received packet with IPV6ADDR attribute having invalid length"},
    {RadiusAttributeType::integer64, 10,
     "Received packet with U64 attribute having invalid length"},
};

constexpr std::array unmeasuredTypes{RadiusAttributeType::unknown, RadiusAttributeType::string,
                                     RadiusAttributeType::octets, RadiusAttributeType::ipv6prefix,
                                     RadiusAttributeType::ifid};

TEST(LegacySanityCheck, AsksOfEachTypeForItsLength) {
  for (const LengthRule& rule : lengthRules) {
    for (std::size_t length = 2; length <= 255; ++length) {
      SCOPED_TRACE(testing::Message() << rule.fault << ": " << length);
      const auto maker = PacketMaker(2).addRaw(attributeOfLength(codeOf(rule.type), length));
      length == rule.length ? expectGood(maker) : expectBad(maker, rule.fault);
    }
  }
}

TEST(LegacySanityCheck, AsksOfEachTypeOfAVendorForItsLength) {
  for (const LengthRule& rule : lengthRules) {
    for (std::size_t length = 2; length <= 249; ++length) {
      SCOPED_TRACE(testing::Message() << rule.fault << ": " << length);
      const auto maker = PacketMaker(2).addVendor(vendor, rule.type, ByteVector(length - 2));
      length == rule.length ? expectGood(maker) : expectBad(maker, rule.fault);
    }
  }
}

TEST(LegacySanityCheck, AsksNoLengthOfTheOtherTypes) {
  for (const DataType type : unmeasuredTypes) {
    for (std::size_t length = 2; length <= 249; ++length) {
      expectGood(PacketMaker(2)
                     .addRaw(attributeOfLength(codeOf(type), length))
                     .addVendor(vendor, type, ByteVector(length - 2)));
    }
  }
}

TEST(LegacySanityCheck, AsksNoLengthOfAnAttributeThatTheDictionaryLacks) {
  for (std::size_t length = 2; length <= 255; ++length) {
    expectGood(PacketMaker(2).addRaw(attributeOfLength(unknownType, length)));
  }
}

TEST(LegacySanityCheck, KeepsTheTypesOfVendorsAndOfTheStandardApart) {
  const DictPtr dict = DictionaryMaker()
                           .add(7, RadiusAttributeType::integer)
                           .addVendor(vendor, 8, RadiusAttributeType::integer)
                           .make();
  expectGood(PacketMaker(2).add(8, {1}).addVendor(vendor, 7, {1}).make(), dict);
  expectBad(PacketMaker(2).add(7, {1}).make(), intFault, dict);
  expectBad(PacketMaker(2).addVendor(vendor, 8, {1}).make(), intFault, dict);
}

TEST(LegacySanityCheck, AppliesTheDictionarysTypeToTheSpecialAttributesToo) {
  const DictPtr dict = DictionaryMaker()
                           .add(userPassword, RadiusAttributeType::ipv6addr)
                           .add(eapMessage, RadiusAttributeType::integer)
                           .add(messageAuthenticator, RadiusAttributeType::integer)
                           .make();
  const std::string ipv6Fault = "Received packet with IPV6ADDR attribute having invalid length";
  expectGood(PacketMaker(1).add(userPassword, ByteVector(16)).make(), dict);
  expectBad(PacketMaker(1).add(userPassword, ByteVector(32)).make(), ipv6Fault, dict);
  expectBad(PacketMaker(1).add(userPassword, ByteVector(15)).make(), passwordFault, dict);
  expectBad(PacketMaker(1).add(eapMessage, {1}).make(), intFault, dict);
  expectBad(PacketMaker(1).addMessageAuthenticator().make(), intFault, dict);
  expectBad(PacketMaker(1).add(messageAuthenticator, {1, 2, 3, 4}).make(), msgAuthFault, dict);
}

// ---- Message-Authenticator, User-Password, EAP-Message ----

TEST(LegacySanityCheck, AsksOfAMessageAuthenticatorForEighteenBytes) {
  for (std::size_t length = 2; length <= 255; ++length) {
    SCOPED_TRACE(length);
    const auto maker = PacketMaker(2).addRaw(attributeOfLength(messageAuthenticator, length));
    length == 18 ? expectGood(maker) : expectBad(maker, msgAuthFault);
    EXPECT_EQ(check(maker.make()).msgAuthPresent, length == 18);
  }
}

TEST(LegacySanityCheck, FindsAMessageAuthenticatorThatTheDictionaryLacks) {
  const ByteVector packet = PacketMaker(1).addMessageAuthenticator().make();
  const DictPtr empty = DictionaryMaker().make();
  expectGood(packet, empty);
  EXPECT_TRUE(check(packet, empty).msgAuthPresent);
}

TEST(LegacySanityCheck, HasFoundTheMessageAuthenticatorAlsoWhenALaterAttributeFails) {
  const Checked checked = check(PacketMaker(1).addMessageAuthenticator().addRaw({1}).make());
  EXPECT_TRUE(checked.badPkt);
  EXPECT_TRUE(checked.msgAuthPresent);
  EXPECT_EQ(checked.records, Records{legacyRecord("doBasicPacketSanityCheck", loneByteFault)});
}

TEST(LegacySanityCheck, HasFoundTheMessageAuthenticatorAlsoWhenItsOwnTypeFails) {
  const DictPtr dict =
      DictionaryMaker().add(messageAuthenticator, RadiusAttributeType::integer).make();
  const Checked checked = check(PacketMaker(1).addMessageAuthenticator().make(), dict);
  EXPECT_TRUE(checked.badPkt);
  EXPECT_TRUE(checked.msgAuthPresent);
}

TEST(LegacySanityCheck, FindsNoMessageAuthenticatorBehindAFault) {
  const Checked checked = check(PacketMaker(1)
                                    .add(codeOf(RadiusAttributeType::integer), {1})
                                    .addMessageAuthenticator()
                                    .make());
  EXPECT_TRUE(checked.badPkt);
  EXPECT_FALSE(checked.msgAuthPresent);
}

TEST(LegacySanityCheck, AcceptsSeveralMessageAuthenticators) {
  expectGood(PacketMaker(1).addMessageAuthenticator().addMessageAuthenticator());
}

TEST(LegacySanityCheck, FindsNoMessageAuthenticatorWhereThereIsNone) {
  EXPECT_FALSE(check(PacketMaker(1).add(classAttr, ByteVector(16)).make()).msgAuthPresent);
}

TEST(LegacySanityCheck, DoesNotForgetAMessageAuthenticator) {
  const LegacyPtr parser =
      uncheckedPacket(PacketMaker(1).addMessageAuthenticator().make(), dictionary());
  parser->doBasicPacketSanityCheck();
  parser->pktIs(pktOf(PacketMaker(1).add(eapMessage, {1}).make()));
  parser->setHeader();
  const CapturingSink trace;
  parser->doBasicPacketSanityCheck();
  EXPECT_TRUE(parser->msgAuthPresent());
  EXPECT_FALSE(parser->badPkt());
  EXPECT_EQ(trace.records(), Records());
}

TEST(LegacySanityCheck, AcceptsPasswordsOf16To128BytesInStepsOf16) {
  for (std::size_t length = 2; length <= 255; ++length) {
    SCOPED_TRACE(length);
    const auto maker = PacketMaker(1).addRaw(attributeOfLength(userPassword, length));
    const bool isGood = length >= 18 && length <= 130 && length % 16 == 2;
    isGood ? expectGood(maker) : expectBad(maker, passwordFault);
  }
}

TEST(LegacySanityCheck, RefusesAnEapMessageWithoutAMessageAuthenticator) {
  expectBad(PacketMaker(1).add(eapMessage, {1}), eapFault);
  expectBad(PacketMaker(2).add(eapMessage, {}), eapFault);
  expectBad(PacketMaker(11).add(eapMessage, {1}).add(classAttr, {1}).add(eapMessage, {1}),
            eapFault);
}

TEST(LegacySanityCheck, AcceptsAnEapMessageWithAMessageAuthenticatorAnywhere) {
  expectGood(PacketMaker(1).addMessageAuthenticator().add(eapMessage, {1}));
  expectGood(PacketMaker(1).add(eapMessage, {1}).addMessageAuthenticator());
  expectGood(PacketMaker(1)
                 .add(eapMessage, {1})
                 .add(classAttr, {1})
                 .addMessageAuthenticator()
                 .add(eapMessage, {}));
}

TEST(LegacySanityCheck, LooksForAMessageAuthenticatorOnlyBehindTheWalk) {
  expectBad(PacketMaker(1).add(eapMessage, {1}).addRaw({1}), loneByteFault);
  expectBad(PacketMaker(1).add(eapMessage, {1}).add(messageAuthenticator, {1}), msgAuthFault);
}

TEST(LegacySanityCheck, TakesNoVendorsAttributeForAMessageAuthenticator) {
  expectBad(PacketMaker(1)
                .add(eapMessage, {1})
                .addVendor(unknownVendor, messageAuthenticator, ByteVector(16))
                .addVendor(vendor, messageAuthenticator, ByteVector(16)),
            eapFault);
}

// ---- The check as a whole ----

TEST(LegacySanityCheck, EndsAtTheFirstFault) {
  expectBad(PacketMaker(1)
                .add(codeOf(RadiusAttributeType::integer), {1})
                .add(codeOf(RadiusAttributeType::date), {1})
                .add(messageAuthenticator, {})
                .addRaw({1}),
            intFault);
}

TEST(LegacySanityCheck, FindsTheFaultOfALaterAttribute) {
  for (const LengthRule& rule : lengthRules) {
    expectBad(PacketMaker(2)
                  .add(classAttr, {1})
                  .addVendor(vendor, RadiusAttributeType::string, {'a'})
                  .addVendor(unknownVendor, RadiusAttributeType::string, {'a'})
                  .add(codeOf(rule.type), {}),
              rule.fault);
  }
}

TEST(LegacySanityCheck, AcceptsThreeHundredAttributesOfOneKind) {
  PacketMaker maker(2);
  for (int count = 0; count < 300; ++count) {
    maker.add(classAttr, {1});
  }
  expectGood(maker);
}

TEST(LegacySanityCheck, SurvivesEveryTwoBytesOfAttributes) {
  const CapturingSink silent(Verda::traceOff);
  for (U32 type = 0; type < 256; ++type) {
    for (U32 length = 0; length < 256; ++length) {
      const LegacyPtr parser = uncheckedPacket(
          PacketMaker(2).addRaw({static_cast<U8>(type), static_cast<U8>(length)}).make(),
          DictionaryMaker().make());
      parser->doBasicPacketSanityCheck();
      const bool needsMore = type == userPassword || type == vendorSpecific ||
                             type == messageAuthenticator || type == eapMessage;
      ASSERT_EQ(parser->badPkt(), length != 2 || needsMore) << type << " of length " << length;
    }
  }
}

TEST(LegacyValidation, DoesNotDependOnTrace) {
  const CapturingSink silent(Verda::traceOff);
  const auto made = [](const ByteVector& packet) {
    return radiusPacketParserFactory(dictionary(), pktOf(packet));
  };
  EXPECT_TRUE(made(ByteVector(19))->badPkt());
  EXPECT_TRUE(made(withLength(ByteVector(20), 19))->badPkt());
  EXPECT_TRUE(made(PacketMaker(1).addRaw({1}).make())->badPkt());
  EXPECT_TRUE(made(PacketMaker(1).add(eapMessage, {1}).make())->badPkt());
  const Ptr<RadiusHdr> request = radiusHdrFactory();
  request->idIs(8);
  const LegacyPtr parser = uncheckedPacket(withLength(PacketMaker(1).make(), 19), dictionary());
  EXPECT_FALSE(parser->validatePacketLength());
  EXPECT_FALSE(parser->validatePacketId(request));
  EXPECT_EQ(silent.records(), Records());
}

// ---- Types of attributes ----

TEST(LegacyAttributeType, IsTheDictionarysForStandardAndVendorAttributes) {
  const CapturingSink trace;
  const LegacyPtr parser = uncheckedPacket(PacketMaker(2).make(), dictionary());
  for (U8 type = 0; type <= 9; ++type) {
    const auto standard = static_cast<U8>(firstTyped + type);
    EXPECT_EQ(parser->getAttributeType(Attribute(standard, 0, 0)), type);
    EXPECT_EQ(parser->getAttributeType(Attribute(vendorSpecific, type, vendor)), type);
  }
  EXPECT_EQ(trace.records(), Records());
}

TEST(LegacyAttributeType, IsUnknownForWhatTheDictionaryLacks) {
  const CapturingSink trace;
  const LegacyPtr parser = uncheckedPacket(PacketMaker(2).make(), dictionary());
  for (const Attribute& key :
       {Attribute(unknownType, 0, 0), Attribute(vendorSpecific, 1, unknownVendor),
        Attribute(vendorSpecific, 100, vendor), Attribute(vendorSpecific, 0, 0)}) {
    EXPECT_EQ(parser->getAttributeType(key), RadiusAttributeType::unknown) << key;
  }
  EXPECT_EQ(trace.records(), Records());
}

TEST(LegacyAttributeType, LooksAtTheVendorOfType26Alone) {
  const LegacyPtr parser = uncheckedPacket(PacketMaker(2).make(), dictionary());
  EXPECT_EQ(parser->getAttributeType(Attribute(classAttr, 5, vendor)), RadiusAttributeType::octets);
}

// ---- Predicates ----

TEST(LegacyValidatePacketLength, IsTrueFrom20To4096) {
  const CapturingSink trace;
  for (const std::size_t length : {20U, 21U, 256U, 4095U, 4096U}) {
    const LegacyPtr parser = uncheckedPacket(withLength(ByteVector(20), length), dictionary());
    EXPECT_TRUE(parser->validatePacketLength()) << length;
  }
  EXPECT_EQ(trace.records(), Records());
}

TEST(LegacyValidatePacketLength, SaysTheLengthRightBehindTheLastWord) {
  struct Row {
    std::size_t length;
    const char* text;
  };
  for (const Row& row : {Row{0, "Received RADIUS packet with invalid length0"},
                         Row{19, "Received RADIUS packet with invalid length19"},
                         Row{4097, "Received RADIUS packet with invalid length4097"},
                         Row{65535, "Received RADIUS packet with invalid length65535"}}) {
    const CapturingSink trace;
    const LegacyPtr parser = uncheckedPacket(withLength(ByteVector(20), row.length), dictionary());
    EXPECT_FALSE(parser->validatePacketLength());
    EXPECT_FALSE(parser->badPkt());
    EXPECT_EQ(trace.records(), Records{legacyRecord("validatePacketLength", row.text)});
  }
}

TEST(LegacyValidatePacketId, IsTrueWhenTheIdentifiersAreEqual) {
  const CapturingSink trace;
  const Ptr<RadiusHdr> request = radiusHdrFactory();
  for (U32 id = 0; id < 256; ++id) {
    ByteVector packet(20);
    packet[1] = static_cast<U8>(id);
    request->idIs(static_cast<U8>(id));
    EXPECT_TRUE(uncheckedPacket(packet, dictionary())->validatePacketId(request)) << id;
  }
  EXPECT_EQ(trace.records(), Records());
}

TEST(LegacyValidatePacketId, SaysBothIdentifiersWhenTheyDiffer) {
  struct Row {
    U8 response;
    U8 request;
    const char* text;
  };
  for (const Row& row : {Row{0, 255, "Received non-matching respPktId: 0 and reqPktId: 255"},
                         Row{255, 0, "Received non-matching respPktId: 255 and reqPktId: 0"},
                         Row{65, 66, "Received non-matching respPktId: 65 and reqPktId: 66"}}) {
    ByteVector packet(20);
    packet[1] = row.response;
    const LegacyPtr parser = uncheckedPacket(packet, dictionary());
    const Ptr<RadiusHdr> request = radiusHdrFactory();
    request->idIs(row.request);
    const CapturingSink trace;
    EXPECT_FALSE(parser->validatePacketId(request));
    EXPECT_FALSE(parser->badPkt());
    EXPECT_EQ(trace.records(), Records{legacyRecord("validatePacketId", row.text)});
  }
}

// ---- Status-Server ----

constexpr std::array<U8, 7> forbidden{1, 2, 3, 40, 42, 44, 79};

/// Whether a packet is a valid Status-Server request, its Message-Authenticator being found.
bool isStatusServer(const ByteVector& packet) {
  const CapturingSink trace;
  const LegacyPtr parser = uncheckedPacket(packet, dictionary());
  parser->msgAuthPresentIs(true);
  const bool isValid = parser->validateStatusServerPkt();
  EXPECT_EQ(trace.records(), Records());
  EXPECT_FALSE(parser->badPkt());
  EXPECT_EQ(bytesOf(parser->pkt()), packet);
  return isValid;
}

bool isStatusServer(const PacketMaker& maker) {
  return isStatusServer(maker.make());
}

TEST(LegacyStatusServer, IsValidWithAMessageAuthenticatorAlone) {
  const CapturingSink trace;
  const auto parser = radiusPacketParserFactory(
      dictionary(), pktOf(PacketMaker(12).addMessageAuthenticator().make()));
  EXPECT_TRUE(parser->validateStatusServerPkt());
  EXPECT_EQ(trace.records(), Records());
}

TEST(LegacyStatusServer, IsInvalidWithoutAMessageAuthenticator) {
  const CapturingSink trace;
  const auto parser =
      radiusPacketParserFactory(dictionary(), pktOf(PacketMaker(12).add(classAttr, {1}).make()));
  EXPECT_FALSE(parser->validateStatusServerPkt());
  EXPECT_FALSE(radiusPacketParserFactory(dictionary(), pktOf(PacketMaker(12).make()))
                   ->validateStatusServerPkt());
  EXPECT_EQ(trace.records(), Records());
}

TEST(LegacyStatusServer, WithoutAMessageAuthenticatorLooksAtNothing) {
  const auto parser = radiusPacketParserBaseFactory(dictionary(), Ptr<Zonet::Pkt>());
  EXPECT_FALSE(parser->validateStatusServerPkt());
}

TEST(LegacyStatusServer, TakesTheChecksWordForTheMessageAuthenticator) {
  EXPECT_TRUE(isStatusServer(PacketMaker(12).add(classAttr, {1})));
  const LegacyPtr parser =
      uncheckedPacket(PacketMaker(12).addMessageAuthenticator().make(), dictionary());
  EXPECT_FALSE(parser->validateStatusServerPkt());
}

TEST(LegacyStatusServer, IsValidWithoutAttributes) {
  EXPECT_TRUE(isStatusServer(PacketMaker(12)));
  for (const std::size_t length : {0U, 19U, 20U}) {
    EXPECT_TRUE(isStatusServer(withLength(PacketMaker(12).add(1, {'a'}).make(), length)));
  }
}

TEST(LegacyStatusServer, IsInvalidWithAForbiddenAttributeAnywhere) {
  for (const U8 type : forbidden) {
    SCOPED_TRACE(int{type});
    EXPECT_FALSE(isStatusServer(PacketMaker(12).add(type, {1})));
    EXPECT_FALSE(isStatusServer(PacketMaker(12).add(type, {}).addMessageAuthenticator()));
    EXPECT_FALSE(isStatusServer(PacketMaker(12).addMessageAuthenticator().add(type, {1})));
    EXPECT_FALSE(
        isStatusServer(PacketMaker(12).add(4, {1}).add(type, {1}).addMessageAuthenticator()));
  }
}

TEST(LegacyStatusServer, IsValidWithEveryOtherAttribute) {
  PacketMaker all(12);
  for (U32 number = 0; number < 256; ++number) {
    const auto type = static_cast<U8>(number);
    if (std::ranges::find(forbidden, type) == forbidden.end()) {
      EXPECT_TRUE(isStatusServer(PacketMaker(12).add(type, {1}))) << number;
      all.add(type, {1});
    }
  }
  EXPECT_TRUE(isStatusServer(all));
}

TEST(LegacyStatusServer, TakesNoVendorsAttributeForAForbiddenOne) {
  for (const U8 type : forbidden) {
    EXPECT_TRUE(isStatusServer(PacketMaker(12).addVendor(vendor, type, {type, 3, type})));
    EXPECT_TRUE(isStatusServer(PacketMaker(12).add(classAttr, {type, 3, type})));
  }
}

TEST(LegacyStatusServer, LooksAtNothingBehindTheLength) {
  ByteVector packet = PacketMaker(12).add(classAttr, {1}).make();
  packet.insert(packet.end(), {1, 3, 'a'});
  EXPECT_TRUE(isStatusServer(packet));
}

TEST(LegacyStatusServer, IsValidWhenTheLastAttributeGoesBeyondTheLength) {
  for (const U8 length : {U8{3}, U8{4}, U8{255}}) {
    EXPECT_TRUE(isStatusServer(PacketMaker(12).addRaw({classAttr, length, 1})));
  }
}

// The length byte is then the next type, which is User-Name's.
TEST(LegacyStatusServer, IsInvalidWhenALengthByteIsOne) {
  EXPECT_FALSE(isStatusServer(PacketMaker(12).addRaw({classAttr, 1, 4, 2})));
}

TEST(LegacyStatusServer, IsInvalidWhenALengthByteIsZero) {
  EXPECT_FALSE(isStatusServer(PacketMaker(12).addRaw({classAttr, 0})));
  EXPECT_FALSE(isStatusServer(PacketMaker(12).addMessageAuthenticator().addRaw({0, 0, 0, 0})));
  EXPECT_FALSE(isStatusServer(PacketMaker(12).addRaw({classAttr})));
}

TEST(LegacyStatusServer, IsInvalidWhenTheLengthFieldGoesBehindTheBuffer) {
  EXPECT_FALSE(isStatusServer(withLength(PacketMaker(12).make(), 4096)));
  EXPECT_FALSE(isStatusServer(withLength(PacketMaker(12).make(), 65535)));
  EXPECT_TRUE(isStatusServer(withLength(PacketMaker(12).addRaw({classAttr, 255}).make(), 275)));
}

}  // namespace
}  // namespace RadiusPacketParser
