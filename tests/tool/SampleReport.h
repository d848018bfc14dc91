#pragma once

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
