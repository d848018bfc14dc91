#include "Verda/Escape.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <system_error>

#include <fmt/format.h>

#include "Verda/Types.h"

namespace Verda {
namespace {

U8 byteAt(std::string_view text, std::size_t at) {
  return static_cast<U8>(text[at]);
}

bool isContinuation(U8 byte) {
  return (byte & 0xC0U) == 0x80U;
}

/// How many bytes the well-formed UTF-8 character at the front of `text` has (RFC 3629); 0 when
/// there is none.
std::size_t utf8Length(std::string_view text) {
  const U8 lead = byteAt(text, 0);
  if (lead < 0x80) {
    return 1;
  }
  std::size_t length = 0;
  U8 secondLow = 0x80;
  U8 secondHigh = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    secondLow = lead == 0xE0 ? 0xA0 : 0x80;   // shorter forms exist below
    secondHigh = lead == 0xED ? 0x9F : 0xBF;  // surrogates above
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    secondLow = lead == 0xF0 ? 0x90 : 0x80;
    secondHigh = lead == 0xF4 ? 0x8F : 0xBF;  // beyond U+10FFFF above
  }
  if (length == 0 || text.size() < length) {
    return 0;
  }
  const U8 second = byteAt(text, 1);
  if (second < secondLow || second > secondHigh) {
    return 0;
  }
  for (std::size_t at = 2; at < length; ++at) {
    if (!isContinuation(byteAt(text, at))) {
      return 0;
    }
  }
  return length;
}

/// Whether the character turns the direction of what stands behind it, so that a line reads as what
/// it is not.
bool turnsDirection(std::string_view character) {
  constexpr std::array<std::string_view, 12> turning{"\u061c", "\u200e", "\u200f", "\u202a",
                                                     "\u202b", "\u202c", "\u202d", "\u202e",
                                                     "\u2066", "\u2067", "\u2068", "\u2069"};
  return character.size() > 1 && std::ranges::find(turning, character) != turning.end();
}

bool isControl(std::string_view character) {
  const U8 lead = byteAt(character, 0);
  const bool isC1 = character.size() == 2 && lead == 0xC2 && byteAt(character, 1) < 0xA0;
  return lead < 0x20 || lead == 0x7F || isC1 || turnsDirection(character);
}

void escapeByteTo(std::string& out, U8 byte) {
  switch (byte) {
    case '\n':
      out += "\\n";
      break;
    case '\r':
      out += "\\r";
      break;
    case '\t':
      out += "\\t";
      break;
    default:
      fmt::format_to(std::back_inserter(out), "\\x{:02x}", byte);
  }
}

}  // namespace

void escapeTo(std::string& out, std::string_view text, std::string_view alsoEscaped) {
  while (!text.empty()) {
    const std::size_t length = utf8Length(text);
    const std::string_view character = text.substr(0, length == 0 ? 1 : length);
    if (length == 0 || isControl(character)) {
      for (const char byte : character) {
        escapeByteTo(out, static_cast<U8>(byte));
      }
    } else {
      if (length == 1 && alsoEscaped.find(character[0]) != std::string_view::npos) {
        out += '\\';
      }
      out += character;
    }
    text.remove_prefix(character.size());
  }
}

std::optional<char> takeEscape(std::string_view& text, std::string_view alsoEscaped) {
  constexpr std::size_t hexDigits = 2;
  constexpr int hexBase = 16;
  if (text.empty()) {
    return std::nullopt;
  }
  const char kind = text.front();
  std::optional<char> byte;
  std::size_t length = 1;
  if (kind == 'n') {
    byte = '\n';
  } else if (kind == 'r') {
    byte = '\r';
  } else if (kind == 't') {
    byte = '\t';
  } else if (alsoEscaped.find(kind) != std::string_view::npos) {
    byte = kind;
  } else if (kind == 'x' && text.size() > hexDigits) {
    U8 number = 0;
    const char* const digits = text.data() + 1;
    const auto [end, error] = std::from_chars(digits, digits + hexDigits, number, hexBase);
    if (error == std::errc() && end == digits + hexDigits) {
      byte = static_cast<char>(number);
      length += hexDigits;
    }
  }
  text.remove_prefix(byte.has_value() ? length : 0);
  return byte;
}

std::string escaped(std::string_view text, std::string_view alsoEscaped) {
  std::string out;
  escapeTo(out, text, alsoEscaped);
  return out;
}

}  // namespace Verda
