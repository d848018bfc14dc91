#include "RadiusPacketParser/RadiusPktCommon.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZoCrypto/FaultSeam.h"

#include "tests/support/CapturingSink.h"
#include "tests/support/CatchAssertion.h"
#include "tests/support/Hex.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/SharedSecrets.h"
#include "tests/support/Vectors.h"
#include "tests/support/Walk.h"

namespace {

using namespace RadiusPktParserBase;
using TestSupport::assertionTextOf;
using TestSupport::bytesOf;
using TestSupport::ByteVector;
using TestSupport::CapturingSink;
using TestSupport::errorRecord;
using TestSupport::joined;
using TestSupport::PacketMaker;
using TestSupport::Records;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::toHex;
using TestSupport::verdaBytes;
using Verda::U32;
using Verda::U8;
using ZoCrypto::FaultSeam;
using ZoCrypto::Primitive;

constexpr std::size_t authenticatorAt = 4;
constexpr std::size_t attributesAt = 20;

/// How the codes are handled: what each class is, is the table of these tests.
const std::set<U32> plainRequests{1, 12};
const std::set<U32> accounting{4, 5};
const std::set<U32> dynamicRequests{40, 43};
const std::set<U32> responses{2, 3, 11, 41, 42, 44, 45};

/// A packet as the codec is given it: its buffer, and the header read from it.
struct Subject {
  Verda::Ptr<Zonet::Pkt> pkt;
  Verda::Ptr<RadiusHdr> hdr;

  explicit Subject(const ByteVector& bytes)
      : pkt(TestSupport::pktOf(bytes)), hdr(radiusHdrFactory()) {
    hdr->codeIs(bytes.at(0));
    hdr->idIs(bytes.at(1));
    hdr->lengthIs(static_cast<Verda::U16>(bytes.at(2) * 256 + bytes.at(3)));
    hdr->authenticatorIs(Verda::String(std::span<const U8>(bytes).subspan(authenticatorAt, 16)));
  }

  ByteVector bytes() const { return bytesOf(pkt); }
  ByteVector authenticator() const {
    const auto whole = hdr->authenticator().bytes();
    return {whole.begin(), whole.end()};
  }
};

/// `bytes` with other ones put in at `at`.
ByteVector replaced(ByteVector bytes, std::size_t at, const ByteVector& with) {
  std::ranges::copy(with, bytes.begin() + static_cast<std::ptrdiff_t>(at));
  return bytes;
}

ByteVector withAuthenticator(const ByteVector& bytes, const ByteVector& authenticator) {
  return replaced(bytes, authenticatorAt, authenticator);
}

const ByteVector zeros(16);

/// A packet with a User-Name, a Message-Authenticator of 0x55 and a Class, not signed.
ByteVector unsignedPacket(U8 code) {
  ByteVector bytes = PacketMaker(code)
                         .add(1, TestSupport::bytesOf("user"))
                         .add(80, ByteVector(16, 0x55))
                         .add(25, {1, 2, 3})
                         .make();
  return withAuthenticator(bytes, TestSupport::countingBytes(16, 0x30));
}

/// Where the Message-Authenticator of `unsignedPacket` stands.
constexpr std::size_t msgAuthAt = attributesAt + 6;

Records mismatch(const std::string& function, std::size_t copied) {
  return {errorRecord("", function,
                      "Mismatch in bytes copied: " + std::to_string(copied) + ", expected: 16")};
}

const Records md5Failed{errorRecord("", "md5Calculator", "MD5 digest of incorrect length: 0")};
const Records hmacFailed{
    errorRecord("", "calculateMessageAuthenticator", "MD5 generation failed, digestLen: 0")};

/// Runs `operation` with a computation made to fail.
template <typename Operation>
auto withFault(Primitive primitive, Operation operation) {
  FaultSeam::failIs(primitive);
  auto result = operation();
  FaultSeam::failDel();
  return result;
}

// ---- The digests that the tests compute themselves ----

TEST(OwnDigests, AreThoseOfTheRfcs) {
  EXPECT_EQ(toHex(TestSupport::md5(TestSupport::bytesOf("message digest"))),
            "f96b697d7cb7938d525a2f31aaf161d0");  // RFC 1321
  EXPECT_EQ(toHex(TestSupport::hmacMd5(ByteVector(16, 0x0b), TestSupport::bytesOf("Hi There"))),
            "9294727a3638bb1c13f48ef8158bfc9d");  // RFC 2202
  EXPECT_EQ(toHex(TestSupport::hmacMd5(TestSupport::bytesOf("Jefe"),
                                       TestSupport::bytesOf("what do ya want for nothing?"))),
            "750c783e6ab0b503eaa86e310a5db738");
  EXPECT_EQ(toHex(TestSupport::hmacMd5(
                ByteVector(80, 0xaa),
                TestSupport::bytesOf("Test Using Larger Than Block-Size Key - Hash Key First"))),
            "6b1ab7fe4bd7bf8f0b62e6ce61b9d0cd");
}

// ---- MD5 ----

TEST(Md5, GivesTheDigestsOfRfc1321) {
  const std::pair<const char*, const char*> rows[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a"},
  };
  for (const auto& [text, expected] : rows) {
    const ByteVector data = TestSupport::bytesOf(std::string(text));
    ByteVector digest(16);
    EXPECT_EQ(md5Calculator(data.data(), static_cast<U32>(data.size()), digest.data()),
              ErrorMsg::success);
    EXPECT_EQ(toHex(digest), expected) << text;
  }
}

TEST(Md5, AgreesWithAnotherMd5ForEveryLength) {
  const ByteVector data = TestSupport::countingBytes(300, 17);
  for (U32 length = 0; length <= data.size(); ++length) {
    ByteVector digest(16);
    ASSERT_EQ(md5Calculator(data.data(), length, digest.data()), ErrorMsg::success);
    ASSERT_EQ(digest, TestSupport::md5(std::span(data).first(length))) << "length " << length;
  }
}

TEST(Md5, ReportsADigestOfIncorrectLength) {
  const CapturingSink trace;
  ByteVector digest(16);
  EXPECT_EQ(withFault(Primitive::md5, [&] { return md5Calculator(nullptr, 0, digest.data()); }),
            ErrorMsg::md5GenerationFailed);
  EXPECT_EQ(trace.records(), md5Failed);
}

// ---- Computing the Message-Authenticator ----

/// The packet with a zeroed Message-Authenticator, and the HMAC over it.
struct Computation {
  Subject subject{unsignedPacket(2)};
  ByteVector zeroed = replaced(unsignedPacket(2), msgAuthAt + 2, zeros);
  ByteVector expected = TestSupport::hmacMd5(TestSupport::bytesOf(testSecret), zeroed);
  ByteVector digest = ByteVector(16);

