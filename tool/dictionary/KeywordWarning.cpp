#include "tool/dictionary/KeywordWarning.h"

#include <fmt/format.h>

#include "tool/text/Suggestion.h"

namespace RadiusPacketTool {
namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

}  // namespace

void warnOfKeyword(const DictionaryWord& word, FileProblems& problems) {
  if (const LineRule* rule = lineRuleFind(word.text)) {
    const std::string_view why = rule->kind == LineKind::include
                                     ? "is not followed in an included file"
                                     : "stands in a file of no vendor";
    problems.warning(word.column, fmt::format("{} {}: the line is ignored", word.text, why));
    return;
  }
  if (word.text.starts_with(byteOrderMark)) {
    problems.warning(word.column, "a byte order mark spoils the keyword: the line is ignored",
                     std::string(word.text.substr(byteOrderMark.size())));
    return;
  }
  problems.warning(word.column,
                   fmt::format("{} is no keyword: the line is ignored", quotedWord(word.text)),
                   likeliestMeant(word.text, keywordsOfIncludedFiles()));
}

}  // namespace RadiusPacketTool
