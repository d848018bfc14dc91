#pragma once

#include <string>

#include "tool/dictionary/DictionaryReading.h"

namespace RadiusPacketTool {

/// Reads one included file as the library's loader does, but goes on behind each error: what it
/// ends on is said, and what can be taken of the line is taken, so that one slip is one problem.
void readIncludedFile(const std::string& path, DictionaryReading& reading);

}  // namespace RadiusPacketTool
