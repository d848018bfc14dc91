// Several threads on one dictionary, one parser and one builder.
//
//   guide_threads DICTIONARY THREADS PACKETS
//
// Each thread builds so many requests and parses them again; how many were good is printed. Exit
// status: 0; 64 wrong usage.

#include <atomic>
#include <cstddef>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktParser.h"
#include "examples/CommandLine.h"

namespace {

using namespace RadiusPktParserBase;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using Verda::Bytes;
using Verda::Ptr;

// [round]
/// Shared: parser, builder, and a build request that nobody changes. A thread's own: header, packet
/// and sink.
bool buildAndParse(RadiusPktParser& parser, const RadiusPktBuilder& builder,
                   const Ptr<PktInfoBuilder>& content) {
  const auto header = builder.createRadiusHdr(RadiusCode::ACCESS_REQUEST, 0)->hdr();
  const auto built = builder.createPktFromHdr("secret", Bytes(), header, content);
  const auto sink = pktInfoParserFactory();
  return built->errorMsg() == ErrorMsg::success &&
         parser.doProcessPkt(built->pkt(), "secret", Bytes(), sink) == ErrorMsg::success &&
         sink->msgAuthPresent();
}
// [/round]

int run(const Example::CommandLine& line) {
  const std::size_t threadCount = std::stoul(line[1]);
  const int packets = std::stoi(line[2]);
  const auto dictionary = RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary();
  const auto content = pktInfoBuilderFactory();
  content->attributesToAddIs(0)->attrWithValueIs(
      attrWithValueFactory(standardAttribute(RadiusAttributeId::MESSAGE_AUTHENTICATOR)));

  // [threads]
  RadiusPktParser parser(dictionary);
  const RadiusPktBuilder builder(dictionary);
  std::atomic<int> good = 0;
  std::vector<std::jthread> threads;
  threads.reserve(threadCount);
  for (std::size_t thread = 0; thread < threadCount; ++thread) {
    threads.emplace_back([&] {
      for (int packet = 0; packet < packets; ++packet) {
        good += buildAndParse(parser, builder, content) ? 1 : 0;
      }
    });
  }
  threads.clear();  // joins them
  // [/threads]
  std::cout << good << '\n';
  return Example::exitGood;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "", {3}, "guide_threads DICTIONARY THREADS PACKETS", run);
}
