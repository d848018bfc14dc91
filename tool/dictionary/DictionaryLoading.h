#pragma once

#include <string>

#include "Verda/Ptr.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"

namespace RadiusPacketTool {

/// The top file of the dictionary set that belongs to this program: it is looked up from where the
/// program itself stands, so that an installation may be moved.
std::string defaultDictionaryPath();

/// A whole dictionary.
struct LoadedDictionary {
  Verda::Ptr<const RadiusPacketParser::RadiusDictionaryParser> loader;
};

/// Loads a dictionary. The library's warnings and errors go to standard error. Throws `ToolError`
/// where the library would end the process.
LoadedDictionary loadDictionary(const std::string& path);

}  // namespace RadiusPacketTool
