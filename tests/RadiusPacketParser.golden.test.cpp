#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "tests/support/GoldenPackets.h"
#include "tests/support/Hex.h"
#include "tests/support/LegacyPacket.h"
#include "tests/support/Vectors.h"

/// The golden packets and those that others published, checked and read by the legacy parser: as
/// they are, cut short, and changed in one byte.
namespace RadiusPacketParser {
namespace {

using TestSupport::bytesOf;
using TestSupport::ByteVector;
using TestSupport::CapturingSink;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::GoldenPacket;
using TestSupport::goldenPackets;
using TestSupport::LegacyPtr;
using TestSupport::otherValues;
using TestSupport::pktOf;
using TestSupport::PublishedPacket;
using TestSupport::shippedDictionary;
using TestSupport::uncheckedPacket;
using TestSupport::withLength;
using Verda::Ptr;
using Verda::String;
using Verda::U32;
using Verda::U8;
using Texts = std::vector<std::string>;

constexpr std::size_t headerLength = 20;
constexpr std::size_t maxLength = 4096;
constexpr U8 vendorSpecific = 26;

// ---- As they are ----

struct Fault {
  const char* name;  ///< how the names of the packets begin
  const char* text;
};

constexpr std::array faults{
    Fault{"refused-attribute-beyond-", "Received packet with invalid attribute length"},
    Fault{"refused-attribute-length-", "Received packet with invalid attribute length"},
    Fault{"refused-date-of-", "Received packet with DATE attribute having invalid length"},
    Fault{"refused-eap-message-without-message-authenticator",
          "Packet has eap message but doesn't have message authenticator"},
    Fault{"refused-integer-of-", "Received packet with INT attribute having invalid length"},
    Fault{"refused-ipaddr-of-", "Received packet with IPADDR attribute having invalid length"},
    Fault{"refused-ipv6addr-of-", "Received packet with IPV6ADDR attribute having invalid length"},
    Fault{"refused-length-field-", "Received packet with invalid header length"},
    Fault{"refused-lone-byte-", "Received packet with attribute having invalid length"},
    Fault{"refused-message-authenticator-length-", "Received packet with invalid msgAuth Length"},
    Fault{"refused-packet-of-", "Received packet with invalid length"},
    Fault{"refused-rfc2865-7.3-second-access-request-as-printed",
          "Received packet with invalid attribute length"},
    Fault{"refused-second-message-authenticator-of-length-2",
          "Received packet with invalid msgAuth Length"},
    Fault{"refused-tagged-integer-of-", "Received packet with INT attribute having invalid length"},
    Fault{"refused-user-password-length-", "Received password with invalid length"},
    Fault{"refused-vendor-integer-of-", "Received packet with INT attribute having invalid length"},
    Fault{"refused-vendor-ipaddr-of-",
          "Received packet with IPADDR attribute having invalid length"},
    Fault{"refused-vendor-ipv6addr-of-",
          "Received packet with IPV6ADDR attribute having invalid length"},
    Fault{"refused-vsa-of-two-vendor-attributes",
          "Received packet with INT attribute having invalid length"},
    Fault{"refused-vsa-shorter-than-8-",
          "Received packet with VSA attribute having invalid length"},
    Fault{"refused-wrong-message-authenticator-before-broken-attribute",
          "Received packet with invalid attribute length"},
    Fault{"refused-wrong-response-authenticator-before-broken-attribute",
          "Received packet with invalid attribute length"},
};

/// What the check says of a golden packet. The others are refused for what it does not look at:
/// digests, the order of fragments, the length of a sub-attribute, of a prefix, of an interface.
Texts faultsOf(const GoldenPacket& golden) {
  const auto found = std::ranges::find_if(
      faults, [&](const Fault& fault) { return golden.name.starts_with(fault.name); });
  return found == faults.end() ? Texts() : Texts{found->text};
}

TEST(LegacyGoldenPackets, AreBadForTheirFormAlone) {
  std::size_t bad = 0;
  for (const GoldenPacket& golden : goldenPackets()) {
    SCOPED_TRACE(golden.name + ": " + golden.title);
    const CapturingSink trace;
    const auto parser = radiusPacketParserFactory(shippedDictionary(), pktOf(golden.packet));
    EXPECT_EQ(trace.texts(), faultsOf(golden));
    EXPECT_EQ(parser->badPkt(), !faultsOf(golden).empty());
    EXPECT_FALSE(parser->badPkt() && golden.isAccepted());
    EXPECT_EQ(bytesOf(parser->pkt()), golden.packet);
    bad += parser->badPkt() ? 1 : 0;
  }
  EXPECT_EQ(bad, 53U);
}

/// An `attribute` directive: "27.0.0 Session-Timeout integer 60".
struct Directive {
  explicit Directive(const std::string& line) {
    std::istringstream words(line);
    U32 attrId = 0;
    U32 vendorAttrId = 0;
    char dot = 0;
    std::string name;
    words >> attrId >> dot >> key.vendorId >> dot >> vendorAttrId >> name >> type >> value;
    key.attrId = static_cast<U8>(attrId);
    key.vendorAttrId = static_cast<U8>(vendorAttrId);
  }

