#include "RadiusPacketParser/RadiusPacketParser.h"

#include <array>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "Verda/Exception.h"

#include "tests/support/CatchAssertion.h"
#include "tests/support/LegacyPacket.h"
#include "tests/support/ThrownText.h"

namespace RadiusPacketParser {
namespace {

using TestSupport::assertionTextOf;
using TestSupport::ByteVector;
using TestSupport::CapturedRecord;
using TestSupport::CapturingSink;
using TestSupport::countingBytes;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::joined;
using TestSupport::legacyRecord;
using TestSupport::PacketMaker;
using TestSupport::pktOf;
using TestSupport::thrownText;
using TestSupport::withLength;
using Verda::Ptr;
using Verda::String;
using Verda::U16;
using Verda::U32;
using Verda::U8;
using Records = std::vector<CapturedRecord>;

const DictPtr& dictionary() {
  static const DictPtr made = DictionaryMaker()
                                  .add(1, RadiusAttributeType::string)
                                  .add(27, RadiusAttributeType::integer)
                                  .make();
  return made;
}

Ptr<RadiusPacketParserBase> emptyParser() {
  return radiusPacketParserBaseFactory(dictionary(), pktOf(PacketMaker(2).make()));
}

template <typename Value>
std::string printed(const Value& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

// ---- RadiusHdr ----

TEST(LegacyHdr, IsAllZeroAndEmptyByDefault) {
  const Ptr<RadiusHdr> hdr = radiusHdrFactory();
  EXPECT_EQ(hdr->code(), 0);
  EXPECT_EQ(hdr->id(), 0);
  EXPECT_EQ(hdr->length(), 0);
  EXPECT_EQ(hdr->authenticator(), "");
}

TEST(LegacyHdr, HoldsTheHighestNumbersAndAnyBytes) {
  const std::string authenticator(
      "\0\xff\x80"
      "a\0\0\n\"\\xyz01234",
      16);
  const Ptr<RadiusHdr> hdr = radiusHdrFactory();
  hdr->codeIs(255);
  hdr->idIs(254);
  hdr->lengthIs(65535);
  hdr->authenticatorIs(String(authenticator));
  EXPECT_EQ(hdr->code(), 255);
  EXPECT_EQ(hdr->id(), 254);
  EXPECT_EQ(hdr->length(), 65535);
  EXPECT_EQ(hdr->authenticator(), authenticator);
}

// ---- Attribute ----

const Attribute someAttribute(26, 16, 311);

/// `someAttribute` with one field changed each.
const std::array otherAttributes{Attribute(27, 16, 311), Attribute(26, 17, 311),
                                 Attribute(26, 16, 312)};

TEST(LegacyAttribute, IsAllZeroByDefault) {
  const Attribute key;
  EXPECT_EQ(key.attrId, 0);
  EXPECT_EQ(key.vendorAttrId, 0);
  EXPECT_EQ(key.vendorId, 0U);
}

TEST(LegacyAttribute, IsMadeOfTypeVendorTypeAndVendor) {
  EXPECT_EQ(someAttribute.attrId, 26);
  EXPECT_EQ(someAttribute.vendorAttrId, 16);
  EXPECT_EQ(someAttribute.vendorId, 311U);
}

TEST(LegacyAttribute, IsEqualOnlyWhenAllThreeFieldsAre) {
  EXPECT_TRUE(Attribute(26, 16, 311) == someAttribute);
  for (const Attribute& other : otherAttributes) {
    EXPECT_FALSE(other == someAttribute) << other;
    EXPECT_TRUE(other != someAttribute) << other;
  }
}

TEST(LegacyAttribute, OrdersByTypeThenVendorTypeThenVendor) {
  const std::array ascending{
      Attribute(0, 0, 0),     Attribute(0, 0, 4294967295), Attribute(0, 255, 0),
      Attribute(1, 0, 0),     Attribute(26, 1, 9),         Attribute(26, 1, 311),
      Attribute(26, 2, 0),    Attribute(127, 0, 0),        Attribute(128, 0, 0),
      Attribute(255, 127, 1), Attribute(255, 128, 0),      Attribute(255, 255, 2147483648),
  };
  for (std::size_t left = 0; left < ascending.size(); ++left) {
    for (std::size_t right = 0; right < ascending.size(); ++right) {
      EXPECT_EQ(ascending[left] <=> ascending[right], left <=> right) << left << " " << right;
    }
  }
}

TEST(LegacyAttribute, HashesEqualKeysAlike) {
  EXPECT_EQ(Attribute(26, 16, 311).hash(0), someAttribute.hash(0));
  EXPECT_EQ(Attribute(26, 16, 311).hash(12345), someAttribute.hash(12345));
}

TEST(LegacyAttribute, HashesEveryFieldAndTheSeed) {
  for (const Attribute& other : otherAttributes) {
    EXPECT_NE(other.hash(0), someAttribute.hash(0)) << other;
  }
  EXPECT_NE(someAttribute.hash(0), someAttribute.hash(1));
}

TEST(LegacyAttribute, SpreadsTheKeysOfADictionary) {
  std::set<U32> hashes;
  std::set<U32> lowBits;
  for (const U32 vendorId : {U32{0}, U32{9}, U32{311}, U32{4294967295}}) {
    for (U32 type = 0; type < 256; ++type) {
      const U32 hash = Attribute(26, static_cast<U8>(type), vendorId).hash(7);
      hashes.insert(hash);
      lowBits.insert(hash & 0xff);
    }
  }
  EXPECT_GE(hashes.size(), 1020U);
  EXPECT_GE(lowBits.size(), 240U);
}

TEST(LegacyAttribute, ListsItsFieldsInDeclaredOrder) {
  EXPECT_EQ(Attribute().text(), "{attrId=0, vendorAttrId=0, vendorId=0}");
  EXPECT_EQ(Attribute(255, 128, 4294967295).text(),
            "{attrId=255, vendorAttrId=128, vendorId=4294967295}");
  EXPECT_EQ(printed(someAttribute), "{attrId=26, vendorAttrId=16, vendorId=311}");
}

TEST(LegacyAttribute, IsReadBackFromItsText) {
  for (const Attribute& key : {Attribute(), someAttribute, Attribute(255, 255, 4294967295)}) {
    EXPECT_EQ(Attribute(key.text()), key);
  }
}

struct TextFault {
  const char* text;
  const char* message;
};

TEST(LegacyAttribute, NamesTheFieldOfItsTextThatIsAtFault) {
  for (const TextFault& row : {
           TextFault{"", "a record begins with {"},
           TextFault{"{}", "attrId: the field does not come next"},
           TextFault{"{vendorId=0, attrId=0, vendorAttrId=0}",
                     "attrId: the field does not come next"},
           TextFault{"{attrId=256, vendorAttrId=0, vendorId=0}",
                     "attrId: not a number from 0 to 255"},
           TextFault{"{attrId=0, vendorAttrId=-1, vendorId=0}",
                     "vendorAttrId: not a number from 0 to 255"},
           TextFault{"{attrId=0, vendorAttrId=0, vendorId=4294967296}",
                     "vendorId: not a number from 0 to 4294967295"},
           TextFault{"{attrId=0, vendorAttrId=0, vendorId=0", "a record ends with }"},
       }) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(thrownText<Verda::RangeError>([&] { Attribute(String(row.text)); }), row.message);
  }
}

// ---- VsaValueType ----

const VsaValueType someVsa(311, 16, "text");

const std::array otherVsas{VsaValueType(312, 16, "text"), VsaValueType(311, 17, "text"),
                           VsaValueType(311, 16, "texu")};

TEST(LegacyVsaValue, IsZeroAndEmptyByDefault) {
  const VsaValueType vsa;
  EXPECT_EQ(vsa.vendorId, 0U);
  EXPECT_EQ(vsa.code, 0);
  EXPECT_EQ(vsa.value, "");
}

TEST(LegacyVsaValue, IsMadeOfVendorVendorTypeAndText) {
  EXPECT_EQ(someVsa.vendorId, 311U);
  EXPECT_EQ(someVsa.code, 16);
  EXPECT_EQ(someVsa.value, "text");
}

TEST(LegacyVsaValue, IsTrueWhenAnyFieldIsNotTheDefault) {
  EXPECT_FALSE(static_cast<bool>(VsaValueType()));
  EXPECT_FALSE(static_cast<bool>(VsaValueType(0, 0, "")));
  EXPECT_TRUE(static_cast<bool>(VsaValueType(1, 0, "")));
  EXPECT_TRUE(static_cast<bool>(VsaValueType(0, 1, "")));
  EXPECT_TRUE(static_cast<bool>(VsaValueType(0, 0, std::string(1, '\0'))));
}

TEST(LegacyVsaValue, IsEqualOnlyWhenAllThreeFieldsAre) {
  EXPECT_TRUE(VsaValueType(311, 16, "text") == someVsa);
  for (const VsaValueType& other : otherVsas) {
    EXPECT_FALSE(other == someVsa) << other;
    EXPECT_TRUE(other != someVsa) << other;
  }
}

TEST(LegacyVsaValue, OrdersByVendorThenVendorTypeThenText) {
  const std::array ascending{
      VsaValueType(0, 0, ""),         VsaValueType(0, 0, std::string(1, '\0')),
      VsaValueType(0, 0, "a"),        VsaValueType(0, 0, "aa"),
      VsaValueType(0, 0, "b"),        VsaValueType(0, 0, "\x80"),
      VsaValueType(0, 1, ""),         VsaValueType(0, 128, ""),
      VsaValueType(1, 0, ""),         VsaValueType(2147483648, 0, ""),
      VsaValueType(4294967295, 0, "")};
  for (std::size_t left = 0; left < ascending.size(); ++left) {
    for (std::size_t right = 0; right < ascending.size(); ++right) {
      EXPECT_EQ(ascending[left] <=> ascending[right], left <=> right) << left << " " << right;
    }
  }
}

TEST(LegacyVsaValue, HashesEqualValuesAlike) {
  EXPECT_EQ(VsaValueType(311, 16, "text").hash(0), someVsa.hash(0));
  EXPECT_EQ(VsaValueType(311, 16, "text").hash(12345), someVsa.hash(12345));
}

TEST(LegacyVsaValue, HashesEveryFieldAndTheSeed) {
  for (const VsaValueType& other : otherVsas) {
    EXPECT_NE(other.hash(0), someVsa.hash(0)) << other;
  }
  EXPECT_NE(someVsa.hash(0), someVsa.hash(1));
}

TEST(LegacyVsaValue, ListsItsFieldsInDeclaredOrder) {
  EXPECT_EQ(VsaValueType().text(), R"({vendorId=0, code=0, value=""})");
  EXPECT_EQ(VsaValueType(4294967295, 255, "a \"b\"\\").text(),
            R"({vendorId=4294967295, code=255, value="a \"b\"\\"})");
  EXPECT_EQ(printed(someVsa), R"({vendorId=311, code=16, value="text"})");
}

TEST(LegacyVsaValue, IsReadBackFromItsText) {
  std::string everyByte;
  for (int byte = 0; byte < 256; ++byte) {
    everyByte += static_cast<char>(byte);
  }
  for (const VsaValueType& vsa : {VsaValueType(), someVsa, VsaValueType(4294967295, 255, everyByte),
                                  VsaValueType(1, 1, "\", code=7}"), VsaValueType(1, 1, "\\")}) {
    EXPECT_EQ(VsaValueType(vsa.text()), vsa);
  }
}

TEST(LegacyVsaValue, NamesTheFieldOfItsTextThatIsAtFault) {
  for (const TextFault& row : {
           TextFault{R"({code=0, vendorId=0, value=""})", "vendorId: the field does not come next"},
           TextFault{R"({vendorId=4294967296, code=0, value=""})",
                     "vendorId: not a number from 0 to 4294967295"},
           TextFault{R"({vendorId=0, code=256, value=""})", "code: not a number from 0 to 255"},
           TextFault{R"({vendorId=0, code=0})", "value: no comma before the field"},
           TextFault{R"({vendorId=0, code=0, value="")", "a record ends with }"},
       }) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(thrownText<Verda::RangeError>([&] { VsaValueType(String(row.text)); }), row.message);
  }
}

