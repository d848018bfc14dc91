#include "tool/output/TextOutput.h"

#include <iterator>
#include <string_view>

#include <fmt/format.h>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/capture/DatagramText.h"
#include "tool/text/HexText.h"
#include "tool/text/ShownText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusCode;

namespace {

std::string authenticatorText(const PacketReport& report) {
  std::string text = fmt::format(", authenticator {}", hexText(*report.header.authenticator));
  if (report.authenticatorCheck != Check::absent) {
    text += fmt::format(" ({})", checkText(report.authenticatorCheck));
  }
  if (report.messageAuthenticatorCheck != Check::absent) {
    text +=
        fmt::format(", Message-Authenticator ({})", checkText(report.messageAuthenticatorCheck));
  }
  return text;
}

/// Of a packet shorter than a header, what there is.
std::string headerLine(const PacketReport& report) {
  std::string line;
  if (report.header.code.has_value()) {
    line += stringValue(static_cast<RadiusCode::RadiusCodeEnum>(*report.header.code)).view();
  }
  if (report.header.id.has_value()) {
    line += fmt::format(", id {}", *report.header.id);
  }
  if (report.header.length.has_value()) {
    line += fmt::format(", length {}", *report.header.length);
  }
  if (report.header.authenticator.has_value()) {
    line += authenticatorText(report);
  }
  if (report.datagram.has_value()) {
    line += fmt::format(", {}", datagramText(*report.datagram));
  }
  line += fmt::format(", {}", Verda::escaped(placeText(report.place)));
  if (report.pairedWith.has_value()) {
    line += fmt::format(", paired with {}", Verda::escaped(placeText(*report.pairedWith)));
  }
  if (report.retransmissionOf.has_value()) {
    line +=
        fmt::format(", retransmission of {}", Verda::escaped(placeText(*report.retransmissionOf)));
  }
  return line + '\n';
}

std::string attributeLine(const ReportedAttribute& attribute, const OutputOptions& options) {
  const bool isRedacted = options.redact && attribute.isRevealed;
  const std::string tag = attribute.tag.has_value() ? fmt::format(":{}", *attribute.tag) : "";
  return fmt::format("{}{} = {}\n", Verda::escaped(attribute.name), tag,
                     isRedacted ? "(redacted)" : shownText(attribute.value));
}

}  // namespace

std::string_view checkText(Check check) {
  switch (check) {
    case Check::absent:
      return "absent";
    case Check::unchecked:
      return "unchecked";
    case Check::verified:
      return "verified";
    case Check::wrong:
      return "wrong";
  }
  return {};
}

std::string textOf(const PacketReport& report, const OutputOptions& options) {
  std::string text = headerLine(report);
  if (options.statusServer && report.statusServer.has_value()) {
    text += fmt::format("Status-Server: {}\n", stringValue(*report.statusServer).view());
  }
  for (const ReportedAttribute& attribute : report.attributes) {
    text += attributeLine(attribute, options);
  }
  return text;
}

}  // namespace RadiusPacketTool
