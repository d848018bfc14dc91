#pragma once

#include <span>

#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/Types.h"
#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPktParser.h"
#include "tool/decoding/Decoder.h"
#include "tool/decoding/PacketReport.h"
#include "tool/input/Secret.h"
#include "tool/process/FaultTrace.h"

namespace RadiusPacketTool {

/// Decodes on the road of the newer codec: header, authenticators, attribute walk.
class PacketDecoder final : public Decoder {
 public:
  explicit PacketDecoder(const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary);

  PacketReport decode(std::span<const Verda::U8> packet, const Secret& secret,
                      const Verda::Bytes& requestAuthenticator) const override;

 private:
  /// Decodes a packet whose header is in order and whose Request Authenticator is known if it needs
  /// one: only then no bytes of a stranger reach an assertion of the library.
  void walk(const Verda::Ptr<Zonet::Pkt>& pkt, const RadiusPktParserBase::RadiusHdr& header,
            const Secret& secret, const Verda::Bytes& requestAuthenticator, FaultTrace& trace,
            PacketReport& report) const;

  Verda::Ptr<RadiusPktParserBase::RadiusPktParser> parser_;
};

}  // namespace RadiusPacketTool
