#pragma once

#include <string>

#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParser.h"

namespace Example {

// [answer]
/// Why `pkt` is no good answer to a request; empty for a good one. Anybody may send anything to an
/// agent's socket, so the header decides first whether the packet can be an answer at all: only
/// then does the library see it together with the Request Authenticator.
/// @param request  the header of the request, as it was sent
inline std::string faultOfAnswer(RadiusPktParserBase::RadiusPktParser& parser,
                                 const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::String& secret,
                                 const RadiusPktParserBase::RadiusHdr& request,
                                 const Verda::Ptr<RadiusPktParserBase::PktInfoParser>& sink) {
  using RadiusPktParserBase::ErrorMsg;
  const auto header = parser.getHeader(pkt);
  if (header->errorMsg() != ErrorMsg::success) {
    return std::string(stringValue(header->errorMsg()).view());
  }
  const RadiusPktParserBase::RadiusHdr& hdr = *header->hdr();
  if (!RadiusPktParserBase::canAnswer(hdr.code(), request.code()) || hdr.id() != request.id()) {
    return "not an answer to this request";
  }
  const Verda::Bytes requestAuthenticator(request.authenticator().bytes());
  const ErrorMsg result = parser.doProcessPkt(pkt, secret, requestAuthenticator, sink);
  return result == ErrorMsg::success ? "" : std::string(stringValue(result).view());
}
// [/answer]

}  // namespace Example
