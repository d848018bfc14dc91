#include "RadiusPacketParser/RadiusPacketParser.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "Zonet/AddressTextError.h"

#include "tests/support/Hex.h"
#include "tests/support/LegacyPacket.h"
#include "tests/support/LegacyTexts.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/ThrownText.h"

namespace {

using namespace RadiusPacketParser;
using TestSupport::attributeBytes;
using TestSupport::bytesOf;
using TestSupport::ByteVector;
using TestSupport::checkedPacket;
using TestSupport::countingBytes;
using TestSupport::DictPtr;
using TestSupport::fromHex;
using TestSupport::joined;
using TestSupport::legacyHelperRecord;
using TestSupport::LegacyPtr;
using TestSupport::legacyRecord;
using TestSupport::Outcome;
using TestSupport::outcomeOf;
using TestSupport::PacketMaker;
using TestSupport::thrownText;
using TestSupport::uncheckedPacket;
using TestSupport::vendorBytes;
using TestSupport::withAttributes;
using TestSupport::withLength;
using Verda::U16;
using Verda::U32;
using Verda::U8;
namespace LegacyTexts = TestSupport::LegacyTexts;

constexpr U8 userName = 1;
constexpr U8 userPassword = 2;
constexpr U8 nasIpAddress = 4;
constexpr U8 nasPort = 5;
constexpr U8 classType = 25;
constexpr U8 vendorSpecific = 26;
constexpr U8 calledStationId = 30;
constexpr U8 callingStationId = 31;
constexpr U8 nasIdentifier = 32;
constexpr U8 eventTimestamp = 55;
constexpr U8 eapMessage = 79;
constexpr U8 messageAuthenticator = 80;
constexpr U8 nasIp6Address = 95;
constexpr U8 framedInterfaceId = 96;
constexpr U8 framedIp6Prefix = 97;
constexpr U8 of64Bits = 200;
constexpr U8 unknownType = 250;

constexpr U32 vendor = 9;
constexpr U8 vendorString = 1;
constexpr U8 vendorOctets = 2;
constexpr U8 vendorInteger = 3;

constexpr std::size_t headerLength = 20;
constexpr std::size_t maxLength = 4096;

const ByteVector zeroMessageAuthenticator = attributeBytes(messageAuthenticator, ByteVector(16));

DictPtr makeDictionary() {
  using Type = RadiusAttributeType;
  TestSupport::DictionaryMaker maker;
  maker.add(userName, Type::string)
      .add(userPassword, Type::string, {.encrypt = 1})
      .add(nasIpAddress, Type::ipaddr)
      .add(nasPort, Type::integer)
      .add(classType, Type::octets)
      .add(vendorSpecific, Type::octets)
      .add(eventTimestamp, Type::date)
      .add(eapMessage, Type::octets, {.concat = true})
      .add(messageAuthenticator, Type::octets)
      .add(nasIp6Address, Type::ipv6addr)
      .add(framedInterfaceId, Type::ifid)
      .add(framedIp6Prefix, Type::ipv6prefix)
      .add(of64Bits, Type::integer64);
  maker.addVendor(vendor, vendorString, Type::string)
      .addVendor(vendor, vendorOctets, Type::octets)
      .addVendor(vendor, vendorInteger, Type::integer);
  // The types that a vendor's attribute may not have are numbered by themselves, from 100.
  for (const auto type :
       {Type::ipaddr, Type::date, Type::ipv6addr, Type::ipv6prefix, Type::ifid, Type::integer64}) {
    maker.addVendor(vendor, static_cast<U8>(100 + type), type);
  }
  return maker.make();
}

const DictPtr dictionary = makeDictionary();

/// Attributes that fill exactly so many bytes.
ByteVector filler(std::size_t length) {
  ByteVector attributes;
  while (length > 0) {
    const std::size_t next = length > 256 ? 255 : std::min<std::size_t>(length, 254);
    attributes = joined({attributes, attributeBytes(classType, ByteVector(next - 2, 0xcc))});
    length -= next;
  }
  return attributes;
}

/// An Access-Request of exactly so many bytes.
ByteVector packetOfLength(std::size_t length) {
  return PacketMaker(1).addRaw(filler(length - headerLength)).make();
}

std::string textOf(std::size_t length) {
  return std::string(length, 't');
}

using Edit = Verda::Ptr<Zonet::Pkt> (RadiusPacketParserBase::*)();
constexpr Edit setting = &RadiusPacketParserBase::setValuesOfAttributesFromAttributesToSet;
constexpr Edit adding = &RadiusPacketParserBase::addAttribute;
constexpr Edit removing = &RadiusPacketParserBase::removeAttribute;

const std::string set = "setValuesOfAttributesFromAttributesToSet";
const std::string add = "addAttribute";
const std::string remove = "removeAttribute";

struct Edited {
  ByteVector packet;  ///< empty when an assertion ended the edit
  Outcome outcome;
};

/// Edits, and expects the object's own packet and header to stay as they are.
Edited editAloud(RadiusPacketParserBase& parser, Edit operation) {
  const Verda::Ptr<Zonet::Pkt> pkt = parser.pkt();
  const Verda::Ptr<RadiusHdr> header = parser.header();
  const ByteVector before = bytesOf(pkt);
  const U16 length = header->length();
  Edited edited;
  edited.outcome = outcomeOf([&] {
    const Verda::Ptr<Zonet::Pkt> made = (parser.*operation)();
    EXPECT_NE(made, pkt);
    edited.packet = bytesOf(made);
  });
  EXPECT_EQ(parser.pkt(), pkt);
  EXPECT_EQ(parser.header(), header);
  EXPECT_EQ(header->length(), length);
  EXPECT_EQ(bytesOf(pkt), before);
  return edited;
}

/// Edits with nothing to say, and returns the new packet.
ByteVector edit(RadiusPacketParserBase& parser, Edit operation) {
  Edited edited = editAloud(parser, operation);
  EXPECT_EQ(edited.outcome, Outcome());
  return std::move(edited.packet);
}

/// What stands behind a packet's header.
ByteVector attributesIn(const ByteVector& packet) {
  return {packet.begin() + headerLength, packet.end()};
}

/// The packet with one standard attribute more.
ByteVector withAdded(const ByteVector& packet, U8 code, const std::string& text) {
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->attributesToAddIs(code, text);
  return edit(*parser, adding);
}

/// What the addition of one standard attribute writes.
ByteVector addedBytes(U8 code, const std::string& text) {
  return attributesIn(withAdded(PacketMaker(1).make(), code, text));
}

/// How the addition of one standard attribute goes wrong.
Outcome failedAddition(U8 code, const std::string& text) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).make(), dictionary);
  parser->attributesToAddIs(code, text);
  const Edited edited = editAloud(*parser, adding);
  EXPECT_TRUE(edited.packet.empty());
  return edited.outcome;
}

ByteVector addedVsa(U8 code, const std::string& value) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).make(), dictionary);
  parser->vsaToAddIs(0, VsaValueType(vendor, code, value));
  const ByteVector packet = edit(*parser, adding);
  return attributesIn(packet);
}

Outcome failedVsa(U32 vendorId, U8 code, const std::string& value) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).make(), dictionary);
  parser->vsaToAddIs(0, VsaValueType(vendorId, code, value));
  const Edited edited = editAloud(*parser, adding);
  EXPECT_TRUE(edited.packet.empty());
  return edited.outcome;
}

/// What stands in the place of the attributes after one standard attribute of them was set.
ByteVector setBytes(const ByteVector& attributes, U8 code, const std::string& text) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).addRaw(attributes).make(), dictionary);
  parser->attributesToSetIs(code, text);
  const ByteVector packet = edit(*parser, setting);
  return attributesIn(packet);
}

/// The packet's attributes in hex digits, sorted. Throws where a length byte is wrong.
std::vector<std::string> sortedAttributes(const ByteVector& packet) {
  std::vector<std::string> attributes;
  for (std::size_t at = headerLength; at < packet.size();) {
    const std::size_t length = packet.at(at + 1);
    if (length < 2 || length > packet.size() - at) {
      throw std::logic_error(fmt::format("a length byte of {} at {}", length, at));
    }
    attributes.push_back(TestSupport::toHex(std::span(packet).subspan(at, length)));
    at += length;
  }
  std::ranges::sort(attributes);
  return attributes;
}

// ---- One attribute from a text ----

/// A block with a writer's mark in it, to see what was written.
ByteVector marked(std::size_t length) {
  return ByteVector(length, 0xee);
}

TEST(AddStrOctetTypes, WritesAStandardAttributeAndNothingBehindIt) {
  ByteVector block = marked(6);
  addStrOctetTypes(block.data(), 7, "abc", false);
  EXPECT_EQ(block, fromHex("07 05 61 62 63 ee"));
}

TEST(AddStrOctetTypes, WritesASubAttributeBehindTheHeadAndNotTheHead) {
  ByteVector block = marked(12);
  addStrOctetTypes(block.data(), 7, "abc", true);
  EXPECT_EQ(block, fromHex("eeeeeeeeeeee 07 05 61 62 63 ee"));
}

