#pragma once

#include <optional>
#include <string>

#include "Verda/Types.h"

#include "tool/dictionary/FileProblems.h"

namespace RadiusPacketTool {

/// A vendor's line as far as it can be read: the number is missing when it is none.
struct VendorLine {
  std::string name;
  std::optional<Verda::U32> id;
};

/// Checks a `VENDOR` line.
VendorLine readVendorLine(const DictionaryWords& words, FileProblems& problems);

/// A format word changes nothing, which its writer may not know.
void warnOfFormat(const DictionaryWord& word, FileProblems& problems);

}  // namespace RadiusPacketTool
