#pragma once

#include <array>
#include <span>

#include "Verda/Export.h"
#include "Verda/String.h"
#include "Verda/Types.h"

namespace Zonet {

using Verda::U16;
using Verda::U8;

/// An IPv6 address: sixteen bytes in network order.
class VERDA_EXPORT Ip6Addr {
 public:
  static constexpr std::size_t length = 16;  ///< in bytes
  static constexpr std::size_t groups = 8;   ///< of two bytes each

  /// The all-zero address.
  Ip6Addr() = default;
  /// From 16 bytes in network order.
  explicit Ip6Addr(std::span<const U8, length> bytes);
  /// From text as `inet_pton` takes it. Throws `AddressTextError` for anything else.
  explicit Ip6Addr(const Verda::String& text);

  const std::array<U8, length>& bytes() const { return bytes_; }  ///< in network order

  /// The canonical text (RFC 5952): `2001:db8::1`; that of a mapped IPv4 address ends with dots.
  Verda::String text() const;

  /// All eight groups with four digits each: `2001:0db8:0000:0000:0000:0000:0000:0001`.
  Verda::String expandedText() const;

  /// Whether all bytes are the same.
  bool operator==(const Ip6Addr&) const = default;

 private:
  U16 group(std::size_t index) const;

  std::array<U8, length> bytes_{};
};

}  // namespace Zonet
