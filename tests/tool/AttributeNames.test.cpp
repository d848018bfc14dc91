#include "tool/text/AttributeNames.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/support/TestDictionary.h"
#include "tests/support/ThrownText.h"
#include "tool/text/AttributeName.h"

namespace RadiusPacketTool {
namespace {

using RadiusPacketParser::RadiusAttributeType;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::standardAttribute;
using RadiusPktParserBase::vendorAttribute;
using TestSupport::shippedDictionary;
using TestSupport::thrownText;
using Verda::U8;

constexpr std::string_view unknownName = "the dictionary has no attribute of that name";
constexpr std::string_view noRawForm = "the raw forms are Attr-N and Attr-26.VENDOR.TYPE";
constexpr std::string_view badTag = "the tag behind the : is no number from 0 to 255";

const AttributeNames& shippedNames() {
  static const AttributeNames names(shippedDictionary());
  return names;
}

TEST(AttributeNames, EveryNameOfTheShippedDictionaryIsFound) {
  std::size_t count = 0;
  const auto expectFound = [&](const Attribute& key) {
    const std::string name = attributeName(key, *shippedDictionary());
    SCOPED_TRACE(name);
    const NamedAttribute found = shippedNames().find(name);
    EXPECT_EQ(found.key, key);
    EXPECT_EQ(found.name, name);
    EXPECT_EQ(found.tag, std::nullopt);
    EXPECT_FALSE(found.isRaw);
    EXPECT_TRUE(found.info.isInDict);
    EXPECT_EQ(found.info, shippedNames().infoOf(key));
    ++count;
  };
  for (const auto& [type, entry] : shippedDictionary()->radiusAttribute()) {
    expectFound(standardAttribute(type));
  }
  for (const auto& [vendorId, vendor] : shippedDictionary()->vendorAttribute()) {
    for (const auto& [type, entry] : vendor->vendorNodeDict()) {
      expectFound(vendorAttribute(vendorId, type));
    }
  }
  EXPECT_GT(count, 500U);
}

struct Row {
  std::string_view text;
  Attribute key;
  std::string_view name;
  std::optional<U8> tag;
  bool isRaw;
};

const std::array rows{
    Row{"User-Name", standardAttribute(1), "User-Name", std::nullopt, false},
    Row{"Tunnel-Type:0", standardAttribute(64), "Tunnel-Type", 0, false},
    Row{"Tunnel-Type:255", standardAttribute(64), "Tunnel-Type", 255, false},
    Row{"MS-MPPE-Send-Key", vendorAttribute(311, 16), "MS-MPPE-Send-Key", std::nullopt, false},
    Row{"Attr-0", standardAttribute(0), "Attr-0", std::nullopt, true},
    Row{"Attr-1", standardAttribute(1), "Attr-1", std::nullopt, true},
    Row{"Attr-255", standardAttribute(255), "Attr-255", std::nullopt, true},
    Row{"Attr-26.311.16", vendorAttribute(311, 16), "Attr-26.311.16", std::nullopt, true},
    Row{"Attr-26.4294967295.0", vendorAttribute(4294967295, 0), "Attr-26.4294967295.0",
        std::nullopt, true},
    Row{"Attr-5:7", standardAttribute(5), "Attr-5", 7, true},
};

TEST(AttributeNames, NamesAndRawFormsAreFoundWithTheirTags) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const NamedAttribute found = shippedNames().find(row.text);
    EXPECT_EQ(found.key, row.key);
    EXPECT_EQ(found.name, row.name);
    EXPECT_EQ(found.tag, row.tag);
    EXPECT_EQ(found.isRaw, row.isRaw);
  }
}

TEST(AttributeNames, RawFormIsFlaglessOctetsWhateverTheDictionarySays) {
  const NamedAttribute found = shippedNames().find("Attr-69");
  RadiusPktParserBase::AttrInfo octets;
  octets.isInDict = true;
  octets.attributeType = RadiusAttributeType::octets;
  EXPECT_EQ(found.info, octets);
  EXPECT_NE(shippedNames().find("Tunnel-Password").info, octets);
}

struct BadRow {
  std::string_view text;
  std::string_view fault;
};

constexpr std::array badRows{
    BadRow{"", unknownName},
    BadRow{":", unknownName},
    BadRow{"user-name", unknownName},
    BadRow{"User-Nam", unknownName},
    BadRow{"User-Name:", badTag},
    BadRow{"Tunnel-Type:256", badTag},
    BadRow{"Tunnel-Type:-1", badTag},
    BadRow{"Tunnel-Type:1:2", unknownName},
    BadRow{"Attr-", noRawForm},
    BadRow{"Attr-256", noRawForm},
    BadRow{"Attr-26", noRawForm},
    BadRow{"Attr-26.311", noRawForm},
    BadRow{"Attr-26.311.256", noRawForm},
    BadRow{"Attr-26.4294967296.1", noRawForm},
    BadRow{"Attr-26.311.16.1", noRawForm},
    BadRow{"Attr-27.311.16", noRawForm},
    BadRow{"Attr-1.0.0", noRawForm},
    BadRow{"Attr-x", noRawForm},
};

TEST(AttributeNames, WhatNamesNothingIsRefusedAndNotRepeated) {
  for (const BadRow& row : badRows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(thrownText<BadAttribute>([&] { shippedNames().find(row.text); }), row.fault);
  }
}

TEST(AttributeNames, NameOfSeveralAttributesIsRefused) {
  const auto dictionary = RadiusPacketParser::radiusDictFactory();
  dictionary->radiusAttributeIs(7)->attributeNameIs("Same");
  dictionary->vendorAttributeIs(9)->vendorNodeDictIs(8)->attributeNameIs("Same");
  const AttributeNames names(dictionary);
  EXPECT_EQ(thrownText<BadAttribute>([&] { names.find("Same"); }),
            "the dictionary has several attributes of that name: use a raw form");
  EXPECT_EQ(names.find("Attr-7").key, standardAttribute(7));
}

TEST(AttributeNames, NamesAreFoundAsTheyArePrinted) {
  const auto dictionary = RadiusPacketParser::radiusDictFactory();
  dictionary->radiusAttributeIs(7)->attributeNameIs("Bell\x07");
  dictionary->radiusAttributeIs(8)->attributeNameIs("Attr-7");
  dictionary->radiusAttributeIs(9)->attributeNameIs("Nine:1");
  const AttributeNames names(dictionary);
  EXPECT_EQ(names.find("Bell\\x07").key, standardAttribute(7));
  EXPECT_EQ(names.find("Attr-7").key, standardAttribute(8));
  EXPECT_EQ(names.find("Nine:1").key, standardAttribute(9));
}

TEST(AttributeNames, MessageAuthenticatorIsKnownWhateverTheDictionary) {
  const AttributeNames names(RadiusPacketParser::radiusDictFactory());
  EXPECT_TRUE(isMessageAuthenticator(names.find("Message-Authenticator").key));
  EXPECT_TRUE(isMessageAuthenticator(names.find("Attr-80").key));
  EXPECT_FALSE(isMessageAuthenticator(names.find("Attr-26.9.80").key));
}

}  // namespace
}  // namespace RadiusPacketTool
