#include "tool/input/HexDump.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "tool/input/FrameStart.h"
#include "tool/text/HexText.h"

namespace RadiusPacketTool {

using Verda::U64;
using Verda::U8;

namespace {

constexpr std::size_t mostBytesOfLine = 32;
constexpr std::size_t middleOfLine = 8;

/// What a line of a dump holds.
struct DumpLine {
  U64 offset = 0;
  std::vector<U8> bytes;
  bool hasText = false;    ///< the column of text behind the bytes
  bool isPlain = false;    ///< nothing but digits and single blanks: it may be hex text as well
  bool isSwapped = false;  ///< as hexdump writes without -C, which swaps bytes
};

/// What is wrong with a line that begins as one of a dump.
struct DumpFault {
  std::string text;
};

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}

bool isHexDigit(char c) {
  return hexDigitValue(c).has_value();
}

std::string_view takeWhile(std::string_view& text, bool (*holds)(char)) {
  const auto end = std::find_if_not(text.begin(), text.end(), holds);
  const std::string_view taken(text.begin(), end);
  text.remove_prefix(taken.size());
  return taken;
}

/// Takes a line off the front of a text, and the white space at its end off the line.
std::string_view takeLine(std::string_view& text) {
  std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  while (!line.empty() && (isBlank(line.back()) || line.back() == '\r')) {
    line.remove_suffix(1);
  }
  return line;
}

struct Offset {
  U64 value = 0;
  std::size_t digits = 0;
  bool hasColon = false;
};

/// Takes the offset that a line of a dump begins with; nothing, and the line as it was, for
/// another.
std::optional<Offset> takeOffset(std::string_view& line) {
  constexpr std::size_t fewestDigits = 4;
  constexpr std::size_t mostDigits = 16;
  constexpr unsigned nibbleBits = 4;
  std::string_view rest = line;
  takeWhile(rest, isBlank);
  if (rest.starts_with("0x")) {
    rest.remove_prefix(2);
  }
  const std::string_view digits = takeWhile(rest, isHexDigit);
  Offset offset{.value = 0, .digits = digits.size(), .hasColon = rest.starts_with(':')};
  rest.remove_prefix(offset.hasColon ? 1 : 0);
  const bool isWhole = rest.empty() || isBlank(rest.front());
  if (digits.size() < fewestDigits || digits.size() > mostDigits || !isWhole) {
    return std::nullopt;
  }
  for (const char digit : digits) {
    offset.value = (offset.value << nibbleBits) | *hexDigitValue(digit);
  }
  line = rest;
  return offset;
}

/// Whether a character of the text column may stand for a byte. What has no character of its own is
/// usually a dot; some programs write one for a blank too.
bool mayStandFor(char shown, U8 byte) {
  const bool isPrintable = byte > ' ' && byte <= '~';
  return isPrintable ? shown == static_cast<char>(byte)
                     : byte != ' ' || shown == ' ' || shown == '.';
}

/// Whether `text` is the bytes as text, or the front of it; `closing` may stand behind the last.
bool isTextOf(std::string_view text, const std::vector<U8>& bytes, char closing) {
  const bool isClosed =
      text.size() == bytes.size() + 1 && closing != '\0' && text.back() == closing;
  text.remove_suffix(isClosed ? 1 : 0);
  return text.size() <= bytes.size() &&
         std::equal(text.begin(), text.end(), bytes.begin(), mayStandFor);
}

/// Whether a column, from behind the last byte on, shows the bytes. Where it begins is not known:
/// the text itself may begin with blanks.
bool isTextColumn(std::string_view column, const std::vector<U8>& bytes) {
  for (; !column.empty(); column.remove_prefix(1)) {
    const std::string_view inner = column.substr(1);
    if (isTextOf(column, bytes, '\0') || (column.front() == '|' && isTextOf(inner, bytes, '|')) ||
        (column.front() == '>' && isTextOf(inner, bytes, '<'))) {
      return true;
    }
    if (!isBlank(column.front())) {
      return false;
    }
  }
  return true;
}

/// Takes the bytes of a line off its front; what stays is the column of text.
class BytesTaker {
 public:
  BytesTaker(std::string_view& line, const Offset& offset, DumpLine& taken)
      : line_(line), offset_(offset), taken_(taken) {}

