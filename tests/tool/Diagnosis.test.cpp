#include "tool/checks/Diagnosis.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/PacketMaker.h"
#include "tests/support/Walk.h"
#include "tool/checks/Hypothesis.h"

namespace RadiusPacketTool {
namespace {

using TestSupport::attributeBytes;
using TestSupport::bytesOf;
using TestSupport::ByteVector;
using TestSupport::countingBytes;
using TestSupport::hmacMd5;
using TestSupport::joined;
using TestSupport::md5;
using TestSupport::PacketMaker;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;
using Verda::U8;

constexpr U8 accessRequest = 1;
constexpr U8 accessAccept = 2;
constexpr U8 accountingRequest = 4;
constexpr U8 coaRequest = 43;

constexpr std::size_t headerLength = 20;
constexpr std::size_t authenticatorAt = 4;

const std::string hexSecret = "73656372657453454352455421";

/// A packet that fails, and what is known of it.
struct Case {
  const char* name;
  const char* hypothesis;  ///< what fits it
  std::string finding;
  ByteVector packet;
  std::string secret = testSecret;
  ByteVector reqAuth = testReqAuth;
  bool hasSecret = true;
};

// ---- Packets of signers that go their own ways ----

/// Writes bytes into a packet.
ByteVector with(ByteVector packet, std::size_t offset, const ByteVector& bytes) {
  std::ranges::copy(bytes, packet.begin() + static_cast<std::ptrdiff_t>(offset));
  return packet;
}

ByteVector withLength(const ByteVector& packet, std::size_t length) {
  return with(packet, 2, {static_cast<U8>(length / 256), static_cast<U8>(length % 256)});
}

ByteVector userName() {
  return attributeBytes(1, bytesOf("alice"));
}

ByteVector messageAuthenticator(const ByteVector& value = ByteVector(16)) {
  return attributeBytes(80, value);
}

/// An unsigned packet with `authenticator` in place.
ByteVector unsignedPacket(U8 code, const ByteVector& authenticator, const ByteVector& attributes) {
  const std::size_t length = headerLength + attributes.size();
  return withLength(joined({ByteVector{code, 7, 0, 0}, authenticator, attributes}), length);
}

/// The response's bytes with the authenticator that is made of `covered`.
ByteVector signedAs(const ByteVector& packet, const ByteVector& covered) {
  return with(packet, authenticatorAt, md5(joined({covered, bytesOf(testSecret)})));
}

ByteVector hmac(const ByteVector& packet) {
  return hmacMd5(bytesOf(testSecret), packet);
}

/// An answer with a Message-Authenticator in the first place, by another secret.
ByteVector answerBy(const std::string& secret) {
  return PacketMaker(accessAccept)
      .secretIs(secret)
      .addMessageAuthenticator()
      .addRaw(userName())
      .make();
}

constexpr std::size_t firstMessageAuthenticatorValue = headerLength + 2;

/// An answer whose attributes begin with a Message-Authenticator, which is zero.
ByteVector zeroedAnswer() {
  return unsignedPacket(accessAccept, testReqAuth, joined({messageAuthenticator(), userName()}));
}

/// The same with this Message-Authenticator, and signed behind that.
ByteVector answerWith(const ByteVector& value) {
  const ByteVector packet = with(zeroedAnswer(), firstMessageAuthenticatorValue, value);
  return signedAs(packet, packet);
}

/// The authenticator, then the Message-Authenticator over it.
ByteVector answerInWrongOrder() {
  const ByteVector early = signedAs(zeroedAnswer(), zeroedAnswer());
  return with(early, firstMessageAuthenticatorValue, hmac(early));
}

/// Likewise, and the authenticator once more.
ByteVector answerInWrongOrderSignedAgain() {
  const ByteVector early = signedAs(zeroedAnswer(), zeroedAnswer());
  return answerWith(hmac(early));
}

ByteVector answerSignedBeforeItsMessageAuthenticator() {
  const ByteVector early = signedAs(zeroedAnswer(), zeroedAnswer());
  return with(early, firstMessageAuthenticatorValue, hmac(zeroedAnswer()));
}

ByteVector answerSignedWhileItHeldTheRightOne() {
  const ByteVector right =
      with(zeroedAnswer(), firstMessageAuthenticatorValue, hmac(zeroedAnswer()));
  return answerWith(hmac(right));
}

ByteVector answerSignedWhileItHeldTheRequestAuthenticator() {
  return answerWith(hmac(with(zeroedAnswer(), firstMessageAuthenticatorValue, testReqAuth)));
}

ByteVector answerSignedWithLength(std::size_t length) {
  const ByteVector packet = unsignedPacket(accessAccept, testReqAuth, userName());
  return signedAs(packet, withLength(packet, length));
}

/// A Message-Authenticator that was computed before it counted in the Length.
ByteVector answerWhoseLengthLacksTheMessageAuthenticator() {
  const ByteVector packet = zeroedAnswer();
  return answerWith(hmac(withLength(packet, packet.size() - 18)));
}

ByteVector answerWithoutTheMessageAuthenticatorInTheMessageAuthenticator() {
  return answerWith(hmac(unsignedPacket(accessAccept, testReqAuth, userName())));
}

ByteVector answerWithoutTheMessageAuthenticatorInTheAuthenticator() {
  const ByteVector without = unsignedPacket(accessAccept, testReqAuth, userName());
  const ByteVector packet =
      with(zeroedAnswer(), firstMessageAuthenticatorValue, hmac(zeroedAnswer()));
  return signedAs(packet, without);
}

ByteVector paddedAnswer() {
  const ByteVector packet = PacketMaker(accessAccept).addRaw(userName()).make();
  return joined({packet, ByteVector(5)});
}

/// The digest covers the padding.
ByteVector answerSignedWithItsPadding() {
  const ByteVector packet =
      joined({unsignedPacket(accessAccept, testReqAuth, userName()), ByteVector(5)});
  return signedAs(packet, packet);
}

/// The digest covers so many bytes, zeros behind the packet among them. The last attribute is as
/// long as that none of its ends is where the digest's is.
ByteVector answerSignedUpTo(std::size_t end) {
  const ByteVector packet = unsignedPacket(
      accessAccept, testReqAuth, joined({userName(), attributeBytes(24, {1, 2, 3, 4, 5})}));
  ByteVector covered = packet;
  covered.resize(end);
  return signedAs(packet, covered);
}

/// The Length leaves the last attribute out.
ByteVector answerOfChangedLength() {
  const ByteVector packet = PacketMaker(accessAccept).addRaw(userName()).add(24, {1, 2, 3}).make();
  return withLength(packet, packet.size() - 5);
}

ByteVector answerWithAddedAttribute() {
  const ByteVector packet = PacketMaker(accessAccept).addRaw(userName()).make();
  return withLength(joined({packet, attributeBytes(33, {1, 2, 3})}), packet.size() + 5);
}

/// A packet with the digests of its attributes in another order.
ByteVector answerOf(const std::vector<ByteVector>& attributes,
                    const std::vector<ByteVector>& signedOrder) {
  const auto made = [](const std::vector<ByteVector>& order) {
    PacketMaker maker(accessAccept);
    for (const ByteVector& attribute : order) {
      maker.addRaw(attribute);
    }
    return maker.make();
  };
  const ByteVector signature = made(signedOrder);
  return with(made(attributes), authenticatorAt,
              ByteVector(signature.begin() + authenticatorAt, signature.begin() + headerLength));
}

const ByteVector first = attributeBytes(6, {0, 0, 0, 2});
const ByteVector second = attributeBytes(25, {1});
const ByteVector third = attributeBytes(11, bytesOf("filter"));
const ByteVector fourth = attributeBytes(7, {0, 0, 0, 1});

/// The attributes in the one order, with the Message-Authenticator and the authenticator that they
/// get in the other.
ByteVector signedInOrder(const std::vector<ByteVector>& attributes,
                         const std::vector<ByteVector>& signedOrder) {
  const auto packetOf = [](const std::vector<ByteVector>& order, const ByteVector& value) {
    ByteVector content;
    for (const ByteVector& attribute : order) {
      content = joined({content, attribute[0] == 80 ? messageAuthenticator(value) : attribute});
    }
    return unsignedPacket(accessAccept, testReqAuth, content);
  };
  const ByteVector value = hmac(packetOf(signedOrder, ByteVector(16)));
  return signedAs(packetOf(attributes, value), packetOf(signedOrder, value));
}

/// A request whose Message-Authenticator was computed in the last place.
ByteVector requestWithMovedMessageAuthenticator() {
  const ByteVector authenticator = countingBytes(16, 0x30);
  const ByteVector asSigned =
      unsignedPacket(accessRequest, authenticator, joined({userName(), messageAuthenticator()}));
  return unsignedPacket(accessRequest, authenticator,
                        joined({messageAuthenticator(hmac(asSigned)), userName()}));
}

ByteVector requestOverZeros() {
  const ByteVector attributes = joined({messageAuthenticator(), userName()});
  return with(unsignedPacket(accessRequest, countingBytes(16, 0x30), attributes),
              firstMessageAuthenticatorValue,
              hmac(unsignedPacket(accessRequest, ByteVector(16), attributes)));
}

ByteVector requestInWrongOrder(U8 code) {
  const ByteVector zeroed = unsignedPacket(code, ByteVector(16), messageAuthenticator());
  const ByteVector early = signedAs(zeroed, zeroed);
  return with(early, firstMessageAuthenticatorValue, hmac(early));
}

// ---- What is made of them ----

std::string added(const std::string& what) {
  return "The signer's secret is the given one with " + what +
         ": take that off where it is configured.";
}

std::string takenOff(const std::string& what) {
  return "The signer's secret is the given one without " + what +
         ": take that off the secret that is given here.";
}

const char* const whiteSpace = "white space around the secret";
const char* const quotes = "quotes around the secret";
const char* const hex = "the secret in hex";
const char* const noSecret = "an empty secret";
const char* const otherClient = "the secret of another client";
const char* const zeros = "zeros in the place of the Request Authenticator";
const char* const otherRequest = "the authenticator of another request";
const char* const wrongOrder = "an authenticator computed before the Message-Authenticator";
const char* const notZeroed = "a Message-Authenticator computed without being zeroed";
const char* const changedLength = "a Length field that was changed";
const char* const otherLength = "digests over another length";
const char* const without = "digests without the Message-Authenticator";
const char* const addedBehind = "attributes added behind the signer";
const char* const otherOrder = "attributes sorted, moved or exchanged";

const std::string signerTakesHex =
    "The signer's secret is the bytes that the given one says in hex: give the bytes themselves "
    "here, or have the signer take the digits for text.";
const std::string signerTakesText =
    "The signer's secret is the hex digits of the given one: the signer takes them for text where "
    "its bytes are meant.";
const std::string emptySecret =
    "The signer's secret is empty: none is configured there for its peer.";
const std::string otherClientsSecret =
    "The signer's secret is the one of 192.0.2.0/24: the secrets of two clients were mixed up, or "
    "the client is known by another address.";
const std::string wrongOrderInMessageAuthenticator =
    "The Message-Authenticator was computed with the packet's own authenticator in place, which "
    "was "
    "computed before it: it must be computed first, with the Request Authenticator there in a "
    "response and zeros in a request.";
const std::string reordered = ": who puts attributes in another order must sign anew.";

const std::string otherClientSecret = "another client's";
const ByteVector otherReqAuth = countingBytes(16, 0x70);

std::vector<Case> secretCases() {
  return {
      {"newline", whiteSpace, added("a newline at its end"), answerBy(testSecret + "\n")},
      {"CR and newline", whiteSpace, added("a carriage return and a newline at its end"),
       answerBy(testSecret + "\r\n")},
      {"CR", whiteSpace, added("a carriage return at its end"), answerBy(testSecret + "\r")},
      {"space", whiteSpace, added("a space at its end"), answerBy(testSecret + " ")},
      {"tab", whiteSpace, added("a tab at its end"), answerBy(testSecret + "\t")},
      {"leading space", whiteSpace, added("a space at its beginning"), answerBy(" " + testSecret)},
      {"leading tab", whiteSpace, added("a tab at its beginning"), answerBy("\t" + testSecret)},
      {"two spaces", whiteSpace, added("a space at its beginning and one at its end"),
       answerBy(" " + testSecret + " ")},
      {"missing newline", whiteSpace, takenOff("a newline at its end"), answerBy(testSecret),
       testSecret + "\n"},
      {"missing CR and newline", whiteSpace, takenOff("a carriage return and a newline at its end"),
       answerBy(testSecret), testSecret + "\r\n"},
      {"missing space", whiteSpace, takenOff("a space at its beginning"), answerBy(testSecret),
       " " + testSecret},
      {"double quotes", quotes, added("double quotes around it"),
       answerBy("\"" + testSecret + "\"")},
      {"single quotes", quotes, added("single quotes around it"), answerBy("'" + testSecret + "'")},
      {"missing quotes", quotes, takenOff("double quotes around it"), answerBy(testSecret),
       "\"" + testSecret + "\""},
      {"hex", hex, signerTakesHex, answerBy("secretSECRET!"), hexSecret},
      {"hex behind 0x", hex, signerTakesHex, answerBy("secretSECRET!"), "0x" + hexSecret},
      {"digits", hex, signerTakesText, answerBy(hexSecret), "secretSECRET!"},
      {"digits behind 0x", hex, signerTakesText, answerBy("0x" + hexSecret), "secretSECRET!"},
      {"upper-case digits", hex, signerTakesText, answerBy("6A"), "j"},
      {"empty", noSecret, emptySecret, answerBy("")},
      {"empty, and none known", noSecret, emptySecret, answerBy(""), "", testReqAuth, false},
      {"other client's", otherClient, otherClientsSecret, answerBy(otherClientSecret)},
      {"other client's, and none known", otherClient, otherClientsSecret,
       answerBy(otherClientSecret), "", testReqAuth, false},
      {"newline, in a request", whiteSpace, added("a newline at its end"),
       PacketMaker(accessRequest).secretIs(testSecret + "\n").addMessageAuthenticator().make()},
      {"newline, without Message-Authenticator", whiteSpace, added("a newline at its end"),
       PacketMaker(accountingRequest).secretIs(testSecret + "\n").addRaw(userName()).make()},
  };
}

std::vector<Case> requestCases() {
  const std::string responseOverZeros =
      "The signer put zeros in the place of the Request Authenticator: the authenticator of the "
      "request that it answers belongs there.";
  const ByteVector answerToAnother =
      PacketMaker(accessAccept).reqAuthIs(otherReqAuth).addMessageAuthenticator().make();
  return {
      {"zeros", zeros, responseOverZeros,
       PacketMaker(accessAccept).reqAuthIs({}).addMessageAuthenticator().make()},
      {"zeros, and no request known",
       zeros,
       responseOverZeros,
       PacketMaker(accessAccept).reqAuthIs({}).make(),
       testSecret,
       {}},
      {"zeros in a request", zeros,
       "The Message-Authenticator was computed with zeros in the place of the packet's "
       "authenticator: that belongs there as it stands.",
       requestOverZeros()},
      {"another request than the paired", otherRequest,
       "The packet answers packet 3 of file, not packet 9 of file, with which it is paired: give "
       "that one's authenticator with -a.",
       answerToAnother},
      {"another request, and none known",
       otherRequest,
       "The packet answers packet 3 of file, with which it is not paired: give that one's "
       "authenticator with -a.",
       answerToAnother,
       testSecret,
       {}},
  };
}

std::vector<Case> computationCases() {
  return {
      {"authenticator first", wrongOrder, wrongOrderInMessageAuthenticator, answerInWrongOrder()},
      {"authenticator first and last", wrongOrder, wrongOrderInMessageAuthenticator,
       answerInWrongOrderSignedAgain()},
      {"authenticator first, in a request", wrongOrder, wrongOrderInMessageAuthenticator,
       requestInWrongOrder(coaRequest)},
      {"authenticator before a right Message-Authenticator", wrongOrder,
       "The authenticator was computed before the Message-Authenticator was filled in: it must be "
       "computed last.",
       answerSignedBeforeItsMessageAuthenticator()},
      {"signed twice", notZeroed,
       "The Message-Authenticator was computed anew while its field held an earlier one: the field "
       "must be zeroed each time.",
       answerSignedWhileItHeldTheRightOne()},
      {"Request Authenticator in the field", notZeroed,
       "The Message-Authenticator was computed while its field held the Request Authenticator: the "
       "field must be zeroed first.",
       answerSignedWhileItHeldTheRequestAuthenticator()},
  };
}

std::vector<Case> layoutCases() {
  const std::string early = "The packet was signed while its Length field said ";
  return {
      {"changed Length", changedLength,
       "The packet was signed with a Length of 32, as many bytes as there are: the Length field, "
       "which says 27, was changed behind the signer.",
       answerOfChangedLength()},
      {"padding", otherLength,
       "The packet was signed over all 32 bytes there are: the 27 that its Length says must be "
       "signed, without padding.",
       answerSignedWithItsPadding()},
      {"a part of the packet", otherLength,
       "The packet was signed over 30 bytes: the 34 that its Length says must be signed.",
       answerSignedUpTo(30)},
      {"zeros behind the packet", otherLength,
       "The packet was signed over 4096 bytes, zeros behind its end among them: the 34 that its "
       "Length says must be signed.",
       answerSignedUpTo(4096)},
      {"Length zero", otherLength, early + "0: it must be signed with its final Length, 27.",
       answerSignedWithLength(0)},
      {"Length of the header", otherLength,
       early + "20: it must be signed with its final Length, 27.", answerSignedWithLength(20)},
      {"Length before the Message-Authenticator", otherLength,
       early + "27: it must be signed with its final Length, 45.",
       answerWhoseLengthLacksTheMessageAuthenticator()},
      {"Message-Authenticator without itself", without,
       "The Message-Authenticator was computed over the packet without that attribute: it must be "
       "there, with 16 zero bytes, and count in the Length.",
       answerWithoutTheMessageAuthenticatorInTheMessageAuthenticator()},
      {"authenticator without the Message-Authenticator", without,
       "The authenticator was computed before the Message-Authenticator was added: it must be "
       "computed last, over all attributes.",
       answerWithoutTheMessageAuthenticatorInTheAuthenticator()},
      {"added attribute", addedBehind,
       "The packet was signed as it is up to offset 27: the attributes from there on were added "
       "behind the signer, and who adds them must sign anew.",
       answerWithAddedAttribute()},
      {"sorted", otherOrder,
       "The packet was signed with its attributes sorted by their type" + reordered,
       answerOf({third, second, first, fourth}, {first, fourth, third, second})},
      {"reversed", otherOrder,
       "The packet was signed with its attributes in the reverse order" + reordered,
       answerOf({third, first, second, fourth}, {fourth, second, first, third})},
      {"moved from the first place", otherOrder,
       "The packet was signed with the attribute at offset 34 (type 25) in the first place" +
           reordered,
       answerOf({third, first, second, fourth}, {second, third, first, fourth})},
      {"moved from the last place", otherOrder,
       "The packet was signed with the attribute at offset 20 (type 11) in the last place" +
           reordered,
       answerOf({third, first, second, fourth}, {first, second, fourth, third})},
      {"moved from the middle", otherOrder,
       "The packet was signed with the attribute at offset 20 (type 25) in place 3" + reordered,
       answerOf({second, third, first, fourth}, {third, first, second, fourth})},
      {"exchanged", otherOrder,
       "The packet was signed with the attributes at offsets 20 and 34 exchanged" + reordered,
       answerOf({third, first, second, fourth}, {second, first, third, fourth})},
      {"any order", otherOrder,
       "The packet was signed with its attributes in the order 3, 1, 4, 2" + reordered,
       answerOf({third, first, second, fourth}, {second, third, fourth, first})},
      {"moved Message-Authenticator", otherOrder,
       "The packet was signed with its attributes sorted by their type" + reordered,
       requestWithMovedMessageAuthenticator()},
  };
}

std::vector<Case> allCases() {
  std::vector<Case> all;
  for (const auto& cases : {secretCases(), requestCases(), computationCases(), layoutCases()}) {
    all.insert(all.end(), cases.begin(), cases.end());
  }
  return all;
}

/// A case as the tool has it.
class Known {
 public:
  explicit Known(const Case& one)
      : secret_(one.secret),
        others_{{.client = "192.0.2.0/24", .secret = &otherSecret_}},
        packet_{.place = {.source = "file", .index = 10},
                .bytes = one.packet,
                .datagram = std::nullopt,
                .whyBinary = std::nullopt} {
    context_.header = headerOf(packet_.bytes);
    context_.secret = one.hasSecret ? &secret_ : nullptr;
    context_.request.bytes = verdaBytes(one.reqAuth);
    if (!one.reqAuth.empty()) {
      context_.request.pairedWith = {.source = "file", .index = 9};
    }
    for (std::size_t index = 2; index <= 4; ++index) {
      const ByteVector authenticator = index == 3 ? otherReqAuth : ByteVector(16, 0xee);
      requests_.take({.source = "file", .index = index}, {.code = accessRequest,
                                                          .id = static_cast<U8>(index),
                                                          .length = headerLength,
                                                          .authenticator = authenticator});
    }
  }

