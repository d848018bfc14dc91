#include "tool/making/HeaderLine.h"

#include <limits>
#include <utility>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/capture/DatagramText.h"
#include "tool/text/CodeText.h"
#include "tool/text/DecimalText.h"
#include "tool/text/HexText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using Verda::U16;
using Verda::U32;
using Verda::U8;

namespace {

constexpr std::string_view fieldFront = ", ";
constexpr std::string_view idField = ", id ";
constexpr std::string_view lengthField = ", length ";
constexpr std::string_view authenticatorField = ", authenticator ";
constexpr std::string_view messageAuthenticatorField = ", Message-Authenticator";
constexpr std::string_view packetField = ", packet ";

bool takeText(std::string_view text, std::string_view& line) {
  const bool isThere = line.starts_with(text);
  line.remove_prefix(isThere ? text.size() : 0);
  return isThere;
}

/// Takes a field off the front of a line: its value ends at white space or a comma.
std::optional<std::string_view> takeField(std::string_view field, std::string_view& line) {
  if (!takeText(field, line)) {
    return std::nullopt;
  }
  const std::string_view value = line.substr(0, line.find_first_of(" ,"));
  line.remove_prefix(value.size());
  return value;
}

/// Takes the field of a number off the front of a line. Returns false when it is there without one.
bool takeNumber(std::string_view field, U32 greatest, std::string_view& line) {
  const std::optional<std::string_view> text = takeField(field, line);
  return !text.has_value() || decimalOf(*text, greatest).has_value();
}

/// Takes what a check found out, in brackets, off the front of a line.
bool takeCheck(std::string_view& line) {
  return takeText(" (unchecked)", line) || takeText(" (verified)", line) ||
         takeText(" (wrong)", line);
}

/// Takes what carried the packet off the front of a line; nothing when it does not stand there.
std::optional<Datagram> takeDatagram(std::string_view& line) {
  const std::string_view fields = line.substr(0, line.find(packetField));
  if (!fields.starts_with(fieldFront)) {
    return std::nullopt;
  }
  const std::optional<Datagram> datagram = datagramOf(fields.substr(fieldFront.size()));
  line.remove_prefix(datagram.has_value() ? fields.size() : 0);
  return datagram;
}

/// Whether nothing stands at the end of a line but what is printed there: where the packet was
/// found. The name of a file may hold anything.
bool isPrintedEnd(std::string_view line) {
  return line.empty() || (line.starts_with(packetField) &&
                          takeNumber(packetField, std::numeric_limits<U32>::max(), line) &&
                          line.starts_with(" of "));
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
  HeaderLine header{.code = *code, .id = static_cast<U8>(*id), .authenticator = {}, .datagram = {}};
  if (!takeNumber(lengthField, std::numeric_limits<U16>::max(), rest)) {
    return std::nullopt;
  }
  if (const std::optional<std::string_view> digits = takeField(authenticatorField, rest)) {
    std::optional<std::vector<U8>> bytes = bytesOfHex(*digits);
    if (!bytes.has_value() || bytes->size() != PacketConstants::authLength()) {
      return std::nullopt;
    }
    header.authenticator = *std::move(bytes);
    takeCheck(rest);
  }
  if (takeText(messageAuthenticatorField, rest) && !takeCheck(rest)) {
    return std::nullopt;
  }
  header.datagram = takeDatagram(rest);
  return isPrintedEnd(rest) ? std::optional(header) : std::nullopt;
}

}  // namespace RadiusPacketTool
