#pragma once

#include <string>
#include <variant>
#include <vector>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// A number, and the name that an enumeration of the library gives it, or an empty name.
struct ShownNumber {
  Verda::U32 number = 0;
  std::string name;

  bool operator==(const ShownNumber&) const = default;
};

/// Text, escaped as it stands between quotes.
struct ShownText {
  std::string escaped;

  bool operator==(const ShownText&) const = default;
};

/// Bytes that are no text.
struct ShownBytes {
  std::vector<Verda::U8> bytes;

  bool operator==(const ShownBytes&) const = default;
};

/// What is none of these: addresses, numbers of 64 bits, bytes in the place of text.
struct ShownPlain {
  std::string text;

  bool operator==(const ShownPlain&) const = default;
};

using ShownValue = std::variant<ShownNumber, ShownText, ShownBytes, ShownPlain>;

}  // namespace RadiusPacketTool
