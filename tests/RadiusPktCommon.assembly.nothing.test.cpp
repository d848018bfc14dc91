#include "RadiusPacketParser/RadiusPktCommon.h"

#include <gtest/gtest.h>

#include "tests/support/Assembly.h"

namespace {

using namespace TestSupport::Assembly;

TEST(AssemblyNothing, WritesNothingOfAnEmptyConcatValue) {
  expectPacket(build(accessAccept, RequestMaker()
                                       .add(eapMessage, {noOctets})
                                       .add(userName, {text("nemo")})
                                       .add(hiddenConcat, {noOctets, noOctets})),
               PacketMaker(accessAccept).add(1, bytesOf("nemo")));
}

TEST(AssemblyNothing, WritesNothingOfATaggedNumberForATaggedDate) {
  for (const Attribute& date : {taggedDate, hiddenTaggedDate}) {
    expectPacket(build(accessAccept, RequestMaker()
                                         .add(date, {taggedNumber})
                                         .add(userName, {text("nemo")})
                                         .add(date, {taggedNumber, taggedNumber})),
                 PacketMaker(accessAccept).add(1, bytesOf("nemo")));
  }
}

TEST(AssemblyNothing, GrowsByNothingForATaggedNumberForAVendorsTaggedDate) {
  for (const Attribute& date : {vendorTaggedDate, vendorHiddenTaggedDate}) {
    // Type and Vendor-Id are overwritten by what comes next.
    expectPacket(build(accessAccept, RequestMaker()
                                         .add(date, {taggedNumber})
                                         .add(userName, {text("nemo")})
                                         .add(date, {taggedNumber, taggedNumber})),
                 PacketMaker(accessAccept).add(1, bytesOf("nemo")));
  }
}

TEST(AssemblyNothing, GrowsByTheLengthByteThatStandsThere) {
  // The vendor's number, of which the encoder wrote nothing but that, stands behind an attribute of
  // two bytes: its second byte is taken for a Length.
  DictionaryMaker maker;
  maker.add(1, RadiusAttributeType::string).add(79, RadiusAttributeType::octets, {.concat = true});
  const DictPtr dict =
      maker.addVendor(0x00050607, 5, RadiusAttributeType::date, {.tag = true}).make();
  const auto request = RequestMaker()
                           .add(vendorAttribute(0x00050607, 5), {taggedNumber})
                           .add(userName, {text("")})
                           .add(eapMessage, {noOctets})
                           .make();
  const Ptr<PktReturn> built =
      buildPkt(nullptr, testSecret, {}, headerOf(accessRequest), request, dict);
  ASSERT_EQ(built->errorMsg(), ErrorMsg::success);
  EXPECT_EQ(bytesOf(built->pkt()),
            PacketMaker(accessRequest).add(1, {}).addRaw({0, 5, 6, 7, 0}).make());
}

TEST(AssemblyNothing, HidesNothingWhereNothingWasWritten) {
  const CapturingSink trace;
  ByteVector buffer(4096, 0);
  // The Length of an attribute that is not there.
  buffer[21] = 18;
  U16 length = 20;
  U8* msgAuthPos = nullptr;
  EXPECT_EQ(addAttributesToPkt(testSecret, verdaBytes(testReqAuth), headerOf(accessAccept),
                               RequestMaker().add(hiddenTaggedDate, {taggedNumber}).make(),
                               buffer.data(), length, msgAuthPos, dictionary()),
            ErrorMsg::success);
  EXPECT_EQ(length, 38);
  buffer[21] = 0;
  EXPECT_EQ(buffer, ByteVector(4096));
}

TEST(AssemblyNothing, GrowsNeverBeyondTheLongestPacket) {
  for (const Attribute& nothing : {eapMessage, taggedDate}) {
    const AttrValue value = nothing == eapMessage ? noOctets : taggedNumber;
    for (const U16 start : {U16{4094}, U16{4095}, U16{4096}}) {
      ByteVector buffer(4096, 3);
      U16 length = start;
      U8* msgAuthPos = nullptr;
      const ErrorMsg result = addAttributesToPkt(testSecret, {}, headerOf(accessRequest),
                                                 RequestMaker().add(nothing, {value}).make(),
                                                 buffer.data(), length, msgAuthPos, dictionary());
      // At 4094 there is a Length byte, and it says one byte too many.
      EXPECT_EQ(result, start == 4094 ? ErrorMsg::maxPktLengthExceeded : ErrorMsg::success);
      EXPECT_EQ(length, start);
      EXPECT_EQ(buffer, ByteVector(4096, 3));
    }
  }
}

TEST(AssemblyNothing, LeavesAFullPacketFull) {
  for (const Attribute& nothing : {eapMessage, taggedDate, hiddenTaggedDate}) {
    for (const std::size_t length : Sizes{4095, 4096}) {
      RequestMaker request;
      PacketMaker expected(accessAccept);
      fillTo(length, request).add(nothing, {nothing == eapMessage ? noOctets : taggedNumber});
      fillTo(length, expected);
      expectPacket(build(accessAccept, request), expected);
    }
  }
}

TEST(AssemblyNothing, NeedsRoomForAVendorsTaggedDate) {
  RequestMaker fits;
  PacketMaker expected(accessAccept);
  fillTo(4090, fits).add(vendorTaggedDate, {taggedNumber});
  fillTo(4090, expected);
  expectPacket(build(accessAccept, fits), expected);
  RequestMaker oneMore;
  fillTo(4091, oneMore).add(vendorTaggedDate, {taggedNumber});
  expectFault(build(accessAccept, oneMore), ErrorMsg::maxPktLengthExceeded);
}

TEST(AssemblyNothing, ReplacesAnAttributeByNothing) {
  expectPacket(modify(PacketMaker(accessAccept).add(89, {1}).add(1, {'n'}).make(),
                      RequestMaker().replace(otherConcat, {noOctets})),
               PacketMaker(accessAccept).add(1, {'n'}));
}

}  // namespace
