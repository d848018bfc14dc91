#include "tool/making/PacketEditor.h"

#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Hex.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/Walk.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

using RadiusPktParserBase::ErrorMsg;
using TestSupport::ByteVector;
using TestSupport::PacketMaker;
using TestSupport::shippedDictionary;
using TestSupport::testReqAuth;
using TestSupport::testSecret;
using TestSupport::verdaBytes;

/// Changes packets one behind the other.
std::vector<EditedPacket> editedAll(const std::vector<ByteVector>& packets,
                                    const ChangeTexts& texts, const ByteVector& given = {}) {
  const Secrets secrets(std::make_unique<const Secret>(testSecret));
  PacketEditor editor(shippedDictionary(), secrets, verdaBytes(given),
                      changesOf(texts, AttributeNames(shippedDictionary())));
  std::vector<EditedPacket> edited;
  for (const ByteVector& packet : packets) {
    edited.push_back(editor.edit({.place = {.source = "x", .index = edited.size() + 1},
                                  .bytes = packet,
                                  .datagram = std::nullopt,
                                  .whyBinary = std::nullopt}));
  }
  return edited;
}

MadePacket edited(const ByteVector& packet, const ChangeTexts& texts,
                  const ByteVector& given = {}) {
  const EditedPacket result = editedAll({packet}, texts, given).front();
  EXPECT_EQ(result.report.error, ErrorMsg::success);
  return result.made;
}

ChangeTexts set(const std::string& text) {
  return {.set = {text}, .add = {}, .remove = {}};
}

ChangeTexts add(const std::string& text) {
  return {.set = {}, .add = {text}, .remove = {}};
}

ChangeTexts remove(const std::string& text) {
  return {.set = {}, .add = {}, .remove = {text}};
}

TEST(PacketEditor, SetTakesThePlaceOfEveryAttributeOfTheName) {
  const ByteVector packet =
      PacketMaker(1).add(25, {1}).add(1, {'a'}).add(25, {2}).addVendor(311, 18, {'v'}).make();
  EXPECT_EQ(edited(packet, set("Class=0x0909")).bytes, PacketMaker(1)
                                                           .add(25, {9, 9})
                                                           .add(1, {'a'})
                                                           .add(25, {9, 9})
                                                           .addVendor(311, 18, {'v'})
                                                           .make());
  EXPECT_EQ(edited(packet, set("MS-RAS-Version=\"\"")).bytes,
            PacketMaker(1).add(25, {1}).add(1, {'a'}).add(25, {2}).addVendor(311, 18, {}).make());
}

TEST(PacketEditor, SetAddsWhatIsNotThere) {
  EXPECT_EQ(edited(PacketMaker(1).add(25, {1}).make(), set("User-Name=\"a\"")).bytes,
            PacketMaker(1).add(25, {1}).add(1, {'a'}).make());
}

TEST(PacketEditor, RemoveDropsEveryAttributeOfTheNameIfThereIsOne) {
  const ByteVector packet = PacketMaker(1).add(25, {1}).add(1, {'a'}).add(25, {2}).make();
  EXPECT_EQ(edited(packet, remove("Class")).bytes, PacketMaker(1).add(1, {'a'}).make());
  EXPECT_EQ(edited(packet, remove("NAS-Port")).bytes, packet);
}

TEST(PacketEditor, AddComesLastInItsOrder) {
  EXPECT_EQ(edited(PacketMaker(1).add(25, {1}).make(),
                   {.set = {"Attr-240=0x"}, .add = {"Class=0x02", "Class=0x01"}, .remove = {}})
                .bytes,
            PacketMaker(1).add(25, {1}).add(240, {}).add(25, {2}).add(25, {1}).make());
}

TEST(PacketEditor, UnknownAttributesAreChangedByTheirNumbers) {
  const ByteVector packet = PacketMaker(1).add(240, {1}).addVendor(99999, 3, {2}).make();
  EXPECT_EQ(
      edited(packet, {.set = {"Attr-26.99999.3=0x05"}, .add = {}, .remove = {"Attr-240"}}).bytes,
      PacketMaker(1).addVendor(99999, 3, {5}).make());
}

TEST(PacketEditor, SplitValueIsOne) {
  const ByteVector fragment(253, 7);
  const ByteVector packet =
      PacketMaker(1).addMessageAuthenticator().add(79, fragment).add(79, {1}).add(25, {1}).make();
  EXPECT_EQ(edited(packet, set("EAP-Message=0x02")).bytes,
            PacketMaker(1).addMessageAuthenticator().add(79, {2}).add(25, {1}).make());
  EXPECT_EQ(edited(packet, remove("EAP-Message")).bytes,
            PacketMaker(1).addMessageAuthenticator().add(25, {1}).make());
}