// ---- AttrInfo ----

TEST(LegacyAttrInfo, HasItsKindAndNothingElseWhenMade) {
  const Ptr<AttrInfo> info = attrInfoFactory(someAttribute);
  EXPECT_EQ(info->attribute(), someAttribute);
  EXPECT_TRUE(info->value().empty());
  EXPECT_TRUE(info->tag().empty());
}

TEST(LegacyAttrInfo, GivesItsValuesInAscendingOrderOfTheIndex) {
  const Ptr<AttrInfo> info = attrInfoFactory(someAttribute);
  for (const U16 index : {U16{7}, U16{0}, U16{65535}, U16{256}}) {
    info->valueIs(index, String(std::to_string(index)));
  }
  std::vector<std::string> texts;
  for (const AttrInfo::TylValue& member : info->value()) {
    texts.emplace_back(member.second);
  }
  EXPECT_EQ(texts, (std::vector<std::string>{"0", "7", "256", "65535"}));
}

TEST(LegacyAttrInfo, OverwritesTheValueOfAnIndex) {
  const Ptr<AttrInfo> info = attrInfoFactory(someAttribute);
  info->valueIs(3, "a");
  info->valueIs(3, "b");
  EXPECT_EQ(info->value().size(), 1U);
  EXPECT_EQ(info->value(3), String("b"));
  EXPECT_EQ(info->valueGet(3), String("b"));
}

