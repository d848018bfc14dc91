#include "RadiusPacketParser/RadiusDictionaryParser.h"

#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "Tyl/TextReader.h"
#include "Verda/Exception.h"

#include "tests/support/DictionaryTest.h"

namespace RadiusPacketParser {
namespace {

using TestSupport::describe;
using TestSupport::Lines;
using Verda::Ptr;
using Verda::String;
using Verda::U32;
using Verda::U8;

struct TypeName {
  RadiusAttributeType::RadiusAttributeTypeEnum type;
  U32 number;
  const char* name;
};

const std::vector<TypeName> typeNames = {
    {RadiusAttributeType::unknown, 0, "unknown"},
    {RadiusAttributeType::string, 1, "string"},
    {RadiusAttributeType::octets, 2, "octets"},
    {RadiusAttributeType::ipaddr, 3, "ipaddr"},
    {RadiusAttributeType::date, 4, "date"},
    {RadiusAttributeType::integer, 5, "integer"},
    {RadiusAttributeType::ipv6addr, 6, "ipv6addr"},
    {RadiusAttributeType::ipv6prefix, 7, "ipv6prefix"},
    {RadiusAttributeType::ifid, 8, "ifid"},
    {RadiusAttributeType::integer64, 9, "integer64"},
};

template <typename Operation>
std::string rangeErrorOf(Operation operation) {
  try {
    operation();
  } catch (const Verda::RangeError& error) {
    return error.what();
  }
  return "(no error)";
}

TEST(RadiusAttributeTypes, ConvertBothWays) {
  for (const TypeName& row : typeNames) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.type, row.number);
    EXPECT_EQ(stringValue(row.type), row.name);
    EXPECT_EQ(RadiusAttributeType::RadiusAttributeTypeEnumInstance(row.number), row.type);
    EXPECT_EQ(RadiusAttributeType::RadiusAttributeTypeEnumInstance(String(row.name)), row.type);

    std::ostringstream out;
    out << row.type;
    EXPECT_EQ(out.str(), row.name);

    Tyl::TextReader text(row.name);
    auto read = row.type == RadiusAttributeType::unknown ? RadiusAttributeType::date
                                                         : RadiusAttributeType::unknown;
    sequenceToValue(text, read);
    EXPECT_EQ(read, row.type);
    EXPECT_TRUE(text.atEnd());
  }
}

TEST(RadiusAttributeTypes, AreTheTenInDeclaredOrder) {
  const auto& enumerators = RadiusAttributeType::enumerationTable().enumerators;
  ASSERT_EQ(enumerators.size(), typeNames.size());
  for (std::size_t at = 0; at < typeNames.size(); ++at) {
    EXPECT_EQ(enumerators[at].name, typeNames[at].name);
    EXPECT_EQ(enumerators[at].number, Verda::S64{typeNames[at].number});
  }
}

TEST(RadiusAttributeTypes, AreStoredInOneByte) {
  using Stored = std::underlying_type_t<RadiusAttributeType::RadiusAttributeTypeEnum>;
  EXPECT_TRUE((std::is_same_v<Stored, U8>));
  EXPECT_TRUE(std::is_default_constructible_v<RadiusAttributeType>);
}

TEST(RadiusAttributeTypes, RefuseOtherNames) {
  const auto fromName = [](const char* name) {
    return rangeErrorOf(
        [=] { RadiusAttributeType::RadiusAttributeTypeEnumInstance(String(name)); });
  };
  EXPECT_EQ(fromName("Integer"), "RadiusAttributeType: \"Integer\" is not an enumerator");
  EXPECT_EQ(fromName("integer6"), "RadiusAttributeType: \"integer6\" is not an enumerator");
  EXPECT_EQ(fromName("integer640"), "RadiusAttributeType: \"integer640\" is not an enumerator");
  EXPECT_EQ(fromName(""), "RadiusAttributeType: \"\" is not an enumerator");
}

TEST(RadiusAttributeTypes, RefuseOtherNumbers) {
  const auto fromNumber = [](U32 number) {
    return rangeErrorOf([=] { RadiusAttributeType::RadiusAttributeTypeEnumInstance(number); });
  };
  EXPECT_EQ(fromNumber(10), "RadiusAttributeType: 10 is not an enumerator");
  EXPECT_EQ(fromNumber(256), "RadiusAttributeType: 256 is not an enumerator");
  EXPECT_EQ(fromNumber(4294967295), "RadiusAttributeType: 4294967295 is not an enumerator");
}