TEST(PacketEditor, MessageAuthenticatorIsKeptOrAdded) {
  const ByteVector with = PacketMaker(1).addMessageAuthenticator().add(25, {1}).make();
  const ByteVector without = PacketMaker(1).add(25, {1}).make();
  for (const ChangeTexts& asked : {add("Message-Authenticator"), set("Message-Authenticator")}) {
    EXPECT_EQ(edited(with, asked).bytes, with);
    EXPECT_EQ(edited(without, asked).bytes,
              PacketMaker(1).add(25, {1}).addMessageAuthenticator().make());
  }
}

TEST(PacketEditor, EveryCodeIsSignedAnew) {
  for (const Verda::U8 code :
       std::to_array<Verda::U8>({1, 2, 3, 4, 5, 11, 12, 40, 41, 42, 43, 44, 45, 99})) {
    SCOPED_TRACE(int{code});
    const auto maker = [&] { return PacketMaker(code).reqAuthIs(TestSupport::reqAuthFor(code)); };
    EXPECT_EQ(edited(maker().add(25, {1}).make(), set("Class=0x02"), testReqAuth).bytes,
              maker().add(25, {2}).make());
  }
}

TEST(PacketEditor, ResponseAnswersTheRequestAsItIsNow) {
  const auto results =
      editedAll({PacketMaker(4).add(25, {1}).make(),
                 PacketMaker(5)
                     .reqAuthIs([] {
                       const ByteVector request = PacketMaker(4).add(25, {1}).make();
                       return ByteVector(request.begin() + 4, request.begin() + 20);
                     }())
                     .make()},
                add("Proxy-State=0x01"));
  const ByteVector& request = results[0].made.bytes;
  EXPECT_EQ(request, PacketMaker(4).add(25, {1}).add(33, {1}).make());
  EXPECT_EQ(results[1].report.error, ErrorMsg::success);
  EXPECT_EQ(
      results[1].made.bytes,
      PacketMaker(5).reqAuthIs({request.begin() + 4, request.begin() + 20}).add(33, {1}).make());
}

TEST(PacketEditor, RefusedPacketsAreNotChanged) {
  const auto results =
      editedAll({PacketMaker(2).reqAuthIs({}).make(),
                 PacketMaker(1).addRaw({1, 1}).make(),
                 {1, 2, 3},
                 PacketMaker(2).reqAuthIs(TestSupport::countingBytes(16, 0x30)).make()},
                add("Class=0x01"));
  EXPECT_EQ(results[0].report.error, std::nullopt);
  EXPECT_EQ(results[1].report.error, ErrorMsg::invalidAttrLength);
  EXPECT_EQ(results[2].report.error, ErrorMsg::invalidPktLength);
  for (std::size_t at = 0; at < 3; ++at) {
    EXPECT_TRUE(results[at].made.bytes.empty());
  }
  // What answers a refused request is a response all the same.
  EXPECT_EQ(results[3].report.error, ErrorMsg::success);
  EXPECT_EQ(results[3].made.bytes,
            PacketMaker(2).reqAuthIs(TestSupport::countingBytes(16, 0x30)).add(25, {1}).make());
}

TEST(PacketEditor, PaddingBehindThePacketGoes) {
  ByteVector packet = PacketMaker(1).add(25, {1}).make();
  packet.resize(packet.size() + 5, 0xff);
  EXPECT_EQ(edited(packet, set("Class=0x02")).bytes, PacketMaker(1).add(25, {2}).make());
}

// ---- Hidden values ----

TEST(PacketEditor, WarnsOfHiddenValuesThatNobodyCanReveal) {
  const ByteVector plain = PacketMaker(4).add(25, {1}).make();
  EXPECT_EQ(edited(plain, add("Tunnel-Password:1=\"x\"")).warnings,
            std::vector<std::string>{
                "packet 1 of x: --add number 1: Tunnel-Password: warning: no receiver can reveal a "
                "value that is hidden in a packet of ACCOUNTING_REQUEST"});
  EXPECT_TRUE(edited(plain, add("Class=0x02")).warnings.empty());
}

TEST(PacketEditor, WarnsOfHiddenCopiesWhenTheirAuthenticatorChanges) {
  const ByteVector packet = PacketMaker(43).add(69, ByteVector(19, 0x81)).add(25, {1}).make();
  EXPECT_EQ(edited(packet, set("Class=0x02")).warnings,
            std::vector<std::string>{"packet 1 of x: Tunnel-Password: warning: the value is hidden "
                                     "under an authenticator that has changed: no receiver can "
                                     "reveal it"});
  EXPECT_TRUE(edited(packet, set("Class=0x01")).warnings.empty());
  EXPECT_TRUE(edited(packet, remove("Tunnel-Password")).warnings.empty());
  EXPECT_TRUE(
      edited(PacketMaker(1).add(2, ByteVector(16, 7)).add(25, {1}).make(), set("Class=0x02"))
          .warnings.empty());
}

