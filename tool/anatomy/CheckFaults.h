#pragma once

#include "tool/anatomy/Anatomy.h"
#include "tool/decoding/PacketHeader.h"

/// What is wrong with the authenticators of a packet, which only a secret tells, in words.
namespace RadiusPacketTool {

/// An authenticator that is not that of the packet. The header is whole.
FieldFault wrongAuthenticatorFault(const PacketHeader& header);

/// A Message-Authenticator that is not that of the packet. The header is whole.
FieldFault wrongMessageAuthenticatorFault(const PacketHeader& header);

/// A response whose request is not known.
FieldFault missingRequestFault();

}  // namespace RadiusPacketTool