  ErrorMsg run(U8* savedValue, const std::string& secret = testSecret) {
    return calculateMessageAuthenticator(secret, savedValue, digest.data(), subject.pkt->data(),
                                         subject.pkt->data() + msgAuthAt, subject.pkt->bytes());
  }
};

TEST(MessageAuthenticatorComputation, LeavesTheValueZeroedWhenNothingIsSaved) {
  Computation computation;
  EXPECT_EQ(computation.run(nullptr), ErrorMsg::success);
  EXPECT_EQ(computation.digest, computation.expected);
  EXPECT_EQ(computation.subject.bytes(), computation.zeroed);
}

TEST(MessageAuthenticatorComputation, PutsTheSavedValueBack) {
  Computation computation;
  ByteVector saved(16);
  EXPECT_EQ(computation.run(saved.data()), ErrorMsg::success);
  EXPECT_EQ(computation.digest, computation.expected);
  EXPECT_EQ(saved, ByteVector(16, 0x55));
  EXPECT_EQ(computation.subject.bytes(), unsignedPacket(2));
}

TEST(MessageAuthenticatorComputation, CoversAsManyBytesAsSaid) {
  for (U32 length = msgAuthAt + 18; length <= unsignedPacket(2).size(); ++length) {
    Subject subject(unsignedPacket(2));
    ByteVector digest(16);
    EXPECT_EQ(calculateMessageAuthenticator(testSecret, nullptr, digest.data(), subject.pkt->data(),
                                            subject.pkt->data() + msgAuthAt, length),
              ErrorMsg::success);
    const ByteVector zeroed = replaced(unsignedPacket(2), msgAuthAt + 2, zeros);
    EXPECT_EQ(digest, TestSupport::hmacMd5(TestSupport::bytesOf(testSecret),
                                           std::span(zeroed).first(length)));
  }
}

TEST(MessageAuthenticatorComputation, TakesEverySecret) {
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    Computation computation;
    EXPECT_EQ(computation.run(nullptr, secret.given), ErrorMsg::success);
    EXPECT_EQ(computation.digest,
              TestSupport::hmacMd5(TestSupport::bytesOf(secret.counts), computation.zeroed));
  }
}

TEST(MessageAuthenticatorComputation, ReportsAFailedHmac) {
  const CapturingSink trace;
  Computation computation;
  ByteVector saved(16);
  EXPECT_EQ(withFault(Primitive::hmac, [&] { return computation.run(saved.data()); }),
            ErrorMsg::md5GenerationFailed);
  EXPECT_EQ(trace.records(), hmacFailed);
  EXPECT_EQ(saved, ByteVector(16, 0x55));
  EXPECT_EQ(computation.subject.bytes(), computation.zeroed);
}

// ---- Setting the request authenticator ----

TEST(RequestAuthenticator, IsTheMd5OverAZeroAuthenticatorForEveryCodeButThePlainRequests) {
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    const ByteVector before = unsignedPacket(static_cast<U8>(code));
    Subject subject(before);
    const ByteVector headerBefore = subject.authenticator();
    EXPECT_EQ(setRequestAuthenticator(testSecret, subject.pkt->data(), subject.hdr),
              ErrorMsg::success);
    if (plainRequests.contains(code)) {
      EXPECT_EQ(subject.bytes(), before);
      EXPECT_EQ(subject.authenticator(), headerBefore);
      continue;
    }
    const ByteVector digest = TestSupport::md5(
        joined({withAuthenticator(before, zeros), TestSupport::bytesOf(testSecret)}));
    EXPECT_EQ(subject.bytes(), withAuthenticator(before, digest));
    EXPECT_EQ(subject.authenticator(), digest);
  }
}

TEST(RequestAuthenticator, TakesEverySecret) {
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    Subject subject(unsignedPacket(4));
    EXPECT_EQ(setRequestAuthenticator(secret.given, subject.pkt->data(), subject.hdr),
              ErrorMsg::success);
    EXPECT_EQ(subject.authenticator(),
              TestSupport::md5(joined({withAuthenticator(unsignedPacket(4), zeros),
                                       TestSupport::bytesOf(secret.counts)})));
  }
}

TEST(RequestAuthenticator, CoversTheHeadersLengthAndNothingBehindIt) {
  const ByteVector packet = unsignedPacket(43);
  Subject subject(joined({packet, ByteVector{9, 9, 9}}));
  ASSERT_EQ(setRequestAuthenticator(testSecret, subject.pkt->data(), subject.hdr),
            ErrorMsg::success);
  Subject alone(packet);
  ASSERT_EQ(setRequestAuthenticator(testSecret, alone.pkt->data(), alone.hdr), ErrorMsg::success);
  EXPECT_EQ(subject.bytes(), joined({alone.bytes(), ByteVector{9, 9, 9}}));
}

