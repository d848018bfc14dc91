#pragma once

#include <span>

#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/Types.h"
#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPktParser.h"
#include "tool/FaultTrace.h"
#include "tool/PacketReport.h"
#include "tool/Secret.h"

namespace RadiusPacketTool {

/// Sends packets down the library's road and reports what came of it. While a packet is decoded all
/// trace of the process goes into its report, so one decoder at a time may work.
class PacketDecoder {
 public:
  /// `secret` must outlive the decoder.
  PacketDecoder(const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary,
                const Secret& secret);

  /// Decodes one packet, whatever its bytes; `place` and `pairedWith` of the report are left alone.
  /// @param requestAuthenticator  the authenticator of the request that the packet answers, 16
  ///                              bytes, or empty when none is known; requests do without
  PacketReport decode(std::span<const Verda::U8> packet,
                      const Verda::Bytes& requestAuthenticator) const;

 private:
  /// Decodes a packet whose header is in order and whose Request Authenticator is known if it needs
  /// one: only then no bytes of a stranger reach an assertion of the library.
  void walk(const Verda::Ptr<Zonet::Pkt>& pkt, const RadiusPktParserBase::RadiusHdr& header,
            const Verda::Bytes& requestAuthenticator, FaultTrace& trace,
            PacketReport& report) const;

  Verda::Ptr<RadiusPktParserBase::RadiusPktParser> parser_;
  const Secret& secret_;
};

}  // namespace RadiusPacketTool
