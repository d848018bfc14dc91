#pragma once

#include <cstddef>
#include <span>

#include "Verda/Types.h"

namespace Zonet {

using Verda::U16;
using Verda::U32;
using Verda::U64;
using Verda::U8;

/// Reads untrusted bytes front to back. Every read goes through one gate, which checks what is left
/// before anything is touched; a read that does not fit returns false, gives nothing and moves
/// nothing. Numbers are in network order.
class WireReader {
 public:
  /// `bytes` must outlive the reader.
  explicit WireReader(std::span<const U8> bytes) : rest_(bytes) {}

  std::size_t remaining() const { return rest_.size(); }  ///< how many bytes are left
  bool empty() const { return rest_.empty(); }            ///< whether none is left

  /// The byte `offset` bytes ahead, without taking anything.
  bool peek(std::size_t offset, U8& value) const {
    if (offset >= rest_.size()) {
      return false;
    }
    value = rest_[offset];
    return true;
  }

  bool read(U8& value) { return readNumber(value); }   ///< one byte
  bool read(U16& value) { return readNumber(value); }  ///< two bytes
  bool read(U32& value) { return readNumber(value); }  ///< four bytes
  bool read(U64& value) { return readNumber(value); }  ///< eight bytes

  /// Takes `count` bytes as a view.
  bool read(std::size_t count, std::span<const U8>& bytes) {
    if (count > rest_.size()) {
      return false;
    }
    bytes = rest_.first(count);
    rest_ = rest_.subspan(count);
    return true;
  }

 private:
  template <typename Number>
  bool readNumber(Number& value) {
    std::span<const U8> bytes;
    if (!read(sizeof(Number), bytes)) {
      return false;
    }
    Number number = 0;
    for (const U8 byte : bytes) {
      number = static_cast<Number>((U64{number} << 8U) | byte);
    }
    value = number;
    return true;
  }

  std::span<const U8> rest_;
};

}  // namespace Zonet
