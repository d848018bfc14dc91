#pragma once

#include <string>

#include "Verda/Ptr.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPktTypes.h"

namespace RadiusPacketTool {

/// The name made of an attribute's numbers: `Attr-240` or `Attr-26.311.255`.
std::string rawAttributeName(const RadiusPktParserBase::Attribute& key);

/// The attribute's name in the dictionary; the one made of its numbers when it is not there.
std::string attributeName(const RadiusPktParserBase::Attribute& key,
                          const RadiusPacketParser::RadiusDict& dictionary);

}  // namespace RadiusPacketTool
