#include "RadiusPacketParser/RadiusPktBuilder.h"

#include <gtest/gtest.h>

#include "tests/support/BuildRequest.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"

namespace {

using namespace RadiusPktParserBase;
using TestSupport::headerOf;
using TestSupport::PacketMaker;
using TestSupport::RequestMaker;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;

Verda::Ptr<RadiusPktBuilder> builder() {
  return radiusPktBuilderFactory(TestSupport::shippedDictionary());
}

const Verda::Ptr<PktInfoBuilder>& name() {
  static const auto request =
      RequestMaker().add(standardAttribute(1), {Verda::String("nemo")}).make();
  return request;
}

const Verda::Ptr<PktInfoBuilder>& messageAuthenticator() {
  static const auto request = RequestMaker().addMessageAuthenticator().make();
  return request;
}

/// What dies: its name says the mistake, its last line on standard error the assertion.
struct Misuse {
  const char* name;
  void (*operation)();
  const char* message;
};

constexpr Misuse misuses[] = {
    {"a request's value with a Request Authenticator",
     [] { builder()->createPktFromHdr(testSecret, verdaBytes(testReqAuth), headerOf(1), name()); },
     "^RadiusPacketParser/RadiusPktCommon\\.detail\\.h:[0-9]+: encryptAttribute: Assertion "
     "\"Request authenticator found not NULL for request packet\" failed\\.\n$"},
    {"a response's value without one",
     [] { builder()->createPktFromHdr(testSecret, {}, headerOf(2), name()); },
     "^RadiusPacketParser/RadiusPktCommon\\.detail\\.h:[0-9]+: encryptAttribute: Assertion "
     "\"Request authenticator found NULL for response packet\" failed\\.\n$"},
    {"a request's value that becomes no attribute, with a Request Authenticator",
     [] {
       builder()->createPktFromHdr(
           testSecret, verdaBytes(testReqAuth), headerOf(1),
           RequestMaker().add(standardAttribute(79), {Verda::Bytes()}).make());
     },
     "^RadiusPacketParser/RadiusPktCommon\\.detail\\.h:[0-9]+: encryptAttribute: Assertion "
     "\"Request authenticator found not NULL for request packet\" failed\\.\n$"},
    {"a request's Message-Authenticator with a Request Authenticator",
     [] {
       builder()->createPktFromHdr(testSecret, verdaBytes(testReqAuth), headerOf(12),
                                   messageAuthenticator());
     },
     "^RadiusPacketParser/RadiusPktCommon\\.cpp:[0-9]+: setMessageAuthenticator: Assertion "
     "\"Request authenticator found not NULL for request packet\" failed\\.\n$"},
    {"a value to add to a request, with a Request Authenticator",
     [] {
       builder()->modifyPkt(TestSupport::pktOf(PacketMaker(43).make()), testSecret,
                            verdaBytes(testReqAuth), name());
     },
     "^RadiusPacketParser/RadiusPktCommon\\.detail\\.h:[0-9]+: encryptAttribute: Assertion "
     "\"Request authenticator found not NULL for request packet\" failed\\.\n$"},
    {"nothing to build", [] { builder()->createPktFromHdr(testSecret, {}, headerOf(1), nullptr); },
     "^RadiusPacketParser/RadiusPktCommon\\.assembly\\.cpp:[0-9]+: buildPkt: Assertion "
     "\"pktInfoBuilder\" failed\\.\n$"},
    {"nothing to modify by",
     [] {
       builder()->modifyPkt(TestSupport::pktOf(PacketMaker(1).make()), testSecret, {}, nullptr);
     },
     "^RadiusPacketParser/RadiusPktCommon\\.assembly\\.cpp:[0-9]+: buildPkt: Assertion "
     "\"pktInfoBuilder\" failed\\.\n$"},
    {"no dictionary",
     [] {
       radiusPktBuilderFactory(nullptr)->createPktFromHdr(testSecret, {}, headerOf(1), name());
     },
     "^RadiusPacketParser/RadiusPktCommon\\.detail\\.h:[0-9]+: getAttrInfo: Assertion \"dict\" "
     "failed\\.\n$"},
};

TEST(BuilderMisuseDeathTest, EndsTheProcessSayingWhatWasAsserted) {
  for (const Misuse& misuse : misuses) {
    SCOPED_TRACE(misuse.name);
    EXPECT_DEATH(misuse.operation(), misuse.message);
  }
}

}  // namespace
