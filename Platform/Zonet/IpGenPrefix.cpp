#include "Zonet/IpGenPrefix.h"

#include <charconv>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

#include "Verda/Exception.h"
#include "Zonet/AddressTextError.h"

namespace Zonet {
namespace {

constexpr std::string_view expectedText = "an IP address or prefix";

}  // namespace

IpGenPrefix::IpGenPrefix(const IpGenAddr& address, U8 prefixLength)
    : address_(address), prefixLength_(prefixLength) {
  if (prefixLength > maxLengthOf(address)) {
    throw Verda::RangeError(fmt::format("prefix length {} is longer than the address {}",
                                        prefixLength, address.text()));
  }
}

IpGenPrefix::IpGenPrefix(const Verda::String& text) {
  const std::size_t slash = text.view().find('/');
  try {
    address_ = IpGenAddr(Verda::String(text.view().substr(0, slash)));
  } catch (const AddressTextError&) {
    throw AddressTextError(expectedText, text);
  }
  prefixLength_ = maxLengthOf(address_);
  if (slash == std::string_view::npos) {
    return;
  }
  const std::string_view digits = text.view().substr(slash + 1);
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), prefixLength_);
  if (error != std::errc() || end != digits.data() + digits.size() ||
      prefixLength_ > maxLengthOf(address_)) {
    throw AddressTextError(expectedText, text);
  }
}

Verda::String IpGenPrefix::text() const {
  return Verda::String(fmt::format("{}/{}", address_.text(), prefixLength_));
}

}  // namespace Zonet
