#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/Digests.h"

namespace TestSupport {

/// How many entries the vector files have: a loader that loses one is told.
inline constexpr std::size_t publishedPacketCount = 100;
inline constexpr std::size_t hiddenValueCount = 14;

/// One packet of `packets.json`; the README beside it describes the fields.
struct PublishedPacket {
  struct RawAttribute {
    Verda::U8 type;
    ByteVector value;

    bool operator==(const RawAttribute&) const = default;
  };

  std::string name;  ///< source and name
  ByteVector packet;
  std::string secret;
  ByteVector requestAuthenticator;
  bool wellFormed;
  std::vector<RawAttribute> attributes;  ///< in wire order, when it is well-formed
  std::optional<std::string> password;   ///< the revealed User-Password, where known
  /// Whether the digests hold; nothing where that could not be checked.
  std::optional<bool> requestAuthHolds;
  std::optional<bool> responseAuthHolds;
  std::optional<bool> msgAuthHolds;

  Verda::U8 code() const { return packet.at(0); }
};

/// One entry of `hidden_values.json`.
struct HiddenValue {
  std::string source;
  std::string kind;
  ByteVector plain;
  std::string secret;
  ByteVector authenticator;
  ByteVector salt;
  ByteVector cipher;
};

const std::vector<PublishedPacket>& publishedPackets();
const std::vector<HiddenValue>& hiddenValues();

}  // namespace TestSupport
