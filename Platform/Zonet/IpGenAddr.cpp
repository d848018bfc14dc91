#include "Zonet/IpGenAddr.h"

#include <algorithm>
#include <arpa/inet.h>

#include <fmt/format.h>

#include "Zonet/AddressTextError.h"

namespace Zonet {

IpGenAddr::IpGenAddr(const Verda::String& text) {
  const bool hasNul = text.viewToNul().size() != text.size();
  if (!hasNul && inet_pton(AF_INET, text.cStr(), bytes_.data()) == 1) {
    return;
  }
  if (hasNul || inet_pton(AF_INET6, text.cStr(), bytes_.data()) != 1) {
    throw AddressTextError("an IP address", text);
  }
  family_ = IpFamily::ip6;
}

std::span<const U8> IpGenAddr::bytes() const {
  return {bytes_.data(), isIp6() ? Ip6Addr::length : ip4Length};
}

Verda::U32 IpGenAddr::copyTo(std::span<U8> to) const {
  const std::size_t count = std::min(bytes().size(), to.size());
  std::copy_n(bytes_.data(), count, to.data());
  return static_cast<Verda::U32>(count);
}

Verda::String IpGenAddr::text() const {
  if (isIp6()) {
    return Ip6Addr(bytes_).text();
  }
  return Verda::String(fmt::format("{}.{}.{}.{}", bytes_[0], bytes_[1], bytes_[2], bytes_[3]));
}

}  // namespace Zonet
