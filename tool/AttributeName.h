#pragma once

#include <string>

#include "Verda/Ptr.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPktTypes.h"

namespace RadiusPacketTool {

/// The attribute's name in the dictionary; `Attr-240` or `Attr-26.311.255` when it is not there.
std::string attributeName(const RadiusPktParserBase::Attribute& key,
                          const RadiusPacketParser::RadiusDict& dictionary);

}  // namespace RadiusPacketTool
