#include "RadiusPacketParser/RadiusPktCommon.h"

#include <array>
#include <set>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Digests.h"

namespace {

using namespace RadiusPktParserBase;
using TestSupport::ByteVector;
using Verda::U32;
using Verda::U8;
using Step = AttributeCursor::Step;

// ---- The attribute cursor ----

TEST(Cursor, EndsAtOnceWhereThereIsNothing) {
  AttributeCursor cursor({});
  EXPECT_EQ(cursor.next(), Step::end);
  EXPECT_EQ(cursor.next(), Step::end);
  EXPECT_EQ(cursor.remaining(), 0U);
}

TEST(Cursor, GivesEachAttributeInOrder) {
  const ByteVector bytes{1, 3, 0xaa, 80, 2, 255, 4, 0xbb, 0xcc};
  AttributeCursor cursor(bytes);
  ASSERT_EQ(cursor.next(), Step::attribute);
  EXPECT_EQ(cursor.type(), 1);
  EXPECT_EQ(cursor.length(), 3);
  EXPECT_EQ(cursor.remaining(), 9U);
  EXPECT_EQ(cursor.bytes().data(), bytes.data());
  EXPECT_EQ(cursor.bytes().size(), 3U);
  ASSERT_EQ(cursor.next(), Step::attribute);
  EXPECT_EQ(cursor.type(), 80);
  EXPECT_EQ(cursor.length(), 2);
  EXPECT_EQ(cursor.remaining(), 6U);
  EXPECT_EQ(cursor.bytes().data(), bytes.data() + 3);
  EXPECT_EQ(cursor.bytes().size(), 2U);
  ASSERT_EQ(cursor.next(), Step::attribute);
  EXPECT_EQ(cursor.type(), 255);
  EXPECT_EQ(cursor.remaining(), 4U);
  EXPECT_EQ(cursor.bytes().data(), bytes.data() + 5);
  EXPECT_EQ(cursor.next(), Step::end);
  EXPECT_EQ(cursor.remaining(), 0U);
}

TEST(Cursor, StopsAtALoneByte) {
  const ByteVector bytes{1, 2, 79};
  AttributeCursor cursor(bytes);
  ASSERT_EQ(cursor.next(), Step::attribute);
  for (int again = 0; again < 2; ++again) {
    EXPECT_EQ(cursor.next(), Step::loneByte);
    EXPECT_EQ(cursor.type(), 79);
    EXPECT_EQ(cursor.remaining(), 1U);
  }
}

TEST(Cursor, RefusesEveryLengthThatDoesNotFit) {
  for (U32 length = 0; length < 256; ++length) {
    ByteVector bytes(17);
    bytes[0] = 18;
    bytes[1] = static_cast<U8>(length);
    AttributeCursor cursor(bytes);
    const bool fits = length >= 2 && length <= bytes.size();
    EXPECT_EQ(cursor.next(), fits ? Step::attribute : Step::badLength) << "length " << length;
    EXPECT_EQ(cursor.type(), 18);
    EXPECT_EQ(cursor.length(), length);
    EXPECT_EQ(cursor.remaining(), bytes.size());
  }
}

TEST(Cursor, StaysWhereTheLengthIsBad) {
  const ByteVector bytes{1, 2, 5, 0, 1, 2};
  AttributeCursor cursor(bytes);
  ASSERT_EQ(cursor.next(), Step::attribute);
  for (int again = 0; again < 3; ++again) {
    EXPECT_EQ(cursor.next(), Step::badLength);
    EXPECT_EQ(cursor.type(), 5);
    EXPECT_EQ(cursor.length(), 0);
    EXPECT_EQ(cursor.remaining(), 4U);
  }
}

TEST(Cursor, WalksTheLargestAttributeAreaOfEmptyAttributes) {
  ByteVector bytes;
  for (int count = 0; count < 2038; ++count) {
    bytes.insert(bytes.end(), {1, 2});
  }
  AttributeCursor cursor(bytes);
  int attributes = 0;
  while (cursor.next() == Step::attribute) {
    ++attributes;
  }
  EXPECT_EQ(attributes, 2038);
  EXPECT_EQ(cursor.next(), Step::end);
}

TEST(Cursor, ReadsNothingOutsideItsBytes) {
  // Blocks of exactly the right size, so that the address sanitizer sees a byte too many.
  for (std::size_t size = 0; size <= 8; ++size) {
    for (U32 first = 0; first < 256; ++first) {
      const ByteVector bytes(size, static_cast<U8>(first));
      AttributeCursor cursor(bytes);
      std::size_t taken = 0;
      while (cursor.next() == Step::attribute) {
        taken += cursor.bytes().size();
      }
      EXPECT_EQ(taken + cursor.remaining(), size);
    }
  }
}

// ---- Which codes are requests, and which answer which ----

const std::set<U32> requests{1, 4, 12, 40, 43};

const std::set<std::pair<U32, U32>> answers{
    {2, 1}, {3, 1}, {11, 1}, {2, 12}, {5, 12}, {5, 4}, {41, 40}, {42, 40}, {44, 43}, {45, 43},
};

TEST(PacketCodes, AreRequestsOrNot) {
  for (U32 code = 0; code < 256; ++code) {
    EXPECT_EQ(isRequest(static_cast<U8>(code)), requests.contains(code)) << "code " << code;
  }
}

TEST(PacketCodes, AnswerTheirRequestAndNoOther) {
  for (U32 response = 0; response < 256; ++response) {
    for (U32 request = 0; request < 256; ++request) {
      ASSERT_EQ(canAnswer(static_cast<U8>(response), static_cast<U8>(request)),
                answers.contains({response, request}))
          << "code " << response << " to code " << request;
    }
  }
}

TEST(PacketCodes, NeverAnswerARequestWithARequest) {
  for (U32 response : requests) {
    for (U32 request : requests) {
      EXPECT_FALSE(canAnswer(static_cast<U8>(response), static_cast<U8>(request)));
    }
  }
}

}  // namespace
