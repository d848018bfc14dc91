#include "RadiusPacketParser/RadiusPktBuilder.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZoCrypto/FaultSeam.h"

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tests/support/BuildRequest.h"
#include "tests/support/CapturingSink.h"
#include "tests/support/GoldenPackets.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/SharedSecrets.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"

namespace {

using namespace RadiusPktParserBase;
using TestSupport::ByteVector;
using TestSupport::CapturingSink;
using TestSupport::countingBytes;
using TestSupport::GoldenPacket;
using TestSupport::headerOf;
using TestSupport::joined;
using TestSupport::PacketMaker;
using TestSupport::pktOf;
using TestSupport::Records;
using TestSupport::reqAuthFor;
using TestSupport::RequestMaker;
using TestSupport::shippedDictionary;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;
using TestSupport::Walked;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U16;
using Verda::U8;
using ZoCrypto::FaultSeam;
using ZoCrypto::Primitive;

// ---- The build request ----

const Attribute userName = standardAttribute(1);
const Attribute someVendor = vendorAttribute(9, 1);

TEST(BuildRequest, StartsEmpty) {
  const auto request = pktInfoBuilderFactory();
  EXPECT_EQ(request->attributesToAdd().size(), 0U);
  EXPECT_EQ(request->attributesToReplace().size(), 0U);
  EXPECT_EQ(request->attributesToRemove().size(), 0U);
  EXPECT_NE(PktInfoBuilder::PktInfoBuilderIs(), request);
  const Ptr<PktInfoBase> base = request;
  EXPECT_EQ(base, request);
}

TEST(BuildRequest, FindsOrMakesAnEntryToAdd) {
  const auto request = pktInfoBuilderFactory();
  const Ptr<AttrToAddValue> entry = request->attributesToAddIs(3);
  EXPECT_EQ(entry->key(), 3);
  EXPECT_EQ(entry->attrWithValue(), nullptr);
  const auto attribute = attrWithValueFactory(userName);
  attribute->attrValuePush(String("nemo"));
  entry->attrWithValueIs(attribute);
  EXPECT_EQ(request->attributesToAddIs(3), entry);
  EXPECT_EQ(entry->attrWithValue(), attribute);
  EXPECT_EQ(entry->attrWithValue()->attrValue().size(), 1U);
  EXPECT_EQ(request->attributesToAdd().size(), 1U);
  EXPECT_NE(request->attributesToAddIs(4), entry);
}

TEST(BuildRequest, ReadsEntriesToAddByTheirKeys) {
  const auto request = pktInfoBuilderFactory();
  const Ptr<AttrToAddValue> first = request->attributesToAddIs(0);
  const Ptr<AttrToAddValue> last = request->attributesToAddIs(65535);
  EXPECT_EQ(request->attributesToAdd(0), first);
  EXPECT_EQ(request->attributesToAddGet(65535), last);
  EXPECT_EQ(request->attributesToAdd(1), nullptr);
  EXPECT_EQ(request->attributesToAddGet(1), nullptr);
  EXPECT_TRUE(request->attributesToAddHas(0));
  EXPECT_FALSE(request->attributesToAddHas(1));
}

TEST(BuildRequest, KeepsEntriesToAddInTheOrderOfTheirKeys) {
  const auto request = pktInfoBuilderFactory();
  for (const U16 key : std::vector<U16>{10, 1, 65535, 5, 256, 0}) {
    request->attributesToAddIs(key);
  }
  std::vector<U16> keys;
  for (const PktInfoBuilder::TylAttributesToAdd& member : request->attributesToAdd()) {
    EXPECT_EQ(member.second->key(), member.first);
    keys.push_back(member.first);
  }
  EXPECT_EQ(keys, (std::vector<U16>{0, 1, 5, 10, 256, 65535}));
}

TEST(BuildRequest, RemovesEntriesToAdd) {
  const auto request = pktInfoBuilderFactory();
  const Ptr<AttrToAddValue> entry = request->attributesToAddIs(1);
  request->attributesToAddIs(2);
  request->attributesToAddDel(3);
  EXPECT_EQ(request->attributesToAdd().size(), 2U);
  request->attributesToAddDel(1);
  EXPECT_EQ(request->attributesToAdd().size(), 1U);
  EXPECT_FALSE(request->attributesToAddHas(1));
  EXPECT_NE(request->attributesToAddIs(1), entry);
  request->attributesToAddDelAll();
  EXPECT_EQ(request->attributesToAdd().size(), 0U);
  request->attributesToAddDelAll();
}

TEST(BuildRequest, FindsOrMakesAReplacement) {
  const auto request = pktInfoBuilderFactory();
  const Ptr<AttrWithValue> replacement = request->attributesToReplaceIs(someVendor);
  EXPECT_EQ(replacement->attribute(), someVendor);
  EXPECT_EQ(replacement->attrValue().size(), 0U);
  replacement->attrValuePush(7U);
  EXPECT_EQ(request->attributesToReplaceIs(someVendor), replacement);
  EXPECT_EQ(replacement->attrValue().size(), 1U);
  EXPECT_EQ(request->attributesToReplace().size(), 1U);
}

TEST(BuildRequest, ReadsReplacementsByTheWholeKey) {
  const auto request = pktInfoBuilderFactory();
  const Ptr<AttrWithValue> replacement = request->attributesToReplaceIs(someVendor);
  EXPECT_EQ(request->attributesToReplace(someVendor), replacement);
  EXPECT_EQ(request->attributesToReplaceGet(someVendor), replacement);
  EXPECT_TRUE(request->attributesToReplaceHas(someVendor));
  for (const Attribute& other : {vendorAttribute(9, 2), vendorAttribute(10, 1),
                                 Attribute{.vendorId = 9, .attrId = 25, .vendorAttrId = 1}}) {
    EXPECT_EQ(request->attributesToReplaceGet(other), nullptr);
    EXPECT_FALSE(request->attributesToReplaceHas(other));
  }
}

TEST(BuildRequest, RemovesReplacements) {
  const auto request = pktInfoBuilderFactory();
  request->attributesToReplaceIs(userName);
  request->attributesToReplaceIs(someVendor);
  request->attributesToReplaceDel(standardAttribute(2));
  EXPECT_EQ(request->attributesToReplace().size(), 2U);
  request->attributesToReplaceDel(userName);
  EXPECT_FALSE(request->attributesToReplaceHas(userName));
  EXPECT_TRUE(request->attributesToReplaceHas(someVendor));
  request->attributesToReplaceDelAll();
  EXPECT_EQ(request->attributesToReplace().size(), 0U);
}

TEST(BuildRequest, HoldsEachAttributeToRemoveOnce) {
  const auto request = pktInfoBuilderFactory();
  EXPECT_EQ(request->attributesToRemoveIs(userName), userName);
  EXPECT_EQ(request->attributesToRemoveIs(userName), userName);
  request->attributesToRemoveIs(someVendor);
  EXPECT_EQ(request->attributesToRemove().size(), 2U);
  EXPECT_TRUE(request->attributesToRemoveHas(userName));
  EXPECT_FALSE(request->attributesToRemoveHas(standardAttribute(2)));
  request->attributesToRemoveDel(standardAttribute(2));
  EXPECT_EQ(request->attributesToRemove().size(), 2U);
  request->attributesToRemoveDel(userName);
  EXPECT_FALSE(request->attributesToRemoveHas(userName));
  request->attributesToRemoveDelAll();
  EXPECT_EQ(request->attributesToRemove().size(), 0U);
}

TEST(BuildRequest, KeepsItsEntriesUntilItsLastReferenceGoes) {
  const auto attribute = attrWithValueFactory(userName);
  {
    const auto request = pktInfoBuilderFactory();
    request->attributesToAddIs(1)->attrWithValueIs(attribute);
    request->attributesToAddIs(2)->attrWithValueIs(attribute);
    EXPECT_EQ(attribute->userCount(), 3U);
  }
  EXPECT_EQ(attribute->userCount(), 1U);
}

// ---- Headers ----

TEST(BuilderHeader, HasARandomAuthenticatorForAccessRequestAndStatusServer) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  std::set<std::string> authenticators;
  for (const U8 code : ByteVector{1, 12}) {
    for (int count = 0; count < 100; ++count) {
      const Ptr<RadiusHdrReturn> made = builder->createRadiusHdr(code, 7);
      ASSERT_EQ(made->errorMsg(), ErrorMsg::success);
      EXPECT_EQ(made->hdr()->code(), code);
      EXPECT_EQ(made->hdr()->id(), 7);
      EXPECT_EQ(made->hdr()->length(), 20);
      EXPECT_EQ(made->hdr()->authenticator().bytes().size(), 16U);
      authenticators.insert(std::string(made->hdr()->authenticator().view()));
    }
  }
  EXPECT_EQ(authenticators.size(), 200U);
}

