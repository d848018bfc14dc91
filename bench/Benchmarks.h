#pragma once

#include "Verda/Ptr.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"

namespace Bench {

using Dictionary = Verda::Ptr<const RadiusPacketParser::RadiusDict>;

/// Our own dictionary set, loaded once.
Dictionary ownDictionary();

// Each registers the benchmarks of one operation, named "operation/who/what"; who is "ours",
// "floor" (what nobody can do without) or "peer"; of the legacy interface, "legacy" or "newer".

/// Verifying and decoding a packet.
void registerParse(const Dictionary& dictionary);
/// Building and signing a packet from a request that is ready, and changing one.
void registerBuild(const Dictionary& dictionary);
/// The walk over a packet that needs no digests.
void registerWalk(const Dictionary& dictionary);
/// Verifying and decoding on one parser, by one thread and by two.
void registerThreads(const Dictionary& dictionary);
/// Reading and changing a packet by the legacy interface and by the newer one.
void registerLegacy(const Dictionary& dictionary);
/// The ways to compute a Message-Authenticator.
void registerHmac();
/// Loading a dictionary.
void registerDictionaryLoad();

}  // namespace Bench
