#include "tool/dictionary/AttributeLine.h"

#include <fmt/format.h>

#include "tool/text/DecimalText.h"
#include "tool/text/Suggestion.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusAttributeType;
using Verda::U8;

namespace {

constexpr std::size_t codeWord = 2;
constexpr std::size_t typeWord = 3;
constexpr std::size_t flagsWord = 4;

/// As digits: none, and those that the library has.
constexpr std::string_view hidingMethods = "012";

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// The line's code; nothing, with a warning, for what is none.
std::optional<U8> readCode(const DictionaryWord& word, FileProblems& problems) {
  const std::optional<U8> code = attributeCodeOf(word.text);
  if (!code.has_value()) {
    problems.warning(word.column, fmt::format("{} is no code from 0 to 255: the line is ignored",
                                              quotedWord(word.text)));
  } else if (!decimalOf(word.text, std::numeric_limits<U8>::max()).has_value()) {
    problems.warning(word.column,
                     fmt::format("{} is no code from 0 to 255: it wraps around, and counts as {}",
                                 quotedWord(word.text), *code));
  }
  return code;
}

void checkFlag(const DictionaryWord& flag, bool isStandard, FileProblems& problems) {
  const FlagRule* rule = flagRuleFind(flag.text);
  if (rule == nullptr) {
    problems.warning(flag.column,
                     fmt::format("{} is no flag: it is ignored", quotedWord(flag.text)),
                     likeliestMeant(flag.text, flagNames(isStandard)));
  } else if (rule->standardOnly && !isStandard) {
    problems.warning(flag.column,
                     fmt::format("{} is for standard attributes: it is ignored", rule->name));
  } else if (rule->hasDigit &&
             (flag.text.size() != rule->name.size() + 1 || !isDigit(flag.text.back()))) {
    problems.error(flag.column + rule->name.size(),
                   fmt::format("behind {} stands one digit, not {}", rule->name,
                               quotedWord(flag.text.substr(rule->name.size()))));
  } else if (rule->hasDigit && hidingMethods.find(flag.text.back()) == std::string_view::npos) {
    problems.warning(
        flag.column + rule->name.size(),
        fmt::format("{}{} hides nothing: there are methods 1 and 2", rule->name, flag.text.back()));
  }
}

void checkFlags(const DictionaryWord& word, bool isStandard, FileProblems& problems) {
  const std::vector<std::string_view> flags = flagsOf(word.text);
  for (const std::string_view flag : flags) {
    const auto before = static_cast<std::size_t>(flag.data() - word.text.data());
    checkFlag({.text = flag, .column = word.column + before}, isStandard, problems);
  }
  if (flags.size() > usefulFlags) {
    problems.warning(word.column,
                     fmt::format("more than {} flags, though all are looked at", usefulFlags));
  }
}

}  // namespace

void readAttributeLine(const DictionaryWords& words, const AttributeSpace& space,
                       FileProblems& problems, DictionaryDefinitions& definitions) {
  problems.checkCount(words, LineKind::attribute);
  if (words.count() < lineRuleOf(LineKind::attribute).leastWords) {
    return;
  }
  const std::optional<U8> code = readCode(words[codeWord], problems);
  if (!code.has_value()) {
    return;
  }
  if (!space.isKnown) {
    problems.warning(words[nameWord].column, "the vendor is not known: the line is ignored");
    return;
  }
  const DataType type = dataTypeOf(words[typeWord].text);
  if (type == RadiusAttributeType::unknown) {
    problems.warning(
        words[typeWord].column,
        fmt::format("{} is no data type: values are bytes", quotedWord(words[typeWord].text)),
        likeliestMeant(words[typeWord].text, typeWords()));
  }
  checkFlags(words[flagsWord], space.isStandard, problems);
  if (!space.isStandard && !space.vendorId.has_value()) {
    return;
  }
  const std::string contradiction =
      definitions.add({.vendorId = space.vendorId, .type = *code},
                      {.name = std::string(words[nameWord].text),
                       .type = type,
                       .place = {.file = problems.path(), .line = problems.line()}});
  if (!contradiction.empty()) {
    problems.warning(words[nameWord].column, contradiction);
  }
}

}  // namespace RadiusPacketTool
