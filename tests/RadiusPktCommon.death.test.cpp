#include "RadiusPacketParser/RadiusPktCommon.h"

#include <gtest/gtest.h>

#include "tests/support/PacketMaker.h"
#include "tests/support/Walk.h"

namespace {

using namespace RadiusPktParserBase;
using TestSupport::PacketMaker;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;

/// What dies: its name says the operation, its last line on standard error the assertion.
struct Misuse {
  const char* name;
  void (*operation)(const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::Ptr<RadiusHdr>& hdr);
  Verda::U8 code;
  const char* message;
};

void setMsgAuth(const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::Ptr<RadiusHdr>& hdr) {
  setMessageAuthenticator(pkt->data(), pkt->data() + 20, testSecret, verdaBytes(testReqAuth), hdr);
}

void checkMsgAuthWithout(const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::Ptr<RadiusHdr>& hdr) {
  validateMessageAuthenticator(pkt, hdr, testSecret, {}, pkt->data() + 20);
}

void checkMsgAuthWith(const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::Ptr<RadiusHdr>& hdr) {
  validateMessageAuthenticator(pkt, hdr, testSecret, verdaBytes(testReqAuth), pkt->data() + 20);
}

void hideWithout(const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::Ptr<RadiusHdr>& hdr) {
  encryptAttribute(standardAttribute(80), pkt->data() + 20, testSecret, {}, hdr, {}, nullptr);
}

void hideWith(const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::Ptr<RadiusHdr>& hdr) {
  encryptAttribute(standardAttribute(80), pkt->data() + 20, testSecret, verdaBytes(testReqAuth),
                   hdr, {}, nullptr);
}

void revealWithout(const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::Ptr<RadiusHdr>& hdr) {
  decryptAttribute(standardAttribute(80), pkt->data() + 20, testSecret, {}, hdr, {}, nullptr);
}

void revealWith(const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::Ptr<RadiusHdr>& hdr) {
  decryptAttribute(standardAttribute(80), pkt->data() + 20, testSecret, verdaBytes(testReqAuth),
                   hdr, {}, nullptr);
}

constexpr Misuse misuses[] = {
    {"setMessageAuthenticator with", setMsgAuth, 1,
     "^RadiusPacketParser/RadiusPktCommon\\.cpp:[0-9]+: setMessageAuthenticator: Assertion "
     "\"Request authenticator found not NULL for request packet\" failed\\.\n$"},
    {"validateMessageAuthenticator without", checkMsgAuthWithout, 2,
     "^RadiusPacketParser/RadiusPktCommon\\.cpp:[0-9]+: validateMessageAuthenticator: Assertion "
     "\"Request authenticator found NULL for response packet\" failed\\.\n$"},
    {"validateMessageAuthenticator with", checkMsgAuthWith, 40,
     "^RadiusPacketParser/RadiusPktCommon\\.cpp:[0-9]+: validateMessageAuthenticator: Assertion "
     "\"Request authenticator found not NULL for request packet\" failed\\.\n$"},
    {"encryptAttribute without", hideWithout, 2,
     "^RadiusPacketParser/RadiusPktCommon\\.detail\\.h:[0-9]+: encryptAttribute: Assertion "
     "\"Request authenticator found NULL for response packet\" failed\\.\n$"},
    {"encryptAttribute with", hideWith, 1,
     "^RadiusPacketParser/RadiusPktCommon\\.detail\\.h:[0-9]+: encryptAttribute: Assertion "
     "\"Request authenticator found not NULL for request packet\" failed\\.\n$"},
    {"decryptAttribute without", revealWithout, 2,
     "^RadiusPacketParser/RadiusPktCommon\\.cpp:[0-9]+: decryptAttribute: Assertion "
     "\"Request authenticator NULL for response packet\" failed\\.\n$"},
    {"decryptAttribute with", revealWith, 1,
     "^RadiusPacketParser/RadiusPktCommon\\.cpp:[0-9]+: decryptAttribute: Assertion "
     "\"Request authenticator not NULL for request packet\" failed\\.\n$"},
};

TEST(CodecMisuseDeathTest, EndsTheProcessSayingWhatWasAsserted) {
  for (const Misuse& misuse : misuses) {
    SCOPED_TRACE(misuse.name);
    const auto pkt = TestSupport::pktOf(PacketMaker(misuse.code).addMessageAuthenticator().make());
    const auto hdr = radiusHdrFactory();
    hdr->codeIs(misuse.code);
    hdr->lengthIs(static_cast<Verda::U16>(pkt->bytes()));
    EXPECT_DEATH(misuse.operation(pkt, hdr), misuse.message);
  }
}

TEST(CodecMisuseDeathTest, EndsTheProcessWithoutADictionary) {
  EXPECT_DEATH(
      getAttrInfo(standardAttribute(1), nullptr),
      "^RadiusPacketParser/RadiusPktCommon\\.detail\\.h:[0-9]+: getAttrInfo: Assertion \"dict\" "
      "failed\\.\n$");
}

}  // namespace
