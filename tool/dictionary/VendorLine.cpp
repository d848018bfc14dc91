#include "tool/dictionary/VendorLine.h"

#include <limits>

#include <fmt/format.h>

#include "tool/text/DecimalText.h"
#include "tool/text/Suggestion.h"

namespace RadiusPacketTool {

using Verda::U32;

namespace {

constexpr std::size_t idWord = 2;

}  // namespace

VendorLine readVendorLine(const DictionaryWords& words, FileProblems& problems) {
  VendorLine vendor{.name = std::string(words[nameWord].text), .id = std::nullopt};
  const bool isComplete = problems.checkCount(words, LineKind::vendor);
  const DictionaryWord id = words[idWord];
  if (!id.text.empty()) {
    vendor.id = decimalOf(id.text, std::numeric_limits<U32>::max());
    if (!vendor.id.has_value()) {
      problems.error(id.column, fmt::format("{} is no vendor number from 0 to {}",
                                            quotedWord(id.text), std::numeric_limits<U32>::max()));
    }
  }
  if (isComplete) {
    warnOfFormat(words[lineRuleOf(LineKind::vendor).leastWords], problems);
  }
  return vendor;
}

void warnOfFormat(const DictionaryWord& word, FileProblems& problems) {
  if (!word.text.empty()) {
    problems.warning(word.column, fmt::format("the format {} is ignored", quotedWord(word.text)));
  }
}

}  // namespace RadiusPacketTool
