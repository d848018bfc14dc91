#include "RadiusPacketParser/RadiusPktCommon.h"

#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZoCrypto/FaultSeam.h"

#include "tests/support/Assembly.h"

namespace {

using namespace TestSupport::Assembly;
using ZoCrypto::FaultSeam;
using ZoCrypto::Primitive;

ByteVector hiddenUnder(const ByteVector& authenticator, const ByteVector& plain,
                       const ByteVector& salt = {}) {
  return hidden(plain, bytesOf(testSecret), authenticator, salt);
}

TEST(AssemblyHiding, HidesAUserPasswordUnderTheRequestsAuthenticator) {
  ByteVector padded = bytesOf("a password of twenty");
  padded.resize(32);
  expectPacket(
      build(accessRequest, RequestMaker().add(userPassword, {text("a password of twenty")})),
      PacketMaker(accessRequest).add(2, hiddenUnder(countingBytes(16, 0x30), padded)));
}

TEST(AssemblyHiding, HidesAResponsesValueUnderTheRequestAuthenticator) {
  const ByteVector salt{0x80, 0x01};
  ByteVector plain = bytesOf("\x06secret");
  plain.resize(16);
  const ByteVector value = joined({salt, plain});
  const ByteVector cipher = hiddenUnder(testReqAuth, plain, salt);
  expectPacket(
      build(accessAccept,
            RequestMaker()
                .add(tunnelPassword,
                     {TaggedStr{.str = Verda::String(std::span<const U8>(value)), .tag = 3}})
                .add(vendorSalted, {octets(value)})),
      PacketMaker(accessAccept)
          .add(69, joined({ByteVector{3}, salt, cipher}))
          .addVendor(9, 4, joined({salt, cipher})));
}

TEST(AssemblyHiding, HidesSaltedValuesOfEveryShortLength) {
  for (std::size_t size = 0; size <= 4; ++size) {
    SCOPED_TRACE(size);
    const ByteVector value = countingBytes(size, 0x81);
    ByteVector expected = value;
    if (size > 2) {
      const ByteVector salt(value.begin(), value.begin() + 2);
      const ByteVector plain(value.begin() + 2, value.end());
      expected = joined({salt, hiddenUnder(testReqAuth, plain, salt)});
    }
    expectPacket(build(accessAccept, RequestMaker()
                                         .add(salted, {octets(value)})
                                         .add(vendorSalted, {octets(value)})
                                         .add(sessionTimeout, {1U})),
                 PacketMaker(accessAccept)
                     .add(91, expected)
                     .addVendor(9, 4, expected)
                     .add(27, {0, 0, 0, 1}));
    expectPacket(
        build(accessAccept,
              RequestMaker().add(
                  tunnelPassword,
                  {TaggedStr{.str = Verda::String(std::span<const U8>(value)), .tag = 1}})),
        PacketMaker(accessAccept).add(69, joined({ByteVector{1}, expected})));
  }
}

TEST(AssemblyHiding, HidesAReplacementUnderTheAuthenticatorOfThePacket) {
  ByteVector padded = bytesOf("new");
  padded.resize(16);
  expectPacket(
      modify(PacketMaker(accessRequest).add(2, ByteVector(32, 1)).make(),
             RequestMaker().replace(userPassword, {text("new")}).add(userPassword, {text("new")})),
      PacketMaker(accessRequest)
          .add(2, hiddenUnder(countingBytes(16, 0x30), padded))
          .add(2, hiddenUnder(countingBytes(16, 0x30), padded)));
}

TEST(AssemblyHiding, HidesUnderZerosWhereTheAuthenticatorIsADigest) {
  const ByteVector value = countingBytes(18, 0x81);
  const ByteVector salt{0x81, 0x82};
  const ByteVector plain(value.begin() + 2, value.end());
  for (const U8 code : ByteVector{4, 40, 43}) {
    expectPacket(
        build(code, RequestMaker().add(salted, {octets(value)})),
        PacketMaker(code).add(91, joined({salt, hiddenUnder(ByteVector(16), plain, salt)})));
  }
}

TEST(AssemblyHiding, HidesUnderTheOldAuthenticatorWhenADigestIsModified) {
  const ByteVector value = countingBytes(18, 0x81);
  const ByteVector salt{0x81, 0x82};
  const ByteVector plain(value.begin() + 2, value.end());
  const ByteVector old = PacketMaker(coaRequest).add(1, {'n'}).make();
  const ByteVector oldAuthenticator(old.begin() + 4, old.begin() + 20);
  expectPacket(modify(old, RequestMaker().add(salted, {octets(value)})),
               PacketMaker(coaRequest)
                   .add(1, {'n'})
                   .add(91, joined({salt, hiddenUnder(oldAuthenticator, plain, salt)})));
}

TEST(AssemblyHiding, NeedsAWholeAuthenticator) {
  const CapturingSink trace;
  const auto hdr = headerOf(accessRequest);
  hdr->authenticatorIs(Verda::String("fifteen bytes.."));
  const auto request = RequestMaker().add(userPassword, {text("p")}).make();
  const Ptr<PktReturn> built = buildPkt(nullptr, testSecret, {}, hdr, request, dictionary());
  EXPECT_EQ(built->errorMsg(), ErrorMsg::invalidBytesCopied);
  EXPECT_EQ(built->pkt(), nullptr);
  EXPECT_EQ(trace.texts(),
            (std::vector<std::string>{"Mismatch in bytes copied: 15, expected: 16"}));
}

TEST(AssemblyHiding, ReportsAFailedMd5) {
  FaultSeam::failIs(Primitive::md5);
  const Built built = build(accessRequest, RequestMaker().add(userPassword, {text("p")}));
  FaultSeam::failDel();
  expectFault(built, ErrorMsg::md5GenerationFailed, {"MD5 digest of incorrect length: 0"});
}

}  // namespace
