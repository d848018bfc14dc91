#include <array>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "tests/support/CatchAssertion.h"
#include "tests/support/DictionaryTest.h"
#include "tests/support/LegacyPacket.h"

namespace RadiusPacketParser {
namespace {

using TestSupport::assertionTextOf;
using TestSupport::attributeBytes;
using TestSupport::bytesOf;
using TestSupport::ByteVector;
using TestSupport::CapturedRecord;
using TestSupport::CapturingSink;
using TestSupport::countingBytes;
using TestSupport::DataType;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::joined;
using TestSupport::LegacyPtr;
using TestSupport::legacyRecord;
using TestSupport::Outcome;
using TestSupport::outcomeOf;
using TestSupport::PacketMaker;
using TestSupport::pktOf;
using TestSupport::uncheckedPacket;
using TestSupport::vendorBytes;
using TestSupport::withLength;
using Verda::Ptr;
using Verda::String;
using Verda::U32;
using Verda::U8;
using Records = std::vector<CapturedRecord>;
using Texts = std::vector<std::string>;

constexpr U8 vendorSpecific = 26;
/// The attribute of data type `n` has the number `firstTyped + n`, of a vendor's `n`; the tagged
/// one of that type has a number that is `tagged` higher.
constexpr U8 firstTyped = 200;
constexpr U8 tagged = 20;
constexpr U32 vendor = 32473;
constexpr U32 otherVendor = 9;

constexpr U8 codeOf(DataType type) {
  return static_cast<U8>(firstTyped + type);
}

constexpr U8 taggedCodeOf(DataType type) {
  return static_cast<U8>(firstTyped + type + tagged);
}

/// The attribute of that data type, standard or the vendor's.
Attribute standard(DataType type) {
  return {codeOf(type), 0, 0};
}

Attribute taggedStandard(DataType type) {
  return {taggedCodeOf(type), 0, 0};
}

Attribute ofVendor(DataType type) {
  return {vendorSpecific, type, vendor};
}

/// Every data type three times: standard, standard with a tag, and the vendor's. Attribute 26 has a
/// tag or none.
DictPtr dictionaryWith(bool tagOf26) {
  DictionaryMaker maker;
  maker.add(vendorSpecific, RadiusAttributeType::octets, {.tag = tagOf26});
  for (U8 number = 0; number <= 9; ++number) {
    const auto type = static_cast<DataType>(number);
    maker.add(codeOf(type), type);
    maker.add(taggedCodeOf(type), type, {.tag = true});
    maker.addVendor(vendor, number, type);
    maker.addVendor(vendor, static_cast<U8>(number + tagged), type, {.tag = true});
    maker.addVendor(otherVendor, number, type);
  }
  return maker.make();
}

const DictPtr& dictionary() {
  static const DictPtr made = dictionaryWith(false);
  return made;
}

/// The values of a kind and their tags, as in "0=text" and "1=text, tag 3".
Texts valuesOf(const RadiusPacketParserBase& parser, const Attribute& key) {
  const Ptr<AttrInfo> info = parser.attrInfo(key);
  if (!info) {
    return {"(no AttrInfo)"};
  }
  Texts values;
  std::size_t tags = 0;
  for (const auto& [index, text] : info->value()) {
    std::string value = fmt::format("{}={}", index, text);
    if (const auto tag = info->tagGet(index)) {
      value += fmt::format(", tag {}", *tag);
      ++tags;
    }
    values.push_back(value);
  }
  EXPECT_EQ(info->tag().size(), tags) << "a tag without a value";
  EXPECT_EQ(info->attribute(), key);
  return values;
}

/// A parser of the packet that has read the values of these kinds; the packet must stay as it is.
LegacyPtr readingOf(const ByteVector& packet, const std::vector<Attribute>& keys,
                    const DictPtr& dict = dictionary()) {
  const LegacyPtr parser = uncheckedPacket(packet, dict);
  for (const Attribute& key : keys) {
    parser->getValueOfAttributesListIs(key);
  }
  parser->getValuesOfAttributesFromAttributeList();
  EXPECT_EQ(bytesOf(parser->pkt()), packet);
  EXPECT_FALSE(parser->badPkt());
  return parser;
}

/// The values of one kind, which are read without a word.
Texts read(const ByteVector& packet, const Attribute& key, const DictPtr& dict = dictionary()) {
  const CapturingSink trace;
  const Texts values = valuesOf(*readingOf(packet, {key}, dict), key);
  EXPECT_EQ(trace.records(), Records());
  return values;
}

Texts read(const PacketMaker& maker, const Attribute& key, const DictPtr& dict = dictionary()) {
  return read(maker.make(), key, dict);
}

/// The text of the only value, as a standard attribute's.
Texts readStandard(DataType type, const ByteVector& value) {
  return read(PacketMaker(2).add(codeOf(type), value), standard(type));
}

/// The text of the only value, as the vendor attribute's.
Texts readVendor(DataType type, const ByteVector& value) {
  return read(PacketMaker(2).addVendor(vendor, type, value), ofVendor(type));
}

std::string textOf(const ByteVector& bytes) {
  return {bytes.begin(), bytes.end()};
}

constexpr std::array textTypes{RadiusAttributeType::string, RadiusAttributeType::octets};
constexpr std::array numberTypes{RadiusAttributeType::integer, RadiusAttributeType::date};
constexpr std::array taggableTypes{RadiusAttributeType::string, RadiusAttributeType::octets,
                                   RadiusAttributeType::integer, RadiusAttributeType::date};
constexpr std::array groupTypes{RadiusAttributeType::ipv6addr, RadiusAttributeType::ifid};
constexpr std::array addressTypes{RadiusAttributeType::ipaddr, RadiusAttributeType::ipv6addr,
                                  RadiusAttributeType::ipv6prefix, RadiusAttributeType::ifid};

// ---- What is asked for ----

TEST(LegacyExtraction, GivesAnAttrInfoToEveryKindAskedFor) {
  const Attribute present = standard(RadiusAttributeType::string);
  const Attribute absent = standard(RadiusAttributeType::octets);
  const LegacyPtr parser = readingOf(
      PacketMaker(2).add(codeOf(RadiusAttributeType::string), {'a'}).make(), {present, absent});
  EXPECT_EQ(parser->attrInfo().size(), 2U);
  EXPECT_EQ(valuesOf(*parser, present), Texts{"0=a"});
  EXPECT_EQ(valuesOf(*parser, absent), Texts());
}

TEST(LegacyExtraction, GivesNoValuesOfABadPacket) {
  const CapturingSink trace;
  const Attribute key = standard(RadiusAttributeType::string);
  const LegacyPtr parser = uncheckedPacket(
      PacketMaker(2).add(codeOf(RadiusAttributeType::string), {'a'}).make(), dictionary());
  parser->badPktIs(true);
  parser->getValueOfAttributesListIs(key);
  parser->getValuesOfAttributesFromAttributeList();
  EXPECT_EQ(valuesOf(*parser, key), Texts());
  EXPECT_EQ(trace.records(), Records());
}

TEST(LegacyExtraction, GivesNoValuesOfAPacketThatIsTooShortForAHeader) {
  const CapturingSink silent;
  const Attribute key = standard(RadiusAttributeType::string);
  const auto parser = radiusPacketParserFactory(dictionary(), pktOf(ByteVector(19)));
  parser->getValueOfAttributesListIs(key);
  parser->getValuesOfAttributesFromAttributeList();
  EXPECT_EQ(valuesOf(*parser, key), Texts());
}

TEST(LegacyExtraction, GivesNoValuesWhenTheLengthFieldIsAtMostTwenty) {
  const ByteVector packet = PacketMaker(2).add(codeOf(RadiusAttributeType::string), {'a'}).make();
  for (const std::size_t length : {0U, 19U, 20U}) {
    EXPECT_EQ(read(withLength(packet, length), standard(RadiusAttributeType::string)), Texts());
  }
}

TEST(LegacyExtraction, ReadsNothingWhenNothingIsAskedFor) {
  PacketMaker maker(2);
  for (U8 type = 0; type <= 9; ++type) {
    maker.add(static_cast<U8>(firstTyped + type), {1}).addVendor(vendor, type, {1});
  }
  EXPECT_TRUE(readingOf(maker.make(), {})->attrInfo().empty());
}

TEST(LegacyExtraction, LeavesOutWhatIsNotAskedFor) {
  const Attribute key = standard(RadiusAttributeType::string);
  const LegacyPtr parser = readingOf(PacketMaker(2)
                                         .add(codeOf(RadiusAttributeType::integer64), {1})
                                         .add(codeOf(RadiusAttributeType::string), {'a'})
                                         .add(codeOf(RadiusAttributeType::octets), {'b'})
                                         .addVendor(vendor, RadiusAttributeType::string, {'c'})
                                         .make(),
                                     {key});
  EXPECT_EQ(parser->attrInfo().size(), 1U);
  EXPECT_EQ(valuesOf(*parser, key), Texts{"0=a"});
}

TEST(LegacyExtraction, NumbersTheValuesInPacketOrder) {
  EXPECT_EQ(read(PacketMaker(2)
                     .add(codeOf(RadiusAttributeType::octets), {'a'})
                     .add(codeOf(RadiusAttributeType::string), {'x'})
                     .add(codeOf(RadiusAttributeType::octets), {'b'}),
                 standard(RadiusAttributeType::octets)),
            (Texts{"0=a", "1=b"}));
}

TEST(LegacyExtraction, NumbersEmptyValuesLikeOthers) {
  EXPECT_EQ(read(PacketMaker(2)
                     .add(codeOf(RadiusAttributeType::string), {})
                     .add(codeOf(RadiusAttributeType::string), {'b'})
                     .add(codeOf(RadiusAttributeType::string), {}),
                 standard(RadiusAttributeType::string)),
            (Texts{"0=", "1=b", "2="}));
}

TEST(LegacyExtraction, KeepsVendorsTheirTypesAndStandardTypesApart) {
  const U8 type = RadiusAttributeType::string;
  const DictPtr dict = DictionaryMaker()
                           .add(type, RadiusAttributeType::string)
                           .add(type + 1, RadiusAttributeType::string)
                           .addVendor(vendor, type, RadiusAttributeType::string)
                           .addVendor(vendor, type + 1, RadiusAttributeType::string)
                           .addVendor(otherVendor, type, RadiusAttributeType::string)
                           .make();
  const std::vector<Attribute> keys{Attribute(type, 0, 0), Attribute(vendorSpecific, type, vendor),
                                    Attribute(vendorSpecific, type + 1, vendor),
                                    Attribute(vendorSpecific, type, otherVendor)};
  const LegacyPtr parser = readingOf(PacketMaker(2)
                                         .addVendor(otherVendor, type, {'d'})
                                         .addVendor(vendor, type + 1, {'c'})
                                         .addVendor(vendor, type, {'b'})
                                         .add(type, {'a'})
                                         .add(type + 1, {'x'})
                                         .addVendor(otherVendor, type + 1, {'x'})
                                         .make(),
                                     keys, dict);
  EXPECT_EQ(valuesOf(*parser, keys[0]), Texts{"0=a"});
  EXPECT_EQ(valuesOf(*parser, keys[1]), Texts{"0=b"});
  EXPECT_EQ(valuesOf(*parser, keys[2]), Texts{"0=c"});
  EXPECT_EQ(valuesOf(*parser, keys[3]), Texts{"0=d"});
}

TEST(LegacyExtraction, TakesNoOtherKeyForThePacketsKind) {
  const PacketMaker maker =
      PacketMaker(2).add(codeOf(RadiusAttributeType::string), {'a'}).addVendor(vendor, 1, {'b'});
  for (const Attribute& key :
       {Attribute(codeOf(RadiusAttributeType::string), 1, 0),
        Attribute(codeOf(RadiusAttributeType::string), 0, 1), Attribute(vendorSpecific, 0, 0),
        Attribute(vendorSpecific, 1, 0), Attribute(vendorSpecific, 0, vendor)}) {
    EXPECT_EQ(read(maker, key), Texts()) << key;
  }
}

TEST(LegacyExtraction, ReadsAllFourBytesOfTheVendor) {
  const DictPtr dict =
      DictionaryMaker().addVendor(0x81020304, 1, RadiusAttributeType::string).make();
  EXPECT_EQ(read(PacketMaker(2).addVendor(0x81020304, 1, {'a'}),
                 Attribute(vendorSpecific, 1, 0x81020304), dict),
            Texts{"0=a"});
}

TEST(LegacyExtraction, ReadsOnlyTheFirstSubAttribute) {
  ByteVector attribute = joined({vendorBytes(vendor, RadiusAttributeType::string, {'a', 'b'}),
                                 attributeBytes(RadiusAttributeType::string, {'c'}),
                                 attributeBytes(RadiusAttributeType::octets, {'d'})});
  attribute[1] = static_cast<U8>(attribute.size());
  const PacketMaker maker =
      PacketMaker(2).addRaw(attribute).addVendor(vendor, RadiusAttributeType::string, {'e'});
  EXPECT_EQ(read(maker, ofVendor(RadiusAttributeType::string)), (Texts{"0=ab", "1=e"}));
  EXPECT_EQ(read(maker, ofVendor(RadiusAttributeType::octets)), Texts());
}

TEST(LegacyExtraction, AppendsWhenItIsAskedAgain) {
  const Attribute key = standard(RadiusAttributeType::string);
  const Attribute taggedKey = taggedStandard(RadiusAttributeType::integer);
  const LegacyPtr parser =
      readingOf(PacketMaker(2)
                    .add(codeOf(RadiusAttributeType::string), {'a'})
                    .add(codeOf(RadiusAttributeType::string), {'b'})
                    .add(taggedCodeOf(RadiusAttributeType::integer), {7, 0, 0, 1})
                    .make(),
                {key, taggedKey});
  const Ptr<AttrInfo> info = parser->attrInfo(key);
  parser->getValuesOfAttributesFromAttributeList();
  EXPECT_EQ(parser->attrInfo(key), info);
  EXPECT_EQ(valuesOf(*parser, key), (Texts{"0=a", "1=b", "2=a", "3=b"}));
  EXPECT_EQ(valuesOf(*parser, taggedKey), (Texts{"0=1, tag 7", "1=1, tag 7"}));
}

TEST(LegacyExtraction, GivesTheValuesOnceWhenTheCallerEmptiesTheTableFirst) {
  const Attribute key = standard(RadiusAttributeType::string);
  const LegacyPtr parser =
      readingOf(PacketMaker(2).add(codeOf(RadiusAttributeType::string), {'a'}).make(), {key});
  parser->attrInfoDelAll();
  parser->getValuesOfAttributesFromAttributeList();
  EXPECT_EQ(valuesOf(*parser, key), Texts{"0=a"});
}

TEST(LegacyExtraction, KeepsTheListOfWhatIsAskedFor) {
  const std::vector<Attribute> keys{standard(RadiusAttributeType::string),
                                    ofVendor(RadiusAttributeType::integer)};
  const LegacyPtr parser = readingOf(PacketMaker(2).make(), keys);
  EXPECT_EQ(parser->getValueOfAttributesList().size(), 2U);
  for (const Attribute& key : keys) {
    EXPECT_TRUE(parser->getValueOfAttributesListHas(key));
  }
}

TEST(LegacyExtraction, KeepsWhatAnotherKindHasFromBefore) {
  const Attribute other = standard(RadiusAttributeType::octets);
  const LegacyPtr parser = uncheckedPacket(
      PacketMaker(2).add(codeOf(RadiusAttributeType::octets), {'x'}).make(), dictionary());
  parser->attrInfoIs(other)->valueIs(5, "kept");
  parser->getValuesOfAttributesFromAttributeList();
  EXPECT_EQ(valuesOf(*parser, other), Texts{"5=kept"});
}

TEST(LegacyExtraction, NumbersByHowManyValuesThereAre) {
  const Attribute key = standard(RadiusAttributeType::octets);
  const LegacyPtr parser = uncheckedPacket(
      PacketMaker(2).add(codeOf(RadiusAttributeType::octets), {'x'}).make(), dictionary());
  parser->attrInfoIs(key)->valueIs(5, "kept");
  parser->getValueOfAttributesListIs(key);
  parser->getValuesOfAttributesFromAttributeList();
  EXPECT_EQ(valuesOf(*parser, key), (Texts{"1=x", "5=kept"}));
}

TEST(LegacyExtraction, ReadsThreeHundredAttributesOfOneKind) {
  PacketMaker maker(2);
  Texts expected;
  for (int count = 0; count < 300; ++count) {
    maker.add(taggedCodeOf(RadiusAttributeType::integer),
              {3, 0, static_cast<U8>(count / 256), static_cast<U8>(count % 256)});
    expected.push_back(fmt::format("{}={}, tag 3", count, count));
  }
  EXPECT_EQ(read(maker, taggedStandard(RadiusAttributeType::integer)), expected);
}

// ---- Strings and octets ----

TEST(LegacyExtraction, GivesTextsAsTheBytesThatTheyAre) {
  const ByteVector bytes{'a', 0, 0xff, 0x80, '\n', 0};
  for (const DataType type : textTypes) {
    EXPECT_EQ(readStandard(type, bytes), Texts{"0=" + textOf(bytes)});
    EXPECT_EQ(readVendor(type, bytes), Texts{"0=" + textOf(bytes)});
  }
}

TEST(LegacyExtraction, GivesTheLongestTexts) {
  for (const DataType type : textTypes) {
    const ByteVector longest = countingBytes(253, 1);
    EXPECT_EQ(readStandard(type, longest), Texts{"0=" + textOf(longest)});
    const ByteVector longestOfVendor = countingBytes(247, 1);
    EXPECT_EQ(readVendor(type, longestOfVendor), Texts{"0=" + textOf(longestOfVendor)});
  }
}

TEST(LegacyExtraction, GivesTextsOfOneByte) {
  for (const DataType type : textTypes) {
    EXPECT_EQ(readStandard(type, {'a'}), Texts{"0=a"});
    EXPECT_EQ(readVendor(type, {'a'}), Texts{"0=a"});
  }
}

TEST(LegacyExtraction, GivesAnEmptyTextAndNoTagWhenThereIsNoValue) {
  for (const DataType type : taggableTypes) {
    SCOPED_TRACE(stringValue(type));
    EXPECT_EQ(readStandard(type, {}), Texts{"0="});
    EXPECT_EQ(readVendor(type, {}), Texts{"0="});
    EXPECT_EQ(read(PacketMaker(2).add(taggedCodeOf(type), {}), taggedStandard(type)), Texts{"0="});
    EXPECT_EQ(
        read(PacketMaker(2).addVendor(vendor, type, {}), ofVendor(type), dictionaryWith(true)),
        Texts{"0="});
  }
}

TEST(LegacyExtraction, TakesTheTagFromTheFrontOfAText) {
  for (const DataType type : textTypes) {
    EXPECT_EQ(
        read(PacketMaker(2).add(taggedCodeOf(type), {3, 'a', 'b', 'c'}), taggedStandard(type)),
        Texts{"0=abc, tag 3"});
  }
}

TEST(LegacyExtraction, TakesAnyFirstByteForTheTag) {
  for (const U8 tag : {U8{0}, U8{1}, U8{0x1f}, U8{0x20}, U8{255}}) {
    EXPECT_EQ(read(PacketMaker(2).add(taggedCodeOf(RadiusAttributeType::string), {tag, 'a'}),
                   taggedStandard(RadiusAttributeType::string)),
              Texts{fmt::format("0=a, tag {}", tag)});
  }
}

TEST(LegacyExtraction, LeavesNothingBehindALoneTag) {
  for (const DataType type : textTypes) {
    EXPECT_EQ(read(PacketMaker(2).add(taggedCodeOf(type), {9}), taggedStandard(type)),
              Texts{"0=, tag 9"});
  }
}

TEST(LegacyExtraction, NumbersTheTagsAsTheirValues) {
  const U8 type = taggedCodeOf(RadiusAttributeType::string);
  EXPECT_EQ(read(PacketMaker(2).add(type, {1, 'a'}).add(type, {}).add(type, {2, 'b'}),
                 taggedStandard(RadiusAttributeType::string)),
            (Texts{"0=a, tag 1", "1=", "2=b, tag 2"}));
}

// ---- Whether a vendor's value has a tag ----

TEST(LegacyExtraction, DoesNotConsultAVendorsOwnTagFlag) {
  for (const DataType type : textTypes) {
    const auto number = static_cast<U8>(type + tagged);
    EXPECT_EQ(read(PacketMaker(2).addVendor(vendor, number, {1, 'a'}),
                   Attribute(vendorSpecific, number, vendor)),
              Texts{std::string("0=\x01") + "a"});
  }
}

TEST(LegacyExtraction, TakesTheTagFlagOfAttribute26AndTheVendorsFirstByte) {
  const DictPtr dict = DictionaryMaker()
                           .add(vendorSpecific, RadiusAttributeType::octets, {.tag = true})
                           .addVendor(0x81020304, 1, RadiusAttributeType::string)
                           .addVendor(0x81020304, 2, RadiusAttributeType::octets)
                           .addVendor(0x81020304, 3, RadiusAttributeType::integer)
                           .addVendor(0x81020304, 4, RadiusAttributeType::date)
                           .make();
  const auto readType = [&](U8 type, const ByteVector& value) {
    return read(PacketMaker(2).addVendor(0x81020304, type, value),
                Attribute(vendorSpecific, type, 0x81020304), dict);
  };
  EXPECT_EQ(readType(1, {3, 'a', 'b'}), Texts{"0=ab, tag 129"});
  EXPECT_EQ(readType(2, {3, 'a', 'b'}), Texts{"0=ab, tag 129"});
  EXPECT_EQ(readType(3, {3, 0, 1, 0}), Texts{"0=256, tag 129"});
  EXPECT_EQ(readType(4, {3, 0, 1, 0}), Texts{"0=256, tag 129"});
}

TEST(LegacyExtraction, TakesNoTagWhereTheDictionaryLacksAttribute26) {
  const DictPtr dict = DictionaryMaker()
                           .addVendor(vendor, 1, RadiusAttributeType::string, {.tag = true})
                           .addVendor(vendor, 2, RadiusAttributeType::integer, {.tag = true})
                           .make();
  EXPECT_EQ(read(PacketMaker(2).addVendor(vendor, 1, {3, 'a'}),
                 Attribute(vendorSpecific, 1, vendor), dict),
            Texts{std::string("0=\x03") + "a"});
  EXPECT_EQ(read(PacketMaker(2).addVendor(vendor, 2, {3, 0, 0, 1}),
                 Attribute(vendorSpecific, 2, vendor), dict),
            Texts{"0=50331649"});
}

// ---- Numbers and dates ----

TEST(LegacyExtraction, GivesNumbersAndDatesInDecimal) {
  struct Row {
    ByteVector value;
    const char* text;
  };
  const std::vector<Row> rows{{{0, 0, 0, 0}, "0=0"},
                              {{0, 0, 0x0e, 0x10}, "0=3600"},
                              {{1, 2, 3, 4}, "0=16909060"},
                              {{0x80, 0, 0, 0}, "0=2147483648"},
                              {{0xff, 0xff, 0xff, 0xff}, "0=4294967295"}};
  for (const Row& row : rows) {
    for (const DataType type : numberTypes) {
      EXPECT_EQ(readStandard(type, row.value), Texts{row.text});
      EXPECT_EQ(readVendor(type, row.value), Texts{row.text});
    }
  }
}

TEST(LegacyExtraction, TakesTheTagFromTheFrontOfANumber) {
  for (const DataType type : numberTypes) {
    const auto readTagged = [type](const ByteVector& value) {
      return read(PacketMaker(2).add(taggedCodeOf(type), value), taggedStandard(type));
    };
    EXPECT_EQ(readTagged({1, 0, 0, 0x0a}), Texts{"0=10, tag 1"});
    EXPECT_EQ(readTagged({0, 0, 0, 0}), Texts{"0=0, tag 0"});
    EXPECT_EQ(readTagged({255, 255, 255, 255}), Texts{"0=16777215, tag 255"});
  }
}

TEST(LegacyExtraction, FillsAShortNumberUpBehindItsBytes) {
  for (const DataType type : numberTypes) {
    EXPECT_EQ(readStandard(type, {1}), Texts{"0=16777216"});
    EXPECT_EQ(readStandard(type, {1, 2}), Texts{"0=16908288"});
    EXPECT_EQ(readVendor(type, {1, 2, 3}), Texts{"0=16909056"});
  }
}

TEST(LegacyExtraction, FillsAShortTaggedNumberUpBehindItsBytes) {
  for (const DataType type : numberTypes) {
    const auto readTagged = [type](const ByteVector& value) {
      return read(PacketMaker(2).add(taggedCodeOf(type), value), taggedStandard(type));
    };
    EXPECT_EQ(readTagged({9}), Texts{"0=0, tag 9"});
    EXPECT_EQ(readTagged({9, 1}), Texts{"0=65536, tag 9"});
    EXPECT_EQ(readTagged({9, 1, 2}), Texts{"0=66048, tag 9"});
  }
}

TEST(LegacyExtraction, TakesTheFirstBytesOfALongNumber) {
  for (const DataType type : numberTypes) {
    EXPECT_EQ(readStandard(type, {0, 0, 1, 0, 0xff}), Texts{"0=256"});
    EXPECT_EQ(readVendor(type, joined({ByteVector{0, 0, 1, 0}, ByteVector(243, 0xff)})),
              Texts{"0=256"});
    EXPECT_EQ(read(PacketMaker(2).add(taggedCodeOf(type),
                                      joined({ByteVector{7, 0, 1, 0}, ByteVector(249, 0xff)})),
                   taggedStandard(type)),
              Texts{"0=256, tag 7"});
  }
}

// ---- Addresses ----

TEST(LegacyExtraction, GivesAnAddressWithDots) {
  EXPECT_EQ(readStandard(RadiusAttributeType::ipaddr, {192, 0, 2, 1}), Texts{"0=192.0.2.1"});
  EXPECT_EQ(readStandard(RadiusAttributeType::ipaddr, {0, 0, 0, 0}), Texts{"0=0.0.0.0"});
  EXPECT_EQ(readStandard(RadiusAttributeType::ipaddr, {255, 255, 255, 255}),
            Texts{"0=255.255.255.255"});
}

TEST(LegacyExtraction, GivesAsManyNumbersWithDotsAsThereAreBytes) {
  EXPECT_EQ(readStandard(RadiusAttributeType::ipaddr, {10}), Texts{"0=10"});
  EXPECT_EQ(readStandard(RadiusAttributeType::ipaddr, {10, 20}), Texts{"0=10.20"});
  EXPECT_EQ(readStandard(RadiusAttributeType::ipaddr, {1, 2, 3, 4, 5}), Texts{"0=1.2.3.4.5"});
}

TEST(LegacyExtraction, GivesTheByteBehindTheLengthForAnEmptyAddress) {
  EXPECT_EQ(readStandard(RadiusAttributeType::ipaddr, {}), Texts{"0=0"});
  EXPECT_EQ(read(PacketMaker(2)
                     .add(codeOf(RadiusAttributeType::ipaddr), {})
                     .add(codeOf(RadiusAttributeType::string), {'a'}),
                 standard(RadiusAttributeType::ipaddr)),
            Texts{fmt::format("0={}", codeOf(RadiusAttributeType::string))});
}

TEST(LegacyExtraction, GivesGroupsWithoutShorteningThem) {
  const ByteVector address{0x20, 1, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  EXPECT_EQ(readStandard(RadiusAttributeType::ipv6addr, address), Texts{"0=2001:db8:0:0:0:0:0:1"});
  EXPECT_EQ(readStandard(RadiusAttributeType::ipv6addr, ByteVector(16)),
            Texts{"0=0:0:0:0:0:0:0:0"});
  EXPECT_EQ(readStandard(RadiusAttributeType::ipv6addr, ByteVector(16, 0xff)),
            Texts{"0=ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"});
  EXPECT_EQ(
      readStandard(RadiusAttributeType::ifid, {0x00, 0x0a, 0xAB, 0xCD, 0x10, 0x00, 0x01, 0x00}),
      Texts{"0=a:abcd:1000:100"});
}

TEST(LegacyExtraction, GivesAsManyGroupsAsThereArePairsOfBytes) {
  for (const DataType type : groupTypes) {
    SCOPED_TRACE(stringValue(type));
    EXPECT_EQ(readStandard(type, {}), Texts{"0="});
    EXPECT_EQ(readStandard(type, {1}), Texts{"0="});
    EXPECT_EQ(readStandard(type, {1, 2}), Texts{"0=102"});
    EXPECT_EQ(readStandard(type, {1, 2, 3}), Texts{"0=102"});
    EXPECT_EQ(readStandard(type, {1, 2, 0, 4, 5}), Texts{"0=102:4"});
  }
}

TEST(LegacyExtraction, GivesAPrefixWithItsLength) {
  EXPECT_EQ(readStandard(RadiusAttributeType::ipv6prefix, {0, 64, 0x20, 1, 0x0d, 0xb8, 0, 0, 0, 0}),
            Texts{"0=2001:db8:0:0/64"});
  EXPECT_EQ(readStandard(RadiusAttributeType::ipv6prefix,
                         joined({ByteVector{0, 128, 0xfe, 0x80}, ByteVector(14)})),
            Texts{"0=fe80:0:0:0:0:0:0:0/128"});
}

TEST(LegacyExtraction, GivesAPrefixOfAnyLengthAndReservedByte) {
  EXPECT_EQ(readStandard(RadiusAttributeType::ipv6prefix, {0xff, 255, 0xab, 0xcd}),
            Texts{"0=abcd/255"});
  EXPECT_EQ(readStandard(RadiusAttributeType::ipv6prefix, {0, 129}), Texts{"0=/129"});
}

TEST(LegacyExtraction, LeavesOutTheOddByteOfAPrefix) {
  EXPECT_EQ(readStandard(RadiusAttributeType::ipv6prefix, {0, 8, 0x20}), Texts{"0=/8"});
  EXPECT_EQ(readStandard(RadiusAttributeType::ipv6prefix, {0, 24, 0x20, 1, 0x0d}),
            Texts{"0=2001/24"});
}

TEST(LegacyExtraction, GivesNoGroupsOfAPrefixOfNoneOrOneByte) {
  EXPECT_EQ(readStandard(RadiusAttributeType::ipv6prefix, {}), Texts{"0=/0"});
  EXPECT_EQ(readStandard(RadiusAttributeType::ipv6prefix, {7}), Texts{"0=/0"});
  EXPECT_EQ(read(PacketMaker(2)
                     .add(codeOf(RadiusAttributeType::ipv6prefix), {})
                     .add(codeOf(RadiusAttributeType::string), {'a', 'b'}),
                 standard(RadiusAttributeType::ipv6prefix)),
            Texts{"0=/4"});
}

TEST(LegacyExtraction, GivesAnEmptyTextForAVendorsAddress) {
  for (const DataType type : addressTypes) {
    SCOPED_TRACE(stringValue(type));
    for (const std::size_t size : {0U, 1U, 4U, 16U, 18U}) {
      EXPECT_EQ(readVendor(type, ByteVector(size, 1)), Texts{"0="});
    }
  }
}

TEST(LegacyExtraction, TakesNoTagFromAnAddress) {
  const auto readTagged = [](DataType type, const ByteVector& value) {
    return read(PacketMaker(2).add(taggedCodeOf(type), value), taggedStandard(type));
  };
  EXPECT_EQ(readTagged(RadiusAttributeType::ipaddr, {192, 0, 2, 1}), Texts{"0=192.0.2.1"});
  EXPECT_EQ(readTagged(RadiusAttributeType::ipv6addr, {1, 2}), Texts{"0=102"});
  EXPECT_EQ(readTagged(RadiusAttributeType::ifid, {1, 2}), Texts{"0=102"});
  EXPECT_EQ(readTagged(RadiusAttributeType::ipv6prefix, {0, 16, 1, 2}), Texts{"0=102/16"});
  for (const DataType type : addressTypes) {
    EXPECT_EQ(read(PacketMaker(2).addVendor(vendor, type, {1, 2, 3, 4}), ofVendor(type),
                   dictionaryWith(true)),
              Texts{"0="});
  }
}

// ---- Types that are not read ----

TEST(LegacyExtraction, AssertsThatTheTypeOfAPresentKindIsOneItKnows) {
  const std::vector<Attribute> keys{standard(RadiusAttributeType::integer64),
                                    standard(RadiusAttributeType::unknown),
                                    ofVendor(RadiusAttributeType::integer64),
                                    ofVendor(RadiusAttributeType::unknown),
                                    Attribute(1, 0, 0),
                                    Attribute(vendorSpecific, 100, vendor),
                                    Attribute(vendorSpecific, 1, 77)};
  const ByteVector packet = PacketMaker(2)
                                .add(codeOf(RadiusAttributeType::integer64), ByteVector(8))
                                .add(codeOf(RadiusAttributeType::unknown), {1})
                                .addVendor(vendor, RadiusAttributeType::integer64, ByteVector(8))
                                .addVendor(vendor, RadiusAttributeType::unknown, {1})
                                .add(1, {'a'})
                                .addVendor(vendor, 100, {1})
                                .addVendor(77, 1, {1})
                                .make();
  for (const Attribute& key : keys) {
    SCOPED_TRACE(key);
    const LegacyPtr parser = uncheckedPacket(packet, dictionary());
    parser->getValueOfAttributesListIs(key);
    const auto reading = [&] { parser->getValuesOfAttributesFromAttributeList(); };
    EXPECT_EQ(outcomeOf(reading),
              (Outcome{{legacyRecord("getValuesOfAttributesFromAttributeList", "Not Supported")},
                       "false"}));
    EXPECT_EQ(outcomeOf(reading, Verda::traceOff), (Outcome{{}, "false"}));
    EXPECT_EQ(valuesOf(*parser, key), Texts());
  }
}

TEST(LegacyExtraction, AssertsNothingOfAKindThatIsAbsent) {
  for (const Attribute& key : {standard(RadiusAttributeType::integer64),
                               standard(RadiusAttributeType::unknown), Attribute(1, 0, 0)}) {
    EXPECT_EQ(read(PacketMaker(2).add(codeOf(RadiusAttributeType::string), {'a'}), key), Texts());
  }
}

// ---- Length bytes that lie ----

constexpr std::size_t valueOfLengthZero = 254;
constexpr std::size_t valueOfLengthOne = 255;

/// Reads a packet whose walk ends at a length byte of zero.
Texts readToAZeroLength(const ByteVector& packet, const Attribute& key) {
  const CapturingSink trace;
  const Texts values = valuesOf(*readingOf(packet, {key}), key);
  EXPECT_EQ(trace.records(), Records{legacyRecord("getValuesOfAttributesFromAttributeList",
                                                  "Attribute length zero, exiting")});
  return values;
}

TEST(LegacyExtraction, EndsAtALengthByteOfZeroAndKeepsWhatItHasRead) {
  const U8 type = codeOf(RadiusAttributeType::string);
  const ByteVector packet =
      PacketMaker(2).add(type, {'a'}).addRaw({99, 0, 'x'}).add(type, {'b'}).make();
  EXPECT_EQ(readToAZeroLength(packet, standard(RadiusAttributeType::string)), Texts{"0=a"});
}

TEST(LegacyExtraction, ReadsTheAttributeWhoseLengthByteIsZeroAsOneOf254Bytes) {
  const U8 type = codeOf(RadiusAttributeType::string);
  const ByteVector packet = PacketMaker(2).addRaw({type, 0, 'x', 'y'}).make();
  EXPECT_EQ(readToAZeroLength(packet, standard(RadiusAttributeType::string)),
            Texts{"0=xy" + std::string(valueOfLengthZero - 2, '\0')});
}

TEST(LegacyExtraction, ReadsALoneByteAsAnAttributeOfLengthZero) {
  const U8 type = codeOf(RadiusAttributeType::string);
  const ByteVector packet = PacketMaker(2).add(type, {'a'}).addRaw({type}).make();
  EXPECT_EQ(readToAZeroLength(packet, standard(RadiusAttributeType::string)),
            (Texts{"0=a", "1=" + std::string(valueOfLengthZero, '\0')}));
}

TEST(LegacyExtraction, ReadsTheAttributeWhoseLengthByteIsOneAsOneOf255Bytes) {
  const U8 type = codeOf(RadiusAttributeType::string);
  // Behind it the walk goes on at the length byte, as an attribute of type 1 and length 2.
  const ByteVector packet = PacketMaker(2).addRaw({type, 1, 2}).add(type, {'b'}).make();
  const std::string behind = std::string("\x02") + textOf(attributeBytes(type, {'b'}));
  EXPECT_EQ(read(packet, standard(RadiusAttributeType::string)),
            (Texts{"0=" + behind + std::string(valueOfLengthOne - behind.size(), '\0'), "1=b"}));
}

TEST(LegacyExtraction, EndsAtAnAttributeThatGoesBeyondTheLength) {
  const U8 type = codeOf(RadiusAttributeType::string);
  const ByteVector packet = PacketMaker(2).add(type, {'a'}).addRaw({type, 9, 'b', 'c'}).make();
  EXPECT_EQ(read(packet, standard(RadiusAttributeType::string)),
            (Texts{"0=a", "1=bc" + std::string(5, '\0')}));
}

TEST(LegacyExtraction, ReadsThePacketsOwnBytesBehindTheLengthWhenAnAttributeGoesThere) {
  const U8 type = codeOf(RadiusAttributeType::string);
  ByteVector packet = PacketMaker(2).addRaw({type, 6, 'a'}).make();
  packet.insert(packet.end(), {'b', 'c', 'd', 'e'});
  EXPECT_EQ(read(packet, standard(RadiusAttributeType::string)), Texts{"0=abcd"});
}

TEST(LegacyExtraction, FillsALastAttributeThatClaims255BytesUpWithZeros) {
  for (U8 number = RadiusAttributeType::string; number <= RadiusAttributeType::ifid; ++number) {
    const auto type = static_cast<DataType>(number);
    for (const Attribute& key : {standard(type), taggedStandard(type)}) {
      SCOPED_TRACE(key);
      const Texts values = read(PacketMaker(2).addRaw({key.attrId, 255, 1}).make(), key);
      ASSERT_EQ(values.size(), 1U);
    }
  }
  EXPECT_EQ(read(PacketMaker(2).addRaw({codeOf(RadiusAttributeType::string), 255, 'x'}),
                 standard(RadiusAttributeType::string)),
            Texts{"0=x" + std::string(252, '\0')});
  EXPECT_EQ(read(PacketMaker(2).addRaw({codeOf(RadiusAttributeType::integer), 255, 1}),
                 standard(RadiusAttributeType::integer)),
            Texts{"0=16777216"});
}

TEST(LegacyExtraction, TakesTheSubLengthForTheLengthOfAVendorsValue) {
  const auto readWith = [](U8 subLength) {
    ByteVector attribute = vendorBytes(vendor, RadiusAttributeType::string, {'a', 'b', 'c'});
    attribute[7] = subLength;
    return read(PacketMaker(2).addRaw(attribute), ofVendor(RadiusAttributeType::string));
  };
  EXPECT_EQ(readWith(0), Texts{"0=abc" + std::string(valueOfLengthZero - 3, '\0')});
  EXPECT_EQ(readWith(1), Texts{"0=abc" + std::string(valueOfLengthOne - 3, '\0')});
  EXPECT_EQ(readWith(2), Texts{"0="});
  EXPECT_EQ(readWith(3), Texts{"0=a"});
  EXPECT_EQ(readWith(255), Texts{"0=abc" + std::string(250, '\0')});
}

TEST(LegacyExtraction, TakesTheFirstBytesOfAVendorsNumberWhateverItsSubLength) {
  for (const DataType type : numberTypes) {
    for (const U8 subLength : {U8{0}, U8{1}, U8{255}}) {
      ByteVector attribute = vendorBytes(vendor, type, {0, 0, 1, 0});
      attribute[7] = subLength;
      EXPECT_EQ(read(PacketMaker(2).addRaw(attribute), ofVendor(type)), Texts{"0=256"});
      EXPECT_EQ(read(PacketMaker(2).addRaw(attribute), ofVendor(type), dictionaryWith(true)),
                Texts{"0=256, tag 0"});
    }
  }
}

TEST(LegacyExtraction, GivesAnEmptyTextForAVendorsAddressWhateverItsSubLength) {
  for (const DataType type : addressTypes) {
    for (const U8 subLength : {U8{0}, U8{1}, U8{2}, U8{255}}) {
      ByteVector attribute = vendorBytes(vendor, type, {});
      attribute[7] = subLength;
      EXPECT_EQ(read(PacketMaker(2).addRaw(attribute), ofVendor(type)), Texts{"0="});
    }
  }
}

TEST(LegacyExtraction, ReadsAVendorAttributeThatIsCutShortAsIfZerosFollowed) {
  const DictPtr dict = DictionaryMaker().addVendor(0, 0, RadiusAttributeType::string).make();
  const CapturingSink trace;
  const Attribute key(vendorSpecific, 0, 0);
  const LegacyPtr parser = readingOf(PacketMaker(2).addRaw({vendorSpecific}).make(), {key}, dict);
  EXPECT_EQ(valuesOf(*parser, key), Texts{"0=" + std::string(valueOfLengthZero, '\0')});
  EXPECT_EQ(trace.texts(), Texts{"Attribute length zero, exiting"});
}

TEST(LegacyExtraction, ReadsTheLongestVendorValueThatBeginsWithTheLastByteOfTheLength) {
  ByteVector attribute = vendorBytes(vendor, RadiusAttributeType::string, {'a'});
  attribute[7] = 1;
  const ByteVector packet = withLength(PacketMaker(2).addRaw(attribute).make(), 21);
  EXPECT_EQ(read(packet, ofVendor(RadiusAttributeType::string)),
            Texts{"0=a" + std::string(valueOfLengthOne - 1, '\0')});
}

TEST(LegacyExtraction, ReadsZerosWhereTheLengthFieldGoesBehindTheBuffer) {
  const DictPtr dict = DictionaryMaker().add(0, RadiusAttributeType::string).make();
  const Attribute key(0, 0, 0);
  for (const std::size_t length : {21U, 4096U, 65535U}) {
    const CapturingSink trace;
    const LegacyPtr parser = readingOf(withLength(PacketMaker(2).make(), length), {key}, dict);
    EXPECT_EQ(valuesOf(*parser, key), Texts{"0=" + std::string(valueOfLengthZero, '\0')});
    EXPECT_EQ(trace.records(), Records{legacyRecord("getValuesOfAttributesFromAttributeList",
                                                    "Attribute length zero, exiting")});
    EXPECT_EQ(parser->pkt()->bytes(), 20U);
  }
}

TEST(LegacyExtraction, ReadsAnAttributeThatOnlyTheLengthFieldHolds) {
  const U8 type = codeOf(RadiusAttributeType::string);
  EXPECT_EQ(read(withLength(PacketMaker(2).addRaw({type, 5, 'a'}).make(), 25),
                 standard(RadiusAttributeType::string)),
            Texts{std::string("0=a\0\0", 5)});
}

// ---- One attribute ----

TEST(LegacyExtractStrOctetTypes, TakesTheBytesBehindTheHead) {
  ByteVector attribute{1, 5, 'a', 0, 0xff};
  EXPECT_EQ(extractStrOctetTypes(attribute.data(), 3, false, false),
            std::string_view("a\0\xff", 3));
  EXPECT_EQ(extractStrOctetTypes(attribute.data(), 1, false, false), "a");
  EXPECT_EQ(extractStrOctetTypes(attribute.data(), 0, false, false), "");
}

TEST(LegacyExtractStrOctetTypes, TakesTheBytesBehindTheHeadOfAVendors) {
  ByteVector attribute = vendorBytes(vendor, 1, {'a', 'b', 'c'});
  EXPECT_EQ(extractStrOctetTypes(attribute.data(), 3, true, false), "abc");
  EXPECT_EQ(extractStrOctetTypes(attribute.data(), 0, true, false), "");
}

TEST(LegacyExtractStrOctetTypes, LeavesOutTheTag) {
  ByteVector attribute{1, 5, 'a', 'b', 'c'};
  EXPECT_EQ(extractStrOctetTypes(attribute.data(), 3, false, true), "bc");
  EXPECT_EQ(extractStrOctetTypes(attribute.data(), 1, false, true), "");
  ByteVector ofAVendor = vendorBytes(vendor, 1, {'a', 'b', 'c'});
  EXPECT_EQ(extractStrOctetTypes(ofAVendor.data(), 3, true, true), "bc");
}

TEST(LegacyExtractStrOctetTypes, ReadsNothingOfAnEmptyValue) {
  ByteVector attribute{1, 2};
  EXPECT_EQ(extractStrOctetTypes(attribute.data(), 0, false, false), "");
}

TEST(LegacyExtractStrOctetTypes, AssertsThatATaggedValueIsNotEmpty) {
  ByteVector attribute = vendorBytes(vendor, 1, {'a'});
  for (const bool isVsa : {false, true}) {
    EXPECT_EQ(assertionTextOf([&] { extractStrOctetTypes(attribute.data(), 0, isVsa, true); }),
              "distance >= 0");
  }
}

TEST(LegacyExtractIntegerDateTypes, TakesTheBytesBehindTheHead) {
  ByteVector attribute{1, 6, 0, 0, 0x0e, 0x10};
  EXPECT_EQ(extractIntegerDateTypes(attribute.data(), 4, false, false), "3600");
  ByteVector ofAVendor = vendorBytes(vendor, 1, {0xff, 0xff, 0xff, 0xff});
  EXPECT_EQ(extractIntegerDateTypes(ofAVendor.data(), 4, true, false), "4294967295");
}

TEST(LegacyExtractIntegerDateTypes, LeavesOutTheTag) {
  ByteVector attribute{1, 6, 1, 0, 0, 0x0a};
  EXPECT_EQ(extractIntegerDateTypes(attribute.data(), 4, false, true), "10");
  ByteVector ofAVendor = vendorBytes(vendor, 1, {0xff, 1, 2, 3});
  EXPECT_EQ(extractIntegerDateTypes(ofAVendor.data(), 4, true, true), "66051");
}

TEST(LegacyExtractIntegerDateTypes, FillsAShortValueUpBehindItsBytes) {
  ByteVector attribute{1, 5, 1, 2, 3};
  EXPECT_EQ(extractIntegerDateTypes(attribute.data(), 3, false, false), "16909056");
  EXPECT_EQ(extractIntegerDateTypes(attribute.data(), 3, false, true), "131840");
  EXPECT_EQ(extractIntegerDateTypes(attribute.data(), 1, false, true), "0");
  EXPECT_EQ(extractIntegerDateTypes(attribute.data(), 0, false, false), "0");
  EXPECT_EQ(extractIntegerDateTypes(attribute.data(), 0, false, true), "0");
}

TEST(LegacyExtractIntegerDateTypes, TakesTheFirstBytesOfALongValue) {
  ByteVector attribute = attributeBytes(1, countingBytes(253, 1));
  EXPECT_EQ(extractIntegerDateTypes(attribute.data(), 253, false, false), "16909060");
  EXPECT_EQ(extractIntegerDateTypes(attribute.data(), 5, false, false), "16909060");
  EXPECT_EQ(extractIntegerDateTypes(attribute.data(), 253, false, true), "131844");
  EXPECT_EQ(extractIntegerDateTypes(attribute.data(), 5, false, true), "131844");
}

}  // namespace
}  // namespace RadiusPacketParser
