#include "tool/dictionary/FileProblems.h"

#include <fmt/format.h>

namespace RadiusPacketTool {

bool FileProblems::checkCount(const DictionaryWords& words, LineKind kind) {
  const LineRule& rule = lineRuleOf(kind);
  if (words.count() >= rule.leastWords && words.count() <= rule.mostWords) {
    return true;
  }
  const bool isTooLong = words.count() > rule.mostWords;
  error(words[isTooLong ? rule.mostWords : 0].column,
        fmt::format("the line has too {} words: its form is {}", isTooLong ? "many" : "few",
                    rule.form));
  return false;
}

}  // namespace RadiusPacketTool