TEST(BuilderHeader, HasSixteenZeroBytesForEveryOtherCode) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  for (unsigned code = 0; code < 256; ++code) {
    if (code == 1 || code == 12) {
      continue;
    }
    SCOPED_TRACE(code);
    // Not even asked for, so that it cannot fail.
    FaultSeam::failIs(Primitive::random);
    const Ptr<RadiusHdrReturn> made =
        builder->createRadiusHdr(static_cast<U8>(code), static_cast<U8>(255 - code));
    FaultSeam::failDel();
    ASSERT_EQ(made->errorMsg(), ErrorMsg::success);
    EXPECT_EQ(made->hdr()->code(), code);
    EXPECT_EQ(made->hdr()->id(), 255 - code);
    EXPECT_EQ(made->hdr()->length(), 20);
    EXPECT_EQ(made->hdr()->authenticator(), String(std::string(16, '\0')));
  }
}

TEST(BuilderHeader, IsNotMadeWithoutRandomBytes) {
  const CapturingSink trace;
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  for (const U8 code : ByteVector{1, 12}) {
    FaultSeam::failIs(Primitive::random);
    const Ptr<RadiusHdrReturn> failed = builder->createRadiusHdr(code, 7);
    FaultSeam::failDel();
    EXPECT_EQ(failed->errorMsg(), ErrorMsg::pktAuthGenerationFailed);
    EXPECT_EQ(failed->hdr(), nullptr);
    EXPECT_EQ(builder->createRadiusHdr(code, 7)->errorMsg(), ErrorMsg::success);
  }
  EXPECT_EQ(trace.records(), Records());
}

