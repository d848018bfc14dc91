#include "RadiusPacketParser/RadiusPktTypes.h"

#include <algorithm>
#include <array>
#include <set>
#include <sstream>
#include <type_traits>

#include <gtest/gtest.h>

#include "Verda/Exception.h"

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParser.h"
#include "tests/support/ThrownText.h"

namespace {

using RadiusPacketParser::RadiusAttributeType;
using namespace RadiusPktParserBase;
using TestSupport::thrownText;
using Verda::U32;
using Verda::U8;

// ---- ErrorMsg ----

struct ErrorMsgRow {
  U8 number;
  const char* name;
};

constexpr std::array errorMsgRows{
    ErrorMsgRow{0, "success"},
    ErrorMsgRow{1, "invalidPktPtr"},
    ErrorMsgRow{2, "invalidPktAuth"},
    ErrorMsgRow{3, "invalidMsgAuth"},
    ErrorMsgRow{4, "invalidPktLength"},
    ErrorMsgRow{5, "invalidAttrId"},
    ErrorMsgRow{6, "invalidAttrLength"},
    ErrorMsgRow{7, "invalidAttrDataType"},
    ErrorMsgRow{8, "invalidVendorId"},
    ErrorMsgRow{9, "invalidVendorAttrId"},
    ErrorMsgRow{10, "invalidVendorAttrDataType"},
    ErrorMsgRow{11, "unknownAttrDataType"},
    ErrorMsgRow{12, "maxPktLengthExceeded"},
    ErrorMsgRow{13, "concatAttrNotConsecutive"},
    ErrorMsgRow{14, "pktAuthGenerationFailed"},
    ErrorMsgRow{15, "md5GenerationFailed"},
    ErrorMsgRow{16, "invalidBytesCopied"},
    ErrorMsgRow{17, "unsupportedPktType"},
    ErrorMsgRow{18, "pktTypeDoesNotSupportMsgAuth"},
    ErrorMsgRow{19, "missingRequiredMsgAuth"},
    ErrorMsgRow{20, "tagByteMissing"},
};

TEST(ErrorMsgTable, ConvertsEachRowBothWays) {
  for (const ErrorMsgRow& row : errorMsgRows) {
    SCOPED_TRACE(row.name);
    const auto value = static_cast<ErrorMsg>(row.number);
    EXPECT_EQ(stringValue(value), row.name);
    EXPECT_EQ(ErrorMsgInstance(Verda::String(row.name)), value);
    EXPECT_EQ(ErrorMsgInstance(U32{row.number}), value);
    std::ostringstream printed;
    printed << value;
    EXPECT_EQ(printed.str(), row.name);
    Tyl::TextReader text(row.name);
    ErrorMsg read{};
    sequenceToValue(text, read);
    EXPECT_EQ(read, value);
    EXPECT_TRUE(text.atEnd());
  }
}

TEST(ErrorMsgTable, HoldsTheseRowsInThisOrderAndNoOther) {
  const Tyl::EnumerationTable& table = enumerationTableOf(ErrorMsg{});
  EXPECT_EQ(table.name, "ErrorMsg");
  ASSERT_EQ(table.enumerators.size(), errorMsgRows.size());
  for (std::size_t at = 0; at < errorMsgRows.size(); ++at) {
    EXPECT_EQ(table.enumerators[at].name, errorMsgRows[at].name);
    EXPECT_EQ(table.enumerators[at].number, errorMsgRows[at].number);
  }
}

TEST(ErrorMsgTable, RefusesEveryNumberThatIsNoRow) {
  for (U32 number = errorMsgRows.size(); number <= 256; ++number) {
    EXPECT_EQ(thrownText<Verda::RangeError>([&] { ErrorMsgInstance(number); }),
              "ErrorMsg: " + std::to_string(number) + " is not an enumerator");
  }
}

TEST(ErrorMsgTable, RefusesANameThatIsNoRow) {
  for (const char* name : {"", "Success", "success ", "invalidPkt", "0", "tagByteMissingX"}) {
    EXPECT_EQ(thrownText<Verda::RangeError>([&] { ErrorMsgInstance(Verda::String(name)); }),
              "ErrorMsg: \"" + std::string(name) + "\" is not an enumerator");
  }
}

TEST(ErrorMsgTable, LeavesTheResultAloneWhenTheTextIsNoName) {
  ErrorMsg result = ErrorMsg::tagByteMissing;
  Tyl::TextReader text("nonsense");
  EXPECT_EQ(thrownText<Verda::RangeError>([&] { sequenceToValue(text, result); }),
            "ErrorMsg: \"nonsense\" is not an enumerator");
  EXPECT_EQ(result, ErrorMsg::tagByteMissing);
}

TEST(ErrorMsgTable, PrintsANumberThatIsNoRowWithTheTypesName) {
  EXPECT_EQ(stringValue(static_cast<ErrorMsg>(21)), "ErrorMsg(21)");
  EXPECT_EQ(stringValue(static_cast<ErrorMsg>(255)), "ErrorMsg(255)");
}

TEST(ErrorMsgTable, IsStoredInOneByte) {
  EXPECT_EQ(sizeof(ErrorMsg), 1U);
}

// ---- Attribute ----

constexpr Attribute someAttribute{.vendorId = 311, .attrId = 26, .vendorAttrId = 16};

/// `someAttribute` with one field changed each.
constexpr std::array otherAttributes{
    Attribute{.vendorId = 312, .attrId = 26, .vendorAttrId = 16},
    Attribute{.vendorId = 311, .attrId = 27, .vendorAttrId = 16},
    Attribute{.vendorId = 311, .attrId = 26, .vendorAttrId = 17},
};

TEST(AttributeKey, IsAllZeroByDefault) {
  const Attribute key;
  EXPECT_EQ(key.vendorId, 0U);
  EXPECT_EQ(key.attrId, 0);
  EXPECT_EQ(key.vendorAttrId, 0);
}

TEST(AttributeKey, IsEqualOnlyWhenAllThreeFieldsAre) {
  const Attribute same = someAttribute;
  EXPECT_TRUE(same == someAttribute);
  for (const Attribute& other : otherAttributes) {
    EXPECT_FALSE(other == someAttribute);
    EXPECT_TRUE(other != someAttribute);
  }
}

TEST(AttributeKey, OrdersByVendorThenTypeThenVendorType) {
  const std::array ascending{
      Attribute{.vendorId = 0, .attrId = 0, .vendorAttrId = 0},
      Attribute{.vendorId = 0, .attrId = 0, .vendorAttrId = 255},
      Attribute{.vendorId = 0, .attrId = 1, .vendorAttrId = 0},
      Attribute{.vendorId = 0, .attrId = 255, .vendorAttrId = 255},
      Attribute{.vendorId = 1, .attrId = 0, .vendorAttrId = 0},
      Attribute{.vendorId = 4294967295, .attrId = 255, .vendorAttrId = 255},
  };
  for (std::size_t left = 0; left < ascending.size(); ++left) {
    for (std::size_t right = 0; right < ascending.size(); ++right) {
      EXPECT_EQ(ascending[left] <=> ascending[right], left <=> right);
    }
  }
}

TEST(AttributeKey, HashesEqualKeysAlike) {
  const Attribute same = someAttribute;
  EXPECT_EQ(same.hash(0), someAttribute.hash(0));
  EXPECT_EQ(same.hash(12345), someAttribute.hash(12345));
}

TEST(AttributeKey, HashesEveryFieldAndTheSeed) {
  for (const Attribute& other : otherAttributes) {
    EXPECT_NE(other.hash(0), someAttribute.hash(0));
  }
  EXPECT_NE(someAttribute.hash(0), someAttribute.hash(1));
}

TEST(AttributeKey, SpreadsTheKeysOfADictionary) {
  std::set<U32> hashes;
  std::set<U32> lowBits;
  for (U32 vendorId : {U32{0}, U32{9}, U32{311}, U32{4294967295}}) {
    for (U32 type = 0; type < 256; ++type) {
      const U32 hash = vendorAttribute(vendorId, static_cast<U8>(type)).hash(7);
      hashes.insert(hash);
      lowBits.insert(hash & 0xff);
    }
  }
  EXPECT_GE(hashes.size(), 1020U);
  EXPECT_GE(lowBits.size(), 240U);
}

TEST(AttributeKey, IsMadeForStandardAndVendorAttributes) {
  EXPECT_EQ(standardAttribute(80), (Attribute{.vendorId = 0, .attrId = 80, .vendorAttrId = 0}));
  EXPECT_EQ(vendorAttribute(311, 16), someAttribute);
}

// ---- Tagged values ----

TEST(TaggedValues, AreZeroByDefault) {
  EXPECT_EQ(TaggedStr().str, "");
  EXPECT_EQ(TaggedStr().tag, 0);
  EXPECT_EQ(TaggedInt().value, 0U);
  EXPECT_EQ(TaggedInt().tag, 0);
}

TEST(TaggedValues, KeepWhatTheyHoldInTheirHooks) {
  TaggedStr text{.str = "\x01text", .tag = 0};
  text.handleTaggedStr();
  EXPECT_EQ(text, (TaggedStr{.str = "\x01text", .tag = 0}));
  TaggedInt number{.value = 0x01020304, .tag = 0};
  number.handleTaggedInt();
  EXPECT_EQ(number, (TaggedInt{.value = 0x01020304, .tag = 0}));
}

TEST(TaggedValues, AreEqualOnlyWithEqualTag) {
  EXPECT_NE((TaggedStr{.str = "a", .tag = 1}), (TaggedStr{.str = "a", .tag = 2}));
  EXPECT_NE((TaggedStr{.str = "a", .tag = 1}), (TaggedStr{.str = "b", .tag = 1}));
  EXPECT_NE((TaggedInt{.value = 7, .tag = 1}), (TaggedInt{.value = 7, .tag = 2}));
  EXPECT_NE((TaggedInt{.value = 7, .tag = 1}), (TaggedInt{.value = 8, .tag = 1}));
}

TEST(SeparateTag, TakesTheFirstByteOfAText) {
  EXPECT_EQ(separateTag(TaggedStr{.str = "\x1ftext", .tag = 0}),
            (TaggedStr{.str = "text", .tag = 0x1f}));
}

TEST(SeparateTag, TakesAnyFirstByteForTheTag) {
  EXPECT_EQ(separateTag(TaggedStr{.str = "\xfftext", .tag = 0}),
            (TaggedStr{.str = "text", .tag = 0xff}));
  EXPECT_EQ(separateTag(TaggedStr{.str = std::string(1, '\0') + "x", .tag = 0}),
            (TaggedStr{.str = "x", .tag = 0}));
}

TEST(SeparateTag, LeavesNothingBehindALoneTag) {
  EXPECT_EQ(separateTag(TaggedStr{.str = "\x01", .tag = 0}), (TaggedStr{.str = "", .tag = 1}));
}

TEST(SeparateTag, LeavesAnEmptyTextAsItIs) {
  EXPECT_EQ(separateTag(TaggedStr{.str = "", .tag = 5}), (TaggedStr{.str = "", .tag = 5}));
}

TEST(SeparateTag, TakesTheHighestByteOfANumber) {
  EXPECT_EQ(separateTag(TaggedInt{.value = 0x1f00000d, .tag = 0}),
            (TaggedInt{.value = 13, .tag = 0x1f}));
  EXPECT_EQ(separateTag(TaggedInt{.value = 0xffffffff, .tag = 0}),
            (TaggedInt{.value = 0xffffff, .tag = 0xff}));
  EXPECT_EQ(separateTag(TaggedInt{.value = 13, .tag = 9}), (TaggedInt{.value = 13, .tag = 0}));
}

// ---- AttrValue ----

template <std::size_t index, typename Alternative>
constexpr bool alternativeIs =
    std::is_same_v<std::variant_alternative_t<index, AttrValue>, Alternative>;

TEST(AttrValueAlternatives, StandInTheirOrder) {
  static_assert(std::variant_size_v<AttrValue> == 7);
  static_assert(alternativeIs<0, Verda::String>);
  static_assert(alternativeIs<1, TaggedStr>);
  static_assert(alternativeIs<2, unsigned int>);
  static_assert(alternativeIs<3, TaggedInt>);
  static_assert(alternativeIs<4, unsigned long>);
  static_assert(alternativeIs<5, Zonet::IpGenPrefix>);
  static_assert(alternativeIs<6, Verda::Bytes>);
  EXPECT_EQ(AttrValue(Verda::String("text")).index(), 0U);
  EXPECT_EQ(AttrValue(TaggedStr()).index(), 1U);
  EXPECT_EQ(AttrValue(7U).index(), 2U);
  EXPECT_EQ(AttrValue(TaggedInt()).index(), 3U);
  EXPECT_EQ(AttrValue(7UL).index(), 4U);
  EXPECT_EQ(AttrValue(Zonet::IpGenPrefix()).index(), 5U);
  EXPECT_EQ(AttrValue(Verda::Bytes()).index(), 6U);
}

TEST(AttrValueAlternatives, BeginWithAnEmptyText) {
  EXPECT_EQ(AttrValue(), AttrValue(Verda::String("")));
}

TEST(AttrValueAlternatives, AreNumbersOf32And64Bits) {
  EXPECT_EQ(sizeof(std::variant_alternative_t<2, AttrValue>), 4U);
  EXPECT_EQ(sizeof(std::variant_alternative_t<4, AttrValue>), 8U);
}

TEST(AttrValueAlternatives, AreCopiedAndCompared) {
  const AttrValue value = TaggedStr{.str = "text", .tag = 1};
  AttrValue copy = value;
  EXPECT_EQ(copy, value);
  std::get<TaggedStr>(copy).tag = 2;
  EXPECT_NE(copy, value);
  EXPECT_NE(AttrValue(Verda::String("text")), value);
  EXPECT_NE(AttrValue(7U), AttrValue(7UL));
}

// ---- AttrInfo ----

/// An `AttrInfo` of which no field is what it is by default.
AttrInfo fullAttrInfo() {
  AttrInfo info;
  info.isConcat = true;
  info.isTagged = true;
  info.isInDict = true;
  info.encryptionType = 2;
  info.attributeType = RadiusAttributeType::ipv6prefix;
  info.errorMsg = ErrorMsg::invalidVendorId;
  return info;
}

TEST(AttrInfoValue, IsAllZeroAndSuccessByDefault) {
  const AttrInfo info;
  EXPECT_FALSE(info.isConcat);
  EXPECT_FALSE(info.isTagged);
  EXPECT_FALSE(info.isInDict);
  EXPECT_EQ(info.encryptionType, 0);
  EXPECT_EQ(info.attributeType, RadiusAttributeType::unknown);
  EXPECT_EQ(info.errorMsg, ErrorMsg::success);
}

TEST(AttrInfoValue, HasSixFieldsOfOneByteEach) {
  EXPECT_EQ(sizeof(AttrInfo), 6U);
}

TEST(AttrInfoValue, DiffersWhenAnyFieldDiffers) {
  const AttrInfo full = fullAttrInfo();
  EXPECT_EQ(full, fullAttrInfo());
  std::array<AttrInfo, 6> changed;
  changed.fill(full);
  changed[0].isConcat = false;
  changed[1].isTagged = false;
  changed[2].isInDict = false;
  changed[3].encryptionType = 1;
  changed[4].attributeType = RadiusAttributeType::ifid;
  changed[5].errorMsg = ErrorMsg::success;
  for (std::size_t field = 0; field < changed.size(); ++field) {
    EXPECT_NE(changed[field], full) << "field " << field;
  }
}

TEST(AttrInfoText, ListsTheFieldsInDeclaredOrder) {
  EXPECT_EQ(AttrInfo().text(),
            "{isConcat=false, isTagged=false, isInDict=false, encryptionType=0, "
            "attributeType=unknown, errorMsg=success}");
  EXPECT_EQ(fullAttrInfo().text(),
            "{isConcat=true, isTagged=true, isInDict=true, encryptionType=2, "
            "attributeType=ipv6prefix, errorMsg=invalidVendorId}");
  std::ostringstream printed;
  printed << fullAttrInfo();
  EXPECT_EQ(printed.str(), fullAttrInfo().text());
}

TEST(AttrInfoText, ReadsADefaultValueBack) {
  EXPECT_EQ(AttrInfo(AttrInfo().text()), AttrInfo());
}

TEST(AttrInfoText, ReadsEveryCombinationOfFlagsTypesAndErrorsBack) {
  for (U8 flags = 0; flags < 8; ++flags) {
    for (U8 type = 0; type <= 9; ++type) {
      for (const ErrorMsgRow& row : errorMsgRows) {
        AttrInfo info;
        info.isConcat = (flags & 1) != 0;
        info.isTagged = (flags & 2) != 0;
        info.isInDict = (flags & 4) != 0;
        info.attributeType = static_cast<RadiusAttributeType::RadiusAttributeTypeEnum>(type);
        info.errorMsg = static_cast<ErrorMsg>(row.number);
        ASSERT_EQ(AttrInfo(info.text()), info) << info;
      }
    }
  }
}

TEST(AttrInfoText, ReadsEveryEncryptionTypeBack) {
  for (U32 method = 0; method < 256; ++method) {
    AttrInfo info;
    info.encryptionType = static_cast<U8>(method);
    ASSERT_EQ(AttrInfo(info.text()), info) << info;
  }
}

struct TextFault {
  const char* name;
  const char* text;
  const char* message;
};

TEST(AttrInfoText, NamesTheFieldThatIsAtFault) {
  const std::array rows{
      TextFault{"empty", "", "a record begins with {"},
      TextFault{"no opening brace", "isConcat=true", "a record begins with {"},
      TextFault{"no field", "{}", "isConcat: the field does not come next"},
      TextFault{"other field first", "{isTagged=true", "isConcat: the field does not come next"},
      TextFault{"no equals sign", "{isConcat true", "isConcat: the field does not come next"},
      TextFault{"not a boolean", "{isConcat=1", "isConcat: neither true nor false"},
      TextFault{"no value", "{isConcat=,", "isConcat: neither true nor false"},
      TextFault{"no comma", "{isConcat=true isTagged=true", "isTagged: no comma before the field"},
      TextFault{"second boolean", "{isConcat=true, isTagged=maybe",
                "isTagged: neither true nor false"},
      TextFault{"third boolean", "{isConcat=true, isTagged=true, isInDict=TRUE",
                "isInDict: neither true nor false"},
      TextFault{"number too large",
                "{isConcat=true, isTagged=true, isInDict=true, encryptionType=256",
                "encryptionType: not a number from 0 to 255"},
      TextFault{"negative number",
                "{isConcat=true, isTagged=true, isInDict=true, encryptionType=-1",
                "encryptionType: not a number from 0 to 255"},
      TextFault{"number with letters",
                "{isConcat=true, isTagged=true, isInDict=true, encryptionType=1x",
                "encryptionType: not a number from 0 to 255"},
      TextFault{"endless number",
                "{isConcat=true, isTagged=true, isInDict=true, "
                "encryptionType=99999999999999999999999999",
                "encryptionType: not a number from 0 to 255"},
      TextFault{"no number", "{isConcat=true, isTagged=true, isInDict=true, encryptionType=",
                "encryptionType: not a number from 0 to 255"},
      TextFault{"unknown type name",
                "{isConcat=true, isTagged=true, isInDict=true, encryptionType=1, "
                "attributeType=text",
                "attributeType: RadiusAttributeType: \"text\" is not an enumerator"},
      TextFault{"type as number",
                "{isConcat=true, isTagged=true, isInDict=true, encryptionType=1, attributeType=1",
                "attributeType: RadiusAttributeType: \"1\" is not an enumerator"},
      TextFault{"unknown error name",
                "{isConcat=true, isTagged=true, isInDict=true, encryptionType=1, "
                "attributeType=string, errorMsg=fine}",
                "errorMsg: ErrorMsg: \"fine\" is not an enumerator"},
      TextFault{"no closing brace",
                "{isConcat=true, isTagged=true, isInDict=true, encryptionType=1, "
                "attributeType=string, errorMsg=success",
                "a record ends with }"},
      TextFault{"a seventh field",
                "{isConcat=true, isTagged=true, isInDict=true, encryptionType=1, "
                "attributeType=string, errorMsg=success, more=1}",
                "a record ends with }"},
      TextFault{"text behind the record",
                "{isConcat=true, isTagged=true, isInDict=true, encryptionType=1, "
                "attributeType=string, errorMsg=success} x",
                "a record ends with }"},
  };
  for (const TextFault& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(thrownText<Verda::RangeError>([&] { AttrInfo info{Verda::String(row.text)}; }),
              row.message);
  }
}

TEST(AttrInfoText, IsFreeInItsWhiteSpace) {
  EXPECT_EQ(AttrInfo(Verda::String("  {  isConcat = true,isTagged=true ,\n isInDict=true, "
                                   "encryptionType\t= 2, attributeType=ipv6prefix, "
                                   "errorMsg=invalidVendorId } ")),
            fullAttrInfo());
}

// ---- Entities ----

TEST(RadiusHdrEntity, IsZeroAndEmptyByDefault) {
  for (const auto& hdr : {radiusHdrFactory(), RadiusHdr::RadiusHdrIs()}) {
    EXPECT_EQ(hdr->code(), 0);
    EXPECT_EQ(hdr->id(), 0);
    EXPECT_EQ(hdr->length(), 0);
    EXPECT_EQ(hdr->authenticator(), "");
    EXPECT_EQ(hdr->userCount(), 1U);
  }
}

TEST(RadiusHdrEntity, KeepsWhatIsSet) {
  const auto hdr = radiusHdrFactory();
  hdr->codeIs(255);
  hdr->idIs(254);
  hdr->lengthIs(65535);
  hdr->authenticatorIs(Verda::String(std::string("a\0b", 3)));
  EXPECT_EQ(hdr->code(), 255);
  EXPECT_EQ(hdr->id(), 254);
  EXPECT_EQ(hdr->length(), 65535);
  EXPECT_EQ(hdr->authenticator(), std::string("a\0b", 3));
}

TEST(EntityFactories, MakeANewEntityEachTime) {
  EXPECT_FALSE(radiusHdrFactory() == radiusHdrFactory());
  EXPECT_FALSE(RadiusHdr::RadiusHdrIs() == RadiusHdr::RadiusHdrIs());
  constexpr Verda::U16 key = 1;
  EXPECT_FALSE(AttrToAddValue::AttrToAddValueIs(key) == AttrToAddValue::AttrToAddValueIs(key));
}

TEST(EntityFactories, MakeEntitiesOfTheirType) {
  EXPECT_EQ(radiusHdrFactory()->typeData().name, "RadiusHdr");
  EXPECT_EQ(attrWithValueFactory(someAttribute)->typeData().name, "AttrWithValue");
  EXPECT_EQ(attrToAddValueFactory(Verda::U16{1})->typeData().name, "AttrToAddValue");
  EXPECT_EQ(pktReturnFactory(nullptr)->typeData().name, "PktReturn");
  EXPECT_EQ(radiusHdrReturnFactory(nullptr)->typeData().name, "RadiusHdrReturn");
  EXPECT_EQ(pktInfoBaseFactory()->typeData().name, "PktInfoBase");
  EXPECT_EQ(concatAttrFactory()->typeData().name, "ConcatAttr");
}

TEST(AttrWithValueEntity, HoldsItsAttributeAndNoValueAtFirst) {
  for (const auto& entity :
       {attrWithValueFactory(someAttribute), AttrWithValue::AttrWithValueIs(someAttribute)}) {
    EXPECT_EQ(entity->attribute(), someAttribute);
    EXPECT_TRUE(entity->attrValue().empty());
  }
}

/// An entity that holds the numbers 1 to 3.
Verda::Ptr<AttrWithValue> threeValues() {
  auto entity = attrWithValueFactory(someAttribute);
  for (unsigned int number : {1U, 2U, 3U}) {
    entity->attrValuePush(number);
  }
  return entity;
}

TEST(AttrWithValueEntity, PopsTheLastPushedFirst) {
  const auto entity = threeValues();
  EXPECT_EQ(entity->attrValuePop(), AttrValue(3U));
  EXPECT_EQ(entity->attrValuePop(), AttrValue(2U));
  EXPECT_EQ(entity->attrValuePop(), AttrValue(1U));
  EXPECT_TRUE(entity->attrValue().empty());
}

TEST(AttrWithValueEntity, ThrowsWhenThereIsNothingToPop) {
  const auto entity = attrWithValueFactory(someAttribute);
  EXPECT_EQ(thrownText<Verda::EmptyVector>([&] { entity->attrValuePop(); }), "the vector is empty");
}

TEST(AttrWithValueEntity, PushesACopy) {
  const auto entity = attrWithValueFactory(someAttribute);
  AttrValue value = Verda::String("before");
  entity->attrValuePush(value);
  value = Verda::String("after");
  EXPECT_EQ(entity->attrValue(0), AttrValue(Verda::String("before")));
}

TEST(AttrWithValueEntity, ReadsInOrderByIndexAndByIteration) {
  const auto entity = threeValues();
  unsigned int expected = 1;
  for (const AttrValue& value : entity->attrValue()) {
    EXPECT_EQ(value, AttrValue(expected));
    EXPECT_EQ(entity->attrValue(expected - 1), AttrValue(expected));
    ++expected;
  }
  EXPECT_EQ(expected, 4U);
}

TEST(AttrWithValueEntity, EmptiesAtOnce) {
  const auto entity = threeValues();
  entity->attrValuePopAll();
  EXPECT_TRUE(entity->attrValue().empty());
  entity->attrValuePopAll();
  EXPECT_TRUE(entity->attrValue().empty());
}

TEST(AttrWithValueEntity, ReplacesOneValue) {
  const auto entity = threeValues();
  entity->attrValueIs(1, Verda::String("two"));
  ASSERT_EQ(entity->attrValue().size(), 3U);
  EXPECT_EQ(entity->attrValue(0), AttrValue(1U));
  EXPECT_EQ(entity->attrValue(1), AttrValue(Verda::String("two")));
  EXPECT_EQ(entity->attrValue(2), AttrValue(3U));
}

TEST(AttrWithValueEntity, ThrowsForAnIndexThatIsNotBelowTheSize) {
  const auto entity = threeValues();
  for (std::size_t index : {std::size_t{3}, std::size_t{4}, std::size_t{1000000}}) {
    try {
      entity->attrValueIs(index, 7U);
      FAIL() << "index " << index << " was taken";
    } catch (const Verda::VectorOutOfRange& fault) {
      EXPECT_EQ(fault.index(), index);
      EXPECT_EQ(fault.size(), 3U);
      EXPECT_EQ(std::string(fault.what()),
                "vector index " + std::to_string(index) + " is out of range, size 3");
    }
    EXPECT_EQ(thrownText<Verda::VectorOutOfRange>([&] { entity->attrValue(index); }),
              "vector index " + std::to_string(index) + " is out of range, size 3");
  }
  EXPECT_EQ(entity->attrValue().size(), 3U);
}

TEST(AttrToAddValueEntity, HoldsItsKeyAndNoAttributeUntilSet) {
  for (const auto& row : {attrToAddValueFactory(Verda::U16{65535}),
                          AttrToAddValue::AttrToAddValueIs(Verda::U16{65535})}) {
    EXPECT_EQ(row->key(), 65535);
    EXPECT_TRUE(row->attrWithValue() == nullptr);
    const auto attribute = threeValues();
    row->attrWithValueIs(attribute);
    EXPECT_TRUE(row->attrWithValue() == attribute);
  }
}

TEST(PktReturnEntity, HoldsThePacketAndSuccess) {
  const auto pkt = Zonet::pktFactory(20U);
  for (const auto& result : {pktReturnFactory(pkt), PktReturn::PktReturnIs(pkt)}) {
    EXPECT_TRUE(result->pkt() == pkt);
    EXPECT_EQ(result->errorMsg(), ErrorMsg::success);
    result->errorMsgIs(ErrorMsg::maxPktLengthExceeded);
    EXPECT_EQ(result->errorMsg(), ErrorMsg::maxPktLengthExceeded);
  }
}

TEST(RadiusHdrReturnEntity, HoldsTheHeaderAndSuccess) {
  const auto hdr = radiusHdrFactory();
  for (const auto& result :
       {radiusHdrReturnFactory(hdr), RadiusHdrReturn::RadiusHdrReturnIs(hdr)}) {
    EXPECT_TRUE(result->hdr() == hdr);
    EXPECT_EQ(result->errorMsg(), ErrorMsg::success);
    result->errorMsgIs(ErrorMsg::invalidPktLength);
    EXPECT_EQ(result->errorMsg(), ErrorMsg::invalidPktLength);
  }
}

TEST(FailedResults, HoldNothingButEachError) {
  for (const ErrorMsgRow& row : errorMsgRows) {
    const auto error = static_cast<ErrorMsg>(row.number);
    EXPECT_TRUE(invalidPkt(error)->pkt() == nullptr);
    EXPECT_EQ(invalidPkt(error)->errorMsg(), error);
    EXPECT_TRUE(invalidHdr(error)->hdr() == nullptr);
    EXPECT_EQ(invalidHdr(error)->errorMsg(), error);
  }
}

TEST(FailedResults, AreNewEachTime) {
  EXPECT_FALSE(invalidPkt(ErrorMsg::success) == invalidPkt(ErrorMsg::success));
  EXPECT_FALSE(invalidHdr(ErrorMsg::success) == invalidHdr(ErrorMsg::success));
}

TEST(PktInfoBaseEntity, IsTheBaseOfTheParsersSink) {
  static_assert(std::is_base_of_v<PktInfoBase, PktInfoParser>);
  static_assert(std::is_base_of_v<Verda::Node, PktInfoBase>);
  EXPECT_FALSE(PktInfoBase::PktInfoBaseIs() == nullptr);
}

TEST(ConcatAttrEntity, TakesAnAttributeOnce) {
  const auto concat = concatAttrFactory();
  EXPECT_TRUE(concat->concatAttrMap().empty());
  EXPECT_EQ(concat->concatAttrMapIs(someAttribute), someAttribute);
  EXPECT_EQ(concat->concatAttrMapIs(someAttribute), someAttribute);
  EXPECT_EQ(concat->concatAttrMap().size(), 1U);
  EXPECT_TRUE(concat->concatAttrMapHas(someAttribute));
}

TEST(ConcatAttrEntity, TellsAttributesApartByEveryField) {
  const auto concat = ConcatAttr::ConcatAttrIs();
  concat->concatAttrMapIs(someAttribute);
  for (const Attribute& other : otherAttributes) {
    EXPECT_FALSE(concat->concatAttrMapHas(other));
    concat->concatAttrMapIs(other);
  }
  EXPECT_EQ(concat->concatAttrMap().size(), 4U);
}

TEST(ConcatAttrEntity, RemovesOneAttribute) {
  const auto concat = concatAttrFactory();
  concat->concatAttrMapIs(someAttribute);
  concat->concatAttrMapIs(otherAttributes[0]);
  concat->concatAttrMapDel(someAttribute);
  EXPECT_FALSE(concat->concatAttrMapHas(someAttribute));
  EXPECT_TRUE(concat->concatAttrMapHas(otherAttributes[0]));
}

TEST(ConcatAttrEntity, ChangesNothingWhenAnAbsentAttributeIsRemoved) {
  const auto concat = concatAttrFactory();
  concat->concatAttrMapDel(someAttribute);
  EXPECT_TRUE(concat->concatAttrMap().empty());
  concat->concatAttrMapIs(someAttribute);
  concat->concatAttrMapDel(otherAttributes[0]);
  EXPECT_EQ(concat->concatAttrMap().size(), 1U);
}

TEST(ConcatAttrEntity, Empties) {
  const auto concat = concatAttrFactory();
  concat->concatAttrMapIs(someAttribute);
  concat->concatAttrMapIs(otherAttributes[0]);
  concat->concatAttrMapDelAll();
  EXPECT_TRUE(concat->concatAttrMap().empty());
  EXPECT_FALSE(concat->concatAttrMapHas(someAttribute));
}

}  // namespace
