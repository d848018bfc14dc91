#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "Verda/Types.h"

namespace Zonet {

using Verda::U16;
using Verda::U32;
using Verda::U64;
using Verda::U8;

/// Writes into a fixed block of bytes front to back, never past its end. A write that does not fit
/// returns false, writes nothing and moves nothing. Numbers are in network order.
class WireWriter {
 public:
  /// `bytes` must outlive the writer.
  explicit WireWriter(std::span<U8> bytes) : bytes_(bytes) {}

  std::size_t written() const { return written_; }  ///< how many bytes stand there
  /// How many bytes there is room for.
  std::size_t remaining() const { return bytes_.size() - written_; }

  bool write(U8 value) { return writeNumber(value); }   ///< one byte
  bool write(U16 value) { return writeNumber(value); }  ///< two bytes
  bool write(U32 value) { return writeNumber(value); }  ///< four bytes
  bool write(U64 value) { return writeNumber(value); }  ///< eight bytes

  /// Writes these bytes as they are.
  bool write(std::span<const U8> content) {
    if (content.size() > remaining()) {
      return false;
    }
    std::ranges::copy(content, bytes_.begin() + static_cast<std::ptrdiff_t>(written_));
    written_ += content.size();
    return true;
  }

 private:
  template <typename Number>
  bool writeNumber(Number value) {
    U8 content[sizeof(Number)];
    for (std::size_t at = sizeof(Number); at > 0; --at) {
      content[at - 1] = static_cast<U8>(value);
      value = static_cast<Number>(U64{value} >> 8U);
    }
    return write(std::span<const U8>(content));
  }

  std::span<U8> bytes_;
  std::size_t written_ = 0;
};

}  // namespace Zonet
