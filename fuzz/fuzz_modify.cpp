// Modifies any bytes by any request. Whatever they are: no fault of memory, no assertion, and the
// bytes as they were; what comes out has the length that it says, and the old code and identifier.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "fuzz/FuzzInput.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktParser.h"

namespace {

using namespace RadiusPacketParser;
using namespace RadiusPktParserBase;
using Verda::U8;

/// Mostly, the packet says its true length, so that the walk is reached.
void setLength(std::vector<U8>& packet, bool trueLength) {
  if (trueLength && packet.size() >= PacketConstants::headerLength()) {
    packet[PacketConstants::lengthOffset()] = static_cast<U8>(packet.size() >> 8U);
    packet[PacketConstants::lengthOffset() + 1] = static_cast<U8>(packet.size());
  }
}

}  // namespace

/// The secret, choices of length and Request Authenticator, the build request's length, the build
/// request, the packet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto dictionary = Fuzz::everyKindOfAttribute();
  static const auto builder = radiusPktBuilderFactory(dictionary);
  static const auto parser = radiusPktParserFactory(dictionary);
  Fuzz::traceEverything();

  Fuzz::Choices choices(std::span<const U8>(data, size));
  const Verda::String secret = choices.secret();
  const bool trueLength = choices.below(8) != 0;
  const U8 authenticatorChoice = choices.byte();
  const auto request = Fuzz::Choices(choices.bytes(choices.number() % 512)).buildRequest();
  const std::span<const U8> rest = choices.rest();
  std::vector<U8> packet(rest.begin(), rest.end());
  setLength(packet, trueLength);
  const auto pkt = Zonet::pktFactory(std::span<const U8>(packet));
  const Verda::Bytes reqAuth =
      Fuzz::requestAuthenticator(packet.empty() ? U8{0} : packet[0], authenticatorChoice);
  const auto result = builder->modifyPkt(pkt, secret, reqAuth, request);
  if (!std::ranges::equal(pkt->span(), packet)) {
    std::abort();
  }
  if (result->errorMsg() != ErrorMsg::success) {
    return result->pkt() ? (std::abort(), 0) : 0;
  }
  const auto parsed = parser->getHeader(result->pkt());
  if (parsed->errorMsg() != ErrorMsg::success ||
      result->pkt()->bytes() != parsed->hdr()->length() || parsed->hdr()->code() != packet[0] ||
      parsed->hdr()->id() != packet[1]) {
    std::abort();
  }
  parser->doProcessPkt(result->pkt(), secret, reqAuth, pktInfoParserFactory());
  return 0;
}
