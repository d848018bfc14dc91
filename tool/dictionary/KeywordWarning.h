#pragma once

#include "tool/dictionary/FileProblems.h"

namespace RadiusPacketTool {

/// Warns of a line of an included file whose first word is no keyword there.
void warnOfKeyword(const DictionaryWord& word, FileProblems& problems);

}  // namespace RadiusPacketTool
