#pragma once

#include <string>
#include <vector>

#include "tests/support/Digests.h"

namespace TestSupport {

/// How many golden packets there are: a loader that loses one is told.
inline constexpr std::size_t goldenPacketCount = 142;
/// How many of them are accepted.
inline constexpr std::size_t acceptedGoldenPacketCount = 51;

/// One file of `tests/data/packets`; the README there describes the form.
struct GoldenPacket {
  std::string name;  ///< the file's name without its ending
  std::string title;
  ByteVector secret;
  ByteVector requestAuthenticator;
  std::string result;                   ///< the name of an `ErrorMsg`
  std::string reason;                   ///< what the failing check traces; may be empty
  std::vector<std::string> attributes;  ///< what the hook receives, a directive's value each
  ByteVector packet;

  bool isAccepted() const { return result == "success"; }
  std::string secretText() const { return {secret.begin(), secret.end()}; }
};

/// All golden packets by name. Throws when a file is not of the form.
const std::vector<GoldenPacket>& goldenPackets();

/// Other values for a byte of a golden packet: all of them for one that is accepted; each bit
/// turned and the values at the ends for one that is refused anyway.
std::vector<Verda::U8> otherValues(const GoldenPacket& golden, Verda::U8 byte);

}  // namespace TestSupport
