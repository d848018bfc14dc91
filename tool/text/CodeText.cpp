#include "tool/text/CodeText.h"

#include <limits>

#include "Tyl/Enumeration.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/text/DecimalText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusCode;
using Verda::U32;
using Verda::U8;

std::optional<U8> codeOf(std::string_view text) {
  const Tyl::EnumerationTable& table = RadiusCode::enumerationTable();
  if (const Tyl::Enumerator* named = Tyl::enumeratorFind(table, text)) {
    return static_cast<U8>(named->number);
  }
  if (text.starts_with(table.name)) {
    text.remove_prefix(table.name.size());
    if (!text.starts_with('(') || !text.ends_with(')')) {
      return std::nullopt;
    }
    text = text.substr(1, text.size() - 2);
  }
  const std::optional<U32> number = decimalOf(text, std::numeric_limits<U8>::max());
  return number.has_value() ? std::optional(static_cast<U8>(*number)) : std::nullopt;
}

}  // namespace RadiusPacketTool