TEST(LegacyAttrInfo, HasNoValueForAnIndexThatIsAbsent) {
  const Ptr<AttrInfo> info = attrInfoFactory(someAttribute);
  info->valueIs(3, "");
  EXPECT_EQ(info->value(4), std::nullopt);
  EXPECT_EQ(info->valueGet(4), std::nullopt);
  EXPECT_EQ(info->valueGet(3), String(""));
}

TEST(LegacyAttrInfo, RemovesOneValueOrAll) {
  const Ptr<AttrInfo> info = attrInfoFactory(someAttribute);
  info->valueIs(0, "a");
  info->valueIs(1, "b");
  info->valueIs(2, "c");
  EXPECT_EQ(info->valueDel(1), String("b"));
  EXPECT_EQ(info->valueDel(1), std::nullopt);
  EXPECT_EQ(info->value().size(), 2U);
  info->valueDelAll();
  EXPECT_TRUE(info->value().empty());
}

TEST(LegacyAttrInfo, KeepsTagsApartFromValues) {
  const Ptr<AttrInfo> info = attrInfoFactory(someAttribute);
  info->tagIs(5, 31);
  info->tagIs(5, 255);
  EXPECT_EQ(info->tag().size(), 1U);
  EXPECT_EQ(info->tagGet(5), U8{255});
  EXPECT_EQ(info->tagGet(0), std::nullopt);
  EXPECT_TRUE(info->value().empty());
}

