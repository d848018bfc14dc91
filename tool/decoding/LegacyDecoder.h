#pragma once

#include <span>

#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPacketParser.h"
#include "tool/decoding/Decoder.h"
#include "tool/decoding/PacketReport.h"
#include "tool/input/Secret.h"

namespace RadiusPacketTool {

/// Decodes on the road of the legacy interface: all checks, then the values. A refused packet has
/// no attributes. What the interface says with a text alone is reported as the `ErrorMsg` that the
/// newer codec has for it.
class LegacyDecoder final : public Decoder {
 public:
  explicit LegacyDecoder(const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary);

  PacketReport decode(std::span<const Verda::U8> packet, const Secret& secret,
                      const Verda::Bytes& requestAuthenticator) const override;

 private:
  /// Checks the authenticators of a packet that passed the basic check and, when they are right,
  /// reads it. Only a packet whose Request Authenticator is known if it needs one reaches no
  /// assertion of the library.
  void walk(RadiusPacketParser::RadiusPacketParser& object, std::span<const Verda::U8> packet,
            const Secret& secret, const Verda::Bytes& reqAuth, PacketReport& report) const;

  Verda::Ptr<const RadiusPacketParser::RadiusDict> dictionary_;
};

}  // namespace RadiusPacketTool