TEST(RadiusAttributeTypes, RefusedTextLeavesTheValueAlone) {
  Tyl::TextReader text("octet");
  auto type = RadiusAttributeType::ifid;
  EXPECT_EQ(rangeErrorOf([&] { sequenceToValue(text, type); }),
            "RadiusAttributeType: \"octet\" is not an enumerator");
  EXPECT_EQ(type, RadiusAttributeType::ifid);
}

TEST(RadiusAttributeTypes, PrintOtherNumbersInBrackets) {
  const auto other = static_cast<RadiusAttributeType::RadiusAttributeTypeEnum>(10);
  std::ostringstream out;
  out << other;
  EXPECT_EQ(out.str(), "RadiusAttributeType(10)");
  EXPECT_EQ(stringValue(other), "RadiusAttributeType(10)");
}

void expectNewEntry(const RadiusNode& entry, U8 code) {
  EXPECT_EQ(entry.attributeOid(), code);
  EXPECT_EQ(entry.attributeName(), "");
  EXPECT_EQ(entry.attributeType(), RadiusAttributeType::unknown);
  EXPECT_EQ(entry.attributeEncryptionType(), 0);
  EXPECT_FALSE(entry.hasTag());
  EXPECT_FALSE(entry.concat());
}

TEST(DictionaryModel, NewEntriesHaveTheirKeyAndDefaults) {
  const RadiusNode base(7);
  expectNewEntry(base, 7);
  const AttributeNode standard(8);
  expectNewEntry(standard, 8);
  EXPECT_EQ(standard.path(), "");
  const VendorNode ofVendor(9);
  expectNewEntry(ofVendor, 9);
  const VendorIdDict vendor(4242);
  EXPECT_EQ(vendor.vendorId(), 4242U);
  EXPECT_EQ(vendor.vendorName(), "");
  EXPECT_EQ(vendor.path(), "");
  EXPECT_TRUE(vendor.vendorNodeDict().empty());
  const RadiusDict dictionary;
  EXPECT_EQ(describe(dictionary), Lines{});
  const VendorMap vendorMap;
  EXPECT_EQ(describe(vendorMap), Lines{});
}

TEST(DictionaryModel, FactoriesMakeNewEntities) {
  expectNewEntry(*attributeNodeFactory(U8{1}), 1);
  expectNewEntry(*vendorNodeFactory(U8{2}), 2);
  EXPECT_EQ(vendorIdDictFactory(U32{3})->vendorId(), 3U);
  EXPECT_NE(radiusDictFactory(), radiusDictFactory());
  EXPECT_NE(vendorMapFactory(), vendorMapFactory());
}

TEST(DictionaryModel, TypesAreNodesThatKnowTheirNames) {
  EXPECT_TRUE((std::is_base_of_v<RadiusNode, AttributeNode>));
  EXPECT_TRUE((std::is_base_of_v<RadiusNode, VendorNode>));
  const auto nameOf = [](const Verda::Node& node) { return node.typeData().name; };
  EXPECT_EQ(nameOf(RadiusNode(1)), "RadiusNode");
  EXPECT_EQ(nameOf(AttributeNode(1)), "AttributeNode");
  EXPECT_EQ(nameOf(VendorNode(1)), "VendorNode");
  EXPECT_EQ(nameOf(VendorIdDict(1)), "VendorIdDict");
  EXPECT_EQ(nameOf(RadiusDict()), "RadiusDict");
  EXPECT_EQ(nameOf(VendorMap()), "VendorMap");
}

TEST(DictionaryModel, EntryAttributesAreSet) {
  AttributeNode entry(69);
  entry.attributeNameIs("Tunnel-Password");
  entry.attributeTypeIs(RadiusAttributeType::string);
  entry.attributeEncryptionTypeIs(2);
  entry.hasTagIs(true);
  entry.concatIs(true);
  entry.pathIs("/d/dictionary");
  EXPECT_EQ(describe(entry), "69 Tunnel-Password string has_tag concat encrypt=2");
  EXPECT_EQ(entry.path(), "/d/dictionary");
  entry.hasTagIs(false);
  entry.concatIs(false);
  EXPECT_EQ(describe(entry), "69 Tunnel-Password string encrypt=2");

  VendorIdDict vendor(4242);
  vendor.vendorNameIs("Acme");
  vendor.pathIs("/d/dictionary.acme");
  EXPECT_EQ(vendor.vendorName(), "Acme");
  EXPECT_EQ(vendor.path(), "/d/dictionary.acme");
}

