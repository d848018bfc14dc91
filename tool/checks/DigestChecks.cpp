#include "tool/checks/DigestChecks.h"

#include <algorithm>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using Verda::U8;

namespace {

constexpr const char* noneThere = "there is none";

bool isAccessAnswer(U8 code) {
  return code == RadiusCode::ACCESS_ACCEPT || code == RadiusCode::ACCESS_REJECT ||
         code == RadiusCode::ACCESS_CHALLENGE;
}

bool isAccounting(U8 code) {
  return code == RadiusCode::ACCOUNTING_REQUEST || code == RadiusCode::ACCOUNTING_RESPONSE;
}

bool isAccess(U8 code) {
  return code == RadiusCode::ACCESS_REQUEST || isAccessAnswer(code);
}

/// Where the authenticator of a code is laid down.
const char* authenticatorRfc(U8 code) {
  if (isAccess(code)) {
    return "RFC 2865 section 3";
  }
  if (isAccounting(code)) {
    return "RFC 2866 section 3";
  }
  if (code == RadiusCode::STATUS_SERVER) {
    return "RFC 5997 section 3";
  }
  return knowsMessageAuthenticatorOf(code) ? "RFC 5176 section 2.3" : "";
}

/// Where its Message-Authenticator is.
const char* messageAuthenticatorRfc(U8 code) {
  if (isAccess(code)) {
    return "RFC 3579 section 3.2";
  }
  if (isAccounting(code)) {
    return "RFC 2869 section 5.14";
  }
  if (code == RadiusCode::STATUS_SERVER) {
    return "RFC 5997 section 3";
  }
  return knowsMessageAuthenticatorOf(code) ? "RFC 5176 section 3.4" : "";
}

ByteView secretOf(const CheckedPacket& packet) {
  const Verda::String& text = packet.context.secret->text();
  return text.bytes().first(text.viewToNul().size());
}

bool isResponse(const CheckedPacket& packet) {
  return !RadiusPktParserBase::isRequest(packet.code());
}

/// The authenticator of the request that a response answers; empty for a request.
ByteView requestAuthenticatorOf(const CheckedPacket& packet) {
  return isResponse(packet) ? packet.context.request.bytes.span() : ByteView();
}

/// What a digest cannot be checked for want of; empty when everything is there.
std::string missingInput(const CheckedPacket& packet) {
  if (packet.context.secret == nullptr) {
    return "no shared secret is known for its client";
  }
  return isResponse(packet) && packet.context.request.bytes.empty() ? noRequestAuthenticator : "";
}

/// What a digest that fails is not that of.
std::string notThatOf(const CheckedPacket& packet) {
  return isResponse(packet) ? "it is not that of this packet, secret and Request Authenticator"
                            : "it is not that of this packet and secret";
}

/// The request that gave the Request Authenticator.
std::string pairing(const CheckedPacket& packet) {
  const std::optional<PacketPlace>& request = packet.context.request.pairedWith;
  return isResponse(packet) && request.has_value()
             ? fmt::format("paired with {}", placeText(*request))
             : "";
}

std::vector<AttributePlace> messageAuthenticatorsOf(const CheckedPacket& packet) {
  std::vector<AttributePlace> found;
  std::ranges::copy_if(packet.attributes, std::back_inserter(found),
                       [](const AttributePlace& place) {
                         return place.type == RadiusAttributeId::MESSAGE_AUTHENTICATOR;
                       });
  return found;
}

BytePlace placeOf(const AttributePlace& attribute) {
  return {.offset = attribute.offset, .length = attribute.length};
}

CheckResult absence(const CheckedPacket& packet, const char* check, const char* rfc) {
  return {.check = check,
          .verdict = Verdict::cannotTell,
          .reason = packet.isWhole()
                        ? std::string(noneThere)
                        : fmt::format("{} in front of the fault: {}", noneThere, packet.endText()),
          .place = std::nullopt,
          .rfc = rfc};
}

const AttributePlace* eapMessageFind(const CheckedPacket& packet) {
  const auto found =
      std::ranges::find(packet.attributes, RadiusAttributeId::EAP_MESSAGE, &AttributePlace::type);
  return found == packet.attributes.end() ? nullptr : &*found;
}

/// The result for a packet that has none.
CheckResult notPresent(const CheckedPacket& packet) {
  CheckResult result = absence(packet, presentCheck, "");
  if (!packet.isWhole()) {
    return result;
  }
  result.verdict = Verdict::fail;
  if (const AttributePlace* eapMessage = eapMessageFind(packet)) {
    result.reason = "there is none beside the EAP-Message";
    result.place = placeOf(*eapMessage);
    result.rfc = "RFC 3579 section 3.1";
  } else if (isAccessAnswer(packet.code())) {
    result.reason =
        "without one, anybody on the path can forge this answer (CVE-2024-3596) unless TLS or "
        "IPsec "
        "protects it";
  } else if (packet.code() == RadiusCode::ACCESS_REQUEST) {
    result.reason =
        "without one, anybody on the path can change this request to forge its answer "
        "(CVE-2024-3596) unless TLS or IPsec protects it";
  } else if (packet.code() == RadiusCode::STATUS_SERVER) {
    result.reason = "a Status-Server packet must have one";
    result.rfc = "RFC 5997 section 3";
  } else {
    result.verdict = Verdict::pass;
    result.reason = "there is none, and this code does not need one";
  }
  return result;
}

/// The result for a packet that has one, whose digest can be computed.
CheckResult comparedMessageAuthenticator(const CheckedPacket& packet,
                                         const AttributePlace& attribute) {
  const bool isRight =
      sameDigest(computedMessageAuthenticator(
                     packet.bytes, attribute.offset,
                     messageAuthenticatorCover(packet.bytes, requestAuthenticatorOf(packet)),
                     secretOf(packet)),
                 messageAuthenticatorIn(packet.bytes, attribute.offset));
  return {.check = validCheck,
          .verdict = isRight ? Verdict::pass : Verdict::fail,
          .reason = isRight ? pairing(packet) : notThatOf(packet),
          .place = isRight ? std::nullopt : std::optional(placeOf(attribute)),
          .rfc = messageAuthenticatorRfc(packet.code())};
}

/// Why the one Message-Authenticator of a packet cannot be computed at all; empty when it can.
std::string messageAuthenticatorFault(const CheckedPacket& packet,
                                      const AttributePlace& attribute) {
  if (attribute.length != messageAuthenticatorLength) {
    return fmt::format("its value has {} bytes, not {}",
                       attribute.length - AttributeConstants::valueOffset(),
                       AttributeConstants::msgAuthLength());
  }
  return knowsMessageAuthenticatorOf(packet.code())
             ? ""
             : "there is no rule for what one covers in this code";
}

}  // namespace

