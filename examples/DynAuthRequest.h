#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <variant>
#include <vector>

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

  std::optional<Verda::String> sessionId;
  std::optional<Verda::U32> eventTimestamp;
  std::vector<RadiusPktParserBase::AttrValue> proxyStates;
  bool changesSession = false;
  bool isUnderstood = true;  ///< carries no attribute that means nothing here
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
        request.sessionId = std::get<Verda::String>(value);
        break;
      case RadiusAttributeId::EVENT_TIMESTAMP:
        request.eventTimestamp = std::get<Verda::U32>(value);
        break;
      case RadiusAttributeId::PROXY_STATE:
        request.proxyStates.push_back(value);
        break;
      case RadiusAttributeId::SESSION_TIMEOUT:
      case RadiusAttributeId::FILTER_ID:
        request.changesSession = true;
        break;
      case RadiusAttributeId::MESSAGE_AUTHENTICATOR:
        break;
      default:
        request.isUnderstood = false;
    }
  }
};

}  // namespace Example
