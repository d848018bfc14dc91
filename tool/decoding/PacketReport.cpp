#include "tool/decoding/PacketReport.h"

namespace RadiusPacketTool {

using RadiusPktParserBase::ErrorMsg;

ExitCode exitCodeOf(ErrorMsg error) {
  switch (error) {
    case ErrorMsg::success:
      return ExitCode::success;
    case ErrorMsg::invalidPktAuth:
    case ErrorMsg::invalidMsgAuth:
    case ErrorMsg::missingRequiredMsgAuth:
      return ExitCode::checkFailed;
    default:
      return ExitCode::refused;
  }
}

ExitCode exitCodeOf(const PacketReport& report) {
  return report.error.has_value() ? exitCodeOf(*report.error) : ExitCode::checkFailed;
}

std::string faultText(const PacketReport& report) {
  std::string text;
  if (report.error.has_value()) {
    text += stringValue(*report.error).view();
  }
  if (report.reason.has_value()) {
    text += text.empty() ? "" : ": ";
    text += *report.reason;
  }
  return text;
}

}  // namespace RadiusPacketTool
