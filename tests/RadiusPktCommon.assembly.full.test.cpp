#include "RadiusPacketParser/RadiusPktCommon.h"

#include <gtest/gtest.h>

#include "tests/support/Assembly.h"

namespace {

using namespace TestSupport::Assembly;

TEST(AssemblyFull, CopiesAFullPacket) {
  PacketMaker old(accessAccept);
  fillTo(4096, old);
  expectPacket(modify(old.make(), {}), old);
}

TEST(AssemblyFull, RefusesACopyThatNoLongerFits) {
  const auto fullBehind = [](const char* name) {
    PacketMaker packet(accessAccept);
    return fillTo(4096, packet.add(1, bytesOf(name)), 23);
  };
  const ByteVector full = fullBehind("n").make();
  ASSERT_EQ(full.size(), 4096U);
  expectPacket(modify(full, RequestMaker().replace(userName, {text("m")})), fullBehind("m"));
  expectFault(modify(full, RequestMaker().replace(userName, {text("mm")})),
              ErrorMsg::maxPktLengthExceeded);
  PacketMaker rest(accessAccept);
  fillTo(4096, rest, 23);
  expectPacket(modify(full, RequestMaker().remove(userName)), rest);
}

TEST(AssemblyFull, RefusesAnotherAttribute) {
  PacketMaker old(accessAccept);
  fillTo(4094, old);
  PacketMaker full = old;
  full.add(1, {});
  expectPacket(modify(old.make(), RequestMaker().add(userName, {text("")})), full);
  expectFault(modify(old.make(), RequestMaker().add(userName, {text("n")})),
              ErrorMsg::maxPktLengthExceeded,
              {"Attribute: 1 Length: 3 addition exceeds max packet length 4094"});
}

}  // namespace