TEST(RequestAuthenticator, IsSetInTheSmallestAndInTheLargestPacket) {
  for (std::size_t size : {std::size_t{20}, std::size_t{4096}}) {
    ByteVector bytes(size, 0x11);
    bytes[0] = 40;
    bytes[2] = static_cast<U8>(size / 256);
    bytes[3] = static_cast<U8>(size % 256);
    Subject subject(bytes);
    EXPECT_EQ(setRequestAuthenticator(testSecret, subject.pkt->data(), subject.hdr),
              ErrorMsg::success);
    const ByteVector digest = TestSupport::md5(
        joined({withAuthenticator(bytes, zeros), TestSupport::bytesOf(testSecret)}));
    EXPECT_EQ(subject.bytes(), withAuthenticator(bytes, digest));
  }
}

TEST(RequestAuthenticator, ReportsAFailedMd5AndLeavesTheHeaderAlone) {
  const CapturingSink trace;
  Subject subject(unsignedPacket(4));
  const ByteVector headerBefore = subject.authenticator();
  EXPECT_EQ(
      withFault(
          Primitive::md5,
          [&] { return setRequestAuthenticator(testSecret, subject.pkt->data(), subject.hdr); }),
      ErrorMsg::md5GenerationFailed);
  EXPECT_EQ(trace.records(), md5Failed);
  EXPECT_EQ(subject.authenticator(), headerBefore);
}

TEST(RequestAuthenticator, AssertsThatTheLengthHoldsAHeader) {
  Subject subject(unsignedPacket(4));
  subject.hdr->lengthIs(19);
  EXPECT_EQ(assertionTextOf(
                [&] { setRequestAuthenticator(testSecret, subject.pkt->data(), subject.hdr); }),
            "hdr->length() >= PacketConstants::headerLength()");
}

// ---- Setting the response authenticator ----

TEST(ResponseAuthenticator, IsTheMd5OverTheRequestAuthenticatorForEveryCode) {
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    const ByteVector before = unsignedPacket(static_cast<U8>(code));
    Subject subject(before);
    EXPECT_EQ(setResponseAuthenticator(testSecret, verdaBytes(testReqAuth), subject.pkt->data(),
                                       subject.hdr),
              ErrorMsg::success);
    const ByteVector digest = TestSupport::md5(
        joined({withAuthenticator(before, testReqAuth), TestSupport::bytesOf(testSecret)}));
    EXPECT_EQ(subject.bytes(), withAuthenticator(before, digest));
    EXPECT_EQ(subject.authenticator(), digest);
  }
}

TEST(ResponseAuthenticator, TakesEverySecret) {
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    Subject subject(unsignedPacket(2));
    EXPECT_EQ(setResponseAuthenticator(secret.given, verdaBytes(testReqAuth), subject.pkt->data(),
                                       subject.hdr),
              ErrorMsg::success);
    EXPECT_EQ(subject.authenticator(),
              TestSupport::md5(joined({withAuthenticator(unsignedPacket(2), testReqAuth),
                                       TestSupport::bytesOf(secret.counts)})));
  }
}

TEST(ResponseAuthenticator, TakesTheFirstSixteenBytesOfALongerRequestAuthenticator) {
  Subject longer(unsignedPacket(2));
  ASSERT_EQ(setResponseAuthenticator(testSecret, verdaBytes(joined({testReqAuth, zeros})),
                                     longer.pkt->data(), longer.hdr),
            ErrorMsg::success);
  Subject exact(unsignedPacket(2));
  ASSERT_EQ(
      setResponseAuthenticator(testSecret, verdaBytes(testReqAuth), exact.pkt->data(), exact.hdr),
      ErrorMsg::success);
  EXPECT_EQ(longer.bytes(), exact.bytes());
}

TEST(ResponseAuthenticator, TakesWhatThereIsOfAShorterRequestAuthenticator) {
  for (std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{15}}) {
    SCOPED_TRACE(size);
    const CapturingSink trace;
    const ByteVector part(testReqAuth.begin(),
                          testReqAuth.begin() + static_cast<std::ptrdiff_t>(size));
    const ByteVector before = unsignedPacket(2);
    Subject subject(before);
    EXPECT_EQ(
        setResponseAuthenticator(testSecret, verdaBytes(part), subject.pkt->data(), subject.hdr),
        ErrorMsg::success);
    EXPECT_EQ(subject.authenticator(),
              TestSupport::md5(
                  joined({withAuthenticator(before, part), TestSupport::bytesOf(testSecret)})));
    EXPECT_EQ(trace.records(), Records());
  }
}

TEST(ResponseAuthenticator, ReportsAFailedMd5AndLeavesTheHeaderAlone) {
  const CapturingSink trace;
  Subject subject(unsignedPacket(2));
  const ByteVector headerBefore = subject.authenticator();
  EXPECT_EQ(withFault(Primitive::md5,
                      [&] {
                        return setResponseAuthenticator(testSecret, verdaBytes(testReqAuth),
                                                        subject.pkt->data(), subject.hdr);
                      }),
            ErrorMsg::md5GenerationFailed);
  EXPECT_EQ(trace.records(), md5Failed);
  EXPECT_EQ(subject.authenticator(), headerBefore);
}

TEST(ResponseAuthenticator, AssertsThatTheLengthHoldsAHeader) {
  Subject subject(unsignedPacket(2));
  subject.hdr->lengthIs(19);
  EXPECT_EQ(assertionTextOf([&] {
              setResponseAuthenticator(testSecret, verdaBytes(testReqAuth), subject.pkt->data(),
                                       subject.hdr);
            }),
            "hdr->length() >= PacketConstants::headerLength()");
}

// ---- Checking the authenticator ----

/// A packet of that code whose authenticator is the MD5 over `covered`, also for plain requests.
ByteVector signedPacket(U32 code, const ByteVector& covered) {
  const ByteVector packet = unsignedPacket(static_cast<U8>(code));
  return withAuthenticator(packet, TestSupport::md5(joined({withAuthenticator(packet, covered),
                                                            TestSupport::bytesOf(testSecret)})));
}

ErrorMsg validate(const Subject& subject, const ByteVector& reqAuth,
                  const std::string& secret = testSecret) {
  return validateAuthenticator(subject.pkt, subject.hdr, secret, verdaBytes(reqAuth));
}

