#include "Zonet/Ip6Addr.h"

#include <algorithm>
#include <arpa/inet.h>
#include <iterator>
#include <string>

#include <fmt/format.h>

#include "Zonet/AddressTextError.h"

namespace Zonet {
namespace {

using Groups = std::array<U16, Ip6Addr::groups>;

struct Run {
  std::size_t begin = 0;
  std::size_t length = 0;
};

/// The longest run of zero groups, the first of several; a single zero group is no run (RFC 5952
/// sections 4.2.2 and 4.2.3).
Run longestZeroRun(const Groups& groups) {
  Run longest;
  for (std::size_t begin = 0; begin < groups.size(); ++begin) {
    std::size_t end = begin;
    while (end < groups.size() && groups[end] == 0) {
      ++end;
    }
    if (end - begin > longest.length) {
      longest = {begin, end - begin};
    }
  }
  return longest.length < 2 ? Run{} : longest;
}

bool isMappedIp4(const Groups& groups) {
  return std::all_of(groups.begin(), groups.begin() + 5, [](U16 group) { return group == 0; }) &&
         groups[5] == 0xFFFF;
}

}  // namespace

Ip6Addr::Ip6Addr(std::span<const U8, length> bytes) {
  std::ranges::copy(bytes, bytes_.begin());
}

Ip6Addr::Ip6Addr(const Verda::String& text) {
  if (text.viewToNul().size() != text.size() ||
      inet_pton(AF_INET6, text.cStr(), bytes_.data()) != 1) {
    throw AddressTextError("an IPv6 address", text);
  }
}

Verda::String Ip6Addr::text() const {
  Groups all;
  for (std::size_t index = 0; index < groups; ++index) {
    all[index] = group(index);
  }
  if (isMappedIp4(all)) {
    return Verda::String(
        fmt::format("::ffff:{}.{}.{}.{}", bytes_[12], bytes_[13], bytes_[14], bytes_[15]));
  }
  const Run zeros = longestZeroRun(all);
  std::string text;
  for (std::size_t index = 0; index < groups; ++index) {
    if (zeros.length > 0 && index == zeros.begin) {
      text += "::";
      index += zeros.length - 1;
      continue;
    }
    if (!text.empty() && text.back() != ':') {
      text += ':';
    }
    fmt::format_to(std::back_inserter(text), "{:x}", all[index]);
  }
  return Verda::String(text);
}

Verda::String Ip6Addr::expandedText() const {
  std::string text;
  for (std::size_t index = 0; index < groups; ++index) {
    fmt::format_to(std::back_inserter(text), "{}{:04x}", index == 0 ? "" : ":", group(index));
  }
  return Verda::String(text);
}

U16 Ip6Addr::group(std::size_t index) const {
  return static_cast<U16>((bytes_[2 * index] << 8U) | bytes_[2 * index + 1]);
}

}  // namespace Zonet
