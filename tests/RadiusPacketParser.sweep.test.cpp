#include "RadiusPacketParser/RadiusPacketParser.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/GoldenPackets.h"
#include "tests/support/LegacyPacket.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"

/// Every operation of the legacy interface on every packet that begins or differs in one byte like
/// a golden one. What each gives is computed here a second time, from the packet with zeros behind
/// it. Nothing that is asked for is asserted against, so that no assertion may fail.
namespace {

using namespace RadiusPacketParser;
using TestSupport::bytesOf;
using TestSupport::ByteVector;
using TestSupport::DictPtr;
using TestSupport::GoldenPacket;
using TestSupport::LegacyPtr;
using TestSupport::Outcome;
using TestSupport::outcomeOf;
using TestSupport::reqAuthFor;
using TestSupport::verdaBytes;
using TestSupport::withAttributes;
using Verda::U32;
using Verda::U8;

constexpr std::size_t headerLength = 20;
constexpr std::size_t authenticatorAt = 4;
constexpr std::size_t digestLength = 16;
constexpr U8 userName = 1;
constexpr U8 classType = 25;
constexpr U8 vendorSpecific = 26;
constexpr U8 messageAuthenticator = 80;

const DictPtr& dictionary = TestSupport::shippedDictionary();

/// A packet with zeros behind it, as far as its Length field and any attribute there may reach.
class Model {
 public:
  explicit Model(ByteVector packet) : size_(packet.size()), bytes_(std::move(packet)) {
    length_ = bytes_.at(2) * std::size_t{256} + bytes_.at(3);
    bytes_.resize(std::max(size_, length_) + 1024);
  }

  U8 code() const { return bytes_.at(0); }
  std::size_t length() const { return length_; }
  ByteVector packet() const { return part(0, size_); }
  ByteVector counted() const { return part(0, length_); }
  ByteVector authenticator() const { return part(authenticatorAt, digestLength); }

  struct Found {
    std::size_t at;
    Attribute key;
    U8 lengthByte;
  };

  /// What stands at an offset.
  Found at(std::size_t offset) const {
    const U8 type = bytes_.at(offset);
    const U32 vendorId = U32{bytes_.at(offset + 2)} << 24U | U32{bytes_.at(offset + 3)} << 16U |
                         U32{bytes_.at(offset + 4)} << 8U | U32{bytes_.at(offset + 5)};
    const Attribute key = type == vendorSpecific ? Attribute(type, bytes_.at(offset + 6), vendorId)
                                                 : Attribute(type, 0, 0);
    return {offset, key, bytes_.at(offset + 1)};
  }

  /// Calls `visit` for each attribute until the length is reached, or a length byte is zero.
  template <typename Visit>
  void walk(Visit visit) {
    for (std::size_t offset = headerLength; offset < length_;) {
      const Found found = at(offset);
      visit(found);
      if (found.lengthByte == 0) {
        return;
      }
      offset += bytes_.at(offset + 1);
    }
  }

  ByteVector part(std::size_t from, std::size_t count) const {
    const auto begin = bytes_.begin() + static_cast<std::ptrdiff_t>(from);
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
  }

  void put(std::size_t from, const ByteVector& bytes) {
    std::ranges::copy(bytes, bytes_.begin() + static_cast<std::ptrdiff_t>(from));
  }

