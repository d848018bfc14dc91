#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Walk.h"

namespace {

using RadiusPacketParser::RadiusAttributeType;
using namespace RadiusPktParserBase;
using TestSupport::ByteVector;
using TestSupport::countingBytes;
using TestSupport::DataType;
using TestSupport::DictionaryMaker;
using TestSupport::Flags;
using TestSupport::joined;
using TestSupport::PacketMaker;
using TestSupport::Records;
using TestSupport::Walked;
using TestSupport::walkRecord;
using Verda::U32;
using Verda::U8;

constexpr U8 code = 200;
constexpr U32 vendorId = 32473;
constexpr U8 vendorType = 7;

/// Walks a response that holds one standard attribute of that data type.
Walked walkStandard(DataType dataType, Flags flags, const ByteVector& value) {
  return TestSupport::walk(PacketMaker(2).add(code, value).make(), TestSupport::testReqAuth,
                           DictionaryMaker().add(code, dataType, flags).make());
}

/// The same as a vendor's sub-attribute.
Walked walkVendor(DataType dataType, Flags flags, const ByteVector& value) {
  return TestSupport::walk(
      PacketMaker(2).addVendor(vendorId, vendorType, value).make(), TestSupport::testReqAuth,
      DictionaryMaker().addVendor(vendorId, vendorType, dataType, flags).make());
}

/// What an attribute of that type must be decoded to.
void expectDecoded(const Walked& walked, const Attribute& key, DataType dataType, Flags flags,
                   const AttrValue& value) {
  EXPECT_EQ(walked.result, ErrorMsg::success);
  EXPECT_TRUE(walked.packetUnchanged);
  ASSERT_EQ(walked.received.size(), 1U);
  EXPECT_EQ(walked.received.at(0).key, key);
  EXPECT_EQ(walked.received.at(0).value.index(), value.index());
  EXPECT_EQ(walked.received.at(0).value, value);
  AttrInfo info;
  info.isInDict = true;
  info.isTagged = flags.tag;
  info.isConcat = flags.concat;
  info.encryptionType = flags.encrypt;
  info.attributeType = dataType;
  EXPECT_EQ(walked.received.at(0).info, info);
}

void expectBothDecoded(DataType dataType, Flags flags, const ByteVector& wire,
                       const AttrValue& value, const Records& records = {}) {
  const Walked standard = walkStandard(dataType, flags, wire);
  expectDecoded(standard, standardAttribute(code), dataType, flags, value);
  EXPECT_EQ(standard.records, records);
  const Walked vendor = walkVendor(dataType, flags, wire);
  expectDecoded(vendor, vendorAttribute(vendorId, vendorType), dataType, flags, value);
  EXPECT_EQ(vendor.records, records);
}

void expectRefused(const Walked& walked, ErrorMsg error, const std::string& text) {
  EXPECT_EQ(walked.result, error);
  EXPECT_EQ(walked.records, (Records{walkRecord(text)}));
  EXPECT_TRUE(walked.received.empty());
  EXPECT_TRUE(walked.packetUnchanged);
}

/// Refused as a standard and as a vendor attribute, with a message that names the key.
void expectBothRefused(DataType dataType, Flags flags, const ByteVector& wire,
                       const std::string& tail) {
  expectRefused(walkStandard(dataType, flags, wire), ErrorMsg::invalidAttrLength,
                "Attribute: 200, VendorId: 0, VendorAttrId: 0, " + tail);
  expectRefused(walkVendor(dataType, flags, wire), ErrorMsg::invalidAttrLength,
                "Attribute: 26, VendorId: 32473, VendorAttrId: 7, " + tail);
}

Zonet::IpGenPrefix address(const char* text) {
  return Zonet::IpGenPrefix(Zonet::IpGenAddr(Verda::String(text)));
}

Verda::String textOf(const ByteVector& bytes) {
  return Verda::String(std::span<const U8>(bytes));
}

/// A data type of fixed length, with the name that its messages give it.
struct FixedLengthType {
  DataType dataType;
  Flags flags;
  const char* name;
  std::size_t length;
};

const std::vector<FixedLengthType> fixedLengthTypes{
    {RadiusAttributeType::ipaddr, {}, "Ipaddr", 4},
    {RadiusAttributeType::date, {}, "Date", 4},
    {RadiusAttributeType::date, {.tag = true}, "Date", 4},
    {RadiusAttributeType::integer, {}, "Integer", 4},
    {RadiusAttributeType::integer, {.tag = true}, "Integer", 4},
    {RadiusAttributeType::ipv6addr, {}, "Ipv6addr", 16},
    {RadiusAttributeType::ifid, {}, "Ifid", 8},
    {RadiusAttributeType::integer64, {}, "Integer64", 8},
};

TEST(ValueDecoding, RefusesEveryLengthButTheOneOfAFixedLengthType) {
  for (const FixedLengthType& row : fixedLengthTypes) {
    SCOPED_TRACE(row.name);
    for (std::size_t length = 0; length <= 20; ++length) {
      SCOPED_TRACE(length);
      const ByteVector wire = countingBytes(length, 0x20);
      if (length == row.length) {
        EXPECT_EQ(walkStandard(row.dataType, row.flags, wire).result, ErrorMsg::success);
        EXPECT_EQ(walkVendor(row.dataType, row.flags, wire).result, ErrorMsg::success);
        continue;
      }
      expectBothRefused(
          row.dataType, row.flags, wire,
          "Data Type: " + std::string(row.name) + ", Invalid length: " + std::to_string(length));
    }
  }
}

TEST(ValueDecoding, RefusesTheLongestValueOfAFixedLengthType) {
  for (const FixedLengthType& row : fixedLengthTypes) {
    expectRefused(
        walkStandard(row.dataType, row.flags, ByteVector(253)), ErrorMsg::invalidAttrLength,
        "Attribute: 200, VendorId: 0, VendorAttrId: 0, Data Type: " + std::string(row.name) +
            ", Invalid length: 253");
    expectRefused(walkVendor(row.dataType, row.flags, ByteVector(247)), ErrorMsg::invalidAttrLength,
                  "Attribute: 26, VendorId: 32473, VendorAttrId: 7, Data Type: " +
                      std::string(row.name) + ", Invalid length: 247");
  }
}

TEST(ValueDecoding, GivesATextOfAnyLength) {
  for (std::size_t length : {0U, 1U, 2U, 31U, 32U, 246U, 247U}) {
    const ByteVector wire = countingBytes(length);  // a zero byte first
    expectBothDecoded(RadiusAttributeType::string, {}, wire, textOf(wire));
  }
  const ByteVector longest = countingBytes(253);
  expectDecoded(walkStandard(RadiusAttributeType::string, {}, longest), standardAttribute(code),
                RadiusAttributeType::string, {}, textOf(longest));
}

TEST(ValueDecoding, KeepsTheTagByteInATaggedText) {
  for (std::size_t length : {1U, 2U, 32U, 247U}) {
    const ByteVector wire = countingBytes(length, 1);
    expectBothDecoded(RadiusAttributeType::string, {.tag = true}, wire,
                      TaggedStr{.str = textOf(wire), .tag = 0});
  }
}

TEST(ValueDecoding, RefusesATaggedTextWithoutItsTagByte) {
  const std::string text = "Invalid attribute length: 2, tag byte missing";
  expectRefused(walkStandard(RadiusAttributeType::string, {.tag = true}, {}),
                ErrorMsg::tagByteMissing, text);
  expectRefused(walkVendor(RadiusAttributeType::string, {.tag = true}, {}),
                ErrorMsg::tagByteMissing, text);
}

TEST(ValueDecoding, GivesOctetsOfAnyLengthTaggedOrNot) {
  for (std::size_t length : {0U, 1U, 31U, 32U, 247U}) {
    for (bool tag : {false, true}) {
      const ByteVector wire = countingBytes(length);
      expectBothDecoded(RadiusAttributeType::octets, {.tag = tag}, wire,
                        TestSupport::verdaBytes(wire));
    }
  }
}

TEST(ValueDecoding, GivesAnIp4AddressAsAPrefixOf32) {
  expectBothDecoded(RadiusAttributeType::ipaddr, {}, {192, 0, 2, 1}, address("192.0.2.1"));
  expectBothDecoded(RadiusAttributeType::ipaddr, {}, {0, 0, 0, 0}, address("0.0.0.0"));
  expectBothDecoded(RadiusAttributeType::ipaddr, {}, {255, 255, 255, 255},
                    address("255.255.255.255"));
  EXPECT_EQ(address("192.0.2.1").prefixLength(), 32);
}

TEST(ValueDecoding, GivesADateInHostOrderTaggedOrNot) {
  for (bool tag : {false, true}) {
    expectBothDecoded(RadiusAttributeType::date, {.tag = tag}, {0x01, 0x02, 0x03, 0x04},
                      0x01020304U);
  }
}

TEST(ValueDecoding, GivesAnIntegerInHostOrder) {
  expectBothDecoded(RadiusAttributeType::integer, {}, {0x01, 0x02, 0x03, 0x04}, 0x01020304U);
  expectBothDecoded(RadiusAttributeType::integer, {}, {0, 0, 0, 0}, 0U);
  expectBothDecoded(RadiusAttributeType::integer, {}, {255, 255, 255, 255}, 4294967295U);
}

TEST(ValueDecoding, KeepsTheTagByteInATaggedInteger) {
  expectBothDecoded(RadiusAttributeType::integer, {.tag = true}, {0x1f, 0x02, 0x03, 0x04},
                    TaggedInt{.value = 0x1f020304, .tag = 0});
}

TEST(ValueDecoding, GivesAnIp6AddressAsAPrefixOf128) {
  expectBothDecoded(RadiusAttributeType::ipv6addr, {},
                    {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1},
                    address("2001:db8::1"));
  expectBothDecoded(RadiusAttributeType::ipv6addr, {}, ByteVector(16), address("::"));
  EXPECT_EQ(address("::").prefixLength(), 128);
}

TEST(ValueDecoding, GivesAMappedIp4AddressAsAnIp6Address) {
  const ByteVector mapped{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff, 192, 0, 2, 1};
  const Walked walked = walkStandard(RadiusAttributeType::ipv6addr, {}, mapped);
  ASSERT_EQ(walked.received.size(), 1U);
  const auto& prefix = std::get<Zonet::IpGenPrefix>(walked.received.at(0).value);
  EXPECT_TRUE(prefix.address().isIp6());
  EXPECT_EQ(prefix.prefixLength(), 128);
}

TEST(ValueDecoding, GivesAnInterfaceIdAsTheLowHalfOfAnIp6Address) {
  expectBothDecoded(RadiusAttributeType::ifid, {}, {0x02, 0x00, 0x5e, 0xff, 0xfe, 0x00, 0x53, 0x01},
                    address("::200:5eff:fe00:5301"));
  expectBothDecoded(RadiusAttributeType::ifid, {}, ByteVector(8), address("::"));
  expectBothDecoded(RadiusAttributeType::ifid, {}, ByteVector(8, 0xff),
                    address("::ffff:ffff:ffff:ffff"));
}

TEST(ValueDecoding, GivesTheEightBytesOfAnInteger64InHostMemoryOrder) {
  const ByteVector wire{0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08};
  unsigned long number = 0;
  std::memcpy(&number, wire.data(), wire.size());
  expectBothDecoded(RadiusAttributeType::integer64, {}, wire, number);
}

// ---- ipv6prefix ----

/// A prefix value: the reserved byte, the prefix length, and `count` prefix bytes.
ByteVector prefixValue(U8 prefixLength, std::size_t count) {
  return joined({ByteVector{0, prefixLength}, ByteVector(count, 0xfe)});
}

TEST(Ip6PrefixDecoding, FillsUpThePrefixBytesWithZeros) {
  for (std::size_t count = 0; count <= 16; ++count) {
    SCOPED_TRACE(count);
    ByteVector bytes(count, 0xfe);
    bytes.resize(16);
    const Zonet::Ip6Addr expected(std::span<const U8, 16>(bytes.data(), 16));
    expectBothDecoded(RadiusAttributeType::ipv6prefix, {}, prefixValue(64, count),
                      Zonet::IpGenPrefix(Zonet::IpGenAddr(expected)));
  }
}

TEST(Ip6PrefixDecoding, GivesTheZeroAddressForLengthFour) {
  expectBothDecoded(RadiusAttributeType::ipv6prefix, {}, {0, 0}, address("::"));
}

TEST(Ip6PrefixDecoding, ChecksThePrefixLengthAndDoesNotCarryIt) {
  for (U32 prefixLength = 0; prefixLength < 256; ++prefixLength) {
    SCOPED_TRACE(prefixLength);
    const ByteVector wire = prefixValue(static_cast<U8>(prefixLength), 2);
    if (prefixLength <= 128) {
      const Walked walked = walkStandard(RadiusAttributeType::ipv6prefix, {}, wire);
      ASSERT_EQ(walked.received.size(), 1U);
      EXPECT_EQ(std::get<Zonet::IpGenPrefix>(walked.received.at(0).value), address("fefe::"));
      EXPECT_EQ(std::get<Zonet::IpGenPrefix>(walked.received.at(0).value).prefixLength(), 128);
    } else {
      expectBothRefused(
          RadiusAttributeType::ipv6prefix, {}, wire,
          "Data Type: Ipv6Prefix, Invalid prefix length: " + std::to_string(prefixLength));
    }
  }
}

TEST(Ip6PrefixDecoding, TakesAnyReservedByte) {
  expectBothDecoded(RadiusAttributeType::ipv6prefix, {}, {0xff, 8, 0x20}, address("2000::"));
}

TEST(Ip6PrefixDecoding, KeepsTheBitsBehindThePrefixLength) {
  expectBothDecoded(RadiusAttributeType::ipv6prefix, {}, {0, 0, 0x20, 0x01}, address("2001::"));
}

TEST(Ip6PrefixDecoding, RefusesLengthTwoAndThree) {
  expectBothRefused(RadiusAttributeType::ipv6prefix, {}, {},
                    "Data Type: Ipv6Prefix, Invalid length: 0");
  expectBothRefused(RadiusAttributeType::ipv6prefix, {}, {0},
                    "Data Type: Ipv6Prefix, Invalid length: 1");
}

TEST(Ip6PrefixDecoding, RefusesMoreThanSixteenPrefixBytes) {
  for (std::size_t count : {17U, 18U, 100U}) {
    expectBothRefused(RadiusAttributeType::ipv6prefix, {}, prefixValue(64, count),
                      "Data Type: Ipv6Prefix, Invalid length: " + std::to_string(count + 2));
  }
}

TEST(Ip6PrefixDecoding, LooksAtTheLengthBeforeThePrefixLength) {
  expectBothRefused(RadiusAttributeType::ipv6prefix, {}, prefixValue(129, 17),
                    "Data Type: Ipv6Prefix, Invalid length: 19");
}

// ---- Values of no known type ----

TEST(UnknownTypes, GiveTheirBytesWithATraceThatIsNoFault) {
  const Records records{walkRecord("Unknown attribute type, storing it as bytes")};
  for (U32 number : {0U, 10U, 11U, 255U}) {
    for (std::size_t length : {0U, 1U, 32U}) {
      const ByteVector wire = countingBytes(length);
      expectBothDecoded(static_cast<DataType>(number), {}, wire, TestSupport::verdaBytes(wire),
                        records);
    }
  }
}

TEST(UnknownTypes, AreOnlyBytesWhenTaggedToo) {
  expectBothDecoded(RadiusAttributeType::unknown, {.tag = true}, {}, Verda::Bytes(),
                    {walkRecord("Unknown attribute type, storing it as bytes")});
}

// ---- Hidden values ----

TEST(HiddenDecoding, DecodesARevealedValueByItsType) {
  // Hidden as a value of part of a block, so that any type can be hidden.
  const ByteVector wire =
      TestSupport::hidden(ByteVector{192, 0, 2, 1}, TestSupport::bytesOf(TestSupport::testSecret),
                          TestSupport::testReqAuth);
  expectBothDecoded(RadiusAttributeType::ipaddr, {.encrypt = 1}, wire, address("192.0.2.1"));
}

TEST(HiddenDecoding, KeepsTagAndSaltAndPaddingInTheValue) {
  const ByteVector plain = joined({ByteVector{3, 'k', 'e', 'y'}, ByteVector(12)});
  const ByteVector saltBytes{0x80, 0x01};
  const ByteVector hidden = TestSupport::hidden(
      plain, TestSupport::bytesOf(TestSupport::testSecret), TestSupport::testReqAuth, saltBytes);
  expectBothDecoded(RadiusAttributeType::string, {.tag = true, .encrypt = 2},
                    joined({ByteVector{1}, saltBytes, hidden}),
                    TaggedStr{.str = textOf(joined({ByteVector{1}, saltBytes, plain})), .tag = 0});
}

TEST(HiddenDecoding, LeavesAMethodThatItDoesNotApplyHidden) {
  const ByteVector wire = countingBytes(16);
  expectBothDecoded(RadiusAttributeType::octets, {.encrypt = 3}, wire,
                    TestSupport::verdaBytes(wire));
}

TEST(HiddenDecoding, RevealsARequestUnderItsOwnAuthenticator) {
  const ByteVector own = countingBytes(16, 0x77);
  const ByteVector plain = joined({TestSupport::bytesOf("arctangent"), ByteVector(6)});
  const ByteVector wire =
      TestSupport::hidden(plain, TestSupport::bytesOf(TestSupport::testSecret), own);
  const Walked walked = TestSupport::walk(
      PacketMaker(1).ownAuthenticatorIs(own).add(2, wire).make(), {},
      DictionaryMaker().add(2, RadiusAttributeType::string, {.encrypt = 1}).make());
  expectDecoded(walked, standardAttribute(2), RadiusAttributeType::string, {.encrypt = 1},
                textOf(plain));
}

}  // namespace
