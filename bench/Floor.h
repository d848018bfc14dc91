#pragma once

#include <span>
#include <vector>

#include "Verda/Ptr.h"
#include "Verda/Types.h"
#include "bench/BenchPackets.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"

namespace Bench {

/// The digests that nobody can do without who verifies a packet and reveals its hidden values, or
/// hides and signs, and nothing else: the least time that the work can take. They are called as the
/// library calls them, over the same bytes.
class Floor {
 public:
  /// Whether the work includes the hidden values.
  enum class Hidden : Verda::U8 { handled, copied };

  /// Finds out which digests the packet needs. `packet` must outlive the floor.
  Floor(const BenchPacket& packet,
        const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary,
        Hidden hidden = Hidden::handled);

  /// Computes them all.
  void run() const;

 private:
  using ByteView = std::span<const Verda::U8>;

  void addKeystream(ByteView attribute,
                    const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary);

  ByteView bytes_;
  bool hasPacketDigest_ = false;
  bool hasMessageAuthenticator_ = false;
  /// What stands behind the secret in each digest of a keystream: two parts.
  std::vector<std::pair<ByteView, ByteView>> keystreamParts_;
  ByteView authenticator_;
};

}  // namespace Bench
