#include "RadiusPacketParser/RadiusPacketParser.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZoCrypto/FaultSeam.h"

#include "tests/support/GoldenPackets.h"
#include "tests/support/Hex.h"
#include "tests/support/LegacyPacket.h"
#include "tests/support/LegacyTexts.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/SharedSecrets.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Vectors.h"

namespace {

using namespace RadiusPacketParser;
using TestSupport::attributeBytes;
using TestSupport::bytesOf;
using TestSupport::ByteVector;
using TestSupport::checkedPacket;
using TestSupport::countingBytes;
using TestSupport::DictPtr;
using TestSupport::fromHex;
using TestSupport::joined;
using TestSupport::legacyHelperRecord;
using TestSupport::LegacyPtr;
using TestSupport::Outcome;
using TestSupport::outcomeOf;
using TestSupport::PacketMaker;
using TestSupport::reqAuthFor;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::uncheckedPacket;
using TestSupport::vendorBytes;
using TestSupport::verdaBytes;
using TestSupport::withLength;
using Verda::U32;
using Verda::U8;
using ZoCrypto::FaultSeam;
using ZoCrypto::Primitive;
namespace LegacyTexts = TestSupport::LegacyTexts;
using Records = std::vector<TestSupport::CapturedRecord>;

constexpr U8 plainMethod = 1;
constexpr U8 saltedMethod = 2;

constexpr U8 userPassword = 2;
constexpr U8 classType = 25;
constexpr U8 vendorSpecific = 26;
constexpr U8 tunnelPassword = 69;
constexpr U8 saltedOctets = 200;
constexpr U8 taggedPassword = 201;
constexpr U8 thirdMethod = 202;
constexpr U8 ninthMethod = 203;
constexpr U8 hiddenNumber = 204;
constexpr U8 unknownType = 250;

constexpr U32 vendor = 311;
constexpr U8 vendorPassword = 1;
constexpr U8 vendorSalted = 2;
constexpr U8 vendorTagged = 3;
constexpr U8 vendorThirdMethod = 4;
constexpr U8 vendorPlain = 5;

constexpr std::size_t headerLength = 20;

const std::set<U8> requests{1, 4, 12, 40, 43};

DictPtr makeDictionary() {
  using Type = RadiusAttributeType;
  TestSupport::DictionaryMaker maker;
  maker.add(userPassword, Type::string, {.encrypt = 1})
      .add(classType, Type::octets)
      // What is said of the container is not said of what it holds.
      .add(vendorSpecific, Type::octets, {.encrypt = 1})
      .add(tunnelPassword, Type::string, {.tag = true, .encrypt = 2})
      .add(saltedOctets, Type::octets, {.encrypt = 2})
      .add(taggedPassword, Type::string, {.tag = true, .encrypt = 1})
      .add(thirdMethod, Type::string, {.encrypt = 3})
      .add(ninthMethod, Type::string, {.tag = true, .encrypt = 9})
      .add(hiddenNumber, Type::integer, {.tag = true, .encrypt = 1});
  maker.addVendor(vendor, vendorPassword, Type::octets, {.encrypt = 1})
      .addVendor(vendor, vendorSalted, Type::octets, {.encrypt = 2})
      .addVendor(vendor, vendorTagged, Type::string, {.tag = true, .encrypt = 2})
      .addVendor(vendor, vendorThirdMethod, Type::string, {.encrypt = 3})
      .addVendor(vendor, vendorPlain, Type::string);
  return maker.make();
}

const DictPtr dictionary = makeDictionary();

/// How many bytes of a value stay in the clear.
std::size_t clearBytes(U8 method, bool isTagged) {
  return (isTagged ? 1U : 0U) + (method == saltedMethod ? 2U : 0U);
}

/// What hiding or revealing makes of a value, by the formula.
ByteVector byFormula(const ByteVector& value, U8 method, bool isTagged, bool encrypt,
                     const ByteVector& authenticator = testReqAuth,
                     const std::string& secret = testSecret) {
  const std::size_t clear = clearBytes(method, isTagged);
  if (value.size() < clear) {
    return value;
  }
  const std::span<const U8> front = std::span(value).first(clear);
  const std::span<const U8> salt = front.subspan(isTagged ? 1 : 0);
  const std::span<const U8> data = std::span(value).subspan(clear);
  const ByteVector key = bytesOf(secret);
  return joined({front, encrypt ? TestSupport::hidden(data, key, authenticator, salt)
                                : TestSupport::revealed(data, key, authenticator, salt)});
}

ByteVector hiddenOf(const ByteVector& value, U8 method, bool isTagged,
                    const ByteVector& authenticator = testReqAuth) {
  return byFormula(value, method, isTagged, true, authenticator);
}

// ---- One value ----

/// Hides or reveals a value that lies, with its length byte, in a block of exactly its size.
ByteVector transform(const ByteVector& value, U8 method, bool isTagged, bool encrypt,
                     const ByteVector& authenticator = testReqAuth,
                     const std::string& secret = testSecret) {
  const auto length = static_cast<U8>(value.size() + 2);
  ByteVector block = joined({ByteVector{length}, value});
  EXPECT_EQ(outcomeOf([&] {
              encryptHelper(secret, block.data(), verdaBytes(authenticator), isTagged, encrypt,
                            method);
            }),
            Outcome());
  EXPECT_EQ(block.at(0), length);
  return {block.begin() + 1, block.end()};
}

TEST(LegacyEncryptHelper, HidesAndRevealsEveryLengthAsTheFormulaSays) {
  for (const U8 method : {plainMethod, saltedMethod}) {
    for (const bool isTagged : {false, true}) {
      for (std::size_t length = 0; length <= 253; ++length) {
        SCOPED_TRACE(testing::Message() << int{method} << ' ' << isTagged << ' ' << length);
        const ByteVector value = countingBytes(length, 0x41);
        for (const bool encrypt : {false, true}) {
          EXPECT_EQ(transform(value, method, isTagged, encrypt),
                    byFormula(value, method, isTagged, encrypt));
        }
      }
    }
  }
}

TEST(LegacyEncryptHelper, RevealsWhatItHid) {
  for (const U8 method : {plainMethod, saltedMethod}) {
    for (const bool isTagged : {false, true}) {
      for (const std::size_t length : {1U, 3U, 4U, 16U, 20U, 35U, 128U, 253U}) {
        const ByteVector value = countingBytes(length, 0x41);
        const ByteVector hidden = transform(value, method, isTagged, true);
        EXPECT_EQ(hidden == value, length <= clearBytes(method, isTagged));
        EXPECT_EQ(transform(hidden, method, isTagged, false), value);
      }
    }
  }
}

TEST(LegacyEncryptHelper, HidesTwentyBytesAsOneBlockAndFourBytes) {
  const ByteVector value = countingBytes(20, 0x61);
  const ByteVector hidden = transform(value, plainMethod, false, true);
  ASSERT_EQ(hidden.size(), 20U);
  const ByteVector first(hidden.begin(), hidden.begin() + 16);
  const ByteVector last(hidden.begin() + 16, hidden.end());
  const ByteVector front(value.begin(), value.begin() + 16);
  const ByteVector back(value.begin() + 16, value.end());
  EXPECT_EQ(first, TestSupport::hidden(front, bytesOf(testSecret), testReqAuth));
  // The second block's keystream is that of a first one whose authenticator is the first cipher.
  EXPECT_EQ(last, TestSupport::hidden(back, bytesOf(testSecret), first));
}

TEST(LegacyEncryptHelper, AnyOtherMethodIsTheOneWithoutSalt) {
  for (const U8 method : {U8{0}, U8{3}, U8{9}, U8{255}}) {
    for (const bool isTagged : {false, true}) {
      const ByteVector value = countingBytes(21, 0x41);
      EXPECT_EQ(transform(value, method, isTagged, true), hiddenOf(value, plainMethod, isTagged));
    }
  }
}

TEST(LegacyEncryptHelper, TakesTheSaltBehindTheTagAndLeavesBothInTheClear) {
  const ByteVector value = joined({fromHex("01 8017"), countingBytes(16, 0x41)});
  const ByteVector hidden = transform(value, saltedMethod, true, true);
  EXPECT_EQ(ByteVector(hidden.begin(), hidden.begin() + 3), fromHex("018017"));
  const ByteVector data(value.begin() + 3, value.end());
  const ByteVector expected =
      TestSupport::hidden(data, bytesOf(testSecret), testReqAuth, fromHex("8017"));
  EXPECT_EQ(ByteVector(hidden.begin() + 3, hidden.end()), expected);
}

TEST(LegacyEncryptHelper, AValueThatIsNotLongerThanTagAndSaltIsLeftAlone) {
  for (const U8 method : {plainMethod, saltedMethod}) {
    for (const bool isTagged : {false, true}) {
      for (std::size_t length = 0; length <= clearBytes(method, isTagged); ++length) {
        const ByteVector value = countingBytes(length, 0x41);
        EXPECT_EQ(transform(value, method, isTagged, true), value);
        EXPECT_EQ(transform(value, method, isTagged, false), value);
      }
    }
  }
}

TEST(LegacyEncryptHelper, ALengthByteOfZeroOrOneHasNoValue) {
  for (const U8 length : {U8{0}, U8{1}}) {
    for (const U8 method : {plainMethod, saltedMethod}) {
      for (const bool isTagged : {false, true}) {
        for (const bool encrypt : {false, true}) {
          ByteVector block{length};
          EXPECT_EQ(outcomeOf([&] {
                      encryptHelper(testSecret, block.data(), verdaBytes(testReqAuth), isTagged,
                                    encrypt, method);
                    }),
                    Outcome());
          EXPECT_EQ(block, ByteVector{length});
        }
      }
    }
  }
}

TEST(LegacyEncryptHelper, AnAuthenticatorThatIsTooShortFailsItsAssertion) {
  for (const std::size_t length : {0U, 1U, 15U}) {
    ByteVector block = joined({ByteVector{18}, countingBytes(16)});
    EXPECT_EQ(outcomeOf([&] {
                encryptHelper(testSecret, block.data(), verdaBytes(countingBytes(length)), false,
                              true, plainMethod);
              }),
              (Outcome{{}, LegacyTexts::authenticatorTooShort}));
    EXPECT_EQ(block, joined({ByteVector{18}, countingBytes(16)}));
  }
}

TEST(LegacyEncryptHelper, OfALongerAuthenticatorTheFirst16BytesCount) {
  const ByteVector value = countingBytes(20, 0x41);
  EXPECT_EQ(transform(value, plainMethod, false, true, joined({testReqAuth, ByteVector{1, 2}})),
            hiddenOf(value, plainMethod, false));
}

TEST(LegacyEncryptHelper, TheSecretCountsUpToItsFirstZeroByte) {
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    for (const U8 method : {plainMethod, saltedMethod}) {
      const ByteVector value = countingBytes(40, 0x41);
      const ByteVector hidden = transform(value, method, true, true, testReqAuth, secret.given);
      EXPECT_EQ(hidden, byFormula(value, method, true, true, testReqAuth, secret.counts));
      EXPECT_EQ(transform(hidden, method, true, false, testReqAuth, secret.given), value);
    }
  }
}

