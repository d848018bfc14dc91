#include "RadiusPacketParser/RadiusPktCommon.h"

#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "tests/support/Assembly.h"

namespace {

using namespace TestSupport::Assembly;

/// Where a run of fragments stands among other attributes, and what becomes of it.
struct FragmentRun {
  const char* name;
  PacketMaker old;
  PacketMaker replaced;
  PacketMaker removed;
};

std::vector<FragmentRun> runs() {
  const ByteVector piece(253, 1);
  const ByteVector fresh{9, 9};
  const auto packet = [] { return PacketMaker(accessAccept); };
  const auto name = bytesOf("nemo");
  return {
      {"alone", packet().add(89, piece), packet().add(89, fresh), packet()},
      {"the whole packet", packet().add(89, piece).add(89, piece).add(89, {2}),
       packet().add(89, fresh), packet()},
      {"at the start", packet().add(89, piece).add(89, {2}).add(1, name),
       packet().add(89, fresh).add(1, name), packet().add(1, name)},
      {"in the middle", packet().add(1, name).add(89, piece).add(89, {2}).add(1, name),
       packet().add(1, name).add(89, fresh).add(1, name), packet().add(1, name).add(1, name)},
      {"at the end", packet().add(1, name).add(89, piece).add(89, {2}),
       packet().add(1, name).add(89, fresh), packet().add(1, name)},
      {"two runs", packet().add(89, piece).add(89, {2}).add(1, name).add(89, {3}).add(89, {4}),
       packet().add(89, fresh).add(1, name).add(89, fresh), packet().add(1, name)},
      {"runs with a vendor's attribute between",
       packet().add(89, {1}).addVendor(9, 2, {0, 0, 0, 1}).add(89, {2}),
       packet().add(89, fresh).addVendor(9, 2, {0, 0, 0, 1}).add(89, fresh),
       packet().addVendor(9, 2, {0, 0, 0, 1})},
      {"runs with a Message-Authenticator between",
       packet().add(89, {1}).addMessageAuthenticator().add(89, {2}),
       packet().add(89, fresh).addMessageAuthenticator().add(89, fresh),
       packet().addMessageAuthenticator()},
      {"beside another concat attribute",
       packet().add(79, {1}).add(89, {2}).add(89, {3}).add(79, {4}),
       packet().add(79, {1}).add(89, fresh).add(79, {4}), packet().add(79, {1}).add(79, {4})},
      {"of empty fragments", packet().add(89, {}).add(89, {}), packet().add(89, fresh), packet()},
  };
}

TEST(AssemblyConcat, ReplacesARunAsOne) {
  for (const FragmentRun& run : runs()) {
    SCOPED_TRACE(run.name);
    expectPacket(modify(run.old.make(), RequestMaker().replace(otherConcat, {octets({9, 9})})),
                 run.replaced);
  }
}

TEST(AssemblyConcat, RemovesARunAsOne) {
  for (const FragmentRun& run : runs()) {
    SCOPED_TRACE(run.name);
    expectPacket(modify(run.old.make(), RequestMaker().remove(otherConcat)), run.removed);
  }
}

TEST(AssemblyConcat, CopiesARunFragmentByFragment) {
  for (const FragmentRun& run : runs()) {
    SCOPED_TRACE(run.name);
    expectPacket(modify(run.old.make(), RequestMaker().remove(sessionTimeout)), run.old);
  }
}

TEST(AssemblyConcat, ReplacesTwoRunsThatStandSideBySide) {
  expectPacket(
      modify(PacketMaker(accessAccept).add(79, {1}).add(79, {2}).add(89, {3}).add(89, {4}).make(),
             RequestMaker().remove(eapMessage).replace(otherConcat, {octets({9})})),
      PacketMaker(accessAccept).add(89, {9}));
}

TEST(AssemblyConcat, ReplacesARunByALongerOne) {
  const ByteVector value = countingBytes(600);
  PacketMaker expected(accessAccept);
  addFragments(89, value, expected).add(1, {'n'});
  expectPacket(modify(PacketMaker(accessAccept).add(89, {1}).add(89, {2}).add(1, {'n'}).make(),
                      RequestMaker().replace(otherConcat, {octets(value)})),
               expected);
}

TEST(AssemblyConcat, TreatsEveryFragmentOfAnOrdinaryAttributeByItself) {
  const auto old = PacketMaker(accessAccept).add(25, {1}).add(25, {2});
  expectPacket(modify(old.make(), RequestMaker().replace(classOctets, {octets({9})})),
               PacketMaker(accessAccept).add(25, {9}).add(25, {9}));
  expectPacket(modify(old.make(), RequestMaker().remove(classOctets)), PacketMaker(accessAccept));
}

TEST(AssemblyConcat, TreatsEveryFragmentOfAVendorByItself) {
  const auto old = PacketMaker(accessAccept).addVendor(9, 3, {1}).addVendor(9, 3, {2});
  expectPacket(modify(old.make(), RequestMaker().replace(vendorConcat, {octets({9})})),
               PacketMaker(accessAccept).addVendor(9, 3, {9}).addVendor(9, 3, {9}));
  expectPacket(modify(old.make(), RequestMaker().remove(vendorConcat)), PacketMaker(accessAccept));
}

TEST(AssemblyConcat, FindsAFaultAlsoInARunThatIsPassedOver) {
  expectFault(modify(PacketMaker(accessAccept).add(89, {1}).addRaw({89, 9, 1}).make(),
                     RequestMaker().remove(otherConcat)),
              ErrorMsg::invalidAttrLength);
}

TEST(AssemblyConcat, SplitsLongValuesBehindOtherAttributes) {
  for (const std::size_t size : Sizes{1, 253, 254, 506, 600}) {
    SCOPED_TRACE(size);
    const ByteVector value = countingBytes(size, 0x41);
    PacketMaker expected(accessAccept);
    addFragments(79, value, expected.add(1, bytesOf("nemo"))).add(27, {0, 0, 0, 1});
    expectPacket(build(accessAccept, RequestMaker()
                                         .add(userName, {text("nemo")})
                                         .add(eapMessage, {octets(value)})
                                         .add(sessionTimeout, {1U})),
                 expected);
  }
}

/// The longest concat value behind `front` bytes of packet, and what is said of a value one byte
/// longer: how long its first fragment is that does not fit, and where that would have stood.
struct RoomForConcat {
  std::size_t front;
  std::size_t longest;
  std::size_t refusedLength;
  std::size_t refusedAt;
};

const std::vector<RoomForConcat>& roomsForConcat() {
  static const std::vector<RoomForConcat> rooms{
      {20, 4044, 252, 3845},  // alone
      {22, 4042, 250, 3847},
      {26, 4038, 246, 3851},
      // The value ends with a whole fragment, behind which nothing else fits.
      {271, 3795, 3, 4096},
      {270, 3795, 3, 4095},
      {269, 3795, 3, 4094},
      {268, 3796, 4, 4093},
      // One fragment, of which less and less fits.
      {3841, 253, 3, 4096},
      {3842, 252, 255, 3842},
      {4093, 1, 4, 4093},
  };
  return rooms;
}

std::vector<std::string> noRoomFor(U8 type, std::size_t length, std::size_t at) {
  return {fmt::format("Attribute: {} Length: {} addition exceeds max packet length {}", type,
                      length, at)};
}

TEST(AssemblyConcat, FillsThePacketToItsLastByte) {
  for (const RoomForConcat& room : roomsForConcat()) {
    SCOPED_TRACE(room.front);
    const ByteVector value = countingBytes(room.longest);
    RequestMaker request;
    fillTo(room.front, request).add(eapMessage, {octets(value)});
    PacketMaker expected(accessAccept);
    addFragments(79, value, fillTo(room.front, expected));
    expectPacket(build(accessAccept, request), expected);
    RequestMaker oneMore;
    fillTo(room.front, oneMore).add(eapMessage, {octets(countingBytes(room.longest + 1))});
    expectFault(build(accessAccept, oneMore), ErrorMsg::maxPktLengthExceeded,
                noRoomFor(79, room.refusedLength, room.refusedAt));
  }
}

TEST(AssemblyConcat, FillsAPacketThatIsModifiedToItsLastByte) {
  for (const RoomForConcat& room : roomsForConcat()) {
    SCOPED_TRACE(room.front);
    const ByteVector value = countingBytes(room.longest);
    const ByteVector tooLong = countingBytes(room.longest + 1);
    PacketMaker front(accessAccept);
    fillTo(room.front, front);
    PacketMaker expected = front;
    addFragments(79, value, expected);
    const auto refusal = noRoomFor(79, room.refusedLength, room.refusedAt);
    const ByteVector old = front.make();
    expectPacket(modify(old, RequestMaker().add(eapMessage, {octets(value)})), expected);
    expectFault(modify(old, RequestMaker().add(eapMessage, {octets(tooLong)})),
                ErrorMsg::maxPktLengthExceeded, refusal);
    const ByteVector withOne = front.add(79, {1}).make();
    expectPacket(modify(withOne, RequestMaker().replace(eapMessage, {octets(value)})), expected);
    expectFault(modify(withOne, RequestMaker().replace(eapMessage, {octets(tooLong)})),
                ErrorMsg::maxPktLengthExceeded, refusal);
  }
}

TEST(AssemblyConcat, TakesNoValueThatThePacketHasNoRoomFor) {
  struct Case {
    std::size_t size;
    std::size_t lengthAlone;
    std::size_t lengthBehindAName;
  };
  for (const Case& one : {Case{4044, 0, 251},
                          {4045, 252, 252},
                          {4076, 255, 255},
                          {4077, 255, 255},
                          {65535, 255, 255}}) {
    SCOPED_TRACE(one.size);
    const Values value{octets(countingBytes(one.size))};
    const Built alone = build(accessAccept, RequestMaker().add(eapMessage, value));
    if (one.lengthAlone == 0) {
      PacketMaker expected(accessAccept);
      expectPacket(alone, addFragments(79, countingBytes(one.size), expected));
    } else {
      expectFault(alone, ErrorMsg::maxPktLengthExceeded, noRoomFor(79, one.lengthAlone, 3845));
    }
    expectFault(
        build(accessAccept, RequestMaker().add(userName, {text("nemo")}).add(eapMessage, value)),
        ErrorMsg::maxPktLengthExceeded, noRoomFor(79, one.lengthBehindAName, 3851));
    expectFault(modify(PacketMaker(accessAccept).add(1, bytesOf("nemo")).add(79, {1}).make(),
                       RequestMaker().replace(eapMessage, value)),
                ErrorMsg::maxPktLengthExceeded, noRoomFor(79, one.lengthBehindAName, 3851));
  }
}

TEST(AssemblyConcat, RefusesALongerReplacementThatLeavesNoRoomForACopyBehindIt) {
  const ByteVector old = PacketMaker(accessAccept).add(79, {1}).add(1, {'n'}).make();
  const ByteVector value = countingBytes(4041);
  PacketMaker expected(accessAccept);
  addFragments(79, value, expected).add(1, {'n'});
  expectPacket(modify(old, RequestMaker().replace(eapMessage, {octets(value)})), expected);
  // The value alone would have room; a copy is refused without a message.
  for (const std::size_t size : Sizes{4042, 4043, 4044}) {
    SCOPED_TRACE(size);
    expectFault(modify(old, RequestMaker().replace(eapMessage, {octets(countingBytes(size))})),
                ErrorMsg::maxPktLengthExceeded);
  }
}

TEST(AssemblyConcat, HidesTheLastFragmentAlone) {
  const ByteVector value = countingBytes(300);
  const ByteVector first(value.begin(), value.begin() + 253);
  const ByteVector last(value.begin() + 253, value.end());
  expectPacket(build(accessAccept, RequestMaker().add(hiddenConcat, {octets(value)})),
               PacketMaker(accessAccept)
                   .add(90, first)
                   .add(90, hidden(last, bytesOf(testSecret), testReqAuth)));
}

}  // namespace
