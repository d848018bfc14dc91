#include "tool/text/ValueReader.h"

#include <array>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "Zonet/IpGenPrefix.h"

#include "tests/support/Digests.h"
#include "tests/support/Hex.h"
#include "tests/support/ThrownText.h"

namespace RadiusPacketTool {
namespace {

using namespace std::string_view_literals;

using RadiusPacketParser::RadiusAttributeType;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::AttrValue;
using RadiusPktParserBase::standardAttribute;
using RadiusPktParserBase::TaggedInt;
using RadiusPktParserBase::TaggedStr;
using RadiusPktParserBase::vendorAttribute;
using TestSupport::ByteVector;
using TestSupport::thrownText;
using TestSupport::toHex;
using Verda::Bytes;
using Verda::String;
using Verda::U8;

using DataType = RadiusAttributeType::RadiusAttributeTypeEnum;

constexpr U8 userPassword = 1;
constexpr U8 salted = 2;

const Attribute anyStandard = standardAttribute(250);
const Attribute anyVendor = vendorAttribute(9, 250);

struct Shape {
  DataType type = RadiusAttributeType::octets;
  Attribute key = anyStandard;
  std::optional<U8> tag = std::nullopt;  ///< the attribute is tagged when there is one
  U8 encryption = 0;
  bool concat = false;
};

NamedAttribute named(const Shape& shape) {
  NamedAttribute attribute;
  attribute.name = "Name";
  attribute.tag = shape.tag;
  attribute.key = shape.key;
  attribute.info.isInDict = true;
  attribute.info.isTagged = shape.tag.has_value();
  attribute.info.isConcat = shape.concat;
  attribute.info.encryptionType = shape.encryption;
  attribute.info.attributeType = shape.type;
  return attribute;
}

AttrValue read(const NamedAttribute& attribute, std::string_view text) {
  SaltSource salts;
  return valueOf(attribute, text, salts);
}

std::optional<std::string> fault(const NamedAttribute& attribute, std::string_view text) {
  return thrownText<BadAttribute>([&] { read(attribute, text); });
}

std::string quoted(std::size_t length) {
  return '"' + std::string(length, 'x') + '"';
}

Zonet::IpGenPrefix prefix(const char* text) {
  return Zonet::IpGenPrefix(String(text));
}

struct Row {
  const char* name;
  Shape shape;
  std::string_view text;
  AttrValue value;
};

const std::array rows{
    Row{"text", {.type = RadiusAttributeType::string}, R"("a\n\xff")", String("a\n\xff")},
    Row{"text as hex", {.type = RadiusAttributeType::string}, "0x6100", String("a\0"sv)},
    Row{"empty text", {.type = RadiusAttributeType::string}, R"("")", String()},
    Row{"tagged text",
        {.type = RadiusAttributeType::string, .tag = 49},
        R"("00")",
        TaggedStr{.str = "00", .tag = 49}},
    Row{"octets", {}, "0x00fF", Bytes{0x00, 0xff}},
    Row{"octets as text", {}, R"("a\x00")", Bytes{0x61, 0x00}},
    Row{"empty octets", {}, "0x", Bytes()},
    Row{"tagged octets", {.tag = 3}, "0x01", Bytes{3, 1}},
    Row{"octets of many fragments", {.concat = true}, "0x0102", Bytes{1, 2}},
    Row{"a number", {.type = RadiusAttributeType::integer}, "4294967295", 4294967295U},
    Row{"a number with zeros in front", {.type = RadiusAttributeType::integer}, "007", 7U},
    Row{"a date", {.type = RadiusAttributeType::date}, "1700000000", 1700000000U},
    Row{"a tagged number",
        {.type = RadiusAttributeType::integer, .tag = 255},
        "16777215",
        TaggedInt{.value = 16777215, .tag = 255}},
    Row{"a name",
        {.type = RadiusAttributeType::integer, .key = standardAttribute(40)},
        "INTERIM_UPDATE",
        3U},
    Row{"a name and its number",
        {.type = RadiusAttributeType::integer, .key = standardAttribute(6)},
        "CALL_CHECK (10)",
        10U},
    Row{"the number of a name",
        {.type = RadiusAttributeType::integer, .key = standardAttribute(101)},
        "503",
        503U},
    Row{"IPv4", {.type = RadiusAttributeType::ipaddr}, "192.0.2.1", prefix("192.0.2.1")},
    Row{"IPv6", {.type = RadiusAttributeType::ipv6addr}, "2001:db8::1", prefix("2001:db8::1")},
    Row{"mapped IPv6",
        {.type = RadiusAttributeType::ipv6addr},
        "::ffff:192.0.2.1",
        prefix("::ffff:192.0.2.1")},
    Row{"a prefix",
        {.type = RadiusAttributeType::ipv6prefix},
        "2001:db8::/29",
        prefix("2001:db8::/29")},
    Row{"a prefix with bits behind it",
        {.type = RadiusAttributeType::ipv6prefix},
        "2001:db8:ffff::/16",
        prefix("2001:db8:ffff::/16")},
    Row{"no prefix", {.type = RadiusAttributeType::ipv6prefix}, "::/0", prefix("::/0")},
    Row{"an interface identifier",
        {.type = RadiusAttributeType::ifid},
        "0123:4567:89aB:cdef",
        prefix("::123:4567:89ab:cdef")},
    Row{"a password",
        {.type = RadiusAttributeType::string,
         .key = standardAttribute(2),
         .encryption = userPassword},
        R"("wonderland")",
        String("wonderland")},
    Row{"an empty password is a block of zeros",
        {.type = RadiusAttributeType::string,
         .key = standardAttribute(2),
         .encryption = userPassword},
        R"("")",
        String(std::string_view("\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 16))},
    Row{"other hidden text is left as it is",
        {.type = RadiusAttributeType::string, .encryption = userPassword},
        R"("")",
        String()},
};

TEST(ValueReader, ReadsEachTypeAsItIsPrinted) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(read(named(row.shape), row.text), row.value);
  }
}

struct BadRow {
  const char* name;
  Shape shape;
  std::string text;
  std::string_view fault;
};

constexpr std::string_view noNumber = "the value is no number of 32 bits";
constexpr std::string_view noName = "the value is neither a number of 32 bits nor a name";
constexpr std::string_view otherName = "name and number do not belong together";
constexpr std::string_view noIp4 = "the value is no IPv4 address";
constexpr std::string_view noIp6 = "the value is no IPv6 address";
constexpr std::string_view badLength = "the prefix length is no number from 0 to 128";
constexpr std::string_view noInterfaceId =
    "the value is no interface identifier: four groups of four hex digits";
constexpr std::string_view badHex =
    "behind 0x stands an even number of hex digits and nothing else";

const Shape number{.type = RadiusAttributeType::integer};
const Shape status{.type = RadiusAttributeType::integer, .key = standardAttribute(40)};
const Shape ip4{.type = RadiusAttributeType::ipaddr};
const Shape ip6{.type = RadiusAttributeType::ipv6addr};
const Shape ip6Prefix{.type = RadiusAttributeType::ipv6prefix};
const Shape interfaceId{.type = RadiusAttributeType::ifid};
const Shape plainText{.type = RadiusAttributeType::string};
const Shape password{
    .type = RadiusAttributeType::string, .key = standardAttribute(2), .encryption = userPassword};

const std::array badRows{
    BadRow{"bare text", plainText, "alice", "text stands in quotes"},
    BadRow{"half a byte", plainText, "0x1", badHex},
    BadRow{"no digits", {}, "0xzz", badHex},
    BadRow{"blanks among digits", {}, "0x01 02", badHex},
    BadRow{"no number", number, "many", noNumber},
    BadRow{"a negative number", number, "-1", noNumber},
    BadRow{"a fraction", number, "1.5", noNumber},
    BadRow{"33 bits", number, "4294967296", noNumber},
    BadRow{"hex number", number, "0x10", noNumber},
    BadRow{"a quoted number", number, "\"1\"", noNumber},
    BadRow{"more behind a number", number, "1 2", noNumber},
    BadRow{"no name", status, "BEGIN", noName},
    BadRow{"a name in small letters", status, "start", noName},
    BadRow{"another number", status, "START (2)", otherName},
    BadRow{"half a number", status, "START (1", otherName},
    BadRow{"more behind a name", status, "START (1) ", otherName},
    BadRow{"IPv6 for IPv4", ip4, "::1", noIp4},
    BadRow{"three bytes", ip4, "1.2.3", noIp4},
    BadRow{"a byte that is too great", ip4, "1.2.3.256", noIp4},
    BadRow{"a prefix for an address", ip4, "192.0.2.1/32", noIp4},
    BadRow{"IPv4 for IPv6", ip6, "192.0.2.1", noIp6},
    BadRow{"too many groups", ip6, "1:2:3:4:5:6:7:8:9", noIp6},
    BadRow{"IPv4 prefix", ip6Prefix, "192.0.2.0/24", noIp6},
    BadRow{"no prefix length", ip6Prefix,
           "2001:db8::", "the value is no IPv6 prefix: there is no / with the prefix length"},
    BadRow{"129 bits", ip6Prefix, "2001:db8::/129", badLength},
    BadRow{"empty prefix length", ip6Prefix, "2001:db8::/", badLength},
    BadRow{"two prefix lengths", ip6Prefix, "2001:db8::/32/32", badLength},
    BadRow{"three groups", interfaceId, "0123:4567:89ab", noInterfaceId},
    BadRow{"five groups", interfaceId, "0123:4567:89ab:cdef:0123", noInterfaceId},
    BadRow{"short groups", interfaceId, "123:4567:89ab:cdef", noInterfaceId},
    BadRow{"groups of other sizes", interfaceId, "012:34567:89ab:cdef", noInterfaceId},
    BadRow{"no separators", interfaceId, "0123456789abcdef", noInterfaceId},
    BadRow{"no hex", interfaceId, "0123:4567:89ab:cdeg", noInterfaceId},
    BadRow{"one separator too many", interfaceId, "0123:4567:89ab::def", noInterfaceId},
    BadRow{"254 bytes of text", plainText, quoted(254),
           "a value of 254 bytes: there is room for 253"},
    BadRow{"254 bytes with the tag",
           {.type = RadiusAttributeType::string, .tag = 1},
           quoted(253),
           "a value of 254 bytes: there is room for 253"},
    BadRow{"254 octets", {}, quoted(254), "a value of 254 bytes: there is room for 253"},
    BadRow{"248 bytes of a vendor",
           {.type = RadiusAttributeType::string, .key = anyVendor},
           quoted(248),
           "a value of 248 bytes: there is room for 247"},
    BadRow{"a vendor's value is not split",
           {.key = anyVendor, .concat = true},
           quoted(248),
           "a value of 248 bytes: there is room for 247"},
    BadRow{"129 bytes of a password", password, quoted(129),
           "a password has at most 128 bytes; these are 129"},
    BadRow{"an empty fragment",
           {.concat = true},
           "0x",
           "an attribute that may be split cannot be written empty: Attr-250 = 0x... can"},
    BadRow{"a tagged date",
           {.type = RadiusAttributeType::date, .tag = 1},
           "1",
           "a tagged date cannot be written: Attr-250 = 0x... can"},
    BadRow{"25 bits behind a tag",
           {.type = RadiusAttributeType::integer, .tag = 1},
           "16777216",
           "a tagged number has at most 24 bits"},
    BadRow{"64 bits",
           {.type = RadiusAttributeType::integer64},
           "1",
           "a number of 64 bits cannot be written: Attr-250 = 0x... can"},
    BadRow{"no data type",
           {.type = RadiusAttributeType::unknown},
           "0x01",
           "an attribute of no known data type cannot be written: Attr-250 = 0x... can"},
    BadRow{"a vendor's address",
           {.type = RadiusAttributeType::ipaddr, .key = anyVendor},
           "192.0.2.1",
           "a vendor's address cannot be written: Attr-26.9.250 = 0x... can"},
    BadRow{"240 bytes to hide",
           {.type = RadiusAttributeType::string, .encryption = salted},
           quoted(240),
           "at most 239 bytes can be hidden with a salt; these are 240"},
};

TEST(ValueReader, RefusesWhatTheAttributeCannotHold) {
  for (const BadRow& row : badRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(fault(named(row.shape), row.text), row.fault);
  }
}

TEST(ValueReader, LongestValuesAreRead) {
  EXPECT_EQ(fault(named(plainText), quoted(253)), std::nullopt);
  EXPECT_EQ(fault(named({.type = RadiusAttributeType::string, .tag = 1}), quoted(252)),
            std::nullopt);
  EXPECT_EQ(fault(named({.key = anyVendor}), quoted(247)), std::nullopt);
  EXPECT_EQ(fault(named(password), quoted(128)), std::nullopt);
  EXPECT_EQ(fault(named({.concat = true}), quoted(4076)), std::nullopt);
}

TEST(ValueReader, TagGoesWithTaggedAttributesAlone) {
  constexpr std::string_view missing = "the attribute is tagged: its name is NAME:TAG";
  for (const DataType type :
       {RadiusAttributeType::string, RadiusAttributeType::octets, RadiusAttributeType::integer}) {
    SCOPED_TRACE(type);
    const std::string_view text = type == RadiusAttributeType::integer ? "1" : "0x01";
    NamedAttribute attribute = named({.type = type, .tag = 1});
    attribute.tag.reset();
    EXPECT_EQ(fault(attribute, text), missing);
    attribute = named({.type = type, .tag = 1});
    attribute.info.isTagged = false;
    EXPECT_EQ(fault(attribute, text), "the attribute is not tagged");
  }
}

TEST(ValueReader, TaggedOctetsWithoutBytesHaveNoTag) {
  NamedAttribute attribute = named({.tag = 1});
  attribute.tag.reset();
  EXPECT_EQ(read(attribute, "0x"), AttrValue(Bytes()));
}

// ---- Hidden with a salt ----

/// The bytes of a value, in hex, without the salt; which is checked, and may stand behind a tag.
std::string behindSalt(const AttrValue& value, std::size_t tagLength = 0) {
  ByteVector bytes;
  if (const auto* text = std::get_if<String>(&value)) {
    bytes.assign(text->bytes().begin(), text->bytes().end());
  } else if (const auto* tagged = std::get_if<TaggedStr>(&value)) {
    bytes.assign(tagged->str.bytes().begin(), tagged->str.bytes().end());
  } else {
    bytes.assign(std::get<Bytes>(value).begin(), std::get<Bytes>(value).end());
  }
  EXPECT_GE(bytes.size(), tagLength + 2);
  EXPECT_NE(bytes[tagLength] & 0x80, 0);
  bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(tagLength + 2));
  return toHex(bytes);
}

struct SaltedRow {
  std::string text;
  std::string behindSalt;
};

const std::array saltedRows{
    SaltedRow{R"("")", "00" + std::string(30, '0')},
    SaltedRow{R"("abc")", "03616263" + std::string(24, '0')},
    SaltedRow{R"("123456789012345")", "0f313233343536373839303132333435"},
    SaltedRow{R"("1234567890123456")", "1031323334353637383930313233343536" + std::string(30, '0')},
};

TEST(ValueReader, SaltedValueHasALengthByteAndWholeBlocks) {
  for (const SaltedRow& row : saltedRows) {
    SCOPED_TRACE(row.text);
    const auto hidden = [&](DataType type, std::optional<U8> tag, const Attribute& key) {
      return read(named({.type = type, .key = key, .tag = tag, .encryption = salted}), row.text);
    };
    EXPECT_EQ(behindSalt(hidden(RadiusAttributeType::string, std::nullopt, anyStandard)),
              row.behindSalt);
    EXPECT_EQ(behindSalt(hidden(RadiusAttributeType::string, 1, anyVendor)), row.behindSalt);
    EXPECT_EQ(behindSalt(hidden(RadiusAttributeType::octets, std::nullopt, anyVendor)),
              row.behindSalt);
    EXPECT_EQ(behindSalt(hidden(RadiusAttributeType::octets, 0x1f, anyStandard), 1),
              row.behindSalt);
  }
}

TEST(ValueReader, LongestSaltedValueFillsItsBlocks) {
  for (const Attribute& key : {anyStandard, anyVendor}) {
    for (const std::optional<U8> tag : {std::optional<U8>(), std::optional<U8>(1)}) {
      const NamedAttribute attribute = named(
          {.type = RadiusAttributeType::string, .key = key, .tag = tag, .encryption = salted});
      EXPECT_EQ(behindSalt(read(attribute, quoted(239))).size(), 480U);
      EXPECT_EQ(fault(attribute, quoted(240)),
                "at most 239 bytes can be hidden with a salt; these are 240");
    }
  }
}

TEST(ValueReader, HexForSaltedTextIsAllThatStandsBehindTheSalt) {
  const NamedAttribute text = named({.type = RadiusAttributeType::string, .encryption = salted});
  EXPECT_EQ(behindSalt(read(text, "0x")), "");
  EXPECT_EQ(behindSalt(read(text, "0xff61")), "ff61");
  const NamedAttribute octets = named({.encryption = salted});
  EXPECT_EQ(behindSalt(read(octets, "0xff61")), "02ff61" + std::string(26, '0'));
}

TEST(ValueReader, SaltsOfOneSourceAreUnlike) {
  SaltSource salts;
  const NamedAttribute attribute = named({.encryption = salted});
  const AttrValue first = valueOf(attribute, "0x01", salts);
  EXPECT_NE(first, valueOf(attribute, "0x01", salts));
}

TEST(ValueReader, FaultsNeverRepeatTheValue) {
  for (const Shape& shape : {number, ip4, ip6, ip6Prefix, interfaceId, plainText, password}) {
    EXPECT_EQ(fault(named(shape), "hunter2").value_or("").find("hunter"), std::string::npos);
  }
}

}  // namespace
}  // namespace RadiusPacketTool