// ---- The parser object ----

TEST(LegacyParserBase, LooksAtNothingWhenMade) {
  const CapturingSink trace;
  const Ptr<Zonet::Pkt> pkt = pktOf(ByteVector(3));
  const auto parser = radiusPacketParserBaseFactory(dictionary(), pkt);
  EXPECT_EQ(parser->dictionary(), dictionary());
  EXPECT_EQ(parser->pkt(), pkt);
  EXPECT_EQ(parser->header(), nullptr);
  EXPECT_FALSE(parser->badPkt());
  EXPECT_FALSE(parser->msgAuthPresent());
  EXPECT_TRUE(parser->getValueOfAttributesList().empty());
  EXPECT_TRUE(parser->attrInfo().empty());
  EXPECT_TRUE(parser->attributesToSet().empty());
  EXPECT_TRUE(parser->attributesToAdd().empty());
  EXPECT_TRUE(parser->vsaToAdd().empty());
  EXPECT_TRUE(parser->attributesToRemove().empty());
  EXPECT_EQ(trace.records(), Records());
}

TEST(LegacyParserBase, MayBeMadeWithoutDictionaryAndPacket) {
  const auto parser = radiusPacketParserBaseFactory(DictPtr(), Ptr<Zonet::Pkt>());
  EXPECT_EQ(parser->dictionary(), nullptr);
  EXPECT_EQ(parser->pkt(), nullptr);
}

TEST(LegacyParserBase, TakesAnotherPacket) {
  const auto parser = emptyParser();
  const Ptr<Zonet::Pkt> other = pktOf(PacketMaker(3).make());
  parser->pktIs(other);
  parser->setHeader();
  EXPECT_EQ(parser->pkt(), other);
  EXPECT_EQ(parser->header()->code(), 3);
}

TEST(LegacyParserBase, MakesANewDefaultHeaderEveryTime) {
  const auto parser = emptyParser();
  const Ptr<RadiusHdr> first = parser->headerIs();
  EXPECT_EQ(parser->header(), first);
  first->codeIs(7);
  first->authenticatorIs("x");
  const Ptr<RadiusHdr> second = parser->headerIs();
  EXPECT_NE(second, first);
  EXPECT_EQ(parser->header(), second);
  EXPECT_EQ(second->code(), 0);
  EXPECT_EQ(second->authenticator(), "");
}

TEST(LegacyParserBase, FindsTheSameAttrInfoAgain) {
  const auto parser = emptyParser();
  const Ptr<AttrInfo> info = parser->attrInfoIs(someAttribute);
  info->valueIs(0, "kept");
  EXPECT_EQ(parser->attrInfoIs(someAttribute), info);
  EXPECT_EQ(parser->attrInfo(someAttribute), info);
  EXPECT_EQ(parser->attrInfoGet(someAttribute), info);
  EXPECT_EQ(info->attribute(), someAttribute);
  EXPECT_EQ(info->valueGet(0), String("kept"));
  EXPECT_TRUE(parser->attrInfoHas(someAttribute));
  EXPECT_EQ(parser->attrInfo().size(), 1U);
}

TEST(LegacyParserBase, HasNoAttrInfoForAnyOtherKind) {
  const auto parser = emptyParser();
  parser->attrInfoIs(someAttribute);
  for (const Attribute& other : otherAttributes) {
    EXPECT_FALSE(parser->attrInfoHas(other)) << other;
    EXPECT_EQ(parser->attrInfo(other), nullptr) << other;
    EXPECT_EQ(parser->attrInfoDel(other), nullptr) << other;
  }
  EXPECT_EQ(parser->attrInfo().size(), 1U);
}

