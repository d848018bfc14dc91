#include "RadiusPacketParser/RadiusPktCommon.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "tests/support/Assembly.h"

namespace {

using namespace TestSupport::Assembly;

TEST(AssemblyMessageAuthenticator, StandsInItsTurnAndIsComputed) {
  for (const U8 code : ByteVector{1, 2, 3, 4, 5, 11, 12, 40, 41, 42, 43, 44, 45, 99}) {
    SCOPED_TRACE(int{code});
    expectPacket(
        build(code, RequestMaker()
                        .add(userName, {text("nemo")})
                        .addMessageAuthenticator()
                        .add(sessionTimeout, {1U})),
        PacketMaker(code).add(1, bytesOf("nemo")).addMessageAuthenticator().add(27, {0, 0, 0, 1}));
  }
}

TEST(AssemblyMessageAuthenticator, IgnoresTheValuesOfItsEntry) {
  expectPacket(build(accessAccept, RequestMaker().add(messageAuthenticator,
                                                      {octets(ByteVector(16, 1)), 1U, noOctets})),
               PacketMaker(accessAccept).addMessageAuthenticator());
}

TEST(AssemblyMessageAuthenticator, NeedsNoDictionary) {
  const CapturingSink trace;
  const Ptr<PktReturn> built =
      buildPkt(nullptr, testSecret, {}, headerOf(accessRequest),
               RequestMaker().addMessageAuthenticator().make(), DictionaryMaker().make());
  ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
  EXPECT_EQ(bytesOf(built->pkt()), PacketMaker(accessRequest).addMessageAuthenticator().make());
  EXPECT_EQ(trace.records(), Records());
}

TEST(AssemblyMessageAuthenticator, IsAnOrdinaryAttributeTheSecondTime) {
  expectPacket(
      build(accessRequest, RequestMaker()
                               .addMessageAuthenticator()
                               .add(messageAuthenticator, {octets({1, 2, 3}), octets({4})})
                               .add(messageAuthenticator, {})),
      PacketMaker(accessRequest).addMessageAuthenticator().add(80, {1, 2, 3}).add(80, {4}));
  expectFault(build(accessRequest, RequestMaker().addMessageAuthenticator().add(
                                       messageAuthenticator, {text("sixteen bytes...")})),
              ErrorMsg::invalidAttrDataType,
              {"AttrId: 80 Expected bytes type, invalid data type passed"});
}

TEST(AssemblyMessageAuthenticator, FitsExactlyOrNotAtAll) {
  RequestMaker fits;
  PacketMaker expected(accessAccept);
  fillTo(4096 - 18, fits).addMessageAuthenticator();
  fillTo(4096 - 18, expected).addMessageAuthenticator();
  const Built built = build(accessAccept, fits);
  expectPacket(built, expected);
  EXPECT_EQ(built.packet.size(), 4096U);
  RequestMaker oneMore;
  fillTo(4096 - 17, oneMore).addMessageAuthenticator();
  expectFault(build(accessAccept, oneMore), ErrorMsg::maxPktLengthExceeded);
}

TEST(AssemblyMessageAuthenticator, KeepsItsPlaceWhenAPacketIsModified) {
  const ByteVector old = PacketMaker(accessAccept)
                             .add(1, bytesOf("nemo"))
                             .addMessageAuthenticator(true)
                             .add(27, {0, 0, 0, 1})
                             .make();
  expectPacket(modify(old, RequestMaker().add(userName, {text("new")})),
               PacketMaker(accessAccept)
                   .add(1, bytesOf("nemo"))
                   .addMessageAuthenticator()
                   .add(27, {0, 0, 0, 1})
                   .add(1, bytesOf("new")));
}

TEST(AssemblyMessageAuthenticator, IsKeptWhateverIsAskedForIt) {
  const ByteVector old =
      PacketMaker(accessRequest).addMessageAuthenticator().add(27, {0, 0, 0, 1}).make();
  const auto expected = PacketMaker(accessRequest).addMessageAuthenticator().add(27, {0, 0, 0, 1});
  expectPacket(modify(old, RequestMaker().remove(messageAuthenticator)), expected);
  expectPacket(
      modify(old, RequestMaker().replace(messageAuthenticator, {octets(ByteVector(16, 1))})),
      expected);
  expectPacket(modify(old, RequestMaker().replace(messageAuthenticator, {})), expected);
}

TEST(AssemblyMessageAuthenticator, HasARightLengthWhateverLengthTheOldOneHad) {
  for (const std::size_t size : Sizes{0, 15, 16, 17, 253}) {
    expectPacket(modify(PacketMaker(accessRequest).add(80, ByteVector(size, 7)).make(), {}),
                 PacketMaker(accessRequest).addMessageAuthenticator());
  }
}

TEST(AssemblyMessageAuthenticator, IsOrdinaryWhenThePacketToModifyHasOne) {
  const ByteVector old = PacketMaker(accessRequest).addMessageAuthenticator().make();
  expectPacket(modify(old, RequestMaker().add(messageAuthenticator, {octets({1, 2})})),
               PacketMaker(accessRequest).addMessageAuthenticator().add(80, {1, 2}));
  expectPacket(modify(old, RequestMaker().addMessageAuthenticator()),
               PacketMaker(accessRequest).addMessageAuthenticator());
}

TEST(AssemblyMessageAuthenticator, OfSeveralEachIsReservedAndTheLastIsFilled) {
  const ByteVector old = PacketMaker(accessRequest)
                             .add(80, ByteVector(16, 1))
                             .add(1, bytesOf("nemo"))
                             .add(80, ByteVector(16, 2))
                             .add(80, ByteVector(16, 3))
                             .make();
  expectPacket(modify(old, {}), PacketMaker(accessRequest)
                                    .add(80, ByteVector(16))
                                    .add(1, bytesOf("nemo"))
                                    .add(80, ByteVector(16))
                                    .addMessageAuthenticator());
}

TEST(AssemblyMessageAuthenticator, OfAPacketToModifyMustFit) {
  // Message-Authenticators of two bytes, which grow.
  const auto packetOf = [](int count, const ByteVector& value) {
    PacketMaker packet(accessRequest);
    for (; count > 0; --count) {
      packet.add(80, value);
    }
    return packet;
  };
  expectPacket(modify(packetOf(226, {}).make(), {}),
               packetOf(225, ByteVector(16)).addMessageAuthenticator());
  expectFault(modify(packetOf(227, {}).make(), {}), ErrorMsg::maxPktLengthExceeded);
}

TEST(AssemblyMessageAuthenticator, IsComputedBeforeTheResponseAuthenticator) {
  const Built built = build(accessAccept, RequestMaker().addMessageAuthenticator());
  const ByteVector secret = bytesOf(testSecret);
  ByteVector packet = built.packet;
  std::ranges::copy(testReqAuth, packet.begin() + 4);
  EXPECT_EQ(ByteVector(built.packet.begin() + 4, built.packet.begin() + 20),
            md5(joined({packet, secret})));
  std::fill(packet.begin() + 22, packet.end(), U8{0});
  EXPECT_EQ(ByteVector(built.packet.begin() + 22, built.packet.end()), hmacMd5(secret, packet));
}

}  // namespace
