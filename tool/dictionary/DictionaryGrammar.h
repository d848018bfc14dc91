#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"

namespace RadiusPacketTool {

/// The kinds of line that dictionary files have.
enum class LineKind : Verda::U8 { include, attribute, value, vendor, beginVendor, endVendor };

/// A kind of line: its first word, how many words it has with that one, and how it is written.
struct LineRule {
  LineKind kind;
  std::string_view keyword;
  std::size_t leastWords;
  std::size_t mostWords;
  std::string_view form;
};

/// A flag of an attribute. One with a digit has it right behind the name.
struct FlagRule {
  std::string_view name;
  bool hasDigit;
  bool standardOnly;
};

/// Which word of a line is the name, for all kinds that have one.
inline constexpr std::size_t nameWord = 1;

inline constexpr std::size_t anyCount = std::numeric_limits<std::size_t>::max();

/// The grammar: every kind of line.
inline constexpr auto lineRules = std::to_array<LineRule>({
    {LineKind::include, "$INCLUDE", 2, anyCount, "$INCLUDE FILE"},
    {LineKind::attribute, "ATTRIBUTE", 4, 5, "ATTRIBUTE NAME CODE TYPE [FLAGS]"},
    {LineKind::value, "VALUE", 1, anyCount, "VALUE ..."},
    {LineKind::vendor, "VENDOR", 3, 4, "VENDOR NAME NUMBER"},
    {LineKind::beginVendor, "BEGIN-VENDOR", 2, 3, "BEGIN-VENDOR NAME"},
    {LineKind::endVendor, "END-VENDOR", 2, 2, "END-VENDOR NAME"},
});

/// And every flag.
inline constexpr auto flagRules = std::to_array<FlagRule>({
    {"has_tag", false, false},
    {"concat", false, true},
    {"encrypt=", true, false},
});

/// How many flags a line has a use for; more are taken, with a warning.
inline constexpr std::size_t usefulFlags = 2;

/// The rule of lines that begin with this word, or null.
const LineRule* lineRuleFind(std::string_view keyword);

/// The rule of a kind of line.
const LineRule& lineRuleOf(LineKind kind);

/// The rule that a flag falls under, whatever its digit, or null.
const FlagRule* flagRuleFind(std::string_view flag);

/// The pieces of a flags word between its commas; a comma at the end begins no piece.
std::vector<std::string_view> flagsOf(std::string_view word);

using DataType = RadiusPacketParser::RadiusAttributeType::RadiusAttributeTypeEnum;

/// The data type of a type word; `unknown` for any other word.
DataType dataTypeOf(std::string_view word);

/// An attribute code by the loader's check, which is lax on purpose: digits wrap around at 32 bits,
/// and only 256 to 2^31-1 and 2^32-1 are rejected.
std::optional<Verda::U8> attributeCodeOf(std::string_view word);

/// The words that a mistyped one may stand for.
std::vector<std::string> keywordsOfIncludedFiles();
std::vector<std::string> typeWords();
std::vector<std::string> flagNames(bool isStandard);

}  // namespace RadiusPacketTool
