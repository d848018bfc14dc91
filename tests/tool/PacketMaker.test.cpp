#include "tool/making/PacketMaker.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Hex.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

using TestSupport::attributeBytes;
using TestSupport::ByteVector;
using TestSupport::countingBytes;
using TestSupport::shippedDictionary;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;

const std::string requestLine =
    "ACCESS_REQUEST, id 7, length 20, authenticator 303132333435363738393a3b3c3d3e3f\n";

/// Makes the packets of a text.
std::vector<MadePacket> made(std::string_view text, const ByteVector& given = {},
                             const HeaderChoice& choice = {}) {
  const Secret secret(testSecret);
  PacketTextReader reader;
  reader.take(text);
  PacketMaker maker(shippedDictionary(), secret, verdaBytes(given), choice, "x.txt");
  std::vector<MadePacket> packets;
  for (const PacketText& packet : reader.finish()) {
    packets.push_back(maker.make(packet));
  }
  return packets;
}

TestSupport::PacketMaker expected(Verda::U8 code) {
  return TestSupport::PacketMaker(code).ownAuthenticatorIs(countingBytes(16, 0x30));
}

TEST(PacketMaker, WritesAttributesInTheOrderOfTheLines) {
  EXPECT_EQ(made(requestLine + "Class = 0x01\nUser-Name = \"bob\"\nClass = 0x02").front().bytes,
            expected(1).add(25, {1}).add(1, {'b', 'o', 'b'}).add(25, {2}).make());
}

TEST(PacketMaker, RandomAuthenticatorIsThatOfTheHeaderLineOrNew) {
  const auto first = made("ACCESS_REQUEST, id 7").front().bytes;
  EXPECT_NE(first, made("ACCESS_REQUEST, id 7").front().bytes);
  EXPECT_EQ(first.size(), 20U);
  EXPECT_EQ(made(requestLine).front().bytes, expected(1).make());
}

TEST(PacketMaker, OtherAuthenticatorsAreComputedWhateverTheHeaderLine) {
  const std::string line = ", id 7, authenticator 303132333435363738393a3b3c3d3e3f";
  EXPECT_EQ(made("ACCOUNTING_REQUEST" + line).front().bytes, expected(4).make());
  EXPECT_EQ(made("ACCESS_ACCEPT" + line, testReqAuth).front().bytes,
            expected(2).reqAuthIs(testReqAuth).make());
}

TEST(PacketMaker, HeaderLineOfADigestSignedRequestHidesNothing) {
  const std::string password = "\nUser-Password = \"x\"";
  EXPECT_EQ(
      made("4, id 7, authenticator 303132333435363738393a3b3c3d3e3f" + password).front().bytes,
      made("4, id 7" + password).front().bytes);
}

TEST(PacketMaker, MessageAuthenticatorStandsWhereItIsAskedFor) {
  const ByteVector wanted = expected(1).add(1, {'a'}).addMessageAuthenticator().add(25, {1}).make();
  for (const std::string_view asked :
       {"Message-Authenticator", "Message-Authenticator =", "Message-Authenticator = 0x00",
        "Attr-80", "Attr-80 = \"\""}) {
    SCOPED_TRACE(asked);
    EXPECT_EQ(made(requestLine + "User-Name = \"a\"\n" + std::string(asked) + "\nClass = 0x01")
                  .front()
                  .bytes,
              wanted);
  }
}

TEST(PacketMaker, RawFormsAreWrittenAsTheyAre) {
  EXPECT_EQ(made(requestLine + "Attr-240 = 0x0102\nAttr-79 = 0x\nAttr-26.311.28 = 0xc0000201\n"
                               "Attr-26.99999.1 = \"x\"\nAttr-2 = 0x03")
                .front()
                .bytes,
            expected(1)
                .add(240, {1, 2})
                .add(79, {})
                .addVendor(311, 28, {0xc0, 0, 2, 1})
                .addVendor(99999, 1, {'x'})
                .add(2, {3})
                .make());
}

TEST(PacketMaker, LongEapMessageIsSplit) {
  const std::string digits = TestSupport::toHex(countingBytes(300, 0));
  const ByteVector all = countingBytes(300, 0);
  EXPECT_EQ(made(requestLine + "EAP-Message = 0x" + digits).front().bytes,
            expected(1)
                .add(79, {all.begin(), all.begin() + 253})
                .add(79, {all.begin() + 253, all.end()})
                .make());
}

