#pragma once

#include <array>
#include <bit>
#include <cstring>
#include <span>

#include "Verda/Export.h"
#include "Verda/String.h"
#include "Verda/Types.h"
#include "Zonet/Ip6Addr.h"

namespace Zonet {

using Verda::U8;

/// IPv4 or IPv6.
enum class IpFamily : U8 { ip4, ip6 };

/// An IPv4 or IPv6 address.
class VERDA_EXPORT IpGenAddr {
 public:
  static constexpr std::size_t ip4Length = 4;  ///< in bytes

  /// The IPv4 address 0.0.0.0.
  IpGenAddr() = default;
  /// From 4 bytes in network order.
  explicit IpGenAddr(std::span<const U8, ip4Length> bytes) : bytes_(filledUp(bytes)) {}
  /// The same address.
  IpGenAddr(const Ip6Addr& address) : bytes_(address.bytes()), family_(IpFamily::ip6) {}
  /// From text of either family, as `inet_pton` takes it. Throws `AddressTextError` for anything
  /// else.
  explicit IpGenAddr(const Verda::String& text);

  IpFamily family() const { return family_; }              ///< IPv4 or IPv6
  bool isIp6() const { return family_ == IpFamily::ip6; }  ///< whether it is an IPv6 address

  /// The address in network order: 4 or 16 bytes, valid as long as the object.
  std::span<const U8> bytes() const;

  /// Copies the address bytes out, as far as `to` has room; returns how many were copied.
  Verda::U32 copyTo(std::span<U8> to) const;

  /// The dotted or RFC 5952 text.
  Verda::String text() const;

  /// Whether family and bytes are the same.
  bool operator==(const IpGenAddr&) const = default;

 private:
  /// The bytes with zeros behind them, made in one piece: what is copied soon after it was written
  /// in parts makes the processor wait.
  static std::array<U8, Ip6Addr::length> filledUp(std::span<const U8, ip4Length> bytes) {
    std::array<Verda::U32, Ip6Addr::length / ip4Length> words{};
    std::memcpy(words.data(), bytes.data(), ip4Length);
    return std::bit_cast<std::array<U8, Ip6Addr::length>>(words);
  }

  // An IPv4 address stands in the first 4 bytes, the others are zero.
  std::array<U8, Ip6Addr::length> bytes_{};
  IpFamily family_ = IpFamily::ip4;
};

}  // namespace Zonet