TEST(LegacyEncryptHelper, RevealsAndHidesThePublishedValues) {
  std::size_t checked = 0;
  for (const auto& known : TestSupport::hiddenValues()) {
    if (known.kind == "ascend-secret" || known.authenticator.size() != 16) {
      continue;
    }
    SCOPED_TRACE(known.source);
    const bool isSalted = known.kind == "salt";
    const U8 method = isSalted ? saltedMethod : plainMethod;
    const ByteVector value = joined({known.salt, known.cipher});
    const ByteVector clear =
        transform(value, method, false, false, known.authenticator, known.secret);
    // A salted value begins with its text's length.
    const auto textAt = static_cast<std::ptrdiff_t>(known.salt.size() + (isSalted ? 1 : 0));
    const auto textEnd = textAt + static_cast<std::ptrdiff_t>(known.plain.size());
    EXPECT_EQ(ByteVector(clear.begin() + textAt, clear.begin() + textEnd), known.plain);
    EXPECT_EQ(transform(clear, method, false, true, known.authenticator, known.secret), value);
    ++checked;
  }
  EXPECT_EQ(checked, 10U);
}

TEST(LegacyEncryptHelper, ADigestThatFailsFailsItsAssertion) {
  for (const U32 callsBefore : {0U, 1U}) {
    ByteVector block = joined({ByteVector{34}, countingBytes(32)});
    FaultSeam::failIs(Primitive::md5, callsBefore);
    EXPECT_EQ(outcomeOf([&] {
                encryptHelper(testSecret, block.data(), verdaBytes(testReqAuth), false, true,
                              plainMethod);
              }),
              (Outcome{{}, LegacyTexts::notOfDigestLength}));
    FaultSeam::failDel();
  }
}

