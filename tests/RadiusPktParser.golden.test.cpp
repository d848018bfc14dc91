#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tests/support/GoldenPackets.h"
#include "tests/support/Hex.h"
#include "tests/support/Vectors.h"
#include "tests/support/Walk.h"

namespace {

using namespace RadiusPktParserBase;
using TestSupport::ByteVector;
using TestSupport::GoldenPacket;
using TestSupport::goldenPackets;
using TestSupport::otherValues;
using TestSupport::PublishedPacket;
using TestSupport::shippedDictionary;
using TestSupport::Walked;
using Verda::U8;
using Texts = std::vector<std::string>;

constexpr std::size_t headerLength = 20;
constexpr U8 messageAuthenticator = 80;

std::size_t lengthFieldOf(const ByteVector& packet) {
  return packet.size() < 4 ? 0 : std::size_t{packet[2]} * 256 + packet[3];
}

/// Walks bytes as an agent would that has sent the golden packet's request: the code says whether
/// the Request Authenticator is given.
Walked walkAs(const GoldenPacket& golden, const ByteVector& packet) {
  const bool request = !packet.empty() && isRequest(packet[0]);
  return TestSupport::walk(packet, request ? ByteVector() : golden.requestAuthenticator,
                           shippedDictionary(), golden.secretText());
}

Texts directivesOf(const Walked& walked) {
  Texts directives;
  for (const auto& received : walked.received) {
    directives.push_back(TestSupport::directiveOf(received, *shippedDictionary()));
  }
  return directives;
}

/// The line that the failing check wrote; those of unknown attributes are no faults.
std::string reasonOf(const Walked& walked) {
  for (const auto& record : walked.records) {
    const bool isMiss = record.function == "getAttrInfo" || record.function == "decryptAttribute";
    if (!isMiss && record.text != "Unknown attribute type, storing it as bytes") {
      return record.text;
    }
  }
  return "";
}

// ---- What the files say ----

TEST(GoldenPackets, AreAllThere) {
  EXPECT_EQ(goldenPackets().size(), TestSupport::goldenPacketCount);
  EXPECT_EQ(std::ranges::count_if(goldenPackets(), &GoldenPacket::isAccepted),
            TestSupport::acceptedGoldenPacketCount);
}

TEST(GoldenPackets, GiveWhatTheirDirectivesSay) {
  for (const GoldenPacket& golden : goldenPackets()) {
    SCOPED_TRACE(golden.name + ": " + golden.title);
    const Walked walked = TestSupport::walk(golden.packet, golden.requestAuthenticator,
                                            shippedDictionary(), golden.secretText());
    EXPECT_EQ(stringValue(walked.result), golden.result);
    EXPECT_EQ(reasonOf(walked), golden.reason);
    EXPECT_EQ(directivesOf(walked), golden.attributes);
    EXPECT_TRUE(walked.packetUnchanged);
  }
}

TEST(GoldenPackets, SayForTheirCodeWhetherTheyAnswerARequest) {
  for (const GoldenPacket& golden : goldenPackets()) {
    EXPECT_EQ(isRequest(golden.packet.at(0)), golden.requestAuthenticator.empty()) << golden.name;
  }
}

TEST(GoldenPackets, AreRefusedWithAnotherSecret) {
  for (const GoldenPacket& golden : goldenPackets()) {
    const U8 code = golden.packet.at(0);
    if (!golden.isAccepted() || code == 1 || code == 12) {
      continue;  // those two have nothing signed but a Message-Authenticator
    }
    SCOPED_TRACE(golden.name);
    const Walked walked = TestSupport::walk(golden.packet, golden.requestAuthenticator,
                                            shippedDictionary(), golden.secretText() + "x");
    EXPECT_EQ(walked.result, golden.secretText().find('\0') == std::string::npos
                                 ? ErrorMsg::invalidPktAuth
                                 : ErrorMsg::success);
  }
}

// ---- Cut short ----

TEST(GoldenPackets, AreRefusedWhenCutShortOfTheirLength) {
  for (const GoldenPacket& golden : goldenPackets()) {
    if (!golden.isAccepted()) {
      continue;
    }
    const std::size_t length = lengthFieldOf(golden.packet);
    for (std::size_t size = 0; size < length; ++size) {
      SCOPED_TRACE(testing::Message() << golden.name << " cut to " << size);
      const Walked walked =
          walkAs(golden, ByteVector(golden.packet.begin(),
                                    golden.packet.begin() + static_cast<std::ptrdiff_t>(size)));
      EXPECT_EQ(walked.result, ErrorMsg::invalidPktLength);
      EXPECT_EQ(walked.texts(),
                Texts{size < headerLength
                          ? "Packet has invalid length: " + std::to_string(size)
                          : "Packet's Length: " + std::to_string(size) +
                                " and header length: " + std::to_string(length) + " mismatch"});
      EXPECT_TRUE(walked.received.empty());
      EXPECT_TRUE(walked.packetUnchanged);
    }
  }
}

TEST(GoldenPackets, ThatAreRefusedAreSurvivedAtEveryLength) {
  for (const GoldenPacket& golden : goldenPackets()) {
    for (std::size_t size = 0; size <= golden.packet.size() && !golden.isAccepted(); ++size) {
      SCOPED_TRACE(testing::Message() << golden.name << " cut to " << size);
      ByteVector packet(golden.packet.begin(),
                        golden.packet.begin() + static_cast<std::ptrdiff_t>(size));
      EXPECT_TRUE(walkAs(golden, packet).packetUnchanged);
      if (size >= headerLength) {
        packet[2] = static_cast<U8>(size / 256);
        packet[3] = static_cast<U8>(size % 256);
        EXPECT_TRUE(walkAs(golden, packet).packetUnchanged);
      }
    }
  }
}

/// Whether a well-formed packet holds a Message-Authenticator of its own.
bool holdsMessageAuthenticator(const ByteVector& packet) {
  for (std::size_t at = headerLength; at < lengthFieldOf(packet); at += packet[at + 1]) {
    if (packet[at] == messageAuthenticator) {
      return true;
    }
  }
  return false;
}

/// Whether no digest covers an accepted packet: an Access-Request or a Status-Server without a
/// Message-Authenticator is not signed at all.
bool isUnsigned(const ByteVector& packet) {
  return (packet[0] == 1 || packet[0] == 12) && !holdsMessageAuthenticator(packet);
}

TEST(GoldenPackets, AreRefusedWhenCutShortWithTheirLengthUnlessNothingIsSigned) {
  for (const GoldenPacket& golden : goldenPackets()) {
    if (!golden.isAccepted()) {
      continue;
    }
    for (std::size_t size = headerLength; size < lengthFieldOf(golden.packet); ++size) {
      SCOPED_TRACE(testing::Message() << golden.name << " cut to " << size);
      ByteVector packet(golden.packet.begin(),
                        golden.packet.begin() + static_cast<std::ptrdiff_t>(size));
      packet[2] = static_cast<U8>(size / 256);
      packet[3] = static_cast<U8>(size % 256);
      const Walked walked = walkAs(golden, packet);
      EXPECT_TRUE(walked.result != ErrorMsg::success || isUnsigned(packet));
      EXPECT_TRUE(walked.packetUnchanged);
    }
  }
}

// ---- Changed in one byte ----

TEST(GoldenPackets, AreRefusedWithOneByteChangedUnlessNoDigestCoversIt) {
  for (const GoldenPacket& golden : goldenPackets()) {
    for (std::size_t at = 0; at < golden.packet.size(); ++at) {
      for (const U8 value : otherValues(golden, golden.packet[at])) {
        ByteVector packet = golden.packet;
        packet[at] = value;
        const Walked walked = walkAs(golden, packet);
        // What a digest does not cover: the padding behind the length, and packets without one.
        const bool isCovered = at < lengthFieldOf(packet) && golden.isAccepted();
        if (walked.result == ErrorMsg::success && isCovered) {
          ASSERT_TRUE(isUnsigned(packet)) << golden.name << " byte " << at << " as " << int{value};
        }
        ASSERT_TRUE(walked.packetUnchanged)
            << golden.name << " byte " << at << " as " << int{value};
      }
    }
  }
}

TEST(GoldenPackets, AreTakenWithAnyPadding) {
  int padded = 0;
  for (const GoldenPacket& golden : goldenPackets()) {
    for (std::size_t at = lengthFieldOf(golden.packet);
         golden.isAccepted() && at < golden.packet.size(); ++at) {
      ByteVector packet = golden.packet;
      packet[at] ^= 0xff;
      const Walked walked = walkAs(golden, packet);
      EXPECT_EQ(walked.result, ErrorMsg::success) << golden.name << " byte " << at;
      EXPECT_EQ(directivesOf(walked), golden.attributes);
      ++padded;
    }
  }
  EXPECT_GT(padded, 0);
}

// ---- Packets that others published ----

Walked walkPublished(const PublishedPacket& published) {
  return TestSupport::walk(published.packet, published.requestAuthenticator, shippedDictionary(),
                           published.secret);
}

/// The walk that a published packet allows: with its secret, and, for a response, with the
/// authenticator of its request. The others could only be found to be unsigned.
bool canBeWalked(const PublishedPacket& published) {
  if (!published.wellFormed) {
    return false;
  }
  const bool hasDigest = published.requestAuthHolds.has_value() ||
                         published.responseAuthHolds.has_value() ||
                         published.msgAuthHolds.has_value();
  const bool unsignedRequest =
      published.code() == 1 && !holdsMessageAuthenticator(published.packet);
  return hasDigest || unsignedRequest;
}

bool digestsHold(const PublishedPacket& published) {
  return published.requestAuthHolds.value_or(true) && published.responseAuthHolds.value_or(true) &&
         published.msgAuthHolds.value_or(true);
}

/// What is refused for a rule of its own although its form and its digests are right.
struct RefusedByRule {
  const char* name;
  ErrorMsg error;
};

const std::vector<RefusedByRule> refusedByRule{
    // An IPv6 prefix of one byte.
    {"the-tcpdump-group/tcpdump RADIUS-RFC3162.pcap id 240 len 141", ErrorMsg::invalidAttrLength},
};

ErrorMsg expectedResult(const PublishedPacket& published) {
  const auto found = std::ranges::find_if(
      refusedByRule, [&](const RefusedByRule& row) { return published.name == row.name; });
  if (found != refusedByRule.end()) {
    return found->error;
  }
  if (digestsHold(published)) {
    return ErrorMsg::success;
  }
  return published.msgAuthHolds.value_or(true) ? ErrorMsg::invalidPktAuth
                                               : ErrorMsg::invalidMsgAuth;
}

TEST(PublishedPackets, AreTakenOrRefusedAsTheirDigestsSay) {
  ASSERT_EQ(TestSupport::publishedPackets().size(), TestSupport::publishedPacketCount);
  int walkedCount = 0;
  for (const PublishedPacket& published : TestSupport::publishedPackets()) {
    if (!canBeWalked(published)) {
      continue;
    }
    SCOPED_TRACE(published.name);
    const Walked walked = walkPublished(published);
    EXPECT_EQ(walked.result, expectedResult(published)) << reasonOf(walked);
    EXPECT_TRUE(walked.packetUnchanged);
    ++walkedCount;
  }
  EXPECT_EQ(walkedCount, 68);
}

TEST(PublishedPackets, HandTheirAttributesOverInOrder) {
  for (const PublishedPacket& published : TestSupport::publishedPackets()) {
    if (!canBeWalked(published) || expectedResult(published) != ErrorMsg::success) {
      continue;
    }
    SCOPED_TRACE(published.name);
    const Walked walked = walkPublished(published);
    ASSERT_EQ(walked.received.size(), published.attributes.size());
    for (std::size_t at = 0; at < published.attributes.size(); ++at) {
      EXPECT_EQ(walked.received.at(at).key.attrId, published.attributes[at].type);
    }
  }
}

TEST(PublishedPackets, HaveTheAttributesThatTheCursorFinds) {
  for (const PublishedPacket& published : TestSupport::publishedPackets()) {
    if (!published.wellFormed) {
      continue;
    }
    SCOPED_TRACE(published.name);
    AttributeCursor cursor(
        std::span(published.packet).first(lengthFieldOf(published.packet)).subspan(headerLength));
    std::vector<PublishedPacket::RawAttribute> found;
    while (cursor.next() == AttributeCursor::Step::attribute) {
      const auto value = cursor.bytes().subspan(2);
      found.push_back({cursor.type(), ByteVector(value.begin(), value.end())});
    }
    EXPECT_EQ(cursor.next(), AttributeCursor::Step::end);
    EXPECT_EQ(found, published.attributes);
  }
}

TEST(PublishedPackets, RevealThePasswordsThatOthersFound) {
  int revealed = 0;
  for (const PublishedPacket& published : TestSupport::publishedPackets()) {
    if (!published.password.has_value()) {
      continue;
    }
    SCOPED_TRACE(published.name);
    for (const auto& received : walkPublished(published).received) {
      if (received.key == standardAttribute(2)) {
        const std::string value(std::get<Verda::String>(received.value).view());
        EXPECT_EQ(value.substr(0, published.password->size()), *published.password);
        EXPECT_EQ(value.find_first_not_of('\0', published.password->size()), std::string::npos);
        ++revealed;
      }
    }
  }
  EXPECT_EQ(revealed, 3);
}

struct RejectRow {
  const char* name;  ///< how the packet's name begins
  ErrorMsg error;
  const char* reason;
};

TEST(PublishedPackets, AreRefusedForTheirForm) {
  const std::vector<RejectRow> rows{
      {"rfc2865 7.3 second Access-Request AS PRINTED", ErrorMsg::invalidAttrLength,
       "Invalid attribute: 24 attrLength: 16, remainingPktLen: 10"},
      {"pyrad DecodePacket empty", ErrorMsg::invalidPktLength, "Packet has invalid length: 0"},
      {"pyrad DecodePacket invalid length", ErrorMsg::invalidPktLength,
       "Invalid packet header length: 0"},
      {"pyrad DecodePacket partial attributes", ErrorMsg::invalidAttrLength,
       "Invalid attribute: 0 length: 1"},
      {"pyrad DecodePacket bad attribute len 1", ErrorMsg::invalidAttrLength,
       "Invalid attribute: 0 attrLength: 1, remainingPktLen: 2"},
      {"vforteli/Flexinets.Radius.Core missing data", ErrorMsg::invalidPktLength,
       "Packet's Length: 37 and header length: 38 mismatch"},
      {"retailnext/node-radius invalid_register", ErrorMsg::invalidPktLength,
       "Invalid packet header length: 22416"},
      {"faucetsdn/chewie test_radius.py code 1 id 61 len 1012", ErrorMsg::invalidAttrLength,
       "Attribute: 48, VendorId: 0, VendorAttrId: 0, Data Type: Integer, Invalid length: 46"},
      {"the-tcpdump-group/tcpdump radius_attr_asan.pcap id 106 len 45", ErrorMsg::invalidPktLength,
       "Packet's Length: 45 and header length: 263 mismatch"},
      {"the-tcpdump-group/tcpdump radius_rfc5447_invalid_length.pcap id 79 len 56",
       ErrorMsg::invalidPktLength, "Packet's Length: 56 and header length: 57 mismatch"},
  };
  std::size_t refused = 0;
  for (const PublishedPacket& published : TestSupport::publishedPackets()) {
    if (published.wellFormed) {
      continue;
    }
    SCOPED_TRACE(published.name);
    const auto row = std::ranges::find_if(rows, [&](const RejectRow& candidate) {
      return published.name.starts_with(candidate.name);
    });
    ASSERT_NE(row, rows.end());
    const Walked walked = walkPublished(published);
    EXPECT_EQ(walked.result, row->error);
    EXPECT_EQ(reasonOf(walked), row->reason);
    EXPECT_TRUE(walked.packetUnchanged);
    ++refused;
  }
  EXPECT_EQ(refused, rows.size());
}

}  // namespace
