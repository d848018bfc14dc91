#pragma once

#include <optional>
#include <string>

#include "Verda/Ptr.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tool/anatomy/Anatomy.h"
#include "tool/decoding/Decoder.h"
#include "tool/decoding/Exchanges.h"
#include "tool/decoding/PacketReport.h"
#include "tool/input/InputPacket.h"
#include "tool/output/OutputOptions.h"

namespace RadiusPacketTool {

/// All that `inspect` knows of a packet.
struct Inspection {
  PacketPlace place;
  std::optional<Datagram> datagram;  ///< of a packet from a capture
  PacketHeader header;
  Anatomy anatomy;
  std::optional<PacketReport> report;  ///< nothing without a secret
};

/// Takes a packet apart. With a secret it is decoded too, its checks are added to the meanings of
/// the authenticators, and, unless a check has failed, hidden values are revealed.
/// @param decoder  of the same dictionary
Inspection inspected(const InputPacket& packet, const PacketContext& context,
                     const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary,
                     const Decoder& decoder);

/// The verdict on the packet; without a secret, on its structure.
PacketReport verdictOf(const Inspection& inspection);

/// What a packet contributes to the exit code; without a secret its structure decides.
ExitCode exitCodeOf(const Inspection& inspection);

/// An inspection for people: a table of the fields, then what is to be said of the whole. No line
/// is much longer than a wide terminal, and nothing in it can drive one.
std::string textOf(const Inspection& inspection, const OutputOptions& options = {});

/// An inspection for programs: one JSON object on one line, valid UTF-8 whatever the packet holds.
std::string jsonOf(const Inspection& inspection, const OutputOptions& options = {});

}  // namespace RadiusPacketTool
