#include "tool/decoding/PacketDecoder.h"

#include <array>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/CatchAssertion.h"
#include "tests/support/GoldenPackets.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"

namespace RadiusPacketTool {
namespace {

using RadiusPktParserBase::ErrorMsg;
using RadiusPktParserTest::StatusServerErrorMsg;
using TestSupport::attributeBytes;
using TestSupport::ByteVector;
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

constexpr U8 accessRequest = 1;
constexpr U8 accessAccept = 2;
constexpr U8 accountingRequest = 4;
constexpr U8 statusServer = 12;
constexpr U8 coaRequest = 43;

PacketReport decoded(const ByteVector& packet, const ByteVector& requestAuthenticator = testReqAuth,
                     const DictPtr& dictionary = shippedDictionary(),
                     const std::string& secretText = testSecret) {
  const Secret secret(secretText);
  return PacketDecoder(dictionary).decode(packet, secret, verdaBytes(requestAuthenticator));
}

std::optional<std::string> optionalText(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional(text);
}

// ---- The golden packets ----

TEST(PacketDecoder, AgreesWithTheGoldenPackets) {
  ASSERT_EQ(goldenPackets().size(), TestSupport::goldenPacketCount);
  for (const GoldenPacket& golden : goldenPackets()) {
    SCOPED_TRACE(golden.name);
    const PacketReport report = decoded(golden.packet, golden.requestAuthenticator,
                                        shippedDictionary(), golden.secretText());
    ASSERT_TRUE(report.error.has_value());
    EXPECT_EQ(stringValue(*report.error), golden.result);
    EXPECT_EQ(report.reason, optionalText(golden.reason));
    EXPECT_EQ(report.attributes.size(), golden.attributes.size());
    EXPECT_EQ(isAccepted(report), golden.isAccepted());
  }
}

TEST(PacketDecoder, GivesEveryValueAsItIsOnTheWire) {
  for (const GoldenPacket& golden : goldenPackets()) {
    SCOPED_TRACE(golden.name);
    if (!golden.isAccepted()) {
      continue;
    }
    const PacketReport report = decoded(golden.packet, golden.requestAuthenticator,
                                        shippedDictionary(), golden.secretText());
    ByteVector rebuilt(golden.packet.begin(), golden.packet.begin() + 20);
    for (const ReportedAttribute& attribute : report.attributes) {
      const auto& key = attribute.key;
      const ByteVector bytes =
          key.attrId == 26
              ? TestSupport::vendorBytes(key.vendorId, key.vendorAttrId, attribute.wire)
              : attributeBytes(key.attrId, attribute.wire);
      rebuilt.insert(rebuilt.end(), bytes.begin(), bytes.end());
    }
    const ByteVector withoutPadding(golden.packet.begin(),
                                    golden.packet.begin() + *report.header.length);
    EXPECT_EQ(rebuilt, withoutPadding);
  }
}

// ---- Header and Request Authenticator ----

struct ShortRow {
  ByteVector packet;
  std::optional<U8> code;
  std::optional<U8> id;
  std::optional<Verda::U16> length;
};

TEST(PacketDecoder, ReportsWhatAShortPacketHolds) {
  const std::array rows{
      ShortRow{{1}, 1, std::nullopt, std::nullopt},
      ShortRow{{1, 7}, 1, 7, std::nullopt},
      ShortRow{{1, 7, 1}, 1, 7, std::nullopt},
      ShortRow{{1, 7, 1, 2}, 1, 7, 258},
      ShortRow{{2, 7, 0, 20, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}, 2, 7, 20},
  };
  for (const ShortRow& row : rows) {
    SCOPED_TRACE(row.packet.size());
    const PacketReport report = decoded(row.packet);
    EXPECT_EQ(report.header.code, row.code);
    EXPECT_EQ(report.header.id, row.id);
    EXPECT_EQ(report.header.length, row.length);
    EXPECT_EQ(report.header.authenticator, std::nullopt);
    EXPECT_EQ(report.error, ErrorMsg::invalidPktLength);
    EXPECT_EQ(report.reason, "Packet has invalid length: " + std::to_string(row.packet.size()));
    EXPECT_EQ(report.authenticatorCheck, Check::absent);
  }
}

TEST(PacketDecoder, SaysThatARequestAuthenticatorIsMissing) {
  for (const U8 code : std::to_array<U8>({0, 2, 3, 5, 6, 11, 13, 41, 42, 44, 45, 255})) {
    SCOPED_TRACE(int{code});
    const PacketReport report =
        decoded(PacketMaker(code).add(1, {'a'}).reqAuthIs(testReqAuth).make(), {});
    EXPECT_EQ(report.error, std::nullopt);
    EXPECT_EQ(report.reason,
              "no Request Authenticator: give that of the request which this packet answers with "
              "-a HEX");
    EXPECT_EQ(report.authenticatorCheck, Check::unchecked);
    EXPECT_TRUE(report.attributes.empty());
    EXPECT_EQ(exitCodeOf(report), ExitCode::checkFailed);
  }
}

TEST(PacketDecoder, FindsHeaderFaultsBeforeAMissingRequestAuthenticator) {
  ByteVector packet = PacketMaker(accessAccept).reqAuthIs(testReqAuth).make();
  packet[3] = 21;
  const PacketReport report = decoded(packet, {});
  EXPECT_EQ(report.error, ErrorMsg::invalidPktLength);
  EXPECT_EQ(report.reason, "Packet's Length: 20 and header length: 21 mismatch");
}

TEST(PacketDecoder, DecodesRequestsWhetherOrNotARequestAuthenticatorIsGiven) {
  for (const U8 code : std::to_array<U8>({1, 4, 12, 40, 43})) {
    SCOPED_TRACE(int{code});
    const ByteVector packet = PacketMaker(code).add(1, {'a'}).reqAuthIs({}).make();
    EXPECT_EQ(decoded(packet, {}).error, ErrorMsg::success);
    EXPECT_EQ(decoded(packet, testReqAuth).error, ErrorMsg::success);
  }
}

TEST(PacketDecoder, ReadsNothingBehindTheLengthOfALongPacket) {
  ByteVector packet = PacketMaker(accessRequest).add(1, {'a'}).make();
  packet.resize(10000, 0xff);
  const PacketReport report = decoded(packet);
  EXPECT_EQ(report.error, ErrorMsg::success);
  EXPECT_EQ(report.attributes.size(), 1U);
}

// ---- Reasons ----

TEST(PacketDecoder, WarningsOfAGoodPacketAreNoReason) {
  const PacketReport report = decoded(PacketMaker(accessRequest).add(240, {1}).make());
  EXPECT_EQ(report.error, ErrorMsg::success);
  EXPECT_EQ(report.reason, std::nullopt);
}

TEST(PacketDecoder, CheckThatTracesNothingHasNoReasonBehindWarnings) {
  const ByteVector wrong =
      PacketMaker(accessRequest).add(240, {1}).addMessageAuthenticator(true).make();
  const ByteVector missing = PacketMaker(accessRequest).add(79, {1}).add(240, {1}).make();
  EXPECT_EQ(decoded(wrong).error, ErrorMsg::invalidMsgAuth);
  EXPECT_EQ(decoded(wrong).reason, std::nullopt);
  EXPECT_EQ(decoded(missing).error, ErrorMsg::missingRequiredMsgAuth);
  EXPECT_EQ(decoded(missing).reason, std::nullopt);
}

TEST(PacketDecoder, MessageAuthenticatorThatTheDictionaryMissesIsNoReason) {
  const DictPtr empty = DictionaryMaker().make();
  const ByteVector wrong = PacketMaker(accessRequest).addMessageAuthenticator(true).make();
  const PacketReport report = decoded(wrong, {}, empty);
  EXPECT_EQ(report.error, ErrorMsg::invalidMsgAuth);
  EXPECT_EQ(report.reason, std::nullopt);
}

TEST(PacketDecoder, FaultBehindAWarningHasItsOwnReason) {
  const ByteVector packet =
      PacketMaker(accessRequest).add(240, {1}).addRaw({26, 8, 0, 0, 0, 9, 1, 3}).make();
  const PacketReport report = decoded(packet);
  EXPECT_EQ(report.error, ErrorMsg::invalidAttrLength);
  EXPECT_EQ(report.reason, "Attribute length: 8 and Vendor attribute length: 9 differ");
  EXPECT_EQ(report.attributes.size(), 1U);
}

TEST(PacketDecoder, WrongAuthenticatorIsItsOwnReason) {
  const PacketReport report = decoded(PacketMaker(accessAccept).reqAuthIs({}).make());
  EXPECT_EQ(report.error, ErrorMsg::invalidPktAuth);
  EXPECT_EQ(report.reason, "Packet's authenticator field is invalid");
}

// ---- What was checked ----

struct CheckRow {
  const char* name;
  ByteVector packet;
  Check authenticator;
  Check messageAuthenticator;
  bool messageAuthenticatorPresent;
};

PacketMaker response() {
  return PacketMaker(accessAccept).reqAuthIs(testReqAuth);
}

TEST(PacketDecoder, NeverCallsVerifiedWhatWasNot) {
  const std::array rows{
      CheckRow{"response", response().make(), Check::verified, Check::absent, false},
      CheckRow{"response with Message-Authenticator", response().addMessageAuthenticator().make(),
               Check::verified, Check::verified, true},
      CheckRow{"response with a wrong Message-Authenticator",
               response().addMessageAuthenticator(true).make(), Check::verified, Check::wrong,
               false},
      CheckRow{"response with two Message-Authenticators",
               response().addMessageAuthenticator().addRaw({80, 2}).make(), Check::verified,
               Check::verified, true},
      CheckRow{"request broken behind its Message-Authenticator",
               PacketMaker(accessRequest).addMessageAuthenticator().addRaw({1}).make(),
               Check::unchecked, Check::verified, true},
      CheckRow{"response of a wrong authenticator", PacketMaker(accessAccept).reqAuthIs({}).make(),
               Check::wrong, Check::absent, false},
      CheckRow{"Access-Request", PacketMaker(accessRequest).make(), Check::unchecked, Check::absent,
               false},
      CheckRow{"Status-Server", PacketMaker(statusServer).addMessageAuthenticator().make(),
               Check::unchecked, Check::verified, true},
      CheckRow{"CoA-Request", PacketMaker(coaRequest).reqAuthIs({}).make(), Check::verified,
               Check::absent, false},
      CheckRow{"accounting", PacketMaker(accountingRequest).reqAuthIs({}).make(), Check::verified,
               Check::absent, false},
      CheckRow{"accounting with a Message-Authenticator",
               PacketMaker(accountingRequest).reqAuthIs({}).addMessageAuthenticator(true).make(),
               Check::verified, Check::unchecked, true},
      CheckRow{"broken attribute behind a good authenticator", response().addRaw({1, 1}).make(),
               Check::verified, Check::absent, false},
  };
  for (const CheckRow& row : rows) {
    SCOPED_TRACE(row.name);
    const PacketReport report = decoded(row.packet);
    EXPECT_EQ(report.authenticatorCheck, row.authenticator);
    EXPECT_EQ(report.messageAuthenticatorCheck, row.messageAuthenticator);
    EXPECT_EQ(report.messageAuthenticatorPresent, row.messageAuthenticatorPresent);
  }
}

// ---- Strangers ----

/// Decodes with and without a Request Authenticator and returns the text of a failed assertion.
std::optional<std::string> assertionOf(const ByteVector& packet) {
  return TestSupport::assertionTextOf([&] {
    decoded(packet, testReqAuth);
    decoded(packet, {});
  });
}

TEST(PacketDecoder, NoCodeReachesAnAssertion) {
  for (int code = 0; code <= 255; ++code) {
    SCOPED_TRACE(code);
    for (const ByteVector& reqAuth : {testReqAuth, ByteVector()}) {
      const ByteVector packet = PacketMaker(static_cast<U8>(code))
                                    .add(2, ByteVector(16, 1))
                                    .addMessageAuthenticator()
                                    .reqAuthIs(reqAuth)
                                    .make();
      EXPECT_EQ(assertionOf(packet), std::nullopt);
    }
  }
}

TEST(PacketDecoder, NoPrefixOrChangedByteOfAGoldenPacketReachesAnAssertion) {
  for (const GoldenPacket& golden : goldenPackets()) {
    SCOPED_TRACE(golden.name);
    if (golden.packet.size() > 200) {
      continue;
    }
    for (std::size_t at = 0; at < golden.packet.size(); ++at) {
      ByteVector changed = golden.packet;
      changed[at] ^= 0xff;
      EXPECT_EQ(assertionOf(changed), std::nullopt);
      EXPECT_EQ(assertionOf({golden.packet.begin(),
                             golden.packet.begin() + static_cast<std::ptrdiff_t>(at)}),
                std::nullopt);
    }
  }
}

// ---- Exit codes ----

TEST(PacketReport, ExitCodeFollowsTheError) {
  for (Verda::U32 number = 0; number <= 20; ++number) {
    PacketReport report;
    report.error = RadiusPktParserBase::ErrorMsgInstance(number);
    SCOPED_TRACE(*report.error);
    const ExitCode expected = *report.error == ErrorMsg::success ? ExitCode::success
                              : *report.error == ErrorMsg::invalidPktAuth ||
                                      *report.error == ErrorMsg::invalidMsgAuth ||
                                      *report.error == ErrorMsg::missingRequiredMsgAuth
                                  ? ExitCode::checkFailed
                                  : ExitCode::refused;
    EXPECT_EQ(exitCodeOf(report), expected);
  }
}

// ---- The Status-Server verdict ----

struct VerdictRow {
  const char* name;
  ByteVector packet;
  ErrorMsg error;
  std::optional<StatusServerErrorMsg> verdict;
};

TEST(PacketDecoder, GivesTheLibrarysVerdictOnStatusServerPacketsAlone) {
  const auto request = [] { return PacketMaker(statusServer); };
  const std::array rows{
      VerdictRow{"no attributes", request().make(), ErrorMsg::success,
                 StatusServerErrorMsg::success},
      VerdictRow{"signed", request().add(32, {'n'}).addMessageAuthenticator().make(),
                 ErrorMsg::success, StatusServerErrorMsg::success},
      VerdictRow{"unsigned", request().add(32, {'n'}).make(), ErrorMsg::success,
                 StatusServerErrorMsg::msgAuthNotPresent},
      VerdictRow{"forbidden", request().add(1, {'a'}).addMessageAuthenticator().make(),
                 ErrorMsg::success, StatusServerErrorMsg::invalidAttributePresent},
      VerdictRow{"refused behind a forbidden one", request().add(1, {'a'}).addRaw({1}).make(),
                 ErrorMsg::invalidAttrLength, StatusServerErrorMsg::invalidAttributePresent},
      VerdictRow{"too short for a header",
                 {statusServer, 7, 0, 20},
                 ErrorMsg::invalidPktLength,
                 std::nullopt},
      VerdictRow{"another code", PacketMaker(accessRequest).add(1, {'a'}).make(), ErrorMsg::success,
                 std::nullopt},
      VerdictRow{"a response", PacketMaker(accessAccept).add(1, {'a'}).make(), ErrorMsg::success,
                 std::nullopt},
  };
  for (const VerdictRow& row : rows) {
    SCOPED_TRACE(row.name);
    const PacketReport report = decoded(row.packet);
    EXPECT_EQ(report.error, row.error);
    EXPECT_EQ(report.statusServer, row.verdict);
  }
}

TEST(PacketDecoder, JudgesEveryPacketAnew) {
  const Secret secret(testSecret);
  const PacketDecoder decoder(shippedDictionary());
  EXPECT_EQ(decoder.decode(PacketMaker(statusServer).add(1, {'a'}).make(), secret, {}).statusServer,
            StatusServerErrorMsg::invalidAttributePresent);
  EXPECT_EQ(decoder.decode(PacketMaker(statusServer).make(), secret, {}).statusServer,
            StatusServerErrorMsg::success);
}

TEST(PacketDecoder, AVerdictIsNoRefusal) {
  const PacketReport report = decoded(PacketMaker(statusServer).add(1, {'a'}).make());
  EXPECT_EQ(report.statusServer, StatusServerErrorMsg::invalidAttributePresent);
  EXPECT_TRUE(isAccepted(report));
  EXPECT_EQ(exitCodeOf(report), ExitCode::success);
}

}  // namespace
}  // namespace RadiusPacketTool
