#pragma once

#include <span>

#include "Verda/Bytes.h"
#include "Verda/String.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPacketParser.h"
#include "tool/decoding/PacketReport.h"

namespace RadiusPacketTool {

/// Reads the attributes of a packet through the legacy interface into its report, in their order.
/// Kinds that the interface does not read are reported as their bytes, with a warning where the
/// dictionary says that they are more.
/// @param object   the packet, which has passed its checks; hidden values are revealed in it
/// @param content  its attributes as they are on the wire, as many bytes as its Length says
/// @param reqAuth  as the legacy interface takes it
void readLegacyAttributes(RadiusPacketParser::RadiusPacketParser& object,
                          std::span<const Verda::U8> content, const Verda::String& secret,
                          const Verda::Bytes& reqAuth, PacketReport& report);

}  // namespace RadiusPacketTool
