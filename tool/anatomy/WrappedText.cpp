#include "tool/anatomy/WrappedText.h"

#include "Verda/Types.h"

namespace RadiusPacketTool {
namespace {

/// Whether a byte of UTF-8 goes on with the character in front of it.
bool isContinuation(char c) {
  constexpr Verda::U8 mask = 0xC0;
  constexpr Verda::U8 mark = 0x80;
  return (static_cast<Verda::U8>(c) & mask) == mark;
}

/// How many bytes of the text make the next line.
std::size_t nextLine(std::string_view text, std::size_t width) {
  std::size_t characters = 0;
  std::size_t blankEnd = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (isContinuation(text[at])) {
      continue;
    }
    if (characters == width) {
      return blankEnd > 0 ? blankEnd : at;
    }
    ++characters;
    if (text[at] == ' ' && characters > width / 2) {
      blankEnd = at + 1;
    }
  }
  return text.size();
}

}  // namespace

std::vector<std::string> wrapped(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t length = nextLine(text, width);
    const bool endsWithBlank = length < text.size() && text[length - 1] == ' ';
    lines.emplace_back(text.substr(0, length - (endsWithBlank ? 1 : 0)));
    text.remove_prefix(length);
  }
  return lines;
}

}  // namespace RadiusPacketTool