// ---- A packet ----

struct Transformed {
  ByteVector packet;
  Outcome outcome;
};

Transformed transformAloud(RadiusPacketParserBase& parser, bool encrypt,
                           const ByteVector& reqAuth) {
  const Outcome outcome = outcomeOf([&] {
    encrypt ? parser.encryptPacket(testSecret, verdaBytes(reqAuth))
            : parser.decryptPacket(testSecret, verdaBytes(reqAuth));
  });
  return {bytesOf(parser.pkt()), outcome};
}

/// Hides or reveals with nothing to say; the packet need not be a good one.
ByteVector transformed(const ByteVector& packet, bool encrypt,
                       const ByteVector& reqAuth = testReqAuth) {
  const Transformed result = transformAloud(*uncheckedPacket(packet, dictionary), encrypt, reqAuth);
  EXPECT_EQ(result.outcome, Outcome());
  return result.packet;
}

ByteVector response(const ByteVector& attributes) {
  return PacketMaker(2).addRaw(attributes).make();
}

/// An attribute, what is hidden of it, and how.
struct HiddenCase {
  const char* name;
  ByteVector (*attribute)(const ByteVector& value);
  U8 method;
  bool isTagged;
};

template <U8 type>
ByteVector standard(const ByteVector& value) {
  return attributeBytes(type, value);
}

