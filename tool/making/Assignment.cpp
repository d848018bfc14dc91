#include "tool/making/Assignment.h"

namespace RadiusPacketTool {
namespace {

constexpr std::string_view whiteSpace = " \t\v\f\r";

}  // namespace

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(whiteSpace);
  if (begin == std::string_view::npos) {
    return {};
  }
  return text.substr(begin, text.find_last_not_of(whiteSpace) - begin + 1);
}

std::optional<Assignment> assignmentOf(std::string_view text) {
  const std::size_t equals = text.find('=');
  const std::string_view name = trimmed(text.substr(0, equals));
  if (name.empty() || name.find_first_of(whiteSpace) != std::string_view::npos) {
    return std::nullopt;
  }
  Assignment assignment{.name = std::string(name), .value = std::nullopt};
  if (equals != std::string_view::npos) {
    const std::string_view value = trimmed(text.substr(equals + 1));
    if (!value.empty()) {
      assignment.value = value;
    }
  }
  return assignment;
}

}  // namespace RadiusPacketTool
