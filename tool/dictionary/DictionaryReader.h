#pragma once

#include <string>

#include "tool/dictionary/DictionaryReading.h"

namespace RadiusPacketTool {

/// Reads a whole dictionary without the library's loader, which ends at the first error: finds all
/// problems, and where each attribute is defined. They are in the order in which the loader would
/// meet them, so the first error is the one that it ends on. Never throws for what a file holds.
DictionaryReading readDictionary(const std::string& topFile);

}  // namespace RadiusPacketTool
