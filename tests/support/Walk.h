#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "RadiusPacketParser/RadiusPktParser.h"
#include "tests/support/CapturingSink.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"

namespace TestSupport {

/// One call of the hook.
struct Received {
  RadiusPktParserBase::Attribute key;
  RadiusPktParserBase::AttrValue value;
  RadiusPktParserBase::AttrInfo info;
};

/// A sink that keeps what the hook receives.
class RecordingSink : public RadiusPktParserBase::PktInfoParser {
 public:
  std::vector<Received> received;
  /// The flag at each call of the hook.
  std::vector<bool> msgAuthPresentAtCall;
};

/// A parser whose hook records into a `RecordingSink`.
class RecordingParser : public RadiusPktParserBase::RadiusPktParser {
 public:
  using RadiusPktParser::RadiusPktParser;

  void doProcessAttribute(const RadiusPktParserBase::Attribute& attr,
                          const RadiusPktParserBase::AttrValue& attrValue,
                          RadiusPktParserBase::AttrInfo attrInfo,
                          const Verda::Ptr<RadiusPktParserBase::PktInfoParser>& sink) override;
};

/// How one walk went.
struct Walked {
  RadiusPktParserBase::ErrorMsg result;
  std::vector<Received> received;
  std::vector<CapturedRecord> records;  ///< the trace of level 0
  bool msgAuthPresent;
  bool packetUnchanged;

  std::vector<std::string> texts() const;
};

/// Walks a packet with a recording parser and a fresh sink.
Walked walk(const ByteVector& packet, const ByteVector& reqAuth, const DictPtr& dictionary,
            const std::string& secret = testSecret);

/// A level-0 record of the codec.
CapturedRecord errorRecord(std::string className, std::string function, std::string text);

/// A level-0 record of the walk itself.
inline CapturedRecord walkRecord(std::string text) {
  return errorRecord("RadiusPktParser", "doProcessPkt", std::move(text));
}

/// A packet over a copy of the bytes, in a block of exactly that size.
Verda::Ptr<Zonet::Pkt> pktOf(const ByteVector& bytes);

/// The bytes that a packet holds.
ByteVector bytesOf(const Verda::Ptr<Zonet::Pkt>& pkt);

inline Verda::Bytes verdaBytes(const ByteVector& bytes) {
  return Verda::Bytes(std::span<const Verda::U8>(bytes));
}

/// A received attribute as the golden packets' `attribute` directive writes it.
std::string directiveOf(const Received& received, const RadiusPacketParser::RadiusDict& dictionary);

void PrintTo(const CapturedRecord& record, std::ostream* out);

}  // namespace TestSupport
