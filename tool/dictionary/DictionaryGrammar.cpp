#include "tool/dictionary/DictionaryGrammar.h"

#include <algorithm>

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusAttributeType;
using Verda::S32;
using Verda::U32;
using Verda::U8;

const LineRule* lineRuleFind(std::string_view keyword) {
  const auto rule = std::ranges::find(lineRules, keyword, &LineRule::keyword);
  return rule == lineRules.end() ? nullptr : &*rule;
}

const LineRule& lineRuleOf(LineKind kind) {
  return *std::ranges::find(lineRules, kind, &LineRule::kind);
}

const FlagRule* flagRuleFind(std::string_view flag) {
  const auto rule = std::ranges::find_if(flagRules, [&](const FlagRule& one) {
    return one.hasDigit ? flag.starts_with(one.name) : flag == one.name;
  });
  return rule == flagRules.end() ? nullptr : &*rule;
}

std::vector<std::string_view> flagsOf(std::string_view word) {
  std::vector<std::string_view> flags;
  while (!word.empty()) {
    const std::size_t end = std::min(word.find(','), word.size());
    flags.push_back(word.substr(0, end));
    word.remove_prefix(std::min(end + 1, word.size()));
  }
  return flags;
}

DataType dataTypeOf(std::string_view word) {
  const Tyl::Enumerator* found = Tyl::enumeratorFind(RadiusAttributeType::enumerationTable(), word);
  return found == nullptr ? RadiusAttributeType::unknown : static_cast<DataType>(found->number);
}

std::optional<U8> attributeCodeOf(std::string_view word) {
  constexpr U32 ten = 10;
  U32 wrapped = 0;
  for (const char digit : word) {
    if (digit < '0' || digit > '9') {
      return std::nullopt;
    }
    wrapped = wrapped * ten + static_cast<U32>(digit - '0');
  }
  const auto code = static_cast<S32>(wrapped);
  if (code == -1 || code > std::numeric_limits<U8>::max()) {
    return std::nullopt;
  }
  return static_cast<U8>(wrapped);
}

std::vector<std::string> keywordsOfIncludedFiles() {
  std::vector<std::string> words;
  for (const LineRule& rule : lineRules) {
    if (rule.kind != LineKind::include) {
      words.emplace_back(rule.keyword);
    }
  }
  return words;
}

std::vector<std::string> typeWords() {
  std::vector<std::string> words;
  for (const Tyl::Enumerator& type : RadiusAttributeType::enumerationTable().enumerators) {
    if (type.number != RadiusAttributeType::unknown) {
      words.emplace_back(type.name);
    }
  }
  return words;
}

std::vector<std::string> flagNames(bool isStandard) {
  std::vector<std::string> names;
  for (const FlagRule& rule : flagRules) {
    if (isStandard || !rule.standardOnly) {
      names.emplace_back(rule.name);
    }
  }
  return names;
}

}  // namespace RadiusPacketTool
