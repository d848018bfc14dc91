#include "RadiusPacketParser/RadiusPktCommon.h"

#include <array>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "tests/support/CapturingSink.h"
#include "tests/support/Digests.h"
#include "tests/support/Hex.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"

namespace {

using RadiusPacketParser::RadiusAttributeType;
using namespace RadiusPktParserBase;
using TestSupport::attributeBytes;
using TestSupport::ByteVector;
using TestSupport::CapturedRecord;
using TestSupport::CapturingSink;
using TestSupport::countingBytes;
using TestSupport::DataType;
using TestSupport::errorRecord;
using TestSupport::Flags;
using TestSupport::fromHex;
using TestSupport::joined;
using TestSupport::vendorBytes;
using TestSupport::verdaBytes;
using Verda::U16;
using Verda::U32;
using Verda::U8;
using Zonet::IpGenPrefix;
using Records = std::vector<CapturedRecord>;
using Sizes = std::vector<std::size_t>;

constexpr U8 untouched = 0xee;

AttrInfo infoOf(DataType type, Flags flags = {}) {
  AttrInfo info;
  info.isInDict = true;
  info.isTagged = flags.tag;
  info.isConcat = flags.concat;
  info.encryptionType = flags.encrypt;
  info.attributeType = type;
  return info;
}

AttrInfo missing(ErrorMsg errorMsg) {
  AttrInfo info;
  info.errorMsg = errorMsg;
  return info;
}

/// One value of each alternative, in their order.
const std::array<AttrValue, 7>& alternatives() {
  static const std::array<AttrValue, 7> values{
      Verda::String("text"),
      TaggedStr{.str = "text", .tag = 3},
      0x01020304U,
      TaggedInt{.value = 0x01020304, .tag = 3},
      0x0102030405060708UL,
      IpGenPrefix(Verda::String("2001:db8::1")),
      Verda::Bytes{0xf0, 0x0f},
  };
  return values;
}

/// What `addAttribute` or `addVsa` did with a buffer: what is written from its first byte on.
struct Added {
  ErrorMsg result;
  ByteVector buffer;
  std::ptrdiff_t moved;
  U16 curLen;
  Records records;

