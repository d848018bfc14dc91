#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "Verda/Types.h"

#include "tool/capture/Datagram.h"

namespace RadiusPacketTool {

/// What the first line of a packet in text form says that a build can use.
struct HeaderLine {
  Verda::U8 code = 0;
  Verda::U8 id = 0;
  std::vector<Verda::U8> authenticator;  ///< 16 bytes, or empty when the line gives none
  /// What carried the packet, when the line says so: it tells which request a response answers.
  std::optional<Datagram> datagram = std::nullopt;

  bool operator==(const HeaderLine&) const = default;
};

/// Whether a line can only be meant as a header line: it begins with a word and `, id `, which no
/// attribute does.
bool looksLikeHeaderLine(std::string_view line);

/// Reads `CODE, id N[, length N][, authenticator HEX]`, behind which may stand what is printed
/// there of checks and of where the packet was found. Nothing when the line is none, or anything
/// else stands behind: that would be a field with a slip in it.
std::optional<HeaderLine> headerLineOf(std::string_view line);

}  // namespace RadiusPacketTool