TEST(RadiusDictModel, FindsEveryCode) {
  RadiusDict dictionary;
  for (U32 code = 0; code <= 255; ++code) {
    EXPECT_FALSE(dictionary.radiusAttributeHas(static_cast<U8>(code)));
    dictionary.radiusAttributeIs(static_cast<U8>(code));
  }
  EXPECT_EQ(dictionary.radiusAttribute().size(), 256U);
  for (U32 code = 0; code <= 255; ++code) {
    SCOPED_TRACE(code);
    const Ptr<AttributeNode> found = dictionary.radiusAttribute(static_cast<U8>(code));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->attributeOid(), code);
    EXPECT_EQ(dictionary.radiusAttributeGet(static_cast<U8>(code)), found);
    EXPECT_TRUE(dictionary.radiusAttributeHas(static_cast<U8>(code)));
  }
}

TEST(RadiusDictModel, InsertingTwiceGivesTheSameEntryUnchanged) {
  RadiusDict dictionary;
  const Ptr<AttributeNode> first = dictionary.radiusAttributeIs(5);
  first->attributeNameIs("X");
  first->attributeTypeIs(RadiusAttributeType::integer);
  first->hasTagIs(true);
  first->concatIs(true);
  first->attributeEncryptionTypeIs(3);
  first->pathIs("/d/x");
  EXPECT_EQ(dictionary.radiusAttributeIs(5), first);
  EXPECT_EQ(describe(*first), "5 X integer has_tag concat encrypt=3");
  EXPECT_EQ(first->path(), "/d/x");
  EXPECT_EQ(dictionary.radiusAttribute().size(), 1U);
}

TEST(RadiusDictModel, DeletesStandardAttributes) {
  RadiusDict dictionary;
  const Ptr<AttributeNode> entry = dictionary.radiusAttributeIs(5);
  dictionary.radiusAttributeIs(6);
  EXPECT_EQ(dictionary.radiusAttributeDel(7), nullptr);
  EXPECT_EQ(dictionary.radiusAttribute().size(), 2U);
  EXPECT_EQ(dictionary.radiusAttributeDel(5), entry);
  EXPECT_EQ(dictionary.radiusAttribute(5), nullptr);
  EXPECT_EQ(dictionary.radiusAttributeDel(5), nullptr);
  EXPECT_NE(dictionary.radiusAttributeIs(5), entry);
  dictionary.radiusAttributeDelAll();
  EXPECT_TRUE(dictionary.radiusAttribute().empty());
  dictionary.radiusAttributeDelAll();
  EXPECT_TRUE(dictionary.radiusAttribute().empty());
}

TEST(RadiusDictModel, KeepsVendorsByAnyNumber) {
  RadiusDict dictionary;
  const Ptr<VendorIdDict> greatest = dictionary.vendorAttributeIs(4294967295);
  const Ptr<VendorIdDict> least = dictionary.vendorAttributeIs(0);
  EXPECT_EQ(greatest->vendorId(), 4294967295);
  EXPECT_EQ(dictionary.vendorAttribute(4294967295), greatest);
  EXPECT_EQ(dictionary.vendorAttributeGet(0), least);
  EXPECT_TRUE(dictionary.vendorAttributeHas(4294967295));
  EXPECT_FALSE(dictionary.vendorAttributeHas(255));
  EXPECT_EQ(dictionary.vendorAttribute(255), nullptr);
}

TEST(RadiusDictModel, InsertingAVendorTwiceGivesTheSameVendorUnchanged) {
  RadiusDict dictionary;
  const Ptr<VendorIdDict> first = dictionary.vendorAttributeIs(9);
  first->vendorNameIs("Acme");
  first->vendorNodeDictIs(1)->attributeNameIs("Acme-Name");
  EXPECT_EQ(dictionary.vendorAttributeIs(9), first);
  EXPECT_EQ(describe(dictionary), (Lines{"vendor 9 Acme", "9.1 Acme-Name unknown"}));
}

TEST(RadiusDictModel, DeletesVendors) {
  RadiusDict dictionary;
  const Ptr<VendorIdDict> vendor = dictionary.vendorAttributeIs(9);
  dictionary.vendorAttributeIs(10);
  EXPECT_EQ(dictionary.vendorAttributeDel(11), nullptr);
  EXPECT_EQ(dictionary.vendorAttribute().size(), 2U);
  EXPECT_EQ(dictionary.vendorAttributeDel(9), vendor);
  EXPECT_EQ(dictionary.vendorAttributeDel(9), nullptr);
  EXPECT_EQ(describe(dictionary), (Lines{"vendor 10 "}));
  dictionary.vendorAttributeDelAll();
  EXPECT_TRUE(dictionary.vendorAttribute().empty());
}

TEST(RadiusDictModel, StandardAndVendorAttributesDoNotMix) {
  RadiusDict dictionary;
  dictionary.vendorAttributeIs(9)->vendorNodeDictIs(1);
  dictionary.radiusAttributeIs(2);
  EXPECT_FALSE(dictionary.radiusAttributeHas(1));
  EXPECT_FALSE(dictionary.vendorAttribute(9)->vendorNodeDictHas(2));
}

