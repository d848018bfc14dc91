#include "tool/anatomy/PacketAnatomy.h"

#include <array>
#include <optional>
#include <random>
#include <string>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "tests/support/GoldenPackets.h"
#include "tests/support/Hex.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"
#include "tool/decoding/PacketDecoder.h"

namespace RadiusPacketTool {
namespace {

using RadiusPktParserBase::ErrorMsg;
using TestSupport::attributeBytes;
using TestSupport::ByteVector;
using TestSupport::countingBytes;
using TestSupport::DataType;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::fromHex;
using TestSupport::GoldenPacket;
using TestSupport::goldenPackets;
using TestSupport::PacketMaker;
using TestSupport::shippedDictionary;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::toHex;
using TestSupport::verdaBytes;
using Verda::U8;

constexpr U8 accessRequest = 1;
constexpr U8 accessAccept = 2;

Anatomy anatomy(const ByteVector& packet, const DictPtr& dictionary = shippedDictionary()) {
  return anatomyOf(packet, dictionary);
}

/// The first fault, `success` when there is none.
ErrorMsg firstError(const Anatomy& anatomy) {
  const Field* first = anatomy.firstFaulty();
  return first == nullptr ? ErrorMsg::success : first->fault->error;
}

/// What decode says, when that is a matter of the structure.
std::optional<ErrorMsg> structuralError(const PacketReport& report) {
  const bool isOfTwo = report.reason == "Message authenticator present more than once";
  if (report.error == ErrorMsg::invalidPktAuth ||
      (report.error == ErrorMsg::invalidMsgAuth && !isOfTwo)) {
    return std::nullopt;
  }
  return report.error;
}

/// Whether the fields that consist of no others cover all bytes, each once and in order.
testing::AssertionResult tiles(const Anatomy& anatomy, std::size_t size) {
  std::size_t offset = 0;
  for (std::size_t index = 0; index < anatomy.fields.size(); ++index) {
    const Field& field = anatomy.fields[index];
    const bool isPart =
        index + 1 == anatomy.fields.size() || anatomy.fields[index + 1].depth <= field.depth;
    if (!isPart) {
      continue;
    }
    if (field.offset != offset || (field.length == 0)) {
      return testing::AssertionFailure()
             << field.path << " at " << field.offset << ", not " << offset;
    }
    offset += field.length;
  }
  return offset >= size ? testing::AssertionSuccess()
                        : testing::AssertionFailure() << "ends at " << offset;
}

/// The error and, of a fault in an attribute, that it is the first which was not decoded.
testing::AssertionResult agrees(const Anatomy& anatomy, const PacketReport& report) {
  const auto error = structuralError(report);
  if (!error.has_value()) {
    return testing::AssertionSuccess();
  }
  if (firstError(anatomy) != *error) {
    return testing::AssertionFailure()
           << stringValue(firstError(anatomy)).view() << ", not " << stringValue(*error).view();
  }
  const Field* first = anatomy.firstFaulty();
  if (first == nullptr || error == ErrorMsg::invalidPktLength ||
      error == ErrorMsg::missingRequiredMsgAuth) {
    return testing::AssertionSuccess();
  }
  const std::string attribute = fmt::format("attribute {}: ", report.attributes.size() + 1);
  return first->path.starts_with(attribute)
             ? testing::AssertionSuccess()
             : testing::AssertionFailure() << first->path << " is not " << attribute;
}

// ---- Held against the parser ----

TEST(PacketAnatomy, AgreesWithTheGoldenPackets) {
  ASSERT_EQ(goldenPackets().size(), TestSupport::goldenPacketCount);
  std::size_t compared = 0;
  for (const GoldenPacket& golden : goldenPackets()) {
    SCOPED_TRACE(golden.name);
    const Anatomy found = anatomy(golden.packet);
    EXPECT_TRUE(tiles(found, golden.packet.size()));
    const Secret secret(golden.secretText());
    const PacketReport report =
        PacketDecoder(shippedDictionary())
            .decode(golden.packet, secret, verdaBytes(golden.requestAuthenticator));
    EXPECT_TRUE(agrees(found, report));
    compared += structuralError(report).has_value() ? 1 : 0;
  }
  constexpr std::size_t refusedForAuthenticity = 18;
  EXPECT_EQ(compared, TestSupport::goldenPacketCount - refusedForAuthenticity);
}

/// Makes packets that are nearly right, the same ones in each run.
class PacketGenerator {
 public:
  ByteVector next() {
    const U8 code = pick(codes_);
    PacketMaker maker(code);
    maker.reqAuthIs(TestSupport::reqAuthFor(code));
    if (chance(3)) {
      maker.addMessageAuthenticator();
    }
    maker.addRaw(attributes());
    return maker.make();
  }