TEST(BuilderHeader, TracesItsEntry) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  const CapturingSink trace(Verda::traceEntries);
  builder->createRadiusHdr(1, 7);
  EXPECT_EQ(trace.records(), (Records{{"RadiusPacketParser::RadiusPktParser", 2, "RadiusPktBuilder",
                                       "createRadiusHdr", "entry"}}));
}

TEST(BuilderEntries, OfBothOperationsStandInFrontOfTheBuild) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  const auto nothing = pktInfoBuilderFactory();
  const CapturingSink created(Verda::traceEntries);
  const auto built = builder->createPktFromHdr(testSecret, {}, headerOf(1), nothing);
  const Records ofCreate = created.records();
  const CapturingSink modified(Verda::traceEntries);
  builder->modifyPkt(built->pkt(), testSecret, {}, nothing);
  const Records ofModify = modified.records();
  const std::string facility = "RadiusPacketParser::RadiusPktParser";
  const Records first = {{facility, 2, "RadiusPktBuilder", "createPktFromHdr", "entry"},
                         {facility, 2, "RadiusPktBuilder", "modifyPkt", "entry"}};
  const Records second(2, {facility, 2, "", "buildPkt", "entry"});
  ASSERT_GE(ofCreate.size(), 2U);
  ASSERT_GE(ofModify.size(), 2U);
  EXPECT_EQ((Records{ofCreate[0], ofModify[0]}), first);
  EXPECT_EQ((Records{ofCreate[1], ofModify[1]}), second);
}

TEST(BuilderHeader, NeedsNoDictionary) {
  EXPECT_EQ(radiusPktBuilderFactory(nullptr)->createRadiusHdr(4, 1)->errorMsg(), ErrorMsg::success);
}

// ---- The builder ----

TEST(Builder, HoldsTheDictionary) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  EXPECT_EQ(builder->dictionary(), shippedDictionary());
  EXPECT_EQ(RadiusPktBuilder::RadiusPktBuilderIs(shippedDictionary())->dictionary(),
            shippedDictionary());
  EXPECT_NE(RadiusPktBuilder::RadiusPktBuilderIs(shippedDictionary()), builder);
}

TEST(Builder, MakesAPacketOfNothing) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  for (const U8 code : ByteVector{1, 2, 4, 5, 12, 40, 41, 43, 44}) {
    SCOPED_TRACE(int{code});
    const auto hdr = headerOf(code);
    const auto built = builder->createPktFromHdr(testSecret, verdaBytes(reqAuthFor(code)), hdr,
                                                 pktInfoBuilderFactory());
    ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
    EXPECT_EQ(TestSupport::bytesOf(built->pkt()), PacketMaker(code).make());
    EXPECT_EQ(hdr->length(), 20);
  }
}