TEST(AuthenticatorCheck, TakesTheRightOneOfEveryCode) {
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    for (const ByteVector& reqAuth : {ByteVector(), testReqAuth}) {
      const ByteVector packet = signedPacket(code, reqAuth.empty() ? zeros : reqAuth);
      const Subject subject(packet);
      EXPECT_EQ(validate(subject, reqAuth), ErrorMsg::success);
      EXPECT_EQ(subject.bytes(), packet);
    }
  }
}

TEST(AuthenticatorCheck, RefusesAWrongOneOfEveryCodeButThePlainRequests) {
  const CapturingSink trace;
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    for (const ByteVector& reqAuth : {ByteVector(), testReqAuth}) {
      ByteVector packet = signedPacket(code, reqAuth.empty() ? zeros : reqAuth);
      packet[authenticatorAt + 15] ^= 1;
      const Subject subject(packet);
      EXPECT_EQ(validate(subject, reqAuth),
                plainRequests.contains(code) ? ErrorMsg::success : ErrorMsg::invalidPktAuth);
      EXPECT_EQ(subject.bytes(), packet);
    }
  }
  EXPECT_EQ(trace.records(), Records());
}

TEST(AuthenticatorCheck, SeesAChangeOfAnyByteOfThePacket) {
  const ByteVector packet = signedPacket(2, testReqAuth);
  for (std::size_t at = 0; at < packet.size(); ++at) {
    if (at == 2 || at == 3) {
      continue;  // the Length field says how much is covered
    }
    ByteVector changed = packet;
    changed[at] ^= 0x80;
    EXPECT_EQ(validate(Subject(changed), testReqAuth), ErrorMsg::invalidPktAuth) << "byte " << at;
  }
}

TEST(AuthenticatorCheck, ComparesWithTheHeaderAndNotWithThePacket) {
  const Subject subject(signedPacket(2, testReqAuth));
  std::fill_n(subject.pkt->data() + authenticatorAt, 16, U8{0});
  EXPECT_EQ(validate(subject, testReqAuth), ErrorMsg::success);
}

TEST(AuthenticatorCheck, RefusesAHeaderWhoseAuthenticatorIsNotOfSixteenBytes) {
  for (std::size_t size : {std::size_t{0}, std::size_t{15}, std::size_t{17}}) {
    const Subject subject(signedPacket(2, testReqAuth));
    ByteVector authenticator = subject.authenticator();
    authenticator.resize(size);
    subject.hdr->authenticatorIs(Verda::String(std::span<const U8>(authenticator)));
    EXPECT_EQ(validate(subject, testReqAuth), ErrorMsg::invalidPktAuth) << size << " bytes";
  }
}

TEST(AuthenticatorCheck, TakesEverySecretAndNoOther) {
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    const Subject subject(PacketMaker(2).secretIs(secret.given).add(25, {1}).make());
    EXPECT_EQ(validate(subject, testReqAuth, secret.given), ErrorMsg::success);
    EXPECT_EQ(validate(subject, testReqAuth, secret.counts), ErrorMsg::success);
    EXPECT_EQ(validate(subject, testReqAuth, secret.counts + "x"), ErrorMsg::invalidPktAuth);
  }
}

TEST(AuthenticatorCheck, CutsASecretAtItsZeroByte) {
  const Subject subject(PacketMaker(2).secretIs("ab").make());
  EXPECT_EQ(validate(subject, testReqAuth, std::string("ab\0cd", 5)), ErrorMsg::success);
  EXPECT_EQ(validate(subject, testReqAuth, "abcd"), ErrorMsg::invalidPktAuth);
}

TEST(AuthenticatorCheck, RefusesARequestAuthenticatorOfLessThanSixteenBytes) {
  for (std::size_t size : {std::size_t{1}, std::size_t{15}}) {
    SCOPED_TRACE(size);
    for (U32 code = 0; code < 256; ++code) {
      const CapturingSink trace;
      const ByteVector packet = signedPacket(code, testReqAuth);
      const Subject subject(packet);
      const bool plain = plainRequests.contains(code);
      EXPECT_EQ(validate(subject, ByteVector(size, 0xa0)),
                plain ? ErrorMsg::success : ErrorMsg::invalidBytesCopied);
      EXPECT_EQ(trace.records(), plain ? Records() : mismatch("validateAuthenticator", size));
      EXPECT_EQ(subject.bytes(), packet);
    }
  }
}

TEST(AuthenticatorCheck, TakesTheFirstSixteenBytesOfALongerRequestAuthenticator) {
  const CapturingSink trace;
  const Subject subject(signedPacket(2, testReqAuth));
  EXPECT_EQ(validate(subject, joined({testReqAuth, ByteVector{0xff}})), ErrorMsg::success);
  EXPECT_EQ(trace.records(), Records());
}

TEST(AuthenticatorCheck, IgnoresWhatStandsBehindTheLength) {
  const ByteVector packet = joined({signedPacket(2, testReqAuth), ByteVector(10, 0x99)});
  const Subject subject(packet);
  EXPECT_EQ(validate(subject, testReqAuth), ErrorMsg::success);
  EXPECT_EQ(subject.bytes(), packet);
}

TEST(AuthenticatorCheck, RefusesAPacketThatIsShorterThanItsHeaderSays) {
  ByteVector packet = signedPacket(2, testReqAuth);
  packet.pop_back();
  EXPECT_EQ(validate(Subject(packet), testReqAuth), ErrorMsg::invalidPktAuth);
}

TEST(AuthenticatorCheck, RefusesAHeaderThatIsShorterThanAHeader) {
  for (Verda::U16 length : {Verda::U16{0}, Verda::U16{19}}) {
    const Subject subject(signedPacket(2, testReqAuth));
    subject.hdr->lengthIs(length);
    EXPECT_EQ(validate(subject, testReqAuth), ErrorMsg::invalidPktAuth);
  }
}

