#pragma once

#include <map>
#include <string>

#include "Verda/Types.h"

#include "tool/dictionary/DictionaryDefinitions.h"
#include "tool/dictionary/DictionaryProblem.h"

namespace RadiusPacketTool {

/// All that is read of a dictionary, whatever is wrong with it.
struct DictionaryReading {
  DictionaryProblems problems;
  DictionaryDefinitions definitions;
  std::map<std::string, Verda::U32> vendorIds;  ///< by the name that a file's first line declares
};

}  // namespace RadiusPacketTool
