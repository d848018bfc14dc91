#pragma once

#include <string>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktTypes.h"

namespace RadiusPacketTool {

/// Whether a packet of that code can carry hidden values that its receiver reveals: those of a
/// request whose authenticator is a digest are hidden before there is one.
bool canHide(Verda::U8 code);

/// The warning about a hidden value in a packet of a code that cannot.
/// @param origin  what asks for it
std::string hidingWarning(const std::string& origin, Verda::U8 code);

}  // namespace RadiusPacketTool
