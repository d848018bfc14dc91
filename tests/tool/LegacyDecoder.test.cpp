#include "tool/decoding/LegacyDecoder.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tests/support/CatchAssertion.h"
#include "tests/support/GoldenPackets.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"
#include "tool/decoding/PacketDecoder.h"
#include "tool/output/JsonOutput.h"
#include "tool/output/TextOutput.h"
#include "tool/text/AttributeName.h"

namespace RadiusPacketTool {
namespace {

using RadiusPacketParser::RadiusAttributeType;
using RadiusPktParserBase::ErrorMsg;
using RadiusPktParserTest::StatusServerErrorMsg;
using TestSupport::bytesOf;
using TestSupport::ByteVector;
using TestSupport::countingBytes;
using TestSupport::DictionaryMaker;
using TestSupport::DictPtr;
using TestSupport::GoldenPacket;
using TestSupport::goldenPackets;
using TestSupport::PacketMaker;
using TestSupport::shippedDictionary;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;
using Verda::U8;
using Lines = std::vector<std::string>;

constexpr U8 accessRequest = 1;
constexpr U8 accessAccept = 2;
constexpr U8 accountingRequest = 4;
constexpr U8 statusServer = 12;
constexpr U8 disconnectRequest = 40;

constexpr Verda::U32 vendor = 32473;

PacketReport decoded(const ByteVector& packet, const ByteVector& requestAuthenticator = testReqAuth,
                     const DictPtr& dictionary = shippedDictionary(),
                     const std::string& secretText = testSecret) {
  const Secret secret(secretText);
  return LegacyDecoder(dictionary).decode(packet, secret, verdaBytes(requestAuthenticator));
}

/// The lines of the attributes as they are printed.
Lines attributeLines(const PacketReport& report) {
  Lines lines;
  std::string text = textOf(report, {});
  for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n')) {
    lines.push_back(text.substr(0, end));
    text.erase(0, end + 1);
  }
  lines.erase(lines.begin());
  return lines;
}

// ---- The golden packets on both roads ----

/// What the newer codec alone refuses.
const std::set<std::string> acceptedHereAlone{
    "refused-eap-message-around-vendor-attribute",
    "refused-eap-message-not-consecutive",
    "refused-eap-message-not-consecutive-after-two",
    "refused-eap-message-not-consecutive-request",
    "refused-ifid-of-0-bytes",
    "refused-ifid-of-7-bytes",
    "refused-ifid-of-9-bytes",
    "refused-ipv6prefix-of-0-bytes",
    "refused-ipv6prefix-of-1-bytes",
    "refused-ipv6prefix-of-129-bits",
    "refused-ipv6prefix-of-19-bytes",
    "refused-ipv6prefix-of-255-bits",
    "refused-packet-shorter-than-length",
    "refused-second-message-authenticator",
    "refused-tag-byte-missing-tunnel-password",
    "refused-tag-byte-missing-tunnel-private-group-id",
    "refused-vsa-lengths-differ-0",
    "refused-vsa-lengths-differ-1",
    "refused-vsa-lengths-differ-255",
    "refused-vsa-lengths-differ-5",
    "refused-vsa-lengths-differ-7",
};

/// What both refuse, for reasons of their own: here all lengths are checked before authenticators,
/// and a code without a rule has a wrong Message-Authenticator.
const std::map<std::string, ErrorMsg> refusedOtherwise{
    {"refused-message-authenticator-on-unsupported-code", ErrorMsg::invalidMsgAuth},
    {"refused-second-message-authenticator-of-length-2", ErrorMsg::invalidAttrLength},
    {"refused-wrong-message-authenticator-before-broken-attribute", ErrorMsg::invalidAttrLength},
    {"refused-wrong-response-authenticator-before-broken-attribute", ErrorMsg::invalidAttrLength},
};

/// The accepted ones whose values have other texts here.
const std::map<std::string, Lines> readOtherwise{
    {"access-accept-ipv6-prefix-lengths",
     {"Framed-IPv6-Prefix = /0", "Framed-IPv6-Prefix = 2001:db8/29",
      "Framed-IPv6-Prefix = 2001:db8:0:0:0:0:0:cafe/128",
      "Framed-IPv6-Prefix = 2001:db8:0:0:0:0:0:0/32", "Framed-IPv6-Prefix = 2001:db8:ffff/16",
      "Framed-IPv6-Prefix = 2001/128"}},
    {"access-accept-ms-chap-mppe-keys", {"MS-Primary-DNS-Server = 0xc0000235"}},
    {"ipv6-access-accept",
     {"Framed-Interface-Id = 200:5eff:fe00:5301", "Framed-IPv6-Prefix = 2001:db8:1:2/64"}},
    {"ipv6-access-request",
     {"NAS-IPv6-Address = 2001:db8:0:0:0:0:0:1", "Framed-Interface-Id = 200:5eff:fe00:5301"}},
};

/// A golden packet on both roads.
struct BothRoads {
  explicit BothRoads(const GoldenPacket& golden)
      : legacy(decoded(golden.packet, golden.requestAuthenticator, shippedDictionary(),
                       golden.secretText())) {
    const Secret secret(golden.secretText());
    newer = PacketDecoder(shippedDictionary())
                .decode(golden.packet, secret, verdaBytes(golden.requestAuthenticator));
  }