TEST(Builder, RefusesToWorkOnNothing) {
  const CapturingSink trace;
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  const auto created = builder->createPktFromHdr(testSecret, {}, nullptr, pktInfoBuilderFactory());
  EXPECT_EQ(created->errorMsg(), ErrorMsg::invalidPktPtr);
  EXPECT_EQ(created->pkt(), nullptr);
  const auto modified = builder->modifyPkt(nullptr, testSecret, {}, pktInfoBuilderFactory());
  EXPECT_EQ(modified->errorMsg(), ErrorMsg::invalidPktPtr);
  EXPECT_EQ(modified->pkt(), nullptr);
  EXPECT_EQ(trace.records(), Records());
}

/// An attribute of each kind, hidden ones too.
RequestMaker usualRequest() {
  return RequestMaker()
      .addMessageAuthenticator()
      .add(userName, {String("nemo")})
      .add(standardAttribute(27), {3600U})
      .add(standardAttribute(69),
           {TaggedStr{.str = String(std::string("\x81\x01\x06secret") + std::string(9, '\0')),
                      .tag = 1}})
      .add(standardAttribute(64), {TaggedInt{.value = 13, .tag = 1}})
      .add(standardAttribute(79), {verdaBytes(countingBytes(600))})
      .add(standardAttribute(8), {Zonet::IpGenPrefix(String("192.0.2.33"))})
      .add(standardAttribute(97), {Zonet::IpGenPrefix(String("2001:db8::/32"))})
      .add(vendorAttribute(311, 16), {verdaBytes(countingBytes(34, 0x80))});
}

/// What the hook of our parser receives of it.
Walked walked(const Ptr<PktReturn>& built, const std::string& secret = testSecret) {
  const ByteVector packet = TestSupport::bytesOf(built->pkt());
  return TestSupport::walk(packet, reqAuthFor(packet[0]), shippedDictionary(), secret);
}

void expectUsualAttributes(const Walked& read) {
  EXPECT_EQ(read.result, ErrorMsg::success);
  EXPECT_TRUE(read.msgAuthPresent);
  ASSERT_EQ(read.received.size(), 11U);
  EXPECT_EQ(read.received[0].key, standardAttribute(80));
  EXPECT_EQ(read.received[1].key, userName);
  EXPECT_EQ(read.received[1].value, AttrValue(String("nemo")));
  EXPECT_EQ(read.received[2].value, AttrValue(3600U));
  EXPECT_EQ(separateTag(std::get<TaggedStr>(read.received[3].value)),
            (TaggedStr{.str = String(std::string("\x81\x01\x06secret") + std::string(9, '\0')),
                       .tag = 1}));
  EXPECT_EQ(separateTag(std::get<TaggedInt>(read.received[4].value)),
            (TaggedInt{.value = 13, .tag = 1}));
  const ByteVector eap = countingBytes(600);
  for (std::size_t piece = 0; piece < 3; ++piece) {
    const std::span<const U8> bytes =
        std::span(eap).subspan(piece * 253, std::min<std::size_t>(253, 600 - piece * 253));
    EXPECT_EQ(read.received[5 + piece].value, AttrValue(Bytes(bytes)));
  }
  EXPECT_EQ(read.received[8].value, AttrValue(Zonet::IpGenPrefix(String("192.0.2.33"))));
  EXPECT_EQ(std::get<Zonet::IpGenPrefix>(read.received[9].value).address(),
            Zonet::IpGenPrefix(String("2001:db8::")).address());
  EXPECT_EQ(read.received[10].key, vendorAttribute(311, 16));
  EXPECT_EQ(read.received[10].value, AttrValue(verdaBytes(countingBytes(34, 0x80))));
}

TEST(Builder, MakesPacketsThatOurParserAccepts) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  for (const U8 code : ByteVector{1, 2, 3, 11, 12, 41, 42, 44, 45}) {
    SCOPED_TRACE(int{code});
    const auto hdr = builder->createRadiusHdr(code, 200)->hdr();
    const auto built = builder->createPktFromHdr(testSecret, verdaBytes(reqAuthFor(code)), hdr,
                                                 usualRequest().make());
    ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
    EXPECT_EQ(built->pkt()->data()[0], code);
    EXPECT_EQ(built->pkt()->data()[1], 200);
    EXPECT_EQ(hdr->length(), built->pkt()->bytes());
    expectUsualAttributes(walked(built));
  }
}

