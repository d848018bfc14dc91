#include "RadiusPacketParser/RadiusPktCommon.h"

#include <algorithm>
#include <array>
#include <span>
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
using TestSupport::Records;
using TestSupport::Sizes;
using TestSupport::vendorBytes;
using TestSupport::verdaBytes;
using Verda::U16;
using Verda::U32;
using Verda::U8;
using Zonet::IpGenPrefix;

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

void expectRefused(const Added& added, ErrorMsg fault, const Records& records, U16 curLen = 20) {
  EXPECT_EQ(added.result, fault);
  EXPECT_EQ(added.written(), ByteVector());
  EXPECT_EQ(added.records, records);
  expectNothingMoved(added, curLen);
}

Records noRoomRecord(const char* encoder, std::size_t length, std::size_t curLen, U8 attrId = 7) {
  return {errorRecord("", encoder,
                      fmt::format("Attribute: {} Length: {} addition exceeds max packet length {}",
                                  attrId, length, curLen))};
}

Records tooLongRecord(const char* encoder, std::size_t length) {
  return {errorRecord("", encoder, fmt::format("Attribute: 7 with invalid length {}", length))};
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
    expectRefused(added, row.refusal, {errorRecord("", function, row.texts[index])});
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
    expectRefused(addStandard(ip4, infoOf(type)), ErrorMsg::invalidAttrDataType,
                  {errorRecord("", "addAttribute",
                               "AttrId: 7 Expected ipGenPrefix type, invalid data type passed")});
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
      expectRefused(addStandard(value, missing(error), 231), error,
                    {errorRecord("", "addAttribute", "Unsupported attribute: 231")});
    }
  }
}

TEST(AddAttribute, PassesOnThatAValueIsTooLong) {
  expectRefused(
      addStandard(Verda::String(std::string(65535, 't')), infoOf(RadiusAttributeType::string)),
      ErrorMsg::invalidAttrLength, tooLongRecord("addStrTypes", 65537));
}

