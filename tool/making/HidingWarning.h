#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktTypes.h"

namespace RadiusPacketTool {

/// What is to be told of a value that a packet is to hold, as far as it is to be hidden: a packet
/// of that code may not let its receiver reveal it, and of a value that is split only the last
/// fragment is hidden. Nothing for a value that is hidden well, or not at all.
/// @param origin  what asks for the value
std::vector<std::string> hidingWarnings(const std::string& origin, Verda::U8 code,
                                        const RadiusPktParserBase::AttrInfo& info,
                                        const std::optional<RadiusPktParserBase::AttrValue>& value);

}  // namespace RadiusPacketTool
