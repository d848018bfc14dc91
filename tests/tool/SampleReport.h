#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tests/support/Digests.h"
#include "tool/decoding/PacketReport.h"

namespace RadiusPacketTool {

/// The report of a good packet without attributes.
inline PacketReport sampleReport() {
  PacketReport report;
  report.place.source = "file.hex";
  report.place.index = 2;
  report.header.code = 2;
  report.header.id = 7;
  report.header.length = 20;
  report.header.authenticator = TestSupport::countingBytes(16);
  report.error = RadiusPktParserBase::ErrorMsg::success;
  report.authenticatorCheck = Check::verified;
  return report;
}

/// A datagram from one family to the other, which no network carries but every text may say.
inline Datagram sampleDatagram() {
  constexpr std::chrono::microseconds time{1795255200123456};
  return {.time = time,
          .from = {.address = Zonet::IpGenAddr("192.0.2.1"), .port = 40000},
          .to = {.address = Zonet::IpGenAddr("2001:db8::1"), .port = 1812}};
}

inline ReportedAttribute sampleAttribute(const std::string& name, ShownValue value,
                                         std::optional<Verda::U8> tag = std::nullopt) {
  ReportedAttribute attribute;
  attribute.key = RadiusPktParserBase::standardAttribute(250);
  attribute.name = name;
  attribute.tag = tag;
  attribute.value = std::move(value);
  return attribute;
}

}  // namespace RadiusPacketTool
