// The legacy interface and the newer codec on the same packets: the same verdict and the same
// values, but for the differences that docs/GUIDE.md lists and this file names.

#include "RadiusPacketParser/RadiusPacketParser.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tests/support/CapturingSink.h"
#include "tests/support/GoldenPackets.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"

namespace {

using RadiusPacketParser::RadiusAttributeType;
using RadiusPktParserBase::ErrorMsg;
using TestSupport::ByteVector;
using TestSupport::DataType;
using TestSupport::DictPtr;
using TestSupport::PacketMaker;
using TestSupport::Received;
using TestSupport::Walked;
using Verda::U16;
using Verda::U32;
using Verda::U8;
using LegacyKey = RadiusPacketParser::Attribute;

constexpr std::size_t headerLength = 20;
constexpr U8 vendorSpecific = 26;
constexpr U8 messageAuthenticator = 80;

// ---- Verdicts ----

/// What the newer codec refuses and the legacy interface does not look at.
enum class Strictness {
  lengthBeyondBuffer,
  vendorLengthsDiffer,
  secondMessageAuthenticator,
  concatNotConsecutive,
  tagByteMissing,
  ifidLength,
  ipv6PrefixForm,
};

constexpr std::array allStrictness{Strictness::lengthBeyondBuffer,
                                   Strictness::vendorLengthsDiffer,
                                   Strictness::secondMessageAuthenticator,
                                   Strictness::concatNotConsecutive,
                                   Strictness::tagByteMissing,
                                   Strictness::ifidLength,
                                   Strictness::ipv6PrefixForm};

/// An attribute as it stands in a packet; of a vendor's the sub-attribute.
struct Unit {
  LegacyKey key;
  ByteVector value;
  bool lengthsDiffer = false;
};

/// The attributes of a packet whose framing is good, as far as it is.
std::vector<Unit> unitsOf(const ByteVector& packet) {
  std::vector<Unit> units;
  const std::size_t end = std::min<std::size_t>(packet.size(), packet[2] * 256U + packet[3]);
  for (std::size_t at = headerLength; at + 2 <= end && packet[at + 1] >= 2;) {
    const std::size_t next = at + packet[at + 1];
    if (next > end) {
      break;
    }
    const auto from = [&](std::size_t begin) {
      return ByteVector(packet.begin() + static_cast<std::ptrdiff_t>(std::min(begin, next)),
                        packet.begin() + static_cast<std::ptrdiff_t>(next));
    };
    Unit unit{LegacyKey(packet[at], 0, 0), from(at + 2)};
    if (packet[at] == vendorSpecific && next - at >= 8) {
      const U32 vendor = (U32{packet[at + 2]} << 24U) | (U32{packet[at + 3]} << 16U) |
                         (U32{packet[at + 4]} << 8U) | packet[at + 5];
      unit = {LegacyKey(vendorSpecific, packet[at + 6], vendor), from(at + 8),
              packet[at + 7] + 6U != packet[at + 1]};
    }
    units.push_back(unit);
    at = next;
  }
  return units;
}

const RadiusPacketParser::RadiusNode* entryOf(const RadiusPacketParser::RadiusDict& dictionary,
                                              const LegacyKey& key) {
  if (key.attrId != vendorSpecific) {
    const auto* found = dictionary.radiusAttribute().find(key.attrId);
    return found == nullptr ? nullptr : found->get();
  }
  const auto* vendor = dictionary.vendorAttribute().find(key.vendorId);
  const auto* found =
      vendor == nullptr ? nullptr : (*vendor)->vendorNodeDict().find(key.vendorAttrId);
  return found == nullptr ? nullptr : found->get();
}

bool isBadPrefix(const ByteVector& value) {
  return value.size() < 2 || value.size() > 18 || value[1] > 128;
}

/// Why the newer codec alone may refuse the packet.
std::set<Strictness> strictnessOf(const ByteVector& packet,
                                  const RadiusPacketParser::RadiusDict& dictionary) {
  std::set<Strictness> found;
  if (packet.size() < headerLength) {
    return found;
  }
  if (packet[2] * 256U + packet[3] > packet.size()) {
    found.insert(Strictness::lengthBeyondBuffer);
  }
  std::set<LegacyKey> endedRuns;
  std::optional<LegacyKey> run;
  int messageAuthenticators = 0;
  for (const Unit& unit : unitsOf(packet)) {
    const auto* entry = entryOf(dictionary, unit.key);
    const DataType type = entry == nullptr ? RadiusAttributeType::unknown : entry->attributeType();
    const auto note = [&found](bool applies, Strictness strictness) {
      if (applies) {
        found.insert(strictness);
      }
    };
    note(unit.lengthsDiffer, Strictness::vendorLengthsDiffer);
    messageAuthenticators += unit.key.attrId == messageAuthenticator ? 1 : 0;
    note(messageAuthenticators > 1, Strictness::secondMessageAuthenticator);
    note(endedRuns.contains(unit.key), Strictness::concatNotConsecutive);
    note(type == RadiusAttributeType::string && entry->hasTag() && unit.value.empty(),
         Strictness::tagByteMissing);
    note(type == RadiusAttributeType::ifid && unit.value.size() != 8, Strictness::ifidLength);
    note(type == RadiusAttributeType::ipv6prefix && isBadPrefix(unit.value),
         Strictness::ipv6PrefixForm);
    if (run && *run != unit.key) {
      endedRuns.insert(*run);
    }
    run = entry != nullptr && entry->concat() ? std::optional(unit.key) : std::nullopt;
  }
  return found;
}

// ---- Values ----

std::string groupsText(const ByteVector& bytes) {
  std::string text;
  for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2) {
    text += fmt::format("{}{:x}", at == 0 ? "" : ":", bytes[at] * 256 + bytes[at + 1]);
  }
  return text;
}