TEST(AuthenticatorCheck, RefusesANullPacket) {
  const Subject subject(signedPacket(2, testReqAuth));
  EXPECT_EQ(validateAuthenticator(nullptr, subject.hdr, testSecret, verdaBytes(testReqAuth)),
            ErrorMsg::invalidPktAuth);
}

TEST(AuthenticatorCheck, LooksAtNothingOfAPlainRequest) {
  for (U32 code : plainRequests) {
    const CapturingSink trace;
    const Subject subject(unsignedPacket(static_cast<U8>(code)));
    EXPECT_EQ(validateAuthenticator(nullptr, subject.hdr, testSecret, verdaBytes(testReqAuth)),
              ErrorMsg::success);
    EXPECT_EQ(withFault(Primitive::md5, [&] { return validate(subject, {}); }), ErrorMsg::success);
    EXPECT_EQ(trace.records(), Records());
  }
}

TEST(AuthenticatorCheck, ReportsAFailedMd5) {
  const CapturingSink trace;
  const ByteVector packet = signedPacket(2, testReqAuth);
  const Subject subject(packet);
  EXPECT_EQ(withFault(Primitive::md5, [&] { return validate(subject, testReqAuth); }),
            ErrorMsg::md5GenerationFailed);
  EXPECT_EQ(trace.records(), md5Failed);
  EXPECT_EQ(subject.bytes(), packet);
}

// ---- Setting the Message-Authenticator ----

ErrorMsg setMsgAuth(Subject& subject, const ByteVector& reqAuth,
                    const std::string& secret = testSecret) {
  return setMessageAuthenticator(subject.pkt->data(), subject.pkt->data() + msgAuthAt, secret,
                                 verdaBytes(reqAuth), subject.hdr);
}

/// `packet` with `covered` for authenticator and the Message-Authenticator that goes with it.
ByteVector withMsgAuth(const ByteVector& packet, const ByteVector& covered,
                       const std::string& secret = testSecret) {
  const ByteVector zeroed = replaced(withAuthenticator(packet, covered), msgAuthAt + 2, zeros);
  return replaced(zeroed, msgAuthAt + 2,
                  TestSupport::hmacMd5(TestSupport::bytesOf(secret), zeroed));
}

TEST(MessageAuthenticatorSetter, CoversTheOwnAuthenticatorOfPlainRequestsAndZerosOfAllOthers) {
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    const ByteVector before = unsignedPacket(static_cast<U8>(code));
    Subject subject(before);
    const ByteVector headerBefore = subject.authenticator();
    EXPECT_EQ(setMsgAuth(subject, {}), ErrorMsg::success);
    EXPECT_EQ(subject.bytes(),
              withMsgAuth(before, plainRequests.contains(code) ? headerBefore : zeros));
    EXPECT_EQ(subject.authenticator(), headerBefore);
  }
}

TEST(MessageAuthenticatorSetter, CoversTheRequestAuthenticatorOfEveryCodeButThePlainRequests) {
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    const ByteVector before = unsignedPacket(static_cast<U8>(code));
    Subject subject(before);
    if (plainRequests.contains(code)) {
      EXPECT_EQ(assertionTextOf([&] { setMsgAuth(subject, testReqAuth); }),
                "Request authenticator found not NULL for request packet");
      EXPECT_EQ(subject.bytes(), before);
    } else {
      EXPECT_EQ(setMsgAuth(subject, testReqAuth), ErrorMsg::success);
      EXPECT_EQ(subject.bytes(), withMsgAuth(before, testReqAuth));
    }
  }
}

TEST(MessageAuthenticatorSetter, TakesEverySecret) {
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    Subject subject(unsignedPacket(2));
    EXPECT_EQ(setMsgAuth(subject, testReqAuth, secret.given), ErrorMsg::success);
    EXPECT_EQ(subject.bytes(), withMsgAuth(unsignedPacket(2), testReqAuth, secret.counts));
  }
}

TEST(MessageAuthenticatorSetter, RefusesARequestAuthenticatorOfLessThanSixteenBytes) {
  for (std::size_t size : {std::size_t{1}, std::size_t{15}}) {
    const CapturingSink trace;
    const ByteVector before = unsignedPacket(2);
    Subject subject(before);
    EXPECT_EQ(setMsgAuth(subject, ByteVector(size, 0xa0)), ErrorMsg::invalidBytesCopied);
    EXPECT_EQ(trace.records(), mismatch("setMessageAuthenticator", size));
    const ByteVector after = subject.bytes();
    EXPECT_TRUE(std::equal(after.begin() + attributesAt, after.end(), before.begin() + attributesAt,
                           before.end()));
  }
}

TEST(MessageAuthenticatorSetter, TakesTheFirstSixteenBytesOfALongerRequestAuthenticator) {
  Subject subject(unsignedPacket(2));
  EXPECT_EQ(setMsgAuth(subject, joined({testReqAuth, ByteVector{0xff}})), ErrorMsg::success);
  EXPECT_EQ(subject.bytes(), withMsgAuth(unsignedPacket(2), testReqAuth));
}

TEST(MessageAuthenticatorSetter, CoversTheHeadersLengthAndNothingBehindIt) {
  Subject subject(joined({unsignedPacket(2), ByteVector{9, 9, 9}}));
  EXPECT_EQ(setMsgAuth(subject, testReqAuth), ErrorMsg::success);
  EXPECT_EQ(subject.bytes(),
            joined({withMsgAuth(unsignedPacket(2), testReqAuth), ByteVector{9, 9, 9}}));
}

TEST(MessageAuthenticatorSetter, ReportsAFailedHmac) {
  const CapturingSink trace;
  Subject subject(unsignedPacket(2));
  EXPECT_EQ(withFault(Primitive::hmac, [&] { return setMsgAuth(subject, testReqAuth); }),
            ErrorMsg::md5GenerationFailed);
  EXPECT_EQ(trace.records(), hmacFailed);
}

