#include "RadiusPacketParser/RadiusPktCommon.h"

#include <span>

#include <gtest/gtest.h>

#include "tests/support/Assembly.h"

namespace {

using namespace TestSupport::Assembly;

TEST(AssemblyVendor, GoesOnByTheOuterLengthThatIsWritten) {
  struct Case {
    std::size_t size;
    std::size_t step;
  };
  for (const Case& one : {Case{245, 253},
                          {246, 254},
                          {247, 255},
                          {248, 0},
                          {249, 1},
                          {250, 2},
                          {251, 3},
                          {252, 4},
                          {253, 5}}) {
    SCOPED_TRACE(one.size);
    // The attribute as it is written, then what follows written over it.
    ByteVector attributes = joined({ByteVector{26, static_cast<U8>(one.size + 8), 0, 0, 0, 9, 7,
                                               static_cast<U8>(one.size + 2)},
                                    countingBytes(one.size)});
    attributes.resize(one.step);
    attributes = joined({attributes, attributeBytes(27, {0, 0, 0, 1})});
    expectPacket(build(accessAccept, RequestMaker()
                                         .add(vendorOctets, {octets(countingBytes(one.size))})
                                         .add(sessionTimeout, {1U})),
                 PacketMaker(accessAccept).addRaw(attributes));
  }
  expectFault(build(accessAccept, RequestMaker().add(vendorOctets, {octets(ByteVector(254))})),
              ErrorMsg::invalidAttrLength, {"Attribute: 7 with invalid length 256"});
}

TEST(AssemblyVendor, IsOverwrittenByAMessageAuthenticatorThatFollows) {
  const ByteVector value(250, 0xff);
  expectPacket(build(accessRequest,
                     RequestMaker().add(vendorOctets, {octets(value)}).addMessageAuthenticator()),
               PacketMaker(accessRequest).addRaw({26, 2}).addMessageAuthenticator());
}

TEST(AssemblyVendor, LeavesBytesBehindThatAreTakenForALengthWhereNothingIsWritten) {
  const ByteVector value(253, 0xff);
  ByteVector front{26, 5, 0, 0, 0, 9, 7, 255, 0xff, 0xff, 0xff, 0xff};
  // Behind the five bytes that the outer Length says, the vendor type stands for a Length of seven.
  expectPacket(build(accessRequest,
                     RequestMaker().add(vendorOctets, {octets(value)}).add(eapMessage, {noOctets})),
               PacketMaker(accessRequest).addRaw(front));
  // The next is 255, which takes the packet to its longest and no further: behind the value stand
  // six bytes that nothing was ever written to.
  const auto requestFrom = [&](std::size_t start) {
    RequestMaker request;
    return fillTo(start, request)
        .add(vendorOctets, {octets(value)})
        .add(eapMessage, {noOctets, noOctets});
  };
  front.resize(261, 0xff);
  front.resize(267, 0);
  PacketMaker expected(accessRequest);
  expectPacket(build(accessRequest, requestFrom(4096 - 267)),
               fillTo(4096 - 267, expected).addRaw(front));
  expectFault(build(accessRequest, requestFrom(4096 - 266)), ErrorMsg::maxPktLengthExceeded);
}

TEST(AssemblyVendor, CountsTheRoomOfTheWholeAttribute) {
  RequestMaker fits;
  PacketMaker expected(accessAccept);
  fillTo(4096 - 261, fits).add(vendorOctets, {octets(ByteVector(253))});
  fillTo(4096 - 261, expected).addRaw({26, 5, 0, 0, 0});
  expectPacket(build(accessAccept, fits), expected);
  RequestMaker oneMore;
  fillTo(4096 - 260, oneMore).add(vendorOctets, {octets(ByteVector(253))});
  expectFault(build(accessAccept, oneMore), ErrorMsg::maxPktLengthExceeded,
              {"Attribute: 7 Length: 261 addition exceeds max packet length 3836"});
}

TEST(AssemblyVendor, HidesTheWholeSubAttributeWhateverTheOuterLengthSays) {
  const CapturingSink trace;
  const ByteVector plain = countingBytes(253, 1);
  ByteVector buffer(4096, 0);
  U16 length = 20;
  U8* msgAuthPos = nullptr;
  EXPECT_EQ(addAttributesToPkt(testSecret, verdaBytes(testReqAuth), headerOf(accessAccept),
                               RequestMaker().add(vendorSalted, {octets(plain)}).make(),
                               buffer.data(), length, msgAuthPos, dictionary()),
            ErrorMsg::success);
  const ByteVector cipher = hidden(std::span(plain).subspan(2), bytesOf(testSecret), testReqAuth,
                                   std::span(plain).first(2));
  EXPECT_EQ(ByteVector(buffer.begin() + 20, buffer.begin() + 281),
            joined({ByteVector{26, 5, 0, 0, 0, 9, 4, 255, 1, 2}, cipher}));
  EXPECT_EQ(length, 25);
}

TEST(AssemblyVendor, WritesItsAttributeWithoutTouchingWhatStandsBehind) {
  expectPacket(build(accessAccept, RequestMaker()
                                       .add(vendorConcat, {octets(countingBytes(247))})
                                       .add(vendorConcat, {noOctets})),
               PacketMaker(accessAccept).addVendor(9, 3, countingBytes(247)).addVendor(9, 3, {}));
}

TEST(AssemblyVendor, GoesOnByTheOuterLengthAlsoWhereItIsAReplacement) {
  const auto old = PacketMaker(accessRequest)
                       .add(1, bytesOf("nemo"))
                       .addVendor(9, 7, {1})
                       .add(27, {0, 0, 0, 1})
                       .addMessageAuthenticator();
  for (const std::size_t size : Sizes{248, 249, 253}) {
    SCOPED_TRACE(size);
    ByteVector front{26, static_cast<U8>(size + 8), 0, 0, 0};
    front.resize(size - 248);
    expectPacket(
        modify(old.make(), RequestMaker().replace(vendorOctets, {octets(countingBytes(size))})),
        PacketMaker(accessRequest)
            .add(1, bytesOf("nemo"))
            .addRaw(front)
            .add(27, {0, 0, 0, 1})
            .addMessageAuthenticator());
  }
}

}  // namespace
