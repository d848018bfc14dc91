#include "bench/BenchPackets.h"

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "RadiusPacketParser/RadiusPktCommon.h"

namespace Bench {
namespace {

using Verda::U8;

constexpr std::size_t expectedPackets = 4;
constexpr U8 requestAuthenticator[] = {0x0f, 0x40, 0x3f, 0x94, 0x73, 0x97, 0x80, 0x57,
                                       0xbd, 0x83, 0xd5, 0xcb, 0x98, 0xf4, 0x22, 0x7a};

[[noreturn]] void fail(const std::string& text) {
  std::cerr << BENCH_PACKETS << ": " << text << '\n';
  std::exit(EXIT_FAILURE);
}

void appendHex(const std::string& line, std::vector<U8>& bytes) {
  for (std::size_t at = 0; at + 1 < line.size(); at += 2) {
    bytes.push_back(static_cast<U8>(std::stoul(line.substr(at, 2), nullptr, 16)));
  }
}

/// "# p1: Access-Request..." begins a packet; hex lines follow.
std::vector<BenchPacket> readPackets() {
  std::vector<BenchPacket> packets;
  std::ifstream file(BENCH_PACKETS);
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("# p")) {
      packets.push_back({.name = line.substr(2, 2), .bytes = {}, .reqAuth = {}});
    } else if (!packets.empty() && !line.starts_with('#')) {
      appendHex(line, packets.back().bytes);
    }
  }
  if (packets.size() != expectedPackets) {
    fail("not four packets");
  }
  for (BenchPacket& packet : packets) {
    if (!RadiusPktParserBase::isRequest(packet.bytes.at(0))) {
      packet.reqAuth = Verda::Bytes(requestAuthenticator);
    }
  }
  return packets;
}

}  // namespace

const std::string secret = "xyzzy5461-secret";

const std::vector<BenchPacket>& benchPackets() {
  static const std::vector<BenchPacket> packets = readPackets();
  return packets;
}

}  // namespace Bench
