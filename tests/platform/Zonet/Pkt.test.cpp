#include "Zonet/Pkt.h"

#include <algorithm>
#include <array>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/CatchAssertion.h"

namespace {

using Verda::Ptr;
using Zonet::Pkt;
using Zonet::PktBuffer;
using Zonet::pktBufferFactory;
using Zonet::pktFactory;
using Zonet::U8;

constexpr std::array<U8, 5> content{1, 2, 3, 4, 5};

std::vector<U8> bytesOf(const Pkt& pkt) {
  return {pkt.span().begin(), pkt.span().end()};
}

TEST(Pkt, HasZeroBytesWhenMadeBySize) {
  for (const Zonet::U32 size : {0U, 1U, 4096U}) {
    SCOPED_TRACE(size);
    const Ptr<const Pkt> pkt = pktFactory(size);
    EXPECT_EQ(pkt->bytes(), size);
    EXPECT_TRUE(std::ranges::all_of(pkt->span(), [](U8 byte) { return byte == 0; }));
  }
}

TEST(Pkt, HoldsACopyOfTheContentItIsMadeFrom) {
  std::array<U8, 5> original = content;
  const Ptr<Pkt> pkt = pktFactory(std::span<const U8>(original));
  original.fill(0);
  EXPECT_EQ(bytesOf(*pkt), std::vector<U8>(content.begin(), content.end()));
  EXPECT_EQ(pkt->data()[4], 5);
}

TEST(Pkt, MayBeEmpty) {
  const Ptr<const Pkt> pkt = pktFactory(std::span<const U8>());
  EXPECT_EQ(pkt->bytes(), 0U);
  EXPECT_TRUE(pkt->span().empty());
}

TEST(Pkt, IsWrittenInPlace) {
  const Ptr<Pkt> pkt = pktFactory(3U);
  pkt->span()[1] = 7;
  pkt->data()[2] = 8;
  EXPECT_EQ(bytesOf(*pkt), (std::vector<U8>{0, 7, 8}));
}

TEST(Pkt, CutsItsTailToWhatThereIs) {
  struct Case {
    Zonet::U32 cut;
    Zonet::U32 left;
  };
  for (const Case& each : {Case{0, 5}, Case{1, 4}, Case{5, 0}, Case{6, 0}, Case{0xFFFFFFFF, 0}}) {
    SCOPED_TRACE(each.cut);
    const Ptr<Pkt> pkt = pktFactory(std::span<const U8>(content));
    pkt->tailCut(each.cut);
    EXPECT_EQ(bytesOf(*pkt), std::vector<U8>(content.begin(), content.begin() + each.left));
  }
}

TEST(Pkt, SharesTheBufferItIsMadeOver) {
  const Ptr<PktBuffer> buffer = pktBufferFactory(std::span<const U8>(content));
  const Ptr<Pkt> one = pktFactory(buffer);
  const Ptr<Pkt> other = pktFactory(buffer);
  EXPECT_EQ(buffer->userCount(), 3U);
  one->data()[0] = 9;
  one->tailCut(3);
  EXPECT_EQ(bytesOf(*other), (std::vector<U8>{9, 2}));
  EXPECT_EQ(buffer->bytes(), 2U);
  EXPECT_EQ(buffer->data(), other->data());
}

TEST(Pkt, KeepsItsBufferAlive) {
  Ptr<PktBuffer> buffer = pktBufferFactory(std::span<const U8>(content));
  const Ptr<Pkt> pkt = pktFactory(buffer);
  buffer = nullptr;
  EXPECT_EQ(bytesOf(*pkt), std::vector<U8>(content.begin(), content.end()));
}

TEST(Pkt, RefusesANullBuffer) {
  EXPECT_EQ(TestSupport::assertionTextOf([] { pktFactory(Ptr<PktBuffer>()); }), "buffer_");
}

TEST(Pkt, SaysItsType) {
  EXPECT_EQ(pktFactory(0U)->typeData().name, "Pkt");
  EXPECT_EQ(pktBufferFactory(0U)->typeData().name, "PktBuffer");
}

// ---- What may be read and written behind the bytes that count ----

/// All bytes that may be read.
std::vector<U8> reachOf(const PktBuffer& buffer) {
  return {buffer.data(), buffer.data() + buffer.reach()};
}

TEST(PktBufferReach, IsTheBytesOfANewBuffer) {
  EXPECT_EQ(pktBufferFactory(7U)->reach(), 7U);
  EXPECT_EQ(pktBufferFactory(0U)->reach(), 0U);
  EXPECT_EQ(reachOf(*pktBufferFactory(std::span<const U8>(content))),
            (std::vector<U8>{1, 2, 3, 4, 5}));
}

TEST(PktBufferReach, PutsZerosBehindTheBytesWithoutCountingThem) {
  const Ptr<PktBuffer> buffer = pktBufferFactory(std::span<const U8>(content));
  buffer->reachIs(8);
  EXPECT_EQ(reachOf(*buffer), (std::vector<U8>{1, 2, 3, 4, 5, 0, 0, 0}));
  EXPECT_EQ(buffer->bytes(), 5U);
  EXPECT_EQ(pktFactory(buffer)->bytes(), 5U);
}

TEST(PktBufferReach, IsNeverMadeShorter) {
  const Ptr<PktBuffer> buffer = pktBufferFactory(std::span<const U8>(content));
  const U8* const block = buffer->data();
  for (const Zonet::U32 bytes : {0U, 4U, 5U}) {
    buffer->reachIs(bytes);
    EXPECT_EQ(reachOf(*buffer), (std::vector<U8>{1, 2, 3, 4, 5}));
  }
  EXPECT_EQ(buffer->data(), block);
}

TEST(PktBufferReach, KeepsWhatWasWrittenWhenItGrowsAgain) {
  const Ptr<PktBuffer> buffer = pktBufferFactory(std::span<const U8>(content));
  buffer->reachIs(7);
  buffer->data()[0] = 9;
  buffer->data()[6] = 8;
  buffer->reachIs(9);
  EXPECT_EQ(reachOf(*buffer), (std::vector<U8>{9, 2, 3, 4, 5, 0, 8, 0, 0}));
  EXPECT_EQ(buffer->bytes(), 5U);
}

TEST(PktBufferReach, GrowsFromNothing) {
  const Ptr<PktBuffer> buffer = pktBufferFactory(0U);
  buffer->reachIs(2);
  EXPECT_EQ(reachOf(*buffer), (std::vector<U8>{0, 0}));
  EXPECT_EQ(buffer->bytes(), 0U);
}

TEST(PktBufferReach, EndsWithTheBytesAfterACut) {
  const Ptr<PktBuffer> buffer = pktBufferFactory(std::span<const U8>(content));
  buffer->reachIs(9);
  buffer->tailCut(0);
  EXPECT_EQ(buffer->reach(), 5U);
  buffer->tailCut(2);
  EXPECT_EQ(reachOf(*buffer), (std::vector<U8>{1, 2, 3}));
  buffer->tailCut(9);
  EXPECT_EQ(buffer->reach(), 0U);
}

TEST(PktBufferReach, ShowsZerosWhereBytesWereCut) {
  const Ptr<PktBuffer> buffer = pktBufferFactory(std::span<const U8>(content));
  const U8* const block = buffer->data();
  buffer->tailCut(3);
  buffer->reachIs(4);
  EXPECT_EQ(reachOf(*buffer), (std::vector<U8>{1, 2, 0, 0}));
  EXPECT_EQ(buffer->data(), block);
  buffer->reachIs(6);
  EXPECT_EQ(reachOf(*buffer), (std::vector<U8>{1, 2, 0, 0, 0, 0}));
  EXPECT_EQ(buffer->bytes(), 2U);
}

TEST(PktBufferReach, ShowsZerosWhereItEndedBefore) {
  const Ptr<PktBuffer> buffer = pktBufferFactory(std::span<const U8>(content));
  buffer->reachIs(8);
  buffer->data()[7] = 7;
  buffer->tailCut(0);
  buffer->reachIs(8);
  EXPECT_EQ(reachOf(*buffer), (std::vector<U8>{1, 2, 3, 4, 5, 0, 0, 0}));
}

}  // namespace
