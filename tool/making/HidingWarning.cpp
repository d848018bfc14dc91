#include "tool/making/HidingWarning.h"

#include <variant>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/decoding/PacketHeader.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::RadiusCode;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::AttrValue;
using Verda::Bytes;
using Verda::U8;

namespace {

/// Whether a packet of that code can carry hidden values that its receiver reveals: those of a
/// request whose authenticator is a digest are hidden before there is one.
bool canHide(U8 code) {
  return !RadiusPktParserBase::isRequest(code) || hasRandomAuthenticator(code);
}

/// Whether a value takes more than one attribute; only octets are ever split.
bool isSplit(const AttrInfo& info, const AttrValue& value) {
  constexpr std::size_t longest =
      AttributeConstants::maxLength() - AttributeConstants::valueOffset();
  const Bytes* octets = std::get_if<Bytes>(&value);
  return info.isConcat && octets != nullptr && octets->size() > longest;
}

}  // namespace

std::vector<std::string> hidingWarnings(const std::string& origin, U8 code, const AttrInfo& info,
                                        const std::optional<AttrValue>& value) {
  std::vector<std::string> warnings;
  if (!value.has_value() || !isHidden(info)) {
    return warnings;
  }
  if (!canHide(code)) {
    warnings.push_back(
        fmt::format("{}: warning: no receiver can reveal a value that is hidden in a packet of {}",
                    origin, stringValue(static_cast<RadiusCode::RadiusCodeEnum>(code))));
  }
  if (isSplit(info, *value)) {
    warnings.push_back(fmt::format(
        "{}: warning: only the last piece of the value is hidden: the others stand in clear",
        origin));
  }
  return warnings;
}

}  // namespace RadiusPacketTool
