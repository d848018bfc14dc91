#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "Verda/Types.h"
#include "Zonet/IpGenPrefix.h"

#include "tool/capture/Datagram.h"
#include "tool/input/ClientNetwork.h"
#include "tool/input/Secret.h"

namespace RadiusPacketTool {

/// The secret of some clients.
struct ClientSecret {
  Zonet::IpGenPrefix clients;
  std::unique_ptr<const Secret> secret;
  std::size_t line = 0;  ///< where it stands in its file, from 1
};

/// A secret of a run, and whose it is.
struct KnownSecret {
  const Secret* secret = nullptr;
  std::optional<Zonet::IpGenPrefix> clients;  ///< nothing: of all that no entry is for
  std::size_t line = 0;                       ///< of the file of entries, from 1; 0 without one
};

/// The address of the client that a packet concerns, the NAS: it sends requests and gets the
/// answers, but of the requests that a NAS gets (codes 40 and 43) and their answers it is the other
/// way round.
const Zonet::IpGenAddr& clientOf(const Datagram& datagram, std::optional<Verda::U8> code);

/// The shared secrets of a run.
class Secrets {
 public:
  /// @param forAll      that of all clients that none of the others is for, or null
  /// @param forClients  of no two the clients are the same
  explicit Secrets(std::unique_ptr<const Secret> forAll, std::vector<ClientSecret> forClients = {});

  /// The secret of a packet, or null when there is none for its client; valid as long as the
  /// object. That of the longest prefix counts that the client's address has; where it has none,
  /// that of the address at the other end.
  /// @param datagram  what carried the packet, if that is known
  /// @param code      the packet's code, if it has one: it says which end is the client
  const Secret* of(const std::optional<Datagram>& datagram, std::optional<Verda::U8> code) const;

  /// All of them, as valid as the object: first those of clients, in their order.
  std::vector<KnownSecret> all() const;

 private:
  const Secret* ofAddress(const Zonet::IpGenAddr& address) const;

  std::unique_ptr<const Secret> forAll_;
  std::vector<ClientSecret> forClients_;
  std::map<ClientNetwork, const Secret*> byNetwork_;
  std::set<Verda::U8, std::greater<>> lengths_;  ///< of the prefixes, the longest first
};

}  // namespace RadiusPacketTool