TEST(PacketMaker, ChoiceBeatsTheHeaderLine) {
  const auto packet = made("ACCESS_REQUEST, id 5", {}, {.code = 4, .id = 6}).front().bytes;
  EXPECT_EQ(packet[0], 4);
  EXPECT_EQ(packet[1], 6);
  const auto without = made("Class = 0x", {}, {.code = 1, .id = 0}).front().bytes;
  EXPECT_EQ(without[0], 1);
  EXPECT_EQ(without[1], 0);
}

TEST(PacketMaker, ResponseAnswersTheRequestInFrontOfIt) {
  const auto packets = made(requestLine + "\nACCESS_ACCEPT, id 7\n\nACCESS_REJECT, id 7");
  ASSERT_EQ(packets.size(), 3U);
  EXPECT_EQ(packets[1].bytes, expected(2).reqAuthIs(countingBytes(16, 0x30)).make());
  EXPECT_EQ(packets[2].bytes, expected(3).reqAuthIs(countingBytes(16, 0x30)).make());
}

TEST(PacketMaker, ResponseAnswersWhatARequestsAuthenticatorIsComputedTo) {
  const auto packets = made("ACCOUNTING_REQUEST, id 7\nClass = 0x01\n\nACCOUNTING_RESPONSE, id 7");
  const ByteVector authenticator(packets[0].bytes.begin() + 4, packets[0].bytes.begin() + 20);
  EXPECT_EQ(packets[1].bytes, expected(5).reqAuthIs(authenticator).make());
}

TEST(PacketMaker, GivenAuthenticatorBeatsTheRequestInFront) {
  const auto packets = made(requestLine + "\nACCESS_ACCEPT, id 7", testReqAuth);
  EXPECT_EQ(packets[0].bytes, expected(1).make());
  EXPECT_EQ(packets[1].bytes, expected(2).reqAuthIs(testReqAuth).make());
}

TEST(PacketMaker, WarnsOfHiddenValuesThatNobodyCanReveal) {
  for (const std::string_view code : {"ACCOUNTING_REQUEST", "DISCONNECT_REQUEST", "COA_REQUEST"}) {
    const auto packet =
        made(std::string(code) + ", id 7\nClass = 0x01\nTunnel-Password:1 = \"x\"").front();
    EXPECT_EQ(packet.warnings,
              std::vector<std::string>{
                  "x.txt: line 3: Tunnel-Password: warning: no receiver can reveal a value that is "
                  "hidden in a packet of " +
                  std::string(code)});
  }
  EXPECT_TRUE(made(requestLine + "User-Password = \"x\"").front().warnings.empty());
  EXPECT_TRUE(made("2, id 7\nTunnel-Password:1 = \"x\"", testReqAuth).front().warnings.empty());
}

struct RefusedRow {
  const char* name;
  std::string text;
  std::string_view warning;
};

const std::array refusedRows{
    RefusedRow{"an EAP message that nothing signs", "1, id 7\nEAP-Message = 0x01",
               "x.txt: line 1: warning: the packet is built, but decode refuses it: "
               "missingRequiredMsgAuth"},
    RefusedRow{"fragments that are torn apart",
               "1, id 7\nEAP-Message = 0x01\nClass = 0x02\nEAP-Message = 0x03\n"
               "Message-Authenticator",
               "x.txt: line 1: warning: the packet is built, but decode refuses it: "
               "concatAttrNotConsecutive: Concat attribute: 79 not consecutive"},
    RefusedRow{"a raw form of the wrong length", "\n2, id 7\nAttr-5 = 0x01",
               "x.txt: line 2: warning: the packet is built, but decode refuses it: "
               "invalidAttrLength: Attribute: 5, VendorId: 0, VendorAttrId: 0, Data Type: "
               "Integer, Invalid length: 1"},
    RefusedRow{"a vendor's raw form of the wrong length", "1, id 7\nAttr-26.311.7 = 0x01",
               "x.txt: line 1: warning: the packet is built, but decode refuses it: "
               "invalidAttrLength: Attribute: 26, VendorId: 311, VendorAttrId: 7, Data Type: "
               "Integer, Invalid length: 1"},
    RefusedRow{"a Message-Authenticator that nobody checks", "99, id 7\nMessage-Authenticator",
               "x.txt: line 1: warning: the packet is built, but decode refuses it: "
               "unsupportedPktType"},
};

