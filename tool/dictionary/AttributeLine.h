#pragma once

#include <optional>

#include "Verda/Types.h"

#include "tool/dictionary/DictionaryDefinitions.h"
#include "tool/dictionary/FileProblems.h"

namespace RadiusPacketTool {

/// Whose attributes a line may define.
struct AttributeSpace {
  bool isKnown = true;                 ///< whether anybody says which vendor it is
  std::optional<Verda::U32> vendorId;  ///< nothing for standard attributes
  bool isStandard = true;
};

/// Checks an `ATTRIBUTE` line, and takes what it defines.
void readAttributeLine(const DictionaryWords& words, const AttributeSpace& space,
                       FileProblems& problems, DictionaryDefinitions& definitions);

}  // namespace RadiusPacketTool