template <U8 type>
ByteVector ofVendor(const ByteVector& value) {
  return vendorBytes(vendor, type, value);
}

const HiddenCase hiddenKinds[] = {
    {"User-Password", standard<userPassword>, plainMethod, false},
    {"Tunnel-Password", standard<tunnelPassword>, saltedMethod, true},
    {"salted octets", standard<saltedOctets>, saltedMethod, false},
    {"tagged password", standard<taggedPassword>, plainMethod, true},
    {"a number", standard<hiddenNumber>, plainMethod, true},
    {"a vendor's password", ofVendor<vendorPassword>, plainMethod, false},
    {"a vendor's salted octets", ofVendor<vendorSalted>, saltedMethod, false},
    {"a vendor's tagged password", ofVendor<vendorTagged>, saltedMethod, true},
};

TEST(LegacyHiding, HidesAndRevealsEveryKindAsTheFormulaSays) {
  for (const HiddenCase& kind : hiddenKinds) {
    for (const std::size_t length : {0U, 1U, 2U, 3U, 4U, 16U, 18U, 19U, 20U, 64U, 247U}) {
      SCOPED_TRACE(testing::Message() << kind.name << ' ' << length);
      const ByteVector value = countingBytes(length, 0x41);
      const ByteVector packet = response(kind.attribute(value));
      for (const bool encrypt : {false, true}) {
        const ByteVector other = byFormula(value, kind.method, kind.isTagged, encrypt);
        EXPECT_EQ(transformed(packet, encrypt),
                  TestSupport::withAttributes(packet, kind.attribute(other)));
        EXPECT_EQ(transformed(transformed(packet, encrypt), !encrypt), packet);
      }
    }
  }
}

TEST(LegacyHiding, HidesAUserPasswordOf18To130Bytes) {
  for (std::size_t length = 16; length <= 128; ++length) {
    const ByteVector value = countingBytes(length, 0x41);
    const ByteVector packet = response(attributeBytes(userPassword, value));
    EXPECT_EQ(transformed(packet, true),
              TestSupport::withAttributes(
                  packet, attributeBytes(userPassword, hiddenOf(value, plainMethod, false))));
  }
}

TEST(LegacyHiding, LeavesEveryOtherKindAlone) {
  const ByteVector value = countingBytes(20, 0x41);
  const ByteVector packet = response(
      joined({attributeBytes(classType, value), attributeBytes(thirdMethod, value),
              attributeBytes(ninthMethod, value), vendorBytes(vendor, vendorThirdMethod, value),
              vendorBytes(vendor, vendorPlain, value)}));
  EXPECT_EQ(transformed(packet, true), packet);
  EXPECT_EQ(transformed(packet, false), packet);
}

TEST(LegacyHiding, HidesEveryAttributeOfAPacketUnderTheSameAuthenticator) {
  ByteVector plain;
  ByteVector hidden;
  for (const HiddenCase& kind : hiddenKinds) {
    const ByteVector value = countingBytes(30, 0x41);
    const ByteVector other = attributeBytes(classType, bytesOf("in between"));
    plain = joined({plain, kind.attribute(value), other, kind.attribute(value)});
    const ByteVector under = kind.attribute(hiddenOf(value, kind.method, kind.isTagged));
    hidden = joined({hidden, under, other, under});
  }
  const ByteVector packet = response(plain);
  EXPECT_EQ(transformed(packet, true), TestSupport::withAttributes(packet, hidden));
  EXPECT_EQ(transformed(TestSupport::withAttributes(packet, hidden), false), packet);
}

TEST(LegacyHiding, OfAVendorAttributeTheFirstSubAttributeIsHidden) {
  const ByteVector value = countingBytes(16, 0x41);
  const auto two = [&](const ByteVector& first, U8 firstType, U8 secondType) {
    return joined({fromHex("1a 2a 00000137"), attributeBytes(firstType, first),
                   attributeBytes(secondType, value)});
  };
  const ByteVector packet = response(two(value, vendorPassword, vendorPassword));
  EXPECT_EQ(transformed(packet, true),
            TestSupport::withAttributes(
                packet, two(hiddenOf(value, plainMethod, false), vendorPassword, vendorPassword)));
  const ByteVector plainFirst = response(two(value, vendorPlain, vendorPassword));
  EXPECT_EQ(transformed(plainFirst, true), plainFirst);
}

