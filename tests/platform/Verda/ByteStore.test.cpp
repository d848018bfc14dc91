#include "Verda/ByteStore.h"

#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Verda::ByteStore;
using Verda::U8;

/// The sizes around the step from inline storage to the heap, and one far behind it.
constexpr std::size_t sizes[] = {0, 1, 30, 31, 32, 33, 63, 64, 10'000};

std::vector<U8> counted(std::size_t size) {
  std::vector<U8> bytes(size);
  std::iota(bytes.begin(), bytes.end(), U8{1});
  return bytes;
}

std::vector<U8> contentOf(const ByteStore& store) {
  return {store.span().begin(), store.span().end()};
}

bool isInline(const ByteStore& store) {
  const auto* object = reinterpret_cast<const U8*>(&store);
  return store.data() >= object && store.data() < object + sizeof(store);
}

/// The content, and the zero byte behind it that is not counted.
void expectHolds(const ByteStore& store, const std::vector<U8>& bytes) {
  EXPECT_EQ(contentOf(store), bytes);
  EXPECT_EQ(store.data()[store.size()], 0);
}

TEST(ByteStore, IsEmptyAtFirst) {
  expectHolds(ByteStore(), {});
}

TEST(ByteStore, HoldsAnySizeWithAZeroByteBehindIt) {
  for (const std::size_t size : sizes) {
    SCOPED_TRACE(size);
    const std::vector<U8> bytes = counted(size);
    expectHolds(ByteStore(bytes.data(), bytes.size()), bytes);
  }
}

TEST(ByteStore, KeepsUpTo31BytesInsideTheObject) {
  const std::vector<U8> bytes = counted(32);
  EXPECT_TRUE(isInline(ByteStore(bytes.data(), 31)));
  EXPECT_FALSE(isInline(ByteStore(bytes.data(), 32)));
}

TEST(ByteStore, CopiesShareNothing) {
  for (const std::size_t size : sizes) {
    SCOPED_TRACE(size);
    const std::vector<U8> bytes = counted(size);
    ByteStore original(bytes.data(), bytes.size());
    const ByteStore copy(original);
    original.assign("other", 5);
    expectHolds(copy, bytes);
  }
}

TEST(ByteStore, AssignsEverySizeOverEverySize) {
  for (const std::size_t from : sizes) {
    for (const std::size_t to : sizes) {
      SCOPED_TRACE(testing::Message() << to << " becomes " << from);
      const std::vector<U8> bytes = counted(from);
      const ByteStore source(bytes.data(), bytes.size());
      const std::vector<U8> before(to, U8{0xEE});
      ByteStore target(before.data(), before.size());
      target = source;
      expectHolds(target, bytes);
      expectHolds(source, bytes);
    }
  }
}

TEST(ByteStore, MovesEverySizeOverEverySizeAndLeavesTheSourceEmpty) {
  for (const std::size_t from : sizes) {
    for (const std::size_t to : sizes) {
      SCOPED_TRACE(testing::Message() << to << " becomes " << from);
      const std::vector<U8> bytes = counted(from);
      ByteStore source(bytes.data(), bytes.size());
      const std::vector<U8> before(to, U8{0xEE});
      ByteStore target(before.data(), before.size());
      target = std::move(source);
      expectHolds(target, bytes);
      expectHolds(source, {});  // NOLINT(bugprone-use-after-move): what is left is promised
    }
  }
}

TEST(ByteStore, IsUsableAfterItWasMovedFrom) {
  const std::vector<U8> bytes = counted(10'000);
  ByteStore source(bytes.data(), bytes.size());
  const ByteStore taken(std::move(source));
  source.append(bytes.data(), 40);  // NOLINT(bugprone-use-after-move): what is left is promised
  expectHolds(source, counted(40));
  expectHolds(taken, bytes);
}

TEST(ByteStore, SurvivesAssignmentToItself) {
  for (const std::size_t size : sizes) {
    SCOPED_TRACE(size);
    const std::vector<U8> bytes = counted(size);
    ByteStore store(bytes.data(), bytes.size());
    ByteStore& same = store;
    store = same;
    expectHolds(store, bytes);
    store = std::move(same);
    expectHolds(store, bytes);
  }
}

TEST(ByteStore, AssignsFromInsideItself) {
  for (const std::size_t size : {std::size_t{31}, std::size_t{32}, std::size_t{10'000}}) {
    SCOPED_TRACE(size);
    std::vector<U8> bytes = counted(size);
    ByteStore store(bytes.data(), bytes.size());
    store.assign(store.data() + 3, size - 5);
    expectHolds(store, {bytes.begin() + 3, bytes.end() - 2});
  }
}

TEST(ByteStore, AppendsFromInsideItself) {
  for (const std::size_t size : sizes) {
    SCOPED_TRACE(size);
    std::vector<U8> bytes = counted(size);
    ByteStore store(bytes.data(), bytes.size());
    store.append(store.data(), store.size());
    bytes.insert(bytes.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    expectHolds(store, bytes);
  }
}

TEST(ByteStore, GrowsByteByByte) {
  std::vector<U8> bytes;
  ByteStore store;
  for (int count = 0; count < 1'000; ++count) {
    const auto next = static_cast<U8>(count * 7);
    bytes.push_back(next);
    store.append(&next, 1);
    ASSERT_EQ(contentOf(store), bytes);
  }
  expectHolds(store, bytes);
}

TEST(ByteStore, AppendsNothingFromNowhere) {
  ByteStore store("ab", 2);
  store.append(nullptr, 0);
  expectHolds(store, {'a', 'b'});
}

TEST(ByteStore, RefusesMoreThan4GiBAndKeepsWhatItHas) {
  ByteStore store("ab", 2);
  // Volatile, or the compiler warns of the copy that is never reached.
  const volatile std::size_t tooMany = std::size_t{1} << 32U;
  EXPECT_THROW(store.append("", tooMany - 2), std::length_error);
  EXPECT_THROW(store.assign("", tooMany), std::length_error);
  expectHolds(store, {'a', 'b'});
}

}  // namespace