TEST(LegacyParserBase, RemovesOneAttrInfoOrAll) {
  const auto parser = emptyParser();
  const Ptr<AttrInfo> info = parser->attrInfoIs(someAttribute);
  parser->attrInfoIs(otherAttributes[0]);
  parser->attrInfoIs(otherAttributes[1]);
  EXPECT_EQ(parser->attrInfoDel(someAttribute), info);
  EXPECT_EQ(parser->attrInfo().size(), 2U);
  parser->attrInfoDelAll();
  EXPECT_TRUE(parser->attrInfo().empty());
}

TEST(LegacyParserBase, OverwritesTheTextToSetOfAType) {
  const auto parser = emptyParser();
  parser->attributesToSetIs(1, "a");
  parser->attributesToSetIs(1, "b");
  EXPECT_EQ(parser->attributesToSet().size(), 1U);
  EXPECT_EQ(parser->attributesToSetGet(1), String("b"));
}

TEST(LegacyParserBase, KeepsTextsToSetByType) {
  const auto parser = emptyParser();
  parser->attributesToSetIs(0, "zero");
  parser->attributesToSetIs(255, "last");
  EXPECT_TRUE(parser->attributesToSetHas(0));
  EXPECT_FALSE(parser->attributesToSetHas(1));
  EXPECT_EQ(parser->attributesToSetGet(1), std::nullopt);
  EXPECT_EQ(parser->attributesToSetDel(1), std::nullopt);
  EXPECT_EQ(parser->attributesToSetDel(0), String("zero"));
  EXPECT_EQ(parser->attributesToSet().size(), 1U);
  parser->attributesToSetDelAll();
  EXPECT_TRUE(parser->attributesToSet().empty());
}

TEST(LegacyParserBase, OverwritesTheTextToAddOfAType) {
  const auto parser = emptyParser();
  parser->attributesToAddIs(1, "a");
  parser->attributesToAddIs(1, "b");
  EXPECT_EQ(parser->attributesToAdd().size(), 1U);
  EXPECT_EQ(parser->attributesToAddGet(1), String("b"));
}

TEST(LegacyParserBase, KeepsTextsToAddByType) {
  const auto parser = emptyParser();
  parser->attributesToAddIs(0, "zero");
  parser->attributesToAddIs(255, "last");
  EXPECT_TRUE(parser->attributesToAddHas(255));
  EXPECT_FALSE(parser->attributesToAddHas(1));
  EXPECT_EQ(parser->attributesToAddGet(1), std::nullopt);
  EXPECT_EQ(parser->attributesToAddDel(1), std::nullopt);
  EXPECT_EQ(parser->attributesToAddDel(255), String("last"));
  EXPECT_EQ(parser->attributesToAdd().size(), 1U);
  parser->attributesToAddDelAll();
  EXPECT_TRUE(parser->attributesToAdd().empty());
}

TEST(LegacyParserBase, OrdersVendorAttributesToAddByTheCallersKey) {
  const auto parser = emptyParser();
  parser->vsaToAddIs(255, VsaValueType(1, 1, "last"));
  parser->vsaToAddIs(0, VsaValueType(3, 3, "first"));
  parser->vsaToAddIs(128, VsaValueType(2, 2, "middle"));
  std::vector<std::string> texts;
  for (const RadiusPacketParserBase::TylVsaToAdd& member : parser->vsaToAdd()) {
    texts.push_back(std::to_string(member.first) + " " + std::string(member.second.value));
  }
  EXPECT_EQ(texts, (std::vector<std::string>{"0 first", "128 middle", "255 last"}));
}

TEST(LegacyParserBase, KeepsVendorAttributesToAddByKey) {
  const auto parser = emptyParser();
  parser->vsaToAddIs(7, otherVsas[0]);
  parser->vsaToAddIs(7, someVsa);
  EXPECT_EQ(parser->vsaToAdd().size(), 1U);
  EXPECT_EQ(parser->vsaToAddGet(7), someVsa);
  EXPECT_TRUE(parser->vsaToAddHas(7));
  EXPECT_FALSE(parser->vsaToAddHas(8));
  EXPECT_EQ(parser->vsaToAddGet(8), std::nullopt);
  EXPECT_EQ(parser->vsaToAddDel(8), std::nullopt);
  EXPECT_EQ(parser->vsaToAddDel(7), someVsa);
  EXPECT_TRUE(parser->vsaToAdd().empty());
  parser->vsaToAddIs(7, someVsa);
  parser->vsaToAddDelAll();
  EXPECT_TRUE(parser->vsaToAdd().empty());
}

