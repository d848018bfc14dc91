#pragma once

#include <array>
#include <set>
#include <span>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPacketTool {

using Salt = std::array<Verda::U8, RadiusPacketParser::AttributeConstants::saltLength()>;

/// Makes the salts of one packet: random, with the first bit set, and no two alike (RFC 2868
/// section 3.5).
class SaltSource {
 public:
  /// Makes one. Throws `ToolError` when there are no random bytes to be had.
  Salt next();

  /// Notes a salt that the packet has already; what is shorter than a salt is none.
  void take(std::span<const Verda::U8> salt);

 private:
  std::set<Salt> used_;
};

}  // namespace RadiusPacketTool