TEST(Builder, MakesPacketsUnderEverySecret) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  for (const auto& secret : TestSupport::sharedSecrets) {
    SCOPED_TRACE(secret.name);
    for (const U8 code : ByteVector{1, 2}) {
      const auto built = builder->createPktFromHdr(secret.given, verdaBytes(reqAuthFor(code)),
                                                   headerOf(code), usualRequest().make());
      ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
      expectUsualAttributes(walked(built, secret.counts));
    }
    const auto small = builder->createPktFromHdr(
        secret.given, {}, headerOf(4),
        RequestMaker().add(userName, {String("nemo")}).addMessageAuthenticator().make());
    EXPECT_EQ(TestSupport::bytesOf(small->pkt()), PacketMaker(4)
                                                      .secretIs(secret.given)
                                                      .add(1, TestSupport::bytesOf("nemo"))
                                                      .addMessageAuthenticator()
                                                      .make());
  }
}

TEST(Builder, LeavesTheRequestAsItWas) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  const RequestMaker request =
      usualRequest().replace(userName, {String("new")}).remove(standardAttribute(27));
  const auto first = builder->createPktFromHdr(testSecret, {}, headerOf(1), request.make());
  const auto modified = builder->modifyPkt(first->pkt(), testSecret, {}, request.make());
  ASSERT_EQ(modified->errorMsg(), ErrorMsg::success);
  EXPECT_EQ(request.make()->attributesToAdd().size(), 9U);
  EXPECT_EQ(request.make()->attributesToReplace().size(), 1U);
  EXPECT_EQ(request.make()->attributesToRemove().size(), 1U);
  const auto second = builder->createPktFromHdr(testSecret, {}, headerOf(1), request.make());
  EXPECT_EQ(TestSupport::bytesOf(second->pkt()), TestSupport::bytesOf(first->pkt()));
}

TEST(Builder, HidesASecondPacketOfOneHeaderUnderTheFirstOnesAuthenticator) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  const auto hdr = headerOf(43);
  const ByteVector salt{0x81, 0x01};
  const ByteVector plain = countingBytes(16);
  const auto request =
      RequestMaker().add(vendorAttribute(311, 16), {verdaBytes(joined({salt, plain}))}).make();
  const auto expected = [&](const ByteVector& authenticator) {
    return PacketMaker(43)
        .addVendor(311, 16,
                   joined({salt, TestSupport::hidden(plain, TestSupport::bytesOf(testSecret),
                                                     authenticator, salt)}))
        .make();
  };
  const auto first =
      TestSupport::bytesOf(builder->createPktFromHdr(testSecret, {}, hdr, request)->pkt());
  EXPECT_EQ(first, expected(ByteVector(16)));
  const auto second =
      TestSupport::bytesOf(builder->createPktFromHdr(testSecret, {}, hdr, request)->pkt());
  EXPECT_EQ(second, expected(ByteVector(first.begin() + 4, first.begin() + 20)));
}

TEST(Builder, HidesInACoaRequestWhatOnlyAReceiverThatKnowsOfTheZerosReveals) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  const ByteVector value = countingBytes(34, 0x81);
  const auto hdr = builder->createRadiusHdr(43, 1)->hdr();
  const auto built = builder->createPktFromHdr(
      testSecret, {}, hdr,
      RequestMaker().add(vendorAttribute(311, 16), {verdaBytes(value)}).make());
  const Walked read = walked(built);
  ASSERT_EQ(read.result, ErrorMsg::success);
  EXPECT_NE(read.received.at(0).value, AttrValue(verdaBytes(value)));
  ByteVector received = TestSupport::bytesOf(built->pkt());
  EXPECT_EQ(encryptHelper(received.data() + 28, 34, testSecret, verdaBytes(ByteVector(16)),
                          saltedMethod, false, false),
            ErrorMsg::success);
  EXPECT_EQ(ByteVector(received.begin() + 28, received.end()), value);
}