std::string dottedText(const ByteVector& bytes) {
  return fmt::format("{}.{}.{}.{}", bytes[0], bytes[1], bytes[2], bytes[3]);
}

/// A value of the legacy interface.
struct LegacyValue {
  std::string text;
  std::optional<U8> tag;

  bool operator==(const LegacyValue&) const = default;
};

void PrintTo(const LegacyValue& value, std::ostream* out) {
  *out << testing::PrintToString(value.text) << " tag " << testing::PrintToString(value.tag);
}

ByteVector addressBytes(const Received& received) {
  const auto& prefix = std::get<Zonet::IpGenPrefix>(received.value);
  const auto bytes = prefix.address().bytes();
  return {bytes.begin(), bytes.end()};
}

std::string textIn(const Received& received) {
  if (const auto* text = std::get_if<Verda::String>(&received.value)) {
    return std::string(text->view());
  }
  if (const auto* tagged = std::get_if<RadiusPktParserBase::TaggedStr>(&received.value)) {
    return std::string(tagged->str.view());
  }
  const auto& bytes = std::get<Verda::Bytes>(received.value);
  return {bytes.begin(), bytes.end()};
}

U32 numberIn(const Received& received) {
  if (const auto* tagged = std::get_if<RadiusPktParserBase::TaggedInt>(&received.value)) {
    return tagged->value;
  }
  return std::get<unsigned int>(received.value);
}