TEST(AddStrOctetTypes, WritesAnEmptyTextAsAHeadAlone) {
  ByteVector block = marked(2);
  addStrOctetTypes(block.data(), 7, "", false);
  EXPECT_EQ(block, fromHex("07 02"));
  block = marked(8);
  addStrOctetTypes(block.data(), 7, "", true);
  EXPECT_EQ(block, fromHex("eeeeeeeeeeee 07 02"));
}

TEST(AddStrOctetTypes, WritesAnyByteUnchanged) {
  const ByteVector text = countingBytes(253, 0xf0);
  ByteVector block = marked(255);
  addStrOctetTypes(block.data(), 7, Verda::String(std::span(text)), false);
  EXPECT_EQ(block, attributeBytes(7, text));
}

TEST(AddStrOctetTypes, WritesTheLongestSubAttribute) {
  ByteVector block = marked(261);
  addStrOctetTypes(block.data(), 7, textOf(253), true);
  EXPECT_EQ(block, joined({marked(6), attributeBytes(7, bytesOf(textOf(253)))}));
}

TEST(AddStrOctetTypes, ATextOf254BytesIsTracedAndFailsItsAssertion) {
  for (const std::size_t length : {254U, 255U, 256U, 70000U}) {
    for (const bool isVsa : {false, true}) {
      ByteVector block = marked(8);
      const std::string text = textOf(length);
      EXPECT_EQ(outcomeOf([&] { addStrOctetTypes(block.data(), 7, text, isVsa); }),
                (Outcome{{legacyHelperRecord(
                             "addStrOctetTypes",
                             "Attribute addition failed for attrId: 7, attrValue: " + text)},
                         LegacyTexts::textTooLong}));
    }
  }
}

TEST(AddStrOctetTypes, FailsTheAssertionWithTraceOffToo) {
  ByteVector block = marked(8);
  EXPECT_EQ(
      outcomeOf([&] { addStrOctetTypes(block.data(), 7, textOf(254), false); }, Verda::traceOff),
      (Outcome{{}, LegacyTexts::textTooLong}));
}

struct NumberCase {
  const char* name;
  std::string text;
  const char* value;
};

const NumberCase numbers[] = {
    {"decimal", "3600", "00000e10"},
    {"hexadecimal", "0x10", "00000010"},
    {"hexadecimal in capitals", "0XFF", "000000ff"},
    {"octal", "010", "00000008"},
    {"zero", "0", "00000000"},
    {"plus sign", "+5", "00000005"},
    {"minus sign", "-1", "ffffffff"},
    {"space in front", " \t7", "00000007"},
    {"space behind", "7 8", "00000007"},
    {"empty", "", "00000000"},
    {"no number", "abc", "00000000"},
    {"a number and more", "12abc", "0000000c"},
    {"no octal digit", "08", "00000000"},
    {"no hexadecimal digit", "0xg", "00000000"},
    {"zero byte inside", std::string("1\0002", 3), "00000001"},
    {"largest of 32 bits", "4294967295", "ffffffff"},
    {"one more", "4294967296", "00000000"},
    {"low bits of many", "0x123456789abcdef0", "9abcdef0"},
    {"beyond 64 bits", "99999999999999999999", "ffffffff"},
    {"beyond 64 bits, negative", "-99999999999999999999", "00000000"},
};

TEST(AddIntegerDateTypes, ReadsTheTextAsStrtollDoesAndKeeps32Bits) {
  for (const NumberCase& one : numbers) {
    SCOPED_TRACE(one.name);
    ByteVector block = marked(7);
    EXPECT_EQ(outcomeOf([&] { addIntegerDateTypes(block.data(), 7, one.text, false); }), Outcome());
    EXPECT_EQ(block, joined({fromHex("07 06"), fromHex(one.value), marked(1)}));
  }
}

TEST(AddIntegerDateTypes, WritesASubAttributeBehindTheHeadAndNotTheHead) {
  for (const NumberCase& one : numbers) {
    SCOPED_TRACE(one.name);
    ByteVector block = marked(13);
    EXPECT_EQ(outcomeOf([&] { addIntegerDateTypes(block.data(), 7, one.text, true); }), Outcome());
    EXPECT_EQ(block, joined({marked(6), fromHex("07 06"), fromHex(one.value), marked(1)}));
  }
}

// ---- Adding: what stays ----

TEST(AddAttribute, WithNothingToAddCopiesThePacket) {
  const ByteVector packet = PacketMaker(1)
                                .add(userName, bytesOf("alice"))
                                .addVendor(vendor, vendorString, bytesOf("v"))
                                .addVendor(77, 1, bytesOf("stranger"))
                                .add(unknownType, countingBytes(9))
                                .add(classType, {})
                                .make();
  EXPECT_EQ(edit(*checkedPacket(packet, dictionary), adding), packet);
}

TEST(AddAttribute, ToAPacketWithoutAttributesGivesTheAttributeAlone) {
  const ByteVector packet = PacketMaker(1).make();
  EXPECT_EQ(edit(*checkedPacket(packet, dictionary), adding), packet);
  EXPECT_EQ(withAdded(packet, userName, "bob"),
            withAttributes(packet, attributeBytes(userName, bytesOf("bob"))));
}

TEST(AddAttribute, AppendsBehindTheOldAttributes) {
  const ByteVector old = attributeBytes(userName, bytesOf("alice"));
  const ByteVector packet = PacketMaker(1).addRaw(old).make();
  EXPECT_EQ(withAdded(packet, userName, "bob"),
            withAttributes(packet, joined({old, attributeBytes(userName, bytesOf("bob"))})));
}

TEST(AddAttribute, LeavesOutWhatStandsBehindTheLength) {
  const ByteVector packet = PacketMaker(1).add(userName, bytesOf("alice")).make();
  const ByteVector padded = joined({packet, ByteVector(9, 0xdd)});
  EXPECT_EQ(edit(*checkedPacket(padded, dictionary), adding), packet);
}

TEST(AddAttribute, TakesTheHeaderFromThePacketAndNotFromTheEntity) {
  const ByteVector packet = PacketMaker(1).add(userName, bytesOf("alice")).make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->header()->codeIs(2);
  parser->header()->idIs(99);
  parser->header()->authenticatorIs("0123456789abcdef");
  EXPECT_EQ(edit(*parser, adding), packet);
}

TEST(AddAttribute, KeepsTheRequestsForAdditionButThatOfTheMessageAuthenticator) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).make(), dictionary);
  parser->attributesToAddIs(userName, "alice");
  parser->attributesToAddIs(messageAuthenticator, "anything");
  parser->vsaToAddIs(0, VsaValueType(vendor, vendorString, "v"));
  const ByteVector once = edit(*parser, adding);
  EXPECT_EQ(parser->attributesToAddGet(userName), Verda::String("alice"));
  EXPECT_FALSE(parser->attributesToAddHas(messageAuthenticator));
  EXPECT_TRUE(parser->vsaToAddHas(0));
  EXPECT_EQ(once.size(), headerLength + 18 + 7 + 9);
  EXPECT_EQ(edit(*parser, adding).size(), headerLength + 7 + 9);
}

TEST(AddAttribute, MarksNothingOnTheObject) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).make(), dictionary);
  parser->attributesToAddIs(messageAuthenticator, "");
  edit(*parser, adding);
  EXPECT_FALSE(parser->badPkt());
  EXPECT_FALSE(parser->msgAuthPresent());
}

// ---- Adding: the Message-Authenticator ----

TEST(AddAttribute, MovesTheMessageAuthenticatorToTheFrontAndZeroesIt) {
  const ByteVector front = attributeBytes(userName, bytesOf("alice"));
  const ByteVector back = attributeBytes(classType, bytesOf("c"));
  const ByteVector packet =
      PacketMaker(1).addRaw(front).addMessageAuthenticator().addRaw(back).make();
  EXPECT_EQ(edit(*checkedPacket(packet, dictionary), adding),
            withAttributes(packet, joined({zeroMessageAuthenticator, front, back})));
}

TEST(AddAttribute, LeavesOneMessageAuthenticatorOfSeveral) {
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  const ByteVector other = attributeBytes(messageAuthenticator, countingBytes(16, 0x70));
  const ByteVector packet =
      PacketMaker(1).addMessageAuthenticator().addRaw(other).addRaw(name).addRaw(other).make();
  EXPECT_EQ(edit(*checkedPacket(packet, dictionary), adding),
            withAttributes(packet, joined({zeroMessageAuthenticator, name})));
}

TEST(AddAttribute, InsertsARequestedMessageAuthenticatorAndForgetsTheRequest) {
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  const ByteVector packet = PacketMaker(1).addRaw(name).make();
  for (const std::string& text : {std::string("anything"), std::string(), textOf(300)}) {
    const LegacyPtr parser = checkedPacket(packet, dictionary);
    parser->attributesToAddIs(messageAuthenticator, text);
    EXPECT_EQ(edit(*parser, adding),
              withAttributes(packet, joined({zeroMessageAuthenticator, name})));
    EXPECT_FALSE(parser->attributesToAddHas(messageAuthenticator));
  }
}

