// Takes the answer to a request: looks at its header before trusting it, has the library verify and
// decode it, and prints every attribute.
//
//   receive_answer DICTIONARY SECRET-FILE REQUEST-HEX ANSWER-HEX
//
// The packets come as hex in place of a socket. Exit status: 0 a good answer; 1 a refused one; 3 a
// fault on this side; 64 wrong usage.
// A dictionary that does not load ends the process by an assertion.

#include <iostream>
#include <string>

#include "examples/Answer.h"
#include "examples/AttributeLines.h"
#include "examples/CommandLine.h"
#include "examples/HexPacket.h"
#include "examples/SecretFile.h"

namespace {

using RadiusPktParserBase::ErrorMsg;

int run(const Example::CommandLine& line) {
  const auto dictionary = RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary();
  Example::DescribingParser parser(dictionary);

  const auto request = parser.getHeader(Example::packetFromHex(line[2]));
  if (request->errorMsg() != ErrorMsg::success) {
    std::cerr << "the request has no good header: " << request->errorMsg() << '\n';
    return Example::exitFault;
  }
  const auto sink = Example::AttributeLines::make();
  const std::string fault = Example::faultOfAnswer(
      parser, Example::packetFromHex(line[3]), Example::readSecret(line[1]), *request->hdr(), sink);
  if (!fault.empty()) {
    std::cout << "refused: " << fault << '\n';
    return Example::exitRefused;
  }
  std::cout << "accepted\n";
  for (const std::string& attribute : sink->lines) {
    std::cout << "  " << attribute << '\n';
  }
  return Example::exitGood;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "", {4},
                           "receive_answer DICTIONARY SECRET-FILE REQUEST-HEX ANSWER-HEX", run);
}