  PacketReport legacy;
  PacketReport newer;
};

/// The report without the values' texts.
std::string jsonWithoutValues(PacketReport report) {
  for (ReportedAttribute& attribute : report.attributes) {
    attribute.value = ShownPlain();
  }
  return jsonOf(report, {.statusServer = true});
}

TEST(LegacyDecoder, ReportsGoodGoldenPacketsAsTheNewerRoadDoesButForAddresses) {
  std::size_t accepted = 0;
  for (const GoldenPacket& golden : goldenPackets()) {
    SCOPED_TRACE(golden.name);
    if (!golden.isAccepted()) {
      continue;
    }
    ++accepted;
    const BothRoads roads(golden);
    const auto otherwise = readOtherwise.find(golden.name);
    if (otherwise == readOtherwise.end()) {
      EXPECT_EQ(textOf(roads.legacy, {}), textOf(roads.newer, {}));
      EXPECT_EQ(jsonOf(roads.legacy, {}), jsonOf(roads.newer, {}));
      EXPECT_EQ(roads.legacy.warnings, Lines());
      continue;
    }
    EXPECT_EQ(jsonWithoutValues(roads.legacy), jsonWithoutValues(roads.newer));
    const Lines newerLines = attributeLines(roads.newer);
    Lines different;
    for (const std::string& line : attributeLines(roads.legacy)) {
      if (std::ranges::find(newerLines, line) == newerLines.end()) {
        different.push_back(line);
      }
    }
    EXPECT_EQ(different, otherwise->second);
  }
  EXPECT_EQ(accepted, TestSupport::acceptedGoldenPacketCount);
}

TEST(LegacyDecoder, RefusesGoldenPacketsAsTheNewerRoadDoesButForThoseNamed) {
  std::size_t seen = 0;
  for (const GoldenPacket& golden : goldenPackets()) {
    SCOPED_TRACE(golden.name);
    const BothRoads roads(golden);
    if (golden.isAccepted()) {
      continue;
    }
    if (acceptedHereAlone.contains(golden.name)) {
      ++seen;
      EXPECT_EQ(roads.legacy.error, ErrorMsg::success);
      EXPECT_GT(roads.legacy.attributes.size(), roads.newer.attributes.size());
      continue;
    }
    const auto otherwise = refusedOtherwise.find(golden.name);
    seen += otherwise == refusedOtherwise.end() ? 0U : 1U;
    EXPECT_EQ(roads.legacy.error,
              otherwise == refusedOtherwise.end() ? roads.newer.error : otherwise->second);
    EXPECT_TRUE(roads.legacy.attributes.empty());
  }
  EXPECT_EQ(seen, acceptedHereAlone.size() + refusedOtherwise.size());
}

// ---- What was checked, and the reasons ----

struct CheckRow {
  const char* name;
  ByteVector packet;
  std::optional<ErrorMsg> error;
  std::optional<std::string> reason;
  Check authenticator;
  Check messageAuthenticator;
  bool messageAuthenticatorPresent = false;
};

PacketMaker response() {
  return PacketMaker(accessAccept).reqAuthIs(testReqAuth);
}

TEST(LegacyDecoder, SaysWhatWasCheckedAndWhyAPacketIsRefused) {
  constexpr const char* eapText = "Packet has eap message but doesn't have message authenticator";
  constexpr const char* lengthText = "Received packet with invalid attribute length";
  const std::array rows{
      CheckRow{"response", response().make(), ErrorMsg::success, std::nullopt, Check::verified,
               Check::absent},
      CheckRow{"signed response", response().addMessageAuthenticator().make(), ErrorMsg::success,
               std::nullopt, Check::verified, Check::verified, true},
      CheckRow{"response with a wrong Message-Authenticator",
               response().addMessageAuthenticator(true).make(), ErrorMsg::invalidMsgAuth,
               std::nullopt, Check::verified, Check::wrong},
      CheckRow{"signed response with a wrong authenticator",
               PacketMaker(accessAccept).reqAuthIs({}).addMessageAuthenticator().make(),
               ErrorMsg::invalidPktAuth, std::nullopt, Check::wrong, Check::absent},
      CheckRow{"Access-Request", PacketMaker(accessRequest).make(), ErrorMsg::success, std::nullopt,
               Check::unchecked, Check::absent},
      CheckRow{"signed Access-Request", PacketMaker(accessRequest).addMessageAuthenticator().make(),
               ErrorMsg::success, std::nullopt, Check::unchecked, Check::verified, true},
      CheckRow{"signed Disconnect-Request",
               PacketMaker(disconnectRequest).reqAuthIs({}).addMessageAuthenticator().make(),
               ErrorMsg::success, std::nullopt, Check::verified, Check::verified, true},
      CheckRow{"accounting with a Message-Authenticator",
               PacketMaker(accountingRequest).reqAuthIs({}).addMessageAuthenticator(true).make(),
               ErrorMsg::success, std::nullopt, Check::verified, Check::unchecked, true},
      CheckRow{"broken attribute", response().addRaw({1, 1}).make(), ErrorMsg::invalidAttrLength,
               lengthText, Check::unchecked, Check::absent},
      CheckRow{"EAP-Message alone", PacketMaker(accessRequest).add(79, {1}).make(),
               ErrorMsg::missingRequiredMsgAuth, eapText, Check::unchecked, Check::absent},
      CheckRow{"19 bytes", ByteVector(19, 1), ErrorMsg::invalidPktLength,
               "Received packet with invalid length", Check::absent, Check::absent},
      CheckRow{"nothing",
               {},
               ErrorMsg::invalidPktLength,
               "Received packet with invalid length",
               Check::absent,
               Check::absent},
      CheckRow{"a Length of 257", ByteVector(20, 1), ErrorMsg::invalidAttrLength, lengthText,
               Check::unchecked, Check::absent},
      CheckRow{"a Length of 65535", ByteVector(20, 0xff), ErrorMsg::invalidPktLength,
               "Received packet with invalid header length", Check::absent, Check::absent},
  };
  for (const CheckRow& row : rows) {
    SCOPED_TRACE(row.name);
    const PacketReport report = decoded(row.packet);
    EXPECT_EQ(report.error, row.error);
    EXPECT_EQ(report.reason, row.reason);
    EXPECT_EQ(report.authenticatorCheck, row.authenticator);
    EXPECT_EQ(report.messageAuthenticatorCheck, row.messageAuthenticator);
    EXPECT_EQ(report.messageAuthenticatorPresent, row.messageAuthenticatorPresent);
  }
}

TEST(LegacyDecoder, MissingRequestAuthenticatorIsReportedAsOnTheNewerRoad) {
  const Secret secret(testSecret);
  const PacketDecoder newer(shippedDictionary());
  for (const U8 code : std::to_array<U8>({0, 2, 3, 5, 6, 11, 13, 41, 42, 44, 45, 255})) {
    for (const ByteVector& broken : {ByteVector(), ByteVector{1}}) {
      SCOPED_TRACE(int{code});
      const ByteVector packet =
          PacketMaker(code).add(1, {'a'}).addRaw(broken).reqAuthIs(testReqAuth).make();
      const PacketReport report = decoded(packet, {});
      EXPECT_EQ(report.error, std::nullopt);
      EXPECT_EQ(exitCodeOf(report), ExitCode::checkFailed);
      EXPECT_EQ(textOf(report, {}), textOf(newer.decode(packet, secret, {}), {}));
      EXPECT_EQ(jsonOf(report, {}), jsonOf(newer.decode(packet, secret, {}), {}));
    }
  }
}

TEST(LegacyDecoder, DecodesRequestsWhetherOrNotARequestAuthenticatorIsGiven) {
  for (const U8 code : std::to_array<U8>({1, 4, 12, 40, 43})) {
    SCOPED_TRACE(int{code});
    const ByteVector packet = PacketMaker(code).add(1, {'a'}).reqAuthIs({}).make();
    EXPECT_EQ(decoded(packet, {}).error, ErrorMsg::success);
    EXPECT_EQ(decoded(packet, testReqAuth).error, ErrorMsg::success);
  }
}

TEST(LegacyDecoder, FindsHeaderFaultsBeforeAMissingRequestAuthenticator) {
  ByteVector packet = response().make();
  packet[3] = 19;
  EXPECT_EQ(decoded(packet, {}).error, ErrorMsg::invalidPktLength);
}

// ---- The Status-Server verdict ----

struct VerdictRow {
  const char* name;
  ByteVector packet;
  std::optional<StatusServerErrorMsg> verdict;
};

TEST(LegacyDecoder, GivesTheVerdictOfTheLegacyInterfaceOnStatusServerPackets) {
  const auto request = [] { return PacketMaker(statusServer); };
  const std::array rows{
      VerdictRow{"no attributes", request().make(), StatusServerErrorMsg::msgAuthNotPresent},
      VerdictRow{"signed", request().add(32, {'n'}).addMessageAuthenticator().make(),
                 StatusServerErrorMsg::success},
      VerdictRow{"unsigned", request().add(32, {'n'}).make(),
                 StatusServerErrorMsg::msgAuthNotPresent},
      VerdictRow{"forbidden", request().add(1, {'a'}).addMessageAuthenticator().make(),
                 StatusServerErrorMsg::invalidAttributePresent},
      VerdictRow{"forbidden and unsigned", request().add(1, {'a'}).make(),
                 StatusServerErrorMsg::msgAuthNotPresent},
      VerdictRow{"wrongly signed", request().addMessageAuthenticator(true).make(),
                 StatusServerErrorMsg::success},
      VerdictRow{"broken", request().addMessageAuthenticator().addRaw({1}).make(), std::nullopt},
      VerdictRow{"another code", PacketMaker(accessRequest).addMessageAuthenticator().make(),
                 std::nullopt},
  };
  for (const VerdictRow& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(decoded(row.packet).statusServer, row.verdict);
  }
}

// ---- Values of every kind ----

constexpr U8 userPassword = 1;
constexpr U8 salted = 2;

DictPtr everyKind() {
  DictionaryMaker maker;
  const auto add = [&maker](U8 code, TestSupport::DataType type, TestSupport::Flags flags = {}) {
    maker.add(code, type, flags);
    maker.addVendor(vendor, code, type, flags);
  };
  add(101, RadiusAttributeType::string);
  add(102, RadiusAttributeType::octets);
  add(103, RadiusAttributeType::integer);
  add(104, RadiusAttributeType::date);
  add(105, RadiusAttributeType::ipaddr);
  add(106, RadiusAttributeType::ipv6addr);
  add(107, RadiusAttributeType::ifid);
  add(108, RadiusAttributeType::ipv6prefix);
  add(109, RadiusAttributeType::integer64);
  add(110, RadiusAttributeType::unknown);
  add(111, RadiusAttributeType::string, {.tag = true});
  add(112, RadiusAttributeType::octets, {.tag = true});
  add(113, RadiusAttributeType::integer, {.tag = true});
  add(114, RadiusAttributeType::date, {.tag = true});
  add(121, RadiusAttributeType::string, {.encrypt = userPassword});
  add(122, RadiusAttributeType::octets, {.encrypt = userPassword});
  add(123, RadiusAttributeType::integer, {.encrypt = userPassword});
  add(131, RadiusAttributeType::string, {.encrypt = salted});
  add(132, RadiusAttributeType::octets, {.encrypt = salted});
  add(133, RadiusAttributeType::string, {.tag = true, .encrypt = salted});
  maker.add(RadiusPacketParser::RadiusAttributeId::ACCT_STATUS_TYPE, RadiusAttributeType::integer);
  return maker.make();
}

/// A value of one kind, as the standard attribute of that type and as a vendor's.
struct KindRow {
  U8 type;
  ByteVector value;
  std::string standard;  ///< with the tag: what is printed behind the name
  std::string vendors;
  bool standardIsUnread = false;
  bool vendorsIsUnread = false;
};

const ByteVector salt{0x80, 1};

ByteVector hidden(const ByteVector& plain, const ByteVector& saltBytes = {}) {
  return TestSupport::hidden(plain, bytesOf(testSecret), testReqAuth, saltBytes);
}

ByteVector hiddenBehindSalt(const ByteVector& plain, const ByteVector& front = {}) {
  ByteVector bytes = front;
  bytes.insert(bytes.end(), salt.begin(), salt.end());
  const ByteVector tail = hidden(plain, salt);
  bytes.insert(bytes.end(), tail.begin(), tail.end());
  return bytes;
}

ByteVector padded(ByteVector bytes, std::size_t length = 16) {
  bytes.resize(length);
  return bytes;
}

std::vector<KindRow> kindRows() {
  const ByteVector address6 = {0x20, 1, 0xd, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  return {
      {101, bytesOf("a\"\x01"), " = \"a\\\"\\x01\"", " = \"a\\\"\\x01\""},
      {101, {}, " = \"\"", " = \"\""},
      {102, {0, 0xff}, " = 0x00ff", " = 0x00ff"},
      {102, {}, " = 0x", " = 0x"},
      {103, {0xff, 0xff, 0xff, 0xff}, " = 4294967295", " = 4294967295"},
      {103, {0, 0, 0, 0}, " = 0", " = 0"},
      {40, {0, 0, 0, 1}, " = START (1)", " = 0x00000001"},
      {104, {0x65, 0, 0, 0}, " = 1694498816", " = 1694498816"},
      {105, {192, 0, 2, 1}, " = 192.0.2.1", " = 0xc0000201", false, true},
      {106, address6, " = 2001:db8:0:0:0:0:0:1", " = 0x20010db8000000000000000000000001", false,
       true},
      {107, countingBytes(8), " = 1:203:405:607", " = 0x0001020304050607", false, true},
      {107, {1}, " = 0x01", " = 0x01", true, true},
      {107, {}, " = 0x", " = 0x"},
      {108,
       {0, 48, 0x20, 1, 0xd, 0xb8, 0, 0},
       " = 2001:db8:0/48",
       " = 0x003020010db80000",
       false,
       true},
      {109, countingBytes(8), " = 0x0001020304050607", " = 0x0001020304050607", true, true},
      {110, {1, 2}, " = 0x0102", " = 0x0102", true, true},
      {110, {}, " = 0x", " = 0x", true, true},
      {250, {1, 2}, " = 0x0102", " = 0x0102"},
      {250, {}, " = 0x", " = 0x"},
      {111, {3, 'a', 'b'}, ":3 = \"ab\"", " = \"\\x03ab\""},
      {111, {3}, ":3 = \"\"", " = \"\\x03\""},
      {111, {}, " = \"\"", " = \"\""},
      {112, {3, 0xff}, ":3 = 0xff", " = 0x03ff"},
      {113, {3, 0xff, 0xff, 0xff}, ":3 = 16777215", " = 67108863"},
      {114, {3, 0, 0, 1}, ":3 = 1", " = 50331649"},
      {121, hidden(padded(bytesOf("wonder"))), " = \"wonder\"", " = \"wonder\""},
      {122, hidden(padded({1, 2})), " = 0x01020000000000000000000000000000",
       " = 0x01020000000000000000000000000000"},
      {123, padded(hidden({0, 0, 0, 7}), 4), " = 7", " = 7"},
      {131, hiddenBehindSalt({3, 'k', 'e', 'y'}), " = \"key\"", " = \"key\""},
      {131, hiddenBehindSalt({200, 'k'}), " = 0xc86b", " = 0xc86b"},
      {132, hiddenBehindSalt({2, 8, 9}), " = 0x0809", " = 0x0809"},
      {133, hiddenBehindSalt({3, 'k', 'e', 'y'}, {5}), ":5 = \"key\"",
       R"( = "\x05\x80\x01\x03key")"},
  };
}

constexpr const char* unread = "the legacy interface gives no value of it: its bytes are shown";

TEST(LegacyDecoder, ShowsEveryKindOfAttribute) {
  const DictPtr dictionary = everyKind();
  for (const KindRow& row : kindRows()) {
    SCOPED_TRACE(row.standard);
    const PacketReport report =
        decoded(response().add(row.type, row.value).addVendor(vendor, row.type, row.value).make(),
                testReqAuth, dictionary);
    EXPECT_EQ(report.error, ErrorMsg::success);
    const auto nameOf = [&](const RadiusPktParserBase::Attribute& key) {
      return attributeName(key, *dictionary);
    };
    const std::string standardName = nameOf(RadiusPktParserBase::standardAttribute(row.type));
    const std::string vendorName = nameOf(RadiusPktParserBase::vendorAttribute(vendor, row.type));
    EXPECT_EQ(attributeLines(report),
              (Lines{standardName + row.standard, vendorName + row.vendors}));
    Lines warnings;
    if (row.standardIsUnread) {
      warnings.push_back(standardName + ": " + unread);
    }
    if (row.vendorsIsUnread) {
      warnings.push_back(vendorName + ": " + unread);
    }
    EXPECT_EQ(report.warnings, warnings);
    for (const ReportedAttribute& attribute : report.attributes) {
      EXPECT_EQ(attribute.wire, row.value);
    }
  }
}

TEST(LegacyDecoder, GivesValuesOfOneKindInTheirOrder) {
  const PacketReport report = decoded(PacketMaker(accessRequest)
                                          .add(18, {'a'})
                                          .add(1, {'u'})
                                          .addVendor(9, 1, {'x'})
                                          .add(18, {'b'})
                                          .addVendor(9, 1, {'y'})
                                          .add(18, {'c'})
                                          .make());
  EXPECT_EQ(attributeLines(report),
            (Lines{R"(Reply-Message = "a")", R"(User-Name = "u")", R"(Cisco-AVPair = "x")",
                   R"(Reply-Message = "b")", R"(Cisco-AVPair = "y")", R"(Reply-Message = "c")"}));
}

TEST(LegacyDecoder, TagOfAttribute26CountsForVendorsValues) {
  const DictPtr dictionary = DictionaryMaker()
                                 .add(26, RadiusAttributeType::octets, {.tag = true})
                                 .addVendor(vendor, 1, RadiusAttributeType::string, {.tag = true})
                                 .addVendor(vendor, 2, RadiusAttributeType::integer)
                                 .make();
  const PacketReport report = decoded(PacketMaker(accessRequest)
                                          .addVendor(vendor, 1, {3, 'a', 'b'})
                                          .addVendor(0x01000000 + vendor, 1, {3})
                                          .addVendor(vendor, 2, {3, 0, 0, 9})
                                          .make(),
                                      {}, dictionary);
  EXPECT_EQ(attributeLines(report), (Lines{":0 = \"ab\"", "Attr-26.16809689.1 = 0x03", ":0 = 9"}));
}

// ---- Strangers ----

constexpr std::size_t headerLength = 20;

/// Makes a packet's Length field say something else, and signs it as a receiver reads it: with
/// zeros behind its bytes.
ByteVector accountingOfLength(std::size_t length, const ByteVector& attributes) {
  ByteVector packet = PacketMaker(accountingRequest).reqAuthIs({}).addRaw(attributes).make();
  const std::size_t size = packet.size();
  packet[2] = static_cast<U8>(length >> 8U);
  packet[3] = static_cast<U8>(length);
  std::fill_n(packet.begin() + 4, 16, U8{0});
  packet.resize(length);
  ByteVector signedBytes = packet;
  const ByteVector secret = bytesOf(testSecret);
  signedBytes.insert(signedBytes.end(), secret.begin(), secret.end());
  std::ranges::copy(TestSupport::md5(signedBytes), packet.begin() + 4);
  packet.resize(size);
  return packet;
}

TEST(LegacyDecoder, ReadsAPacketThatWasCutAsZerosAndSaysSo) {
  const PacketReport report = decoded(accountingOfLength(30, {1, 10, 'a', 'b'}));
  EXPECT_EQ(report.error, ErrorMsg::success);
  EXPECT_EQ(report.authenticatorCheck, Check::verified);
  EXPECT_EQ(attributeLines(report), Lines{R"(User-Name = "ab\x00\x00\x00\x00\x00\x00")"});
  EXPECT_EQ(report.attributes.at(0).wire, (ByteVector{'a', 'b', 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(report.warnings,
            Lines{"its Length says 30, but there are 24 bytes: the others are read as zeros"});
}

TEST(LegacyDecoder, SaysThatARefusedPacketIsCutToo) {
  const PacketReport report = decoded(accountingOfLength(4096, {}));
  EXPECT_EQ(report.error, ErrorMsg::invalidAttrLength);
  EXPECT_EQ(report.warnings,
            Lines{"its Length says 4096, but there are 20 bytes: the others are read as zeros"});
}

TEST(LegacyDecoder, ReadsNothingBehindTheLengthOfALongPacket) {
  ByteVector packet = PacketMaker(accessRequest).add(1, {'a'}).make();
  packet.resize(10000, 0xff);
  const PacketReport report = decoded(packet);
  EXPECT_EQ(attributeLines(report), Lines{R"(User-Name = "a")"});
  EXPECT_EQ(report.warnings, Lines());
}

/// The sub-attribute's Length byte, which the interface trusts, and what comes of the value `abc`
/// with User-Name `u` behind it.
struct VendorLengthRow {
  U8 type;
  int length;
  std::string shown;
  Lines warnings;
};

std::string lengthWarning(int length) {
  return ": its vendor's Length byte says " + std::to_string(length) + ", where 5 would be right";
}

TEST(LegacyDecoder, ReadsVendorsValuesAsFarAsTheirOwnLengthSays) {
  constexpr U8 text = 1;
  constexpr U8 hiddenText = 2;
  const DictPtr dictionary =
      DictionaryMaker()
          .add(1, RadiusAttributeType::string)
          .addVendor(vendor, text, RadiusAttributeType::string)
          .addVendor(vendor, hiddenText, RadiusAttributeType::string, {.encrypt = userPassword})
          .make();
  const auto zeros = [](int count) {
    std::string escapes;
    for (int at = 0; at < count; ++at) {
      escapes += "\\x00";
    }
    return escapes;
  };
  const std::string gives = std::string(": ") + unread;
  const std::string unrevealed =
      ": it is hidden and reaches behind its end: nothing in the packet is revealed";
  const std::vector<VendorLengthRow> rows{
      {text, 5, "\"abc\"", {}},
      {text, 4, "\"ab\"", {lengthWarning(4)}},
      {text, 2, "0x616263", {lengthWarning(2), gives}},
      {text, 0, R"("abc\x01\x03u)" + zeros(248) + "\"", {lengthWarning(0)}},
      {text, 1, R"("abc\x01\x03u)" + zeros(249) + "\"", {lengthWarning(1)}},
      {text, 7, R"("abc\x01\x03")", {lengthWarning(7)}},
      {text, 255, R"("abc\x01\x03u)" + zeros(247) + "\"", {lengthWarning(255)}},
      {hiddenText, 2, "0x616263", {lengthWarning(2), gives}},
      {hiddenText, 1, R"("abc\x01\x03u)" + zeros(249) + "\"", {lengthWarning(1)}},
      {hiddenText, 7, R"("abc\x01\x03")", {lengthWarning(7), unrevealed}},
      {hiddenText, 255, R"("abc\x01\x03u)" + zeros(247) + "\"", {lengthWarning(255), unrevealed}},
  };
  for (const VendorLengthRow& row : rows) {
    SCOPED_TRACE(std::to_string(row.type) + " length " + std::to_string(row.length));
    ByteVector attribute = TestSupport::vendorBytes(vendor, row.type, {'a', 'b', 'c'});
    attribute.at(7) = static_cast<U8>(row.length);
    const PacketReport report =
        decoded(response().addRaw(attribute).add(1, {'u'}).make(), testReqAuth, dictionary);
    EXPECT_EQ(report.error, ErrorMsg::success);
    EXPECT_EQ(attributeLines(report), (Lines{" = " + row.shown, " = \"u\""}));
    EXPECT_EQ(report.attributes.at(0).wire, (ByteVector{'a', 'b', 'c'}));
    EXPECT_EQ(report.warnings, row.warnings);
  }
}