  PacketContext& context() { return context_; }
  Diagnosis diagnosis() const { return diagnose(packet_, context_, others_, requests_); }
  std::optional<FailingPacket> failing() const {
    return FailingPacket::of(packet_, context_, others_, requests_);
  }

 private:
  Secret secret_;
  Secret otherSecret_{otherClientSecret};
  std::vector<NamedSecret> others_;
  EarlierRequests requests_;
  InputPacket packet_;
  PacketContext context_;
};

std::vector<Hypothesis> allHypotheses() {
  std::vector<Hypothesis> all;
  for (const std::span<const Hypothesis> some :
       {secretHypotheses(), requestHypotheses(), computationHypotheses(), layoutHypotheses()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

TEST(Diagnosis, NamesWhatFits) {
  for (const Case& one : allCases()) {
    SCOPED_TRACE(one.name);
    EXPECT_EQ(Known(one).diagnosis().finding, one.finding);
  }
}

TEST(Diagnosis, NoOtherHypothesisFits) {
  for (const Case& one : allCases()) {
    SCOPED_TRACE(one.name);
    const Known known(one);
    const std::optional<FailingPacket> failing = known.failing();
    ASSERT_TRUE(failing.has_value());
    for (const Hypothesis& hypothesis : allHypotheses()) {
      SCOPED_TRACE(hypothesis.name);
      const bool fits = hypothesis.applies(*failing) && hypothesis.finding(*failing).has_value();
      EXPECT_EQ(fits, std::string(hypothesis.name) == one.hypothesis);
    }
  }
}

TEST(Diagnosis, EveryHypothesisHasACase) {
  for (const Hypothesis& hypothesis : allHypotheses()) {
    EXPECT_TRUE(std::ranges::any_of(allCases(), [&](const Case& one) {
      return std::string(one.hypothesis) == hypothesis.name;
    })) << hypothesis.name;
  }
}

using Names = std::vector<std::string>;

TEST(Diagnosis, SaysWhatWasRuledOutWhenNothingFits) {
  const auto ruledOut = [](const Case& one) {
    const Diagnosis diagnosis = Known(one).diagnosis();
    EXPECT_EQ(diagnosis.finding, std::nullopt);
    return diagnosis.ruledOut;
  };
  const Case answer{"", "", "", answerBy("nobody's")};
  EXPECT_EQ(ruledOut(answer),
            (Names{whiteSpace, quotes, hex, noSecret, otherClient, zeros, otherRequest, wrongOrder,
                   otherLength, without, addedBehind, otherOrder}));
  EXPECT_EQ(ruledOut({"", "", "", answerWith(ByteVector(16, 1))}),
            (Names{whiteSpace, quotes, hex, noSecret, otherClient, zeros, otherRequest, wrongOrder,
                   notZeroed, otherLength, without, addedBehind, otherOrder}));
  EXPECT_EQ(ruledOut({"", "", "", answerBy("nobody's"), "", {}, true}),
            (Names{zeros, otherRequest}));
  EXPECT_EQ(ruledOut({"", "", "", answerBy("nobody's"), "", testReqAuth, false}),
            (Names{noSecret, otherClient}));
  EXPECT_EQ(ruledOut({"", "", "", PacketMaker(accountingRequest).secretIs("nobody's").make()}),
            (Names{whiteSpace, quotes, hex, noSecret, otherClient, otherLength}));
  EXPECT_EQ(ruledOut({"", "", "", PacketMaker(accessRequest).addMessageAuthenticator(true).make()}),
            (Names{whiteSpace, quotes, hex, noSecret, otherClient, zeros, notZeroed, otherLength,
                   without, addedBehind}));
}

TEST(Diagnosis, AnswerToARequestThatWasGivenAnswersNone) {
  Known known({"", "", "", PacketMaker(accessAccept).reqAuthIs(otherReqAuth).make()});
  known.context().request.pairedWith.reset();
  EXPECT_EQ(
      known.diagnosis().finding,
      "The packet answers packet 3 of file, not the request whose authenticator is given: give "
      "that one's authenticator with -a.");
}

TEST(Diagnosis, HasNothingToSayOfWhatIsRight) {
  for (const ByteVector& packet :
       {answerBy(testSecret), PacketMaker(accessRequest).add(1, bytesOf("alice")).make(),
        PacketMaker(accessRequest).addMessageAuthenticator().make(),
        PacketMaker(accountingRequest).addMessageAuthenticator().make(), paddedAnswer()}) {
    const Diagnosis diagnosis = Known({"", "", "", packet}).diagnosis();
    EXPECT_EQ(diagnosis.finding, std::nullopt);
    EXPECT_EQ(diagnosis.ruledOut, Names());
  }
}

TEST(Diagnosis, HasNothingToSayOfWhatIsNoPacket) {
  const ByteVector answer = answerBy("nobody's");
  for (std::size_t size = 0; size < headerLength; ++size) {
    const Diagnosis diagnosis =
        Known({"", "", "", ByteVector(answer.begin(), answer.begin() + static_cast<long>(size))})
            .diagnosis();
    EXPECT_EQ(diagnosis.finding, std::nullopt);
    EXPECT_EQ(diagnosis.ruledOut, Names());
  }
  EXPECT_EQ(Known({"", "", "", withLength(answer, 19)}).diagnosis().ruledOut, Names());
}

TEST(Diagnosis, CutPacketMayHaveHadAnotherLength) {
  const ByteVector answer = PacketMaker(accessAccept).addRaw(userName()).make();
  EXPECT_EQ(Known({"", "", "", withLength(answer, 300)}).diagnosis().finding,
            "The packet was signed with a Length of 27, as many bytes as there are: the Length "
            "field, which says 300, was changed behind the signer.");
}

TEST(Diagnosis, AccountingPacketsAreDiagnosedByTheirMessageAuthenticatorToo) {
  const ByteVector zeroed =
      unsignedPacket(accountingRequest, ByteVector(16), messageAuthenticator());
  const ByteVector packet = with(zeroed, firstMessageAuthenticatorValue,
                                 hmac(with(zeroed, firstMessageAuthenticatorValue, hmac(zeroed))));
  EXPECT_EQ(Known({"", "", "", signedAs(packet, packet)}).diagnosis().finding,
            "The Message-Authenticator was computed anew while its field held an earlier one: the "
            "field must be zeroed each time.");
}

/// Every move of one among attributes of different lengths is undone, the Message-Authenticator's
/// too.
TEST(Diagnosis, FindsEveryMoveOfOneAttribute) {
  const std::vector<ByteVector> order{first, second, messageAuthenticator(), third, fourth};
  for (std::size_t from = 0; from < order.size(); ++from) {
    for (std::size_t to = 0; to < order.size(); ++to) {
      std::vector<ByteVector> moved = order;
      moved.erase(moved.begin() + static_cast<std::ptrdiff_t>(from));
      moved.insert(moved.begin() + static_cast<std::ptrdiff_t>(to), order[from]);
      SCOPED_TRACE(testing::Message() << from << " to " << to);
      EXPECT_EQ(Known({"", "", "", signedInOrder(moved, order)}).diagnosis().finding.has_value(),
                from != to);
    }
  }
}

TEST(Diagnosis, FindsAMoveInALongPacket) {
  std::vector<ByteVector> attributes;
  for (U8 index = 0; index < 200; ++index) {
    attributes.push_back(attributeBytes(static_cast<U8>(index % 2), ByteVector(10, index)));
  }
  std::vector<ByteVector> moved = attributes;
  std::rotate(moved.begin(), moved.begin() + 5, moved.begin() + 6);
  EXPECT_EQ(Known({"", "", "", answerOf(attributes, moved)}).diagnosis().finding,
            "The packet was signed with the attribute at offset 80 (type 1) in the first place" +
                reordered);
}

TEST(Diagnosis, GreatestPacketOfTheShortestAttributesComesToAnEnd) {
  ByteVector attributes;
  while (attributes.size() + headerLength + 2 <= 4096) {
    attributes = joined({attributes, ByteVector{static_cast<U8>(attributes.size()), 2}});
  }
  EXPECT_EQ(
      Known({"", "", "", PacketMaker(accessAccept).secretIs("nobody's").addRaw(attributes).make()})
          .diagnosis()
          .finding,
      std::nullopt);
}

TEST(Diagnosis, NeverRepeatsASecret) {
  const std::string secret = "Xyzzy-5461";
  for (const std::string& signer :
       {secret + "\n", "\"" + secret + "\"", std::string("nobody's"), otherClientSecret}) {
    const Diagnosis diagnosis = Known({"", "", "", answerBy(signer), secret}).diagnosis();
    std::string said = diagnosis.finding.value_or("");
    for (const std::string& name : diagnosis.ruledOut) {
      said += name;
    }
    EXPECT_EQ(said.find(secret), std::string::npos);
    EXPECT_EQ(said.find(otherClientSecret), std::string::npos);
  }
}

TEST(Diagnosis, WhereverTheMessageAuthenticatorStandsNothingOutsideThePacketIsTouched) {
  const std::vector<ByteVector> packets{
      PacketMaker(accessAccept).secretIs("unknown").addMessageAuthenticator().make(),
      PacketMaker(accessAccept)
          .secretIs("unknown")
          .addMessageAuthenticator()
          .addRaw(userName())
          .make(),
      PacketMaker(accessAccept)
          .secretIs("unknown")
          .addRaw(userName())
          .addMessageAuthenticator()
          .make()};
  for (const ByteVector& packet : packets) {
    const Diagnosis diagnosis = Known({"", "", "", packet}).diagnosis();
    EXPECT_EQ(diagnosis.finding, std::nullopt);
    EXPECT_FALSE(diagnosis.ruledOut.empty());
  }
}

}  // namespace
}  // namespace RadiusPacketTool