TEST(LegacyHiding, OfARequestTakesTheAuthenticatorFromTheEntity) {
  const ByteVector value = countingBytes(16, 0x41);
  for (const U8 code : requests) {
    SCOPED_TRACE(int{code});
    const ByteVector packet = PacketMaker(code).add(userPassword, value).make();
    const ByteVector own(packet.begin() + 4, packet.begin() + headerLength);
    EXPECT_EQ(transformed(packet, true, {}),
              TestSupport::withAttributes(
                  packet, attributeBytes(userPassword, hiddenOf(value, plainMethod, false, own))));

    const LegacyPtr parser = uncheckedPacket(packet, dictionary);
    parser->header()->authenticatorIs(Verda::String(std::span(testReqAuth)));
    EXPECT_EQ(transformAloud(*parser, true, {}).packet,
              TestSupport::withAttributes(
                  packet, attributeBytes(userPassword, hiddenOf(value, plainMethod, false))));
  }
}

TEST(LegacyHiding, OfEveryOtherCodeTakesTheRequestAuthenticator) {
  const ByteVector value = countingBytes(16, 0x41);
  for (const U8 code : countingBytes(256)) {
    if (requests.contains(code)) {
      continue;
    }
    const ByteVector packet = PacketMaker(code).add(userPassword, value).make();
    EXPECT_EQ(transformed(packet, true),
              TestSupport::withAttributes(
                  packet, attributeBytes(userPassword, hiddenOf(value, plainMethod, false))))
        << int{code};
  }
}

TEST(LegacyHiding, ARequestAuthenticatorOfTheWrongKindFailsItsAssertion) {
  for (const U8 code : countingBytes(256)) {
    const bool isRequest = requests.contains(code);
    // The bare header is told like any other packet.
    for (const PacketMaker& maker :
         {PacketMaker(code), PacketMaker(code).add(userPassword, countingBytes(16))}) {
      for (const bool encrypt : {false, true}) {
        const ByteVector packet = maker.make();
        const LegacyPtr parser = uncheckedPacket(packet, dictionary);
        const Transformed result =
            transformAloud(*parser, encrypt, isRequest ? testReqAuth : ByteVector());
        EXPECT_EQ(result.outcome, (Outcome{{},
                                           isRequest ? LegacyTexts::reqAuthOfRequest
                                                     : LegacyTexts::noReqAuthOfResponse}))
            << int{code};
        EXPECT_EQ(result.packet, packet);
      }
    }
  }
}

TEST(LegacyHiding, AnAuthenticatorThatIsTooShortFailsItsAssertion) {
  const ByteVector value = countingBytes(16, 0x41);
  for (const std::size_t length : {1U, 15U}) {
    const LegacyPtr parser =
        uncheckedPacket(response(attributeBytes(userPassword, value)), dictionary);
    EXPECT_EQ(transformAloud(*parser, true, countingBytes(length)).outcome,
              (Outcome{{}, LegacyTexts::authenticatorTooShort}));
  }
  const LegacyPtr parser =
      uncheckedPacket(PacketMaker(1).add(userPassword, value).make(), dictionary);
  parser->header()->authenticatorIs("15 bytes of it.");
  EXPECT_EQ(transformAloud(*parser, true, {}).outcome,
            (Outcome{{}, LegacyTexts::authenticatorTooShort}));
}

TEST(LegacyHiding, WhatTheDictionaryLacksIsTracedAndTheRestHiddenAllTheSame) {
  const ByteVector value = countingBytes(16, 0x41);
  const ByteVector others = joined({attributeBytes(unknownType, value), vendorBytes(77, 1, value),
                                    vendorBytes(vendor, 200, value), attributeBytes(0, {})});
  const ByteVector packet = response(joined({others, attributeBytes(userPassword, value)}));
  const ByteVector hidden = TestSupport::withAttributes(
      packet, joined({others, attributeBytes(userPassword, hiddenOf(value, plainMethod, false))}));
  const Records said{
      legacyHelperRecord("cryptoHelper", "Missing attribute: 250 from radius dictionary"),
      legacyHelperRecord("cryptoHelper", "Dictionary for vendor ID: 77 not present"),
      legacyHelperRecord("cryptoHelper",
                         "Missing attribute: 200 from dictionary for vendor ID: 311"),
      legacyHelperRecord("cryptoHelper", "Missing attribute: 0 from radius dictionary"),
  };
  const Transformed there = transformAloud(*checkedPacket(packet, dictionary), true, testReqAuth);
  EXPECT_EQ(there.outcome, (Outcome{said, std::nullopt}));
  EXPECT_EQ(there.packet, hidden);
  const Transformed back = transformAloud(*checkedPacket(hidden, dictionary), false, testReqAuth);
  EXPECT_EQ(back.outcome, (Outcome{said, std::nullopt}));
  EXPECT_EQ(back.packet, packet);

  const LegacyPtr silent = checkedPacket(packet, dictionary);
  EXPECT_EQ(outcomeOf([&] { silent->encryptPacket(testSecret, verdaBytes(testReqAuth)); },
                      Verda::traceOff),
            Outcome());
  EXPECT_EQ(bytesOf(silent->pkt()), hidden);
}