TEST(AddAttribute, InsertsARequestedMessageAuthenticatorIntoAPacketWithoutAttributes) {
  const ByteVector packet = PacketMaker(1).make();
  EXPECT_EQ(withAdded(packet, messageAuthenticator, "x"),
            withAttributes(packet, zeroMessageAuthenticator));
}

TEST(AddAttribute, ARequestedMessageAuthenticatorDoesNotComeOnTopOfTheOldOne) {
  const ByteVector packet = PacketMaker(1).addMessageAuthenticator().make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->attributesToAddIs(messageAuthenticator, "x");
  EXPECT_EQ(edit(*parser, adding), withAttributes(packet, zeroMessageAuthenticator));
  EXPECT_FALSE(parser->attributesToAddHas(messageAuthenticator));
}

TEST(AddAttribute, ARequestedMessageAuthenticatorReplacesOneThatTheCheckDidNotSee) {
  const ByteVector packet = PacketMaker(1).addMessageAuthenticator().make();
  const LegacyPtr parser = uncheckedPacket(packet, dictionary);
  parser->attributesToAddIs(messageAuthenticator, "x");
  EXPECT_EQ(edit(*parser, adding), withAttributes(packet, zeroMessageAuthenticator));
}

TEST(AddAttribute, LeavesAMessageAuthenticatorThatTheCheckDidNotSeeWhereItIs) {
  const ByteVector packet = PacketMaker(1)
                                .add(userName, bytesOf("alice"))
                                .addMessageAuthenticator()
                                .add(classType, bytesOf("c"))
                                .make();
  EXPECT_EQ(edit(*uncheckedPacket(packet, dictionary), adding), packet);
}

TEST(AddAttribute, InsertsAMessageAuthenticatorWhereTheFlagSaysThatThereIsOne) {
  const ByteVector packet = PacketMaker(1).make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->msgAuthPresentIs(true);
  EXPECT_EQ(edit(*parser, adding), withAttributes(packet, zeroMessageAuthenticator));
}

// ---- Adding: standard attributes by data type ----

struct AddCase {
  const char* name;
  U8 code;
  std::string text;
  const char* bytes;
};

TEST(AddAttribute, WritesTheTextByTheDataType) {
  const AddCase cases[] = {
      {"string", userName, "alice", "01 07 616c696365"},
      {"string of any bytes", userName, std::string("\0\xff", 2), "01 04 00ff"},
      {"empty string", userName, "", "01 02"},
      {"octets", classType, "abc", "19 05 616263"},
      {"empty octets", classType, "", "19 02"},
      {"octets are not read as hexadecimal", classType, "0x00", "19 06 30783030"},
      {"integer", nasPort, "15", "05 06 0000000f"},
      {"integer in hexadecimal", nasPort, "0x10", "05 06 00000010"},
      {"integer of no digits", nasPort, "x", "05 06 00000000"},
      {"date", eventTimestamp, "1700000000", "37 06 6553f100"},
      {"ipaddr", nasIpAddress, "192.0.2.1", "04 06 c0000201"},
      {"ipv6addr", nasIp6Address, "2001:db8::1", "5f 12 20010db8000000000000000000000001"},
      {"ipv6prefix", framedIp6Prefix, "2001:db8::/32",
       "61 14 00 20 20010db8000000000000000000000000"},
      {"ipv6prefix keeps the bits behind the prefix", framedIp6Prefix, "2001:db8::f00/32",
       "61 14 00 20 20010db8000000000000000000000f00"},
      {"ipv6prefix of no bits", framedIp6Prefix, "::/0",
       "61 14 00 00 00000000000000000000000000000000"},
      {"ipv6prefix of all bits", framedIp6Prefix, "::1/128",
       "61 14 00 80 00000000000000000000000000000001"},
      {"ifid", framedInterfaceId, "0200:5eff:fe00:5301", "60 0a 02005efffe005301"},
      {"ifid of short groups", framedInterfaceId, "1:2:3:a", "60 0a 000100020003000a"},
      {"ifid ignores further groups", framedInterfaceId, "1:2:3:4:zz", "60 0a 0001000200030004"},
      {"ifid cuts its groups to 16 bits", framedInterfaceId, "12345:-1:3:4",
       "60 0a 2345ffff00030004"},
      {"ifid reads what stoi reads", framedInterfaceId, " 1:0xff:3g:4", "60 0a 000100ff00030004"},
  };
  for (const AddCase& one : cases) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(addedBytes(one.code, one.text), fromHex(one.bytes));
  }
}

TEST(AddAttribute, WritesEachOfSeveralAttributesOnce) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).make(), dictionary);
  parser->attributesToAddIs(userName, "alice");
  parser->attributesToAddIs(nasPort, "15");
  parser->attributesToAddIs(eapMessage, textOf(254));
  parser->attributesToAddIs(nasIpAddress, "192.0.2.1");
  const ByteVector all = joined({fromHex("01 07 616c696365 05 06 0000000f 04 06 c0000201"),
                                 attributeBytes(eapMessage, bytesOf(textOf(253))),
                                 attributeBytes(eapMessage, bytesOf("t"))});
  EXPECT_EQ(sortedAttributes(edit(*parser, adding)),
            sortedAttributes(joined({PacketMaker(1).make(), all})));
}

TEST(AddAttribute, WritesTheLongestString) {
  for (const U8 code : {userName, classType}) {
    EXPECT_EQ(addedBytes(code, textOf(253)), attributeBytes(code, bytesOf(textOf(253))));
  }
}

TEST(AddAttribute, AStringOf254BytesIsTracedAndFailsItsAssertion) {
  for (const std::size_t length : {254U, 255U, 300U, 10000U}) {
    const std::string text = textOf(length);
    EXPECT_EQ(failedAddition(userName, text),
              (Outcome{{legacyHelperRecord(
                           "addStrOctetTypes",
                           "Attribute addition failed for attrId: 1, attrValue: " + text)},
                       LegacyTexts::textTooLong}));
  }
}

TEST(AddAttribute, CutsALongValueOfAConcatAttributeIntoPieces) {
  const std::pair<std::size_t, std::vector<std::size_t>> cases[] = {
      {1, {1}},          {252, {252}},         {253, {253}},          {254, {253, 1}},
      {506, {253, 253}}, {507, {253, 253, 1}}, {600, {253, 253, 94}},
  };
  for (const auto& [length, pieces] : cases) {
    SCOPED_TRACE(length);
    const ByteVector text = countingBytes(length, 0x21);
    ByteVector expected;
    std::size_t at = 0;
    for (const std::size_t piece : pieces) {
      const auto begin = text.begin() + static_cast<std::ptrdiff_t>(at);
      expected =
          joined({expected,
                  attributeBytes(eapMessage,
                                 ByteVector(begin, begin + static_cast<std::ptrdiff_t>(piece)))});
      at += piece;
    }
    EXPECT_EQ(addedBytes(eapMessage, std::string(text.begin(), text.end())), expected);
  }
}

TEST(AddAttribute, AnEmptyConcatTextWritesNothingAndGoesOnWithTheVendorAttributes) {
  const ByteVector packet = PacketMaker(1).add(userName, bytesOf("alice")).make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->attributesToAddIs(eapMessage, "");
  parser->vsaToAddIs(0, VsaValueType(vendor, vendorString, "v"));
  const Edited edited = editAloud(*parser, adding);
  EXPECT_EQ(edited.outcome,
            (Outcome{{legacyRecord(add, "Attribute length zero, exiting79")}, std::nullopt}));
  EXPECT_EQ(edited.packet,
            withAttributes(packet, joined({attributeBytes(userName, bytesOf("alice")),
                                           vendorBytes(vendor, vendorString, bytesOf("v"))})));
}

TEST(AddAttribute, AnEmptyConcatTextEndsTheStandardAttributes) {
  TestSupport::DictionaryMaker maker;
  const ByteVector packet = PacketMaker(1).make();
  std::vector<U8> codes;
  for (U8 code = 81; code < 91; ++code) {
    maker.add(code, RadiusAttributeType::octets, {.concat = true});
    codes.push_back(code);
  }
  const LegacyPtr parser = checkedPacket(packet, maker.make());
  for (const U8 code : codes) {
    parser->attributesToAddIs(code, "");
  }
  // Every one of them would trace, and whichever comes first ends the rest.
  const Edited edited = editAloud(*parser, adding);
  EXPECT_EQ(edited.outcome.records.size(), 1U);
  EXPECT_EQ(edited.outcome.assertion, std::nullopt);
  EXPECT_EQ(edited.packet, packet);
}

TEST(AddAttribute, FillsAUserPasswordUpToBlocksInClear) {
  const std::pair<std::size_t, std::size_t> lengths[] = {
      {0, 0},     {1, 16},    {5, 16},    {15, 16},   {16, 16},   {17, 32},   {32, 32},   {33, 48},
      {127, 128}, {128, 128}, {129, 128}, {130, 128}, {253, 128}, {254, 128}, {600, 128},
  };
  for (const auto& [given, written] : lengths) {
    SCOPED_TRACE(given);
    ByteVector value = countingBytes(std::min<std::size_t>(given, 128), 0x41);
    value.resize(written);
    const ByteVector text = countingBytes(given, 0x41);
    EXPECT_EQ(addedBytes(userPassword, std::string(text.begin(), text.end())),
              attributeBytes(userPassword, value));
  }
}

