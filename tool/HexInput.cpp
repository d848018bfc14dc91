#include "tool/HexInput.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "Verda/Escape.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

bool isWhiteSpace(char c) {
  return whiteSpace.find(c) != std::string_view::npos;
}

std::optional<U8> digitValue(char c) {
  constexpr int ten = 10;
  if (c >= '0' && c <= '9') {
    return static_cast<U8>(c - '0');
  }
  if (c >= 'a' && c <= 'f') {
    return static_cast<U8>(c - 'a' + ten);
  }
  if (c >= 'A' && c <= 'F') {
    return static_cast<U8>(c - 'A' + ten);
  }
  return std::nullopt;
}

bool isHexPrefix(std::string_view text) {
  return text.starts_with("0x") || text.starts_with("0X");
}

/// Puts packets together from the lines of a text.
class HexReader {
 public:
  void takeLine(std::string_view line) {
    ++line_;
    if (std::ranges::all_of(line, isWhiteSpace)) {
      endPacket();
      return;
    }
    line = line.substr(0, line.find('#'));
    while (!line.empty()) {
      const bool isPrefix = !highDigit_.has_value() && isHexPrefix(line);
      if (!isPrefix) {
        takeCharacter(line.front());
      }
      line.remove_prefix(isPrefix ? 2 : 1);
    }
  }

  std::vector<std::vector<U8>> finish() {
    endPacket();
    return std::move(packets_);
  }

 private:
  void takeCharacter(char c) {
    if (isWhiteSpace(c) || c == ':') {
      return;
    }
    const std::optional<U8> digit = digitValue(c);
    if (!digit.has_value()) {
      throw BadHex(line_, fmt::format("\"{}\" is no hex digit",
                                      Verda::escaped(std::string_view(&c, 1), "\"\\")));
    }
    takeDigit(*digit);
  }

  void takeDigit(U8 digit) {
    constexpr unsigned nibbleBits = 4;
    lastDigitLine_ = line_;
    if (highDigit_.has_value()) {
      bytes_.push_back(static_cast<U8>((*highDigit_ << nibbleBits) | digit));
      highDigit_.reset();
    } else {
      highDigit_ = digit;
    }
  }

  void endPacket() {
    if (highDigit_.has_value()) {
      throw BadHex(lastDigitLine_, "the packet ends with half a byte: an odd number of hex digits");
    }
    if (!bytes_.empty()) {
      packets_.push_back(std::exchange(bytes_, {}));
    }
  }

  std::vector<std::vector<U8>> packets_;
  std::vector<U8> bytes_;
  std::optional<U8> highDigit_;
  std::size_t line_ = 0;
  std::size_t lastDigitLine_ = 0;
};

}  // namespace

std::vector<std::vector<U8>> parseHex(std::string_view text) {
  HexReader reader;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    reader.takeLine(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return reader.finish();
}

}  // namespace RadiusPacketTool
