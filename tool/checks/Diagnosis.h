#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tool/decoding/EarlierRequests.h"
#include "tool/decoding/Exchanges.h"
#include "tool/input/InputPacket.h"
#include "tool/input/Secret.h"
#include "tool/input/Secrets.h"

namespace RadiusPacketTool {

/// A secret of another client, by which a packet may have been signed.
struct NamedSecret {
  std::string client;  ///< the address or prefix that it is for
  const Secret* secret = nullptr;
};

/// The secrets of a run that are for clients of their own.
std::vector<NamedSecret> namedSecrets(const Secrets& secrets);

/// Why an authenticator or a Message-Authenticator fails.
struct Diagnosis {
  /// The cause that fits, in sentences for who runs client and server; nothing when none does.
  std::optional<std::string> finding;
  /// What was tried in vain, each as it may stand behind "ruled out:". None repeats a secret.
  std::vector<std::string> ruledOut;
};

/// Looks for what makes the failing digests of a packet come out right: another form of the secret,
/// another request, another way to compute. What fits is no guess: a digest of 16 bytes does not
/// come out right by chance. The time is bounded, whatever the packet.
///
/// Nothing is found, and nothing ruled out, of a packet whose digests are all right, or that has
/// none, or whose attributes cannot be told apart.
/// @param secrets   those of the other clients
/// @param requests  the requests in front of the packet
Diagnosis diagnose(const InputPacket& packet, const PacketContext& context,
                   std::span<const NamedSecret> secrets, const EarlierRequests& requests);

}  // namespace RadiusPacketTool
