#include "tool/input/HexInput.h"

#include <utility>

#include <fmt/format.h>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/text/ControlByte.h"
#include "tool/text/HexText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using Verda::U8;

namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

bool isWhiteSpace(char c) {
  return whiteSpace.find(c) != std::string_view::npos;
}

}  // namespace

void HexReader::take(std::string_view piece) {
  for (const char c : piece) {
    if (!isHexText_) {
      return;
    }
    takeCharacter(c);
  }
}

std::vector<std::vector<U8>> HexReader::finish() {
  endPacket();
  if (fault_.has_value()) {
    throw BadHex(*fault_);
  }
  return std::move(packets_);
}

void HexReader::takeCharacter(char c) {
  const bool zeroWasLast = std::exchange(zeroIsLast_, false);
  if (c == '\n') {
    endLine();
    return;
  }
  if (isWhiteSpace(c)) {
    return;
  }
  lineIsBlank_ = false;
  if (inComment_) {
    if (commentBytes_ == CommentBytes::text && isControl(c)) {
      refuseCharacter(c, "is a control byte");
    }
  } else if (c == '#') {
    inComment_ = true;
  } else if (zeroWasLast && (c == 'x' || c == 'X')) {
    highDigit_.reset();
  } else {
    takePacketCharacter(c);
  }
}

void HexReader::takePacketCharacter(char c) {
  if (c == ':') {
    return;
  }
  if (const std::optional<U8> digit = hexDigitValue(c)) {
    takeDigit(*digit);
  } else {
    refuseCharacter(c, "is no hex digit");
  }
}

void HexReader::takeDigit(U8 digit) {
  constexpr unsigned nibbleBits = 4;
  lastDigitLine_ = line_;
  if (!highDigit_.has_value()) {
    highDigit_ = digit;
    zeroIsLast_ = digit == 0;
    return;
  }
  if (bytes_.size() < PacketConstants::maxLength()) {
    bytes_.push_back(static_cast<U8>((*highDigit_ << nibbleBits) | digit));
  }
  highDigit_.reset();
}

void HexReader::endLine() {
  if (lineIsBlank_) {
    endPacket();
  }
  lineIsBlank_ = true;
  inComment_ = false;
  ++line_;
}

void HexReader::endPacket() {
  if (highDigit_.has_value()) {
    highDigit_.reset();
    refuse(lastDigitLine_, "the packet ends with half a byte: an odd number of hex digits");
  }
  if (!bytes_.empty()) {
    packets_.push_back(std::exchange(bytes_, {}));
  }
}

void HexReader::refuse(std::size_t line, const std::string& message) {
  if (!fault_.has_value()) {
    fault_.emplace(line, message);
  }
}

void HexReader::refuseCharacter(char c, std::string_view why) {
  isHexText_ = false;
  refuse(line_, fmt::format("\"{}\" {}", Verda::escaped(std::string_view(&c, 1), "\"\\"), why));
}

std::vector<std::vector<U8>> parseHex(std::string_view text) {
  HexReader reader;
  reader.take(text);
  return reader.finish();
}

}  // namespace RadiusPacketTool