TEST(LegacyHiding, OfABareHeaderDoesNothing) {
  const ByteVector packet = PacketMaker(2).make();
  EXPECT_EQ(transformed(packet, true), packet);
  EXPECT_EQ(transformed(withLength(packet, 0), true), withLength(packet, 0));
}

TEST(LegacyHiding, LeavesOutWhatStandsBehindTheLength) {
  const ByteVector value = countingBytes(16, 0x41);
  const ByteVector behind = attributeBytes(userPassword, value);
  const ByteVector packet = response({});
  EXPECT_EQ(transformed(joined({packet, behind}), true), joined({packet, behind}));
  const ByteVector one = response(attributeBytes(userPassword, value));
  EXPECT_EQ(transformed(joined({one, behind}), true), joined({transformed(one, true), behind}));
}

TEST(LegacyHiding, TakesLengthAndCodeFromTheEntity) {
  const ByteVector value = countingBytes(16, 0x41);
  const ByteVector packet = response(attributeBytes(userPassword, value));
  const LegacyPtr parser = uncheckedPacket(packet, dictionary);
  parser->header()->lengthIs(headerLength);
  EXPECT_EQ(transformAloud(*parser, true, testReqAuth).packet, packet);
  parser->header()->codeIs(1);
  EXPECT_EQ(transformAloud(*parser, true, testReqAuth).outcome,
            (Outcome{{}, LegacyTexts::reqAuthOfRequest}));
}

TEST(LegacyHiding, TheSecretCountsUpToItsFirstZeroByte) {
  const ByteVector value = countingBytes(20, 0x41);
  const ByteVector packet = response(attributeBytes(userPassword, value));
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    const LegacyPtr parser = uncheckedPacket(packet, dictionary);
    parser->encryptPacket(secret.given, verdaBytes(testReqAuth));
    EXPECT_EQ(bytesOf(parser->pkt()),
              TestSupport::withAttributes(
                  packet, attributeBytes(userPassword, byFormula(value, plainMethod, false, true,
                                                                 testReqAuth, secret.counts))));
    parser->decryptPacket(secret.given, verdaBytes(testReqAuth));
    EXPECT_EQ(bytesOf(parser->pkt()), packet);
  }
}

TEST(LegacyCryptoHelper, IsWhatTheObjectsOperationsAre) {
  const ByteVector value = countingBytes(20, 0x41);
  for (const U8 code : {U8{1}, U8{2}}) {
    const ByteVector packet =
        PacketMaker(code).add(userPassword, value).addVendor(vendor, vendorTagged, value).make();
    const LegacyPtr parser = uncheckedPacket(packet, dictionary);
    const auto pkt = TestSupport::pktOf(packet);
    const Verda::Bytes reqAuth = verdaBytes(reqAuthFor(code));
    cryptoHelper(pkt, parser->header(), testSecret, reqAuth, dictionary, true);
    EXPECT_EQ(bytesOf(pkt), transformed(packet, true, reqAuthFor(code)));
    EXPECT_NE(bytesOf(pkt), packet);
    cryptoHelper(pkt, parser->header(), testSecret, reqAuth, dictionary, false);
    EXPECT_EQ(bytesOf(pkt), packet);
  }
}

TEST(LegacyHiding, RevealsAndHidesTheGoldenPackets) {
  std::size_t changed = 0;
  for (const auto& golden : TestSupport::goldenPackets()) {
    if (!golden.isAccepted()) {
      continue;
    }
    SCOPED_TRACE(golden.name);
    const LegacyPtr parser = uncheckedPacket(golden.packet, TestSupport::shippedDictionary());
    const bool isRequest = reqAuthFor(parser->header()->code()).empty();
    const Verda::Bytes reqAuth = verdaBytes(isRequest ? ByteVector() : golden.requestAuthenticator);
    const TestSupport::CapturingSink silent;
    parser->decryptPacket(golden.secretText(), reqAuth);
    changed += bytesOf(parser->pkt()) != golden.packet ? 1 : 0;
    parser->encryptPacket(golden.secretText(), reqAuth);
    EXPECT_EQ(bytesOf(parser->pkt()), golden.packet);
  }
  EXPECT_GT(changed, 0U);
}

