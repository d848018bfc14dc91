#include "tool/capture/Fragments.h"

#include <algorithm>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Digests.h"

namespace RadiusPacketTool {
namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;
using TestSupport::ByteVector;
using TestSupport::countingBytes;
using Verda::U32;
using Verda::U8;

/// One fragment of a datagram whose bytes count up.
struct Part {
  U32 offset = 0;
  std::size_t size = 0;
  bool isLast = false;
};

/// Feeds fragments, and holds the bytes that they point to.
class Feeder {
 public:
  std::optional<WholePayload> take(const Part& part, U32 id = 1, nanoseconds time = {},
                                   const char* from = "192.0.2.1") {
    const ByteVector bytes = countingBytes(part.size, static_cast<U8>(part.offset));
    const IpPacket packet{
        .from = Zonet::IpGenAddr(from),
        .to = Zonet::IpGenAddr("192.0.2.2"),
        .protocol = udpProtocol,
        .payload = bytes,
        .missing = 0,
        .fragment = FragmentPlace{.id = id, .offset = part.offset, .isLast = part.isLast}};
    return fragments_.take(packet, time);
  }

  std::size_t incomplete() const { return fragments_.incomplete(); }

 private:
  Fragments fragments_;
};

const std::vector<Part> threeParts{{0, 16, false}, {16, 8, false}, {24, 3, true}};

TEST(Fragments, ArePutTogetherInAnyOrder) {
  std::vector<std::size_t> order{0, 1, 2};
  do {
    Feeder feeder;
    EXPECT_FALSE(feeder.take(threeParts[order[0]]).has_value());
    EXPECT_FALSE(feeder.take(threeParts[order[1]]).has_value());
    EXPECT_EQ(feeder.incomplete(), 1U);
    const auto whole = feeder.take(threeParts[order[2]]);
    ASSERT_TRUE(whole.has_value());
    EXPECT_EQ(whole->bytes, countingBytes(27, 0));
    EXPECT_EQ(whole->protocol, udpProtocol);
    EXPECT_EQ(whole->frames, 3U);
    EXPECT_EQ(feeder.incomplete(), 0U);
  } while (std::ranges::next_permutation(order).found);
}

TEST(Fragments, OfDifferentDatagramsAreKeptApart) {
  Feeder feeder;
  EXPECT_FALSE(feeder.take({0, 8, false}, 1).has_value());
  EXPECT_FALSE(feeder.take({8, 8, true}, 2).has_value());
  EXPECT_FALSE(feeder.take({8, 8, true}, 1, {}, "192.0.2.3").has_value());
  EXPECT_FALSE(feeder.take({8, 8, true}, 1, {}, "c000:201::").has_value());
  EXPECT_EQ(feeder.incomplete(), 4U);
  EXPECT_TRUE(feeder.take({8, 8, true}, 1).has_value());
  EXPECT_EQ(feeder.incomplete(), 3U);
}

TEST(Fragments, SameFragmentOnceMoreChangesNothing) {
  Feeder feeder;
  EXPECT_FALSE(feeder.take({0, 8, false}).has_value());
  EXPECT_FALSE(feeder.take({0, 8, false}).has_value());
  const auto whole = feeder.take({8, 8, true});
  ASSERT_TRUE(whole.has_value());
  EXPECT_EQ(whole->frames, 2U);
}

TEST(Fragments, IdentificationIsFreeOnceTheDatagramIsWhole) {
  Feeder feeder;
  EXPECT_FALSE(feeder.take({0, 8, false}).has_value());
  EXPECT_TRUE(feeder.take({8, 8, true}).has_value());
  EXPECT_FALSE(feeder.take({0, 16, false}).has_value());
  EXPECT_TRUE(feeder.take({16, 8, true}).has_value());
}

TEST(Fragments, FragmentOfAWholeDatagramOnceMoreChangesNothing) {
  Feeder feeder;
  feeder.take({0, 8, false});
  EXPECT_TRUE(feeder.take({8, 8, true}).has_value());
  EXPECT_FALSE(feeder.take({8, 8, true}).has_value());
  EXPECT_FALSE(feeder.take({0, 8, false}).has_value());
  EXPECT_EQ(feeder.incomplete(), 0U);
  EXPECT_FALSE(feeder.take({0, 16, false}).has_value());
  EXPECT_TRUE(feeder.take({16, 8, true}).has_value());
  EXPECT_EQ(feeder.incomplete(), 0U);
}

TEST(Fragments, WholeDatagramsAreForgottenFirst) {
  constexpr U32 many = 10000;
  Feeder feeder;
  feeder.take({0, 8, false}, many);
  for (U32 id = 0; id < many; ++id) {
    feeder.take({0, 800, false}, id);
    EXPECT_TRUE(feeder.take({800, 8, true}, id).has_value());
  }
  EXPECT_TRUE(feeder.take({8, 8, true}, many).has_value());
}

struct SpoilingRow {
  const char* name;
  std::vector<Part> parts;
};

const std::vector<SpoilingRow> spoilingRows{
    {"overlap behind", {{0, 16, false}, {8, 16, false}}},
    {"overlap in front", {{8, 16, false}, {0, 16, false}}},
    {"overlap within", {{0, 24, false}, {8, 8, false}}},
    {"overlap around", {{8, 8, false}, {0, 24, false}}},
    {"same place, other size", {{0, 16, false}, {0, 8, false}}},
    {"two ends", {{8, 8, true}, {24, 8, true}}},
    {"behind the end", {{8, 8, true}, {16, 8, false}}},
    {"end in front of what is there", {{16, 8, false}, {8, 8, true}}},
    {"nothing", {{8, 0, false}}},
    {"no whole units", {{0, 9, false}}},
    {"behind the greatest datagram", {{65528, 8, true}}},
};

TEST(Fragments, DatagramIsDroppedForGoodWhenItsFragmentsContradict) {
  for (const SpoilingRow& row : spoilingRows) {
    SCOPED_TRACE(row.name);
    Feeder feeder;
    for (const Part& part : row.parts) {
      EXPECT_FALSE(feeder.take(part).has_value());
    }
    EXPECT_EQ(feeder.incomplete(), 1U);
    for (const Part& part : threeParts) {
      EXPECT_FALSE(feeder.take(part).has_value());
    }
    EXPECT_EQ(feeder.incomplete(), 1U);
  }
}

TEST(Fragments, LongestPayloadIsPutTogether) {
  Feeder feeder;
  EXPECT_FALSE(feeder.take({0, 65528, false}).has_value());
  const auto whole = feeder.take({65528, 7, true});
  ASSERT_TRUE(whole.has_value());
  EXPECT_EQ(whole->bytes.size(), 65535U);
}

TEST(Fragments, DatagramIsDroppedWhenItTakesTooLong) {
  Feeder feeder;
  feeder.take({0, 8, false}, 1);
  feeder.take({0, 8, false}, 2);
  EXPECT_TRUE(feeder.take({8, 8, true}, 1, seconds(60)).has_value());
  EXPECT_FALSE(feeder.take({8, 8, true}, 2, seconds(60) + nanoseconds(1)).has_value());
  EXPECT_EQ(feeder.incomplete(), 2U);
  EXPECT_TRUE(feeder.take({0, 8, false}, 2, seconds(61)).has_value());
  EXPECT_EQ(feeder.incomplete(), 1U);
}

TEST(Fragments, TimeMayGoBack) {
  Feeder feeder;
  feeder.take({0, 8, false}, 1, nanoseconds::max());
  EXPECT_TRUE(feeder.take({8, 8, true}, 1, nanoseconds(0)).has_value());
}

TEST(Fragments, OldestIsDroppedWhenTooMuchIsHeld) {
  constexpr U32 many = 100000;
  Feeder feeder;
  for (U32 id = 0; id < many; ++id) {
    feeder.take({0, 8, false}, id);
  }
  EXPECT_EQ(feeder.incomplete(), many);
  EXPECT_TRUE(feeder.take({8, 8, true}, many - 1).has_value());
  EXPECT_FALSE(feeder.take({8, 8, true}, 0).has_value());
}

TEST(Fragments, WhatIsSpoiledIsForgottenToo) {
  constexpr U32 many = 100000;
  Feeder feeder;
  for (U32 id = 0; id < many; ++id) {
    feeder.take({0, 9, false}, id);
  }
  EXPECT_EQ(feeder.incomplete(), many);
  // Forgotten, it may begin anew; the last one may not.
  feeder.take({0, 8, false}, 0);
  EXPECT_TRUE(feeder.take({8, 8, true}, 0).has_value());
  feeder.take({0, 8, false}, many - 1);
  EXPECT_FALSE(feeder.take({8, 8, true}, many - 1).has_value());
}

}  // namespace
}  // namespace RadiusPacketTool
