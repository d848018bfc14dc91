#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Verda/Ptr.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "tool/making/BuildPlan.h"

namespace RadiusPacketTool {

/// A packet that the library does not build; `what()` says which step is at fault, and why.
class BadPacket : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Has the library build a packet from one of its requests.
using Build = std::function<Verda::Ptr<RadiusPktParserBase::PktReturn>(
    const Verda::Ptr<RadiusPktParserBase::PktInfoBuilder>&)>;

/// Builds the packet of a plan. Throws `BadPacket` when the library refuses: the step at fault is
/// the one with which it begins to.
/// @param origin  what asks for the packet, for a fault that no step brings
std::vector<Verda::U8> builtPacket(const BuildPlan& plan, const Build& build,
                                   const std::string& origin);

}  // namespace RadiusPacketTool