TEST(Builder, PassesOnThatAuthenticatorsCannotBeComputed) {
  const CapturingSink trace;
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  const auto request = RequestMaker().addMessageAuthenticator().make();
  for (const Primitive primitive : {Primitive::hmac, Primitive::md5}) {
    FaultSeam::failIs(primitive);
    const auto created = builder->createPktFromHdr(testSecret, {}, headerOf(4), request);
    FaultSeam::failDel();
    EXPECT_EQ(created->errorMsg(), ErrorMsg::md5GenerationFailed);
    EXPECT_EQ(created->pkt(), nullptr);
    const auto old = pktOf(PacketMaker(4).addMessageAuthenticator().make());
    FaultSeam::failIs(primitive);
    const auto modified = builder->modifyPkt(old, testSecret, {}, pktInfoBuilderFactory());
    FaultSeam::failDel();
    EXPECT_EQ(modified->errorMsg(), ErrorMsg::md5GenerationFailed);
    EXPECT_EQ(modified->pkt(), nullptr);
  }
  EXPECT_EQ(trace.texts(),
            (std::vector<std::string>{
                "MD5 generation failed, digestLen: 0", "MD5 generation failed, digestLen: 0",
                "MD5 digest of incorrect length: 0", "MD5 digest of incorrect length: 0"}));
}

// ---- Modifying ----

TEST(BuilderModify, KeepsCodeIdentifierAndOfARequestTheAuthenticator) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  for (const U8 code : ByteVector{1, 2, 4, 12, 40, 43, 44}) {
    SCOPED_TRACE(int{code});
    const ByteVector old = PacketMaker(code).add(1, {'n'}).make();
    const auto pkt = pktOf(old);
    const auto modified =
        builder->modifyPkt(pkt, testSecret, verdaBytes(reqAuthFor(code)),
                           RequestMaker().add(standardAttribute(27), {60U}).make());
    ASSERT_EQ(modified->errorMsg(), ErrorMsg::success);
    EXPECT_EQ(TestSupport::bytesOf(modified->pkt()),
              PacketMaker(code).add(1, {'n'}).add(27, {0, 0, 0, 60}).make());
    EXPECT_NE(modified->pkt(), pkt);
    EXPECT_EQ(TestSupport::bytesOf(pkt), old);
  }
}

TEST(BuilderModify, SignsAfreshUnderAnotherSecretAndRequestAuthenticator) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  const ByteVector old = PacketMaker(2).add(1, {'n'}).addMessageAuthenticator().make();
  const ByteVector otherReqAuth = countingBytes(16, 0x60);
  const auto modified = builder->modifyPkt(pktOf(old), "another secret", verdaBytes(otherReqAuth),
                                           pktInfoBuilderFactory());
  EXPECT_EQ(TestSupport::bytesOf(modified->pkt()), PacketMaker(2)
                                                       .secretIs("another secret")
                                                       .reqAuthIs(otherReqAuth)
                                                       .add(1, {'n'})
                                                       .addMessageAuthenticator()
                                                       .make());
}

TEST(BuilderModify, DoesNotCheckTheOldAuthenticators) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  ByteVector old = PacketMaker(2).add(1, {'n'}).addMessageAuthenticator(true).make();
  old[4] ^= 1;
  const auto modified =
      builder->modifyPkt(pktOf(old), testSecret, verdaBytes(testReqAuth), pktInfoBuilderFactory());
  EXPECT_EQ(TestSupport::bytesOf(modified->pkt()),
            PacketMaker(2).add(1, {'n'}).addMessageAuthenticator().make());
}

TEST(BuilderModify, PassesAProxysRequestOnWithThePasswordHiddenAnew) {
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  const auto received =
      builder->createPktFromHdr(testSecret, {}, headerOf(1),
                                RequestMaker()
                                    .addMessageAuthenticator()
                                    .add(standardAttribute(2), {String("a password")})
                                    .make());
  const Walked read = walked(received);
  ASSERT_EQ(read.received.size(), 2U);
  const auto passedOn =
      builder->modifyPkt(received->pkt(), "next secret", {},
                         RequestMaker()
                             .replace(standardAttribute(2), {read.received[1].value})
                             .add(standardAttribute(33), {verdaBytes({1, 2, 3, 4})})
                             .make());
  const Walked atNext = walked(passedOn, "next secret");
  EXPECT_EQ(atNext.result, ErrorMsg::success);
  EXPECT_TRUE(atNext.msgAuthPresent);
  ASSERT_EQ(atNext.received.size(), 3U);
  EXPECT_EQ(atNext.received[1].value,
            AttrValue(String(std::string("a password") + std::string(6, '\0'))));
}

