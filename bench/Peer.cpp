#include "bench/Peer.h"

#include <cstdlib>
#include <dlfcn.h>
#include <iostream>

#include "bench/peer/shim.h"

namespace Bench {
namespace {

template <typename Function>
bool resolve(void* library, const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(dlsym(library, name));
  return function != nullptr;
}

}  // namespace

std::optional<Peer> Peer::open() {
  // The peer's names stay its own; the heap is that of all, so that its blocks are counted.
  void* library = dlopen(PEER_SHIM, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    std::cerr << "Without the peer: " << dlerror() << '\n';
    return std::nullopt;
  }
  Peer peer;
  if (!resolve(library, "peer_dictionary_load", peer.loadDictionary_) ||
      !resolve(library, "peer_packet_new", peer.newPacket_) ||
      !resolve(library, "peer_decode", peer.decode_) ||
      !resolve(library, "peer_make_ready", peer.makeReady_) ||
      !resolve(library, "peer_encode", peer.encode_) ||
      !resolve(library, "peer_packet_free", peer.freePacket_) || !peer.loadDictionary()) {
    std::cerr << "Without the peer: it does not load its dictionary\n";
    return std::nullopt;
  }
  return peer;
}

const Peer* Peer::get() {
  static const std::optional<Peer> peer = open();
  return peer.has_value() ? &*peer : nullptr;
}

Peer::Packet::Packet(const Peer& peer, const BenchPacket& packet)
    : peer_(peer), bytes_(packet.bytes), packet_(nullptr, peer.freePacket_) {
  packet_.reset(peer.newPacket_(bytes_.data(), bytes_.size(),
                                packet.reqAuth.empty() ? nullptr : packet.reqAuth.data()));
  if (packet_ == nullptr || decode() <= 0) {
    std::cerr << "The peer does not decode " << packet.name << '\n';
    std::exit(EXIT_FAILURE);
  }
}

void Peer::Packet::makeReady() {
  if (peer_.makeReady_(packet_.get(), secret.c_str()) != 0 ||
      encode() != static_cast<int>(bytes_.size())) {
    std::cerr << "The peer does not encode what it decoded\n";
    std::exit(EXIT_FAILURE);
  }
}

}  // namespace Bench