  /// The bytes in front of what was left alone.
  ByteVector written() const {
    std::size_t end = buffer.size();
    while (end > 0 && buffer[end - 1] == untouched) {
      --end;
    }
    return {buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(end)};
  }
};

Added addStandard(const AttrValue& value, const AttrInfo& info, U8 attrId = 7, U16 curLen = 20) {
  const CapturingSink trace;
  // A block that ends where the longest packet does.
  ByteVector buffer(4096U - curLen, untouched);
  U8* position = buffer.data();
  const ErrorMsg result =
      addAttribute(value, standardAttribute(attrId), info, &position, curLen, nullptr);
  return {result, buffer, position - buffer.data(), curLen, trace.records()};
}

Added addVendor(const AttrValue& value, const AttrInfo& info, U16 curLen = 20) {
  const CapturingSink trace;
  ByteVector buffer(4096U - curLen, untouched);
  const ErrorMsg result =
      addVsa(value, vendorAttribute(0xfedcba98, 7), info, buffer.data(), curLen, nullptr);
  return {result, buffer, 0, curLen, trace.records()};
}

void expectNothingMoved(const Added& added, U16 curLen = 20) {
  EXPECT_EQ(added.moved, 0);
  EXPECT_EQ(added.curLen, curLen);
}

void expectAdded(const Added& added, const ByteVector& bytes, U16 curLen = 20) {
  EXPECT_EQ(added.result, ErrorMsg::success);
  EXPECT_EQ(added.written(), bytes);
  EXPECT_EQ(added.records, Records());
  expectNothingMoved(added, curLen);
}

// ---- Which value goes with which attribute ----

/// What each alternative of a value gives for an attribute: the bytes written as hex, or a message.
struct Alternatives {
  const char* name;
  DataType type;
  bool isTagged;
  std::array<std::string, 7> texts;
  ErrorMsg refusal;
};

constexpr const char* accepted = "";

void expectAlternatives(const Alternatives& row, const std::array<Added, 7>& outcomes,
                        const char* function) {
  for (std::size_t index = 0; index < outcomes.size(); ++index) {
    SCOPED_TRACE(fmt::format("{}, alternative {}", row.name, index));
    const Added& added = outcomes[index];
    expectNothingMoved(added);
    if (row.texts[index] == accepted) {
      EXPECT_EQ(added.result, ErrorMsg::success);
      EXPECT_EQ(added.records, Records());
      continue;
    }
    EXPECT_EQ(added.result, row.refusal);
    EXPECT_EQ(added.written(), ByteVector());
    EXPECT_EQ(added.records, (Records{errorRecord("", function, row.texts[index])}));
  }
}

std::array<std::string, 7> allTo(const std::string& text) {
  return {text, text, text, text, text, text, text};
}

std::array<std::string, 7> allBut(std::size_t acceptedIndex, const std::string& text) {
  std::array<std::string, 7> texts = allTo(text);
  texts[acceptedIndex] = accepted;
  return texts;
}

std::array<std::string, 7> allBut(std::size_t acceptedIndex, std::size_t otherIndex,
                                  const std::string& otherText, const std::string& text) {
  std::array<std::string, 7> texts = allBut(acceptedIndex, text);
  texts[otherIndex] = otherText;
  return texts;
}

TEST(AddAttribute, TakesTheAlternativeOfTheDataTypeAndNoOther) {
  using Type = RadiusAttributeType;
  const ErrorMsg wrong = ErrorMsg::invalidAttrDataType;
  const std::string noText = "AttrId: 7 Expected string type, invalid data type passed";
  const std::string noNumber = "AttrId: 7 Expected int type, invalid data type passed";
  const std::string otherNumber = "AttrId: 7 Expected int type, found tagged int";
  const std::string noPrefix = "AttrId: 7 Expected ipGenPrefix type, invalid data type passed";
  const std::string erroneous = "AttrId: 7 Erroneous type encountered";
  // The address of the values is an IPv6 one.
  const std::vector<Alternatives> rows{
      {"unknown", Type::unknown, false, allTo("AttrId: 7 Unknown data type"),
       ErrorMsg::unknownAttrDataType},
      {"unknown, tagged", Type::unknown, true, allTo("AttrId: 7 Unknown data type"),
       ErrorMsg::unknownAttrDataType},
      {"string", Type::string, false,
       allBut(0, 1, "AttrId: 7 Expected tagged string type,found just string", noText), wrong},
      {"string, tagged", Type::string, true,
       allBut(1, 0, "AttrId: 7 Expected string type, found tagged string", noText), wrong},
      {"octets", Type::octets, false,
       allBut(6, "AttrId: 7 Expected bytes type, invalid data type passed"), wrong},
      {"octets, tagged", Type::octets, true,
       allBut(6, "AttrId: 7 Expected bytes type, invalid data type passed"), wrong},
      {"ipaddr", Type::ipaddr, false, allTo(noPrefix), wrong},
      {"date", Type::date, false, allBut(2, 3, otherNumber, noNumber), wrong},
      {"date, tagged", Type::date, true, allBut(3, 2, otherNumber, noNumber), wrong},
      {"integer", Type::integer, false, allBut(2, 3, otherNumber, noNumber), wrong},
      {"integer, tagged", Type::integer, true, allBut(3, 2, otherNumber, noNumber), wrong},
      {"ipv6addr", Type::ipv6addr, false, allBut(5, noPrefix), wrong},
      {"ipv6prefix", Type::ipv6prefix, false, allBut(5, noPrefix), wrong},
      {"ifid", Type::ifid, false, allBut(5, noPrefix), wrong},
      {"integer64", Type::integer64, false, allTo(erroneous), wrong},
      {"a type without a name", static_cast<DataType>(10), false, allTo(erroneous), wrong},
      {"the last number of a type", static_cast<DataType>(255), true, allTo(erroneous), wrong},
  };
  for (const Alternatives& row : rows) {
    std::array<Added, 7> outcomes;
    for (std::size_t index = 0; index < outcomes.size(); ++index) {
      outcomes[index] = addStandard(alternatives()[index], infoOf(row.type, {.tag = row.isTagged}));
    }
    expectAlternatives(row, outcomes, "addAttribute");
  }
}

TEST(AddAttribute, RefusesAnAddressOfTheOtherFamily) {
  const IpGenPrefix ip4(Verda::String("192.0.2.33"));
  for (const DataType type : {RadiusAttributeType::ipv6addr, RadiusAttributeType::ipv6prefix,
                              RadiusAttributeType::ifid}) {
    const Added refused = addStandard(ip4, infoOf(type));
    EXPECT_EQ(refused.result, ErrorMsg::invalidAttrDataType);
    EXPECT_EQ(refused.written(), ByteVector());
    EXPECT_EQ(
        refused.records,
        (Records{errorRecord("", "addAttribute",
                             "AttrId: 7 Expected ipGenPrefix type, invalid data type passed")}));
  }
}

TEST(AddAttribute, WritesEveryDataType) {
  using Type = RadiusAttributeType;
  const IpGenPrefix ip6(Verda::String("2001:db8::a1b2:c3d4:e5f6:7/32"));
  expectAdded(addStandard(Verda::String("nemo"), infoOf(Type::string)), fromHex("07066e656d6f"));
  expectAdded(
      addStandard(TaggedStr{.str = "nemo", .tag = 0x1f}, infoOf(Type::string, {.tag = true})),
      fromHex("07071f6e656d6f"));
  expectAdded(addStandard(Verda::Bytes{0x00, 0xff}, infoOf(Type::octets)), fromHex("070400ff"));
  expectAdded(addStandard(Verda::Bytes{0x00, 0xff}, infoOf(Type::octets, {.tag = true})),
              fromHex("070400ff"));
  expectAdded(addStandard(0x01020304U, infoOf(Type::integer)), fromHex("070601020304"));
  expectAdded(
      addStandard(TaggedInt{.value = 0x01020304, .tag = 2}, infoOf(Type::integer, {.tag = true})),
      fromHex("070602020304"));
  expectAdded(addStandard(0x01020304U, infoOf(Type::date)), fromHex("070601020304"));
  expectAdded(addStandard(IpGenPrefix(Verda::String("192.0.2.33")), infoOf(Type::ipaddr)),
              fromHex("0706c0000221"));
  expectAdded(addStandard(ip6, infoOf(Type::ipv6addr)),
              fromHex("071220010db800000000a1b2c3d4e5f60007"));
  expectAdded(addStandard(ip6, infoOf(Type::ipv6prefix)),
              fromHex("0714002020010db800000000a1b2c3d4e5f60007"));
  expectAdded(addStandard(ip6, infoOf(Type::ifid)), fromHex("070aa1b2c3d4e5f60007"));
}

TEST(AddAttribute, WritesAFramedIpv6Prefix) {
  expectAdded(addStandard(IpGenPrefix(Verda::String("2001:db8::/32")),
                          infoOf(RadiusAttributeType::ipv6prefix), 97),
              fromHex("6114002020010db8000000000000000000000000"));
}

TEST(AddAttribute, WritesNothingOfATaggedNumberForATaggedDate) {
  for (const U16 curLen : {U16{20}, U16{4095}, U16{4096}}) {
    expectAdded(
        addStandard(TaggedInt{.value = 1, .tag = 2},
                    infoOf(RadiusAttributeType::date, {.tag = true, .encrypt = 1}), 7, curLen),
        {}, curLen);
  }
}

TEST(AddAttribute, RefusesWhatTheDictionaryLacks) {
  for (const ErrorMsg error : {ErrorMsg::invalidAttrId, ErrorMsg::invalidVendorId}) {
    for (const AttrValue& value : alternatives()) {
      const Added refused = addStandard(value, missing(error), 231);
      EXPECT_EQ(refused.result, error);
      EXPECT_EQ(refused.written(), ByteVector());
      EXPECT_EQ(refused.records,
                (Records{errorRecord("", "addAttribute", "Unsupported attribute: 231")}));
      expectNothingMoved(refused);
    }
  }
}

TEST(AddAttribute, PassesOnThatAValueIsTooLong) {
  const Added refused =
      addStandard(Verda::String(std::string(65535, 't')), infoOf(RadiusAttributeType::string));
  EXPECT_EQ(refused.result, ErrorMsg::invalidAttrLength);
  EXPECT_EQ(refused.records,
            (Records{errorRecord("", "addStrTypes", "Attribute: 7 with invalid length 65537")}));
}

TEST(AddAttribute, PassesOnThatThereIsNoRoomForAnAddressWithoutAMessage) {
  const Added refused = addStandard(IpGenPrefix(Verda::String("192.0.2.33")),
                                    infoOf(RadiusAttributeType::ipaddr), 7, 4091);
  EXPECT_EQ(refused.result, ErrorMsg::maxPktLengthExceeded);
  EXPECT_EQ(refused.records, Records());
  EXPECT_EQ(refused.written(), ByteVector());
}

TEST(AddAttribute, TracesItsEntryAndTheEncoders) {
  const CapturingSink trace(Verda::traceEntries);
  ByteVector buffer(300);
  U8* position = buffer.data();
  U16 curLen = 20;
  addAttribute(verdaBytes(ByteVector(254)), standardAttribute(7),
               infoOf(RadiusAttributeType::octets, {.concat = true}), &position, curLen, nullptr);
  const auto entry = [](const char* function) {
    return CapturedRecord{"RadiusPacketParser::RadiusPktParser", 2, "", function, "entry"};
  };
  EXPECT_EQ(trace.records(),
            (Records{entry("addAttribute"), entry("addOctetTypes"), entry("addOctetTypes")}));
}

// ---- User-Password ----

TEST(UserPassword, IsFilledUpWithZerosToWholeBlocks) {
  struct Case {
    std::size_t given;
    std::size_t written;
  };
  for (const Case& one : {Case{0, 0},
                          {1, 16},
                          {15, 16},
                          {16, 16},
                          {17, 32},
                          {20, 32},
                          {112, 112},
                          {113, 128},
                          {127, 128},
                          {128, 128}}) {
    SCOPED_TRACE(one.given);
    const std::string text(one.given, 'p');
    ByteVector value = TestSupport::bytesOf(text);
    value.resize(one.written);
    expectAdded(addStandard(Verda::String(text), infoOf(RadiusAttributeType::string), 2),
                attributeBytes(2, value));
  }
}

TEST(UserPassword, IsCutAtTheLongestLength) {
  for (const std::size_t length : Sizes{129, 200, 253, 254, 65535}) {
    SCOPED_TRACE(length);
    const ByteVector text = countingBytes(length, 1);
    expectAdded(addStandard(Verda::String(std::span<const U8>(text)),
                            infoOf(RadiusAttributeType::string), 2),
                attributeBytes(2, ByteVector(text.begin(), text.begin() + 128)));
  }
}

TEST(UserPassword, KeepsZeroBytesOfTheText) {
  const Verda::String text(std::string("a\0b", 3));
  expectAdded(addStandard(text, infoOf(RadiusAttributeType::string), 2),
              fromHex("021261006200000000000000000000000000"));
}

TEST(UserPassword, MustFitWithItsPadding) {
  const AttrInfo info = infoOf(RadiusAttributeType::string);
  expectAdded(addStandard(Verda::String("p"), info, 2, 4096 - 18),
              fromHex("021270000000000000000000000000000000"), 4096 - 18);
  const Added refused = addStandard(Verda::String("p"), info, 2, 4096 - 17);
  EXPECT_EQ(refused.result, ErrorMsg::maxPktLengthExceeded);
  EXPECT_EQ(refused.records,
            (Records{errorRecord("", "addStrTypes",
                                 "Attribute: 2 Length: 18 addition exceeds max packet length "
                                 "4079")}));
}

TEST(UserPassword, IsFilledUpOnlyAsPlainTextOfTheStandardAttribute) {
  expectAdded(addStandard(TaggedStr{.str = "p", .tag = 1},
                          infoOf(RadiusAttributeType::string, {.tag = true}), 2),
              fromHex("02040170"));
  expectAdded(addStandard(Verda::Bytes{0x70}, infoOf(RadiusAttributeType::octets), 2),
              fromHex("020370"));
  ByteVector buffer(9, untouched);
  EXPECT_EQ(addVsa(Verda::String("p"), vendorAttribute(9, 2), infoOf(RadiusAttributeType::string),
                   buffer.data(), 20, nullptr),
            ErrorMsg::success);
  EXPECT_EQ(buffer, vendorBytes(9, 2, {0x70}));
}

// ---- Concat ----

/// `value` as attributes of at most 253 value bytes.
ByteVector fragments(const ByteVector& value, std::size_t& lastLength) {
  ByteVector all;
  for (std::size_t begin = 0; begin < value.size(); begin += 253) {
    const std::size_t end = std::min(value.size(), begin + 253);
    all = joined(
        {all, attributeBytes(7, ByteVector(value.begin() + static_cast<std::ptrdiff_t>(begin),
                                           value.begin() + static_cast<std::ptrdiff_t>(end)))});
    lastLength = end - begin + 2;
  }
  return all;
}

const AttrInfo& concatInfo() {
  static const AttrInfo info = infoOf(RadiusAttributeType::octets, {.concat = true});
  return info;
}

TEST(Concat, IsSplitAndLeavesThePositionAtTheLastFragment) {
  for (const std::size_t size : Sizes{1, 252, 253, 254, 255, 506, 507, 600, 4044}) {
    SCOPED_TRACE(size);
    const ByteVector value = countingBytes(size, 0);
    std::size_t lastLength = 0;
    const ByteVector expected = fragments(value, lastLength);
    const Added added = addStandard(verdaBytes(value), concatInfo());
    EXPECT_EQ(added.result, ErrorMsg::success);
    EXPECT_EQ(ByteVector(added.buffer.begin(),
                         added.buffer.begin() + static_cast<std::ptrdiff_t>(expected.size())),
              expected);
    EXPECT_EQ(added.moved, static_cast<std::ptrdiff_t>(expected.size() - lastLength));
    EXPECT_EQ(added.curLen, 20 + expected.size() - lastLength);
    EXPECT_EQ(added.records, Records());
  }
}

TEST(Concat, MakesOf600BytesAttributesOf253And253And94) {
  const Added added = addStandard(verdaBytes(ByteVector(600, 0x41)), concatInfo());
  EXPECT_EQ(added.buffer[0], 7);
  EXPECT_EQ(added.buffer[1], 255);
  EXPECT_EQ(added.buffer[255], 7);
  EXPECT_EQ(added.buffer[256], 255);
  EXPECT_EQ(added.buffer[510], 7);
  EXPECT_EQ(added.buffer[511], 96);
  EXPECT_EQ(added.buffer[606], untouched);
  EXPECT_EQ(added.moved, 510);
  EXPECT_EQ(added.curLen, 530);
}

TEST(Concat, WritesNothingOfAnEmptyValue) {
  for (const U16 curLen : {U16{20}, U16{4095}, U16{4096}}) {
    expectAdded(addStandard(Verda::Bytes(), concatInfo(), 7, curLen), {}, curLen);
  }
}

TEST(Concat, MovesNothingWhenAFragmentDoesNotFit) {
  for (const std::size_t size : Sizes{4045, 4076, 4077, 65535, 100000}) {
    SCOPED_TRACE(size);
    const Added refused = addStandard(verdaBytes(ByteVector(size)), concatInfo());
    EXPECT_EQ(refused.result, ErrorMsg::maxPktLengthExceeded);
    expectNothingMoved(refused);
    // Fifteen whole fragments leave 251 bytes for the last.
    const std::size_t last = std::min<std::size_t>(size - 15 * 253, 253) + 2;
    EXPECT_EQ(refused.records,
              (Records{errorRecord("", "addOctetTypes",
                                   fmt::format("Attribute: 7 Length: {} addition exceeds max "
                                               "packet length 3845",
                                               last))}));
  }
}

TEST(Concat, NeedsOctetsToBeSplit) {
  const Added refused = addStandard(Verda::String(std::string(600, 't')),
                                    infoOf(RadiusAttributeType::string, {.concat = true}));
  EXPECT_EQ(refused.result, ErrorMsg::invalidAttrLength);
  const Added notConcat =
      addStandard(verdaBytes(ByteVector(254)), infoOf(RadiusAttributeType::octets));
  EXPECT_EQ(notConcat.result, ErrorMsg::invalidAttrLength);
}

TEST(Concat, RefusesAnythingButOctets) {
  const Added refused = addStandard(Verda::String(), concatInfo());
  EXPECT_EQ(refused.result, ErrorMsg::invalidAttrDataType);
  EXPECT_EQ(refused.records,
            (Records{errorRecord("", "addAttribute",
                                 "AttrId: 7 Expected bytes type, invalid data type passed")}));
}

// ---- Vendor attributes ----

ByteVector vsa(const ByteVector& value) {
  return vendorBytes(0xfedcba98, 7, value);
}

TEST(AddVsa, TakesTheAlternativeOfTheDataTypeAndNoOther) {
  using Type = RadiusAttributeType;
  const ErrorMsg wrong = ErrorMsg::invalidVendorAttrDataType;
  const std::string front = "VendorId: 4275878552 vendorAttrId: 7 ";
  const std::string noText = front + "Expected string type, invalid data type passed";
  const std::string noBytes = front + "Expected byte type, invalid data type passed";
  const std::string noNumber = front + "Expected int type, invalid data type passed";
  const std::string otherNumber = front + "Expected int type, found tagged int type";
  const std::string unknown = "VendorId: 4275878552 VendorAttrId: 7 Unknown data type";
  const std::string erroneous = "Erroneous data type for vendorId: 4275878552 and vendorAttrId: 7";
  const std::vector<Alternatives> rows{
      {"unknown", Type::unknown, false, allTo(unknown), ErrorMsg::unknownAttrDataType},
      {"string", Type::string, false,
       allBut(0, 1, front + "Expected tagged string type, found string type", noText), wrong},
      {"string, tagged", Type::string, true,
       allBut(1, 0, front + "Expected string type, found tagged string type", noText), wrong},
      {"octets", Type::octets, false, allBut(6, noBytes), wrong},
      {"octets, tagged", Type::octets, true, allBut(6, noBytes), wrong},
      {"date", Type::date, false, allBut(2, 3, otherNumber, noNumber), wrong},
      {"date, tagged", Type::date, true, allBut(3, 2, otherNumber, noNumber), wrong},
      {"integer", Type::integer, false, allBut(2, 3, otherNumber, noNumber), wrong},
      {"integer, tagged", Type::integer, true, allBut(3, 2, otherNumber, noNumber), wrong},
      {"ipaddr", Type::ipaddr, false, allTo(erroneous), wrong},
      {"ipv6addr", Type::ipv6addr, false, allTo(erroneous), wrong},
      {"ipv6prefix", Type::ipv6prefix, false, allTo(erroneous), wrong},
      {"ifid", Type::ifid, false, allTo(erroneous), wrong},
      {"integer64", Type::integer64, false, allTo(erroneous), wrong},
      {"a type without a name", static_cast<DataType>(10), false, allTo(erroneous), wrong},
      {"the last number of a type", static_cast<DataType>(255), true, allTo(erroneous), wrong},
  };
  for (const Alternatives& row : rows) {
    std::array<Added, 7> outcomes;
    for (std::size_t index = 0; index < outcomes.size(); ++index) {
      outcomes[index] = addVendor(alternatives()[index], infoOf(row.type, {.tag = row.isTagged}));
    }
    expectAlternatives(row, outcomes, "addVsa");
  }
}

TEST(AddVsa, WritesEveryDataType) {
  using Type = RadiusAttributeType;
  expectAdded(addVendor(Verda::String("nemo"), infoOf(Type::string)), vsa(fromHex("6e656d6f")));
  expectAdded(addVendor(TaggedStr{.str = "nemo", .tag = 0x1f}, infoOf(Type::string, {.tag = true})),
              vsa(fromHex("1f6e656d6f")));
  expectAdded(addVendor(Verda::Bytes{0x00, 0xff}, infoOf(Type::octets)), vsa(fromHex("00ff")));
  expectAdded(addVendor(0x01020304U, infoOf(Type::integer)), vsa(fromHex("01020304")));
  expectAdded(
      addVendor(TaggedInt{.value = 0x01020304, .tag = 2}, infoOf(Type::integer, {.tag = true})),
      vsa(fromHex("02020304")));
  expectAdded(addVendor(0x01020304U, infoOf(Type::date)), vsa(fromHex("01020304")));
  expectAdded(addVendor(Verda::String(), infoOf(Type::string)), vsa({}));
  expectAdded(addVendor(Verda::Bytes(), infoOf(Type::octets)), vsa({}));
}

TEST(AddVsa, DoesNotSplitAConcatValue) {
  const AttrInfo info = infoOf(RadiusAttributeType::octets, {.concat = true});
  expectAdded(addVendor(verdaBytes(countingBytes(247)), info), vsa(countingBytes(247)));
  expectAdded(addVendor(Verda::Bytes(), info), vsa({}));
  const Added refused = addVendor(verdaBytes(ByteVector(254)), info);
  EXPECT_EQ(refused.result, ErrorMsg::invalidAttrLength);
  EXPECT_EQ(refused.written(), ByteVector());
}

TEST(AddVsa, WritesTypeAndVendorAloneOfATaggedNumberForATaggedDate) {
  for (const U8 method : {U8{0}, userPasswordMethod}) {
    const AttrInfo info = infoOf(RadiusAttributeType::date, {.tag = true, .encrypt = method});
    const ByteVector expected{26, untouched, 0xfe, 0xdc, 0xba, 0x98};
    expectAdded(addVendor(TaggedInt{.value = 1, .tag = 2}, info), expected);
    expectAdded(addVendor(TaggedInt{.value = 1, .tag = 2}, info, 4090), expected, 4090);
  }
}

TEST(AddVsa, NeedsRoomAlsoForTypeAndVendorAlone) {
  for (const U16 curLen : {U16{4091}, U16{4096}}) {
    const Added refused = addVendor(TaggedInt{.value = 1, .tag = 2},
                                    infoOf(RadiusAttributeType::date, {.tag = true}), curLen);
    EXPECT_EQ(refused.result, ErrorMsg::maxPktLengthExceeded);
    EXPECT_EQ(refused.written(), ByteVector());
  }
}

TEST(AddVsa, RefusesWhatTheDictionaryLacks) {
  for (const ErrorMsg error : {ErrorMsg::invalidVendorId, ErrorMsg::invalidVendorAttrId}) {
    for (const AttrValue& value : alternatives()) {
      const Added refused = addVendor(value, missing(error));
      EXPECT_EQ(refused.result, error);
      EXPECT_EQ(refused.written(), ByteVector());
      EXPECT_EQ(refused.records,
                (Records{errorRecord(
                    "", "addVsa", "Unsupported VSA: 26, vendor Id: 4275878552, vendorAttrId: 7")}));
    }
  }
}

TEST(AddVsa, SaysInTheEncodersNameThatThereIsNoRoom) {
  expectAdded(addVendor(0x01020304U, infoOf(RadiusAttributeType::integer), 4084),
              vsa(fromHex("01020304")), 4084);
  const Added refused = addVendor(0x01020304U, infoOf(RadiusAttributeType::integer), 4085);
  EXPECT_EQ(refused.result, ErrorMsg::maxPktLengthExceeded);
  EXPECT_EQ(refused.written(), ByteVector());
  EXPECT_EQ(refused.records,
            (Records{errorRecord("", "addIntegerDateTypes",
                                 "Attribute: 7 Length: 12 addition exceeds max packet length "
                                 "4085")}));
}

TEST(AddVsa, TracesItsEntryAndTheEncoders) {
  const CapturingSink trace(Verda::traceEntries);
  ByteVector buffer(12);
  addVsa(1U, vendorAttribute(9, 7), infoOf(RadiusAttributeType::integer), buffer.data(), 20,
         nullptr);
  const auto entry = [](const char* function) {
    return CapturedRecord{"RadiusPacketParser::RadiusPktParser", 2, "", function, "entry"};
  };
  EXPECT_EQ(trace.records(), (Records{entry("addVsa"), entry("addIntegerDateTypes")}));
}

}  // namespace
