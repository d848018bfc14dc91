// Feeds any packet, under any secret and every kind of Request Authenticator that its code allows,
// to the parser. Whatever the bytes: no fault of memory, no assertion, and the packet as it was.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "Verda/Trace.h"
#include "Zonet/WireReader.h"
#include "fuzz/FuzzInput.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParser.h"

namespace {

using namespace RadiusPacketParser;
using namespace RadiusPktParserBase;
using Fuzz::everyKindOfAttribute;
using Fuzz::requestAuthenticator;
using Verda::U8;

/// Keeps what the hook hands over, as an agent would.
class KeepingParser final : public RadiusPktParser {
 public:
  using RadiusPktParser::RadiusPktParser;
  void doProcessAttribute(const Attribute& /*attr*/, const AttrValue& attrValue,
                          AttrInfo /*attrInfo*/,
                          const Verda::Ptr<PktInfoParser>& /*sink*/) override {
    kept_ = attrValue;
  }

 private:
  AttrValue kept_;
};

/// Gives a packet the length of its buffer and a good authenticator, so that the walk is reached.
void sign(Zonet::Pkt& pkt, const Verda::String& secret, const Verda::Bytes& reqAuth) {
  if (pkt.bytes() < PacketConstants::headerLength() || pkt.bytes() > PacketConstants::maxLength()) {
    return;
  }
  pkt.data()[PacketConstants::lengthOffset()] = static_cast<U8>(pkt.bytes() >> 8U);
  pkt.data()[PacketConstants::lengthOffset() + 1] = static_cast<U8>(pkt.bytes());
  const Verda::Ptr<RadiusHdr> hdr = radiusHdrFactory();
  hdr->codeIs(pkt.data()[PacketConstants::codeOffset()]);
  hdr->lengthIs(static_cast<Verda::U16>(pkt.bytes()));
  const ErrorMsg result = reqAuth.empty()
                              ? setRequestAuthenticator(secret, pkt.data(), hdr)
                              : setResponseAuthenticator(secret, reqAuth, pkt.data(), hdr);
  if (result != ErrorMsg::success) {
    std::abort();
  }
}

}  // namespace

/// A byte of choices, the secret's length, the secret, the packet.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto parser = Verda::Ptr<RadiusPktParser>(new KeepingParser(everyKindOfAttribute()));
  Fuzz::traceEverything();

  Zonet::WireReader reader(std::span<const U8>(data, size));
  U8 choices = 0;
  U8 secretLength = 0;
  std::span<const U8> secretBytes;
  std::span<const U8> packet;
  if (!reader.read(choices) || !reader.read(secretLength) ||
      !reader.read(std::min<std::size_t>(secretLength, reader.remaining()), secretBytes) ||
      !reader.read(reader.remaining(), packet)) {
    return 0;
  }
  const Verda::String secret(secretBytes);
  const Verda::Bytes reqAuth =
      requestAuthenticator(packet.empty() ? U8{0} : packet[0], static_cast<U8>(choices >> 1U));
  const Verda::Ptr<Zonet::Pkt> pkt = Zonet::pktFactory(packet);
  if (choices % 2 == 1) {
    sign(*pkt, secret, reqAuth);
  }
  const std::vector<U8> before(pkt->span().begin(), pkt->span().end());
  parser->doProcessPkt(pkt, secret, reqAuth, pktInfoParserFactory());
  if (!std::ranges::equal(before, pkt->span())) {
    std::abort();
  }
  return 0;
}
