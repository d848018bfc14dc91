#include "tool/text/ShownText.h"

#include <fmt/format.h>

#include "tool/text/HexText.h"

namespace RadiusPacketTool {
namespace {

struct ValueWriter {
  std::string operator()(const ShownNumber& number) const {
    return number.name.empty() ? fmt::format("{}", number.number)
                               : fmt::format("{} ({})", number.name, number.number);
  }
  std::string operator()(const ShownText& text) const {
    return fmt::format("\"{}\"", text.escaped);
  }
  std::string operator()(const ShownBytes& shown) const { return prefixedHex(shown.bytes); }
  std::string operator()(const ShownPlain& plain) const { return plain.text; }
};

}  // namespace

std::string shownText(const ShownValue& value) {
  return std::visit(ValueWriter(), value);
}

}  // namespace RadiusPacketTool