TEST(VendorIdDictModel, FindsEveryVendorType) {
  VendorIdDict vendor(9);
  for (U32 code = 0; code <= 255; ++code) {
    vendor.vendorNodeDictIs(static_cast<U8>(code));
  }
  EXPECT_EQ(vendor.vendorNodeDict().size(), 256U);
  for (U32 code = 0; code <= 255; ++code) {
    SCOPED_TRACE(code);
    ASSERT_TRUE(vendor.vendorNodeDictHas(static_cast<U8>(code)));
    EXPECT_EQ(vendor.vendorNodeDict(static_cast<U8>(code))->attributeOid(), code);
  }
}

TEST(VendorIdDictModel, InsertingTwiceGivesTheSameEntryUnchanged) {
  VendorIdDict vendor(9);
  const Ptr<VendorNode> first = vendor.vendorNodeDictIs(5);
  first->hasTagIs(true);
  first->attributeEncryptionTypeIs(2);
  EXPECT_EQ(vendor.vendorNodeDictIs(5), first);
  EXPECT_TRUE(first->hasTag());
  EXPECT_EQ(first->attributeEncryptionType(), 2);
}

TEST(VendorIdDictModel, DeletesAttributes) {
  VendorIdDict vendor(9);
  const Ptr<VendorNode> entry = vendor.vendorNodeDictIs(5);
  vendor.vendorNodeDictIs(6);
  EXPECT_EQ(vendor.vendorNodeDictDel(7), nullptr);
  EXPECT_EQ(vendor.vendorNodeDict().size(), 2U);
  EXPECT_EQ(vendor.vendorNodeDictDel(5), entry);
  EXPECT_EQ(vendor.vendorNodeDictGet(5), nullptr);
  EXPECT_EQ(vendor.vendorNodeDictDel(5), nullptr);
  vendor.vendorNodeDictDelAll();
  EXPECT_TRUE(vendor.vendorNodeDict().empty());
}

TEST(VendorMapModel, LastWriterWins) {
  VendorMap vendorMap;
  vendorMap.vendorNameToIdIs("X", 9);
  vendorMap.vendorNameToIdIs("X", 10);
  EXPECT_EQ(describe(vendorMap), (Lines{"X 10"}));
}

TEST(VendorMapModel, NamesAreComparedByteByByte) {
  VendorMap vendorMap;
  vendorMap.vendorNameToIdIs("Acme", 1);
  vendorMap.vendorNameToIdIs("acme", 2);
  vendorMap.vendorNameToIdIs(std::string_view("Acme\0", 5), 3);
  EXPECT_EQ(vendorMap.vendorNameToId("Acme"), 1U);
  EXPECT_EQ(vendorMap.vendorNameToIdGet("acme"), 2U);
  EXPECT_EQ(vendorMap.vendorNameToId(std::string_view("Acme\0", 5)), 3U);
  EXPECT_EQ(vendorMap.vendorNameToId("ACME"), std::nullopt);
  EXPECT_FALSE(vendorMap.vendorNameToIdHas("Acm"));
}

TEST(VendorMapModel, DeletesNames) {
  VendorMap vendorMap;
  vendorMap.vendorNameToIdIs("A", 1);
  vendorMap.vendorNameToIdIs("B", 2);
  vendorMap.vendorNameToIdDel("C");
  EXPECT_EQ(describe(vendorMap), (Lines{"A 1", "B 2"}));
  vendorMap.vendorNameToIdDel("A");
  EXPECT_EQ(describe(vendorMap), (Lines{"B 2"}));
  vendorMap.vendorNameToIdDelAll();
  EXPECT_EQ(describe(vendorMap), Lines{});
}

TEST(DictionaryModel, EntriesLiveAsLongAsSomebodyHoldsThem) {
  Ptr<RadiusDict> dictionary = radiusDictFactory();
  const Ptr<AttributeNode> standard = dictionary->radiusAttributeIs(1);
  const Ptr<VendorIdDict> vendor = dictionary->vendorAttributeIs(9);
  const Ptr<VendorNode> ofVendor = vendor->vendorNodeDictIs(1);
  EXPECT_EQ(standard->userCount(), 2U);
  EXPECT_EQ(vendor->userCount(), 2U);
  dictionary = nullptr;
  EXPECT_EQ(standard->userCount(), 1U);
  EXPECT_EQ(vendor->userCount(), 1U);
  EXPECT_EQ(ofVendor->userCount(), 2U);
  EXPECT_EQ(standard->attributeOid(), 1);
}

}  // namespace
}  // namespace RadiusPacketParser