CheckResult authenticatorResult(const CheckedPacket& packet) {
  const U8 code = packet.code();
  CheckResult result{.check = authenticatorCheck,
                     .verdict = Verdict::cannotTell,
                     .reason = missingInput(packet),
                     .place = std::nullopt,
                     .rfc = authenticatorRfc(code)};
  if (hasRandomAuthenticator(code)) {
    result.reason = "it is random in this code";
    return result;
  }
  if (!result.reason.empty()) {
    return result;
  }
  const bool isRight = sameDigest(
      computedAuthenticator(packet.bytes, authenticatorCover(code, requestAuthenticatorOf(packet)),
                            secretOf(packet)),
      authenticatorOf(packet.bytes));
  result.verdict = isRight ? Verdict::pass : Verdict::fail;
  result.reason = isRight ? pairing(packet) : notThatOf(packet);
  if (!isRight) {
    result.place = {.offset = RadiusPacketParser::PacketConstants::authenticatorOffset(),
                    .length = RadiusPacketParser::PacketConstants::authLength()};
  }
  return result;
}

CheckResult presentResult(const CheckedPacket& packet) {
  if (messageAuthenticatorsOf(packet).empty()) {
    return notPresent(packet);
  }
  return {.check = presentCheck,
          .verdict = Verdict::pass,
          .reason = "",
          .place = std::nullopt,
          .rfc = messageAuthenticatorRfc(packet.code())};
}

CheckResult firstResult(const CheckedPacket& packet) {
  const std::vector<AttributePlace> found = messageAuthenticatorsOf(packet);
  if (found.empty()) {
    return absence(packet, firstCheck, "");
  }
  CheckResult result{
      .check = firstCheck, .verdict = Verdict::pass, .reason = "", .place = std::nullopt};
  if (found.front().offset == packet.attributes.front().offset) {
    return result;
  }
  if (!isAccessAnswer(packet.code())) {
    result.reason = "its place does not matter in this code";
    return result;
  }
  result.verdict = Verdict::fail;
  result.reason =
      "a client that does not insist on one can be given a forged answer (CVE-2024-3596) unless "
      "TLS "
      "or IPsec protects it";
  result.place = placeOf(found.front());
  return result;
}

CheckResult uniqueResult(const CheckedPacket& packet) {
  constexpr const char* rfc = "RFC 2869 section 5.19";
  const std::vector<AttributePlace> found = messageAuthenticatorsOf(packet);
  if (found.size() > 1) {
    return {.check = uniqueCheck,
            .verdict = Verdict::fail,
            .reason = fmt::format("there are {}", found.size()),
            .place = placeOf(found[1]),
            .rfc = rfc};
  }
  if (found.empty() || !packet.isWhole()) {
    CheckResult result = absence(packet, uniqueCheck, rfc);
    if (!found.empty()) {
      result.reason = packet.endText();
    }
    return result;
  }
  return {.check = uniqueCheck,
          .verdict = Verdict::pass,
          .reason = "",
          .place = std::nullopt,
          .rfc = rfc};
}

CheckResult validResult(const CheckedPacket& packet) {
  const char* const rfc = messageAuthenticatorRfc(packet.code());
  const std::vector<AttributePlace> found = messageAuthenticatorsOf(packet);
  if (found.empty()) {
    return absence(packet, validCheck, rfc);
  }
  CheckResult result{.check = validCheck,
                     .verdict = Verdict::fail,
                     .reason = messageAuthenticatorFault(packet, found.front()),
                     .place = placeOf(found.front()),
                     .rfc = rfc};
  if (!result.reason.empty()) {
    return result;
  }
  result.verdict = Verdict::cannotTell;
  result.place.reset();
  result.reason =
      found.size() > 1 ? fmt::format("there are {}", found.size()) : missingInput(packet);
  return result.reason.empty() ? comparedMessageAuthenticator(packet, found.front()) : result;
}

}  // namespace RadiusPacketTool