TEST(AddAttribute, CutsAUserPasswordThatIsConcatIntoPiecesAndDoesNotFillIt) {
  const DictPtr concat =
      TestSupport::DictionaryMaker()
          .add(userPassword, RadiusAttributeType::string, {.concat = true, .encrypt = 1})
          .make();
  const ByteVector packet = PacketMaker(1).make();
  const LegacyPtr parser = checkedPacket(packet, concat);
  parser->attributesToAddIs(userPassword, "hello");
  EXPECT_EQ(edit(*parser, adding),
            withAttributes(packet, attributeBytes(userPassword, bytesOf("hello"))));
}

TEST(AddAttribute, WritesAHiddenAndTaggedAttributeAsItIsGiven) {
  const DictPtr tunnel = TestSupport::DictionaryMaker()
                             .add(69, RadiusAttributeType::string, {.tag = true, .encrypt = 2})
                             .make();
  const ByteVector packet = PacketMaker(2).make();
  const LegacyPtr parser = checkedPacket(packet, tunnel);
  parser->attributesToAddIs(69, "\x01\x80\x02secret");
  EXPECT_EQ(edit(*parser, adding),
            withAttributes(packet, attributeBytes(69, bytesOf("\x01\x80\x02secret"))));
}

TEST(AddAttribute, AnUnsupportedTypeIsTracedAndFailsItsAssertion) {
  for (const U8 code : {of64Bits, unknownType, vendorSpecific, U8{0}, U8{255}}) {
    SCOPED_TRACE(int{code});
    EXPECT_EQ(failedAddition(code, "1"),
              (Outcome{{legacyRecord(add, fmt::format("Type Not Supported{}", code))}, "false"}));
  }
}

TEST(AddAttribute, AnUnsupportedTypeFailsItsAssertionWithTraceOffToo) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).make(), dictionary);
  parser->attributesToAddIs(unknownType, "1");
  EXPECT_EQ(outcomeOf([&] { parser->addAttribute(); }, Verda::traceOff), (Outcome{{}, "false"}));
}

template <typename Exception>
std::optional<std::string> thrownByAdding(U8 code, const std::string& text) {
  const ByteVector packet = PacketMaker(1).add(userName, bytesOf("alice")).make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->attributesToAddIs(code, text);
  auto thrown = thrownText<Exception>([&] { parser->addAttribute(); });
  EXPECT_EQ(bytesOf(parser->pkt()), packet);
  EXPECT_EQ(parser->attributesToAddGet(code), Verda::String(text));
  return thrown;
}

TEST(AddAttribute, AnIfidThatLacksAGroupRaisesTheStandardError) {
  for (const char* text : {"", "1", "1:2:3", "1:2:3:", ":2:3:4", "1::3:4", "x:2:3:4", "1:2:3:x"}) {
    EXPECT_EQ(thrownByAdding<std::invalid_argument>(framedInterfaceId, text), "stoi") << text;
  }
}

TEST(AddAttribute, AnIfidGroupThatNoIntegerHoldsRaisesTheStandardError) {
  for (const char* text : {"80000000:2:3:4", "1:2:3:fffffffffffffffff"}) {
    EXPECT_EQ(thrownByAdding<std::out_of_range>(framedInterfaceId, text), "stoi") << text;
  }
}

TEST(AddAttribute, ATextThatIsNoAddressRaisesTheErrorOfTheNetworkingLibrary) {
  const std::pair<U8, std::vector<std::string>> cases[] = {
      {nasIpAddress, {"", "192.0.2", "192.0.2.256", "host", " 192.0.2.1", "192.0.2.1 ", "::1"}},
      {nasIp6Address, {"", "2001:db8", "::g", "1:2:3:4:5:6:7:8:9", "::1%eth0", "192.0.2.1"}},
      {framedIp6Prefix,
       {"", "/64", "2001:db8::/129", "2001:db8::/", "2001:db8::/x", "2001/64", "192.0.2.0/24"}},
  };
  for (const auto& [code, texts] : cases) {
    for (const std::string& text : texts) {
      EXPECT_TRUE(thrownByAdding<Zonet::AddressTextError>(code, text).has_value())
          << int{code} << ' ' << text;
    }
  }
}

TEST(AddAttribute, ATextThatIsNoAddressLeavesTheRequestForAMessageAuthenticator) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).make(), dictionary);
  parser->attributesToAddIs(messageAuthenticator, "anything");
  parser->attributesToAddIs(nasIpAddress, "host");
  EXPECT_TRUE(thrownText<Zonet::AddressTextError>([&] { parser->addAttribute(); }).has_value());
  EXPECT_EQ(parser->attributesToAddGet(messageAuthenticator), Verda::String("anything"));
}

// ---- Adding: vendor attributes ----

TEST(AddAttribute, WritesAVendorAttributeByItsDataType) {
  const AddCase cases[] = {
      {"string", vendorString, "abc", "1a 0b 00000009 01 05 616263"},
      {"empty string", vendorString, "", "1a 08 00000009 01 02"},
      {"octets", vendorOctets, std::string("\0\1", 2), "1a 0a 00000009 02 04 0001"},
      {"integer", vendorInteger, "0x10", "1a 0c 00000009 03 06 00000010"},
      {"integer of no digits", vendorInteger, "", "1a 0c 00000009 03 06 00000000"},
      {"integer of many digits", vendorInteger, std::string(248, '0') + "7",
       "1a 0c 00000009 03 06 00000007"},
  };
  for (const AddCase& one : cases) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(addedVsa(one.code, one.text), fromHex(one.bytes));
  }
}

TEST(AddAttribute, WritesAllFourBytesOfTheVendorId) {
  const DictPtr one =
      TestSupport::DictionaryMaker().addVendor(0x81828384, 255, RadiusAttributeType::string).make();
  const ByteVector packet = PacketMaker(1).make();
  const LegacyPtr parser = checkedPacket(packet, one);
  parser->vsaToAddIs(0, VsaValueType(0x81828384, 255, "v"));
  EXPECT_EQ(edit(*parser, adding), withAttributes(packet, fromHex("1a 09 81828384 ff 03 76")));
}

TEST(AddAttribute, WritesVendorAttributesInTheOrderOfTheirKeysBehindTheStandardOnes) {
  const ByteVector packet = PacketMaker(1).make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->vsaToAddIs(200, VsaValueType(vendor, vendorString, "c"));
  parser->vsaToAddIs(0, VsaValueType(vendor, vendorOctets, "a"));
  parser->vsaToAddIs(7, VsaValueType(vendor, vendorString, "b"));
  parser->attributesToAddIs(userName, "alice");
  EXPECT_EQ(edit(*parser, adding),
            withAttributes(packet, joined({attributeBytes(userName, bytesOf("alice")),
                                           vendorBytes(vendor, vendorOctets, bytesOf("a")),
                                           vendorBytes(vendor, vendorString, bytesOf("b")),
                                           vendorBytes(vendor, vendorString, bytesOf("c"))})));
}

TEST(AddAttribute, WritesTheLongestVendorAttribute) {
  for (const U8 code : {vendorString, vendorOctets}) {
    EXPECT_EQ(addedVsa(code, textOf(247)), vendorBytes(vendor, code, bytesOf(textOf(247))));
  }
}

TEST(AddAttribute, AVendorValueOf248Or249BytesFailsTheAssertionOnTheTwoLengths) {
  for (const std::size_t length : {248U, 249U}) {
    for (const U8 code : {vendorString, vendorOctets}) {
      EXPECT_EQ(failedVsa(vendor, code, textOf(length)),
                (Outcome{{}, LegacyTexts::vsaLengthsDiffer}));
    }
  }
}

TEST(AddAttribute, AVendorValueOf250BytesIsTracedAndFailsItsAssertion) {
  for (const std::size_t length : {250U, 253U, 254U, 300U}) {
    // The length comes before all that the dictionary says.
    for (const auto& [vendorId, code] :
         {std::pair(vendor, vendorString), {vendor, vendorInteger}, {U32{77}, U8{1}}}) {
      const std::string text = textOf(length);
      EXPECT_EQ(failedVsa(vendorId, code, text),
                (Outcome{{legacyRecord(add, fmt::format("Addition of vsa failed for code: {}, "
                                                        "vendorId: {}, attrValue: {}",
                                                        code, vendorId, text))},
                         LegacyTexts::vsaValueTooLong}));
    }
  }
}

TEST(AddAttribute, AVendorThatTheDictionaryLacksIsTracedAndFailsItsAssertion) {
  EXPECT_EQ(
      failedVsa(77, 1, "v"),
      (Outcome{{legacyRecord(add, "Type Not Supported for vendorId:77, attrId:1")}, "false"}));
}

