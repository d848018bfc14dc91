#pragma once

#include <vector>

#include "Verda/Ptr.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tool/checks/CheckResult.h"
#include "tool/decoding/Exchanges.h"
#include "tool/decoding/PacketDecoder.h"
#include "tool/input/InputPacket.h"
#include "tool/text/AttributeNames.h"

namespace RadiusPacketTool {

/// Puts packets to all checks that there are.
class PacketVerifier {
 public:
  explicit PacketVerifier(const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary);

  /// The results in the order of the checks, one each or, of the checks of salts and attributes,
  /// one for each fault. When the header is not in order, the first says so, and the others cannot
  /// tell.
  std::vector<CheckResult> verify(const InputPacket& packet, const PacketContext& context) const;

 private:
  Verda::Ptr<const RadiusPacketParser::RadiusDict> dictionary_;
  AttributeNames names_;
  PacketDecoder decoder_;
};

}  // namespace RadiusPacketTool
