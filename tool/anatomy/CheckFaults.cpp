#include "tool/anatomy/CheckFaults.h"

#include <string_view>

#include <fmt/format.h>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusCode;
using RadiusPktParserBase::ErrorMsg;
using Verda::U8;

namespace {

bool isDynamicAuthorization(U8 code) {
  return code >= RadiusCode::DISCONNECT_REQUEST && code <= RadiusCode::COA_NAK;
}

std::string_view authenticatorSection(U8 code) {
  if (isDynamicAuthorization(code)) {
    return "RFC 5176 section 2.3";
  }
  return code == RadiusCode::ACCOUNTING_REQUEST || code == RadiusCode::ACCOUNTING_RESPONSE
             ? "RFC 2866 section 3"
             : "RFC 2865 section 3";
}

std::string_view messageAuthenticatorSectionOf(U8 code) {
  if (isDynamicAuthorization(code)) {
    return "RFC 5176 section 3.4";
  }
  return code == RadiusCode::STATUS_SERVER ? "RFC 5997 section 3" : "RFC 3579 section 3.2";
}

/// What is digested in the place of a packet's authenticator.
std::string_view coveredAuthenticator(U8 code) {
  return RadiusPktParserBase::isRequest(code) ? "16 zeros" : "the Request Authenticator";
}

}  // namespace

FieldFault wrongAuthenticatorFault(const PacketHeader& header) {
  return {.error = ErrorMsg::invalidPktAuth,
          .found = "another digest",
          .expected = fmt::format("MD5 over Code, Identifier, Length, {}, attributes and secret",
                                  coveredAuthenticator(*header.code)),
          .section = std::string(authenticatorSection(*header.code))};
}

FieldFault wrongMessageAuthenticatorFault(const PacketHeader& header) {
  const std::string instead =
      hasRandomAuthenticator(*header.code)
          ? ""
          : fmt::format("{} as its Authenticator and ", coveredAuthenticator(*header.code));
  return {.error = ErrorMsg::invalidMsgAuth,
          .found = "another digest",
          .expected = fmt::format(
              "HMAC-MD5 under the secret over the packet, with {}zeros in this place", instead),
          .section = std::string(messageAuthenticatorSectionOf(*header.code))};
}

FieldFault missingRequestFault() {
  return {.error = ErrorMsg::success,
          .found = "a response, and no request that it answers in front of it",
          .expected = "its request in the input, or the authenticator of that with -a",
          .section = "RFC 2865 section 3"};
}

}  // namespace RadiusPacketTool