TEST(AddAttribute, AVendorTypeThatTheDictionaryLacksIsTracedAndFailsItsAssertion) {
  EXPECT_EQ(
      failedVsa(vendor, 250, "v"),
      (Outcome{{legacyRecord(add, "Type Not Supported for vendorId:9, attrId:250")}, "false"}));
}

TEST(AddAttribute, AnUnsupportedVendorTypeIsTracedAndFailsItsAssertion) {
  using Type = RadiusAttributeType;
  for (const auto type :
       {Type::ipaddr, Type::date, Type::ipv6addr, Type::ipv6prefix, Type::ifid, Type::integer64}) {
    SCOPED_TRACE(stringValue(type));
    const auto code = static_cast<U8>(100 + type);
    EXPECT_EQ(failedVsa(vendor, code, "1"),
              (Outcome{{legacyRecord(add, fmt::format("Type Not Supported for vendorId:9, "
                                                      "attrId:{}",
                                                      code))},
                       "false"}));
  }
}

TEST(AddAttribute, AFaultInALaterVendorAttributeFailsAllTheSame) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).make(), dictionary);
  parser->vsaToAddIs(0, VsaValueType(vendor, vendorString, "a"));
  parser->vsaToAddIs(1, VsaValueType());
  EXPECT_EQ(editAloud(*parser, adding).outcome,
            (Outcome{{legacyRecord(add, "Type Not Supported for vendorId:0, attrId:0")}, "false"}));
}

// ---- Adding: 4096 bytes ----

struct Growth {
  const char* name;
  void (*request)(RadiusPacketParserBase& parser);
  std::size_t bytes;
  const char* assertion;
};

const Growth growths[] = {
    {"string", [](auto& parser) { parser.attributesToAddIs(userName, "alice"); }, 7,
     LegacyTexts::packetTooLong},
    {"longest string", [](auto& parser) { parser.attributesToAddIs(userName, textOf(253)); }, 255,
     LegacyTexts::packetTooLong},
    {"password", [](auto& parser) { parser.attributesToAddIs(userPassword, "x"); }, 18,
     LegacyTexts::packetTooLong},
    {"integer", [](auto& parser) { parser.attributesToAddIs(nasPort, "1"); }, 6,
     LegacyTexts::packetTooLong},
    {"ipaddr", [](auto& parser) { parser.attributesToAddIs(nasIpAddress, "0.0.0.0"); }, 6,
     LegacyTexts::packetTooLong},
    {"ipv6addr", [](auto& parser) { parser.attributesToAddIs(nasIp6Address, "::"); }, 18,
     LegacyTexts::packetTooLong},
    {"ipv6prefix", [](auto& parser) { parser.attributesToAddIs(framedIp6Prefix, "::/64"); }, 20,
     LegacyTexts::packetTooLong},
    {"ifid", [](auto& parser) { parser.attributesToAddIs(framedInterfaceId, "0:0:0:1"); }, 10,
     LegacyTexts::packetTooLong},
    {"one concat piece", [](auto& parser) { parser.attributesToAddIs(eapMessage, "e"); }, 3,
     LegacyTexts::piecesTooLong},
    {"three concat pieces", [](auto& parser) { parser.attributesToAddIs(eapMessage, textOf(600)); },
     606, LegacyTexts::piecesTooLong},
    {"Message-Authenticator",
     [](auto& parser) { parser.attributesToAddIs(messageAuthenticator, ""); }, 18,
     LegacyTexts::packetTooLong},
    {"vendor string",
     [](auto& parser) { parser.vsaToAddIs(0, VsaValueType(vendor, vendorString, "v")); }, 9,
     LegacyTexts::packetTooLong},
    {"longest vendor string",
     [](auto& parser) { parser.vsaToAddIs(0, VsaValueType(vendor, vendorString, textOf(247))); },
     255, LegacyTexts::packetTooLong},
    {"vendor integer",
     [](auto& parser) { parser.vsaToAddIs(0, VsaValueType(vendor, vendorInteger, "1")); }, 12,
     LegacyTexts::packetTooLong},
};

TEST(AddAttribute, FillsThePacketTo4096Bytes) {
  for (const Growth& growth : growths) {
    SCOPED_TRACE(growth.name);
    const LegacyPtr bare = checkedPacket(PacketMaker(1).make(), dictionary);
    growth.request(*bare);
    const ByteVector alone = edit(*bare, adding);
    const ByteVector packet = packetOfLength(maxLength - growth.bytes);
    const LegacyPtr parser = checkedPacket(packet, dictionary);
    growth.request(*parser);
    const ByteVector result = edit(*parser, adding);
    EXPECT_EQ(result.size(), maxLength);
    EXPECT_EQ(result, withLength(result, maxLength));
    EXPECT_EQ(sortedAttributes(result), sortedAttributes(joined({packet, attributesIn(alone)})));
  }
}

TEST(AddAttribute, APacketOf4097BytesFailsItsAssertion) {
  for (const Growth& growth : growths) {
    SCOPED_TRACE(growth.name);
    const LegacyPtr parser =
        checkedPacket(packetOfLength(maxLength + 1 - growth.bytes), dictionary);
    growth.request(*parser);
    const Edited edited = editAloud(*parser, adding);
    EXPECT_EQ(edited.outcome, (Outcome{{}, growth.assertion}));
  }
}

TEST(AddAttribute, AnAdditionToAFullPacketFailsItsAssertion) {
  for (const Growth& growth : growths) {
    SCOPED_TRACE(growth.name);
    const LegacyPtr parser = checkedPacket(packetOfLength(maxLength), dictionary);
    EXPECT_EQ(edit(*parser, adding).size(), maxLength);
    growth.request(*parser);
    EXPECT_EQ(editAloud(*parser, adding).outcome, (Outcome{{}, growth.assertion}));
  }
}

TEST(AddAttribute, AConcatTextLongerThanTheEditorsBufferFailsItsAssertion) {
  EXPECT_EQ(failedAddition(eapMessage, textOf(70000)), (Outcome{{}, LegacyTexts::piecesTooLong}));
}

TEST(AddAttribute, ManyLongVendorAttributesFailTheAssertionOnThePacket) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).make(), dictionary);
  for (unsigned key = 0; key < 256; ++key) {
    parser->vsaToAddIs(static_cast<U8>(key), VsaValueType(vendor, vendorString, textOf(247)));
  }
  EXPECT_EQ(editAloud(*parser, adding).outcome, (Outcome{{}, LegacyTexts::packetTooLong}));
}

// ---- Setting ----

/// The packet that setting gives: no authenticator yet.
ByteVector withoutAuthenticator(ByteVector packet) {
  std::fill_n(packet.begin() + 4, 16, U8{0});
  return packet;
}

TEST(SetValues, WithNothingToSetCopiesThePacketWithoutItsAuthenticator) {
  const ByteVector packet = PacketMaker(1)
                                .add(userName, bytesOf("alice"))
                                .addVendor(vendor, vendorString, bytesOf("v"))
                                .add(unknownType, countingBytes(9))
                                .add(classType, {})
                                .addMessageAuthenticator()
                                .make();
  EXPECT_EQ(edit(*checkedPacket(packet, dictionary), setting), withoutAuthenticator(packet));
}

TEST(SetValues, OfAPacketWithoutAttributesGivesItsHeader) {
  const ByteVector packet = PacketMaker(2).make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->attributesToSetIs(userName, "bob");
  EXPECT_EQ(edit(*parser, setting), withoutAuthenticator(packet));
}

TEST(SetValues, RewritesTextsWithWhatIsGiven) {
  for (const U8 code : {userName, userPassword, calledStationId, callingStationId, nasIdentifier}) {
    SCOPED_TRACE(int{code});
    const ByteVector old = attributeBytes(code, countingBytes(16, 0x61));
    for (const std::size_t length : {0U, 1U, 5U, 16U, 20U, 252U, 253U}) {
      SCOPED_TRACE(length);
      EXPECT_EQ(setBytes(old, code, textOf(length)), attributeBytes(code, bytesOf(textOf(length))));
    }
  }
}

TEST(SetValues, DoesNotFillAUserPasswordUp) {
  EXPECT_EQ(setBytes(attributeBytes(userPassword, ByteVector(16)), userPassword, "hello"),
            fromHex("02 07 68656c6c6f"));
}

TEST(SetValues, WritesAnyByteUnchanged) {
  EXPECT_EQ(setBytes(attributeBytes(userName, {1}), userName, std::string("\0\xff\0", 3)),
            fromHex("01 05 00ff00"));
}

TEST(SetValues, RewritesEveryOccurrenceAndLeavesTheOthersWhereTheyAre) {
  const ByteVector other = attributeBytes(classType, bytesOf("c"));
  const ByteVector inside = vendorBytes(vendor, userName, bytesOf("v"));
  const ByteVector old = attributeBytes(userName, bytesOf("alice"));
  const ByteVector bob = attributeBytes(userName, bytesOf("bob"));
  EXPECT_EQ(setBytes(joined({old, other, old, inside, old}), userName, "bob"),
            joined({bob, other, bob, inside, bob}));
}