/// What the legacy interface makes of a value that the newer one has decoded, or nothing when it
/// ends the process for such a kind. The differences:
/// - the tag is taken off whatever may have one, also octets and dates, of a standard attribute; of
///   a vendor's it stays in the value;
/// - a vendor's address is an empty text;
/// - of an IPv6 prefix the length stays, and the address is as short as it is on the wire.
std::optional<LegacyValue> legacyValueOf(const Received& received, const ByteVector& wire,
                                         bool isTagged) {
  const bool isVendor = received.key.attrId == vendorSpecific;
  const bool splitsTag = isTagged && !isVendor && !wire.empty();
  switch (received.info.attributeType) {
    case RadiusAttributeType::string:
    case RadiusAttributeType::octets: {
      const std::string text = textIn(received);
      return splitsTag ? LegacyValue{text.substr(1), static_cast<U8>(text[0])}
                       : LegacyValue{text, std::nullopt};
    }
    case RadiusAttributeType::integer:
    case RadiusAttributeType::date: {
      const U32 number = numberIn(received);
      return splitsTag
                 ? LegacyValue{std::to_string(number & 0xFFFFFFU), static_cast<U8>(number >> 24U)}
                 : LegacyValue{std::to_string(number), std::nullopt};
    }
    case RadiusAttributeType::ipaddr:
      return LegacyValue{isVendor ? "" : dottedText(addressBytes(received)), std::nullopt};
    case RadiusAttributeType::ipv6addr:
      return LegacyValue{isVendor ? "" : groupsText(addressBytes(received)), std::nullopt};
    case RadiusAttributeType::ifid: {
      const ByteVector address = addressBytes(received);
      return LegacyValue{isVendor ? "" : groupsText({address.begin() + 8, address.end()}),
                         std::nullopt};
    }
    case RadiusAttributeType::ipv6prefix: {
      ByteVector address = addressBytes(received);
      address.resize(wire.size() - 2);
      return LegacyValue{isVendor ? "" : fmt::format("{}/{}", groupsText(address), wire[1]),
                         std::nullopt};
    }
    default:
      return std::nullopt;
  }
}

// ---- Both roads ----

struct LegacyRead {
  bool accepted = false;
  std::map<LegacyKey, std::vector<LegacyValue>> values;
};

std::vector<LegacyValue> valuesIn(const RadiusPacketParser::AttrInfo& info) {
  std::vector<LegacyValue> values;
  for (const auto& [index, text] : info.value()) {
    values.push_back({std::string(text.view()), info.tag(index)});
  }
  return values;
}

/// @param kinds  what to read
LegacyRead readLegacy(const ByteVector& packet, const ByteVector& reqAuth,
                      const DictPtr& dictionary, const std::string& secret,
                      const std::set<LegacyKey>& kinds) {
  const TestSupport::CapturingSink quiet;
  const auto object =
      RadiusPacketParser::radiusPacketParserFactory(dictionary, TestSupport::pktOf(packet));
  const Verda::Bytes authenticator = TestSupport::verdaBytes(reqAuth);
  LegacyRead read;
  read.accepted = !object->badPkt() && object->validateAuthenticator(secret, authenticator) &&
                  object->validateMessageAuthenticator(secret, authenticator);
  if (read.accepted) {
    object->decryptPacket(secret, authenticator);
    for (const LegacyKey& kind : kinds) {
      object->getValueOfAttributesListIs(kind);
    }
    object->getValuesOfAttributesFromAttributeList();
    for (const LegacyKey& kind : kinds) {
      read.values[kind] = valuesIn(*object->attrInfo(kind));
    }
  }
  return read;
}

/// Compares one packet on both roads and counts what was seen.
class RoadComparison {
 public:
  explicit RoadComparison(DictPtr dictionary) : dictionary_(std::move(dictionary)) {}

  void compare(const ByteVector& packet, const ByteVector& reqAuth, const std::string& secret) {
    const bool isRequest = !packet.empty() && RadiusPktParserBase::isRequest(packet[0]);
    const ByteVector given = isRequest ? ByteVector() : reqAuth;
    const Walked newer = TestSupport::walk(packet, given, dictionary_, secret);
    const auto expected = expectedValues(newer, packet);
    std::set<LegacyKey> kinds;
    for (const auto& [kind, values] : expected) {
      kinds.insert(kind);
    }
    const LegacyRead legacy = readLegacy(packet, given, dictionary_, secret, kinds);
    const bool accepted = newer.result == ErrorMsg::success;
    if (accepted) {
      ASSERT_TRUE(legacy.accepted);
      EXPECT_EQ(legacy.values, expected);
      ++accepted_;
    } else if (legacy.accepted) {
      const auto reasons = strictnessOf(packet, *dictionary_);
      EXPECT_FALSE(reasons.empty()) << "only the legacy road accepts: " << newer.result;
      for (const Strictness reason : reasons) {
        ++stricter_[reason];
      }
    } else {
      ++refused_;
    }
  }