TEST(LegacyParserBase, AsksForAKindOnce) {
  const auto parser = emptyParser();
  parser->getValueOfAttributesListIs(someAttribute);
  parser->getValueOfAttributesListIs(someAttribute);
  parser->getValueOfAttributesListIs(otherAttributes[0]);
  EXPECT_EQ(parser->getValueOfAttributesList().size(), 2U);
  EXPECT_TRUE(parser->getValueOfAttributesListHas(someAttribute));
  EXPECT_FALSE(parser->getValueOfAttributesListHas(otherAttributes[1]));
  EXPECT_EQ(parser->getValueOfAttributesListDel(otherAttributes[1]), std::nullopt);
  EXPECT_EQ(parser->getValueOfAttributesListDel(someAttribute), someAttribute);
  EXPECT_EQ(parser->getValueOfAttributesList().size(), 1U);
  parser->getValueOfAttributesListDelAll();
  EXPECT_TRUE(parser->getValueOfAttributesList().empty());
}

TEST(LegacyParserBase, RemovesAKindOnce) {
  const auto parser = emptyParser();
  parser->attributesToRemoveIs(someAttribute);
  parser->attributesToRemoveIs(someAttribute);
  parser->attributesToRemoveIs(otherAttributes[0]);
  EXPECT_EQ(parser->attributesToRemove().size(), 2U);
  EXPECT_TRUE(parser->attributesToRemoveHas(someAttribute));
  EXPECT_FALSE(parser->attributesToRemoveHas(otherAttributes[1]));
  EXPECT_EQ(parser->attributesToRemoveDel(otherAttributes[1]), std::nullopt);
  EXPECT_EQ(parser->attributesToRemoveDel(someAttribute), someAttribute);
  EXPECT_EQ(parser->attributesToRemove().size(), 1U);
  parser->attributesToRemoveDelAll();
  EXPECT_TRUE(parser->attributesToRemove().empty());
}

TEST(LegacyParserBase, StaysBadOnceItIs) {
  const auto parser = emptyParser();
  parser->badPktIs(false);
  EXPECT_FALSE(parser->badPkt());
  parser->badPktIs(true);
  EXPECT_TRUE(parser->badPkt());
  parser->badPktIs(false);
  EXPECT_TRUE(parser->badPkt());
  parser->setHeader();
  parser->doBasicPacketSanityCheck();
  EXPECT_TRUE(parser->badPkt());
}

TEST(LegacyParserBase, TypesAreEntitiesThatKnowTheirNames) {
  EXPECT_TRUE((std::is_base_of_v<Verda::Node, RadiusPacketParserBase>));
  EXPECT_TRUE((std::is_base_of_v<RadiusPacketParserBase, RadiusPacketParser>));
  EXPECT_EQ(emptyParser()->typeData().name, "RadiusPacketParserBase");
  EXPECT_EQ(radiusPacketParserFactory(dictionary(), pktOf(PacketMaker(2).make()))->typeData().name,
            "RadiusPacketParser");
  EXPECT_EQ(radiusHdrFactory()->typeData().name, "RadiusHdr");
  EXPECT_EQ(attrInfoFactory(Attribute())->typeData().name, "AttrInfo");
  EXPECT_EQ(radiusPacketNewFactory(radiusHdrFactory())->typeData().name, "RadiusPacketNew");
}

TEST(LegacyParserBase, FactoriesMakeNewEntities) {
  EXPECT_NE(radiusHdrFactory(), radiusHdrFactory());
  EXPECT_NE(attrInfoFactory(someAttribute), attrInfoFactory(someAttribute));
  EXPECT_NE(emptyParser(), emptyParser());
}

// ---- Parsed when made ----

TEST(LegacyParser, ReadsTheHeaderAndChecksThePacketWhenMade) {
  const CapturingSink trace;
  const ByteVector bytes = PacketMaker(1).add(1, {'a'}).addMessageAuthenticator().make();
  const Ptr<Zonet::Pkt> pkt = pktOf(bytes);
  const Ptr<RadiusPacketParser> parser = radiusPacketParserFactory(dictionary(), pkt);
  EXPECT_EQ(parser->dictionary(), dictionary());
  EXPECT_EQ(parser->pkt(), pkt);
  EXPECT_FALSE(parser->badPkt());
  EXPECT_TRUE(parser->msgAuthPresent());
  EXPECT_EQ(parser->header()->code(), 1);
  EXPECT_EQ(parser->header()->length(), bytes.size());
  EXPECT_EQ(trace.records(), Records());
  EXPECT_EQ(TestSupport::bytesOf(pkt), bytes);
}

