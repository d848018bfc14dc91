#include "tool/text/QuotedText.h"

#include <optional>

#include "Verda/Escape.h"

#include "tool/text/ControlByte.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

/// Takes an escape off the front of a text, from behind its backslash.
U8 takeEscape(std::string_view& text) {
  if (const std::optional<char> byte = Verda::takeEscape(text, "\"\\")) {
    return static_cast<U8>(*byte);
  }
  throw BadAttribute(text.starts_with('x') ? "behind \\x stand two hex digits"
                                           : "the escapes are \\n, \\r, \\t, \\\\, \\\" and \\xNN");
}

}  // namespace

std::vector<U8> bytesOfQuoted(std::string_view quoted) {
  if (!quoted.starts_with('"')) {
    throw BadAttribute("text stands in quotes");
  }
  std::vector<U8> bytes;
  bytes.reserve(quoted.size());  // a vector that grows would leave copies of a secret behind
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