TEST(MessageAuthenticatorSetter, MakesWhatTheCheckTakesWithTheAuthenticatorSetBehindIt) {
  Subject response(unsignedPacket(2));
  ASSERT_EQ(setMsgAuth(response, testReqAuth), ErrorMsg::success);
  ASSERT_EQ(setResponseAuthenticator(testSecret, verdaBytes(testReqAuth), response.pkt->data(),
                                     response.hdr),
            ErrorMsg::success);
  EXPECT_EQ(validate(response, testReqAuth), ErrorMsg::success);
  EXPECT_EQ(validateMessageAuthenticator(response.pkt, response.hdr, testSecret,
                                         verdaBytes(testReqAuth), response.pkt->data() + msgAuthAt),
            ErrorMsg::success);
  Subject request(unsignedPacket(43));
  ASSERT_EQ(setMsgAuth(request, {}), ErrorMsg::success);
  ASSERT_EQ(setRequestAuthenticator(testSecret, request.pkt->data(), request.hdr),
            ErrorMsg::success);
  EXPECT_EQ(validate(request, {}), ErrorMsg::success);
  EXPECT_EQ(validateMessageAuthenticator(request.pkt, request.hdr, testSecret, {},
                                         request.pkt->data() + msgAuthAt),
            ErrorMsg::success);
}

// ---- Checking the Message-Authenticator ----

/// A packet whose Message-Authenticator goes with `covered` while other bytes, or for a plain
/// request the same, stand in the authenticator.
ByteVector msgAuthPacket(U32 code, const ByteVector& covered) {
  const ByteVector packet = unsignedPacket(static_cast<U8>(code));
  const ByteVector own = TestSupport::countingBytes(16, 0x30);
  return withAuthenticator(withMsgAuth(packet, plainRequests.contains(code) ? own : covered), own);
}

ErrorMsg validateMsgAuth(const Subject& subject, const ByteVector& reqAuth,
                         const std::string& secret = testSecret) {
  return validateMessageAuthenticator(subject.pkt, subject.hdr, secret, verdaBytes(reqAuth),
                                      subject.pkt->data() + msgAuthAt);
}

/// What a check gives for a code: a result, or the assertion that it fails.
struct MsgAuthOutcome {
  ErrorMsg result = ErrorMsg::success;
  std::string assertion;

  bool operator==(const MsgAuthOutcome&) const = default;
};

MsgAuthOutcome outcomeOf(const Subject& subject, const ByteVector& reqAuth) {
  MsgAuthOutcome outcome;
  outcome.assertion =
      assertionTextOf([&] { outcome.result = validateMsgAuth(subject, reqAuth); }).value_or("");
  return outcome;
}

/// What the class of a code asks for; `ifChecked` is the result of the comparison.
MsgAuthOutcome expectedOutcome(U32 code, bool hasReqAuth, ErrorMsg ifChecked) {
  if (accounting.contains(code)) {
    return {ErrorMsg::success, ""};
  }
  if (responses.contains(code)) {
    return hasReqAuth ? MsgAuthOutcome{ifChecked, ""}
                      : MsgAuthOutcome{ErrorMsg::success,
                                       "Request authenticator found NULL for response packet"};
  }
  if (plainRequests.contains(code) || dynamicRequests.contains(code)) {
    return hasReqAuth ? MsgAuthOutcome{ErrorMsg::success,
                                       "Request authenticator found not NULL for request packet"}
                      : MsgAuthOutcome{ifChecked, ""};
  }
  return {ErrorMsg::unsupportedPktType, ""};
}

TEST(MessageAuthenticatorCheck, TakesTheRightOneByClassOfCode) {
  const CapturingSink trace;
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    for (const ByteVector& reqAuth : {ByteVector(), testReqAuth}) {
      const ByteVector packet = msgAuthPacket(code, reqAuth.empty() ? zeros : reqAuth);
      const Subject subject(packet);
      EXPECT_EQ(outcomeOf(subject, reqAuth),
                expectedOutcome(code, !reqAuth.empty(), ErrorMsg::success));
      EXPECT_EQ(subject.bytes(), packet);
    }
  }
  EXPECT_EQ(trace.records(), Records());
}

TEST(MessageAuthenticatorCheck, RefusesAWrongOneByClassOfCodeWithoutALineOfItsOwn) {
  const CapturingSink trace;
  for (U32 code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    for (const ByteVector& reqAuth : {ByteVector(), testReqAuth}) {
      ByteVector packet = msgAuthPacket(code, reqAuth.empty() ? zeros : reqAuth);
      packet[msgAuthAt + 2] ^= 0x01;
      const Subject subject(packet);
      EXPECT_EQ(outcomeOf(subject, reqAuth),
                expectedOutcome(code, !reqAuth.empty(), ErrorMsg::invalidMsgAuth));
      EXPECT_EQ(subject.bytes(), packet);
    }
  }
  EXPECT_EQ(trace.records(), Records());
}

TEST(MessageAuthenticatorCheck, SeesAChangeOfAnyByteThatItCovers) {
  const ByteVector packet = msgAuthPacket(2, testReqAuth);
  for (std::size_t at = 0; at < packet.size(); ++at) {
    const bool inLength = at == 2 || at == 3;
    const bool inAuthenticator = at >= authenticatorAt && at < attributesAt;
    if (inLength || inAuthenticator) {
      continue;  // how much is covered; what the Request Authenticator stands in for
    }
    ByteVector changed = packet;
    changed[at] ^= 0x80;
    const Subject subject(changed);
    subject.hdr->codeIs(2);
    EXPECT_EQ(validateMsgAuth(subject, testReqAuth), ErrorMsg::invalidMsgAuth) << "byte " << at;
    EXPECT_EQ(subject.bytes(), changed);
  }
}

TEST(MessageAuthenticatorCheck, CoversTheOwnAuthenticatorOfAPlainRequest) {
  for (U32 code : plainRequests) {
    ByteVector packet = msgAuthPacket(code, zeros);
    packet[authenticatorAt] ^= 0x80;
    EXPECT_EQ(validateMsgAuth(Subject(packet), {}), ErrorMsg::invalidMsgAuth);
  }
}

