#pragma once

#include <string>
#include <utility>

#include "RadiusPacketParser/RadiusPacketParser.h"
#include "tests/support/Walk.h"

namespace TestSupport {

using LegacyPtr = Verda::Ptr<RadiusPacketParser::RadiusPacketParserBase>;

/// A level-0 record of an operation of the legacy parser.
inline CapturedRecord legacyRecord(std::string function, std::string text) {
  return {"RadiusPacketParser::RadiusPacketParser", Verda::traceErrors, "RadiusPacketParserBase",
          std::move(function), std::move(text)};
}

/// A packet whose header is read, and nothing is checked: no check keeps an operation from what it
/// then meets.
inline LegacyPtr uncheckedParser(const ByteVector& packet, const DictPtr& dictionary) {
  const LegacyPtr parser =
      RadiusPacketParser::radiusPacketParserBaseFactory(dictionary, pktOf(packet));
  parser->setHeader();
  return parser;
}

/// The packet with another Length field.
inline ByteVector withLength(ByteVector packet, std::size_t length) {
  packet.at(2) = static_cast<Verda::U8>(length / 256);
  packet.at(3) = static_cast<Verda::U8>(length % 256);
  return packet;
}

}  // namespace TestSupport
