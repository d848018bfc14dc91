#pragma once

#include <string>

#include "tool/text/ShownValue.h"

namespace RadiusPacketTool {

/// A value as people read it: text in quotes, bytes as hex behind `0x`, a number behind its name.
std::string shownText(const ShownValue& value);

}  // namespace RadiusPacketTool
