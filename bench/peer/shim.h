#pragma once

#include <stddef.h>
#include <stdint.h>

/// The peer's library behind a few functions, so that its headers and names stay in one file.
#ifdef __cplusplus
extern "C" {
#endif

/// Loads the peer's own dictionary afresh; 0 on success.
int peer_dictionary_load(void);

/// A packet of the peer's over `bytes`, which must outlive it, and the request that it answers
/// (null for a request). Null when the peer refuses it.
struct peer_packet* peer_packet_new(uint8_t* bytes, size_t length, uint8_t const* reqAuth);

/// Verifies and decodes the packet, counts its attributes and frees them; returns the count, or -1
/// when the peer refuses the packet.
int peer_decode(struct peer_packet* packet, char const* secret);

/// Decodes the packet and keeps its attributes, ready to be encoded; 0 on success.
int peer_make_ready(struct peer_packet* packet, char const* secret);

/// Encodes and signs a packet of the attributes that are ready, and frees it; returns its length,
/// or -1 when the peer refuses.
int peer_encode(struct peer_packet* packet, char const* secret);

void peer_packet_free(struct peer_packet* packet);

#ifdef __cplusplus
}
#endif