TEST(PacketEditor, WarnsOfWhatIsRefused) {
  const ByteVector plain = PacketMaker(1).add(25, {1}).make();
  EXPECT_EQ(edited(plain, add("EAP-Message=0x01")).warnings,
            std::vector<std::string>{"packet 1 of x: warning: the packet is built, but decode "
                                     "refuses it: missingRequiredMsgAuth"});
  const ByteVector answer =
      PacketMaker(2).reqAuthIs(testReqAuth).addMessageAuthenticator().add(25, {1}).make();
  EXPECT_EQ(edited(answer, set("Attr-5=0x"), testReqAuth).warnings,
            std::vector<std::string>{"packet 1 of x: warning: the packet is built, but decode "
                                     "refuses it: invalidAttrLength: Attribute: 5, VendorId: 0, "
                                     "VendorAttrId: 0, Data Type: Integer, Invalid length: 0"});
  EXPECT_EQ(edited(answer, add("EAP-Message=0x01"), testReqAuth).warnings,
            std::vector<std::string>{});
}

TEST(PacketEditor, NewSaltIsNoneOfThePacket) {
  PacketMaker maker(2);
  for (int number = 0; number < 200; ++number) {
    maker.add(69, {1, 0x80, static_cast<Verda::U8>(number), 0, 0});
  }
  const auto packet = maker.reqAuthIs(testReqAuth).make();
  const auto result = edited(packet, add("Tunnel-Password:1=\"x\""), testReqAuth).bytes;
  const std::size_t at = packet.size() + 3;
  const ByteVector salt(result.begin() + static_cast<std::ptrdiff_t>(at),
                        result.begin() + static_cast<std::ptrdiff_t>(at) + 2);
  EXPECT_NE(salt[0] & 0x80, 0);
  EXPECT_TRUE(salt[0] != 0x80 || salt[1] >= 200);
}

// ---- Faults ----

std::string faultOf(const ByteVector& packet, const ChangeTexts& texts) {
  try {
    editedAll({packet}, texts);
  } catch (const ToolError& fault) {
    EXPECT_EQ(fault.exitCode(), ExitCode::badData);
    return fault.what();
  }
  return {};
}

TEST(PacketEditor, NamesPacketOptionAttributeAndReason) {
  const ByteVector packet = PacketMaker(1).add(25, {1}).make();
  EXPECT_EQ(faultOf(packet, set("Class=abc")),
            "packet 1 of x: --set number 1: Class: text stands in quotes");
  EXPECT_EQ(faultOf(packet, add("User-Name")),
            "packet 1 of x: --add number 1: User-Name: there is no value");
  EXPECT_EQ(faultOf(packet, {.set = {"Class=0x01"}, .add = {"Attr-25=0x01"}, .remove = {}}),
            "packet 1 of x: --add number 1: Attr-25: the attribute stands both in raw form and "
            "under its name");
}

TEST(PacketEditor, ValueOfAMessageAuthenticatorIsReadWhetherThereIsOneOrNot) {
  for (const ByteVector& packet :
       {PacketMaker(1).add(25, {1}).make(), PacketMaker(1).addMessageAuthenticator().make()}) {
    EXPECT_EQ(faultOf(packet, set("Message-Authenticator=x")),
              "packet 1 of x: --set number 1: Message-Authenticator: text stands in quotes");
    EXPECT_EQ(faultOf(packet, add("Attr-80=0x0")),
              "packet 1 of x: --add number 1: Attr-80: behind 0x stands an even number of hex "
              "digits and nothing else");
    EXPECT_EQ(faultOf(packet, add("Message-Authenticator:1")),
              "packet 1 of x: --add number 1: Message-Authenticator: the attribute is not tagged");
    EXPECT_EQ(faultOf(packet, add("Message-Authenticator=0x00")), "");
  }
}

TEST(PacketEditor, ChangeWithWhichThePacketGrowsTooLongIsNamed) {
  PacketMaker maker(1);
  for (int count = 0; count < 15; ++count) {
    maker.add(18, ByteVector(253, 'x'));
  }
  maker.add(25, ByteVector(240, 1));
  EXPECT_EQ(faultOf(maker.make(), {.set = {"Class=\"" + std::string(245, 'x') + "\""},
                                   .add = {"NAS-IP-Address=192.0.2.1", "Class=0x01"},
                                   .remove = {}}),
            "packet 1 of x: --add number 1: NAS-IP-Address: maxPktLengthExceeded");
}

}  // namespace
}  // namespace RadiusPacketTool