  int accepted() const { return accepted_; }
  int refused() const { return refused_; }
  int stricter(Strictness reason) const {
    const auto found = stricter_.find(reason);
    return found == stricter_.end() ? 0 : found->second;
  }

 private:
  /// What the legacy interface is to read of each kind that it can, in the order of the packet.
  std::map<LegacyKey, std::vector<LegacyValue>> expectedValues(const Walked& newer,
                                                               const ByteVector& packet) const {
    std::map<LegacyKey, std::vector<LegacyValue>> expected;
    if (newer.result != ErrorMsg::success) {
      return expected;
    }
    const std::vector<Unit> units = unitsOf(packet);
    EXPECT_EQ(units.size(), newer.received.size());
    for (std::size_t at = 0; at < units.size(); ++at) {
      const Received& received = newer.received[at];
      const auto value = legacyValueOf(received, units[at].value, received.info.isTagged);
      if (value) {
        expected[units[at].key].push_back(*value);
      }
    }
    return expected;
  }

  DictPtr dictionary_;
  int accepted_ = 0;
  int refused_ = 0;
  std::map<Strictness, int> stricter_;
};

TEST(TwoRoads, AgreeOnTheGoldenPackets) {
  RoadComparison roads(TestSupport::shippedDictionary());
  for (const auto& golden : TestSupport::goldenPackets()) {
    SCOPED_TRACE(golden.name);
    roads.compare(golden.packet, golden.requestAuthenticator, golden.secretText());
  }
  EXPECT_EQ(static_cast<std::size_t>(roads.accepted()), TestSupport::acceptedGoldenPacketCount);
}

// ---- Random packets ----

constexpr U32 vendor = 32473;

struct Kind {
  U8 code;
  DataType type;
  TestSupport::Flags flags = {};
};

constexpr Kind standardKinds[] = {
    {1, RadiusAttributeType::string},
    {2, RadiusAttributeType::string, {.encrypt = 1}},
    {4, RadiusAttributeType::ipaddr},
    {5, RadiusAttributeType::integer},
    {25, RadiusAttributeType::octets},
    {26, RadiusAttributeType::octets},
    {55, RadiusAttributeType::date},
    {64, RadiusAttributeType::integer, {.tag = true}},
    {66, RadiusAttributeType::string, {.tag = true}},
    {69, RadiusAttributeType::string, {.tag = true, .encrypt = 2}},
    {70, RadiusAttributeType::octets, {.tag = true}},
    {71, RadiusAttributeType::date, {.tag = true}},
    {72, RadiusAttributeType::integer, {.encrypt = 1}},
    {79, RadiusAttributeType::octets, {.concat = true}},
    {80, RadiusAttributeType::octets},
    {95, RadiusAttributeType::ipv6addr},
    {96, RadiusAttributeType::ifid},
    {97, RadiusAttributeType::ipv6prefix},
    {124, RadiusAttributeType::integer64},
    {150, RadiusAttributeType::octets, {.concat = true}},
    {151, RadiusAttributeType::string, {.encrypt = 3}},
};

constexpr Kind vendorKinds[] = {
    {1, RadiusAttributeType::string},
    {2, RadiusAttributeType::octets, {.encrypt = 2}},
    {3, RadiusAttributeType::integer},
    {4, RadiusAttributeType::integer, {.tag = true}},
    {5, RadiusAttributeType::string, {.tag = true, .encrypt = 2}},
    {6, RadiusAttributeType::ipaddr},
    {7, RadiusAttributeType::ipv6addr},
    {8, RadiusAttributeType::ipv6prefix},
    {9, RadiusAttributeType::ifid},
    {10, RadiusAttributeType::date},
    {11, RadiusAttributeType::octets, {.concat = true}},
    {12, RadiusAttributeType::integer64},
};

DictPtr everyKind() {
  TestSupport::DictionaryMaker maker;
  for (const Kind& kind : standardKinds) {
    maker.add(kind.code, kind.type, kind.flags);
  }
  for (const Kind& kind : vendorKinds) {
    maker.addVendor(vendor, kind.code, kind.type, kind.flags);
  }
  return maker.make();
}

