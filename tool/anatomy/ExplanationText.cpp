#include <string_view>

#include <fmt/format.h>

#include "Verda/Escape.h"

#include "tool/anatomy/Explanation.h"
#include "tool/anatomy/HexDump.h"
#include "tool/anatomy/WrappedText.h"
#include "tool/capture/DatagramText.h"

namespace RadiusPacketTool {
namespace {

std::string offsetText(const Field& field) {
  return fmt::format("offset {} (0x{:02x})", field.offset, field.offset);
}

std::string titleOf(const PacketReport& report) {
  const std::string place = Verda::escaped(placeText(report.place));
  if (isAccepted(report)) {
    return fmt::format("{} is accepted\n", place);
  }
  return report.error.has_value()
             ? fmt::format("{} is refused: {}\n", place, stringValue(*report.error).view())
             : fmt::format("{} cannot be checked\n", place);
}

std::string culpritText(const Explanation& explanation) {
  const Field& field = *explanation.culprit;
  const std::string_view unit = field.length == 1 ? "byte" : "bytes";
  return fmt::format("\n{}\n", hexDump(explanation.packet,
                                       {.offset = field.offset, .length = field.length})) +
         labelled("where",
                  fmt::format("{}, {} {}: {}", offsetText(field), field.length, unit, field.path)) +
         labelled("found", field.fault->found) + labelled("expected", field.fault->expected) +
         labelled("section", field.fault->section);
}

/// What was tried in vain matters only to who must look on.
std::string diagnosisText(const Diagnosis& diagnosis) {
  if (diagnosis.finding.has_value()) {
    return labelled("finding", *diagnosis.finding);
  }
  if (diagnosis.ruledOut.empty()) {
    return {};
  }
  std::string text =
      labelled("finding", "nothing that was tried fits: most likely the secret is another");
  std::string_view label = "ruled out";
  for (const std::string& line : diagnosis.ruledOut) {
    text += labelled(label, line);
    label = "";
  }
  return text;
}

}  // namespace

std::string textOf(const Explanation& explanation) {
  const PacketReport& report = explanation.report;
  std::string text = titleOf(report);
  if (isAccepted(report)) {
    return text;
  }
  if (report.reason.has_value()) {
    text += labelled("reason", *report.reason);
  }
  if (explanation.culprit.has_value()) {
    text += culpritText(explanation);
  }
  if (report.pairedWith.has_value()) {
    text += labelled("answers", placeText(*report.pairedWith));
  }
  if (report.datagram.has_value()) {
    text += labelled("went", datagramText(*report.datagram));
  }
  text += diagnosisText(explanation.diagnosis);
  for (const Field& field : explanation.others) {
    text += labelled("also", fmt::format("{} at {}: {}", stringValue(field.fault->error).view(),
                                         offsetText(field), field.path));
  }
  return text;
}

}  // namespace RadiusPacketTool
