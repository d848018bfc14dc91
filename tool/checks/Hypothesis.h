#pragma once

#include <optional>
#include <span>
#include <string>

#include "tool/checks/FailingPacket.h"

namespace RadiusPacketTool {

/// What may be behind failing digests.
struct Hypothesis {
  const char* name;                       ///< as it stands among what was ruled out
  bool (*applies)(const FailingPacket&);  ///< whether there is anything to try
  /// What there is to say when it fits, in whole sentences.
  std::optional<std::string> (*finding)(const FailingPacket&);
};

/// Another form of the secret, or another secret.
std::span<const Hypothesis> secretHypotheses();

/// Another Request Authenticator.
std::span<const Hypothesis> requestHypotheses();

/// Another way to compute a Message-Authenticator, or the authenticator that covers it.
std::span<const Hypothesis> computationHypotheses();

/// Other bytes: of another length, in another order.
std::span<const Hypothesis> layoutHypotheses();

}  // namespace RadiusPacketTool
