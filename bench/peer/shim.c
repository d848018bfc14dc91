#include "shim.h"

#include <stdlib.h>
#include <string.h>

#include <freeradius/libradius.h>

#define PEER_DICTIONARIES "/usr/share/freeradius"

struct peer_packet {
  RADIUS_PACKET* packet;
  RADIUS_PACKET* request;
  uint8_t* authenticator;
  uint8_t received[AUTH_VECTOR_LEN];
};

int peer_dictionary_load(void) {
  dict_free();
  return dict_init(PEER_DICTIONARIES, "dictionary");
}

struct peer_packet* peer_packet_new(uint8_t* bytes, size_t length, uint8_t const* reqAuth) {
  struct peer_packet* packet = calloc(1, sizeof(*packet));
  if (packet == NULL) {
    return NULL;
  }
  packet->packet = rad_alloc(NULL, false);
  packet->packet->code = bytes[0];
  packet->packet->id = bytes[1];
  packet->packet->data = bytes;
  packet->packet->data_len = length;
  packet->authenticator = bytes + 4;
  memcpy(packet->received, packet->authenticator, AUTH_VECTOR_LEN);
  memcpy(packet->packet->vector, packet->authenticator, AUTH_VECTOR_LEN);
  if (reqAuth != NULL) {
    packet->request = rad_alloc(NULL, false);
    packet->request->code = PW_CODE_ACCESS_REQUEST;
    memcpy(packet->request->vector, reqAuth, AUTH_VECTOR_LEN);
  }
  return packet;
}

static int verify_and_decode(struct peer_packet* packet, char const* secret) {
  /* Verifying an Accounting-Request leaves zeros in the bytes that were verified. */
  memcpy(packet->authenticator, packet->received, AUTH_VECTOR_LEN);
  decode_fail_t reason;
  if (!rad_packet_ok(packet->packet, 0, &reason) ||
      rad_verify(packet->packet, packet->request, secret) != 0 ||
      rad_decode(packet->packet, packet->request, secret) != 0) {
    return -1;
  }
  return 0;
}

int peer_decode(struct peer_packet* packet, char const* secret) {
  if (verify_and_decode(packet, secret) != 0) {
    return -1;
  }
  int count = 0;
  for (VALUE_PAIR const* pair = packet->packet->vps; pair != NULL; pair = pair->next) {
    ++count;
  }
  fr_pair_list_free(&packet->packet->vps);
  return count;
}

int peer_make_ready(struct peer_packet* packet, char const* secret) {
  if (verify_and_decode(packet, secret) != 0) {
    return -1;
  }
  packet->packet->data = NULL; /* the caller's */
  packet->packet->data_len = 0;
  return 0;
}

int peer_encode(struct peer_packet* packet, char const* secret) {
  if (rad_encode(packet->packet, packet->request, secret) != 0 ||
      rad_sign(packet->packet, packet->request, secret) != 0) {
    return -1;
  }
  int const length = (int)packet->packet->data_len;
  talloc_free(packet->packet->data);
  packet->packet->data = NULL;
  return length;
}

void peer_packet_free(struct peer_packet* packet) {
  packet->packet->data = NULL; /* the caller's, or freed */
  fr_pair_list_free(&packet->packet->vps);
  rad_free(&packet->packet);
  if (packet->request != NULL) {
    rad_free(&packet->request);
  }
  free(packet);
}