 private:
  std::size_t size_;
  std::size_t length_ = 0;
  ByteVector bytes_;
};

/// The attributes as they are, but those that `replace` has something else for.
template <typename Replace>
ByteVector attributesOf(Model model, Replace replace) {
  ByteVector attributes;
  model.walk([&](const Model::Found& found) {
    const std::optional<ByteVector> other = replace(found.key);
    const ByteVector bytes = other ? *other : model.part(found.at, found.lengthByte);
    attributes.insert(attributes.end(), bytes.begin(), bytes.end());
  });
  return attributes;
}

const RadiusNode* entryOf(const Attribute& key) {
  if (key.attrId != vendorSpecific) {
    return dictionary->radiusAttribute(key.attrId).get();
  }
  const auto vendor = dictionary->vendorAttribute(key.vendorId);
  return vendor ? vendor->vendorNodeDict(key.vendorAttrId).get() : nullptr;
}

/// What hiding or revealing makes of a packet.
ByteVector transformed(Model model, const ByteVector& secret, const ByteVector& authenticator,
                       bool encrypt) {
  model.walk([&](const Model::Found& found) {
    const RadiusNode* entry = entryOf(found.key);
    const U8 method = entry == nullptr ? U8{0} : entry->attributeEncryptionType();
    if (method != 1 && method != 2) {
      return;
    }
    const std::size_t unit = found.at + (found.key.attrId == vendorSpecific ? 6 : 0);
    const std::size_t saltAt = unit + 2 + (entry->hasTag() ? 1 : 0);
    const std::size_t dataAt = saltAt + (method == 2 ? 2 : 0);
    const std::size_t end = unit + model.part(unit + 1, 1).at(0);
    if (end <= dataAt) {
      return;
    }
    const ByteVector salt = model.part(saltAt, dataAt - saltAt);
    const ByteVector data = model.part(dataAt, end - dataAt);
    model.put(dataAt, encrypt ? TestSupport::hidden(data, secret, authenticator, salt)
                              : TestSupport::revealed(data, secret, authenticator, salt));
  });
  return model.packet();
}

/// Whether the authenticator is the digest over zeros or the Request Authenticator.
bool authenticatorHolds(const Model& packet, const ByteVector& secret, const ByteVector& reqAuth) {
  Model covered = packet;
  covered.put(authenticatorAt, reqAuth.empty() ? ByteVector(digestLength) : reqAuth);
  return packet.code() == 1 || packet.code() == 12 ||
         TestSupport::md5(TestSupport::joined({covered.counted(), secret})) ==
             packet.authenticator();
}

/// Whether the first Message-Authenticator is right, where one is there and is looked at.
bool msgAuthHolds(Model packet, const ByteVector& secret, const ByteVector& reqAuth,
                  bool isPresent) {
  const std::set<U8> unchecked{4, 5};
  const std::set<U8> checked{1, 2, 3, 11, 12, 40, 41, 42, 43, 44, 45};
  if (!isPresent || unchecked.contains(packet.code())) {
    return true;
  }
  if (!checked.contains(packet.code())) {
    return false;
  }
  std::optional<std::size_t> place;
  packet.walk([&](const Model::Found& found) {
    if (!place && found.key.attrId == messageAuthenticator) {
      place = found.at + 2;
    }
  });
  if (packet.code() != 1 && packet.code() != 12) {
    packet.put(authenticatorAt, reqAuth.empty() ? ByteVector(digestLength) : reqAuth);
  }
  const ByteVector value = packet.part(place.value(), digestLength);
  packet.put(*place, ByteVector(digestLength));
  return TestSupport::hmacMd5(secret, packet.counted()) == value;
}

/// Whether reading supports what the dictionary says of a kind.
bool isReadable(const Attribute& key) {
  const RadiusNode* entry = entryOf(key);
  const auto type = entry == nullptr ? RadiusAttributeType::unknown : entry->attributeType();
  return type != RadiusAttributeType::unknown && type != RadiusAttributeType::integer64;
}

LegacyPtr parserOf(const ByteVector& packet) {
  return radiusPacketParserFactory(dictionary, TestSupport::pktOf(packet));
}

/// Expects one value of each attribute of a kind, or none of a bad packet.
void expectReading(const Model& model, const LegacyPtr& parser) {
  std::map<Attribute, std::size_t> counts;
  Model(model).walk([&](const Model::Found& found) { ++counts[found.key]; });
  for (const auto& [key, count] : counts) {
    if (isReadable(key)) {
      parser->getValueOfAttributesListIs(key);
    }
  }
  parser->getValuesOfAttributesFromAttributeList();
  for (const auto& [key, count] : counts) {
    if (isReadable(key)) {
      EXPECT_EQ(parser->attrInfo(key)->value().size(), parser->badPkt() ? 0U : count);
    }
  }
}

void expectEditing(const ByteVector& packet, const Model& model, const LegacyPtr& parser) {
  const ByteVector copied = attributesOf(model, [](const auto&) { return std::nullopt; });
  EXPECT_EQ(bytesOf(parser->removeAttribute()), withAttributes(packet, copied));

  parser->attributesToRemoveIs(Attribute(userName, 0, 0));
  parser->attributesToRemoveIs(Attribute(vendorSpecific, 1, 9));
  EXPECT_EQ(bytesOf(parser->removeAttribute()),
            withAttributes(packet, attributesOf(model, [&](const Attribute& key) {
                             return parser->attributesToRemoveHas(key) ? std::optional(ByteVector())
                                                                       : std::nullopt;
                           })));

  parser->attributesToSetIs(userName, "bob");
  const ByteVector bob = TestSupport::attributeBytes(userName, bytesOf("bob"));
  ByteVector set =
      withAttributes(packet, attributesOf(model, [&](const Attribute& key) {
                       return key.attrId == userName ? std::optional(bob) : std::nullopt;
                     }));
  std::fill_n(set.begin() + authenticatorAt, digestLength, U8{0});
  EXPECT_EQ(bytesOf(parser->setValuesOfAttributesFromAttributesToSet()), set);

  parser->attributesToAddIs(messageAuthenticator, "");
  parser->attributesToAddIs(classType, "class");
  parser->vsaToAddIs(0, VsaValueType(9, 1, "v"));
  const ByteVector others = attributesOf(model, [](const Attribute& key) {
    return key.attrId == messageAuthenticator ? std::optional(ByteVector()) : std::nullopt;
  });
  EXPECT_EQ(
      bytesOf(parser->addAttribute()),
      withAttributes(packet, TestSupport::joined(
                                 {TestSupport::attributeBytes(messageAuthenticator, ByteVector(16)),
                                  others, TestSupport::attributeBytes(classType, bytesOf("class")),
                                  TestSupport::vendorBytes(9, 1, bytesOf("v"))})));
}

void expectAuthenticators(const ByteVector& packet, const Model& model, const LegacyPtr& parser,
                          const GoldenPacket& golden) {
  const bool isRequest = reqAuthFor(model.code()).empty();
  const ByteVector reqAuth = isRequest ? ByteVector() : TestSupport::testReqAuth;
  const std::string secret = golden.secretText();
  const ByteVector counts = bytesOf(secret.substr(0, secret.find('\0')));
  parser->validatePacketLength();
  parser->validatePacketId(parser->header());
  parser->validateStatusServerPkt();
  if (model.length() >= headerLength) {
    EXPECT_EQ(parser->validateAuthenticator(secret, verdaBytes(reqAuth)),
              authenticatorHolds(model, counts, reqAuth));
    EXPECT_EQ(parser->validateMessageAuthenticator(secret, verdaBytes(reqAuth)),
              msgAuthHolds(model, counts, reqAuth, parser->msgAuthPresent()));
  }
  EXPECT_EQ(bytesOf(parser->pkt()), packet);

  for (const bool encrypt : {false, true}) {
    const LegacyPtr fresh = parserOf(packet);
    encrypt ? fresh->encryptPacket(secret, verdaBytes(reqAuth))
            : fresh->decryptPacket(secret, verdaBytes(reqAuth));
    EXPECT_EQ(bytesOf(fresh->pkt()),
              transformed(model, counts, isRequest ? model.authenticator() : reqAuth, encrypt));
  }

  const LegacyPtr fresh = parserOf(packet);
  fresh->setPacketIdentifier(1);
  fresh->setMessageAuthenticator(secret, verdaBytes(reqAuth));
  fresh->setRequestAuthenticator(secret);
  fresh->setResponseAuthenticator(secret, verdaBytes(TestSupport::testReqAuth));
  EXPECT_EQ(fresh->pkt()->bytes(), packet.size());
}

/// Runs everything on a packet of at least a header.
void expectAll(const ByteVector& packet, const GoldenPacket& golden) {
  const Outcome outcome = outcomeOf(
      [&] {
        const Model model(packet);
        const LegacyPtr parser = parserOf(packet);
        expectReading(model, parser);
        expectReading(model, TestSupport::uncheckedPacket(packet, dictionary));
        expectEditing(packet, model, parser);
        expectAuthenticators(packet, model, parser, golden);
      },
      Verda::traceOff);
  EXPECT_EQ(outcome, Outcome());
}

TEST(LegacySweep, EveryTruncatedPrefixOfTheGoldenPackets) {
  ASSERT_EQ(TestSupport::goldenPackets().size(), TestSupport::goldenPacketCount);
  for (const GoldenPacket& golden : TestSupport::goldenPackets()) {
    SCOPED_TRACE(golden.name);
    for (std::size_t length = 0; length <= golden.packet.size(); ++length) {
      const auto end = golden.packet.begin() + static_cast<std::ptrdiff_t>(length);
      const ByteVector prefix(golden.packet.begin(), end);
      if (length < headerLength) {
        const TestSupport::CapturingSink silent;
        EXPECT_TRUE(parserOf(prefix)->badPkt());
        continue;
      }
      expectAll(prefix, golden);
      if (testing::Test::HasFailure()) {
        FAIL() << "prefix of " << length << " bytes";
      }
    }
  }
}

/// The bytes that say what the others are: code and Length, types and length bytes, vendors, tags.
std::set<std::size_t> leadingBytes(const ByteVector& packet) {
  std::set<std::size_t> leading{0, 2, 3};
  Model(packet).walk([&](const Model::Found& found) {
    const std::size_t count = found.key.attrId == vendorSpecific ? 9 : 3;
    for (std::size_t at = found.at; at < found.at + count; ++at) {
      leading.insert(at);
    }
  });
  return leading;
}

/// What a byte is changed to: what a code, a type or a length is likely to trip over, and its
/// neighbours, or one other value.
std::set<U8> otherValues(U8 byte, bool isLeading) {
  const auto flipped = static_cast<U8>(byte ^ 0x80U);
  if (!isLeading) {
    return {flipped};
  }
  std::set<U8> values{0, 1, 2, 3, 4, 26, 80, 127, 255, flipped};
  values.insert(static_cast<U8>(byte + 1));
  values.insert(static_cast<U8>(byte - 1));
  values.erase(byte);
  return values;
}

TEST(LegacySweep, EverySingleByteChangeOfTheGoldenPackets) {
  for (const GoldenPacket& golden : TestSupport::goldenPackets()) {
    SCOPED_TRACE(golden.name);
    if (golden.packet.size() < headerLength) {
      continue;
    }
    const std::set<std::size_t> leading = leadingBytes(golden.packet);
    for (std::size_t at = 0; at < golden.packet.size(); ++at) {
      for (const U8 value : otherValues(golden.packet.at(at), leading.contains(at))) {
        ByteVector changed = golden.packet;
        changed.at(at) = value;
        expectAll(changed, golden);
        if (testing::Test::HasFailure()) {
          FAIL() << "byte " << at << " is " << int{value};
        }
      }
    }
  }
}

}  // namespace