  std::optional<DumpFault> take() {
    taken_.isPlain = !offset_.hasColon;
    while (!line_.empty()) {
      std::string_view rest = line_;
      const std::size_t gap = gapOf(takeWhile(rest, isBlank));
      if (!taken_.bytes.empty() && isEndedBy(gap, rest)) {
        return std::nullopt;
      }
      taken_.isPlain = taken_.isPlain && gap == 1;
      const std::string_view group = takeWhile(rest, isHexDigit);
      if (!rest.empty() && !isBlank(rest.front())) {
        return DumpFault{fmt::format("\"{}\" is no hex digit", rest.front())};
      }
      if (const auto fault = takeGroup(group)) {
        return fault;
      }
      line_ = rest;
    }
    return std::nullopt;
  }

 private:
  /// How wide blanks are; a tab is more than what stands between two bytes.
  static std::size_t gapOf(std::string_view blanks) {
    return blanks.size() + static_cast<std::size_t>(std::ranges::count(blanks, '\t'));
  }

  /// Whether the column of text begins behind these blanks.
  bool isEndedBy(std::size_t gap, std::string_view rest) const {
    if (gap < 2) {
      return false;
    }
    const bool isMiddle = gap == 2 && taken_.bytes.size() == middleOfLine;
    return offset_.hasColon || !isMiddle || rest.starts_with('|');
  }

  std::optional<DumpFault> takeGroup(std::string_view group) {
    constexpr std::size_t swappedOffset = 7;
    constexpr std::size_t swappedGroup = 4;
    if (!offset_.hasColon && offset_.digits == swappedOffset && group.size() == swappedGroup) {
      taken_.isSwapped = true;
      return DumpFault{"this is hexdump without -C, which swaps bytes: use hexdump -C"};
    }
    if (group.size() % 2 != 0) {
      return DumpFault{"half a byte: an odd number of hex digits"};
    }
    if (!offset_.hasColon && group.size() != 2) {
      return DumpFault{"behind an offset without : each byte stands by itself"};
    }
    const std::vector<U8> bytes = *bytesOfHex(group);
    taken_.bytes.insert(taken_.bytes.end(), bytes.begin(), bytes.end());
    if (taken_.bytes.size() > mostBytesOfLine) {
      return DumpFault{fmt::format("a line has at most {} bytes", mostBytesOfLine)};
    }
    return std::nullopt;
  }

  std::string_view& line_;
  const Offset& offset_;
  DumpLine& taken_;
};

using ParsedLine = std::pair<std::optional<DumpLine>, std::optional<DumpFault>>;

/// A line of a dump, or what is wrong with it; neither for a line of another kind.
ParsedLine parseLine(std::string_view line) {
  const std::optional<Offset> offset = takeOffset(line);
  if (!offset.has_value()) {
    return {};
  }
  DumpLine parsed;
  parsed.offset = offset->value;
  if (auto fault = BytesTaker(line, *offset, parsed).take()) {
    return {parsed, std::move(fault)};
  }
  if (!isTextColumn(line, parsed.bytes)) {
    return {parsed, DumpFault{"the text does not show the bytes in front of it"}};
  }
  parsed.hasText = !line.empty();
  return {std::move(parsed), std::nullopt};
}

/// Puts the lines of a dump together.
class DumpParser {
 public:
  void takeLine(std::string_view line) {
    ++line_;
    if (line == "*") {
      isSqueezed_ = true;
      return;
    }
    auto [parsed, fault] = parseLine(line);
    if (fault.has_value()) {
      throw BadHex(line_, fault->text);
    }
    if (parsed.has_value()) {
      takeBytes(*parsed);
    } else {
      lastBytes_.clear();
    }
  }