TEST(MessageAuthenticatorCheck, TakesGarbageOfAccountingPackets) {
  for (U32 code : accounting) {
    for (const ByteVector& reqAuth : {ByteVector(), ByteVector(1), testReqAuth}) {
      const CapturingSink trace;
      const ByteVector packet = unsignedPacket(static_cast<U8>(code));
      const Subject subject(packet);
      EXPECT_EQ(withFault(Primitive::hmac, [&] { return validateMsgAuth(subject, reqAuth); }),
                ErrorMsg::success);
      EXPECT_EQ(trace.records(), Records());
      EXPECT_EQ(subject.bytes(), packet);
    }
  }
}

TEST(MessageAuthenticatorCheck, TakesEverySecretAndNoOther) {
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    PacketMaker maker(2);
    const ByteVector packet =
        maker.secretIs(secret.given).add(1, {7, 8, 9, 10}).addMessageAuthenticator().make();
    const Subject subject(packet);
    EXPECT_EQ(validateMsgAuth(subject, testReqAuth, secret.given), ErrorMsg::success);
    EXPECT_EQ(validateMsgAuth(subject, testReqAuth, secret.counts), ErrorMsg::success);
    EXPECT_EQ(validateMsgAuth(subject, testReqAuth, secret.counts + "x"), ErrorMsg::invalidMsgAuth);
    EXPECT_EQ(subject.bytes(), packet);
  }
}

TEST(MessageAuthenticatorCheck, RefusesARequestAuthenticatorOfLessThanSixteenBytes) {
  for (U32 code : responses) {
    for (std::size_t size : {std::size_t{1}, std::size_t{15}}) {
      const CapturingSink trace;
      const ByteVector packet = msgAuthPacket(code, testReqAuth);
      const Subject subject(packet);
      EXPECT_EQ(validateMsgAuth(subject, ByteVector(size, 0xa0)), ErrorMsg::invalidBytesCopied);
      EXPECT_EQ(trace.records(), mismatch("validateMessageAuthenticator", size));
      EXPECT_EQ(subject.bytes(), packet);
    }
  }
}

TEST(MessageAuthenticatorCheck, TakesTheFirstSixteenBytesOfALongerRequestAuthenticator) {
  const ByteVector packet = msgAuthPacket(2, testReqAuth);
  const Subject subject(packet);
  EXPECT_EQ(validateMsgAuth(subject, joined({testReqAuth, ByteVector{0xff}})), ErrorMsg::success);
  EXPECT_EQ(subject.bytes(), packet);
}

TEST(MessageAuthenticatorCheck, RefusesAHeaderWhoseAuthenticatorIsTooShort) {
  for (U32 code : {U32{2}, U32{40}}) {
    for (std::size_t size : {std::size_t{0}, std::size_t{15}}) {
      const CapturingSink trace;
      const ByteVector reqAuth = code == 2 ? testReqAuth : ByteVector();
      const ByteVector packet = msgAuthPacket(code, code == 2 ? testReqAuth : zeros);
      const Subject subject(packet);
      subject.hdr->authenticatorIs(Verda::String(std::string(size, 'x')));
      EXPECT_EQ(validateMsgAuth(subject, reqAuth), ErrorMsg::invalidBytesCopied);
      EXPECT_EQ(trace.records(), mismatch("validateMessageAuthenticator", size));
      EXPECT_EQ(subject.bytes(), packet);
    }
  }
}

TEST(MessageAuthenticatorCheck, LooksAtNoHeaderAuthenticatorOfAPlainRequest) {
  for (U32 code : plainRequests) {
    const Subject subject(msgAuthPacket(code, zeros));
    subject.hdr->authenticatorIs(Verda::String(""));
    EXPECT_EQ(validateMsgAuth(subject, {}), ErrorMsg::success);
  }
}

TEST(MessageAuthenticatorCheck, PutsThePacketsOwnBytesBackWhateverTheHeaderHolds) {
  const ByteVector packet = msgAuthPacket(2, testReqAuth);
  const Subject subject(packet);
  subject.hdr->authenticatorIs(Verda::String(std::string(16, 'x')));
  EXPECT_EQ(validateMsgAuth(subject, testReqAuth), ErrorMsg::success);
  EXPECT_EQ(subject.bytes(), packet);
}

TEST(MessageAuthenticatorCheck, ReportsAFailedHmacAndPutsThePacketBack) {
  for (U32 code : {U32{1}, U32{12}, U32{2}, U32{45}, U32{40}, U32{43}}) {
    SCOPED_TRACE(code);
    const CapturingSink trace;
    const ByteVector reqAuth = TestSupport::reqAuthFor(static_cast<U8>(code));
    const ByteVector packet = msgAuthPacket(code, reqAuth.empty() ? zeros : reqAuth);
    const Subject subject(packet);
    EXPECT_EQ(withFault(Primitive::hmac, [&] { return validateMsgAuth(subject, reqAuth); }),
              ErrorMsg::md5GenerationFailed);
    EXPECT_EQ(trace.records(), hmacFailed);
    EXPECT_EQ(subject.bytes(), packet);
  }
}

TEST(MessageAuthenticatorCheck, SaysOfAFailedHmacBehindAShortHeaderThatTheCopyFailed) {
  const CapturingSink trace;
  const ByteVector packet = msgAuthPacket(2, testReqAuth);
  const Subject subject(packet);
  subject.hdr->authenticatorIs(Verda::String("short"));
  EXPECT_EQ(withFault(Primitive::hmac, [&] { return validateMsgAuth(subject, testReqAuth); }),
            ErrorMsg::invalidBytesCopied);
  EXPECT_EQ(trace.records(),
            (Records{hmacFailed[0], mismatch("validateMessageAuthenticator", 5)[0]}));
  EXPECT_EQ(subject.bytes(), packet);
}