TEST(LegacyParser, HasNoHeaderAndMakesNoCheckOfAPacketThatIsTooShort) {
  for (std::size_t size = 0; size < 20; ++size) {
    SCOPED_TRACE(size);
    const CapturingSink trace;
    const auto parser = radiusPacketParserFactory(dictionary(), pktOf(ByteVector(size)));
    EXPECT_TRUE(parser->badPkt());
    EXPECT_EQ(parser->header(), nullptr);
    EXPECT_EQ(trace.records(),
              Records{legacyRecord("setHeader", "Received packet with invalid length")});
  }
}

TEST(LegacyParser, KeepsTheHeaderOfAPacketThatFailsTheCheck) {
  const CapturingSink trace;
  const auto parser =
      radiusPacketParserFactory(dictionary(), pktOf(PacketMaker(2).addRaw({1}).make()));
  EXPECT_TRUE(parser->badPkt());
  ASSERT_NE(parser->header(), nullptr);
  EXPECT_EQ(parser->header()->length(), 21);
  EXPECT_EQ(trace.records(),
            Records{legacyRecord("doBasicPacketSanityCheck",
                                 "Received packet with attribute having invalid length")});
}

TEST(LegacyParser, ReadsAndChecksAgainWhenAsked) {
  const Ptr<Zonet::Pkt> pkt = pktOf(PacketMaker(2).add(27, {0, 0, 0, 1}).make());
  const auto parser = radiusPacketParserFactory(dictionary(), pkt);
  const Ptr<RadiusHdr> before = parser->header();
  pkt->data()[0] = 3;
  pkt->data()[21] = 5;
  const CapturingSink trace;
  parser->handleInitialized();
  EXPECT_NE(parser->header(), before);
  EXPECT_EQ(before->code(), 2);
  EXPECT_EQ(parser->header()->code(), 3);
  EXPECT_TRUE(parser->badPkt());
  EXPECT_EQ(trace.records(),
            Records{legacyRecord("doBasicPacketSanityCheck",
                                 "Received packet with INT attribute having invalid length")});
}

TEST(LegacyParser, ReadsTheHeaderButChecksNoMoreOnceItIsBad) {
  const Ptr<Zonet::Pkt> pkt = pktOf(PacketMaker(1).addMessageAuthenticator().make());
  pkt->data()[21] = 17;
  CapturingSink trace;
  const auto parser = radiusPacketParserFactory(dictionary(), pkt);
  pkt->data()[0] = 12;
  pkt->data()[21] = 18;
  trace.clear();
  parser->handleInitialized();
  EXPECT_EQ(parser->header()->code(), 12);
  EXPECT_TRUE(parser->badPkt());
  EXPECT_FALSE(parser->msgAuthPresent());
  EXPECT_EQ(trace.records(), Records());
}

class CountingParser : public RadiusPacketParser {
 public:
  using RadiusPacketParser::RadiusPacketParser;

  void doBasicPacketSanityCheck() override { ++checks; }

  int checks = 0;
};

TEST(LegacyParser, LetsADerivedClassDoTheCheck) {
  const Ptr<CountingParser> parser(new CountingParser(dictionary(), pktOf(PacketMaker(2).make())));
  parser->handleInitialized();
  EXPECT_EQ(parser->checks, 1);
  const Ptr<RadiusPacketParserBase> base = parser;
  base->doBasicPacketSanityCheck();
  EXPECT_EQ(parser->checks, 2);
  parser->badPktIs(true);
  parser->handleInitialized();
  EXPECT_EQ(parser->checks, 2);
}

// ---- New packets ----

Ptr<RadiusHdr> headerWith(U8 code, U8 id, U16 length, const ByteVector& authenticator) {
  const Ptr<RadiusHdr> hdr = radiusHdrFactory();
  hdr->codeIs(code);
  hdr->idIs(id);
  hdr->lengthIs(length);
  hdr->authenticatorIs(String(std::span<const U8>(authenticator)));
  return hdr;
}

TEST(LegacyPacketNew, HoldsTheHeaderItIsMadeWith) {
  const Ptr<RadiusHdr> hdr = radiusHdrFactory();
  EXPECT_EQ(radiusPacketNewFactory(hdr)->hdr(), hdr);
}

TEST(LegacyPacketNew, MakesTwentyBytesWhateverLengthTheHeaderSays) {
  const ByteVector authenticator = joined({ByteVector{0, 0xff}, countingBytes(14, 0x79)});
  for (const U16 length : {U16{0}, U16{20}, U16{100}, U16{65535}}) {
    SCOPED_TRACE(length);
    const Ptr<RadiusHdr> hdr = headerWith(1, 7, length, authenticator);
    const Ptr<Zonet::Pkt> pkt = radiusPacketNewFactory(hdr)->createPacket();
    EXPECT_EQ(TestSupport::bytesOf(pkt), joined({ByteVector{1, 7, 0, 20}, authenticator}));
    EXPECT_EQ(hdr->length(), length);
  }
}