TEST(PacketMaker, WarnsOfWhatIsRefused) {
  for (const RefusedRow& row : refusedRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(made(row.text, testReqAuth).front().warnings,
              std::vector<std::string>{std::string(row.warning)});
  }
}

TEST(PacketMaker, WhatAnswersARefusedRequestIsGood) {
  const auto packets = made("1, id 7\nEAP-Message = 0x01\n\n2, id 7\nClass = 0x01");
  EXPECT_EQ(packets[0].warnings.size(), 1U);
  EXPECT_EQ(packets[1].warnings, std::vector<std::string>{});
}

struct BadRow {
  const char* name;
  std::string text;
  std::string_view fault;
};

/// A packet of 15 attributes of the greatest length and one more.
std::string longPacket(std::size_t lastValueLength) {
  std::string text = requestLine;
  for (int count = 0; count < 15; ++count) {
    text += "Class = 0x" + std::string(506, '0') + '\n';
  }
  return text + "Class = 0x" + std::string(2 * lastValueLength, '0') + '\n';
}

const std::array badRows{
    BadRow{"no code", "\nClass = 0x",
           "x.txt: line 2: the packet has no code: give it a header line, or -c CODE"},
    BadRow{"no request", "ACCESS_ACCEPT, id 7",
           "x.txt: line 1: no Request Authenticator: give that of the request which this packet "
           "answers with -a HEX"},
    BadRow{"a request with another identifier", requestLine + "\nACCESS_ACCEPT, id 1",
           "x.txt: line 3: no Request Authenticator: give that of the request which this packet "
           "answers with -a HEX"},
    BadRow{"an unknown name", requestLine + "Nobody = 1",
           "x.txt: line 2: the dictionary has no attribute of that name"},
    BadRow{"no value", requestLine + "User-Name =", "x.txt: line 2: User-Name: there is no value"},
    BadRow{"a bad value", requestLine + "User-Name = alice",
           "x.txt: line 2: User-Name: text stands in quotes"},
    BadRow{"raw and typed", requestLine + "Class = 0x01\nUser-Name = \"a\"\nAttr-25 = 0x01",
           "x.txt: line 4: Attr-25: the attribute stands both in raw form and under its name"},
    BadRow{"typed and raw", requestLine + "Attr-26.311.16 = 0x01\nMS-MPPE-Send-Key = 0x01",
           "x.txt: line 3: MS-MPPE-Send-Key: the attribute stands both in raw form and under its "
           "name"},
    BadRow{"two Message-Authenticators", requestLine + "Message-Authenticator\nAttr-80",
           "x.txt: line 3: Attr-80: a packet has one Message-Authenticator"},
    BadRow{"a Message-Authenticator with a tag", requestLine + "Message-Authenticator:1",
           "x.txt: line 2: Message-Authenticator: the attribute is not tagged"},
    BadRow{"a Message-Authenticator of no bytes", requestLine + "Message-Authenticator = x",
           "x.txt: line 2: Message-Authenticator: text stands in quotes"},
    BadRow{"a packet of which an attribute is too much",
           longPacket(246) + "NAS-IP-Address = 192.0.2.1\nNAS-Port = 1\nClass = 0x",
           "x.txt: line 18: NAS-IP-Address: maxPktLengthExceeded"},
};

TEST(PacketMaker, NamesLineAttributeAndReason) {
  for (const BadRow& row : badRows) {
    SCOPED_TRACE(row.name);
    try {
      made(row.text);
      ADD_FAILURE() << "was made";
    } catch (const ToolError& fault) {
      EXPECT_EQ(fault.what(), row.fault);
      EXPECT_EQ(fault.exitCode(), ExitCode::badData);
    }
  }
}

TEST(PacketMaker, IdentifierIsNeeded) {
  try {
    made("Class = 0x", {}, {.code = 1, .id = std::nullopt});
    ADD_FAILURE() << "was made";
  } catch (const ToolError& fault) {
    EXPECT_STREQ(fault.what(),
                 "x.txt: line 1: the packet has no identifier: give it a header line, or -i ID");
  }
}

TEST(PacketMaker, GreatestPacketIsMade) {
  EXPECT_EQ(made(longPacket(249)).front().bytes.size(), 4096U);
}

}  // namespace
}  // namespace RadiusPacketTool
