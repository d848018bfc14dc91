#include "RadiusPacketParser/RadiusPktCommon.h"

#include <gtest/gtest.h>

#include "tests/support/Assembly.h"

namespace {

using namespace TestSupport::Assembly;

PacketMaker usualPacket(U8 code) {
  return PacketMaker(code)
      .add(1, bytesOf("nemo"))
      .addVendor(9, 1, bytesOf("first"))
      .addVendor(9, 2, {0, 0, 0, 1})
      .addVendor(10, 1, bytesOf("not in the dictionary"))
      .add(27, {0, 0, 0, 60})
      .addVendor(9, 1, bytesOf("second"));
}

TEST(AssemblyReplace, CopiesEveryAttributeAsItIs) {
  for (const U8 code : ByteVector{1, 2, 4, 43}) {
    expectPacket(modify(usualPacket(code).make(), {}), usualPacket(code));
  }
}

TEST(AssemblyReplace, CopiesWhatTheDictionaryLacksAndSaysSo) {
  const ByteVector old = PacketMaker(accessAccept).add(200, {1}).addVendor(10, 1, {2}).make();
  const Built built = modify(old, {});
  EXPECT_EQ(built.packet, old);
  // Only a standard attribute is looked up before it is known to be replaced.
  EXPECT_EQ(
      built.records,
      (Records{errorRecord("", "getAttrInfo", "Missing attribute: 200 from radius dictionary")}));
}

TEST(AssemblyReplace, LeavesHiddenValuesThatItCopiesAsTheyAre) {
  const ByteVector cipher = countingBytes(16, 0x90);
  const auto packet = PacketMaker(accessRequest).add(2, cipher).add(69, countingBytes(19, 1));
  expectPacket(modify(packet.make(), {}), packet);
}

TEST(AssemblyReplace, PutsAReplacementInThePlaceOfTheOldAttribute) {
  expectPacket(modify(usualPacket(accessAccept).make(),
                      RequestMaker().replace(userName, {text("somebody else")})),
               PacketMaker(accessAccept)
                   .add(1, bytesOf("somebody else"))
                   .addVendor(9, 1, bytesOf("first"))
                   .addVendor(9, 2, {0, 0, 0, 1})
                   .addVendor(10, 1, bytesOf("not in the dictionary"))
                   .add(27, {0, 0, 0, 60})
                   .addVendor(9, 1, bytesOf("second")));
}

TEST(AssemblyReplace, ReplacesOnlyTheVendorAttributeOfThatVendorAndType) {
  expectPacket(modify(usualPacket(accessAccept).make(),
                      RequestMaker()
                          .replace(vendorNumber, {7U})
                          .replace(vendorAttribute(9, 27), {text("not there")})),
               PacketMaker(accessAccept)
                   .add(1, bytesOf("nemo"))
                   .addVendor(9, 1, bytesOf("first"))
                   .addVendor(9, 2, {0, 0, 0, 7})
                   .addVendor(10, 1, bytesOf("not in the dictionary"))
                   .add(27, {0, 0, 0, 60})
                   .addVendor(9, 1, bytesOf("second")));
}

TEST(AssemblyReplace, ReplacesEachAttributeOfTheKey) {
  expectPacket(modify(usualPacket(accessAccept).make(),
                      RequestMaker().replace(vendorText, {text("each"), text("never")})),
               PacketMaker(accessAccept)
                   .add(1, bytesOf("nemo"))
                   .addVendor(9, 1, bytesOf("each"))
                   .addVendor(9, 2, {0, 0, 0, 1})
                   .addVendor(10, 1, bytesOf("not in the dictionary"))
                   .add(27, {0, 0, 0, 60})
                   .addVendor(9, 1, bytesOf("each")));
}

TEST(AssemblyReplace, RemovesEachAttributeOfTheKey) {
  expectPacket(modify(usualPacket(accessAccept).make(),
                      RequestMaker().remove(vendorText).remove(sessionTimeout)),
               PacketMaker(accessAccept)
                   .add(1, bytesOf("nemo"))
                   .addVendor(9, 2, {0, 0, 0, 1})
                   .addVendor(10, 1, bytesOf("not in the dictionary")));
}

TEST(AssemblyReplace, RemovesWhatTheDictionaryLacks) {
  const ByteVector old = PacketMaker(accessAccept).add(200, {1}).addVendor(10, 1, {2}).make();
  const Built built = modify(old, RequestMaker().remove(absent).remove(vendorAttribute(10, 1)));
  EXPECT_EQ(built.packet, PacketMaker(accessAccept).make());
}

TEST(AssemblyReplace, RemovesNothingThatIsNotThere) {
  expectPacket(modify(usualPacket(accessAccept).make(),
                      RequestMaker().remove(classOctets).remove(vendorAttribute(10, 2))),
               usualPacket(accessAccept));
}

TEST(AssemblyReplace, ReplacesWhatIsBothReplacedAndRemoved) {
  expectPacket(
      modify(PacketMaker(accessAccept).add(1, bytesOf("nemo")).addVendor(9, 2, {0, 0, 0, 1}).make(),
             RequestMaker()
                 .replace(userName, {text("new")})
                 .remove(userName)
                 .replace(vendorNumber, {2U})
                 .remove(vendorNumber)),
      PacketMaker(accessAccept).add(1, bytesOf("new")).addVendor(9, 2, {0, 0, 0, 2}));
}

TEST(AssemblyReplace, AddsBehindAllThatIsCopied) {
  expectPacket(
      modify(PacketMaker(accessAccept).add(1, bytesOf("nemo")).add(27, {0, 0, 0, 60}).make(),
             RequestMaker()
                 .remove(userName)
                 .add(userName, {text("new")})
                 .addMessageAuthenticator()
                 .add(vendorNumber, {1U})),
      PacketMaker(accessAccept)
          .add(27, {0, 0, 0, 60})
          .add(1, bytesOf("new"))
          .addMessageAuthenticator()
          .addVendor(9, 2, {0, 0, 0, 1}));
}

TEST(AssemblyReplace, AddsNothingInPlaceOfAnAttributeThatIsNotThere) {
  expectPacket(modify(PacketMaker(accessAccept).add(27, {0, 0, 0, 60}).make(),
                      RequestMaker().replace(userName, {text("nobody")})),
               PacketMaker(accessAccept).add(27, {0, 0, 0, 60}));
}

TEST(AssemblyReplace, RefusesAReplacementWithoutAValue) {
  const ByteVector old = usualPacket(accessAccept).make();
  expectFault(modify(old, RequestMaker().replace(userName, {})), ErrorMsg::invalidAttrDataType);
  expectFault(modify(old, RequestMaker().replace(vendorText, {})), ErrorMsg::invalidAttrDataType);
  expectPacket(modify(old, RequestMaker().replace(classOctets, {})), usualPacket(accessAccept));
}

TEST(AssemblyReplace, RefusesAReplacementThatTheDictionaryLacks) {
  const ByteVector old = PacketMaker(accessAccept).add(200, {1}).addVendor(10, 1, {2}).make();
  // The one lookup of a standard attribute serves the encoder too.
  expectFault(modify(old, RequestMaker().replace(absent, {1U})), ErrorMsg::invalidAttrId,
              {"Missing attribute: 200 from radius dictionary", "Unsupported attribute: 200"});
  expectFault(modify(old, RequestMaker().replace(vendorAttribute(10, 1), {1U})),
              ErrorMsg::invalidVendorId,
              {"Missing attribute: 200 from radius dictionary", "Unsupported vendorId: 10",
               "Unsupported VSA: 26, vendor Id: 10, vendorAttrId: 1"});
}

TEST(AssemblyReplace, PassesOnWhatTheEncodersRefuse) {
  expectFault(
      modify(usualPacket(accessAccept).make(), RequestMaker().replace(sessionTimeout, {text("1")})),
      ErrorMsg::invalidAttrDataType, {"AttrId: 27 Expected int type, invalid data type passed"});
}

TEST(AssemblyReplace, TakesAVendorOfNumberZeroForAVendor) {
  const ByteVector old = PacketMaker(accessAccept).addVendor(0, 0, {1}).make();
  const Built built = modify(old, RequestMaker().remove(standardAttribute(26)));
  EXPECT_EQ(built.packet, PacketMaker(accessAccept).make());
}

TEST(AssemblyReplace, ReadsTheVendorsNumberInNetworkOrder) {
  const ByteVector old =
      PacketMaker(accessAccept).addVendor(0xfedcba98, 1, {1}).addVendor(0x98badcfe, 1, {2}).make();
  EXPECT_EQ(modify(old, RequestMaker().remove(vendorAttribute(0xfedcba98, 1))).packet,
            PacketMaker(accessAccept).addVendor(0x98badcfe, 1, {2}).make());
}

TEST(AssemblyReplace, TakesAVendorAttributeByItsFirstSubAttribute) {
  const ByteVector two = joined({ByteVector{26, 14, 0, 0, 0, 9}, attributeBytes(1, {'a', 'b'}),
                                 attributeBytes(2, {'c', 'd'})});
  expectPacket(modify(PacketMaker(accessAccept).addRaw(two).make(),
                      RequestMaker().replace(vendorText, {text("one")})),
               PacketMaker(accessAccept).addVendor(9, 1, bytesOf("one")));
  expectPacket(modify(PacketMaker(accessAccept).addRaw(two).make(),
                      RequestMaker().replace(vendorNumber, {1U}).remove(vendorNumber)),
               PacketMaker(accessAccept).addRaw(two));
}

TEST(AssemblyReplace, DoesNotAskWhatTheSubAttributesLengthSays) {
  const ByteVector odd{26, 9, 0, 0, 0, 9, 2, 200, 1};
  expectPacket(modify(PacketMaker(accessAccept).addRaw(odd).make(), {}),
               PacketMaker(accessAccept).addRaw(odd));
  expectPacket(modify(PacketMaker(accessAccept).addRaw(odd).make(),
                      RequestMaker().replace(vendorNumber, {1U})),
               PacketMaker(accessAccept).addVendor(9, 2, {0, 0, 0, 1}));
}

TEST(AssemblyReplace, DropsWhatStandsBehindThePacketsLength) {
  const ByteVector old = usualPacket(accessAccept).make();
  const Built built = modify(joined({old, ByteVector(100, 1)}), {});
  EXPECT_EQ(built.packet, old);
}

TEST(AssemblyReplace, SetsLengthAndPlaceOfWhatItWrote) {
  const CapturingSink trace;
  const ByteVector old =
      PacketMaker(accessAccept).add(1, bytesOf("nemo")).addMessageAuthenticator().make();
  ByteVector buffer(4096, 0xee);
  U16 length = 999;
  U8* msgAuthPos = nullptr;
  EXPECT_EQ(replaceAttributesInPkt(old.data(), buffer.data(), testSecret, verdaBytes(testReqAuth),
                                   headerOf(accessAccept), RequestMaker().make(), length,
                                   msgAuthPos, dictionary()),
            ErrorMsg::success);
  EXPECT_EQ(length, 44);
  EXPECT_EQ(msgAuthPos - buffer.data(), 26);
  // Neither the header in front nor the value of the Message-Authenticator is touched.
  EXPECT_EQ(ByteVector(buffer.begin(), buffer.begin() + 20), ByteVector(20, 0xee));
  EXPECT_EQ(ByteVector(buffer.begin() + 20, buffer.begin() + 28),
            joined({attributeBytes(1, bytesOf("nemo")), ByteVector{80, 18}}));
  EXPECT_EQ(ByteVector(buffer.begin() + 28, buffer.end()), ByteVector(4096 - 28, 0xee));
}

TEST(AssemblyReplace, RefusesALengthThatLeavesNoRoomForTheHeader) {
  for (const U8 oldLength : ByteVector{0, 1, 19}) {
    ByteVector old(20);
    old[3] = oldLength;
    ByteVector buffer(4096, 0xee);
    U16 length = 999;
    U8* msgAuthPos = nullptr;
    EXPECT_EQ(
        replaceAttributesInPkt(old.data(), buffer.data(), testSecret, {}, headerOf(accessRequest),
                               RequestMaker().make(), length, msgAuthPos, dictionary()),
        ErrorMsg::invalidPktLength);
    EXPECT_EQ(buffer, ByteVector(4096, 0xee));
  }
}

}  // namespace
