#include "tool/QuotedText.h"

#include <optional>

#include "tool/ControlByte.h"
#include "tool/HexText.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

constexpr std::size_t hexDigits = 2;

/// Takes an escape off the front of a text, from behind its backslash.
U8 takeEscape(std::string_view& text) {
  const char kind = text.empty() ? '\0' : text.front();
  text.remove_prefix(text.empty() ? 0 : 1);
  switch (kind) {
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case '"':
    case '\\':
      return static_cast<U8>(kind);
    case 'x': {
      const std::optional<std::vector<U8>> byte = bytesOfHex(text.substr(0, hexDigits));
      if (byte.has_value() && byte->size() == 1) {
        text.remove_prefix(hexDigits);
        return byte->front();
      }
      throw BadAttribute("behind \\x stand two hex digits");
    }
    default:
      throw BadAttribute("the escapes are \\n, \\r, \\t, \\\\, \\\" and \\xNN");
  }
}

}  // namespace

std::vector<U8> bytesOfQuoted(std::string_view quoted) {
  if (!quoted.starts_with('"')) {
    throw BadAttribute("text stands in quotes");
  }
  std::vector<U8> bytes;
  std::string_view rest = quoted.substr(1);
  while (!rest.starts_with('"')) {
    if (rest.empty()) {
      throw BadAttribute("the closing quote is missing");
    }
    const char c = rest.front();
    rest.remove_prefix(1);
    if (isControl(c)) {
      throw BadAttribute("a control byte stands as its escape");
    }
    bytes.push_back(c == '\\' ? takeEscape(rest) : static_cast<U8>(c));
  }
  if (rest.size() != 1) {
    throw BadAttribute("there is more behind the closing quote");
  }
  return bytes;
}

}  // namespace RadiusPacketTool
