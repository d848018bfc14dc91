#include "RadiusPacketParser/RadiusPktCommon.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "tests/support/Assembly.h"

namespace {

using namespace TestSupport::Assembly;

TEST(AssemblyAdd, BuildsAHeaderOfNothing) {
  for (const U8 code : ByteVector{1, 2, 4, 5, 12, 40, 43, 44, 99}) {
    SCOPED_TRACE(int{code});
    const Built built = build(code, {});
    expectPacket(built, PacketMaker(code));
    EXPECT_EQ(built.packet.size(), 20U);
  }
}

TEST(AssemblyAdd, WritesInTheOrderOfTheKeys) {
  expectPacket(build(accessRequest, RequestMaker()
                                        .addAt(10, userName, {text("ten")})
                                        .addAt(1, userName, {text("one")})
                                        .addAt(65535, userName, {text("last")})
                                        .addAt(5, vendorText, {text("five")})
                                        .addAt(0, userName, {text("none")})),
               PacketMaker(accessRequest)
                   .add(1, bytesOf("none"))
                   .add(1, bytesOf("one"))
                   .addVendor(9, 1, bytesOf("five"))
                   .add(1, bytesOf("ten"))
                   .add(1, bytesOf("last")));
}

TEST(AssemblyAdd, WritesOneAttributeForEachValueInTheirOrder) {
  expectPacket(build(accessAccept, RequestMaker()
                                       .add(sessionTimeout, {7U, 5U, 6U})
                                       .add(vendorNumber, {2U, 1U})
                                       .add(userName, {text("nemo")})),
               PacketMaker(accessAccept)
                   .add(27, {0, 0, 0, 7})
                   .add(27, {0, 0, 0, 5})
                   .add(27, {0, 0, 0, 6})
                   .addVendor(9, 2, {0, 0, 0, 2})
                   .addVendor(9, 2, {0, 0, 0, 1})
                   .add(1, bytesOf("nemo")));
}

TEST(AssemblyAdd, WritesNothingForAnEntryWithoutValues) {
  expectPacket(build(accessAccept,
                     RequestMaker().add(userName, {}).add(absent, {}).add(sessionTimeout, {1U})),
               PacketMaker(accessAccept).add(27, {0, 0, 0, 1}));
}

TEST(AssemblyAdd, RefusesAnEntryWithoutAnAttribute) {
  RequestMaker request;
  request.add(userName, {text("nemo")});
  request.make()->attributesToAddIs(9);
  expectFault(build(accessRequest, request), ErrorMsg::invalidAttrDataType);
}

TEST(AssemblyAdd, EndsAtTheFirstFault) {
  expectFault(
      build(accessRequest,
            RequestMaker().add(userName, {text("nemo"), 1U, text("never seen")}).add(absent, {1U})),
      ErrorMsg::invalidAttrDataType, {"AttrId: 1 Expected string type, invalid data type passed"});
}

TEST(AssemblyAdd, RefusesWhatTheDictionaryLacks) {
  expectFault(build(accessRequest, RequestMaker().add(absent, {1U})), ErrorMsg::invalidAttrId,
              {"Missing attribute: 200 from radius dictionary", "Unsupported attribute: 200"});
  expectFault(build(accessRequest, RequestMaker().add(vendorAttribute(10, 1), {1U})),
              ErrorMsg::invalidVendorId,
              {"Unsupported vendorId: 10", "Unsupported VSA: 26, vendor Id: 10, vendorAttrId: 1"});
  expectFault(build(accessRequest, RequestMaker().add(vendorAttribute(9, 99), {1U})),
              ErrorMsg::invalidVendorAttrId,
              {"Unsupported vendorAttrId: 99 for vendorId: 9",
               "Unsupported VSA: 26, vendor Id: 9, vendorAttrId: 99"});
}

TEST(AssemblyAdd, PassesOnWhatTheEncodersRefuse) {
  expectFault(build(accessRequest, RequestMaker().add(classOctets, {octets(ByteVector(254))})),
              ErrorMsg::invalidAttrLength, {"Attribute: 25 with invalid length 256"});
  expectFault(build(accessRequest, RequestMaker().add(vendorNumber, {text("1")})),
              ErrorMsg::invalidVendorAttrDataType,
              {"VendorId: 9 vendorAttrId: 2 Expected int type, invalid data type passed"});
}

TEST(AssemblyAdd, StartsAtTheLengthThatItIsGiven) {
  const CapturingSink trace;
  const auto request = RequestMaker().add(userName, {text("nemo")}).addMessageAuthenticator();
  ByteVector buffer(4096, 0xee);
  U16 length = 100;
  U8* msgAuthPos = nullptr;
  EXPECT_EQ(addAttributesToPkt(testSecret, {}, headerOf(accessRequest), request.make(),
                               buffer.data(), length, msgAuthPos, dictionary()),
            ErrorMsg::success);
  ByteVector expected(4096, 0xee);
  std::ranges::copy(attributeBytes(1, bytesOf("nemo")), expected.begin() + 100);
  // The value is left for the one who signs.
  expected[106] = 80;
  expected[107] = 18;
  EXPECT_EQ(buffer, expected);
  EXPECT_EQ(length, 124);
  EXPECT_EQ(msgAuthPos - buffer.data(), 106);
}

}  // namespace
