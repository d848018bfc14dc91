#pragma once

#include <span>
#include <string>
#include <utility>

#include "RadiusPacketParser/RadiusPacketParser.h"
#include "tests/support/Outcome.h"
#include "tests/support/Walk.h"

namespace TestSupport {

using LegacyPtr = Verda::Ptr<RadiusPacketParser::RadiusPacketParserBase>;

/// An object of the legacy interface whose packet was checked.
inline LegacyPtr checkedPacket(const ByteVector& packet, const DictPtr& dictionary) {
  return RadiusPacketParser::radiusPacketParserFactory(dictionary, pktOf(packet));
}

/// One whose packet was not checked beyond its header.
inline LegacyPtr uncheckedPacket(const ByteVector& packet, const DictPtr& dictionary) {
  LegacyPtr parser = RadiusPacketParser::radiusPacketParserBaseFactory(dictionary, pktOf(packet));
  parser->setHeader();
  return parser;
}

/// A level-0 record of an operation of the object.
inline CapturedRecord legacyRecord(std::string function, std::string text) {
  return {"RadiusPacketParser::RadiusPacketParser", Verda::traceErrors, "RadiusPacketParserBase",
          std::move(function), std::move(text)};
}

/// A level-0 record of a free function.
inline CapturedRecord legacyHelperRecord(std::string function, std::string text) {
  return {"RadiusPacketParser::RadiusPacketParser", Verda::traceErrors, "", std::move(function),
          std::move(text)};
}

/// The packet with another Length field, and nothing else done to it.
inline ByteVector withLength(ByteVector packet, std::size_t length) {
  packet.at(2) = static_cast<Verda::U8>(length / 256);
  packet.at(3) = static_cast<Verda::U8>(length % 256);
  return packet;
}

/// The packet's header with other attributes behind it, its Length field made to fit.
inline ByteVector withAttributes(const ByteVector& packet, const ByteVector& attributes) {
  const std::span<const Verda::U8> header = std::span(packet).first(20);
  return withLength(joined({header, attributes}), header.size() + attributes.size());
}

}  // namespace TestSupport
