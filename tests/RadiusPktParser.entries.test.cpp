#include "RadiusPacketParser/RadiusPktParser.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tests/support/CapturingSink.h"
#include "tests/support/Walk.h"

namespace {

using namespace RadiusPktParserBase;
using TestSupport::ByteVector;
using TestSupport::CapturedRecord;
using TestSupport::CapturingSink;
using TestSupport::PacketMaker;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;
using Verda::U8;

/// What the public operations work on: a response with a Message-Authenticator.
struct Scene {
  ByteVector bytes = PacketMaker(2).addMessageAuthenticator().make();
  Verda::Ptr<Zonet::Pkt> pkt = TestSupport::pktOf(bytes);
  Verda::Ptr<RadiusHdr> hdr = radiusHdrFactory();
  Verda::Bytes reqAuth = verdaBytes(testReqAuth);
  TestSupport::DictPtr dictionary = TestSupport::DictionaryMaker().make();
  ByteVector digest = ByteVector(16);
  Verda::Ptr<RadiusPktParser> parser = radiusPktParserFactory(dictionary);
  Verda::Ptr<PktInfoParser> sink = pktInfoParserFactory();

  Scene() {
    hdr->codeIs(2);
    hdr->lengthIs(static_cast<Verda::U16>(bytes.size()));
    hdr->authenticatorIs(Verda::String(std::span<const U8>(bytes).subspan(4, 16)));
  }

  U8* data() const { return pkt->data(); }
  U8* msgAuth() const { return pkt->data() + 20; }
};

/// A public operation, and the class and function of its entry line.
struct Operation {
  const char* className;
  const char* function;
  std::function<void(Scene&)> run;
};

const std::vector<Operation> operations{
    {"", "getAttrInfo", [](Scene& s) { getAttrInfo(standardAttribute(1), s.dictionary); }},
    {"", "md5Calculator", [](Scene& s) { md5Calculator(s.data(), 20, s.digest.data()); }},
    {"", "calculateMessageAuthenticator",
     [](Scene& s) {
       calculateMessageAuthenticator(testSecret, nullptr, s.digest.data(), s.data(), s.msgAuth(),
                                     s.pkt->bytes());
     }},
    {"", "setRequestAuthenticator",
     [](Scene& s) { setRequestAuthenticator(testSecret, s.data(), s.hdr); }},
    {"", "setResponseAuthenticator",
     [](Scene& s) { setResponseAuthenticator(testSecret, s.reqAuth, s.data(), s.hdr); }},
    {"", "validateAuthenticator",
     [](Scene& s) { validateAuthenticator(s.pkt, s.hdr, testSecret, s.reqAuth); }},
    {"", "setMessageAuthenticator",
     [](Scene& s) {
       setMessageAuthenticator(s.data(), s.msgAuth(), testSecret, s.reqAuth, s.hdr);
     }},
    {"", "validateMessageAuthenticator",
     [](Scene& s) {
       validateMessageAuthenticator(s.pkt, s.hdr, testSecret, s.reqAuth, s.msgAuth());
     }},
    {"", "encryptHelper",
     [](Scene& s) { encryptHelper(s.data(), 16, testSecret, s.reqAuth, 1, false, true); }},
    {"", "encryptAttribute",
     [](Scene& s) {
       encryptAttribute(standardAttribute(80), s.msgAuth(), testSecret, s.reqAuth, s.hdr, {},
                        s.dictionary);
     }},
    {"", "decryptAttribute",
     [](Scene& s) {
       decryptAttribute(standardAttribute(80), s.msgAuth(), testSecret, s.reqAuth, s.hdr, {},
                        s.dictionary);
     }},
    {"", "invalidPkt", [](Scene&) { invalidPkt(ErrorMsg::invalidPktPtr); }},
    {"", "invalidHdr", [](Scene&) { invalidHdr(ErrorMsg::invalidPktPtr); }},
    {"RadiusPktParser", "getHeader", [](Scene& s) { s.parser->getHeader(s.pkt); }},
    {"RadiusPktParser", "doProcessPkt",
     [](Scene& s) { s.parser->doProcessPkt(s.pkt, testSecret, s.reqAuth, s.sink); }},
};

CapturedRecord entryRecord(const std::string& className, const std::string& function) {
  return {"RadiusPacketParser::RadiusPktParser", Verda::traceEntries, className, function, "entry"};
}

TEST(EntryTrace, HoldsOneLineForEachPublicOperationWithItsFunctionAndClass) {
  for (const Operation& operation : operations) {
    SCOPED_TRACE(operation.function);
    Scene scene;
    const CapturingSink trace(Verda::traceEntries);
    operation.run(scene);
    const auto records = trace.records();
    ASSERT_FALSE(records.empty());
    EXPECT_EQ(records[0], entryRecord(operation.className, operation.function));
    EXPECT_EQ(std::ranges::count(records, records[0]), 1);
  }
}

TEST(EntryTrace, IsSilentBelowItsLevel) {
  for (int threshold : {Verda::traceErrors, Verda::traceEntries - 1}) {
    for (const Operation& operation : operations) {
      SCOPED_TRACE(operation.function);
      Scene scene;
      const CapturingSink trace(threshold);
      operation.run(scene);
      EXPECT_TRUE(trace.texts(Verda::traceEntries).empty());
    }
  }
}

TEST(EntryTrace, IsWrittenWhenTheCodecsFacilityAloneIsTurnedUp) {
  Scene scene;
  const CapturingSink trace(Verda::traceOff);
  ASSERT_TRUE(Verda::traceThresholdIs("RadiusPacketParser::RadiusPktParser", Verda::traceEntries));
  scene.parser->getHeader(scene.pkt);
  EXPECT_EQ(trace.records(),
            (std::vector<CapturedRecord>{entryRecord("RadiusPktParser", "getHeader")}));
}

TEST(EntryTrace, FollowsTheRoadOfAReceivedPacket) {
  Scene scene;
  const CapturingSink trace(Verda::traceEntries);
  EXPECT_EQ(scene.parser->doProcessPkt(scene.pkt, testSecret, scene.reqAuth, scene.sink),
            ErrorMsg::success);
  std::vector<std::string> functions;
  for (const CapturedRecord& record : trace.records()) {
    if (record.level == Verda::traceEntries) {
      functions.push_back(record.function);
    }
  }
  EXPECT_EQ(functions,
            (std::vector<std::string>{"doProcessPkt", "getHeader", "validateAuthenticator",
                                      "getAttrInfo", "validateMessageAuthenticator",
                                      "calculateMessageAuthenticator", "decryptAttribute"}));
}

}  // namespace