TEST(LegacyHiding, RevealsTheUserPasswordOfThePublishedPackets) {
  std::size_t revealed = 0;
  for (const auto& published : TestSupport::publishedPackets()) {
    if (!published.password.has_value() || !published.wellFormed) {
      continue;
    }
    SCOPED_TRACE(published.name);
    const LegacyPtr parser = checkedPacket(published.packet, TestSupport::shippedDictionary());
    const TestSupport::CapturingSink silent;
    parser->decryptPacket(published.secret, {});
    parser->getValueOfAttributesListIs(Attribute(userPassword, 0, 0));
    parser->getValuesOfAttributesFromAttributeList();
    const auto values = parser->attrInfo(Attribute(userPassword, 0, 0));
    ASSERT_EQ(values->value().size(), 1U);
    EXPECT_EQ(values->value(0)->viewToNul(), *published.password);
    ++revealed;
  }
  EXPECT_GT(revealed, 0U);
}

// ---- What a stranger may send ----

const auto endAtZero = legacyHelperRecord("cryptoHelper", "Attribute length zero, exiting");

TEST(HostileHiding, TwentyBytesWhoseLengthSays4096EndAtZero) {
  for (const std::size_t length : {4096U, 65535U}) {
    for (const bool encrypt : {false, true}) {
      const ByteVector packet = withLength(PacketMaker(2).make(), length);
      const LegacyPtr parser = uncheckedPacket(packet, dictionary);
      const Transformed result = transformAloud(*parser, encrypt, testReqAuth);
      // The zeros behind are an attribute of type 0.
      EXPECT_EQ(result.outcome,
                (Outcome{{legacyHelperRecord("cryptoHelper",
                                             "Missing attribute: 0 from radius dictionary"),
                          endAtZero},
                         std::nullopt}));
      EXPECT_EQ(result.packet, packet);
    }
  }
}

TEST(HostileHiding, AZeroLengthByteEndsTheWalk) {
  const ByteVector value = countingBytes(16, 0x41);
  const ByteVector password = attributeBytes(userPassword, value);
  const ByteVector hidden = attributeBytes(userPassword, hiddenOf(value, plainMethod, false));
  for (const U8 type : {classType, userPassword, tunnelPassword}) {
    const ByteVector packet = response(joined({password, ByteVector{type, 0}, password}));
    const LegacyPtr parser = uncheckedPacket(packet, dictionary);
    const Transformed result = transformAloud(*parser, true, testReqAuth);
    EXPECT_EQ(result.outcome, (Outcome{{endAtZero}, std::nullopt}));
    EXPECT_EQ(result.packet,
              TestSupport::withAttributes(packet, joined({hidden, ByteVector{type, 0}, password})));
  }
}

TEST(HostileHiding, AnAttributeOfLengthOneIsOneByteLong) {
  // Its length byte is the next attribute's type; nothing of it can be hidden.
  const ByteVector value = countingBytes(16, 0x41);
  const DictPtr dict = TestSupport::DictionaryMaker()
                           .add(1, RadiusAttributeType::string, {.encrypt = 1})
                           .add(userPassword, RadiusAttributeType::string, {.encrypt = 1})
                           .make();
  const ByteVector packet = response(joined({ByteVector{userPassword}, attributeBytes(1, value)}));
  const LegacyPtr parser = uncheckedPacket(packet, dict);
  const Transformed result = transformAloud(*parser, true, testReqAuth);
  EXPECT_EQ(result.outcome, Outcome());
  EXPECT_EQ(result.packet,
            TestSupport::withAttributes(
                packet, joined({ByteVector{userPassword},
                                attributeBytes(1, hiddenOf(value, plainMethod, false))})));
}

