#pragma once

#include <ostream>
#include <span>

#include "Tyl/Constants.h"
#include "Tyl/Enumeration.h"
#include "Verda/Export.h"
#include "Verda/String.h"
#include "Verda/Types.h"

/// The RADIUS wire layout and the protocol's numbers. Offsets and lengths are in bytes and are
/// named here once; nothing else writes them as figures.
namespace RadiusPacketParser {

/// The packet header (RFC 2865 section 3).
#define RADIUS_PACKET_CONSTANTS_LIST(X)                                                        \
  X(U8, codeOffset, 0)          /* the Code byte */                                            \
  X(U8, idOffset, 1)            /* the Identifier, which a response shares with its request */ \
  X(U8, lengthOffset, 2)        /* the Length field: 2 bytes, counts the whole packet */       \
  X(U8, authenticatorOffset, 4) /* the Authenticator */                                        \
  X(U8, authLength, 16)         /* length of the Authenticator; also of an MD5 digest */       \
  X(U8, headerLength, 20)       /* length of the four fields above; attributes begin here */   \
  X(U16, maxLength, 4096)       /* length of the largest packet accepted or built */

TYL_CONSTANT_HOLDER(PacketConstants, RADIUS_PACKET_CONSTANTS_LIST)

/// One attribute; offsets count from its first byte (RFC 2865 section 5, RFC 2868, RFC 3162).
#define RADIUS_ATTRIBUTE_CONSTANTS_LIST(X)                                                      \
  X(U8, typeOffset, 0)          /* the Type byte */                                             \
  X(U8, lengthOffset, 1)        /* the Length byte: counts type, length and value */            \
  X(U8, reservedOffset, 1)      /* nominal: on the wire it is the first value byte */           \
  X(U8, tagOffset, 1)           /* nominal: on the wire it is the first value byte */           \
  X(U8, valueOffset, 2)         /* the value; also the length of Type and Length together */    \
  X(U8, saltLength, 2)          /* length of the salt before a salt-hidden value */             \
  X(U8, ipv4Length, 4)          /* length of an `ipaddr` value */                               \
  X(U8, ipv6Length, 16)         /* length of an `ipv6addr` value */                             \
  X(U8, dateLength, 4)          /* length of a `date` value: seconds since 1970 */              \
  X(U8, intLength, 4)           /* length of an `integer` value */                              \
  X(U8, ipv6InterfaceLength, 8) /* length of an `ifid` value */                                 \
  X(U8, ipv6WordLength, 2)      /* length of one of the eight groups of an IPv6 address */      \
  X(U8, msgAuthLength, 16)      /* length of the Message-Authenticator's value, an HMAC-MD5 */  \
  X(U8, maxLength, 255)         /* length of the largest attribute, type and length included */ \
  X(U8, maxPrefixLength, 128)   /* in bits: the longest IPv6 prefix */                          \
  X(U8, minIpv6PrefixAttrLength, 2)  /* length of the shortest `ipv6prefix` value */            \
  X(U8, maxIpv6PrefixAttrLength, 18) /* length of the longest `ipv6prefix` value */             \
  X(U8, passwdWordSize, 16)          /* size of the blocks in which values are hidden */        \
  X(U8, minPasswdSize, 16)           /* length of the shortest hidden text */                   \
  X(U8, maxPasswdSize, 128)          /* length of the longest hidden text */

TYL_CONSTANT_HOLDER(AttributeConstants, RADIUS_ATTRIBUTE_CONSTANTS_LIST)

/// The Vendor-Specific attribute; offsets count from the first byte of the outer attribute (RFC
/// 2865 section 5.26).
#define RADIUS_VSA_CONSTANTS_LIST(X)                                                              \
  X(U8, vendorIdOffset, 2)         /* the vendor's enterprise number */                           \
  X(U8, vendorTypeOffset, 6)       /* the sub-attribute's Type byte; also all that precedes it */ \
  X(U8, vendorAttrLengthOffset, 7) /* its Length byte: counts type, length and value */           \
  X(U8, vendorAttrValueOffset, 8)  /* its value */                                                \
  X(U8, vendorIdLength, 4)         /* length of the enterprise number */                          \
  X(U8, vendorAttrMaxLength, 249)  /* length of the largest sub-attribute */

TYL_CONSTANT_HOLDER(VsaConstants, RADIUS_VSA_CONSTANTS_LIST)

/// The Code byte of a packet (RFC 2865, 2866, 2882, 5176).
#define RADIUS_CODE_LIST(X) \
  X(ACCESS_REQUEST, 1)      \
  X(ACCESS_ACCEPT, 2)       \
  X(ACCESS_REJECT, 3)       \
  X(ACCOUNTING_REQUEST, 4)  \
  X(ACCOUNTING_RESPONSE, 5) \
  X(ACCOUNTING_STATUS, 6)   \
  X(PASSWORD_REQUEST, 7)    \
  X(PASSWORD_ACK, 8)        \
  X(PASSWORD_REJECT, 9)     \
  X(ACCOUNTING_MESSAGE, 10) \
  X(ACCESS_CHALLENGE, 11)   \
  X(STATUS_SERVER, 12)      \
  X(STATUS_CLIENT, 13)      \
  X(DISCONNECT_REQUEST, 40) \
  X(DISCONNECT_ACK, 41)     \
  X(DISCONNECT_NAK, 42)     \
  X(COA_REQUEST, 43)        \
  X(COA_ACK, 44)            \
  X(COA_NAK, 45)

TYL_ENUMERATION_HOLDER(RadiusCode, ::Verda::U8, ::Verda::U32, RADIUS_CODE_LIST)

/// The Type byte of an attribute, as IANA numbers them; those that the library knows by name.
#define RADIUS_ATTRIBUTE_ID_LIST(X) \
  X(USER_NAME, 1)                   \
  X(USER_PASSWORD, 2)               \
  X(CHAP_PASSWORD, 3)               \
  X(NAS_IP_ADDRESS, 4)              \
  X(NAS_PORT, 5)                    \
  X(SERVICE_TYPE, 6)                \
  X(FRAMED_PROTOCOL, 7)             \
  X(FRAMED_IP_ADDRESS, 8)           \
  X(FRAMED_IP_NETMASK, 9)           \
  X(FRAMED_ROUTING, 10)             \
  X(FILTER_ID, 11)                  \
  X(FRAMED_MTU, 12)                 \
  X(FRAMED_COMPRESSION, 13)         \
  X(LOGIN_IP_HOST, 14)              \
  X(LOGIN_SERVICE, 15)              \
  X(LOGIN_TCP_PORT, 16)             \
  X(REPLY_MESSAGE, 18)              \
  X(CALLBACK_NUMBER, 19)            \
  X(CALLBACK_ID, 20)                \
  X(FRAMED_ROUTE, 22)               \
  X(FRAMED_IPX_NETWORK, 23)         \
  X(STATE, 24)                      \
  X(CLASS, 25)                      \
  X(VENDOR_SPECIFIC, 26)            \
  X(SESSION_TIMEOUT, 27)            \
  X(IDLE_TIMEOUT, 28)               \
  X(TERMINATION_ACTION, 29)         \
  X(CALLED_STATION_ID, 30)          \
  X(CALLING_STATION_ID, 31)         \
  X(NAS_IDENTIFIER, 32)             \
  X(PROXY_STATE, 33)                \
  X(LOGIN_LAT_SERVICE, 34)          \
  X(LOGIN_LAT_NODE, 35)             \
  X(LOGIN_LAT_GROUP, 36)            \
  X(FRAMED_APPLETALK_LINK, 37)      \
  X(FRAMED_APPLETALK_NETWORK, 38)   \
  X(FRAMED_APPLETALK_ZONE, 39)      \
  X(ACCT_STATUS_TYPE, 40)           \
  X(ACCT_DELAY_TIME, 41)            \
  X(ACCT_INPUT_OCTETS, 42)          \
  X(ACCT_OUTPUT_OCTETS, 43)         \
  X(ACCT_SESSION_ID, 44)            \
  X(ACCT_AUTHENTIC, 45)             \
  X(ACCT_SESSION_TIME, 46)          \
  X(ACCT_INPUT_PACKETS, 47)         \
  X(ACCT_OUTPUT_PACKETS, 48)        \
  X(ACCT_TERMINATE_CAUSE, 49)       \
  X(ACCT_MULTI_SESSION_ID, 50)      \
  X(ACCT_LINK_COUNT, 51)            \
  X(EVENT_TIMESTAMP, 55)            \
  X(CHAP_CHALLENGE, 60)             \
  X(NAS_PORT_TYPE, 61)              \
  X(PORT_LIMIT, 62)                 \
  X(LOGIN_LAT_PORT, 63)             \
  X(TUNNEL_TYPE, 64)                \
  X(TUNNEL_MEDIUM_TYPE, 65)         \
  X(CONNECT_INFO, 77)               \
  X(EAP_MESSAGE, 79)                \
  X(MESSAGE_AUTHENTICATOR, 80)      \
  X(TUNNEL_PRIVATE_GROUP_ID, 81)    \
  X(NAS_PORT_ID, 87)                \
  X(NAS_FILTER_RULE, 92)            \
  X(NAS_IPV6_ADDRESS, 95)           \
  X(FRAMED_INTERFACE_ID, 96)        \
  X(FRAMED_IPV6_PREFIX, 97)         \
  X(LOGIN_IPV6_HOST, 98)            \
  X(FRAMED_IPV6_ROUTE, 99)          \
  X(FRAMED_IPV6_POOL, 100)          \
  X(ERROR_CAUSE, 101)               \
  X(EAP_KEY_NAME, 102)              \
  X(FRAMED_IPV6_ADDRESS, 168)

TYL_ENUMERATION_HOLDER(RadiusAttributeId, ::Verda::U8, ::Verda::U32, RADIUS_ATTRIBUTE_ID_LIST)

/// The values of Acct-Status-Type, attribute 40 (RFC 2866, 2867).
#define RADIUS_ACCOUNTING_STATUS_LIST(X) \
  X(START, 1)                            \
  X(STOP, 2)                             \
  X(INTERIM_UPDATE, 3)                   \
  X(ON, 7)                               \
  X(OFF, 8)                              \
  X(TUNNEL_START, 9)                     \
  X(TUNNEL_STOP, 10)                     \
  X(TUNNEL_REJECT, 11)                   \
  X(TUNNEL_LINK_START, 12)               \
  X(TUNNEL_LINK_STOP, 13)                \
  X(TUNNEL_LINK_REJECT, 14)              \
  X(FAILED, 15)

TYL_ENUMERATION_HOLDER(RadiusAccountingStatus, ::Verda::U8, ::Verda::U32,
                       RADIUS_ACCOUNTING_STATUS_LIST)

/// The values of Error-Cause, attribute 101 (RFC 5176), and two of our own: `SUCCESS` and
/// `BADREQP`.
#define RADIUS_DYN_AUTH_ERROR_CODE_LIST(X) \
  X(SUCCESS, 200)                          \
  X(BADREQP, 1) /* a bad request packet */ \
  X(UNSUPPORTED_ATTRIBUTE, 401)            \
  X(MISSING_ATTRIBUTE, 402)                \
  X(NAS_MISMATCH, 403)                     \
  X(INVALID_REQUEST, 404)                  \
  X(INVALID_ATTRIBUTE_VALUE, 407)          \
  X(SESSION_CONTEXT_NOT_FOUND, 503)        \
  X(RESOURCE_UNAVAILABLE, 506)

TYL_ENUMERATION_HOLDER(RadiusDynAuthErrorCode, ::Verda::U32, ::Verda::U32,
                       RADIUS_DYN_AUTH_ERROR_CODE_LIST)

/// The number of vendor `QUORIN`: the enterprise number reserved for documentation (RFC 5612).
inline constexpr Verda::U32 quorinVendorNumber = 32473;

/// The vendor numbers of the Vendor-Specific attribute that the library knows by name.
#define RADIUS_VENDOR_ID_LIST(X) \
  X(QUORIN, quorinVendorNumber)  \
  X(MS, 311)

TYL_ENUMERATION_HOLDER(RadiusVendorId, ::Verda::U32, ::Verda::U32, RADIUS_VENDOR_ID_LIST)

/// The sub-attributes of vendor `QUORIN`.
#define QUORIN_VENDOR_SPEC_LIST(X) \
  X(WEBAUTH, 6)                    \
  X(BLOCKMAC, 7)                   \
  X(UNBLOCKMAC, 8)                 \
  X(PORTFLAP, 9)                   \
  X(CAPTIVE_PORTAL, 10)            \
  X(SEGMENT_ID, 11)                \
  X(ORIGIN_IDENTIFIER, 12)         \
  X(PERIODIC_IDENTITY, 13)         \
  X(DYNAMIC_HOST_MODE, 14)         \
  X(DEVICE_TYPE, 15)               \
  X(ACTION, 16)                    \
  X(DEVICE_PROFILING, 17)          \
  X(PORT_SHUTDOWN, 18)             \
  X(MVRP, 19)                      \
  X(TENANT_ID, 20)                 \
  X(INTERFACE_PROFILE, 21)         \
  X(CONFIG_VLAN, 22)               \
  X(FORBID_AUTHTYPE, 23)

TYL_ENUMERATION_HOLDER(QuorinVendorSpec, ::Verda::U8, ::Verda::U32, QUORIN_VENDOR_SPEC_LIST)

/// The sub-attributes of vendor `MS` (RFC 2548).
#define MS_VENDOR_SPEC_LIST(X) \
  X(MPPE_SEND_KEY, 16)         \
  X(MPPE_RECV_KEY, 17)

TYL_ENUMERATION_HOLDER(MSVendorSpec, ::Verda::U8, ::Verda::U32, MS_VENDOR_SPEC_LIST)

/// What a client is told of one RADIUS exchange.
#define RADIUS_RETURN_CODE_LIST(X)    \
  X(BADRESP, -2) /* a bad response */ \
  X(ERROR, -1)                        \
  X(OK, 0)                            \
  X(TIMEOUT, 1)                       \
  X(REJECT, 2)                        \
  X(CHALLENGE, 3)

TYL_ENUMERATION_HOLDER(RadiusReturnCode, ::Verda::S32, ::Verda::S32, RADIUS_RETURN_CODE_LIST)

/// The statistics counters of a client and of a Dynamic Authorization server, each named by its
/// enumerator. `AUTHN` is authentication, `DM` a Disconnect message (RFC 5176).
#define RADIUS_COUNTERS_LIST(X)             \
  X(AUTHN_SEND, 0)                          \
  X(AUTHN_RECV, 1)                          \
  X(AUTHN_ACCEPT, 2)                        \
  X(AUTHN_REJECT, 3)                        \
  X(AUTHN_CHALLENGE, 4)                     \
  X(AUTHN_UNRESOLVABLE, 5)                  \
  X(AUTHN_TIMEOUT, 6)                       \
  X(AUTHN_RETRANSMIT, 7)                    \
  X(AUTHN_BADRESP, 8)                       \
  X(AUTHN_CONNECTION_ERROR, 9)              \
  X(COA_REQUEST, 10)                        \
  X(DM_REQUEST, 11)                         \
  X(COA_ACK_SEND, 12)                       \
  X(DM_ACK_SEND, 13)                        \
  X(COA_NAK_SEND, 14)                       \
  X(DM_NAK_SEND, 15)                        \
  X(DM_ERROR, 16)                           \
  X(COA_ERROR, 17)                          \
  X(ACCT_START_SEND, 18)                    \
  X(ACCT_INTERIM_SEND, 19)                  \
  X(ACCT_STOP_SEND, 20)                     \
  X(ACCT_RESPONSE_OK, 21)                   \
  X(ACCT_RESPONSE_ERROR, 22)                \
  X(COA_UNSUPPORTED_VSA_ONLY, 23)           \
  X(DM_UNSUPPORTED_VSA_ONLY, 24)            \
  X(ACCESS_ACCEPT_UNSUPPORTED_VSA_ONLY, 25) \
  X(AUTHN_REQUEST_SEND, 26)

TYL_ENUMERATION_HOLDER(RadiusCounters, ::Verda::U8, ::Verda::U32, RADIUS_COUNTERS_LIST)

/// The values of Service-Type, attribute 6 (RFC 2865).
#define RADIUS_SERVICE_TYPE_VALUE_LIST(X) \
  X(LOGIN, 1)                             \
  X(FRAMED, 2)                            \
  X(CALLBACK_LOGIN, 3)                    \
  X(CALLBACK_FRAMED, 4)                   \
  X(OUTBOUND, 5)                          \
  X(ADMINISTRATIVE, 6)                    \
  X(NAS_PROMPT, 7)                        \
  X(AUTHENTICATE_ONLY, 8)                 \
  X(CALLBACK_NAS_PROMPT, 9)               \
  X(CALL_CHECK, 10)                       \
  X(CALLBACK_ADMINISTRATIVE, 11)

TYL_ENUMERATION_HOLDER(RadiusServiceTypeValue, ::Verda::U8, ::Verda::U32,
                       RADIUS_SERVICE_TYPE_VALUE_LIST)

}  // namespace RadiusPacketParser
