#include "tool/HidingWarning.h"

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/PacketHeader.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusCode;
using Verda::U8;

bool canHide(U8 code) {
  return !RadiusPktParserBase::isRequest(code) || hasRandomAuthenticator(code);
}

std::string hidingWarning(const std::string& origin, U8 code) {
  return fmt::format("{}: warning: no receiver can reveal a value that is hidden in a packet of {}",
                     origin, stringValue(static_cast<RadiusCode::RadiusCodeEnum>(code)));
}

}  // namespace RadiusPacketTool
