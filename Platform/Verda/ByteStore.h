#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <span>
#include <stdexcept>
#include <utility>

#include "Verda/Types.h"

namespace Verda {

/// The storage under `String` and `Bytes`: up to 4 GiB of bytes with a zero byte behind them that
/// is not counted. Short contents live inside the object, so that a decoded attribute value of
/// usual length is made, copied and moved without the heap.
class ByteStore {
 public:
  /// The longest content that needs no heap.
  static constexpr U32 inlineCapacity = 31;

  ByteStore() = default;
  /// A copy of `size` bytes.
  ByteStore(const void* bytes, std::size_t size) { assign(bytes, size); }
  /// A copy.
  ByteStore(const ByteStore& other) { copy(other); }
  /// Takes the storage over; `other` is empty.
  ByteStore(ByteStore&& other) noexcept { take(other); }
  ~ByteStore() = default;

  /// Replaces the content by a copy.
  ByteStore& operator=(const ByteStore& other) {
    if (this != &other) {
      copy(other);
    }
    return *this;
  }
  /// Takes the storage over; `other` is empty.
  ByteStore& operator=(ByteStore&& other) noexcept {
    if (this != &other) {
      take(other);
    }
    return *this;
  }

  /// The first byte.
  const U8* data() const { return heap_ ? heap_.get() : inline_; }
  /// The first byte, to write.
  U8* data() { return heap_ ? heap_.get() : inline_; }
  /// How many bytes there are.
  U32 size() const { return size_; }
  /// All bytes; valid while the store is unchanged.
  std::span<const U8> span() const { return {data(), size_}; }

  /// Replaces the content; `bytes` may lie inside the content itself.
  void assign(const void* bytes, std::size_t size) {
    if (size > capacity_) {
      grow(size, 0);
      put(heap_.get(), bytes, size);
    } else {
      put(data(), bytes, size);
    }
    size_ = static_cast<U32>(size);
  }

  /// Adds to the end; `bytes` may lie inside the content itself.
  void append(const void* bytes, std::size_t size) {
    if (size > capacity_ - size_) {
      const std::unique_ptr<U8[]> old = grow(std::size_t{size_} + size, size_);
      put(heap_.get() + size_, bytes, size);
    } else {
      put(data() + size_, bytes, size);
    }
    size_ += static_cast<U32>(size);
  }

 private:
  static constexpr std::size_t maxSize = std::numeric_limits<U32>::max() - 1;

  /// Writes the last `size` bytes of the content to `to`, and the zero byte behind them.
  static void put(U8* to, const void* bytes, std::size_t size) {
    if (size > 0) {
      std::memmove(to, bytes, size);
    }
    to[size] = 0;
  }

  /// Makes room for `size` bytes, at least doubling, and keeps the first `kept` ones. Returns the
  /// storage before it, where the bytes that the caller is about to copy may lie.
  std::unique_ptr<U8[]> grow(std::size_t size, std::size_t kept) {
    if (size > maxSize) {
      throw std::length_error("a byte string is limited to 4 GiB");
    }
    const std::size_t capacity = std::min(maxSize, std::max(size, std::size_t{capacity_} * 2));
    std::unique_ptr<U8[]> larger(new U8[capacity + 1]);
    std::memcpy(larger.get(), data(), kept);
    capacity_ = static_cast<U32>(capacity);
    return std::exchange(heap_, std::move(larger));
  }

  /// Short contents are copied with all the room around them: a copy of fixed length is quicker
  /// than one that first asks how long.
  void copy(const ByteStore& other) {
    if (other.heap_ || heap_) {
      assign(other.data(), other.size());
    } else {
      std::memcpy(inline_, other.inline_, sizeof(inline_));
      size_ = other.size_;
    }
  }

  void take(ByteStore& other) noexcept {
    heap_ = std::move(other.heap_);
    std::memcpy(inline_, other.inline_, sizeof(inline_));
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the heap has moved
    size_ = other.size_;
    capacity_ = other.capacity_;
    other.size_ = 0;
    other.capacity_ = inlineCapacity;
    other.inline_[0] = 0;
  }

  std::unique_ptr<U8[]> heap_;
  U32 size_ = 0;
  U32 capacity_ = inlineCapacity;
  U8 inline_[inlineCapacity + 1] = {};
};

}  // namespace Verda