TEST(LegacyPacketNew, TakesAnyCodeAndIdentifier) {
  const ByteVector authenticator(16);
  const auto pkt = radiusPacketNewFactory(headerWith(255, 0, 0, authenticator))->createPacket();
  EXPECT_EQ(TestSupport::bytesOf(pkt), joined({ByteVector{255, 0, 0, 20}, authenticator}));
}

TEST(LegacyPacketNew, TakesTheFirstSixteenBytesOfALongerAuthenticator) {
  for (const std::size_t size : {std::size_t{17}, std::size_t{32}, std::size_t{300}}) {
    SCOPED_TRACE(size);
    const auto pkt =
        radiusPacketNewFactory(headerWith(4, 255, 0, countingBytes(size, 1)))->createPacket();
    EXPECT_EQ(TestSupport::bytesOf(pkt), joined({ByteVector{4, 255, 0, 20}, countingBytes(16, 1)}));
  }
}

TEST(LegacyPacketNew, AssertsThatTheAuthenticatorHasSixteenBytes) {
  for (std::size_t size = 0; size < 16; ++size) {
    SCOPED_TRACE(size);
    const auto made = radiusPacketNewFactory(headerWith(1, 7, 20, countingBytes(size)));
    EXPECT_EQ(assertionTextOf([&] { made->createPacket(); }),
              "bytesCopied == PacketConstants::authLength()");
  }
}

TEST(LegacyPacketNew, MakesAPacketOfItsOwnEveryTime) {
  const auto made = radiusPacketNewFactory(headerWith(1, 7, 20, ByteVector(16)));
  const Ptr<Zonet::Pkt> first = made->createPacket();
  const Ptr<Zonet::Pkt> second = made->createPacket();
  first->data()[0] = 99;
  EXPECT_EQ(second->data()[0], 1);
}

TEST(LegacyPacketNew, MakesAPacketThatPassesTheCheck) {
  const auto pkt = radiusPacketNewFactory(headerWith(1, 7, 0, countingBytes(16)))->createPacket();
  const auto parser = radiusPacketParserFactory(dictionary(), pkt);
  EXPECT_FALSE(parser->badPkt());
  EXPECT_EQ(parser->header()->code(), 1);
  EXPECT_EQ(parser->header()->id(), 7);
  EXPECT_EQ(parser->header()->length(), 20);
  EXPECT_EQ(parser->header()->authenticator(), String(std::span<const U8>(countingBytes(16))));
}

// ---- What is missing ----

/// Everything that can be asked of an object but to read its header.
template <typename Check>
void forEachOperation(RadiusPacketParserBase& object, Check check) {
  const Verda::Bytes none;
  check("sanity", [&] { object.doBasicPacketSanityCheck(); });
  check("read", [&] { object.getValuesOfAttributesFromAttributeList(); });
  check("set", [&] { object.setValuesOfAttributesFromAttributesToSet(); });
  check("add", [&] { object.addAttribute(); });
  check("remove", [&] { object.removeAttribute(); });
  check("authenticator", [&] { object.validateAuthenticator("", none); });
  check("identifier", [&] { object.setPacketIdentifier(1); });
  check("request", [&] { object.setRequestAuthenticator(""); });
  check("message", [&] { object.setMessageAuthenticator("", none); });
}

TEST(LegacyObject, AssertsThatItHasAHeader) {
  const auto object = emptyParser();
  forEachOperation(*object, [](const char* name, auto operation) {
    SCOPED_TRACE(name);
    EXPECT_EQ(assertionTextOf(operation), "header()");
  });
  EXPECT_EQ(assertionTextOf([&] { object->validatePacketLength(); }), "header()");
  EXPECT_EQ(assertionTextOf([&] { object->encryptPacket("", {}); }), "header && dictionary");
}

TEST(LegacyObject, AssertsThatItHasAPacket) {
  const auto object = radiusPacketParserBaseFactory(dictionary(), nullptr);
  const auto header = object->headerIs();
  header->codeIs(4);
  header->lengthIs(20);
  forEachOperation(*object, [](const char* name, auto operation) {
    SCOPED_TRACE(name);
    EXPECT_EQ(assertionTextOf(operation), "pkt");
  });
  EXPECT_EQ(assertionTextOf([&] { object->encryptPacket("", {}); }), "pkt");
}

TEST(LegacyObject, AssertsThatItIsGivenHeaders) {
  const auto object = emptyParser();
  object->setHeader();
  EXPECT_EQ(assertionTextOf([&] { object->validatePacketId(nullptr); }), "reqHdr");
  EXPECT_EQ(assertionTextOf([] { radiusPacketNewFactory(nullptr)->createPacket(); }), "hdr()");
}

}  // namespace
}  // namespace RadiusPacketParser
