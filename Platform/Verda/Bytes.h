#pragma once

#include <algorithm>
#include <initializer_list>
#include <span>

#include "Verda/ByteStore.h"
#include "Verda/Types.h"

namespace Verda {

/// A run of bytes, owned. True when it is not empty.
class Bytes {
 public:
  Bytes() = default;
  /// A copy of `bytes`.
  Bytes(std::span<const U8> bytes) : store_(bytes.data(), bytes.size()) {}
  /// These bytes.
  Bytes(std::initializer_list<U8> bytes) : store_(bytes.begin(), bytes.size()) {}

  U32 size() const { return store_.size(); }           ///< how many there are
  bool empty() const { return size() == 0; }           ///< whether there are none
  explicit operator bool() const { return !empty(); }  ///< whether there are any

  /// The first byte; valid while the object is unchanged.
  const U8* data() const { return store_.data(); }
  const U8* begin() const { return data(); }                  ///< the first byte
  const U8* end() const { return data() + size(); }           ///< behind the last byte
  U8 operator[](U32 index) const { return data()[index]; }    ///< below `size()`, unchecked
  std::span<const U8> span() const { return store_.span(); }  ///< all; valid while unchanged

  /// Replaces the content, within the storage at hand where that has room.
  void assign(std::span<const U8> bytes) { store_.assign(bytes.data(), bytes.size()); }

  /// Copies from the front into `to`, as many bytes as there are here and room there, and returns
  /// that number.
  U32 copyTo(std::span<U8> to) const {
    const auto count = static_cast<U32>(std::min<std::size_t>(size(), to.size()));
    std::copy_n(data(), count, to.data());
    return count;
  }

  /// Whether both hold the same bytes.
  friend bool operator==(const Bytes& left, const Bytes& right) {
    return std::ranges::equal(left.span(), right.span());
  }

 private:
  ByteStore store_;
};

}  // namespace Verda
