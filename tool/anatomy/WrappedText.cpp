#include "tool/anatomy/WrappedText.h"

#include <fmt/format.h>

#include "Verda/Escape.h"
#include "Verda/Types.h"

namespace RadiusPacketTool {
namespace {

/// Whether a byte of UTF-8 goes on with the character in front of it.
bool isContinuation(char c) {
  constexpr Verda::U8 mask = 0xC0;
  constexpr Verda::U8 mark = 0x80;
  return (static_cast<Verda::U8>(c) & mask) == mark;
}

/// How many bytes the first characters of a text have.
std::size_t bytesOfFirst(std::string_view text, std::size_t characters) {
  std::size_t at = 0;
  while (at < text.size() && (isContinuation(text[at]) || characters-- > 0)) {
    ++at;
  }
  return at;
}

}  // namespace

std::vector<std::string> wrapped(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    std::string_view line = text.substr(0, bytesOfFirst(text, width));
    const std::size_t blank = line.size() < text.size() ? line.rfind(' ') : std::string_view::npos;
    const bool breaksAtBlank = blank != std::string_view::npos && blank >= line.size() / 2;
    if (breaksAtBlank) {
      line = line.substr(0, blank);
    }
    lines.emplace_back(line);
    text.remove_prefix(line.size() + (breaksAtBlank ? 1 : 0));
  }
  return lines;
}

std::vector<std::string> cut(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    std::string_view line = text.substr(0, bytesOfFirst(text, width));
    const std::size_t last = line.find_last_not_of(' ');
    if (line.size() < text.size() && last != std::string_view::npos) {
      line = line.substr(0, last + 1);
    }
    lines.emplace_back(line);
    text.remove_prefix(line.size());
  }
  return lines;
}

std::string labelled(std::string_view label, std::string_view text) {
  constexpr std::size_t labelWidth = 11;
  std::string lines;
  for (const std::string& line : wrapped(Verda::escaped(text), lineWidth - labelWidth)) {
    lines += fmt::format("{:<{}}{}\n", label, labelWidth, line);
    label = "";
  }
  return lines;
}

}  // namespace RadiusPacketTool
