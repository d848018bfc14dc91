#pragma once

#include "Verda/Export.h"
#include "Verda/String.h"
#include "Verda/Types.h"
#include "Zonet/IpGenAddr.h"

namespace Zonet {

/// An address with a prefix length. The address bits behind the prefix are kept as they are.
class VERDA_EXPORT IpGenPrefix {
 public:
  static constexpr U8 ip4MaxLength = 32;   ///< in bits
  static constexpr U8 ip6MaxLength = 128;  ///< in bits

  /// 0.0.0.0/32.
  IpGenPrefix() = default;
  /// The whole address: a prefix length of 32 or 128.
  IpGenPrefix(const IpGenAddr& address) : address_(address), prefixLength_(maxLengthOf(address)) {}
  /// Throws `Verda::RangeError` when `prefixLength` is longer than the address.
  IpGenPrefix(const IpGenAddr& address, U8 prefixLength);
  /// From `address` or `address/length`, the length in decimal digits. Throws `AddressTextError`
  /// for anything else.
  explicit IpGenPrefix(const Verda::String& text);

  const IpGenAddr& address() const { return address_; }  ///< all of its bits
  U8 prefixLength() const { return prefixLength_; }      ///< in bits

  /// `address/length`.
  Verda::String text() const;

  /// Whether address and length are the same.
  bool operator==(const IpGenPrefix&) const = default;

 private:
  static U8 maxLengthOf(const IpGenAddr& address) {
    return address.isIp6() ? ip6MaxLength : ip4MaxLength;
  }

  IpGenAddr address_;
  U8 prefixLength_ = ip4MaxLength;
};

}  // namespace Zonet
