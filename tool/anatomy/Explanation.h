#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Verda/Ptr.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tool/anatomy/Anatomy.h"
#include "tool/checks/Diagnosis.h"
#include "tool/decoding/Decoder.h"
#include "tool/decoding/Exchanges.h"
#include "tool/decoding/PacketReport.h"
#include "tool/input/InputPacket.h"

namespace RadiusPacketTool {

/// Why a packet is refused, if it is.
struct Explanation {
  PacketReport report;
  std::vector<Verda::U8> packet;
  /// The field that is to blame, with its fault; nothing of a packet that is accepted, and where no
  /// byte of it is to blame.
  std::optional<Field> culprit;
  /// The fields with further faults of the structure, in the order of the parser.
  std::vector<Field> others;
  Diagnosis diagnosis;  ///< of a digest that is wrong
};

/// Explains the verdict on a packet, but for the diagnosis. No hidden value is revealed in it.
/// @param decoder  gives the verdict; of the same dictionary
Explanation explained(const InputPacket& packet, const PacketContext& context,
                      const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary,
                      const Decoder& decoder);

/// Whether a packet is refused for a digest that a diagnosis may explain.
bool hasWrongDigest(const PacketReport& report);

/// An explanation for people: what is wrong, the bytes with marks under those to blame, what was
/// found and expected; one line for a packet that is accepted. Nothing in it can drive a terminal.
std::string textOf(const Explanation& explanation);

/// An explanation for programs: one JSON object on one line, valid UTF-8 whatever the packet holds.
std::string jsonOf(const Explanation& explanation);

}  // namespace RadiusPacketTool
