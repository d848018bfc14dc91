#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Verda/Types.h"

#include "tool/text/BadLine.h"

namespace RadiusPacketTool {

/// A text that is not hex.
class BadHex : public BadLine {
 public:
  using BadLine::BadLine;
};

/// What a comment may hold: any bytes, or no control bytes but white space.
enum class CommentBytes : Verda::U8 { any, text };

/// Reads packets written as hex digits, from a text that comes in pieces. A line of nothing but
/// white space separates packets; one that holds a comment does not. Within a packet:
/// - digits pair up whatever white space, line ends and `:` stand between them;
/// - `0x` may stand where a pair begins;
/// - `#` begins a comment that runs to the end of its line.
///
/// What has no digits is no packet. Of a packet longer than the greatest, only so much is kept: the
/// rest is padding, whatever its header says.
class HexReader {
 public:
  explicit HexReader(CommentBytes commentBytes = CommentBytes::any) : commentBytes_(commentBytes) {}

  /// Reads on. Behind the first character that has no place in hex text nothing is looked at.
  void take(std::string_view piece);

  /// Whether all characters so far have their place in hex text; digits that do not pair up do.
  bool isHexText() const { return isHexText_; }

  /// The first fault so far.
  const std::optional<BadHex>& fault() const { return fault_; }

  /// Ends the text and returns its packets. Throws `BadHex` for the first fault.
  std::vector<std::vector<Verda::U8>> finish();

 private:
  void takeCharacter(char c);
  void takePacketCharacter(char c);
  void takeDigit(Verda::U8 digit);
  void endLine();
  void endPacket();
  void refuse(std::size_t line, const std::string& message);
  void refuseCharacter(char c, std::string_view why);

  CommentBytes commentBytes_;
  std::vector<std::vector<Verda::U8>> packets_;
  std::vector<Verda::U8> bytes_;
  std::optional<Verda::U8> highDigit_;
  bool zeroIsLast_ = false;  ///< the first digit of a pair is the 0 right in front: `x` may follow
  bool lineIsBlank_ = true;
  bool inComment_ = false;
  bool isHexText_ = true;
  std::size_t line_ = 1;
  std::size_t lastDigitLine_ = 0;
  std::optional<BadHex> fault_;
};

/// The packets of a whole text. Throws `BadHex`.
std::vector<std::vector<Verda::U8>> parseHex(std::string_view text);

}  // namespace RadiusPacketTool
