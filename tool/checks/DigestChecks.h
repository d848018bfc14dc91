#pragma once

#include "tool/checks/CheckResult.h"
#include "tool/checks/CheckedPacket.h"

namespace RadiusPacketTool {

inline constexpr const char* authenticatorCheck = "authenticator";
inline constexpr const char* presentCheck = "Message-Authenticator present";
inline constexpr const char* firstCheck = "Message-Authenticator first";
inline constexpr const char* uniqueCheck = "Message-Authenticator unique";
inline constexpr const char* validCheck = "Message-Authenticator valid";

/// Whether the authenticator is that of the packet, the secret and the request.
CheckResult authenticatorResult(const CheckedPacket& packet);

/// Whether there is a Message-Authenticator where one should be: in the answers to an
/// Access-Request and in that itself, without which answers can be forged (CVE-2024-3596), in a
/// Status-Server packet and beside an EAP-Message.
CheckResult presentResult(const CheckedPacket& packet);

/// Whether the Message-Authenticator stands in front of all other attributes, as it should in the
/// answers to an Access-Request: who cannot tell how the packet begins cannot forge another that
/// has the same authenticator.
CheckResult firstResult(const CheckedPacket& packet);

/// Whether there is no second one.
CheckResult uniqueResult(const CheckedPacket& packet);

/// Whether it is that of the packet, the secret and the request; also in accounting packets, where
/// `decode` does not check it.
CheckResult validResult(const CheckedPacket& packet);

}  // namespace RadiusPacketTool
