#pragma once

#include <string_view>
#include <vector>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tool/text/AttributeNames.h"
#include "tool/text/QuotedText.h"
#include "tool/text/SaltSource.h"

namespace RadiusPacketTool {

/// Makes of a value in text form what the encoders want of that attribute: the other way round of
/// `readableValue`. What it is hidden with is made here: salt, length byte and padding. Throws
/// `BadAttribute` for what the attribute cannot hold, and for what the encoders would not write or
/// only a part of.
/// @param salts  those of the packet
RadiusPktParserBase::AttrValue valueOf(const NamedAttribute& attribute, std::string_view text,
                                       SaltSource& salts);

/// The bytes of text in quotes or of `0x...`. Throws `BadAttribute`.
std::vector<Verda::U8> bytesOfText(std::string_view text);

}  // namespace RadiusPacketTool
