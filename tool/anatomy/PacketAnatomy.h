#pragma once

#include <span>

#include "Verda/Ptr.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tool/anatomy/Anatomy.h"
#include "tool/anatomy/AttributeProbe.h"

namespace RadiusPacketTool {

/// Takes a packet apart, whatever its bytes, and goes on past faults. What is refused, and in which
/// order, is what the library's parser says; what needs a secret or another packet to be judged is
/// no fault here.
/// @param revealing  with a secret, hidden values are revealed
Anatomy anatomyOf(std::span<const Verda::U8> packet,
                  const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary,
                  const Revealing& revealing = {});

}  // namespace RadiusPacketTool
