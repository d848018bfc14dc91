#pragma once

#include "Tyl/Enumeration.h"

#include "RadiusPacketParser/RadiusPktTypes.h"

namespace RadiusPacketTool {

/// The enumeration that names the values of a standard attribute, or null.
const Tyl::EnumerationTable* enumerationOf(const RadiusPktParserBase::Attribute& key);

}  // namespace RadiusPacketTool
