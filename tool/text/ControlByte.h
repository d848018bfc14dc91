#pragma once

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// Whether a character is a control byte of ASCII, white space other than the blank included.
inline bool isControl(char c) {
  constexpr Verda::U8 firstPrintable = 0x20;
  constexpr Verda::U8 deleteCharacter = 0x7f;
  const auto byte = static_cast<Verda::U8>(c);
  return byte < firstPrintable || byte == deleteCharacter;
}

}  // namespace RadiusPacketTool
