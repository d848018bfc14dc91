#include "tool/capture/DatagramText.h"

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <limits>

#include <fmt/format.h>

#include "Verda/String.h"
#include "Zonet/AddressTextError.h"

#include "tool/text/DecimalText.h"

namespace RadiusPacketTool {

using std::chrono::microseconds;
using std::chrono::nanoseconds;
using std::chrono::seconds;
using Verda::U16;
using Verda::U32;

namespace {

constexpr std::string_view arrow = " > ";
constexpr std::string_view separator = ", ";

constexpr std::int64_t mostSeconds =
    std::chrono::duration_cast<seconds>(nanoseconds::max()).count();

/// Takes what stands in front of `end`, and `end`, off the front of a text.
std::optional<std::string_view> takeUntil(std::string_view end, std::string_view& text) {
  const std::size_t at = text.find(end);
  if (at == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view taken = text.substr(0, at);
  text.remove_prefix(at + end.size());
  return taken;
}

std::optional<Endpoint> endpointOf(std::string_view text) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos) {
    return std::nullopt;
  }
  const std::optional<U32> port =
      decimalOf(text.substr(colon + 1), std::numeric_limits<U16>::max());
  std::string_view address = text.substr(0, colon);
  if (address.starts_with('[') && address.ends_with(']')) {
    address = address.substr(1, address.size() - 2);
  }
  if (!port.has_value()) {
    return std::nullopt;
  }
  try {
    return Endpoint{.address = Zonet::IpGenAddr(Verda::String(address)),
                    .port = static_cast<U16>(*port)};
  } catch (const Zonet::AddressTextError&) {
    return std::nullopt;
  }
}

/// The time that a text may be meant to say: text of another form may stand for it too.
std::optional<nanoseconds> timeOfText(const std::string& text) {
  constexpr std::size_t microsecondDigits = 6;
  constexpr U32 mostNanoseconds = std::nano::den - 1;
  std::tm parts{};
  const char* const behindSeconds = ::strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S.", &parts);
  if (behindSeconds == nullptr || !text.ends_with('Z')) {
    return std::nullopt;
  }
  std::string_view digits(behindSeconds);
  digits.remove_suffix(1);
  const std::optional<U32> fraction = decimalOf(digits, mostNanoseconds);
  const std::int64_t wholeSeconds = ::timegm(&parts);
  if (!fraction.has_value() || wholeSeconds < 0 || wholeSeconds >= mostSeconds) {
    return std::nullopt;
  }
  const nanoseconds unit = digits.size() == microsecondDigits ? microseconds(1) : nanoseconds(1);
  return seconds(wholeSeconds) + *fraction * unit;
}

}  // namespace

std::string endpointText(const Endpoint& endpoint) {
  const Verda::String address = endpoint.address.text();
  return endpoint.address.isIp6() ? fmt::format("[{}]:{}", address.view(), endpoint.port)
                                  : fmt::format("{}:{}", address.view(), endpoint.port);
}

std::string timeText(nanoseconds time) {
  const auto wholeSeconds = std::chrono::floor<seconds>(time);
  const std::time_t clock = wholeSeconds.count();
  const nanoseconds fraction = time - wholeSeconds;
  std::tm parts{};
  ::gmtime_r(&clock, &parts);
  constexpr int firstYear = 1900;
  const std::string digits = fraction % microseconds(1) == nanoseconds(0)
                                 ? fmt::format("{:06}", fraction / microseconds(1))
                                 : fmt::format("{:09}", fraction.count());
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{}Z", parts.tm_year + firstYear,
                     parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                     digits);
}

std::string datagramText(const Datagram& datagram) {
  return fmt::format("{}{}{}{}{}", endpointText(datagram.from), arrow, endpointText(datagram.to),
                     separator, timeText(datagram.time));
}

std::optional<Datagram> datagramOf(std::string_view text) {
  std::string_view rest = text;
  const auto from = takeUntil(arrow, rest);
  const auto to = takeUntil(separator, rest);
  if (!from.has_value() || !to.has_value()) {
    return std::nullopt;
  }
  const std::optional<Endpoint> sender = endpointOf(*from);
  const std::optional<Endpoint> receiver = endpointOf(*to);
  const std::optional<nanoseconds> time = timeOfText(std::string(rest));
  if (!sender.has_value() || !receiver.has_value() || !time.has_value()) {
    return std::nullopt;
  }
  const Datagram datagram{.time = *time, .from = *sender, .to = *receiver};
  return datagramText(datagram) == text ? std::optional(datagram) : std::nullopt;
}

}  // namespace RadiusPacketTool
