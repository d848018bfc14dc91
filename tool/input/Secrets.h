#pragma once

#include <memory>
#include <optional>

#include "Verda/Types.h"

#include "tool/capture/Datagram.h"
#include "tool/input/Secret.h"

namespace RadiusPacketTool {

/// The shared secrets of a run.
class Secrets {
 public:
  /// One secret for all packets, or null: none for any.
  explicit Secrets(std::unique_ptr<const Secret> forAll);

  /// The secret of a packet, or null when there is none for its client; valid as long as the
  /// object.
  /// @param datagram  what carried the packet, if that is known
  /// @param code      the packet's code, if it has one: it says which end is the client
  const Secret* of(const std::optional<Datagram>& datagram, std::optional<Verda::U8> code) const;

 private:
  std::unique_ptr<const Secret> forAll_;
};

}  // namespace RadiusPacketTool