/// What the guide lists as built, but refused where it is received.
TEST(BuilderCreate, BuildsWhatTheParserRefuses) {
  const Attribute eap = standardAttribute(79);
  const Bytes fragment = verdaBytes({1, 2, 3});
  const struct {
    const char* name;
    U8 code;
    RequestMaker request;
    ErrorMsg result;
  } rows[] = {
      {"EAP-Message without a Message-Authenticator", 1, RequestMaker().add(eap, {fragment}),
       ErrorMsg::missingRequiredMsgAuth},
      {"another attribute between fragments", 1,
       RequestMaker()
           .addMessageAuthenticator()
           .add(eap, {fragment})
           .add(userName, {String("nemo")})
           .add(eap, {fragment}),
       ErrorMsg::concatAttrNotConsecutive},
      {"a second Message-Authenticator, as a value", 1,
       RequestMaker().addMessageAuthenticator().add(standardAttribute(80),
                                                    {verdaBytes(ByteVector(16))}),
       ErrorMsg::invalidMsgAuth},
      {"a Message-Authenticator in a code without a rule", 99,
       RequestMaker().addMessageAuthenticator(), ErrorMsg::unsupportedPktType},
      {"an empty User-Password", 1, RequestMaker().add(standardAttribute(2), {String()}),
       ErrorMsg::invalidAttrLength},
  };
  const CapturingSink silent(Verda::traceOff);
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  const auto parser = radiusPktParserFactory(shippedDictionary());
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const Bytes reqAuth = verdaBytes(reqAuthFor(row.code));
    const auto built =
        builder->createPktFromHdr(testSecret, reqAuth, headerOf(row.code), row.request.make());
    ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
    EXPECT_EQ(parser->doProcessPkt(built->pkt(), testSecret, reqAuth, pktInfoParserFactory()),
              row.result);
  }
}

TEST(BuilderModify, GivesBackEveryAcceptedGoldenPacket) {
  const CapturingSink silent(Verda::traceOff);
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  std::size_t compared = 0;
  for (const GoldenPacket& golden : TestSupport::goldenPackets()) {
    // The one that is not compared is accepted with a Message-Authenticator that is wrong.
    if (!golden.isAccepted() ||
        golden.name == "accounting-request-message-authenticator-unchecked") {
      continue;
    }
    SCOPED_TRACE(golden.name);
    const auto modified =
        builder->modifyPkt(pktOf(golden.packet), golden.secretText(),
                           verdaBytes(golden.requestAuthenticator), pktInfoBuilderFactory());
    ASSERT_EQ(modified->errorMsg(), ErrorMsg::success);
    const std::span<const U8> old = std::span(golden.packet).first(modified->pkt()->bytes());
    EXPECT_EQ(TestSupport::bytesOf(modified->pkt()), ByteVector(old.begin(), old.end()));
    ++compared;
  }
  EXPECT_EQ(compared, TestSupport::acceptedGoldenPacketCount - 1);
}

TEST(BuilderModify, EndsForEveryPrefixOfEveryGoldenPacket) {
  const CapturingSink silent(Verda::traceOff);
  const auto builder = radiusPktBuilderFactory(shippedDictionary());
  const RequestMaker request = RequestMaker()
                                   .replace(userName, {String("a longer name")})
                                   .remove(standardAttribute(79))
                                   .add(standardAttribute(27), {60U});
  for (const GoldenPacket& golden : TestSupport::goldenPackets()) {
    if (golden.packet.empty()) {
      continue;
    }
    const Bytes reqAuth = verdaBytes(reqAuthFor(golden.packet[0]));
    for (std::size_t size = 20; size <= golden.packet.size(); ++size) {
      // A packet that is cut, and one whose Length says so.
      ByteVector prefix(golden.packet.begin(),
                        golden.packet.begin() + static_cast<std::ptrdiff_t>(size));
      prefix[2] = static_cast<U8>(size / 256);
      prefix[3] = static_cast<U8>(size % 256);
      const auto pkt = pktOf(prefix);
      const auto modified = builder->modifyPkt(pkt, golden.secretText(), reqAuth, request.make());
      EXPECT_EQ(modified->errorMsg() == ErrorMsg::success, bool{modified->pkt()});
      EXPECT_EQ(TestSupport::bytesOf(pkt), prefix);
    }
  }
}

}  // namespace
