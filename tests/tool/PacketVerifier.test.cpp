#include "tool/checks/PacketVerifier.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"
#include "tool/output/CheckOutput.h"

namespace RadiusPacketTool {
namespace {

using RadiusPacketParser::RadiusAttributeType;
using TestSupport::attributeBytes;
using TestSupport::bytesOf;
using TestSupport::ByteVector;
using TestSupport::countingBytes;
using TestSupport::joined;
using TestSupport::PacketMaker;
using TestSupport::shippedDictionary;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;
using Verda::U8;

using Lines = std::vector<std::string>;

/// What is known beside the packet.
struct Setting {
  bool hasSecret = true;
  ByteVector reqAuth = testReqAuth;
  bool isPaired = false;
  TestSupport::DictPtr dictionary = shippedDictionary();
};

std::vector<CheckResult> verified(const ByteVector& bytes, const Setting& setting) {
  const Secret secret(testSecret);
  const InputPacket packet{.place = {.source = "file", .index = 2},
                           .bytes = bytes,
                           .datagram = std::nullopt,
                           .whyBinary = std::nullopt};
  PacketContext context;
  context.header = headerOf(bytes);
  context.secret = setting.hasSecret ? &secret : nullptr;
  context.request.bytes = verdaBytes(setting.reqAuth);
  if (setting.isPaired) {
    context.request.pairedWith = {.source = "file", .index = 1};
  }
  return PacketVerifier(setting.dictionary).verify(packet, context);
}

/// The text's lines for a check, without the packet's place, the check's name and what is between
/// them.
Lines linesOf(const std::string& check, const ByteVector& packet, const Setting& setting = {}) {
  std::istringstream text(textOf({.source = "file", .index = 2}, verified(packet, setting)));
  const std::string name = check + ": ";
  Lines lines;
  for (std::string line; std::getline(text, line);) {
    const std::size_t begin = line.find_first_not_of(' ', std::string("packet 2 of file:").size());
    if (line.compare(begin, name.size(), name) == 0) {
      lines.push_back(line.substr(begin + name.size()));
    }
  }
  return lines;
}

struct LineCase {
  const char* name;
  ByteVector packet;
  std::string line;
  Setting setting = {};
};

void expectLines(const std::string& check, const std::vector<LineCase>& cases) {
  for (const LineCase& one : cases) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(linesOf(check, one.packet, one.setting), Lines{one.line});
  }
}

const Setting withoutSecret{.hasSecret = false};
const Setting withoutRequest{.hasSecret = true, .reqAuth = {}};
const Setting paired{.hasSecret = true, .reqAuth = testReqAuth, .isPaired = true};

const ByteVector userName = attributeBytes(1, bytesOf("alice"));
const ByteVector eapMessage = attributeBytes(79, {1, 2, 0, 4});
const ByteVector nasAddress = attributeBytes(4, {192, 0, 2, 1});
const ByteVector password = attributeBytes(2, ByteVector(16));

ByteVector plain(U8 code, const ByteVector& attributes = {}) {
  return PacketMaker(code).addRaw(attributes).make();
}

/// A packet that begins with a Message-Authenticator.
ByteVector withMessageAuthenticator(U8 code, const ByteVector& attributes = {}) {
  return PacketMaker(code).addMessageAuthenticator().addRaw(attributes).make();
}

ByteVector endingWithMessageAuthenticator(U8 code, const ByteVector& attributes) {
  return PacketMaker(code).addRaw(attributes).addMessageAuthenticator().make();
}

ByteVector changed(ByteVector packet, std::size_t offset) {
  packet.at(offset) ^= 1;
  return packet;
}

ByteVector cutBehind(const ByteVector& packet, std::size_t size) {
  return {packet.begin(), packet.begin() + static_cast<std::ptrdiff_t>(size)};
}

TEST(PacketVerifier, ChecksInOrder) {
  Lines checks;
  for (const CheckResult& result : verified(plain(1), {})) {
    checks.push_back(result.check);
  }
  EXPECT_EQ(checks, (Lines{"structure", "authenticator", "Message-Authenticator present",
                           "Message-Authenticator first", "Message-Authenticator unique",
                           "Message-Authenticator valid", "salts unique", "first bit of salts",
                           "attributes allowed", "attributes required", "attributes required"}));
}

TEST(PacketVerifier, Structure) {
  const ByteVector lengthOf19 = joined({ByteVector{1, 7, 0, 19}, ByteVector(16)});
  expectLines(
      "structure",
      {{"no attribute", plain(1), "pass: 0 attributes (RFC 2865 section 5)"},
       {"one", plain(1, userName), "pass: 1 attribute (RFC 2865 section 5)"},
       {"two", plain(1, joined({userName, nasAddress})), "pass: 2 attributes (RFC 2865 section 5)"},
       {"with padding", joined({plain(1, userName), ByteVector(3)}),
        "pass: 1 attribute (RFC 2865 section 5)"},
       {"no byte",
        {},
        "fail: invalidPktLength: Packet has invalid length: 0 (offset 0, RFC 2865 "
        "section 3)"},
       {"less than a header", ByteVector(19),
        "fail: invalidPktLength: Packet has invalid length: 19 (offset 0, RFC 2865 section 3)"},
       {"Length of less", lengthOf19,
        "fail: invalidPktLength: Invalid packet header length: 19 (offset 2, RFC 2865 section 3)"},
       {"cut", cutBehind(plain(1, userName), 26),
        "fail: invalidPktLength: Packet's Length: 26 and header length: 27 mismatch (offset 2, RFC "
        "2865 section 3)"},
       {"lone byte", plain(1, joined({userName, ByteVector{1}})),
        "fail: invalidAttrLength: Invalid attribute: 1 length: 1 (offset 27, RFC 2865 section 5)"},
       {"too long", plain(1, joined({userName, ByteVector{1, 5, 0}})),
        "fail: invalidAttrLength: Invalid attribute: 1 attrLength: 5, remainingPktLen: 3 (offset "
        "27, RFC 2865 section 5)"},
       {"bad value", plain(1, joined({userName, attributeBytes(4, {192})})),
        "fail: invalidAttrLength: Attribute: 4, VendorId: 0, VendorAttrId: 0, Data Type: Ipaddr, "
        "Invalid length: 1 (offset 27, RFC 2865 section 5)"},
       {"bad Message-Authenticator", plain(1, attributeBytes(80, {1})),
        "fail: invalidAttrLength: Invalid length of message authenticator: 3 (offset 20, RFC 2865 "
        "section 5)"},
       {"Message-Authenticator that the Length cuts",
        [] {
          ByteVector packet = withMessageAuthenticator(1);
          packet[3] = 30;
          return packet;
        }(),
        "fail: invalidAttrLength: Invalid attribute: 80 attrLength: 18, remainingPktLen: 10 "
        "(offset "
        "20, RFC 2865 section 5)"},
       {"fragments apart", plain(1, joined({eapMessage, userName, eapMessage})),
        "fail: concatAttrNotConsecutive: Concat attribute: 79 not consecutive (offset 33, RFC 2865 "
        "section 5)"},
       {"Message-Authenticator between fragments",
        PacketMaker(1).addRaw(eapMessage).addMessageAuthenticator().addRaw(eapMessage).make(),
        "fail: concatAttrNotConsecutive: Concat attribute: 79 not consecutive (offset 44, RFC 2865 "
        "section 5)"}});
}

TEST(PacketVerifier, StructureIsNoQuestionOfAuthenticity) {
  const std::string good = "pass: 1 attribute (RFC 2865 section 5)";
  expectLines("structure",
              {{"wrong authenticator", changed(plain(2, userName), 4), good},
               {"no secret", plain(2, userName), good, withoutSecret},
               {"no request", plain(2, userName), good, withoutRequest},
               {"wrong Message-Authenticator", changed(withMessageAuthenticator(1), 22), good},
               {"EAP-Message alone", plain(1, eapMessage), good},
               {"code without a rule", withMessageAuthenticator(99), good},
               {"two Message-Authenticators",
                PacketMaker(1).addMessageAuthenticator().addMessageAuthenticator().make(),
                "pass: 2 attributes (RFC 2865 section 5)"}});
}

/// The prefix length of a hidden prefix is seen only where it is revealed in the right way.
TEST(PacketVerifier, StructureOfHiddenValuesIsSeenWithSecretAndRequest) {
  constexpr U8 type = 200;
  Setting setting;
  setting.dictionary = TestSupport::DictionaryMaker()
                           .add(type, RadiusAttributeType::ipv6prefix, {.encrypt = 1})
                           .make();
  const auto packetOf = [&](U8 prefixLength) {
    return plain(2, attributeBytes(type, TestSupport::hidden(ByteVector{0, prefixLength},
                                                             bytesOf(testSecret), testReqAuth)));
  };
  EXPECT_EQ(linesOf("structure", packetOf(128), setting),
            Lines{"pass: 1 attribute (RFC 2865 section 5)"});
  EXPECT_EQ(linesOf("structure", packetOf(129), setting),
            Lines{"fail: invalidAttrLength: Attribute: 200, VendorId: 0, VendorAttrId: 0, Data "
                  "Type: Ipv6Prefix, Invalid prefix length: 129 (offset 20, RFC 2865 section 5)"});
}

TEST(PacketVerifier, NothingElseIsToldOfAPacketWithABadHeader) {
  for (const ByteVector& packet : {ByteVector(), cutBehind(plain(2, userName), 26)}) {
    const std::vector<CheckResult> results = verified(packet, {});
    ASSERT_EQ(results.size(), 10U);
    for (std::size_t index = 1; index < results.size(); ++index) {
      EXPECT_EQ(linesOf(results[index].check, packet),
                Lines{"cannot tell: the header is not in order"});
    }
  }
}

TEST(PacketVerifier, Authenticator) {
  const std::string request = "fail: it is not that of this packet and secret (offset 4, ";
  const std::string response =
      "fail: it is not that of this packet, secret and Request Authenticator (offset 4, ";
  expectLines(
      "authenticator",
      {{"Access-Request", plain(1), "cannot tell: it is random in this code (RFC 2865 section 3)"},
       {"Status-Server", plain(12), "cannot tell: it is random in this code (RFC 5997 section 3)"},
       {"Access-Accept", plain(2), "pass (RFC 2865 section 3)"},
       {"Access-Reject", plain(3), "pass (RFC 2865 section 3)"},
       {"Access-Challenge", plain(11), "pass (RFC 2865 section 3)"},
       {"Accounting-Request", plain(4), "pass (RFC 2866 section 3)"},
       {"Accounting-Response", plain(5), "pass (RFC 2866 section 3)"},
       {"Disconnect-Request", plain(40), "pass (RFC 5176 section 2.3)"},
       {"CoA-NAK", plain(45), "pass (RFC 5176 section 2.3)"},
       {"another code", plain(99), "pass"},
       {"paired", plain(2), "pass: paired with packet 1 of file (RFC 2865 section 3)", paired},
       {"request behind a request", plain(4), "pass (RFC 2866 section 3)", paired},
       {"wrong in a response", changed(plain(2), 4), response + "RFC 2865 section 3)"},
       {"wrong in a request", changed(plain(4), 19), request + "RFC 2866 section 3)"},
       {"no secret", plain(4),
        "cannot tell: no shared secret is known for its client (RFC 2866 section 3)",
        withoutSecret},
       {"no request", plain(2),
        "cannot tell: no Request Authenticator: give that of the request which this packet answers "
        "with -a HEX (RFC 2865 section 3)",
        withoutRequest},
       {"request without a request", plain(4), "pass (RFC 2866 section 3)", withoutRequest}});
}

TEST(PacketVerifier, MessageAuthenticatorPresent) {
  const std::string forgery =
      "fail: without one, anybody on the path can forge this answer (CVE-2024-3596) unless TLS or "
      "IPsec protects it";
  const std::string none = "pass: there is none, and this code does not need one";
  const ByteVector broken = joined({userName, ByteVector{1}});
  expectLines(
      "Message-Authenticator present",
      {{"Access-Request", withMessageAuthenticator(1), "pass (RFC 3579 section 3.2)"},
       {"Access-Accept", endingWithMessageAuthenticator(2, userName),
        "pass (RFC 3579 section 3.2)"},
       {"Accounting-Request", withMessageAuthenticator(4), "pass (RFC 2869 section 5.14)"},
       {"Status-Server", withMessageAuthenticator(12), "pass (RFC 5997 section 3)"},
       {"CoA-Request", withMessageAuthenticator(43), "pass (RFC 5176 section 3.4)"},
       {"another code", withMessageAuthenticator(99), "pass"},
       {"none in an Access-Accept", plain(2), forgery},
       {"none in an Access-Reject", plain(3), forgery},
       {"none in an Access-Challenge", plain(11), forgery},
       {"none in an Access-Request", plain(1),
        "fail: without one, anybody on the path can change this request to forge its answer "
        "(CVE-2024-3596) unless TLS or IPsec protects it"},
       {"none in a Status-Server", plain(12),
        "fail: a Status-Server packet must have one (RFC 5997 section 3)"},
       {"none beside an EAP-Message", plain(1, joined({userName, eapMessage})),
        "fail: there is none beside the EAP-Message (offset 27, RFC 3579 section 3.1)"},
       {"none in an Accounting-Request", plain(4), none},
       {"none in an Accounting-Response", plain(5), none},
       {"none in a CoA-Request", plain(43), none},
       {"none in another code", plain(99), none},
       {"none in front of a fault", plain(2, broken),
        "cannot tell: there is none in front of the fault: what stands at offset 27 is no "
        "attribute"}});
}

TEST(PacketVerifier, MessageAuthenticatorFirst) {
  const std::string forgery =
      "fail: a client that does not insist on one can be given a forged answer (CVE-2024-3596) "
      "unless TLS or IPsec protects it (offset 27)";
  const std::string anywhere = "pass: its place does not matter in this code";
  expectLines(
      "Message-Authenticator first",
      {{"Access-Accept", withMessageAuthenticator(2, userName), "pass"},
       {"Access-Request", withMessageAuthenticator(1, userName), "pass"},
       {"second in an Access-Accept", endingWithMessageAuthenticator(2, userName), forgery},
       {"second in an Access-Reject", endingWithMessageAuthenticator(3, userName), forgery},
       {"second in an Access-Challenge", endingWithMessageAuthenticator(11, userName), forgery},
       {"second in an Access-Request", endingWithMessageAuthenticator(1, userName), anywhere},
       {"second in a CoA-ACK", endingWithMessageAuthenticator(44, userName), anywhere},
       {"none", plain(2), "cannot tell: there is none"}});
}

TEST(PacketVerifier, MessageAuthenticatorUnique) {
  const ByteVector twice =
      PacketMaker(1).addMessageAuthenticator().addMessageAuthenticator().make();
  expectLines("Message-Authenticator unique",
              {{"one", withMessageAuthenticator(1), "pass (RFC 2869 section 5.19)"},
               {"two", twice, "fail: there are 2 (offset 38, RFC 2869 section 5.19)"},
               {"none", plain(1), "cannot tell: there is none (RFC 2869 section 5.19)"},
               {"one in front of a fault", withMessageAuthenticator(1, {1}),
                "cannot tell: what stands at offset 38 is no attribute (RFC 2869 section 5.19)"}});
}

TEST(PacketVerifier, MessageAuthenticatorValid) {
  const std::string request = "fail: it is not that of this packet and secret (offset 20, ";
  const std::string response =
      "fail: it is not that of this packet, secret and Request Authenticator (offset 20, ";
  constexpr std::size_t value = 22;
  expectLines(
      "Message-Authenticator valid",
      {{"Access-Request", withMessageAuthenticator(1), "pass (RFC 3579 section 3.2)"},
       {"Access-Accept", withMessageAuthenticator(2), "pass (RFC 3579 section 3.2)"},
       {"Accounting-Request", withMessageAuthenticator(4), "pass (RFC 2869 section 5.14)"},
       {"Accounting-Response", withMessageAuthenticator(5), "pass (RFC 2869 section 5.14)"},
       {"Status-Server", withMessageAuthenticator(12), "pass (RFC 5997 section 3)"},
       {"Disconnect-Request", withMessageAuthenticator(40), "pass (RFC 5176 section 3.4)"},
       {"CoA-NAK", withMessageAuthenticator(45), "pass (RFC 5176 section 3.4)"},
       {"paired", withMessageAuthenticator(2),
        "pass: paired with packet 1 of file (RFC 3579 section 3.2)", paired},
       {"wrong in an Access-Request", changed(withMessageAuthenticator(1), value),
        request + "RFC 3579 section 3.2)"},
       {"wrong in an Accounting-Request", changed(withMessageAuthenticator(4), value),
        request + "RFC 2869 section 5.14)"},
       {"wrong in an Accounting-Response", changed(withMessageAuthenticator(5), value),
        response + "RFC 2869 section 5.14)"},
       {"wrong in a CoA-ACK", changed(withMessageAuthenticator(44), value),
        response + "RFC 5176 section 3.4)"},
       {"of another length", plain(1, attributeBytes(80, {1, 2, 3})),
        "fail: its value has 3 bytes, not 16 (offset 20, RFC 3579 section 3.2)"},
       {"code without a rule", withMessageAuthenticator(99),
        "fail: there is no rule for what one covers in this code (offset 20)"},
       {"two", PacketMaker(1).addMessageAuthenticator().addMessageAuthenticator().make(),
        "cannot tell: there are 2 (RFC 3579 section 3.2)"},
       {"none", plain(1), "cannot tell: there is none (RFC 3579 section 3.2)"},
       {"no secret", withMessageAuthenticator(1),
        "cannot tell: no shared secret is known for its client (RFC 3579 section 3.2)",
        withoutSecret},
       {"no request", withMessageAuthenticator(2),
        "cannot tell: no Request Authenticator: give that of the request which this packet answers "
        "with -a HEX (RFC 3579 section 3.2)",
        withoutRequest}});
}

// ---- Salts ----

constexpr U8 tunnelPassword = 69;
constexpr Verda::U32 microsoft = 311;
constexpr U8 mppeSendKey = 16;

/// A Tunnel-Password of 21 bytes with its tag.
ByteVector tunnelPasswordOf(const ByteVector& salt) {
  return attributeBytes(tunnelPassword, joined({ByteVector{1}, salt, ByteVector(16)}));
}

ByteVector mppeKeyOf(const ByteVector& salt) {
  return TestSupport::vendorBytes(microsoft, mppeSendKey, joined({salt, ByteVector(16)}));
}

TEST(PacketVerifier, SaltsUnique) {
  const std::string check = "salts unique";
  const ByteVector salt{0x80, 0x01};
  const ByteVector other{0x81, 0x01};
  expectLines(
      check,
      {{"none", plain(2, userName), "pass: there is no salt (RFC 2868 section 3.5)"},
       {"one", plain(2, tunnelPasswordOf(salt)), "pass: 1 salt (RFC 2868 section 3.5)"},
       {"two", plain(2, joined({tunnelPasswordOf(salt), mppeKeyOf(other)})),
        "pass: 2 salts (RFC 2868 section 3.5)"},
       {"the same", plain(2, joined({tunnelPasswordOf(salt), mppeKeyOf(salt)})),
        "fail: MS-MPPE-Send-Key has the salt 8001, as has Tunnel-Password at offset 20 (offset 41, "
        "RFC 2868 section 3.5)"},
       {"value without a salt", plain(2, attributeBytes(tunnelPassword, {1, 0x80})),
        "pass: there is no salt (RFC 2868 section 3.5)"},
       {"in front of a fault", plain(2, joined({tunnelPasswordOf(salt), ByteVector{1}})),
        "cannot tell: only the attributes in front of the fault in the structure can be looked at "
        "(RFC 2868 section 3.5)"}});
  EXPECT_EQ(linesOf(check, plain(2, joined({tunnelPasswordOf(salt), tunnelPasswordOf(salt),
                                            tunnelPasswordOf(salt), ByteVector{1}}))),
            (Lines{"fail: Tunnel-Password has the salt 8001, as has Tunnel-Password at offset 20 "
                   "(offset 41, RFC 2868 section 3.5)",
                   "fail: Tunnel-Password has the salt 8001, as has Tunnel-Password at offset 20 "
                   "(offset 62, RFC 2868 section 3.5)"}));
}

TEST(PacketVerifier, FirstBitOfSalts) {
  const std::string check = "first bit of salts";
  expectLines(
      check,
      {{"none", plain(2, userName), "pass: there is no salt (RFC 2868 section 3.5)"},
       {"set", plain(2, tunnelPasswordOf({0x80, 0})), "pass: 1 salt (RFC 2868 section 3.5)"},
       {"not set", plain(2, joined({userName, mppeKeyOf({0x7f, 0xff})})),
        "fail: MS-MPPE-Send-Key has the salt 7fff, whose first bit is not set (offset 27, RFC 2868 "
        "section 3.5)"},
       {"in front of a fault", plain(2, joined({tunnelPasswordOf({0x80, 0}), ByteVector{1}})),
        "cannot tell: only the attributes in front of the fault in the structure can be looked at "
        "(RFC 2868 section 3.5)"}});
  EXPECT_EQ(
      linesOf(check, plain(2, joined({tunnelPasswordOf({0, 1}), tunnelPasswordOf({0, 2})}))),
      (Lines{"fail: Tunnel-Password has the salt 0001, whose first bit is not set (offset 20, "
             "RFC 2868 section 3.5)",
             "fail: Tunnel-Password has the salt 0002, whose first bit is not set (offset 41, "
             "RFC 2868 section 3.5)"}));
}

// ---- Attributes ----

const std::string accessTables =
    "(RFC 2865 section 5.44, RFC 2868 section 4, RFC 2869 section 5.19, RFC 3162 section 3)";

TEST(PacketVerifier, AttributesAllowed) {
  const ByteVector replyMessage = attributeBytes(18, bytesOf("hello"));
  const ByteVector port = attributeBytes(5, {0, 0, 0, 1});
  expectLines(
      "attributes allowed",
      {{"nothing", plain(1), "pass " + accessTables},
       {"each once", plain(1, joined({userName, password, nasAddress, port})),
        "pass " + accessTables},
       {"Message-Authenticator", withMessageAuthenticator(4),
        "pass (RFC 2866 section 5.13, RFC 2868 section 4, RFC 2869 section 5.19, RFC 3162 section "
        "3)"},
       {"many of what may be there often", plain(2, joined({replyMessage, replyMessage})),
        "pass " + accessTables},
       {"vendors' attributes", plain(5, mppeKeyOf({1, 2})), "pass (RFC 2866 section 5.13)"},
       {"CoA-Request", plain(43, userName), "pass (RFC 5176 section 3.6)"},
       {"Status-Server", plain(12, nasAddress), "pass (RFC 5997 section 5)"},
       {"password in an Access-Accept", plain(2, joined({userName, password})),
        "fail: User-Password has no place in this code (offset 27, RFC 2865 section 5.44)"},
       {"State in an Accounting-Request", plain(4, attributeBytes(24, {1})),
        "fail: State has no place in this code (offset 20, RFC 2866 section 5.13)"},
       {"name in an Accounting-Response", plain(5, userName),
        "fail: User-Name has no place in this code (offset 20, RFC 2866 section 5.13)"},
       {"Tunnel-Password in a request", plain(1, tunnelPasswordOf({0x80, 0})),
        "fail: Tunnel-Password has no place in this code (offset 20, RFC 2868 section 4)"},
       {"Prompt in an Access-Accept", plain(2, attributeBytes(76, {0, 0, 0, 1})),
        "fail: Prompt has no place in this code (offset 20, RFC 2869 section 5.19)"},
       {"NAS-IPv6-Address in an Access-Accept", plain(2, attributeBytes(95, ByteVector(16))),
        "fail: NAS-IPv6-Address has no place in this code (offset 20, RFC 3162 section 3)"},
       {"name in a Disconnect-NAK", plain(42, userName),
        "fail: User-Name has no place in this code (offset 20, RFC 5176 section 3.6)"},
       {"name in a CoA-ACK", plain(44, userName),
        "fail: User-Name has no place in this code (offset 20, RFC 5176 section 3.6)"},
       {"name in a Status-Server", plain(12, userName),
        "fail: User-Name has no place in this code (offset 20, RFC 5997 section 5)"},
       {"twice", plain(1, joined({userName, nasAddress, nasAddress, nasAddress})),
        "fail: there are 3 NAS-IP-Address, and one is allowed (offset 33, RFC 2865 section 5.44)"},
       {"twice what must be there",
        plain(4, joined({attributeBytes(44, bytesOf("1")), attributeBytes(44, bytesOf("1"))})),
        "fail: there are 2 Acct-Session-Id, and one is allowed (offset 23, RFC 2866 section 5.13)"},
       {"two ways to authenticate", plain(1, joined({attributeBytes(3, ByteVector(17)), password})),
        "fail: CHAP-Password does not go with User-Password (offset 20, RFC 2869 section 5.19)"},
       {"two messages", withMessageAuthenticator(11, joined({eapMessage, replyMessage})),
        "fail: EAP-Message does not go with Reply-Message (offset 38, RFC 3579 section 2.6.5)"},
       {"code without a table", plain(13, userName),
        "cannot tell: no table is known for this code"},
       {"in front of a fault", plain(1, joined({userName, ByteVector{1}})),
        "cannot tell: what stands at offset 27 is no attribute " + accessTables},
       {"fault in front of a fault", plain(2, joined({password, ByteVector{1}})),
        "fail: User-Password has no place in this code (offset 20, RFC 2865 section 5.44)"}});
}

TEST(PacketVerifier, AttributesAllowedHasALineForEachFault) {
  EXPECT_EQ(linesOf("attributes allowed", plain(3, joined({password, userName}))),
            (Lines{"fail: User-Name has no place in this code (offset 38, RFC 2865 section 5.44)",
                   "fail: User-Password has no place in this code (offset 20, RFC 2865 section "
                   "5.44)"}));
}

TEST(PacketVerifier, AttributesRequired) {
  const std::string check = "attributes required";
  const std::string nas = "NAS-IP-Address, NAS-IPv6-Address or NAS-Identifier is missing";
  const std::string met =
      "pass (RFC 2865 section 4.1 and RFC 3162 section 2.1, RFC 2865 section "
      "4.1)";
  const ByteVector status = attributeBytes(40, {0, 0, 0, 1});
  const ByteVector session = attributeBytes(44, bytesOf("1"));
  expectLines(
      check,
      {{"password and address", plain(1, joined({password, nasAddress})), met},
       {"State and identifier",
        plain(1, joined({attributeBytes(24, {1}), attributeBytes(32, bytesOf("nas"))})), met},
       {"EAP-Message and IPv6 address",
        plain(1, joined({eapMessage, attributeBytes(95, ByteVector(16))})), met},
       {"vendor's password", plain(1, joined({mppeKeyOf({1, 2}), nasAddress})), met},
       {"accounting", plain(4, joined({status, session, nasAddress})),
        "pass (RFC 2866 section 5.13, RFC 2866 section 4.1 and RFC 3162 section 2.1)"},
       {"no address", plain(1, password),
        "fail: " + nas + " (RFC 2865 section 4.1 and RFC 3162 section 2.1)"},
       {"no password", plain(1, nasAddress),
        "fail: User-Password, CHAP-Password, State or what stands for them is missing (RFC 2865 "
        "section 4.1)"},
       {"no status", plain(4, joined({session, nasAddress})),
        "fail: Acct-Status-Type is missing (RFC 2866 section 5.13)"},
       {"no session", plain(4, joined({status, nasAddress})),
        "fail: Acct-Session-Id is missing (RFC 2866 section 5.13)"},
       {"no address in accounting", plain(4, joined({status, session})),
        "fail: " + nas + " (RFC 2866 section 4.1 and RFC 3162 section 2.1)"},
       {"nothing required", plain(2), "pass: this code requires none"},
       {"code without a table", plain(13), "cannot tell: no table is known for this code"},
       {"in front of a fault", plain(1, {1}),
        "cannot tell: what stands at offset 20 is no attribute " + accessTables}});
  EXPECT_EQ(linesOf(check, plain(4)),
            (Lines{"fail: Acct-Status-Type is missing (RFC 2866 section 5.13)",
                   "fail: Acct-Session-Id is missing (RFC 2866 section 5.13)",
                   "fail: " + nas + " (RFC 2866 section 4.1 and RFC 3162 section 2.1)"}));
}

}  // namespace
}  // namespace RadiusPacketTool