TEST(SetValues, RewritesSeveralKindsAtOnce) {
  const ByteVector packet = PacketMaker(1)
                                .add(userName, bytesOf("alice"))
                                .add(nasIpAddress, {1, 2, 3, 4})
                                .add(nasIdentifier, bytesOf("nas"))
                                .make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->attributesToSetIs(nasIdentifier, "other");
  parser->attributesToSetIs(userName, "bob");
  parser->attributesToSetIs(nasIpAddress, "10.0.0.1");
  EXPECT_EQ(edit(*parser, setting),
            withoutAuthenticator(
                withAttributes(packet, fromHex("01 05 626f62 04 06 0a000001 20 07 6f74686572"))));
  EXPECT_EQ(parser->attributesToSet().size(), 3U);
}

TEST(SetValues, AddsNothingThatThePacketLacks) {
  const ByteVector other = attributeBytes(classType, bytesOf("c"));
  EXPECT_EQ(setBytes(other, userName, "bob"), other);
  EXPECT_EQ(setBytes(other, nasIpAddress, "no address at all"), other);
  EXPECT_EQ(setBytes(other, unknownType, "unsupported"), other);
}

TEST(SetValues, RewritesEveryNasIpAddress) {
  const ByteVector old =
      joined({attributeBytes(nasIpAddress, {1, 2, 3, 4}), attributeBytes(classType, {9}),
              attributeBytes(nasIpAddress, {5, 6, 7, 8})});
  EXPECT_EQ(setBytes(old, nasIpAddress, "10.0.0.1"),
            fromHex("04 06 0a000001 19 03 09 04 06 0a000001"));
}

TEST(SetValues, ReadsANasIpAddressNumberByNumber) {
  const AddCase cases[] = {
      {"plain", nasIpAddress, "192.0.2.255", "c00002ff"},
      {"cut to 8 bits", nasIpAddress, "256.257.-1.511", "0001ffff"},
      {"further numbers", nasIpAddress, "1.2.3.4.5.x", "01020304"},
      {"what stoi reads", nasIpAddress, " 1.+2.03.4x", "01020304"},
  };
  for (const AddCase& one : cases) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(setBytes(attributeBytes(nasIpAddress, {9, 9, 9, 9}), nasIpAddress, one.text),
              joined({fromHex("04 06"), fromHex(one.bytes)}));
  }
}

TEST(SetValues, RewritesANasIp6Address) {
  const AddCase cases[] = {
      {"shortened", nasIp6Address, "2001:db8::1", "20010db8000000000000000000000001"},
      {"any", nasIp6Address, "::", "00000000000000000000000000000000"},
      {"all groups", nasIp6Address, "fedc:ba98:7654:3210:0123:4567:89AB:CDEF",
       "fedcba98765432100123456789abcdef"},
      {"shortened at the end", nasIp6Address, "ff02:1::", "ff020001000000000000000000000000"},
      {"a dotted end", nasIp6Address, "::ffff:192.0.2.1", "00000000000000000000ffffc0000201"},
      {"a dotted end alone", nasIp6Address, "::192.0.2.1", "000000000000000000000000c0000201"},
  };
  for (const AddCase& one : cases) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(setBytes(attributeBytes(nasIp6Address, ByteVector(16, 9)), nasIp6Address, one.text),
              joined({fromHex("5f 12"), fromHex(one.bytes)}));
  }
}

template <typename Exception>
std::optional<std::string> thrownBySetting(U8 code, std::size_t valueLength,
                                           const std::string& text) {
  const ByteVector packet = PacketMaker(1).add(code, ByteVector(valueLength, 9)).make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->attributesToSetIs(code, text);
  auto thrown = thrownText<Exception>([&] { parser->setValuesOfAttributesFromAttributesToSet(); });
  EXPECT_EQ(bytesOf(parser->pkt()), packet);
  EXPECT_EQ(parser->attributesToSetGet(code), Verda::String(text));
  return thrown;
}

TEST(SetValues, ANasIpAddressThatLacksANumberRaisesTheStandardError) {
  for (const char* text : {"", "1", "1.2.3", "1.2.3.", ".2.3.4", "1..3.4", "x.2.3.4", "host"}) {
    EXPECT_EQ(thrownBySetting<std::invalid_argument>(nasIpAddress, 4, text), "stoi") << text;
  }
}

TEST(SetValues, ANumberOfANasIpAddressThatNoIntegerHoldsRaisesTheStandardError) {
  for (const char* text : {"2147483648.2.3.4", "1.2.3.-99999999999"}) {
    EXPECT_EQ(thrownBySetting<std::out_of_range>(nasIpAddress, 4, text), "stoi") << text;
  }
}

TEST(SetValues, ATextThatIsNoIp6AddressRaisesTheErrorOfTheNetworkingLibrary) {
  for (const char* text :
       {"", "2001:db8", "::g", "1:2:3:4:5:6:7:8:9", "::1%eth0", "::1/64", "192.0.2.1"}) {
    EXPECT_TRUE(thrownBySetting<Zonet::AddressTextError>(nasIp6Address, 16, text).has_value())
        << text;
  }
}

TEST(SetValues, AnUnsupportedTypeIsTracedAndFailsItsAssertion) {
  // What the dictionary says of a type plays no part.
  for (const U8 code : {U8{0}, U8{3}, nasPort, classType, vendorSpecific, U8{33}, eventTimestamp,
                        messageAuthenticator, framedInterfaceId, unknownType}) {
    SCOPED_TRACE(int{code});
    const ByteVector packet = PacketMaker(1).add(code, ByteVector(16)).make();
    const LegacyPtr parser = uncheckedPacket(packet, dictionary);
    parser->attributesToSetIs(code, "1");
    const Edited edited = editAloud(*parser, setting);
    EXPECT_TRUE(edited.packet.empty());
    EXPECT_EQ(edited.outcome,
              (Outcome{{legacyRecord(set, fmt::format("Type Not Supported{}", code))}, "false"}));
    EXPECT_EQ(
        outcomeOf([&] { parser->setValuesOfAttributesFromAttributesToSet(); }, Verda::traceOff),
        (Outcome{{}, "false"}));
  }
}

TEST(SetValues, NeedsNothingFromTheDictionary) {
  const ByteVector packet =
      PacketMaker(1).add(userName, bytesOf("alice")).add(nasIpAddress, {1, 2, 3, 4}).make();
  const LegacyPtr parser = checkedPacket(packet, RadiusDict::RadiusDictIs());
  parser->attributesToSetIs(userName, "bob");
  parser->attributesToSetIs(nasIpAddress, "10.0.0.1");
  EXPECT_EQ(edit(*parser, setting),
            withoutAuthenticator(withAttributes(packet, fromHex("01 05 626f62 04 06 0a000001"))));
}

TEST(SetValues, TakesCodeAndIdentifierFromTheEntity) {
  const ByteVector packet = PacketMaker(1).add(userName, bytesOf("alice")).make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->header()->codeIs(2);
  parser->header()->idIs(99);
  parser->header()->authenticatorIs("0123456789abcdef");
  ByteVector expected = withoutAuthenticator(packet);
  expected.at(0) = 2;
  expected.at(1) = 99;
  EXPECT_EQ(edit(*parser, setting), expected);
}

TEST(SetValues, LeavesOutWhatStandsBehindTheLength) {
  const ByteVector packet = PacketMaker(1).add(userName, bytesOf("alice")).make();
  const LegacyPtr parser = checkedPacket(joined({packet, ByteVector(9, 0xdd)}), dictionary);
  EXPECT_EQ(edit(*parser, setting), withoutAuthenticator(packet));
}

// The length is kept in eight bits, and so is the way to the next attribute.

TEST(SetValues, ATextOf254BytesLeavesNoWayAndIsOverwritten) {
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  const ByteVector other = attributeBytes(classType, bytesOf("c"));
  EXPECT_EQ(setBytes(name, userName, textOf(254)), ByteVector());
  EXPECT_EQ(setBytes(joined({name, other}), userName, textOf(254)), other);
  EXPECT_EQ(setBytes(joined({other, name}), userName, textOf(254)), other);
}

TEST(SetValues, ATextOf255BytesLeavesItsTypeAlone) {
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  const ByteVector other = attributeBytes(classType, bytesOf("c"));
  EXPECT_EQ(setBytes(name, userName, textOf(255)), ByteVector{userName});
  EXPECT_EQ(setBytes(joined({name, other}), userName, textOf(255)),
            joined({ByteVector{userName}, other}));
}

TEST(SetValues, ALongerTextLeavesWhatItsLengthByteCounts) {
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  for (const std::size_t length : {300U, 509U, 600U, 8190U, 8200U, 70000U}) {
    SCOPED_TRACE(length);
    const auto counted = static_cast<U8>(length + 2);
    ByteVector left = joined({ByteVector{userName, counted}, bytesOf(textOf(length))});
    left.resize(counted);
    EXPECT_EQ(setBytes(name, userName, textOf(length)), left);
  }
}

