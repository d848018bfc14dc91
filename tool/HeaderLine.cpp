#include "tool/HeaderLine.h"

#include <limits>
#include <utility>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/CodeText.h"
#include "tool/DecimalText.h"
#include "tool/HexText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using Verda::U32;
using Verda::U8;

namespace {

constexpr std::string_view idField = ", id ";
constexpr std::string_view lengthField = ", length ";
constexpr std::string_view authenticatorField = ", authenticator ";

/// Takes a field off the front of a line: its value ends at white space or a comma.
std::optional<std::string_view> takeField(std::string_view field, std::string_view& line) {
  if (!line.starts_with(field)) {
    return std::nullopt;
  }
  const std::string_view rest = line.substr(field.size());
  const std::string_view value = rest.substr(0, rest.find_first_of(" ,"));
  line = rest.substr(value.size());
  return value;
}

}  // namespace

bool looksLikeHeaderLine(std::string_view line) {
  const std::size_t comma = line.find_first_of(", =");
  return comma != std::string_view::npos && line.substr(comma).starts_with(idField);
}

std::optional<HeaderLine> headerLineOf(std::string_view line) {
  const std::string_view codeText = line.substr(0, line.find(','));
  std::string_view rest = line.substr(codeText.size());
  const std::optional<U8> code = codeOf(codeText);
  const std::optional<std::string_view> idText = takeField(idField, rest);
  const std::optional<U32> id =
      idText.has_value() ? decimalOf(*idText, std::numeric_limits<U8>::max()) : std::nullopt;
  if (!code.has_value() || !id.has_value()) {
    return std::nullopt;
  }
  HeaderLine header{.code = *code, .id = static_cast<U8>(*id), .authenticator = {}};
  takeField(lengthField, rest);
  if (const std::optional<std::string_view> digits = takeField(authenticatorField, rest)) {
    std::optional<std::vector<U8>> bytes = bytesOfHex(*digits);
    if (!bytes.has_value() || bytes->size() != PacketConstants::authLength()) {
      return std::nullopt;
    }
    header.authenticator = *std::move(bytes);
  }
  return rest.empty() || rest.starts_with(',') || rest.starts_with(" (") ? std::optional(header)
                                                                         : std::nullopt;
}

}  // namespace RadiusPacketTool
