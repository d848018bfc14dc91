#include "tool/input/ByteLiterals.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <utility>

#include "tool/text/DecimalText.h"
#include "tool/text/HexText.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

constexpr std::string_view hexFront = "0x";

bool isWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isWordCharacter(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

std::optional<U8> byteOfNumber(std::string_view word) {
  if (!word.starts_with(hexFront) && !word.starts_with("0X")) {
    const bool isOctal = word.size() > 1 && word.starts_with('0');
    const auto number = decimalOf(word, std::numeric_limits<U8>::max());
    return number.has_value() && !isOctal ? std::optional(static_cast<U8>(*number)) : std::nullopt;
  }
  word.remove_prefix(hexFront.size());
  const auto bytes = bytesOfHex(word.size() == 1 ? "0" + std::string(word) : std::string(word));
  return bytes.has_value() && bytes->size() == 1 ? std::optional(bytes->front()) : std::nullopt;
}

class LiteralParser {
 public:
  explicit LiteralParser(std::string_view text) : text_(text), rest_(text) {}

  PacketList parse() {
    while (!rest_.empty()) {
      if (!skipComment()) {
        parseNext();
      }
    }
    endString();
    return arrays_.empty() ? std::move(strings_) : std::move(arrays_);
  }

  /// Whether an array began with a hex number, even if it went wrong behind that.
  bool hexArraySeen() const { return hexArraySeen_; }

 private:
  [[noreturn]] void refuse(const std::string& why) const {
    const std::string_view front = text_.substr(0, text_.size() - rest_.size());
    throw BadHex(static_cast<std::size_t>(std::ranges::count(front, '\n')) + 1, why);
  }

  char takeCharacter() {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

  void skipTo(std::string_view end) {
    const std::size_t at = rest_.find(end);
    rest_.remove_prefix(at == std::string_view::npos ? rest_.size() : at + end.size());
  }

  /// Skips a comment. Returns whether there was one. The newline behind it stays.
  bool skipComment() {
    if (rest_.starts_with("/*")) {
      skipTo("*/");
    } else if (rest_.starts_with("//") || rest_.starts_with('#')) {
      rest_.remove_prefix(std::min(rest_.find('\n'), rest_.size()));
    } else {
      return false;
    }
    lineIsBlank_ = false;
    return true;
  }

  void parseNext() {
    const char c = takeCharacter();
    if (isWhiteSpace(c)) {
      takeWhiteSpace(c);
      return;
    }
    lineIsBlank_ = false;
    if (c == '{') {
      endString();
      parseArray();
    } else if (c == '"' || c == '\'') {
      parseString(c);
    } else if (c == '\\') {
      takeEscape(true);
    } else {
      endString();
    }
  }

  void takeWhiteSpace(char c) {
    if (c != '\n') {
      return;
    }
    if (lineIsBlank_) {
      endString();
    }
    lineIsBlank_ = true;
  }

  void endString() {
    if (!string_.empty()) {
      strings_.push_back(std::exchange(string_, {}));
    }
  }

  void skipWhiteSpaceAndComments() {
    while (!rest_.empty() && (isWhiteSpace(rest_.front()) || skipComment())) {
      const bool isSpace = !rest_.empty() && isWhiteSpace(rest_.front());
      rest_.remove_prefix(isSpace ? 1 : 0);
    }
  }

  void parseArray() {
    std::vector<U8> array;
    skipWhiteSpaceAndComments();
    hexArraySeen_ = hexArraySeen_ || rest_.starts_with(hexFront);
    while (!rest_.starts_with('}')) {
      addByte(array, takeNumber());
      skipWhiteSpaceAndComments();
      if (rest_.starts_with(',')) {
        rest_.remove_prefix(1);
        skipWhiteSpaceAndComments();
      } else if (!rest_.starts_with('}')) {
        refuse(rest_.empty() ? "the array has no end"
                             : "numbers of an array have commas between them");
      }
    }
    rest_.remove_prefix(1);
    if (!array.empty()) {
      arrays_.push_back(std::move(array));
    }
  }

  U8 takeNumber() {
    const auto end = std::ranges::find_if_not(rest_, isWordCharacter);
    const std::string_view word(rest_.begin(), end);
    const std::optional<U8> byte = byteOfNumber(word);
    if (!byte.has_value()) {
      refuse(rest_.empty() ? "the array has no end" : "an array holds numbers from 0 to 255");
    }
    rest_.remove_prefix(word.size());
    return *byte;
  }

  void parseString(char quote) {
    while (!rest_.empty() && rest_.front() != '\n') {
      const char c = takeCharacter();
      if (c == quote) {
        return;
      }
      if (c == '\\') {
        takeEscape(false);
      } else {
        addByte(string_, static_cast<U8>(c));
      }
    }
    refuse("the string has no closing quote");
  }

  /// Takes an escape from behind its backslash. At the end of a line, outside quotes or not, it has
  /// no byte.
  void takeEscape(bool hexOnly) {
    if (rest_.starts_with("\r\n")) {
      rest_.remove_prefix(1);
    }
    if (rest_.empty() || rest_.front() == '\n') {
      rest_.remove_prefix(rest_.empty() ? 0 : 1);
    } else if (rest_.front() == 'x') {
      takeHexEscape();
    } else if (hexOnly) {
      refuse("outside quotes, the escapes are \\xNN");
    } else if (rest_.front() >= '0' && rest_.front() <= '7') {
      takeOctalEscape();
    } else {
      takeLetterEscape();
    }
  }

  void takeHexEscape() {
    constexpr std::size_t digits = 2;
    rest_.remove_prefix(1);
    const auto bytes = bytesOfHex(rest_.substr(0, digits));
    if (!bytes.has_value() || bytes->size() != 1) {
      refuse("behind \\x stand two hex digits");
    }
    rest_.remove_prefix(digits);
    addByte(string_, bytes->front());
  }

  void takeOctalEscape() {
    constexpr std::size_t mostDigits = 3;
    constexpr unsigned octal = 8;
    unsigned value = 0;
    for (std::size_t digits = 0;
         digits < mostDigits && !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '7';
         ++digits) {
      value = value * octal + static_cast<unsigned>(takeCharacter() - '0');
    }
    if (value > std::numeric_limits<U8>::max()) {
      refuse("an octal escape is at most \\377");
    }
    addByte(string_, static_cast<U8>(value));
  }

  void takeLetterEscape() {
    constexpr auto letters = std::to_array<std::pair<char, char>>({{'a', '\a'},
                                                                   {'b', '\b'},
                                                                   {'t', '\t'},
                                                                   {'n', '\n'},
                                                                   {'v', '\v'},
                                                                   {'f', '\f'},
                                                                   {'r', '\r'},
                                                                   {'\\', '\\'},
                                                                   {'\'', '\''},
                                                                   {'"', '"'},
                                                                   {'?', '?'}});
    const auto letter =
        std::ranges::find(letters, rest_.front(), &decltype(letters)::value_type::first);
    if (letter == letters.end()) {
      refuse("no escape of C stands behind this backslash");
    }
    rest_.remove_prefix(1);
    addByte(string_, static_cast<U8>(letter->second));
  }

  std::string_view text_;
  std::string_view rest_;
  PacketList arrays_;
  PacketList strings_;
  std::vector<U8> string_;  // the one that further pieces belong to
  bool lineIsBlank_ = true;
  bool hexArraySeen_ = false;
};

}  // namespace

PacketList parseByteLiterals(std::string_view text) {
  return LiteralParser(text).parse();
}

std::optional<PacketList> byteLiteralsOf(std::string_view text) {
  LiteralParser parser(text);
  PacketList packets;
  try {
    packets = parser.parse();
  } catch (const BadHex&) {
    if (parser.hexArraySeen()) {
      throw;
    }
    return std::nullopt;
  }
  const auto beginsAsPacket = [](const std::vector<U8>& bytes) {
    return plausibleLength(bytes).has_value();
  };
  const bool isMeant = parser.hexArraySeen() || (text.find("\\x") != std::string_view::npos &&
                                                 std::ranges::all_of(packets, beginsAsPacket));
  return isMeant && !packets.empty() ? std::optional(std::move(packets)) : std::nullopt;
}

}  // namespace RadiusPacketTool