TEST(HostileHiding, ALastAttributeThatClaims255BytesIsHiddenAsFarAsThePacketGoes) {
  const struct {
    const char* name;
    ByteVector head;
    U8 method;
    bool isTagged;
    std::size_t valueLength;
  } cases[] = {
      {"password", {userPassword, 255}, plainMethod, false, 253},
      {"tunnel password", {tunnelPassword, 255}, saltedMethod, true, 253},
      {"sub-attribute", fromHex("1a 0b 00000137 01 ff"), plainMethod, false, 253},
      {"salted sub-attribute", fromHex("1a 0b 00000137 02 ff"), saltedMethod, false, 253},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.name);
    for (const std::size_t there : {0U, 1U, 3U, 40U}) {
      ByteVector head = one.head;
      if (head.at(0) == vendorSpecific) {
        head.at(1) = static_cast<U8>(head.size() + there);
      }
      ByteVector value = countingBytes(there, 0x41);
      const ByteVector packet = response(joined({head, value}));
      value.resize(one.valueLength);
      for (const bool encrypt : {false, true}) {
        ByteVector expected = byFormula(value, one.method, one.isTagged, encrypt);
        expected.resize(there);
        EXPECT_EQ(transformed(packet, encrypt),
                  TestSupport::withAttributes(packet, joined({head, expected})));
      }
    }
  }
}

TEST(HostileHiding, ASubLengthThatReachesIntoTheNextAttributeHidesThatToo) {
  const ByteVector front = fromHex("1a 0c 00000137 01 0a 41414141");
  const ByteVector next = attributeBytes(classType, {0x42, 0x42});
  const ByteVector packet = response(joined({front, next}));
  const ByteVector reached = joined({fromHex("41414141"), next});
  const ByteVector hidden = hiddenOf(reached, plainMethod, false);
  const LegacyPtr parser = uncheckedPacket(packet, dictionary);
  const ByteVector result = transformAloud(*parser, true, testReqAuth).packet;
  EXPECT_EQ(ByteVector(result.begin(), result.begin() + headerLength + 12),
            joined({std::span(packet).first(headerLength), fromHex("1a 0c 00000137 01 0a"),
                    std::span(hidden).first(4)}));
}

TEST(HostileHiding, SubLengthsOfZeroToFourHideWhatIsBehindTagAndSalt) {
  const ByteVector rest = countingBytes(8, 0x41);
  for (const auto& [type, method, isTagged] : {std::tuple(vendorPassword, plainMethod, false),
                                               {vendorSalted, saltedMethod, false},
                                               {vendorTagged, saltedMethod, true}}) {
    for (U8 subLength = 0; subLength <= 6; ++subLength) {
      SCOPED_TRACE(testing::Message() << int{type} << " sub-length " << int{subLength});
      const ByteVector head{vendorSpecific, 16, 0, 0, 1, 0x37, type, subLength};
      const ByteVector packet = response(joined({head, rest}));
      const auto valueLength = static_cast<std::size_t>(std::max(0, subLength - 2));
      const std::span<const U8> value = std::span(rest).first(valueLength);
      for (const bool encrypt : {false, true}) {
        const ByteVector expected =
            byFormula(ByteVector(value.begin(), value.end()), method, isTagged, encrypt);
        EXPECT_EQ(transformed(packet, encrypt),
                  TestSupport::withAttributes(
                      packet, joined({head, expected, std::span(rest).subspan(valueLength)})));
      }
    }
  }
}

TEST(HostileHiding, ThreeHundredAttributesAreHiddenAll) {
  PacketMaker plain(2);
  ByteVector hidden;
  for (int count = 0; count < 300; ++count) {
    plain.add(userPassword, {'a'});
    hidden = joined({hidden, attributeBytes(userPassword, hiddenOf({'a'}, plainMethod, false))});
  }
  EXPECT_EQ(transformed(plain.make(), true), TestSupport::withAttributes(plain.make(), hidden));
}

TEST(HostileHiding, APacketThatIsCutOffInsideAVendorsHeadIsReadWithZerosBehind) {
  const ByteVector vsa = vendorBytes(vendor, vendorPassword, countingBytes(16, 0x41));
  for (std::size_t there = 2; there < 8; ++there) {
    SCOPED_TRACE(there);
    const ByteVector packet = PacketMaker(2).addRaw(vsa).make();
    const ByteVector cut(packet.begin(),
                         packet.begin() + static_cast<std::ptrdiff_t>(headerLength + there));
    const LegacyPtr parser = uncheckedPacket(cut, dictionary);
    const Transformed result = transformAloud(*parser, true, testReqAuth);
    EXPECT_EQ(result.packet, cut);
    EXPECT_EQ(result.outcome.assertion, std::nullopt);
    // The vendor's number is whole from the sixth byte on, the vendor type from the seventh.
    const std::string said = there < 5 ? "Dictionary for vendor ID: 0 not present"
                             : there == 5
                                 ? "Dictionary for vendor ID: 256 not present"
                                 : "Missing attribute: 0 from dictionary for vendor ID: 311";
    EXPECT_EQ(result.outcome.records,
              there < 7 ? Records{legacyHelperRecord("cryptoHelper", said)} : Records{});
  }
}

}  // namespace
