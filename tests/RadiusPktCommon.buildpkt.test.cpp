#include "RadiusPacketParser/RadiusPktCommon.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZoCrypto/FaultSeam.h"

#include "tests/support/Assembly.h"
#include "tests/support/CatchAssertion.h"

namespace {

using namespace TestSupport::Assembly;
using ZoCrypto::FaultSeam;
using ZoCrypto::Primitive;

TEST(BuildPkt, NeedsAPacketOrAHeader) {
  const CapturingSink trace;
  const Ptr<PktReturn> built =
      buildPkt(nullptr, testSecret, {}, nullptr, RequestMaker().make(), dictionary());
  EXPECT_EQ(built->errorMsg(), ErrorMsg::invalidPktPtr);
  EXPECT_EQ(built->pkt(), nullptr);
}

TEST(BuildPkt, DoesNotUseAHeaderWhenThereIsAPacket) {
  const auto hdr = headerOf(accessAccept);
  hdr->idIs(99);
  const ByteVector old = PacketMaker(accountingRequest).add(1, {'n'}).make();
  const Ptr<PktReturn> built =
      buildPkt(pktOf(old), testSecret, {}, hdr, RequestMaker().make(), dictionary());
  ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
  EXPECT_EQ(bytesOf(built->pkt()), old);
  EXPECT_EQ(hdr->code(), accessAccept);
  EXPECT_EQ(hdr->length(), 0);
  EXPECT_EQ(hdr->authenticator(), headerOf(accessAccept)->authenticator());
}

TEST(BuildPkt, WritesLengthAndAuthenticatorIntoTheHeader) {
  for (const U8 code : ByteVector{1, 2, 4, 12, 43}) {
    SCOPED_TRACE(int{code});
    const auto hdr = headerOf(code);
    const Ptr<PktReturn> built =
        buildPkt(nullptr, testSecret, verdaBytes(reqAuthFor(code)), hdr,
                 RequestMaker().add(userName, {text("nemo")}).make(), dictionary());
    const ByteVector packet = bytesOf(built->pkt());
    EXPECT_EQ(hdr->length(), 26);
    EXPECT_EQ(packet[2] * 256 + packet[3], 26);
    EXPECT_EQ(hdr->authenticator().bytes().size(), 16U);
    EXPECT_TRUE(std::ranges::equal(hdr->authenticator().bytes(), std::span(packet).subspan(4, 16)));
    EXPECT_EQ(hdr->code(), code);
    EXPECT_EQ(hdr->id(), 7);
  }
}

TEST(BuildPkt, LeavesTheHeaderAloneWhenAnAttributeIsRefused) {
  const CapturingSink trace;
  const auto hdr = headerOf(accessRequest);
  const auto request = RequestMaker().add(userName, {text("nemo"), 1U}).make();
  EXPECT_EQ(buildPkt(nullptr, testSecret, {}, hdr, request, dictionary())->errorMsg(),
            ErrorMsg::invalidAttrDataType);
  EXPECT_EQ(hdr->length(), 0);
  EXPECT_EQ(hdr->authenticator(), headerOf(accessRequest)->authenticator());
}

TEST(BuildPkt, LeavesZerosForAnEmptyAuthenticator) {
  const auto hdr = headerOf(accessRequest);
  hdr->authenticatorIs(Verda::String());
  const Ptr<PktReturn> built = buildPkt(
      nullptr, testSecret, {}, hdr, RequestMaker().addMessageAuthenticator().make(), dictionary());
  ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
  EXPECT_EQ(bytesOf(built->pkt()), PacketMaker(accessRequest)
                                       .ownAuthenticatorIs(ByteVector(16))
                                       .addMessageAuthenticator()
                                       .make());
  EXPECT_EQ(hdr->authenticator(), Verda::String());
}

TEST(BuildPkt, TakesTheFirstSixteenBytesOfALongerAuthenticator) {
  const ByteVector authenticator = countingBytes(17, 0x30);
  const auto hdr = headerOf(accessRequest);
  hdr->authenticatorIs(Verda::String(std::span<const U8>(authenticator)));
  const auto built = buildPkt(nullptr, testSecret, {}, hdr, RequestMaker().make(), dictionary());
  EXPECT_EQ(bytesOf(built->pkt()), PacketMaker(accessRequest).make());
}

TEST(BuildPkt, SignsAResponseWithoutARequestAuthenticatorLikeARequest) {
  for (const bool withMessageAuthenticator : {false, true}) {
    RequestMaker request;
    PacketMaker expected(accessAccept);
    expected.reqAuthIs({});
    if (withMessageAuthenticator) {
      request.addMessageAuthenticator();
      expected.addMessageAuthenticator();
    }
    // Bytes that must count as zeros.
    const auto hdr = headerOf(accessAccept);
    hdr->authenticatorIs(Verda::String(std::string(16, 'h')));
    const auto built = buildPkt(nullptr, testSecret, {}, hdr, request.make(), dictionary());
    ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
    EXPECT_EQ(bytesOf(built->pkt()), expected.make());
  }
}

TEST(BuildPkt, MakesABufferOfItsOwnForEveryPacket) {
  const auto old = pktOf(PacketMaker(accountingRequest).make());
  const auto first = buildPkt(old, testSecret, {}, nullptr, RequestMaker().make(), dictionary());
  const auto second = buildPkt(old, testSecret, {}, nullptr, RequestMaker().make(), dictionary());
  first->pkt()->data()[0] = 99;
  EXPECT_EQ(bytesOf(second->pkt()), PacketMaker(accountingRequest).make());
  EXPECT_EQ(bytesOf(old), PacketMaker(accountingRequest).make());
}

TEST(BuildPkt, PassesOnThatAuthenticatorsCannotBeComputed) {
  struct Case {
    const char* name;
    U8 code;
    Primitive primitive;
    std::string message;
  };
  for (const Case& one : {
           Case{"Message-Authenticator of a request", 1, Primitive::hmac,
                "MD5 generation failed, digestLen: 0"},
           {"Message-Authenticator of a response", 2, Primitive::hmac,
            "MD5 generation failed, digestLen: 0"},
           {"request authenticator", 4, Primitive::md5, "MD5 digest of incorrect length: 0"},
           {"response authenticator", 2, Primitive::md5, "MD5 digest of incorrect length: 0"},
       }) {
    SCOPED_TRACE(one.name);
    const RequestMaker request =
        RequestMaker().add(userName, {text("nemo")}).addMessageAuthenticator();
    FaultSeam::failIs(one.primitive);
    const Built built = build(one.code, request);
    FaultSeam::failDel();
    expectFault(built, ErrorMsg::md5GenerationFailed, {one.message});
    const ByteVector old = PacketMaker(one.code).addMessageAuthenticator().make();
    FaultSeam::failIs(one.primitive);
    const Built modified = modify(old, {});
    FaultSeam::failDel();
    expectFault(modified, ErrorMsg::md5GenerationFailed, {one.message});
  }
}

TEST(BuildPkt, PassesOnThatTheRequestAuthenticatorIsShort) {
  const CapturingSink trace;
  const auto built =
      buildPkt(nullptr, testSecret, verdaBytes(ByteVector(15)), headerOf(accessAccept),
               RequestMaker().addMessageAuthenticator().make(), dictionary());
  EXPECT_EQ(built->errorMsg(), ErrorMsg::invalidBytesCopied);
  EXPECT_EQ(built->pkt(), nullptr);
  EXPECT_EQ(trace.records(), (Records{errorRecord("", "setMessageAuthenticator",
                                                  "Mismatch in bytes copied: 15, expected: 16")}));
}

TEST(BuildPkt, AssertsTheCallersMistakes) {
  const auto name = RequestMaker().add(userName, {text("nemo")}).make();
  const auto empty = RequestMaker().make();
  const auto reqAuth = verdaBytes(testReqAuth);
  const auto assertion = [](U8 code, const Verda::Bytes& given, const Ptr<PktInfoBuilder>& request,
                            const DictPtr& dict) {
    return assertionTextOf(
        [&] { buildPkt(nullptr, testSecret, given, headerOf(code), request, dict); });
  };
  for (const U8 code : ByteVector{1, 4, 12, 40, 43}) {
    EXPECT_EQ(assertion(code, reqAuth, name, dictionary()),
              "Request authenticator found not NULL for request packet");
    EXPECT_EQ(assertion(code, {}, name, dictionary()), std::nullopt);
  }
  for (const U8 code : ByteVector{2, 3, 5, 11, 41, 42, 44, 45, 99}) {
    EXPECT_EQ(assertion(code, {}, name, dictionary()),
              "Request authenticator found NULL for response packet");
    EXPECT_EQ(assertion(code, reqAuth, name, dictionary()), std::nullopt);
  }
  EXPECT_EQ(assertion(1, reqAuth, RequestMaker().addMessageAuthenticator().make(), dictionary()),
            "Request authenticator found not NULL for request packet");
  // The other requests' Message-Authenticators are signed as those of responses.
  for (const U8 code : ByteVector{4, 40, 43}) {
    EXPECT_EQ(
        assertion(code, reqAuth, RequestMaker().addMessageAuthenticator().make(), dictionary()),
        std::nullopt);
  }
  EXPECT_EQ(assertion(1, {}, nullptr, dictionary()), "pktInfoBuilder");
  EXPECT_EQ(assertion(1, {}, name, nullptr), "dict");
  EXPECT_EQ(assertion(1, {}, empty, nullptr), std::nullopt);
}

TEST(AttributeSteps, AssertThatTheyAreGivenWhatTheyWorkOn) {
  const auto hdr = headerOf(1);
  const auto request = RequestMaker().make();
  ByteVector pkt(4096);
  const auto adding = [&](const Ptr<RadiusHdr>& header, const Ptr<PktInfoBuilder>& toAdd, U8* to) {
    return assertionTextOf([&] {
      U16 length = 20;
      U8* msgAuthPos = nullptr;
      addAttributesToPkt(testSecret, {}, header, toAdd, to, length, msgAuthPos, dictionary());
    });
  };
  constexpr const char* addingText = "hdr && pktInfoBuilder && pkt != nullptr";
  EXPECT_EQ(adding(nullptr, request, pkt.data()), addingText);
  EXPECT_EQ(adding(hdr, nullptr, pkt.data()), addingText);
  EXPECT_EQ(adding(hdr, request, nullptr), addingText);
  EXPECT_EQ(adding(hdr, request, pkt.data()), std::nullopt);

  const ByteVector old = PacketMaker(1).make();
  const auto replacing = [&](const U8* from, U8* to, const Ptr<RadiusHdr>& header,
                             const Ptr<PktInfoBuilder>& changes) {
    return assertionTextOf([&] {
      U16 length = 0;
      U8* msgAuthPos = nullptr;
      replaceAttributesInPkt(from, to, testSecret, {}, header, changes, length, msgAuthPos,
                             dictionary());
    });
  };
  constexpr const char* replacingText =
      "hdr && pktInfoBuilder && oldPkt != nullptr && newPkt != nullptr";
  EXPECT_EQ(replacing(nullptr, pkt.data(), hdr, request), replacingText);
  EXPECT_EQ(replacing(old.data(), nullptr, hdr, request), replacingText);
  EXPECT_EQ(replacing(old.data(), pkt.data(), nullptr, request), replacingText);
  EXPECT_EQ(replacing(old.data(), pkt.data(), hdr, nullptr), replacingText);
  EXPECT_EQ(replacing(old.data(), pkt.data(), hdr, request), std::nullopt);
}

TEST(BuildPkt, TracesTheEntryOfEveryOperation) {
  const CapturingSink trace(Verda::traceEntries);
  const auto functionsOf = [&] {
    std::vector<std::string> functions;
    for (const CapturedRecord& record : trace.records()) {
      EXPECT_EQ(record.facility, "RadiusPacketParser::RadiusPktParser");
      EXPECT_EQ(record.level, Verda::traceEntries);
      EXPECT_EQ(record.className, "");
      EXPECT_EQ(record.text, "entry");
      functions.push_back(record.function);
    }
    return functions;
  };
  const RequestMaker request = RequestMaker().add(vendorNumber, {1U}).addMessageAuthenticator();
  buildPkt(nullptr, testSecret, {}, headerOf(accountingRequest), request.make(), dictionary());
  EXPECT_EQ(functionsOf(), (std::vector<std::string>{
                               "buildPkt", "addAttributesToPkt", "getAttrInfo", "addVsa",
                               "addIntegerDateTypes", "encryptAttribute", "setMessageAuthenticator",
                               "calculateMessageAuthenticator", "setRequestAuthenticator"}));
  const auto old = pktOf(PacketMaker(accessAccept).add(1, {'n'}).addVendor(9, 2, {}).make());
  const RequestMaker replacing = RequestMaker().replace(userName, {text("m")}).remove(vendorNumber);
  const auto reqAuth = verdaBytes(testReqAuth);
  const CapturingSink ofModify(Verda::traceEntries);
  buildPkt(old, testSecret, reqAuth, nullptr, replacing.make(), dictionary());
  std::vector<std::string> functions;
  for (const CapturedRecord& record : ofModify.records()) {
    functions.push_back(record.function);
  }
  EXPECT_EQ(functions,
            (std::vector<std::string>{"buildPkt", "replaceAttributesInPkt", "getAttrInfo",
                                      "addAttribute", "addStrTypes", "encryptAttribute",
                                      "addAttributesToPkt", "setResponseAuthenticator"}));
}

TEST(BuildPkt, SignsUnderAShortRequestAuthenticatorWhereNothingElseNeedsIt) {
  const auto hdr = headerOf(accessAccept);
  hdr->authenticatorIs(Verda::String(std::string(16, 'h')));
  const ByteVector reqAuth = countingBytes(15, 0x60);
  const auto built = buildPkt(nullptr, testSecret, verdaBytes(reqAuth), hdr,
                              RequestMaker().add(userName, {text("nemo")}).make(), dictionary());
  ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
  // The byte that is missing is that of the header.
  EXPECT_EQ(TestSupport::bytesOf(built->pkt()), PacketMaker(accessAccept)
                                                    .reqAuthIs(joined({reqAuth, ByteVector{'h'}}))
                                                    .add(1, bytesOf("nemo"))
                                                    .make());
}

}  // namespace
