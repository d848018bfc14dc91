#include "Verda/Bytes.h"

#include <array>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Verda::Bytes;
using Verda::U8;

constexpr std::size_t sizes[] = {0, 1, 30, 31, 32, 10'000};

std::vector<U8> counted(std::size_t size) {
  std::vector<U8> bytes(size);
  std::iota(bytes.begin(), bytes.end(), U8{0});
  return bytes;
}

std::vector<U8> contentOf(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

TEST(Bytes, AreEmptyAtFirst) {
  const Bytes bytes;
  EXPECT_TRUE(bytes.empty());
  EXPECT_EQ(bytes.size(), 0U);
  EXPECT_FALSE(bytes);
}

TEST(Bytes, AreTrueWhenNotEmptyWhateverTheyHold) {
  EXPECT_TRUE(Bytes{0});
  EXPECT_FALSE(Bytes(std::span<const U8>()));
}

TEST(Bytes, HoldRunsOfEverySize) {
  for (const std::size_t size : sizes) {
    SCOPED_TRACE(size);
    const std::vector<U8> expected = counted(size);
    const Bytes bytes(expected);
    EXPECT_EQ(bytes.size(), size);
    EXPECT_EQ(contentOf(bytes), expected);
    EXPECT_EQ(bytes.span().size(), size);
    EXPECT_EQ(bytes.span().data(), bytes.data());
  }
}

TEST(Bytes, AreIndexed) {
  const Bytes bytes{7, 0, 255};
  EXPECT_EQ(bytes[0], 7);
  EXPECT_EQ(bytes[1], 0);
  EXPECT_EQ(bytes[2], 255);
}

TEST(Bytes, CopyMoveAndAssignByValue) {
  for (const std::size_t size : sizes) {
    SCOPED_TRACE(size);
    const std::vector<U8> expected = counted(size);
    Bytes original(expected);
    Bytes copy = original;
    Bytes& same = copy;
    copy = same;
    original = Bytes{1};
    EXPECT_EQ(contentOf(copy), expected);
    const Bytes moved = std::move(copy);
    EXPECT_EQ(contentOf(moved), expected);
    EXPECT_TRUE(copy.empty());  // NOLINT(bugprone-use-after-move): what is left is promised
    EXPECT_EQ(original, Bytes{1});
  }
}

TEST(Bytes, AreAssignedAPartOfThemselves) {
  const std::vector<U8> expected = counted(100);
  Bytes bytes(expected);
  bytes = bytes.span().subspan(10, 50);
  EXPECT_EQ(contentOf(bytes), std::vector<U8>(expected.begin() + 10, expected.begin() + 60));
}

TEST(Bytes, CompareByContent) {
  EXPECT_EQ((Bytes{1, 0, 2}), (Bytes{1, 0, 2}));
  EXPECT_NE((Bytes{1, 0, 2}), (Bytes{1, 0, 3}));
  EXPECT_NE((Bytes{1, 0}), (Bytes{1, 0, 0}));
  EXPECT_EQ(Bytes(), Bytes(std::span<const U8>()));
}

TEST(Bytes, CopyOutAsMuchAsThereIsAndAsThereIsRoomFor) {
  const Bytes bytes{1, 2, 3};
  struct Case {
    std::size_t room;
    Verda::U32 copied;
    std::array<U8, 4> content;
  };
  for (const Case& each : {Case{0, 0, {9, 9, 9, 9}}, Case{2, 2, {1, 2, 9, 9}},
                           Case{3, 3, {1, 2, 3, 9}}, Case{4, 3, {1, 2, 3, 9}}}) {
    SCOPED_TRACE(each.room);
    std::array<U8, 4> to{9, 9, 9, 9};
    EXPECT_EQ(bytes.copyTo(std::span(to).first(each.room)), each.copied);
    EXPECT_EQ(to, each.content);
  }
  EXPECT_EQ(Bytes().copyTo({}), 0U);
}

}  // namespace
