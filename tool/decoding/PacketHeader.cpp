#include "tool/decoding/PacketHeader.h"

#include "Zonet/WireReader.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusCode;
using Verda::U16;
using Verda::U8;

bool hasRandomAuthenticator(U8 code) {
  return code == RadiusCode::ACCESS_REQUEST || code == RadiusCode::STATUS_SERVER;
}

PacketHeader headerOf(std::span<const U8> packet) {
  PacketHeader header;
  Zonet::WireReader reader(packet);
  U8 byte = 0;
  U16 length = 0;
  std::span<const U8> authenticator;
  if (reader.read(byte)) {
    header.code = byte;
  }
  if (reader.read(byte)) {
    header.id = byte;
  }
  if (reader.read(length)) {
    header.length = length;
  }
  if (reader.read(PacketConstants::authLength(), authenticator)) {
    header.authenticator.emplace(authenticator.begin(), authenticator.end());
  }
  return header;
}

}  // namespace RadiusPacketTool
