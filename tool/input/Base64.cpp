#include "tool/input/Base64.h"

#include <algorithm>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "Verda/Escape.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

constexpr unsigned bitsPerDigit = 6;
constexpr unsigned bitsPerByte = 8;
constexpr std::size_t digitsPerGroup = 4;
constexpr std::string_view sharedDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::string_view usualDigits = "+/";
constexpr std::string_view urlDigits = "-_";

class Base64Parser {
 public:
  PacketList parse(std::string_view text) {
    for (const char c : text) {
      take(c);
    }
    endPacket();
    return std::move(packets_);
  }

 private:
  [[noreturn]] void refuse(const std::string& why) const { throw BadHex(line_, why); }

  void take(char c) {
    if (c == '\n') {
      if (lineIsBlank_) {
        endPacket();
      }
      lineIsBlank_ = true;
      ++line_;
    } else if (c == ' ' || (c >= '\t' && c <= '\r')) {
      return;
    } else if (c == '=') {
      lineIsBlank_ = false;
      takePadding();
    } else {
      lineIsBlank_ = false;
      takeDigit(c);
    }
  }

  void takeDigit(char c) {
    if (padding_ > 0) {
      endPacket();
    }
    const unsigned value = valueOf(c);
    constexpr unsigned byteMask = 0xff;
    bits_ = (bits_ << bitsPerDigit) | value;
    bitCount_ += bitsPerDigit;
    ++digits_;
    if (bitCount_ >= bitsPerByte) {
      bitCount_ -= bitsPerByte;
      addByte(packet_, static_cast<U8>((bits_ >> bitCount_) & byteMask));
      bits_ &= (1U << bitCount_) - 1;
    }
  }

  unsigned valueOf(char c) {
    if (const std::size_t value = sharedDigits.find(c); value != std::string_view::npos) {
      return static_cast<unsigned>(value);
    }
    for (const std::string_view extra : {usualDigits, urlDigits}) {
      const std::size_t value = extra.find(c);
      if (value != std::string_view::npos && (extra_.empty() || extra_ == extra)) {
        extra_ = extra;
        return static_cast<unsigned>(sharedDigits.size() + value);
      }
    }
    refuse(fmt::format("\"{}\" is no letter of this base64",
                       Verda::escaped(std::string_view(&c, 1), "\"\\")));
  }

  void takePadding() {
    ++padding_;
    if (digits_ % digitsPerGroup < 2 || digits_ % digitsPerGroup + padding_ > digitsPerGroup) {
      refuse("a = stands where no padding belongs");
    }
  }

  void endPacket() {
    const bool isCut = digits_ % digitsPerGroup == 1 || bits_ != 0 ||
                       (padding_ > 0 && (digits_ + padding_) % digitsPerGroup != 0);
    if (isCut) {
      refuse("the base64 ends within a byte");
    }
    if (!packet_.empty()) {
      packets_.push_back(std::exchange(packet_, {}));
    }
    digits_ = 0;
    padding_ = 0;
    bitCount_ = 0;
  }

  PacketList packets_;
  std::vector<U8> packet_;
  unsigned bits_ = 0;
  unsigned bitCount_ = 0;
  std::size_t digits_ = 0;   // of the packet
  std::size_t padding_ = 0;  // behind them
  std::string_view extra_;   // the last two letters, once either was seen
  bool lineIsBlank_ = true;
  std::size_t line_ = 1;
};

}  // namespace

PacketList parseBase64(std::string_view text) {
  return Base64Parser().parse(text);
}

std::optional<PacketList> base64Of(std::string_view text) {
  try {
    PacketList packets = parseBase64(text);
    const bool isMeant = !packets.empty() && std::ranges::all_of(packets, beginsWithPacket);
    return isMeant ? std::optional(std::move(packets)) : std::nullopt;
  } catch (const BadHex&) {
    return std::nullopt;
  }
}

}  // namespace RadiusPacketTool
