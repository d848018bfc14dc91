#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "Verda/Types.h"

#include "tool/anatomy/AttributeProbe.h"

namespace RadiusPacketTool {

/// Where attributes begin again behind one whose Length byte is wrong: where its value would end if
/// it were as long as its data type says, else nearest to it; but only where all that follows, up
/// to the end, is attributes that the library decodes, the standard ones known to the dictionary.
/// Nothing when there is no such place.
/// @param broken  from the Type byte of the attribute to the end of the packet
/// @return the offset from that Type byte
std::optional<std::size_t> nextAttribute(std::span<const Verda::U8> broken,
                                         const AttributeProbe& probe);

}  // namespace RadiusPacketTool
