#pragma once

#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <variant>
#include <vector>

#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktParser.h"

namespace Example {

/// The sink of a CoA or Disconnect request: what it asks for.
class DynAuthRequest : public RadiusPktParserBase::PktInfoParser {
 public:
  static Verda::Ptr<DynAuthRequest> make() { return Verda::Ptr(new DynAuthRequest); }

  /// A packet that somebody caught, to send it once more later, is to have no effect (RFC 5176
  /// section 6.3).
  bool isCurrent() const {
    constexpr std::time_t window = 300;
    return !eventTimestamp || std::abs(std::time(nullptr) - std::time_t{*eventTimestamp}) <= window;
  }

  /// An answer gives back what proxies left and is signed as the request was, so that it is never
  /// longer than the request; a NAK says why as well, where there is room.
  bool leavesRoomForErrorCause() const {
    using RadiusPacketParser::AttributeConstants;
    constexpr std::size_t errorCauseLength =
        AttributeConstants::valueOffset() + AttributeConstants::intLength();
    return answerLength + errorCauseLength <= RadiusPacketParser::PacketConstants::maxLength();
  }

  /// Notes an attribute that the answer has as well.
  void answerHas(std::size_t valueLength) {
    answerLength += RadiusPacketParser::AttributeConstants::valueOffset() + valueLength;
  }

  std::optional<Verda::String> sessionId;
  std::optional<Verda::U32> eventTimestamp;
  std::vector<RadiusPktParserBase::AttrValue> proxyStates;
  bool changesSession = false;
  bool isWellFormed = true;  ///< carries nothing twice that a request has once at most
  bool isUnderstood = true;  ///< carries no attribute that means nothing here
  std::size_t answerLength = RadiusPacketParser::PacketConstants::headerLength();
};

/// Fills a `DynAuthRequest`.
class DynAuthRequestParser : public RadiusPktParserBase::RadiusPktParser {
 public:
  using RadiusPktParser::RadiusPktParser;

  void doProcessAttribute(const RadiusPktParserBase::Attribute& attr,
                          const RadiusPktParserBase::AttrValue& value,
                          RadiusPktParserBase::AttrInfo /*info*/,
                          const Verda::Ptr<RadiusPktParserBase::PktInfoParser>& sink) override {
    using RadiusPacketParser::RadiusAttributeId;
    auto& request = static_cast<DynAuthRequest&>(*sink);
    switch (attr.attrId) {
      case RadiusAttributeId::ACCT_SESSION_ID:
        takeOnce(value, request.sessionId, request);
        break;
      case RadiusAttributeId::EVENT_TIMESTAMP:
        takeOnce(value, request.eventTimestamp, request);
        break;
      case RadiusAttributeId::PROXY_STATE:
        request.proxyStates.push_back(value);
        request.answerHas(std::get<Verda::Bytes>(value).size());
        break;
      case RadiusAttributeId::SESSION_TIMEOUT:
      case RadiusAttributeId::FILTER_ID:
        request.changesSession = true;
        break;
      case RadiusAttributeId::MESSAGE_AUTHENTICATOR:
        request.answerHas(RadiusPacketParser::AttributeConstants::msgAuthLength());
        break;
      default:
        request.isUnderstood = false;
    }
  }

 private:
  /// Which of two would be meant, nobody can know (RFC 5176 section 3.6).
  template <typename T>
  static void takeOnce(const RadiusPktParserBase::AttrValue& value, std::optional<T>& place,
                       DynAuthRequest& request) {
    request.isWellFormed = request.isWellFormed && !place;
    place = std::get<T>(value);
  }
};

}  // namespace Example