TEST(SetValues, ALongTextNearTheEndOfTheEditorsBufferIsWrittenAsFarAsThatGoes) {
  const ByteVector front = filler(3900);
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  // 70,000 + 2 leave 114 bytes.
  const ByteVector left = joined({ByteVector{userName, 114}, bytesOf(textOf(112))});
  EXPECT_EQ(setBytes(joined({front, name}), userName, textOf(70000)), joined({front, left}));
}

TEST(SetValues, FillsThePacketTo4096Bytes) {
  const ByteVector front = filler(maxLength - headerLength - 255);
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  const ByteVector longest = attributeBytes(userName, bytesOf(textOf(253)));
  EXPECT_EQ(setBytes(joined({front, name}), userName, textOf(253)), joined({front, longest}));
}

TEST(SetValues, APacketOf4097BytesFailsItsAssertion) {
  const ByteVector packet = PacketMaker(1)
                                .addRaw(filler(maxLength + 1 - headerLength - 255))
                                .add(userName, bytesOf("alice"))
                                .make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->attributesToSetIs(userName, textOf(253));
  EXPECT_EQ(editAloud(*parser, setting).outcome, (Outcome{{}, LegacyTexts::setPacketTooLong}));
}

TEST(SetValues, ThreeHundredAttributesThatGrowBeyondTheEditorsBufferFailTheAssertion) {
  PacketMaker maker(1);
  for (int count = 0; count < 300; ++count) {
    maker.add(userName, {'a'});
  }
  const LegacyPtr parser = checkedPacket(maker.make(), dictionary);
  parser->attributesToSetIs(userName, textOf(253));
  EXPECT_EQ(editAloud(*parser, setting).outcome, (Outcome{{}, LegacyTexts::setPacketTooLong}));
}

// ---- Removing ----

/// What stands in the place of the attributes after those of one kind were removed.
ByteVector left(const ByteVector& attributes, const Attribute& key) {
  const LegacyPtr parser = checkedPacket(PacketMaker(1).addRaw(attributes).make(), dictionary);
  parser->attributesToRemoveIs(key);
  const ByteVector packet = edit(*parser, removing);
  EXPECT_TRUE(parser->attributesToRemoveHas(key));
  return attributesIn(packet);
}

TEST(RemoveAttribute, WithNothingToRemoveCopiesThePacket) {
  const ByteVector packet = PacketMaker(2)
                                .add(userName, bytesOf("alice"))
                                .addVendor(vendor, vendorString, bytesOf("v"))
                                .addMessageAuthenticator()
                                .add(unknownType, countingBytes(9))
                                .add(classType, {})
                                .make();
  EXPECT_EQ(edit(*checkedPacket(packet, dictionary), removing), packet);
  const LegacyPtr padded = checkedPacket(joined({packet, ByteVector(9, 0xdd)}), dictionary);
  EXPECT_EQ(edit(*padded, removing), packet);
}

TEST(RemoveAttribute, OfAPacketWithoutAttributesGivesItsHeader) {
  const ByteVector packet = PacketMaker(2).make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->attributesToRemoveIs(Attribute(userName, 0, 0));
  EXPECT_EQ(edit(*parser, removing), packet);
}

TEST(RemoveAttribute, RemovesEveryOccurrenceOfAKindAndLeavesTheOthers) {
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  const ByteVector other = attributeBytes(classType, bytesOf("c"));
  const ByteVector inside = vendorBytes(vendor, userName, bytesOf("v"));
  EXPECT_EQ(left(joined({name, other, name, inside, name}), Attribute(userName, 0, 0)),
            joined({other, inside}));
}

TEST(RemoveAttribute, RemovesAllThereIs) {
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  EXPECT_EQ(left(joined({name, name}), Attribute(userName, 0, 0)), ByteVector());
}

TEST(RemoveAttribute, RemovesAttributesThatTheDictionaryLacks) {
  EXPECT_EQ(left(attributeBytes(unknownType, {1}), Attribute(unknownType, 0, 0)), ByteVector());
  EXPECT_EQ(left(vendorBytes(77, 1, {1}), Attribute(vendorSpecific, 1, 77)), ByteVector());
}

TEST(RemoveAttribute, RemovesAVendorAttributeOfThatVendorAndTypeAlone) {
  const ByteVector named = vendorBytes(vendor, vendorString, bytesOf("v"));
  const ByteVector others =
      joined({vendorBytes(vendor, vendorOctets, bytesOf("o")),
              vendorBytes(0x09000000, vendorString, bytesOf("w")), vendorBytes(77, 1, {2})});
  EXPECT_EQ(left(joined({named, others, named}), Attribute(vendorSpecific, vendorString, vendor)),
            others);
}

TEST(RemoveAttribute, RemovesAVendorAttributeWholeByItsFirstSubAttribute) {
  const ByteVector two = fromHex("1a 0e 00000009 01 04 6161 02 04 6262");
  EXPECT_EQ(left(two, Attribute(vendorSpecific, vendorString, vendor)), ByteVector());
  EXPECT_EQ(left(two, Attribute(vendorSpecific, vendorOctets, vendor)), two);
}

TEST(RemoveAttribute, LeavesEverythingThatAKeyDoesNotNameWhole) {
  const ByteVector all = joined({attributeBytes(userName, bytesOf("alice")),
                                 vendorBytes(vendor, vendorString, bytesOf("v"))});
  EXPECT_EQ(left(all, Attribute(vendorSpecific, 0, 0)), all);
  EXPECT_EQ(left(all, Attribute(vendorSpecific, vendorString, 0)), all);
  EXPECT_EQ(left(all, Attribute(userName, 0, vendor)), all);
  EXPECT_EQ(left(all, Attribute(userName, 1, 0)), all);
}

TEST(RemoveAttribute, RemovesTheMessageAuthenticatorToo) {
  const ByteVector packet =
      PacketMaker(1).add(userName, bytesOf("alice")).addMessageAuthenticator().make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->attributesToRemoveIs(Attribute(messageAuthenticator, 0, 0));
  EXPECT_EQ(edit(*parser, removing),
            withAttributes(packet, attributeBytes(userName, bytesOf("alice"))));
}

TEST(RemoveAttribute, RemovesSeveralKindsAtOnce) {
  const ByteVector other = attributeBytes(classType, bytesOf("c"));
  const ByteVector packet = PacketMaker(1)
                                .add(userName, bytesOf("alice"))
                                .addRaw(other)
                                .addVendor(vendor, vendorString, bytesOf("v"))
                                .add(nasPort, {0, 0, 0, 1})
                                .make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->attributesToRemoveIs(Attribute(userName, 0, 0));
  parser->attributesToRemoveIs(Attribute(nasPort, 0, 0));
  parser->attributesToRemoveIs(Attribute(vendorSpecific, vendorString, vendor));
  EXPECT_EQ(edit(*parser, removing), withAttributes(packet, other));
}

TEST(RemoveAttribute, TakesCodeAndIdentifierFromTheEntityAndTheAuthenticatorFromThePacket) {
  const ByteVector packet = PacketMaker(1).add(userName, bytesOf("alice")).make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  parser->header()->codeIs(2);
  parser->header()->idIs(99);
  parser->header()->authenticatorIs("0123456789abcdef");
  ByteVector expected = packet;
  expected.at(0) = 2;
  expected.at(1) = 99;
  EXPECT_EQ(edit(*parser, removing), expected);
}

TEST(RemoveAttribute, APacketOf4097BytesFailsItsAssertionAndOneOf4096DoesNot) {
  const ByteVector most = packetOfLength(maxLength);
  EXPECT_EQ(edit(*uncheckedPacket(most, dictionary), removing), most);
  const LegacyPtr more = uncheckedPacket(packetOfLength(maxLength + 1), dictionary);
  EXPECT_EQ(editAloud(*more, removing).outcome, (Outcome{{}, LegacyTexts::packetTooLong}));
}

TEST(RemoveAttribute, ShortensAPacketThatIsLongerThanTheEditorsBuffer) {
  PacketMaker maker(1);
  for (int count = 0; count < 250; ++count) {
    maker.add(userName, ByteVector(250, 'u'));
  }
  const ByteVector packet = maker.add(classType, {1}).make();
  ASSERT_GT(packet.size(), 60000U);
  const LegacyPtr parser = uncheckedPacket(packet, dictionary);
  parser->attributesToRemoveIs(Attribute(userName, 0, 0));
  EXPECT_EQ(edit(*parser, removing), withAttributes(packet, attributeBytes(classType, {1})));
}

// ---- What a stranger may send ----

struct EditCase {
  const std::string& name;
  Edit operation;
  const char* tooLong;
};

const EditCase edits[] = {
    {set, setting, LegacyTexts::setPacketTooLong},
    {add, adding, LegacyTexts::packetTooLong},
    {remove, removing, LegacyTexts::packetTooLong},
};

/// What an edit gives when nothing is asked of it: setting leaves no authenticator.
ByteVector editedOf(const EditCase& edit, const ByteVector& packet) {
  return edit.operation == setting ? withoutAuthenticator(packet) : packet;
}

