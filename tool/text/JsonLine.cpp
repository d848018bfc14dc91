#include "tool/text/JsonLine.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

namespace RadiusPacketTool {
namespace {

/// JSON allows these two inside a string as they are, but readers that split lines as Unicode says
/// would see the object end there.
void escapeLineSeparators(std::string& json) {
  constexpr std::string_view lineSeparator = "\xe2\x80\xa8";
  constexpr std::string_view paragraphSeparator = "\xe2\x80\xa9";
  constexpr std::array<std::pair<std::string_view, std::string_view>, 2> escapes{
      {{lineSeparator, "\\u2028"}, {paragraphSeparator, "\\u2029"}}};
  for (const auto& [separator, escape] : escapes) {
    std::string escaped;
    std::size_t from = 0;
    for (std::size_t at = json.find(separator); at != std::string::npos;
         at = json.find(separator, from)) {
      escaped.append(json, from, at - from).append(escape);
      from = at + separator.size();
    }
    if (from > 0) {
      json = escaped.append(json, from);
    }
  }
}

}  // namespace

std::string jsonLine(const nlohmann::ordered_json& value) {
  std::string json = value.dump();
  escapeLineSeparators(json);
  return json + '\n';
}

}  // namespace RadiusPacketTool
