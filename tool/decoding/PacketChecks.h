#pragma once

#include "Verda/Bytes.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tool/decoding/PacketReport.h"

namespace RadiusPacketTool {

/// Whether a packet of that code, whose header is in order, cannot be decoded for want of a Request
/// Authenticator; the report then says so.
bool lacksRequestAuthenticator(Verda::U8 code, const Verda::Bytes& requestAuthenticator,
                               PacketReport& report);

/// Reports what is known of the authenticators of a packet whose header is in order, once it was
/// decoded with that result.
/// @param messageAuthenticatorPresent  whether the library took one for good
void reportChecks(Verda::U8 code, RadiusPktParserBase::ErrorMsg error,
                  bool messageAuthenticatorPresent, PacketReport& report);

}  // namespace RadiusPacketTool
