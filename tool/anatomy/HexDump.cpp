#include "tool/anatomy/HexDump.h"

#include <algorithm>

#include <fmt/format.h>

#include "tool/text/ControlByte.h"
#include "tool/text/HexText.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

using ByteView = std::span<const U8>;

constexpr std::size_t dumpWidth = 16;
constexpr std::size_t dumpHalf = 8;
/// A dump of no more lines is shown whole.
constexpr std::size_t shortDump = 12;
/// How many lines are shown in front of and behind the marked ones.
constexpr std::size_t linesAround = 2;

bool isPrintable(U8 byte) {
  constexpr U8 firstBeyondAscii = 0x80;
  return byte < firstBeyondAscii && !isControl(static_cast<char>(byte));
}

/// One dump.
class Dump {
 public:
  Dump(ByteView bytes, const MarkedBytes& marked)
      : bytes_(bytes),
        marked_(marked),
        size_(std::max(bytes.size(), marked.offset + marked.length)) {}

  std::string text() {
    const std::size_t lines = (size_ + dumpWidth - 1) / dumpWidth;
    std::size_t first = 0;
    std::size_t end = lines;
    if (lines > shortDump) {
      const std::size_t firstMarked = marked_.offset / dumpWidth;
      first = firstMarked - std::min(firstMarked, linesAround);
      end = std::min(lines, endOfMarked() + linesAround);
    }
    addGap(first > 0);
    for (std::size_t line = first; line < end; ++line) {
      addLine(line * dumpWidth);
    }
    addGap(end < lines);
    return text_;
  }

 private:
  /// The line behind the last marked one.
  std::size_t endOfMarked() const {
    return (marked_.offset + marked_.length + dumpWidth - 1) / dumpWidth;
  }

  bool isMarked(std::size_t offset) const {
    return offset >= marked_.offset && offset - marked_.offset < marked_.length;
  }

  /// Says that there are lines which are not shown.
  void addGap(bool isThere) { text_ += isThere ? "  ....\n" : ""; }

  void addLine(std::size_t from) {
    const std::size_t end = std::min(size_, from + dumpWidth);
    std::string digits;
    std::string marks;
    std::string characters;
    bool hasMarks = false;
    for (std::size_t at = from; at < end; ++at) {
      const std::string_view gap = at == from ? "" : (at - from) % dumpHalf == 0 ? "  " : " ";
      const bool marked = isMarked(at);
      digits += gap;
      digits += at < bytes_.size() ? hexText(bytes_.subspan(at, 1)) : "--";
      marks += gap;
      marks += marked ? "^^" : "  ";
      characters += at >= bytes_.size()       ? ' '
                    : isPrintable(bytes_[at]) ? static_cast<char>(bytes_[at])
                                              : '.';
      hasMarks = hasMarks || marked;
    }
    constexpr int digitsWidth = 3 * dumpWidth;
    add(fmt::format("  {:04x}  {:<{}}  {}", from, digits, digitsWidth, characters));
    if (hasMarks) {
      add(fmt::format("        {}", marks));
    }
  }

  void add(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    text_ += line + '\n';
  }

  ByteView bytes_;
  const MarkedBytes& marked_;
  std::size_t size_;
  std::string text_;
};

}  // namespace

std::string hexDump(ByteView bytes, const MarkedBytes& marked) {
  return Dump(bytes, marked).text();
}

}  // namespace RadiusPacketTool