  Attribute key;
  std::string type;
  std::string value;
};

bool isNumber(const std::string& type) {
  return type == "integer" || type == "date";
}

/// Whether a directive's value says what the packet holds, and in the legacy interface's form:
/// texts and numbers that are not hidden, and addresses with dots.
bool isComparable(const Directive& directive) {
  const Attribute& key = directive.key;
  const bool isVendor = key.attrId == vendorSpecific;
  if (directive.type != "string" && directive.type != "octets" && !isNumber(directive.type) &&
      (isVendor || directive.type != "ipaddr")) {
    return false;
  }
  const U8 hiding =
      isVendor ? shippedDictionary()
                     ->vendorAttribute(key.vendorId)
                     ->vendorNodeDict(key.vendorAttrId)
                     ->attributeEncryptionType()
               : shippedDictionary()->radiusAttribute(key.attrId)->attributeEncryptionType();
  return hiding == 0;
}

/// A value in the directive's form, which has the tag in front.
std::string directiveValue(const std::string& type, const String& text, std::optional<U8> tag) {
  if (isNumber(type)) {
    return std::to_string((U32{tag.value_or(0)} << 24U) + std::stoul(std::string(text.view())));
  }
  if (type == "ipaddr") {
    return std::string(text.view());
  }
  const std::string hex = TestSupport::toHex(text.bytes());
  return tag.has_value() ? fmt::format("{:02x}{}", *tag, hex) : hex;
}

TEST(LegacyGoldenPackets, GiveTheValuesOfTheirDirectives) {
  std::size_t compared = 0;
  for (const GoldenPacket& golden : goldenPackets()) {
    if (!golden.isAccepted()) {
      continue;
    }
    SCOPED_TRACE(golden.name + ": " + golden.title);
    std::vector<Directive> directives(golden.attributes.begin(), golden.attributes.end());
    std::erase_if(directives, [](const Directive& directive) { return !isComparable(directive); });
    const auto parser = radiusPacketParserFactory(shippedDictionary(), pktOf(golden.packet));
    for (const Directive& directive : directives) {
      parser->getValueOfAttributesListIs(directive.key);
    }
    parser->getValuesOfAttributesFromAttributeList();
    std::map<Attribute, Verda::U16> indexes;
    for (const Directive& directive : directives) {
      SCOPED_TRACE(directive.key);
      const Ptr<AttrInfo> info = parser->attrInfo(directive.key);
      const Verda::U16 index = indexes[directive.key]++;
      const auto text = info->valueGet(index);
      ASSERT_TRUE(text.has_value());
      EXPECT_EQ(directiveValue(directive.type, *text, info->tagGet(index)), directive.value);
      ++compared;
    }
    for (const auto& [key, count] : indexes) {
      EXPECT_EQ(parser->attrInfo(key)->value().size(), count) << key;
    }
  }
  EXPECT_GT(compared, 100U);
}

TEST(LegacyPublishedPackets, GiveTheAttributesThatOthersFound) {
  DictionaryMaker maker;
  for (U32 type = 0; type < 256; ++type) {
    maker.add(static_cast<U8>(type), RadiusAttributeType::octets);
  }
  const DictPtr octets = maker.make();
  std::size_t compared = 0;
  for (const PublishedPacket& published : TestSupport::publishedPackets()) {
    if (!published.wellFormed) {
      continue;
    }
    SCOPED_TRACE(published.name);
    const LegacyPtr parser = uncheckedPacket(published.packet, octets);
    std::map<U8, std::vector<ByteVector>> expected;
    for (const auto& attribute : published.attributes) {
      if (attribute.type != vendorSpecific) {
        expected[attribute.type].push_back(attribute.value);
        parser->getValueOfAttributesListIs(Attribute(attribute.type, 0, 0));
      }
    }
    parser->getValuesOfAttributesFromAttributeList();
    for (const auto& [type, values] : expected) {
      std::vector<ByteVector> found;
      for (const auto& [index, text] : parser->attrInfo(Attribute(type, 0, 0))->value()) {
        found.emplace_back(text.bytes().begin(), text.bytes().end());
      }
      EXPECT_EQ(found, values) << int{type};
      compared += values.size();
    }
  }
  EXPECT_GT(compared, 300U);
}

// ---- Cut short, and changed in one byte ----

/// The kinds in a packet and how many there are of each, as a walk finds them that trusts every
/// length and takes what lies behind the packet for zeros.
std::map<Attribute, std::size_t> kindsOf(const ByteVector& packet) {
  const auto byteAt = [&](std::size_t at) { return at < packet.size() ? packet[at] : U8{0}; };
  const std::size_t length = std::size_t{packet[2]} * 256 + packet[3];
  std::map<Attribute, std::size_t> kinds;
  for (std::size_t at = headerLength; at < length; at += byteAt(at + 1)) {
    Attribute key(byteAt(at), 0, 0);
    if (key.attrId == vendorSpecific) {
      key.vendorAttrId = byteAt(at + 6);
      for (std::size_t of = 2; of < 6; ++of) {
        key.vendorId = key.vendorId * 256 + byteAt(at + of);
      }
    }
    ++kinds[key];
    if (byteAt(at + 1) == 0) {
      break;
    }
  }
  return kinds;
}

/// Reads all that can be read, checked or not.
void expectAllIsRead(const ByteVector& packet) {
  const LegacyPtr parser = uncheckedPacket(packet, shippedDictionary());
  std::map<Attribute, std::size_t> kinds = kindsOf(packet);
  std::erase_if(kinds, [&](const auto& kind) {
    const auto type = parser->getAttributeType(kind.first);
    return type == RadiusAttributeType::unknown || type == RadiusAttributeType::integer64;
  });
  for (const auto& [key, count] : kinds) {
    parser->getValueOfAttributesListIs(key);
  }
  parser->getValuesOfAttributesFromAttributeList();
  for (const auto& [key, count] : kinds) {
    ASSERT_EQ(parser->attrInfo(key)->value().size(), count) << key;
  }
  ASSERT_EQ(bytesOf(parser->pkt()), packet);
}

/// Makes a parser of any bytes, asks all its validators, and reads all that can be read.
void expectSurvived(const ByteVector& packet) {
  const CapturingSink trace;
  const auto parser = radiusPacketParserFactory(shippedDictionary(), pktOf(packet));
  ASSERT_EQ(trace.records().size(), parser->badPkt() ? 1U : 0U);
  ASSERT_EQ(parser->header() != nullptr, packet.size() >= headerLength);
  if (packet.size() < headerLength) {
    return;
  }
  const std::size_t length = parser->header()->length();
  ASSERT_EQ(parser->validatePacketLength(), length >= headerLength && length <= maxLength);
  ASSERT_TRUE(parser->validatePacketId(parser->header()));
  ASSERT_TRUE(parser->msgAuthPresent() || !parser->validateStatusServerPkt());
  parser->msgAuthPresentIs(true);
  static_cast<void>(parser->validateStatusServerPkt());
  ASSERT_EQ(bytesOf(parser->pkt()), packet);
  expectAllIsRead(packet);
}

TEST(LegacyGoldenPackets, AreSurvivedAtEveryLength) {
  for (const GoldenPacket& golden : goldenPackets()) {
    for (std::size_t size = 0; size <= golden.packet.size(); ++size) {
      SCOPED_TRACE(testing::Message() << golden.name << " cut to " << size);
      const ByteVector cut(golden.packet.begin(),
                           golden.packet.begin() + static_cast<std::ptrdiff_t>(size));
      ASSERT_NO_FATAL_FAILURE(expectSurvived(cut));
      if (size >= headerLength) {
        ASSERT_NO_FATAL_FAILURE(expectSurvived(withLength(cut, size)));
      }
    }
  }
}

TEST(LegacyGoldenPackets, AreSurvivedWithAnyByteChanged) {
  for (const GoldenPacket& golden : goldenPackets()) {
    for (std::size_t at = 0; at < golden.packet.size(); ++at) {
      for (const U8 value : otherValues(golden, golden.packet[at])) {
        ByteVector packet = golden.packet;
        packet[at] = value;
        ASSERT_NO_FATAL_FAILURE(expectSurvived(packet))
            << golden.name << " byte " << at << " as " << int{value};
      }
    }
  }
}

}  // namespace
}  // namespace RadiusPacketParser