 private:
  ByteVector attributes() {
    ByteVector bytes;
    for (std::size_t count = below(6); count > 0; --count) {
      const ByteVector attribute = chance(4) ? vendor() : standard();
      bytes.insert(bytes.end(), attribute.begin(), attribute.end());
    }
    if (!bytes.empty() && chance(3)) {
      bytes[below(bytes.size())] = static_cast<U8>(below(256));
    }
    if (!bytes.empty() && chance(5)) {
      bytes.resize(below(bytes.size()));
    }
    return bytes;
  }

  ByteVector value() { return ByteVector(pick(sizes_), static_cast<U8>(below(256))); }
  ByteVector standard() { return attributeBytes(pick(types_), value()); }
  ByteVector vendor() { return TestSupport::vendorBytes(pick(vendors_), pick(types_), value()); }

  std::size_t below(std::size_t end) { return random_() % end; }
  bool chance(std::size_t outOf) { return below(outOf) == 0; }
  template <typename Item, std::size_t size>
  Item pick(const std::array<Item, size>& items) {
    return items[below(size)];
  }

  std::mt19937 random_{20240607};
  std::array<U8, 8> codes_{1, 2, 4, 5, 11, 12, 43, 99};
  std::array<U8, 18> types_{1, 2, 3, 4, 5, 6, 7, 8, 16, 17, 26, 64, 69, 79, 79, 80, 97, 98};
  std::array<std::size_t, 10> sizes_{0, 1, 2, 3, 4, 8, 16, 16, 17, 18};
  std::array<Verda::U32, 3> vendors_{9, 311, 99999};
};

TEST(PacketAnatomy, AgreesWithDecodeOnPacketsThatAreNearlyRight) {
  PacketGenerator generator;
  const PacketDecoder decoder(shippedDictionary());
  const Secret secret(testSecret);
  std::array<std::size_t, 21> seen{};
  for (int round = 0; round < 5000; ++round) {
    const ByteVector packet = generator.next();
    SCOPED_TRACE(toHex(packet));
    const PacketReport report = decoder.decode(packet, secret, verdaBytes(testReqAuth));
    const Anatomy found = anatomy(packet);
    ASSERT_TRUE(tiles(found, packet.size()));
    ASSERT_TRUE(agrees(found, report));
    if (const auto error = structuralError(report)) {
      ++seen[static_cast<std::size_t>(*error)];
    }
  }
  for (const ErrorMsg error :
       {ErrorMsg::success, ErrorMsg::invalidMsgAuth, ErrorMsg::invalidAttrLength,
        ErrorMsg::concatAttrNotConsecutive, ErrorMsg::unsupportedPktType,
        ErrorMsg::missingRequiredMsgAuth, ErrorMsg::tagByteMissing}) {
    EXPECT_GT(seen[static_cast<std::size_t>(error)], 10U) << stringValue(error).view();
  }
}

TEST(PacketAnatomy, AgreesWithDecodeOnEveryPrefix) {
  const PacketDecoder decoder(shippedDictionary());
  for (const GoldenPacket& golden : goldenPackets()) {
    for (std::size_t size = 1; size < golden.packet.size(); ++size) {
      SCOPED_TRACE(golden.name + " " + std::to_string(size));
      const ByteVector packet(golden.packet.begin(),
                              golden.packet.begin() + static_cast<std::ptrdiff_t>(size));
      const Anatomy found = anatomy(packet);
      ASSERT_TRUE(tiles(found, packet.size()));
      const Secret secret(golden.secretText());
      const PacketReport report =
          decoder.decode(packet, secret, verdaBytes(golden.requestAuthenticator));
      ASSERT_TRUE(agrees(found, report));
    }
  }
}

TEST(PacketAnatomy, TakesAnyBytesApart) {
  std::mt19937 random(7);
  for (int round = 0; round < 5000; ++round) {
    ByteVector packet(1 + random() % 120);
    for (U8& byte : packet) {
      byte = static_cast<U8>(random() % (round % 2 == 0 ? 256 : 24));
    }
    SCOPED_TRACE(toHex(packet));
    ASSERT_TRUE(tiles(anatomy(packet), packet.size()));
  }
}

// ---- Fields ----

/// A line for each field: indent, offset, length, name, meaning, fault.
std::string linesOf(const Anatomy& anatomy) {
  std::string lines;
  for (const Field& field : anatomy.fields) {
    lines += fmt::format("{}{}+{} {}", std::string(field.depth, ' '), field.offset, field.length,
                         field.name);
    lines += field.meaning.empty() ? "" : ": " + field.meaning;
    if (field.fault.has_value()) {
      lines += fmt::format(" ! {}", stringValue(field.fault->error).view());
    }
    lines += '\n';
  }
  return lines;
}

/// The lines of the fields behind the header of an Access-Accept that holds these attributes.
std::string attributeLines(const ByteVector& attributes,
                           const DictPtr& dictionary = shippedDictionary()) {
  Anatomy found = anatomy(
      PacketMaker(accessAccept).reqAuthIs(testReqAuth).addRaw(attributes).make(), dictionary);
  found.fields.erase(found.fields.begin(), found.fields.begin() + 4);
  return linesOf(found);
}

TEST(PacketAnatomy, HasTheFieldsOfAHeader) {
  const Anatomy found = anatomy(PacketMaker(accessRequest).make());
  EXPECT_EQ(linesOf(found),
            "0+1 Code: ACCESS_REQUEST (1)\n1+1 Identifier: 7\n2+2 Length: 20\n"
            "4+16 Authenticator: random\n");
  EXPECT_EQ(found.authenticator, 3U);
  EXPECT_EQ(found.messageAuthenticator, std::nullopt);
}

struct HeaderRow {
  std::string hex;
  std::string lines;
};

TEST(PacketAnatomy, ShowsAsMuchOfAHeaderAsThereIs) {
  const std::array rows{
      HeaderRow{"02",
                "0+1 Code: ACCESS_ACCEPT (2)\n1+19 Missing: the rest of a header ! "
                "invalidPktLength\n"},
      HeaderRow{"0207",
                "0+1 Code: ACCESS_ACCEPT (2)\n1+1 Identifier: 7\n2+18 Missing: the rest of a "
                "header ! invalidPktLength\n"},
      HeaderRow{"020700",
                "0+1 Code: ACCESS_ACCEPT (2)\n1+1 Identifier: 7\n2+1 Length: cut\n3+17 Missing: "
                "the rest of a header ! invalidPktLength\n"},
      HeaderRow{"02070014",
                "0+1 Code: ACCESS_ACCEPT (2)\n1+1 Identifier: 7\n2+2 Length: 20\n4+16 Missing: "
                "the rest of a header ! invalidPktLength\n"},
      HeaderRow{"0207001401",
                "0+1 Code: ACCESS_ACCEPT (2)\n1+1 Identifier: 7\n2+2 Length: 20\n4+1 "
                "Authenticator: cut\n5+15 Missing: the rest of a header ! invalidPktLength\n"},
  };
  for (const HeaderRow& row : rows) {
    SCOPED_TRACE(row.hex);
    EXPECT_EQ(linesOf(anatomy(fromHex(row.hex))), row.lines);
  }
}

struct AttributeRow {
  std::string name;
  std::string hex;
  std::string lines;
};

const auto attributeRows = std::to_array<AttributeRow>({
    {"text", "0107616c696365",
     "20+7 User-Name: string\n 20+1 Type: 1\n 21+1 Length: 7\n 22+5 Value: \"alice\"\n"},
    {"empty text", "0102", "20+2 User-Name: string\n 20+1 Type: 1\n 21+1 Length: 2\n"},
    {"text that drives a terminal", "01051b5b4a",
     "20+5 User-Name: string\n 20+1 Type: 1\n 21+1 Length: 5\n 22+3 Value: \"\\x1b[J\"\n"},
    {"octets", "1903ff", "20+3 Class: octets\n 20+1 Type: 25\n 21+1 Length: 3\n 22+1 Value\n"},
    {"enumeration", "060600000002",
     "20+6 Service-Type: integer\n 20+1 Type: 6\n 21+1 Length: 6\n 22+4 Value: FRAMED (2)\n"},
    {"unknown", "f003ff",
     "20+3 Attr-240: not in the dictionary\n 20+1 Type: 240\n 21+1 Length: 3\n 22+1 Value\n"},
    {"hidden password", "021200112233445566778899aabbccddeeff",
     "20+18 User-Password: string, encrypt=1\n 20+1 Type: 2\n 21+1 Length: 18\n 22+16 Value: "
     "hidden (encrypt=1)\n"},
    {"CHAP", "031307000102030405060708090a0b0c0d0e0f",
     "20+19 CHAP-Password: octets\n 20+1 Type: 3\n 21+1 Length: 19\n 22+1 CHAP-Identifier: 7\n "
     "23+16 CHAP-Response\n"},
    {"tagged number", "40060100000d",
     "20+6 Tunnel-Type: integer, tagged\n 20+1 Type: 64\n 21+1 Length: 6\n 22+1 Tag: 1\n 23+3 "
     "Value: 13\n"},
    {"salted", "4507018001aabb",
     "20+7 Tunnel-Password: string, tagged, encrypt=2\n 20+1 Type: 69\n 21+1 Length: 7\n 22+1 "
     "Tag: 1\n 23+2 Salt\n 25+2 Value: hidden (encrypt=2)\n"},
    {"half a salt", "45040180",
     "20+4 Tunnel-Password: string, tagged, encrypt=2\n 20+1 Type: 69\n 21+1 Length: 4\n 22+1 "
     "Tag: 1\n 23+1 Value: hidden (encrypt=2)\n"},
    {"prefix", "6108002020010db8",
     "20+8 Framed-IPv6-Prefix: ipv6prefix\n 20+1 Type: 97\n 21+1 Length: 8\n 22+1 Reserved\n "
     "23+1 Prefix-Length: 32\n 24+4 Prefix: 2001:db8::/32\n"},
    {"prefix that is too long", "6108008120010db8",
     "20+8 Framed-IPv6-Prefix: ipv6prefix\n 20+1 Type: 97\n 21+1 Length: 8\n 22+1 Reserved\n "
     "23+1 Prefix-Length: 129 ! invalidAttrLength\n 24+4 Prefix\n"},
    {"prefix without its length", "610300",
     "20+3 Framed-IPv6-Prefix: ipv6prefix\n 20+1 Type: 97\n 21+1 Length: 3 ! invalidAttrLength\n "
     "22+1 Value\n"},
    {"number of the wrong length", "0505000001",
     "20+5 NAS-Port: integer\n 20+1 Type: 5\n 21+1 Length: 5 ! invalidAttrLength\n 22+3 Value\n"},
    {"tag missing", "4502",
     "20+2 Tunnel-Password: string, tagged, encrypt=2\n 20+1 Type: 69\n 21+1 Length: 2 ! "
     "tagByteMissing\n"},
    {"vendor", "1a0c000001370706 00000001",
     "20+12 Vendor-Specific\n 20+1 Type: 26\n 21+1 Length: 12\n 22+4 Vendor-Id: Microsoft (311)\n "
     "26+6 MS-MPPE-Encryption-Policy: integer\n  26+1 Vendor-Type: 7\n  27+1 Vendor-Length: 6\n  "
     "28+4 Value: 1\n"},
    {"unknown vendor", "1a090001869f0703 01",
     "20+9 Vendor-Specific\n 20+1 Type: 26\n 21+1 Length: 9\n 22+4 Vendor-Id: 99999\n 26+3 "
     "Attr-26.99999.7: not in the dictionary\n  26+1 Vendor-Type: 7\n  27+1 Vendor-Length: 3\n  "
     "28+1 Value\n"},
    {"several sub-attributes and a rest", "1a0f00000137070500000108 0301ff",
     "20+15 Vendor-Specific\n 20+1 Type: 26\n 21+1 Length: 15\n 22+4 Vendor-Id: Microsoft (311)\n "
     "26+5 MS-MPPE-Encryption-Policy: integer\n  26+1 Vendor-Type: 7\n  27+1 Vendor-Length: 5 ! "
     "invalidAttrLength\n  28+3 Value\n 31+3 MS-MPPE-Encryption-Type: integer\n  31+1 "
     "Vendor-Type: 8\n  32+1 Vendor-Length: 3 ! invalidAttrLength\n  33+1 Value\n 34+1 "
     "Undissected\n"},
    {"sub-attribute that is too long", "1a0a000001370709 0001",
     "20+10 Vendor-Specific\n 20+1 Type: 26\n 21+1 Length: 10\n 22+4 Vendor-Id: Microsoft (311)\n "
     "26+4 MS-MPPE-Encryption-Policy: integer\n  26+1 Vendor-Type: 7\n  27+1 Vendor-Length: 9 ! "
     "invalidAttrLength\n  28+2 Undissected\n"},
    {"vendor without a sub-attribute", "1a0700000137 07",
     "20+7 Vendor-Specific\n 20+1 Type: 26\n 21+1 Length: 7 ! invalidAttrLength\n 22+4 Vendor-Id: "
     "Microsoft (311)\n 26+1 Undissected\n"},
    {"vendor cut in its number", "1a050000 01",
     "20+5 Vendor-Specific\n 20+1 Type: 26\n 21+1 Length: 5 ! invalidAttrLength\n 22+3 "
     "Undissected\n"},
    {"lone byte", "01", "20+1 User-Name ! invalidAttrLength\n 20+1 Type: 1\n"},
});

TEST(PacketAnatomy, HasTheFieldsOfEachKindOfAttribute) {
  for (const AttributeRow& row : attributeRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(attributeLines(fromHex(row.hex)), row.lines);
  }
}

TEST(PacketAnatomy, TakesTheBeginningOfAnEapPacketApart) {
  const std::string messageAuthenticator =
      "20+18 Message-Authenticator: octets\n 20+1 Type: 80\n 21+1 Length: 18\n 22+16 Value: "
      "HMAC-MD5\n";
  const std::string head =
      "38+{0} EAP-Message: octets, concat\n 38+1 Type: 79\n 39+1 Length: {0}\n";
  const std::array rows{
      AttributeRow{"identity", "4f0c0201000a01616c696365",
                   " 40+1 EAP-Code: Response (2)\n 41+1 EAP-Identifier: 1\n 42+2 EAP-Length: 10\n "
                   "44+1 EAP-Type: Identity (1)\n 45+5 EAP-Data: \"alice\"\n"},
      AttributeRow{"success", "4f0603010004",
                   " 40+1 EAP-Code: Success (3)\n 41+1 EAP-Identifier: 1\n 42+2 EAP-Length: 4\n"},
      AttributeRow{"unknown type", "4f0801010006c8ff",
                   " 40+1 EAP-Code: Request (1)\n 41+1 EAP-Identifier: 1\n 42+2 EAP-Length: 6\n "
                   "44+1 EAP-Type: 200\n 45+1 EAP-Data\n"},
      AttributeRow{
          "cut", "4f05020100",
          " 40+1 EAP-Code: Response (2)\n 41+1 EAP-Identifier: 1\n 42+1 EAP-Length: cut\n"},
      AttributeRow{"code alone", "4f0309", " 40+1 EAP-Code: 9\n"},
      AttributeRow{"start", "4f02", ""},
  };
  for (const AttributeRow& row : rows) {
    SCOPED_TRACE(row.name);
    ByteVector attributes = attributeBytes(80, countingBytes(16));
    const ByteVector eap = fromHex(row.hex);
    attributes.insert(attributes.end(), eap.begin(), eap.end());
    EXPECT_EQ(attributeLines(attributes),
              messageAuthenticator + fmt::format(fmt::runtime(head), eap.size()) + row.lines);
  }
}

TEST(PacketAnatomy, ShowsFragmentsBehindTheFirstAsTheyAre) {
  const std::string lines =
      attributeLines(fromHex("5012000102030405060708090a0b0c0d0e0f 4f040201 4f04000a"));
  EXPECT_EQ(lines.substr(lines.rfind("42+4")),
            "42+4 EAP-Message: octets, concat\n 42+1 Type: 79\n 43+1 Length: 4\n 44+2 Value: the "
            "EAP packet goes on\n");
}

// ---- Past faults ----

TEST(PacketAnatomy, FindsTheNextAttributeByTheLengthOfTheType) {
  EXPECT_EQ(attributeLines(fromHex("050001020101 1b060000003c")),
            "20+6 NAS-Port\n 20+1 Type: 5\n 21+1 Length: 0 ! invalidAttrLength\n 22+4 "
            "Undissected\n26+6 Session-Timeout: integer\n 26+1 Type: 27\n 27+1 Length: 6\n 28+4 "
            "Value: 60\n");
}

TEST(PacketAnatomy, FindsTheNextAttributeWhereAllThatFollowsMakesSense) {
  EXPECT_EQ(attributeLines(fromHex("01ff616c696365 1b060000003c")),
            "20+7 User-Name\n 20+1 Type: 1\n 21+1 Length: 255 ! invalidAttrLength\n 22+5 "
            "Undissected\n27+6 Session-Timeout: integer\n 27+1 Type: 27\n 28+1 Length: 6\n 29+4 "
            "Value: 60\n");
}

TEST(PacketAnatomy, LeavesTheRestUndissectedWhereNothingMakesSense) {
  EXPECT_EQ(attributeLines(fromHex("0101ffffffff")),
            "20+6 User-Name\n 20+1 Type: 1\n 21+1 Length: 1 ! invalidAttrLength\n 22+4 "
            "Undissected\n");
}

TEST(PacketAnatomy, ShowsWhatIsBehindTheLengthAndWhatIsMissing) {
  ByteVector packet = PacketMaker(accessRequest).add(1, {'a'}).make();
  packet.push_back(9);
  const std::string lines = linesOf(anatomy(packet));
  EXPECT_EQ(lines.substr(lines.find("20+3")),
            "20+3 User-Name: string\n 20+1 Type: 1\n 21+1 Length: 3\n 22+1 Value: \"a\"\n23+1 "
            "Padding: behind the Length: not looked at\n");
  packet.resize(22);
  EXPECT_EQ(linesOf(anatomy(packet)),
            "0+1 Code: ACCESS_REQUEST (1)\n1+1 Identifier: 7\n2+2 Length: 23 ! invalidPktLength\n"
            "4+16 Authenticator: random\n20+2 User-Name\n 20+1 Type: 1\n 21+1 Length: 3 ! "
            "invalidAttrLength\n22+1 Missing: bytes that the Length counts\n");
}

TEST(PacketAnatomy, MarksAllFaultsInTheOrderOfTheParser) {
  const Anatomy found = anatomy(
      PacketMaker(accessRequest).add(79, {2, 1, 0, 4}).add(5, {1}).add(79, {1}).add(4, {1}).make());
  std::vector<std::string> paths;
  for (const std::size_t index : found.faulty) {
    paths.push_back(found.fields[index].path);
  }
  EXPECT_EQ(paths, (std::vector<std::string>{
                       "attribute 2: NAS-Port / Length", "attribute 3: EAP-Message",
                       "attribute 4: NAS-IP-Address / Length", "attribute 1: EAP-Message"}));
}

TEST(PacketAnatomy, DoesNotMissAMessageAuthenticatorThatMayBeInWhatIsNotDissected) {
  const Anatomy found =
      anatomy(PacketMaker(accessRequest).add(79, {2, 1, 0, 4}).addRaw({80, 18, 1}).make());
  EXPECT_EQ(found.faulty.size(), 1U);
}

// ---- Hidden values ----

TEST(PacketAnatomy, RevealsWithASecret) {
  ByteVector password = TestSupport::bytesOf("wonderland");
  password.resize(16);
  const ByteVector hidden =
      TestSupport::hidden(password, TestSupport::bytesOf(testSecret), testReqAuth);
  const Secret secret(testSecret);
  const Revealing revealing{.secret = &secret, .authenticator = verdaBytes(testReqAuth)};
  const Anatomy found =
      anatomyOf(PacketMaker(accessAccept).add(2, hidden).make(), shippedDictionary(), revealing);
  EXPECT_EQ(found.fields.back().meaning, "\"wonderland\"");
  EXPECT_TRUE(found.fields.back().isRevealed);
  EXPECT_EQ(found.fields.back().bytes, hidden);
}

TEST(PacketAnatomy, JudgesAHiddenPrefixByItsLengthUnlessItIsRevealed) {
  const DictPtr dictionary = DictionaryMaker().add(97, DataType::ipv6prefix, {.encrypt = 1}).make();
  ByteVector prefix(18);
  prefix[1] = 129;
  ByteVector hidden =
      TestSupport::hidden(prefix, TestSupport::bytesOf(testSecret), countingBytes(16, 0x30));
  hidden.resize(prefix.size());
  const ByteVector packet = PacketMaker(accessRequest).add(97, hidden).make();
  EXPECT_EQ(firstError(anatomy(packet, dictionary)), ErrorMsg::success);
  const Secret secret(testSecret);
  const Revealing revealing{.secret = &secret,
                            .authenticator = verdaBytes(countingBytes(16, 0x30))};
  const Anatomy found = anatomyOf(packet, dictionary, revealing);
  ASSERT_NE(found.firstFaulty(), nullptr);
  EXPECT_EQ(found.firstFaulty()->fault->found, "a hidden prefix length of more");
}

}  // namespace
}  // namespace RadiusPacketTool
