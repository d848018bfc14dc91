#include "tool/text/ValueText.h"

#include <array>
#include <cstring>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tests/support/Digests.h"

namespace RadiusPacketTool {
namespace {

using RadiusPacketParser::RadiusAttributeType;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::AttrValue;
using RadiusPktParserBase::standardAttribute;
using RadiusPktParserBase::TaggedInt;
using RadiusPktParserBase::TaggedStr;
using RadiusPktParserBase::vendorAttribute;
using TestSupport::ByteVector;
using Verda::Bytes;
using Verda::String;
using Verda::U8;

constexpr bool tagged = true;
constexpr bool untagged = false;
constexpr U8 plain = 0;
constexpr U8 userPassword = 1;
constexpr U8 salted = 2;
constexpr U8 otherMethod = 3;

AttrInfo infoOf(RadiusAttributeType::RadiusAttributeTypeEnum type, bool isTagged = untagged,
                U8 encryptionType = plain) {
  AttrInfo info;
  info.isInDict = true;
  info.isTagged = isTagged;
  info.encryptionType = encryptionType;
  info.attributeType = type;
  return info;
}

ReadableValue readable(const AttrInfo& info, const AttrValue& value, const ByteVector& wire = {},
                       const Attribute& key = standardAttribute(250)) {
  return readableValue(key, info, value, wire);
}

String text(std::string_view bytes) {
  return bytes;
}

// ---- Text and bytes ----

struct TextRow {
  const char* name;
  bool isTagged;
  U8 encryptionType;
  std::string_view delivered;
  std::optional<U8> tag;
  ShownValue shown;
};

using namespace std::string_view_literals;

const std::array textRows{
    TextRow{"empty", untagged, plain, "", std::nullopt, ShownText{""}},
    TextRow{"usual", untagged, plain, "alice", std::nullopt, ShownText{"alice"}},
    TextRow{"quote and backslash", untagged, plain, R"(a"b\c)", std::nullopt,
            ShownText{R"(a\"b\\c)"}},
    TextRow{"control bytes", untagged, plain, "\0\n\r\t\x1b[31m\x7f"sv, std::nullopt,
            ShownText{R"(\x00\n\r\t\x1b[31m\x7f)"}},
    TextRow{"a C1 control character", untagged, plain, "\xc2\x9b", std::nullopt,
            ShownText{R"(\xc2\x9b)"}},
    TextRow{"UTF-8", untagged, plain, "\xc3\xa9\xe2\x82\xac", std::nullopt,
            ShownText{"\xc3\xa9\xe2\x82\xac"}},
    TextRow{"no UTF-8", untagged, plain, "a\xff\xc3", std::nullopt, ShownText{R"(a\xff\xc3)"}},
    TextRow{"tag", tagged, plain, "\x01text", 1, ShownText{"text"}},
    TextRow{"tag 0", tagged, plain, "\0text"sv, 0, ShownText{"text"}},
    TextRow{"tag above 31", tagged, plain, "text", 't', ShownText{"ext"}},
    TextRow{"tag alone", tagged, plain, "\x01", 1, ShownText{""}},
    TextRow{"password", untagged, userPassword, "secret\0\0\0\0"sv, std::nullopt,
            ShownText{"secret"}},
    TextRow{"password of zeros", untagged, userPassword, "\0\0\0\0"sv, std::nullopt, ShownText{""}},
    TextRow{"password with a zero inside", untagged, userPassword, "a\0b\0"sv, std::nullopt,
            ShownText{R"(a\x00b)"}},
    TextRow{"tagged password", tagged, userPassword, "\x02pass\0\0"sv, 2, ShownText{"pass"}},
    TextRow{"salted", untagged, salted, "\x80\x01\x03key\0\0"sv, std::nullopt, ShownText{"key"}},
    TextRow{"salted and tagged", tagged, salted, "\x05\x80\x01\x03key\0\0"sv, 5, ShownText{"key"}},
    TextRow{"salted, padding that is not zero", untagged, salted, "\x80\x01\x03keyxyz",
            std::nullopt, ShownText{"key"}},
    TextRow{"salted, content without padding", untagged, salted, "\x80\x01\x03key", std::nullopt,
            ShownText{"key"}},
    TextRow{"salted, no content", untagged, salted, "\x80\x01\0pad"sv, std::nullopt, ShownText{""}},
    TextRow{"salted, length byte alone", untagged, salted, "\x80\x01\0"sv, std::nullopt,
            ShownText{""}},
    TextRow{"salted, length byte one too great", untagged, salted, "\x80\x01\x04key", std::nullopt,
            ShownPlain{"0x046b6579"}},
    TextRow{"salted, length byte 255", tagged, salted, "\x01\x80\x01\xffkey", 1,
            ShownPlain{"0xff6b6579"}},
    TextRow{"salted, nothing hidden", untagged, salted, "\x80\x01", std::nullopt, ShownPlain{"0x"}},
    TextRow{"salted, half a salt", tagged, salted, "\x01\x80", 1, ShownPlain{"0x"}},
    TextRow{"salted, tag alone", tagged, salted, "\x01", 1, ShownPlain{"0x"}},
    TextRow{"salted, empty", untagged, salted, "", std::nullopt, ShownPlain{"0x"}},
    TextRow{"a method that is left alone", untagged, otherMethod, "ab\0"sv, std::nullopt,
            ShownText{R"(ab\x00)"}},
};

TEST(ValueText, ShowsText) {
  for (const TextRow& row : textRows) {
    SCOPED_TRACE(row.name);
    const AttrInfo info = infoOf(RadiusAttributeType::string, row.isTagged, row.encryptionType);
    const AttrValue delivered = row.isTagged
                                    ? AttrValue(TaggedStr{.str = text(row.delivered), .tag = 0})
                                    : AttrValue(text(row.delivered));
    const ReadableValue value = readable(info, delivered);
    EXPECT_EQ(value.tag, row.tag);
    EXPECT_EQ(value.value, row.shown);
  }
}

TEST(ValueText, ShowsOctetsAndUnknownValuesAsBytes) {
  for (const auto type : {RadiusAttributeType::octets, RadiusAttributeType::unknown}) {
    SCOPED_TRACE(type);
    EXPECT_EQ(readable(infoOf(type), Bytes{}).value, ShownValue(ShownBytes{}));
    EXPECT_EQ(readable(infoOf(type), Bytes{0x61, 0x00, 0xff}).value,
              ShownValue(ShownBytes{{0x61, 0x00, 0xff}}));
  }
}

TEST(ValueText, TakesTagAndHidingOffOctets) {
  const ReadableValue value = readable(infoOf(RadiusAttributeType::octets, tagged, salted),
                                       Bytes{7, 0x80, 1, 2, 10, 11, 0});
  EXPECT_EQ(value.tag, U8{7});
  EXPECT_EQ(value.value, ShownValue(ShownBytes{{10, 11}}));
}

TEST(ValueText, SaltedOctetsWhoseLengthByteDoesNotFitAreBytesAllTheSame) {
  EXPECT_EQ(
      readable(infoOf(RadiusAttributeType::octets, untagged, salted), Bytes{0x80, 1, 3, 10, 11})
          .value,
      ShownValue(ShownBytes{{3, 10, 11}}));
}

TEST(ValueText, OctetsHiddenAsAPasswordKeepTheirZeros) {
  EXPECT_EQ(
      readable(infoOf(RadiusAttributeType::octets, untagged, userPassword), Bytes{10, 0, 11, 0, 0})
          .value,
      ShownValue(ShownBytes{{10, 0, 11, 0, 0}}));
}

TEST(ValueText, TaggedOctetsWithoutBytesHaveNoTag) {
  const ReadableValue value = readable(infoOf(RadiusAttributeType::octets, tagged), Bytes{});
  EXPECT_EQ(value.tag, std::nullopt);
  EXPECT_EQ(value.value, ShownValue(ShownBytes{}));
}

// ---- Numbers ----

TEST(ValueText, ShowsNumbers) {
  for (const auto type : {RadiusAttributeType::integer, RadiusAttributeType::date}) {
    SCOPED_TRACE(type);
    const ReadableValue value = readable(infoOf(type), 4294967295U);
    EXPECT_EQ(value.tag, std::nullopt);
    EXPECT_EQ(value.value, ShownValue(ShownNumber{4294967295U, ""}));
  }
}

TEST(ValueText, ShowsTaggedNumbersOf24Bits) {
  const ReadableValue value = readable(infoOf(RadiusAttributeType::integer, tagged),
                                       TaggedInt{.value = 0x1fffffff, .tag = 0});
  EXPECT_EQ(value.tag, U8{0x1f});
  EXPECT_EQ(value.value, ShownValue(ShownNumber{0xffffff, ""}));
}

TEST(ValueText, ShowsTheTag0OfANumber) {
  const ReadableValue value =
      readable(infoOf(RadiusAttributeType::integer, tagged), TaggedInt{.value = 3, .tag = 0});
  EXPECT_EQ(value.tag, U8{0});
  EXPECT_EQ(value.value, ShownValue(ShownNumber{3, ""}));
}

TEST(ValueText, TakesTheTagOffADateThatTheHookDeliversWhole) {
  const ReadableValue value = readable(infoOf(RadiusAttributeType::date, tagged), 0x01000002U);
  EXPECT_EQ(value.tag, U8{1});
  EXPECT_EQ(value.value, ShownValue(ShownNumber{2, ""}));
}

struct EnumerationRow {
  Attribute key;
  Verda::U32 number;
  const char* name;
};

const std::array enumerationRows{
    EnumerationRow{standardAttribute(40), 1, "START"},
    EnumerationRow{standardAttribute(40), 15, "FAILED"},
    EnumerationRow{standardAttribute(40), 4, ""},
    EnumerationRow{standardAttribute(6), 10, "CALL_CHECK"},
    EnumerationRow{standardAttribute(6), 0, ""},
    EnumerationRow{standardAttribute(101), 503, "SESSION_CONTEXT_NOT_FOUND"},
    EnumerationRow{standardAttribute(101), 4294967295U, ""},
    EnumerationRow{standardAttribute(5), 1, ""},
    EnumerationRow{vendorAttribute(311, 40), 1, ""},
};

TEST(ValueText, NamesTheNumbersOfKnownEnumerations) {
  for (const EnumerationRow& row : enumerationRows) {
    SCOPED_TRACE(testing::Message() << int{row.key.attrId} << " is " << row.number);
    EXPECT_EQ(readable(infoOf(RadiusAttributeType::integer), row.number, {}, row.key).value,
              ShownValue(ShownNumber{row.number, row.name}));
  }
}

TEST(ValueText, ShowsA64BitNumberInTheOrderOfTheWire) {
  const std::array<U8, 8> wire{0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08};
  unsigned long inMemoryOrder = 0;
  std::memcpy(&inMemoryOrder, wire.data(), wire.size());
  EXPECT_EQ(readable(infoOf(RadiusAttributeType::integer64), inMemoryOrder).value,
            ShownValue(ShownPlain{"72623859790382856"}));
}

// ---- Addresses ----

Zonet::IpGenPrefix prefixOf(const char* address) {
  return Zonet::IpGenPrefix(Verda::String(address));
}

TEST(ValueText, ShowsAddresses) {
  EXPECT_EQ(readable(infoOf(RadiusAttributeType::ipaddr), prefixOf("192.0.2.1")).value,
            ShownValue(ShownPlain{"192.0.2.1"}));
  EXPECT_EQ(readable(infoOf(RadiusAttributeType::ipv6addr), prefixOf("2001:db8::1")).value,
            ShownValue(ShownPlain{"2001:db8::1"}));
}

TEST(ValueText, ShowsAnInterfaceIdAsFourWholeGroups) {
  EXPECT_EQ(readable(infoOf(RadiusAttributeType::ifid), prefixOf("::200:5eff:fe00:1")).value,
            ShownValue(ShownPlain{"0200:5eff:fe00:0001"}));
}

TEST(ValueText, ShowsThePrefixLengthOfTheWire) {
  EXPECT_EQ(readable(infoOf(RadiusAttributeType::ipv6prefix), prefixOf("2001:db8::"),
                     {0, 32, 0x20, 0x01, 0x0d, 0xb8})
                .value,
            ShownValue(ShownPlain{"2001:db8::/32"}));
  EXPECT_EQ(readable(infoOf(RadiusAttributeType::ipv6prefix), prefixOf("::"), {0, 0}).value,
            ShownValue(ShownPlain{"::/0"}));
}

TEST(ValueText, ShowsNoPrefixLengthWhereTheWireHidesIt) {
  EXPECT_EQ(readable(infoOf(RadiusAttributeType::ipv6prefix, untagged, userPassword),
                     prefixOf("2001:db8::"), {0xaa, 0xbb, 0xcc})
                .value,
            ShownValue(ShownPlain{"2001:db8::"}));
}

}  // namespace
}  // namespace RadiusPacketTool
