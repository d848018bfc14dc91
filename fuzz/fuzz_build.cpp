// Builds a packet from any request. Whatever it asks for: no fault of memory, no assertion; what
// comes out has the length that it says, and goes through the parser.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "fuzz/FuzzInput.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktParser.h"

/// The secret, code and identifier, a choice of Request Authenticator, the build request.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace RadiusPktParserBase;
  static const auto dictionary = Fuzz::everyKindOfAttribute();
  static const auto builder = radiusPktBuilderFactory(dictionary);
  static const auto parser = radiusPktParserFactory(dictionary);
  Fuzz::traceEverything();

  Fuzz::Choices choices(std::span<const Verda::U8>(data, size));
  const Verda::String secret = choices.secret();
  const Verda::U8 code = choices.code();
  const auto hdr = builder->createRadiusHdr(code, choices.byte())->hdr();
  const Verda::Bytes reqAuth = Fuzz::requestAuthenticator(code, choices.byte());
  const auto result = builder->createPktFromHdr(secret, reqAuth, hdr, choices.buildRequest());
  if (result->errorMsg() != ErrorMsg::success) {
    return result->pkt() ? (std::abort(), 0) : 0;
  }
  const auto parsed = parser->getHeader(result->pkt());
  if (parsed->errorMsg() != ErrorMsg::success || parsed->hdr()->length() != hdr->length() ||
      result->pkt()->bytes() != hdr->length()) {
    std::abort();
  }
  parser->doProcessPkt(result->pkt(), secret, reqAuth, pktInfoParserFactory());
  return 0;
}
