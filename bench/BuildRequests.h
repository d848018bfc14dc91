#pragma once

#include "Verda/Ptr.h"
#include "bench/BenchPackets.h"
#include "bench/Benchmarks.h"

#include "RadiusPacketParser/RadiusPktBuilder.h"

namespace Bench {

/// The request that builds a packet of the same attributes: fragments in one value, tags apart, a
/// place for the Message-Authenticator. Ends the process when the packet does not decode.
Verda::Ptr<RadiusPktParserBase::PktInfoBuilder> requestOf(const BenchPacket& packet,
                                                          const Dictionary& dictionary);

}  // namespace Bench
