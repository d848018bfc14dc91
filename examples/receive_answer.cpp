// Takes the answer to a request: looks at its header before trusting it, has the library verify and
// decode it, and prints every attribute.
//
//   receive_answer DICTIONARY SECRET-FILE REQUEST-HEX ANSWER-HEX
//
// The packets come as hex in place of a socket. Exit status: 0 for a good answer, 1 for a refused
// one.

#include <iostream>
#include <span>
#include <string>
#include <vector>

#include "examples/Answer.h"
#include "examples/AttributeLines.h"
#include "examples/SecretFile.h"

namespace {

using RadiusPktParserBase::ErrorMsg;
using Verda::Ptr;
using Zonet::Pkt;

Ptr<Pkt> packetFromHex(const std::string& digits) {
  std::vector<Verda::U8> bytes;
  for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
    bytes.push_back(static_cast<Verda::U8>(std::stoul(digits.substr(at, 2), nullptr, 16)));
  }
  return Zonet::pktFactory(std::span<const Verda::U8>(bytes));
}

int run(std::span<char*> arguments) {
  const auto dictionary =
      RadiusPacketParser::radiusDictionaryParserFactory(arguments[1])->dictionary();
  Example::DescribingParser parser(dictionary);

  const auto request = parser.getHeader(packetFromHex(arguments[3]));
  if (request->errorMsg() != ErrorMsg::success) {
    std::cerr << "the request has no good header: " << request->errorMsg() << '\n';
    return 1;
  }
  const auto sink = Example::AttributeLines::make();
  const std::string fault =
      Example::faultOfAnswer(parser, packetFromHex(arguments[4]), Example::readSecret(arguments[2]),
                             *request->hdr(), sink);
  if (!fault.empty()) {
    std::cout << "refused: " << fault << '\n';
    return 1;
  }
  std::cout << "accepted\n";
  for (const std::string& line : sink->lines) {
    std::cout << "  " << line << '\n';
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::span<char*> arguments(argv, static_cast<std::size_t>(argc));
  if (arguments.size() != 5) {
    std::cerr << "usage: receive_answer DICTIONARY SECRET-FILE REQUEST-HEX ANSWER-HEX\n";
    return 1;
  }
  try {
    return run(arguments);
  } catch (const std::exception& fault) {
    std::cerr << fault.what() << '\n';
    return 1;
  }
}