TEST(AddAttribute, NeedsRoomForTheWholeAttributeOfEveryDataType) {
  using Type = RadiusAttributeType;
  const IpGenPrefix ip4(Verda::String("192.0.2.33"));
  const IpGenPrefix ip6(Verda::String("2001:db8::a1b2:c3d4:e5f6:7/32"));
  struct Case {
    const char* name;
    AttrValue value;
    AttrInfo info;
    const char* written;
    const char* encoder;  ///< in whose name there is a message, if any
  };
  for (const Case& one : std::vector<Case>{
           {"string", Verda::String("nemo"), infoOf(Type::string), "07066e656d6f", "addStrTypes"},
           {"no text", Verda::String(), infoOf(Type::string), "0702", "addStrTypes"},
           {"tagged string", TaggedStr{.str = "nemo", .tag = 3},
            infoOf(Type::string, {.tag = true}), "0707036e656d6f", "addStrTypes"},
           {"octets", Verda::Bytes{1, 2, 3}, infoOf(Type::octets), "0705010203", "addOctetTypes"},
           {"concat octets", Verda::Bytes{1, 2, 3}, infoOf(Type::octets, {.concat = true}),
            "0705010203", "addOctetTypes"},
           {"integer", 0x01020304U, infoOf(Type::integer), "070601020304", "addIntegerDateTypes"},
           {"tagged integer", TaggedInt{.value = 0x01020304, .tag = 2},
            infoOf(Type::integer, {.tag = true}), "070602020304", "addIntegerDateTypes"},
           {"date", 0x01020304U, infoOf(Type::date), "070601020304", "addIntegerDateTypes"},
           {"ipaddr", ip4, infoOf(Type::ipaddr), "0706c0000221", nullptr},
           {"ipv6addr", ip6, infoOf(Type::ipv6addr), "071220010db800000000a1b2c3d4e5f60007",
            nullptr},
           {"ipv6prefix", ip6, infoOf(Type::ipv6prefix), "0714002020010db800000000a1b2c3d4e5f60007",
            nullptr},
           {"ifid", ip6, infoOf(Type::ifid), "070aa1b2c3d4e5f60007", nullptr},
       }) {
    SCOPED_TRACE(one.name);
    const ByteVector written = fromHex(one.written);
    const std::size_t length = written.size();
    const auto lastPlace = static_cast<U16>(4096 - length);
    expectAdded(addStandard(one.value, one.info, 7, lastPlace), written, lastPlace);
    for (const std::size_t curLen : Sizes{lastPlace + 1U, 4096}) {
      Records records;
      if (one.encoder != nullptr) {
        records = noRoomRecord(one.encoder, length, curLen);
      }
      expectRefused(addStandard(one.value, one.info, 7, static_cast<U16>(curLen)),
                    ErrorMsg::maxPktLengthExceeded, records, static_cast<U16>(curLen));
    }
  }
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
  expectRefused(addStandard(Verda::String("p"), info, 2, 4096 - 17), ErrorMsg::maxPktLengthExceeded,
                noRoomRecord("addStrTypes", 18, 4079, 2), 4096 - 17);
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
ByteVector fragments(std::span<const U8> value) {
  ByteVector all;
  while (!value.empty()) {
    const auto piece = value.first(std::min<std::size_t>(value.size(), 253));
    all = joined({all, attributeBytes(7, {piece.begin(), piece.end()})});
    value = value.subspan(piece.size());
  }
  return all;
}

const AttrInfo& concatInfo() {
  static const AttrInfo info = infoOf(RadiusAttributeType::octets, {.concat = true});
  return info;
}

/// How many bytes of attributes a value is split into, and how long the last of them is.
struct SplitCase {
  std::size_t size;
  std::size_t written;
  std::size_t last;
};

void expectSplit(const SplitCase& one, U16 curLen) {
  SCOPED_TRACE(fmt::format("{} bytes at {}", one.size, curLen));
  const ByteVector value = countingBytes(one.size);
  ByteVector expected = fragments(value);
  ASSERT_EQ(expected.size(), one.written);
  expected.resize(4096U - curLen, untouched);
  const Added added = addStandard(verdaBytes(value), concatInfo(), 7, curLen);
  EXPECT_EQ(added.result, ErrorMsg::success);
  EXPECT_EQ(added.buffer, expected);
  EXPECT_EQ(added.moved, static_cast<std::ptrdiff_t>(one.written - one.last));
  EXPECT_EQ(added.curLen, curLen + one.written - one.last);
  EXPECT_EQ(added.records, Records());
}

TEST(Concat, IsSplitAndLeavesThePositionAtTheLastFragment) {
  for (const SplitCase& one : {SplitCase{1, 3, 3},
                               {252, 254, 254},
                               {253, 255, 255},
                               {254, 258, 3},
                               {255, 259, 4},
                               {506, 510, 255},
                               {507, 513, 3},
                               {600, 606, 96},
                               {4044, 4076, 251}}) {
    expectSplit(one, 20);
    expectSplit(one, static_cast<U16>(4096 - one.written));
  }
}

TEST(Concat, MakesOf600BytesAttributesOf253And253And94) {
  const ByteVector value(600, 0x41);
  ByteVector expected =
      joined({attributeBytes(7, ByteVector(253, 0x41)), attributeBytes(7, ByteVector(253, 0x41)),
              attributeBytes(7, ByteVector(94, 0x41))});
  expected.resize(4076, untouched);
  const Added added = addStandard(verdaBytes(value), concatInfo());
  EXPECT_EQ(added.buffer, expected);
  EXPECT_EQ(added.moved, 510);
  EXPECT_EQ(added.curLen, 530);
}

TEST(Concat, WritesNothingOfAnEmptyValue) {
  for (const U16 curLen : {U16{20}, U16{4095}, U16{4096}}) {
    expectAdded(addStandard(Verda::Bytes(), concatInfo(), 7, curLen), {}, curLen);
  }
}

TEST(Concat, IsOfTheFormThatIsCalledForWhateverTheKeySays) {
  expectAdded(addStandard(Verda::Bytes(), concatInfo(), 26), {});
  ByteVector buffer(8, untouched);
  EXPECT_EQ(addVsa(Verda::Bytes(), {.vendorId = 9, .attrId = 7, .vendorAttrId = 2}, concatInfo(),
                   buffer.data(), 20, nullptr),
            ErrorMsg::success);
  EXPECT_EQ(buffer, vendorBytes(9, 2, {}));
}

TEST(Concat, MovesNothingWhenAFragmentDoesNotFit) {
  struct Case {
    U16 curLen;
    std::size_t size;
    // The first fragment that does not fit, and where it would stand.
    std::size_t refusedLength;
    std::size_t refusedAt;
  };
  for (const Case& one : {Case{20, 4045, 252, 3845},
                          {20, 4076, 255, 3845},
                          {20, 4077, 255, 3845},
                          {20, 65535, 255, 3845},
                          {20, 100000, 255, 3845},
                          {21, 4044, 251, 3846},
                          {26, 4044, 251, 3851},
                          {26, 4045, 252, 3851},
                          {26, 4076, 255, 3851},
                          {26, 4077, 255, 3851},
                          {271, 3796, 3, 4096},
                          {270, 3796, 3, 4095},
                          {269, 3796, 3, 4094},
                          {3842, 253, 255, 3842},
                          {3842, 4077, 255, 3842},
                          {4094, 1, 3, 4094},
                          {4095, 1, 3, 4095},
                          {4096, 1, 3, 4096},
                          {4096, 4044, 255, 4096}}) {
    SCOPED_TRACE(fmt::format("{} bytes at {}", one.size, one.curLen));
    const Added refused =
        addStandard(verdaBytes(ByteVector(one.size)), concatInfo(), 7, one.curLen);
    EXPECT_EQ(refused.result, ErrorMsg::maxPktLengthExceeded);
    EXPECT_EQ(refused.records, noRoomRecord("addOctetTypes", one.refusedLength, one.refusedAt));
    expectNothingMoved(refused, one.curLen);
    // From the fragment on that does not fit, nothing is written.
    const ByteVector rest(
        refused.buffer.begin() + static_cast<std::ptrdiff_t>(one.refusedAt) - one.curLen,
        refused.buffer.end());
    EXPECT_EQ(rest, ByteVector(4096 - one.refusedAt, untouched));
  }
}

TEST(Concat, NeedsOctetsToBeSplit) {
  for (const std::size_t size : Sizes{254, 600, 4044, 4077}) {
    SCOPED_TRACE(size);
    expectRefused(addStandard(Verda::String(std::string(size, 't')),
                              infoOf(RadiusAttributeType::string, {.concat = true})),
                  ErrorMsg::invalidAttrLength, tooLongRecord("addStrTypes", size + 2));
    expectRefused(addStandard(verdaBytes(ByteVector(size)), infoOf(RadiusAttributeType::octets)),
                  ErrorMsg::invalidAttrLength, tooLongRecord("addOctetTypes", size + 2));
  }
}

TEST(Concat, RefusesAnythingButOctets) {
  for (const std::size_t index : Sizes{0, 1, 2, 3, 4, 5}) {
    expectRefused(addStandard(alternatives()[index], concatInfo()), ErrorMsg::invalidAttrDataType,
                  {errorRecord("", "addAttribute",
                               "AttrId: 7 Expected bytes type, invalid data type passed")});
  }
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
  // The longest: its outer Length is 261 modulo 256.
  expectAdded(addVendor(verdaBytes(countingBytes(253)), info),
              joined({ByteVector{26, 5, 0xfe, 0xdc, 0xba, 0x98, 7, 255}, countingBytes(253)}));
  for (const std::size_t size : Sizes{254, 506, 600, 4044, 4077}) {
    SCOPED_TRACE(size);
    expectRefused(addVendor(verdaBytes(ByteVector(size)), info), ErrorMsg::invalidAttrLength,
                  tooLongRecord("addOctetTypes", size + 2));
  }
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
    expectRefused(addVendor(TaggedInt{.value = 1, .tag = 2},
                            infoOf(RadiusAttributeType::date, {.tag = true}), curLen),
                  ErrorMsg::maxPktLengthExceeded, {}, curLen);
  }
}