  PacketList finish() {
    if (isSqueezed_) {
      throw BadHex(line_, "the dump ends with lines left out");
    }
    endPacket();
    return std::move(packets_);
  }

 private:
  void takeBytes(const DumpLine& line) {
    if (line.offset == 0 && !line.bytes.empty() && !isSqueezed_) {
      endPacket();
      firstLine_ = line_;
    } else if (std::exchange(isSqueezed_, false)) {
      repeatLastLine(line.offset);
    } else if (line.offset != size_) {
      throw BadHex(line_, fmt::format("the offset is {:04x}, but the bytes in front of it end at "
                                      "{:04x}",
                                      line.offset, size_));
    }
    checkText(line);
    for (const U8 byte : line.bytes) {
      addByte(packet_, byte);
    }
    size_ += line.bytes.size();
    lastBytes_ = line.bytes;
  }

  /// All lines have a column of text, or none has: without it, nobody could tell text that looks
  /// like bytes, and stands too near to them, from bytes. Blanks at the end of a line may be
  /// missing.
  void checkText(const DumpLine& line) {
    const bool isShown = std::ranges::any_of(line.bytes, [](U8 byte) { return byte != ' '; });
    if (!isShown) {
      return;
    }
    if (hasText_.value_or(line.hasText) != line.hasText) {
      throw BadHex(line_, line.hasText ? "the lines in front of this one have no text"
                                       : "the text behind the bytes is missing");
    }
    hasText_ = line.hasText;
  }

  /// Fills up to `offset` with lines like the last one.
  void repeatLastLine(U64 offset) {
    if (lastBytes_.empty() || offset <= size_ || (offset - size_) % lastBytes_.size() != 0) {
      throw BadHex(line_, "the lines left out in front of this offset do not fill up to it");
    }
    const std::size_t greatest = RadiusPacketParser::PacketConstants::maxLength();
    for (U64 at = size_; at < std::min<U64>(offset, greatest); at += lastBytes_.size()) {
      for (const U8 byte : lastBytes_) {
        addByte(packet_, byte);
      }
    }
    size_ = offset;
  }

  void endPacket() {
    if (!beginsWithPacket(packet_) && beginsWithFrame(packet_)) {
      throw BadHex(firstLine_,
                   "the headers of a frame stand in front of the packet: give the bytes of the UDP "
                   "payload alone, or the capture");
    }
    if (!packet_.empty()) {
      packets_.push_back(std::exchange(packet_, {}));
    }
    size_ = 0;
    lastBytes_.clear();
  }

  PacketList packets_;
  std::vector<U8> packet_;       // what is kept of it
  U64 size_ = 0;                 // all of it
  std::vector<U8> lastBytes_;    // those of the last line
  std::optional<bool> hasText_;  // of the lines so far
  bool isSqueezed_ = false;
  std::size_t line_ = 0;
  std::size_t firstLine_ = 1;
};

}  // namespace

bool isHexDump(std::string_view text, bool isHexText) {
  std::optional<DumpLine> first;
  while (!text.empty()) {
    const auto [line, fault] = parseLine(takeLine(text));
    if (!line.has_value()) {
      continue;
    }
    if (first.has_value()) {
      return !fault.has_value() && line->offset == first->bytes.size();
    }
    if (line->isSwapped) {
      return true;
    }
    if (line->offset != 0 || line->bytes.empty() || (isHexText && fault.has_value())) {
      return false;
    }
    if (!isHexText || !line->isPlain) {
      return true;
    }
    first = line;
  }
  return false;
}

PacketList parseHexDump(std::string_view text) {
  DumpParser parser;
  while (!text.empty()) {
    parser.takeLine(takeLine(text));
  }
  return parser.finish();
}

}  // namespace RadiusPacketTool