TEST(LegacyDecoder, ShowsAllThatStandsInAValueWhoseLengthsDiffer) {
  const ByteVector value = hiddenBehindSalt({3, 'k', 'e', 'y'});
  ByteVector attribute = TestSupport::vendorBytes(vendor, 131, value);
  attribute.at(7) = 7;
  const PacketReport report =
      decoded(response().addRaw(attribute).make(), testReqAuth, everyKind());
  EXPECT_EQ(attributeLines(report), Lines{R"( = "\x80\x01\x03ke")"});
}

/// Decodes with and without a Request Authenticator and returns the text of a failed assertion.
std::optional<std::string> assertionOf(const ByteVector& packet, const DictPtr& dictionary) {
  return TestSupport::assertionTextOf([&] {
    decoded(packet, testReqAuth, dictionary);
    decoded(packet, {}, dictionary);
  });
}

TEST(LegacyDecoder, NoCodeReachesAnAssertion) {
  for (int code = 0; code <= 255; ++code) {
    SCOPED_TRACE(code);
    for (const ByteVector& reqAuth : {testReqAuth, ByteVector()}) {
      const ByteVector packet = PacketMaker(static_cast<U8>(code))
                                    .add(2, ByteVector(16, 1))
                                    .addMessageAuthenticator()
                                    .reqAuthIs(reqAuth)
                                    .make();
      EXPECT_EQ(assertionOf(packet, shippedDictionary()), std::nullopt);
    }
  }
}