/// The line at which a walk ends; adding ends its own without one.
Outcome endAtZero(const EditCase& edit) {
  if (edit.operation == adding) {
    return {};
  }
  return {{legacyRecord(edit.name, "Attribute length zero, exiting")}, std::nullopt};
}

TEST(HostileEditing, TwentyBytesWhoseLengthSays4096AreAHeader) {
  for (const std::size_t length : {4096U, 65535U}) {
    const ByteVector packet = PacketMaker(1).make();
    for (const EditCase& one : edits) {
      SCOPED_TRACE(one.name);
      const Edited edited =
          editAloud(*uncheckedPacket(withLength(packet, length), dictionary), one.operation);
      EXPECT_EQ(edited.outcome, endAtZero(one));
      EXPECT_EQ(edited.packet, editedOf(one, packet));
    }
  }
}

TEST(HostileEditing, ALengthShorterThanTheHeaderGivesTheHeader) {
  const ByteVector packet = PacketMaker(1).make();
  for (const std::size_t length : {0U, 1U, 19U, 20U}) {
    for (const EditCase& one : edits) {
      SCOPED_TRACE(one.name);
      const ByteVector lying =
          withLength(joined({packet, attributeBytes(userName, bytesOf("alice"))}), length);
      EXPECT_EQ(edit(*uncheckedPacket(lying, dictionary), one.operation), editedOf(one, packet));
    }
  }
}

TEST(HostileEditing, ALastAttributeThatClaims255BytesIsFilledUpWithZeros) {
  const ByteVector packet = PacketMaker(1).addRaw({classType, 255, 1, 2, 3}).make();
  ByteVector value{1, 2, 3};
  value.resize(253);
  for (const EditCase& one : edits) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(edit(*uncheckedPacket(packet, dictionary), one.operation),
              editedOf(one, withAttributes(packet, attributeBytes(classType, value))));
  }
}

TEST(HostileEditing, ALastAttributeThatClaims255BytesIsRewrittenAndRemovedLikeAnyOther) {
  const ByteVector packet = PacketMaker(1).addRaw({userName, 255, 1, 2, 3}).make();
  const LegacyPtr parser = uncheckedPacket(packet, dictionary);
  parser->attributesToSetIs(userName, "bob");
  parser->attributesToRemoveIs(Attribute(userName, 0, 0));
  EXPECT_EQ(edit(*parser, setting),
            withoutAuthenticator(withAttributes(packet, attributeBytes(userName, bytesOf("bob")))));
  EXPECT_EQ(edit(*parser, removing), withAttributes(packet, {}));
}

TEST(HostileEditing, ALoneLastByteIsAnAttributeWhoseLengthIsZero) {
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  const ByteVector packet = PacketMaker(1).addRaw(name).addRaw({classType}).make();
  for (const EditCase& one : edits) {
    SCOPED_TRACE(one.name);
    const Edited edited = editAloud(*uncheckedPacket(packet, dictionary), one.operation);
    EXPECT_EQ(edited.outcome, endAtZero(one));
    EXPECT_EQ(edited.packet, editedOf(one, withAttributes(packet, name)));
  }
}

TEST(HostileEditing, AZeroLengthByteEndsTheWalkAndWhatWasCopiedStays) {
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  const ByteVector packet =
      PacketMaker(1).addRaw(name).addRaw({classType, 0, 1, 2}).addRaw(name).make();
  for (const EditCase& one : edits) {
    SCOPED_TRACE(one.name);
    const Edited edited = editAloud(*uncheckedPacket(packet, dictionary), one.operation);
    EXPECT_EQ(edited.outcome, endAtZero(one));
    EXPECT_EQ(edited.packet, editedOf(one, withAttributes(packet, name)));
    EXPECT_EQ(outcomeOf([&] { (uncheckedPacket(packet, dictionary).get()->*one.operation)(); },
                        Verda::traceOff),
              Outcome());
  }
}

TEST(HostileEditing, WhatIsToBeAddedFollowsAWalkThatEndedAtZero) {
  const ByteVector packet = PacketMaker(1).addRaw({classType, 0, 1, 2}).make();
  const LegacyPtr parser = uncheckedPacket(packet, dictionary);
  parser->attributesToAddIs(userName, "bob");
  EXPECT_EQ(edit(*parser, adding),
            withAttributes(packet, attributeBytes(userName, bytesOf("bob"))));
}

TEST(HostileEditing, AMessageAuthenticatorOfLengthZeroEndsTheWalkWhenItIsLeftOut) {
  const ByteVector packet =
      PacketMaker(1).addRaw({messageAuthenticator, 0}).add(userName, bytesOf("alice")).make();
  const LegacyPtr parser = uncheckedPacket(packet, dictionary);
  parser->msgAuthPresentIs(true);
  EXPECT_EQ(edit(*parser, adding), withAttributes(packet, zeroMessageAuthenticator));
}

TEST(HostileEditing, AnAttributeOfLengthOneIsOneByteLong) {
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  // Its length byte is the next attribute's type.
  const ByteVector packet = PacketMaker(1).addRaw({classType}).addRaw(name).make();
  ASSERT_EQ(packet.at(headerLength + 1), 1);
  for (const EditCase& one : edits) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(edit(*uncheckedPacket(packet, dictionary), one.operation), editedOf(one, packet));
  }
}

TEST(HostileEditing, AVendorAttributeTooShortForItsTypeReadsItFromWhatFollows) {
  // The sub-attribute's type is the one of the attribute behind, and of zeros at the end.
  const ByteVector stump = fromHex("1a 06 00000009");
  const ByteVector name = attributeBytes(userName, bytesOf("alice"));
  const LegacyPtr parser =
      uncheckedPacket(PacketMaker(1).addRaw(joined({stump, name, stump})).make(), dictionary);
  parser->attributesToRemoveIs(Attribute(vendorSpecific, userName, vendor));
  EXPECT_EQ(edit(*parser, removing), withAttributes(bytesOf(parser->pkt()), joined({name, stump})));
  parser->attributesToRemoveIs(Attribute(vendorSpecific, 0, vendor));
  EXPECT_EQ(edit(*parser, removing), withAttributes(bytesOf(parser->pkt()), name));
}

TEST(HostileEditing, ASubLengthPlaysNoPart) {
  for (const U8 subLength : {U8{0}, U8{1}, U8{2}, U8{255}}) {
    const ByteVector vsa{vendorSpecific, 10, 0, 0, 0, vendor, vendorString, subLength, 1, 2};
    const ByteVector packet = PacketMaker(1).addRaw(vsa).make();
    for (const EditCase& one : edits) {
      EXPECT_EQ(edit(*checkedPacket(packet, dictionary), one.operation), editedOf(one, packet));
    }
    EXPECT_EQ(left(vsa, Attribute(vendorSpecific, vendorString, vendor)), ByteVector());
  }
}

TEST(HostileEditing, ThreeHundredAttributesOfOneKindAreEditedAll) {
  PacketMaker maker(1);
  ByteVector bobs;
  for (int count = 0; count < 300; ++count) {
    maker.add(userName, {'a'});
    bobs = joined({bobs, attributeBytes(userName, bytesOf("bob"))});
  }
  const ByteVector packet = maker.make();
  const LegacyPtr parser = checkedPacket(packet, dictionary);
  EXPECT_EQ(edit(*parser, adding), packet);
  EXPECT_EQ(edit(*parser, removing), packet);
  parser->attributesToSetIs(userName, "bob");
  parser->attributesToRemoveIs(Attribute(userName, 0, 0));
  EXPECT_EQ(edit(*parser, setting), withoutAuthenticator(withAttributes(packet, bobs)));
  EXPECT_EQ(edit(*parser, removing), withAttributes(packet, {}));
}

TEST(HostileEditing, APacketThatIsTrulyLongerThanTheEditorsBufferFailsTheAssertions) {
  const ByteVector packet = packetOfLength(65535);
  for (const EditCase& one : edits) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(editAloud(*uncheckedPacket(packet, dictionary), one.operation).outcome,
              (Outcome{{}, one.tooLong}));
  }
}

TEST(HostileEditing, AdditionsToAPacketLongerThanTheEditorsBufferFailTheirAssertions) {
  const ByteVector packet = packetOfLength(65535);
  for (const Growth& growth : growths) {
    SCOPED_TRACE(growth.name);
    const LegacyPtr parser = uncheckedPacket(packet, dictionary);
    growth.request(*parser);
    const Outcome outcome = editAloud(*parser, adding).outcome;
    EXPECT_TRUE(outcome.records.empty());
    EXPECT_TRUE(outcome.assertion == LegacyTexts::packetTooLong ||
                outcome.assertion == LegacyTexts::piecesTooLong);
  }
}

TEST(HostileEditing, TheStorageOfALyingPacketGrowsAndItsBytesStayAsMany) {
  const ByteVector packet = withLength(PacketMaker(1).make(), maxLength);
  for (const EditCase& one : edits) {
    const LegacyPtr parser = uncheckedPacket(packet, dictionary);
    editAloud(*parser, one.operation);
    EXPECT_EQ(parser->pkt()->bytes(), headerLength);
  }
}

}  // namespace
