// Takes the answer to a request: looks at its header before trusting it, has the library verify and
// decode it, and prints every attribute.
//
//   receive_answer DICTIONARY SECRET REQUEST-HEX ANSWER-HEX
//
// The packets come as hex in place of a socket. Exit status: 0 for a good answer, 1 for a refused
// one.

#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParser.h"

namespace {

using namespace RadiusPktParserBase;

/// Writes one decoded value; a tag is still part of the value and is taken off here.
struct ValuePrinter {
  void operator()(const Verda::String& text) const {
    std::cout << '"' << Verda::escaped(text, "\"\\") << '"';
  }
  void operator()(const TaggedStr& delivered) const {
    const TaggedStr tagged = separateTag(delivered);
    (*this)(tagged.str);
    std::cout << " (tag " << unsigned{tagged.tag} << ')';
  }
  void operator()(const TaggedInt& delivered) const {
    const TaggedInt tagged = separateTag(delivered);
    std::cout << tagged.value << " (tag " << unsigned{tagged.tag} << ')';
  }
  void operator()(const Zonet::IpGenPrefix& prefix) const { std::cout << prefix.address().text(); }
  void operator()(const Verda::Bytes& bytes) const { std::cout << bytes.size() << " bytes"; }
  template <typename Number>
  void operator()(Number number) const {
    std::cout << number;
  }
};

/// Receives every attribute of a packet, in packet order.
class PrintingParser : public RadiusPktParser {
 public:
  using RadiusPktParser::RadiusPktParser;

  void doProcessAttribute(const Attribute& attr, const AttrValue& value, AttrInfo /*info*/,
                          const Verda::Ptr<PktInfoParser>& /*sink*/) override {
    std::cout << "  "
              << stringValue(
                     RadiusPacketParser::RadiusAttributeId::RadiusAttributeIdEnum{attr.attrId});
    if (attr.attrId == RadiusPacketParser::RadiusAttributeId::VENDOR_SPECIFIC) {
      std::cout << ' ' << attr.vendorId << '.' << unsigned{attr.vendorAttrId};
    }
    std::cout << " = ";
    std::visit(ValuePrinter{}, value);
    std::cout << '\n';
  }
};

/// What an agent remembers of a request that it has sent.
struct PendingRequest {
  Verda::U8 code;
  Verda::U8 id;
  Verda::Bytes authenticator;
};

/// Whether `pkt` is a good answer to `request`. Anybody may send anything to an agent's socket, so
/// the header decides first whether the packet can be an answer at all: only then does the library
/// see it together with the Request Authenticator.
bool takeAnswer(PrintingParser& parser, const Verda::Ptr<Zonet::Pkt>& pkt,
                const Verda::String& secret, const PendingRequest& request) {
  const Verda::Ptr<RadiusHdrReturn> header = parser.getHeader(pkt);
  if (header->errorMsg() != ErrorMsg::success) {
    std::cout << "refused: " << header->errorMsg() << '\n';
    return false;
  }
  if (!canAnswer(header->hdr()->code(), request.code) || header->hdr()->id() != request.id) {
    std::cout << "refused: not an answer to this request\n";
    return false;
  }
  const ErrorMsg result =
      parser.doProcessPkt(pkt, secret, request.authenticator, pktInfoParserFactory());
  std::cout << (result == ErrorMsg::success ? "accepted: " : "refused: ") << result << '\n';
  return result == ErrorMsg::success;
}

Verda::Ptr<Zonet::Pkt> packetFromHex(const std::string& digits) {
  std::vector<Verda::U8> bytes;
  for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
    bytes.push_back(static_cast<Verda::U8>(std::stoul(digits.substr(at, 2), nullptr, 16)));
  }
  return Zonet::pktFactory(std::span<const Verda::U8>(bytes));
}

int run(std::span<char*> arguments) {
  const auto dictionary =
      RadiusPacketParser::radiusDictionaryParserFactory(arguments[1])->dictionary();
  PrintingParser parser(dictionary);

  const Verda::Ptr<RadiusHdrReturn> sent = parser.getHeader(packetFromHex(arguments[3]));
  if (sent->errorMsg() != ErrorMsg::success) {
    std::cerr << "the request has no good header: " << sent->errorMsg() << '\n';
    return 1;
  }
  const PendingRequest request{sent->hdr()->code(), sent->hdr()->id(),
                               Verda::Bytes(sent->hdr()->authenticator().bytes())};
  return takeAnswer(parser, packetFromHex(arguments[4]), arguments[2], request) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::span<char*> arguments(argv, static_cast<std::size_t>(argc));
  if (arguments.size() != 5) {
    std::cerr << "usage: receive_answer DICTIONARY SECRET REQUEST-HEX ANSWER-HEX\n";
    return 1;
  }
  try {
    return run(arguments);
  } catch (const std::exception& fault) {
    std::cerr << fault.what() << '\n';
    return 1;
  }
}