TEST(MessageAuthenticatorCheck, CoversTheHeadersLengthAndNothingBehindIt) {
  const ByteVector packet = joined({msgAuthPacket(2, testReqAuth), ByteVector(10, 0x99)});
  const Subject subject(packet);
  EXPECT_EQ(validateMsgAuth(subject, testReqAuth), ErrorMsg::success);
  EXPECT_EQ(subject.bytes(), packet);
}

TEST(MessageAuthenticatorCheck, RefusesAPacketThatIsShorterThanItsHeaderSays) {
  ByteVector packet = msgAuthPacket(2, testReqAuth);
  packet.pop_back();
  const Subject subject(packet);
  EXPECT_EQ(validateMsgAuth(subject, testReqAuth), ErrorMsg::invalidMsgAuth);
  EXPECT_EQ(subject.bytes(), packet);
}

TEST(MessageAuthenticatorCheck, RefusesANullPacket) {
  const Subject subject(msgAuthPacket(2, testReqAuth));
  EXPECT_EQ(validateMessageAuthenticator(nullptr, subject.hdr, testSecret, verdaBytes(testReqAuth),
                                         subject.pkt->data() + msgAuthAt),
            ErrorMsg::invalidMsgAuth);
}

TEST(MessageAuthenticatorCheck, RefusesAnAttributeThatDoesNotLieAmongThePacketsAttributes) {
  for (U32 code : {U32{1}, U32{2}, U32{40}}) {
    const ByteVector reqAuth = TestSupport::reqAuthFor(static_cast<U8>(code));
    const ByteVector packet = msgAuthPacket(code, reqAuth.empty() ? zeros : reqAuth);
    const Subject subject(packet);
    ByteVector elsewhere(18);
    U8* const data = subject.pkt->data();
    for (U8* attr : {data, data + attributesAt - 1, data + packet.size() - 17, data + packet.size(),
                     elsewhere.data(), static_cast<U8*>(nullptr)}) {
      // A computation would fail: it is not even begun.
      EXPECT_EQ(withFault(Primitive::hmac,
                          [&] {
                            return validateMessageAuthenticator(
                                subject.pkt, subject.hdr, testSecret, verdaBytes(reqAuth), attr);
                          }),
                ErrorMsg::invalidMsgAuth);
      EXPECT_EQ(subject.bytes(), packet);
    }
    EXPECT_EQ(elsewhere, ByteVector(18));
  }
}

TEST(MessageAuthenticatorCheck, TakesAnAttributeThatIsTheFirstOrTheLastOfThePacket) {
  PacketMaker first(2);
  first.addMessageAuthenticator().add(25, {1, 2});
  PacketMaker last(2);
  last.add(25, {1, 2}).addMessageAuthenticator();
  PacketMaker only(2);
  only.addMessageAuthenticator();
  for (const PacketMaker& maker : {first, last, only}) {
    const ByteVector packet = maker.make();
    const Subject subject(packet);
    EXPECT_EQ(
        validateMessageAuthenticator(subject.pkt, subject.hdr, testSecret, verdaBytes(testReqAuth),
                                     subject.pkt->data() + maker.messageAuthenticatorOffset()),
        ErrorMsg::success);
    EXPECT_EQ(subject.bytes(), packet);
  }
}

TEST(MessageAuthenticatorCheck, RefusesAHeaderWhoseLengthHoldsNoAttributeOfThatSize) {
  const ByteVector packet = msgAuthPacket(2, testReqAuth);
  for (Verda::U16 length : {Verda::U16{0}, Verda::U16{19}, Verda::U16{20}, Verda::U16{37},
                            Verda::U16{msgAuthAt + 17}}) {
    const Subject subject(packet);
    subject.hdr->lengthIs(length);
    EXPECT_EQ(validateMsgAuth(subject, testReqAuth), ErrorMsg::invalidMsgAuth) << length;
    EXPECT_EQ(subject.bytes(), packet);
  }
}

// ---- Published packets ----

/// The offset of the first Message-Authenticator, or nothing.
std::optional<std::size_t> msgAuthOffset(const ByteVector& packet) {
  for (std::size_t at = attributesAt; at + 1 < packet.size() && packet[at + 1] >= 2;
       at += packet[at + 1]) {
    if (packet[at] == 80) {
      return at;
    }
  }
  return std::nullopt;
}

TEST(PublishedPackets, HaveTheAuthenticatorsThatOthersFound) {
  ASSERT_EQ(TestSupport::publishedPackets().size(), TestSupport::publishedPacketCount);
  int checked = 0;
  for (const auto& published : TestSupport::publishedPackets()) {
    const std::optional<bool> holds = published.requestAuthHolds.has_value()
                                          ? published.requestAuthHolds
                                          : published.responseAuthHolds;
    if (!holds.has_value()) {
      continue;
    }
    SCOPED_TRACE(published.name);
    const Subject subject(published.packet);
    EXPECT_EQ(validate(subject, published.requestAuthenticator, published.secret),
              *holds ? ErrorMsg::success : ErrorMsg::invalidPktAuth);
    ++checked;
  }
  EXPECT_EQ(checked, 34);
}

TEST(PublishedPackets, HaveTheMessageAuthenticatorsThatOthersFound) {
  int checked = 0;
  for (const auto& published : TestSupport::publishedPackets()) {
    if (!published.msgAuthHolds.has_value()) {
      continue;
    }
    SCOPED_TRACE(published.name);
    const Subject subject(published.packet);
    EXPECT_EQ(
        validateMessageAuthenticator(subject.pkt, subject.hdr, published.secret,
                                     verdaBytes(published.requestAuthenticator),
                                     subject.pkt->data() + msgAuthOffset(published.packet).value()),
        *published.msgAuthHolds ? ErrorMsg::success : ErrorMsg::invalidMsgAuth);
    EXPECT_EQ(subject.bytes(), published.packet);
    ++checked;
  }
  EXPECT_EQ(checked, 32);
}

}  // namespace
