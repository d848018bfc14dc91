#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktParserTest.h"
#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tool/decoding/PacketHeader.h"
#include "tool/input/InputPacket.h"
#include "tool/process/ExitCode.h"
#include "tool/text/ShownValue.h"

namespace RadiusPacketTool {

/// One attribute as the library gives it.
struct ReportedAttribute {
  RadiusPktParserBase::Attribute key;
  std::string name;  ///< that of the dictionary, or one made from the numbers
  RadiusPacketParser::RadiusAttributeType::RadiusAttributeTypeEnum type =
      RadiusPacketParser::RadiusAttributeType::unknown;
  std::optional<Verda::U8> tag;
  ShownValue value;
  bool isRevealed = false;      ///< the value is hidden on the wire: who sees it sees a secret
  std::vector<Verda::U8> wire;  ///< the value as on the wire, still hidden
  std::size_t offset = 0;       ///< of the attribute's Type byte from the packet's first byte
  std::size_t length = 0;       ///< of the whole attribute in bytes, as its Length byte says
};

/// What a check found out. `unchecked` stands for what nobody can check or has checked.
enum class Check : Verda::U8 { absent, unchecked, verified, wrong };

/// What there would have to be for a verdict on a packet.
enum class Missing : Verda::U8 { nothing, requestAuthenticator, secret, bytes };

/// All that is known of one packet once it is decoded, whatever it is shown as.
struct PacketReport {
  PacketPlace place;
  std::optional<Datagram> datagram;  ///< of a packet from a capture
  PacketHeader header;

  /// The request whose authenticator a response was checked with, if it was found in the input.
  std::optional<PacketPlace> pairedWith;
  /// The packet that this one repeats.
  std::optional<PacketPlace> retransmissionOf;

  /// Nothing when something is missing for a verdict.
  std::optional<RadiusPktParserBase::ErrorMsg> error;
  Missing missing = Missing::nothing;
  /// The trace text of the check that failed, if it wrote one; or what is missing.
  std::optional<std::string> reason;

  Check authenticatorCheck = Check::absent;
  Check messageAuthenticatorCheck = Check::absent;
  bool messageAuthenticatorPresent = false;  ///< as the library's sink says

  /// The verdict on the attributes below, for a Status-Server packet whose header is in order.
  std::optional<RadiusPktParserTest::StatusServerErrorMsg> statusServer;

  std::vector<ReportedAttribute> attributes;

  /// What is to be said of the packet although it is no fault.
  std::vector<std::string> warnings;
};

/// Whether the packet decodes with `success`.
inline bool isAccepted(const PacketReport& report) {
  return report.error == RadiusPktParserBase::ErrorMsg::success;
}

/// What a packet with that error contributes to the exit code.
ExitCode exitCodeOf(RadiusPktParserBase::ErrorMsg error);

/// What a packet contributes to the exit code; that of several packets is the greatest.
ExitCode exitCodeOf(const PacketReport& report);

/// The name of the fault, then the reason where there is one.
std::string faultText(const PacketReport& report);

}  // namespace RadiusPacketTool