class RandomPackets {
 public:
  explicit RandomPackets(U32 seed) : random_(seed) {}

  /// A packet signed as its code asks for; now and then a byte is changed behind that, or zeros at
  /// the end are left out.
  ByteVector next() {
    static constexpr U8 codes[] = {1, 2, 3, 4, 5, 11, 12, 40, 41, 42, 43, 44, 45, 99};
    PacketMaker maker(codes[below(std::size(codes))]);
    if (below(2) == 0) {
      maker.addMessageAuthenticator(below(16) == 0);
    }
    for (U32 count = below(10); count > 0; --count) {
      addAttribute(maker);
    }
    const bool endsCut = below(16) == 0;
    if (endsCut) {
      maker.add(25, ByteVector(12));
    }
    ByteVector packet = maker.make();
    if (endsCut) {
      packet.resize(packet.size() - 1 - below(10));
    } else if (below(8) == 0) {
      packet[below(static_cast<U32>(packet.size()))] ^= static_cast<U8>(1U << below(8));
    }
    return packet;
  }

 private:
  U32 below(U32 end) { return static_cast<U32>(random_() % end); }

  ByteVector bytes(std::size_t count) {
    ByteVector content(count);
    std::ranges::generate(content, [this] { return static_cast<U8>(random_()); });
    return content;
  }

  ByteVector valueOf(const Kind& kind) {
    if (below(40) == 0) {
      return bytes(below(40));
    }
    switch (kind.type) {
      case RadiusAttributeType::ipaddr:
      case RadiusAttributeType::date:
      case RadiusAttributeType::integer:
        return bytes(4);
      case RadiusAttributeType::ipv6addr:
        return bytes(16);
      case RadiusAttributeType::ifid:
      case RadiusAttributeType::integer64:
        return bytes(8);
      case RadiusAttributeType::ipv6prefix: {
        ByteVector value = bytes(2 + below(17));
        value[1] = static_cast<U8>(below(129));
        return value;
      }
      default:
        return bytes(kind.code == 2 ? 16 * (1 + below(8)) : below(60));
    }
  }

  void addAttribute(PacketMaker& maker) {
    switch (below(16)) {
      case 0:
        maker.add(static_cast<U8>(below(256)), bytes(below(40)));
        break;
      case 1:
        maker.addVendor(below(2) == 0 ? vendor : 9, static_cast<U8>(below(256)), bytes(below(40)));
        break;
      case 2: {
        ByteVector attribute = TestSupport::vendorBytes(vendor, 1, bytes(1 + below(10)));
        attribute[7] = static_cast<U8>(below(2) == 0 ? attribute[7] - below(2) : below(256));
        maker.addRaw(attribute);
        break;
      }
      case 3:
        if (below(8) == 0) {
          maker.add(messageAuthenticator, bytes(16));
        }
        break;
      case 4:
      case 5:
      case 6:
      case 7:
      case 8: {
        const Kind& kind = vendorKinds[below(std::size(vendorKinds))];
        maker.addVendor(vendor, kind.code, valueOf(kind));
        break;
      }
      default: {
        const Kind& kind = standardKinds[below(std::size(standardKinds))];
        if (kind.code != vendorSpecific && kind.code != messageAuthenticator) {
          maker.add(kind.code, valueOf(kind));
        }
      }
    }
  }

  std::mt19937 random_;
};

TEST(TwoRoads, AgreeOnRandomPackets) {
  constexpr int packets = 20'000;
  RoadComparison roads(everyKind());
  RandomPackets random(2026);
  for (int count = 0; count < packets && !testing::Test::HasFailure(); ++count) {
    SCOPED_TRACE(count);
    const ByteVector packet = random.next();
    roads.compare(packet, TestSupport::reqAuthFor(packet[0]), TestSupport::testSecret);
  }
  EXPECT_GT(roads.accepted(), packets / 4);
  EXPECT_GT(roads.refused(), packets / 20);
  for (const Strictness reason : allStrictness) {
    SCOPED_TRACE(static_cast<int>(reason));
    EXPECT_GT(roads.stricter(reason), 10);
  }
}

}  // namespace
