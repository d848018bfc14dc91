#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tool/making/Assignment.h"
#include "tool/making/HeaderLine.h"
#include "tool/text/BadLine.h"

namespace RadiusPacketTool {

/// A text that does not describe packets.
class BadText : public BadLine {
 public:
  using BadLine::BadLine;
};

/// One attribute of a packet in text form.
struct AttributeLine {
  std::size_t line = 0;  ///< from 1
  Assignment assignment;
};

/// One packet in text form.
struct PacketText {
  std::size_t line = 0;  ///< its first, from 1
  std::optional<HeaderLine> header;
  std::vector<AttributeLine> attributes;
};

/// Reads packets in text form, as they are printed: a header line, which may be missing, and a line
/// for each attribute. The text comes in pieces.
/// - A blank line separates packets, a line of nothing but white space too.
/// - A line that begins with `#` is a comment; it is not blank.
/// - The verdict line of a Status-Server packet, behind its header line, is passed over.
///
/// What the lines say of attributes is not looked at here.
class PacketTextReader {
 public:
  /// Reads on. Throws `BadText` for the first line that is none of these, for one that is longer
  /// than any attribute needs, and when a packet has more attributes than one has room for.
  void take(std::string_view piece);

  /// Ends the text and returns its packets. Throws `BadText` as `take`.
  std::vector<PacketText> finish();

 private:
  void endLine();
  void takeLine(std::string_view text);
  void takeAttribute(std::string_view text);

  std::vector<PacketText> packets_;
  std::optional<PacketText> packet_;
  std::string text_;  ///< of the line so far
  std::size_t line_ = 1;
  bool behindHeader_ = false;
};

}  // namespace RadiusPacketTool