TEST(LegacyDecoder, NoPrefixOrChangedByteOfAGoldenPacketReachesAnAssertion) {
  for (const GoldenPacket& golden : goldenPackets()) {
    SCOPED_TRACE(golden.name);
    if (golden.packet.size() > 200) {
      continue;
    }
    for (std::size_t at = 0; at < golden.packet.size(); ++at) {
      ByteVector changed = golden.packet;
      changed[at] ^= 0xff;
      EXPECT_EQ(assertionOf(changed, shippedDictionary()), std::nullopt);
      EXPECT_EQ(assertionOf({golden.packet.begin(),
                             golden.packet.begin() + static_cast<std::ptrdiff_t>(at)},
                            shippedDictionary()),
                std::nullopt);
    }
  }
}

TEST(LegacyDecoder, NoLengthOfAnyKindReachesAnAssertion) {
  const DictPtr dictionary = everyKind();
  for (const KindRow& row : kindRows()) {
    for (int length = 0; length <= 255; ++length) {
      SCOPED_TRACE(std::to_string(row.type) + " length " + std::to_string(length));
      ByteVector own = TestSupport::vendorBytes(vendor, row.type, row.value);
      own.at(7) = static_cast<U8>(length);
      ByteVector outer = TestSupport::attributeBytes(row.type, row.value);
      outer.at(1) = static_cast<U8>(length);
      for (const ByteVector& attributes : {own, outer}) {
        const ByteVector packet =
            PacketMaker(accessRequest).addRaw(attributes).add(row.type, row.value).make();
        EXPECT_EQ(assertionOf(packet, dictionary), std::nullopt);
        const PacketReport report = decoded(packet, {}, dictionary);
        std::size_t shown = headerLength;
        for (const ReportedAttribute& attribute : report.attributes) {
          shown += attribute.wire.size() + (attribute.key.attrId == 26 ? 8 : 2);
        }
        EXPECT_EQ(shown, isAccepted(report) ? packet.size() : headerLength);
      }
    }
  }
}

}  // namespace
}  // namespace RadiusPacketTool
