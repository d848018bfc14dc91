#pragma once

#include <memory>
#include <optional>

#include "bench/BenchPackets.h"

struct peer_packet;

namespace Bench {

/// Another library doing the same work, when the build found it and it opens.
class Peer {
 public:
  /// The peer, opened once, with its own dictionary loaded; null when there is none.
  static const Peer* get();

  /// A packet in the peer's hands. Ends the process when the peer cannot decode it.
  class Packet {
   public:
    Packet(const Peer& peer, const BenchPacket& packet);

    /// Verifies and decodes the packet and frees what came out; returns how many attributes.
    int decode() const { return peer_.decode_(packet_.get(), secret.c_str()); }

    /// Decodes the packet once more and keeps its attributes, for `encode`; the packet itself is
    /// not decoded again. Ends the process when the peer does not encode them to as many bytes.
    void makeReady();

    /// Encodes and signs a packet of those attributes and frees it; returns its length.
    int encode() const { return peer_.encode_(packet_.get(), secret.c_str()); }

   private:
    const Peer& peer_;
    std::vector<Verda::U8> bytes_;
    std::unique_ptr<peer_packet, void (*)(peer_packet*)> packet_;
  };

  /// Loads the peer's own dictionary afresh; returns whether that went well.
  bool loadDictionary() const { return loadDictionary_() == 0; }

 private:
  static std::optional<Peer> open();

  int (*loadDictionary_)() = nullptr;
  peer_packet* (*newPacket_)(Verda::U8*, std::size_t, const Verda::U8*) = nullptr;
  int (*decode_)(peer_packet*, const char*) = nullptr;
  int (*makeReady_)(peer_packet*, const char*) = nullptr;
  int (*encode_)(peer_packet*, const char*) = nullptr;
  void (*freePacket_)(peer_packet*) = nullptr;
};

}  // namespace Bench
