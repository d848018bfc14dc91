#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/decoding/PacketHeader.h"

/// The two digests over a packet, with everything that they cover open to choice: to say of one
/// that it is right, and what must be different to make it so.
namespace RadiusPacketTool {

using ByteView = std::span<const Verda::U8>;
using PacketDigest = std::array<Verda::U8, RadiusPacketParser::PacketConstants::authLength()>;

inline constexpr PacketDigest zeroAuthenticator{};

/// The length of a whole Message-Authenticator attribute.
inline constexpr std::size_t messageAuthenticatorLength =
    RadiusPacketParser::AttributeConstants::valueOffset() +
    RadiusPacketParser::AttributeConstants::msgAuthLength();

/// The authenticator that stands in a packet of at least a header.
ByteView authenticatorOf(ByteView packet);

/// What stands in the authenticator's place when the authenticator of a packet is computed: zeros
/// for a request, else the Request Authenticator, or nothing when that is not known.
ByteView authenticatorCover(Verda::U8 code, ByteView requestAuthenticator);

/// Likewise for the Message-Authenticator of a packet (RFC 3579 section 3.2, RFC 5176 section 3.4,
/// RFC 5997 section 3): its own authenticator where that is random.
ByteView messageAuthenticatorCover(ByteView packet, ByteView requestAuthenticator);

/// Whether there is a rule for what a Message-Authenticator in that code covers.
bool knowsMessageAuthenticatorOf(Verda::U8 code);

/// The authenticator that a packet should have: the MD5 over it, with `cover` in the
/// authenticator's place, and the secret. Nothing when there is no `cover`, or when the computation
/// failed.
std::optional<PacketDigest> computedAuthenticator(ByteView packet, ByteView cover, ByteView secret);

/// The Message-Authenticator that a packet should have: the HMAC-MD5 over it with `cover` in the
/// authenticator's place and its own value counting as `field`. Nothing when there is no `cover`,
/// or when the computation failed.
/// @param at  the offset of the attribute, which lies in the packet
std::optional<PacketDigest> computedMessageAuthenticator(ByteView packet, std::size_t at,
                                                         ByteView cover, ByteView secret,
                                                         ByteView field = zeroAuthenticator);

/// Likewise, over a packet that has no such attribute.
std::optional<PacketDigest> computedMessageAuthenticator(ByteView packet, ByteView cover,
                                                         ByteView secret);

/// The value of the Message-Authenticator at that offset.
ByteView messageAuthenticatorIn(ByteView packet, std::size_t at);

/// Whether two digests are the same, in constant time; what could not be computed is not.
bool sameDigest(const std::optional<PacketDigest>& computed, ByteView received);

}  // namespace RadiusPacketTool