TEST(AddVsa, RefusesWhatTheDictionaryLacks) {
  for (const ErrorMsg error : {ErrorMsg::invalidVendorId, ErrorMsg::invalidVendorAttrId}) {
    for (const AttrValue& value : alternatives()) {
      expectRefused(addVendor(value, missing(error)), error,
                    {errorRecord("", "addVsa",
                                 "Unsupported VSA: 26, vendor Id: 4275878552, vendorAttrId: 7")});
    }
  }
}

TEST(AddVsa, NeedsRoomForTheWholeAttributeOfEveryDataType) {
  using Type = RadiusAttributeType;
  struct Case {
    const char* name;
    AttrValue value;
    AttrInfo info;
    const char* subValue;
    const char* encoder;
  };
  for (const Case& one : std::vector<Case>{
           {"string", Verda::String("nemo"), infoOf(Type::string), "6e656d6f", "addStrTypes"},
           {"tagged string", TaggedStr{.str = "nemo", .tag = 3},
            infoOf(Type::string, {.tag = true}), "036e656d6f", "addStrTypes"},
           {"octets", Verda::Bytes{1, 2, 3}, infoOf(Type::octets), "010203", "addOctetTypes"},
           {"no octets", Verda::Bytes(), infoOf(Type::octets), "", "addOctetTypes"},
           {"integer", 0x01020304U, infoOf(Type::integer), "01020304", "addIntegerDateTypes"},
           {"tagged integer", TaggedInt{.value = 0x01020304, .tag = 2},
            infoOf(Type::integer, {.tag = true}), "02020304", "addIntegerDateTypes"},
           {"date", 0x01020304U, infoOf(Type::date), "01020304", "addIntegerDateTypes"},
       }) {
    SCOPED_TRACE(one.name);
    const ByteVector written = vsa(fromHex(one.subValue));
    const auto lastPlace = static_cast<U16>(4096 - written.size());
    expectAdded(addVendor(one.value, one.info, lastPlace), written, lastPlace);
    for (const std::size_t curLen : Sizes{lastPlace + 1U, 4096}) {
      expectRefused(addVendor(one.value, one.info, static_cast<U16>(curLen)),
                    ErrorMsg::maxPktLengthExceeded,
                    noRoomRecord(one.encoder, written.size(), curLen), static_cast<U16>(curLen));
    }
  }
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
